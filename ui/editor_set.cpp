#include <frontpanel_ui/editor_set.h>

#include <frontpanel_menu/entry_access.h>

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

// An editor has one line, so the option that it opens on stands on its first.
void tell_line(Data_entry& entry, Selection* selection) {
    int32_t option = 0;
    entry.Get_value(&option, sizeof option);
    tell<unsigned char>(entry, selection, Data_entry::OPERATION_SET_USE_LINE_INFO, 1);
    tell<int32_t>(entry, selection, Data_entry::OPERATION_SET_SELECTED, option);
    tell<int32_t>(entry, selection, Data_entry::OPERATION_SET_SELECTED_LINE, 0);
}

}  // namespace

Editor_set::Editor Editor_set::editor_of(const Data_entry& entry) {
    switch (entry.Get_entry_type()) {
        case Data_entry::RANGE_LEAF:
            return {&m_number, &m_number};
        case Data_entry::ENUM_LEAF:
        case Data_entry::SLOT_ENUM:
            return {&m_option, &m_option};
        case Data_entry::STRING_LEAF:
            return is_warning(entry) ? Editor{&m_warning, &m_warning} : Editor{&m_text, &m_text};
        case Data_entry::IP_LEAF:
            return {&m_address, &m_address};
        case Data_entry::TIME_LEAF:
            return {&m_time, &m_time};
        default:
            return {};
    }
}

Value_editor* Editor_set::open(Data_entry& entry, const Editor_settings& settings) {
    const Editor editor = editor_of(entry);
    if (editor.selection == nullptr) {
        return nullptr;
    }
    editor.value->configure(settings);
    operate(entry, editor.selection,
            Data_entry::OPERATION_SET_ESCAPE_ENTRY | Data_entry::OPERATION_SET_SELECT_ENTRY,
            &entry);
    if (entry.Get_entry_type() == Data_entry::SLOT_ENUM) {
        tell_line(entry, editor.selection);
    }
    operate(entry, editor.selection, Data_entry::OPERATION_PREPARE, nullptr);
    return editor.value->entry() == &entry ? editor.value : nullptr;
}

Data_entry* Editor_set::close(Data_entry& entry) {
    const Editor editor = editor_of(entry);
    Data_entry* const target =
        operate(entry, editor.selection, Data_entry::OPERATION_ESCAPE, &entry);
    operate(entry, editor.selection, Data_entry::OPERATION_EXIT_LEDS, nullptr);
    // The dispatcher closes no editor of options or times.
    if (editor.selection != nullptr) {
        editor.selection->ExitLEDs();
    }
    return target;
}

}  // namespace frontpanel
