#include "engine/core.h"

#include <utility>

namespace frontpanel::binding_engine {

void Product_options::set(std::map<std::string, unsigned int> options,
                          std::function<std::string(const std::string&)> library_name) {
    m_library_name = std::move(library_name);
    m_judge.setProductOptions(std::move(options));
    ++m_version;
}

// As a range or an option of an entry is judged that needs it.
bool Product_options::has(std::string_view name) {
    const std::string known =
        m_library_name ? m_library_name(std::string(name)) : std::string(name);
    const is_static_value_s option = m_judge.isOptionStatic(known, false);
    const bool is_static = option.isStatic == 1;
    const bool is_instance = option.isStatic == 0 && option.dynamicValue <= option.realValue;
    return option.realValue != 0 && (is_static || is_instance);
}

}  // namespace frontpanel::binding_engine
