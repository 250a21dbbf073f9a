#include <frontpanel_menu/declared_parameters.h>

#include <frontpanel_data/data_model.h>

#include <charconv>
#include <string_view>

namespace frontpanel {
namespace {

constexpr size_t MOST_LEVELS = Data_model::S_CURRENT_SUPPORT_DIMENTIONS;

// A number up to the end of its text or to a point, behind which `text` then begins.
template <typename Number>
bool take_number(std::string_view& text, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const auto length = static_cast<size_t>(end - text.data());
    const bool is_whole =
        error == std::errc() &&
        (length == text.size() || (text[length] == '.' && length + 1 < text.size()));
    if (is_whole) {
        text.remove_prefix(length == text.size() ? length : length + 1);
    }
    return is_whole;
}

}  // namespace

bool Declared_parameters::add(const Parameter& parameter) {
    return m_parameters.emplace(Key(parameter.pid, varidx_of(parameter.index)), parameter).second;
}

bool Declared_parameters::add_name(const std::string& name, const Parameter& parameter) {
    return m_names.emplace(name, Key(parameter.pid, varidx_of(parameter.index))).second;
}

const Parameter* Declared_parameters::find(uint32_t pid, uint32_t varidx) const {
    const auto found = m_parameters.find({pid, varidx});
    return found == m_parameters.end() ? nullptr : &found->second;
}

const Parameter* Declared_parameters::find(const std::string& name) const {
    const auto found = m_names.find(name);
    return found == m_names.end() ? nullptr : find(found->second.first, found->second.second);
}

const Parameter* Declared_parameters::find_reference(const std::string& text) const {
    std::string_view rest = text;
    uint32_t pid = 0;
    if (!take_number(rest, pid)) {
        return find(text);
    }
    Index_t index{};
    while (!rest.empty()) {
        if (index.m_index_num == MOST_LEVELS ||
            !take_number(rest, index.m_index[index.m_index_num]) ||
            index.m_index[index.m_index_num] > LAST_INDEX) {
            return nullptr;
        }
        ++index.m_index_num;
    }
    return find(pid, varidx_of(index));
}

}  // namespace frontpanel
