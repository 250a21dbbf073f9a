// How the value of one entry is edited, beyond what the entry itself says.
#ifndef FRONTPANEL_EDITORS_EDITOR_SETTINGS_H
#define FRONTPANEL_EDITORS_EDITOR_SETTINGS_H

#include <optional>
#include <string>
#include <unordered_map>

class Data_entry;

namespace frontpanel {

struct Editor_settings {
    // Every step is stored in the entry at once, to be written to the device; ESCAPE stores the old value again.
    // Otherwise nothing is stored before SELECT.
    bool preview = false;
    // What one detent changes a number by, at least 1. COARSER makes it 10, 100 ... times larger.
    int step = 1;
    // Maximum steps per detent of a quick turn, at least 1.
    int acceleration = 1;
    // The characters of a text, in the order of the encoder; empty for the printable characters.
    std::string characters;
    // Whether a step beyond the last value leads to the first, and back. An editor takes empty for no; the
    // controller sets it from its encoder.
    std::optional<bool> wrap;
};

// The entries with settings of their own; all others have the defaults. Entries are not owned.
using Editor_settings_table = std::unordered_map<const Data_entry*, Editor_settings>;

}  // namespace frontpanel

#endif
