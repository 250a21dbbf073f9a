// What the items of a menu are called by others: by their path ("Audio/Gain 1") or by their "id".
#ifndef FRONTPANEL_MENU_ITEM_NAMES_H
#define FRONTPANEL_MENU_ITEM_NAMES_H

#include <frontpanel_data/data_entry.h>

#include <map>
#include <string>
#include <vector>

#include <frontpanel_base/json_value.h>

namespace frontpanel {

class Item_names {
public:
    // The items that follow are in the menu of that name, until it is closed.
    void open(const std::string& menu) { m_menus.push_back(menu); }
    void close() { m_menus.pop_back(); }

    // Null for a wrong item, which was reported: its names are known and lead nowhere.
    void add(const std::string& name, Data_entry* entry);
    // False when another item has the id.
    bool add_id(const std::string& id, Data_entry* entry);

    // The item that a text names. Placed_error when no item has the name, or more than one.
    Data_entry& find(const Json_value& reference) const;

private:
    std::string hint(const std::string& unknown) const;

    struct Named {
        Data_entry* entry;
        bool is_ambiguous;
    };

    mutable size_t m_searched = 0;  // by all hints
    std::vector<std::string> m_menus;
    std::map<std::string, Named> m_paths;
    std::map<std::string, Data_entry*> m_ids;
};

}  // namespace frontpanel

#endif
