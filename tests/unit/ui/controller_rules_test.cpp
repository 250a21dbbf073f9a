// Rules at work on a panel: what follows from a commit, or from a device that changes by itself, shows at once.
#include <set>
#include <sstream>

#include <frontpanel_displays/text_display.h>
#include <frontpanel_ui/script_player.h>
#include "simulated_script_device.h"
#include "support/capture.h"
#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

constexpr Lcd_size SIZE{20, 5};
constexpr const char* PARAMETERS = R"(
    {"name": "mode", "pid": 5, "type": "integer", "min": 0, "max": 2, "value": 1},
    {"name": "gain", "pid": 6, "index": [1], "type": "integer", "min": -60, "max": 60, "value": 3},
    {"name": "limit", "pid": 7, "type": "integer", "min": 0, "max": 60, "value": 60},
    {"name": "source", "pid": 8, "type": "integer", "min": 0, "max": 3, "value": 1},
    {"name": "lock", "pid": 9, "type": "integer", "min": 0, "max": 1, "value": 0},
    {"name": "title", "pid": 10, "type": "text", "length": 16, "value": "none"})";

constexpr const char* MODE =
    R"({"type": "range", "name": "Mode", "parameter": "mode", "format": "0:off,1:on,2:test,%d"})";

// What differs from the script's expectations, line by line.
std::string differences(Application_panel& shown, const std::string& script) {
    std::ostringstream out;
    std::ostringstream differences;
    Text_display display(out);
    Simulated_script_device device(shown.device(), nullptr, shown.loaded.menu->parameters());
    Script_player(shown.panel, device, display, out, differences)
        .play(parse_script("a.script", script));
    return differences.str();
}

std::string differences(const std::string& items, const std::string& script) {
    Application_panel shown(menu_text(PARAMETERS, items, R"({"gps": 1})"), {SIZE});
    return differences(shown, script);
}

std::string with_mode(const std::string& items) {
    return std::string(MODE) + "," + items;
}

TEST(LiveRules, WritesFollowEachOtherInOneCommit) {
    EXPECT_EQ(differences(R"(
        {"type": "range", "name": "Mode", "parameter": "mode", "binding": "set [gain] = 0 if value == 2"},
        {"type": "range", "name": "Gain", "parameter": "gain", "binding": "set [limit] = 40 if value == 0"},
        {"type": "range", "name": "Limit", "parameter": "limit", "binding": "set [title] = \"low {value}\" if value < 50"},
        {"type": "text", "name": "Title", "parameter": "title"})",
                          R"(
        expect 5 | Title*none|
        select
        up
        select
        expect-write 5 2
        expect-write 6.1 0
        expect-write 7 40
        expect-write 10 low 40
        expect-no-write
        expect 2 |>Mode*2|
        expect 3 | Gain*0|
        expect 4 | Limit*40|
        expect 5 | Title*low 40|)"),
              "");
}

TEST(LiveRules, AWriteIsMadeOnceAndWhatTheUserSetsAfterwardsStays) {
    EXPECT_EQ(differences(R"(
        {"type": "range", "name": "Mode", "parameter": "mode", "binding": "set [gain] = 0 if value == 2"},
        {"type": "range", "name": "Gain", "parameter": "gain"})",
                          R"(
        select
        up
        select
        expect-write 5 2
        expect-write 6.1 0
        down
        select
        up 4
        select
        expect-write 6.1 4
        tick 3
        expect-no-write
        expect 3 |>Gain*4|)"),
              "");
}

TEST(LiveRules, AWriteThatTheDeviceRefusedIsMadeAgainWithTheNextChange) {
    EXPECT_EQ(differences(R"(
        {"type": "range", "name": "Mode", "parameter": "mode", "binding": "set [gain] = value * 10"},
        {"type": "range", "name": "Gain", "parameter": "gain"})",
                          R"(
        expect 3 | Gain*10|
        fail write 6.1 on
        set 5 2
        tick
        expect-write 6.1 20 (failed)
        expect 2 |rule: cannot*|
        select
        fail write 6.1 off
        tick
        expect 3 | Gain**|)"),
              "");
}

