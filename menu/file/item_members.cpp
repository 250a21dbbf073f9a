#include "file/item_members.h"

#include <optional>
#include <vector>

#include <frontpanel_editors/line_text.h>

namespace frontpanel {
namespace {

constexpr size_t LONGEST_NAME = 24;

}  // namespace

Index_t index_of(const Json_value& owner) {
    Index_t index{};
    for (const uint16_t level : levels_of(owner)) {
        index.m_index[index.m_index_num++] = level;
    }
    return index;
}

Json_value parameter_place(const Json_value& item) {
    const auto name = item.find(member::PARAMETER);
    return name ? *name : item.member(member::PID);
}

std::string shown_name(const std::string& name) {
    return name.substr(0, name.find(':'));
}

std::string name_of(const Json_value& item) {
    const Json_value name = item.member(member::NAME);
    std::string text = name.shown_text();
    const std::string shown = shown_name(text);
    if (shown.empty() || shown.size() > LONGEST_NAME) {
        name.fail("expected a name of 1 to 24 characters before any ':', found " +
                  std::to_string(shown.size()) +
                  (width_of(shown) == static_cast<int>(shown.size()) ? "" : " bytes of UTF-8"));
    }
    return text;
}

int visible_of(const Json_value& item) {
    return boolean_or(item, member::VISIBLE, true) ? Data_entry::VISIBLE_ALL
                                                   : Data_entry::VISIBLE_NONE;
}

Data_entry::Data_access access_of(const Json_value& item) {
    static const std::vector<const char*> NAMES{"read-only", "read-write", "write-only"};
    constexpr Data_entry::Data_access ACCESSES[] = {Data_entry::READ_ONLY, Data_entry::READ_WRITE,
                                                    Data_entry::WRITE_ONLY};
    const std::optional<Json_value> access = item.find(member::ACCESS);
    return access ? ACCESSES[access->choice(NAMES)] : Data_entry::READ_WRITE;
}

}  // namespace frontpanel
