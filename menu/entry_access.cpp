#include <frontpanel_menu/entry_access.h>

#include <array>
#include <vector>

namespace frontpanel {
namespace {

int display_string(Data_entry& entry, char* buffer, unsigned int length) {
    switch (entry.Get_entry_type()) {
        case Data_entry::RANGE_LEAF:
            return static_cast<Range_entry&>(entry).Get_display_string(buffer, length, false, 0);
        default:
            return entry.Get_display_string(buffer, length);
    }
}

// A slot's line is filled with blanks up to its alias. One that has none fits the display without them.
std::optional<std::string> short_slot_line(Data_entry& entry, int columns) {
    std::array<char, MAX_STRING_LENGTH + 1> line{};
    if (entry.Get_display_string(line.data(), line.size() - 1) != 0) {
        return std::nullopt;
    }
    std::string text = line.data();
    text.erase(text.find_last_not_of(' ') + 1);
    return text.size() <= static_cast<size_t>(columns) ? std::optional<std::string>(text)
                                                       : std::nullopt;
}

// A fetch counts the options that were there before it, so that a list that has just grown would lack its
// end on the display.
void count_live_options(Data_entry& entry) {
    if (is_live(entry)) {
        static_cast<Enum_entry&>(entry).updateControlOptionMap();
    }
}

}  // namespace

Link_entry* link_of(Data_entry& entry) {
    auto* const link = entry.Get_entry_type() == Data_entry::LINK_ENTRY
                           ? dynamic_cast<Link_entry*>(&entry)
                           : nullptr;
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
    const int result = Data_entry::EntryTypeSpecificOperation(
        &entry, &device, nullptr, true, Data_entry::OPERATION_REFRESH, nullptr);
    count_live_options(housed(entry));
    return result;
}

bool is_menu(const Data_entry& entry) {
    return housed(entry).Get_entry_type() == Data_entry::NODE ||
           is_mount(const_cast<Data_entry&>(entry));
}

bool is_warning(const Data_entry& entry) {
    return entry.Get_entry_type() == Data_entry::STRING_LEAF && entry.Get_pid() == WARNING_PID;
}

bool is_live_pid(uint32_t pid) {
    return pid >= static_cast<uint32_t>(FIRST_LIVE_PID) &&
           pid <= static_cast<uint32_t>(LAST_LIVE_PID);
}

bool is_live(const Data_entry& entry) {
    return entry.Get_entry_type() == Data_entry::ENUM_LEAF && is_live_pid(entry.Get_pid());
}

std::optional<std::string> display_value(Data_entry& entry, int columns) {
    if (is_menu(entry)) {
        return std::string();
    }
    count_live_options(housed(entry));
    if (housed(entry).Get_entry_type() == Data_entry::SLOT_ENUM) {
        if (auto line = short_slot_line(entry, columns)) {
            return line;
        }
    }
    // An entry terminates at position `columns` and may leave the column before it as it finds it.
    std::vector<char> buffer(static_cast<size_t>(columns) + 1, ' ');
    buffer.back() = '\0';
    if (display_string(entry, buffer.data(), static_cast<unsigned int>(columns)) != 0) {
        return std::nullopt;
    }
    return std::string(buffer.data());
}

int commit(Data_entry& entry, Data_interface& device) {
    switch (entry.Get_entry_type()) {
        case Data_entry::RANGE_LEAF:
            return static_cast<Range_entry&>(entry).Commit(&device);
        case Data_entry::ENUM_LEAF:
        case Data_entry::SLOT_ENUM:
            return static_cast<Enum_entry&>(entry).Commit(&device);
        case Data_entry::STRING_LEAF:
        case Data_entry::IP_LEAF:
        case Data_entry::TIME_LEAF:
            return static_cast<String_entry&>(entry).Commit(&device);
        default:
            return entry.Commit();
    }
}

}  // namespace frontpanel