TEST(LiveRules, AChangeOfTheDeviceCascadesAtTheNextTick) {
    EXPECT_EQ(differences(R"(
        {"type": "range", "name": "Mode", "parameter": "mode", "binding": "set [gain] = 0 if value == 2"},
        {"type": "range", "name": "Gain", "parameter": "gain"},
        {"type": "range", "name": "Limit", "parameter": "limit", "binding": "visible if [gain] == 0"})",
                          R"(
        expect 4 |                    |
        set 5 2
        expect-no-write
        tick
        expect-write 6.1 0
        expect-no-write
        expect 3 | Gain*0|
        expect 4 | Limit*60|)"),
              "");
}

// The menu of the rule is not even open.
TEST(LiveRules, AWriteNeedsNoEntryOnTheDisplay) {
    EXPECT_EQ(differences(R"(
        {"type": "node", "name": "Inner", "items": [
            {"type": "range", "name": "Mode", "parameter": "mode", "binding": "set [gain] = 0 if value == 2"}]},
        {"type": "range", "name": "Gain", "parameter": "gain"})",
                          R"(
        set 5 2
        tick
        expect-write 6.1 0
        expect 3 | Gain*0|)"),
              "");
}

TEST(LiveRules, WritesThatHoldAtTheStartAreMadeBeforeAnythingIsShown) {
    Menu_panel panel(menu_text(PARAMETERS, R"(
        {"type": "range", "name": "Gain", "parameter": "gain"},
        {"type": "node", "name": "Inner", "items": [
            {"type": "range", "name": "Mode", "parameter": "mode", "binding": "set [gain] = 7 if value == 1"}]})"),
                     SIZE);
    EXPECT_EQ(panel.lines()[1], ">Gain              7");
}

TEST(LiveRules, VisibilityFollowsWhatARuleWrote) {
    EXPECT_EQ(differences(R"(
        {"type": "range", "name": "Mode", "parameter": "mode", "binding": "set [gain] = 0 if value == 2"},
        {"type": "range", "name": "Limit", "parameter": "limit", "binding": "visible if [gain] != 0"},
        {"type": "text", "name": "Title", "parameter": "title"})",
                          R"(
        expect 3 | Limit*60|
        select
        up
        select
        expect 3 | Title*none|
        expect 4 |                    |)"),
              "");
}

TEST(LiveRules, ARangeNarrowsUnderTheDeviceAndCorrectsIt) {
    EXPECT_EQ(differences(R"(
        {"type": "range", "name": "Gain", "parameter": "gain", "binding": "range -60..[limit]; range -60..-1 if [lock]"},
        {"type": "range", "name": "Limit", "parameter": "limit"})",
                          R"(
        set 7 2
        tick
        expect-write 6.1 2
        expect-no-write
        expect 2 |>Gain*2|
        select
        up 5
        expect 2 |2                   |
        back)"),
              "");
}

TEST(LiveRules, KeysLimitWhatAnEditorOffers) {
    EXPECT_EQ(differences(with_mode(R"({"type": "enum", "name": "Source", "parameter": "source",
            "choices": ["Tuner", "Line", "Optical", "Radio"],
            "binding": "keys 0..1 if [mode] == 1; keys 0 if [mode] == 2"})"),
                          R"(
        expect 3 | Source*Line|
        down
        select
        expect 1 |Source*2/2|
        down 3
        expect 2 |Tuner               |
        back
        up
        select
        up
        select
        expect-write 5 2
        expect-write 8 0
        expect 3 | Source*Tuner|
        select
        down 2
        select
        expect-write 5 0
        expect-no-write
        down
        select
        expect 1 |Source*1/4|
        up 3
        expect 2 |Radio               |)"),
              "");
}

TEST(LiveRules, AccessFollowsTheDevice) {
    EXPECT_EQ(differences(R"(
        {"type": "range", "name": "Gain", "parameter": "gain", "binding": "access read-only if [lock]"})",
                          R"(
        select
        up
        select
        expect-write 6.1 4
        set 9 1
        tick
        select
        up
        expect 2 |read only           |
        back 2
        set 9 0
        tick
        select
        up
        select
        expect-write 6.1 5)"),
              "");
}

