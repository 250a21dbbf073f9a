// What the engines of one registry share: parameters, the cascade, the machine that runs rules, and memory
// for one evaluation at a time. Menu thread only.
#ifndef FRONTPANEL_BINDING_ENGINE_CORE_H
#define FRONTPANEL_BINDING_ENGINE_CORE_H

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <frontpanel_binding/parameter_table.h>
#include <frontpanel_binding/rule_fault.h>
#include <frontpanel_data/binding.h>

#include "engine/cascade.h"
#include "engine/interval.h"
#include "engine/parameter_cache.h"
#include "language/machine.h"

namespace frontpanel::binding_engine {

// The options of the product, judged as entries judge them.
class Product_options {
public:
    void set(std::map<std::string, unsigned int> options,
             std::function<std::string(const std::string&)> library_name);
    // Whether the product has it. Never of an option that is not known.
    bool has(std::string_view name);
    // Counts the calls of `set`.
    uint64_t version() const { return m_version; }

private:
    // An entry that is in no menu.
    Node_entry m_judge{
        "",      nullptr, nullptr, nullptr, Data_entry::VISIBLE_NONE, Data_entry::SHORTCUT_NONE,
        nullptr, nullptr, nullptr};
    std::function<std::string(const std::string&)> m_library_name;
    uint64_t m_version = 0;
};

struct Core {
    // `table` outlives the core.
    Core(Data_interface* iface, const Parameter_table& table)
        : parameters(iface, cascade), declared(table) {}

    Cascade cascade;
    Parameter_cache parameters;
    // What is declared of the parameters: names and limits.
    const Parameter_table& declared;
    Fault_listener fault_listener;
    Product_options options;
    binding_language::Machine machine;
    // Results of the evaluation that is under way, kept for their memory.
    std::vector<Interval> intervals;
    std::vector<int> keys;
    std::vector<GetSetS> requests;
    bool has_new_writes =
        false;  // what write rules have done changed since the listener heard of it
    // Which time the warnings are armed: those of an earlier time are new again.
    unsigned int warning_round = 0;
};

}  // namespace frontpanel::binding_engine

#endif
