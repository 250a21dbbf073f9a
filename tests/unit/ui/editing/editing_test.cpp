// What happens to a value between the first key and its write: settings of entries and encoder, warnings of
// binding engines, entries that change under their editor.
#include <chrono>
#include <memory>

#include "support/fake_binding.h"
#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

using std::chrono::milliseconds;
using support::Fake_binding;

constexpr const char* PARAMETERS = R"(
    {"pid": 5, "type": "integer", "min": 0, "max": 2, "value": 1},
    {"pid": 20, "type": "text", "length": 8, "value": "Main"},
    {"pid": 21, "type": "text", "length": 15, "value": "192.0.2.1"},
    {"pid": 22, "type": "text", "length": 20, "value": "12:30"},
    {"pid": 102, "type": "integer", "min": 0, "max": 100, "value": 50},
    {"pid": 103, "type": "integer", "min": 0, "max": 100, "value": 7})";

constexpr const char* WIDTH = R"({"type": "range", "name": "Width", "pid": 102})";
constexpr const char* WIDTH_AND_LEVEL = R"(
    {"type": "range", "name": "Width", "pid": 102}, {"type": "range", "name": "Level", "pid": 103})";
constexpr const char* TEXT = R"({"type": "text", "name": "Label", "pid": 20})";
constexpr const char* ADDRESS = R"({"type": "address", "name": "Address", "pid": 21})";
constexpr const char* TIME = R"({"type": "time", "name": "Clock", "pid": 22})";
constexpr const char* CHOICE =
    R"({"type": "enum", "name": "Source", "pid": 5, "choices": ["Off", "Line", "Card"]})";

// The values that the device took, in order.
std::string written(Menu_panel& panel) {
    std::string all;
    for (const Memory_device::Write& write : panel.device().writes()) {
        if (write.result == 0) {
            all += (all.empty() ? "" : " ") + write.value;
        }
    }
    return all;
}

// An engine whose suggestions follow from `visible`, `access` and `range`, as if they were parameters.
struct Rules {
    explicit Rules(Data_entry& entry) {
        auto* const engine = new Fake_binding;  // the entry's
        engine->on_evaluate = [this](Fake_binding& suggesting, int flags) {
            if (flags != 5) {
                suggesting.suggest_visibility(visible ? 1 : 0);
                suggesting.suggest_access(access);
                suggesting.suggest_range(range);
            }
        };
        entry.Set_binding_object(engine);
    }
    bool visible = true;
    Data_entry::Data_access access = Data_entry::READ_WRITE;
    std::vector<std::vector<int>> range{{0, 100}};
};

// --- live preview

struct Preview_case {
    const char* item;
    const char* stepped;  // the display after one step
    const char* writes;   // after one step and escape
};

TEST(EditingPreview, EachStepIsWrittenAtOnceAndBackWritesTheOldValue) {
    for (const Preview_case& row :
         {Preview_case{WIDTH, "51                  ", "51 50"},
          Preview_case{CHOICE, "Card                ", "2 1"},
          Preview_case{TEXT, "Maio                ", "Maio Main"},
          Preview_case{ADDRESS, "192.0.2.2           ", "192.0.2.2 192.0.2.1"},
          Preview_case{TIME, "12:31               ", "12:31 12:30"}}) {
        SCOPED_TRACE(row.item);
        Menu_panel panel(menu_text(PARAMETERS, row.item));
        const Lines before = panel.lines();
        panel.settings(0).preview = true;
        panel.press(Key::SELECT).press(Key::UP);
        EXPECT_EQ(panel.lines()[1], row.stepped);
        EXPECT_TRUE(panel.leds().edit);
        panel.press(Key::BACK);
        EXPECT_EQ(written(panel), row.writes);
        EXPECT_EQ(panel.lines(), before);
        EXPECT_FALSE(panel.leds().edit);
    }
}

TEST(EditingPreview, SelectKeepsWhatIsWrittenAndWritesNothingMore) {
    Menu_panel panel(menu_text(PARAMETERS, WIDTH));
    panel.settings(0).preview = true;
    panel.press(Key::SELECT).press(Key::UP, 2).press(Key::SELECT);
    EXPECT_EQ(written(panel), "51 52");
    EXPECT_EQ(panel.lines()[0], ">Width            52");
}

