#include <algorithm>

#include <frontpanel_menu/entry_access.h>
#include <frontpanel_menu/live_entry.h>
#include "file/loader.h"

namespace frontpanel {
namespace {

constexpr int MOST_SLOTS = 15;  // a product list has 16 records; record 0 is no slot
// What a slot list writes to each of its texts, terminator included.
constexpr size_t SLOT_LINE_ROOM = 31;
constexpr const char* ALWAYS = "*";  // a product option that holds on every product

}  // namespace

void Loader::build_enum(const Json_value& item, Data_entry* parent, unsigned int level) {
    if (item.find("live")) {
        build_live_enum(item, parent, level);
        return;
    }
    const Leaf leaf = leaf_of(item, INTEGER);
    if (is_live_pid(leaf.pid)) {
        parameter_place(item).fail("parameters 9000 to 9100 are of items with \"live\"");
    }
    const Json_value list = item.member("choices");
    const std::vector<Choice> choices = choices_of(list);
    const int last = static_cast<int>(choices.size()) - 1;
    if (leaf.parameter && (last < 0 || leaf.parameter->min != 0 || leaf.parameter->max != last)) {
        list.report("expected a choice for each value of the parameter, " +
                    std::to_string(leaf.parameter->min) + " to " +
                    std::to_string(leaf.parameter->max) + ", counted from 0, found " +
                    std::to_string(choices.size()));
    }
    if (choices.empty()) {
        throw Told_already();
    }
    std::vector<std::string> texts(choices.size());
    std::transform(choices.begin(), choices.end(), texts.begin(),
                   [](const Choice& choice) { return choice.text; });
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
        Choice& choice = choices.emplace_back();
        m_problems.attempt([&] {
            if (item.is_text()) {
                choice.text = item.text_of_length(1, LONGEST_TEXT);
                return;
            }
            item.expect_members({"text", "options"});
            choice.text = item.member("text").text_of_length(1, LONGEST_TEXT);
            choice.options = option_names(item.member("options"));
        });
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
        list.warn("a choice behind a hidden one may show as ---");
    }
    entry.updateControlOptionMap();
}

void Loader::build_live_enum(const Json_value& item, Data_entry* parent, unsigned int level) {
    static const std::vector<const char*> WEB_TYPES{"combobox", "tree"};
    static const std::vector<std::string> LIBRARY_TYPES{"json-dynamic-combobox", "jsontree"};
    if (const auto name = item.find("parameter")) {
        name->report("an item with \"live\" names the list of its card by \"pid\"");
    }
    Leaf leaf = entry_of(item);
    leaf.pid = static_cast<uint32_t>(item.member("pid").integer(FIRST_LIVE_PID, LAST_LIVE_PID));
    const Json_value live = item.member("live");
    live.expect_members({"slot", "web-type"});
    if (const auto choices = item.find("choices")) {
        choices->report("the choices of an item with \"live\" come from its card");
    }
    const int slot = static_cast<int>(live.member("slot").integer(1, MOST_SLOTS));
    const size_t type = live.member("web-type").choice(WEB_TYPES);
    const std::string type_name = WEB_TYPES[type];
    if (!m_device.has_document(slot, leaf.pid, type_name == "tree")) {
        live.fail("no card in slot " + std::to_string(slot) + " has a " + type_name + " " +
                  std::to_string(leaf.pid));
    }
    char** const texts = m_menu.keep_texts({NO_OPTION_YET, LIBRARY_TYPES[type], "list"});
    Live_entry& entry = m_menu.add(std::make_unique<Live_entry>(
        leaf.name.c_str(), leaf.description.c_str(), leaf.pid, leaf.index, 0, 0, 0, texts, 1U,
        parent, leaf.access, leaf.visible, true, Data_entry::SHORTCUT_NONE, nullptr, nullptr,
        nullptr, texts[1], texts[2], m_menu.add_processor(slot)));
    finish(item, entry, level);
    bind(item, entry, std::nullopt);
}

void Loader::build_slot(const Json_value& item, Data_entry* parent, unsigned int level) {
    const Leaf leaf = leaf_of(item, INTEGER);
    // Such an entry refreshes its lines and never its rules.
    if (const auto rules = item.find("binding")) {
        rules->report("a slot list follows no rules: its node can");
    }
    const Parameter parameter = leaf.parameter.value_or(Parameter{INTEGER, 0, {}, 0, 0});
    if (parameter.min != 0 || parameter.max >= MOST_SLOTS) {
        parameter_place(item).fail("expected a parameter from 0 to at most " +
                                   std::to_string(MOST_SLOTS - 1) + " for a slot list");
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

}  // namespace frontpanel
