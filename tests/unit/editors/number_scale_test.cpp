#include <frontpanel_editors/number_scale.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace frontpanel {
namespace {

// The number with so many decimals, and its unit.
std::string printed(int decimals, double number, const std::string& unit = "") {
    char text[64] = {};
    std::snprintf(text, sizeof text, "%.*f", decimals, number);
    return text + unit;
}

Number_scale tenths() {
    return {[](int value) { return printed(1, value / 10.0, " dB"); }, -600, 120};
}

Number_scale whole() {
    return {[](int value) { return std::to_string(value) + " ms"; }, 0, 500};
}

TEST(NumberScale, AStepIsShownInTheUnit) {
    EXPECT_EQ(tenths().step_text(1), "0.1 dB");
    EXPECT_EQ(tenths().step_text(10), "1.0 dB");
    EXPECT_EQ(whole().step_text(100), "100 ms");
    const Number_scale falling([](int value) { return printed(0, 100 - value, " %"); }, 0, 100);
    EXPECT_EQ(falling.step_text(10), "10 %");
    // a step that is smaller than the last digit shown has more digits
    const Number_scale coarse([](int value) { return printed(0, value / 10.0, " V"); }, 0, 1000);
    EXPECT_EQ(coarse.step_text(1), "0.1 V");
    EXPECT_EQ(coarse.step_text(10), "1 V");
    const Number_scale around([](int value) { return "Frequency " + printed(0, value, " Hz now"); },
                              0, 9999);
    EXPECT_EQ(around.step_text(10), "10 Hz now");
    EXPECT_EQ(around.before(), "Frequency ");
}

TEST(NumberScale, ACurvedConversionHasNoStepOfItsOwn) {
    const Number_scale square([](int value) { return printed(2, value * value); }, 0, 100);
    EXPECT_EQ(square.step_text(10), std::nullopt);
    EXPECT_NE(square.characters(), "");
}

TEST(NumberScale, ATypedNumberIsTheValueThatIsShownSo) {
    const Number_scale scale = tenths();
    for (int value = -600; value <= 120; ++value) {
        const auto typed = scale.value_of(printed(1, value / 10.0));
        ASSERT_TRUE(typed);
        EXPECT_EQ(typed->value, value);
        EXPECT_TRUE(typed->is_exact);
    }
    EXPECT_EQ(tenths().value_of("-12")->value, -120);
    EXPECT_EQ(tenths().value_of("3.")->value, 30);
    EXPECT_EQ(tenths().value_of(".5")->value, 5);
    EXPECT_EQ(tenths().value_of("-.5")->value, -5);
    EXPECT_FALSE(tenths().value_of("."));
    EXPECT_FALSE(tenths().value_of("-"));
    EXPECT_FALSE(tenths().value_of(""));
}

TEST(NumberScale, WhatNoValueShowsGoesToTheNearest) {
    EXPECT_EQ(tenths().value_of("1.26")->value, 13);
    EXPECT_FALSE(tenths().value_of("1.26")->is_exact);
    const Number_scale square([](int value) { return printed(0, value * value); }, 0, 1000);
    EXPECT_EQ(square.value_of("144")->value, 12);
    EXPECT_TRUE(square.value_of("144")->is_exact);
    EXPECT_EQ(square.value_of("150")->value, 12);
    EXPECT_FALSE(square.value_of("150")->is_exact);
}

TEST(NumberScale, ANumberBeyondTheLimitsIsAValueBeyondThem) {
    EXPECT_EQ(whole().value_of("700")->value, 700);
    EXPECT_EQ(tenths().value_of("-99.5")->value, -995);
    EXPECT_EQ(whole().value_of("99999999999999999999")->value, std::numeric_limits<int>::max());
    const Number_scale square([](int value) { return printed(0, value * value); }, 0, 100);
    EXPECT_EQ(square.value_of("99999999")->value, 101);
}

TEST(NumberScale, TheCharactersAreThoseOfTheNumbers) {
    EXPECT_EQ(tenths().characters(), "0123456789-.");
    EXPECT_EQ(whole().characters(), "0123456789");
    EXPECT_EQ(Number_scale().characters(), "");
}

// The one that follows the value.
TEST(NumberScale, TheNumberIsFoundAmongOtherDigits) {
    const Number_scale channel([](int value) { return "CH1 " + printed(1, value / 10.0, " m2"); },
                               -500, 500);
    EXPECT_EQ(channel.before(), "CH1 ");
    EXPECT_EQ(channel.behind(), " m2");
    EXPECT_EQ(channel.step_text(10), "1.0 m2");
    EXPECT_EQ(channel.value_of("-12.5")->value, -125);
    EXPECT_TRUE(channel.value_of("-12.5")->is_exact);
    EXPECT_EQ(channel.characters(), "0123456789-.");
    const auto digits = channel.digits_in("CH1 -12.5 m2");
    ASSERT_TRUE(digits);
    EXPECT_EQ(digits->first, 5U);
    EXPECT_EQ(digits->end, 9U);
    EXPECT_EQ(channel.digits_in("row 7 of 8")->first, 4U);
    EXPECT_FALSE(channel.digits_in("off"));
    const Number_scale dashed([](int value) { return "CH1-" + std::to_string(value); }, 0, 99);
    EXPECT_EQ(dashed.value_of("5")->value, 5);
    EXPECT_TRUE(dashed.value_of("5")->is_exact);
}

// They fill up narrow numbers, or say what a number is.
TEST(NumberScale, SignsAndBlanksBelongToTheNumber) {
    const Number_scale with_sign(
        [](int value) { return (value < 0 ? "" : "+") + std::to_string(value) + " dB"; }, -50, 50);
    EXPECT_EQ(with_sign.value_of("7")->value, 7);
    EXPECT_EQ(with_sign.value_of("-7")->value, -7);
    EXPECT_TRUE(with_sign.value_of("7")->is_exact);
    EXPECT_EQ(with_sign.step_text(10), "10 dB");
    const Number_scale filled(
        [](int value) {
            const std::string digits = std::to_string(value);
            return "at " + std::string(6 - digits.size(), ' ') + digits;
        },
        0, 9999);
    for (const int value : {3, 42, 999, 1234}) {
        EXPECT_EQ(filled.value_of(std::to_string(value))->value, value);
        EXPECT_TRUE(filled.value_of(std::to_string(value))->is_exact) << value;
    }
    EXPECT_EQ(filled.before(), "at   ");
}

TEST(NumberScale, TextsOfATableAreNoNumbers) {
    const char* const NAMES[] = {"as the ref", "1080i50", "1080p50", "720p50", "576i"};
    const Number_scale table([&](int value) { return std::string(NAMES[value]); }, 0, 4);
    EXPECT_EQ(table.characters(), "");
    EXPECT_EQ(table.step_text(1), std::nullopt);
    EXPECT_FALSE(table.value_of("720"));
    // a row beside numbers
    const Number_scale mixed(
        [](int value) { return value == 0 ? std::string("off") : std::to_string(value) + " s"; }, 0,
        60);
    EXPECT_EQ(mixed.value_of("12")->value, 12);
    EXPECT_EQ(mixed.step_text(10), "10 s");
}

TEST(NumberScale, TheWholeRangeOfIntegers) {
    const Number_scale all([](int value) { return std::to_string(value); },
                           std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
    for (const int value :
         {std::numeric_limits<int>::min(), -1, 0, 1, 1234567890, std::numeric_limits<int>::max()}) {
        EXPECT_EQ(all.value_of(std::to_string(value))->value, value);
    }
    EXPECT_EQ(all.step_text(1000), "1000");
    EXPECT_EQ(Number_scale([](int) { return std::string("7"); }, 5, 4).characters(), "");
    EXPECT_EQ(Number_scale([](int) { return std::string("7"); }, 0, 9).characters(), "");
}

}  // namespace
}  // namespace frontpanel