TEST(EditingPreview, WithoutAStepNothingIsWritten) {
    Menu_panel panel(menu_text(PARAMETERS, WIDTH));
    panel.settings(0).preview = true;
    panel.press(Key::SELECT).press(Key::COARSER).press(Key::BACK);
    EXPECT_EQ(written(panel), "");
}

TEST(EditingPreview, AnEntryWithoutItIsWrittenBySelectOnly) {
    Menu_panel panel(menu_text(PARAMETERS, WIDTH_AND_LEVEL));
    panel.settings(0).preview = true;
    panel.press(Key::DOWN).press(Key::SELECT).press(Key::UP, 2);
    EXPECT_EQ(written(panel), "");
    panel.press(Key::SELECT);
    EXPECT_EQ(written(panel), "9");
}

TEST(EditingPreview, AStepThatCannotBeWrittenSaysSoAndShowsTheDevicesValue) {
    Menu_panel panel(menu_text(PARAMETERS, WIDTH));
    panel.settings(0).preview = true;
    panel.press(Key::SELECT).press(Key::UP);
    panel.fail(Memory_device::Operation_kind::WRITE, 102);
    panel.press(Key::UP);
    EXPECT_EQ(panel.lines(), (Lines{"Width               ", "write failed        "}));
    EXPECT_TRUE(panel.leds().alarm);
    EXPECT_TRUE(panel.leds().edit);
    panel.press(Key::UP);
    EXPECT_EQ(panel.lines(), (Lines{"Width               ", "51                  "}));
    panel.repair();
    panel.press(Key::BACK);
    EXPECT_EQ(panel.device().integer(102, 0), 50);
}

TEST(EditingPreview, AnOldValueThatCannotBeWrittenBackSaysSo) {
    Menu_panel panel(menu_text(PARAMETERS, WIDTH));
    panel.settings(0).preview = true;
    panel.press(Key::SELECT).press(Key::UP);
    panel.fail(Memory_device::Operation_kind::WRITE, 102);
    panel.press(Key::BACK);
    EXPECT_EQ(panel.lines(), (Lines{"Width               ", "write failed        "}));
    panel.press(Key::BACK);
    EXPECT_EQ(panel.lines()[0], ">Width            51");
}

// --- steps, wrap, direction

TEST(EditingSteps, AreTheEntrysOwn) {
    Menu_panel panel(menu_text(PARAMETERS, WIDTH));
    panel.settings(0).step = 5;
    panel.press(Key::SELECT).press(Key::UP);
    EXPECT_EQ(panel.lines(), (Lines{"Width         step 5", "55                  "}));
    panel.press(Key::COARSER);
    EXPECT_EQ(panel.lines(), (Lines{"Width        step 50", "55                  "}));
    EXPECT_EQ(panel.controller().draw().lcd.cursor_column(), 0);
}

TEST(EditingSteps, TheEncoderGoesRoundInListsAndEditorsAlike) {
    Menu_panel panel(menu_text(PARAMETERS, WIDTH_AND_LEVEL));
    panel.set_encoder({false, true, true});
    panel.press(Key::UP);
    EXPECT_EQ(panel.lines(), (Lines{" Width            50", ">Level             7"}));
    panel.press(Key::SELECT).press(Key::DOWN, 8);
    EXPECT_EQ(panel.lines()[1], "100                 ");
    panel.press(Key::BACK).press(Key::DOWN);
    EXPECT_EQ(panel.lines()[0], ">Width            50");
}

TEST(EditingSteps, AnEntryMayDifferFromTheEncoderInGoingRound) {
    Menu_panel panel(menu_text(PARAMETERS, CHOICE));
    panel.settings(0).wrap = false;
    panel.set_encoder({false, true, true});
    panel.press(Key::SELECT).press(Key::UP, 3);
    EXPECT_EQ(panel.lines(), (Lines{"Source           3/3", "Card                "}));
    panel.press(Key::BACK);
    panel.settings(0).wrap = true;
    panel.set_encoder({false, false, true});
    panel.press(Key::SELECT).press(Key::UP, 2);
    EXPECT_EQ(panel.lines(), (Lines{"Source           1/3", "Off                 "}));
}

