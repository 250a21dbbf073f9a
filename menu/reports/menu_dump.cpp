#include <frontpanel_menu/menu_dump.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <vector>

#include <frontpanel_base/character_set.h>
#include <frontpanel_editors/line_text.h>
#include <frontpanel_menu/entry_access.h>
#include <frontpanel_menu/list_line.h>
#include <frontpanel_menu/shown_value.h>
#include "menu_tree.h"
#include "reports/entry_report.h"

namespace frontpanel {
namespace {

struct Row {
    int depth;
    std::string path;
    std::string name;
    std::string type;
    std::string parameter;
    std::string value;
    std::string hidden_because;
    std::string access;
    std::string allowed;
    int shortcut;
};

// A value that was never read, or cannot be read, is not that of the entry's beginning.
bool is_unknown(Menu& menu, const Data_entry& entry) {
    if (is_live(entry) || entry.Get_pid() == Data_entry::PID_NONE) {
        return false;
    }
    const auto state = menu.access().state(entry.Get_pid(), varidx_of(*entry.Get_index()));
    return state && state->freshness == Freshness::UNKNOWN;
}

std::string value_of(Menu& menu, Data_entry& entry) {
    if (is_unknown(menu, housed(entry))) {
        return UNKNOWN_VALUE;
    }
    std::string value = shown_value(entry).value_or("---");
    const size_t end = value.find_last_not_of(' ');
    return value.substr(0, end == std::string::npos ? 0 : end + 1);
}

Row row_of(Menu& menu, const Placed_entry& placed) {
    Data_entry& entry = *placed.entry;
    Data_entry& shown = housed(entry);
    return {placed.depth,
            placed.path,
            entry.Get_name(),
            type_of(entry),
            parameter_of(shown),
            is_menu(entry) ? "" : value_of(menu, entry),
            hidden_because(menu, entry),
            is_menu(shown) ? "" : access_of(shown),
            allowed_of(shown),
            entry.Get_shortcut()};
}

std::vector<Row> rows_of(Menu& menu) {
    std::vector<Row> rows;
    for (const Placed_entry& placed : entries_of(menu)) {
        rows.push_back(row_of(menu, placed));
    }
    return rows;
}

// What stands behind the value, in the order of importance.
std::string notes_of(const Row& row) {
    std::string notes;
    const auto add = [&notes](const std::string& note) {
        notes += note.empty() ? "" : (notes.empty() ? "" : "; ") + note;
    };
    add(row.hidden_because.empty() ? "" : "hidden: " + row.hidden_because);
    add(row.access);
    add(row.allowed.empty() ? "" : "allowed " + row.allowed);
    add(row.shortcut > 0 ? "button " + std::to_string(row.shortcut) : "");
    return notes;
}

using Columns = std::array<std::string, 5>;

size_t columns_in(const std::string& text) {
    return static_cast<size_t>(width_of(text));
}

Columns columns_of(const Row& row) {
    return {std::string(2 * static_cast<size_t>(row.depth), ' ') + row.name, row.type,
            row.parameter, row.value, notes_of(row)};
}

// JSON is UTF-8, as the texts of a menu are. A text of the device that is none is taken for ISO-8859-1, and its bytes
// stand as escapes.
std::string quoted(const std::string& text) {
    const std::u32string characters = characters_of(text);
    const bool is_utf8 = characters.find(DAMAGED) == std::u32string::npos;
    std::string result = "\"";
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (character == '"' || character == '\\') {
            result += '\\';
            result += character;
        } else if ((byte >= ' ' && byte <= '~') || (byte > '~' + 1 && is_utf8)) {
            result += character;
        } else {
            std::array<char, 8> escape{};
            std::snprintf(escape.data(), escape.size(), "\\u%04x", byte);
            result += escape.data();
        }
    }
    return result + "\"";
}

std::string quoted_or_null(const std::string& text) {
    return text.empty() ? "null" : quoted(text);
}

std::string json_of(const Row& row) {
    const std::string access = row.access.empty() ? "read-write" : row.access;
    const bool is_editable = !row.parameter.empty();
    return R"({"path": )" + quoted(row.path) + R"(, "name": )" + quoted(row.name) +
           R"(, "depth": )" + std::to_string(row.depth) + R"(, "type": )" + quoted(row.type) +
           R"(, "parameter": )" + quoted_or_null(row.parameter) + R"(, "value": )" +
           (is_editable ? quoted(row.value) : "null") + R"(, "access": )" +
           (is_editable ? quoted(access) : "null") + R"(, "allowed": )" +
           quoted_or_null(row.allowed) + R"(, "shortcut": )" +
           (row.shortcut > 0 ? std::to_string(row.shortcut) : "null") + R"(, "shown": )" +
           (row.hidden_because.empty() ? "true" : "false") + R"(, "hidden": )" +
           quoted_or_null(row.hidden_because) + "}";
}

}  // namespace

void refresh_all(Menu& menu) {
    menu.bindings()->poll();
    for (const Placed_entry& placed : entries_of(menu)) {
        if (!is_live(housed(*placed.entry))) {
            refresh(*placed.entry, menu.access());
        }
    }
    menu.bindings()->settle();
}

std::string dump_of(Menu& menu) {
    std::vector<Columns> table{{"entry", "type", "parameter", "value", "state"}};
    for (const Row& row : rows_of(menu)) {
        table.push_back(columns_of(row));
    }
    std::array<size_t, 4> width{};
    for (const Columns& line : table) {
        for (size_t column = 0; column < width.size(); ++column) {
            width[column] = std::max(width[column], columns_in(line[column]));
        }
    }
    std::string text;
    for (const Columns& line : table) {
        std::string written;
        for (size_t column = 0; column < line.size(); ++column) {
            written += line[column];
            if (column < width.size()) {
                written.append(width[column] - columns_in(line[column]) + 2, ' ');
            }
        }
        text += written.substr(0, written.find_last_not_of(' ') + 1) + "\n";
    }
    return text;
}

std::string json_dump_of(Menu& menu) {
    std::string text = "{\"version\": 1, \"entries\": [";
    const char* separator = "\n";
    for (const Row& row : rows_of(menu)) {
        text += separator + json_of(row);
        separator = ",\n";
    }
    return text + "\n]}\n";
}

}  // namespace frontpanel
