// The display line of one slot of the card frame. No function here allocates or reads beyond its arguments.
#ifndef FRONTPANEL_DATA_SRC_ENTRY_SLOT_ENUM_LINE_H
#define FRONTPANEL_DATA_SRC_ENTRY_SLOT_ENUM_LINE_H

#include <cstddef>

#include <frontpanel_data/data_interface.h>

namespace slot_enum_line {

// A line while it is built, with room for the characters that an alias may put behind its end.
constexpr std::size_t LINE_SIZE = 31;
// Characters of a finished line.
constexpr std::size_t LINE_LENGTH = 29;
// The buffer of an alias, its terminator included.
constexpr std::size_t ALIAS_SIZE = 100;

using Line = char[LINE_SIZE];

// Whether a record of the product list names a product of a family.
bool is_fitted(const PROD_LIST_S& record);

// Writes "3", with blanks up to the line's end.
void write_empty(Line& line, int slot);
// Writes "3:NAME", with blanks up to the line's end; returns the length of the text before them. The name
// may lack its terminator.
std::size_t write_product(Line& line, int slot, const PROD_LIST_S& record);
// Writes an alias over the end of a line whose text has `used` characters.
void write_alias(Line& line, std::size_t used, const char* alias);
// Ends the line after its 29 characters.
void finish(Line& line);

}  // namespace slot_enum_line

#endif
