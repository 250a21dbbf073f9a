#include "lcd.h"

#include <algorithm>

namespace panel {
namespace {

char printable(char byte) {
    return byte >= ' ' && byte <= '~' ? byte : '?';
}

}  // namespace

Lcd::Lcd(Lcd_size size)
    : m_size(size),
      m_lines(static_cast<size_t>(size.rows), std::string(static_cast<size_t>(size.columns), ' ')) {
}

void Lcd::put(int row, int column, std::string_view text) {
    if (row < 0 || row >= m_size.rows || column < 0 || column >= m_size.columns) {
        return;
    }
    const size_t room = static_cast<size_t>(m_size.columns - column);
    const std::string_view shown = text.substr(0, room);
    std::string& line = m_lines[static_cast<size_t>(row)];
    std::transform(shown.begin(), shown.end(), line.begin() + column, printable);
}

void Lcd::put_right(int row, std::string_view text) {
    const int length = static_cast<int>(std::min(text.size(), static_cast<size_t>(m_size.columns)));
    put(row, m_size.columns - length, text);
}

void Lcd::set_cursor(int row, int column) {
    if (row < 0 || row >= m_size.rows || column < 0 || column >= m_size.columns) {
        return;
    }
    m_cursor_row = row;
    m_cursor_column = column;
}

}  // namespace panel
