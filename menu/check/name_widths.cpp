#include <frontpanel_menu/list_line.h>
#include "check/checks.h"

namespace frontpanel {
namespace {

void warn_of_cut_name(const Json_value& place, const Data_entry& entry, int display_columns) {
    const int columns = name_columns(entry, display_columns);
    const std::string name = entry.Get_name();
    if (static_cast<int>(name.size()) > columns) {
        place.warn("a display of " + std::to_string(display_columns) +
                   " columns shows this name as \"" + name.substr(0, static_cast<size_t>(columns)) +
                   "\"");
    }
}

bool ends_with(const std::string& text, const std::string& end) {
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// A link's name is that of its target behind those of the menus around it, cut where it is too long.
void check_link(const Built_menu::Link& link, int columns) {
    const std::string name = link.link->Get_name();
    if (ends_with(name, link.target->Get_name())) {
        warn_of_cut_name(link.reference, *link.link, columns);
    } else {
        link.reference.warn(
            "this link is named \"" + name +
            "\": with those of the menus around it, the name of its target is too long");
    }
}

}  // namespace

void check_name_widths(const Built_menu& built) {
    for (const Built_menu::Name& name : built.names) {
        warn_of_cut_name(name.place, *name.entry, built.columns);
    }
    for (const Built_menu::Link& link : built.links) {
        check_link(link, built.columns);
    }
}

}  // namespace frontpanel
