#include "menu_loader.h"

#include <frontpanel_data/evaluator.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <limits>
#include <optional>
#include <set>
#include <utility>

#include "input_error.h"
#include "json_value.h"
#include "range_format.h"

namespace panel {
namespace {

constexpr int64_t LOWEST = std::numeric_limits<int32_t>::min();
constexpr int64_t HIGHEST = std::numeric_limits<int32_t>::max();
// A range ends one before its exclusive end, so the largest number is in no range.
constexpr int64_t HIGHEST_IN_RANGE = HIGHEST - 1;
constexpr int64_t LAST_PID = int64_t{Data_entry::PID_NONE} - 1;
constexpr int64_t LAST_INDEX = 255;  // a larger one would overlap the next level
constexpr int64_t LAST_BUTTON = 99;
constexpr size_t MOST_LEVELS = Data_model::S_CURRENT_SUPPORT_DIMENTIONS;
constexpr size_t LONGEST_NAME = 24;
constexpr size_t LONGEST_TEXT = 256;
constexpr unsigned int DEEPEST_MENU = 16;

// A device parameter as the file declares it.
struct Parameter {
    RETURN_TYPE type;
    int min;
    int max;
};
// The lowest and the highest value of an entry.
struct Bounds {
    int min;
    int max;
};
using Parameter_key = std::pair<uint32_t, uint32_t>;  // pid, variable index

class Loader {
public:
    explicit Loader(Loaded_menu& loaded) : m_menu(*loaded.menu), m_warnings(loaded.warnings) {}

    void load(const Json_value& file);

private:
    struct Item_type {
        const char* name;
        std::vector<const char*> members;  // beside those of every item
        void (Loader::*build)(const Json_value& item, Data_entry* parent, unsigned int level);
    };
    static const std::vector<Item_type>& item_types();

    void load_options(const Json_value& options);
    void load_parameter(const Json_value& parameter);
    void load_integer(const Json_value& parameter, uint32_t pid, uint32_t varidx);
    void load_text(const Json_value& parameter, uint32_t pid, uint32_t varidx);
    void load_root(const Json_value& menu);
    void load_items(const Json_value& menu, Data_entry& parent, unsigned int level);
    void load_item(const Json_value& item, Data_entry& parent, unsigned int level);
    void build_node(const Json_value& item, Data_entry* parent, unsigned int level);
    void build_range(const Json_value& item, Data_entry* parent, unsigned int level);
    void finish(const Json_value& item, Data_entry& entry, unsigned int level);
    void set_ranges(const Json_value& item, Range_entry& entry, int min, int max);
    std::vector<range_s> ranges_of(const Json_value& list, int min, int max);
    void bind(const Json_value& item, Data_entry& entry, std::optional<Bounds> bounds);
    const Parameter& parameter_of(const Json_value& item, const Index_t& index,
                                  RETURN_TYPE type) const;
    std::vector<std::string> option_names(const Json_value& list);
    void warn_of_options(const Json_value& options);

