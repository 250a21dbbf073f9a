#include <frontpanel_editors/line_text.h>
#include <frontpanel_editors/number_editor.h>
#include <frontpanel_editors/number_ranges.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <utility>

#include <frontpanel_editors/value_text.h>

namespace frontpanel {
namespace {

constexpr int STEP_FACTOR = 10;

// The place of the digit that a step of `step` changes: counted from the right of the number, passing over its point, and
// the number's first digit when it has fewer.
std::size_t digit_for(const std::string& text, Number_scale::Digits digits, int step) {
    std::size_t column = digits.end - 1;
    while (column != digits.first && (text[column] == '.' || step >= STEP_FACTOR)) {
        step = text[column] == '.' ? step : step / STEP_FACTOR;
        --column;
    }
    return column;
}

}  // namespace

Number_editor::Number_editor() = default;
Number_editor::~Number_editor() = default;

void Number_editor::start() {
    m_step = std::max(1, settings().step);
    // A value outside the range is delivered as well: the first step starts there.
    edited().Get_value(&m_proposed, sizeof m_proposed);
    m_typed.clear();
}

void Number_editor::remember() {
    m_opened = m_proposed;
    m_text = Scrolling_text();
    m_scale = Number_scale([this](int value) { return value_text(edited(), value); },
                           edited().Get_min(), edited().Get_max());
}

std::string Number_editor::typed_characters() const {
    return m_scale.characters();
}

void Number_editor::put(char character) {
    constexpr size_t MOST_CHARACTERS = 16;
    const bool is_second = character == '-'   ? !m_typed.empty()
                           : character == '.' ? m_typed.find('.') != std::string::npos
                                              : false;
    if (!is_second && m_typed.size() < MOST_CHARACTERS) {
        m_typed += character;
    }
}

// False when the number that was typed is not shown for any value.
bool Number_editor::take_typed() {
    const auto typed = m_scale.value_of(std::exchange(m_typed, ""));
    if (typed) {
        m_proposed = typed->value;
    }
    return !typed || typed->is_exact;
}

bool Number_editor::put_back() {
    return edited().Set_value(&m_opened, sizeof m_opened) == 0;
}

void Number_editor::step(Editor_key key, int steps) {
    if (key == Editor_key::ERASE) {
        m_typed.pop_back();
        return;
    }
    take_typed();
    switch (key) {
        case Editor_key::UP:
            turn(static_cast<int64_t>(m_step) * steps);
            break;
        case Editor_key::DOWN:
            turn(-static_cast<int64_t>(m_step) * steps);
            break;
        case Editor_key::COARSER:
            Coarser_step();
            break;
        case Editor_key::FINER:
            Finer_step();
            break;
        case Editor_key::SELECT:
        case Editor_key::ESCAPE:
        case Editor_key::INSERT:
        case Editor_key::DELETE:
        case Editor_key::ERASE:
            break;
    }
}

// While a binding leaves no value allowed, stepping would propose one end of the integers.
bool Number_editor::has_allowed_value() const {
    return edited().Get_min() <= edited().Get_max();
}

void Number_editor::turn(int64_t change) {
    const Number_ranges allowed = allowed_ranges(edited());
    if (allowed.empty()) {
        return;
    }
    const bool upwards = change > 0;
    const int end = upwards ? allowed.back().last : allowed.front().first;
    if (wraps() && m_proposed == end) {
        m_proposed = upwards ? allowed.front().first : allowed.back().last;
    } else {
        m_proposed = next_allowed(allowed, m_proposed + change, upwards);
    }
}

bool Number_editor::is_stored() {
    if (is_typing()) {
        return false;
    }
    int held = 0;
    edited().Get_value(&held, sizeof held);
    return held == m_proposed;
}

Editor_change Number_editor::adapt() {
    if (!has_allowed_value()) {
        return Editor_change::NO_VALUE;
    }
    // The device's value is shown unchanged until a person turns the encoder, also in a gap.
    const bool is_between_bounds =
        edited().Get_min() <= m_proposed && m_proposed <= edited().Get_max();
    if (is_between_bounds && is_stored()) {
        return Editor_change::NONE;
    }
    return correct() ? Editor_change::MOVED : Editor_change::NONE;
}

bool Number_editor::move_to_allowed() {
    const bool is_exact = take_typed();
    return correct() || !is_exact;
}

bool Number_editor::correct() {
    const Number_ranges allowed = allowed_ranges(edited());
    if (allowed.empty() || allows(allowed, m_proposed)) {
        return false;
    }
    m_proposed = nearest_allowed(allowed, m_proposed);
    return true;
}

void Number_editor::Coarser_step() {
    if (entry() == nullptr) {
        return;
    }
    const int64_t span = static_cast<int64_t>(edited().Get_max()) - edited().Get_min();
    const int64_t coarser = static_cast<int64_t>(m_step) * STEP_FACTOR;
    if (coarser <= span && coarser <= std::numeric_limits<int>::max()) {
        m_step = static_cast<int>(coarser);
    }
}

void Number_editor::Finer_step() {
    const int finest = std::max(1, settings().step);
    m_step = std::max(finest, m_step / STEP_FACTOR);
}

bool Number_editor::accept() {
    return has_allowed_value() && edited().Set_value(&m_proposed, sizeof m_proposed) == 0;
}

void Number_editor::draw(int columns, Editor_view& shown) {
    if (is_typing()) {
        const std::string behind = m_scale.behind().empty() ? " " : m_scale.behind();
        const std::string number = m_scale.before() + m_typed;
        show_with_cursor(number + behind, number.size(), columns, shown);
        return;
    }
    const std::string text = value_text(edited(), m_proposed);
    const auto digits = m_scale.digits_in(text);
    if (digits && is_editable()) {
        show_with_cursor(text, digit_for(text, *digits, m_step), columns, shown);
    } else {
        is_editable() ? m_text.update(text) : m_text.follow(text);
        shown.text = m_text.show(columns);
    }
    if (m_step != 1) {
        const auto step = m_scale.step_text(m_step);
        shown.step = step ? "step " + *step : std::to_string(m_step) + " steps";
    }
}

}  // namespace frontpanel
