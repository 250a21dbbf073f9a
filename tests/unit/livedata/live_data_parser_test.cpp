#include <frontpanel_data/live_data_parser.h>

#include <sys/stat.h>

#include <climits>
#include <cstring>
#include <memory>
#include <type_traits>

#include "livedata_support.h"
#include "support/line_gates.h"

namespace {

using livedata_test::LIVE_DATA_MASK;
using livedata_test::output_of;
using livedata_test::take_system_log;
using livedata_test::Temporary_file;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using List = LiveJSDataParser::displaylistStruct;
using Texts = std::vector<std::string>;

const char* const LEAD = "[live_data_parser.cpp]";

Texts texts_of(const List* list) {
    Texts texts;
    for (int i = 0; i < list->size; ++i) {
        texts.push_back(list->dlist[i] != nullptr ? list->dlist[i] : "<null>");
    }
    return texts;
}

// A document on disk and a parser for it.
class Parsed {
public:
    Parsed(const std::string& document, int type)
        : m_file(document), parser(m_file.path(), type, 0) {
        take_system_log();
    }
    std::string parsing() const { return "Parsing JSON file (\"" + m_file.name() + "\")...\n"; }
    std::string name() const { return m_file.name(); }

private:
    Temporary_file m_file;

public:
    LiveJSDataParser parser;
};

class Combo_box : public Parsed {
public:
    explicit Combo_box(const std::string& document)
        : Parsed(document, LiveJSDataParser::COMBOBOX) {}
    std::string failure(const std::string& reason) const {
        return std::string(LEAD) +
               "[parseComboBox][#] ***Failed to parse combobox LiveJSData*** jsonfile[" + name() +
               "] err_message[" + reason + "]\n";
    }
};

class Tree : public Parsed {
public:
    explicit Tree(const std::string& document) : Parsed(document, LiveJSDataParser::TREE) {}
    Texts lines() {
        const List* const list = parser.parseTreeAsList();
        return list != nullptr ? texts_of(list) : Texts{"<failed>"};
    }
    std::string failure(const std::string& operation, const std::string& reason) const {
        return std::string(LEAD) + "[" + operation +
               "][#] ***Failed to parse tree LiveJSData: jsonfilenamep[" + name() +
               "] err_message[" + reason + "]***\n\n";
    }
};

const char* const TWO_OPTIONS =
    R"({"state":{"value":"1"},"options":[{"value":"a","label":"First"},{"value":"b","label":"Second"}]})";

// Nested objects, `levels` below the root.
std::string nested_tree(int levels) {
    std::string text;
    for (int i = 0; i < levels; ++i) {
        text += R"({"label":"x","children":[)";
    }
    text += R"({"label":"y"})";
    for (int i = 0; i < levels; ++i) {
        text += "]}";
    }
    return text;
}

// Construction

TEST(Live_data_parser, RemembersWhatItWasMadeFor) {
    char name[] = "/tmp/document";
    LiveJSDataParser parser(name, LiveJSDataParser::TREE, 0);
    EXPECT_EQ(parser.getFileName(), name);
    EXPECT_EQ(parser.getJsonType(), 1);
    EXPECT_EQ(parser.getPanelType(), 0);
}

TEST(Live_data_parser, ReportsANullFileNameAndStaysEmpty) {
    EXPECT_EQ(output_of(LIVE_DATA_MASK,
                        [] {
                            LiveJSDataParser parser(nullptr, 0, 0);
                            EXPECT_EQ(parser.getFileName(), nullptr);
                        }),
              "[live_data_parser.cpp][LiveJSDataParser][#] Invalid Filename[(null)] \n");
}

TEST(Live_data_parser, ReportsUnsupportedTypesAndStaysEmpty) {
    const int cases[][2] = {{2, 0}, {7, 0}, {0, 1}, {1, -1}};
    for (const auto& types : cases) {
        char name[] = "/tmp/document";
        const std::string out = output_of(LIVE_DATA_MASK, [&] {
            LiveJSDataParser parser(name, types[0], types[1]);
            EXPECT_EQ(parser.getFileName(), nullptr);
        });
        EXPECT_EQ(out, "[live_data_parser.cpp][LiveJSDataParser][#] Unsupported Received[" +
                           std::to_string(types[0]) + "] or Respose[" + std::to_string(types[1]) +
                           "] format for file[/tmp/document]\n");
    }
}

TEST(Live_data_parser, AnEmptyParserFailsToParse) {
    LiveJSDataParser parser(nullptr, LiveJSDataParser::COMBOBOX, 0);
    EXPECT_EQ(parser.parseComboBox(), nullptr);
    EXPECT_EQ(parser.parseTreeAsList(), nullptr);
    EXPECT_EQ(parser.parseTree(), -1);
    parser.printdList();
}

TEST(Live_data_parser, IsSilentUnlessItsMaskIsSet) {
    Combo_box box("[]");
    EXPECT_EQ(output_of(0xfefffffe & ~0xc000u, [&] { box.parser.parseComboBox(); }), "");
    EXPECT_EQ(output_of(LIVE_DATA_MASK | 0x4000, [&] { box.parser.parseComboBox(); }), "");
    EXPECT_NE(output_of(LIVE_DATA_MASK | 0xc000, [&] { box.parser.parseComboBox(); }), "");
    EXPECT_NE(output_of(0x1, [&] { box.parser.parseComboBox(); }), "");
    EXPECT_EQ(take_system_log().size(), 4u);
}

template <class Action>
void expect_live_data_lines(const Texts& lines, Action&& action) {
    support::expect_line_gates(lines, 0x1000001, support::Gate::LEAF, action);
    take_system_log();
}

TEST(Live_data_parser, ItsLinesAreInTheLiveDataCategoryWithTheLeafGate) {
    char name[] = "/nonexistent/document";
    expect_live_data_lines({"Invalid Filename["}, [] { LiveJSDataParser(nullptr, 0, 0); });
    expect_live_data_lines({"Unsupported Received[2]"}, [&] { LiveJSDataParser(name, 2, 0); });
    LiveJSDataParser missing(name, LiveJSDataParser::COMBOBOX, 0);
    expect_live_data_lines({"Parsing JSON file (", "Could not open JSON file",
                            "***Failed to parse combobox LiveJSData***"},
                           [&] { missing.parseComboBox(); });
    expect_live_data_lines({"jsonType is not TREE jsonType[0]"}, [&] { missing.parseTree(); });

    Combo_box without_members("{}");
    expect_live_data_lines({"state not found in combobox", "options not found in combobox"},
                           [&] { without_members.parser.parseComboBox(); });
    Combo_box odd_members(R"({"state":{},"options":[{}]})");
    expect_live_data_lines({"state value not found", "value/label not found inside option item"},
                           [&] { odd_members.parser.parseComboBox(); });
    Combo_box whole(TWO_OPTIONS);
    expect_live_data_lines({"cbnode->state[1]", "state:[1]\n", "Options:", "id: [Second]\n"}, [&] {
        whole.parser.parseComboBox();
        whole.parser.printdList();
    });

    Tree unknown_member(R"({"colour":1,"children":5})");
    expect_live_data_lines({"Unknown field[colour]", "***Failed to parse tree LiveJSData"},
                           [&] { unknown_member.parser.parseTree(); });
    expect_live_data_lines({"jsonType is not Combobox jsonType[1]"},
                           [&] { unknown_member.parser.parseComboBox(); });
    Tree broken("{");
    expect_live_data_lines({"Could not parse JSON file"}, [&] { broken.parser.parseTree(); });
}

// Reading a file

TEST(Live_data_parser, AMissingFileIsReportedEverywhere) {
    char name[] = "/nonexistent/document";
    LiveJSDataParser parser(name, 0, 0);
    take_system_log();
    const std::string out =
        output_of(LIVE_DATA_MASK, [&] { EXPECT_EQ(parser.ParseJSON(name), nullptr); });
    EXPECT_EQ(out,
              "Parsing JSON file (\"/nonexistent/document\")...\n"
              "Could not open JSON file \"/nonexistent/document\"\n");
    EXPECT_STREQ(message, "Could not open JSON file \"/nonexistent/document\"\n");
    EXPECT_THAT(take_system_log(),
                ElementsAre("3 [live_data_parser.cpp][ParseJSON][#] Could not open JSON file "
                            "\"/nonexistent/document\"\n"));
}

TEST(Live_data_parser, ABrokenFileIsReportedEverywhere) {
    Combo_box box("{\"state\":");
    const std::string out = output_of(LIVE_DATA_MASK, [&] {
        EXPECT_EQ(box.parser.ParseJSON(box.parser.getFileName()), nullptr);
    });
    const std::string text = "Could not parse JSON file \"" + box.name() + "\"\n";
    EXPECT_EQ(out, box.parsing() + text);
    EXPECT_EQ(message, text);
    EXPECT_THAT(take_system_log(), ElementsAre("3 " + text));
}

TEST(Live_data_parser, AGoodFileIsHandedToTheCallerToFree) {
    Combo_box box(TWO_OPTIONS);
    rapidjson::Document* document = nullptr;
    EXPECT_EQ(output_of(LIVE_DATA_MASK,
                        [&] { document = box.parser.ParseJSON(box.parser.getFileName()); }),
              box.parsing());
    ASSERT_NE(document, nullptr);
    EXPECT_TRUE(document->HasMember("options"));
    box.parser.FreeDocument(&document);
    EXPECT_EQ(document, nullptr);
    box.parser.FreeDocument(&document);
    box.parser.FreeDocument(nullptr);
}

TEST(Live_data_parser, ADocumentNeedsItsFileNoLonger) {
    const std::string text(100000, 'x');
    auto box = std::make_unique<Combo_box>("{\"first\":\"" + text + "\",\"second\":\"a\\tb\"}");
    rapidjson::Document* document = box->parser.ParseJSON(box->name().c_str());
    box.reset();
    ASSERT_NE(document, nullptr);
    EXPECT_EQ((*document)["first"].GetString(), text);
    EXPECT_STREQ((*document)["second"].GetString(), "a\tb");
    char name[] = "unused";
    LiveJSDataParser(name, LiveJSDataParser::COMBOBOX, 0).FreeDocument(&document);
}

// Nothing would bound what comes out of it.
TEST(Live_data_parser, APipeIsNoDocument) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    ASSERT_EQ(write(ends[1], "{}", 2), 2);
    close(ends[1]);
    std::string name = "/proc/self/fd/" + std::to_string(ends[0]);
    LiveJSDataParser parser(name.data(), LiveJSDataParser::COMBOBOX, 0);
    EXPECT_EQ(parser.parseComboBox(), nullptr);
    close(ends[0]);
}

