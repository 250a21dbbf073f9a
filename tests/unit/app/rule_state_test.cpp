// What write rules have done, over a restart of the panel with a state file.
#include "rule_state.h"

#include <frontpanel_ui/panel.h>

#include "support/folder.h"
#include "support/simulated_menu.h"

namespace frontpanel {
namespace {

const std::string TEXT = menu_text(
    R"({"name": "mode", "pid": 1, "type": "integer", "min": 0, "max": 9, "value": 1},
       {"name": "gain", "pid": 2, "type": "integer", "min": 0, "max": 99, "value": 3})",
    R"({"type": "range", "name": "Mode", "parameter": "mode", "binding": "set [gain] = 50 if value == 1"},
       {"type": "range", "name": "Gain", "parameter": "gain"})");

// A panel from its start to its end; `use` is what happens between.
template <typename Use>
int gain_after(const std::string& file, Use use) {
    Simulated_menu loaded = simulated_text(TEXT);
    State_file state(file, loaded.device());
    state.restore();
    restore_rules(state, *loaded.menu);
    {
        Panel panel(*loaded.menu);
        use(loaded.device());
        panel.tick();
    }
    keep_rules(*loaded.menu, state);
    EXPECT_FALSE(keep_rules(*loaded.menu, state)) << "it knows them by now";
    state.save();
    return loaded.device().integer(2, 0).value();
}

TEST(RuleState, ARestartIsNoChange) {
    const support::Folder folder;
    const std::string file = folder.file("values");
    const auto nothing = [](Memory_device&) {};
    EXPECT_EQ(gain_after(file, [](Memory_device& device) { device.set_integer(2, 0, 60); }), 60);
    EXPECT_EQ(gain_after(file, nothing), 60);
    EXPECT_EQ(gain_after(file, nothing), 60);
    EXPECT_EQ(gain_after(file, [](Memory_device& device) { device.set_integer(1, 0, 2); }), 60);
    EXPECT_EQ(gain_after(file, [](Memory_device& device) { device.set_integer(1, 0, 1); }), 50);
}

TEST(RuleState, WithoutWhatWasDoneARuleActsAtTheStart) {
    const support::Folder folder;
    EXPECT_EQ(gain_after(folder.file("values"), [](Memory_device&) {}), 50);
}

}  // namespace
}  // namespace frontpanel
