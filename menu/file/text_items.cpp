#include <frontpanel_menu/entry_access.h>
#include "file/builders.h"
#include "file/item_builder.h"
#include "file/item_rules.h"

namespace frontpanel {
namespace {

constexpr unsigned int LONGEST_ADDRESS = 15;

unsigned int length_of(const Leaf& leaf) {
    return static_cast<unsigned int>(leaf.parameter ? leaf.parameter->length : LONGEST_TEXT);
}

template <typename Entry, typename... Length>
void add_text(Load_context& context, const Json_value& item, const Spot& spot, const Leaf& leaf,
              Length... length) {
    Entry& entry = context.menu.add(std::make_unique<Entry>(
        leaf.name.c_str(), leaf.description.c_str(), leaf.pid, kept_index(context, leaf, spot),
        length..., spot.parent, leaf.access, leaf.visible, true, Data_entry::SHORTCUT_NONE, nullptr,
        nullptr, nullptr));
    finish(context, item, entry, spot);
    bind(context, item, entry);
}

}  // namespace

void build_text(Load_context& context, const Json_value& item, const Spot& spot) {
    const Leaf leaf = leaf_of(context, item, spot, STRING);
    if (leaf.pid == WARNING_PID) {
        parameter_place(item).report("parameter " + std::to_string(WARNING_PID) +
                                     " is shown by items of type \"warning\"");
    }
    add_text<String_entry>(context, item, spot, leaf, length_of(leaf));
}

void build_address(Load_context& context, const Json_value& item, const Spot& spot) {
    const Leaf leaf = leaf_of(context, item, spot, STRING);
    if (length_of(leaf) < LONGEST_ADDRESS) {
        parameter_place(item).report("expected a parameter of at least " +
                                     std::to_string(LONGEST_ADDRESS) +
                                     " characters for an address");
    }
    add_text<Ip_entry>(context, item, spot, leaf);
}

void build_time(Load_context& context, const Json_value& item, const Spot& spot) {
    const Leaf leaf = leaf_of(context, item, spot, STRING);
    add_text<Time_entry>(context, item, spot, leaf, length_of(leaf));
}

void build_warning(Load_context& context, const Json_value& item, const Spot& spot) {
    Leaf leaf = entry_of(context, item, spot);
    leaf.pid = WARNING_PID;
    leaf.access = Data_entry::READ_ONLY;
    context.problems.attempt(
        [&] { leaf.parameter = parameter_at(context, item, WARNING_PID, leaf.index, STRING); });
    add_text<String_entry>(context, item, spot, leaf, length_of(leaf));
}

}  // namespace frontpanel