// Without a writer, opening it to read would wait for one.
TEST(Live_data_parser, AFifoIsNoDocumentAndIsNotWaitedFor) {
    std::string name = ::testing::TempDir() + "livedata-fifo-" + std::to_string(getpid());
    ASSERT_EQ(mkfifo(name.c_str(), 0600), 0);
    LiveJSDataParser parser(name.data(), LiveJSDataParser::COMBOBOX, 0);
    EXPECT_EQ(parser.ParseJSON(name.c_str()), nullptr);
    EXPECT_EQ(message, "Could not parse JSON file \"" + name + "\"\n");
    EXPECT_EQ(parser.parseComboBox(), nullptr);
    unlink(name.c_str());
}

TEST(Live_data_parser, LeavesNoFileOpen) {
    const int before = dup(0);
    close(before);
    Combo_box box("{}");
    box.parser.parseComboBox();
    char missing[] = "/nonexistent";
    box.parser.ParseJSON(missing);
    const int after = dup(0);
    close(after);
    EXPECT_EQ(after, before);
}

TEST(Live_data_parser, TheMessageIsCutToItsBuffer) {
    std::string name(300, 'n');
    LiveJSDataParser parser(name.data(), 0, 0);
    EXPECT_EQ(parser.ParseJSON(name.data()), nullptr);
    EXPECT_EQ(message, ("Could not open JSON file \"" + name).substr(0, 149));
}

