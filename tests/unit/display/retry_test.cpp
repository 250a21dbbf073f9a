#include <frontpanel_display/retry.h>

#include <gtest/gtest.h>

namespace frontpanel {
namespace {

using std::chrono::milliseconds;

class Retry_test : public testing::Test {
protected:
    void let_pass(milliseconds time) { now += time; }

    Retry retry;
    Time now{milliseconds(1000000)};
};

TEST_F(Retry_test, TheFirstTryIsAtOnceAndLaterOnesAfterPausesThatDouble) {
    EXPECT_LE(retry.next_try(), now);
    for (const int pause : {250, 500, 1000, 2000, 4000, 8000, 10000, 10000}) {
        retry.lose(now);
        EXPECT_EQ(retry.next_try() - now, milliseconds(pause));
        now = retry.next_try();
    }
}

TEST_F(Retry_test, ALossIsReportedOnce) {
    EXPECT_TRUE(retry.lose(now));
    EXPECT_FALSE(retry.lose(now));
    EXPECT_TRUE(retry.gain(now));
    let_pass(Retry::STEADY);
    EXPECT_FALSE(retry.settle(now));
    EXPECT_TRUE(retry.lose(now));
}

TEST_F(Retry_test, WhatIsSteadyStartsAgainWithTheShortestPause) {
    for (int i = 0; i < 4; ++i) {
        retry.lose(now);
    }
    retry.gain(now);
    let_pass(Retry::STEADY);
    retry.settle(now);
    retry.lose(now);
    EXPECT_EQ(retry.next_try() - now, Retry::FIRST_PAUSE);
}

TEST_F(Retry_test, WhatComesAndGoesIsReportedOnceUntilItStays) {
    EXPECT_TRUE(retry.gain(now));
    EXPECT_TRUE(retry.lose(now));
    for (int i = 0; i < 5; ++i) {
        EXPECT_FALSE(retry.gain(now));
        EXPECT_EQ(retry.settles(), now + Retry::STEADY);
        let_pass(Retry::STEADY / 2);
        EXPECT_FALSE(retry.settle(now));
        EXPECT_FALSE(retry.lose(now));
    }
    EXPECT_FALSE(retry.gain(now));
    let_pass(Retry::STEADY);
    EXPECT_TRUE(retry.settle(now));
    EXPECT_FALSE(retry.settle(now));
    EXPECT_EQ(retry.settles(), Time::max());
    EXPECT_TRUE(retry.lose(now));
}

TEST_F(Retry_test, ComplaintsEndUntilItIsSteady) {
    retry.gain(now);
    for (int i = 0; i < Retry::MOST_COMPLAINTS; ++i) {
        EXPECT_TRUE(retry.complain());
    }
    EXPECT_FALSE(retry.complain());
    let_pass(Retry::STEADY);
    retry.settle(now);
    EXPECT_TRUE(retry.complain());
}

}  // namespace
}  // namespace frontpanel