TEST(EditingSteps, AReversedEncoderIsReversedInListsAndEditorsAlike) {
    Menu_panel panel(menu_text(PARAMETERS, WIDTH_AND_LEVEL));
    panel.set_encoder({true, false, true});
    panel.press(Key::UP);
    EXPECT_EQ(panel.lines(), (Lines{" Width            50", ">Level             7"}));
    panel.press(Key::SELECT).press(Key::UP);
    EXPECT_EQ(panel.lines()[1], "6                   ");
    panel.press(Key::DOWN, 3);
    EXPECT_EQ(panel.lines()[1], "9                   ");
}

class EditingSpeed : public testing::Test {
protected:
    EditingSpeed() : panel(menu_text(PARAMETERS, WIDTH_AND_LEVEL)) {
        panel.controller().set_clock([this] { return now; });
        panel.settings(0).acceleration = 8;
        panel.press(Key::SELECT);
    }
    // Turns up by one detent after a time, and gives the value that is shown then.
    std::string turn(int after, Key::Kind direction = Key::UP) {
        now += milliseconds(after);
        panel.press(direction);
        return panel.lines()[1].substr(0, panel.lines()[1].find(' '));
    }

    Menu_panel panel;
    milliseconds now{1000};
};

TEST_F(EditingSpeed, AQuickTurnMakesLargerSteps) {
    EXPECT_EQ(turn(0), "51");
    EXPECT_EQ(turn(200), "52");
    EXPECT_EQ(turn(120), "53");
    EXPECT_EQ(turn(60), "55");
    EXPECT_EQ(turn(30), "59");
    EXPECT_EQ(turn(10), "67");
    EXPECT_EQ(turn(0), "75");
    EXPECT_EQ(turn(500), "76");
}

TEST_F(EditingSpeed, AnotherDirectionStartsSlowly) {
    EXPECT_EQ(turn(0), "51");
    EXPECT_EQ(turn(10), "59");
    EXPECT_EQ(turn(10, Key::DOWN), "58");
    EXPECT_EQ(turn(10, Key::DOWN), "50");
}

TEST_F(EditingSpeed, OneSwitchTurnsItOff) {
    panel.press(Key::BACK);
    panel.set_encoder({false, false, false});
    panel.press(Key::SELECT);
    EXPECT_EQ(turn(0), "51");
    EXPECT_EQ(turn(1), "52");
    EXPECT_EQ(turn(1), "53");
}

TEST_F(EditingSpeed, AnEntryThatDoesNotAskForItIsTurnedOneByOne) {
    panel.press(Key::BACK).press(Key::DOWN).press(Key::SELECT);
    EXPECT_EQ(turn(0), "8");
    EXPECT_EQ(turn(1), "9");
}

TEST_F(EditingSpeed, TheFirstDetentOfAnEditorIsSlow) {
    EXPECT_EQ(turn(0), "51");
    panel.press(Key::BACK).press(Key::SELECT);
    EXPECT_EQ(turn(1), "51");
}

// --- texts

TEST(EditingTexts, AreInsertedAndDeletedWithinTheirLength) {
    Menu_panel panel(menu_text(PARAMETERS, TEXT));
    panel.press(Key::SELECT).press(Key::COARSER).press(Key::INSERT);
    EXPECT_EQ(panel.lines(), (Lines{"Label               ", "MaAin               "}));
    EXPECT_EQ(panel.controller().draw().lcd.cursor_column(), 2);
    panel.press(Key::DOWN, 20).press(Key::FINER).press(Key::DELETE);
    EXPECT_EQ(panel.lines()[1], "Ma-n                ");
    panel.press(Key::INSERT, 20);
    EXPECT_EQ(panel.lines()[1], "Ma-AAAAn            ");
    panel.press(Key::DELETE, 20);
    EXPECT_EQ(panel.lines()[1], "                    ");
    panel.press(Key::INSERT).press(Key::SELECT);
    EXPECT_EQ(written(panel), "A");
}

