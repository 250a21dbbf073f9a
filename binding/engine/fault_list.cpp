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

void Fault_list::judged(std::size_t rule) {
    remove(rule, false);
}

void Fault_list::written(std::size_t rule) {
    remove(rule, true);
}

void Fault_list::remove(std::size_t rule, bool is_write) {
    const auto is_meant = [rule, is_write](const Rule_fault& standing) {
        return standing.rule == rule && (standing.cause == Rule_fault::Cause::WRITE) == is_write;
    };
    m_faults.erase(std::remove_if(m_faults.begin(), m_faults.end(), is_meant), m_faults.end());
}

}  // namespace frontpanel::binding_engine