TEST(LiveRules, AnEditorWhoseAccessEndsIsClosed) {
    EXPECT_EQ(differences(R"(
        {"type": "range", "name": "Gain", "parameter": "gain", "binding": "access read-only if [lock]"})",
                          R"(
        select
        up 3
        set 9 1
        tick
        expect 2 |locked: edit ended  |
        back
        expect 2 |>Gain*3|
        expect-no-write)"),
              "");
}

// A preview writes while its editor is open, and the rules follow each write.
TEST(LiveRules, APreviewCascadesWithEachStep) {
    EXPECT_EQ(differences(R"(
        {"type": "range", "name": "Gain", "parameter": "gain", "editor": {"preview": true},
         "binding": "set [limit] = value * 2"})",
                          R"(
        select
        up
        expect-write 6.1 4
        expect-write 7 8
        up
        expect-write 6.1 5
        expect-write 7 10
        expect 2 |5                   |
        select
        expect-no-write)"),
              "");
}

TEST(LiveRules, AWarnedValueIsWrittenWhenItIsAcceptedAndNotBefore) {
    EXPECT_EQ(differences(R"(
        {"type": "range", "name": "Gain", "parameter": "gain",
         "binding": "warn \"{value} of {[limit]}\" if value > 3; set [title] = \"loud\" if value > 3"},
        {"type": "text", "name": "Title", "parameter": "title"})",
                          R"(
        select
        up
        select
        expect 1 |Gain*ok?|
        expect 2 |4 of 60             |
        back
        expect 2 |4                   |
        select
        expect 1 |Gain*ok?|
        expect-no-write
        select
        expect-write 6.1 4
        expect-write 10 loud
        expect-no-write
        expect 2 |>Gain*4|
        expect 3 | Title*loud|
        select
        down
        select
        expect-write 6.1 3
        expect-no-write)"),
              "");
}

// --- what the device is asked for

TEST(LiveRules, ATickAsksForWhatRulesReadAndWhatIsShown) {
    std::string parameters = R"({"pid": 1, "type": "integer", "min": 0, "max": 9, "value": 1},
        {"pid": 100, "type": "integer", "min": 0, "max": 9, "value": 1})";
    std::string items;
    for (int pid = 101; pid < 601; ++pid) {
        const std::string number = std::to_string(pid);
        parameters +=
            R"(,{"pid": )" + number + R"(, "type": "integer", "min": 0, "max": 9, "value": 1})";
        items += R"({"type": "range", "name": "R", "pid": )" + number +
                 R"(, "binding": "visible if [100] == 1"},)";
    }
    items.pop_back();
    Menu_panel panel(
        menu_text(parameters, R"({"type": "node", "name": "All", "items": [)" + items +
                                  R"(]}, {"type": "range", "name": "One", "pid": 1})"));
    std::multiset<uint32_t> reads;
    panel.device().set_fault([&reads](const Memory_device::Operation& operation) {
        reads.insert(operation.pid);
        return 0;
    });
    panel.tick();
    // A menu shows whether any of its items is: that reads one of them.
    EXPECT_EQ(reads.count(100), 1U);
    EXPECT_LE(reads.size(), 502U);
    panel.device().set_fault(nullptr);
}

