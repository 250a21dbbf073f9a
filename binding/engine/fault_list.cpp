#include "engine/fault_list.h"

#include <algorithm>
#include <utility>

namespace frontpanel::binding_engine {

// The latest reason stays: it is what holds now.
bool Fault_list::add(Rule_fault fault) {
    const auto known =
        std::find_if(m_faults.begin(), m_faults.end(),
                     [&](const Rule_fault& standing) { return standing.rule == fault.rule; });
    if (known == m_faults.end()) {
        m_faults.push_back(std::move(fault));
        return true;
    }
    const bool is_new = known->cause != fault.cause;
    *known = std::move(fault);
    return is_new;
}

void Fault_list::remove(std::size_t rule) {
    m_faults.erase(
        std::remove_if(m_faults.begin(), m_faults.end(),
                       [rule](const Rule_fault& standing) { return standing.rule == rule; }),
        m_faults.end());
}

}  // namespace frontpanel::binding_engine
