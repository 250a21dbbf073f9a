#include <frontpanel_ui/panel.h>

#include <unistd.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

#include <frontpanel_data/data_interface.h>
#include <frontpanel_editors/still_texts.h>
#include <frontpanel_ui/main_loop.h>
#include <frontpanel_ui/message_queue.h>
#include "controller.h"
#include "session.h"

namespace frontpanel {
namespace {

constexpr int PAUSE_OF_REST = 6;  // beside the time that the work before it took

Panel_options completed(Panel_options options) {
    if (options.pin && !is_pin(*options.pin)) {
        throw std::invalid_argument("a PIN is " + std::to_string(SHORTEST_PIN) + " to " +
                                    std::to_string(LONGEST_PIN) + " digits");
    }
    if (!options.clock) {
        options.clock = [] { return std::chrono::steady_clock::now(); };
    }
    return options;
}

Device_link link_of(Menu& menu, const Panel_options& options) {
    Device_link link = link_to(menu);
    if (options.may_probe) {
        link.may_probe = options.may_probe;
    }
    return link;
}

}  // namespace

bool is_pin(const std::string& text) {
    const auto is_digit = [](char byte) { return byte >= '0' && byte <= '9'; };
    return text.size() >= SHORTEST_PIN && text.size() <= LONGEST_PIN &&
           std::all_of(text.begin(), text.end(), is_digit);
}

bool can_post() {
    return ::access("/dev/NULL", W_OK) == 0 || ::access("/dev", W_OK) == 0;
}

struct Panel::Parts {
    Parts(Menu& shown, Panel_options&& given)
        : menu(shown),
          options(completed(std::move(given))),
          interface_before(std::exchange(VarIdDataInfStore::m_pDataAccessInf, &menu.access())),
          controller(menu.root(), link_of(menu, options), options.size),
          next_tick(options.clock() + TICK) {
        controller.set_most_refreshes(options.refreshes_at_once);
        controller.show_home(home_of(menu));
        if (options.log != nullptr) {
            controller.set_log(*options.log);
        }
        controller.configure(options.encoder.value_or(menu.encoder_settings()),
                             &menu.editor_settings());
        if (options.answer_keys) {
            controller.set_answer_keys(options.answer_keys->accepting,
                                       options.answer_keys->cancelling);
        }
        controller.set_warning_armer([this] { menu.bindings()->arm_warnings(); });
        controller.set_clock([this] {
            return std::chrono::duration_cast<std::chrono::milliseconds>(
                options.clock().time_since_epoch());
        });
        menu.bindings()->set_warning_listener([this](const std::string& text) {
            controller.warn(text);
            note_change(Texts::STAY);
        });
        menu.bindings()->set_fault_listener([this](const Rule_fault& fault) {
            controller.tell_fault(fault);
            note_change(Texts::STAY);
            if (options.rule_fault) {
                options.rule_fault(fault);
            }
        });
        if (options.idle_timeout) {
            menu.access().time_for_timeout = static_cast<int32_t>(options.idle_timeout->count());
        }
        session.emplace(controller, menu.access(), options.pin, options.clock());
    }
    ~Parts() {
        menu.bindings()->set_warning_listener(nullptr);
        menu.bindings()->set_fault_listener(nullptr);
        VarIdDataInfStore::m_pDataAccessInf = interface_before;
    }
    Parts(const Parts&) = delete;
    Parts& operator=(const Parts&) = delete;

    // The full tick.
    Time tick_due() const {
        return is_hurried ? std::min(next_tick, last_tick + SHORTEST_TICK) : next_tick;
    }
    // After work that began then: the rest waits, and leaves the processor to others meanwhile.
    void pause_rest(Time began) {
        if (controller.has_rest()) {
            const Time now = options.clock();
            next_rest = now + PAUSE_OF_REST * (now - began);
        }
    }
    void settle_rest(Time began) {
        if (controller.settle_rest()) {
            note_change(Texts::STAY);
        }
        pause_rest(began);
    }
    // Another frame is due. Between two beats it has new values, but texts scroll no faster for it.
    enum class Texts { STAY, MOVE };
    void note_change(Texts texts) {
        has_changed = true;
        are_moving = are_moving || texts == Texts::MOVE;
    }

