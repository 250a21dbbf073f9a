#include "file/placeholder.h"

#include <gtest/gtest.h>

namespace frontpanel {
namespace {

TEST(Placeholder, HasANameAndMayCalculate) {
    const auto plain = find_placeholder("Input {n}", 0);
    ASSERT_TRUE(plain);
    EXPECT_EQ(plain->begin, 6U);
    EXPECT_EQ(plain->end, 9U);
    EXPECT_EQ(plain->name, "n");
    EXPECT_TRUE(plain->is_plain);
    const auto calculated = find_placeholder("{n*10-3}", 0);
    ASSERT_TRUE(calculated);
    EXPECT_FALSE(calculated->is_plain);
    EXPECT_EQ(calculated->factor, 10);
    EXPECT_EQ(calculated->summand, -3);
}

TEST(Placeholder, IsNotWhatOnlyLooksLikeOne) {
    for (const char* const text : {"{", "{}", "{1}", "{n*}", "{n+}", "{n", "{a b}"}) {
        EXPECT_FALSE(find_placeholder(text, 0)) << text;
    }
    const auto inner = find_placeholder("{ {n}", 0);
    ASSERT_TRUE(inner);
    EXPECT_EQ(inner->begin, 2U);
}

TEST(Placeholder, WithTooManyDigitsIsFoundSoThatItCanBeRefused) {
    EXPECT_TRUE(find_placeholder("{n*12345678901234567890}", 0)->is_too_large);
    EXPECT_FALSE(find_placeholder("{n*16-1}", 0)->is_too_large);
}

}  // namespace
}  // namespace frontpanel
