// The panel on one of the many character displays that an LCDproc server drives; the display's keys are the
// panel's.
//
// The server may be slow, away, or talk nonsense: nothing here waits for it. While it is away the panel goes on
// unseen, and its frame is shown whole once the server is back.
#ifndef FRONTPANEL_DISPLAYS_LCDPROC_DISPLAY_H
#define FRONTPANEL_DISPLAYS_LCDPROC_DISPLAY_H

#include <optional>
#include <ostream>
#include <set>
#include <string>

#include <frontpanel_display/front.h>
#include <frontpanel_displays/display_choice.h>
#include <frontpanel_displays/key_map.h>
#include <frontpanel_displays/lcdproc_protocol.h>
#include <frontpanel_displays/line_socket.h>

namespace frontpanel {

class Lcdproc_display : public Front {
public:
    static constexpr std::chrono::milliseconds FIRST_PAUSE{250};  // before it connects again
    static constexpr std::chrono::milliseconds LONGEST_PAUSE{10000};
    static constexpr std::chrono::seconds PATIENCE{5};  // for a connection, and for any answer
    static constexpr int MOST_COMPLAINTS = 10;          // about one connection

    // Connects when it is first asked for what happened. With `fixed` the panel keeps that size, and is cut or has
    // blank room on another display; without, it takes that of the display, within what a panel can be. What a
    // person should know of the server goes to `log`, a line each; `log` outlives the display.
    Lcdproc_display(const Display_choice& server, Key_map keys, std::optional<Lcd_size> fixed,
                    std::ostream& log);
    ~Lcdproc_display() override;

    // Only what differs from the last frame is sent, and only once the server has done with that: of frames that
    // come faster the last counts.
    void show(const Frame& frame) override;
    std::optional<Front_event> next(Time now) override;
    pollfd source() const override { return m_socket.source(); }
    Time due() const override;

private:
    enum class Phase { AWAY, CONNECTING, GREETING, READY };

    void advance(Time now);
    void lose(std::string reason, Time now);
    std::optional<Front_event> take(const std::string& line);
    std::optional<Front_event> take_greeting(Lcd_size size);
    std::optional<Front_event> take_key(const std::string& name) const;
    void take_fence();
    void send_frame();
    void say(const std::string& text);
    void complain(const std::string& text);
    void tell_lost_characters(const Lcd& lcd);

    Display_choice m_server;
    Key_map m_keys;
    std::optional<Lcd_size> m_fixed;
    std::ostream& m_log;
    Line_socket m_socket;
    Phase m_phase = Phase::AWAY;
    Time m_now;
    Time m_deadline;  // of the phase; while READY, of the answer that is awaited
    std::chrono::milliseconds m_pause = FIRST_PAUSE;
    std::optional<Lcdproc_screen> m_screen;  // what the server has; nothing before the greeting
    std::optional<Frame> m_frame;            // to be shown
    bool m_fenced = false;                   // the server has not done yet
    bool m_hidden = false;                   // behind another client's screen
    bool m_absence_told = false;
    int m_complaints = 0;
    std::set<char32_t> m_lost;  // characters that were told
};

}  // namespace frontpanel

#endif
