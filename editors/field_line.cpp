#include <frontpanel_editors/field_line.h>
#include <frontpanel_editors/line_text.h>

#include <algorithm>
#include <utility>

namespace frontpanel {

void Field_line::set(std::vector<Number_field> fields, std::string trailing) {
    m_fields = std::move(fields);
    m_trailing = std::move(trailing);
    m_chosen = m_fields.empty() ? 0 : m_fields.size() - 1;
}

void Field_line::step(Editor_key key, const Turn& turn, const Limits_of& limits_of) {
    if (key == Editor_key::COARSER && m_chosen > 0) {
        --m_chosen;
    } else if (key == Editor_key::FINER && m_chosen + 1 < m_fields.size()) {
        ++m_chosen;
    } else if (key == Editor_key::UP || key == Editor_key::DOWN) {
        int& value = m_fields[m_chosen].value;
        const Limits limits = limits_of(m_chosen);
        const bool up = key == Editor_key::UP;
        if (turn.wrap && value == (up ? limits.max : limits.min)) {
            value = up ? limits.min : limits.max;
        } else {
            value += up ? turn.steps : -turn.steps;
        }
        keep_limits(limits_of);
    }
}

void Field_line::keep_limits(const Limits_of& limits_of) {
    for (std::size_t i = 0; i < m_fields.size(); ++i) {
        const Limits limits = limits_of(i);
        m_fields[i].value = std::clamp(m_fields[i].value, limits.min, limits.max);
    }
}

std::string Field_line::text_up_to(std::size_t end) const {
    std::string text;
    for (std::size_t i = 0; i < end; ++i) {
        const std::string digits = std::to_string(m_fields[i].value);
        const auto width = static_cast<std::size_t>(m_fields[i].width);
        text += m_fields[i].leading;
        text.append(width > digits.size() ? width - digits.size() : 0, '0');
        text += digits;
    }
    return text;
}

std::string Field_line::text() const {
    return text_up_to(m_fields.size()) + m_trailing;
}

void Field_line::draw(int columns, Editor_view& shown) const {
    show_with_cursor(text(), text_up_to(m_chosen + 1).size() - 1, columns, shown);
}

}  // namespace frontpanel