TEST(EditingTexts, AreTypedFromTheirCharacters) {
    Menu_panel panel(menu_text(PARAMETERS, TEXT));
    panel.settings(0).characters = "ABn";
    panel.press(Key::SELECT).press(Key::DOWN);
    EXPECT_EQ(panel.lines()[1], "MaiB                ");
    panel.press(Key::DOWN, 5).press(Key::SELECT);
    EXPECT_EQ(written(panel), "MaiA");
}

TEST(EditingTexts, InsertAndDeleteDoNothingElsewhere) {
    for (const char* const item : {WIDTH, ADDRESS, TIME, CHOICE}) {
        Menu_panel panel(menu_text(PARAMETERS, item));
        panel.press(Key::INSERT).press(Key::DELETE);
        EXPECT_EQ(panel.lines()[0].substr(0, 1), ">");
        panel.press(Key::SELECT);
        const Lines opened = panel.lines();
        panel.press(Key::INSERT).press(Key::DELETE);
        EXPECT_EQ(panel.lines(), opened) << item;
    }
}

// --- warnings

// Values above 50 have the warnings that are told; an engine says what has changed only.
class EditingWarned : public testing::Test {
protected:
    void warn_of(Menu_panel& panel, Data_entry& entry) {
        auto* const engine = new Fake_binding;  // the entry's
        engine->offer(SUGGESTION_WARNING);
        engine->on_evaluate = [this](Fake_binding& suggesting, int flags) {
            const bool warns = flags == 5 && suggesting.override_value.i > from;
            const std::vector<std::string> raised = warns ? warnings : std::vector<std::string>();
            if (flags == 5 && raised != m_last) {
                m_last = raised;
                suggesting.suggest_warnings(raised);
            }
        };
        panel.controller().set_warning_armer([this] { m_last.clear(); });
        engine->on_warning = [&panel](const std::string& text) { panel.controller().warn(text); };
        entry.Set_binding_object(engine);
    }

    std::vector<std::string> warnings{"too wide"};
    int from = 50;

private:
    std::vector<std::string> m_last;
};

TEST_F(EditingWarned, AreAskedBeforeTheWriteAndSelectWrites) {
    Menu_panel panel(menu_text(PARAMETERS, WIDTH));
    warn_of(panel, panel.item(0));
    panel.press(Key::SELECT).press(Key::UP).press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{"Width: too wide     ", "Enter yes, Esc no   "}));
    EXPECT_TRUE(panel.leds().edit);
    EXPECT_EQ(written(panel), "");
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{">Width            51", "                    "}));
    EXPECT_EQ(written(panel), "51");
}

TEST_F(EditingWarned, BackGoesOnEditingAndTheWarningComesAgain) {
    Menu_panel panel(menu_text(PARAMETERS, WIDTH));
    warn_of(panel, panel.item(0));
    panel.press(Key::SELECT).press(Key::UP);
    for (int i = 0; i < 3; ++i) {
        panel.press(Key::SELECT);
        EXPECT_EQ(panel.lines(), (Lines{"Width: too wide     ", "Enter yes, Esc no   "}));
        panel.press(Key::BACK);
        EXPECT_EQ(panel.lines(), (Lines{"Width               ", "51                  "}));
    }
    panel.press(Key::BACK);
    EXPECT_EQ(panel.lines(), (Lines{">Width            50", "                    "}));
    EXPECT_EQ(written(panel), "");
}

// The old value is warned of with the same words, so that the engine has nothing new to say.
TEST_F(EditingWarned, AWarningThatNeverChangesComesAgainToo) {
    from = -1;
    Menu_panel panel(menu_text(PARAMETERS, WIDTH));
    warn_of(panel, panel.item(0));
    panel.press(Key::SELECT).press(Key::UP);
    for (int i = 0; i < 3; ++i) {
        panel.press(Key::SELECT);
        EXPECT_EQ(panel.lines(), (Lines{"Width: too wide     ", "Enter yes, Esc no   "}));
        panel.press(Key::BACK);
    }
    EXPECT_EQ(written(panel), "");
    panel.press(Key::SELECT, 2);
    EXPECT_EQ(written(panel), "51");
    panel.press(Key::SELECT).press(Key::UP).press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{"Width: too wide     ", "Enter yes, Esc no   "}));
    panel.press(Key::BACK, 2);
    EXPECT_EQ(panel.lines()[0], ">Width            51");
    EXPECT_EQ(written(panel), "51");
}

