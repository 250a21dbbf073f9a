#include <algorithm>

#include <frontpanel_menu/choice_entry.h>
#include <frontpanel_menu/entry_access.h>
#include <frontpanel_menu/live_entry.h>
#include "file/builders.h"
#include "file/item_builder.h"
#include "file/item_rules.h"

namespace frontpanel {
namespace {

constexpr int MOST_SLOTS = 15;  // a product list has 16 records; record 0 is no slot
// What a slot list writes to each of its texts, terminator included.
constexpr size_t SLOT_LINE_ROOM = 31;
constexpr const char* ALWAYS = "*";  // a product option that holds on every product

// An option of an enumeration.
struct Choice {
    std::string text;
    std::vector<std::string> options;  // the product options that it needs one of; none for no need
};
constexpr const char* TEXT = "text";

std::vector<Choice> choices_of(Load_context& context, const Json_value& list) {
    std::vector<Choice> choices;
    for (const Json_value& item : list.items()) {
        Choice& choice = choices.emplace_back();
        context.problems.attempt([&] {
            if (item.is_text()) {
                choice.text = item.shown_text_of_length(1, LONGEST_TEXT);
                return;
            }
            item.expect_members({TEXT, member::OPTIONS});
            choice.text = item.member(TEXT).shown_text_of_length(1, LONGEST_TEXT);
            choice.options = context.options.use(item.member(member::OPTIONS));
        });
    }
    return choices;
}

// As soon as one choice needs product options, the entry shows only choices whose options hold.
void set_choices(Load_context& context, const Json_value& list, Enum_entry& entry,
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
    std::map<std::string, unsigned int> product_options =
        context.options.copy(list, choices.size());
    product_options[ALWAYS] = 1;
    entry.setProductOptions(product_options);
    entry.Set_control_options(options);
    if (entry.optionControls().empty()) {
        list.fail("expected at least one choice that is allowed with these product options");
    }
    entry.updateControlOptionMap();
}

}  // namespace

void build_enum(Load_context& context, const Json_value& item, const Spot& spot) {
    if (item.find(member::LIVE)) {
        build_live(context, item, spot);
        return;
    }
    const Leaf leaf = leaf_of(context, item, spot, INTEGER);
    if (is_live_pid(leaf.pid)) {
        parameter_place(item).fail("parameters 9000 to 9100 require \"live\"");
    }
    const Json_value list = item.member(member::CHOICES);
    const std::vector<Choice> choices = choices_of(context, list);
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
    Choice_entry& entry = context.menu.add(std::make_unique<Choice_entry>(
        leaf.name.c_str(), leaf.description.c_str(), leaf.pid, kept_index(context, leaf, spot), 0,
        last, 0, context.menu.keep_texts(texts), static_cast<unsigned int>(texts.size()),
        spot.parent, leaf.access, leaf.visible, true, Data_entry::SHORTCUT_NONE, nullptr, nullptr,
        nullptr, nullptr, nullptr, nullptr));
    finish(context, item, entry, spot);
    set_choices(context, list, entry, choices);
    bind(context, item, entry);
}

void build_live(Load_context& context, const Json_value& item, const Spot& spot) {
    static const std::vector<const char*> WEB_TYPES{"combobox", "tree"};
    static const std::vector<std::string> LIBRARY_TYPES{"json-dynamic-combobox", "jsontree"};
    if (const auto name = item.find(member::PARAMETER)) {
        name->report("an item with \"live\" names the list of its card by \"pid\"");
    }
    Leaf leaf = entry_of(context, item, spot);
    leaf.pid =
        static_cast<uint32_t>(item.member(member::PID).integer(FIRST_LIVE_PID, LAST_LIVE_PID));
    const Json_value live = item.member(member::LIVE);
    live.expect_members({"slot", "web-type"});
    if (const auto choices = item.find(member::CHOICES)) {
        choices->report("the choices of an item with \"live\" come from its card");
    }
    const int slot = static_cast<int>(live.member("slot").integer(1, MOST_SLOTS));
    const size_t type = live.member("web-type").choice(WEB_TYPES);
    const std::string type_name = WEB_TYPES[type];
    if (!context.device.has_document(slot, leaf.pid, type_name == "tree")) {
        live.fail("no card in slot " + std::to_string(slot) + " has a " + type_name + " " +
                  std::to_string(leaf.pid));
    }
    char** const texts = context.menu.keep_texts({NO_OPTION_YET, LIBRARY_TYPES[type], "list"});
    Live_entry& entry = context.menu.add(std::make_unique<Live_entry>(
        leaf.name.c_str(), leaf.description.c_str(), leaf.pid, kept_index(context, leaf, spot), 0,
        0, 0, texts, 1U, spot.parent, leaf.access, leaf.visible, true, Data_entry::SHORTCUT_NONE,
        nullptr, nullptr, nullptr, texts[1], texts[2], context.menu.add_processor(slot)));
    finish(context, item, entry, spot);
    bind(context, item, entry);
}

void build_slot(Load_context& context, const Json_value& item, const Spot& spot) {
    const Leaf leaf = leaf_of(context, item, spot, INTEGER);
    // Such an entry refreshes its lines and never its rules.
    if (const auto rules = item.find(member::BINDING)) {
        rules->report("a slot list takes no rules: give them to its node");
    }
    const Parameter parameter = leaf.parameter.value_or(Parameter{INTEGER, 0, {}, 0, 0});
    if (parameter.min != 0 || parameter.max >= MOST_SLOTS) {
        parameter_place(item).fail("expected a parameter from 0 to at most " +
                                   std::to_string(MOST_SLOTS - 1) + " for a slot list");
    }
    context.work.take(item.place(), Work_budget::SLOT_LIST_COST);
    std::vector<std::string> lines;
    for (int slot = 1; slot <= parameter.max + 1; ++slot) {
        lines.push_back(std::to_string(slot));
    }
    Slot_choice_entry& entry = context.menu.add(std::make_unique<Slot_choice_entry>(
        leaf.name.c_str(), leaf.description.c_str(), leaf.pid, kept_index(context, leaf, spot), 0,
        parameter.max, 0, nullptr, context.menu.keep_texts(lines, SLOT_LINE_ROOM),
        static_cast<unsigned int>(lines.size()), nullptr, spot.parent, leaf.access, nullptr,
        leaf.visible, true, Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr));
    finish(context, item, entry, spot);
}

}  // namespace frontpanel