TEST(Live_data_parser, ADirectoryIsNoDocument) {
    std::string name = ::testing::TempDir();
    LiveJSDataParser parser(name.data(), 0, 0);
    EXPECT_EQ(parser.parseComboBox(), nullptr);
}

// Combo boxes

TEST(Live_data_combo_box, YieldsTheStateAndTheLabels) {
    Combo_box box(TWO_OPTIONS);
    const List* list = nullptr;
    const std::string out = output_of(LIVE_DATA_MASK, [&] { list = box.parser.parseComboBox(); });
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->state, 1);
    EXPECT_THAT(texts_of(list), ElementsAre("First", "Second"));
    EXPECT_EQ(out, box.parsing() + LEAD + "[parseComboBox][#] cbnode->state[1]\n");
    EXPECT_THAT(take_system_log(), IsEmpty());
}

TEST(Live_data_combo_box, TakesItsMembersInAnyOrderAmongOthers) {
    Combo_box box(
        R"({"x":[{}],"options":[{"label":"A","more":1,"value":7}],"state":{"value":"0"}})");
    const List* const list = box.parser.parseComboBox();
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->state, 0);
    EXPECT_THAT(texts_of(list), ElementsAre("A"));
}

TEST(Live_data_combo_box, ReportsAMissingState) {
    Combo_box box(R"({"options":[{"value":"a","label":"First"}]})");
    const List* list = nullptr;
    const std::string out = output_of(LIVE_DATA_MASK, [&] { list = box.parser.parseComboBox(); });
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->state, -1);
    EXPECT_THAT(texts_of(list), ElementsAre("First"));
    EXPECT_EQ(out, box.parsing() + LEAD +
                       "[parseComboBox][#] state not found in combobox jsonfile[" + box.name() +
                       "]\n");
    EXPECT_THAT(take_system_log(), IsEmpty());
}

TEST(Live_data_combo_box, ReportsMissingOptions) {
    Combo_box box(R"({"state":{"value":"0"}})");
    const List* list = nullptr;
    const std::string out = output_of(LIVE_DATA_MASK, [&] { list = box.parser.parseComboBox(); });
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->state, 0);
    EXPECT_EQ(list->size, 0);
    EXPECT_EQ(list->dlist, nullptr);
    EXPECT_EQ(out, box.parsing() + LEAD + "[parseComboBox][#] cbnode->state[0]\n" + LEAD +
                       "[parseComboBox][#] options not found in combobox jsonfile[" + box.name() +
                       "]\n");
}

TEST(Live_data_combo_box, ReportsAStateWithoutAValue) {
    for (const char* state : {"{}", "5", "null", "\"1\"", "[]", R"({"Value":"1"})"}) {
        Combo_box box(R"({"options":[],"state":)" + std::string(state) + "}");
        const List* list = nullptr;
        const std::string out =
            output_of(LIVE_DATA_MASK, [&] { list = box.parser.parseComboBox(); });
        ASSERT_NE(list, nullptr) << state;
        EXPECT_EQ(list->state, -1) << state;
        EXPECT_EQ(out, box.parsing() + LEAD +
                           "[parseComboBox][#] state value not found in combobox jsonfile[" +
                           box.name() + "]\n")
            << state;
    }
}

TEST(Live_data_combo_box, SkipsOptionsThatLackAValueOrALabel) {
    Combo_box box(R"({"state":{"value":"0"},"options":[
        {"label":"no value"},{"value":"a","label":"kept"},{"value":"no label"},
        {"value":"a","label":5},{}]})");
    const List* list = nullptr;
    const std::string out = output_of(LIVE_DATA_MASK, [&] { list = box.parser.parseComboBox(); });
    ASSERT_NE(list, nullptr);
    EXPECT_THAT(texts_of(list), ElementsAre("<null>", "kept", "<null>", "<null>", "<null>"));
    const std::string line = std::string(LEAD) +
                             "[parseComboBox][#] value/label not found inside option item in "
                             "combobox jsonfile[" +
                             box.name() + "]\n";
    EXPECT_EQ(out, box.parsing() + LEAD + "[parseComboBox][#] cbnode->state[0]\n" + line + line +
                       line + line);
    EXPECT_EQ(take_system_log(), Texts(4, "3 " + line));
}

