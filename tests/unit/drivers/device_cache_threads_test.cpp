// The cache with a thread for each driver: what hangs, what is told, and the end.
#include <poll.h>

#include "unit/drivers/cache_fixture.h"

namespace support {
namespace {

class Device_cache_threads_test : public testing::Test {
protected:
    void start(std::uint32_t count = 1, Device_cache_settings settings = {}) {
        m_cache.emplace(m_others, std::move(settings));
        const std::size_t driver =
            m_cache->add_driver("plc", std::make_unique<Scripted_driver>(m_device));
        for (std::uint32_t pid = 0; pid < count; ++pid) {
            m_cache->add_parameter(driver, number_parameter(pid));
            m_device->hold(pid, static_cast<std::int32_t>(pid));
        }
        m_cache->start();
    }
    // Waits as the main loop does.
    template <typename Is_so>
    void wait_until(Is_so is_so) {
        while (!is_so()) {
            pollfd source{m_cache->descriptor(), POLLIN, 0};
            poll(&source, 1, 10000);
            m_cache->take_changes();
        }
    }

    std::shared_ptr<Scripted_device> m_device = std::make_shared<Scripted_device>();
    Fake_device m_others;
    std::optional<Device_cache> m_cache;
};

TEST_F(Device_cache_threads_test, AValueThatWasAskedForArrivesAndWakesTheLoop) {
    start();
    m_device->hold(0, 17);
    wait_until([this] { return number_of(*m_cache, 0) == 17; });
    EXPECT_EQ(m_cache->state(0, 0)->freshness, Freshness::FRESH);
}

TEST_F(Device_cache_threads_test, AValueThatIsPushedWakesTheLoop) {
    m_device->push_by_itself(0);
    start();
    number_of(*m_cache, 0);
    m_device->push(0, 23);
    wait_until([this] { return number_of(*m_cache, 0) == 23; });
}

TEST_F(Device_cache_threads_test, AWriteReachesTheDevice) {
    start();
    set_number(*m_cache, 0, 9);
    EXPECT_TRUE(m_cache->flush(10s).empty());
    EXPECT_EQ(m_device->writes(), Lines{"0=9"});
}

TEST_F(Device_cache_threads_test, TheMenuGoesOnWhileADriverHangs) {
    start(2);
    m_device->hang();
    number_of(*m_cache, 0);
    m_device->wait_until_hanging();
    EXPECT_EQ(set_number(*m_cache, 1, 5), 0);
    EXPECT_EQ(number_of(*m_cache, 1), 5);
    EXPECT_TRUE(m_cache->state(1, 0)->is_writing);
    m_device->go_on();
    EXPECT_TRUE(m_cache->flush(10s).empty());
}

TEST_F(Device_cache_threads_test, TheEndLeavesADriverBehindThatHangs) {
    Device_cache_settings settings;
    settings.end_patience = 1ms;
    m_device->hang();
    start(1, settings);
    m_device->wait_until_hanging();
    m_cache.reset();  // returns
    m_device->go_on();
    m_device->wait_until_gone();  // the thread ends by itself, and frees what is its own
}

TEST_F(Device_cache_threads_test, TheEndCallsADriverBackThatCanBeStopped) {
    Device_cache_settings settings;
    settings.end_patience = 60s;
    start(1, settings);
    m_cache->read_all(10s);
    m_device->heed_stop();
    m_device->hang();
    set_number(*m_cache, 0, 1);
    m_device->wait_until_hanging();
    m_device->take_calls();
    m_cache.reset();
    EXPECT_EQ(m_device->take_calls(), Lines{"disconnect"});
}

TEST_F(Device_cache_threads_test, AWriteThatHangsIsNamedAtTheEnd) {
    start();
    set_number(*m_cache, 0, 1);
    ASSERT_TRUE(m_cache->flush(10s).empty());
    m_device->hang();
    set_number(*m_cache, 0, 2);
    m_device->wait_until_hanging();
    const auto left = m_cache->flush(1ms);
    ASSERT_EQ(left.size(), 1U);
    m_device->go_on();
}

TEST_F(Device_cache_threads_test, ADriverThatHangsIsReportedAsAway) {
    const auto clock = std::make_shared<Test_clock>();
    Device_cache_settings settings;
    settings.clock = [clock] { return clock->now(); };
    m_device->hang();
    start(1, settings);
    m_device->wait_until_hanging();
    EXPECT_EQ(texts_of(m_cache->take_events()), Lines{});
    clock->advance(5001ms);
    EXPECT_EQ(texts_of(m_cache->take_events()), Lines{"plc: away: it does not answer"});
    EXPECT_EQ(texts_of(m_cache->take_events()), Lines{});
    EXPECT_EQ(m_cache->state(0, 0)->reason, "it does not answer");
    m_device->go_on();
    EXPECT_TRUE(m_cache->flush(0ms).empty());
    set_number(*m_cache, 0, 1);
    EXPECT_TRUE(m_cache->flush(10s).empty());
    EXPECT_EQ(texts_of(m_cache->take_events()), Lines{"plc: back"});
}

// Nobody wakes a driver that is only to pass on what its device sends.
TEST_F(Device_cache_threads_test, AValueIsOldWhileADriverThatPushesHangsInItsWait) {
    const auto clock = std::make_shared<Test_clock>();
    Device_cache_settings settings;
    settings.clock = [clock] { return clock->now(); };
    m_device->push_by_itself(0);
    start(1, settings);
    number_of(*m_cache, 0);
    m_device->push(0, 8);
    wait_until([this] { return number_of(*m_cache, 0) == 8; });
    m_device->hang_in_waits();
    m_device->push(0, 9);
    m_device->wait_until_hanging();
    clock->advance(1min);
    EXPECT_EQ(m_cache->state(0, 0)->freshness, Freshness::FRESH);
    clock->advance(1min);
    EXPECT_EQ(m_cache->state(0, 0)->freshness, Freshness::OLD);
    EXPECT_EQ(m_cache->state(0, 0)->reason, "it does not answer");
    EXPECT_EQ(texts_of(m_cache->take_events()), Lines{"plc: away: it does not answer"});
    number_of(*m_cache, 0);
    m_device->go_on();
    wait_until([this] { return number_of(*m_cache, 0) == 9; });
    EXPECT_EQ(m_cache->state(0, 0)->freshness, Freshness::FRESH);
}

TEST_F(Device_cache_threads_test, EveryParameterIsReadForAReport) {
    start(100);
    m_cache->read_all(10s);
    for (std::uint32_t pid = 0; pid < 100; ++pid) {
        EXPECT_EQ(number_of(*m_cache, pid), static_cast<std::int32_t>(pid));
    }
}

TEST_F(Device_cache_threads_test, TheDriverIsDisconnectedAtTheEnd) {
    start();
    m_cache->read_all(10s);
    m_device->take_calls();
    m_cache.reset();
    EXPECT_EQ(m_device->take_calls(), Lines{"disconnect"});
}

// The last value of each parameter reaches the device, whatever came between.
TEST_F(Device_cache_threads_test, TheLastOfManyWritesIsTheOneThatStays) {
    start(5);
    for (std::int32_t value = 1; value <= 200; ++value) {
        for (std::uint32_t pid = 0; pid < 5; ++pid) {
            set_number(*m_cache, pid, value);
            number_of(*m_cache, pid);
            m_cache->state(pid, 0);
        }
    }
    EXPECT_TRUE(m_cache->flush(60s).empty());
    for (std::size_t number = 0; number < 5; ++number) {
        EXPECT_EQ(m_device->held(number), Parameter_value(200));
    }
}

}  // namespace
}  // namespace support
