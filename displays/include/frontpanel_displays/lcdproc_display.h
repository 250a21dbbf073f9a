// The panel on one of the many character displays that an LCDproc server drives; the display's keys are the
// panel's.
//
// The server may be slow, away, or talk nonsense: nothing here waits for it. While it is away the panel goes on
// unseen, and its frame is shown whole once the server is back.
#ifndef FRONTPANEL_DISPLAYS_LCDPROC_DISPLAY_H
#define FRONTPANEL_DISPLAYS_LCDPROC_DISPLAY_H

#include <memory>
#include <optional>
#include <ostream>

#include <frontpanel_display/front.h>
#include <frontpanel_displays/key_map.h>
#include <frontpanel_displays/lcdproc_server.h>

namespace frontpanel {

class Lcdproc_display : public Front {
public:
    static constexpr std::chrono::milliseconds FIRST_PAUSE{250};  // before it connects again
    static constexpr std::chrono::milliseconds LONGEST_PAUSE{10000};
    static constexpr std::chrono::seconds PATIENCE{5};  // for a connection, and for any answer
    // A connection that lasts so long is steady: the next loss is told again, and the next pause is short.
    static constexpr std::chrono::seconds STEADY{10};
    static constexpr int MOST_COMPLAINTS = 10;  // about answers, until a connection is steady

    // Connects when it is first asked for what happened. With `fixed` the panel keeps that size, and is cut or has
    // blank room on another display; without, it takes that of the display, within what a panel can be. What a
    // person should know of the server goes to `log`, a line each; `log` outlives the display.
    Lcdproc_display(const Lcdproc_server& server, Key_map keys, std::optional<Lcd_size> fixed,
                    std::ostream& log);
    ~Lcdproc_display() override;

    // Only what differs from the last frame is sent, and only once the server has done with that: of frames that
    // come faster the last counts.
    void show(const Frame& frame) override;
    std::optional<Front_event> next(Time now) override;
    pollfd source() const override;
    Time due() const override;

private:
    class Client;
    std::unique_ptr<Client> m_client;
};

}  // namespace frontpanel

#endif
