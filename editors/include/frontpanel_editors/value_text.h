// The display text of a value, as a whole.
//
// The entries' own display operations are made for a line of a given width: they cut a number to it and scroll, and an
// enumeration shows "-" for an option behind a hidden one. These functions ask them in a way that avoids both.
#ifndef FRONTPANEL_EDITORS_VALUE_TEXT_H
#define FRONTPANEL_EDITORS_VALUE_TEXT_H

#include <frontpanel_data/data_entry.h>

#include <optional>
#include <string>

namespace frontpanel {

inline constexpr const char* NO_OPTION_TEXT = "-";  // of a key without an option

// An entry of options that delivers the device's key also when it has no such option: `Enum_entry` then delivers its
// smallest key instead.
class Stored_key {
public:
    virtual int stored_key() = 0;
    // Whether the key is none of those that the entry has.
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
// Whether the device holds a key without an option. False for an entry that does not tell.
bool holds_no_option(Enum_entry& entry);

}  // namespace frontpanel

#endif