TEST(Live_data_combo_box, ReadsTheStateAsADecimalNumber) {
    const struct {
        const char* text;
        int state;
    } cases[] = {{"0", 0},
                 {"007", 7},
                 {"12", 12},
                 {" 3", 3},
                 {"4x", 4},
                 {"0x10", 0},
                 {"", 0},
                 {"-1", -1},
                 {"2147483648", INT_MAX},
                 {"4294967296", INT_MAX},
                 {"99999999999999999999999", INT_MAX},
                 {"-99999999999999999999999", INT_MIN}};
    for (const auto& each : cases) {
        Combo_box box(R"({"options":[],"state":{"value":")" + std::string(each.text) + "\"}}");
        const List* const list = box.parser.parseComboBox();
        ASSERT_NE(list, nullptr) << each.text;
        EXPECT_EQ(list->state, each.state) << each.text;
    }
}

TEST(Live_data_combo_box, RefusesAnotherType) {
    Tree tree(TWO_OPTIONS);
    EXPECT_EQ(output_of(LIVE_DATA_MASK, [&] { EXPECT_EQ(tree.parser.parseComboBox(), nullptr); }),
              "[live_data_parser.cpp][parseComboBox][#] jsonType is not Combobox jsonType[1]\n");
    EXPECT_THAT(take_system_log(), IsEmpty());
}

TEST(Live_data_combo_box, ADocumentOfAnotherShapeIsAFailure) {
    for (const char* document : {"[]", "5", "\"text\"", "null", R"({"options":{}})",
                                 R"({"options":"x"})", R"({"options":null})"}) {
        Combo_box box(document);
        const std::string out = output_of(
            LIVE_DATA_MASK, [&] { EXPECT_EQ(box.parser.parseComboBox(), nullptr) << document; });
        const std::string line = box.failure("Exception Nr.[#]");
        EXPECT_EQ(out, box.parsing() + line) << document;
        EXPECT_THAT(take_system_log(), ElementsAre("3 " + line)) << document;
    }
}

TEST(Live_data_combo_box, ABrokenDocumentNamesTheParsersReason) {
    Combo_box box("");
    const std::string out =
        output_of(LIVE_DATA_MASK, [&] { EXPECT_EQ(box.parser.parseComboBox(), nullptr); });
    const std::string text = "Could not parse JSON file \"" + box.name() + "\"\n";
    const std::string line = box.failure("The document is empty.");
    EXPECT_EQ(out, box.parsing() + text + line);
    EXPECT_THAT(take_system_log(), ElementsAre("3 " + text, "3 " + line));
    EXPECT_EQ(livedata_test::masked(message),
              "Could not create radpidJSON document [function=parseComboBox][line=#]\n");
}

TEST(Live_data_combo_box, BrokenTextsAreRefused) {
    const std::string whole = TWO_OPTIONS;
    for (std::size_t length = 0; length < whole.size(); ++length) {
        Combo_box box(whole.substr(0, length));
        EXPECT_EQ(box.parser.parseComboBox(), nullptr) << length;
    }
    for (const char* document : {"{}x", "{} {}", "{\"state\":1e999}", "{'a':1}", "{\"a\":1,}",
                                 "{\"a\":\"\\ud800\"}", "\xef\xbb\xbf"}) {
        Combo_box box(document);
        EXPECT_EQ(box.parser.parseComboBox(), nullptr) << document;
    }
}

TEST(Live_data_combo_box, AZeroByteDoesNotEndADocument) {
    Combo_box box(std::string(TWO_OPTIONS) + std::string("\0{", 2));
    EXPECT_EQ(box.parser.parseComboBox(), nullptr);
    Combo_box inside(std::string("{\"a\0\":1}", 8));
    EXPECT_EQ(inside.parser.parseComboBox(), nullptr);
    Combo_box last(std::string(TWO_OPTIONS) + '\0');
    EXPECT_EQ(last.parser.parseComboBox(), nullptr);
    Combo_box only(std::string(1, '\0'));
    EXPECT_EQ(only.parser.parseComboBox(), nullptr);
}

TEST(Live_data_combo_box, AWrittenZeroEndsALabel) {
    Combo_box box(R"({"options":[{"value":"a","label":"ab\u0000cd"}],"stat\u0000e":1})");
    const List* const list = box.parser.parseComboBox();
    ASSERT_NE(list, nullptr);
    EXPECT_THAT(texts_of(list), ElementsAre("ab"));
}

TEST(Live_data_combo_box, LabelsKeepTheirBytes) {
    Combo_box box("{\"options\":[{\"value\":\"a\",\"label\":\"\xff\xc3(\\u00e9\"}]}");
    const List* const list = box.parser.parseComboBox();
    ASSERT_NE(list, nullptr);
    EXPECT_THAT(texts_of(list), ElementsAre("\xff\xc3(\xc3\xa9"));
}

TEST(Live_data_combo_box, OfTwoListsTheLastHolds) {
    Combo_box box(R"({"state":{"value":"0"},"options":[{"value":"a","label":"old"}],
                      "state":{"value":"1"},"options":[{"value":"a","label":"new"}]})");
    const List* const list = box.parser.parseComboBox();
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->state, 1);
    EXPECT_THAT(texts_of(list), ElementsAre("new"));
}

