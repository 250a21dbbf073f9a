#include <frontpanel_data/string_entry.h>

#include "../assertion.h"

Time_entry::Time_entry(const char* name, const char* description, unsigned int pid,
                       const Index_t* index, unsigned int max_length, Data_entry* parent,
                       Data_access access, int visible, bool active, int shortcut, Data_entry* next,
                       Data_entry* previous, Data_entry* child)
    : String_entry(name, description, pid, index, max_length, parent, access, visible, active,
                   shortcut, next, previous, child) {}

Time_entry::~Time_entry() = default;

Data_entry::Entry_type Time_entry::Get_entry_type() const {
    return TIME_LEAF;
}

int Time_entry::Get_display_string(char* buffer, unsigned int length) {
    FRONTPANEL_ASSERT(buffer && length, "buffer&&length");
    return Get_value(buffer, length);
}
