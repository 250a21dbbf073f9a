#include <algorithm>

#include "file/loader.h"

namespace frontpanel {
namespace {

bool is_within(const Data_entry* entry, const Data_entry* menu) {
    while (entry != nullptr && entry != menu) {
        entry = entry->Get_parent();
    }
    return entry == menu;
}

}  // namespace

// By its own members: an option that is declared may hold on another device, any other never does.
bool Loader::is_never_shown(const Json_value& item, Data_entry& entry) const {
    if (entry.Get_visible() < 0) {
        return true;
    }
    const std::vector<std::string> options = entry.Get_options();
    const auto is_unknown = [&entry](const std::string& option) {
        return entry.isOptionStatic(option, false).isStatic < 0;
    };
    const bool is_never =
        !options.empty() && std::all_of(options.begin(), options.end(), is_unknown);
    if (is_never) {
        item.member("options").warn("none of these options is declared, so this is never shown");
    }
    return is_never;
}

bool Loader::hides(const Data_entry* entry) const {
    const auto reach = m_reaches.find(const_cast<Data_entry*>(entry));
    return reach != m_reaches.end() && reach->second.is_never_shown;
}

void Loader::warn_of_unreachable_items() {
    for (const auto& [entry, reach] : m_reaches) {
        if (reach.is_never_shown) {
            warn_of_hidden_item(*entry, reach);
        }
    }
    // Menus stand before those in them.
    std::for_each(m_menus.rbegin(), m_menus.rend(),
                  [this](const Open_menu& menu) { warn_of_menu_without_items(menu); });
    for (const auto& [reference, target] : m_link_targets) {
        if (hides(target)) {
            reference.warn("this item is never shown, and neither is a link to it");
        }
    }
}

void Loader::warn_of_hidden_item(const Data_entry& entry, const Reach& reach) const {
    if (const auto shortcut = reach.item.find("shortcut")) {
        shortcut->warn("this button leads to an item that is never shown");
    }
    const auto leads_into = [&entry](const auto& link) {
        return link.second != &entry && is_within(link.second, &entry);
    };
    if (entry.Get_entry_type() == Data_entry::NODE &&
        std::none_of(m_link_targets.begin(), m_link_targets.end(), leads_into)) {
        reach.item.warn("this menu is never shown, and no link leads into it");
    }
}

void Loader::warn_of_menu_without_items(const Open_menu& menu) {
    const auto reach = m_reaches.find(menu.entry);
    if (reach == m_reaches.end() || reach->second.is_never_shown || menu.children.empty() ||
        !std::all_of(menu.children.begin(), menu.children.end(),
                     [this](const Data_entry* child) { return hides(child); })) {
        return;
    }
    reach->second.is_never_shown = true;
    reach->second.item.warn("this menu is never shown, since none of its items is");
}

}  // namespace frontpanel
