#include <frontpanel_data/data_entry.h>
#include <gtest/gtest.h>

#include "support/indexes.h"

namespace {

class Clock : public ::testing::Test {
protected:
    Time_entry entry{"Clock",
                     "The device's clock",
                     302,
                     support::any_index(),
                     32,
                     nullptr,
                     Data_entry::READ_ONLY,
                     Data_entry::VISIBLE_ALL,
                     true,
                     Data_entry::SHORTCUT_NONE,
                     nullptr,
                     nullptr,
                     nullptr};
};

TEST_F(Clock, IsATimeLeafWithAText) {
    EXPECT_EQ(entry.Get_entry_type(), Data_entry::TIME_LEAF);
    EXPECT_EQ(entry.Get_return_type_int_or_string(), STRING);
    EXPECT_EQ(entry.getProperties(0),
              "Clock varid[302.3.0@s] num_index_levels=[1] type[5] vis[1] shortcut[-1] ");
}

TEST_F(Clock, LongTimeIsCutAndNeverScrolls) {
    entry.Set_value("2026-11-21 10:20:30", 19);
    for (int call = 0; call < 25; ++call) {
        char buffer[10] = "#########";
        EXPECT_EQ(entry.Get_display_string(buffer, 8), 0);
        EXPECT_STREQ(buffer, "2026-11-#");  // no terminator of its own
    }
}

TEST_F(Clock, ShortTimeIsTerminated) {
    entry.Set_value("10:20", 5);
    char buffer[10] = "#########";
    EXPECT_EQ(entry.Get_display_string(buffer, 8), 0);
    EXPECT_STREQ(buffer, "10:20");
}

TEST_F(Clock, LengthOfOneIsShown) {
    entry.Set_value("10:20", 5);
    char buffer[3] = "##";
    EXPECT_EQ(entry.Get_display_string(buffer, 1), 0);
    EXPECT_STREQ(buffer, "1#");
}

TEST_F(Clock, NullBufferAndZeroLengthDie) {
    char buffer[4];
    EXPECT_DEATH(entry.Get_display_string(nullptr, 8), "buffer&&length");
    EXPECT_DEATH(entry.Get_display_string(buffer, 0), "buffer&&length");
}

}  // namespace
