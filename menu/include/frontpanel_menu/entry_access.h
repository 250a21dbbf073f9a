// Operations on an entry of any type: neighbours and refresh by the library's dispatcher, commit by the entry's kind,
// since each leaf class has its own.
#ifndef FRONTPANEL_MENU_ENTRY_ACCESS_H
#define FRONTPANEL_MENU_ENTRY_ACCESS_H

#include <frontpanel_data/data_entry.h>

#include <cstdint>

namespace frontpanel {

// The parameter of warning texts, and those of options that come from a card.
constexpr unsigned int WARNING_PID = 65549;
constexpr int FIRST_LIVE_PID = 9000;
constexpr int LAST_LIVE_PID = 9100;
// A link owns its housed entry if, and only if, that has this name.
constexpr const char* BRIDGE_NAME = "Bridge Entry";
constexpr const char* NO_OPTION_YET = "-";  // the only option of a live list before its first fetch

// Whether the entry is a link, of any of the three kinds.
bool is_link(const Data_entry& entry);
// Whether the entry is a submenu with items of its own.
bool is_submenu(const Data_entry& entry);
// The entry as a link; null for any other and for a link that houses nothing.
Link_entry* link_of(Data_entry& entry);
// What a link houses; any other entry itself.
Data_entry& housed(Data_entry& entry);
const Data_entry& housed(const Data_entry& entry);
// Whether the entry is a link whose menu is built when it is entered.
bool is_mount(Data_entry& entry);

// The neighbour that one of the dispatcher's link steps delivers; null for none.
Data_entry* neighbour(Data_entry& entry, Data_entry::Operation_flag step);

// The menu around an entry; null at the top. Unlike the dispatcher's plain step, this does not leave a mounted menu.
Data_entry* menu_of(Data_entry& entry);

// Refreshes the entry with its binding. 0, or what the entry's refresh returns.
int refresh(Data_entry& entry, Data_interface& device);

// Whether selecting the entry, or the link, opens a menu.
bool is_menu(const Data_entry& entry);
// Whether the entry's options come from a card, instead of its value from the device.
bool is_live_pid(uint32_t pid);
bool is_live(const Data_entry& entry);

// Writes the entry's value to the device and refreshes what depends on it. 0 on success.
int commit(Data_entry& entry, Data_interface& device);

}  // namespace frontpanel

#endif
