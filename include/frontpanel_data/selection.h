// The value editors as the library sees them: it opens, leaves and closes them through the dispatcher
// (`Data_entry::EntryTypeSpecificOperation`), whose `void*` argument is a `Selection*`. The user interface
// derives a concrete editor from each class. All calls come from the menu thread.
#ifndef FRONTPANEL_DATA_SELECTION_H
#define FRONTPANEL_DATA_SELECTION_H

#include <cstdint>

#include <frontpanel_data/export.h>

class Data_entry;

class FRONTPANEL_DATA_EXPORT Selection {
public:
    Selection();
    virtual ~Selection();

    // Opens the editor on an entry, which stays the application's and outlives the editing.
    virtual void Prepare(Data_entry* entry) = 0;
    // Closes the editor: its LEDs go out and its entry is forgotten.
    virtual void ExitLEDs() = 0;
    // Whether leaving the editor also leaves the entry towards its parent.
    virtual bool Escape() = 0;
    // Where the panel goes when the editor is left by escape, and when it is left by select; null for none.
    virtual void Set_escape_entry(Data_entry* entry) = 0;
    virtual void Set_select_entry(Data_entry* entry) = 0;

    Selection(const Selection&) = delete;
    Selection& operator=(const Selection&) = delete;
};

// Edits a number of a range entry.
class FRONTPANEL_DATA_EXPORT NumericRangeSelection : public Selection {
public:
    NumericRangeSelection();
    ~NumericRangeSelection() override;

    // Make one encoder step ten times larger, or ten times smaller.
    virtual void Coarser_step() = 0;
    virtual void Finer_step() = 0;
};

// Chooses one option of an enumerated or slot entry.
class FRONTPANEL_DATA_EXPORT EnumSelection : public Selection {
public:
    EnumSelection();
    ~EnumSelection() override;

    // Whether the two numbers below are to be used when slot lines are built. Arrives before them.
    virtual void Set_use_line_info(bool use_line_info) = 0;
    // The option at the cursor, from 0.
    virtual void Set_selected(int32_t selected) = 0;
    // The display line that shows it, from 0.
    virtual void Set_selected_line(int32_t selected_line) = 0;
};

// Edits a text, character by character.
class FRONTPANEL_DATA_EXPORT StringSelection : public Selection {
public:
    StringSelection();
    ~StringSelection() override;
};

// Shows a warning text until it is acknowledged.
class FRONTPANEL_DATA_EXPORT WarnSelection : public Selection {
public:
    WarnSelection();
    ~WarnSelection() override;
};

// Edits a dotted IPv4 address.
class FRONTPANEL_DATA_EXPORT IPv4Selection : public Selection {
public:
    IPv4Selection();
    ~IPv4Selection() override;
};

// Edits a time.
class FRONTPANEL_DATA_EXPORT TimeSelection : public Selection {
public:
    TimeSelection();
    ~TimeSelection() override;
};

#endif
