#include "loaded_panel.h"

#include <frontpanel_base/problems.h>
#include "menu_files.h"

namespace frontpanel {
namespace {

class Loaded_panel_test : public Menu_files {};

TEST_F(Loaded_panel_test, IsAMenuOverTheDeviceThatTheFileDescribes) {
    const Loaded_panel loaded = load_panel(options.menu, Cards::OFF, 20);
    EXPECT_EQ(loaded.menu->entry_count(), 2U);
    EXPECT_EQ(loaded.device->memory().integer(1, 0), 5);
    EXPECT_EQ(loaded.device->cards(), nullptr);
    EXPECT_TRUE(loaded.warnings.empty());
    int32_t value = 0;
    EXPECT_EQ(loaded.menu->access().Get(1, 0, &value, sizeof value), 0);
    EXPECT_EQ(value, 5);
}

TEST_F(Loaded_panel_test, WarnsOfWhatTheDisplayCannotShowAtOnce) {
    options.menu = write("long.json", R"({"device": {"parameters": [
        {"pid": 1, "type": "integer", "min": 0, "max": 9, "value": 5}]},
        "menu": {"name": "Main", "items": [
            {"type": "range", "name": "Temperature out", "pid": 1}]}})");
    EXPECT_TRUE(load_panel(options.menu, Cards::OFF, 20).warnings.empty());
    EXPECT_EQ(load_panel(options.menu, Cards::OFF, 16).warnings.size(), 1U);
}

TEST_F(Loaded_panel_test, MistakesOfMenuAndDeviceAreToldTogether) {
    options.menu = write("bad.json", R"({"device": {"parameters": [
        {"pid": 1, "type": "integer", "min": 0, "max": 9, "value": 10}]},
        "menu": {"name": "Main", "items": [{"type": "range", "name": "Gain", "pid": 2}]}})");
    try {
        load_panel(options.menu, Cards::OFF, 20);
        ADD_FAILURE();
    } catch (const Input_errors& errors) {
        EXPECT_EQ(errors.lines().size(), 2U);
    }
}

}  // namespace
}  // namespace frontpanel
