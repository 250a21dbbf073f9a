#include "controller.h"

#include "entry_access.h"

namespace panel {
namespace {

constexpr const char* HIDDEN = "hidden: edit ended";

// Whether every menu on the way to the entry is shown, and the entry itself.
bool is_reachable(Data_entry* entry, const Data_entry& root, Data_interface& device) {
    while (entry != nullptr && entry != &root) {
        refresh(*entry, device);
        if (entry->isVisible(true, &device) < 0) {
            return false;
        }
        entry = neighbour(*entry, Data_entry::OPERATION_PARENT);
    }
    return entry != nullptr;
}

// The entry's own rules and options, taking of its children what was found when they were last asked: they
// are not read once more.
bool is_hidden(Data_entry& menu, Data_interface& device) {
    refresh(menu, device);
    menu.Set_entry_visible(-1);
    return menu.isVisible(false, &device) < 0;
}

// As `is_reachable`, asking nothing but the entry and the menus around it.
bool is_shown(Data_entry& entry, const Data_entry& root, Data_interface& device) {
    if (entry.isVisible(true, &device) < 0) {
        return false;
    }
    Data_entry* menu = neighbour(entry, Data_entry::OPERATION_PARENT);
    while (menu != nullptr && menu != &root && !is_hidden(*menu, device)) {
        menu = neighbour(*menu, Data_entry::OPERATION_PARENT);
    }
    return menu == &root;
}

}  // namespace

Controller::Controller(Data_entry& root, const Device_link& device, Lcd_size size)
    : m_root(root),
      m_device(device),
      m_size(size),
      m_list(root, device),
      m_editing(device, m_notices, [this](const Data_entry* target) { editor_closed(target); }) {}

void Controller::configure(const Encoder_settings& encoder, const Editor_settings_table* entries) {
    m_is_reversed = encoder.reversed;
    m_list.set_wrap(encoder.wrap);
    m_editing.configure(encoder, entries);
}

void Controller::receive(const FrontPanel::Message& message) {
    if (tells_idle(message)) {
        go_home();
    }
    for (const Key& key : keys_of(message)) {
        press(key);
    }
}

void Controller::receive(Message_queue& messages) {
    while (const Message_pointer message = messages.pop()) {
        receive(*message);
    }
}

void Controller::press(const Key& pressed) {
    Key key = pressed;
    if (m_is_reversed && (key.kind == Key::UP || key.kind == Key::DOWN)) {
        key.kind = key.kind == Key::UP ? Key::DOWN : Key::UP;
    }
    if (m_log && m_log->is_open()) {
        m_log->press(key.kind);
    } else if (key.kind == Key::DIAGNOSTICS) {
        show_log();
    } else if (!m_notices.empty()) {
        m_notices.press(key.kind);
    } else if (m_editing.is_open()) {
        m_editing.press(key);
    } else {
        press_in_list(key);
    }
}

void Controller::show_log() {
    if (!m_log) {
        m_notices.tell("Diagnostics", "not kept");
        return;
    }
    const Data_entry* const entry = m_editing.is_open() ? &m_editing.entry() : m_list.selected();
    m_log->open(entry == nullptr ? "" : entry->Get_name());
}

// What the library prints is not added to while it is read.
void Controller::tick() {
    if (m_log && m_log->is_open()) {
        return;
    }
    if (!m_editing.is_open()) {
        m_list.refresh_shown();
        leave_hidden();
    } else if (m_notices.empty()) {
        follow_edited();
    }
}

void Controller::follow_edited() {
    if (is_shown(m_editing.entry(), m_root, m_device.access)) {
        m_editing.follow();
    } else {
        m_editing.end(HIDDEN);
    }
}

void Controller::press_in_list(const Key& key) {
    switch (key.kind) {
        case Key::UP:
            m_list.move(-1);
            break;
        case Key::DOWN:
            m_list.move(1);
            break;
        case Key::SELECT:
            select();
            break;
        case Key::BACK:
            leave();
            break;
        case Key::SHORTCUT:
            jump(key.button);
            break;
        case Key::COARSER:
        case Key::FINER:
        case Key::INSERT:
        case Key::DELETE:
        case Key::DIAGNOSTICS:
            break;
    }
}

void Controller::select() {
    Data_entry* const entry = m_list.selected();
    if (entry == nullptr) {
        return;
    }
    if (is_menu(*entry)) {
        m_list.open(*entry, nullptr);
    } else {
        m_editing.open(*entry);
    }
}

void Controller::leave() {
    Data_entry& left = m_list.menu();
    Data_entry* const parent =
        &left == &m_root ? nullptr : neighbour(left, Data_entry::OPERATION_PARENT);
    if (parent != nullptr) {
        m_list.open(*parent, &left);
    }
}

// Level by level, as a hand would leave each menu.
void Controller::go_home() {
    if (m_log) {
        m_log->close();
    }
    if (m_editing.is_open()) {
        m_editing.drop();
    }
    const Data_entry* left = nullptr;
    while (left != &m_list.menu()) {
        left = &m_list.menu();
        leave();
    }
    m_list.open(m_root, nullptr);
}

void Controller::jump(int button) {
    Data_entry* const entry = m_root.getShortcut(button);
    if (entry == nullptr) {
        return;
    }
    if (!is_reachable(entry, m_root, m_device.access)) {
        m_notices.tell(entry->Get_name(), "not available");
    } else if (is_menu(*entry)) {
        m_list.open(*entry, nullptr);
    } else {
        m_list.open(*neighbour(*entry, Data_entry::OPERATION_PARENT), entry);
    }
}

// What the commit changed elsewhere shows at once: every entry of the list is asked whether it is visible.
void Controller::editor_closed(const Data_entry* target) {
    if (target == &m_list.menu()) {
        leave();
    } else {
        refresh_list();
    }
}

void Controller::refresh_list() {
    m_list.refresh();
    leave_hidden();
}

// A menu that is hidden while it is shown, or within one that is, is left.
void Controller::leave_hidden() {
    Data_entry* hidden = nullptr;
    for (Data_entry* menu = &m_list.menu(); menu != nullptr && menu != &m_root;
         menu = neighbour(*menu, Data_entry::OPERATION_PARENT)) {
        if (is_hidden(*menu, m_device.access)) {
            hidden = menu;
        }
    }
    if (hidden != nullptr) {
        m_list.open(*neighbour(*hidden, Data_entry::OPERATION_PARENT), hidden);
    }
}

Frame Controller::draw() {
    Frame frame{Lcd(m_size), Leds()};
    if (m_log && m_log->is_open()) {
        m_log->draw(frame.lcd);
        frame.leds.edit = m_editing.is_changing();
    } else if (!m_notices.empty()) {
        m_notices.draw(frame);
        frame.leds.edit = m_editing.is_changing();
    } else if (m_editing.is_open()) {
        m_editing.draw(frame);
    } else {
        m_list.draw(frame.lcd);
        frame.leds.alarm = m_list.alarm();
    }
    return frame;
}

}  // namespace panel
