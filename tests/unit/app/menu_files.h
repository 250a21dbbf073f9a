// Files of a small menu for tests of the application.
#ifndef FRONTPANEL_DATA_TESTS_UNIT_APP_MENU_FILES_H
#define FRONTPANEL_DATA_TESTS_UNIT_APP_MENU_FILES_H

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include <frontpanel_base/input_error.h>
#include "options.h"
#include "support/built_drivers.h"
#include "support/folder.h"

namespace frontpanel {

class Menu_files : public testing::Test {
protected:
    Menu_files() {
        write("menu.json", R"({"device": {"parameters": [
            {"name": "gain", "pid": 1, "type": "integer", "min": 0, "max": 9, "value": 5}]},
            "menu": {"name": "Main", "items": [
                {"type": "range", "name": "Gain", "parameter": "gain", "id": "gain"}]}})");
        options.menu = folder.file("menu.json");
        options.log = folder.file("log");
        options.size = {16, 2};
    }
    std::string write(const std::string& name, const std::string& text) {
        std::ofstream(folder.file(name)) << text;
        return folder.file(name);
    }
    // What the work's Input_error says; empty when it throws none.
    template <typename Work>
    static std::string error_of(Work work) {
        try {
            work();
        } catch (const Input_error& error) {
            return error.what();
        }
        return "";
    }

    support::Folder folder;
    Options options;
};

// Tests with files as the device. A build may leave out the driver.
class Driven_menu_files : public Menu_files {
protected:
    void SetUp() override {
        if (!support::has_driver("file")) {
            GTEST_SKIP() << "built without the driver for files";
        }
    }
};

}  // namespace frontpanel

#endif
