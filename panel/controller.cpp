#include "controller.h"

#include <array>
#include <optional>

#include "entry_access.h"

namespace panel {
namespace {

constexpr int TITLE_ROW = 0;
constexpr int TEXT_ROW = 1;
constexpr int SOME_COLUMNS = 16;

// Nothing for a shortcut: a jump would drop the edited value unasked.
std::optional<Editor_key> editor_key_of(Key::Kind kind) {
    switch (kind) {
        case Key::UP:
            return Editor_key::UP;
        case Key::DOWN:
            return Editor_key::DOWN;
        case Key::SELECT:
            return Editor_key::SELECT;
        case Key::BACK:
            return Editor_key::ESCAPE;
        case Key::COARSER:
            return Editor_key::COARSER;
        case Key::FINER:
            return Editor_key::FINER;
        case Key::SHORTCUT:
            break;
    }
    return std::nullopt;
}

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

// A list that its card has not sent yet holds nothing that could be posted.
bool waits_for_its_card(Data_entry& entry) {
    if (!is_live(entry)) {
        return false;
    }
    int smallest = 0;
    int largest = 0;
    int size = 0;
    static_cast<Enum_entry&>(entry).minMaxSize(&smallest, &largest, &size);
    return size <= 1 && display_value(entry, SOME_COLUMNS) == NO_OPTION_YET;
}

// A rule may leave a number without any allowed value.
bool has_no_value(Data_entry& entry) {
    return entry.Get_entry_type() == Data_entry::RANGE_LEAF && !display_value(entry, SOME_COLUMNS);
}

// The entry's own rules and options, taking of its children what was found when they were last asked: they
// are not read once more.
bool is_hidden(Data_entry& menu, Data_interface& device) {
    refresh(menu, device);
    menu.Set_entry_visible(-1);
    return menu.isVisible(false, &device) < 0;
}

}  // namespace

Controller::Controller(Data_entry& root, const Device_link& device, Lcd_size size)
    : m_root(root), m_device(device), m_size(size), m_list(root, device) {}

void Controller::press(const Key& key) {
    if (!m_notices.empty()) {
        m_notices.erase(m_notices.begin());
    } else if (m_editor != nullptr) {
        press_in_editor(key);
    } else {
        press_in_list(key);
    }
}

void Controller::tick() {
    if (m_editor == nullptr) {
        refresh_list();
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
            break;
    }
}

void Controller::press_in_editor(const Key& key) {
    const std::optional<Editor_key> editor_key = editor_key_of(key.kind);
    if (!editor_key) {
        return;
    }
    switch (m_editor->press(*editor_key)) {
        case Editor_result::OPEN:
            break;
        case Editor_result::ACCEPTED:
            commit_edited();
            break;
        case Editor_result::REFUSED:
            tell_refusal();
            break;
        case Editor_result::DISCARDED:
            close_editor();
            break;
    }
    m_warnings.clear();
}

void Controller::tell_refusal() {
    const std::string name = m_editor->entry()->Get_name();
    if (m_warnings.empty()) {
        notify(name, "value refused", false);
    }
    for (const std::string& warning : m_warnings) {
        notify(name, warning, false);
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
        edit(*entry);
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

void Controller::jump(int button) {
    Data_entry* const entry = m_root.getShortcut(button);
    if (entry == nullptr) {
        return;
    }
    if (!is_reachable(entry, m_root, m_device.access)) {
        notify(entry->Get_name(), "not available", false);
    } else if (is_menu(*entry)) {
        m_list.open(*entry, nullptr);
    } else {
        m_list.open(*neighbour(*entry, Data_entry::OPERATION_PARENT), entry);
    }
}

void Controller::edit(Data_entry& entry) {
    if (entry.Get_access_type() == Data_entry::READ_ONLY && !is_warning(entry)) {
        notify(entry.Get_name(), "read only", false);
        return;
    }
    if (refresh(entry, m_device.access); m_device.read_failed(entry)) {
        notify(entry.Get_name(), "read error", true);
        return;
    }
    if (has_no_value(entry) || waits_for_its_card(entry)) {
        notify(entry.Get_name(), is_live(entry) ? "no options yet" : "no value allowed", false);
        return;
    }
    m_title = title_of(entry);
    m_editor = m_editors.open(entry);
}

// An address is asked for an answer once, when it is opened: that takes up to a second.
std::string Controller::title_of(Data_entry& entry) const {
    if (entry.Get_entry_type() != Data_entry::IP_LEAF) {
        return entry.Get_name();
    }
    auto& address = static_cast<Ip_entry&>(entry);
    std::array<char, Ip_entry::IP_STRING_MAX_LENGTH + 1> text{};
    address.Get_value(text.data(), Ip_entry::IP_STRING_MAX_LENGTH);
    return m_device.may_probe(text.data()) ? address.Get_name() : entry.Get_name();
}

void Controller::commit_edited() {
    Data_entry& entry = *m_editor->entry();
    const int result = commit(entry, m_device.access);
    const bool is_lost = is_live(entry) && !m_device.may_post();
    close_editor();
    if (result != 0 || is_lost) {
        notify(entry.Get_name(), "write failed", true);
    }
}

// What the commit changed elsewhere shows at once: every entry of the list is asked whether it is visible.
void Controller::close_editor() {
    Data_entry* const target = m_editors.close(*m_editor->entry());
    m_editor = nullptr;
    if (target == &m_list.menu()) {
        leave();
    } else {
        refresh_list();
    }
}

// A menu that is hidden while it is shown, or within one that is, is left.
void Controller::refresh_list() {
    m_list.refresh();
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

void Controller::warn(const std::string& text) {
    m_warnings.push_back(text);
}

void Controller::notify(const std::string& title, const std::string& text, bool alarm) {
    m_notices.push_back({title, text, alarm});
}

Frame Controller::draw() {
    Frame frame{Lcd(m_size), Leds()};
    if (!m_notices.empty()) {
        draw_notice(frame);
    } else if (m_editor != nullptr) {
        draw_editor(frame);
    } else {
        m_list.draw(frame.lcd);
        frame.leds.alarm = m_list.alarm();
    }
    return frame;
}

void Controller::draw_editor(Frame& frame) {
    const Editor_view shown = m_editor->view(m_size.columns);
    frame.lcd.put(TITLE_ROW, 0, m_title);
    if (!shown.step.empty()) {
        frame.lcd.put_right(TITLE_ROW, " " + shown.step);
    }
    frame.lcd.put(TEXT_ROW, 0, shown.text);
    if (shown.cursor != Editor_view::NO_CURSOR) {
        frame.lcd.set_cursor(TEXT_ROW, shown.cursor);
    }
    frame.leds.edit = shown.edit_led;
}

void Controller::draw_notice(Frame& frame) const {
    frame.lcd.put(TITLE_ROW, 0, m_notices.front().title);
    frame.lcd.put(TEXT_ROW, 0, m_notices.front().text);
    frame.leds.edit = m_editor != nullptr;
    frame.leds.alarm = m_notices.front().alarm;
}

}  // namespace panel
