#include <frontpanel_menu/explain.h>

#include <algorithm>
#include <sstream>

#include <frontpanel_menu/entry_access.h>
#include <frontpanel_menu/menu_dump.h>
#include "menu_tree.h"

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
    const std::string start = "option \"" + option + "\": ";
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

std::string toggle_of(Link_entry& link) {
    if (!link.isHomescreenEntry()) {
        return "";
    }
    const std::string expression = link.GetToggleExpression();
    std::string text = "toggle: " + (expression.empty() ? "none" : expression) + "\n";
    for (size_t from = expression.find('['); from != std::string::npos;
         from = expression.find('[', from + 1)) {
        const size_t to = std::min(expression.find(']', from), expression.size());
        const std::string name = expression.substr(from + 1, to - from - 1);
        int32_t value = 0;
        link.GetGetRequest(name, &value, sizeof value);
        text += INDENT + ("[" + name + "] is " + std::to_string(value)) + "\n";
    }
    return text + INDENT + (link.CheckToggleState() != 0 ? "on" : "off") + "\n";
}

std::string access_of(const Data_entry& entry) {
    switch (entry.Get_access_type()) {
        case Data_entry::READ_ONLY:
            return "access: read-only\n";
        case Data_entry::WRITE_ONLY:
            return "access: write-only\n";
        default:
            return "";
    }
}

// What the report of an entry of numbers or options has behind its name.
std::string values_of(Data_entry& entry) {
    constexpr int NAME_ONLY = 0x8;
    const std::string report = entry.getProperties(NAME_ONLY);
    const size_t start = std::string(entry.Get_name()).size() + 1;
    return report.size() > start ? "allowed: " + report.substr(start) + "\n" : "";
}

std::string rules_of(Menu& menu, const Data_entry& entry) {
    const auto explanation = menu.bindings()->explain(entry);
    if (!explanation || explanation->rules.empty()) {
        return "";
    }
    const std::string text = explanation->text();
    return "rules:\n" + text.substr(text.find('\n') + 1);  // the entry's name is known
}

std::string reasons_of(Menu& menu, Data_entry& entry) {
    std::string text = entry.Get_visible() < 0 ? "the menu file hides it\n" : "";
    text += options_of(entry) + rules_of(menu, entry);
    if (!is_menu(entry)) {
        text += access_of(entry) + values_of(entry);
    }
    return text;
}

std::string explanation_of(Menu& menu, Data_entry& entry, const std::string& path) {
    const bool is_shown = entry.isVisible(true, &menu.access()) >= 0;
    std::string text = path + ": " + (is_shown ? "shown" : "hidden") + "\n";
    if (Link_entry* const link = link_of(entry)) {
        text += indented(toggle_of(*link));
        const std::string name = std::string("links to ") + housed(entry).Get_name();
        return text + indented(explanation_of(menu, housed(entry), name));
    }
    const std::string reasons = reasons_of(menu, entry);
    if (is_menu(entry) && !is_shown && reasons.empty()) {
        return text + indented("none of its entries is shown\n");
    }
    return text + indented(reasons);
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
