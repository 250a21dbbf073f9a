#include "reports/entry_report.h"

#include <array>
#include <numeric>
#include <string_view>
#include <vector>

#include <frontpanel_base/numbers.h>
#include <frontpanel_menu/entry_access.h>
#include <frontpanel_menu/entry_kind.h>
#include "file/option_names.h"

namespace frontpanel {
namespace {

void append(std::string& list, const std::string& element) {
    list += list.empty() ? "" : ", ";
    list += element;
}

// The library's report of the entry lists its ranges: "range={  [0, 80] [120, 240] }".
std::string ranges_of(Data_entry& entry) {
    constexpr int NAME_AND_VALUES = 0x8;
    const std::string report = entry.getProperties(NAME_AND_VALUES);
    std::string text;
    size_t at = report.rfind("range={");
    while (at != std::string::npos && (at = report.find('[', at)) != std::string::npos) {
        const size_t comma = report.find(", ", ++at);
        const size_t end = report.find(']', at);
        if (end == std::string::npos || comma > end) {
            continue;
        }
        const std::string_view ends(report);
        const auto low = parse_number<int>(ends.substr(at, comma - at));
        const auto high = parse_number<int>(ends.substr(comma + 2, end - comma - 2));
        if (low && high) {
            append(text,
                   std::to_string(*low) + (*low == *high ? "" : ".." + std::to_string(*high)));
        }
    }
    return text;
}

// "-" stands for a key without a text.
std::string option_text(Enum_entry& entry, int position) {
    constexpr unsigned int LONGEST = 80;
    std::array<char, LONGEST + 2> text{};
    const bool is_shown = entry.Get_display_string(text.data(), LONGEST, position) == 0;
    return is_shown && std::string(text.data()) != "-" ? text.data() : "";
}

std::string choices_of(Enum_entry& entry) {
    bool has_rules = false;
    const ControlsT by_rules = entry.bindingControls(has_rules);
    const ControlsT by_options = entry.optionControls();
    ControlsT keys = entry.commonControls(by_options, !by_options.empty(), by_rules,
                                          has_rules && !by_rules.empty());
    if (keys.empty()) {
        keys.resize(static_cast<size_t>(entry.Get_size_enum()));
        std::iota(keys.begin(), keys.end(), 0);
    }
    std::string text;
    for (size_t position = 0; position < keys.size(); ++position) {
        const std::string option = option_text(entry, static_cast<int>(position));
        std::string choice = std::to_string(keys[position]);
        if (!option.empty()) {
            choice.append(" (").append(option).append(")");
        }
        append(text, choice);
    }
    return text;
}

}  // namespace

std::string type_of(const Data_entry& entry) {
    if (entry.Get_entry_type() == Data_entry::LINK_ENTRY) {
        return "link";
    }
    const Entry_kind& kind = kind_of(entry);
    return kind.name != nullptr ? kind.name : kind.has(Entry_kind::IS_FETCHED) ? "enum" : "";
}

std::string parameter_of(const Data_entry& entry) {
    const Index_t* const index = entry.Get_index();
    if (is_menu(entry) || index == nullptr || entry.Get_pid() == Data_entry::PID_NONE) {
        return "";
    }
    std::string text = std::to_string(entry.Get_pid());
    for (unsigned int level = 0; level < index->m_index_num; ++level) {
        text += "." + std::to_string(index->m_index[level]);
    }
    return text;
}

std::string access_of(const Data_entry& entry) {
    switch (entry.Get_access_type()) {
        case Data_entry::READ_ONLY:
            return "read-only";
        case Data_entry::WRITE_ONLY:
            return "write-only";
        default:
            return "";
    }
}

std::string allowed_of(Data_entry& entry) {
    if (entry.Get_entry_type() == Data_entry::RANGE_LEAF) {
        return ranges_of(entry);
    }
    const bool has_choices = entry.Get_entry_type() == Data_entry::ENUM_LEAF && !is_live(entry);
    return has_choices ? choices_of(static_cast<Enum_entry&>(entry)) : "";
}

std::string hidden_because(Menu& menu, Data_entry& entry) {
    if (entry.isVisible(true, &menu.access()) >= 0) {
        return "";
    }
    Link_entry* const link = link_of(entry);
    if (link != nullptr && link->isHomescreenEntry() && link->CheckToggleState() == 0) {
        return "its toggle is off";
    }
    if (link != nullptr) {
        const std::string reason = hidden_because(menu, housed(entry));
        return "it leads to a hidden item" + (reason.empty() ? "" : ": " + reason);
    }
    if (entry.Get_visible() < 0) {
        return "the menu file hides it";
    }
    if (entry.Get_bind_vis() < 0) {
        return "no visible rule holds";
    }
    const std::vector<std::string> options = entry.Get_options();
    std::string names;
    for (const std::string& option : options) {
        append(names, Option_names::file_name(option));
    }
    if (is_menu(entry) && names.empty()) {
        return "none of its items is shown";
    }
    return "the product has none of its options: " + names;
}

}  // namespace frontpanel
