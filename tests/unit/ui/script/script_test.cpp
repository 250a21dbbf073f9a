#include <frontpanel_ui/script.h>

#include <gtest/gtest.h>

#include <frontpanel_base/input_error.h>

namespace frontpanel {
namespace {

Step only_step(const std::string& text) {
    const Script script = parse_script("a.script", text);
    EXPECT_EQ(script.steps.size(), 1U) << text;
    return script.steps.at(0);
}

std::string error_of(const std::string& text) {
    try {
        parse_script("a.script", text);
    } catch (const Input_error& error) {
        return error.what();
    }
    return "";
}

TEST(Script, EachKeyHasItsWord) {
    const std::pair<const char*, Key::Kind> KEYS[] = {
        {"up", Key::UP},         {"down", Key::DOWN},       {"select", Key::SELECT},
        {"back", Key::BACK},     {"coarser", Key::COARSER}, {"finer", Key::FINER},
        {"left", Key::LEFT},     {"right", Key::RIGHT},     {"erase", Key::ERASE},
        {"insert", Key::INSERT}, {"delete", Key::DELETE}};
    for (const auto& [word, kind] : KEYS) {
        const Step once = only_step(word);
        EXPECT_EQ(once.kind, Step::PRESS) << word;
        EXPECT_EQ(once.key.kind, kind) << word;
        EXPECT_EQ(once.count, 1) << word;
        EXPECT_EQ(only_step(std::string(word) + " 12").count, 12) << word;
    }
}

TEST(Script, AShortcutNamesItsButton) {
    const Step step = only_step("shortcut 9");
    EXPECT_EQ(step.kind, Step::PRESS);
    EXPECT_EQ(step.key.kind, Key::SHORTCUT);
    EXPECT_EQ(step.key.button, 9);
    EXPECT_EQ(step.count, 1);
}

TEST(Script, StepsKnowTheirLineAndText) {
    const Script script = parse_script("a.script", "# comment\n\n  up 2\r\n\tback\t\n");
    ASSERT_EQ(script.steps.size(), 2U);
    EXPECT_EQ(script.steps[0].line, 3);
    EXPECT_EQ(script.steps[0].source, "up 2");
    EXPECT_EQ(script.steps[1].line, 4);
    EXPECT_EQ(script.steps[1].source, "back");
}

TEST(Script, AnExpectedLineKeepsItsBlanks) {
    const Step step = only_step("expect 2 |  Gain | 3 dB  |");
    EXPECT_EQ(step.kind, Step::EXPECT_LINE);
    EXPECT_EQ(step.row, 1);
    EXPECT_EQ(step.text, "  Gain | 3 dB  ");
}

TEST(Script, ExpectsLeds) {
    EXPECT_FALSE(only_step("expect-leds none").edit);
    EXPECT_FALSE(only_step("expect-leds none").alarm);
    EXPECT_TRUE(only_step("expect-leds edit").edit);
    EXPECT_FALSE(only_step("expect-leds edit").alarm);
    EXPECT_TRUE(only_step("expect-leds edit alarm").edit);
    EXPECT_TRUE(only_step("expect-leds edit alarm").alarm);
}

TEST(Script, NamesParametersWithUpToTwoLevels) {
    EXPECT_EQ(only_step("set 100 5").parameter.pid, 100U);
    EXPECT_EQ(only_step("set 100 5").parameter.varidx, 0U);
    EXPECT_EQ(only_step("set 100.3 5").parameter.varidx, 3U);
    EXPECT_EQ(only_step("set 100.3.2 5").parameter.varidx, 0x203U);
    EXPECT_EQ(only_step("set 100.255.255 5").parameter.varidx, 0xFFFFU);
    EXPECT_EQ(only_step("set 100 two words").text, "two words");
}

TEST(Script, NamesParametersAsMenuFilesDo) {
    for (const char* const step :
         {"set level 5", "set [level] 5", "set \"level\" 5", "set   [level]5"}) {
        EXPECT_EQ(only_step(step).parameter.name, "level") << step;
        EXPECT_EQ(only_step(step).text, "5") << step;
    }
    EXPECT_EQ(only_step("expect-write [gain 1] two words").parameter.name, "gain 1");
    EXPECT_EQ(only_step("expect-write [gain 1] two words").text, "two words");
    EXPECT_EQ(only_step("fail read \"gain 1\" on").parameter.name, "gain 1");
    EXPECT_EQ(only_step("set [100.3] 5").parameter.pid, 100U);
    EXPECT_EQ(only_step("set [100.3] 5").parameter.name, "");
}

TEST(Script, ExpectsAPartOfALine) {
    const Step step = only_step("expect 2 contains |clean the|");
    EXPECT_EQ(step.kind, Step::EXPECT_PART);
    EXPECT_EQ(step.row, 1);
    EXPECT_EQ(step.text, "clean the");
    EXPECT_EQ(only_step("expect 2 |contains|").kind, Step::EXPECT_LINE);
}

TEST(Script, ACardsSelectionIsExpectedBySlotListAndOption) {
    const Step step = only_step("expect-selected 3 9001 2");
    EXPECT_EQ(step.kind, Step::EXPECT_SELECTED);
    EXPECT_EQ(step.slot, 3);
    EXPECT_EQ(step.parameter.pid, 9001U);
    EXPECT_EQ(step.option, 2);
}

TEST(Script, FailuresBeginAndEnd) {
    const Step begins = only_step("fail read 100.1 on");
    EXPECT_EQ(begins.kind, Step::FAIL);
    EXPECT_FALSE(begins.write);
    EXPECT_TRUE(begins.on);
    const Step ends = only_step("fail write 100.1 off");
    EXPECT_TRUE(ends.write);
    EXPECT_FALSE(ends.on);
}

TEST(Script, AnErrorNamesFileAndLine) {
    const std::pair<const char*, const char*> ERRORS[] = {
        {"jump", "a.script:1: unknown word \"jump\""},
        {"selcet", "a.script:1: unknown word \"selcet\"; did you mean \"select\"?"},
        {"expct 1 |x|", "a.script:1: unknown word \"expct\"; did you mean \"expect\"?"},
        {"up\n\nUP", "a.script:3: unknown word \"UP\""},
        {"up 0", "a.script:1: expected a number of times from 1 to 1000, found \"0\""},
        {"up 1001", "a.script:1: expected a number of times from 1 to 1000, found \"1001\""},
        {"up 2x", "a.script:1: expected a number of times from 1 to 1000, found \"2x\""},
        {"up 99999999999",
         "a.script:1: expected a number of times from 1 to 1000, found \"99999999999\""},
        {"up 2 3", "a.script:1: expected nothing after \"up\", found \"3\""},
        {"tick -1", "a.script:1: expected a number of times from 1 to 1000, found \"-1\""},
        {"shortcut", "a.script:1: expected a button"},
        {"shortcut 0", "a.script:1: expected a button from 1 to 99, found \"0\""},
        {"shortcut 3 2", "a.script:1: expected nothing after \"shortcut\", found \"2\""},
        {"expect", "a.script:1: expected a display line"},
        {"expect 0 |x|", "a.script:1: expected a display line from 1 to 16, found \"0\""},
        {"expect 1", "a.script:1: expected the line between two bars, such as |>Gain       3 dB |"},
        {"expect 1 |",
         "a.script:1: expected the line between two bars, such as |>Gain       3 dB |"},
        {"expect 1 x|",
         "a.script:1: expected the line between two bars, such as |>Gain       3 dB |"},
        {"expect-leds", "a.script:1: expected \"none\", \"edit\" or \"alarm\""},
        {"expect-leds edit none", "a.script:1: \"none\" cannot be combined with a LED"},
        {"expect-leds none alarm", "a.script:1: \"none\" cannot be combined with a LED"},
        {"expect-leds red", "a.script:1: expected \"none\", \"edit\" or \"alarm\", found \"red\""},
        {"expect-write", "a.script:1: expected a parameter"},
        {"expect-write [gain 1", "a.script:1: the closing ] of a parameter's name is missing"},
        {"set \"gain 1 3", "a.script:1: the closing \" of a parameter's name is missing"},
        {"set [] 3", "a.script:1: expected a parameter such as 100, 100.1.2, level or [gain 1]"},
        {"expect-write 1.2.3.4 3",
         "a.script:1: expected a parameter such as 100, 100.1.2, level or [gain 1], found \"1.2.3.4\""},
        {"expect-write 1. 3",
         "a.script:1: expected a parameter such as 100, 100.1.2, level or [gain 1], found \"1.\""},
        {"expect-write 1.256 3",
         "a.script:1: expected a parameter such as 100, 100.1.2, level or [gain 1], found \"1.256\""},
        {"expect-no-write 3",
         "a.script:1: expected nothing after \"expect-no-write\", found \"3\""},
        {"expect-selected 3 9001", "a.script:1: expected an option"},
        {"expect-selected 0 9001 1", "a.script:1: expected a slot from 1 to 15, found \"0\""},
        {"expect-selected 3 5 1",
         "a.script:1: expected a list of a card from 9000 to 9100, found \"5\""},
        {"fail", "a.script:1: expected \"write\" or \"read\""},
        {"fail all 3 on", "a.script:1: expected \"write\" or \"read\", found \"all\""},
        {"fail read 3", "a.script:1: expected \"on\" or \"off\""},
        {"fail read 3 maybe", "a.script:1: expected \"on\" or \"off\", found \"maybe\""},
    };
    for (const auto& [text, error] : ERRORS) {
        EXPECT_EQ(error_of(text), error) << text;
    }
}

}  // namespace
}  // namespace frontpanel
