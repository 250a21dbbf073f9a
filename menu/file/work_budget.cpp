#include "file/work_budget.h"

#include <string>

namespace frontpanel {

void Work_budget::take(const Place& place, size_t steps) {
    m_steps += steps;
    if (m_steps > MOST_STEPS) {
        m_problems.end(place, "rules, product options and slot lists of the menu grow beyond " +
                                  std::to_string(MOST_STEPS) + " steps here");
    }
}

void Work_budget::take_comparisons(const Place& place, size_t comparisons) {
    m_comparisons += comparisons;
    take(place, m_comparisons / COMPARISONS_IN_STEP);
    m_comparisons %= COMPARISONS_IN_STEP;
}

}  // namespace frontpanel