TEST(LiveRules, ATickAsksForTheMostOfALargeMenuInTurns) {
    std::string parameters = R"({"pid": 1, "type": "integer", "min": 0, "max": 9, "value": 1})";
    std::string menus;
    for (int menu = 0; menu < 3; ++menu) {
        std::string items;
        for (int pid = 1000 + menu * 1000; pid < 1800 + menu * 1000; ++pid) {
            const std::string number = std::to_string(pid);
            parameters +=
                R"(,{"pid": )" + number + R"(, "type": "integer", "min": 0, "max": 9, "value": 1})";
            items += R"({"type": "range", "name": "R", "pid": 1, "binding": "visible if [)" +
                     number + R"(] == 1"},)";
        }
        items.pop_back();
        menus += R"({"type": "node", "name": "N", "items": [)" + items + "]},";
    }
    Menu_panel panel(
        menu_text(parameters, menus + R"({"type": "range", "name": "One", "pid": 1})"));
    std::set<uint32_t> reads;
    panel.device().set_fault([&reads](const Memory_device::Operation& operation) {
        reads.insert(operation.pid);
        return 0;
    });
    std::vector<size_t> asked;
    for (int i = 0; i < 3; ++i) {
        panel.tick();
        asked.push_back(reads.size());
    }
    EXPECT_EQ(asked, (std::vector<size_t>{1000, 2000, 2400}));
    panel.device().set_fault(nullptr);
}

TEST(LiveRules, SlotListsSelectSocketsBehindTheRules) {
    Menu_panel panel(R"({"device": {"parameters": [
        {"pid": 7, "type": "integer", "min": 0, "max": 9, "value": 1}], "products": [
        {"slot": 2, "id": 12, "name": "ENC", "family": "Encoder", "alias": "Van"}]},
        "menu": {"name": "Main", "items": [{"type": "slot", "name": "Slot", "pid": 7}]}})");
    std::vector<int> sockets;
    panel.device().set_fault([&sockets](const Memory_device::Operation& operation) {
        if (operation.kind == Memory_device::Operation_kind::SELECT_SOCKET) {
            sockets.push_back(operation.socket);
        }
        return 0;
    });
    panel.device().setCurrentRouterSocket(3);
    panel.lines();
    sockets.clear();
    panel.tick();
    EXPECT_EQ(sockets, (std::vector<int>{0, 3}));
    EXPECT_EQ(panel.device().current_socket(), 3);
    panel.device().set_fault(nullptr);
}

// --- what is asked is not disturbed

TEST(LiveRules, AQuestionAboutAValueKeepsItWhileTheDeviceChanges) {
    EXPECT_EQ(differences(R"(
        {"type": "range", "name": "Gain", "parameter": "gain",
         "binding": "warn \"{value} is loud\" if value > 3; range -60..[limit]"})",
                          R"(
        select
        up
        select
        expect 1 |Gain*ok?|
        expect 2 |4 is loud           |
        set 7 2
        tick 2
        expect 2 |4 is loud           |
        expect-no-write
        back
        tick
        expect 2 |limit: new value    |)"),
              "");
}

// --- circles

constexpr const char* NO_REST = R"(
    {"type": "range", "name": "Low", "pid": 1, "binding": "range [2] + 1 .. 1000000"},
    {"type": "range", "name": "High", "pid": 2, "binding": "range [1] + 1 .. 1000000"})";
constexpr const char* ENDLESS = R"(
    {"pid": 1, "type": "integer", "min": 0, "max": 1000000, "value": 0},
    {"pid": 2, "type": "integer", "min": 0, "max": 1000000, "value": 0})";

size_t count(const std::string& text, const std::string& part) {
    size_t number = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++number;
    }
    return number;
}

TEST(LiveRules, ACircleIsToldOnceOnTheDisplayAndInTheLog) {
    auto log = std::make_unique<support::Stream_scope>(stdout);
    Menu_panel panel(menu_text(ENDLESS, NO_REST), {40, 2});
    const Lines told = panel.lines();
    panel.press(Key::SELECT);
    for (int i = 0; i < 3; ++i) {
        panel.tick();
    }
    const Lines later = panel.lines();
    const std::string printed = log->text();
    log.reset();
    EXPECT_EQ(told[0], "Bindings                                ");
    EXPECT_EQ(told[1], "unstable: Low -> High -> Low            ");
    EXPECT_EQ(later[0].substr(0, 4), ">Low");
    EXPECT_EQ(count(printed, "\nBindings do not settle: Low -> High -> Low\n"), 1U);
    EXPECT_EQ(count(printed, "not settle"), 1U);
}

}  // namespace
}  // namespace frontpanel
