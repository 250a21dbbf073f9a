#include "file/item_builder.h"
#include "file/link_items.h"
#include "file/toggle.h"

namespace frontpanel {
namespace {

void set_toggle(Load_context& context, const Json_value& source, Link_entry& link) {
    context.built.has_toggles = true;
    try {
        const Toggle toggle =
            translate_toggle(source.text(), [&context](const std::string& reference) {
                return context.device.reference(reference);
            });
        if (toggle.parameters.empty() && !toggle.expression.empty()) {
            source.warn("this toggle names no parameter, so it never changes");
        }
        for (const Parameter* const parameter : toggle.parameters) {
            context.menu.watch(*parameter);
        }
        context.menu.make_homescreen_entry(link, toggle.expression);
    } catch (const Toggle_error& error) {
        throw Placed_error(source.place_in_text(error.offset()), error.what());
    }
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
    Node_entry& menu = context.menu.add(std::make_unique<Node_entry>(
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
