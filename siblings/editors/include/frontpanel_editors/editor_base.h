// The part that the concrete editors share, on top of the library's abstract editor of each kind.
#ifndef FRONTPANEL_EDITORS_EDITOR_BASE_H
#define FRONTPANEL_EDITORS_EDITOR_BASE_H

#include <frontpanel_data/data_entry.h>
#include <frontpanel_data/selection.h>
#include <frontpanel_editors/value_editor.h>

// `Kind` is one of the library's abstract editors, `Entry` the class of entry that it edits. A concrete
// editor supplies `start` and what a key does; an entry of another class leaves the editor closed. An entry
// that is read-only opens for viewing: no key changes it, and SELECT leaves as ESCAPE does.
template <typename Kind, typename Entry>
class Editor_base : public Kind, public Value_editor {
public:
    void Prepare(Data_entry* entry) override {
        m_entry = dynamic_cast<Entry*>(entry);
        if (m_entry != nullptr) {
            start();
        }
    }
    void ExitLEDs() override { m_entry = nullptr; }
    // Leaving the editor returns to the edited entry, not to its parent.
    bool Escape() override { return false; }
    void Set_escape_entry(Data_entry* entry) override { m_escape_entry = entry; }
    void Set_select_entry(Data_entry* entry) override { m_select_entry = entry; }

    Data_entry* entry() const override { return m_entry; }
    // Where the panel goes after escape and after select; null for the edited entry's own place.
    Data_entry* escape_entry() const { return m_escape_entry; }
    Data_entry* select_entry() const { return m_select_entry; }

    Editor_result press(Editor_key key) final {
        if (m_entry == nullptr || key == Editor_key::ESCAPE) {
            return Editor_result::DISCARDED;
        }
        if (!is_editable()) {
            return view_ends_with(key) ? Editor_result::DISCARDED : Editor_result::OPEN;
        }
        if (key == Editor_key::SELECT) {
            return accept() ? Editor_result::ACCEPTED : Editor_result::REFUSED;
        }
        step(key);
        return Editor_result::OPEN;
    }
    Editor_view view(int columns) final {
        Editor_view shown;
        if (m_entry != nullptr) {
            draw(columns, shown);
            shown.edit_led = is_editable();
        }
        if (!shown.edit_led) {
            shown.cursor = Editor_view::NO_CURSOR;
            shown.step.clear();
        }
        return shown;
    }

protected:
    // Takes the value of the entry that was just opened.
    virtual void start() = 0;
    // Answers one of the keys that neither accept nor leave.
    virtual void step(Editor_key key) = 0;
    // Stores the proposed value in the entry; false when the entry refuses it.
    virtual bool accept() = 0;
    virtual void draw(int columns, Editor_view& shown) = 0;
    // Whether keys change the value, or the open entry is only viewed.
    virtual bool is_editable() const { return m_entry->Get_access_type() != Data_entry::READ_ONLY; }
    // Which keys beside ESCAPE leave an entry that is only viewed.
    virtual bool view_ends_with(Editor_key key) const { return key == Editor_key::SELECT; }

    Entry& edited() const { return *m_entry; }

private:
    Entry* m_entry = nullptr;
    Data_entry* m_escape_entry = nullptr;
    Data_entry* m_select_entry = nullptr;
};

#endif
