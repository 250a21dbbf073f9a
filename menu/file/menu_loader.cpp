#include <frontpanel_menu/menu_loader.h>

#include <algorithm>
#include <cctype>
#include <limits>

#include <frontpanel_base/input_error.h>
#include <frontpanel_menu/list_line.h>
#include "file/editor_items.h"
#include "file/loader.h"

namespace frontpanel {
namespace {

constexpr int64_t HIGHEST = std::numeric_limits<int32_t>::max();
constexpr int64_t LAST_BUTTON = 99;
constexpr unsigned int DEEPEST_MENU = 16;
constexpr size_t LONGEST_ID = 63;
// A link owns what it houses by this name alone.
constexpr const char* BRIDGE_NAME = "Bridge Entry";

// "slot3" of the pattern "slotn".
bool is_instance_of(const std::string& name, const std::string& pattern) {
    const std::string prefix = pattern.substr(0, pattern.size() - 1);
    return name.size() > prefix.size() && name.compare(0, prefix.size(), prefix) == 0 &&
           std::isdigit(static_cast<unsigned char>(name[prefix.size()])) != 0;
}

}  // namespace

const std::vector<Loader::Item_type>& Loader::item_types() {
    static const std::vector<Item_type> TYPES{
        {"node", {"items"}, &Loader::build_node},
        {"range",
         {"parameter", "pid", "min", "max", "default", "format", "value_format", "access",
          "ranges"},
         &Loader::build_range,
         false,
         true},
        {"text", {"parameter", "pid", "access"}, &Loader::build_text, false, true},
        {"address", {"parameter", "pid", "access"}, &Loader::build_address, false, true},
        {"time", {"parameter", "pid", "access"}, &Loader::build_time, false, true},
        {"enum", {"parameter", "pid", "access", "choices", "live"}, &Loader::build_enum},
        {"slot", {"parameter", "pid", "access"}, &Loader::build_slot},
        {"warning", {}, &Loader::build_warning},
        {"link", {"target", "behaviour", "escape", "shortcut"}, &Loader::build_link, true},
        {"bridge", {"item", "behaviour", "escape", "shortcut"}, &Loader::build_bridge, true},
        {"mount", {"folder", "behaviour", "escape"}, &Loader::build_mount},
    };
    return TYPES;
}

void Loader::load(const Json_value& file) {
    file.expect_members({"options", "encoder", "device", "menu", "homescreen", "favourites"});
    if (const auto encoder = file.find("encoder")) {
        m_problems.attempt([&] { m_menu.encoder_settings() = encoder_settings_of(*encoder); });
    }
    if (const auto options = file.find("options")) {
        load_options(*options);
    }
    m_problems.attempt([&] { m_device.load(file.member("device")); });
    if (m_loading.simulator) {
        for (const Json_value& options : m_loading.simulator->product_options) {
            load_options(options);
        }
    }
    for (const auto& [name, value] : m_loading.product_options) {
        m_options[name] = std::max(m_options[name], value);
    }
    m_menu.set_card_service(m_loading.card_service);
    m_menu.bindings()->set_product_options(m_options);
    m_problems.attempt([&] { load_root(file.member("menu")); });
    place_links();
    load_home(file);
    set_escapes();
    check_variables();
    check_cycles();
    warn_of_unreachable_items();
    if (m_menu.entry_count() > 0) {
        m_menu.share_shortcuts();
    }
    if (m_problems.error_count() == 0) {  // else the item that uses the option may be the wrong one
        warn_of_options();
    }
}

void Loader::load_options(const Json_value& options) {
    m_problems.attempt([&] {
        for (const Json_value::Member& option : options.members()) {
            m_problems.attempt([&] { load_option(option); });
        }
    });
}

// Of an option that several products bring, the highest value counts.
void Loader::load_option(const Json_value::Member& option) {
    const std::string& name = option.name;
    const auto is_printable = [](char byte) { return byte >= ' ' && byte <= '~'; };
    if (name.empty() || !std::all_of(name.begin(), name.end(), is_printable)) {
        throw Placed_error(option.place, "expected an option name of printable ASCII characters");
    }
    const auto value = static_cast<unsigned int>(option.value.integer(0, HIGHEST));
    m_options[name] = std::max(m_options[name], value);
    m_option_places.emplace(name, option.place);
}

void Loader::load_root(const Json_value& menu) {
    menu.expect_members({"name", "description", "items"});
    build_node(menu, nullptr, 0);
}

void Loader::load_items(const Json_value& menu, Data_entry& parent, unsigned int level) {
    const Json_value list = menu.member("items");
    const std::vector<Json_value> items = list.some_items(MOST_ITEMS, "items");
    if (level > DEEPEST_MENU) {
        list.fail("menus are nested more than " + std::to_string(DEEPEST_MENU) + " deep");
    }
    if (level > 1) {
        m_names.open(shown_name(parent.Get_name()));
    }
    m_menus.push_back({&parent, {}});
    m_open_menus.push_back(m_menus.size() - 1);
    for (const Json_value& item : items) {
        if (!m_problems.attempt([&] { load_item(item, parent, level); })) {
            add_wrong_item(item);
        }
    }
    m_open_menus.pop_back();
    if (level > 1) {
        m_names.close();
    }
}

const Loader::Item_type& Loader::type_of(const Json_value& item) {
    const auto& types = item_types();
    std::vector<const char*> names(types.size());
    std::transform(types.begin(), types.end(), names.begin(),
                   [](const Item_type& type) { return type.name; });
    return types[item.member("type").choice(names)];
}

std::vector<const char*> Loader::members_of(const Item_type& type) {
    std::vector<const char*> members{"type", "id"};
    if (!type.is_link) {
        members.insert(members.end(), {"name", "description", "index", "visible", "shortcut",
                                       "options", "binding", "editor"});
    }
    members.insert(members.end(), type.members.begin(), type.members.end());
    return members;
}

void Loader::load_item(const Json_value& item, Data_entry& parent, unsigned int level) {
    const Item_type& type = type_of(item);
    item.expect_members(members_of(type));
    (this->*type.build)(item, &parent, level);
}

// A menu with a wrong name is told so, and goes on as another.
std::string Loader::checked_name(const Json_value& item) {
    return m_is_bridging ? BRIDGE_NAME
                         : m_problems.value_or([&item] { return name_of(item); }, std::string("?"));
}

void Loader::build_node(const Json_value& item, Data_entry* parent, unsigned int level) {
    const Leaf leaf = entry_of(item);
    Node_entry& node = m_menu.add(std::make_unique<Node_entry>(
        leaf.name.c_str(), leaf.description.c_str(), leaf.index, parent, leaf.visible,
        Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr));
    bind(item, node, std::nullopt);
    finish(item, node, level);
    m_problems.attempt([&] { load_items(item, node, level + 1); });
}

Leaf Loader::entry_of(const Json_value& item) {
    const std::string name = checked_name(item);
    const Index_t index = m_problems.value_or([&item] { return index_of(item); }, Index_t{});
    return {name,
            m_problems.value_or([&] { return text_or(item, "description", name); }, name),
            Data_entry::PID_NONE,
            keep_index(index),
            m_problems.value_or([&item] { return access_of(item); }, Data_entry::READ_WRITE),
            m_problems.value_or([&item] { return visible_of(item); }, Data_entry::VISIBLE_ALL),
            std::nullopt};
}

// Of an entry that shows a parameter of that type.
Leaf Loader::leaf_of(const Json_value& item, RETURN_TYPE type) {
    Leaf leaf = entry_of(item);
    leaf.pid = 0;
    m_problems.attempt([&] {
        leaf.parameter = parameter_of(item, *leaf.index, type);
        leaf.pid = leaf.parameter->pid;
        if (item.find("parameter")) {
            leaf.index = keep_index(leaf.parameter->index);
        }
    });
    return leaf;
}

// What a bridge owns is no part of the menu.
const Index_t* Loader::keep_index(const Index_t& index) {
    if (!m_is_bridging) {
        return m_menu.keep_index(index);
    }
    m_bridge_indices.push_back(std::make_unique<Index_t>(index));
    return m_bridge_indices.back().get();
}

// What every kind of entry gets once it stands in the tree.
void Loader::finish(const Json_value& item, Data_entry& entry, unsigned int level) {
    set_properties(item, entry, level);
    if (m_is_bridging) {
        return;
    }
    enlist(item, entry.Get_name(), entry);
    if (const auto shortcut = item.find("shortcut")) {
        m_problems.attempt([&] { set_shortcut(*shortcut, entry); });
    }
    if (const auto name = item.find("name")) {
        warn_of_cut_name(*name, entry);
    }
}

void Loader::set_properties(const Json_value& item, Data_entry& entry, unsigned int level) {
    entry.setNodeLevel(level);
    entry.setProductOptions(m_options);
    if (const auto options = item.find("options")) {
        m_problems.attempt([&] { entry.setOrOptions(option_names(*options)); });
    }
    if (const auto editor = item.find("editor")) {
        m_problems.attempt(
            [&] { m_menu.editor_settings()[&entry] = editor_settings_of(*editor, entry); });
    }
}

// Makes an item one of its menu's, and known by its names.
void Loader::enlist(const Json_value& item, const std::string& name, Data_entry& entry) {
    if (m_open_menus.empty()) {
        return;  // the top menu
    }
    m_menus[m_open_menus.back()].children.push_back(&entry);
    if (entry.Get_entry_type() != Data_entry::LINK_ENTRY) {
        m_reaches.insert({&entry, Reach{item, is_never_shown(item, entry)}});
    }
    m_names.add(name, &entry);
    if (const auto id = item.find("id")) {
        m_problems.attempt([&] { add_id(*id, &entry); });
    }
}

void Loader::add_id(const Json_value& id, Data_entry* entry) {
    const std::string text = id.text_of_length(1, LONGEST_ID);
    if (!m_names.add_id(text, entry)) {
        id.fail("another item has the id \"" + text + "\"");
    }
    m_menu.add_id(text, entry);
}

// What leads to an item that is wrong is not wrong for that.
void Loader::add_wrong_item(const Json_value& item) {
    if (!item.is_object()) {
        return;
    }
    const auto name = item.find("name");
    if (name && name->is_text()) {
        m_names.add(shown_name(name->text()), nullptr);
    }
    const auto id = item.find("id");
    if (id && id->is_text()) {
        m_names.add_id(id->text(), nullptr);
    }
}

void Loader::set_shortcut(const Json_value& button, Data_entry& entry) {
    const int number = static_cast<int>(button.integer(1, LAST_BUTTON));
    entry.Set_shortcut(number);
    if (!m_menu.add_shortcut(number, entry)) {
        button.fail("shortcut button " + std::to_string(number) + " is taken");
    }
}

void Loader::warn_of_cut_name(const Json_value& place, const Data_entry& entry) const {
    const int columns = name_columns(entry, m_loading.columns);
    const std::string name = entry.Get_name();
    if (static_cast<int>(name.size()) > columns) {
        place.warn("a display of " + std::to_string(m_loading.columns) +
                   " columns shows this name as \"" + name.substr(0, static_cast<size_t>(columns)) +
                   "\"");
    }
}

const Parameter& Loader::parameter_of(const Json_value& item, const Index_t& index,
                                      RETURN_TYPE type) const {
    const auto name = item.find("parameter");
    if (!name) {
        return parameter_of(item.member("pid"), pid_of(item), index, type);
    }
    for (const char* const other : {"pid", "index"}) {
        if (const auto superfluous = item.find(other)) {
            superfluous->report("\"parameter\" names the parameter already");
        }
    }
    const std::string text = name->text();
    return expect_type(*name, m_device.parameter(text), "\"" + text + "\"", type);
}

const Parameter& Loader::parameter_of(const Json_value& place, uint32_t pid, const Index_t& index,
                                      RETURN_TYPE type) const {
    const Parameter* const found = m_device.parameter(pid, index);
    if (found == nullptr) {
        place.fail("the device has no parameter " + std::to_string(pid) + " with this index");
    }
    return expect_type(place, found, std::to_string(pid), type);
}

// `place` is told when the device has no such parameter.
const Parameter& Loader::expect_type(const Json_value& place, const Parameter* parameter,
                                     const std::string& what, RETURN_TYPE type) {
    if (parameter == nullptr) {
        place.fail("the device has no parameter " + what);
    }
    if (parameter->type != type) {
        place.fail("parameter " + what + " is of another type");
    }
    return *parameter;
}

std::vector<std::string> Loader::option_names(const Json_value& list) {
    std::vector<std::string> names;
    for (const Json_value& item : list.items()) {
        m_problems.attempt([&] { names.push_back(item.text_of_length(1, LONGEST_TEXT)); });
    }
    m_used_options.insert(names.begin(), names.end());
    return names;
}

void Loader::warn_of_options() {
    for (const auto& [name, value] : m_options) {
        const bool is_pattern = name.find('n') != std::string::npos;
        const bool has_instance = std::any_of(
            m_used_options.begin(), m_used_options.end(),
            [&pattern = name](const std::string& used) { return is_instance_of(used, pattern); });
        const auto place = m_option_places.find(name);
        if (is_pattern && !has_instance && place != m_option_places.end()) {
            m_problems.warn(
                place->second,
                "the letter 'n' makes this option a pattern in which 'n' stands for a number");
        }
    }
}

Loaded_menu load_menu(const std::string& file, Data_interface& device, const Loading& loading) {
    Menu_document document(file);
    return load_menu(document, device, loading);
}

Loaded_menu load_menu_text(const std::string& file, const std::string& text, Data_interface& device,
                           const Loading& loading) {
    Menu_document document(file, text);
    return load_menu(document, device, loading);
}

Loaded_menu load_menu(Menu_document& document, Data_interface& device, const Loading& loading) {
    Loaded_menu loaded{std::make_unique<Menu>(device), {}};
    Problems& problems = document.problems();
    problems.attempt([&] { Loader(*loaded.menu, problems, loading).load(document.root()); });
    loaded.warnings = problems.warnings();
    if (problems.error_count() > 0) {
        std::vector<std::string> lines = problems.errors();
        lines.insert(lines.end(), loaded.warnings.begin(), loaded.warnings.end());
        throw Input_errors(lines);
    }
    return loaded;
}

}  // namespace frontpanel
