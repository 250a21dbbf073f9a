#include <frontpanel_data/binding.h>
#include <frontpanel_data/string_entry.h>

#include "../assertion.h"
#include "../diagnostics.h"
#include "../marquee.h"
#include "dependants.h"

String_entry::String_entry(const char* name, const char* description, unsigned int pid,
                           const Index_t* index, unsigned int max_length, Data_entry* parent,
                           Data_access access, int visible, bool active, int shortcut,
                           Data_entry* next, Data_entry* previous, Data_entry* child)
    : Data_entry(name, description, pid, index, visible, shortcut, next, previous, parent, child),
      m_model(pid, index, max_length),
      m_active(active),
      m_scroll_offset(0),
      m_scroll_delay(marquee::HOLD_CALLS) {
    Data_entry::Set_access_type(access);
}

String_entry::~String_entry() = default;

std::string String_entry::getProperties(int flags) {
    return Data_entry::getProperties(flags);
}

Data_entry::Entry_type String_entry::Get_entry_type() const {
    return STRING_LEAF;
}

RETURN_TYPE String_entry::Get_return_type_int_or_string() const {
    return STRING;
}

bool String_entry::Is_active() const {
    return m_active && m_model.Is_active();
}

int String_entry::Get_display_string(char* buffer, unsigned int length) {
    LEAF_LINE(GENERAL, NONE, "Get_display_string",
              "String_entry::Get_display_string()::: m_model.Get_current_length()=[%d] "
              "max_allowed_length=[%d]\n",
              static_cast<int>(m_model.Get_current_length()), static_cast<int>(length));
    FRONTPANEL_ASSERT(buffer, "buffer");
    if (length < 2) {
        return ERROR;
    }
    if (length >= m_model.Get_current_length()) {
        return Get_value(buffer, length);
    }
    return show_marquee(buffer, length);
}

int String_entry::show_marquee(char* buffer, unsigned int length) {
    const marquee::Step step =
        marquee::advance(m_scroll_offset, m_scroll_delay, m_model.Get_current_length());
    const int result =
        step.hold ? Get_value(buffer, length) : Get_value(buffer, length, step.offset);
    buffer[length] = '\0';
    return result;
}

int String_entry::Get_value(void* buffer, unsigned int length) {
    return m_model.Get(buffer, length) == Data_model::OK ? OK : ERROR;
}

int String_entry::Get_value(void* buffer, unsigned int length, unsigned int offset) {
    return m_model.Get(buffer, length, offset) == Data_model::OK ? OK : ERROR;
}

int String_entry::Set_value(const void* buffer, unsigned int length) {
    LEAF_LINE(GENERAL, NONE, "Set_value", "String_entry::Set_value = %.*s\n",
              static_cast<int>(length), static_cast<const char*>(buffer));
    if (Data_entry::Set_value(buffer, length) != 0) {
        return ERROR;
    }
    return m_model.Set(buffer, length) == Data_model::OK ? OK : ERROR;
}

int String_entry::Refresh(Data_interface* pDataAccessInf, bool eval_binding) {
    const int result = m_model.Refresh(pDataAccessInf);
    return result != Data_model::OK ? result : Data_entry::Refresh(pDataAccessInf, eval_binding);
}

int String_entry::Inc_value(int value, int position) {
    return m_model.Inc_value(value, position);
}

int String_entry::Commit(Data_interface* pDataAccessInf) {
    LEAF_LINE(COMMIT, FUNCTION_FIRST, "Commit", "Calling m_model commit...\n");
    const int result = m_model.Commit(pDataAccessInf);
    dependants::refresh(
        *this, binding, pDataAccessInf,
        {"Commit", __FILE_NAME__,
         diagnostics::place<diagnostics::Prefix::FUNCTION_FIRST, diagnostics::BINDING>(__LINE__),
         false, true, false});
    return result;
}
