#include <frontpanel_menu/character_check.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <string>

#include <frontpanel_base/character_set.h>

namespace frontpanel {
namespace {

// The characters of a text, with combining ones composed; those that have no composition go to `lost`. Empty for a text
// that is not shown as it is, such as rules: those are checked where they are read.
std::u32string shown_characters(const Json_value& value, std::set<char32_t>& lost) {
    try {
        return columns_of(value.shown_text(), lost);
    } catch (const Placed_error&) {
        return {};
    }
}

// ASCII is on every display.
void check_text(const Json_value& value, const Shows_character& shows) {
    std::set<char32_t> told;
    std::set<char32_t> lost;
    for (const char32_t character : shown_characters(value, lost)) {
        if (character > 0x7E && !shows(character) && told.insert(character).second) {
            value.warn("the display cannot show \"" + utf8_of(character) + "\" (" +
                       code_point_name(character) + ")");
        }
    }
    for (const char32_t mark : lost) {
        value.warn("the display cannot show the combining character " + code_point_name(mark));
    }
}

// What is for the reader of the file, or for drivers.
bool is_shown(const std::string& member) {
    constexpr const char* UNSHOWN[] = {"description", "source", "drivers"};
    return std::find(std::begin(UNSHOWN), std::end(UNSHOWN), member) == std::end(UNSHOWN);
}

void check_value(const Json_value& value, const Shows_character& shows) {
    if (value.is_text()) {
        check_text(value, shows);
    } else if (value.is_object()) {
        for (const Json_value::Member& member : value.members()) {
            if (is_shown(member.name)) {
                check_value(member.value, shows);
            }
        }
    } else if (value.is_list()) {
        for (const Json_value& item : value.items()) {
            check_value(item, shows);
        }
    }
}

}  // namespace

void warn_of_characters(Menu_document& document, const Shows_character& shows) {
    document.problems().attempt([&] { check_value(document.root(), shows); });
}

}  // namespace frontpanel
