#include "driver_work.h"

#include <fstream>
#include <iterator>

#include "menu_files.h"
#include "support/capture.h"

namespace frontpanel {
namespace {

class Driver_work_test : public Driven_menu_files {
protected:
    Driver_work_test() {
        write("value", "7");
        options.menu = write("driven.json", R"({"device": {
            "drivers": {"files": {"driver": "file"}}, "parameters": [
            {"name": "gain", "pid": 1, "type": "integer", "min": 0, "max": 9,
             "source": {"path": "value", "write": "missing"}}]},
            "menu": {"name": "Main", "items": [{"type": "range", "name": "Gain", "pid": 1}]}})");
    }
    std::string log_text() {
        std::ifstream file(options.log);
        return {std::istreambuf_iterator<char>(file), {}};
    }
};

TEST_F(Driver_work_test, ARefusedWriteIsShownAndLogged) {
    std::string title;
    std::string text;
    support::capture(0, [&] {
        Output_log log(options.log);
        const Loaded_panel loaded = load_panel(options.menu, Cards::OFF, 20);
        start_drivers(loaded, First_values::AWAITED);
        Shown_panel shown;
        Panel_options panel_options;
        panel_options.size = {20, 2};
        follow_drivers(panel_options, loaded, log, shown, Pace::OF_A_SCRIPT);
        Panel panel(*loaded.menu, std::move(panel_options));
        shown.panel = &panel;
        for (const Key::Kind key : {Key::SELECT, Key::UP, Key::SELECT}) {
            panel.press({key});
        }
        panel.tick();
        title = panel.frame().lcd.line(0);
        text = panel.frame().lcd.line(1);
    });
    EXPECT_EQ(title, "Gain             1/3") << "as the item is called";
    EXPECT_EQ(text, "write refused: No   ");
    EXPECT_NE(log_text().find("driver files: gain: write refused: No such file or directory"),
              std::string::npos)
        << log_text();
}

TEST_F(Driver_work_test, WritesThatAreDoneLeaveTheStatusAlone) {
    support::capture(0, [&] {
        Output_log log(options.log);
        const Loaded_panel loaded = load_panel(options.menu, Cards::OFF, 20);
        start_drivers(loaded, First_values::AWAITED);
        EXPECT_EQ(finish_writes(loaded, log, EXIT_PLAYED, std::chrono::seconds(10)), EXIT_PLAYED);
        EXPECT_EQ(finish_writes(loaded, log, EXIT_BAD_INPUT, std::chrono::seconds(10)),
                  EXIT_BAD_INPUT);
    });
}

// A driver that has not been started sends nothing.
TEST_F(Driver_work_test, AWriteThatDidNotGetOutIsNamedAndChangesTheStatus) {
    int status = EXIT_PLAYED;
    const support::Captured captured = support::capture(0, [&] {
        Output_log log(options.log);
        const Loaded_panel loaded = load_panel(options.menu, Cards::OFF, 20);
        const int32_t value = 8;
        loaded.menu->access().Set(1, 0, &value, sizeof value);
        status = finish_writes(loaded, log, EXIT_PLAYED, std::chrono::milliseconds(1));
    });
    EXPECT_EQ(status, EXIT_DIFFERENCE);
    EXPECT_EQ(captured.err.substr(0, 37), "frontpanel: files: gain: not written:") << captured.err;
}

TEST_F(Driver_work_test, APanelWithoutDriversIsLeftAlone) {
    options.menu = folder.file("menu.json");
    support::capture(0, [&] {
        Output_log log(options.log);
        const Loaded_panel loaded = load_panel(options.menu, Cards::OFF, 20);
        start_drivers(loaded, First_values::AWAITED);
        Shown_panel shown;
        Panel_options panel_options;
        follow_drivers(panel_options, loaded, log, shown, Pace::OF_A_PERSON);
        EXPECT_EQ(panel_options.device_descriptor, -1);
        EXPECT_EQ(panel_options.before_tick, nullptr);
        EXPECT_EQ(finish_writes(loaded, log, EXIT_PLAYED, std::chrono::seconds(10)), EXIT_PLAYED);
    });
}

}  // namespace
}  // namespace frontpanel
