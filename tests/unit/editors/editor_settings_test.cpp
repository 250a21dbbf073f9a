// How entries are edited in their own ways, and how editors follow entries that change under them.
#include <frontpanel_editors/address_editor.h>
#include <frontpanel_editors/enum_editor.h>
#include <frontpanel_editors/number_editor.h>
#include <frontpanel_editors/text_editor.h>
#include <frontpanel_editors/time_editor.h>
#include <frontpanel_editors/warning_editor.h>
#include <gtest/gtest.h>

#include <climits>
#include <memory>

#include "editor_fixture.h"
#include "support/fake_binding.h"
#include "support/shown_options.h"

using namespace frontpanel;

namespace {

using namespace editor_fixture;

struct Number : Range_entry {
    Number(int min, int max, int start, char* format)
        : Range_entry("Gain", "Gain", 100, support::any_index(), min, max, start, format, format,
                      nullptr, READ_WRITE, VISIBLE_ALL, true, SHORTCUT_NONE, nullptr, nullptr,
                      nullptr) {}
    void allow(int min, int max) { setValidRangeAndValues({{min, max + 1, {}}}); }
    int value() {
        int held = 0;
        Get_value(&held, sizeof held);
        return held;
    }
};

char no_format[] = "";

struct A_number {
    A_number(int min, int max, int start, const Editor_settings& settings)
        : entry(min, max, start, no_format) {
        editor.configure(settings);
        editor.Prepare(&entry);
    }
    Number entry;
    Number_editor editor;
};

struct A_choice {
    explicit A_choice(const Editor_settings& settings,
                      std::vector<std::string> texts = {"Off", "Low", "High"}, int start = 0)
        : names(std::move(texts)),
          array(array_of(names)),
          entry("Source", "Source", 120, support::any_index(), 0,
                static_cast<int>(names.size()) - 1, start, array.data(),
                static_cast<unsigned int>(names.size()), nullptr, Data_entry::READ_WRITE,
                Data_entry::VISIBLE_ALL, true, Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr,
                nullptr, nullptr, nullptr) {
        editor.configure(settings);
        editor.Prepare(&entry);
    }
    static std::vector<char*> array_of(std::vector<std::string>& texts) {
        std::vector<char*> array;
        for (std::string& text : texts) {
            array.push_back(text.data());
        }
        return array;
    }
    void replace_options(std::vector<std::string> texts) {
        names = std::move(texts);
        array = array_of(names);
        entry.Update_value(array.data(), static_cast<int>(names.size()));
        entry.count_options(static_cast<int>(names.size()));
        entry.updateControlOptionMap();
    }
    void show_only(const std::vector<int>& keys) { support::show_only(entry, keys); }
    int key() { return entry.Get_integer(); }

