// The panel's editors, one of a kind, and the dispatcher steps that open and close them.
#ifndef FRONTPANEL_UI_EDITOR_SET_H
#define FRONTPANEL_UI_EDITOR_SET_H

#include <frontpanel_data/data_entry.h>
#include <frontpanel_editors/address_editor.h>
#include <frontpanel_editors/enum_editor.h>
#include <frontpanel_editors/number_editor.h>
#include <frontpanel_editors/text_editor.h>
#include <frontpanel_editors/time_editor.h>
#include <frontpanel_editors/warning_editor.h>

namespace frontpanel {

class Editor_set {
public:
    // Opens the editor of the entry's type, set up for the entry. Null when the type has none, or when the editor does not open.
    Value_editor* open(Data_entry& entry, const Editor_settings& settings);
    // Closes the open editor. Returns the entry that the panel goes to.
    Data_entry* close(Data_entry& entry);

private:
    struct Editor {
        Selection* selection = nullptr;
        Value_editor* value = nullptr;
    };
    Editor editor_of(const Data_entry& entry);

    Number_editor m_number;
    Enum_editor m_option;
    Text_editor m_text;
    Address_editor m_address;
    Time_editor m_time;
    Warning_editor m_warning;
};

}  // namespace frontpanel

#endif
