#include "navigation/menu_path.h"

#include <algorithm>

#include <frontpanel_menu/entry_access.h>

namespace frontpanel {

Menu_path::Menu_path(Data_entry& top) : m_steps{{&top, nullptr}} {}

Menu_path::~Menu_path() {
    leave_all_but(1);
}

Menu_path::Entered Menu_path::enter(Data_entry& menu) {
    if (!is_mount(menu)) {
        if (m_steps.size() == DEEPEST) {
            return Entered::TOO_DEEP;
        }
        m_steps.push_back({&menu, nullptr});
        return Entered::YES;
    }
    const auto found = std::find_if(m_steps.begin(), m_steps.end(),
                                    [&menu](const Menu_step& step) { return step.menu == &menu; });
    if (found != m_steps.end()) {
        leave_all_but(static_cast<size_t>(found - m_steps.begin()) + 1);
        return Entered::YES;
    }
    if (m_steps.size() == DEEPEST) {
        return Entered::TOO_DEEP;
    }
    // Where nothing could be built, the link delivers the entry that it leads back to.
    Data_entry* const first = neighbour(menu, Data_entry::OPERATION_CHILD);
    if (first == nullptr || first == neighbour(menu, Data_entry::OPERATION_PARENT_LINK)) {
        return Entered::NOTHING_THERE;
    }
    m_steps.push_back({&menu, first});
    return Entered::YES;
}

Data_entry* Menu_path::leave() {
    if (m_steps.size() == 1) {
        return nullptr;
    }
    const Menu_step left = m_steps.back();
    m_steps.pop_back();
    if (left.mounted != nullptr) {
        neighbour(*left.menu, Data_entry::OPERATION_PARENT);
    }
    return left.menu;
}

void Menu_path::leave_all_but(size_t count) {
    while (m_steps.size() > count) {
        leave();
    }
}

void Menu_path::restart(Data_entry& top) {
    leave_all_but(1);
    m_steps.front() = {&top, nullptr};
}

}  // namespace frontpanel
