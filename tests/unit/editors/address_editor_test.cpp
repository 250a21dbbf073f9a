#include <frontpanel_editors/address_editor.h>
#include <gtest/gtest.h>

#include "editor_fixture.h"

using namespace frontpanel;

namespace {

using namespace editor_fixture;

struct Address : Text_leaf<Ip_entry> {
    explicit Address(const std::string& text, Data_access access = READ_WRITE)
        : Text_leaf(210, access) {
        put(text);
    }
};

struct Case {
    const char* start;
    const char* keys;
    const char* proposed;
    std::size_t block;
};

void PrintTo(const Case& of, std::ostream* out) {
    *out << '"' << of.start << "\" " << of.keys;
}

class AddressEditing : public testing::TestWithParam<Case> {};

TEST_P(AddressEditing, GivesTheAddress) {
    Address entry(GetParam().start);
    Address_editor editor;
    editor.Prepare(&entry);
    press_keys(editor, GetParam().keys);
    EXPECT_EQ(editor.proposed_address(), GetParam().proposed);
    EXPECT_EQ(editor.block(), GetParam().block);
    EXPECT_EQ(entry.text(), GetParam().start);
    EXPECT_EQ(editor.press(Editor_key::SELECT), Editor_result::ACCEPTED);
    EXPECT_EQ(entry.text(), GetParam().proposed);
    EXPECT_TRUE(Ip_entry::Valid_ip(entry.text().c_str()));
}

INSTANTIATE_TEST_SUITE_P(Steps, AddressEditing,
                         testing::Values(Case{"127.0.0.1", "", "127.0.0.1", 3},
                                         Case{"127.0.0.1", "U", "127.0.0.2", 3},
                                         Case{"127.0.0.1", "5D", "127.0.0.0", 3},
                                         Case{"127.0.0.254", "3U", "127.0.0.255", 3},
                                         Case{"127.0.0.1", "2<U", "127.1.0.1", 1},
                                         Case{"127.0.0.1", "9<D", "126.0.0.1", 0},
                                         Case{"127.0.0.1", "9<3>9>U", "127.0.0.2", 3},
                                         Case{"255.255.255.255", "9<U", "255.255.255.255", 0}));

INSTANTIATE_TEST_SUITE_P(
    StoredTexts, AddressEditing,
    testing::Values(Case{"", "", "0.0.0.0", 3}, Case{"no address", "U", "0.0.0.1", 3},
                    Case{"1.2.3", "", "0.0.0.0", 3}, Case{"1.2.3.256", "", "0.0.0.0", 3},
                    Case{"01.2.3.4", "", "0.0.0.0", 3},
                    // what passes as an address although it is none is put right
                    Case{"10..0.1.2", "", "10.0.1.2", 3}, Case{"-1.2.3.4", "", "0.2.3.4", 3}));

struct Typed_case {
    const char* keys;
    const char* typed;
    const char* proposed;
    std::size_t block;
};

TEST(AddressEditor, TypedDigitsTakeThePlaceOfTheBlockAndAPointLeadsOn) {
    constexpr Typed_case CASES[] = {
        {"", "7", "127.0.0.7", 3},
        {"", "254", "127.0.0.254", 3},
        {"", "256", "127.0.0.25", 3},
        {"", "0012", "127.0.0.12", 3},
        {"3<", "10.20.30.40", "10.20.30.40", 3},
        {"3<", "192.", "192.0.0.1", 1},
        {"3<", "9.", "9.0.0.1", 1},
        {"", ".5", "127.0.0.5", 3},
        {"", "-+a", "127.0.0.1", 3},
    };
    for (const Typed_case& of : CASES) {
        SCOPED_TRACE(std::string(of.keys) + " " + of.typed);
        Address entry("127.0.0.1");
        Address_editor editor;
        editor.Prepare(&entry);
        press_keys(editor, of.keys);
        for (const char* typed = of.typed; *typed != '\0'; ++typed) {
            EXPECT_EQ(editor.type(*typed), Editor_result::OPEN);
        }
        EXPECT_EQ(editor.proposed_address(), of.proposed);
        EXPECT_EQ(editor.block(), of.block);
        EXPECT_EQ(editor.press(Editor_key::SELECT), Editor_result::ACCEPTED);
        EXPECT_EQ(entry.text(), of.proposed);
    }
}

TEST(AddressEditor, EraseTakesTypedDigitsBackAndNoOthers) {
    Address entry("127.0.0.1");
    Address_editor editor;
    editor.Prepare(&entry);
    EXPECT_FALSE(editor.can_erase());
    editor.type('2');
    editor.type('5');
    EXPECT_TRUE(editor.can_erase());
    press_keys(editor, "E");
    EXPECT_EQ(editor.proposed_address(), "127.0.0.2");
    press_keys(editor, "E");
    EXPECT_EQ(editor.proposed_address(), "127.0.0.0");
    EXPECT_FALSE(editor.can_erase());
    press_keys(editor, "E");
    EXPECT_EQ(editor.proposed_address(), "127.0.0.0");
}

TEST(AddressEditor, AStepGoesOnFromWhatWasTyped) {
    Address entry("127.0.0.1");
    Address_editor editor;
    editor.Prepare(&entry);
    editor.type('4');
    press_keys(editor, "U");
    editor.type('9');
    EXPECT_EQ(editor.proposed_address(), "127.0.0.9");
}

TEST(AddressEditor, StartsClosed) {
    Address_editor editor;
    EXPECT_EQ(editor.press(Editor_key::UP), Editor_result::DISCARDED);
    EXPECT_EQ(editor.view(20).text, "");
}

TEST(AddressEditor, StaysClosedForATextThatIsNoAddressEntry) {
    Text_leaf<String_entry> text(200, Data_entry::READ_WRITE, 16u);
    Address_editor editor;
    editor.Prepare(&text);
    EXPECT_EQ(editor.entry(), nullptr);
}

TEST(AddressEditor, EscapeLeavesTheAddressAsItWas) {
    Address entry("127.0.0.1");
    Address_editor editor;
    editor.Prepare(&entry);
    press_keys(editor, "U");
    EXPECT_EQ(editor.press(Editor_key::ESCAPE), Editor_result::DISCARDED);
    EXPECT_EQ(entry.text(), "127.0.0.1");
}

TEST(AddressEditor, TheCursorStandsUnderTheLastDigitOfTheBlock) {
    Address entry("127.0.10.1");
    Address_editor editor;
    editor.Prepare(&entry);
    EXPECT_EQ(editor.view(20).text, "127.0.10.1");
    for (const int column : {9, 7, 4, 2}) {
        EXPECT_EQ(editor.view(20).cursor, column);
        press_keys(editor, "<");
    }
}

TEST(AddressEditor, AReadOnlyAddressIsViewed) {
    Address entry("127.0.0.1", Data_entry::READ_ONLY);
    Address_editor editor;
    editor.Prepare(&entry);
    press_locked_keys(editor);
    EXPECT_EQ(editor.view(20).text, "127.0.0.1");
    EXPECT_EQ(editor.view(20).cursor, Editor_view::NO_CURSOR);
    EXPECT_EQ(editor.press(Editor_key::SELECT), Editor_result::DISCARDED);
}

TEST(AddressEditor, IsDrivenThroughTheDispatcher) {
    Address entry("127.0.0.1");
    Address_editor editor;
    operate(entry, editor, Data_entry::OPERATION_PREPARE);
    EXPECT_EQ(editor.entry(), &entry);
    operate(entry, editor, Data_entry::OPERATION_EXIT_LEDS);
    EXPECT_EQ(editor.entry(), nullptr);
}

}  // namespace
