#include "file/item_builder.h"

#include <algorithm>
#include <iterator>

#include <frontpanel_base/nearest_name.h>
#include <frontpanel_menu/entry_access.h>
#include <frontpanel_menu/entry_kind.h>
#include "file/editor_items.h"

namespace frontpanel {
namespace {

constexpr int64_t LAST_BUTTON = 99;
constexpr size_t LONGEST_ID = 63;

// The members that items have in common.
struct Common_member {
    const char* name;
    bool is_of_every_kind;  // links too, which have no others in common
    bool is_bridged;        // an item behind a bridge has it as well
};
constexpr Common_member COMMON_MEMBERS[] = {
    {member::TYPE, true, true},          {member::ID, true, false},
    {member::NAME, false, true},         {member::DESCRIPTION, false, true},
    {member::INDEX, false, true},        {member::VISIBLE, false, false},
    {member::SHORTCUT, false, false},    {member::OPTIONS, false, true},
    {member::BINDING, false, true},      {member::EDITOR, false, true},
    {member::ALLOW_CIRCLE, false, true},
};

using Members = std::vector<const char*>;

// The common members that the condition holds for, and those of the kind.
template <typename Condition>
Members members_with(const Entry_kind& kind, Condition has) {
    Members members;
    for (const Common_member& member : COMMON_MEMBERS) {
        if (has(member)) {
            members.push_back(member.name);
        }
    }
    members.insert(members.end(), kind.members.begin(), kind.members.end());
    return members;
}

Members all_members_of(const Entry_kind& kind) {
    return members_with(kind, [&kind](const Common_member& member) {
        return member.is_of_every_kind || !kind.has(Entry_kind::HAS_OWN_MEMBERS);
    });
}

Members all_bridged_members_of(const Entry_kind& kind) {
    return members_with(kind, [](const Common_member& member) { return member.is_bridged; });
}

// Of each row of the table of kinds.
std::vector<Members> members_by_kind(Members (*members)(const Entry_kind& kind)) {
    std::vector<Members> all;
    std::transform(entry_kinds().begin(), entry_kinds().end(), std::back_inserter(all), members);
    return all;
}

const Members& of_kind(const std::vector<Members>& all, const Entry_kind& kind) {
    return all[static_cast<size_t>(&kind - entry_kinds().data())];
}

// The kinds that items name by their type.
struct Named_kinds {
    Named_kinds() {
        for (const Entry_kind& kind : entry_kinds()) {
            if (kind.name != nullptr) {
                kinds.push_back(&kind);
                names.push_back(kind.name);
            }
        }
    }