TEST(Live_data_combo_box, ReadsAMillionOptions) {
    std::string document = R"({"state":{"value":"999999"},"options":[)";
    for (int i = 0; i < 1000000; ++i) {
        document += R"({"value":"","label":"x"},)";
    }
    document.back() = ']';
    Combo_box box(document + "}");
    const List* const list = box.parser.parseComboBox();
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->size, 1000000);
    EXPECT_EQ(list->state, 999999);
}

TEST(Live_data_combo_box, ReadsALabelOfAMegabyte) {
    const std::string label(1 << 20, 'l');
    Combo_box box(R"({"options":[{"value":"","label":")" + label + "\"}]}");
    const List* const list = box.parser.parseComboBox();
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->dlist[0], label);
}

TEST(Live_data_combo_box, DeepNestingNeedsNoStack) {
    const int levels = 100000;
    Combo_box deep(R"({"options":[],"x":)" + std::string(levels, '[') + std::string(levels, ']') +
                   "}");
    EXPECT_NE(deep.parser.parseComboBox(), nullptr);
    Combo_box open(std::string(levels, '['));
    EXPECT_EQ(open.parser.parseComboBox(), nullptr);
}

TEST(Live_data_combo_box, ADocumentOverTheLimitIsRefusedUnread) {
    Combo_box box("{}");
    ASSERT_EQ(truncate(box.name().c_str(), 64 * 1024 * 1024 + 1), 0);
    const std::string out =
        output_of(LIVE_DATA_MASK, [&] { EXPECT_EQ(box.parser.parseComboBox(), nullptr); });
    EXPECT_EQ(out, box.parsing() + "Could not parse JSON file \"" + box.name() + "\"\n" +
                       box.failure("The document is too large."));
}

// Each value takes many times the memory that it takes in the file.
TEST(Live_data_combo_box, ADocumentOfTooManyValuesIsRefusedUnparsed) {
    const std::size_t most = 6 * 1024 * 1024;
    for (const char* piece : {",0", ":0", "[", "{"}) {
        std::string document;
        for (std::size_t i = 0; i <= most; ++i) {
            document += piece;
        }
        Combo_box box(document);
        const std::string out =
            output_of(LIVE_DATA_MASK, [&] { EXPECT_EQ(box.parser.parseComboBox(), nullptr); });
        EXPECT_EQ(out, box.parsing() + "Could not parse JSON file \"" + box.name() + "\"\n" +
                           box.failure("The document is too large."))
            << piece;
    }
    Combo_box long_label(R"({"options":[{"value":"","label":")" + std::string(most + 100, 'x') +
                         "\"}]}");
    EXPECT_NE(long_label.parser.parseComboBox(), nullptr);
}

TEST(Live_data_combo_box, ASecondParseStartsAfresh) {
    Combo_box box(TWO_OPTIONS);
    const List* const first = box.parser.parseComboBox();
    const List* const second = box.parser.parseComboBox();
    EXPECT_EQ(first, second);
    EXPECT_THAT(texts_of(second), ElementsAre("First", "Second"));
    ASSERT_EQ(truncate(box.name().c_str(), 5), 0);
    EXPECT_EQ(box.parser.parseComboBox(), nullptr);
    EXPECT_EQ(second->size, 0);
}

TEST(Live_data_combo_box, TextsThatWereTakenOutliveTheParser) {
    auto box = std::make_unique<Combo_box>(TWO_OPTIONS);
    List* const list = box->parser.parseComboBox();
    char** const texts = list->dlist;
    list->dlist = nullptr;
    list->size = 0;
    box.reset();
    EXPECT_STREQ(texts[0], "First");
    delete[] texts[0];
    delete[] texts[1];
    delete[] texts;
}

TEST(Live_data_combo_box, AParserCanGoOnAfterItsListWasDeleted) {
    Combo_box box(TWO_OPTIONS);
    box.parser.parseComboBox();
    box.parser.delete_dList();
    box.parser.delete_dList();
    EXPECT_EQ(output_of(LIVE_DATA_MASK, [&] { box.parser.printdList(); }), "");
    ASSERT_NE(box.parser.parseComboBox(), nullptr);
}

TEST(Live_data_combo_box, PrintsItsListWithTheFirstOptionBehindTheHeading) {
    Combo_box box(R"({"state":{"value":"1"},"options":[{"value":"","label":"A"},{}]})");
    box.parser.parseComboBox();
    EXPECT_EQ(output_of(LIVE_DATA_MASK, [&] { box.parser.printdList(); }),
              "state:[1]\nOptions:id: [A]\nid: [(null)]\n");
    EXPECT_EQ(output_of(0, [&] { box.parser.printdList(); }), "");
}

TEST(Live_data_combo_box_death, AnOptionThatIsNoObjectAborts) {
    for (const char* element : {"5", "\"x\"", "null", "[]"}) {
        Combo_box box(R"({"options":[{"value":"","label":""},)" + std::string(element) + "]}");
        EXPECT_DEATH(box.parser.parseComboBox(), "Assertion `a\\[i\\]\\.IsObject\\(\\)' failed");
    }
}

TEST(Live_data_combo_box_death, AStateValueThatIsNoTextAborts) {
    for (const char* value : {"1", "null", "{}", "[\"1\"]"}) {
        Combo_box box(R"({"state":{"value":)" + std::string(value) + "}}");
        EXPECT_DEATH(box.parser.parseComboBox(),
                     "Assertion `itr->value\\[\"value\"\\]\\.IsString\\(\\)' failed");
    }
}

