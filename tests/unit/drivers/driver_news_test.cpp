#include "driver_news.h"

#include <gtest/gtest.h>

namespace frontpanel {
namespace {

TEST(Driver_news, OfVeryManyEventsTheLastAreCounted) {
    Driver_news news;
    for (std::size_t i = 0; i < Driver_news::MOST_EVENTS + 7; ++i) {
        news.add({Driver_event::READ_FAILED, "plc", "p" + std::to_string(i), "garbage"});
    }
    const std::vector<Driver_event> events = news.take_events();
    ASSERT_EQ(events.size(), Driver_news::MOST_EVENTS + 1);
    EXPECT_EQ(events.front().text(), "plc: p0: read failed: garbage");
    EXPECT_EQ(events.back().text(), "drivers: read failed: 7 more events like these");
    EXPECT_TRUE(news.take_events().empty());
}

TEST(Driver_news, AnEventMakesTheDescriptorReadable) {
    Driver_news news;
    EXPECT_FALSE(news.take_changes());
    news.add({Driver_event::BACK, "plc", "", ""});
    EXPECT_TRUE(news.take_changes());
    EXPECT_FALSE(news.take_changes());
}

TEST(Driver_news, ARoundThatIsOverIsNotWaitedFor) {
    Driver_news news;
    const std::uint64_t before = news.rounds();
    news.note_round();
    news.wait_for_round(before, std::chrono::steady_clock::time_point::max());
    EXPECT_EQ(news.rounds(), before + 1);
}

}  // namespace
}  // namespace frontpanel
