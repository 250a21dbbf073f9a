#include <frontpanel_editors/enum_editor.h>
#include <frontpanel_simulator/memory_device.h>
#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include "editor_fixture.h"
#include "support/fake_binding.h"
#include "support/shown_options.h"

using namespace frontpanel;

namespace {

using namespace editor_fixture;

// The option texts in the form in which the entries take them, with room for slot lines.
class Option_texts {
public:
    explicit Option_texts(const std::vector<std::string>& texts) : m_texts(texts) {
        for (std::string& text : m_texts) {
            text.resize(31);
            m_array.push_back(text.data());
        }
    }
    Option_texts(const Option_texts&) = delete;
    Option_texts& operator=(const Option_texts&) = delete;
    char** array() { return m_array.data(); }
    unsigned int size() const { return static_cast<unsigned int>(m_array.size()); }

private:
    std::vector<std::string> m_texts;
    std::vector<char*> m_array;
};

struct Options {
    explicit Options(const std::vector<std::string>& names, int min, int max, int start,
                     Data_entry::Data_access access = Data_entry::READ_WRITE)
        : texts(names),
          entry("Source", "Source", 120, support::any_index(), min, max, start, texts.array(),
                texts.size(), nullptr, access, Data_entry::VISIBLE_ALL, true,
                Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr) {}

