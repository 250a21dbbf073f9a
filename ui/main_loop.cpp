#include <frontpanel_ui/main_loop.h>

#include <algorithm>
#include <iterator>

#include <frontpanel_ui/panel.h>

namespace frontpanel {
namespace {

using std::chrono::milliseconds;

constexpr int SIGNAL_STATUS = 128;

int milliseconds_between(Time now, Time then) {
    constexpr milliseconds LONGEST = std::chrono::minutes(1);  // of one wait
    const auto left = then - now > LONGEST ? LONGEST : std::chrono::ceil<milliseconds>(then - now);
    return static_cast<int>(std::max(left, milliseconds(0)).count());
}

}  // namespace

Main_loop::Main_loop(Panel& panel, Front& front) : m_panel(panel), m_front(front) {}

void Main_loop::turn() {
    const std::optional<Front_event> event = m_front.next(m_panel.now());
    m_busy = event.has_value();
    if (event) {
        take(*event);
    }
    if (m_over) {
        return;
    }
    pollfd device{m_panel.device_descriptor(), POLLIN, 0};
    if (poll(&device, 1, 0) > 0) {
        m_panel.hurry();
    }
    if (m_panel.now() >= m_panel.due()) {
        m_panel.tick();
    }
    if (m_panel.has_changed() || m_redraw) {
        m_front.show(m_panel.frame());
    }
    m_redraw = false;
}

void Main_loop::take(const Front_event& event) {
    switch (event.kind) {
        case Front_event::KEY:
            press(event.key);
            break;
        case Front_event::QUIT:
            if (m_panel.types(event.key.character)) {
                press(event.key);
            } else {
                m_panel.quit();
                m_over = m_panel.is_over();
            }
            break;
        case Front_event::GONE:
            m_over = true;
            break;
        case Front_event::REDRAW:
            m_redraw = true;
            break;
        case Front_event::SIZE:
            m_panel.set_size(event.size);
            break;
    }
}

void Main_loop::press(const Key& key) {
    const Time before = m_panel.now();
    m_panel.press(key);
    m_over = m_panel.is_over();
    if (m_panel.now() - before > SLOW_KEY) {
        drop_keys();
    }
}

// A front that never runs out of events must not hold the panel.
void Main_loop::drop_keys() {
    constexpr int MOST_DROPPED = 10000;
    for (int dropped = 0; dropped < MOST_DROPPED && !m_over; ++dropped) {
        const std::optional<Front_event> event = m_front.next(m_panel.now());
        if (!event) {
            return;
        }
        const bool is_typed =
            event->kind == Front_event::QUIT && m_panel.types(event->key.character);
        if (event->kind != Front_event::KEY && !is_typed) {
            take(*event);
        }
    }
}

Time Main_loop::due() const {
    return m_busy ? Time::min() : std::min(m_panel.due(), m_front.due());
}

void Main_loop::wait(const End_watch& end) const {
    pollfd sources[] = {
        m_front.source(), {end.descriptor(), POLLIN, 0}, {m_panel.device_descriptor(), POLLIN, 0}};
    const Time now = m_panel.now();
    // A signal such as that of a resized terminal ends the wait: the front is asked then.
    poll(sources, std::size(sources), due() <= now ? 0 : milliseconds_between(now, due()));
}

int Main_loop::run(const End_watch& end) {
    while (end.signal_number() == 0) {
        turn();
        if (m_over) {
            return 0;
        }
        wait(end);
    }
    return SIGNAL_STATUS + end.signal_number();
}

}  // namespace frontpanel