    std::vector<const Entry_kind*> kinds;
    std::vector<const char*> names;
};

// A wrong name is reported, and the item goes on under another.
std::string checked_name(Load_context& context, const Json_value& item, const Spot& spot) {
    return spot.bridge != nullptr
               ? BRIDGE_NAME
               : context.problems.value_or([&item] { return name_of(item); }, std::string("?"));
}

// `place` is where an error is reported.
const Parameter& expect_type(const Json_value& place, const Parameter* parameter,
                             const std::string& what, RETURN_TYPE type) {
    if (parameter->type != type) {
        place.fail("parameter " + what + " is of another type");
    }
    return *parameter;
}

const Parameter& parameter_of(const Load_context& context, const Json_value& item,
                              const Index_t& index, RETURN_TYPE type) {
    const auto name = item.find(member::PARAMETER);
    if (!name) {
        return parameter_at(context, item.member(member::PID), pid_of(item), index, type);
    }
    for (const char* const other : {member::PID, member::INDEX}) {
        if (const auto superfluous = item.find(other)) {
            superfluous->report("\"parameter\" names the parameter already");
        }
    }
    const std::string text = name->text();
    const Parameter* const found = context.device.parameter(text);
    if (found == nullptr) {
        name->fail(context.problems.error_count() < Problems::MOST_LINES
                       ? no_parameter(context.menu.parameters(), text)
                       : "the device has no parameter \"" + text + "\"");
    }
    return expect_type(*name, found, "\"" + text + "\"", type);
}

}  // namespace

std::string no_parameter(const Parameter_table& parameters, const std::string& name) {
    Nearest_name nearest(name);
    nearest.offer(parameters.closest(name));
    return "the device has no parameter \"" + name + "\"" + nearest.hint();
}

const Entry_kind& kind_of_item(const Json_value& item) {
    static const Named_kinds KINDS;
    return *KINDS.kinds[item.member(member::TYPE).choice(KINDS.names)];
}

const std::vector<const char*>& members_of(const Entry_kind& kind) {
    static const std::vector<Members> ALL = members_by_kind(all_members_of);
    return of_kind(ALL, kind);
}

const std::vector<const char*>& bridged_members_of(const Entry_kind& kind) {
    static const std::vector<Members> ALL = members_by_kind(all_bridged_members_of);
    return of_kind(ALL, kind);
}

Leaf entry_of(Load_context& context, const Json_value& item, const Spot& spot) {
    Problems& problems = context.problems;
    const std::string name = checked_name(context, item, spot);
    const Index_t index = problems.value_or([&item] { return index_of(item); }, Index_t{});
    return {name,
            problems.value_or([&] { return text_or(item, member::DESCRIPTION, name); }, name),
            Data_entry::PID_NONE,
            index,
            problems.value_or([&item] { return access_of(item); }, Data_entry::READ_WRITE),
            problems.value_or([&item] { return visible_of(item); }, Data_entry::VISIBLE_ALL),
            std::nullopt};
}

Leaf leaf_of(Load_context& context, const Json_value& item, const Spot& spot, RETURN_TYPE type) {
    Leaf leaf = entry_of(context, item, spot);
    leaf.pid = 0;
    context.problems.attempt([&] {
        leaf.parameter = parameter_of(context, item, leaf.index, type);
        leaf.pid = leaf.parameter->pid;
        if (item.find(member::PARAMETER)) {
            leaf.index = leaf.parameter->index;
        }
    });
    return leaf;
}

const Parameter& parameter_at(const Load_context& context, const Json_value& place, uint32_t pid,
                              const Index_t& index, RETURN_TYPE type) {
    const Parameter* const found = context.device.parameter(pid, index);
    if (found == nullptr) {
        place.fail("the device has no parameter " + std::to_string(pid) + " with this index");
    }
    return expect_type(place, found, std::to_string(pid), type);
}

const Index_t* kept_index(Load_context& context, const Leaf& leaf, const Spot& spot) {
    if (spot.bridge == nullptr) {
        return context.menu.keep_index(leaf.index);
    }
    *spot.bridge = std::make_unique<const Index_t>(leaf.index);
    return spot.bridge->get();
}

void finish(Load_context& context, const Json_value& item, Data_entry& entry, const Spot& spot) {
    set_properties(context, item, entry, spot);
    const Entry_kind& kind = kind_of(entry);
    if (kind.has(Entry_kind::HAS_VALUE) && !kind.has(Entry_kind::IS_FETCHED)) {
        context.menu.add_item(entry);
    }
    if (spot.bridge != nullptr) {
        return;
    }
    enlist(context, item, entry);
    if (const auto shortcut = item.find(member::SHORTCUT)) {
        context.problems.attempt([&] { set_shortcut(context, *shortcut, entry); });
    }
    if (const auto name = item.find(member::NAME)) {
        context.built.names.push_back({*name, &entry});
    }
}

void set_properties(Load_context& context, const Json_value& item, Data_entry& entry,
                    const Spot& spot) {
    entry.setNodeLevel(spot.level);
    // Each entry has a copy of its own, so only those that test options get one.
    if (item.find(member::OPTIONS) || item.find(member::RANGES)) {
        entry.setProductOptions(context.options.copy(item));
    }
    if (const auto options = item.find(member::OPTIONS)) {
        context.built.conditional.insert(&entry);
        context.problems.attempt([&] { entry.setOrOptions(context.options.use(*options)); });
    }
    if (context.problems.value_or([&item] { return boolean_or(item, member::ALLOW_CIRCLE, false); },
                                  false)) {
        context.built.allowed_circles.insert(&entry);
    }
    if (const auto editor = item.find(member::EDITOR)) {
        context.problems.attempt(
            [&] { context.menu.editor_settings()[&entry] = editor_settings_of(*editor, entry); });
    }
}

void enlist(Load_context& context, const Json_value& item, Data_entry& entry) {
    Built_menu::Submenu* const menu = context.open_menu();
    if (menu == nullptr) {
        return;  // the top menu
    }
    menu->children.push_back(&entry);
    if (!is_link(entry)) {
        context.built.items.push_back({&entry, item});
    }
    context.names.add(entry);
    if (const auto id = item.find(member::ID)) {
        context.problems.attempt([&] { add_id(context, *id, entry); });
    }
}

void add_id(Load_context& context, const Json_value& id, Data_entry& entry) {
    const std::string text = id.text_of_length(1, LONGEST_ID);
    if (!context.names.add_id(text, &entry)) {
        id.fail("another item has the id \"" + text + "\"");
    }
    context.menu.add_id(text, &entry);
}

void set_shortcut(Load_context& context, const Json_value& button, Data_entry& entry) {
    const int number = static_cast<int>(button.integer(1, LAST_BUTTON));
    entry.Set_shortcut(number);
    if (!context.menu.add_shortcut(number, entry)) {
        button.fail("shortcut button " + std::to_string(number) + " is taken");
    }
}

}  // namespace frontpanel