    std::vector<std::string> names;
    std::vector<char*> array;
    struct Options : Enum_entry {
        using Enum_entry::Enum_entry;
        void count_options(int size) {
            map_enum_to_options.clear();
            m_size_enum = size;
            m_max_enum = size - 1;
        }
    };
    Options entry;
    Enum_editor editor;
};

Editor_settings stepping_by(int step) {
    Editor_settings settings;
    settings.step = step;
    return settings;
}

Editor_settings going_round() {
    Editor_settings settings;
    settings.wrap = true;
    return settings;
}

Editor_settings with_preview() {
    Editor_settings settings;
    settings.preview = true;
    return settings;
}

Editor_settings typed_from(const std::string& characters, bool wrap = false) {
    Editor_settings settings;
    settings.characters = characters;
    settings.wrap = wrap;
    return settings;
}

// --- the step of a number

TEST(NumberStep, IsTheEntrysOwn) {
    A_number number(0, 100, 50, stepping_by(5));
    EXPECT_EQ(number.editor.view(20).step, "step 5");
    press_keys(number.editor, "2U");
    EXPECT_EQ(number.editor.proposed_value(), 60);
    press_keys(number.editor, "3D");
    EXPECT_EQ(number.editor.proposed_value(), 45);
}

TEST(NumberStep, GrowsByTensAndNotBelowTheEntrysOwn) {
    A_number number(0, 1000, 500, stepping_by(25));
    press_keys(number.editor, ">");
    EXPECT_EQ(number.editor.step_size(), 25);
    press_keys(number.editor, "<");
    EXPECT_EQ(number.editor.step_size(), 250);
    press_keys(number.editor, "<>>");
    EXPECT_EQ(number.editor.step_size(), 25);
}

TEST(NumberStep, BelowOneCountsAsOne) {
    for (const int step : {0, -7, INT_MIN}) {
        A_number number(0, 100, 50, stepping_by(step));
        press_keys(number.editor, "U");
        EXPECT_EQ(number.editor.proposed_value(), 51) << step;
    }
}

TEST(NumberStep, AQuickDetentCountsForSeveral) {
    A_number number(0, 100, 50, stepping_by(2));
    EXPECT_EQ(number.editor.press(Editor_key::UP, 4), Editor_result::OPEN);
    EXPECT_EQ(number.editor.proposed_value(), 58);
    EXPECT_EQ(number.editor.press(Editor_key::DOWN, 10), Editor_result::OPEN);
    EXPECT_EQ(number.editor.proposed_value(), 38);
    EXPECT_EQ(number.editor.press(Editor_key::UP, INT_MAX), Editor_result::OPEN);
    EXPECT_EQ(number.editor.proposed_value(), 100);
}

TEST(NumberStep, ReachesTheLimitsOfIntegers) {
    A_number number(INT_MIN, INT_MAX - 1, 0, stepping_by(INT_MAX));
    press_keys(number.editor, "3U");
    EXPECT_EQ(number.editor.proposed_value(), INT_MAX - 1);
    number.editor.press(Editor_key::DOWN, INT_MAX);
    EXPECT_EQ(number.editor.proposed_value(), INT_MIN);
}

// --- going round

TEST(Wrapping, ANumberGoesRoundFromItsEndsOnly) {
    A_number number(0, 9, 7, going_round());
    press_keys(number.editor, "<U");
    EXPECT_EQ(number.editor.proposed_value(), 8);
    press_keys(number.editor, "U");
    EXPECT_EQ(number.editor.proposed_value(), 9);
    press_keys(number.editor, "U");
    EXPECT_EQ(number.editor.proposed_value(), 0);
    press_keys(number.editor, "D");
    EXPECT_EQ(number.editor.proposed_value(), 9);
    EXPECT_EQ(number.editor.press(Editor_key::DOWN, 20), Editor_result::OPEN);
    EXPECT_EQ(number.editor.proposed_value(), 0);
}

TEST(Wrapping, AnOptionGoesRound) {
    A_choice choice(going_round());
    press_keys(choice.editor, "D");
    EXPECT_EQ(choice.editor.view(20).text, "High");
    press_keys(choice.editor, "U");
    EXPECT_EQ(choice.editor.view(20).text, "Off");
}

TEST(Wrapping, ABlockOfAnAddressGoesRound) {
    Text_leaf<Ip_entry> entry(200, Data_entry::READ_WRITE);
    entry.put("10.0.0.255");
    Address_editor editor;
    editor.configure(going_round());
    editor.Prepare(&entry);
    press_keys(editor, "U");
    EXPECT_EQ(editor.proposed_address(), "10.0.0.0");
    press_keys(editor, "D");
    EXPECT_EQ(editor.proposed_address(), "10.0.0.255");
}

TEST(Wrapping, AFieldOfATimeGoesRoundWithinTheCalendar) {
    Text_leaf<Time_entry> entry(200, Data_entry::READ_WRITE, 32u);
    entry.put("2024-02-29");
    Time_editor editor;
    editor.configure(going_round());
    editor.Prepare(&entry);
    press_keys(editor, "U");
    EXPECT_EQ(editor.proposed_time(), "2024-02-01");
    press_keys(editor, "D");
    EXPECT_EQ(editor.proposed_time(), "2024-02-29");
}

TEST(Wrapping, ACharacterGoesRoundWithinThePrintableRange) {
    Text_leaf<String_entry> entry(200, Data_entry::READ_WRITE, 8u);
    entry.put("\x7f");
    Text_editor editor;
    editor.configure(going_round());
    editor.Prepare(&entry);
    press_keys(editor, "U");
    EXPECT_EQ(editor.proposed_text(), " ");
    press_keys(editor, "D");
    EXPECT_EQ(editor.proposed_text(), "\x7f");
}

TEST(Wrapping, IsOffUnlessTold) {
    A_choice choice(Editor_settings{});
    press_keys(choice.editor, "D");
    EXPECT_EQ(choice.editor.view(20).text, "Off");
}

// --- the characters of a text

struct Characters_case {
    const char* start;
    const char* characters;
    bool wrap;
    const char* keys;
    const char* proposed;
};

void PrintTo(const Characters_case& of, std::ostream* out) {
    *out << '"' << of.start << "\" of \"" << of.characters << "\" " << of.keys;
}

class Characters : public testing::TestWithParam<Characters_case> {};

TEST_P(Characters, AreTheOnesThatStepsLeadTo) {
    Text_leaf<String_entry> entry(200, Data_entry::READ_WRITE, 8u);
    entry.put(GetParam().start);
    Text_editor editor;
    editor.configure(typed_from(GetParam().characters, GetParam().wrap));
    editor.Prepare(&entry);
    press_keys(editor, GetParam().keys);
    EXPECT_EQ(editor.proposed_text(), GetParam().proposed);
}

INSTANTIATE_TEST_SUITE_P(
    Sets, Characters,
    testing::Values(
        Characters_case{"A", "XAC", false, "U", "C"}, Characters_case{"A", "XAC", false, "D", "X"},
        Characters_case{"A", "XAC", false, "9U", "C"},
        Characters_case{"A", "XAC", false, "9D", "X"}, Characters_case{"C", "XAC", true, "U", "X"},
        Characters_case{"X", "XAC", true, "D", "C"},
        // from a character outside the set to the end that the encoder comes from
        Characters_case{"?", "XAC", false, "U", "X"}, Characters_case{"?", "XAC", false, "D", "C"},
        Characters_case{"\xe4", "XAC", false, "U", "X"},
        // a new character is the first one that can be seen
        Characters_case{"C", "XAC", false, "I", "XC"},
        Characters_case{"C", " XC", false, "I", "XC"},
        Characters_case{"C", "XAC", false, ">UU", "CA"},
        Characters_case{"C", "0", true, "U", "0"}));

// --- preview

TEST(Preview, EveryStepIsStoredAndEscapeGivesTheOldNumberBack) {
    A_number number(0, 9, 4, with_preview());
    EXPECT_EQ(number.editor.press(Editor_key::UP), Editor_result::STORED);
    EXPECT_EQ(number.entry.value(), 5);
    EXPECT_EQ(number.editor.press(Editor_key::UP), Editor_result::STORED);
    EXPECT_EQ(number.entry.value(), 6);
    EXPECT_EQ(number.editor.press(Editor_key::ESCAPE), Editor_result::RESTORED);
    EXPECT_EQ(number.entry.value(), 4);
}

TEST(Preview, AKeyThatChangesNothingStoresNothing) {
    A_number number(0, 9, 9, with_preview());
    EXPECT_EQ(number.editor.press(Editor_key::UP), Editor_result::OPEN);
    EXPECT_EQ(number.editor.press(Editor_key::COARSER), Editor_result::OPEN);
    EXPECT_EQ(number.editor.press(Editor_key::ESCAPE), Editor_result::DISCARDED);
}

TEST(Preview, SelectKeepsWhatIsStoredAlready) {
    A_number number(0, 9, 4, with_preview());
    number.editor.press(Editor_key::UP);
    EXPECT_EQ(number.editor.press(Editor_key::SELECT), Editor_result::DISCARDED);
    EXPECT_EQ(number.entry.value(), 5);
}

TEST(Preview, WorksOnOptionsTextsAddressesAndTimes) {
    A_choice choice(with_preview());
    EXPECT_EQ(choice.editor.press(Editor_key::UP), Editor_result::STORED);
    EXPECT_EQ(choice.key(), 1);
    EXPECT_EQ(choice.editor.press(Editor_key::ESCAPE), Editor_result::RESTORED);
    EXPECT_EQ(choice.key(), 0);

    const auto check = [](auto& editor, auto& entry, const char* before, const char* after) {
        entry.put(before);
        editor.configure(with_preview());
        editor.Prepare(&entry);
        EXPECT_EQ(editor.press(Editor_key::UP), Editor_result::STORED);
        EXPECT_EQ(entry.text(), after);
        EXPECT_EQ(editor.press(Editor_key::ESCAPE), Editor_result::RESTORED);
        EXPECT_EQ(entry.text(), before);
    };
    Text_leaf<String_entry> text(200, Data_entry::READ_WRITE, 8u);
    Text_editor text_editor;
    check(text_editor, text, "AB", "AC");
    Text_leaf<Ip_entry> address(201, Data_entry::READ_WRITE);
    Address_editor address_editor;
    check(address_editor, address, "10.0.0.1", "10.0.0.2");
    Text_leaf<Time_entry> time(202, Data_entry::READ_WRITE, 32u);
    Time_editor time_editor;
    check(time_editor, time, "12:30", "12:31");
}

TEST(Preview, AnOptionThatIsGoneCannotBeGivenBack) {
    A_choice choice(with_preview());
    choice.editor.press(Editor_key::UP);
    choice.show_only({1, 2});
    EXPECT_EQ(choice.editor.press(Editor_key::ESCAPE), Editor_result::NOT_RESTORED);
    EXPECT_EQ(choice.key(), 1);
}

TEST(Preview, AnEditorThatIsOpenedAgainStartsWithoutOldValue) {
    A_number number(0, 9, 4, with_preview());
    number.editor.press(Editor_key::UP);
    number.editor.ExitLEDs();
    number.editor.Prepare(&number.entry);
    EXPECT_EQ(number.editor.press(Editor_key::ESCAPE), Editor_result::DISCARDED);
    EXPECT_EQ(number.entry.value(), 5);
}

// --- warnings of a binding: refused once, and again when they end

struct Warned_number : A_number {
    // Warns of values above 5, as an engine does: a warning that has not changed is not updated.
    explicit Warned_number(const Editor_settings& settings) : A_number(0, 9, 4, settings) {
        auto binding = std::make_unique<support::Fake_binding>();
        binding->offer(SUGGESTION_WARNING);
        binding->on_evaluate = [last = false](support::Fake_binding& engine, int) mutable {
            const bool warns = engine.override_value.i > 5;
            if (warns != last) {
                last = warns;
                engine.suggest_warnings(warns ? std::vector<std::string>{"loud"}
                                              : std::vector<std::string>());
            }
        };
        entry.Set_binding_object(binding.release());
    }
};

TEST(Retrying, StoresWhatWasRefusedWithTheAnswerOfItsKey) {
    Warned_number number{Editor_settings{}};
    press_keys(number.editor, "2U");
    EXPECT_EQ(number.editor.press(Editor_key::SELECT), Editor_result::REFUSED);
    EXPECT_EQ(number.entry.value(), 4);
    EXPECT_EQ(number.editor.retry(), Editor_result::ACCEPTED);
    EXPECT_EQ(number.entry.value(), 6);
}

TEST(Retrying, AStepOfAPreviewGoesOn) {
    Warned_number number(with_preview());
    EXPECT_EQ(number.editor.press(Editor_key::UP), Editor_result::STORED);
    EXPECT_EQ(number.editor.press(Editor_key::UP), Editor_result::REFUSED);
    EXPECT_EQ(number.editor.retry(), Editor_result::STORED);
    EXPECT_EQ(number.editor.press(Editor_key::UP), Editor_result::STORED);
    EXPECT_EQ(number.entry.value(), 7);
    // that the warning ends is a change too
    EXPECT_EQ(number.editor.press(Editor_key::ESCAPE), Editor_result::NOT_RESTORED);
    EXPECT_TRUE(number.editor.restore());
    EXPECT_EQ(number.entry.value(), 4);
}

TEST(Retrying, AClosedEditorHasNothingToRetry) {
    Number_editor editor;
    EXPECT_EQ(editor.retry(), Editor_result::DISCARDED);
    EXPECT_FALSE(editor.restore());
    editor.propose_held();
}

TEST(Restoring, GivesTheEntryItsOldValueAndKeepsTheProposedOne) {
    A_number number(0, 9, 4, Editor_settings{});
    press_keys(number.editor, "U");
    EXPECT_EQ(number.editor.press(Editor_key::SELECT), Editor_result::ACCEPTED);
    EXPECT_TRUE(number.editor.restore());
    EXPECT_EQ(number.entry.value(), 4);
    EXPECT_EQ(number.editor.proposed_value(), 5);
}

TEST(Restoring, AStepThatWasRefusedIsProposedNoLonger) {
    Warned_number number(with_preview());
    EXPECT_EQ(number.editor.press(Editor_key::UP, 2), Editor_result::REFUSED);
    number.editor.propose_held();
    EXPECT_EQ(number.editor.proposed_value(), 4);
    EXPECT_EQ(number.entry.value(), 4);
}

// --- entries that change under their editor

TEST(Following, ANumberMovesIntoANarrowedRange) {
    A_number number(0, 100, 50, Editor_settings{});
    press_keys(number.editor, "5U");
    EXPECT_EQ(number.editor.follow(), Editor_change::NONE);
    number.entry.allow(0, 60);
    EXPECT_EQ(number.editor.follow(), Editor_change::NONE);
    EXPECT_EQ(number.editor.proposed_value(), 55);
    number.entry.allow(0, 40);
    EXPECT_EQ(number.editor.follow(), Editor_change::MOVED);
    EXPECT_EQ(number.editor.proposed_value(), 40);
    number.entry.allow(70, 100);
    EXPECT_EQ(number.editor.follow(), Editor_change::MOVED);
    EXPECT_EQ(number.editor.proposed_value(), 70);
}

TEST(Following, AnOptionIsFoundAgainInAReplacedList) {
    A_choice choice{Editor_settings{}};
    press_keys(choice.editor, "2U");
    EXPECT_EQ(choice.editor.follow(), Editor_change::NONE);
    choice.replace_options({"High", "Max"});
    EXPECT_EQ(choice.editor.follow(), Editor_change::KEPT);
    EXPECT_EQ(choice.editor.view(20).text, "High");
    EXPECT_EQ(choice.editor.view(20).step, "1/2");
    EXPECT_EQ(choice.editor.follow(), Editor_change::NONE);
    choice.replace_options({"Min", "Max"});
    EXPECT_EQ(choice.editor.follow(), Editor_change::MOVED);
    EXPECT_EQ(choice.editor.view(20).text, "Min");
}

TEST(Following, AnOptionOfTheSameTextIsToldByItsPlace) {
    A_choice choice(Editor_settings{}, {"Card", "Off", "Card", "Auto"}, 2);
    choice.show_only({0, 2, 3});
    EXPECT_EQ(choice.editor.follow(), Editor_change::KEPT);
    EXPECT_EQ(choice.editor.press(Editor_key::SELECT), Editor_result::ACCEPTED);
    EXPECT_EQ(choice.key(), 2);
}

TEST(Following, AHiddenOptionGivesWayToTheEntrysOwn) {
    A_choice choice{Editor_settings{}};
    press_keys(choice.editor, "2U");
    choice.show_only({0, 1});
    EXPECT_EQ(choice.editor.follow(), Editor_change::MOVED);
    EXPECT_EQ(choice.editor.view(20).text, "Off");
}

TEST(Following, ANumberWithoutAllowedRangeHasNoValue) {
    A_number number(0, 100, 50, Editor_settings{});
    number.entry.setValidRangeAndValues({});
    EXPECT_EQ(number.editor.follow(), Editor_change::NO_VALUE);
    EXPECT_EQ(number.editor.proposed_value(), 50);
}

TEST(Following, AViewedValueIsShownAnewWithoutItsScrollingStartingAgain) {
    Text_leaf<String_entry> entry(200, Data_entry::READ_ONLY, 8u);
    entry.put("ABCDEF");
    Text_editor editor;
    editor.Prepare(&entry);
    EXPECT_EQ(frames(editor, 4, 4), (std::vector<std::string>{"ABCD", "ABCD", "ABCD", "BCDE"}));
    EXPECT_EQ(editor.follow(), Editor_change::NONE);
    EXPECT_EQ(editor.view(4).text, "CDEF");
    entry.put("XYZ");
    EXPECT_EQ(editor.follow(), Editor_change::NONE);
    EXPECT_EQ(editor.view(4).text, "XYZ");
}

TEST(Following, AnEditedTextStaysAsItIs) {
    Text_leaf<String_entry> entry(200, Data_entry::READ_WRITE, 8u);
    entry.put("AB");
    Text_editor editor;
    editor.Prepare(&entry);
    press_keys(editor, "U");
    entry.put("XY");
    EXPECT_EQ(editor.follow(), Editor_change::NONE);
    EXPECT_EQ(editor.proposed_text(), "AC");
}

TEST(Following, AWarningShowsItsLatestText) {
    Text_leaf<String_entry> entry(65549, Data_entry::READ_ONLY, 16u);
    entry.put("Fan stopped");
    Warning_editor editor;
    editor.Prepare(&entry);
    entry.put("Fan runs");
    EXPECT_EQ(editor.follow(), Editor_change::NONE);
    EXPECT_EQ(editor.view(20).text, "Fan runs");
}

}  // namespace
