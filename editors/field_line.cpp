#include <frontpanel_editors/field_line.h>
#include <frontpanel_editors/line_text.h>

#include <algorithm>
#include <utility>

namespace frontpanel {
namespace {

constexpr std::size_t MOST_DIGITS = 4;  // of a field: the year

}  // namespace

void Field_line::set(std::vector<Number_field> fields, std::string trailing) {
    m_fields = std::move(fields);
    m_trailing = std::move(trailing);
    m_chosen = m_fields.empty() ? 0 : m_fields.size() - 1;
    m_typed.clear();
    m_has_moved_on = false;
}

void Field_line::step(Editor_key key, const Turn& turn, const Limits_of& limits_of) {
    keep_limits(limits_of);
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

void Field_line::type(char character, const Limits_of& limits_of) {
    const bool has_moved_on = std::exchange(m_has_moved_on, false);
    const bool has_next = m_chosen + 1 < m_fields.size();
    if (character < '0' || character > '9') {
        keep_limits(limits_of);
        m_chosen += has_next && !has_moved_on ? 1 : 0;
        return;
    }
    Number_field& field = m_fields[m_chosen];
    const std::string typed = m_typed + character;
    const auto width = static_cast<std::size_t>(field.width);
    if (typed.size() > MOST_DIGITS || std::stoi(typed) > limits_of(m_chosen).max) {
        return;
    }
    m_typed = typed;
    field.value = std::stoi(typed);
    if (width > 0 && typed.size() == width) {
        keep_limits(limits_of);
        m_chosen += has_next ? 1 : 0;
        m_has_moved_on = has_next;
    }
}

void Field_line::erase() {
    if (m_typed.empty()) {
        return;
    }
    m_typed.pop_back();
    m_fields[m_chosen].value = m_typed.empty() ? 0 : std::stoi(m_typed);
}

void Field_line::keep_limits(const Limits_of& limits_of) {
    m_typed.clear();
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