TEST_F(EditingWarned, AValueWithoutWarningIsWrittenUnasked) {
    Menu_panel panel(menu_text(PARAMETERS, WIDTH));
    warn_of(panel, panel.item(0));
    panel.press(Key::SELECT).press(Key::UP).press(Key::SELECT).press(Key::BACK);
    panel.press(Key::DOWN, 2).press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{">Width            49", "                    "}));
    EXPECT_EQ(written(panel), "49");
}

TEST_F(EditingWarned, AWarningThatEndsIsNoRefusal) {
    Menu_panel panel(menu_text(PARAMETERS, WIDTH));
    warn_of(panel, panel.item(0));
    panel.press(Key::SELECT).press(Key::UP).press(Key::SELECT, 2);
    panel.press(Key::SELECT).press(Key::DOWN, 4).press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{">Width            47", "                    "}));
    EXPECT_EQ(written(panel), "51 47");
}

TEST_F(EditingWarned, SeveralAreShownOneByOneAndLongOnesHavePages) {
    warnings = {"too wide for a mono listener", "really"};
    Menu_panel panel(menu_text(PARAMETERS, WIDTH));
    warn_of(panel, panel.item(0));
    panel.press(Key::SELECT).press(Key::UP).press(Key::SELECT);
    EXPECT_EQ(panel.lines()[0], "Width: too wide  1/3");
    panel.press(Key::DOWN);
    EXPECT_EQ(panel.lines()[0], "for a mono       2/3");
    panel.press(Key::UP).press(Key::DOWN).press(Key::COARSER).shortcut(1);
    EXPECT_EQ(panel.lines()[0], "for a mono       2/3");
    EXPECT_TRUE(panel.controller().draw().keys.turns_pages);
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{"Width: really       ", "Enter yes, Esc no   "}));
    EXPECT_FALSE(panel.controller().draw().keys.turns_pages);
    EXPECT_EQ(written(panel), "");
    panel.press(Key::SELECT);
    EXPECT_EQ(written(panel), "51");
}

TEST_F(EditingWarned, ALargerDisplayNamesTheKeys) {
    Menu_panel panel(menu_text(PARAMETERS, WIDTH), {20, 4});
    warn_of(panel, panel.item(0));
    panel.press(Key::SELECT).press(Key::UP).press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{"Width            ok?", "too wide            ",
                                    "                    ", "Enter yes, Esc no   "}));
}

TEST_F(EditingWarned, APreviewIsAskedOnceAndBackGivesTheOldValueBack) {
    Menu_panel panel(menu_text(PARAMETERS, WIDTH));
    warn_of(panel, panel.item(0));
    panel.settings(0).preview = true;
    panel.press(Key::SELECT).press(Key::DOWN).press(Key::UP, 2);
    EXPECT_EQ(panel.lines(), (Lines{"Width: too wide     ", "Enter yes, Esc no   "}));
    EXPECT_EQ(written(panel), "49 50");
    panel.press(Key::SELECT).press(Key::UP);
    EXPECT_EQ(panel.lines(), (Lines{"Width               ", "52                  "}));
    EXPECT_EQ(written(panel), "49 50 51 52");
    panel.press(Key::BACK);
    EXPECT_EQ(written(panel), "49 50 51 52 50");
    EXPECT_EQ(panel.lines()[0], ">Width            50");
}

TEST_F(EditingWarned, ACancelledStepOfAPreviewShowsTheWrittenValueAndAsksAgain) {
    Menu_panel panel(menu_text(PARAMETERS, WIDTH));
    warn_of(panel, panel.item(0));
    panel.settings(0).preview = true;
    panel.press(Key::SELECT);
    for (int i = 0; i < 3; ++i) {
        panel.press(Key::UP);
        EXPECT_EQ(panel.lines(), (Lines{"Width: too wide     ", "Enter yes, Esc no   "}));
        panel.press(Key::BACK);
        EXPECT_EQ(panel.lines(), (Lines{"Width               ", "50                  "}));
    }
    EXPECT_EQ(written(panel), "");
}

