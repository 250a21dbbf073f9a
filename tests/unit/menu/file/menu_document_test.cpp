// Templates, repetitions and includes of a menu file.
#include <filesystem>
#include <fstream>

#include <frontpanel_menu/entry_access.h>
#include "file/option_names.h"
#include "support/folder.h"
#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

constexpr const char* REPEATED_PARAMETER = R"({"name": "gain {n}", "pid": "{n*10+100}",
    "index": ["{n-1}"], "type": "integer", "min": 0, "max": 9, "value": "{n}",
    "repeat": {"counter": "n", "from": 1, "to": 3}})";

std::string with_items(const std::string& items, const std::string& templates = "{}") {
    return R"({"templates": )" + templates + R"(, "device": {"parameters": [)" +
           REPEATED_PARAMETER + R"(]}, "menu": {"name": "Main", "items": [)" + items + "]}}";
}

// The names of a menu's items, those of menus in it in parentheses behind.
std::string tree_of(Data_entry& menu) {
    std::string tree;
    for (Data_entry* child = neighbour(menu, Data_entry::OPERATION_CHILD); child != nullptr;
         child = neighbour(*child, Data_entry::OPERATION_NEXT)) {
        tree += (tree.empty() ? "" : ", ") + std::string(child->Get_name());
        tree += is_menu(*child) ? " (" + tree_of(*child) + ")" : "";
    }
    return tree;
}

std::string tree_of(const std::string& text) {
    return tree_of(simulated_text(text).menu->root());
}

TEST(MenuDocument, ARepetitionCountsInTextsAndNumbers) {
    Simulated_menu loaded =
        simulated_text(with_items(R"({"type": "range", "name": "Gain {n}", "pid": "{n*10+100}",
                                    "index": ["{n-1}"], "description": "{n}{n}, {n+10}",
                                    "repeat": {"counter": "n", "from": 1, "to": 3}})"));
    EXPECT_EQ(tree_of(loaded.menu->root()), "Gain 1, Gain 2, Gain 3");
    Data_entry& second = *loaded.menu->root().Get_child()->Get_next();
    EXPECT_EQ(second.Get_pid(), 120U);
    EXPECT_EQ(second.Get_index()->m_index[0], 1);
    EXPECT_STREQ(second.Get_description(), "22, 12");
    EXPECT_EQ(loaded.device().integer(130, 2), 3);
}

TEST(MenuDocument, RepetitionsStandInEachOther) {
    EXPECT_EQ(tree_of(with_items(R"({"type": "node", "name": "Card {c}", "items": [
                  {"type": "range", "name": "Gain {c}.{n}", "parameter": "gain {n}",
                   "repeat": {"counter": "n", "from": 1, "to": "{c}"}}],
                  "repeat": {"counter": "c", "from": 1, "to": 3}})")),
              "Card 1 (Gain 1.1), Card 2 (Gain 2.1, Gain 2.2), Card 3 (Gain 3.1, Gain 3.2, Gain "
              "3.3)");
}

TEST(MenuDocument, ATemplateStandsWhereverItIsUsed) {
    const std::string templates = R"({
        "input": {"arguments": ["n", "title"], "content": [
            {"type": "range", "name": "{title}", "parameter": "gain {n}"},
            {"type": "range", "name": "Copy {n+1}", "parameter": "gain {n}"}]},
        "card": {"arguments": ["c"], "content": [
            {"type": "node", "name": "Card {c}", "items": [
                {"template": "input", "arguments": {"n": "{i}", "title": "{c}-{i}"},
                 "repeat": {"counter": "i", "from": 1, "to": 2}}]}]}})";
    EXPECT_EQ(tree_of(with_items(R"({"template": "card", "arguments": {"c": "A"}},
                                    {"template": "input", "arguments": {"n": 3, "title": "X"}})",
                                 templates)),
              "Card A (A-1, Copy 2, A-2, Copy 3), X, Copy 4");
}

