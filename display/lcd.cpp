#include <frontpanel_display/lcd.h>

#include <algorithm>
#include <cstddef>

#include <frontpanel_base/character_set.h>

namespace frontpanel {

std::string size_text(Lcd_size size) {
    return std::to_string(size.columns) + "x" + std::to_string(size.rows);
}

Lcd::Lcd(Lcd_size size)
    : m_size(size),
      m_lines(static_cast<size_t>(size.rows), std::string(static_cast<size_t>(size.columns), ' ')),
      m_characters(m_lines.size(), std::u32string(static_cast<size_t>(size.columns), U' ')) {}

void Lcd::put_characters(int row, int column, const std::u32string& characters) {
    const std::string cells = cells_of(characters, m_lost);
    if (row < 0 || row >= m_size.rows || column < 0 || column >= m_size.columns) {
        return;
    }
    const size_t count = std::min(cells.size(), static_cast<size_t>(m_size.columns - column));
    std::copy_n(cells.begin(), count, m_lines[static_cast<size_t>(row)].begin() + column);
    std::transform(characters.begin(), characters.begin() + static_cast<std::ptrdiff_t>(count),
                   m_characters[static_cast<size_t>(row)].begin() + column, [](char32_t character) {
                       return character == DAMAGED || is_control(character) ? U'?' : character;
                   });
}

std::string Lcd::text(int row) const {
    return text_in_columns(characters(row));
}

void Lcd::put(int row, int column, std::string_view text) {
    put_characters(row, column, columns_of(text, m_lost));
}

void Lcd::put_right(int row, std::string_view text) {
    const std::u32string characters = columns_of(text, m_lost);
    const size_t length = std::min(characters.size(), static_cast<size_t>(m_size.columns));
    put_characters(row, m_size.columns - static_cast<int>(length), characters);
}

void Lcd::set_cursor(int row, int column) {
    if (row < 0 || row >= m_size.rows || column < 0 || column >= m_size.columns) {
        return;
    }
    m_cursor_row = row;
    m_cursor_column = column;
}

}  // namespace frontpanel
