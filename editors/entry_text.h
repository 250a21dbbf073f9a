// The texts of string entries, as the editors of texts take and store them.
#ifndef FRONTPANEL_EDITORS_ENTRY_TEXT_H
#define FRONTPANEL_EDITORS_ENTRY_TEXT_H

#include <string>

#include <frontpanel_data/string_entry.h>

namespace frontpanel {

std::string text_of(String_entry& entry);
// Returns false when the entry refuses the text.
bool store_text(String_entry& entry, const std::string& text);

}  // namespace frontpanel

#endif
