#include <frontpanel_menu/explain.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <sstream>

#include <frontpanel_menu/entry_access.h>
#include <frontpanel_menu/menu_dump.h>
#include "file/option_names.h"
#include "menu_tree.h"
#include "reports/entry_report.h"

namespace frontpanel {
namespace {

constexpr const char* INDENT = "  ";

std::string indented(const std::string& text) {
    std::istringstream lines(text);
    lines.exceptions(std::ios::badbit);  // no memory must not look like the end of the text
    std::string result;
    for (std::string line; std::getline(lines, line);) {
        result += INDENT + line + "\n";
    }
    return result;
}

// The number that stands in an index for a menu of that level, as product options count menus; 0 for none.
int instance_of(Data_entry& entry) {
    const Index_t* const index = entry.Get_index();
    if (!is_submenu(entry) || index == nullptr) {
        return 0;
    }
    const unsigned int level = entry.getNodeLevel();
    if (index->m_index_num == 1) {
        return index->m_index[0];
    }
    const bool has_number = index->m_index_num == 2 && (level == 1 || level == 2);
    return has_number ? index->m_index[level - 1] : 0;
}

std::string option_line(Data_entry& entry, const std::string& option) {
    const is_static_value_s found = entry.isOptionStatic(option, false);
    const std::string start = "option \"" + Option_names::file_name(option) + "\": ";
    if (found.realValue == 0) {
        return start +
               (found.isStatic < 0 ? "unknown to the product: " : "the product has none: ") +
               "does not hold\n";
    }
    const std::string real = std::to_string(found.realValue);
    if (found.isStatic != 0) {
        return start + "the product has " + real + ": holds\n";
    }
    const int number = std::max(found.dynamicValue, instance_of(entry));
    return start + "number " + std::to_string(number) + " of " + real + ": " +
           (number <= found.realValue ? "holds" : "does not hold") + "\n";
}

std::string options_of(Data_entry& entry) {
    std::string text;
    for (const std::string& option : entry.Get_options()) {
        text += option_line(entry, option);
    }
    return text;
}

std::string toggle_of(Menu& menu, Link_entry& link) {
    if (!link.isHomescreenEntry()) {
        return "";
    }
    const std::string condition = menu.condition_of(link);
    std::string text = "toggle: " + (condition.empty() ? "none" : condition) + "\n";
    std::set<std::string> seen;
    for (size_t from = condition.find('['); from != std::string::npos;
         from = condition.find('[', from + 1)) {
        const size_t to = std::min(condition.find(']', from), condition.size());
        const std::string name = condition.substr(from + 1, to - from - 1);
        const Parameter* const parameter = menu.parameters().find_reference(name);
        const auto value =
            parameter == nullptr ? std::nullopt : menu.bindings()->value(parameter->key());
        if (seen.insert(name).second) {
            text += INDENT + ("[" + name + "] is ") +
                    (value ? std::to_string(value->i) : "unreadable") + "\n";
        }
    }
    return text + INDENT + (link.CheckToggleState() != 0 ? "on" : "off") + "\n";
}

std::string rules_of(Menu& menu, const Data_entry& entry) {
    const auto explanation = menu.bindings()->explain(entry);
    if (!explanation || explanation->rules.empty()) {
        return "";
    }
    constexpr const char* NEWS = " (new)";  // concerns the library, not the author of the menu
    std::string text = explanation->text();
    for (size_t at = text.find(NEWS); at != std::string::npos; at = text.find(NEWS)) {
        text.erase(at, std::strlen(NEWS));
    }
    return "rules:\n" + text.substr(text.find('\n') + 1);  // the entry's name is known
}

std::string line_of(const char* title, const std::string& text) {
    return text.empty() ? "" : title + text + "\n";
}

std::string reasons_of(Menu& menu, Data_entry& entry) {
    std::string text = options_of(entry) + rules_of(menu, entry);
    if (!is_menu(entry)) {
        text += line_of("access: ", access_of(entry)) + line_of("allowed: ", allowed_of(entry));
    }
    return text;
}

std::string explanation_of(Menu& menu, Data_entry& entry, const std::string& path) {
    const std::string hidden = hidden_because(menu, entry);
    std::string text = path + ": " + (hidden.empty() ? "shown" : "hidden: " + hidden) + "\n";
    if (Link_entry* const link = link_of(entry)) {
        text += indented(toggle_of(menu, *link));
        const std::string name = std::string("links to ") + housed(entry).Get_name();
        return text + indented(explanation_of(menu, housed(entry), name));
    }
    return text + indented(reasons_of(menu, entry));
}

}  // namespace

std::string explain(Menu& menu, const std::string& name) {
    const Placed_entry placed = find_entry(menu, name);
    refresh_all(menu);
    const std::vector<Placed_entry> entries = entries_of(menu);
    std::string text = explanation_of(menu, *placed.entry, placed.path);
    for (const Data_entry* around = placed.menu; around != nullptr;) {
        const auto found = std::find_if(
            entries.begin(), entries.end(),
            [around](const Placed_entry& candidate) { return candidate.entry == around; });
        if (found->menu != nullptr) {
            text.insert(0, explanation_of(menu, *found->entry, found->path));
        }
        around = found->menu;
    }
    return text;
}

}  // namespace frontpanel
