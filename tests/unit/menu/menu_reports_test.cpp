// The menu as text, as a graph, and why an entry is as it is.
#include <frontpanel_menu/explain.h>
#include <frontpanel_menu/menu_dump.h>
#include <frontpanel_menu/menu_graph.h>
#include "menu_tree.h"
#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

constexpr const char* MENU = R"({"options": {"gps": 0, "slotn": 4}, "device": {"parameters": [
    {"name": "gain", "pid": 100, "index": [1], "type": "integer", "min": 0, "max": 100, "value": 3},
    {"name": "mode", "pid": 101, "type": "integer", "min": 0, "max": 1, "value": 0},
    {"name": "lock", "pid": 102, "type": "integer", "min": 0, "max": 1, "value": 1}]},
    "menu": {"name": "Main \"A&B\" \\n", "items": [
        {"type": "node", "name": "Audio", "items": [
            {"type": "range", "name": "Gain", "id": "gain", "parameter": "gain",
             "binding": "visible if [101] == 1; access read-only if [102] == 1"}]},
        {"type": "enum", "name": "Mode", "parameter": "mode", "choices": ["off", "on"]},
        {"type": "range", "name": "Fix", "parameter": "mode", "options": ["gps", "slot5"]},
        {"type": "range", "name": "Seat", "parameter": "mode", "options": ["slot3"], "visible": false},
        {"type": "mount", "name": "Presets", "folder": "."},
        {"type": "link", "target": "gain"}]},
    "homescreen": [{"target": "gain", "toggle": "[mode] == 0 && [lock] == 1"}]})";

class Menu_reports : public testing::Test {
protected:
    Menu& menu() { return *m_loaded.menu; }
    std::string explained(const std::string& name) { return explain(menu(), name); }
    std::string error_of(const std::string& name) {
        try {
            explain(menu(), name);
        } catch (const Input_error& error) {
            return error.what();
        }
        return "";
    }

    Simulated_menu m_loaded = simulated_text(MENU);
};

TEST_F(Menu_reports, TheTreeHasALineForEachEntryWithATabForEachMenuAround) {
    refresh_all(menu());
    EXPECT_EQ(
        dump_of(menu()),
        "Main \"A&B\" \\n varid[-1.0.0@s] num_index_levels=[0] type[0] vis[1] shortcut[-1] \n"
        "\tAudio varid[-1.0.0@s] num_index_levels=[0] type[0] vis[1] shortcut[-1] \n"
        "\t\tGain varid[100.1.0@i] num_index_levels=[1] type[1] vis[1] shortcut[-1] range={  [0, 100] }\n"
        "\tMode varid[101.0.0@i] num_index_levels=[0] type[2] vis[1] shortcut[-1] enum={  0(off)  1(on)  }\n"
        "\tFix varid[101.0.0@i] num_index_levels=[0] type[1] vis[1] shortcut[-1] range={  [0, 1] }\n"
        "\tSeat varid[101.0.0@i] num_index_levels=[0] type[1] vis[-1] shortcut[-1] range={  [0, 1] }\n"
        "\tPresets varid[-1.0.0@s] num_index_levels=[0] type[7] vis[1] shortcut[-1] \n"
        "\tAudio.Gain varid[100.1.0@i] num_index_levels=[1] type[7] vis[1] shortcut[-1] \n"
        "Home varid[-1.0.0@s] num_index_levels=[0] type[0] vis[1] shortcut[-1] \n"
        "\tAudio.Gain varid[100.1.0@i] num_index_levels=[1] type[7] vis[1] shortcut[-1] \n");
}

TEST_F(Menu_reports, TheGraphTellsLinksMountsAndDependantsApart) {
    EXPECT_EQ(graph_of(menu()),
              "digraph \"Main \\\"A&amp;B\\\" \\\\n\" {\n"
              "    rankdir=LR;\n"
              "    node [shape=box];\n"
              "    n0 [label=\"Main \\\"A&amp;B\\\" \\\\n\"];\n"
              "    n1 [label=\"Audio\"];\n"
              "    n2 [label=\"Gain\\n100.1\", style=rounded];\n"
              "    n3 [label=\"Mode\\n101\", style=rounded];\n"
              "    n4 [label=\"Fix\\n101\", style=rounded];\n"
              "    n5 [label=\"Seat\\n101\", style=rounded];\n"
              "    n6 [label=\"Presets\"];\n"
              "    n7 [label=\"Audio.Gain\", style=rounded];\n"
              "    n8 [label=\"Home\"];\n"
              "    n9 [label=\"Audio.Gain\", style=rounded];\n"
              "    n10 [label=\"Presets\"];\n"
              "    n2 [color=blue, fontcolor=blue];\n"
              "    p0 [shape=plaintext, label=\"[102]\"];\n"
              "    n0 -> n1;\n"
              "    n1 -> n2;\n"
              "    n0 -> n3;\n"
              "    n0 -> n4;\n"
              "    n0 -> n5;\n"
              "    n0 -> n6;\n"
              "    n6 -> n10 [style=dotted];\n"
              "    n0 -> n7;\n"
              "    n7 -> n2 [style=dashed];\n"
              "    n8 -> n9;\n"
              "    n9 -> n2 [style=dashed];\n"
              "    n3 -> n2 [color=blue, constraint=false];\n"
              "    p0 -> n2 [color=blue, constraint=false];\n"
              "}\n");
}

