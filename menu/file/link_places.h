// Links while a menu file is loaded: they are added once everything that they can lead to exists.
#ifndef FRONTPANEL_MENU_LINK_PLACES_H
#define FRONTPANEL_MENU_LINK_PLACES_H

#include <frontpanel_data/data_entry.h>

#include <utility>
#include <vector>

#include <frontpanel_base/json_value.h>

namespace frontpanel {

struct Load_context;

class Link_places {
public:
    // Keeps a place for a link in the menu that is open.
    void keep(Load_context& context, const Json_value& item, unsigned int level);
    // Once all items are built: builds the links and orders the menus that have some.
    void fill(Load_context& context);

    // Where a link's escapes lead to, which may be a link that is not there yet.
    void add_escapes(const Json_value& escapes, Link_entry& link) {
        m_escapes.emplace_back(escapes, &link);
    }
    // Once all links are there.
    void set_escapes(Load_context& context);

private:
    struct Pending {
        Json_value item;
        unsigned int level;
        size_t menu;      // among those that were built
        size_t position;  // in its children
    };

    std::vector<Pending> m_pending;
    std::vector<std::pair<Json_value, Link_entry*>> m_escapes;
};

}  // namespace frontpanel

#endif