TEST(MenuDocument, BracesThatStandForNothingStayInRules) {
    EXPECT_EQ(error_of(with_items(R"({"type": "range", "name": "Gain {n}", "parameter": "gain {n}",
                                      "binding": "visible if {m} == {n}",
                                      "repeat": {"counter": "n", "from": 1, "to": 1}})"))
                  .find("is unknown here"),
              std::string::npos);
    EXPECT_EQ(tree_of(with_items(R"({"type": "range", "name": "{x} {", "parameter": "gain 1"})")),
              "{x} {");
}

// A pattern of numbered options, unless the braces name an argument or a counter.
TEST(MenuDocument, APatternOfOptionsIsWrittenAmongOtherCounters) {
    std::string text = with_items(
        R"_({"type": "range", "name": "Gain {s}", "parameter": "gain {s}",
            "options": ["slot{n}", "gps"],
            "ranges": [{"min": 0, "max": 4, "options": ["slot{n}"]}, {"min": 5, "max": 9}],
            "repeat": {"counter": "s", "from": 1, "to": 2}},
           {"type": "range", "name": "Last {n}", "parameter": "gain {n}", "options": ["slot{n}"],
            "repeat": {"counter": "n", "from": 3, "to": 3}})_");
    text.insert(1, R"("options": {"gps": 0, "slot{n}": 8}, )");
    EXPECT_EQ(error_of(text), "");
    const Simulated_menu loaded = simulated_text(text);
    EXPECT_TRUE(loaded.warnings.empty());
    Option_names names;
    names.declare("slot{n}");
    const auto options_of = [&loaded](int item) {
        Data_entry* entry = loaded.menu->root().Get_child();
        for (; item > 0; --item) {
            entry = entry->Get_next();
        }
        return entry->Get_options();
    };
    EXPECT_EQ(options_of(0).at(0), names.library_name("slot{n}"));
    EXPECT_EQ(options_of(1).at(0), names.library_name("slot{n}"));
    EXPECT_EQ(options_of(2).at(0), names.library_name("slot3"));
    EXPECT_NE(error_of(with_items(R"({"type": "range", "name": "Gain", "parameter": "gain {s}",
                                      "options": ["slot{m}"],
                                      "repeat": {"counter": "s", "from": 1, "to": 1}})"))
                  .find("\"{m}\" is unknown here"),
              std::string::npos);
}

