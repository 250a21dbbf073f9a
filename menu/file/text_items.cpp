#include <frontpanel_editors/time_editor.h>
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

// The simulated device's start value, which the item's editor is for.
void check_start(const Load_context& context, const Leaf& leaf, bool (*is_fitting)(const char*),
                 const std::string& expected) {
    const std::optional<Json_value> start =
        leaf.parameter ? context.device.start_text(*leaf.parameter) : std::nullopt;
    if (start && !is_fitting(start->text().c_str())) {
        start->warn("item \"" + leaf.name + "\" shows this value: expected " + expected);
    }
}

bool is_address(const char* text) {
    return Ip_entry::Valid_ip(text);
}

bool is_time_text(const char* text) {
    return is_time(text);
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
    check_start(context, leaf, is_address, "an address such as 192.168.0.1");
    add_text<Ip_entry>(context, item, spot, leaf);
}

void build_time(Load_context& context, const Json_value& item, const Spot& spot) {
    const Leaf leaf = leaf_of(context, item, spot, STRING);
    check_start(context, leaf, is_time_text,
                "a time such as 12:30, 12:30:05, 2024-05-01 or 2024-05-01 12:30:05");
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
