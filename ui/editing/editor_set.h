// The panel's editors, one of a kind, and the dispatcher steps that open and close them.
#ifndef FRONTPANEL_UI_EDITOR_SET_H
#define FRONTPANEL_UI_EDITOR_SET_H

#include <frontpanel_data/data_entry.h>
#include <frontpanel_menu/entry_kind.h>

#include <map>
#include <memory>

namespace frontpanel {

class Editor_set {
public:
    // Opens the editor of the entry's kind, set up for the entry. Null when the kind has none, or when the editor does not open.
    Value_editor* open(Data_entry& entry, const Editor_settings& settings);
    // Closes the open editor. Returns the entry that the panel goes to.
    Data_entry* close(Data_entry& entry);

private:
    // Null for a kind without editor.
    Value_editor* editor_of(const Data_entry& entry);

    std::map<const Entry_kind*, std::unique_ptr<Value_editor>> m_editors;  // made when first used
};

}  // namespace frontpanel

#endif
