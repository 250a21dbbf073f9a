#include <frontpanel_menu/entry_access.h>

#include <frontpanel_menu/entry_kind.h>

namespace frontpanel {

bool is_link(const Data_entry& entry) {
    return entry.Get_entry_type() == Data_entry::LINK_ENTRY;
}

bool is_submenu(const Data_entry& entry) {
    return entry.Get_entry_type() == Data_entry::NODE;
}

Link_entry* link_of(Data_entry& entry) {
    auto* const link = is_link(entry) ? dynamic_cast<Link_entry*>(&entry) : nullptr;
    return link != nullptr && link->Get_housed_entry() != nullptr ? link : nullptr;
}

Data_entry& housed(Data_entry& entry) {
    Link_entry* const link = link_of(entry);
    return link != nullptr ? *link->Get_housed_entry() : entry;
}

// A link's queries change nothing, though they are not const.
const Data_entry& housed(const Data_entry& entry) {
    return housed(const_cast<Data_entry&>(entry));
}

bool is_mount(Data_entry& entry) {
    Link_entry* const link = link_of(entry);
    return link != nullptr && link->isMountLink();
}

Data_entry* menu_of(Data_entry& entry) {
    return neighbour(
        entry, is_mount(entry) ? Data_entry::OPERATION_PARENT_LINK : Data_entry::OPERATION_PARENT);
}

Data_entry* neighbour(Data_entry& entry, Data_entry::Operation_flag step) {
    void* found = nullptr;
    Data_entry::EntryTypeSpecificOperation(&entry, nullptr, nullptr, false, step, &found);
    return static_cast<Data_entry*>(found);
}

int refresh(Data_entry& entry, Data_interface& device) {
    return Data_entry::EntryTypeSpecificOperation(&entry, &device, nullptr, true,
                                                  Data_entry::OPERATION_REFRESH, nullptr);
}

bool is_menu(const Data_entry& entry) {
    return is_submenu(housed(entry)) || is_mount(const_cast<Data_entry&>(entry));
}

bool is_live_pid(uint32_t pid) {
    return pid >= static_cast<uint32_t>(FIRST_LIVE_PID) &&
           pid <= static_cast<uint32_t>(LAST_LIVE_PID);
}

bool is_live(const Data_entry& entry) {
    return kind_of(entry).has(Entry_kind::IS_FETCHED);
}

int commit(Data_entry& entry, Data_interface& device) {
    return kind_of(entry).commit(entry, device);
}

}  // namespace frontpanel
