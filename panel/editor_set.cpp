#include "editor_set.h"

namespace panel {
namespace {

// The dispatcher takes an editor as the address of its `Selection`.
Data_entry* operate(Data_entry& entry, Selection* selection, int steps, Data_entry* argument) {
    void* specific = argument;
    Data_entry::EntryTypeSpecificOperation(&entry, nullptr, selection, false, steps, &specific);
    return static_cast<Data_entry*>(specific);
}

}  // namespace

Editor_set::Editor Editor_set::editor_of(const Data_entry& entry) {
    switch (entry.Get_entry_type()) {
        case Data_entry::RANGE_LEAF:
            return {&m_number, &m_number};
        default:
            return {};
    }
}

Value_editor* Editor_set::open(Data_entry& entry) {
    const Editor editor = editor_of(entry);
    if (editor.selection == nullptr) {
        return nullptr;
    }
    operate(entry, editor.selection,
            Data_entry::OPERATION_SET_ESCAPE_ENTRY | Data_entry::OPERATION_SET_SELECT_ENTRY,
            &entry);
    operate(entry, editor.selection, Data_entry::OPERATION_PREPARE, nullptr);
    return editor.value->entry() == &entry ? editor.value : nullptr;
}

Data_entry* Editor_set::close(Data_entry& entry) {
    const Editor editor = editor_of(entry);
    Data_entry* const target =
        operate(entry, editor.selection, Data_entry::OPERATION_ESCAPE, &entry);
    operate(entry, editor.selection, Data_entry::OPERATION_EXIT_LEDS, nullptr);
    return target;
}

}  // namespace panel
