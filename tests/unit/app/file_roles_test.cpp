#include "file_roles.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <frontpanel_base/input_error.h>
#include "output_log.h"
#include "support/folder.h"

namespace frontpanel {
namespace {

namespace fs = std::filesystem;

class File_roles : public testing::Test {
protected:
    File_roles() {
        std::ofstream(m_options.menu) << "{}";
        std::ofstream(m_options.script) << "tick";
    }
    std::string file(const std::string& name) const { return m_folder.file(name); }
    std::string refusal() const {
        try {
            check_files(m_options);
        } catch (const Input_error& error) {
            return error.what();
        }
        return "";
    }
    static Options options_of(const support::Folder& folder) {
        Options options;
        options.menu = folder.file("menu.json");
        options.script = folder.file("my.script");
        return options;
    }

    support::Folder m_folder;
    Options m_options = options_of(m_folder);
};

TEST_F(File_roles, DifferentFilesAreAccepted) {
    m_options.state = file("values");
    m_options.log = file("log");
    m_options.screenshot = file("a.svg");
    m_options.pin_file = file("pin");
    EXPECT_EQ(refusal(), "");
}

TEST_F(File_roles, WhatIsOnlyReadMayBeNamedTwice) {
    m_options.script = m_options.menu;
    EXPECT_EQ(refusal(), "");
}

TEST_F(File_roles, TheMenuThatIsReadForThatIsReturned) {
    EXPECT_EQ(check_files(m_options), nullptr);
    m_options.log = file("log");
    const std::unique_ptr<Menu_document> document = check_files(m_options);
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(document->files(), std::vector<std::string>{m_options.menu});
    m_options.menu = file("missing");
    EXPECT_EQ(check_files(m_options), nullptr);
}

TEST_F(File_roles, DevicesMayBeNamedTwice) {
    m_options.state = "/dev/null";
    m_options.log = "/dev/null";
    EXPECT_EQ(refusal(), "");
}

TEST_F(File_roles, AFileThatIsReadIsNotWritten) {
    m_options.pin_file = file("pin");
    std::ofstream(m_options.pin_file) << "1234";
    const std::pair<const char*, std::string> read[] = {{"--menu", m_options.menu},
                                                        {"--script", m_options.script},
                                                        {"--pin-file", m_options.pin_file}};
    const std::pair<const char*, std::string Options::*> written[] = {
        {"--log", &Options::log},
        {"--state", &Options::state},
        {"--screenshot", &Options::screenshot}};
    for (const auto& [reader, name] : read) {
        for (const auto& [writer, member] : written) {
            m_options.*member = name;
            EXPECT_EQ(refusal(), name + ": " + reader + " and " + writer + " name the same file");
            m_options.*member = "";
        }
    }
}

TEST_F(File_roles, ALinkIsItsFile) {
    fs::create_symlink("menu.json", file("symbolic"));
    fs::create_hard_link(m_options.menu, file("hard"));
    for (const char* const name : {"symbolic", "hard", "./menu.json"}) {
        m_options.log = file(name);
        EXPECT_EQ(refusal(), m_options.menu + ": --menu and --log name the same file") << name;
    }
}

TEST_F(File_roles, TheDefaultLogIsNoOtherFile) {
    setenv("XDG_STATE_HOME", m_folder.path().c_str(), 1);
    EXPECT_EQ(refusal(), "");
    for (const int number : {1, MOST_DEFAULT_LOGS}) {
        m_options.menu = default_log_file(number);
        std::ofstream(m_options.menu) << "{}";
        EXPECT_EQ(refusal(),
                  m_options.menu + ": --menu and the default of --log name the same file");
    }
    m_options.log = file("log");
    EXPECT_EQ(refusal(), "");
    unsetenv("XDG_STATE_HOME");
}

TEST_F(File_roles, ALinkToAFileThatIsStillToBeCreatedIsThatFile) {
    fs::create_symlink("new", file("link"));
    m_options.state = file("link");
    m_options.log = file("new");
    EXPECT_EQ(refusal(), m_options.log + ": --log and --state name the same file");
    m_options.log = file("new.new");
    EXPECT_EQ(refusal(), m_options.log + ": --log names a file that --state replaces");
}

TEST_F(File_roles, FilesThatAreStillToBeCreatedAreCompared) {
    fs::create_directory(file("folder"));
    fs::create_directory_symlink("folder", file("link"));
    m_options.state = file("folder/new");
    m_options.log = file("link/new");
    EXPECT_EQ(refusal(), m_options.log + ": --log and --state name the same file");
    m_options.log = "";
    m_options.screenshot = file("folder/../folder/new");
    EXPECT_EQ(refusal(), m_options.state + ": --state and --screenshot name the same file");
}

TEST_F(File_roles, TheFileThatIsWrittenFirstIsNoOther) {
    m_options.state = file("menu");
    m_options.menu = file("menu.new");
    std::ofstream(m_options.menu) << "{}";
    EXPECT_EQ(refusal(), m_options.menu + ": --menu names a file that --state replaces");
    m_options.menu = file("menu.json");
    m_options.screenshot = file("menu.new");
    EXPECT_EQ(refusal(),
              m_options.screenshot + ": --screenshot names a file that --state replaces");
}

TEST_F(File_roles, WhatTheMenuIncludesAndItsPresetsAreNotWritten) {
    fs::create_directory(file("more"));
    fs::create_directory(file("more/presets"));
    std::ofstream(m_options.menu)
        << R"({"templates": {"include": "more/parts.json"}, "device": {"include": "device.json"},
               "menu": {"items": [{"template": "part"}, {"include": "more/items.json"}]}})";
    std::ofstream(file("device.json")) << "{}";
    std::ofstream(file("more/parts.json")) << R"({"part": {"content": []}})";
    std::ofstream(file("more/items.json")) << R"([{"type": "mount", "folder": "presets"}])";
    std::ofstream(file("more/presets/Film.json")) << "{}";
    fs::create_hard_link(file("device.json"), file("other name"));
    for (std::string Options::*const written :
         {&Options::log, &Options::state, &Options::screenshot}) {
        for (const char* const name :
             {"device.json", "more/parts.json", "more/items.json", "other name"}) {
            m_options.*written = file(name);
            EXPECT_NE(refusal().find(": belongs to the menu, and --"), std::string::npos) << name;
        }
        m_options.*written = file("more/presets/Film.json");
        EXPECT_NE(refusal().find("Film.json: belongs to the presets, and --"), std::string::npos);
        m_options.*written = file("more/presets/Film");
        EXPECT_EQ(refusal(), "");
        m_options.*written = "";
    }
}

TEST_F(File_roles, AMenuThatCannotBeReadIsReportedByItsLoad) {
    m_options.log = file("log");
    std::ofstream(m_options.menu) << R"({"device": {"include": "none.json"}, )";
    EXPECT_EQ(refusal(), "");
    fs::remove(m_options.menu);
    EXPECT_EQ(refusal(), "");
}

}  // namespace
}  // namespace frontpanel
