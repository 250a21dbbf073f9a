#include <algorithm>
#include <set>
#include <vector>

#include <frontpanel_menu/entry_access.h>
#include "check/checks.h"
#include "check/entry_table.h"
#include "file/item_members.h"

namespace frontpanel {
namespace {

// The menus around the targets of links.
std::set<const Data_entry*> menus_around_targets(const std::vector<Built_menu::Link>& links) {
    std::set<const Data_entry*> menus;
    for (const Built_menu::Link& link : links) {
        const Data_entry* menu = link.target->Get_parent();
        while (menu != nullptr && menus.insert(menu).second) {
            menu = menu->Get_parent();
        }
    }
    return menus;
}

class Reach {
public:
    explicit Reach(const Built_menu& built)
        : m_built(built), m_led_into(menus_around_targets(built.links)) {
        m_items.reserve(built.items.size());
        for (const Built_menu::Item& item : built.items) {
            m_items.add(item.entry, {item.item, is_never_shown(item)});
        }
        m_items.complete();
    }

    void warn() {
        for (const auto& [entry, reach] : m_items.rows()) {
            if (reach.is_never_shown) {
                warn_of_hidden_item(*entry, reach.item);
            }
        }
        std::for_each(
            m_built.menus.rbegin(), m_built.menus.rend(),
            [this](const Built_menu::Submenu& menu) { warn_of_menu_without_items(menu); });
        for (const Built_menu::Link& link : m_built.links) {
            if (hides(link.target)) {
                link.reference.warn("this item is never shown, and neither is a link to it");
            }
        }
    }

private:
    struct Item {
        Json_value item;
        bool is_never_shown;
    };

    // By its own members: an option that is declared may hold on another device, any other never does.
    static bool is_never_shown(const Built_menu::Item& item) {
        Data_entry& entry = *item.entry;
        if (entry.Get_visible() < 0) {
            return true;
        }
        const std::vector<std::string> options = entry.Get_options();
        const auto is_unknown = [&entry](const std::string& option) {
            return entry.isOptionStatic(option, false).isStatic < 0;
        };
        return !options.empty() && std::all_of(options.begin(), options.end(), is_unknown);
    }

    bool hides(const Data_entry* entry) const {
        const Item* const found = m_items.find(entry);
        return found != nullptr && found->is_never_shown;
    }

    void warn_of_hidden_item(const Data_entry& entry, const Json_value& item) const {
        if (const auto shortcut = item.find(member::SHORTCUT)) {
            shortcut->warn("this button leads to an item that is never shown");
        }
        if (is_submenu(entry) && m_led_into.count(&entry) == 0) {
            item.warn("this menu is never shown, and no link leads into it");
        }
    }

    void warn_of_menu_without_items(const Built_menu::Submenu& menu) {
        Item* const found = m_items.find(menu.entry);
        if (found == nullptr || found->is_never_shown || menu.children.empty() ||
            !std::all_of(menu.children.begin(), menu.children.end(),
                         [this](const Data_entry* child) { return hides(child); })) {
            return;
        }
        found->is_never_shown = true;
        found->item.warn("this menu is never shown, since none of its items is");
    }

    const Built_menu& m_built;
    std::set<const Data_entry*> m_led_into;
    Entry_table<Item> m_items;
};

}  // namespace

void check_reach(const Built_menu& built) {
    Reach(built).warn();
}

}  // namespace frontpanel
