#include <frontpanel_displays/charlcd_display.h>

#include <algorithm>
#include <utility>

#include <frontpanel_base/input_error.h>
#include <frontpanel_display/retry.h>
#include "charlcd_screen.h"
#include "device_writer.h"
#include "lost_characters.h"

namespace frontpanel {

class Charlcd_display::Client {
public:
    Client(const std::string& device, Lcd_size size, const Character_rom& rom, std::ostream& log);
    ~Client();
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    void show(const Frame& frame);
    void advance(Time now);
    pollfd source() const { return {m_writer.descriptor(), POLLIN, 0}; }
    Time due() const;
    bool is_settled() const { return m_is_up && !m_writer.is_busy() && !m_has_news; }

private:
    void send();
    void take_result(const std::string& error);
    void lose(const std::string& reason);
    void say(const std::string& text);
    void report_up();

    std::string m_device;
    Lcd_size m_size;
    const Character_rom& m_rom;
    std::ostream& m_log;
    Device_writer m_writer;
    Retry m_retry;
    Time m_now = Time::min();  // nothing is sent before the first `next`
    Time m_deadline;           // of the write, or of the next look at an idle device
    bool m_is_up = false;
    std::optional<Charlcd_screen> m_screen;  // what the device has, or will have after the write
    std::optional<Frame> m_frame;            // to be shown
    bool m_has_news = false;                 // `m_frame` was not sent
    Lost_characters m_lost;
};

Charlcd_display::Client::Client(const std::string& device, Lcd_size size, const Character_rom& rom,
                                std::ostream& log)
    : m_device(device), m_size(size), m_rom(rom), m_log(log), m_writer(device) {}

// A value that stays on the display would be taken for the device's, also one of the very first write.
Charlcd_display::Client::~Client() {
    if (m_screen && m_writer.is_busy()) {
        pollfd written = source();
        poll(&written, 1, static_cast<int>(Device_writer::FAREWELL.count()));
        if (!m_writer.take_result().value_or("").empty()) {
            return;
        }
    }
    if (m_screen && !m_writer.is_busy()) {
        m_writer.write(Charlcd_screen::farewell());
    }
}

void Charlcd_display::Client::show(const Frame& frame) {
    m_frame = frame;
    m_has_news = true;
    send();
}

void Charlcd_display::Client::advance(Time now) {
    m_now = now;
    if (const std::optional<std::string> error = m_writer.take_result()) {
        take_result(*error);
    }
    if (m_is_up && m_retry.settle(now)) {
        report_up();
    }
    if (m_screen && m_writer.is_busy() && now >= m_deadline) {
        m_writer.give_up("it takes nothing");
        lose("it takes nothing");
    }
    send();
}

// A device that hangs is given up before its write ends: the result is of no more interest then.
void Charlcd_display::Client::take_result(const std::string& error) {
    if (!m_screen) {
        return;
    }
    if (!error.empty()) {
        lose(error);
        return;
    }
    m_deadline = m_now + CHECK;
    if (!m_is_up) {
        m_is_up = true;
        if (m_retry.gain(m_now)) {
            report_up();
        }
    }
}

void Charlcd_display::Client::lose(const std::string& reason) {
    m_is_up = false;
    m_screen.reset();
    m_has_news = m_frame.has_value();
    if (m_retry.lose(m_now)) {
        say("is unreachable (" + reason + "); retrying");
    }
}

void Charlcd_display::Client::send() {
    if (m_writer.is_busy() || (!m_is_up && m_now < m_retry.next_try())) {
        return;
    }
    std::string bytes;
    if (!m_screen) {
        m_screen.emplace(m_size, m_rom);
        bytes = m_screen->setup();
    }
    if (m_has_news) {
        bytes += m_screen->update(*m_frame);
        m_has_news = false;
        m_lost.report(m_screen->lost(), [this](const std::string& text) { say(text); });
    }
    if (!bytes.empty() || m_now >= m_deadline) {
        m_writer.write(std::move(bytes));
        m_deadline = m_now + PATIENCE;
    }
}

Time Charlcd_display::Client::due() const {
    if (m_screen) {
        return m_is_up ? std::min(m_deadline, m_retry.settles()) : m_deadline;
    }
    return m_writer.is_busy() ? Time::max() : m_retry.next_try();
}

void Charlcd_display::Client::say(const std::string& text) {
    m_log << "frontpanel: display " << one_line(m_device + " " + text) << std::endl;
}

void Charlcd_display::Client::report_up() {
    say("shows the panel on " + size_text(m_size));
}

Charlcd_display::Charlcd_display(const std::string& device, Lcd_size size, std::ostream& log,
                                 const Character_rom& rom)
    : m_client(std::make_unique<Client>(device, size, rom, log)) {}

Charlcd_display::~Charlcd_display() = default;

void Charlcd_display::show(const Frame& frame) {
    m_client->show(frame);
}

std::optional<Front_event> Charlcd_display::next(Time now) {
    m_client->advance(now);
    return std::nullopt;
}

pollfd Charlcd_display::source() const {
    return m_client->source();
}

Time Charlcd_display::due() const {
    return m_client->due();
}

bool Charlcd_display::is_settled() const {
    return m_client->is_settled();
}

}  // namespace frontpanel
