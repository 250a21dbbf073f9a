// How the editors of texts take and store the texts of string entries.
#ifndef FRONTPANEL_EDITORS_ENTRY_TEXT_H
#define FRONTPANEL_EDITORS_ENTRY_TEXT_H

#include <string>

#include <frontpanel_data/string_entry.h>
#include <frontpanel_editors/value_text.h>

namespace frontpanel {

// Returns false when the entry refuses the text.
bool store_text(String_entry& entry, const std::string& text);

}  // namespace frontpanel

#endif
