// The widest text that the values of an item have.
#ifndef FRONTPANEL_MENU_WIDEST_VALUE_H
#define FRONTPANEL_MENU_WIDEST_VALUE_H

#include <frontpanel_data/data_entry.h>

#include <cstddef>
#include <map>
#include <set>
#include <string>

#include <frontpanel_base/json_value.h>

namespace frontpanel {

// Keeps what it found, since the items of a repetition have one format, and how much work that was.
class Widest_values {
public:
    // Of a number between its bounds, in its format, and of an enumeration with choices in the file. Null for an
    // entry whose values have no such width: what a device or a card sends scrolls where it has no room. The text is
    // valid as long as this object, and equal ones are mostly one: there are as many items as a menu holds.
    //
    // A number with a "value_format" of its own is tried where its text may be widest: at its bounds, the rows of its
    // table, around the powers of ten, and at up to a thousand values between.
    const std::string* of(Data_entry& entry, const Json_value& item);

private:
    const std::string& of_number(Range_entry& number, const Json_value& item);

    std::map<std::string, std::string> m_known;  // by bounds and format
    std::set<std::string> m_choices;
    std::size_t m_work = 0;
};

}  // namespace frontpanel

#endif
