#include <frontpanel_simulator/random_faults.h>

#include <mutex>
#include <thread>

#include "chance.h"

namespace frontpanel {

struct Random_faults::State {
    explicit State(const Plan& its_plan) : plan(its_plan), chance(its_plan.seed) {}

    const Plan plan;
    std::mutex mutex;
    Chance chance;
    std::size_t failures = 0;
    std::size_t delays = 0;
};

Random_faults::Random_faults(const Plan& plan) : m_state(std::make_shared<State>(plan)) {}

int Random_faults::operator()(const Memory_device::Operation& /*operation*/) const {
    State& state = *m_state;
    bool fails = false;
    std::chrono::microseconds delay{0};
    {
        const std::lock_guard<std::mutex> lock(state.mutex);
        fails = state.chance.happens(state.plan.probability);
        state.failures += fails ? 1 : 0;
        if (state.chance.happens(state.plan.delay_probability)) {
            delay =
                std::chrono::microseconds(state.chance.below(state.plan.longest_delay.count() + 1));
            ++state.delays;
        }
    }
    if (delay.count() > 0) {
        std::this_thread::sleep_for(delay);
    }
    return fails ? state.plan.result : Memory_device::DONE;
}

std::size_t Random_faults::failures() const {
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    return m_state->failures;
}

std::size_t Random_faults::delays() const {
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    return m_state->delays;
}

}  // namespace frontpanel
