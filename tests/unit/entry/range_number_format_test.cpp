#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <frontpanel_data/range_entry.h>

#include "entry/number_format.h"
#include "support/allocation_counter.h"
#include "support/indexes.h"

using number_format::Argument;

namespace {

bool fits(const char* format, Argument argument) {
    return number_format::Format(format, argument).fits();
}

std::string print(const char* format, Argument argument, double value, std::size_t limit) {
    number_format::Buffer buffer;
    return std::string(number_format::Format(format, argument).print(value, limit, buffer));
}

struct Check {
    const char* format;
    bool fits_whole;
    bool fits_real;
};

constexpr Check CHECKS[] = {
    {"", true, true},          {"dB", true, true},          {"%%", true, true},
    {"%%d", true, true},       {"100%%d%%", true, true},    {"%d", true, false},
    {"%i", true, false},       {"%u", true, false},         {"%o", true, false},
    {"%x", true, false},       {"%02X", true, false},       {"%+d dB", true, false},
    {"%- #0'5d", true, false}, {"%.3d", true, false},       {"%999.999d", true, false},
    {"%d%%", true, false},     {"%f", false, true},         {"%F", false, true},
    {"%.1f", false, true},     {"%.f", false, true},        {"%e", false, true},
    {"%E", false, true},       {"%g", false, true},         {"%G", false, true},
    {"%a", false, true},       {"%A", false, true},         {"% 8.3f Hz", false, true},
    {"%", false, false},       {"dB %", false, false},      {"%5", false, false},
    {"%.", false, false},      {"%5%", false, false},       {"%d%", false, false},
    {"%d %d", false, false},   {"%.1f %.1f", false, false}, {"%d %.1f", false, false},
    {"%s", false, false},      {"%c", false, false},        {"%p", false, false},
    {"%n", false, false},      {"%d%n", false, false},      {"%*d", false, false},
    {"%.*f", false, false},    {"%1$d", false, false},      {"%ld", false, false},
    {"%hhd", false, false},    {"%Lf", false, false},       {"%lf", false, false},
    {"%1000d", false, false},  {"%.1000f", false, false},   {"%999999999d", false, false},
};

TEST(Number_format, OneConversionThatTakesTheArgumentFits) {
    for (const Check& check : CHECKS) {
        SCOPED_TRACE(check.format);
        EXPECT_EQ(fits(check.format, Argument::WHOLE), check.fits_whole);
        EXPECT_EQ(fits(check.format, Argument::TENTHS), check.fits_real);
        EXPECT_EQ(fits(check.format, Argument::REAL), check.fits_real);
    }
}

TEST(Number_format, WholeNumbersAreCutTowardsZero) {
    EXPECT_EQ(number_format::to_int(2.9), 2);
    EXPECT_EQ(number_format::to_int(-2.9), -2);
    EXPECT_EQ(number_format::to_int(-0.5), 0);
}

TEST(Number_format, WholeNumbersStayWithinTheRangeOfInt) {
    constexpr int MAX = std::numeric_limits<int>::max();
    constexpr int MIN = std::numeric_limits<int>::min();
    EXPECT_EQ(number_format::to_int(2147483646.9), MAX - 1);
    EXPECT_EQ(number_format::to_int(2147483647.5), MAX);
    EXPECT_EQ(number_format::to_int(2147483648.0), MAX);
    EXPECT_EQ(number_format::to_int(HUGE_VAL), MAX);
    EXPECT_EQ(number_format::to_int(-2147483647.9), MIN + 1);
    EXPECT_EQ(number_format::to_int(-2147483648.5), MIN);
    EXPECT_EQ(number_format::to_int(-HUGE_VAL), MIN);
}

TEST(Number_format, NotANumberCountsAsZero) {
    EXPECT_EQ(number_format::to_int(std::nan("")), 0);
    EXPECT_EQ(number_format::to_int(-std::nan("")), 0);
    for (const double value : {std::nan(""), -std::nan("")}) {
        EXPECT_EQ(print("%d", Argument::WHOLE, value, 40), "0");
        EXPECT_EQ(print("%.1f", Argument::TENTHS, value, 40), "0.0");
        EXPECT_EQ(print("%g", Argument::REAL, value, 40), "0");
    }
}

TEST(Number_format, TenthsAreRoundedHalfAwayFromZero) {
    EXPECT_EQ(print("%.1f", Argument::TENTHS, 0.25, 40), "0.3");
    EXPECT_EQ(print("%.1f", Argument::TENTHS, -0.25, 40), "-0.3");
    EXPECT_EQ(print("%.1f", Argument::REAL, 0.25, 40), "0.2");
}

TEST(Number_format, ATextIsCutToItsLimit) {
    EXPECT_EQ(print("%d units", Argument::WHOLE, 1234, 40), "1234 units");
    EXPECT_EQ(print("%d units", Argument::WHOLE, 1234, 10), "1234 units");
    EXPECT_EQ(print("%d units", Argument::WHOLE, 1234, 9), "1234 unit");
    EXPECT_EQ(print("%d units", Argument::WHOLE, 1234, 0), "");
}

TEST(Number_format, AnEmptyFormatPrintsNothing) {
    EXPECT_EQ(print("", Argument::REAL, 1, 40), "");
}

TEST(Number_format, LongNumbersArePrintedWhole) {
    EXPECT_EQ(print("%f", Argument::REAL, 1e300, 1000).size(), 308U);
    EXPECT_EQ(print("%999d", Argument::WHOLE, 7, 2000).size(), 999U);
}

// --- the same text as the C library's, byte for byte

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
std::string print_by_library(const char* format, Argument argument, double value) {
    char text[2048] = {};
    const double number = std::isnan(value) ? 0 : value;
    if (argument == Argument::WHOLE) {
        std::snprintf(text, sizeof text, format, number_format::to_int(number));
    } else {
        std::snprintf(text, sizeof text, format,
                      argument == Argument::TENTHS ? std::round(number * 10) / 10 : number);
    }
    return text;
}
#pragma GCC diagnostic pop

const std::vector<double>& numbers() {
    static const std::vector<double> NUMBERS = {
        0.0,          -0.0,          1.0,   -1.0,     9.0,       10.0,         99.0,
        -100.0,       0.05,          0.15,  0.25,     0.35,      -0.04,        -0.05,
        0.5,          1.5,           2.5,   -2.5,     9.95,      9.949,        99.95,
        999999.5,     1234567.0,     1e14,  1e15,     1e16,      -3e22,        1e-5,
        1.5e-7,       4e-320,        1e100, 1e300,    1.0 / 3,   -2.0 / 3,     65535.0,
        2147483647.0, -2147483648.0, 4e9,   HUGE_VAL, -HUGE_VAL, std::nan(""), 12345.678,
        0.1,          123456789.95,
    };
    return NUMBERS;
}

std::vector<std::string> conversions(const std::string& kinds) {
    std::vector<std::string> found;
    for (const char* const flags :
         {"", "-", "+", "0", "-0", "+0", " 0", "-+", "+ -0", "#", "'", "#0"}) {
        for (const char* const width : {"", "5", "14", "300"}) {
            for (const char* const precision : {"", ".", ".1", ".2", ".30", ".200"}) {
                for (const char kind : kinds) {
                    found.push_back(std::string("%") + flags + width + precision + kind);
                }
            }
        }
    }
    return found;
}

// Not one assertion for each, which would take most of the time.
std::string first_difference(const std::vector<std::string>& formats, Argument argument,
                             const std::vector<double>& values) {
    for (const std::string& format : formats) {
        for (const double value : values) {
            const std::string expected = print_by_library(format.c_str(), argument, value);
            const std::string printed = print(format.c_str(), argument, value, 2000);
            if (printed != expected) {
                return format + ": \"" + printed + "\" instead of \"" + expected + "\"";
            }
        }
    }
    return "";
}

TEST(Number_format, EveryConversionIsPrintedAsByTheLibrary) {
    EXPECT_EQ(first_difference(conversions("dioxXu"), Argument::WHOLE, numbers()), "");
    EXPECT_EQ(first_difference(conversions("aAeEfFgG"), Argument::TENTHS, numbers()), "");
    EXPECT_EQ(first_difference(conversions("aAeEfFgG"), Argument::REAL, numbers()), "");
}

TEST(Number_format, TheTextAroundAConversionIsPrintedAsByTheLibrary) {
    const std::string longest(250, 'x');
    EXPECT_EQ(first_difference(
                  {"", "dB", "%%", "%%%%", "100 %% of %d %%", "%%d%d", "%d%%", "%5d|", longest,
                   longest + "%d", longest + "%%%%", "%d" + longest, longest + "%%%d"},
                  Argument::WHOLE, numbers()),
              "");
    EXPECT_EQ(first_difference({"%.1f dB", "%%.1f %.3f", "+%.1f%%", "%.1f" + longest},
                               Argument::TENTHS, numbers()),
              "");
}

TEST(Number_format, NumbersOfAnySizeArePrintedAsByTheLibrary) {
    std::mt19937_64 random(4711);
    std::vector<double> values;
    for (int i = 0; i < 4000; ++i) {
        const uint64_t bits = random();
        double any = 0;
        std::memcpy(&any, &bits, sizeof any);
        values.push_back(any);
        values.push_back(static_cast<double>(static_cast<int64_t>(bits) >> (bits % 60)) / 20);
    }
    for (const char* const format : {"%.1f", "%.2f", "%f", "%g", "%.3e", "%8.1f"}) {
        EXPECT_EQ(first_difference({format}, Argument::TENTHS, values), "");
        EXPECT_EQ(first_difference({format}, Argument::REAL, values), "");
    }
    EXPECT_EQ(first_difference({"%d", "%05d", "%02X"}, Argument::WHOLE, values), "");
}

TEST(Number_format, UsualConversionsAllocateNothing) {
    number_format::Buffer buffer;
    std::size_t length = 0;
    const std::size_t before = support::allocations();
    for (const char* const format : {"%d", "%02X", "%+5d dB", "%u %%"}) {
        length += number_format::Format(format, Argument::WHOLE).print(1234, 40, buffer).size();
    }
    for (const char* const format : {"%.1f dB", "%.3f", "%g", "%e"}) {
        length += number_format::Format(format, Argument::REAL).print(12.5, 40, buffer).size();
    }
    EXPECT_EQ(support::allocations() - before, 0u);
    EXPECT_GT(length, 20u);
}

TEST(Number_format, ARedrawOfANumberAllocatesNothing) {
    char format[] = "%.1f dB";
    char expression[] = "v/10";
    Range_entry entry("Gain", "A number", 120, support::any_index(), 0, 1000, 125, format,
                      expression, nullptr, Data_entry::READ_WRITE, 1, true, -1, nullptr, nullptr,
                      nullptr);
    char line[21] = {};
    entry.Get_display_string(line, 20, 125);
    const std::size_t before = support::allocations();
    for (int value = 0; value < 100; ++value) {
        entry.Get_display_string(line, 20, value);
    }
    EXPECT_EQ(support::allocations() - before, 0u);
    EXPECT_STREQ(line, "9.9 dB");
}

// A locale with a decimal comma: one of the system's, else one made for this test.
bool use_comma_locale() {
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "fr_FR.utf8"}) {
        if (std::setlocale(LC_ALL, name) != nullptr) {
            return true;
        }
    }
    char folder[] = "/tmp/number_format_test.XXXXXX";
    if (mkdtemp(folder) == nullptr) {
        return false;
    }
    const std::string place = folder;
    const std::string make = "localedef -i de_DE -f UTF-8 '" + place + "/de_DE.UTF-8' 2>/dev/null";
    if (std::system(make.c_str()) == 0) {
        setenv("LOCPATH", folder, 1);
    }
    const bool used = std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
    if (std::system(("rm -r '" + place + "'").c_str()) != 0) {
        ADD_FAILURE() << "cannot remove " << place;
    }
    return used;
}

TEST(Number_format, TheDecimalSignIsAPointUnderACommaLocale) {
    if (!use_comma_locale()) {
        GTEST_SKIP() << "no locale with a decimal comma (Debian package \"locales\")";
    }
    ASSERT_STREQ(localeconv()->decimal_point, ",");
    const std::string comma = std::setlocale(LC_ALL, nullptr);
    EXPECT_EQ(print("%.1f", Argument::TENTHS, 2.5, 40), "2.5");
    EXPECT_EQ(print("%'.2f", Argument::REAL, 12345.5, 40), "12345.50");
    for (const char* const format : {"%.1f", "%8.3f", "%e", "%g", "%G", "%a", "%'f"}) {
        for (const double value : numbers()) {
            const std::string printed = print(format, Argument::REAL, value, 2000);
            std::setlocale(LC_ALL, "C");
            EXPECT_EQ(printed, print_by_library(format, Argument::REAL, value));
            std::setlocale(LC_ALL, comma.c_str());
        }
    }
    EXPECT_STREQ(localeconv()->decimal_point, ",") << "the caller's locale is back";
    std::setlocale(LC_ALL, "C");
}

}  // namespace
