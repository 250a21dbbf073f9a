#include "file/item_members.h"

#include <optional>
#include <vector>

namespace frontpanel {
namespace {

constexpr int64_t LAST_PID = int64_t{Data_entry::PID_NONE} - 1;
constexpr size_t MOST_LEVELS = Data_model::S_CURRENT_SUPPORT_DIMENTIONS;
constexpr size_t LONGEST_NAME = 24;

}  // namespace

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

uint32_t pid_of(const Json_value& owner) {
    return static_cast<uint32_t>(owner.member("pid").integer(0, LAST_PID));
}

Json_value parameter_place(const Json_value& item) {
    const auto name = item.find("parameter");
    return name ? *name : item.member("pid");
}

int integer_or(const Json_value& owner, const char* name, int64_t min, int64_t max, int otherwise) {
    const std::optional<Json_value> found = owner.find(name);
    return found ? static_cast<int>(found->integer(min, max)) : otherwise;
}

std::string text_or(const Json_value& owner, const char* name, const std::string& otherwise) {
    const std::optional<Json_value> found = owner.find(name);
    return found ? found->text() : otherwise;
}

bool boolean_or(const Json_value& owner, const char* name, bool otherwise) {
    const std::optional<Json_value> found = owner.find(name);
    return found ? found->boolean() : otherwise;
}

std::vector<Json_value> list_or_none(const Json_value& owner, const char* name) {
    const std::optional<Json_value> list = owner.find(name);
    return list ? list->items() : std::vector<Json_value>();
}

std::string shown_name(const std::string& name) {
    return name.substr(0, name.find(':'));
}

std::string name_of(const Json_value& item) {
    const Json_value name = item.member("name");
    const std::string shown = shown_name(name.text());
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
    static const std::vector<const char*> NAMES{"read-only", "read-write", "write-only"};
    constexpr Data_entry::Data_access ACCESSES[] = {Data_entry::READ_ONLY, Data_entry::READ_WRITE,
                                                    Data_entry::WRITE_ONLY};
    const std::optional<Json_value> access = item.find("access");
    return access ? ACCESSES[access->choice(NAMES)] : Data_entry::READ_WRITE;
}

}  // namespace frontpanel
