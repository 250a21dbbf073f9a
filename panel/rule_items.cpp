#include <algorithm>
#include <string_view>

#include "loader.h"

namespace panel {
namespace {

// Whether every level is one that a parameter of a menu can have. `100.256` would be read as `100.0.1` is, and
// never be evaluated again when that one is written.
bool is_index_of_menu(const Index_t& index) {
    return std::all_of(index.m_index, index.m_index + index.m_index_num,
                       [](uint16_t level) { return level <= LAST_INDEX; });
}

// The parameters that the rules of a text write: "set [NAME] = ...", outside of texts in quotes.
std::vector<std::string> written_parameters(const std::string& source) {
    constexpr std::string_view SET = "set";
    std::vector<std::string> written;
    bool is_quoted = false;
    for (size_t at = 0; at < source.size(); ++at) {
        is_quoted ^= source[at] == '"' && (at == 0 || source[at - 1] != '\\');
        if (is_quoted || source.compare(at, SET.size(), SET) != 0) {
            continue;
        }
        const size_t open = source.find_first_not_of(" \t", at + SET.size());
        const size_t close = source.find(']', at);
        if (open != std::string::npos && source[open] == '[' && close != std::string::npos) {
            written.push_back(source.substr(open + 1, close - open - 1));
        }
    }
    return written;
}

// A mistake in rules on one line of the file stands where it is; in others it is told with its line.
[[noreturn]] void fail_in(const Json_value& source, const Compile_error& error) {
    const bool is_on_one_line = source.text_with_lines().find('\n') == std::string::npos;
    if (is_on_one_line && source.place().copy == nullptr) {
        throw Placed_error(source.place_in_text(error.column - 1), error.message);
    }
    source.fail(error.text());
}

}  // namespace

// The engine gets all it needs before the entry takes it over.
void Loader::bind(const Json_value& item, Data_entry& entry, std::optional<Bounds> bounds) {
    const std::optional<Json_value> source = item.find("binding");
    if (!source) {
        return;
    }
    m_problems.attempt([&] {
        const std::string text = source->text_with_lines();
        const Compile_result compiled =
            m_menu.bindings()->compile(text, entry.Get_return_type_int_or_string());
        if (!compiled.ok()) {
            fail_in(*source, *compiled.error);
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
        m_binding_places.emplace(&entry, source->place());
        for (const var_index_s& key : entry.Get_var_index_map_keys(0)) {
            m_problems.attempt([&] { check_rule_parameter(*source, key); });
        }
        for (const std::string& written : written_parameters(text)) {
            m_problems.attempt([&] { check_written_parameter(*source, written); });
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

void Loader::check_written_parameter(const Json_value& source, const std::string& reference) {
    if (m_device.reference(reference.substr(0, reference.find('@'))) == nullptr) {
        source.fail("the device has no parameter [" + reference + "]");
    }
}

// A circle of writes may never come to rest. Limits that follow each other do, and are often meant so.
void Loader::check_cycles() {
    for (const Binding_cycle& cycle : m_menu.bindings()->find_cycles()) {
        const auto place = std::find_if(cycle.steps.begin(), cycle.steps.end(),
                                        [this](const Binding_cycle::Step& step) {
                                            return m_binding_places.count(step.entry) > 0;
                                        });
        if (place == cycle.steps.end()) {
            continue;
        }
        if (cycle.kind == Binding_cycle::Kind::WRITES) {
            m_problems.report(m_binding_places.at(place->entry),
                              "rules that write drive each other in a circle: " + cycle.text());
        } else {
            m_problems.warn(m_binding_places.at(place->entry),
                            "rules limit each other in a circle: " + cycle.text());
        }
    }
}

}  // namespace panel
