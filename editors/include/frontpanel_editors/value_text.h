// The display text of a value, as a whole.
//
// The entries' own display operations are made for a line of a given width: they cut a number to it and scroll, and an
// enumeration shows "-" for an option behind a hidden one. These functions call them in a way that avoids both.
#ifndef FRONTPANEL_EDITORS_VALUE_TEXT_H
#define FRONTPANEL_EDITORS_VALUE_TEXT_H

#include <frontpanel_data/data_entry.h>

#include <optional>
#include <string>

namespace frontpanel {

inline constexpr const char* NO_OPTION_TEXT = "-";  // of a key without an option

// An enumeration that delivers the device's key even if it has no option with it: `Enum_entry` would deliver its
// smallest key.
class Stored_key {
public:
    virtual int stored_key() = 0;
    // Whether the entry has no such key.
    bool is_foreign(const Enum_entry& entry);

protected:
    ~Stored_key() = default;
};

// The value in the entry's format, allowed or not.
std::string value_text(Range_entry& entry, int value);
// The text, address or time.
std::string value_text(String_entry& entry);
// The option at a visible position; "-" for a position without one.
std::string option_text(Enum_entry& entry, int position);
// The option that the device holds, visible or not; "-" for a key without an option.
std::string option_text(Enum_entry& entry);
// Whether the device holds a key without an option. False for an entry without `Stored_key`.
bool holds_no_option(Enum_entry& entry);

}  // namespace frontpanel

#endif
