#include <frontpanel_editors/text_editor.h>

#include <algorithm>
#include <array>

namespace {

constexpr char TYPED = 't';
constexpr char WIDENED = 'w';
constexpr int BEHIND = -1;  // the place right of the text, and the only one of an empty text

}  // namespace

Text_editor::Text_editor() = default;
Text_editor::~Text_editor() = default;

void Text_editor::start() {
    const std::string text = text_of(edited());
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

void Text_editor::step(Editor_key key) {
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

void Text_editor::turn(int change) {
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