// Trees

TEST(Live_data_tree, MarksEachLineWithItsDepth) {
    Tree tree(R"({"label":"Top","children":[{"label":"Leaf"}]})");
    const List* list = nullptr;
    EXPECT_EQ(output_of(LIVE_DATA_MASK, [&] { list = tree.parser.parseTreeAsList(); }),
              tree.parsing());
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->state, 0);
    EXPECT_THAT(texts_of(list), ElementsAre("Top", "*Leaf"));
    EXPECT_THAT(take_system_log(), IsEmpty());
}

TEST(Live_data_tree, ListsEveryTextOfEveryNodeInDocumentOrder) {
    Tree tree(R"({"render":"r0","label":"l0","children":[
        {"children":[{"value":"v2"}],"type":"t1","label":"l1"},{"value":"v3"}],"value":"v0"})");
    EXPECT_THAT(tree.lines(), ElementsAre("r0", "l0", "**v2", "*t1", "*l1", "*v3", "v0"));
}

TEST(Live_data_tree, AnActionIsNotListed) {
    Tree tree(R"({"action":{"id":"i","type":"t","action_body":{"rule":"r","message":"m"}},
                  "label":"L"})");
    EXPECT_THAT(tree.lines(), ElementsAre("L"));
}

TEST(Live_data_tree, AnActionMayLackAnyOfItsTexts) {
    for (const char* const action :
         {"{}", R"({"id":5,"type":null})", R"({"id":"i","action_body":5})",
          R"({"action_body":"x"})", R"({"action_body":{"rule":[],"message":{}}})"}) {
        Tree tree(R"({"action":)" + std::string(action) + R"(,"label":"L"})");
        EXPECT_THAT(tree.lines(), ElementsAre("L")) << action;
    }
}

TEST(Live_data_tree, ATextIsCutToItsFieldStarsIncluded) {
    const std::string text(300, 'x');
    Tree tree(R"({"label":")" + text + R"(","children":[{"label":")" + text + "\"}]}");
    EXPECT_THAT(tree.lines(), ElementsAre(std::string(255, 'x'), "*" + std::string(254, 'x')));
}

TEST(Live_data_tree, AnUnknownMemberIsReportedAndSkipped) {
    Tree tree(R"({"colour":1,"label":"Top","value":7,"render":null})");
    const List* list = nullptr;
    const std::string out =
        output_of(LIVE_DATA_MASK, [&] { list = tree.parser.parseTreeAsList(); });
    ASSERT_NE(list, nullptr);
    EXPECT_THAT(texts_of(list), ElementsAre("Top"));
    Texts log;
    std::string lines;
    for (const char* field : {"colour", "value", "render"}) {
        const std::string line = std::string(LEAD) + "[parseTreeAsList][#] Unknown field[" + field +
                                 "] in tree json file\n";
        lines += line;
        log.push_back("3 " + line);
    }
    EXPECT_EQ(out, tree.parsing() + lines);
    EXPECT_EQ(take_system_log(), log);
}

constexpr std::size_t MOST_LINES = 32;

TEST(Live_data_tree, OfManyUnknownMembersTheFirstAreReportedAndTheRestCounted) {
    for (const std::size_t unknown : {MOST_LINES, MOST_LINES + 1, std::size_t{100000}}) {
        SCOPED_TRACE(unknown);
        std::string document = "{\"label\":\"Top\"";
        for (std::size_t i = 0; i < unknown; ++i) {
            document += ",\"u\":1";
        }
        Tree tree(document + "}");
        const std::string out =
            output_of(LIVE_DATA_MASK, [&] { EXPECT_THAT(tree.lines(), ElementsAre("Top")); });
        Texts expected(MOST_LINES, std::string(LEAD) +
                                       "[parseTreeAsList][#] Unknown field[u] in tree json file\n");
        if (unknown > MOST_LINES) {
            expected.push_back(std::string(LEAD) + "[parseTreeAsList][#] " +
                               std::to_string(unknown - MOST_LINES) +
                               " more lines left out for jsonfile[" + tree.name() + "]\n");
        }
        std::string lines = tree.parsing();
        Texts log;
        for (const std::string& line : expected) {
            lines += line;
            log.push_back("3 " + line);
        }
        EXPECT_EQ(out, lines);
        EXPECT_EQ(take_system_log(), log);
    }
}

TEST(Live_data_tree, ADocumentThatFailsCountsItsLinesAsWell) {
    std::string document = "{";
    for (std::size_t i = 0; i < MOST_LINES + 7; ++i) {
        document += "\"u\":1,";
    }
    Tree tree(document + "\"children\":7}");
    EXPECT_EQ(tree.parser.parseTree(), -1);
    const Texts log = take_system_log();
    ASSERT_EQ(log.size(), MOST_LINES + 2);
    EXPECT_EQ(log[MOST_LINES], "3 " + tree.failure("parseTree", "Exception Nr.[#]"));
    EXPECT_EQ(log.back(), "3 " + std::string(LEAD) + "[parseTree][#] 7 more lines left out for " +
                              "jsonfile[" + tree.name() + "]\n");
}

