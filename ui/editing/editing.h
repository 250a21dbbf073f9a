// Changes one value at a time: opens the editor of an entry, hands it the keys, writes what it accepts.
//
// Independent of lists and menus: its owner opens an entry, and is called when the editor closes. The editor stays on
// its entry while the entry changes: a value that is no longer allowed is no longer proposed.
#ifndef FRONTPANEL_UI_EDITING_H
#define FRONTPANEL_UI_EDITING_H

#include <chrono>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <frontpanel_display/key.h>
#include <frontpanel_display/lcd.h>
#include <frontpanel_menu/encoder_settings.h>
#include <frontpanel_menu/entry_kind.h>
#include <frontpanel_menu/mounted_menu.h>
#include <frontpanel_menu/write_gate.h>
#include "device_link.h"
#include "editing/editor_set.h"
#include "keys/encoder_speed.h"
#include "views/notices.h"
#include "views/text_line.h"

namespace frontpanel {

class Editing {
public:
    // Called when an editor has closed, with the entry that the panel goes to: the edited one, or its parent.
    using Closed = std::function<void(Data_entry*)>;
    using Clock = std::function<std::chrono::milliseconds()>;

    // Device and notices outlive the editing.
    Editing(const Device_link& device, Notices& notices, Closed closed);

    // For the editors that open from now on. The table outlives the editing; null for none.
    void configure(const Encoder_settings& encoder, const Editor_settings_table* entries);
    // The clock for the speed of the encoder. Without a clock every turn counts as slow.
    void set_clock(Clock clock) { m_clock = std::move(clock); }
    // `arm` makes the engines raise earlier warnings again; it is called when another edit begins, or when the person
    // declines a value.
    void set_warning_armer(std::function<void()> arm) { m_arm = std::move(arm); }

    // Called with what the rules did after a preset was loaded.
    void set_settlement_listener(std::function<void(const Binding_settlement&)> listener) {
        m_settled = std::move(listener);
    }

    // Opens the entry's editor, or shows why there is nothing to edit. An entry that cannot be changed is only viewed.
    // `name` is its name in the menu where it was opened.
    void open(Data_entry& entry, const std::string& name);
    void open(Data_entry& entry) { open(entry, entry.Get_name()); }
    bool is_open() const { return m_editor != nullptr; }
    // Whether an editor is open that changes its value.
    bool is_changing() const { return is_open() && m_editor->can_change(); }
    // Whether a key that erases takes something away that was typed.
    bool can_erase() const { return is_open() && m_editor->can_erase(); }
    // What can be typed at a keyboard now.
    std::string characters() const { return is_open() ? m_editor->characters() : ""; }
    // Types one of these.
    void type(char character);
    // What the open editor's keys do.
    Panel_mode mode() const;
    // The entry of the open editor.
    Data_entry& entry() const { return *m_editor->entry(); }
    // Hands a key to the open editor. A shortcut does nothing: a jump would drop the edited value unasked.
    void press(const Key& key);
    // Reads the entry from the device again and sees what of the edited value is still allowed.
    void follow();
    // Whether closing now would lose what was edited.
    bool has_changes() const { return is_open() && m_editor->has_changes(); }
    // Both close the editor with the old value, also during a question; `end` shows the reason.
    void drop();
    void end(const std::string& reason);
    // Draws the open editor.
    void draw(Frame& frame);

    // A text of a binding engine about the value that is being tried.
    void warn(const std::string& text) { m_warnings.push_back(text); }

private:
    using Attempt = std::function<Editor_result()>;

    Editor_settings settings_of(const Data_entry& entry) const;
    int steps_of(Key::Kind key);
    void attempt(const Attempt& store);
    void answer(bool accepted);
    void cancel();
    void restore();
    void perform(Editor_result result);
    bool write();
    void write_and_close();
    void put_back_and_close();
    void load(Preset& preset, const std::vector<std::string>& accepted);
    void tell_loaded(Preset& preset, const Write_gate::Outcome& outcome);
    void close();
    bool follow_access();
    void tell(const std::string& text, bool alarm = false) { m_notices.tell(m_name, text, alarm); }
    std::string reach_of(Data_entry& entry) const;
    std::string note_of(const Editor_view& shown);

    Device_link m_device;
    Notices& m_notices;
    Closed m_closed;
    Clock m_clock;
    std::function<void()> m_arm;
    std::function<void(const Binding_settlement&)> m_settled;
    Encoder_settings m_encoder;
    const Editor_settings_table* m_settings_of = nullptr;
    Editor_set m_editors;
    Value_editor* m_editor = nullptr;  // open, or null
    Editor_settings m_settings;        // of the open editor, as is what follows
    std::string m_name;
    std::string m_title;
    Text_line m_title_line;
    std::string m_reach;  // whether an address answers, in a word; empty: not asked
    size_t m_level = 0;   // of a tree's option, and its place in the list
    std::string m_level_step;
    bool m_was_changing = false;  // when the entry was looked at last
    Encoder_speed m_speed;
    std::vector<std::string> m_warnings;  // raised since the last attempt began
};

}  // namespace frontpanel

#endif
