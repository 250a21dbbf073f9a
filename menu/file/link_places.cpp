#include "file/link_places.h"

#include <algorithm>

#include <frontpanel_menu/entry_access.h>
#include "file/item_builder.h"
#include "file/link_items.h"

namespace frontpanel {
namespace {

// Items joined their menu when they were built, its links come in between now.
void order(const Built_menu::Submenu& menu) {
    std::vector<Data_entry*> children = menu.children;
    children.erase(std::remove(children.begin(), children.end(), nullptr), children.end());
    if (std::none_of(children.begin(), children.end(),
                     [](const Data_entry* child) { return is_link(*child); })) {
        return;
    }
    while (Data_entry* const child = menu.entry->Get_child()) {
        menu.entry->Remove(child);
    }
    for (size_t i = 0; i < children.size(); ++i) {
        menu.entry->Add_child(*children[i]);
        if (is_link(*children[i])) {
            children[i]->Set_parent(menu.entry);
            children[i]->Set_previous(i == 0 ? nullptr : children[i - 1]);
            children[i]->Set_next(i + 1 == children.size() ? nullptr : children[i + 1]);
        }
    }
}

}  // namespace

void Link_places::keep(Load_context& context, const Json_value& item, unsigned int level) {
    const size_t menu = context.open_menus.back();
    std::vector<Data_entry*>& children = context.built.menus[menu].children;
    m_pending.push_back({item, level, menu, children.size()});
    children.push_back(nullptr);
}

void Link_places::fill(Load_context& context) {
    for (const Pending& pending : m_pending) {
        context.problems.attempt([&] {
            Link_entry& link = add_link_to_target(context, pending.item, pending.level);
            context.built.menus[pending.menu].children[pending.position] = &link;
            if (const auto id = pending.item.find(member::ID)) {
                add_id(context, *id, link);
            }
        });
    }
    for (const Built_menu::Submenu& menu : context.built.menus) {
        order(menu);
    }
}

void Link_places::set_escapes(Load_context& context) {
    struct Escape {
        const char* name;
        Link_entry::Escape_code code;
    };
    constexpr Escape ESCAPES[] = {{"redraw", Link_entry::ESCAPE_REDRAW},
                                  {"select", Link_entry::ESCAPE_SELECT},
                                  {"escape", Link_entry::ESCAPE_LEAVE}};
    for (const auto& [place, link] : m_escapes) {
        context.problems.attempt([&context, &escapes = place, from = link, &ESCAPES] {
            escapes.expect_members({ESCAPES[0].name, ESCAPES[1].name, ESCAPES[2].name});
            for (const Escape& escape : ESCAPES) {
                if (const auto reference = escapes.find(escape.name)) {
                    context.problems.attempt([&] {
                        from->Set_escape_node(escape.code, &context.names.find(*reference));
                    });
                }
            }
        });
    }
}

}  // namespace frontpanel