TEST_F(Menu_reports, AHiddenEntryIsExplainedByItsRulesAndTheValuesTheySaw) {
    EXPECT_EQ(explained("Audio/Gain"),
              "Audio: hidden\n"
              "  none of its entries is shown\n"
              "Audio/Gain: hidden\n"
              "  rules:\n"
              "    line 1: visible if [101] == 1\n"
              "      [101] is 0\n"
              "      does not hold\n"
              "    line 1: access read-only if [102] == 1\n"
              "      [102] is 1\n"
              "      holds: read-only\n"
              "    suggested: hidden (new)\n"
              "    suggested: access read-only\n"
              "  access: read-only\n"
              "  allowed: range={  [0, 100] }\n");
    EXPECT_EQ(explained("gain"), explained("Audio/Gain"));
    m_loaded.device().set_integer(101, 0, 1);
    EXPECT_EQ(explained("gain"),
              "Audio: shown\n"
              "Audio/Gain: shown\n"
              "  rules:\n"
              "    line 1: visible if [101] == 1\n"
              "      [101] is 1\n"
              "      holds: visible\n"
              "    line 1: access read-only if [102] == 1\n"
              "      [102] is 1\n"
              "      holds: read-only\n"
              "    suggested: visible (new)\n"
              "    suggested: access read-only\n"
              "  access: read-only\n"
              "  allowed: range={  [0, 100] }\n");
}

TEST_F(Menu_reports, OptionsAreToldWithWhatTheProductHas) {
    EXPECT_EQ(explained("Fix"),
              "Fix: hidden\n"
              "  option \"gps\": the product has none: does not hold\n"
              "  option \"slot5\": number 5 of 4: does not hold\n"
              "  allowed: range={  [0, 1] }\n");
    EXPECT_EQ(explained("Seat"),
              "Seat: hidden\n"
              "  the menu file hides it\n"
              "  option \"slot3\": number 3 of 4: holds\n"
              "  allowed: range={  [0, 1] }\n");
}

TEST_F(Menu_reports, ALinkIsExplainedWithItsToggleAndWhatItHouses) {
    EXPECT_EQ(explained("Home/Audio.Gain"),
              "Home/Audio.Gain: hidden\n"
              "  toggle: a=[101] == 0 && [102] == 1\n"
              "    [101] is 0\n"
              "    [102] is 1\n"
              "    on\n"
              "  links to Gain: hidden\n"
              "    rules:\n"
              "      line 1: visible if [101] == 1\n"
              "        [101] is 0\n"
              "        does not hold\n"
              "      line 1: access read-only if [102] == 1\n"
              "        [102] is 1\n"
              "        holds: read-only\n"
              "      suggested: hidden (new)\n"
              "      suggested: access read-only\n"
              "    access: read-only\n"
              "    allowed: range={  [0, 100] }\n");
}

TEST_F(Menu_reports, AnEntryThatIsNotThereIsTold) {
    EXPECT_EQ(error_of("Audio/Bass"), "the menu has no entry \"Audio/Bass\"");
}

TEST(Menu_tree, APathOfSeveralEntriesIsNone) {
    Simulated_menu loaded = simulated_text(
        menu_text(R"({"pid": 100, "type": "integer", "min": 0, "max": 9, "value": 3})",
                  R"({"type": "range", "name": "Gain", "pid": 100},
                                  {"type": "range", "name": "Gain", "pid": 100, "id": "two"})"));
    EXPECT_EQ(find_entry(*loaded.menu, "two").entry, loaded.menu->root().Get_child()->Get_next());
    try {
        find_entry(*loaded.menu, "Gain");
        FAIL();
    } catch (const Input_error& error) {
        EXPECT_STREQ(error.what(),
                     "several entries are \"Gain\": name the one that is meant by its id");
    }
}

}  // namespace
}  // namespace frontpanel
