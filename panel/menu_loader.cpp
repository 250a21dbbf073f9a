#include "menu_loader.h"

#include <frontpanel_data/evaluator.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <limits>
#include <optional>
#include <set>
#include <utility>

#include "device_description.h"
#include "entry_access.h"
#include "input_error.h"
#include "item_members.h"
#include "json_value.h"
#include "range_format.h"

namespace panel {
namespace {

constexpr int64_t LOWEST = std::numeric_limits<int32_t>::min();
constexpr int64_t HIGHEST = std::numeric_limits<int32_t>::max();
// A range ends one before its exclusive end, so the largest number is in no range.
constexpr int64_t HIGHEST_IN_RANGE = HIGHEST - 1;
constexpr int64_t LAST_BUTTON = 99;
constexpr unsigned int DEEPEST_MENU = 16;
constexpr size_t LONGEST_ADDRESS = 15;
constexpr int MOST_SLOTS = Memory_device::SLOT_COUNT - 1;
constexpr size_t SLOT_LINE_ROOM =
    31;  // what a slot list writes to each of its texts, terminator included
constexpr const char* NO_OPTION_YET = "-";
constexpr const char* ALWAYS = "*";  // a product option that holds on every product
constexpr size_t MOST_ITEMS = 1000;  // of one menu: the library walks its list for each of them

// The lowest and the highest value of an entry.
struct Bounds {
    int min;
    int max;
};
// What every entry of a parameter is built from.
struct Leaf {
    std::string name;
    std::string description;
    uint32_t pid;
    const Index_t* index;
    Data_entry::Data_access access;
    int visible;
};
// An option of an enumeration.
struct Choice {
    std::string text;
    std::vector<std::string> options;  // the product options that it needs one of; none for no need
};

class Loader {
public:
    Loader(Loaded_menu& loaded, Cards cards)
        : m_menu(*loaded.menu), m_warnings(loaded.warnings), m_cards(cards), m_device(m_menu) {}

    void load(const Json_value& file);

private:
    struct Item_type {
        const char* name;
        std::vector<const char*> members;  // beside those of every item
        void (Loader::*build)(const Json_value& item, Data_entry* parent, unsigned int level);
    };
    static const std::vector<Item_type>& item_types();

    void load_options(const Json_value& options);
    void load_root(const Json_value& menu);
    void load_items(const Json_value& menu, Data_entry& parent, unsigned int level);
    void load_item(const Json_value& item, Data_entry& parent, unsigned int level);
    void build_node(const Json_value& item, Data_entry* parent, unsigned int level);
    void build_range(const Json_value& item, Data_entry* parent, unsigned int level);
    void build_text(const Json_value& item, Data_entry* parent, unsigned int level);
    void build_address(const Json_value& item, Data_entry* parent, unsigned int level);
    void build_time(const Json_value& item, Data_entry* parent, unsigned int level);
    void build_warning(const Json_value& item, Data_entry* parent, unsigned int level);
    void build_enum(const Json_value& item, Data_entry* parent, unsigned int level);
    void build_live_enum(const Json_value& item, Data_entry* parent, unsigned int level);
    void build_slot(const Json_value& item, Data_entry* parent, unsigned int level);
    Leaf leaf_of(const Json_value& item, uint32_t pid);
    template <typename Entry, typename... Length>
    void add_text_entry(const Json_value& item, const Leaf& leaf, Data_entry* parent,
                        unsigned int level, Length... length);
    std::vector<Choice> choices_of(const Json_value& list);
    void set_choices(const Json_value& list, Enum_entry& entry, const std::vector<Choice>& choices);
    void finish(const Json_value& item, Data_entry& entry, unsigned int level);
    void set_ranges(const Json_value& item, Range_entry& entry, int min, int max);
    std::vector<range_s> ranges_of(const Json_value& list, int min, int max);
    void bind(const Json_value& item, Data_entry& entry, std::optional<Bounds> bounds);
    const Parameter& parameter_of(const Json_value& item, const Index_t& index,
                                  RETURN_TYPE type) const;
    const Parameter& parameter_of(const Json_value& place, uint32_t pid, const Index_t& index,
                                  RETURN_TYPE type) const;
    std::vector<std::string> option_names(const Json_value& list);
    void warn_of_options();

