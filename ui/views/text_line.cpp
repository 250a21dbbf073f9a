#include "views/text_line.h"

#include <algorithm>

namespace frontpanel {

void Text_line::draw(Lcd& lcd, int row, int column, const Texts& texts) {
    m_left.follow(texts.left);
    m_right.follow(texts.right);
    const bool is_alone = m_left.width() == 0 || m_right.width() == 0;
    // Without a blank between two texts the mark needs a place of its own.
    const int columns =
        lcd.size().columns - column - (is_alone ? static_cast<int>(texts.mark.size()) : 0);
    const Line_room room = room_of(m_left.width(), m_right.width(), columns, texts.least_left);
    const bool is_right_cut = m_right.width() > room.right;
    lcd.put(row, column, is_right_cut ? start_of(texts.left, room.left) : m_left.show(room.left));
    lcd.put(row, column + std::min(m_left.width(), room.left), texts.mark);
    lcd.put_right(row, m_right.show(room.right));
}

}  // namespace frontpanel
