#include "controller.h"

#include <cstdint>

#include <frontpanel_menu/entry_access.h>

namespace frontpanel {
namespace {

constexpr size_t MOST_POLLED =
    1000;                       // parameters in a tick: what they cost is spread in a large menu
constexpr int MOST_FAULTS = 5;  // shown one after the other: each costs a key
constexpr const char* LOSES_EDIT = "the edit is lost";
constexpr const char* HIDDEN = "hidden: edit ended";

}  // namespace

Controller::Controller(Data_entry& root, const Device_link& device, Lcd_size size)
    : m_device(device),
      m_size(size),
      m_navigation(root, device, m_notices),
      m_editing(device, m_notices, [this](const Data_entry* /*target*/) { editor_closed(); }) {
    m_editing.set_settlement_listener(
        [this](const Binding_settlement& settled) { tell_circle(settled); });
    m_device.poll(SIZE_MAX);
    settle();
    m_navigation.refresh();
}

void Controller::configure(const Encoder_settings& encoder, const Editor_settings_table* entries) {
    m_is_reversed = encoder.reversed;
    m_navigation.set_wrap(encoder.wrap);
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

Key Controller::turned(const Key& key) const {
    if (!m_is_reversed || (key.kind != Key::UP && key.kind != Key::DOWN)) {
        return key;
    }
    return {key.kind == Key::UP ? Key::DOWN : Key::UP};
}

// Holds for notices and questions too: an arrow that moves a cursor neither accepts nor discards one.
Key_place Controller::place() const {
    if (m_log && m_log->is_open()) {
        return m_log->is_list() ? Key_place::LIST : Key_place::CURSOR;
    }
    if (!m_editing.is_changing()) {
        return Key_place::LIST;
    }
    return m_editing.can_erase() ? Key_place::TEXT : Key_place::CURSOR;
}

std::string Controller::characters() const {
    const bool is_typed = m_notices.empty() && !(m_log && m_log->is_open());
    return is_typed ? m_editing.characters() : "";
}

Panel_mode Controller::mode() const {
    if (m_log && m_log->is_open()) {
        return m_log->is_list() ? Panel_mode::LOG_LIST : Panel_mode::LOG;
    }
    if (!m_notices.empty()) {
        return m_notices.asks() ? Panel_mode::QUESTION : Panel_mode::NOTICE;
    }
    return m_editing.is_open() ? m_editing.mode() : m_navigation.mode();
}

Key_uses Controller::key_uses() {
    Key_uses uses = m_navigation.key_uses();
    uses.turns_pages = !(m_log && m_log->is_open()) && m_notices.has_pages();
    return uses;
}

void Controller::press(const Key& pressed) {
    if (pressed.character != '\0' && characters().find(pressed.character) != std::string::npos) {
        m_editing.type(pressed.character);
        settle_and_show();
        return;
    }
    // One erasing key too many must not lose the edit.
    const bool erases_nothing =
        pressed.kind == Key::ERASE && !characters().empty() && !m_editing.can_erase();
    if (!erases_nothing) {
        press_meant(meant_key(turned(pressed), place()));
    }
}

void Controller::press_meant(const Key& key) {
    m_key = key.kind;
    if (m_log && m_log->is_open()) {
        m_log->press(key.kind);
    } else if (key.kind == Key::DIAGNOSTICS) {
        show_log();
    } else if (!m_notices.empty()) {
        m_notices.press(key.kind);
    } else if (m_editing.is_open()) {
        m_editing.press(key);
    } else {
        press_in_menu(key);
    }
    m_key = NO_KEY;
    settle_and_show();
}

// Not while the log is shown: the library's lines would be added to it. Nor during a notice or a question about an
// edited value: a refresh would remove it.
bool Controller::is_free() const {
    const bool is_reading = m_log && m_log->is_open();
    return !is_reading && (m_notices.empty() || !m_editing.is_open());
}

// Lets the rules act on what was read and written. Whether anything was refreshed for it.
bool Controller::settle() {
    const Binding_settlement settled = m_device.settle(m_most_refreshes);
    m_has_rest = !settled.is_complete;
    tell_circle(settled);
    return settled.refreshes > 0;
}

void Controller::tell_circle(const Binding_settlement& settled) {
    if (!settled.at_rest && m_told_circles.insert(settled.path).second) {
        print_always("Bindings do not settle: " + settled.path);
        m_notices.tell("Bindings", "unstable: " + settled.path);
    }
}

// Thousands of entries may have the same rule.
void Controller::tell_fault(const Rule_fault& fault) {
    if (!fault.is_notable()) {
        return;
    }
    m_shown_faults = m_notices.empty() ? 1 : m_shown_faults + 1;
    if (m_shown_faults <= MOST_FAULTS) {
        m_notices.tell(fault.name, "rule: " + fault.reason);
    } else if (m_shown_faults == MOST_FAULTS + 1) {
        m_notices.tell("Rules", "more faults: see the log");
    }
}

// A key does not wait for the whole list where work is done in parts: what is drawn is asked, and the others in turns.
void Controller::settle_and_show() {
    if (!is_free() || !settle()) {
        return;
    }
    if (m_editing.is_open()) {
        follow_edited();
    } else if (m_most_refreshes != SIZE_MAX) {
        m_navigation.begin_round();
        m_navigation.tick();
    } else {
        m_navigation.refresh();
    }
}

void Controller::show_log() {
    if (!m_log) {
        m_notices.tell("Diagnostics", "not kept");
        return;
    }
    const Data_entry* const entry = m_editing.is_open() ? m_edited : m_navigation.selected();
    m_log->open(entry == nullptr ? "" : entry->Get_name());
}

void Controller::tick() {
    if (!is_free()) {
        return;
    }
    m_device.poll(MOST_POLLED);
    settle();
    if (m_editing.is_open()) {
        follow_edited();
    } else {
        m_navigation.tick();
    }
}

bool Controller::has_rest() const {
    const bool asks = m_navigation.is_in_round() && !m_editing.is_open();
    return (m_has_rest || asks) && is_free();
}

bool Controller::settle_rest() {
    if (!m_has_rest) {
        return m_navigation.tick_unseen();
    }
    const size_t told = m_told_circles.size();
    settle();
    return m_told_circles.size() > told;
}

void Controller::follow_edited() {
    if (m_navigation.is_shown(*m_edited)) {
        m_editing.follow();
    } else {
        m_editing.end(HIDDEN);
    }
}

// A link is edited by what it houses, under its own name.
void Controller::press_in_menu(const Key& key) {
    if (key.kind != Key::SELECT) {
        m_navigation.press(key);
        return;
    }
    if (Data_entry* const entry = m_navigation.select()) {
        m_edited = entry;
        m_editing.open(housed(*entry), entry->Get_name());
    }
}

// What is asked about the edited value waits no longer: that would be lost as well.
bool Controller::may_end(std::function<void()> ends) {
    if (!m_editing.has_changes()) {
        return true;
    }
    if (m_asks_for_end) {
        return false;
    }
    if (m_log) {
        m_log->close();
    }
    m_notices.cancel();
    m_asks_for_end = true;
    m_notices.ask("End", {LOSES_EDIT},
                  [this, ends = std::move(ends)](bool accepted) { answer_end(accepted, ends); });
    return false;
}

void Controller::answer_end(bool accepted, const std::function<void()>& ends) {
    m_asks_for_end = false;
    if (accepted) {
        m_editing.drop();  // a previewed value is not to stay
        ends();
    }
}

void Controller::go_home() {
    if (m_log) {
        m_log->close();
    }
    if (m_editing.is_open()) {
        m_editing.drop();
    }
    m_navigation.go_home();
}

// What was written shows at once elsewhere: every entry of the list is asked whether it is visible.
void Controller::editor_closed() {
    settle();
    m_navigation.leave_edited(*std::exchange(m_edited, nullptr), m_key);
}

// Reading a line may change what rules depend on, so the rules settle before it is drawn. Entries that already waited
// keep their turns.
void Controller::read_list() {
    if ((m_log && m_log->is_open()) || !m_notices.empty() || m_editing.is_open()) {
        m_navigation.cover();
    } else if (m_navigation.bring_into_view(m_size) && !m_has_rest && settle()) {
        m_navigation.tick();
    }
}

Frame Controller::draw() {
    read_list();
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
        m_navigation.draw(frame.lcd);
        frame.leds.alarm = m_navigation.alarm();
    }
    frame.mode = mode();
    frame.characters = characters();
    frame.keys = key_uses();
    return frame;
}

}  // namespace frontpanel