TEST(MenuDocument, AnErrorNamesPlaceCopyAndExpectation) {
    const std::string input = R"({"input": {"arguments": ["n"], "content": [
        {"type": "range", "name": "Gain {n}", "parameter": "gain {n}"}]}})";
    const Error_case CASES[] = {
        {with_items(R"({"template": "input", "arguments": {"n": 3}},
                       {"template": "input", "arguments": {"n": 4}})",
                    input),
         "menu.json: /templates/input/content/0/parameter: the device has no parameter \"gain 4\" "
         "(in \"input\" with n = 4)"},
        {with_items(R"({"template": "output"})", input),
         "menu.json: /menu/items/0/template: there is no template \"output\""},
        {with_items(R"({"template": "input"})", input),
         "menu.json: /menu/items/0: expected a member \"n\""},
        {with_items(R"({"type": "range", "name": "G", "parameter": "gain 1"},
                       {"template": "input", "arguments": {"n": true, "m": 1}, "name": "G"})",
                    input),
         "menu.json: /menu/items/1/arguments/n: expected a whole number or a text\n"
         "menu.json: /menu/items/1/arguments/m@: unknown member \"m\"\n"
         "menu.json: /menu/items/1/name@: unknown member \"name\""},
        {with_items(R"({"type": "range", "name": "G{m}", "parameter": "gain {n}",
                        "repeat": {"counter": "n", "from": 1, "to": 1}})"),
         "menu.json: /menu/items/0/name: \"{m}\" is unknown here (n = 1)"},
        {with_items(R"({"type": "range", "name": "G", "parameter": "gain 1"},
                       {"type": "range", "name": "G", "parameter": "gain 1",
                        "repeat": {"counter": "n", "from": 1, "to": 1001}},
                       {"type": "range", "name": "G", "parameter": "gain 1",
                        "repeat": {"counter": "1", "from": 1, "to": 1}},
                       {"type": "node", "name": "N", "items": [
                           {"type": "range", "name": "G", "parameter": "gain 1",
                            "repeat": {"counter": "n", "from": 1, "to": 1}}],
                        "repeat": {"counter": "n", "from": 1, "to": 1}})"),
         "menu.json: /menu/items/1/repeat/to: expected a whole number from 1 to 1000, found 1001\n"
         "menu.json: /menu/items/2/repeat/counter: expected a name of letters, digits and '_'\n"
         "menu.json: /menu/items/3/items/0/repeat/counter: \"n\" is already in use here (n "
         "= 1)"},
        {with_items(R"({"template": "a", "arguments": {"t": "x"}})",
                    R"({"a": {"arguments": ["t"], "content": [
                        {"type": "range", "name": "{t*2}", "parameter": "gain 1"}]}})"),
         "menu.json: /templates/a/content/0/name: \"t\" is not a whole number here (in \"a\" with t = "
         "x)"},
        {with_items(R"({"type": "range", "name": "G", "parameter": "gain 1"}, {"template": "a"})",
                    R"({"a": {"content": [{"template": "a"}]}})"),
         "menu.json: /templates/a/content/0/template: templates are used inside each other more "
         "than 16 deep"},
        {with_items(R"({"type": "range", "name": "G", "parameter": "gain 1"}, {"template": "a"})",
                    R"([{"a": {"content": []}}, {"a": {"content": []}}, 5, {"b": {"content": 1}},
                        {"c": {"arguments": ["1"], "content": [], "x": 1}}])"),
         "menu.json: /templates/1/a@: duplicate template \"a\"\n"
         "menu.json: /templates/2: expected an object, found a whole number\n"
         "menu.json: /templates/3/b/content: expected a list, found a whole number\n"
         "menu.json: /templates/4/c/arguments/0: expected a name of letters, digits and '_'\n"
         "menu.json: /templates/4/c/x@: unknown member \"x\""},
    };
    for (const Error_case& expected : CASES) {
        EXPECT_EQ(error_of(expected.text), placed(expected.text, expected.error)) << expected.text;
    }
}

// A template with argument n, whose one item is named by `name`.
std::string named_by_number(const std::string& number, const std::string& name) {
    return with_items(R"({"template": "a", "arguments": {"n": )" + number + "}}",
                      R"({"a": {"arguments": ["n"], "content": [{"type": "range", "name": ")" +
                          name + R"(", "parameter": "gain 1"}]}})");
}

TEST(MenuDocument, ACalculatedNumberIsOf64Bits) {
    EXPECT_EQ(tree_of(named_by_number("9223372036", "{n*1000000000+854775807}")),
              "9223372036854775807");
    EXPECT_EQ(tree_of(named_by_number("-9223372036854775807", "{n-1}")), "-9223372036854775808");
    const std::string place = "menu.json: /templates/a/content/0/name: the number of ";
    const struct {
        std::string number;
        std::string name;
        std::string error;
    } CASES[] = {
        {"9223372036854775807", "{n*999999999}",
         "\"{n*999999999}\" is too large, with n = 9223372036854775807"},
        {"9223372036854775807", "{n+1}", "\"{n+1}\" is too large, with n = 9223372036854775807"},
        {"-2", "{n*4611686018427387904-1}",
         "\"{n*4611686018427387904-1}\" is too large, with n = -2"},
        {"1", "{n*99999999999999999999}", "\"{n*99999999999999999999}\" is too large, with n = 1"},
    };
    for (const auto& wrong : CASES) {
        const std::string text = named_by_number(wrong.number, wrong.name);
        EXPECT_EQ(error_of(text),
                  placed(text, place + wrong.error + " (in \"a\" with n = " + wrong.number + ")"));
    }
}