TEST_F(EditingWarned, AWarnedWriteThatFailsSaysSo) {
    Menu_panel panel(menu_text(PARAMETERS, WIDTH));
    warn_of(panel, panel.item(0));
    panel.fail(Memory_device::Operation_kind::WRITE, 102);
    panel.press(Key::SELECT).press(Key::UP).press(Key::SELECT, 2);
    EXPECT_EQ(panel.lines(), (Lines{"Width               ", "write failed        "}));
    panel.press(Key::BACK);
    EXPECT_EQ(panel.lines()[0], ">Width            50");
}

TEST_F(EditingWarned, NobodyThereToAnswerIsANo) {
    Menu_panel panel(menu_text(PARAMETERS, WIDTH));
    warn_of(panel, panel.item(0));
    panel.press(Key::SELECT).press(Key::UP).press(Key::SELECT);
    panel.controller().receive(FrontPanel::UserInputTimeout);
    EXPECT_EQ(panel.lines(), (Lines{">Width            50", "                    "}));
    panel.press(Key::SELECT).press(Key::UP).press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{"Width: too wide     ", "Enter yes, Esc no   "}));
}

// --- warnings that a menu file's own rules raise

constexpr const char* LOUD = R"({"type": "range", "name": "Width", "pid": 102,
    "binding": "warn \"{value} is loud\" if value > 50"})";

TEST(EditingRules, AWarningOfEveryValueComesWithEachEdit) {
    Menu_panel panel(menu_text(PARAMETERS, R"({"type": "range", "name": "Width", "pid": 102,
        "binding": "warn \"restarts\""})"));
    for (const char* const all : {"51", "51 52"}) {
        panel.press(Key::SELECT).press(Key::UP);
        for (int i = 0; i < 3; ++i) {
            panel.press(Key::SELECT);
            EXPECT_EQ(panel.lines(), (Lines{"Width: restarts     ", "Enter yes, Esc no   "}));
            panel.press(Key::BACK);
        }
        panel.press(Key::SELECT, 2);
        EXPECT_EQ(written(panel), all);
    }
}

TEST(EditingRules, AWarningIsAcceptedOrCancelled) {
    Menu_panel panel(menu_text(PARAMETERS, LOUD));
    panel.press(Key::SELECT).press(Key::UP);
    for (int i = 0; i < 2; ++i) {
        panel.press(Key::SELECT);
        EXPECT_EQ(panel.lines(), (Lines{"Width: 51 is loud   ", "Enter yes, Esc no   "}));
        panel.press(Key::BACK);
        EXPECT_EQ(panel.lines(), (Lines{"Width               ", "51                  "}));
    }
    panel.press(Key::SELECT, 2);
    EXPECT_EQ(panel.lines(), (Lines{">Width            51", "                    "}));
    EXPECT_EQ(written(panel), "51");
}

TEST(EditingRules, AnotherWarningIsAskedAndTheQuietAreNot) {
    Menu_panel panel(menu_text(PARAMETERS, LOUD));
    panel.press(Key::SELECT).press(Key::UP).press(Key::SELECT, 2);
    panel.press(Key::SELECT).press(Key::UP).press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{"Width: 52 is loud   ", "Enter yes, Esc no   "}));
    panel.press(Key::SELECT);
    panel.press(Key::SELECT).press(Key::DOWN, 4).press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{">Width            48", "                    "}));
    EXPECT_EQ(written(panel), "51 52 48");
}

TEST(EditingRules, APreviewIsAskedAtEachNewWarning) {
    Menu_panel panel(menu_text(PARAMETERS, LOUD));
    panel.settings(0).preview = true;
    panel.press(Key::SELECT).press(Key::UP);
    EXPECT_EQ(panel.lines()[0], "Width: 51 is loud   ");
    panel.press(Key::SELECT).press(Key::UP);
    EXPECT_EQ(panel.lines()[0], "Width: 52 is loud   ");
    panel.press(Key::BACK);
    EXPECT_EQ(panel.lines(), (Lines{"Width               ", "51                  "}));
    panel.press(Key::BACK);
    EXPECT_EQ(written(panel), "51 50");
    EXPECT_EQ(panel.lines(), (Lines{">Width            50", "                    "}));
}

// --- entries that change under their editor

