#include <frontpanel_editors/address_editor.h>
#include <frontpanel_editors/enum_editor.h>
#include <frontpanel_editors/number_editor.h>
#include <frontpanel_editors/text_editor.h>
#include <frontpanel_editors/time_editor.h>
#include <frontpanel_editors/value_text.h>
#include <frontpanel_editors/warning_editor.h>
#include <frontpanel_menu/entry_access.h>
#include <frontpanel_menu/entry_kind.h>

#include <algorithm>

#include "file/builders.h"
#include "file/editor_items.h"
#include "file/item_members.h"

namespace frontpanel {
namespace {

constexpr unsigned int VALUE = Entry_kind::HAS_VALUE;
constexpr unsigned int BRIDGED_VALUE = VALUE | Entry_kind::IS_BRIDGED;
constexpr unsigned int OPTIONS_OF_ITS_OWN = VALUE | Entry_kind::HAS_KEYS;

std::optional<std::string> show_nothing(Data_entry& /*entry*/) {
    return std::string();
}

std::optional<std::string> show_number(Data_entry& entry) {
    auto& number = static_cast<Range_entry&>(entry);
    int value = 0;
    if (number.Get_value(&value, sizeof value) != 0) {
        return std::nullopt;  // beyond what its rules allow
    }
    return value_text(number, value);
}

std::optional<std::string> show_text(Data_entry& entry) {
    return value_text(static_cast<String_entry&>(entry));
}

std::optional<std::string> show_option(Data_entry& entry) {
    return option_text(static_cast<Enum_entry&>(entry));
}

// A slot's line is filled with blanks up to its alias and its end.
std::optional<std::string> show_slot(Data_entry& entry) {
    std::string text = option_text(static_cast<Enum_entry&>(entry));
    const auto both_blank = [](char left, char right) { return left == ' ' && right == ' '; };
    text.erase(std::unique(text.begin(), text.end(), both_blank), text.end());
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

// `Commit` with an interface is an operation of each entry class, not of the base.
template <typename Entry>
int commit_value(Data_entry& entry, Data_interface& device) {
    return static_cast<Entry&>(entry).Commit(&device);
}

int commit_nothing(Data_entry& entry, Data_interface& /*device*/) {
    return entry.Commit();
}

template <typename Editor>
std::unique_ptr<Value_editor> make() {
    return std::make_unique<Editor>();
}

bool is_live_list(const Data_entry& entry) {
    return is_live_pid(entry.Get_pid());
}

bool is_warning(const Data_entry& entry) {
    return entry.Get_pid() == WARNING_PID;
}

bool is_mounting(const Data_entry& entry) {
    return is_mount(const_cast<Data_entry&>(entry));
}

bool is_no_entry(const Data_entry& /*entry*/) {
    return false;
}

}  // namespace

const std::vector<Entry_kind>& entry_kinds() {
    using namespace member;
    using namespace editor_member;
    // clang-format off
    // name, type, which of it, traits,
    //   members, members of "editor",
    //   builder, display, commit, editor
    static const std::vector<Entry_kind> KINDS{
        {"node", Data_entry::NODE, nullptr, Entry_kind::NONE,
         {ITEMS}, {},
         build_node, show_nothing, commit_nothing, nullptr},
        {"range", Data_entry::RANGE_LEAF, nullptr, BRIDGED_VALUE | Entry_kind::IS_NUMBER,
         {PARAMETER, PID, MIN, MAX, DEFAULT, FORMAT, VALUE_FORMAT, ACCESS, RANGES},
         {PREVIEW, WRAP, STEP, ACCELERATION},
         build_range, show_number, commit_value<Range_entry>,
         make<Number_editor>},
        {"text", Data_entry::STRING_LEAF, nullptr, BRIDGED_VALUE | Entry_kind::IS_TYPED,
         {PARAMETER, PID, ACCESS}, {PREVIEW, WRAP, CHARACTERS},
         build_text, show_text, commit_value<String_entry>, make<Text_editor>},
        {"address", Data_entry::IP_LEAF, nullptr, BRIDGED_VALUE | Entry_kind::IS_PROBED,
         {PARAMETER, PID, ACCESS}, {PREVIEW, WRAP},
         build_address, show_text, commit_value<String_entry>,
         make<Address_editor>},
        {"time", Data_entry::TIME_LEAF, nullptr, BRIDGED_VALUE,
         {PARAMETER, PID, ACCESS}, {PREVIEW, WRAP},
         build_time, show_text, commit_value<String_entry>, make<Time_editor>},
        {"enum", Data_entry::ENUM_LEAF, nullptr, OPTIONS_OF_ITS_OWN,
         {PARAMETER, PID, ACCESS, CHOICES, LIVE}, {PREVIEW, WRAP},
         build_enum, show_option, commit_value<Enum_entry>,
         make<Enum_editor>},
        {nullptr, Data_entry::ENUM_LEAF, is_live_list, OPTIONS_OF_ITS_OWN | Entry_kind::IS_FETCHED,  // "enum" with "live"
         {}, {PREVIEW, WRAP},
         build_live, show_option, commit_value<Enum_entry>,
         make<Enum_editor>},
        {"slot", Data_entry::SLOT_ENUM, nullptr, VALUE | Entry_kind::HAS_LINES,
         {PARAMETER, PID, ACCESS}, {PREVIEW, WRAP},
         build_slot, show_slot, commit_value<Enum_entry>, make<Enum_editor>},
        {"warning", Data_entry::STRING_LEAF, is_warning, VALUE | Entry_kind::IS_TYPED,
         {}, {},
         build_warning, show_text, commit_value<String_entry>,
         make<Warning_editor>},
        {"link", Data_entry::LINK_ENTRY, nullptr, Entry_kind::HAS_OWN_MEMBERS,
         {TARGET, BEHAVIOUR, ESCAPE, SHORTCUT}, {},
         build_link, show_nothing, commit_nothing, nullptr},
        {"bridge", Data_entry::LINK_ENTRY, is_no_entry, Entry_kind::HAS_OWN_MEMBERS,
         {ITEM, BEHAVIOUR, ESCAPE, SHORTCUT}, {},
         build_bridge, show_nothing, commit_nothing, nullptr},
        {"mount", Data_entry::LINK_ENTRY, is_mounting, Entry_kind::NONE,
         {FOLDER, BEHAVIOUR, ESCAPE}, {},
         build_mount, show_nothing, commit_nothing, nullptr},
    };
    // clang-format on
    return KINDS;
}

const Entry_kind& kind_of(const Data_entry& entry) {
    static const Entry_kind OTHER{
        nullptr, Data_entry::NODE, is_no_entry,  Entry_kind::NONE, {},
        {},      nullptr,          show_nothing, commit_nothing,   nullptr};
    const Entry_kind* found = &OTHER;
    for (const Entry_kind& kind : entry_kinds()) {
        if (kind.type == entry.Get_entry_type()) {
            if (kind.is_one != nullptr && kind.is_one(entry)) {
                return kind;
            }
            found = kind.is_one == nullptr ? &kind : found;
        }
    }
    return *found;
}

}  // namespace frontpanel
