#include "charlcd_screen.h"

#include <algorithm>

namespace frontpanel {
namespace {

// "\n" ends a sequence that another program began and did not end.
constexpr const char* END_OF_SEQUENCE = "\n";
constexpr const char* CLEAR = "\x1B[2J";
constexpr const char* DISPLAY_ON = "\x1B[LD";
constexpr const char* CURSOR_OFF = "\x1B[Lc";
constexpr const char* BLINK_ON = "\x1B[LB";
constexpr const char* BLINK_OFF = "\x1B[Lb";
constexpr const char* LIGHT_ON = "\x1B[L+";
constexpr const char* LIGHT_OFF = "\x1B[L-";

// Columns and rows are counted from 0.
std::string position(int row, int column) {
    return "\x1B[Lx" + std::to_string(column) + "y" + std::to_string(row) + ";";
}

// The ROMs of these displays differ from ASCII in two places.
char byte_of(char cell) {
    return cell >= ' ' && cell < '~' && cell != '\\' ? cell : '?';
}

}  // namespace

Charlcd_screen::Charlcd_screen(Lcd_size size)
    : m_size(size),
      m_lines(static_cast<size_t>(size.rows), std::string(static_cast<size_t>(size.columns), ' ')) {
}

std::string Charlcd_screen::setup() const {
    return std::string(END_OF_SEQUENCE) + DISPLAY_ON + CURSOR_OFF + BLINK_OFF + LIGHT_ON + CLEAR;
}

std::string Charlcd_screen::farewell() {
    return std::string(END_OF_SEQUENCE) + BLINK_OFF + CLEAR;
}

std::string Charlcd_screen::update(const Frame& frame) {
    std::string bytes;
    for (int row = 0; row < m_size.rows; ++row) {
        bytes += update_row(frame.lcd, row);
    }
    bytes += update_cursor(frame.lcd);
    if (frame.dim != m_dim) {
        m_dim = frame.dim;
        bytes += m_dim ? LIGHT_OFF : LIGHT_ON;
    }
    return bytes;
}

// What stays between two changes is sent again where that is shorter than a new position.
std::string Charlcd_screen::update_row(const Lcd& lcd, int row) {
    std::string line = row < lcd.size().rows ? lcd.line(row) : "";
    line.resize(static_cast<size_t>(m_size.columns), ' ');
    std::transform(line.begin(), line.end(), line.begin(), byte_of);
    std::string& held = m_lines[static_cast<size_t>(row)];

    std::string bytes;
    for (size_t column = 0; column < line.size(); ++column) {
        if (line[column] == held[column]) {
            continue;
        }
        const auto target = static_cast<int>(column);
        const auto behind = static_cast<size_t>(m_column);
        const bool is_near =
            m_row == row && behind <= column && column - behind < position(row, target).size();
        bytes += is_near ? line.substr(behind, column - behind) : position(row, target);
        bytes += line[column];
        m_row = row;
        m_column = target + 1;
    }
    held = std::move(line);
    return bytes;
}

std::string Charlcd_screen::update_cursor(const Lcd& lcd) {
    const bool blinks = lcd.cursor_row() >= 0 && lcd.cursor_row() < m_size.rows &&
                        lcd.cursor_column() < m_size.columns;
    std::string bytes = blinks ? move_to(lcd.cursor_row(), lcd.cursor_column()) : "";
    if (blinks != m_blinks) {
        m_blinks = blinks;
        bytes += blinks ? BLINK_ON : BLINK_OFF;
    }
    return bytes;
}

std::string Charlcd_screen::move_to(int row, int column) {
    if (row == m_row && column == m_column) {
        return "";
    }
    m_row = row;
    m_column = column;
    return position(row, column);
}

}  // namespace frontpanel
