// The panel on one of the many character displays that an LCDproc server drives; the display's keys are the
// panel's.
//
// The server may be slow, unreachable, or send invalid lines: nothing here waits for it. While it is unreachable the
// panel works without a display; once the server is back, the whole frame is shown.
#ifndef FRONTPANEL_DISPLAYS_LCDPROC_DISPLAY_H
#define FRONTPANEL_DISPLAYS_LCDPROC_DISPLAY_H

#include <memory>
#include <optional>
#include <ostream>

#include <frontpanel_display/front.h>
#include <frontpanel_display/retry.h>
#include <frontpanel_displays/key_map.h>
#include <frontpanel_displays/lcdproc_server.h>

namespace frontpanel {

class Lcdproc_display : public Front {
public:
    static constexpr std::chrono::seconds PATIENCE{5};  // for a connection, and for any answer
    // Before it connects again, and until a connection is steady.
    static constexpr std::chrono::milliseconds FIRST_PAUSE = Retry::FIRST_PAUSE;
    static constexpr std::chrono::milliseconds LONGEST_PAUSE = Retry::LONGEST_PAUSE;
    static constexpr std::chrono::seconds STEADY = Retry::STEADY;
    static constexpr int MOST_COMPLAINTS = Retry::MOST_COMPLAINTS;  // about answers

    // Connects with the first call of `next`. With `fixed` the panel keeps that size: on another display it is cut, or
    // leaves blank room. Without, it takes the size of the display, from SMALLEST_LCD to LARGEST_LCD. Status messages
    // go to `log`, a line each; `log` outlives the display.
    Lcdproc_display(const Lcdproc_server& server, Key_map keys, std::optional<Lcd_size> fixed,
                    std::ostream& log);
    ~Lcdproc_display() override;

    // Sends only the differences from the last frame, once the server has shown that one. Of frames that come faster,
    // only the last is sent.
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
