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
    // The widest text of a number between its bounds, in its format, or of an enumeration with choices in the file.
    // Null for an entry whose values come from a device or a card: they scroll where they do not fit. The text is valid
    // as long as this object. Equal texts are usually kept once, since a menu may have very many items.
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
