// The display text of an entry's value, which lists, editors, notices and reports show.
//
// The text is complete and does not scroll. The caller fits it into a line.
#ifndef FRONTPANEL_MENU_SHOWN_VALUE_H
#define FRONTPANEL_MENU_SHOWN_VALUE_H

#include <frontpanel_data/data_entry.h>

#include <optional>
#include <string>

namespace frontpanel {

// The value that the entry, or a link's housed entry, held at its last refresh. A number is shown by its format or by
// the text of its table. An option is shown by its own text, whichever options are hidden; "-" when the entry lacks the
// stored key. An empty text for an entry without a value; no text for a number while its rules allow none.
std::optional<std::string> shown_value(Data_entry& entry);

// Whether a person cannot change the value now: because of the menu file, a rule, or the card of a live list. For a
// link, its housed entry counts.
bool is_read_only(const Data_entry& entry);

}  // namespace frontpanel

#endif
