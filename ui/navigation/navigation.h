// Navigation through the menus: what is shown, where a key leads, and where the panel returns to.
//
// The top is the homescreen if there is one, else the menu. On the homescreen SELECT opens the menu. The encoder shows
// a cursor there: SELECT then opens the item at the cursor, and BACK hides the cursor. At the top BACK does nothing.
// FAVOURITES opens the favourites over any menu, and BACK returns from them to where it was pressed.
//
// What was opened by a link is left to the link's own place. `LINK_SKIP` leaves to the place of what the link
// houses instead, and an escape node goes before both: `ESCAPE_SELECT` is where the panel goes after a value was
// accepted, `ESCAPE_LEAVE` after BACK, `ESCAPE_REDRAW` when what is open is hidden.
#ifndef FRONTPANEL_UI_NAVIGATION_H
#define FRONTPANEL_UI_NAVIGATION_H

#include <string>

#include <frontpanel_display/key.h>
#include <frontpanel_display/lcd.h>
#include <frontpanel_menu/menu.h>
#include "device_link.h"
#include "navigation/list_view.h"
#include "navigation/menu_path.h"
#include "views/notices.h"

namespace frontpanel {

// The menus beside the top menu. Null for none.
struct Home {
    Data_entry* homescreen = nullptr;
    Data_entry* favourites = nullptr;
};

// Those of a menu file. The menu outlives it.
Home home_of(Menu& menu);

class Navigation {
public:
    // Menu, device and notices outlive the navigation.
    Navigation(Data_entry& root, const Device_link& device, Notices& notices);

    // Goes to the top, from now on with a homescreen and favourites.
    void show_home(const Home& home);
    void set_wrap(bool wrap) { m_list.set_wrap(wrap); }

    // Moves, leaves and jumps; other keys do nothing.
    void press(const Key& key);
    // Opens the menu at the cursor, or returns the entry there for editing: a link, or the entry itself. Null when
    // there is nothing to edit.
    Data_entry* select();
    // After an entry was edited that `select` delivered: goes to where it leads. The key that ended editing is
    // SELECT or BACK; any other, when it ended by itself.
    void leave_edited(Data_entry& entry, Key::Kind key);
    // Goes back to the top, leaving every menu.
    void go_home();

    // Reads the lines on the display again, and finds the entries that are listed. Leaves a menu that has become
    // hidden.
    void refresh();
    // As `refresh`, but checks only the lines on the display and some of the other entries of a long menu.
    void tick();
    // Whether an entry of the shown menu is still shown, and every menu on the way to it.
    bool is_shown(Data_entry& entry);
    // Asks all entries of the list once more, some with each `tick`; and whether some were not asked since.
    void begin_round() { m_list.begin_round(); }
    bool is_in_round() const { return m_list.is_in_round(); }
    // A tick that may change nothing that is drawn. Whether other entries are listed now than before.
    bool tick_unseen();
    // The entry under the cursor; null for none.
    Data_entry* selected() const;

    // See `List_view`.
    bool bring_into_view(Lcd_size size) { return m_list.bring_into_view(size); }
    void draw(Lcd& lcd) { m_list.draw(lcd); }
    // Call it when something else is on the display.
    void cover() { m_list.cover(); }
    Panel_mode mode() const;
    // Which shortcuts and favourites the menu has.
    Key_uses key_uses() const;
    bool alarm() const { return m_list.alarm(); }

private:
    bool is_home() const;
    bool is_top(const Data_entry* menu) const;
    void turn(int steps);
    void back();
    void open_favourites();
    void jump(int button);
    void leave();
    void open(Data_entry& menu);
    void show(Data_entry* cursor);
    bool go_to(Data_entry& entry, bool inside);
    bool lead_on(Link_entry& link, int escape_code);
    void leave_hidden();

    Data_entry& m_root;
    Device_link m_device;
    Notices& m_notices;
    Home m_home;
    Menu_path m_path;
    List_view m_list;
    Data_entry* m_left_for_favourites = nullptr;  // under the cursor; compared only: it may be gone
};

}  // namespace frontpanel

#endif
