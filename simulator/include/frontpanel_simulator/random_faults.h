// Makes a device fail now and then, the same way each time.
#ifndef FRONTPANEL_SIMULATOR_RANDOM_FAULTS_H
#define FRONTPANEL_SIMULATOR_RANDOM_FAULTS_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>

#include <frontpanel_simulator/memory_device.h>

namespace frontpanel {

// A fault callback: `device.set_fault(Random_faults(plan))`. Copies share one sequence of faults, which is the same for
// the same plan and the same sequence of calls. Thread-safe.
class Random_faults {
public:
    struct Plan {
        uint32_t seed = 1;
        double probability = 0.1;      // that a call fails, 0 to 1
        int result = 100;              // of a call that fails; none of the device's own
        double delay_probability = 0;  // that a call is slow, whether it fails or not
        std::chrono::microseconds longest_delay{0};
    };

    explicit Random_faults(const Plan& plan);

    // Called by the device before each call. Returns the plan's result, or 0 for a call that is carried out.
    int operator()(const Memory_device::Operation& operation) const;

    // How many calls failed, and how many were slow.
    std::size_t failures() const;
    std::size_t delays() const;

private:
    struct State;
    std::shared_ptr<State> m_state;
};

}  // namespace frontpanel

#endif
