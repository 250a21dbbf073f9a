#include <algorithm>
#include <filesystem>

#include "file/loader.h"
#include "file/toggle.h"

namespace frontpanel {
namespace {

// A place in a list of links of its own: the homescreen, or the favourites.
void append(Data_entry& menu, Link_entry& link, Data_entry* last) {
    menu.Add_child(link);
    link.Set_parent(&menu);
    link.Set_previous(last);
    link.Set_next(nullptr);
    if (last != nullptr) {
        last->Set_next(&link);
    }
}

}  // namespace

// A link stands in its place once everything that it can lead to is there.
void Loader::build_link(const Json_value& item, Data_entry* /*parent*/, unsigned int level) {
    Open_menu& menu = m_menus[m_open_menus.back()];
    m_pending.push_back({item, level, m_open_menus.back(), menu.children.size()});
    menu.children.push_back(nullptr);
}

void Loader::build_bridge(const Json_value& item, Data_entry* /*parent*/, unsigned int level) {
    const Json_value housed = item.member("item");
    const Item_type& type = type_of(housed);
    if (!type.is_bridged) {
        housed.member("type").fail("a bridge leads to no item of this type");
    }
    std::vector<const char*> members{"type",    "description", "index",
                                     "options", "binding",     "editor"};
    members.insert(members.end(), type.members.begin(), type.members.end());
    housed.expect_members(members);
    m_is_bridging = true;
    const bool is_built = m_problems.attempt([&] { (this->*type.build)(housed, nullptr, level); });
    m_is_bridging = false;
    if (!is_built) {
        throw Told_already();
    }
    // The link owns both from here on.
    Data_entry* const entry = m_menu.release_last();
    for (std::unique_ptr<Index_t>& index : m_bridge_indices) {
        (void)(index.get() == entry->Get_index() ? index.release() : nullptr);
    }
    m_bridge_indices.clear();
    Link_entry& link = add_link(*entry, item, level);
    link.setAsBridgeLink();
    enlist(item, link.Get_name(), link);
}

void Loader::build_mount(const Json_value& item, Data_entry* parent, unsigned int level) {
    const Leaf leaf = entry_of(item);
    Mount_node& node = m_menu.add(std::make_unique<Mount_node>(
        leaf.name.c_str(), leaf.description.c_str(), leaf.index, nullptr, leaf.visible,
        Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr));
    node.Set_parent(parent);
    set_properties(item, node, level);
    bind(item, node, std::nullopt);
    const Json_value place = item.member("folder");
    const std::string folder =
        (std::filesystem::path(place.place().source->name).parent_path() / place.text()).string();
    std::error_code error;
    if (!std::filesystem::is_directory(folder, error)) {
        place.warn("there is no folder \"" + folder + "\"");
    }
    Mounted_menu& mounted = m_menu.add_mounted_menu(folder);
    Link_entry& link = add_link(node, item, level);
    link.setAsMountLink([&mounted, &link](MenuControl*) { return mounted.build(link); },
                        [&mounted](MenuControl*) -> Data_entry* {
                            mounted.destroy();
                            return nullptr;
                        });
    enlist(item, link.Get_name(), link);
}

Link_entry& Loader::add_link(Data_entry& housed, const Json_value& item, unsigned int level) {
    static const std::vector<const char*> BEHAVIOURS{"stay", "skip"};
    Link_entry& link = m_menu.add(std::make_unique<Link_entry>(&housed));
    m_menu.links().push_back(&link);
    link.setNodeLevel(level);
    if (const auto behaviour = item.find("behaviour")) {
        m_problems.attempt([&] {
            link.setBehaviour(behaviour->choice(BEHAVIOURS) == 0 ? Link_entry::LINK_STAY
                                                                 : Link_entry::LINK_SKIP);
        });
    }
    if (const auto shortcut = item.find("shortcut")) {
        m_problems.attempt([&] { set_shortcut(*shortcut, link); });
    }
    if (const auto escapes = item.find("escape")) {
        m_escapes.push_back({*escapes, &link});
    }
    return link;
}

// A link to what an item names.
Link_entry& Loader::add_link_to_target(const Json_value& item, unsigned int level) {
    const Json_value reference = item.member("target");
    Data_entry& target = m_names.find(reference);
    if (target.Get_entry_type() == Data_entry::LINK_ENTRY) {
        reference.fail("a link leads to no other link");
    }
    m_link_targets.emplace_back(reference, &target);
    Link_entry& link = add_link(target, item, level);
    const std::string name = link.Get_name();
    const std::string housed = target.Get_name();
    const bool is_whole = name.size() >= housed.size() &&
                          name.compare(name.size() - housed.size(), housed.size(), housed) == 0;
    if (!is_whole) {
        reference.warn("this link is named \"" + name +
                       "\": with those of the menus around it, the name of its target is too long");
    } else {
        warn_of_cut_name(reference, link);
    }
    return link;
}

void Loader::place_links() {
    for (const Pending_link& pending : m_pending) {
        m_problems.attempt([&] {
            Link_entry& link = add_link_to_target(pending.item, pending.level);
            m_menus[pending.menu].children[pending.position] = &link;
            if (const auto id = pending.item.find("id")) {
                add_id(*id, &link);
            }
        });
    }
    for (const Open_menu& menu : m_menus) {
        order(menu);
    }
}

// Items joined their menu when they were built, its links come in between now.
void Loader::order(const Open_menu& menu) {
    std::vector<Data_entry*> children = menu.children;
    children.erase(std::remove(children.begin(), children.end(), nullptr), children.end());
    const auto is_link = [](const Data_entry* child) {
        return child->Get_entry_type() == Data_entry::LINK_ENTRY;
    };
    if (std::none_of(children.begin(), children.end(), is_link)) {
        return;
    }
    while (Data_entry* const child = menu.entry->Get_child()) {
        menu.entry->Remove(child);
    }
    for (size_t i = 0; i < children.size(); ++i) {
        menu.entry->Add_child(*children[i]);
        if (is_link(children[i])) {
            children[i]->Set_parent(menu.entry);
            children[i]->Set_previous(i == 0 ? nullptr : children[i - 1]);
            children[i]->Set_next(i + 1 == children.size() ? nullptr : children[i + 1]);
        }
    }
}

void Loader::set_escapes() {
    struct Escape {
        const char* name;
        Link_entry::Escape_code code;
    };
    constexpr Escape ESCAPES[] = {{"redraw", Link_entry::ESCAPE_REDRAW},
                                  {"select", Link_entry::ESCAPE_SELECT},
                                  {"escape", Link_entry::ESCAPE_LEAVE}};
    for (const auto& [escapes, link] : m_escapes) {
        m_problems.attempt([this, &value = escapes, target = link, &ESCAPES] {
            value.expect_members({"redraw", "select", "escape"});
            for (const Escape& escape : ESCAPES) {
                if (const auto reference = value.find(escape.name)) {
                    m_problems.attempt(
                        [&] { target->Set_escape_node(escape.code, &m_names.find(*reference)); });
                }
            }
        });
    }
}

// The homescreen and the favourites: menus of their own that hold links alone.
Data_entry* Loader::load_links(const Json_value& list, const char* title,
                               const std::vector<const char*>& members) {
    Node_entry& menu = m_menu.add(std::make_unique<Node_entry>(
        title, title, m_menu.keep_index(Index_t{}), nullptr, Data_entry::VISIBLE_ALL,
        Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr));
    const std::vector<Json_value> items = list.some_items(MOST_ITEMS, "links");
    Data_entry* last = nullptr;
    for (const Json_value& item : items) {
        m_problems.attempt([&] {
            item.expect_members(members);
            Link_entry& link = add_link_to_target(item, 1);
            if (const auto toggle = item.find("toggle")) {
                m_problems.attempt([&] { set_toggle(*toggle, link); });
            }
            append(menu, link, last);
            last = &link;
        });
    }
    return &menu;
}

void Loader::load_home(const Json_value& file) {
    if (const auto links = file.find("homescreen")) {
        m_problems.attempt([&] {
            m_menu.set_homescreen(
                load_links(*links, "Home", {"target", "toggle", "behaviour", "escape"}));
        });
    }
    if (const auto links = file.find("favourites")) {
        m_problems.attempt([&] {
            m_menu.set_favourites(
                load_links(*links, "Favourites", {"target", "behaviour", "escape"}));
        });
    }
}

void Loader::set_toggle(const Json_value& source, Link_entry& link) {
    m_has_toggles = true;
    try {
        const Toggle toggle = translate_toggle(source.text(), [this](const std::string& reference) {
            return m_device.reference(reference);
        });
        if (toggle.parameters.empty() && !toggle.expression.empty()) {
            source.warn("this toggle names no parameter, so it never changes");
        }
        for (const Parameter* const parameter : toggle.parameters) {
            m_menu.watch(*parameter);
        }
        m_menu.make_homescreen_entry(link, toggle.expression);
    } catch (const Toggle_error& error) {
        throw Placed_error(source.place_in_text(error.offset()), error.what());
    }
}

// A display expression that uses a name before the toggles' would take their result away.
void Loader::check_variables() {
    if (!m_has_toggles) {
        return;
    }
    for (const auto& [expression, text] : m_display_expressions) {
        for (const std::string& name : variables_of(text)) {
            if (name < TOGGLE_RESULT) {
                expression.report("\"" + name + "\" sorts before \"" + TOGGLE_RESULT +
                                  "\", in which toggles yield their result");
            }
        }
    }
}

}  // namespace frontpanel
