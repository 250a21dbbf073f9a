#include <frontpanel_menu/entry_kind.h>
#include <frontpanel_menu/listing.h>
#include "file/builders.h"
#include "file/item_builder.h"
#include "file/item_rules.h"

namespace frontpanel {
namespace {

constexpr unsigned int DEEPEST_MENU = 16;

// What leads to an item that is wrong is not wrong for that.
void add_wrong_item(Load_context& context, const Json_value& item) {
    if (!item.is_object()) {
        return;
    }
    const auto name = item.find(member::NAME);
    if (name && name->is_text()) {
        context.names.add_wrong(shown_name(name->shown_text()));
    }
    const auto id = item.find(member::ID);
    if (id && id->is_text()) {
        context.names.add_id(id->text(), nullptr);
    }
}

void build_item(Load_context& context, const Json_value& item, const Spot& spot) {
    const Entry_kind& kind = kind_of_item(item);
    item.expect_members(members_of(kind));
    kind.build(context, item, spot);
}

// `level` is that of the items.
void build_items(Load_context& context, const Json_value& menu, Data_entry& parent,
                 unsigned int level) {
    const Json_value list = menu.member(member::ITEMS);
    const std::vector<Json_value> items = list.some_items(MOST_ITEMS, "items");
    if (level > DEEPEST_MENU) {
        list.fail("menus are nested more than " + std::to_string(DEEPEST_MENU) + " deep");
    }
    const bool has_path = level > 1;  // the top menu is no part of a path
    if (has_path) {
        context.names.open(shown_name(parent.Get_name()));
    }
    context.built.menus.push_back({&parent, {}});
    context.open_menus.push_back(context.built.menus.size() - 1);
    for (const Json_value& item : items) {
        if (!context.problems.attempt([&] { build_item(context, item, {&parent, level}); })) {
            add_wrong_item(context, item);
        }
    }
    context.open_menus.pop_back();
    if (has_path) {
        context.names.close();
    }
}

}  // namespace

void build_node(Load_context& context, const Json_value& item, const Spot& spot) {
    const Leaf leaf = entry_of(context, item, spot);
    Menu_node& node = context.menu.add(std::make_unique<Menu_node>(
        leaf.name.c_str(), leaf.description.c_str(), kept_index(context, leaf, spot), spot.parent,
        leaf.visible, Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr));
    bind(context, item, node);
    finish(context, item, node, spot);
    context.problems.attempt([&] { build_items(context, item, node, spot.level + 1); });
}

}  // namespace frontpanel
