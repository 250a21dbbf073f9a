#include "file/range_format.h"

#include <gtest/gtest.h>

namespace frontpanel {
namespace {

struct Format_case {
    const char* format;
    const char* error;  // empty: none
};

constexpr Format_case CASES[] = {
    {"", ""},
    {"%d", ""},
    {"%d dB", ""},
    {"%02x", ""},
    {"%02X", ""},
    {"0x%02X", ""},
    {"%.1f", ""},
    {"%g", ""},
    {"%8.3f", ""},
    {"%-6.2e V", ""},
    {"%d %%", ""},
    {"100 %%", ""},
    {"no number", ""},
    {"0:Off,1:On,%d", ""},
    {"0:Off,1:On,%d dB", ""},
    {"-1:none,0:,%.1f", ""},
    {"0:Off,", ""},
    {"at: %d", ""},
    {"a, b %d", ""},
    {"0:Off,5,%d", "table row \"5\" has no ':'"},
    {"5,0:Off,%d", "table row \"5\" has no ':'"},
    {"0:Off,1:On,%d dB, about", "table row \"%d dB\" has no ':'"},
    {"at 12:30, %d", "table row \"at 12:30\" does not begin with a whole number"},
    {":Off,%d", "table row \":Off\" does not begin with a whole number"},
    {"01:Off,%d", "table row \"01:Off\" does not begin with a whole number"},
    {"-0:Off,%d", "table row \"-0:Off\" does not begin with a whole number"},
    {"+1:Off,%d", "table row \"+1:Off\" does not begin with a whole number"},
    {"-:Off,%d", "table row \"-:Off\" does not begin with a whole number"},
    {"%d of %d", "more than one conversion in \"%d of %d\""},
    {"0:Off,%d %s", "more than one conversion in \"%d %s\""},
    {"%s", "conversion \"%s\" is not one of %d, %02x, %02X, %f, %e, %g"},
    {"%n", "conversion \"%n\" is not one of %d, %02x, %02X, %f, %e, %g"},
    {"%x", "conversion \"%x\" is not one of %d, %02x, %02X, %f, %e, %g"},
    {"%5d", "conversion \"%5d\" is not one of %d, %02x, %02X, %f, %e, %g"},
    {"%*d", "conversion \"%*\" is not one of %d, %02x, %02X, %f, %e, %g"},
    {"%ld", "conversion \"%l\" is not one of %d, %02x, %02X, %f, %e, %g"},
    {"%1000f", "conversion \"%1000\" is not one of %d, %02x, %02X, %f, %e, %g"},
    {"%",
     "conversion \"%\" is not one of %d, %02x, %02X, %f, %e, %g; a per cent sign is written %%"},
    {"%d %", "more than one conversion in \"%d %\"; a per cent sign is written %%"},
    {"%d % full", "more than one conversion in \"%d % full\"; a per cent sign is written %%"},
    {"50%",
     "conversion \"%\" is not one of %d, %02x, %02X, %f, %e, %g; a per cent sign is written %%"},
    {"%.", "conversion \"%.\" is not one of %d, %02x, %02X, %f, %e, %g"},
    {"0:%d,%.1f", "conversion \"%.1f\" is not one of %d, %02x, %02X"},
};

TEST(RangeFormat, IsCheckedBeforeTheLibraryGetsIt) {
    for (const Format_case& expected : CASES) {
        EXPECT_EQ(range_format_error(expected.format).value_or(""), expected.error)
            << expected.format;
    }
}

}  // namespace
}  // namespace frontpanel