TEST(MenuDocument, ATextThatGrowsTooLongIsRefusedInItsPlace) {
    const std::string templates = R"({"a": {"arguments": ["x"], "content": [
        {"type": "range", "name": "G", "description": "{x}{x}{x}{x}", "parameter": "gain 1"}]}})";
    const auto text_with = [&templates](size_t size) {
        return with_items(
            R"({"template": "a", "arguments": {"x": ")" + std::string(size, 'x') + "\"}}",
            templates);
    };
    EXPECT_EQ(error_of(text_with(16384)), "");
    const std::string text = text_with(16385);
    EXPECT_EQ(error_of(text),
              placed(text,
                     "menu.json: /templates/a/content/0/description: the text grows beyond "
                     "65536 bytes here (in \"a\" with x = " +
                         std::string(184, 'x') + "...)"));
}

TEST(MenuDocument, ErrorsBeforeTheOneThatEndsTheCheckAreReported) {
    const std::string items = R"({"include": 5, "template": "b"}, {"type": "node", "items": [
        {"type": "range", "name": "G", "description": ")" +
                              std::string(20000, 'x') + R"(", "parameter": "gain 1",
        "repeat": {"counter": "n", "from": 1, "to": 1000}}], "name": "N"})";
    const std::string text = with_items(items);
    EXPECT_EQ(error_of(text),
              placed(text,
                     "menu.json: /menu/items/0/include@: unknown member \"include\"\n"
                     "menu.json: /menu/items/0/template: there is no template \"b\"\n"
                     "menu.json: /menu/items/1/items/0/description: the texts of the menu "
                     "grow beyond 16777216 bytes here (n = 838)"));
}

// Each use is compared with each name: the most of both would take minutes.
TEST(MenuDocument, ThousandsOfMistakesInTemplateNamesGetNoProposals) {
    std::string templates = "{";
    std::string items;
    for (int i = 10000; i < 11000; ++i) {
        const std::string name = std::string(50, 't') + std::to_string(i);
        templates += (i == 10000 ? "\"" : ", \"") + name + R"(": {"content": []})";
        items += (i == 10000 ? "" : ", ") + (R"({"template": ")" + name) + R"(x"})";
    }
    const std::string errors = error_of(with_items(items, templates + "}"));
    size_t proposals = 0;
    for (size_t at = errors.find("did you mean"); at != std::string::npos;
         at = errors.find("did you mean", at + 1)) {
        ++proposals;
    }
    // Of 1,000 names of 55 x 56 pairs of letters each.
    EXPECT_EQ(proposals, 20'000'000U / (1000 * (55 * 56 + 1)));
}

TEST(MenuDocument, AnUnusedTemplateIsWarnedOf) {
    const std::string text = with_items(R"({"type": "range", "name": "G", "parameter": "gain 1"})",
                                        R"({"spare": {"content": []}})");
    EXPECT_EQ(simulated_text(text).warnings,
              (Lines{placed(text,
                            "menu.json: /templates/spare@: warning: template \"spare\" is not "
                            "used, so its content is not checked")}));
}

TEST(MenuDocument, AMenuThatGrowsBeyondAllBoundsIsRefusedAtOnce) {
    std::string item = R"({"type": "range", "name": "G", "parameter": "gain 1"})";
    for (const char* const counter : {"a", "b", "c", "d"}) {
        item = R"({"type": "node", "name": "N", "items": [)" + item +
               R"(], "repeat": {"counter": ")" + counter + R"(", "from": 1, "to": 1000}})";
    }
    EXPECT_NE(error_of(with_items(item)).find("the menu grows beyond 500000 values here"),
              std::string::npos);
    const std::string doubling = R"({"a0": {"content": []})" + [] {
        std::string more;
        for (int i = 1; i < 16; ++i) {
            const std::string use = R"({"template": "a)" + std::to_string(i - 1) +
                                    R"(", "repeat": {"counter": "n", "from": 1, "to": 1000}})";
            more += R"(, "a)" + std::to_string(i) + R"(": {"content": [)" + use + "]}";
        }
        return more + "}";
    }();
    EXPECT_NE(error_of(with_items(R"({"template": "a15"})", doubling))
                  .find("the menu grows beyond 500000 values here"),
              std::string::npos);
}

