#include <frontpanel_data/entry.h>

Node_entry::Node_entry(const char* name, const char* description, const Index_t* index,
                       Data_entry* parent, int visible, int shortcut, Data_entry* next,
                       Data_entry* previous, Data_entry* child)
    : Data_entry(name, description, PID_NONE, index, visible, shortcut, next, previous, parent,
                 child) {}

Node_entry::~Node_entry() = default;

std::string Node_entry::getProperties(int flags) {
    return Data_entry::getProperties(flags);
}

Data_entry::Entry_type Node_entry::Get_entry_type() const {
    return NODE;
}

RETURN_TYPE Node_entry::Get_return_type_int_or_string() const {
    return INVALID_TYPE;
}

int Node_entry::Get_display_string(char* buffer, unsigned int length) {
    return Data_entry::Get_display_string(buffer, length);
}

int Node_entry::Get_value(void* /*buffer*/, unsigned int /*length*/) {
    return INVALID;
}

int Node_entry::Set_value(const void* /*buffer*/, unsigned int /*length*/) {
    return INVALID;
}

int Node_entry::Inc_value(int /*value*/, int /*position*/) {
    return INVALID;
}
