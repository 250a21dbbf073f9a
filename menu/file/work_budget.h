// The time and memory that the parts of a menu may take that cost more than their values in the file.
#ifndef FRONTPANEL_MENU_WORK_BUDGET_H
#define FRONTPANEL_MENU_WORK_BUDGET_H

#include <cstddef>

#include <frontpanel_base/problems.h>

namespace frontpanel {

class Work_budget {
public:
    // A step is about two microseconds, or two hundred bytes.
    static constexpr size_t MOST_STEPS = 500000;
    static constexpr size_t RULES_COST =
        10;  // of an item's rules, beside 1 for each parameter named
    static constexpr size_t SLOT_LIST_COST = 25;  // of the lines of a slot list
    // The library compares an option that an item tests with all that the product has.
    static constexpr size_t COMPARISONS_IN_STEP = 16;

    // `problems` outlives the budget.
    explicit Work_budget(Problems& problems) : m_problems(problems) {}

    // Takes steps for the part at `place`; the outermost attempt of the problems ends when none are left.
    // Requires: inside an attempt.
    void take(const Place& place, size_t steps);
    void take_comparisons(const Place& place, size_t comparisons);

private:
    Problems& m_problems;
    size_t m_steps = 0;
    size_t m_comparisons = 0;  // less than a step
};

}  // namespace frontpanel

#endif
