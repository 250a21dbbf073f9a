// Changes one value at a time: opens the editor of an entry, hands it the keys, writes what it accepts.
//
// Knows nothing of lists and menus: whoever owns it says what to edit, and is told when the editor closes.
#ifndef FRONTPANEL_PANEL_EDITING_H
#define FRONTPANEL_PANEL_EDITING_H

#include <functional>
#include <string>
#include <vector>

#include "device_link.h"
#include "editor_set.h"
#include "key.h"
#include "lcd.h"
#include "notices.h"

namespace panel {

class Editing {
public:
    // Called when an editor has closed, with the entry that the panel goes to: the edited one, or its parent.
    using Closed = std::function<void(Data_entry*)>;

    // Device and notices outlive the editing.
    Editing(const Device_link& device, Notices& notices, Closed closed);

    // Opens the entry's editor, or tells why it cannot be edited.
    void open(Data_entry& entry);
    bool is_open() const { return m_editor != nullptr; }
    // Hands a key to the open editor. A shortcut does nothing: a jump would drop the edited value unasked.
    void press(const Key& key);
    // Draws the open editor.
    void draw(Frame& frame);

    // A text of a binding engine about the value that is being tried.
    void warn(const std::string& text) { m_warnings.push_back(text); }

private:
    void tell_refusal();
    void commit_edited();
    void close();
    std::string title_of(Data_entry& entry) const;

    Device_link m_device;
    Notices& m_notices;
    Closed m_closed;
    Editor_set m_editors;
    Value_editor* m_editor = nullptr;  // open, or null
    std::string m_title;               // of the open editor
    std::vector<std::string> m_warnings;
};

}  // namespace panel

#endif
