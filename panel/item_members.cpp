#include "item_members.h"

#include <map>
#include <optional>
#include <vector>

namespace panel {
namespace {

constexpr int64_t LAST_PID = int64_t{Data_entry::PID_NONE} - 1;
constexpr size_t MOST_LEVELS = Data_model::S_CURRENT_SUPPORT_DIMENTIONS;
constexpr size_t LONGEST_NAME = 24;

bool boolean_or(const Json_value& owner, const char* name, bool otherwise) {
    const std::optional<Json_value> found = owner.find(name);
    return found ? found->boolean() : otherwise;
}

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

std::string text_or(const Json_value& owner, const char* name, const std::string& otherwise) {
    const std::optional<Json_value> found = owner.find(name);
    return found ? found->text() : otherwise;
}

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

}  // namespace panel
