#include <frontpanel_base/character_set.h>
#include <frontpanel_editors/text_editor.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

#include "entry_text.h"

namespace frontpanel {
namespace {

constexpr int BEHIND = -1;  // the place right of the text, and the only one of an empty text

// The first byte of the character that byte `at` belongs to. Combining characters belong to the character before them.
std::size_t start_of_character(const std::string& text, std::size_t at) {
    std::string_view rest = text;
    for (std::size_t start = 0;;) {
        const std::size_t size = size_of_column(rest);
        if (start + size > at) {
            return start;
        }
        start += size;
        rest.remove_prefix(size);
    }
}

// The size of the character that begins at `at`, in bytes; 1 for a byte that is not UTF-8.
std::size_t size_of_character(const std::string& text, std::size_t at) {
    return size_of_column(std::string_view(text).substr(at));
}

}  // namespace

Text_editor::Text_editor() = default;
Text_editor::~Text_editor() = default;

void Text_editor::start() {
    const std::string text = value_text(edited());
    m_text.emplace(edited().Get_pid(), edited().Get_index(), edited().Get_max_length());
    m_text->Set(text.c_str(), static_cast<unsigned int>(text.size()));
    m_position = length() == 0 ? BEHIND : 0;
    stand_on_character();
    m_is_typing = false;
    m_viewed.set(text);
}

std::string Text_editor::working_text() {
    std::array<char, MAX_STRING_LENGTH + 1> text = {};
    m_text->Get(text.data(), text.size());
    return text.data();
}

std::string Text_editor::proposed_text() {
    return entry() == nullptr ? "" : working_text();
}

int Text_editor::length() const {
    return static_cast<int>(m_text->Get_current_length());
}

bool Text_editor::has_room() const {
    return length() < static_cast<int>(m_text->Get_max_length());
}

bool Text_editor::is_inside() const {
    return m_position >= 0 && m_position < length();
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
    const bool was_typing = std::exchange(m_is_typing, false);
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
        case Editor_key::ERASE:
            was_typing ? take_back() : remove();
            break;
        case Editor_key::SELECT:
        case Editor_key::ESCAPE:
            break;
    }
}

// The place left of the text may be used only while the widened text stays below the longest.
void Text_editor::move_left() {
    const int next = m_position + 1;
    const bool can_widen =
        length() > 0 && next == length() && next + 1 < static_cast<int>(m_text->Get_max_length());
    if (next < length() || can_widen) {
        ++m_position;
        stand_on_character();
    }
}

void Text_editor::move_right() {
    const int last = m_position - bytes_behind();
    if (last > 0 || (last == 0 && has_room())) {
        m_position = last - 1;
    }
}

// The cursor is on the first byte of a character.
void Text_editor::stand_on_character() {
    if (is_inside()) {
        const std::size_t at = cursor();
        m_position += static_cast<int>(at - start_of_character(working_text(), at));
    }
}

// Of the character under the cursor, those after its first.
int Text_editor::bytes_behind() {
    return is_inside() ? static_cast<int>(size_of_character(working_text(), cursor())) - 1 : 0;
}

// The cursor stays on it.
void Text_editor::replace(char character) {
    std::string text = working_text();
    const int behind = bytes_behind();
    text.replace(cursor(), static_cast<std::size_t>(behind) + 1, 1, character);
    put_working_text(text);
    m_position -= behind;
}

// Where the cursor is, or would be once the text is widened, counted from the left.
std::size_t Text_editor::cursor() const {
    return static_cast<std::size_t>(std::max(0, length() - m_position - 1));
}

void Text_editor::turn(int direction) {
    if (!is_inside()) {
        widen(new_character());
        return;
    }
    if (bytes_behind() > 0) {
        const std::string& set = settings().characters;
        replace(set.empty() ? new_character() : direction > 0 ? set.front() : set.back());
        return;
    }
    m_text->Inc_value(change_of(working_text()[cursor()], direction), m_position);
}

// Adds a character on the side of the cursor, which is on it afterwards.
void Text_editor::widen(char character) {
    if (!has_room()) {
        return;
    }
    const bool is_behind = m_position < 0;
    insert(is_behind ? static_cast<std::size_t>(length()) : 0, character);
    m_position = is_behind ? 0 : length() - 1;
}

// The first turn and the first insertion are to be seen: a blank would not be.
char Text_editor::new_character() const {
    const std::string& set = settings().characters;
    const std::size_t visible = set.find_first_not_of(' ');
    return set.empty() ? 'A' : visible == std::string::npos ? ' ' : set[visible];
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

void Text_editor::insert(std::size_t at, char character) {
    std::string text = working_text();
    text.insert(at, 1, character);
    put_working_text(text);
}

void Text_editor::insert() {
    if (!has_room()) {
        return;
    }
    const std::size_t at = cursor();
    insert(at, new_character());
    m_position = length() - static_cast<int>(at) - 1;
}

// The character of which the byte `at` is a part. How many bytes it had.
int Text_editor::remove(std::size_t at) {
    std::string text = working_text();
    const std::size_t start = start_of_character(text, at);
    const std::size_t size = size_of_character(text, start);
    text.erase(start, size);
    put_working_text(text);
    return static_cast<int>(size);
}

void Text_editor::remove() {
    if (length() == 0 || m_position >= length()) {
        return;
    }
    const int size = remove(std::min(cursor(), static_cast<std::size_t>(length()) - 1));
    m_position = std::max(BEHIND, m_position - size);
}

// The cursor is behind the typed character. Places are counted from the right, so it stays on its character.
void Text_editor::take_back() {
    const int before = length() - m_position - 2;
    if (before >= 0) {
        remove(static_cast<std::size_t>(before));
        m_is_typing = true;
    }
}

// A character that the set lacks is taken as well, so that its key has no other meaning here.
std::string Text_editor::typed_characters() const {
    std::string all;
    for (char character = ' '; character <= '~'; ++character) {
        all += character;
    }
    return all;
}

// The character as the set has it; '\0' for one that it lacks.
char Text_editor::in_set(char character) const {
    const std::string& set = settings().characters;
    const auto byte = static_cast<unsigned char>(character);
    for (const int form : {static_cast<int>(byte), std::toupper(byte), std::tolower(byte)}) {
        if (set.empty() || set.find(static_cast<char>(form)) != std::string::npos) {
            return static_cast<char>(form);
        }
    }
    return '\0';
}

// Beside the text it grows.
void Text_editor::put(char character) {
    const char taken = in_set(character);
    if (taken == '\0' || (!is_inside() && !has_room())) {
        return;
    }
    if (is_inside()) {
        replace(taken);
    } else {
        widen(taken);
    }
    --m_position;
    m_is_typing = true;
}

bool Text_editor::accept() {
    return store_text(edited(), proposed_text());
}

void Text_editor::draw(int columns, Editor_view& shown) {
    if (!is_editable()) {
        shown.text = m_viewed.show(columns);
        return;
    }
    const int left = std::max(0, m_position + 1 - length());
    const std::string line = std::string(static_cast<std::size_t>(left), ' ') + working_text();
    const auto cursor = static_cast<std::size_t>(left + length() - m_position - 1);
    show_with_cursor(cursor < line.size() ? line : line + ' ', cursor, columns, shown);
}

}  // namespace frontpanel
