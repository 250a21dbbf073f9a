#include <frontpanel_ui/main_loop.h>

#include <algorithm>

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

Main_loop::Main_loop(Session& session, Front& front, std::function<Time()> clock)
    : m_session(session),
      m_front(front),
      m_clock(std::move(clock)),
      m_next_tick(m_clock() + TICK) {}

void Main_loop::turn() {
    const std::optional<Front_event> event = m_front.next(m_clock());
    m_busy = event.has_value();
    if (event) {
        take(*event);
    }
    if (m_over) {
        return;
    }
    const Time now = m_clock();
    if (now >= m_next_tick) {
        m_session.tick(now);
        m_next_tick = now + TICK;
        m_changed = true;
    }
    if (m_changed || !m_frame) {
        m_frame = m_session.draw(now);
    }
    if (m_changed || m_redraw) {
        m_front.show(*m_frame);
    }
    m_changed = false;
    m_redraw = false;
}

void Main_loop::take(const Front_event& event) {
    switch (event.kind) {
        case Front_event::KEY:
            press(event.key);
            break;
        case Front_event::QUIT:
            m_over = true;
            break;
        case Front_event::REDRAW:
            m_redraw = true;
            break;
        case Front_event::SIZE:
            m_session.set_size(event.size);
            m_changed = true;
            break;
    }
}

void Main_loop::press(const Key& key) {
    const Time before = m_clock();
    m_session.press(key, before);
    m_changed = true;
    if (m_clock() - before > SLOW_KEY) {
        drop_keys();
    }
}

// A front that never stops telling must not hold the panel.
void Main_loop::drop_keys() {
    constexpr int MOST_DROPPED = 10000;
    for (int dropped = 0; dropped < MOST_DROPPED && !m_over; ++dropped) {
        const std::optional<Front_event> event = m_front.next(m_clock());
        if (!event) {
            return;
        }
        if (event->kind != Front_event::KEY) {
            take(*event);
        }
    }
}

Time Main_loop::due() const {
    return m_busy ? Time::min() : std::min(m_next_tick, m_front.due());
}

void Main_loop::wait(const End_watch& end) const {
    pollfd sources[] = {m_front.source(), {end.descriptor(), POLLIN, 0}};
    const Time now = m_clock();
    // A signal such as that of a resized terminal ends the wait: the front is asked then.
    poll(sources, 2, due() <= now ? 0 : milliseconds_between(now, due()));
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