    Option_texts texts;
    Enum_entry entry;
};

struct Four : Options {
    explicit Four(int start = 1) : Options({"Off", "Low", "High", "Auto"}, 0, 3, start) {}
};

TEST(EnumEditor, StartsClosed) {
    Enum_editor editor;
    EXPECT_EQ(editor.press(Editor_key::UP), Editor_result::DISCARDED);
    EXPECT_EQ(editor.view(20).text, "");
    editor.Set_use_line_info(true);
    editor.Set_selected(3);
    editor.Set_selected_line(1);
    EXPECT_EQ(editor.entry(), nullptr);
}

TEST(EnumEditor, OpensOnTheEntrysOption) {
    Four options;
    Enum_editor editor;
    editor.Prepare(&options.entry);
    EXPECT_EQ(editor.view(20).text, "Low");
    EXPECT_EQ(editor.view(20).step, "2/4");
    EXPECT_EQ(editor.view(20).cursor, Editor_view::NO_CURSOR);
    EXPECT_TRUE(editor.view(20).edit_led);
}

TEST(EnumEditor, StepsStopAtTheFirstAndTheLastOption) {
    Four options;
    Enum_editor editor;
    editor.Prepare(&options.entry);
    for (const char* const expected : {"High", "Auto", "Auto"}) {
        press_keys(editor, "U");
        EXPECT_EQ(editor.view(20).text, expected);
    }
    for (const char* const expected : {"High", "Low", "Off", "Off"}) {
        press_keys(editor, "D");
        EXPECT_EQ(editor.view(20).text, expected);
    }
}

TEST(EnumEditor, CoarserAndFinerKeysChangeNothing) {
    Four options;
    Enum_editor editor;
    editor.Prepare(&options.entry);
    press_keys(editor, "<>");
    EXPECT_EQ(editor.view(20).text, "Low");
}

TEST(EnumEditor, TheEntryKeepsItsOptionUntilAnotherIsAccepted) {
    Four options;
    Enum_editor editor;
    editor.Prepare(&options.entry);
    press_keys(editor, "2U");
    EXPECT_EQ(options.entry.Get_integer_enum(), 1);
    EXPECT_EQ(editor.press(Editor_key::SELECT), Editor_result::ACCEPTED);
    EXPECT_EQ(options.entry.Get_integer_enum(), 3);
}

TEST(EnumEditor, EscapeLeavesTheEntryAsItWas) {
    Four options;
    Enum_editor editor;
    editor.Prepare(&options.entry);
    press_keys(editor, "2U");
    EXPECT_EQ(editor.press(Editor_key::ESCAPE), Editor_result::DISCARDED);
    EXPECT_EQ(options.entry.Get_integer_enum(), 1);
}

TEST(EnumEditor, StepsPassOverHiddenOptions) {
    Four options(0);
    support::show_only(options.entry, {0, 2});
    Enum_editor editor;
    editor.Prepare(&options.entry);
    EXPECT_EQ(editor.view(20).step, "1/2");
    press_keys(editor, "U");
    EXPECT_EQ(editor.proposed_position(), 1);
    EXPECT_EQ(editor.view(20).step, "2/2");
    press_keys(editor, "U");
    EXPECT_EQ(editor.proposed_position(), 1);
    EXPECT_EQ(editor.press(Editor_key::SELECT), Editor_result::ACCEPTED);
    EXPECT_EQ(options.entry.Get_integer_enum(), 2);
}

TEST(EnumEditor, StepsStayWithinTheEntrysKeys) {
    Options options({"Off", "Low", "High", "Auto"}, 1, 2, 1);
    Enum_editor editor;
    editor.Prepare(&options.entry);
    EXPECT_EQ(editor.view(20).step, "1/2");
    press_keys(editor, "D");
    EXPECT_EQ(editor.view(20).text, "Low");
    press_keys(editor, "3U");
    EXPECT_EQ(editor.view(20).text, "High");
    EXPECT_EQ(editor.view(20).step, "2/2");
}

TEST(EnumEditor, ALimitBeyondTheOptionsIsNotReached) {
    Options options({"Off", "On"}, 0, 2, 1);
    Enum_editor editor;
    editor.Prepare(&options.entry);
    EXPECT_EQ(editor.view(20).step, "2/2");
    press_keys(editor, "U");
    EXPECT_EQ(editor.view(20).text, "On");
}

TEST(EnumEditor, ThePlaceIsLeftOutWhereTheNameLeavesNoRoom) {
    Four options;
    Enum_editor editor;
    editor.Prepare(&options.entry);
    EXPECT_EQ(editor.view(10).step, "2/4");  // "Source 2/4"
    EXPECT_EQ(editor.view(9).step, "");
}

TEST(EnumEditor, ALongOptionScrollsFromItsStartAtEveryStep) {
    Options options({"ABCDEF", "UVWXYZ"}, 0, 1, 0);
    Enum_editor editor;
    editor.Prepare(&options.entry);
    EXPECT_EQ(frames(editor, 4, 4), (std::vector<std::string>{"ABCD", "ABCD", "ABCD", "BCDE"}));
    press_keys(editor, "U");
    EXPECT_EQ(frames(editor, 4, 4), (std::vector<std::string>{"UVWX", "UVWX", "UVWX", "VWXY"}));
}

TEST(EnumEditor, TheListsOwnScrollingGoesOnUndisturbed) {
    Options options({"ABCDEF", "UVWXYZ"}, 0, 1, 0);
    Enum_editor editor;
    editor.Prepare(&options.entry);
    frames(editor, 4, 5);
    char line[5] = {};
    options.entry.Get_display_string(line, 4);
    EXPECT_STREQ(line, "ABCD");
}

TEST(EnumEditor, AReadOnlyOptionIsViewed) {
    Options options({"Off", "On"}, 0, 1, 0, Data_entry::READ_ONLY);
    Enum_editor editor;
    editor.Prepare(&options.entry);
    press_locked_keys(editor);
    EXPECT_EQ(editor.view(20).text, "Off");
    EXPECT_FALSE(editor.view(20).edit_led);
    EXPECT_EQ(editor.press(Editor_key::SELECT), Editor_result::DISCARDED);
}

TEST(EnumEditor, AnOptionThatABindingWarnsOfIsRefused) {
    Four options;
    auto binding = std::make_unique<support::Fake_binding>();
    binding->offer(SUGGESTION_WARNING);
    binding->on_evaluate = [](support::Fake_binding& engine, int) {
        engine.suggest_warnings({"busy"});
    };
    options.entry.Set_binding_object(binding.release());
    Enum_editor editor;
    editor.Prepare(&options.entry);
    press_keys(editor, "U");
    EXPECT_EQ(editor.press(Editor_key::SELECT), Editor_result::REFUSED);
    EXPECT_EQ(options.entry.Get_integer_enum(), 1);
    EXPECT_EQ(editor.view(20).text, "High");
}

// The dispatcher has no step that closes an enumeration's editor.
TEST(EnumEditor, IsOpenedThroughTheDispatcherAndClosedDirectly) {
    Four options;
    Enum_editor editor;
    operate(options.entry, editor, Data_entry::OPERATION_PREPARE);
    EXPECT_EQ(editor.entry(), &options.entry);
    operate(options.entry, editor, Data_entry::OPERATION_EXIT_LEDS);
    EXPECT_EQ(editor.entry(), &options.entry);
    editor.ExitLEDs();
    EXPECT_EQ(editor.entry(), nullptr);
}

// A frame of ten slots, each with a product that has an alias, reached through the process's interface.
class SlotListEditor : public testing::Test {
protected:
    static constexpr int SLOTS = 10;