    Menu& m_menu;
    std::vector<std::string>& m_warnings;
    std::map<std::string, unsigned int> m_options;
    std::set<std::string> m_used_options;
    std::map<Parameter_key, Parameter> m_parameters;
};

Index_t index_of(const Json_value& owner) {
    Index_t index{};
    const std::optional<Json_value> levels = owner.find("index");
    if (!levels) {
        return index;
    }
    const std::vector<Json_value> items = levels->items();
    if (items.size() > MOST_LEVELS) {
        levels->fail("expected at most 2 levels, found " + std::to_string(items.size()));
    }
    for (const Json_value& level : items) {
        index.m_index[index.m_index_num++] = static_cast<uint16_t>(level.integer(0, LAST_INDEX));
    }
    return index;
}

uint32_t varidx_of(const Index_t& index) {
    unsigned int varidx = 0;
    Data_model::Index_convert(&index, varidx);
    return varidx;
}

uint32_t pid_of(const Json_value& owner) {
    return static_cast<uint32_t>(owner.member("pid").integer(0, LAST_PID));
}

int integer_or(const Json_value& owner, const char* name, int64_t min, int64_t max, int otherwise) {
    const std::optional<Json_value> found = owner.find(name);
    return found ? static_cast<int>(found->integer(min, max)) : otherwise;
}

bool boolean_or(const Json_value& owner, const char* name, bool otherwise) {
    const std::optional<Json_value> found = owner.find(name);
    return found ? found->boolean() : otherwise;
}

std::string text_or(const Json_value& owner, const char* name, const std::string& otherwise) {
    const std::optional<Json_value> found = owner.find(name);
    return found ? found->text() : otherwise;
}

// A name ends at its first ':'.
std::string name_of(const Json_value& item) {
    const Json_value name = item.member("name");
    const std::string shown = name.text().substr(0, name.text().find(':'));
    if (shown.empty() || shown.size() > LONGEST_NAME) {
        name.fail("expected a name of 1 to 24 characters before any ':', found " +
                  std::to_string(shown.size()));
    }
    return name.text();
}

int visible_of(const Json_value& item) {
    return boolean_or(item, "visible", true) ? Data_entry::VISIBLE_ALL : Data_entry::VISIBLE_NONE;
}

Data_entry::Data_access access_of(const Json_value& item) {
    static const std::map<std::string, Data_entry::Data_access> ACCESSES{
        {"read-only", Data_entry::READ_ONLY}, {"read-write", Data_entry::READ_WRITE}};
    const std::optional<Json_value> access = item.find("access");
    if (!access) {
        return Data_entry::READ_WRITE;
    }
    const auto found = ACCESSES.find(access->text());
    if (found == ACCESSES.end()) {
        access->fail("expected \"read-only\" or \"read-write\", found \"" + access->text() + "\"");
    }
    return found->second;
}

// The entry's own display text for a number, checked, with what makes sense where half of it is missing.
std::string format_of(const Json_value& item) {
    const std::optional<Json_value> format = item.find("format");
    if (!format) {
        return item.find("value_format") ? "%d" : "";
    }
    if (const auto error = range_format_error(format->text())) {
        format->fail(*error);
    }
    return format->text();
}

// Whether the library can convert this raw value with the expression.
bool converts(const std::string& expression, int raw_value) {
    std::string source = "v=" + std::to_string(raw_value) + ";\nv=" + expression + ";\n";
    return evaluateExpression(source.data()) == 0;
}

// An expression may have no value for one number, as in a division, but must have it for some.
std::string value_format_of(const Json_value& item, int min, int max) {
    const std::optional<Json_value> expression = item.find("value_format");
    if (!expression) {
        return item.find("format") ? "v" : "";
    }
    std::string text = expression->text();
    if (!text.empty() && !converts(text, min) && !converts(text, max)) {
        expression->fail("not an expression in v");
    }
    return text;
}

const std::vector<Loader::Item_type>& Loader::item_types() {
    static const std::vector<Item_type> TYPES{
        {"node", {"items"}, &Loader::build_node},
        {"range",
         {"pid", "min", "max", "default", "format", "value_format", "access", "ranges"},
         &Loader::build_range},
    };
    return TYPES;
}

void Loader::load(const Json_value& file) {
    file.expect_members({"options", "device", "menu"});
    const std::optional<Json_value> options = file.find("options");
    if (options) {
        load_options(*options);
    }
    const Json_value device = file.member("device");
    device.expect_members({"parameters"});
    for (const Json_value& parameter : device.member("parameters").items()) {
        load_parameter(parameter);
    }
    load_root(file.member("menu"));
    if (options) {
        warn_of_options(*options);
    }
}

void Loader::load_options(const Json_value& options) {
    for (const std::string& name : options.names()) {
        const int64_t value = options.member(name.c_str()).integer(0, HIGHEST);
        if (name.empty()) {
            options.fail("expected option names of at least one character");
        }
        m_options[name] = static_cast<unsigned int>(value);
    }
}

void Loader::load_parameter(const Json_value& parameter) {
    const uint32_t pid = pid_of(parameter);
    const uint32_t varidx = varidx_of(index_of(parameter));
    if (m_parameters.count({pid, varidx}) != 0) {
        parameter.fail("parameter " + std::to_string(pid) + " with this index is declared twice");
    }
    const Json_value type = parameter.member("type");
    if (type.text() == "integer") {
        load_integer(parameter, pid, varidx);
    } else if (type.text() == "text") {
        load_text(parameter, pid, varidx);
    } else {
        type.fail("expected \"integer\" or \"text\", found \"" + type.text() + "\"");
    }
}

void Loader::load_integer(const Json_value& parameter, uint32_t pid, uint32_t varidx) {
    parameter.expect_members({"pid", "index", "type", "description", "min", "max", "value"});
    const int64_t min = parameter.member("min").integer(LOWEST, HIGHEST);
    const int64_t max = parameter.member("max").integer(min, HIGHEST);
    const int64_t value = parameter.member("value").integer(min, max);
    m_parameters[{pid, varidx}] = {INTEGER, static_cast<int>(min), static_cast<int>(max)};
    m_menu.device().add_integer(pid, varidx, static_cast<int>(min), static_cast<int>(max),
                                static_cast<int>(value));
}

void Loader::load_text(const Json_value& parameter, uint32_t pid, uint32_t varidx) {
    parameter.expect_members({"pid", "index", "type", "description", "length", "value"});
    const auto length = static_cast<size_t>(parameter.member("length").integer(1, LONGEST_TEXT));
    const std::string value = parameter.member("value").text_of_length(0, length);
    m_parameters[{pid, varidx}] = {STRING, 0, 0};
    m_menu.device().add_text(pid, varidx, length, value);
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

void Loader::build_range(const Json_value& item, Data_entry* parent, unsigned int level) {
    const std::string name = name_of(item);
    const std::string description = text_or(item, "description", name);
    const Index_t index = index_of(item);
    const Parameter& parameter = parameter_of(item, index, INTEGER);
    const int min = integer_or(item, "min", LOWEST, HIGHEST_IN_RANGE, parameter.min);
    const int max =
        integer_or(item, "max", min, HIGHEST_IN_RANGE,
                   static_cast<int>(std::min<int64_t>(parameter.max, HIGHEST_IN_RANGE)));
    if (min > max) {
        item.fail("no number lies between \"min\" and \"max\"");
    }
    const int start = integer_or(item, "default", min, max, std::clamp(0, min, max));
    std::string format = format_of(item);
    std::string value_format = value_format_of(item, min, max);
    Range_entry& range = m_menu.add(std::make_unique<Range_entry>(
        name.c_str(), description.c_str(), pid_of(item), m_menu.keep_index(index), min, max, start,
        format.data(), value_format.data(), parent, access_of(item), visible_of(item), true,
        Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr));
    finish(item, range, level);
    set_ranges(item, range, min, max);
    bind(item, range, Bounds{min, max});
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

// Without allowed ranges of its own an entry allows what lies between its bounds. It must always have some:
// the first suggestion of a binding would leave it none.
void Loader::set_ranges(const Json_value& item, Range_entry& entry, int min, int max) {
    const std::optional<Json_value> list = item.find("ranges");
    std::vector<range_s> ranges{{min, max + 1, {}}};
    if (list) {
        ranges = ranges_of(*list, min, max);
    }
    entry.setValidRangeAndValues(ranges);
    if (entry.Get_min() > entry.Get_max()) {
        list->fail("expected at least one range that is allowed with these product options");
    }
}

std::vector<range_s> Loader::ranges_of(const Json_value& list, int min, int max) {
    std::vector<range_s> ranges;
    for (const Json_value& item : list.items()) {
        item.expect_members({"min", "max", "options"});
        const auto first = static_cast<int>(item.member("min").integer(min, max));
        const auto last = static_cast<int>(item.member("max").integer(first, max));
        const std::optional<Json_value> options = item.find("options");
        ranges.push_back(
            {first, last + 1, options ? option_names(*options) : std::vector<std::string>()});
    }
    if (ranges.empty()) {
        list.fail("expected at least one range");
    }
    return ranges;
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
    auto binding = std::make_unique<Expression_binding>(m_menu.bindings());
    binding->addBindingList(compiled.list);
    if (bounds) {
        binding->set_fallback_range(bounds->min, bounds->max);
    }
    entry.Set_binding_object(binding.release());
    for (const var_index_s& key : entry.Get_var_index_map_keys(0)) {
        if (m_parameters.count({key.var, varidx_of(key.index)}) == 0) {
            source->fail("the device has no parameter " + std::to_string(key.var) +
                         " with this index");
        }
    }
}

const Parameter& Loader::parameter_of(const Json_value& item, const Index_t& index,
                                      RETURN_TYPE type) const {
    const uint32_t pid = pid_of(item);
    const auto found = m_parameters.find({pid, varidx_of(index)});
    if (found == m_parameters.end()) {
        item.member("pid").fail("the device has no parameter " + std::to_string(pid) +
                                " with this index");
    }
    if (found->second.type != type) {
        item.member("pid").fail("parameter " + std::to_string(pid) + " is of another type");
    }
    return found->second;
}

std::vector<std::string> Loader::option_names(const Json_value& list) {
    std::vector<std::string> names;
    for (const Json_value& item : list.items()) {
        names.push_back(item.text_of_length(1, LONGEST_TEXT));
        m_used_options.insert(names.back());
    }
    return names;
}

// "slot3" of the pattern "slotn".
bool is_instance_of(const std::string& name, const std::string& pattern) {
    const std::string prefix = pattern.substr(0, pattern.size() - 1);
    return name.size() > prefix.size() && name.compare(0, prefix.size(), prefix) == 0 &&
           std::isdigit(static_cast<unsigned char>(name[prefix.size()])) != 0;
}

void Loader::warn_of_options(const Json_value& options) {
    for (const auto& [name, value] : m_options) {
        const bool is_pattern = name.find('n') != std::string::npos;
        const bool has_instance = std::any_of(
            m_used_options.begin(), m_used_options.end(),
            [&pattern = name](const std::string& used) { return is_instance_of(used, pattern); });
        if (is_pattern && !has_instance) {
            m_warnings.push_back(options.member(name.c_str())
                                     .message("the letter 'n' makes this option a pattern in which "
                                              "'n' stands for a number"));
        }
    }
}

}  // namespace

Loaded_menu load_menu(const std::string& file) {
    return load_menu_text(file, read_input_file(file));
}

Loaded_menu load_menu_text(const std::string& file, const std::string& text) {
    Loaded_menu loaded{std::make_unique<Menu>(), {}};
    const rapidjson::Document document = parse_json(file, text);
    Loader(loaded).load(Json_value(file, document));
    return loaded;
}

}  // namespace panel
