#include <frontpanel_menu/listing.h>
#include "file/item_builder.h"
#include "file/item_rules.h"
#include "file/link_items.h"
#include "file/toggle.h"

namespace frontpanel {
namespace {

void set_toggle(Load_context& context, const Json_value& source, Link_entry& link) {
    const std::string condition = source.text();
    if (condition.find_first_not_of(' ') == std::string::npos) {
        context.menu.make_homescreen_entry(link, "");
        return;
    }
    const Toggle_result toggle = compile_condition(context, source);
    for (const Named_parameter& parameter : toggle.parameters) {
        context.menu.bindings()->watch(parameter.key);
    }
    if (const auto error = toggle_error(toggle.expression)) {
        source.fail(*error);
    }
    context.menu.make_homescreen_entry(link, toggle.expression);
    context.menu.add_condition(link, condition);
}

void append(Data_entry& menu, Link_entry& link, Data_entry* last) {
    menu.Add_child(link);
    link.Set_parent(&menu);
    link.Set_previous(last);
    link.Set_next(nullptr);
    if (last != nullptr) {
        last->Set_next(&link);
    }
}

Data_entry* load_links(Load_context& context, const Json_value& list, const char* title,
                       const std::vector<const char*>& members) {
    Menu_node& menu = context.menu.add(std::make_unique<Menu_node>(
        title, title, context.menu.keep_index(Index_t{}), nullptr, Data_entry::VISIBLE_ALL,
        Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr));
    const std::vector<Json_value> items = list.some_items(MOST_ITEMS, "links");
    Data_entry* last = nullptr;
    for (const Json_value& item : items) {
        context.problems.attempt([&] {
            item.expect_members(members);
            Link_entry& link = add_link_to_target(context, item, 1);
            if (const auto toggle = item.find(member::TOGGLE)) {
                context.problems.attempt([&] { set_toggle(context, *toggle, link); });
            }
            append(menu, link, last);
            last = &link;
        });
    }
    return &menu;
}

}  // namespace

void load_home(Load_context& context, const Json_value& file) {
    if (const auto links = file.find("homescreen")) {
        context.problems.attempt([&] {
            context.menu.set_homescreen(
                load_links(context, *links, "Home",
                           {member::TARGET, member::TOGGLE, member::BEHAVIOUR, member::ESCAPE}));
        });
    }
    if (const auto links = file.find("favourites")) {
        context.problems.attempt([&] {
            context.menu.set_favourites(
                load_links(context, *links, "Favourites",
                           {member::TARGET, member::BEHAVIOUR, member::ESCAPE}));
        });
    }
}

}  // namespace frontpanel
