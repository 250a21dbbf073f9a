// The menus that a person went through, from the top to the one that is shown.
//
// A menu is a node, or a link that leads to one. A mount link builds its menu when it is entered and takes it down
// when it is left: the path pairs the two, whichever way the panel goes.
#ifndef FRONTPANEL_UI_MENU_PATH_H
#define FRONTPANEL_UI_MENU_PATH_H

#include <frontpanel_data/data_entry.h>

#include <vector>

namespace frontpanel {

struct Menu_step {
    Data_entry* menu;
    Data_entry*
        mounted;  // the first entry of a menu that was built; null for a menu that is always there
};

class Menu_path {
public:
    // Links can form circles, so the depth is limited.
    static constexpr size_t DEEPEST = 100;

    enum class Entered { YES, NOTHING_THERE, TOO_DEEP };

    // Begins at a menu. Every menu outlives the path.
    explicit Menu_path(Data_entry& top);
    // Takes down what was built.
    ~Menu_path();
    Menu_path(const Menu_path&) = delete;
    Menu_path& operator=(const Menu_path&) = delete;

    // The menus from the top; the last one is shown.
    const std::vector<Menu_step>& steps() const { return m_steps; }
    const Menu_step& shown() const { return m_steps.back(); }

    // Goes into a menu below the shown one. A mount link that is on the path already is gone back to, since it
    // has one menu only.
    Entered enter(Data_entry& menu);
    // Leaves the shown menu and returns it. Null at the top.
    Data_entry* leave();
    // Leaves all menus below the first `count`, at least one.
    void leave_all_but(size_t count);
    // Begins anew at a menu.
    void restart(Data_entry& top);

private:
    std::vector<Menu_step> m_steps;
};

}  // namespace frontpanel

#endif
