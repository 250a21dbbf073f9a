// The part that the concrete editors share, on top of the library's abstract editor of each kind. An editor of your
// own derives from it as well, with `Field_line` and `Scrolling_text` for its line.
#ifndef FRONTPANEL_EDITORS_EDITOR_BASE_H
#define FRONTPANEL_EDITORS_EDITOR_BASE_H

#include <frontpanel_data/data_entry.h>
#include <frontpanel_data/selection.h>
#include <frontpanel_editors/value_editor.h>

#include <string>

namespace frontpanel {

// `Kind` is one of the library's abstract editors, `Entry` the class of entry that it edits. A concrete
// editor supplies `start` and what a key does; an entry of another class leaves the editor closed. An entry
// that is read-only opens for viewing: no key changes it, and SELECT leaves as ESCAPE does.
template <typename Kind, typename Entry>
class Editor_base : public Kind, public Value_editor {
public:
    void Prepare(Data_entry* entry) override {
        m_entry = dynamic_cast<Entry*>(entry);
        m_changed = false;
        if (m_entry != nullptr) {
            start();
            remember();
        }
    }
    void ExitLEDs() override { m_entry = nullptr; }
    // Leaving the editor returns to the edited entry, not to its parent.
    bool Escape() override { return false; }
    void Set_escape_entry(Data_entry* entry) override { m_escape_entry = entry; }
    void Set_select_entry(Data_entry* entry) override { m_select_entry = entry; }

    Data_entry* entry() const override { return m_entry; }
    bool can_change() const final { return m_entry != nullptr && is_editable(); }
    // Where to go after escape and after select; null for the edited entry's own place. Not owned.
    Data_entry* escape_entry() const { return m_escape_entry; }
    Data_entry* select_entry() const { return m_select_entry; }

    void configure(const Editor_settings& settings) final { m_settings = settings; }

    Editor_result press(Editor_key key, int steps = 1) final {
        if (m_entry == nullptr || key == Editor_key::ESCAPE) {
            return leave();
        }
        if (!is_editable()) {
            return view_ends_with(key) ? Editor_result::DISCARDED : refusal_of(key);
        }
        if (key == Editor_key::SELECT) {
            return m_settings.preview && is_stored() ? Editor_result::DISCARDED
                                                     : store(Editor_result::ACCEPTED);
        }
        step(key, steps);
        return m_settings.preview && !is_typing() && !is_stored() ? store(Editor_result::STORED)
                                                                  : Editor_result::OPEN;
    }
    std::string characters() const final { return can_change() ? typed_characters() : ""; }
    Editor_result type(char character) final {
        if (!can_change() || typed_characters().find(character) == std::string::npos) {
            return Editor_result::OPEN;
        }
        put(character);
        return m_settings.preview && !is_typing() && !is_stored() ? store(Editor_result::STORED)
                                                                  : Editor_result::OPEN;
    }
    bool can_erase() const final { return can_change() && has_typed(); }
    Editor_result retry() final {
        return m_entry == nullptr ? Editor_result::DISCARDED : store(m_wanted);
    }
    bool restore() final { return m_entry != nullptr && put_back(); }
    void propose_held() final {
        if (m_entry != nullptr) {
            start();
        }
    }
    bool has_changes() final { return can_change() && (m_changed || !is_stored()); }
    Editor_change follow() final {
        if (is_editable()) {
            return adapt();
        }
        show_value();
        return Editor_change::NONE;
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
    // Keeps the value of the entry that was just opened, after `start`; stores it again.
    virtual void remember() = 0;
    virtual bool put_back() = 0;
    // Answers one of the keys that neither accept nor leave.
    virtual void step(Editor_key key, int steps) = 0;
    // The characters that `put` takes.
    virtual std::string typed_characters() const { return {}; }
    virtual void put(char /*character*/) {}
    // Whether typing is under way that has no value before it ends: it is not previewed.
    virtual bool is_typing() const { return false; }
    // Whether ERASE takes a typed character away.
    virtual bool has_typed() const { return is_typing(); }
    // Whether the entry holds the proposed value.
    virtual bool is_stored() = 0;
    // Stores the proposed value in the entry; false when the entry refuses it.
    virtual bool accept() = 0;
    // Proposes the nearest allowed value in place of one that is not allowed. Whether it did.
    virtual bool move_to_allowed() { return false; }
    virtual void draw(int columns, Editor_view& shown) = 0;
    // Adapts the proposed value to the values that the entry allows now.
    virtual Editor_change adapt() { return Editor_change::NONE; }
    // Shows the entry's value once more while it is only viewed.
    virtual void show_value() { start(); }
    // Whether keys change the value, or the open entry is only viewed.
    virtual bool is_editable() const { return m_entry->Get_access_type() != Data_entry::READ_ONLY; }
    // Which keys beside ESCAPE leave an entry that is only viewed.
    virtual bool view_ends_with(Editor_key key) const { return key == Editor_key::SELECT; }

    Entry& edited() const { return *m_entry; }
    const Editor_settings& settings() const { return m_settings; }
    bool wraps() const { return m_settings.wrap.value_or(false); }

private:
    // A view has no cursor to move, and moving one is no attempt to change the value.
    static Editor_result refusal_of(Editor_key key) {
        const bool moves = key == Editor_key::COARSER || key == Editor_key::FINER;
        return moves ? Editor_result::OPEN : Editor_result::LOCKED;
    }
    Editor_result store(Editor_result wanted) {
        m_wanted = wanted;
        if (move_to_allowed()) {
            return Editor_result::MOVED;
        }
        if (!accept()) {
            return Editor_result::REFUSED;
        }
        m_changed = m_changed || wanted == Editor_result::STORED;
        return wanted;
    }
    Editor_result leave() {
        if (m_entry == nullptr || !m_changed) {
            return Editor_result::DISCARDED;
        }
        return put_back() ? Editor_result::RESTORED : Editor_result::NOT_RESTORED;
    }

    Entry* m_entry = nullptr;
    Editor_settings m_settings;
    Editor_result m_wanted = Editor_result::ACCEPTED;  // by the key that stored last
    bool m_changed = false;  // something was stored while the editor stays open
    Data_entry* m_escape_entry = nullptr;
    Data_entry* m_select_entry = nullptr;
};

}  // namespace frontpanel

#endif
