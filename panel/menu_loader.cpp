#include "menu_loader.h"

#include <algorithm>
#include <cctype>
#include <limits>

#include "editor_items.h"
#include "input_error.h"
#include "list_view.h"
#include "loader.h"
#include "menu_document.h"

namespace panel {
namespace {

constexpr int64_t HIGHEST = std::numeric_limits<int32_t>::max();
constexpr int64_t LAST_BUTTON = 99;
constexpr unsigned int DEEPEST_MENU = 16;
constexpr size_t MOST_ITEMS = 1000;  // of one menu: the library walks its list for each of them

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
         {"pid", "min", "max", "default", "format", "value_format", "access", "ranges"},
         &Loader::build_range},
        {"text", {"pid", "access"}, &Loader::build_text},
        {"address", {"pid", "access"}, &Loader::build_address},
        {"time", {"pid", "access"}, &Loader::build_time},
        {"enum", {"pid", "access", "choices", "live"}, &Loader::build_enum},
        {"slot", {"pid", "access"}, &Loader::build_slot},
        {"warning", {}, &Loader::build_warning},
    };
    return TYPES;
}

void Loader::load(const Json_value& file) {
    file.expect_members({"options", "encoder", "device", "menu"});
    if (const auto encoder = file.find("encoder")) {
        m_problems.attempt([&] { m_menu.encoder_settings() = encoder_settings_of(*encoder); });
    }
    if (const auto options = file.find("options")) {
        load_options(*options);
    }
    m_problems.attempt([&] {
        const Json_value device = file.member("device");
        if (m_loading.cards == Cards::ON && device.find("cards")) {
            m_menu.start_cards();
        }
        m_device.load(device);
    });
    for (const Json_value& options : m_device.product_options()) {
        load_options(options);
    }
    m_problems.attempt([&] { load_root(file.member("menu")); });
    warn_of_options();
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
    m_menu.share_shortcuts();
}

void Loader::load_items(const Json_value& menu, Data_entry& parent, unsigned int level) {
    const Json_value list = menu.member("items");
    const std::vector<Json_value> items = list.items();
    if (items.empty()) {
        list.fail("expected at least one item");
    }
    if (items.size() > MOST_ITEMS) {
        list.fail("expected at most " + std::to_string(MOST_ITEMS) + " items, found " +
                  std::to_string(items.size()));
    }
    if (level > DEEPEST_MENU) {
        list.fail("menus are nested more than " + std::to_string(DEEPEST_MENU) + " deep");
    }
    for (const Json_value& item : items) {
        m_problems.attempt([&] { load_item(item, parent, level); });
    }
}

void Loader::load_item(const Json_value& item, Data_entry& parent, unsigned int level) {
    const auto& types = item_types();
    std::vector<const char*> names(types.size());
    std::transform(types.begin(), types.end(), names.begin(),
                   [](const Item_type& type) { return type.name; });
    const Item_type& type = types[item.member("type").choice(names)];
    std::vector<const char*> members{"type",     "name",    "description", "index", "visible",
                                     "shortcut", "options", "binding",     "editor"};
    members.insert(members.end(), type.members.begin(), type.members.end());
    item.expect_members(members);
    (this->*type.build)(item, &parent, level);
}

// A menu with a wrong name is told so, and goes on as another.
std::string Loader::checked_name(const Json_value& item) {
    return m_problems.value_or([&item] { return name_of(item); }, std::string("?"));
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
            m_menu.keep_index(index),
            m_problems.value_or([&item] { return access_of(item); }, Data_entry::READ_WRITE),
            m_problems.value_or([&item] { return visible_of(item); }, Data_entry::VISIBLE_ALL),
            std::nullopt};
}

// Of an entry that shows a parameter of that type.
Leaf Loader::leaf_of(const Json_value& item, RETURN_TYPE type) {
    Leaf leaf = entry_of(item);
    leaf.pid = 0;
    m_problems.attempt([&] {
        leaf.pid = pid_of(item);
        leaf.parameter = parameter_of(item.member("pid"), leaf.pid, *leaf.index, type);
    });
    return leaf;
}

// What every kind of entry gets once it stands in the tree.
void Loader::finish(const Json_value& item, Data_entry& entry, unsigned int level) {
    entry.setNodeLevel(level);
    entry.setProductOptions(m_options);
    if (const auto options = item.find("options")) {
        m_problems.attempt([&] { entry.setOrOptions(option_names(*options)); });
    }
    if (const auto shortcut = item.find("shortcut")) {
        m_problems.attempt([&] { set_shortcut(*shortcut, entry); });
    }
    if (const auto editor = item.find("editor")) {
        m_problems.attempt(
            [&] { m_menu.editor_settings()[&entry] = editor_settings_of(*editor, entry); });
    }
    warn_of_cut_name(item, entry);
}

void Loader::set_shortcut(const Json_value& button, Data_entry& entry) {
    const int number = static_cast<int>(button.integer(1, LAST_BUTTON));
    entry.Set_shortcut(number);
    if (!m_menu.add_shortcut(number, entry)) {
        button.fail("shortcut button " + std::to_string(number) + " is taken");
    }
}

void Loader::warn_of_cut_name(const Json_value& item, const Data_entry& entry) const {
    const int columns = name_columns(entry, m_loading.columns);
    const std::string name = entry.Get_name();
    if (static_cast<int>(name.size()) > columns) {
        item.member("name").warn("a display of " + std::to_string(m_loading.columns) +
                                 " columns shows this name as \"" +
                                 name.substr(0, static_cast<size_t>(columns)) + "\"");
    }
}

// `place` is told when the device has no such parameter.
const Parameter& Loader::parameter_of(const Json_value& place, uint32_t pid, const Index_t& index,
                                      RETURN_TYPE type) const {
    const Parameter* const found = m_device.parameter(pid, varidx_of(index));
    if (found == nullptr) {
        place.fail("the device has no parameter " + std::to_string(pid) + " with this index");
    }
    if (found->type != type) {
        place.fail("parameter " + std::to_string(pid) + " is of another type");
    }
    return *found;
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
        if (is_pattern && !has_instance) {
            m_problems.warn(
                m_option_places.at(name),
                "the letter 'n' makes this option a pattern in which 'n' stands for a number");
        }
    }
}

Loaded_menu load_menu(const std::string& file, Loading loading) {
    return load_menu_text(file, read_input_file(file), loading);
}

Loaded_menu load_menu_text(const std::string& file, const std::string& text, Loading loading) {
    Loaded_menu loaded{std::make_unique<Menu>(), {}};
    Problems problems;
    std::optional<Menu_document> document;
    problems.attempt([&] {
        document.emplace(file, text);
        Loader(*loaded.menu, problems, loading).load(Json_value(document->root(), problems));
    });
    if (problems.error_count() > 0) {
        throw Input_errors(problems.errors());
    }
    loaded.warnings = problems.warnings();
    return loaded;
}

}  // namespace panel