    Menu& menu;
    Panel_options options;
    Data_interface* interface_before;
    Controller controller;
    std::optional<Session> session;
    Time next_tick;
    Time last_tick = Time::min();
    Time next_rest = Time::min();  // of entries that wait
    bool is_hurried = false;       // a tick comes before the next one
    std::optional<Frame> frame;    // the last one drawn
    bool has_changed = true;       // since then
    bool are_moving = true;        // the texts, with the next frame
    bool is_over = false;
};

Panel::Panel(Menu& menu, Panel_options options)
    : m_parts(std::make_unique<Parts>(menu, std::move(options))) {}

Panel::~Panel() = default;

void Panel::press(const Key& key) {
    const Time time = now();
    m_parts->session->press(key, time);
    m_parts->pause_rest(time);
    m_parts->note_change(Parts::Texts::MOVE);
}

bool Panel::types(char character) const {
    return m_parts->session->types(character);
}

void Panel::receive(const FrontPanel::Message& message) {
    if (tells_idle(message)) {
        m_parts->controller.receive(message);
        m_parts->note_change(Parts::Texts::MOVE);
    }
    for (const Key& key : keys_of(message)) {
        press(key);
    }
}

void Panel::receive(Message_queue& messages) {
    while (const Message_pointer message = messages.pop()) {
        receive(*message);
    }
}

void Panel::quit() {
    Parts& parts = *m_parts;
    if (parts.session->may_end([&parts] { parts.is_over = true; }, now())) {
        parts.is_over = true;
    }
    parts.note_change(Parts::Texts::MOVE);
}

bool Panel::is_over() const {
    return m_parts->is_over;
}

void Panel::tick() {
    Parts& parts = *m_parts;
    const Time time = now();
    if (parts.controller.has_rest() && time < parts.tick_due()) {
        parts.settle_rest(time);
        return;
    }
    const bool is_between = std::exchange(parts.is_hurried, false) && time < parts.next_tick;
    parts.last_tick = time;
    if (parts.options.before_tick) {
        parts.options.before_tick();
    }
    parts.session->tick(time, !is_between);
    parts.pause_rest(time);
    parts.next_tick = is_between ? parts.next_tick : time + TICK;
    parts.note_change(is_between ? Parts::Texts::STAY : Parts::Texts::MOVE);
}

Time Panel::due() const {
    const Parts& parts = *m_parts;
    return parts.controller.has_rest() ? std::min(parts.tick_due(), parts.next_rest)
                                       : parts.tick_due();
}

void Panel::hurry() {
    m_parts->is_hurried = true;
}

int Panel::device_descriptor() const {
    return m_parts->is_hurried ? -1 : m_parts->options.device_descriptor;
}

void Panel::tell(const std::string& title, const std::string& text) {
    m_parts->controller.tell_device(title, text);
    m_parts->note_change(Parts::Texts::STAY);
}

bool Panel::has_changed() const {
    return m_parts->has_changed;
}

const Frame& Panel::frame() {
    if (m_parts->has_changed || !m_parts->frame) {
        const Still_texts still(!m_parts->are_moving);
        m_parts->frame = m_parts->session->draw(now());
        m_parts->has_changed = false;
        m_parts->are_moving = false;
    }
    return *m_parts->frame;
}

void Panel::scroll() {
    m_parts->note_change(Parts::Texts::MOVE);
}

void Panel::set_size(Lcd_size size) {
    m_parts->session->set_size(size);
    m_parts->note_change(Parts::Texts::MOVE);
}

Time Panel::now() const {
    return m_parts->options.clock();
}

int Panel::run(Front& front) {
    return run(front, End_watch());
}

int Panel::run(Front& front, const End_watch& end) {
    return Main_loop(*this, front).run(end);
}

}  // namespace frontpanel
