#include "file/product_options.h"

#include <algorithm>
#include <limits>

#include <frontpanel_base/parameter_declaration.h>

namespace frontpanel {
namespace {

constexpr size_t LONGEST_NAME = 63;  // each entry that tests options keeps all names

}  // namespace

void Product_options::declare(const Json_value& options) {
    m_problems.attempt([&] {
        for (const Json_value::Member& option : options.members()) {
            m_problems.attempt([&] { declare(option); });
        }
    });
}

void Product_options::declare(const Json_value::Member& option) {
    constexpr int64_t HIGHEST = std::numeric_limits<int32_t>::max();
    const std::string& name = option.name;
    const auto is_printable = [](char byte) { return byte >= ' ' && byte <= '~'; };
    if (name.empty() || name.size() > LONGEST_NAME ||
        !std::all_of(name.begin(), name.end(), is_printable)) {
        throw Placed_error(option.place, "expected an option name of 1 to " +
                                             std::to_string(LONGEST_NAME) +
                                             " printable ASCII characters");
    }
    if (name.find(Option_names::NUMBER) != std::string::npos && !Option_names::is_pattern(name)) {
        throw Placed_error(option.place,
                           "\"{n}\", which stands for a number, ends the name of an option");
    }
    declare(name, static_cast<unsigned int>(option.value.integer(0, HIGHEST)));
}

void Product_options::declare(const std::string& name, unsigned int value) {
    m_values[name] = std::max(m_values[name], value);
    m_names.declare(name);
    m_library_values.clear();
}

std::map<std::string, unsigned int> Product_options::library_values() const {
    if (m_library_values.empty()) {
        for (const auto& [name, value] : m_values) {
            m_library_values[m_names.library_name(name)] = value;
        }
    }
    return m_library_values;
}

std::vector<std::string> Product_options::use(const Json_value& list) {
    std::vector<std::string> names;
    const std::vector<Json_value> items = list.items();
    m_work.take_comparisons(list.place(), items.size() * m_values.size());
    for (const Json_value& item : items) {
        m_problems.attempt([&] {
            const std::string name = item.text_of_length(1, LONGEST_TEXT);
            if (!m_names.knows(name)) {
                item.warn("no product option \"" + name + "\" is declared" + m_names.hint(name));
            }
            names.push_back(m_names.library_name(name));
        });
    }
    return names;
}

std::map<std::string, unsigned int> Product_options::copy(const Json_value& item, size_t tests) {
    constexpr size_t COPY_COST = 8;  // of an option, in comparisons
    m_work.take_comparisons(item.place(), (COPY_COST + tests) * m_values.size());
    return library_values();
}

}  // namespace frontpanel
