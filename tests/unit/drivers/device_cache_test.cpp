#include "unit/drivers/cache_fixture.h"

namespace support {
namespace {

using Device_cache_test = Cache_test;

// ---- reading on demand

TEST_F(Device_cache_test, AValueIsUnknownUntilItWasRead) {
    add_numbers(1);
    std::int32_t number = 0;
    EXPECT_EQ(m_cache.Get(0, 0, &number, sizeof number), Device_cache::NOT_KNOWN);
    EXPECT_EQ(freshness(0), Freshness::UNKNOWN);
    EXPECT_EQ(m_cache.state(0, 0)->reason, "not read yet");
    m_device->hold(0, 7);
    step();
    EXPECT_EQ(number_of(m_cache, 0), 7);
    EXPECT_EQ(freshness(0), Freshness::FRESH);
    EXPECT_EQ(m_cache.state(0, 0)->reason, "");
}

TEST_F(Device_cache_test, NothingIsReadThatNobodyAskedFor) {
    add_numbers(3);
    step(5);
    EXPECT_EQ(m_device->take_calls(), Lines{"connect"});
}

TEST_F(Device_cache_test, NeighboursAreReadTogetherInAscendingOrder) {
    add_numbers(4);
    number_of(m_cache, 3);
    number_of(m_cache, 1);
    step();
    EXPECT_EQ(m_device->take_calls(), (Lines{"connect", "read 1 3"}));
}

TEST_F(Device_cache_test, AParameterIsReadOnceInItsInterval) {
    const std::size_t driver = add_driver("plc", m_device, 1s);
    m_cache.add_parameter(driver, number_parameter(0));
    m_cache.add_parameter(driver, number_parameter(1), 3s);
    m_cache.start();
    Lines reads;
    for (int tick = 0; tick < 60; ++tick) {
        number_of(m_cache, 0);
        number_of(m_cache, 1);
        step();
        m_clock->advance(100ms);
    }
    EXPECT_EQ(m_device->take_calls(),
              (Lines{"connect", "read 0 1", "read 0", "read 0", "read 0 1", "read 0", "read 0"}));
}

TEST_F(Device_cache_test, AParameterThatNobodyAsksForAnyMoreIsReadNoMore) {
    add_numbers(2);
    read(0);
    m_clock->advance(5s);
    step();
    EXPECT_EQ(m_device->take_calls(), Lines{"read 0"});
    m_clock->advance(1s);
    step(3);
    EXPECT_EQ(m_device->take_calls(), Lines{});
    number_of(m_cache, 0);
    step();
    EXPECT_EQ(m_device->take_calls(), Lines{"read 0"});
}

TEST_F(Device_cache_test, OfTenThousandParametersOnlyTheHundredThatAreShownAreRead) {
    add_numbers(10000);
    for (int tick = 0; tick < 10; ++tick) {
        for (std::uint32_t pid = 500; pid < 600; ++pid) {
            number_of(m_cache, pid);
        }
        step();
        m_clock->advance(1s);
    }
    const Lines calls = m_device->take_calls();
    ASSERT_EQ(calls.size(), 11U);  // the connection, and one read a second
    for (std::size_t i = 1; i < calls.size(); ++i) {
        EXPECT_EQ(std::count(calls[i].begin(), calls[i].end(), ' '), 100) << calls[i];
    }
}

TEST_F(Device_cache_test, ADriverMayReturnAfterSomeOfTheParameters) {
    add_numbers(3);
    m_device->read_at_most(2);
    for (std::uint32_t pid = 0; pid < 3; ++pid) {
        number_of(m_cache, pid);
    }
    step(3);
    EXPECT_EQ(m_device->take_calls(), (Lines{"connect", "read 0 1 2", "read 2"}));
    EXPECT_EQ(number_of(m_cache, 2), 2);
    EXPECT_EQ(events(), Lines{});
}

// By the time that the last ones are read the first ones are due again.
TEST_F(Device_cache_test, ADeviceThatIsTooSlowForItsIntervalsIsAskedForEveryParameterInTurn) {
    add_numbers(5);
    m_device->read_at_most(2);
    for (int i = 0; i < 5; ++i) {
        for (std::uint32_t pid = 0; pid < 5; ++pid) {
            number_of(m_cache, pid);
        }
        step();
        m_clock->advance(600ms);
    }
    EXPECT_EQ(m_device->take_calls(), (Lines{"connect", "read 0 1 2 3 4", "read 2 3 4", "read 4",
                                             "read 0 1 2 3", "read 2 3"}));
}

TEST_F(Device_cache_test, WhatWasJustWrittenIsReadBeforeTheRestOfASlowDevice) {
    add_numbers(4);
    m_device->read_at_most(2);
    for (std::uint32_t pid = 0; pid < 4; ++pid) {
        number_of(m_cache, pid);
    }
    step();
    set_number(m_cache, 0, 9);
    step();
    EXPECT_EQ(m_device->take_calls(),
              (Lines{"connect", "read 0 1 2 3", "write 0=9", "read 0 2 3"}));
}

TEST_F(Device_cache_test, ADriverThatDeliversNothingFailsForEveryParameter) {
    add_numbers(2);
    m_device->read_at_most(0);
    number_of(m_cache, 0);
    number_of(m_cache, 1);
    step(3);
    EXPECT_EQ(m_device->take_calls(), (Lines{"connect", "read 0 1"}));
    EXPECT_EQ(events(), (Lines{"plc: p0: read failed: it delivers no value",
                               "plc: p1: read failed: it delivers no value"}));
}

TEST_F(Device_cache_test, AReadThatTimesOutFailsForEveryParameterThatWasNotDelivered) {
    add_numbers(1);
    m_device->answer_reads(Driver_result::timed_out("no answer in 1 s"));
    number_of(m_cache, 0);
    step();
    EXPECT_EQ(m_cache.state(0, 0)->reason, "no answer in 1 s");
    EXPECT_EQ(events(), Lines{"plc: p0: read failed: no answer in 1 s"});
}

// ---- values that do not fit

TEST_F(Device_cache_test, AValueThatDoesNotFitIsAFailureAndIsNeverBentToFit) {
    const std::size_t driver = add_driver("plc", m_device);
    m_cache.add_parameter(driver, number_parameter(0, 0, 100));
    m_cache.add_parameter(driver, text_parameter(1, 4));
    m_cache.start();
    const struct {
        std::size_t number;
        Parameter_value value;
        const char* reason;
    } cases[] = {{0, 101, "101 is beyond 0..100"},
                 {0, -1, "-1 is beyond 0..100"},
                 {0, std::string("7"), "expected a number, found a text"},
                 {1, 7, "expected a text, found a number"},
                 {1, std::string("abcde"), "the text is longer than 4 bytes"},
                 {1, std::string("a\0b", 3), "the text holds a zero byte"}};
    for (const auto& [number, value, reason] : cases) {
        SCOPED_TRACE(reason);
        m_device->hold(number, value);
        number_of(m_cache, static_cast<std::uint32_t>(number));
        step();
        EXPECT_EQ(m_cache.state(static_cast<std::uint32_t>(number), 0)->reason, reason);
        EXPECT_EQ(freshness(static_cast<std::uint32_t>(number)), Freshness::UNKNOWN);
        m_clock->advance(1s);
    }
}

TEST_F(Device_cache_test, AReasonIsOnePrintableLine) {
    add_numbers(1);
    m_device->fail(0, "bad\n\x1b[2Jline");
    number_of(m_cache, 0);
    step();
    EXPECT_EQ(m_cache.state(0, 0)->reason, "bad??[2Jline");
}

TEST_F(Device_cache_test, TextsHaveTheSizeOfTheirBuffer) {
    m_cache.add_parameter(add_driver("plc", m_device), text_parameter(1, 5));
    m_cache.start();
    m_device->hold(0, std::string("Sport"));
    char text[6] = {};
    EXPECT_EQ(m_cache.Get(1, 0, text, sizeof text), Device_cache::NOT_KNOWN);
    step();
    EXPECT_EQ(m_cache.Get(1, 0, text, 5), Device_cache::WRONG_SIZE);
    EXPECT_EQ(m_cache.Get(1, 0, text, sizeof text), 0);
    EXPECT_STREQ(text, "Sport");
    EXPECT_EQ(m_cache.Set(1, 0, "Sports", 6), Device_cache::OUT_OF_BOUNDS);
    EXPECT_EQ(m_cache.Set(1, 0, "a\0b", 3), Device_cache::WRONG_TYPE);
    EXPECT_EQ(m_cache.Set(1, 0, nullptr, 0), 0);
    step();
    EXPECT_EQ(m_cache.Get(1, 0, text, sizeof text), 0);
    EXPECT_STREQ(text, "");
}

TEST_F(Device_cache_test, ANumberBeyondItsDeclarationIsNotWritten) {
    m_cache.add_parameter(add_driver("plc", m_device), number_parameter(0, 0, 9));
    m_cache.start();
    EXPECT_EQ(set_number(m_cache, 0, 10), Device_cache::OUT_OF_BOUNDS);
    EXPECT_EQ(m_cache.Set(0, 0, "ab", 2), Device_cache::WRONG_SIZE);
    step();
    EXPECT_EQ(m_device->take_calls(), Lines{"connect"});
}

// ---- age

TEST_F(Device_cache_test, AValueThatCannotBeReadAgainIsOldAfterThreeIntervals) {
    add_numbers(1);
    read(0);
    m_device->fail(0, "no such file");
    m_clock->advance(3s);
    step();
    EXPECT_EQ(freshness(0), Freshness::FRESH);
    EXPECT_EQ(m_cache.state(0, 0)->reason, "no such file");
    m_clock->advance(1ms);
    EXPECT_EQ(freshness(0), Freshness::OLD);
    EXPECT_EQ(m_cache.state(0, 0)->age, 3001ms);
    EXPECT_EQ(number_of(m_cache, 0), 0);
}

TEST_F(Device_cache_test, AFailureIsReportedOnceUntilTheParameterIsReadAgain) {
    add_numbers(1);
    m_device->fail(0, "garbage");
    for (int i = 0; i < 3; ++i) {
        number_of(m_cache, 0);
        step();
        m_clock->advance(1s);
    }
    EXPECT_EQ(events(), Lines{"plc: p0: read failed: garbage"});
    m_device->fail(0, "");
    number_of(m_cache, 0);
    step();
    EXPECT_EQ(events(), Lines{"plc: p0: read again"});
}

// ---- what wakes the menu

TEST_F(Device_cache_test, TheMenuIsWokenWhenAShownValueChangesAndOnlyThen) {
    add_numbers(1);
    number_of(m_cache, 0);
    step();
    EXPECT_TRUE(m_cache.take_changes());
    EXPECT_FALSE(m_cache.take_changes());
    m_clock->advance(1s);
    step();
    EXPECT_FALSE(m_cache.take_changes());  // the same value again
    m_device->hold(0, 5);
    m_clock->advance(1s);
    step();
    EXPECT_TRUE(m_cache.take_changes());
}

TEST_F(Device_cache_test, AnOldValueThatIsConfirmedWakesTheMenu) {
    add_numbers(1);
    read(0);
    m_clock->advance(4s);
    ASSERT_EQ(freshness(0), Freshness::OLD);
    step();
    EXPECT_TRUE(m_cache.take_changes());
}

// ---- writes

TEST_F(Device_cache_test, AWrittenValueShowsAtOnceAndIsMarkedUntilTheDeviceHasIt) {
    add_numbers(1);
    read(0);
    EXPECT_EQ(set_number(m_cache, 0, 5), 0);
    EXPECT_EQ(number_of(m_cache, 0), 5);
    EXPECT_TRUE(m_cache.state(0, 0)->is_writing);
    EXPECT_EQ(m_device->held(0), Parameter_value(0));
    step();
    EXPECT_FALSE(m_cache.state(0, 0)->is_writing);
    EXPECT_EQ(number_of(m_cache, 0), 5);
    EXPECT_TRUE(m_cache.take_changes());
    EXPECT_EQ(m_device->take_calls(), (Lines{"write 0=5", "read 0"}));  // what it made of it
}

TEST_F(Device_cache_test, ANewerValueReplacesOneThatWasNotSent) {
    add_numbers(2);
    set_number(m_cache, 0, 1);
    set_number(m_cache, 1, 7);
    set_number(m_cache, 0, 2);
    set_number(m_cache, 0, 3);
    step();
    EXPECT_EQ(m_device->writes(), (Lines{"1=7", "0=3"}));
}

TEST_F(Device_cache_test, ANewerValueFollowsOneThatIsOnItsWay) {
    add_numbers(1);
    read(0);
    m_device->during_write([this] { set_number(m_cache, 0, 2); });
    set_number(m_cache, 0, 1);
    step();
    EXPECT_EQ(m_device->writes(), (Lines{"0=1", "0=2"}));
    EXPECT_EQ(number_of(m_cache, 0), 2);
}

TEST_F(Device_cache_test, AnOlderValueThatWasNotSentDoesNotReplaceANewerOne) {
    add_numbers(1);
    read(0);
    m_device->during_write([this] {
        set_number(m_cache, 0, 2);
        m_device->be_away("cable");
    });
    set_number(m_cache, 0, 1);
    step();
    EXPECT_EQ(number_of(m_cache, 0), 2);
    m_device->be_back();
    m_clock->advance(1s);
    step();
    EXPECT_EQ(m_device->writes(), Lines{"0=2"});
}

TEST_F(Device_cache_test, ANewerValueStaysWhenTheOneOnItsWayIsRefused) {
    add_numbers(1);
    read(0);
    m_device->answer_writes({Driver_result::refused("no")});
    m_device->during_write([this] { set_number(m_cache, 0, 2); });
    set_number(m_cache, 0, 1);
    step();
    EXPECT_EQ(m_device->writes(), Lines{"0=2"});
    EXPECT_EQ(number_of(m_cache, 0), 2);
    EXPECT_EQ(events(), Lines{"plc: p0: write refused: no"});
}

TEST_F(Device_cache_test, ARefusedWriteBringsTheOldValueBackWithTheReason) {
    add_numbers(1);
    m_device->hold(0, 4);
    read(0);
    m_device->answer_writes({Driver_result::refused("permission denied")});
    set_number(m_cache, 0, 5);
    step();
    EXPECT_EQ(number_of(m_cache, 0), 4);
    EXPECT_FALSE(m_cache.state(0, 0)->is_writing);
    EXPECT_EQ(freshness(0), Freshness::FRESH);
    EXPECT_EQ(events(), Lines{"plc: p0: write refused: permission denied"});
}

TEST_F(Device_cache_test, AWriteThatTimesOutMakesTheValueUnknownUntilItIsReadAgain) {
    add_numbers(1);
    read(0);
    m_device->answer_writes({Driver_result::timed_out("no answer")});
    m_device->fail(0, "busy");
    set_number(m_cache, 0, 5);
    step();
    EXPECT_EQ(number_of(m_cache, 0), std::nullopt);
    EXPECT_EQ(freshness(0), Freshness::UNKNOWN);
    EXPECT_EQ(events().front(), "plc: p0: write timed out: no answer");
    m_device->fail(0, "");
    m_clock->advance(1s);
    step();
    EXPECT_EQ(number_of(m_cache, 0), 0);
    EXPECT_EQ(freshness(0), Freshness::FRESH);
}

TEST_F(Device_cache_test, AWriteWaitsForADriverThatIsAway) {
    add_numbers(1);
    read(0);
    m_device->be_away("connection reset");
    set_number(m_cache, 0, 5);
    step();
    EXPECT_TRUE(m_cache.state(0, 0)->is_writing);
    EXPECT_EQ(number_of(m_cache, 0), 5);
    m_device->be_back();
    m_clock->advance(1s);
    step();
    EXPECT_EQ(m_device->writes(), Lines{"0=5"});
    EXPECT_EQ(events(), (Lines{"plc: away: connection reset", "plc: back"}));
}

TEST_F(Device_cache_test, AWriteThatWaitedTooLongIsNotSentAnyMore) {
    add_numbers(1);
    read(0);
    m_device->be_away("connection reset");
    set_number(m_cache, 0, 5);
    step();
    m_clock->advance(10s);
    step();
    EXPECT_EQ(number_of(m_cache, 0), 0);
    EXPECT_FALSE(m_cache.state(0, 0)->is_writing);
    EXPECT_EQ(events(),
              (Lines{"plc: away: connection reset", "plc: p0: not written: connection reset"}));
    m_device->be_back();
    m_clock->advance(60s);
    step(3);
    EXPECT_EQ(m_device->writes(), Lines{});
}

TEST_F(Device_cache_test, WritesLetReadsThrough) {
    add_numbers(100);
    number_of(m_cache, 99);
    for (std::uint32_t pid = 0; pid < 40; ++pid) {
        set_number(m_cache, pid, 1);
    }
    step();
    const Lines calls = m_device->take_calls();
    EXPECT_EQ(calls.size(), 34U);  // the connection, 32 writes, and the read
    EXPECT_EQ(calls.back(), "read 99");
    step();
    EXPECT_EQ(m_device->writes().size(), 40U);
}

TEST_F(Device_cache_test, TheEndWaitsForWritesAndNamesThoseThatAreLeft) {
    const auto away = std::make_shared<Scripted_device>();
    add_numbers(1);
    m_cache.add_parameter(add_driver("far", away), number_parameter(50));
    away->be_away("no route");
    step();
    set_number(m_cache, 0, 5);
    set_number(m_cache, 50, 6);
    const auto left = m_cache.flush(60s);
    EXPECT_EQ(m_device->writes(), Lines{"0=5"});
    ASSERT_EQ(left.size(), 1U);
    EXPECT_EQ(left[0].text(), "far: p50: not written: no route");
}

// ---- drivers that are away

TEST_F(Device_cache_test, ADriverThatIsAwayIsTriedWithGrowingPauses) {
    add_numbers(1);
    m_device->be_away("connection refused");
    std::vector<int> tries;
    for (int tenth = 0; tenth < 1000; ++tenth) {
        step();
        if (!m_device->take_calls().empty()) {
            tries.push_back(tenth);
        }
        m_clock->advance(100ms);
    }
    EXPECT_EQ(tries, (std::vector<int>{0, 5, 15, 35, 75, 155, 315, 615, 915}));
    EXPECT_EQ(events(), Lines{"plc: away: connection refused"});
}

TEST_F(Device_cache_test, AConnectionThatBreaksAtOnceDoesNotShortenThePauses) {
    add_numbers(1);
    m_device->answer_reads(Driver_result::away("closed"));
    int tries = 0;
    for (int tenth = 0; tenth < 1000; ++tenth) {
        number_of(m_cache, 0);
        step();
        const Lines calls = m_device->take_calls();
        tries += static_cast<int>(std::count(calls.begin(), calls.end(), "connect"));
        m_clock->advance(100ms);
    }
    EXPECT_EQ(tries, 9);
    EXPECT_EQ(events(), Lines{"plc: away: closed"});
}

TEST_F(Device_cache_test, EverythingElseWorksWhileADriverIsAway) {
    const auto away = std::make_shared<Scripted_device>();
    add_numbers(1);
    m_cache.add_parameter(add_driver("far", away), number_parameter(50));
    away->be_away("no route");
    m_others.answer_get_integer(99, 0, 42);
    number_of(m_cache, 0);
    number_of(m_cache, 50);
    step();
    EXPECT_EQ(number_of(m_cache, 0), 0);
    EXPECT_EQ(number_of(m_cache, 50), std::nullopt);
    EXPECT_EQ(m_cache.state(50, 0)->reason, "no route");
    EXPECT_EQ(number_of(m_cache, 99), 42);
    EXPECT_FALSE(m_cache.state(99, 0));
}

TEST_F(Device_cache_test, WhatADriverThrowsIsItsReasonToBeAway) {
    add_numbers(1);
    m_device->throw_in_reads("out of registers");
    number_of(m_cache, 0);
    step();
    EXPECT_EQ(events(), Lines{"plc: away: out of registers"});
}

// ---- drivers that push

TEST_F(Device_cache_test, AParameterThatIsPushedIsNotPolledAndStaysFresh) {
    add_numbers(1);
    m_device->push_by_itself(0);
    number_of(m_cache, 0);
    step();
    EXPECT_EQ(freshness(0), Freshness::UNKNOWN);
    m_device->push(0, 8);
    step();
    EXPECT_TRUE(m_cache.take_changes());
    m_clock->advance(1h);
    step();
    EXPECT_EQ(number_of(m_cache, 0), 8);
    EXPECT_EQ(freshness(0), Freshness::FRESH);
    EXPECT_EQ(m_device->take_calls(), Lines{"connect"});
}

TEST_F(Device_cache_test, APushedValueIsOldFromTheLossOfTheConnectionUntilItIsPushedAgain) {
    add_numbers(1);
    m_device->push_by_itself(0);
    m_device->push(0, 8);
    number_of(m_cache, 0);
    step();
    m_clock->advance(1h);
    m_device->be_away("closed");
    step();
    EXPECT_EQ(freshness(0), Freshness::OLD);
    EXPECT_EQ(m_cache.state(0, 0)->reason, "closed");
    EXPECT_EQ(m_cache.state(0, 0)->age, 0ms);
    m_clock->advance(3s);
    EXPECT_EQ(m_cache.state(0, 0)->age, 3s);
    m_device->be_back();
    step();
    m_clock->advance(5s);
    step();
    EXPECT_EQ(freshness(0), Freshness::OLD);
    EXPECT_EQ(m_cache.state(0, 0)->reason, "nothing received yet");
    m_device->push(0, 8);
    step();
    EXPECT_EQ(freshness(0), Freshness::FRESH);
    EXPECT_EQ(m_cache.state(0, 0)->reason, "");
}

TEST_F(Device_cache_test, AValueThatIsRepeatedIsOldWithoutASuccessorInThreeIntervals) {
    m_device->push_by_itself(0);
    m_device->repeat(0);
    const std::size_t driver = add_driver("plc", m_device);
    m_cache.add_parameter(driver, number_parameter(0), 10s);
    number_of(m_cache, 0);
    step();
    EXPECT_EQ(m_cache.state(0, 0)->reason, "nothing received yet");
    m_device->push(0, 8);
    step();
    m_clock->advance(30s);
    EXPECT_EQ(freshness(0), Freshness::FRESH);
    m_clock->advance(1ms);
    EXPECT_EQ(freshness(0), Freshness::OLD);
    EXPECT_EQ(m_cache.state(0, 0)->reason, "nothing received for too long");
    EXPECT_EQ(number_of(m_cache, 0), 8);
    m_device->push(0, 8);
    step();
    EXPECT_EQ(freshness(0), Freshness::FRESH);
    m_clock->advance(20s);
    m_device->be_away("closed");
    step();
    EXPECT_EQ(freshness(0), Freshness::OLD);
    EXPECT_EQ(m_cache.state(0, 0)->age, 20s);
}

TEST_F(Device_cache_test, AValueThatWaitedInTheDriverIsAsOldAsItIs) {
    m_device->push_by_itself(0);
    m_device->repeat(0);
    m_device->push_by_itself(1);
    add_numbers(2);
    m_device->push(0, 8, 3001ms);
    m_device->push(1, 9, 3001ms);
    step();
    EXPECT_EQ(number_of(m_cache, 0), 8);
    EXPECT_EQ(freshness(0), Freshness::OLD);
    EXPECT_EQ(m_cache.state(0, 0)->age, 3001ms);
    EXPECT_EQ(freshness(1), Freshness::FRESH);
    EXPECT_EQ(m_cache.state(1, 0)->age, 3001ms);
}

// ---- writes that somebody else brings to the device

class Passed_on_test : public Cache_test {
protected:
    // The device has said 8, and 9 has been passed on.
    void SetUp() override {
        m_device->push_by_itself(0);
        add_numbers(1);
        m_device->push(0, 8);
        read(0);
        write(9);
    }
    void write(std::int32_t number) {
        m_device->answer_writes({Driver_result::passed_on()});
        set_number(m_cache, 0, number);
        step();
    }
    bool is_writing() const { return m_cache.state(0, 0)->is_writing; }
};

TEST_F(Passed_on_test, TheWriteIsUnderWayUntilTheDevicePushesAValue) {
    EXPECT_EQ(number_of(m_cache, 0), 9);
    EXPECT_TRUE(is_writing());
    EXPECT_TRUE(m_cache.flush(1s).empty());
    m_device->push(0, 7);
    step();
    EXPECT_EQ(number_of(m_cache, 0), 7);
    EXPECT_FALSE(is_writing());
    EXPECT_EQ(freshness(0), Freshness::FRESH);
    m_clock->advance(1min);
    step();
    EXPECT_EQ(events(), Lines{});
}

TEST_F(Passed_on_test, WithoutAnAnswerTheDevicesValueIsBack) {
    m_clock->advance(4999ms);
    step();
    EXPECT_EQ(number_of(m_cache, 0), 9);
    m_cache.take_changes();
    m_clock->advance(1ms);
    step();
    EXPECT_TRUE(m_cache.take_changes());
    EXPECT_EQ(number_of(m_cache, 0), 8);
    EXPECT_FALSE(is_writing());
    EXPECT_EQ(events(), Lines{"plc: p0: no answer: the device keeps its value"});
    step();
    EXPECT_EQ(events(), Lines{});
}

TEST_F(Passed_on_test, ANewerWriteIsAwaitedFromItsOwnTime) {
    m_clock->advance(4s);
    write(10);
    m_clock->advance(4s);
    step();
    EXPECT_EQ(number_of(m_cache, 0), 10);
    EXPECT_EQ(events(), Lines{});
    m_device->push(0, 10);
    step();
    m_clock->advance(1min);
    step();
    EXPECT_EQ(events(), Lines{});
}

TEST_F(Passed_on_test, AValueThatTheDeviceHasIsNotAwaited) {
    m_device->push(0, 9);
    step();
    write(9);
    EXPECT_FALSE(is_writing());
    m_clock->advance(1min);
    step();
    EXPECT_EQ(events(), Lines{});
}

TEST_F(Passed_on_test, AFailureOfTheDeviceIsItsAnswer) {
    m_device->push(0, 5000);
    step();
    EXPECT_FALSE(is_writing());
    EXPECT_EQ(number_of(m_cache, 0), 8);
    EXPECT_EQ(freshness(0), Freshness::OLD);
}

TEST_F(Passed_on_test, TheLossOfTheConnectionLeavesItUnknown) {
    m_device->be_away("closed");
    step();
    EXPECT_FALSE(is_writing());
    EXPECT_EQ(freshness(0), Freshness::UNKNOWN);
    EXPECT_EQ(events(), (Lines{"plc: away: closed", "plc: p0: write timed out: closed"}));
}

// A device that publishes its value again and again may also do so between the write and its answer.
TEST_F(Passed_on_test, AValueThatStaysAsItIsIsNoAnswer) {
    m_device->push(0, 8);
    step();
    EXPECT_EQ(number_of(m_cache, 0), 9);
    EXPECT_TRUE(is_writing());
    m_clock->advance(5s);
    step();
    EXPECT_EQ(number_of(m_cache, 0), 8);
    EXPECT_EQ(events(), Lines{"plc: p0: no answer: the device keeps its value"});
}

TEST_F(Passed_on_test, AnAnswerToAnOlderWriteIsNoneToTheLast) {
    write(10);
    write(11);
    for (const int older : {9, 10}) {
        m_device->push(0, older);
        step();
        EXPECT_EQ(number_of(m_cache, 0), 11);
        EXPECT_TRUE(is_writing());
    }
    m_device->push(0, 11);
    step();
    EXPECT_FALSE(is_writing());
    EXPECT_EQ(number_of(m_cache, 0), 11);
    m_clock->advance(1min);
    step();
    EXPECT_EQ(events(), Lines{});
}

TEST_F(Passed_on_test, AnotherValueIsTheAnswerToAllWrites) {
    write(10);
    m_device->push(0, 7);
    step();
    EXPECT_FALSE(is_writing());
    EXPECT_EQ(number_of(m_cache, 0), 7);
}

TEST_F(Passed_on_test, AWriteBackIsAwaitedBehindTheOther) {
    write(8);
    for (const int between : {8, 9}) {
        m_device->push(0, between);
        step();
        EXPECT_EQ(number_of(m_cache, 0), 8);
        EXPECT_TRUE(is_writing());
    }
    m_device->push(0, 8);
    step();
    EXPECT_FALSE(is_writing());
}

TEST_F(Passed_on_test, AValueThatTheDeviceHasInTheEndWasTaken) {
    write(8);
    m_clock->advance(5s);
    step();
    EXPECT_FALSE(is_writing());
    EXPECT_EQ(number_of(m_cache, 0), 8);
    EXPECT_EQ(events(), Lines{});
}

TEST_F(Passed_on_test, ARefusalLeavesTheWriteBeforeUnderWay) {
    m_device->answer_writes({Driver_result::refused("too large")});
    set_number(m_cache, 0, 10);
    step();
    EXPECT_EQ(events(), Lines{"plc: p0: write refused: too large"});
    EXPECT_EQ(number_of(m_cache, 0), 9);
    EXPECT_TRUE(is_writing());
    m_clock->advance(5s);
    step();
    EXPECT_EQ(events(), Lines{"plc: p0: no answer: the device keeps its value"});
}

TEST_F(Passed_on_test, ATimeOutOfANewerWriteLeavesTheValueUnknown) {
    m_device->answer_writes({Driver_result::timed_out("no answer")});
    set_number(m_cache, 0, 10);
    step();
    EXPECT_EQ(freshness(0), Freshness::UNKNOWN);
    EXPECT_FALSE(is_writing());
    EXPECT_EQ(events(), Lines{"plc: p0: write timed out: no answer"});
}

// ---- the rest of the device

TEST_F(Device_cache_test, AParameterLivesAtOneDriver) {
    const std::size_t driver = add_driver("plc", m_device);
    EXPECT_TRUE(m_cache.add_parameter(driver, number_parameter(0)));
    EXPECT_FALSE(m_cache.add_parameter(driver, number_parameter(0)));
}

TEST_F(Device_cache_test, ProductsAndSocketsAreTheOtherDevices) {
    m_others.expect_product_id(7, 3);
    EXPECT_EQ(m_cache.Set_product_id(7), 3);
    m_others.expect_set_integer(99, 0, 5);
    EXPECT_EQ(set_number(m_cache, 99, 5), 0);
    EXPECT_FALSE(m_cache.has(99, 0));
}

TEST_F(Device_cache_test, EveryParameterIsReadForAReport) {
    const auto away = std::make_shared<Scripted_device>();
    add_numbers(3);
    m_device->fail(1, "garbage");
    m_cache.add_parameter(add_driver("far", away), number_parameter(50));
    away->be_away("no route");
    m_cache.read_all(60s);
    EXPECT_EQ(freshness(0), Freshness::FRESH);
    EXPECT_EQ(m_cache.state(1, 0)->reason, "garbage");
    EXPECT_EQ(number_of(m_cache, 2), 2);
    EXPECT_EQ(m_cache.state(50, 0)->reason, "no route");
}

TEST_F(Device_cache_test, AResultHasAText) {
    EXPECT_STREQ(Device_cache::result_text(0), "done");
    EXPECT_STREQ(Device_cache::result_text(Device_cache::NOT_KNOWN), "no value");
    EXPECT_STREQ(Device_cache::result_text(Device_cache::WRONG_TYPE), "wrong type");
    EXPECT_STREQ(Device_cache::result_text(-1), "device error");
}

}  // namespace
}  // namespace support
