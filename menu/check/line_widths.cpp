#include <frontpanel_editors/line_text.h>
#include <frontpanel_menu/entry_access.h>
#include <frontpanel_menu/list_line.h>

#include <set>
#include <tuple>

#include "check/checks.h"
#include "check/entry_table.h"
#include "check/widest_value.h"
#include "file/item_members.h"

namespace frontpanel {
namespace {

std::string quoted(const std::string& text) {
    return "\"" + text + "\"";
}

bool ends_with(const std::string& text, const std::string& end) {
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

class Line_widths {
public:
    explicit Line_widths(int columns)
        : m_columns(columns), m_list_columns(columns - CURSOR_COLUMNS) {}

    void check_values(const Built_menu& built) {
        m_widest.reserve(built.items.size());
        for (const Built_menu::Item& item : built.items) {
            if (const std::string* const text = m_values.of(*item.entry, item.item)) {
                m_widest.add(item.entry, text);
                warn_of_value(item, *text);
            }
        }
        m_widest.complete();
    }

    void check_name(const Json_value& place, const Data_entry& entry) {
        const std::string name = entry.Get_name();
        const std::string* const* const known = m_widest.find(&housed(entry));
        const std::string* const widest = known != nullptr ? *known : nullptr;
        const int value = is_menu(entry)      ? width_of(MENU_MARK)
                          : widest != nullptr ? width_of(*widest)
                                              : LEAST_VALUE_COLUMNS;
        const Line_room room =
            room_of(width_of(name), value, m_list_columns, least_name_columns(entry));
        // For a value that scrolls there is a warning of its own.
        if (room.left < width_of(name) && room.right >= value) {
            warn(place, "a list of " + std::to_string(m_columns) + " columns has room for " +
                            quoted(start_of(name, room.left)) + " of this name" +
                            (widest != nullptr ? " beside the value " + quoted(*widest) : ""));
        }
    }

    // A link's name is that of its target behind those of the menus around it, cut where it is too long.
    void check_link(const Built_menu::Link& link) {
        const std::string name = link.link->Get_name();
        if (ends_with(name, link.target->Get_name())) {
            check_name(link.reference, *link.link);
        } else {
            link.reference.warn(
                "this link is named \"" + name +
                "\": with those of the menus around it, the name of its target is too long");
        }
    }

private:
    void warn_of_value(const Built_menu::Item& item, const std::string& text) {
        const int width = width_of(text);
        if (room_of(width_of(item.entry->Get_name()), width, m_list_columns,
                    least_name_columns(*item.entry))
                .right >= width) {
            return;
        }
        const Json_value* place = &item.item;
        const auto format = item.item.find(member::FORMAT);
        const auto choices = item.item.find(member::CHOICES);
        place = format ? &*format : choices ? &*choices : place;
        const std::string columns = std::to_string(m_columns) + " columns ";
        warn(*place, (width > m_columns ? "a list and an editor of " + columns + "have"
                                        : "a list of " + columns + "has") +
                         " no room for this value at once: " + quoted(text));
    }

    // The items of a repetition stand in one place.
    void warn(const Json_value& place, const std::string& text) {
        const Place& at = place.place();
        if (m_told.insert({at.source, at.line, at.column, text}).second) {
            place.warn(text);
        }
    }

    int m_columns;
    int m_list_columns;
    Widest_values m_values;
    Entry_table<const std::string*> m_widest;  // of the items that have one
    std::set<std::tuple<const Source*, uint32_t, uint32_t, std::string>> m_told;
};

}  // namespace

void check_line_widths(const Built_menu& built, const Problems& problems) {
    Line_widths widths(built.columns);
    if (problems.error_count() == 0) {
        widths.check_values(built);
    }
    for (const Built_menu::Name& name : built.names) {
        widths.check_name(name.place, *name.entry);
    }
    for (const Built_menu::Link& link : built.links) {
        widths.check_link(link);
    }
}

}  // namespace frontpanel
