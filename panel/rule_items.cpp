#include <algorithm>

#include "loader.h"

namespace panel {
namespace {

// Whether every level is one that a parameter of a menu can have. `100.256` would be read as `100.0.1` is, and
// never be evaluated again when that one is written.
bool is_index_of_menu(const Index_t& index) {
    return std::all_of(index.m_index, index.m_index + index.m_index_num,
                       [](uint16_t level) { return level <= LAST_INDEX; });
}

}  // namespace

// The engine gets all it needs before the entry takes it over.
void Loader::bind(const Json_value& item, Data_entry& entry, std::optional<Bounds> bounds) {
    const std::optional<Json_value> source = item.find("binding");
    if (!source) {
        return;
    }
    m_problems.attempt([&] {
        const Compile_result compiled = m_menu.bindings()->compile(source->text());
        if (!compiled.ok()) {
            source->fail(compiled.error->text());
        }
        for (const Binding_interval& interval : compiled.intervals) {
            if (bounds && (interval.max < bounds->min || interval.min > bounds->max)) {
                source->fail("range " + std::to_string(interval.min) + ".." +
                             std::to_string(interval.max) + " holds no value from " +
                             std::to_string(bounds->min) + " to " + std::to_string(bounds->max));
            }
        }
        auto binding = std::make_unique<Expression_binding>(m_menu.bindings());
        binding->addBindingList(compiled.list);
        if (bounds) {
            binding->set_fallback_range(bounds->min, bounds->max);
        }
        entry.Set_binding_object(binding.release());
        for (const var_index_s& key : entry.Get_var_index_map_keys(0)) {
            m_problems.attempt([&] { check_rule_parameter(*source, key); });
        }
    });
}

void Loader::check_rule_parameter(const Json_value& source, const var_index_s& key) {
    const Parameter* const parameter = m_device.parameter(key.var, varidx_of(key.index));
    if (parameter == nullptr || !is_index_of_menu(key.index)) {
        source.fail("the device has no parameter " + std::to_string(key.var) + " with this index");
    }
    if (parameter->type != key.rt) {
        source.fail("parameter " + std::to_string(key.var) + " is of another type");
    }
}

}  // namespace panel