TEST(EditingChanges, AHiddenEntryEndsItsEditor) {
    Menu_panel panel(menu_text(PARAMETERS, WIDTH_AND_LEVEL));
    Rules rules(panel.item(0));
    panel.tick().press(Key::SELECT).press(Key::UP, 3).tick();
    EXPECT_EQ(panel.lines(), (Lines{"Width               ", "53                  "}));
    rules.visible = false;
    panel.tick();
    EXPECT_EQ(panel.lines(), (Lines{"Width               ", "hidden: edit ended  "}));
    EXPECT_FALSE(panel.leds().edit);
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{">Level             7", "                    "}));
    EXPECT_EQ(written(panel), "");
}

TEST(EditingChanges, AHiddenMenuEndsTheEditorWithinIt) {
    Menu_panel panel(menu_text(PARAMETERS, R"({"type": "range", "name": "Level", "pid": 103},
        {"type": "node", "name": "Audio", "items": [
            {"type": "node", "name": "Stereo", "items": [
                {"type": "range", "name": "Width", "pid": 102}]}]})"));
    Rules rules(panel.item(1));
    panel.tick().press(Key::DOWN).press(Key::SELECT, 3).press(Key::UP).tick();
    EXPECT_EQ(panel.lines()[1], "51                  ");
    rules.visible = false;
    panel.tick();
    EXPECT_EQ(panel.lines(), (Lines{"Width               ", "hidden: edit ended  "}));
    panel.press(Key::BACK);
    EXPECT_EQ(panel.lines(), (Lines{">Level             7", "                    "}));
}

TEST(EditingChanges, AHiddenPreviewWritesTheOldValueBack) {
    Menu_panel panel(menu_text(PARAMETERS, WIDTH_AND_LEVEL));
    Rules rules(panel.item(0));
    panel.settings(0).preview = true;
    panel.tick().press(Key::SELECT).press(Key::UP);
    rules.visible = false;
    panel.tick();
    EXPECT_EQ(written(panel), "51 50");
}

TEST(EditingChanges, AnEntryThatIsLockedEndsItsEditor) {
    Menu_panel panel(menu_text(PARAMETERS, WIDTH));
    Rules rules(panel.item(0));
    panel.tick().press(Key::SELECT).press(Key::UP, 3);
    rules.access = Data_entry::READ_ONLY;
    panel.tick();
    EXPECT_EQ(panel.lines(), (Lines{"Width               ", "locked: edit ended  "}));
    panel.press(Key::BACK).press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{"Width               ", "50                  "}));
    EXPECT_FALSE(panel.leds().edit);
    rules.access = Data_entry::READ_WRITE;
    panel.tick();
    EXPECT_TRUE(panel.leds().edit);
    panel.press(Key::UP).press(Key::SELECT);
    EXPECT_EQ(written(panel), "51");
}

TEST(EditingChanges, ANarrowedRangeMovesTheValueAndSaysSo) {
    Menu_panel panel(menu_text(PARAMETERS, WIDTH));
    Rules rules(panel.item(0));
    panel.tick().press(Key::SELECT).press(Key::UP, 9);
    rules.range = {{0, 55}};
    panel.tick();
    EXPECT_EQ(panel.lines(), (Lines{"Width               ", "limit: new value    "}));
    EXPECT_TRUE(panel.leds().edit);
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{"Width               ", "55                  "}));
    panel.press(Key::SELECT);
    EXPECT_EQ(written(panel), "55");
}

TEST(EditingChanges, ANarrowedRangeThatStillHoldsTheValueSaysNothing) {
    Menu_panel panel(menu_text(PARAMETERS, WIDTH));
    Rules rules(panel.item(0));
    panel.tick().press(Key::SELECT).press(Key::UP, 2);
    rules.range = {{0, 55}};
    panel.tick();
    EXPECT_EQ(panel.lines(), (Lines{"Width               ", "52                  "}));
    panel.press(Key::UP, 9);
    EXPECT_EQ(panel.lines()[1], "55                  ");
}

