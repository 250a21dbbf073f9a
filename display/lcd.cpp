#include <frontpanel_display/lcd.h>

#include <algorithm>

#include <frontpanel_base/character_set.h>

namespace frontpanel {

std::string size_text(Lcd_size size) {
    return std::to_string(size.columns) + "x" + std::to_string(size.rows);
}

Lcd::Lcd(Lcd_size size)
    : m_size(size),
      m_lines(static_cast<size_t>(size.rows), std::string(static_cast<size_t>(size.columns), ' ')) {
}

void Lcd::put_cells(int row, int column, std::string_view cells) {
    if (row < 0 || row >= m_size.rows || column < 0 || column >= m_size.columns) {
        return;
    }
    const std::string_view shown = cells.substr(0, static_cast<size_t>(m_size.columns - column));
    std::string& line = m_lines[static_cast<size_t>(row)];
    std::copy(shown.begin(), shown.end(), line.begin() + column);
}

void Lcd::put(int row, int column, std::string_view text) {
    put_cells(row, column, cells_of(text, m_lost));
}

void Lcd::put_right(int row, std::string_view text) {
    const std::string cells = cells_of(text, m_lost);
    const size_t length = std::min(cells.size(), static_cast<size_t>(m_size.columns));
    put_cells(row, m_size.columns - static_cast<int>(length), cells);
}

void Lcd::set_cursor(int row, int column) {
    if (row < 0 || row >= m_size.rows || column < 0 || column >= m_size.columns) {
        return;
    }
    m_cursor_row = row;
    m_cursor_column = column;
}

}  // namespace frontpanel
