// The list of a menu's visible entries with a cursor, as many at a time as the display has lines for.
#ifndef FRONTPANEL_UI_LIST_VIEW_H
#define FRONTPANEL_UI_LIST_VIEW_H

#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

#include <frontpanel_display/lcd.h>
#include "device_link.h"
#include "navigation/menu_path.h"
#include "views/text_line.h"

namespace frontpanel {

class List_view {
public:
    // Shows the menu below `menu`. Menu and device outlive the view.
    List_view(Data_entry& menu, const Device_link& device);

    // Shows another menu, with the cursor on `cursor` when that is one of its visible entries and on the
    // first visible entry otherwise. Without a title all lines are for entries.
    void open(const Menu_step& menu, Data_entry* cursor, bool has_title = true);
    // Shows the menu's values alone, without a cursor, until it is woken or opened; `text` while there are none.
    void rest(const std::string& text);
    // Shows the cursor when the list has an entry.
    void wake() { m_is_at_rest = m_visible.empty(); }
    bool is_at_rest() const { return m_is_at_rest; }
    // Finds the visible entries of the menu, and reads the values that were drawn last. If the entry at the cursor is
    // no longer visible, the cursor moves to the next visible one, or to the last.
    void refresh();
    // As `refresh`, but checks only some entries of a long menu at a time, besides those drawn last: an idle menu of a
    // thousand entries costs no more than a short one.
    void refresh_shown();
    // From now on every entry is to be asked once more by `refresh_shown`, soon.
    void begin_round() { m_left_in_round = m_size + ENTRIES_A_TURN; }
    // Whether some were not asked since.
    bool is_in_round() const { return m_left_in_round > 0; }
    // The entries that are visible, as far as they were asked.
    const std::vector<Data_entry*>& visible() const { return m_visible; }
    // Moves the cursor; it stops at the ends, or with wrap continues at the other end.
    void move(int steps);
    void set_wrap(bool wrap) { m_wrap = wrap; }

    // The entry under the cursor; null when nothing is visible.
    Data_entry* selected() const;

    // Reads the values that were not drawn last time, so that a line is current in its first frame. Returns whether
    // there were any.
    bool bring_into_view(Lcd_size size);
    // Calls `bring_into_view`, then draws the list; on a display of three lines or more below the menu's name.
    void draw(Lcd& lcd);
    // Call it when something else is drawn in place of the list: none of its values is then on the display.
    void cover() { m_drawn.clear(); }
    // Whether an entry drawn last could not be read.
    bool alarm() const { return m_alarm; }

private:
    static constexpr size_t ENTRIES_A_TURN = 64;

    void draw_title(Lcd& lcd);
    Text_line::Texts texts_of(Data_entry& entry);
    // The lines of the entries that are drawn, so that each goes on scrolling where it was.
    void keep_lines(const std::vector<Data_entry*>& drawn);
    void refresh(const std::function<bool(size_t)>& is_due);
    bool is_drawn(const Data_entry* entry) const;
    bool read(Data_entry& entry);
    void place_cursor(Data_entry* wanted);
    void scroll_to_cursor(int lines);
    std::vector<Data_entry*> with_line(int lines) const;
    void take_out(Data_entry* hidden);
    int first_row(Lcd_size size) const;

    Menu_step m_menu;
    Device_link m_device;
    std::vector<Data_entry*> m_visible;
    int m_cursor = 0;  // index in m_visible
    int m_top = 0;     // index in m_visible of the first line on the display
    // The entries on the display, whose values were read at the last tick or later. Only compared: they may not exist
    // any more.
    std::vector<const Data_entry*> m_drawn;
    size_t m_turn = 0;  // the entry of a long menu that is refreshed next
    size_t m_size = 0;  // of the menu, hidden entries included
    size_t m_left_in_round = 0;
    bool m_alarm = false;
    bool m_has_title = true;
    bool m_is_at_rest = false;
    std::string m_rest_text;
    bool m_wrap = false;
    Text_line m_title;
    std::unordered_map<const Data_entry*, Text_line> m_lines;
};

}  // namespace frontpanel

#endif
