#include <frontpanel_menu/shown_value.h>

#include <frontpanel_menu/entry_access.h>
#include <frontpanel_menu/entry_kind.h>

namespace frontpanel {

std::optional<std::string> shown_value(Data_entry& entry) {
    if (is_menu(entry)) {
        return std::string();
    }
    Data_entry& valued = housed(entry);
    return kind_of(valued).display(valued);
}

// A fetch makes a live list writable so that a person can look through it; its card still takes no choice.
bool is_read_only(const Data_entry& entry) {
    const Data_entry& valued = housed(entry);
    return valued.Get_access_type() == Data_entry::READ_ONLY ||
           (is_live(valued) && valued.Get_flag_access_type_chg() &&
            valued.Get_orig_access_type() == Data_entry::READ_ONLY);
}

}  // namespace frontpanel
