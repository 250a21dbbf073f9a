#include "editing/editor_set.h"

#include <frontpanel_data/selection.h>

namespace frontpanel {
namespace {

// The dispatcher takes an editor as the address of its `Selection`.
Data_entry* operate(Data_entry& entry, Selection* selection, int steps, Data_entry* argument) {
    void* specific = argument;
    Data_entry::EntryTypeSpecificOperation(&entry, nullptr, selection, false, steps, &specific);
    return static_cast<Data_entry*>(specific);
}

template <typename Value>
void tell(Data_entry& entry, Selection* selection, int step, Value value) {
    void* specific = &value;
    Data_entry::EntryTypeSpecificOperation(&entry, nullptr, selection, false, step, &specific);
}

// An editor has one line, so the option that it opens with is on its first.
void tell_line(Data_entry& entry, Selection* selection) {
    int32_t option = 0;
    entry.Get_value(&option, sizeof option);
    tell<unsigned char>(entry, selection, Data_entry::OPERATION_SET_USE_LINE_INFO, 1);
    tell<int32_t>(entry, selection, Data_entry::OPERATION_SET_SELECTED, option);
    tell<int32_t>(entry, selection, Data_entry::OPERATION_SET_SELECTED_LINE, 0);
}

}  // namespace

Value_editor* Editor_set::editor_of(const Data_entry& entry) {
    const Entry_kind& kind = kind_of(entry);
    if (kind.make_editor == nullptr) {
        return nullptr;
    }
    std::unique_ptr<Value_editor>& editor = m_editors[&kind];
    if (editor == nullptr) {
        editor = kind.make_editor();
    }
    return editor.get();
}

Value_editor* Editor_set::open(Data_entry& entry, const Editor_settings& settings) {
    Value_editor* const editor = editor_of(entry);
    if (editor == nullptr) {
        return nullptr;
    }
    editor->configure(settings);
    auto* const selection = dynamic_cast<Selection*>(editor);
    operate(entry, selection,
            Data_entry::OPERATION_SET_ESCAPE_ENTRY | Data_entry::OPERATION_SET_SELECT_ENTRY,
            &entry);
    if (kind_of(entry).has(Entry_kind::HAS_LINES)) {
        tell_line(entry, selection);
    }
    operate(entry, selection, Data_entry::OPERATION_PREPARE, nullptr);
    return editor->entry() == &entry ? editor : nullptr;
}

Data_entry* Editor_set::close(Data_entry& entry) {
    auto* const selection = dynamic_cast<Selection*>(editor_of(entry));
    Data_entry* const target = operate(entry, selection, Data_entry::OPERATION_ESCAPE, &entry);
    operate(entry, selection, Data_entry::OPERATION_EXIT_LEDS, nullptr);
    // The dispatcher closes no editor of options or times.
    if (selection != nullptr) {
        selection->ExitLEDs();
    }
    return target;
}

}  // namespace frontpanel
