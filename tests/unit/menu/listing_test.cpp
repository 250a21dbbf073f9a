#include <frontpanel_menu/listing.h>

#include <frontpanel_menu/entry_access.h>

#include "support/leaf.h"
#include "unit/menu/items_fixture.h"

namespace frontpanel {
namespace {

constexpr const char* PARAMETERS = R"(
    {"name": "gain", "pid": 1, "type": "integer", "min": 0, "max": 99, "value": 5},
    {"name": "mode", "pid": 2, "type": "integer", "min": 0, "max": 9, "value": 0},
    {"name": "name", "pid": 3, "type": "text", "length": 8, "value": "x"})";
constexpr const char* OPTIONS = R"({"gps": 0, "modem": 1})";

// A number that its rule hides in mode 1, and one that it hides in any other.
constexpr const char* NOT_IN_1 =
    R"({"type": "range", "name": "A", "parameter": "gain", "binding": "visible if [mode] != 1"})";
constexpr const char* ONLY_IN_1 =
    R"({"type": "range", "name": "B", "parameter": "gain", "binding": "visible if [mode] == 1"})";

std::string node(const std::string& items, const std::string& members = "") {
    return R"({"type": "node", "name": "N")" + members + R"(, "items": [)" + items + "]}";
}

class Listing_test : public testing::Test {
protected:
    // Of each item of the top menu, by the library's question and by the list's.
    static std::vector<bool> asked(Menu& menu) {
        return for_each(menu, [&](Data_entry& entry) {
            if (is_menu(entry)) {
                refresh(entry, menu.access());
            }
            return entry.isVisible(true, &menu.access()) >= 0;
        });
    }
    static std::vector<bool> listed(Menu& menu) {
        return for_each(menu, [&](Data_entry& entry) { return is_listed(entry, menu); });
    }
    template <typename Question>
    static std::vector<bool> for_each(Menu& menu, Question question) {
        std::vector<bool> answers;
        for (Data_entry* entry = menu.root().Get_child(); entry != nullptr;
             entry = neighbour(*entry, Data_entry::OPERATION_NEXT)) {
            answers.push_back(question(*entry));
        }
        return answers;
    }
    static void settle(Menu& menu) {
        menu.bindings()->poll();
        menu.bindings()->settle();
    }
};

TEST_F(Listing_test, IsTheLibrarysAnswerWhateverWasAskedBefore) {
    const std::string text =
        menu_text(PARAMETERS,
                  std::string(NOT_IN_1) + "," + ONLY_IN_1 + "," + node(ONLY_IN_1) + "," +
                      node(std::string(ONLY_IN_1) + "," + NOT_IN_1) + "," + node(node(NOT_IN_1)) +
                      "," + node(NOT_IN_1, R"(, "binding": "visible if [mode] == 2")") + "," +
                      node(NOT_IN_1, R"(, "options": ["gps"])") + "," +
                      node(R"({"type": "link", "target": "A"})") + R"(,
            {"type": "link", "target": "A"}, {"type": "link", "target": "B"},
            {"type": "text", "name": "T", "parameter": "name", "options": ["gps"]},
            {"type": "text", "name": "U", "parameter": "name", "options": ["modem"]},
            {"type": "text", "name": "V", "parameter": "name", "binding": "visible if value == \"x\""},
            {"type": "mount", "name": "M", "folder": "none"})",
                  OPTIONS);
    Simulated_menu library = simulated_text(text);
    Simulated_menu list = simulated_text(text);
    Simulated_menu fresh_list = simulated_text(text);
    for (const int mode : {0, 1, 2, 1, 0}) {
        SCOPED_TRACE(mode);
        for (Simulated_menu* const each : {&library, &list}) {
            each->device().set_integer(2, 0, mode);
            settle(*each->menu);
        }
        const std::vector<bool> expected = asked(*library.menu);
        EXPECT_EQ(expected.size(), 14U);
        EXPECT_EQ(listed(*list.menu), expected);
        EXPECT_EQ(listed(*library.menu), expected);
        fresh_list = simulated_text(text);
        fresh_list.device().set_integer(2, 0, mode);
        EXPECT_EQ(listed(*fresh_list.menu), expected);
    }
}

TEST_F(Listing_test, ReadsWhatRulesReadAndNothingElse) {
    Simulated_menu menu = simulated_text(
        menu_text(PARAMETERS, std::string(NOT_IN_1) + "," + ONLY_IN_1 + "," + node(ONLY_IN_1) + R"(,
            {"type": "link", "target": "A"}, {"type": "text", "name": "T", "parameter": "name"})"));
    std::set<uint32_t> read;
    menu.device().set_fault([&read](const Memory_device::Operation& operation) {
        read.insert(operation.pid);
        return 0;
    });
    listed(*menu.menu);
    settle(*menu.menu);
    listed(*menu.menu);
    EXPECT_EQ(read, std::set<uint32_t>{2});
    menu.device().set_fault(nullptr);
}

TEST_F(Listing_test, ChangesBeforeTheRulesHaveSettled) {
    Simulated_menu menu =
        simulated_text(menu_text(PARAMETERS, std::string(NOT_IN_1) + "," + ONLY_IN_1));
    asked(*menu.menu);
    menu.device().set_integer(2, 0, 1);
    menu.menu->bindings()->poll();
    EXPECT_EQ(listed(*menu.menu), (std::vector<bool>{false, true}));
    menu.menu->bindings()->settle();
    EXPECT_EQ(listed(*menu.menu), (std::vector<bool>{false, true}));
}

TEST_F(Listing_test, ARuleThatFailsLeavesTheEntryAsItWasAndIsReported) {
    Simulated_menu menu = simulated_text(menu_text(
        PARAMETERS,
        R"({"type": "range", "name": "A", "parameter": "gain", "binding": "visible if 4 / [mode] > 1"})"));
    EXPECT_EQ(listed(*menu.menu), std::vector<bool>{true});
    EXPECT_EQ(menu.menu->bindings()->faults().size(), 1U);
}

TEST_F(Listing_test, AWriteRuleOfAnEntryThatIsListedFirstIsStillCarriedOut) {
    Simulated_menu menu = simulated_text(menu_text(
        PARAMETERS,
        R"({"type": "range", "name": "A", "parameter": "gain", "binding": "set [mode] = 7 if [gain] == 5"})"));
    menu.menu->bindings()->poll();
    listed(*menu.menu);
    menu.menu->bindings()->settle();
    EXPECT_EQ(menu.device().integer(2, 0), 7);
}

// An application may have built it itself.
TEST_F(Listing_test, AnyNodeIsAskedInTheLibrarysWay) {
    Simulated_menu menu = simulated_text(menu_text(PARAMETERS, ONLY_IN_1));
    const Index_t index{};
    Node_entry node("Own", "", &index, nullptr, Data_entry::VISIBLE_ALL, Data_entry::SHORTCUT_NONE,
                    nullptr, nullptr, nullptr);
    EXPECT_FALSE(is_listed(node, *menu.menu));
    Node_entry below("Below", "", &index, &node, Data_entry::VISIBLE_ALL, Data_entry::SHORTCUT_NONE,
                     nullptr, nullptr, nullptr);
    support::Leaf leaf("Leaf", &below);
    EXPECT_TRUE(is_listed(node, *menu.menu));
}

}  // namespace
}  // namespace frontpanel
