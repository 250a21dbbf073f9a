#include <frontpanel_editors/text_editor.h>

#include <algorithm>
#include <array>

#include "entry_text.h"

namespace frontpanel {
namespace {

constexpr char TYPED = 't';
constexpr char WIDENED = 'w';
constexpr int BEHIND = -1;  // the place right of the text, and the only one of an empty text

}  // namespace

Text_editor::Text_editor() = default;
Text_editor::~Text_editor() = default;

void Text_editor::start() {
    const std::string text = value_text(edited());
    m_text.emplace(edited().Get_pid(), edited().Get_index(), edited().Get_max_length());
    m_text->Set(text.c_str(), static_cast<unsigned int>(text.size()));
    m_marks.assign(m_text->Get_current_length(), TYPED);
    m_position = m_marks.empty() ? BEHIND : 0;
    m_viewed.set(text);
}

std::string Text_editor::working_text() {
    std::array<char, MAX_STRING_LENGTH + 1> text = {};
    m_text->Get(text.data(), text.size());
    return text.data();
}

std::string Text_editor::proposed_text() {
    if (entry() == nullptr) {
        return "";
    }
    const std::size_t first = m_marks.find(TYPED);
    if (first == std::string::npos) {
        return "";
    }
    return working_text().substr(first, m_marks.find_last_of(TYPED) - first + 1);
}

void Text_editor::remember() {
    m_opened = value_text(edited());
}

bool Text_editor::put_back() {
    return store_text(edited(), m_opened);
}

void Text_editor::show_value() {
    m_viewed.follow(value_text(edited()));
}

bool Text_editor::is_stored() {
    return value_text(edited()) == proposed_text();
}

void Text_editor::step(Editor_key key, int /*steps*/) {
    switch (key) {
        case Editor_key::UP:
            turn(1);
            break;
        case Editor_key::DOWN:
            turn(-1);
            break;
        case Editor_key::COARSER:
            move_left();
            break;
        case Editor_key::FINER:
            move_right();
            break;
        case Editor_key::INSERT:
            insert();
            break;
        case Editor_key::DELETE:
            remove();
            break;
        case Editor_key::SELECT:
        case Editor_key::ESCAPE:
            break;
    }
}

// The place left of the text may be used only while the widened text stays below the longest.
void Text_editor::move_left() {
    const int length = static_cast<int>(m_marks.size());
    const int next = m_position + 1;
    const bool can_widen =
        length > 0 && next == length && next + 1 < static_cast<int>(m_text->Get_max_length());
    if (next < length || can_widen) {
        ++m_position;
    }
}

void Text_editor::move_right() {
    const bool can_widen = m_marks.size() < m_text->Get_max_length();
    if (m_position > 0 || (m_position == 0 && can_widen)) {
        --m_position;
    }
}

// Where the cursor is, or would be once the text is widened, counted from the left.
std::size_t Text_editor::cursor() const {
    const int place = static_cast<int>(m_marks.size()) - m_position - 1;
    return static_cast<std::size_t>(std::max(0, place));
}

void Text_editor::turn(int direction) {
    const std::string text = working_text();
    const bool is_inside = m_position >= 0 && m_position < static_cast<int>(text.size());
    const int change = is_inside ? change_of(text[cursor()], direction) : direction;
    if (m_text->Inc_value(change, m_position) != Data_model::OK) {
        return;
    }
    const std::size_t length = m_text->Get_current_length();
    const std::size_t added = length - m_marks.size();
    if (added == 0) {
        m_marks[length - static_cast<std::size_t>(m_position) - 1] = TYPED;
    } else if (m_position < 0) {
        m_marks.append(added, WIDENED);
        m_position = 0;
    } else {
        m_marks.insert(0, added, WIDENED);
    }
}

// From a character outside the set the encoder leads to the set's nearer end.
int Text_editor::change_of(char character, int direction) const {
    const std::string& set = settings().characters;
    if (set.empty()) {
        const auto first = static_cast<char>(String_model::MIN_CHARACTER);
        const auto last = static_cast<char>(String_model::MAX_CHARACTER);
        const bool is_end = character == (direction > 0 ? last : first);
        return wraps() && is_end ? direction * (first - last) : direction;
    }
    const std::size_t found = set.find(character);
    if (found == std::string::npos) {
        return (direction > 0 ? set.front() : set.back()) - character;
    }
    const int size = static_cast<int>(set.size());
    const int next = static_cast<int>(found) + direction;
    const int place = wraps() ? (next + size) % size : std::clamp(next, 0, size - 1);
    return set[static_cast<std::size_t>(place)] - character;
}

void Text_editor::put_working_text(const std::string& text) {
    m_text->Set(text.c_str(), static_cast<unsigned int>(text.size()));
}

// A set without a blank has its first character in its place.
void Text_editor::insert() {
    if (m_marks.size() >= m_text->Get_max_length()) {
        return;
    }
    const std::string& set = settings().characters;
    const bool has_blank = set.empty() || set.find(' ') != std::string::npos;
    const std::size_t at = cursor();
    std::string text = working_text();
    text.insert(at, 1, has_blank ? ' ' : set.front());
    put_working_text(text);
    m_marks.insert(at, 1, TYPED);
    m_position = static_cast<int>(m_marks.size() - at) - 1;
}

void Text_editor::remove() {
    const bool is_left_of_text = m_position >= static_cast<int>(m_marks.size());
    if (m_marks.empty() || is_left_of_text) {
        return;
    }
    const std::size_t at = std::min(cursor(), m_marks.size() - 1);
    std::string text = working_text();
    text.erase(at, 1);
    put_working_text(text);
    m_marks.erase(at, 1);
    m_position = std::max(BEHIND, m_position - 1);
}

bool Text_editor::accept() {
    return store_text(edited(), proposed_text());
}

void Text_editor::draw(int columns, Editor_view& shown) {
    if (!is_editable()) {
        shown.text = m_viewed.show(columns);
        return;
    }
    const int length = static_cast<int>(m_marks.size());
    const int left = std::max(0, m_position + 1 - length);
    const std::string line = std::string(static_cast<std::size_t>(left), ' ') + working_text();
    const auto cursor = static_cast<std::size_t>(left + length - m_position - 1);
    show_with_cursor(cursor < line.size() ? line : line + ' ', cursor, columns, shown);
}

}  // namespace frontpanel
