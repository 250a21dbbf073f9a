// The faults of one engine's rules that remain: each is reported when it is new.
#ifndef FRONTPANEL_BINDING_ENGINE_FAULT_LIST_H
#define FRONTPANEL_BINDING_ENGINE_FAULT_LIST_H

#include <cstddef>
#include <vector>

#include <frontpanel_binding/rule_fault.h>

namespace frontpanel::binding_engine {

class Fault_list {
public:
    // Whether the rule had no fault of that cause before.
    bool add(Rule_fault fault);
    // The rule was evaluated without a fault. A refused write remains.
    void judged(std::size_t rule);
    // The device has taken what the rule writes, or the rule writes nothing now.
    void written(std::size_t rule);
    // All that remain.
    const std::vector<Rule_fault>& faults() const { return m_faults; }
    bool empty() const { return m_faults.empty(); }

private:
    void remove(std::size_t rule, bool is_write);

    std::vector<Rule_fault> m_faults;
};

}  // namespace frontpanel::binding_engine

#endif
