#include "menu_loader.h"

#include <algorithm>
#include <cctype>
#include <limits>

#include "input_error.h"
#include "loader.h"

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

// Whether every level is one that a parameter of a menu can have. `100.256` would be read as `100.0.1` is, and
// never be evaluated again when that one is written.
bool is_index_of_menu(const Index_t& index) {
    return std::all_of(index.m_index, index.m_index + index.m_index_num,
                       [](uint16_t level) { return level <= LAST_INDEX; });
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
    file.expect_members({"options", "device", "menu"});
    if (const auto options = file.find("options")) {
        load_options(*options);
    }
    const Json_value device = file.member("device");
    if (m_cards == Cards::ON && device.find("cards")) {
        m_menu.start_cards();
    }
    m_device.load(device);
    for (const Json_value& options : m_device.product_options()) {
        load_options(options);
    }
    load_root(file.member("menu"));
    warn_of_options();
}

// Of an option that several products bring, the highest value counts.
void Loader::load_options(const Json_value& options) {
    const auto is_printable = [](char byte) { return byte >= ' ' && byte <= '~'; };
    for (const std::string& name : options.names()) {
        if (!std::all_of(name.begin(), name.end(), is_printable)) {
            options.fail("expected option names of printable ASCII characters");
        }
        const Json_value place = options.member(name.c_str());
        const auto value = static_cast<unsigned int>(place.integer(0, HIGHEST));
        if (name.empty()) {
            options.fail("expected option names of at least one character");
        }
        m_options[name] = std::max(m_options[name], value);
        m_option_places.emplace(name, place);
    }
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
        load_item(item, parent, level);
    }
}

void Loader::load_item(const Json_value& item, Data_entry& parent, unsigned int level) {
    const Json_value name = item.member("type");
    const auto& types = item_types();
    const auto type = std::find_if(types.begin(), types.end(), [&name](const Item_type& candidate) {
        return name.text() == candidate.name;
    });
    if (type == types.end()) {
        std::string known;
        for (const Item_type& candidate : types) {
            known += (known.empty() ? "\"" : ", \"") + std::string(candidate.name) + "\"";
        }
        name.fail("expected one of " + known + ", found \"" + name.text() + "\"");
    }
    std::vector<const char*> members{"type",    "name",     "description", "index",
                                     "visible", "shortcut", "options",     "binding"};
    members.insert(members.end(), type->members.begin(), type->members.end());
    item.expect_members(members);
    (this->*type->build)(item, &parent, level);
}

void Loader::build_node(const Json_value& item, Data_entry* parent, unsigned int level) {
    const std::string name = name_of(item);
    const std::string description = text_or(item, "description", name);
    Node_entry& node = m_menu.add(std::make_unique<Node_entry>(
        name.c_str(), description.c_str(), m_menu.keep_index(index_of(item)), parent,
        visible_of(item), Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr));
    bind(item, node, std::nullopt);
    finish(item, node, level);
    load_items(item, node, level + 1);
}

Leaf Loader::leaf_of(const Json_value& item, uint32_t pid) {
    const std::string name = name_of(item);
    return {name,
            text_or(item, "description", name),
            pid,
            m_menu.keep_index(index_of(item)),
            access_of(item),
            visible_of(item)};
}

// What every kind of entry gets once it stands in the tree.
void Loader::finish(const Json_value& item, Data_entry& entry, unsigned int level) {
    entry.setNodeLevel(level);
    entry.setProductOptions(m_options);
    if (const auto options = item.find("options")) {
        entry.setOrOptions(option_names(*options));
    }
    if (const auto shortcut = item.find("shortcut")) {
        const int button = static_cast<int>(shortcut->integer(1, LAST_BUTTON));
        entry.Set_shortcut(button);
        if (!m_menu.add_shortcut(button, entry)) {
            shortcut->fail("shortcut button " + std::to_string(button) + " is taken");
        }
    }
}

// The engine gets all it needs before the entry takes it over.
void Loader::bind(const Json_value& item, Data_entry& entry, std::optional<Bounds> bounds) {
    const std::optional<Json_value> source = item.find("binding");
    if (!source) {
        return;
    }
    const Compile_result compiled = m_menu.bindings()->compile(source->text());
    if (!compiled.ok()) {
        source->fail(compiled.error->text());
    }
    for (const Binding_interval& interval : compiled.intervals) {
        if (bounds && (interval.max < bounds->min || interval.min > bounds->max)) {
            source->fail("range " + std::to_string(interval.min) + ".." +
                         std::to_string(interval.max) + " holds no value from " +
                         std::to_string(bounds->min) + " to " + std::to_string(bounds->max));
        }
    }
    auto binding = std::make_unique<Expression_binding>(m_menu.bindings());
    binding->addBindingList(compiled.list);
    if (bounds) {
        binding->set_fallback_range(bounds->min, bounds->max);
    }
    entry.Set_binding_object(binding.release());
    for (const var_index_s& key : entry.Get_var_index_map_keys(0)) {
        const Parameter* const parameter = m_device.parameter(key.var, varidx_of(key.index));
        if (parameter == nullptr || !is_index_of_menu(key.index)) {
            source->fail("the device has no parameter " + std::to_string(key.var) +
                         " with this index");
        }
        if (parameter->type != key.rt) {
            source->fail("parameter " + std::to_string(key.var) + " is of another type");
        }
    }
}

const Parameter& Loader::parameter_of(const Json_value& item, const Index_t& index,
                                      RETURN_TYPE type) const {
    return parameter_of(item.member("pid"), pid_of(item), index, type);
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
        names.push_back(item.text_of_length(1, LONGEST_TEXT));
        m_used_options.insert(names.back());
    }
    return names;
}

void Loader::warn_of_options() {
    for (const auto& [name, value] : m_options) {
        const bool is_pattern = name.find('n') != std::string::npos;
        const bool has_instance = std::any_of(
            m_used_options.begin(), m_used_options.end(),
            [&pattern = name](const std::string& used) { return is_instance_of(used, pattern); });
        if (is_pattern && !has_instance) {
            m_warnings.push_back(m_option_places.at(name).message(
                "the letter 'n' makes this option a pattern in which "
                "'n' stands for a number"));
        }
    }
}

Loaded_menu load_menu(const std::string& file, Cards cards) {
    return load_menu_text(file, read_input_file(file), cards);
}

Loaded_menu load_menu_text(const std::string& file, const std::string& text, Cards cards) {
    Loaded_menu loaded{std::make_unique<Menu>(), {}};
    const rapidjson::Document document = parse_json(file, text);
    Loader(loaded, cards).load(Json_value(file, document));
    return loaded;
}

}  // namespace panel
