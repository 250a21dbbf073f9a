// Whether an entry is shown, and what of the answer is remembered.
#include <frontpanel_data/binding.h>
#include <frontpanel_data/entry.h>

#include "../diagnostics.h"
#include "neighbours.h"

namespace {

// Raises a flag for as long as it lives.
class Raised {
public:
    explicit Raised(bool& flag) : m_flag(flag), m_before(flag) { m_flag = true; }
    ~Raised() { m_flag = m_before; }
    Raised(const Raised&) = delete;
    Raised& operator=(const Raised&) = delete;

private:
    bool& m_flag;
    bool m_before;
};

}  // namespace

int Data_entry::isVisible() {
    return isVisible(false, nullptr);
}

int Data_entry::isVisible(bool if_control_refresh, Data_interface* pDataAccessInf) {
    if (this == setup_link) {
        return VIS_TRUE;
    }
    if (!if_control_refresh && m_entry_visible >= 0) {
        return m_entry_visible;
    }
    // An entry that is already being asked is reached again through a link to an ancestor: it counts as
    // having something to show, which ends the circle.
    const bool asked_again = m_visibility_asked;
    const Raised asking(m_visibility_asked);
    const bool shows_something =
        asked_again || has_something_to_show(if_control_refresh, pDataAccessInf);
    if (if_control_refresh && !asked_again && Get_entry_type() != NODE) {
        refresh_for_visibility(pDataAccessInf);
    }
    int result = VIS_FALSE;
    if (cached_option_vis >= 0 && shows_something && Get_bind_vis() >= 0 && Get_visible() >= 0) {
        result = Get_visible();
        if (!if_control_refresh || asked_again) {
            return result;  // on purpose not remembered: only a refresh vouches for being visible
        }
    }
    Set_entry_visible(result);
    return result;
}

void Data_entry::refresh_for_visibility(Data_interface* iface) {
    if (EntryTypeSpecificOperation(this, iface, nullptr, true, OPERATION_REFRESH, nullptr) != 0) {
        ENTRY_LINE(VISIBILITY, FUNCTION_FIRST, "isVisible",
                   "Error refreshing entry [%s] vis=[%d]\n", Get_name(), isVisible());
    }
}

bool Data_entry::has_something_to_show(bool if_control_refresh, Data_interface* pDataAccessInf) {
    if (Get_entry_type() == NODE && this != link_dummy) {
        return has_visible_children(if_control_refresh, pDataAccessInf);
    }
    Set_has_children(true);
    return true;
}

// What is stored differs on purpose: only a walk that reached the end knows about all children.
bool Data_entry::has_visible_children(bool if_control_refresh, Data_interface* pDataAccessInf) {
    Data_entry* const first = neighbours::first_child(this);
    if (first == nullptr) {
        return false;
    }
    if (first->isVisible(if_control_refresh, pDataAccessInf) >= 0) {
        return true;
    }
    bool links = first->Get_entry_type() == LINK_ENTRY;
    neighbours::Met met;
    met.is_new(first);
    for (Data_entry* sibling = neighbours::next(first); sibling != nullptr && met.is_new(sibling);
         sibling = neighbours::next(sibling)) {
        if (sibling->Get_entry_type() == LINK_ENTRY) {
            links = true;  // counts without being asked: what it houses lies in another menu
        } else if (sibling->isVisible(true, pDataAccessInf) >= 0) {
            return true;
        }
    }
    Set_has_children(links);
    return links;
}
