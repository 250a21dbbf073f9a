#include <frontpanel_binding/parameter_address.h>
#include <gtest/gtest.h>

#include <string>

#include "support/indexes.h"

using namespace frontpanel;
using support::index_of;

TEST(Parameter_address_test, AnAddressHasAPidLevelsAndAType) {
    const struct {
        const char* text;
        uint32_t pid;
        Index_t index;
        RETURN_TYPE type;
    } cases[] = {
        {"0", 0, index_of({}), INVALID_TYPE},
        {"100", 100, index_of({}), INVALID_TYPE},
        {"0100.003", 100, index_of({3}), INVALID_TYPE},
        {"100.3.1", 100, index_of({3, 1}), INVALID_TYPE},
        {"4294967294.65535.65535", 4294967294U, index_of({65535, 65535}), INVALID_TYPE},
        {"100@i", 100, index_of({}), INTEGER},
        {"100.0@s", 100, index_of({0}), STRING},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.text);
        const auto address = parse_address(each.text);
        ASSERT_TRUE(address);
        EXPECT_EQ(address->pid, each.pid);
        EXPECT_EQ(address->index, each.index);
        EXPECT_EQ(address->type, each.type);
    }
}

TEST(Parameter_address_test, AnAddressIsWrittenAsItIsRead) {
    EXPECT_EQ(address_text(100, index_of({})), "100");
    EXPECT_EQ(address_text(100, index_of({0})), "100.0");
    EXPECT_EQ(address_text(100, index_of({3, 1})), "100.3.1");
}

TEST(Parameter_address_test, AVariableIndexIsWrittenByItsLevels) {
    const struct {
        uint32_t varidx;
        const char* text;
    } cases[] = {{0, "100"}, {3, "100.3"}, {255, "100.255"}, {256, "100.0.1"}, {0x0103, "100.3.1"}};
    for (const auto& each : cases) {
        const std::string text = address_text(100, each.varidx);
        EXPECT_EQ(text, each.text);
        EXPECT_EQ(varidx_of(parse_address(text)->index), each.varidx);
    }
}

TEST(Parameter_address_test, AnIndexIsUniqueUpToTheLastIndexOfEachLevel) {
    EXPECT_TRUE(is_unique(index_of({})));
    EXPECT_TRUE(is_unique(index_of({255, 255})));
    EXPECT_FALSE(is_unique(index_of({256})));
    EXPECT_FALSE(is_unique(index_of({0, 256})));
}

TEST(Parameter_address_test, AnErrorSaysWhatIsWrongAndWhere) {
    const struct {
        const char* text;
        std::size_t offset;
        const char* message;
    } cases[] = {
        {"", 0, "\"\" is not a number from 0 to 4294967294"},
        {"gain", 0, "\"\" is not a number from 0 to 4294967294"},
        {"-1", 0, "\"\" is not a number from 0 to 4294967294"},
        {"4294967295", 0, "\"4294967295\" is not a number from 0 to 4294967294"},
        {"18446744073709551616", 0,
         "\"18446744073709551616\" is not a number from 0 to 4294967294"},
        {"100.", 4, "\"\" is not a number from 0 to 65535"},
        {"100..1", 4, "\"\" is not a number from 0 to 65535"},
        {"100.65536", 4, "\"65536\" is not a number from 0 to 65535"},
        {"100.3.1.2", 8, "a parameter has at most two index levels"},
        {"100.3x", 5, "expected \"@i\" or \"@s\", found \"x\""},
        {"100@", 3, "expected \"@i\" or \"@s\", found \"@\""},
        {"100@int", 3, "expected \"@i\" or \"@s\", found \"@int\""},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.text);
        Address_error error;
        EXPECT_FALSE(parse_address(each.text, &error));
        EXPECT_EQ(error.offset, each.offset);
        EXPECT_EQ(error.message, each.message);
        EXPECT_FALSE(parse_address(each.text));
    }
}

TEST(Parameter_address_test, WhatBeginsWithADigitAndHoldsDigitsAndDotsIsLikeAnAddress) {
    for (const char* const text : {"1", "100", "100.", "1..2", "100@", "100@anything", "1.2.3.4"}) {
        EXPECT_TRUE(is_like_address(text)) << text;
    }
    for (const char* const text : {"", ".1", "@i", "gain", "1st", "100.x", "-1", "100 "}) {
        EXPECT_FALSE(is_like_address(text)) << text;
    }
}

TEST(Parameter_address_test, TheSecondLevelIsTheHighByteOfTheVariableIndex) {
    EXPECT_EQ(varidx_of(index_of({})), 0U);
    EXPECT_EQ(varidx_of(index_of({7})), 7U);
    EXPECT_EQ(varidx_of(index_of({7, 2})), 0x207U);
    EXPECT_EQ(varidx_of(index_of({LAST_INDEX, 0})), 255U);
}
