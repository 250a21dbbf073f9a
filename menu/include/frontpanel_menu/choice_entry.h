// Enumerations and slot lists that deliver the device's key even if it has no option.
#ifndef FRONTPANEL_MENU_CHOICE_ENTRY_H
#define FRONTPANEL_MENU_CHOICE_ENTRY_H

#include <frontpanel_data/data_entry.h>
#include <frontpanel_editors/value_text.h>

#include <string>

namespace frontpanel {

class Choice_entry : public Enum_entry, public Stored_key {
public:
    using Enum_entry::Enum_entry;

    int stored_key() override;
    // The option of a key, visible or not; empty for a key without an option.
    std::string text_of(int key) const;
};

class Slot_choice_entry : public Slot_enum_entry, public Stored_key {
public:
    using Slot_enum_entry::Slot_enum_entry;

    int stored_key() override;
};

}  // namespace frontpanel

#endif
