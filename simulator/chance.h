// Dice that fall the same way with every standard library.
#ifndef FRONTPANEL_SIMULATOR_CHANCE_H
#define FRONTPANEL_SIMULATOR_CHANCE_H

#include <cstdint>
#include <random>

namespace frontpanel {

class Chance {
public:
    explicit Chance(uint32_t seed) : m_random(seed) {}

    // Whether something of this probability happens.
    bool happens(double probability) { return share() < probability; }
    // From 0 to less than `end`.
    int64_t below(int64_t end) { return static_cast<int64_t>(share() * static_cast<double>(end)); }

private:
    double share() { return static_cast<double>(m_random()) / 4294967296.0; }

    std::mt19937 m_random;
};

}  // namespace frontpanel

#endif
