// The value of an entry as a person reads it: the one text that lists, editors, notices and reports show.
//
// The text is whole and does not scroll. Bringing it onto a line is a matter of who shows it.
#ifndef FRONTPANEL_MENU_SHOWN_VALUE_H
#define FRONTPANEL_MENU_SHOWN_VALUE_H

#include <frontpanel_data/data_entry.h>

#include <optional>
#include <string>

namespace frontpanel {

// The value that the entry, or what a link houses, held when it was last refreshed. A number has its format or the text
// of its table, an option its own text whatever else is hidden, "-" when the stored key is none of the entry's. Empty
// for an entry without a value; nothing for a number that its rules do not allow.
std::optional<std::string> shown_value(Data_entry& entry);

// Whether a person can never change the value now: by the menu file, by a rule, or since the card of a live list does
// not allow it. Of a link, what it houses counts.
bool is_read_only(const Data_entry& entry);

}  // namespace frontpanel

#endif
