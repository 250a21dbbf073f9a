// How the value of one entry is edited, beyond what the entry itself says.
#ifndef FRONTPANEL_EDITORS_EDITOR_SETTINGS_H
#define FRONTPANEL_EDITORS_EDITOR_SETTINGS_H

#include <optional>
#include <string>
#include <unordered_map>

class Data_entry;

namespace frontpanel {

struct Editor_settings {
    // Every step is stored and written to the device at once; ESCAPE writes the old value back. Otherwise
    // nothing is written before SELECT.
    bool preview = false;
    // What one detent changes a number by, at least 1. COARSER makes it 10, 100 ... times larger.
    int step = 1;
    // A number that is turned quickly moves by up to so many steps a detent; 1 for never more than one.
    int acceleration = 1;
    // What a text may be typed from, in the order of the encoder; empty for the printable characters.
    std::string characters;
    // Whether a step beyond the last value leads to the first, and back; as the encoder is set up unless told.
    std::optional<bool> wrap;
};

// The entries that are edited in their own way. An entry that is not in it has the settings above.
using Editor_settings_table = std::unordered_map<const Data_entry*, Editor_settings>;

}  // namespace frontpanel

#endif
