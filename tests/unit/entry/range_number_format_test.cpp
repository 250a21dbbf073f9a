#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

#include "entry/number_format.h"

using number_format::Argument;

namespace {

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
        EXPECT_EQ(number_format::fits(check.format, Argument::WHOLE), check.fits_whole);
        EXPECT_EQ(number_format::fits(check.format, Argument::TENTHS), check.fits_real);
        EXPECT_EQ(number_format::fits(check.format, Argument::REAL), check.fits_real);
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
        EXPECT_EQ(number_format::print("%d", Argument::WHOLE, value, 40), "0");
        EXPECT_EQ(number_format::print("%.1f", Argument::TENTHS, value, 40), "0.0");
        EXPECT_EQ(number_format::print("%g", Argument::REAL, value, 40), "0");
    }
}

TEST(Number_format, TenthsAreRoundedHalfAwayFromZero) {
    EXPECT_EQ(number_format::print("%.1f", Argument::TENTHS, 0.25, 40), "0.3");
    EXPECT_EQ(number_format::print("%.1f", Argument::TENTHS, -0.25, 40), "-0.3");
    EXPECT_EQ(number_format::print("%.1f", Argument::REAL, 0.25, 40), "0.2");
}

TEST(Number_format, ATextIsCutToItsLimit) {
    EXPECT_EQ(number_format::print("%d units", Argument::WHOLE, 1234, 40), "1234 units");
    EXPECT_EQ(number_format::print("%d units", Argument::WHOLE, 1234, 10), "1234 units");
    EXPECT_EQ(number_format::print("%d units", Argument::WHOLE, 1234, 9), "1234 unit");
    EXPECT_EQ(number_format::print("%d units", Argument::WHOLE, 1234, 0), "");
}

TEST(Number_format, AnEmptyFormatPrintsNothing) {
    EXPECT_EQ(number_format::print("", Argument::REAL, 1, 40), "");
}

TEST(Number_format, LongNumbersArePrintedWhole) {
    EXPECT_EQ(number_format::print("%f", Argument::REAL, 1e300, 1000).size(), 308U);
    EXPECT_EQ(number_format::print("%999d", Argument::WHOLE, 7, 2000).size(), 999U);
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
    EXPECT_EQ(number_format::print("%.1f", Argument::TENTHS, 2.5, 40), "2.5");
    EXPECT_EQ(number_format::print("%'.2f", Argument::REAL, 12345.5, 40), "12345.50");
    EXPECT_STREQ(localeconv()->decimal_point, ",") << "the caller's locale is back";
    std::setlocale(LC_ALL, "C");
}

}  // namespace
