// A device that fails at random, with a person who looks and writes meanwhile: nothing is shown as fresh that is not, and no
// write is lost or done twice.
#include <deque>
#include <map>
#include <random>

#include "unit/drivers/cache_fixture.h"

namespace support {
namespace {

constexpr std::uint32_t PARAMETERS = 4;
constexpr int STEPS = 1500;

class Random_cache_test : public Cache_test, public testing::WithParamInterface<unsigned> {
protected:
    int draw(int count) { return std::uniform_int_distribution<int>(0, count - 1)(m_random); }

    // The device's own change of a value, and the values that it held lately.
    void note_held() {
        for (std::uint32_t pid = 0; pid < PARAMETERS; ++pid) {
            m_history[pid].push_back({m_clock->now(), m_device->held(pid)});
            while (m_history[pid].size() > 1 && m_clock->now() - m_history[pid][1].since > 3s) {
                m_history[pid].pop_front();
            }
        }
    }
    // Of values from 1000 on, each is set once: so a write that is done twice shows.
    void set_new_value(std::uint32_t pid) {
        const std::int32_t value = m_next_value++;
        ASSERT_EQ(set_number(m_cache, pid, value), 0);
        m_set[pid].push_back(value);
    }
    void disturb() {
        switch (draw(12)) {
            case 0:
                m_device->be_away("cable");
                break;
            case 1:
            case 2:
                m_device->be_back();
                break;
            case 3:
                m_device->fail(static_cast<std::size_t>(draw(PARAMETERS)), "garbage");
                break;
            case 4:
            case 5:
                m_device->fail(static_cast<std::size_t>(draw(PARAMETERS)), "");
                break;
            case 6:
                m_device->answer_writes({Driver_result::refused("no")});
                break;
            case 7:
                m_device->answer_writes({Driver_result::timed_out("late")});
                break;
            case 8:
                m_device->hold(static_cast<std::size_t>(draw(PARAMETERS)), draw(900));
                break;
            default:
                break;
        }
    }
    void expect_truth() {
        for (std::uint32_t pid = 0; pid < PARAMETERS; ++pid) {
            const auto shown = number_of(m_cache, pid);
            const auto state = *m_cache.state(pid, 0);
            if (state.is_writing) {
                ASSERT_FALSE(m_set[pid].empty());
                EXPECT_EQ(shown, m_set[pid].back());
                continue;
            }
            EXPECT_EQ(shown.has_value(), state.freshness != Freshness::UNKNOWN);
            if (state.freshness == Freshness::FRESH) {
                const auto& history = m_history[pid];
                EXPECT_TRUE(std::any_of(history.begin(), history.end(), [&](const Held& held) {
                    return held.value == Parameter_value(*shown);
                })) << *shown;
            }
        }
    }

    struct Held {
        std::chrono::steady_clock::time_point since;
        Parameter_value value;
    };
    std::mt19937 m_random{GetParam()};
    std::map<std::uint32_t, std::deque<Held>> m_history;
    std::map<std::uint32_t, std::vector<std::int32_t>> m_set;
    std::int32_t m_next_value = 1000;
};

TEST_P(Random_cache_test, IsTruthfulAndLosesNoWrite) {
    const std::size_t driver = add_driver("plc", m_device);
    for (std::uint32_t pid = 0; pid < PARAMETERS; ++pid) {
        m_cache.add_parameter(driver, number_parameter(pid, 0, 1000000));
        m_device->hold(pid, 0);
    }
    m_cache.start();
    for (int i = 0; i < STEPS && !HasFailure(); ++i) {
        SCOPED_TRACE(i);
        note_held();
        disturb();
        note_held();
        if (draw(3) == 0) {
            set_new_value(static_cast<std::uint32_t>(draw(PARAMETERS)));
        }
        step(draw(3));
        note_held();
        expect_truth();
        m_clock->advance(milliseconds(draw(1500)));
    }
    m_device->be_back();
    m_device->answer_writes({});
    for (std::uint32_t pid = 0; pid < PARAMETERS; ++pid) {
        m_device->fail(pid, "");
        set_new_value(pid);
    }
    EXPECT_TRUE(m_cache.flush(60s).empty());
    std::map<std::string, int> written;
    std::map<char, std::int32_t> last;
    for (const std::string& write : m_device->writes()) {
        EXPECT_EQ(++written[write], 1) << write;
        const std::int32_t value = std::stoi(write.substr(2));
        EXPECT_GT(value, last[write[0]]) << "out of order";
        last[write[0]] = value;
    }
    for (std::uint32_t pid = 0; pid < PARAMETERS; ++pid) {
        EXPECT_EQ(m_device->held(pid), Parameter_value(m_set[pid].back()));
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, Random_cache_test, testing::Range(1U, 21U));

}  // namespace
}  // namespace support
