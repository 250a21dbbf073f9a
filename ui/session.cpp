#include "session.h"

#include <frontpanel_ui/key_message.h>
#include "keys/key_place.h"

namespace frontpanel {

Session::Session(Controller& controller, Data_interface& device, std::optional<std::string> pin,
                 Time now)
    : m_controller(controller), m_device(device), m_last_key(now) {
    if (pin) {
        m_lock.emplace(std::move(*pin));
        m_device.lock_and_dim = 1;
        rest();
    }
}

void Session::press(const Key& key, Time now) {
    m_last_key = now;
    if (!m_dim && types(key.character)) {
        m_controller.press(key);
    } else if (!m_dim) {
        if (const Message_pointer message = message_of(key)) {
            m_controller.receive(*message);
        }
    } else if (m_lock) {
        press_on_lock(key, now);
    } else {
        wake();
    }
}

bool Session::may_end(std::function<void()> ends, Time now) {
    const bool may_end = m_controller.may_end(std::move(ends));
    if (!may_end) {
        m_last_key = now;
        if (m_dim) {
            wake();  // a locked panel has no edit to lose
        }
    }
    return may_end;
}

std::string Session::characters() const {
    if (!m_dim) {
        return m_controller.characters();
    }
    return m_asks ? Pin_lock::CHARACTERS : "";
}

// There is no message for a character that a keyboard types.
bool Session::types(char character) const {
    return character != '\0' && characters().find(character) != std::string::npos;
}

void Session::press_on_lock(const Key& key, Time now) {
    if (!m_asks) {
        m_asks = true;
        m_lock->ask(now);
        return;
    }
    const bool is_typed = types(key.character);
    const Key meant = is_typed ? key : meant_key(m_controller.turned(key), Key_place::LIST);
    switch (m_lock->press(meant, now)) {
        case Pin_lock::Result::ASKING:
            break;
        case Pin_lock::Result::OPEN:
            wake();
            break;
        case Pin_lock::Result::GIVEN_UP:
            m_asks = false;
            break;
    }
}

void Session::tick(Time now, bool beats) {
    m_heart = m_heart != beats;
    m_controller.tick();
    const std::chrono::seconds time_out(m_device.time_for_timeout);
    if (!m_dim && time_out.count() > 0 && now - m_last_key >= time_out) {
        m_device.go_home = 1;
        m_device.lock_and_dim = 1;
    }
    serve_requests();
    if (m_asks && m_lock->tick(now) == Pin_lock::Result::GIVEN_UP) {
        m_asks = false;
    }
}

void Session::serve_requests() {
    if (m_device.go_home != 0) {
        m_device.go_home = 0;
        m_controller.receive(FrontPanel::UserInputTimeout);
    }
    if (m_device.lock_and_dim != 0 && !m_dim) {
        rest();
    } else if (m_device.lock_and_dim == 0 && m_dim) {
        wake();
    }
}

// What is open on a panel that locks would be visible to the next person.
void Session::rest() {
    m_dim = true;
    m_asks = false;
    if (m_lock) {
        m_controller.receive(FrontPanel::UserInputTimeout);
    }
}

void Session::wake() {
    m_dim = false;
    m_asks = false;
    m_device.lock_and_dim = 0;
}

Frame Session::draw(Time now) {
    Frame frame = m_controller.draw();
    if (m_asks) {
        frame.lcd = Lcd(frame.lcd.size());
        frame.leds.edit = false;
        m_lock->draw(frame.lcd, now);
    }
    frame.dim = m_dim && !m_asks;
    if (m_dim) {
        frame.mode = m_asks ? Panel_mode::PIN : m_lock ? Panel_mode::LOCKED : Panel_mode::ASLEEP;
        frame.characters = characters();
        frame.keys = {};
    }
    frame.leds.heart = m_heart;
    return frame;
}

}  // namespace frontpanel
