#include <frontpanel_editors/text_editor.h>
#include <gtest/gtest.h>

#include <memory>
#include <random>

#include "editor_fixture.h"
#include "support/fake_binding.h"

using namespace frontpanel;

namespace {

using namespace editor_fixture;

struct Text : Text_leaf<String_entry> {
    explicit Text(const std::string& text, unsigned int max_length = 8,
                  Data_access access = READ_WRITE)
        : Text_leaf(200, access, max_length) {
        put(text);
    }
};

struct Case {
    const char* start;
    unsigned int max_length;
    const char* keys;
    const char* proposed;
    int position;
};

void PrintTo(const Case& of, std::ostream* out) {
    *out << '"' << of.start << "\" (" << of.max_length << ") " << of.keys;
}

class TextEditing : public testing::TestWithParam<Case> {};

TEST_P(TextEditing, GivesTheText) {
    Text entry(GetParam().start, GetParam().max_length);
    Text_editor editor;
    editor.Prepare(&entry);
    press_keys(editor, GetParam().keys);
    EXPECT_EQ(editor.proposed_text(), GetParam().proposed);
    EXPECT_EQ(editor.position(), GetParam().position);
    EXPECT_EQ(entry.text(), GetParam().start);
    EXPECT_EQ(editor.press(Editor_key::SELECT), Editor_result::ACCEPTED);
    EXPECT_EQ(entry.text(), GetParam().proposed);
}

INSTANTIATE_TEST_SUITE_P(Steps, TextEditing,
                         testing::Values(Case{"AB", 8, "", "AB", 0}, Case{"AB", 8, "U", "AC", 0},
                                         Case{"AB", 8, "D", "AA", 0}, Case{"AB", 8, "<U", "BB", 1},
                                         Case{"AB", 8, "<U>U", "BC", 0},
                                         // the printable range ends at both ends, without wrapping
                                         Case{"~", 8, "U", "\x7f", 0},
                                         Case{"~", 8, "5U", "\x7f", 0}, Case{"!", 8, "D", " ", 0},
                                         Case{"!", 8, "5D", " ", 0},
                                         Case{"\xe4", 8, "U", "\xe4", 0}));

INSTANTIATE_TEST_SUITE_P(
    InsertingAndDeleting, TextEditing,
    testing::Values(
        // the inserted character is visible and under the cursor, what was there moves right
        Case{"XY", 8, "I", "XAY", 1}, Case{"XY", 8, "<I", "AXY", 2}, Case{"XY", 8, "I2U", "XCY", 1},
        Case{"XY", 8, ">I", "XYA", 0}, Case{"XY", 8, "<<I", "AXY", 2}, Case{"", 8, "IU", "B", 0},
        // only as long as there is room
        Case{"XY", 3, "3I", "XAY", 1}, Case{"XYZ", 3, "I", "XYZ", 0},
        Case{"XYZ", 3, "I>I", "XYZ", 0},
        // the cursor stands on what follows the deleted character, or behind the text
        Case{"ABC", 8, "<X", "AC", 0}, Case{"ABC", 8, "2<X", "BC", 1},
        Case{"ABC", 8, "X", "AB", -1}, Case{"ABC", 8, "2X", "A", -1}, Case{"ABC", 8, "5X", "", -1},
        Case{"", 8, "X", "", -1}, Case{"ABC", 8, "3<X", "ABC", 3}, Case{"ABC", 8, ">X", "AB", -1},
        Case{"AB", 8, "2XI", "A", 0},
        // a key that erases does the same while nothing was typed
        Case{"ABC", 8, "<E", "AC", 0}, Case{"ABC", 8, "5E", "", -1}));

INSTANTIATE_TEST_SUITE_P(CharactersOfSeveralBytes, TextEditing,
                         testing::Values(
                             // are deleted, replaced and moved over as a whole
                             Case{"a\xc3\xbc", 8, "X", "a", -1},
                             Case{"a\xc3\xbc", 8, ">E", "a", -1},
                             Case{"a\xc3\xbc"
                                  "b",
                                  8, "<X", "ab", 0},
                             Case{"a\xc3\xbc"
                                  "b",
                                  8, "<<X",
                                  "\xc3\xbc"
                                  "b",
                                  2},
                             Case{"a\xc3\xbc"
                                  "b",
                                  8, "<>U",
                                  "a\xc3\xbc"
                                  "c",
                                  0},
                             Case{"a\xc3\xbc", 8, "U", "aA", 0}, Case{"a\xc3\xbc", 8, "D", "aA", 0},
                             Case{"a\xc3\xbc", 8, "UU", "aB", 0},
                             Case{"a\xc3\xbc", 8, "I", "aA\xc3\xbc", 2},
                             Case{"\xe2\x82\xac", 8, ">U",
                                  "\xe2\x82\xac"
                                  "A",
                                  0},
                             Case{"\xc3\xbc", 2, ">X", "", -1},
                             // a byte that is no UTF-8 stands for itself
                             Case{"a\xbc", 8, "X", "a", -1},
                             Case{"\xc3"
                                  "b",
                                  8, "<X", "b", 0}));

// "e" with an acute accent behind it, or behind nothing.
#define ACUTE "\xcc\x81"

INSTANTIATE_TEST_SUITE_P(
    CombiningCharacters, TextEditing,
    testing::Values(
        // belong to the character before them
        Case{"ae" ACUTE, 8, "X", "a", -1}, Case{"ae" ACUTE, 8, ">E", "a", -1},
        Case{"e" ACUTE "b", 8, "<X", "b", 0}, Case{"e" ACUTE "b", 8, "<>U", "e" ACUTE "c", 0},
        Case{"e" ACUTE "b", 8, "<I", "Ae" ACUTE "b", 4}, Case{"e" ACUTE, 8, "U", "A", 0},
        Case{"e" ACUTE ACUTE ACUTE "b", 9, "<<<", "e" ACUTE ACUTE ACUTE "b", 7},
        // one that begins the text stands for itself
        Case{ACUTE "b", 8, "<", ACUTE "b", 2}, Case{ACUTE "b", 8, "<X", "b", 0},
        Case{ACUTE "b", 8, "<I", "A" ACUTE "b", 3},
        // as does one that is cut off
        Case{"e\xcc", 8, "X", "e", -1}));

INSTANTIATE_TEST_SUITE_P(
    Widening, TextEditing,
    testing::Values(
        // the first step beyond the text widens it by a visible character, the next one changes that
        Case{"XY", 8, ">U", "XYA", 0}, Case{"XY", 8, ">D", "XYA", 0},
        Case{"XY", 8, ">2U", "XYB", 0}, Case{"XY", 8, "2<2U", "BXY", 2}, Case{"", 8, "U", "A", 0},
        Case{"", 1, "2U", "B", 0}, Case{"XY", 8, ">U>2U", "XYAB", 0},
        // the cursor stays within one place beyond the text and within the longest text
        Case{"AB", 8, "9>", "AB", -1}, Case{"AB", 8, "9<", "AB", 2}, Case{"", 8, "9<", "", -1},
        Case{"AB", 2, "9>", "AB", 0}, Case{"AB", 2, "9<", "AB", 1},
        // the longest text is reached on the right side only
        Case{"ABC", 4, "9<", "ABC", 2}, Case{"ABC", 4, ">U", "ABCA", 0},
        Case{"XY", 4, "2<U", "AXY", 2}, Case{"", 0, "9>9<UD", "", -1}));

INSTANTIATE_TEST_SUITE_P(Blanks, TextEditing,
                         testing::Values(
                             // kept where they are
                             Case{"AB", 8, "D33D", "A ", 0}, Case{" AB ", 8, "", " AB ", 0},
                             Case{" AB ", 8, ">U", " AB A", 0}));

void type(Value_editor& editor, const std::string& text) {
    for (const char character : text) {
        EXPECT_EQ(editor.type(character), Editor_result::OPEN);
    }
}

struct Typed_case {
    const char* start;
    const char* keys;
    const char* typed;
    const char* proposed;
    int position;
};

TEST(TextEditor, TypedCharactersTakeThePlaceOfTheOneUnderTheCursorAndTheTextGrows) {
    constexpr Typed_case CASES[] = {
        {"XY", "", "a", "Xa", -1},         {"XY", "", "ab c", "Xab c", -1},
        {"XY", "<", "ab", "ab", -1},       {"XY", "<", "q", "qY", 0},
        {"", "", "1d", "1d", -1},          {"XY", ">", "z", "XYz", -1},
        {"XY", "2<", "z", "zXY", 1},       {"ABCDEFGH", "", "xyz", "ABCDEFGx", -1},
        {"XY", "", "\t\x7f\xe4", "XY", 0},
    };
    for (const Typed_case& of : CASES) {
        SCOPED_TRACE(std::string(of.start) + " " + of.keys + " " + of.typed);
        Text entry(of.start);
        Text_editor editor;
        editor.Prepare(&entry);
        press_keys(editor, of.keys);
        type(editor, of.typed);
        EXPECT_EQ(editor.proposed_text(), of.proposed);
        EXPECT_EQ(editor.position(), of.position);
        EXPECT_EQ(entry.text(), of.start);
    }
}

TEST(TextEditor, EraseTakesBackWhatWasTyped) {
    Text entry("XYZ");
    Text_editor editor;
    editor.Prepare(&entry);
    press_keys(editor, "<");
    type(editor, "a");
    press_keys(editor, "E");
    EXPECT_EQ(editor.proposed_text(), "XZ");
    type(editor, "bcd");
    EXPECT_EQ(editor.proposed_text(), "Xbcd");
    press_keys(editor, "2E");
    EXPECT_EQ(editor.proposed_text(), "Xb");
    press_keys(editor, "<E");
    EXPECT_EQ(editor.proposed_text(), "X");
}

TEST(TextEditor, TypedCharactersComeFromTheSetInEitherCase) {
    Text entry("XY");
    Text_editor editor;
    Editor_settings settings;
    settings.characters = "XYZ1";
    editor.configure(settings);
    editor.Prepare(&entry);
    press_keys(editor, ">");
    type(editor, "z?a1");
    EXPECT_EQ(editor.proposed_text(), "XYZ1");
    EXPECT_NE(editor.characters().find('q'), std::string::npos)
        << "a key whose character is not in the set has no other meaning";
    press_keys(editor, "I");
    EXPECT_EQ(editor.proposed_text(), "XYZ1X");
}

TEST(TextEditor, AReadOnlyTextTakesNoCharacters) {
    Text entry("XY", 8, Data_entry::READ_ONLY);
    Text_editor editor;
    editor.Prepare(&entry);
    EXPECT_EQ(editor.characters(), "");
    EXPECT_EQ(editor.type('a'), Editor_result::OPEN);
    EXPECT_EQ(editor.proposed_text(), "XY");
}

TEST(TextEditor, StartsClosed) {
    Text_editor editor;
    EXPECT_EQ(editor.press(Editor_key::UP), Editor_result::DISCARDED);
    EXPECT_EQ(editor.view(20).text, "");
    EXPECT_EQ(editor.proposed_text(), "");
}

TEST(TextEditor, EscapeLeavesTheTextAsItWas) {
    Text entry("AB");
    Text_editor editor;
    editor.Prepare(&entry);
    press_keys(editor, "3U>U");
    EXPECT_EQ(editor.press(Editor_key::ESCAPE), Editor_result::DISCARDED);
    EXPECT_EQ(entry.text(), "AB");
}

TEST(TextEditor, EveryOpeningStartsAtTheLastCharacterOfTheStoredText) {
    Text entry("AB");
    Text_editor editor;
    editor.Prepare(&entry);
    press_keys(editor, "<3U");
    editor.Prepare(&entry);
    EXPECT_EQ(editor.position(), 0);
    EXPECT_EQ(editor.proposed_text(), "AB");
}

TEST(TextEditor, TheCursorStandsUnderTheCharacterThatChanges) {
    Text entry("AB");
    Text_editor editor;
    editor.Prepare(&entry);
    EXPECT_EQ(editor.view(20).cursor, 1);
    press_keys(editor, ">");
    EXPECT_EQ(editor.view(20).text, "AB ");
    EXPECT_EQ(editor.view(20).cursor, 2);
    press_keys(editor, "3<");
    EXPECT_EQ(editor.view(20).text, " AB");
    EXPECT_EQ(editor.view(20).cursor, 0);
    EXPECT_TRUE(editor.view(20).edit_led);
}

TEST(TextEditor, ALongTextShowsThePartAroundTheCursor) {
    Text entry("ABCDEFGHIJ", 16);
    Text_editor editor;
    editor.Prepare(&entry);
    EXPECT_EQ(frames(editor, 4, 2), (std::vector<std::string>{"GHIJ", "GHIJ"}));
    EXPECT_EQ(editor.view(4).cursor, 3);
    press_keys(editor, "5<");
    EXPECT_EQ(editor.view(4).text, "BCDE");
    press_keys(editor, "4<");
    EXPECT_EQ(editor.view(4).text, "ABCD");
    EXPECT_EQ(editor.view(4).cursor, 0);
}

TEST(TextEditor, ATextOfTheLargestLengthIsEditedWhole) {
    Text entry(std::string(256, 'A'), 256);
    Text_editor editor;
    editor.Prepare(&entry);
    press_keys(editor, "255<U");
    EXPECT_EQ(editor.proposed_text(), "B" + std::string(255, 'A'));
}

TEST(TextEditor, NoKeysMakeATextThatIsTooLongOrCannotBeShown) {
    std::minstd_rand random(7);
    constexpr const char* KEYS = "UD<>";
    for (int run = 0; run < 200; ++run) {
        const auto max_length = static_cast<unsigned int>(random() % 6);
        Text entry(std::string("AbC~ ").substr(0, random() % (max_length + 1)), max_length);
        const std::string before = entry.text();
        Text_editor editor;
        editor.Prepare(&entry);
        for (int i = 0; i < 80; ++i) {
            press_keys(editor, std::string(1, KEYS[random() % 4]));
            const Editor_view view = editor.view(4);
            ASSERT_GE(view.cursor, 0);
            ASSERT_LT(view.cursor, 4);
            ASSERT_LE(view.text.size(), 4U);
            const std::string text = editor.proposed_text();
            ASSERT_LE(text.size(), max_length);
            for (const char character : text) {
                ASSERT_GE(character, ' ');
            }
            ASSERT_EQ(entry.text(), before);
        }
    }
}

TEST(TextEditor, AReadOnlyTextIsViewedAndScrolls) {
    Text entry("ABCDEF", 8, Data_entry::READ_ONLY);
    Text_editor editor;
    editor.Prepare(&entry);
    press_locked_keys(editor);
    press_keys(editor, "<>");
    EXPECT_EQ(editor.proposed_text(), "ABCDEF");
    EXPECT_EQ(frames(editor, 4, 5),
              (std::vector<std::string>{"ABCD", "ABCD", "ABCD", "BCDE", "CDEF"}));
    EXPECT_EQ(editor.view(4).cursor, Editor_view::NO_CURSOR);
    EXPECT_FALSE(editor.view(4).edit_led);
    EXPECT_EQ(editor.press(Editor_key::SELECT), Editor_result::DISCARDED);
}

TEST(TextEditor, ATextThatABindingWarnsOfIsRefusedAndStaysOpen) {
    Text entry("AB");
    auto binding = std::make_unique<support::Fake_binding>();
    binding->offer(SUGGESTION_WARNING);
    binding->on_evaluate = [](support::Fake_binding& engine, int) {
        engine.suggest_warnings({"busy"});
    };
    entry.Set_binding_object(binding.release());
    Text_editor editor;
    editor.Prepare(&entry);
    press_keys(editor, "U");
    EXPECT_EQ(editor.press(Editor_key::SELECT), Editor_result::REFUSED);
    EXPECT_EQ(entry.text(), "AB");
    EXPECT_EQ(editor.proposed_text(), "AC");
}

TEST(TextEditor, IsDrivenThroughTheDispatcher) {
    Text entry("AB");
    Text_editor editor;
    operate(entry, editor, Data_entry::OPERATION_SET_ESCAPE_ENTRY, &entry);
    operate(entry, editor, Data_entry::OPERATION_PREPARE);
    EXPECT_EQ(editor.entry(), &entry);
    EXPECT_EQ(editor.escape_entry(), &entry);
    operate(entry, editor, Data_entry::OPERATION_EXIT_LEDS);
    EXPECT_EQ(editor.entry(), nullptr);
}

}  // namespace
