// What the items of a menu are called by others: by their path ("Audio/Gain 1") or by their "id".
#ifndef FRONTPANEL_MENU_ITEM_NAMES_H
#define FRONTPANEL_MENU_ITEM_NAMES_H

#include <frontpanel_data/data_entry.h>

#include <deque>
#include <map>
#include <string>
#include <vector>

#include <frontpanel_base/json_value.h>

namespace frontpanel {

class Item_names {
public:
    // The items that follow are in the menu of that name, until it is closed.
    void open(const std::string& menu);
    void close() { m_open.pop_back(); }

    // Adds an item of the menu that is open. The entry outlives the names.
    void add(Data_entry& entry) { m_added.push_back({m_open.back(), entry.Get_name(), &entry}); }
    // Adds the name of an item whose error was reported: the name is known, but a reference to it leads nowhere.
    void add_wrong(const std::string& name);
    // False when another item has the id. Null for a wrong item.
    bool add_id(const std::string& id, Data_entry* entry);

    // The item that a text names. Placed_error when no item has the name, or more than one.
    Data_entry& find(const Json_value& reference) const;

private:
    struct Added {
        const std::string* menu;  // path of the menu around it, with a slash at the end
        const char* name;         // of the entry, or one of m_wrong_names
        Data_entry* entry;
    };
    // Many menus never refer to an item by its path: paths are made when the first one is looked up.
    void make_paths() const;
    std::string hint(const std::string& unknown) const;

    struct Named {
        Data_entry* entry;
        bool is_ambiguous;
    };

    mutable size_t m_searched = 0;  // by all hints
    std::deque<std::string> m_menus{""};
    std::vector<const std::string*> m_open{&m_menus.front()};  // outermost first
    mutable std::deque<Added> m_added;                         // items whose paths are not made yet
    std::deque<std::string> m_wrong_names;
    mutable std::map<std::string, Named> m_paths;
    std::map<std::string, Data_entry*> m_ids;
};

}  // namespace frontpanel

#endif