TEST(Live_data_combo_box, OfManySkippedOptionsTheFirstAreReportedAndTheRestCounted) {
    std::string document = "{\"options\":[{}";
    for (std::size_t i = 1; i < MOST_LINES + 9; ++i) {
        document += ",{}";
    }
    Combo_box box(document + "]}");
    const List* const list = box.parser.parseComboBox();
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->size, static_cast<int>(MOST_LINES) + 9);
    const Texts log = take_system_log();
    ASSERT_EQ(log.size(), MOST_LINES + 1);
    EXPECT_EQ(log.back(), "3 " + std::string(LEAD) + "[parseComboBox][#] 9 more lines left out " +
                              "for jsonfile[" + box.name() + "]\n");
}

// The lines of states are no errors: only their number goes to the system log.
TEST(Live_data_combo_box, OfManyStatesTheFirstAreReportedAndTheLastHolds) {
    std::string document = "{";
    for (std::size_t i = 0; i < MOST_LINES + 5; ++i) {
        document += R"("state":{"value":"0"},)";
    }
    Combo_box box(document + R"("state":{"value":"1"},"options":[]})");
    const List* list = nullptr;
    const std::string out = output_of(LIVE_DATA_MASK, [&] { list = box.parser.parseComboBox(); });
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->state, 1);
    const std::string line = std::string(LEAD) + "[parseComboBox][#] cbnode->state[0]\n";
    std::string lines = box.parsing();
    for (std::size_t i = 0; i < MOST_LINES; ++i) {
        lines += line;
    }
    const std::string rest = std::string(LEAD) +
                             "[parseComboBox][#] 6 more lines left out for jsonfile[" + box.name() +
                             "]\n";
    EXPECT_EQ(out, lines + rest);
    EXPECT_THAT(take_system_log(), ElementsAre("3 " + rest));
}

TEST(Live_data_tree, ANodeOfAnotherShapeAbortsTheParse) {
    for (const char* document :
         {"[]", "5", "null", R"({"children":{}})", R"({"children":"x"})", R"({"children":null})",
          R"({"children":[5]})", R"({"children":[{"label":"x"},[]]})", R"({"action":[]})",
          R"({"action":"x"})", R"({"children":[{"children":[{}]},{"children":1}]})",
          R"({"children":[{}],"children":[{}]})"}) {
        Tree tree(document);
        const List* list = nullptr;
        const std::string out =
            output_of(LIVE_DATA_MASK, [&] { list = tree.parser.parseTreeAsList(); });
        EXPECT_EQ(list, nullptr) << document;
        const std::string line = tree.failure("parseTreeAsList", "Exception Nr.[#]");
        EXPECT_EQ(out, tree.parsing() + line) << document;
        EXPECT_THAT(take_system_log(), ElementsAre("3 " + line)) << document;
        EXPECT_EQ(tree.parser.parseTree(), -1) << document;
    }
}

TEST(Live_data_tree, ABrokenDocumentNamesTheParsersReason) {
    Tree tree("{");
    const std::string out =
        output_of(LIVE_DATA_MASK, [&] { EXPECT_EQ(tree.parser.parseTree(), -1); });
    EXPECT_EQ(out, tree.parsing() + "Could not parse JSON file \"" + tree.name() + "\"\n" +
                       tree.failure("parseTree", "Missing a name for object member."));
    EXPECT_EQ(livedata_test::masked(message),
              "Could not create radpidJSON document [function=parseTree][line=#]\n");
}

TEST(Live_data_tree, RefusesAnotherType) {
    Combo_box box("{}");
    for (const bool as_list : {true, false}) {
        const std::string out = output_of(LIVE_DATA_MASK, [&] {
            if (as_list) {
                EXPECT_EQ(box.parser.parseTreeAsList(), nullptr);
            } else {
                EXPECT_EQ(box.parser.parseTree(), -1);
            }
        });
        const std::string line = std::string(LEAD) +
                                 (as_list ? "[parseTreeAsList]" : "[parseTree]") +
                                 "[#] jsonType is not TREE jsonType[0]\n";
        EXPECT_EQ(out, line);
        EXPECT_THAT(take_system_log(), ElementsAre("3 " + line));
    }
}

TEST(Live_data_tree, ADocumentWithoutTextsIsAnEmptyList) {
    Tree tree(R"({"children":[{},{"children":[]}]})");
    const List* const list = tree.parser.parseTreeAsList();
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->size, 0);
    EXPECT_EQ(list->state, 0);
}

TEST(Live_data_tree, OfTwoEqualMembersTheLastIsListedTwice) {
    Tree tree(R"({"label":"a","label":"b"})");
    EXPECT_THAT(tree.lines(), ElementsAre("b", "b"));
}

TEST(Live_data_tree, EndsAt255Levels) {
    Tree deepest(nested_tree(255));
    const Texts lines = deepest.lines();
    ASSERT_EQ(lines.size(), 256u);
    EXPECT_EQ(lines[254], std::string(254, '*') + "x");
    EXPECT_EQ(lines[255], std::string(255, '*'));
    Tree deeper(nested_tree(256));
    EXPECT_THAT(deeper.lines(), ElementsAre("<failed>"));
    Tree much_deeper(nested_tree(100000));
    EXPECT_THAT(much_deeper.lines(), ElementsAre("<failed>"));
}

TEST(Live_data_tree, HasABoundOnItsNodes) {
    const auto siblings = [](int count) {
        std::string text = R"({"label":"Top","children":[)";
        for (int i = 0; i < count; ++i) {
            text += "{},";
        }
        text.back() = ']';
        return text + "}";
    };
    Tree most(siblings(65536));
    EXPECT_THAT(most.lines(), ElementsAre("Top"));
    Tree more(siblings(65537));
    EXPECT_THAT(more.lines(), ElementsAre("<failed>"));
}