TEST(EditingChanges, ARangeWithoutValueEndsTheEditor) {
    Menu_panel panel(menu_text(PARAMETERS, R"({"type": "range", "name": "Width", "pid": 102,
        "ranges": [{"min": 0, "max": 60}, {"min": 90, "max": 100}]})"));
    Rules rules(panel.item(0));
    panel.tick().press(Key::SELECT).press(Key::UP);
    rules.range = {{70, 80}};
    panel.tick();
    EXPECT_EQ(panel.lines(), (Lines{"Width               ", "no value: edit ended"}));
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{">Width           ---", "                    "}));
    EXPECT_EQ(written(panel), "");
}

TEST(EditingChanges, AReplacedOptionGivesWayToTheEntrysOwnAndSaysSo) {
    Menu_panel panel(menu_text(PARAMETERS,
                               R"({"type": "enum", "name": "Source", "pid": 5, "choices":
        [{"text": "Off", "options": ["aux"]}, {"text": "Line", "options": ["aux"]}, {"text": "Card", "options": ["card"]}]})",
                               R"({"aux": 1, "card": 1})"));
    auto& source = static_cast<Enum_entry&>(panel.item(0));
    panel.press(Key::SELECT).press(Key::UP).tick();
    EXPECT_EQ(panel.lines(), (Lines{"Source           3/3", "Card                "}));
    source.setProductOptions({{"aux", 1}, {"card", 0}});
    source.updateControlOptionMap();
    panel.tick();
    EXPECT_EQ(panel.lines(), (Lines{"Source              ", "options: new choice "}));
    panel.press(Key::BACK);
    EXPECT_EQ(panel.lines(), (Lines{"Source           2/2", "Line                "}));
    source.setProductOptions({{"aux", 1}, {"card", 1}});
    source.updateControlOptionMap();
    panel.tick();
    EXPECT_EQ(panel.lines(), (Lines{"Source              ", "options: choice kept"}));
    panel.press(Key::BACK);
    EXPECT_EQ(panel.lines(), (Lines{"Source           2/3", "Line                "}));
}

TEST(EditingChanges, AReadThatFailsLightsTheAlarmAndTheEditGoesOn) {
    Menu_panel panel(menu_text(PARAMETERS, WIDTH));
    panel.press(Key::SELECT).press(Key::UP);
    panel.fail(Memory_device::Operation_kind::READ, 102);
    panel.tick();
    EXPECT_EQ(panel.lines(), (Lines{"Width               ", "51                  "}));
    EXPECT_TRUE(panel.leds().alarm);
    EXPECT_TRUE(panel.leds().edit);
    panel.repair();
    panel.tick();
    EXPECT_FALSE(panel.leds().alarm);
    panel.press(Key::SELECT);
    EXPECT_EQ(written(panel), "51");
}

TEST(EditingChanges, AViewedValueFollowsTheDevice) {
    Menu_panel panel(menu_text(PARAMETERS, R"({"type": "range", "name": "Width", "pid": 102,
        "access": "read-only"})"));
    panel.press(Key::SELECT);
    panel.device().set_integer(102, 0, 77);
    panel.tick();
    EXPECT_EQ(panel.lines(), (Lines{"Width               ", "77                  "}));
}

TEST(EditingChanges, AnEditedValueIsNotTheDevicesToChange) {
    Menu_panel panel(menu_text(PARAMETERS, WIDTH));
    panel.press(Key::SELECT).press(Key::UP);
    panel.device().set_integer(102, 0, 77);
    panel.tick();
    EXPECT_EQ(panel.lines()[1], "51                  ");
    panel.press(Key::BACK);
    EXPECT_EQ(panel.lines()[0], ">Width            77");
    EXPECT_EQ(written(panel), "");
}

TEST(EditingChanges, NothingChangesUnderANotice) {
    Menu_panel panel(menu_text(PARAMETERS, WIDTH));
    Rules rules(panel.item(0));
    panel.tick().press(Key::SELECT).press(Key::UP, 9);
    rules.range = {{0, 55}};
    panel.tick();
    rules.range = {{0, 52}};
    panel.tick();
    EXPECT_EQ(panel.lines()[1], "limit: new value    ");
    panel.press(Key::BACK);
    EXPECT_EQ(panel.lines()[1], "55                  ");
    panel.tick();
    EXPECT_EQ(panel.lines()[1], "limit: new value    ");
}

}  // namespace
}  // namespace frontpanel