class Menu_files : public testing::Test {
protected:
    void write(const std::string& name, const std::string& text) {
        std::ofstream(m_folder.file(name)) << text;
    }
    // All that is wrong with the menu, with the folder left out.
    std::string errors() {
        std::string all;
        try {
            m_loaded.menu.reset();
            m_loaded = simulated_file(m_folder.file("menu.json"));
        } catch (const Input_errors& errors) {
            for (const std::string& line : errors.lines()) {
                all += (all.empty() ? "" : "\n") + line;
            }
        }
        const std::string folder = m_folder.file("");
        for (size_t at = all.find(folder); at != std::string::npos; at = all.find(folder)) {
            all.erase(at, folder.size());
        }
        return all;
    }
    support::Folder m_folder;
    Simulated_menu m_loaded;
};

TEST_F(Menu_files, AreReadFromTheFolderOfTheFileThatIncludesThem) {
    std::filesystem::create_directory(m_folder.file("parts"));
    write("menu.json", R"({"templates": [{"include": "parts/templates.json"}],
        "device": {"include": "parts/device.json"},
        "menu": {"name": "Main", "items": [
            {"include": "parts/audio.json", "repeat": {"counter": "n", "from": 1, "to": 2}},
            {"include": "parts/one.json"}]}})");
    write("parts/templates.json", R"({"gain": {"arguments": ["n"], "content": [
        {"type": "range", "name": "Gain {n}", "parameter": "gain {n}"}]}})");
    write("parts/device.json", std::string(R"({"parameters": [)") + REPEATED_PARAMETER + "]}");
    write("parts/audio.json",
          R"([{"template": "gain", "arguments": {"n": "{n}"}}, {"include": "one.json"}])");
    write("parts/one.json", R"({"type": "range", "name": "One", "parameter": "gain 1"})");
    EXPECT_EQ(errors(), "");
    EXPECT_EQ(tree_of(m_loaded.menu->root()), "Gain 1, One, Gain 2, One, One");
}

TEST_F(Menu_files, TellTheirErrorsInTheirOwnPlaces) {
    write("menu.json", R"({"device": {"include": "device.json"},
 "menu": {"name": "Main", "items": [
  {"include": "items.json"}, {"include": "absent.json"}, {"include": "."},
  {"include": "menu.json"}, {"include": "broken.json", "name": "B"},
  {"include": "broken.json"},
  {"type": "range", "name": "H", "parameter": "gain 9"}]}})");
    write("device.json", std::string(R"({"parameters": [)") + REPEATED_PARAMETER + R"(], "x": 1})");
    write("items.json",
          "[\n {\"type\": \"range\", \"name\": \"G\", \"parameter\": \"gain 8\"},\n"
          " {\"include\": \"items.json\"}]");
    write("broken.json", "[1,\n 2");
    EXPECT_EQ(errors(),
              "menu.json:3:42: there is no file \"absent.json\"\n"
              "menu.json:3:70: there is no file \"\"\n"
              "menu.json:4:15: \"menu.json\" includes itself\n"
              "menu.json:4:56: unknown member \"name\"\n"
              "menu.json:6:47: the device has no parameter \"gain 9\"\n"
              "device.json:3:55: unknown member \"x\"\n"
              "items.json:2:46: the device has no parameter \"gain 8\"\n"
              "items.json:3:14: \"items.json\" includes itself\n"
              "broken.json:2:3: Missing a comma or ']' after an array element.");
}

}  // namespace
}  // namespace frontpanel