TEST(Live_data_tree, ASecondParseStartsAfresh) {
    Tree tree(R"({"label":"Top","children":[{"label":"Leaf"}]})");
    EXPECT_EQ(tree.parser.parseTree(), 0);
    EXPECT_THAT(tree.lines(), ElementsAre("Top", "*Leaf"));
    EXPECT_THAT(tree.lines(), ElementsAre("Top", "*Leaf"));
    EXPECT_EQ(tree.parser.parseTree(), 0);
}

// Nodes

class Open_parser : public LiveJSDataParser {
public:
    using LiveJSDataParser::dlistStruct;
    using LiveJSDataParser::LiveJSDataParser;
    using LiveJSDataParser::pjstree;
};

TEST(Live_data_nodes, HoldTheTreeWithItsActions) {
    Temporary_file file(R"({"label":"Top","type":"menu","value":"0","render":"bold",
        "action":{"id":"go","type":"jump","action_body":{"rule":"always","message":"Sure?"}},
        "children":[{"label":"Leaf","action":{"id":"a","action_body":{"rule":"r"}}}]})");
    Open_parser parser(file.path(), LiveJSDataParser::TREE, 0);
    ASSERT_EQ(parser.parseTree(), 0);
    EXPECT_EQ(parser.dlistStruct->size, 0);
    ASSERT_EQ(parser.pjstree->size, 1);
    EXPECT_EQ(output_of(LIVE_DATA_MASK, [&] { parser.printJT(parser.pjstree, 0); }),
              "=>\n"
              "label: [Top]\n"
              "type: [menu]\n"
              "value: [0]\n"
              "render: [bold]\n"
              "action.id: [go]\n"
              "action.type: [jump]\n"
              "action.action_body.rule: [always]\n"
              "action.action_body.message: [Sure?]\n"
              "  =>\n"
              "  label: [*Leaf]\n"
              "  type: []\n"
              "  value: []\n"
              "  render: []\n"
              "  action.id: [*a]\n"
              "  action.type: []\n"
              "  action.action_body.rule: [*r]\n"
              "  action.action_body.message: []\n");
    support::expect_line_gates(
        {"=>\n", "label: [Top]", "type: [menu]", "value: [0]", "render: [bold]", "action.id: [go]",
         "action.type: [jump]", "rule: [always]", "message: [Sure?]"},
        0x1000001, support::Gate::LEAF, [&] { parser.printJT(parser.pjstree, 0); });
    parser.printJT(nullptr, 0);
}

TEST(Live_data_nodes, AreClearedWithoutBeingReleased) {
    char name[] = "unused";
    LiveJSDataParser parser(name, LiveJSDataParser::TREE, 0);
    LiveJSDataParser::treenode node;
    std::memset(&node, 'x', sizeof node);
    parser.initialiseJT(&node);
    for (const char* text :
         {node.label, node.type, node.value, node.render, node.action.id, node.action.type,
          node.action.action_body.rule, node.action.action_body.message}) {
        EXPECT_STREQ(text, "");
    }
    EXPECT_EQ(node.size, 0);
    EXPECT_EQ(node.children, nullptr);
}

TEST(Live_data_nodes, AreReadFromAnyDepthOn) {
    char name[] = "unused";
    LiveJSDataParser parser(name, LiveJSDataParser::TREE, 0);
    rapidjson::Document document;
    document.Parse(R"({"label":"x","children":[{"label":"y"}]})");
    auto* const node = new LiveJSDataParser::treenode;
    std::vector<char*> list;
    parser.parseEachSubTree(&document, node, 3, list);
    EXPECT_THAT(std::vector<std::string>(list.begin(), list.end()), ElementsAre("***x", "****y"));
    EXPECT_EQ(list[0], node->label);
    parser.deleteJT(node);
    parser.deleteJT(nullptr);
}

TEST(Live_data_nodes, AreOnlyClearedWithoutAValue) {
    char name[] = "unused";
    LiveJSDataParser parser(name, LiveJSDataParser::TREE, 0);
    std::vector<char*> list;
    const rapidjson::Value value(rapidjson::kObjectType);
    LiveJSDataParser::treenode node;
    std::memset(&node, 'x', sizeof node);
    parser.parseEachSubTree(nullptr, nullptr, 0, list);
    parser.parseEachSubTree(&value, nullptr, 0, list);
    parser.parseEachSubTree(nullptr, &node, 0, list);
    EXPECT_THAT(list, IsEmpty());
    EXPECT_STREQ(node.label, "");
    EXPECT_EQ(node.size, 0);
    EXPECT_EQ(node.children, nullptr);
}

TEST(Live_data_nodes, ABadShapeIsThrownAsALineNumber) {
    char name[] = "unused";
    LiveJSDataParser parser(name, LiveJSDataParser::TREE, 0);
    rapidjson::Document document;
    document.Parse(R"({"children":[{"children":7}]})");
    auto* const node = new LiveJSDataParser::treenode;
    std::vector<char*> list;
    static_assert(std::is_same_v<LiveJSDataParser::Shape_error, int>);
    EXPECT_THROW(parser.parseEachSubTree(&document, node, 0, list), LiveJSDataParser::Shape_error);
    parser.deleteJT(node);
}

}  // namespace
