#include "file/link_items.h"

#include <filesystem>

#include <frontpanel_menu/entry_access.h>
#include <frontpanel_menu/entry_kind.h>
#include "file/builders.h"
#include "file/item_builder.h"
#include "file/item_rules.h"

namespace frontpanel {
namespace {

// A link to an item that it owns. The library recognises such an item by a fixed name, which must not be shown.
class Bridge_link : public Link_entry {
public:
    Bridge_link(Data_entry* housed, std::string name)
        : Link_entry(housed), m_shown_name(std::move(name)) {}
    const char* Get_name() const override { return m_shown_name.c_str(); }

private:
    std::string m_shown_name;
};

// That of its item, or of the item's parameter.
std::string bridge_name(const Json_value& housed) {
    if (housed.find(member::NAME)) {
        return shown_name(name_of(housed));
    }
    const auto parameter = housed.find(member::PARAMETER);
    return parameter ? parameter->text() : "Bridge";
}

Link_entry& add_link(Load_context& context, std::unique_ptr<Link_entry> made,
                     const Json_value& item, unsigned int level) {
    static const std::vector<const char*> BEHAVIOURS{"stay", "skip"};
    Link_entry& link = context.menu.add(std::move(made));
    context.menu.links().push_back(&link);
    link.setNodeLevel(level);
    if (const auto behaviour = item.find(member::BEHAVIOUR)) {
        context.problems.attempt([&] {
            link.setBehaviour(behaviour->choice(BEHAVIOURS) == 0 ? Link_entry::LINK_STAY
                                                                 : Link_entry::LINK_SKIP);
        });
    }
    if (const auto shortcut = item.find(member::SHORTCUT)) {
        context.problems.attempt([&] { set_shortcut(context, *shortcut, link); });
    }
    if (const auto escapes = item.find(member::ESCAPE)) {
        context.links.add_escapes(*escapes, link);
    }
    return link;
}

}  // namespace

Link_entry& add_link_to_target(Load_context& context, const Json_value& item, unsigned int level) {
    const Json_value reference = item.member(member::TARGET);
    Data_entry& target = context.names.find(reference);
    if (is_link(target)) {
        reference.fail("a link leads to no other link");
    }
    Link_entry& link = add_link(context, std::make_unique<Link_entry>(&target), item, level);
    context.built.links.push_back({reference, &target, &link});
    return link;
}

void build_link(Load_context& context, const Json_value& item, const Spot& spot) {
    context.links.keep(context, item, spot.level);
}

void build_bridge(Load_context& context, const Json_value& item, const Spot& spot) {
    const Json_value housed = item.member(member::ITEM);
    const Entry_kind& kind = kind_of_item(housed);
    if (!kind.has(Entry_kind::IS_BRIDGED)) {
        housed.member(member::TYPE).fail("a bridge leads to no item of this type");
    }
    housed.expect_members(bridged_members_of(kind));
    const std::string name =
        context.problems.value_or([&housed] { return bridge_name(housed); }, std::string("?"));
    std::unique_ptr<const Index_t> index;
    if (!context.problems.attempt([&] {
            kind.build(context, housed, {nullptr, spot.level, &index});
        })) {
        throw Told_already();
    }
    // The link owns both from here on.
    Data_entry* const entry = context.menu.release_last();
    (void)index.release();
    Link_entry& link =
        add_link(context, std::make_unique<Bridge_link>(entry, name), item, spot.level);
    link.setAsBridgeLink();
    enlist(context, item, link);
}

void build_mount(Load_context& context, const Json_value& item, const Spot& spot) {
    const Leaf leaf = entry_of(context, item, spot);
    Mount_node& node = context.menu.add(std::make_unique<Mount_node>(
        leaf.name.c_str(), leaf.description.c_str(), kept_index(context, leaf, spot), nullptr,
        leaf.visible, Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr));
    node.Set_parent(spot.parent);
    set_properties(context, item, node, spot);
    bind(context, item, node);
    const Json_value place = item.member(member::FOLDER);
    const std::string folder = Mounted_menu::folder_of(place.place(), place.text());
    std::error_code error;
    if (!std::filesystem::is_directory(folder, error)) {
        place.warn("there is no folder \"" + folder + "\"");
    }
    Mounted_menu& mounted = context.menu.add_mounted_menu(folder);
    Link_entry& link = add_link(context, std::make_unique<Link_entry>(&node), item, spot.level);
    link.setAsMountLink([&mounted, &link](MenuControl*) { return mounted.build(link); },
                        [&mounted](MenuControl*) -> Data_entry* {
                            mounted.destroy();
                            return nullptr;
                        });
    enlist(context, item, link);
}

}  // namespace frontpanel
