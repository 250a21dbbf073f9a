#include <frontpanel_base/numbers.h>

#include <gtest/gtest.h>

#include <cstdint>

namespace frontpanel {
namespace {

TEST(Numbers, AreTheWholeText) {
    EXPECT_EQ(parse_number<int>("0"), 0);
    EXPECT_EQ(parse_number<int>("-12"), -12);
    EXPECT_EQ(parse_number<int>("007"), 7);
    for (const char* const bad : {"", " 1", "1 ", "+1", "1x", "x", "-", "0x10", "1.5"}) {
        EXPECT_EQ(parse_number<int>(bad), std::nullopt) << bad;
    }
    EXPECT_EQ(parse_number<int>(std::string_view("12", 1)), 1);
}

TEST(Numbers, StayInTheirTypeAndBounds) {
    EXPECT_EQ(parse_number<uint16_t>("65535"), 65535);
    EXPECT_EQ(parse_number<uint16_t>("65536"), std::nullopt);
    EXPECT_EQ(parse_number<uint16_t>("-1"), std::nullopt);
    EXPECT_EQ(parse_number<int>("99999999999999999999"), std::nullopt);
    EXPECT_EQ(parse_number<int>("1", 1, 99), 1);
    EXPECT_EQ(parse_number<int>("99", 1, 99), 99);
    EXPECT_EQ(parse_number<int>("0", 1, 99), std::nullopt);
    EXPECT_EQ(parse_number<int>("100", 1, 99), std::nullopt);
}

}  // namespace
}  // namespace frontpanel