    Menu& m_menu;
    std::vector<std::string>& m_warnings;
    Cards m_cards;
    Device_description m_device;
    std::map<std::string, unsigned int> m_options;
    std::map<std::string, Json_value> m_option_places;
    std::set<std::string> m_used_options;
};

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

Leaf Loader::leaf_of(const Json_value& item, uint32_t pid) {
    const std::string name = name_of(item);
    return {name,
            text_or(item, "description", name),
            pid,
            m_menu.keep_index(index_of(item)),
            access_of(item),
            visible_of(item)};
}

template <typename Entry, typename... Length>
void Loader::add_text_entry(const Json_value& item, const Leaf& leaf, Data_entry* parent,
                            unsigned int level, Length... length) {
    Entry& entry = m_menu.add(std::make_unique<Entry>(
        leaf.name.c_str(), leaf.description.c_str(), leaf.pid, leaf.index, length..., parent,
        leaf.access, leaf.visible, true, Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr));
    finish(item, entry, level);
    bind(item, entry, std::nullopt);
}

void Loader::build_text(const Json_value& item, Data_entry* parent, unsigned int level) {
    const Leaf leaf = leaf_of(item, pid_of(item));
    if (leaf.pid == WARNING_PID) {
        item.member("pid").fail("parameter " + std::to_string(WARNING_PID) +
                                " is shown by items of type \"warning\"");
    }
    const Parameter& parameter = parameter_of(item, *leaf.index, STRING);
    add_text_entry<String_entry>(item, leaf, parent, level,
                                 static_cast<unsigned int>(parameter.length));
}

void Loader::build_address(const Json_value& item, Data_entry* parent, unsigned int level) {
    const Leaf leaf = leaf_of(item, pid_of(item));
    if (parameter_of(item, *leaf.index, STRING).length < LONGEST_ADDRESS) {
        item.member("pid").fail("expected a parameter of at least " +
                                std::to_string(LONGEST_ADDRESS) + " characters for an address");
    }
    add_text_entry<Ip_entry>(item, leaf, parent, level);
}

void Loader::build_time(const Json_value& item, Data_entry* parent, unsigned int level) {
    const Leaf leaf = leaf_of(item, pid_of(item));
    const Parameter& parameter = parameter_of(item, *leaf.index, STRING);
    add_text_entry<Time_entry>(item, leaf, parent, level,
                               static_cast<unsigned int>(parameter.length));
}

void Loader::build_warning(const Json_value& item, Data_entry* parent, unsigned int level) {
    Leaf leaf = leaf_of(item, WARNING_PID);
    leaf.access = Data_entry::READ_ONLY;
    const Parameter& parameter = parameter_of(item, WARNING_PID, *leaf.index, STRING);
    add_text_entry<String_entry>(item, leaf, parent, level,
                                 static_cast<unsigned int>(parameter.length));
}

void Loader::build_enum(const Json_value& item, Data_entry* parent, unsigned int level) {
    if (item.find("live")) {
        build_live_enum(item, parent, level);
        return;
    }
    const Leaf leaf = leaf_of(item, pid_of(item));
    if (is_live_pid(leaf.pid)) {
        item.member("pid").fail("parameters 9000 to 9100 are of items with \"live\"");
    }
    const Parameter& parameter = parameter_of(item, *leaf.index, INTEGER);
    const Json_value list = item.member("choices");
    const std::vector<Choice> choices = choices_of(list);
    const int last = static_cast<int>(choices.size()) - 1;
    if (choices.empty() || parameter.min != 0 || parameter.max != last) {
        list.fail("expected a choice for each value of the parameter, " +
                  std::to_string(parameter.min) + " to " + std::to_string(parameter.max) +
                  ", counted from 0, found " + std::to_string(choices.size()));
    }
    std::vector<std::string> texts;
    for (const Choice& choice : choices) {
        texts.push_back(choice.text);
    }
    Enum_entry& entry = m_menu.add(std::make_unique<Enum_entry>(
        leaf.name.c_str(), leaf.description.c_str(), leaf.pid, leaf.index, 0, last, 0,
        m_menu.keep_texts(texts), static_cast<unsigned int>(texts.size()), parent, leaf.access,
        leaf.visible, true, Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr, nullptr, nullptr,
        nullptr));
    finish(item, entry, level);
    set_choices(list, entry, choices);
    bind(item, entry, std::nullopt);
}

std::vector<Choice> Loader::choices_of(const Json_value& list) {
    std::vector<Choice> choices;
    for (const Json_value& item : list.items()) {
        if (item.is_text()) {
            choices.push_back({item.text_of_length(1, LONGEST_TEXT), {}});
            continue;
        }
        item.expect_members({"text", "options"});
        choices.push_back({item.member("text").text_of_length(1, LONGEST_TEXT),
                           option_names(item.member("options"))});
    }
    return choices;
}

// As soon as one choice needs product options, the entry shows only choices whose options hold.
void Loader::set_choices(const Json_value& list, Enum_entry& entry,
                         const std::vector<Choice>& choices) {
    const auto has_options = [](const Choice& choice) { return !choice.options.empty(); };
    if (std::none_of(choices.begin(), choices.end(), has_options)) {
        return;
    }
    std::map<int, std::vector<std::string>> options;
    for (const Choice& choice : choices) {
        const auto key = static_cast<int>(options.size());
        options[key] = has_options(choice) ? choice.options : std::vector<std::string>{ALWAYS};
    }
    std::map<std::string, unsigned int> product_options = m_options;
    product_options[ALWAYS] = 1;
    entry.setProductOptions(product_options);
    entry.Set_control_options(options);
    const ControlsT offered = entry.optionControls();
    if (offered.empty()) {
        list.fail("expected at least one choice that is allowed with these product options");
    }
    // An entry shows only as many keys as it has visible options.
    if (offered.back() >= static_cast<int>(offered.size())) {
        m_warnings.push_back(list.message("a choice behind a hidden one may show as ---"));
    }
    entry.updateControlOptionMap();
}

void Loader::build_live_enum(const Json_value& item, Data_entry* parent, unsigned int level) {
    static const std::map<std::string, std::string> WEB_TYPES{{"combobox", "json-dynamic-combobox"},
                                                              {"tree", "jsontree"}};
    const Leaf leaf = leaf_of(
        item, static_cast<uint32_t>(item.member("pid").integer(FIRST_LIVE_PID, LAST_LIVE_PID)));
    const Json_value live = item.member("live");
    live.expect_members({"slot", "web-type"});
    if (const auto choices = item.find("choices")) {
        choices->fail("the choices of an item with \"live\" come from its card");
    }
    const int slot = static_cast<int>(live.member("slot").integer(1, MOST_SLOTS));
    const Json_value web_type = live.member("web-type");
    const auto type = WEB_TYPES.find(web_type.text());
    if (type == WEB_TYPES.end()) {
        web_type.fail("expected \"combobox\" or \"tree\", found \"" + web_type.text() + "\"");
    }
    if (!m_device.has_document(slot, leaf.pid, type->first == "tree")) {
        live.fail("no card in slot " + std::to_string(slot) + " has a " + type->first + " " +
                  std::to_string(leaf.pid));
    }
    char** const texts = m_menu.keep_texts({NO_OPTION_YET, type->second, "list"});
    Enum_entry& entry = m_menu.add(std::make_unique<Enum_entry>(
        leaf.name.c_str(), leaf.description.c_str(), leaf.pid, leaf.index, 0, 0, 0, texts, 1U,
        parent, leaf.access, leaf.visible, true, Data_entry::SHORTCUT_NONE, nullptr, nullptr,
        nullptr, texts[1], texts[2], m_menu.add_processor(slot)));
    finish(item, entry, level);
    bind(item, entry, std::nullopt);
}

void Loader::build_slot(const Json_value& item, Data_entry* parent, unsigned int level) {
    const Leaf leaf = leaf_of(item, pid_of(item));
    const Parameter& parameter = parameter_of(item, *leaf.index, INTEGER);
    if (parameter.min != 0 || parameter.max >= MOST_SLOTS) {
        item.member("pid").fail("expected a parameter from 0 to at most " +
                                std::to_string(MOST_SLOTS - 1) + " for a slot list");
    }
    // Such an entry refreshes its lines and never its rules.
    if (const auto rules = item.find("binding")) {
        rules->fail("a slot list follows no rules: its node can");
    }
    std::vector<std::string> lines;
    for (int slot = 1; slot <= parameter.max + 1; ++slot) {
        lines.push_back(std::to_string(slot));
    }
    Slot_enum_entry& entry = m_menu.add(std::make_unique<Slot_enum_entry>(
        leaf.name.c_str(), leaf.description.c_str(), leaf.pid, leaf.index, 0, parameter.max, 0,
        nullptr, m_menu.keep_texts(lines, SLOT_LINE_ROOM), static_cast<unsigned int>(lines.size()),
        nullptr, parent, leaf.access, nullptr, leaf.visible, true, Data_entry::SHORTCUT_NONE,
        nullptr, nullptr, nullptr));
    finish(item, entry, level);
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
        if (parameter == nullptr) {
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

// "slot3" of the pattern "slotn".
bool is_instance_of(const std::string& name, const std::string& pattern) {
    const std::string prefix = pattern.substr(0, pattern.size() - 1);
    return name.size() > prefix.size() && name.compare(0, prefix.size(), prefix) == 0 &&
           std::isdigit(static_cast<unsigned char>(name[prefix.size()])) != 0;
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

}  // namespace

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