    SlotListEditor()
        : texts(std::vector<std::string>(SLOTS, "empty")),
          entry("Slot", "Slots", 130, support::any_index(), 0, SLOTS - 1, 0, nullptr, texts.array(),
                SLOTS, nullptr, nullptr, Data_entry::READ_WRITE, nullptr, Data_entry::VISIBLE_ALL,
                true, Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr) {
        device.add_integer(130, 3, 0, SLOTS - 1, 0);
        for (int slot = 1; slot <= SLOTS; ++slot) {
            PROD_LIST_S product = {};
            product.prod_id = static_cast<prod_id_t>(slot);
            std::strcpy(product.prod_family, "F");
            std::strcpy(product.prod_string, "P");
            device.set_product(slot, product, 3);
            device.set_alias(product.prod_id, "a" + std::to_string(slot));
        }
        device.setCurrentRouterSocket(3);
        VarIdDataInfStore::m_pDataAccessInf = &device;
    }
    ~SlotListEditor() override { VarIdDataInfStore::m_pDataAccessInf = nullptr; }

    void open(unsigned char use_line_info, int32_t selected, int32_t line) {
        operate(entry, editor, Data_entry::OPERATION_SET_USE_LINE_INFO, &use_line_info);
        operate(entry, editor, Data_entry::OPERATION_SET_SELECTED, &selected);
        operate(entry, editor, Data_entry::OPERATION_SET_SELECTED_LINE, &line);
        operate(entry, editor, Data_entry::OPERATION_PREPARE);
    }
    // The slots whose lines show an alias.
    std::string aliases() {
        std::string slots;
        for (int slot = 1; slot <= SLOTS; ++slot) {
            slots += std::strchr(texts.array()[slot - 1], 'a') != nullptr ? '+' : '.';
        }
        return slots;
    }

    Memory_device device;
    Option_texts texts;
    Slot_enum_entry entry;
    Enum_editor editor;
};

TEST_F(SlotListEditor, TheSlotsAroundTheCursorShowTheirAliases) {
    open(1, 0, 0);
    EXPECT_EQ(editor.view(29).text, "1:P                        a1");
    EXPECT_EQ(aliases(), "++++......");
    press_keys(editor, "5U");
    EXPECT_EQ(editor.view(29).text, "6:P                        a6");
    EXPECT_EQ(aliases(), ".....++++.");
}

TEST_F(SlotListEditor, LinesAboveTheCursorWidenTheWindowToBothSides) {
    open(1, 4, 2);
    EXPECT_EQ(aliases(), "..++++++++");
}

TEST_F(SlotListEditor, WithoutLineInformationTheLinesStayAsTheyAre) {
    open(0, 0, 0);
    EXPECT_EQ(editor.view(29).text, "empty");
    press_keys(editor, "U");
    EXPECT_EQ(aliases(), "..........");
}

TEST_F(SlotListEditor, WithoutAnInterfaceTheLinesStayAsTheyAre) {
    VarIdDataInfStore::m_pDataAccessInf = nullptr;
    open(1, 0, 0);
    press_keys(editor, "U");
    EXPECT_EQ(aliases(), "..........");
}

TEST_F(SlotListEditor, TheSlotIsChosenByItsPlace) {
    open(1, 0, 0);
    press_keys(editor, "2U");
    EXPECT_EQ(editor.press(Editor_key::SELECT), Editor_result::ACCEPTED);
    EXPECT_EQ(entry.Get_integer_enum(), 2);
}

}  // namespace
