#include <frontpanel_menu/entry_access.h>
#include "file/loader.h"

namespace frontpanel {
namespace {

constexpr unsigned int LONGEST_ADDRESS = 15;

unsigned int length_of(const Leaf& leaf) {
    return static_cast<unsigned int>(leaf.parameter ? leaf.parameter->length : LONGEST_TEXT);
}

}  // namespace

template <typename Entry, typename... Length>
void Loader::add_text_entry(const Json_value& item, const Leaf& leaf, Data_entry* parent,
                            unsigned int level, Length... length) {
    Entry& entry = m_menu.add(std::make_unique<Entry>(
        leaf.name.c_str(), leaf.description.c_str(), leaf.pid, leaf.index, length..., parent,
        leaf.access, leaf.visible, true, Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr));
    finish(item, entry, level);
    bind(item, entry, std::nullopt);
}

void Loader::build_text(const Json_value& item, Data_entry* parent, unsigned int level) {
    const Leaf leaf = leaf_of(item, STRING);
    if (leaf.pid == WARNING_PID) {
        parameter_place(item).report("parameter " + std::to_string(WARNING_PID) +
                                     " is shown by items of type \"warning\"");
    }
    add_text_entry<String_entry>(item, leaf, parent, level, length_of(leaf));
}

void Loader::build_address(const Json_value& item, Data_entry* parent, unsigned int level) {
    const Leaf leaf = leaf_of(item, STRING);
    if (length_of(leaf) < LONGEST_ADDRESS) {
        parameter_place(item).report("expected a parameter of at least " +
                                     std::to_string(LONGEST_ADDRESS) +
                                     " characters for an address");
    }
    add_text_entry<Ip_entry>(item, leaf, parent, level);
}

void Loader::build_time(const Json_value& item, Data_entry* parent, unsigned int level) {
    const Leaf leaf = leaf_of(item, STRING);
    add_text_entry<Time_entry>(item, leaf, parent, level, length_of(leaf));
}

void Loader::build_warning(const Json_value& item, Data_entry* parent, unsigned int level) {
    Leaf leaf = entry_of(item);
    leaf.pid = WARNING_PID;
    leaf.access = Data_entry::READ_ONLY;
    m_problems.attempt(
        [&] { leaf.parameter = parameter_of(item, WARNING_PID, *leaf.index, STRING); });
    add_text_entry<String_entry>(item, leaf, parent, level, length_of(leaf));
}

}  // namespace frontpanel
