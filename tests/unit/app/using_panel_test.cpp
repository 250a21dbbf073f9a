#include "using_panel.h"

#include <sys/stat.h>

#include <stdexcept>

#include "menu_files.h"
#include "reports.h"
#include "support/capture.h"

namespace frontpanel {
namespace {

class Using_panel_test : public Menu_files {
protected:
    // Standard output is the log's meanwhile.
    template <typename Work>
    void with_log(Work work) {
        Output_log log(options.log);
        work(log);
    }
    std::string display_name() {
        std::string name;
        with_log([&](Output_log& log) { name = display_of(options, log).name; });
        return name;
    }
    std::string front_error(const std::string& display) {
        std::string error;
        with_log([&](Output_log& log) {
            error = error_of([&] { check_front(options, *parse_display(display).display, log); });
        });
        return error;
    }
};

TEST_F(Using_panel_test, ANamedDisplayIsTaken) {
    options.display = parse_display("lcdproc:127.0.0.1:1");
    EXPECT_EQ(display_name(), "lcdproc");
}

TEST_F(Using_panel_test, AScriptOrAPictureIsForTheDisplayWithoutKeys) {
    options.script = "a.script";
    EXPECT_EQ(display_name(), "text");
    options.script = "";
    options.screenshot = "a.svg";
    EXPECT_EQ(display_name(), "text");
    EXPECT_EQ(front_error("lcdproc"), "scripts and pictures are for the display \"text\"");
    EXPECT_EQ(front_error("terminal"), "scripts and pictures are for the display \"text\"");
}

TEST_F(Using_panel_test, OnlyADisplayThatTakesTheTerminalNeedsOne) {
    EXPECT_EQ(front_error("lcdproc"), "");
    std::string error;
    support::capture(0, [&] { error = front_error("terminal"); });
    EXPECT_EQ(error, "standard output is not a terminal: name a script with --script");
}

TEST_F(Using_panel_test, ADisplayWithoutKeysNeedsAnInputThatSelects) {
    options.inputs = {"/nonexistent/knob"};
    options.input_keys = {{"KEY_A", {Key::BACK}}};
    EXPECT_EQ(front_error("lcdproc"), "");
    EXPECT_EQ(front_error("charlcd"),
              "--keys: no key of an input selects, and the display has no keys");
}

TEST_F(Using_panel_test, TheDisplayDecidesItsSizeUnlessOneIsNamed) {
    with_log([&](Output_log& log) {
        const std::optional<Lcd_size> open = setup_of(options, log).size;
        options.has_size = true;
        const std::optional<Lcd_size> named = setup_of(options, log).size;
        if (open || !named || named->columns != 16) {
            throw std::logic_error("wrong size");
        }
    });
}

TEST_F(Using_panel_test, APinFileWithoutAPinIsNamedAndItsContentIsNot) {
    options.pin_file = write("pin", "12x4\n");
    std::string error;
    support::capture(0, [&] {
        with_log([&](Output_log& log) {
            const Loaded_panel loaded = load(options, log, Cards::OFF);
            const End_watch end;
            error = error_of([&] { use_panel(options, default_display(true), loaded, log, end); });
        });
    });
    EXPECT_EQ(error, options.pin_file + ": expected a PIN of 4 to 8 digits");
}

TEST_F(Using_panel_test, APinFileThatOthersCanReadIsWarnedOf) {
    options.pin_file = write("pin", "1234\n");
    const auto warning_of = [this](mode_t mode) {
        chmod(options.pin_file.c_str(), mode);
        return support::capture(0, [this] { EXPECT_EQ(pin_of(options), "1234"); }).err;
    };
    EXPECT_EQ(warning_of(0644),
              "warning: " + options.pin_file +
                  ": others can read this PIN: \"chmod 600\" keeps it from them\n");
    EXPECT_EQ(warning_of(0640), "");
    EXPECT_EQ(warning_of(0600), "");
}

}  // namespace
}  // namespace frontpanel
