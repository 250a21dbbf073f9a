#include "navigation/navigation.h"

#include <algorithm>
#include <map>
#include <utility>

#include <frontpanel_menu/entry_access.h>

namespace frontpanel {
namespace {

// The menus around an entry, the outermost first.
std::vector<Data_entry*> menus_around(Data_entry& entry) {
    std::vector<Data_entry*> menus;
    for (Data_entry* menu = menu_of(entry); menu != nullptr && menus.size() < Menu_path::DEEPEST;
         menu = menu_of(*menu)) {
        menus.push_back(menu);
    }
    std::reverse(menus.begin(), menus.end());
    return menus;
}

}  // namespace

Home home_of(Menu& menu) {
    return {menu.homescreen(), menu.favourites()};
}

Navigation::Navigation(Data_entry& root, const Device_link& device, Notices& notices)
    : m_root(root), m_device(device), m_notices(notices), m_path(root), m_list(root, device) {}

void Navigation::show_home(const Home& home) {
    m_home = home;
    go_home();
}

bool Navigation::is_home() const {
    return m_path.shown().menu == m_home.homescreen;
}

bool Navigation::is_top(const Data_entry* menu) const {
    return menu != nullptr &&
           (menu == &m_root || menu == m_home.homescreen || menu == m_home.favourites);
}

Data_entry* Navigation::selected() const {
    return m_list.is_at_rest() ? nullptr : m_list.selected();
}

Panel_mode Navigation::mode() const {
    if (m_path.steps().size() > 1) {
        return Panel_mode::MENU;
    }
    return m_list.is_at_rest() ? Panel_mode::HOMESCREEN
           : is_home()         ? Panel_mode::HOME_CURSOR
                               : Panel_mode::TOP_MENU;
}

Key_uses Navigation::key_uses() const {
    Key_uses uses;
    uses.has_favourites = m_home.favourites != nullptr;
    if (const std::map<int, ShortcutS>* const shortcuts = m_root.Get_shortcuts_map()) {
        for (const auto& [button, shortcut] : *shortcuts) {
            if (shortcut.entry != nullptr) {
                uses.shortcuts.push_back(button);
            }
        }
    }
    return uses;
}

void Navigation::press(const Key& key) {
    switch (key.kind) {
        case Key::UP:
            turn(-1);
            break;
        case Key::DOWN:
            turn(1);
            break;
        case Key::BACK:
            back();
            break;
        case Key::FAVOURITES:
            open_favourites();
            break;
        case Key::SHORTCUT:
            jump(key.button);
            break;
        default:
            break;
    }
}

void Navigation::turn(int steps) {
    if (m_list.is_at_rest()) {
        m_list.wake();
    } else {
        m_list.move(steps);
    }
}

Data_entry* Navigation::select() {
    Data_entry* const entry = selected();
    if (entry != nullptr && !is_menu(*entry)) {
        return entry;
    }
    if (entry != nullptr) {
        open(*entry);
    } else if (is_home()) {
        open(m_root);
    }
    return nullptr;
}

void Navigation::open(Data_entry& menu) {
    switch (m_path.enter(menu)) {
        case Menu_path::Entered::YES:
            show(nullptr);
            return;
        case Menu_path::Entered::NOTHING_THERE:
            m_notices.tell(menu.Get_name(), "nothing there");
            break;
        case Menu_path::Entered::TOO_DEEP:
            m_notices.tell(menu.Get_name(), "too many menus open");
            break;
    }
    show(&menu);
}

void Navigation::show(Data_entry* cursor) {
    m_list.open(m_path.shown(), cursor, !is_home());
    if (is_home() && cursor == nullptr) {
        m_list.rest(m_root.Get_name());
    }
}

void Navigation::back() {
    const bool is_at_top = m_path.steps().size() == 1;
    if (!is_at_top) {
        leave();
    } else if (is_home() && !m_list.is_at_rest()) {
        m_list.rest(m_root.Get_name());
    }
}

// Favourites that are open already are gone back to: links in them may lead to menus above them.
void Navigation::open_favourites() {
    if (m_home.favourites == nullptr) {
        m_notices.tell("Favourites", "none in this menu");
        return;
    }
    const auto& steps = m_path.steps();
    const auto found = std::find_if(steps.begin(), steps.end(), [this](const Menu_step& step) {
        return step.menu == m_home.favourites;
    });
    if (found != steps.end()) {
        m_path.leave_all_but(static_cast<size_t>(found - steps.begin()) + 1);
        show(nullptr);
        return;
    }
    m_left_for_favourites = selected();
    open(*m_home.favourites);
}

void Navigation::leave() {
    Link_entry* const link = link_of(*m_path.shown().menu);
    if (link != nullptr && lead_on(*link, Link_entry::ESCAPE_LEAVE)) {
        return;
    }
    Data_entry* const left = m_path.leave();
    if (left == m_home.favourites) {
        show(std::exchange(m_left_for_favourites, nullptr));
    } else {
        show(is_top(left) ? nullptr : left);
    }
}

// Where a link leads by itself; false when the panel is to stay at the link.
bool Navigation::lead_on(Link_entry& link, int escape_code) {
    Data_entry* const escape = link.Get_escape_node(escape_code);
    if (escape != nullptr && go_to(*escape, true)) {
        return true;
    }
    const bool skips = link.getBehaviour() == Link_entry::LINK_SKIP && !link.isMountLink();
    return skips && escape_code != Link_entry::ESCAPE_REDRAW && go_to(housed(link), false);
}

void Navigation::leave_edited(Data_entry& entry, Key::Kind key) {
    Link_entry* const link = link_of(entry);
    const int escape_code = key == Key::SELECT ? Link_entry::ESCAPE_SELECT
                            : key == Key::BACK ? Link_entry::ESCAPE_LEAVE
                                               : Link_entry::ESCAPE_REDRAW;
    if (link == nullptr || !lead_on(*link, escape_code)) {
        refresh();
    }
}

void Navigation::go_home() {
    m_path.restart(m_home.homescreen != nullptr ? *m_home.homescreen : m_root);
    show(nullptr);
}

void Navigation::jump(int button) {
    Data_entry* const entry = m_root.getShortcut(button);
    if (entry != nullptr && !go_to(*entry, true)) {
        m_notices.tell(entry->Get_name(), "not available");
    }
}

// By the menus around the entry, each of which must be shown; `inside` opens the entry when it is a menu itself.
// False, and nothing happens, when there is no such way: what a mount link builds has none from outside.
bool Navigation::go_to(Data_entry& entry, bool inside) {
    std::vector<Data_entry*> way = menus_around(entry);
    Data_entry* const top = way.empty() ? &entry : way.front();
    way.push_back(&entry);
    const auto is_passable = [this](Data_entry* menu) {
        return is_top(menu) || (!is_mount(*menu) && m_device.is_listed(*menu));
    };
    if (!is_top(top) || (way.size() == 1 && !inside) ||
        !std::all_of(way.begin(), way.end() - 1, is_passable) ||
        !(is_top(&entry) || m_device.is_listed(entry))) {
        return false;
    }
    way.pop_back();
    m_path.restart(m_home.homescreen != nullptr ? *m_home.homescreen : m_root);
    for (Data_entry* const menu : way) {
        if (menu != m_path.shown().menu) {
            m_path.enter(*menu);
        }
    }
    if (inside && is_menu(entry) && m_path.shown().menu != &entry) {
        open(entry);
    } else {
        show(&entry);
    }
    return true;
}

bool Navigation::is_shown(Data_entry& entry) {
    if (entry.isVisible(true, &m_device.access) < 0) {
        return false;
    }
    const auto& steps = m_path.steps();
    return std::none_of(steps.begin(), steps.end(), [this](const Menu_step& step) {
        return !is_top(step.menu) && !m_device.is_listed(*step.menu);
    });
}

void Navigation::refresh() {
    m_list.refresh();
    leave_hidden();
}

void Navigation::tick() {
    m_list.refresh_shown();
    leave_hidden();
}

bool Navigation::tick_unseen() {
    const Data_entry* const menu = m_path.shown().menu;
    const std::vector<Data_entry*> before = m_list.visible();
    tick();
    return m_path.shown().menu != menu || m_list.visible() != before;
}

void Navigation::leave_hidden() {
    const auto& steps = m_path.steps();
    const auto found = std::find_if(steps.begin(), steps.end(), [this](const Menu_step& step) {
        return !is_top(step.menu) && !m_device.is_listed(*step.menu);
    });
    if (found == steps.end()) {
        return;
    }
    Data_entry* const hidden = found->menu;
    m_path.leave_all_but(static_cast<size_t>(found - steps.begin()));
    Link_entry* const link = link_of(*hidden);
    if (link == nullptr || !lead_on(*link, Link_entry::ESCAPE_REDRAW)) {
        show(hidden);
    }
}

}  // namespace frontpanel
