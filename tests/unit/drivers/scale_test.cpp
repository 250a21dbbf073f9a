#include <frontpanel_drivers/scale.h>

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace frontpanel {
namespace {

std::string shown(const Scaled_number& number) {
    const auto* const text = std::get_if<std::string>(&number);
    return text != nullptr ? *text : std::to_string(std::get<std::int32_t>(number));
}

TEST(Scale, NumbersOfJsonMayHaveAnExponent) {
    const struct {
        const char* number;
        Scale scale;
        const char* result;
    } cases[] = {
        {"42", {1, 1}, "42"},
        {"4e1", {1, 1}, "40"},
        {"-4E+1", {1, 1}, "-40"},
        {"1.25e1", {10, 1}, "125"},
        {"2.5e-3", {1000, 1}, "3"},
        {"2.4e-3", {1000, 1}, "2"},
        {"0.0012e4", {1, 1}, "12"},
        {"-0.5e0", {1, 1}, "-1"},
        {"5.e0", {1, 1}, "5"},
        {".5e1", {1, 1}, "5"},
        {"0e99", {1, 1}, "0"},
        {"1e-12", {1, 1}, "0"},
        {"1e-300", {1000000000, 1}, "0"},
        {"1e-99999999999999999999", {1, 1}, "0"},
        {"1.2345678901234567e-05", {1000000000, 1}, "12346"},
        {"1.2345678901234567e-05", {1, 1000}, "0"},
        {"2499.4999999999999e3", {1, 1000}, "2499"},
        {"2499.5e3", {1, 1000}, "2500"},
        {"12345678901234567e-15", {10, 1}, "123"},
        {"1234567890123456789e-19", {1000, 1}, "123"},
        {"2147483647e0", {1, 1}, "2147483647"},
        {"2147483648e0", {1, 1}, "the number does not fit 32 bits"},
        {"1e18", {1, 1}, "the number does not fit 32 bits"},
        {"1e19", {1, 1}, "the number has too many digits"},
        {"1.499999999999999999999e0", {1, 1}, "1"},
        {"0.1499999999999999999999e1", {1, 1000000000}, "0"},
        {"5.551115123125783e-17", {1000000000, 1}, "0"},
        {"1e17", {1, 1}, "the number does not fit 32 bits"},
        {"1e300", {1, 1}, "the number has too many digits"},
        {"1e99999999999999999999", {1, 1}, "the number has too many digits"},
        {"e5", {1, 1}, "not a number"},
        {"-e5", {1, 1}, "not a number"},
        {".e5", {1, 1}, "not a number"},
        {"1e", {1, 1}, "not a number"},
        {"1e+", {1, 1}, "not a number"},
        {"1e+-5", {1, 1}, "not a number"},
        {"1e2.5", {1, 1}, "not a number"},
        {"1.xe-18", {1, 1}, "not a number"},
        {"1.2.3e1", {1, 1}, "not a number"},
    };
    for (const auto& [number, scale, result] : cases) {
        SCOPED_TRACE(number);
        EXPECT_EQ(shown(scale.from_json(number)), result);
    }
}

TEST(Scale, DecimalNumbersAreScaledExactlyAndRoundedToTheNearest) {
    const struct {
        const char* decimal;
        Scale scale;
        const char* result;
    } cases[] = {
        {"42", {1, 1}, "42"},
        {"-42", {1, 1}, "-42"},
        {"+7", {1, 1}, "7"},
        {"007", {1, 1}, "7"},
        {"0.52", {100, 1}, "52"},
        {".5", {10, 1}, "5"},
        {"5.", {1, 1}, "5"},
        {"36499", {1, 1000}, "36"},
        {"36500", {1, 1000}, "37"},
        {"-36499", {1, 1000}, "-36"},
        {"-36500", {1, 1000}, "-37"},
        {"0.5", {1, 1}, "1"},
        {"-0.5", {1, 1}, "-1"},
        {"0.49999999999999999", {1, 1}, "0"},
        {"-0.4", {1, 1}, "0"},
        {"0.30000000000000004", {1000, 1}, "300"},
        {"12345.670000000000000000000", {100, 1}, "1234567"},
        {"1", {1000000000, 3}, "333333333"},
        {"2", {1000000000, 3}, "666666667"},
        {"2147483647", {1, 1}, "2147483647"},
        {"-2147483648", {1, 1}, "-2147483648"},
        {"2147483648", {1, 1}, "the number does not fit 32 bits"},
        {"2147483647.5", {1, 1}, "the number does not fit 32 bits"},
        {"999999999999999999", {1000000000, 1}, "the number does not fit 32 bits"},
        {"999999999999999999", {1, 1000000000}, "1000000000"},
        {"1000000000000000000", {1, 1}, "the number does not fit 32 bits"},
        {"9999999999999999999", {1000000000, 1}, "the number does not fit 32 bits"},
        {"-2147483648499999999", {1, 1000000000}, "-2147483648"},
        {"-2147483648500000000", {1, 1000000000}, "the number does not fit 32 bits"},
        {"10000000000000000000", {1, 1000000000}, "the number has too many digits"},
        {"00000000000000000000012.5", {2, 1}, "25"},
        {"0.1234567890123456789", {1, 1}, "0"},
        {"999.49999999999999999999999999999999999999", {1, 1000}, "1"},
        {"499.99999999999999999999999999999999999999", {1, 1000}, "0"},
        {"1.4999999999999999999999999999999999999999", {1, 1}, "1"},
        {"-1.5000000000000000000000000000000000000000", {1, 1}, "-2"},
        {"0.00000000000000005551115123125783", {1000000000, 1}, "0"},
        {"0.0000000005", {1000000000, 1}, "1"},
        {"0.00000000049999999999999999999999999999999", {1000000000, 1}, "0"},
        {"0.07142857142857142857142857142857", {7, 1}, "0"},
        {"0.07142857142857142857142857142858", {7, 1}, "1"},
        {"2147483647.49999999999999999999", {1, 1}, "2147483647"},
        {"", {1, 1}, "not a number"},
        {"-", {1, 1}, "not a number"},
        {".", {1, 1}, "not a number"},
        {"1,5", {1, 1}, "not a number"},
        {"1e3", {1, 1}, "not a number"},
        {"--1", {1, 1}, "not a number"},
        {"1.2.3", {1, 1}, "not a number"},
        {"0x10", {1, 1}, "not a number"},
        {" 1", {1, 1}, "not a number"},
    };
    for (const auto& [decimal, scale, result] : cases) {
        SCOPED_TRACE(decimal);
        EXPECT_EQ(shown(scale.from_device(std::string_view(decimal))), result);
    }
}

TEST(Scale, WholeNumbersAreScaledAlike) {
    EXPECT_EQ(shown(Scale(1, 1000).from_device(std::int64_t{-36500})), "-37");
    EXPECT_EQ(shown(Scale(100, 1).from_device(std::int64_t{5})), "500");
    const Scale one;
    EXPECT_EQ(shown(one.from_device(std::numeric_limits<std::int64_t>::min())),
              "the number does not fit 32 bits");
    EXPECT_EQ(shown(one.from_device(std::int64_t{std::numeric_limits<std::int32_t>::min()})),
              "-2147483648");
}

TEST(Scale, ANumberIsWrittenAsTheDecimalThatItCameFrom) {
    EXPECT_EQ(Scale(1, 1000).to_decimal(21), "21000");
    EXPECT_EQ(Scale(100, 1).to_decimal(52), "0.52");
    EXPECT_EQ(Scale(100, 1).to_decimal(-250), "-2.5");
    EXPECT_EQ(Scale(100, 1).to_decimal(100), "1");
    EXPECT_EQ(Scale(3, 1).to_decimal(1), "0.333333333");
    EXPECT_EQ(Scale(3, 1).to_decimal(2), "0.666666667");
    EXPECT_EQ(Scale(1000000000, 1).to_decimal(1), "0.000000001");
    EXPECT_EQ(Scale(3, 1).to_decimal(0), "0");
    EXPECT_EQ(Scale(1, 1000000000).to_decimal(std::numeric_limits<std::int32_t>::min()),
              "-2147483648000000000");
}

TEST(Scale, ANumberIsWrittenAsTheNearestWholeNumber) {
    EXPECT_EQ(Scale(1, 1000).to_whole(21), 21000);
    EXPECT_EQ(Scale(10, 1).to_whole(25), 3);
    EXPECT_EQ(Scale(10, 1).to_whole(-25), -3);
    EXPECT_EQ(Scale(10, 1).to_whole(24), 2);
}

TEST(Scale, WhatWasWrittenIsReadBack) {
    const Scale widest(1, 1000000000);
    for (const std::int32_t number :
         {std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()}) {
        EXPECT_EQ(shown(widest.from_device(widest.to_decimal(number))), std::to_string(number));
    }
    for (const Scale& scale : {Scale(1, 1000), Scale(100, 1), Scale(3, 7), Scale(9, 5)}) {
        for (std::int32_t number = -1000; number <= 1000; ++number) {
            ASSERT_EQ(shown(scale.from_device(scale.to_decimal(number))), std::to_string(number));
        }
    }
}

// ---- in a menu file

std::string read(const std::string& source) {
    const Source file{"menu.json", 0};
    const Json_document document(file, source);
    Problems problems;
    try {
        return shown(Scale::of(Json_value(document.root(), problems)).from_device("3000"));
    } catch (const Placed_error& error) {
        return error.what();
    }
}

TEST(Scale, IsAFractionAWholeNumberOrMissing) {
    EXPECT_EQ(read(R"({"scale": "1/1000"})"), "3");
    EXPECT_EQ(read(R"({"scale": "2"})"), "6000");
    EXPECT_EQ(read(R"({"scale": 2})"), "6000");
    EXPECT_EQ(read("{}"), "3000");
    for (const char* const text :
         {"", "0", "1/0", "-1", "1/", "/2", "0.001", "1/2/3", "1 / 2", "1000000001"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(read(R"({"scale": ")" + std::string(text) + R"("})"),
                  "menu.json:1:11: expected a scale such as \"1/1000\" or \"100\", found \"" +
                      std::string(text) + "\"");
    }
}

}  // namespace
}  // namespace frontpanel
