#include <frontpanel_displays/lcdproc_display.h>

#include <algorithm>
#include <string>
#include <utility>

#include <frontpanel_base/input_error.h>
#include "lcdproc_protocol.h"
#include "line_socket.h"
#include "lost_characters.h"

namespace frontpanel {
namespace {

Lcd_size panel_size_for(Lcd_size server) {
    return {std::clamp(server.columns, SMALLEST_LCD.columns, LARGEST_LCD.columns),
            std::clamp(server.rows, SMALLEST_LCD.rows, LARGEST_LCD.rows)};
}

}  // namespace

class Lcdproc_display::Client {
public:
    Client(const Lcdproc_server& server, Key_map keys, std::optional<Lcd_size> fixed,
           std::ostream& log);
    ~Client();
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    void show(const Frame& frame);
    std::optional<Front_event> next(Time now);
    pollfd source() const { return m_socket.source(); }
    Time due() const;

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
    void report_size();
    void complain(const std::string& text);

    Lcdproc_server m_server;
    Key_map m_keys;
    std::optional<Lcd_size> m_fixed;
    std::ostream& m_log;
    Line_socket m_socket;
    Phase m_phase = Phase::AWAY;
    Time m_now;
    Time m_deadline;  // of the phase; while READY, of the answer that is awaited
    Retry m_retry;
    Lcd_size m_server_size;
    std::optional<Lcdproc_screen> m_screen;  // what the server has; nothing before the greeting
    std::optional<Frame> m_frame;            // to be shown
    bool m_fenced = false;                   // the server has not done yet
    bool m_hidden = false;                   // behind another client's screen
    Lost_characters m_lost;
};

Lcdproc_display::Client::Client(const Lcdproc_server& server, Key_map keys,
                                std::optional<Lcd_size> fixed, std::ostream& log)
    : m_server(server), m_keys(std::move(keys)), m_fixed(fixed), m_log(log) {}

Lcdproc_display::Client::~Client() {
    m_socket.send("bye");
    m_socket.service();
}

void Lcdproc_display::Client::show(const Frame& frame) {
    m_lost.report(frame.lcd.lost(), [this](const std::string& text) { say(text); });
    m_frame = frame;
    send_frame();
    m_socket.service();
}

std::optional<Front_event> Lcdproc_display::Client::next(Time now) {
    advance(now);
    while (const std::optional<std::string> line = m_socket.next_line()) {
        if (const std::optional<Front_event> event = take(*line)) {
            return event;
        }
    }
    if (m_phase == Phase::READY && m_retry.settle(now)) {
        report_size();
    }
    if (m_phase != Phase::AWAY && m_socket.state() == Line_socket::State::CLOSED) {
        lose(m_socket.reason(), now);
    } else if (m_phase != Phase::AWAY && now >= m_deadline) {
        lose("it does not answer", now);
    }
    return std::nullopt;
}

void Lcdproc_display::Client::advance(Time now) {
    m_now = now;
    if (m_phase == Phase::AWAY && now >= m_deadline) {
        m_socket.connect(m_server.host, m_server.port);
        m_phase = Phase::CONNECTING;
        m_deadline = now + PATIENCE;
    }
    m_socket.service();
    if (m_phase == Phase::CONNECTING && m_socket.state() == Line_socket::State::OPEN) {
        m_phase = Phase::GREETING;
        m_deadline = now + PATIENCE;
        m_socket.send("hello");
        m_socket.service();
    }
}

void Lcdproc_display::Client::lose(std::string reason, Time now) {
    m_socket.close("");
    m_phase = Phase::AWAY;
    m_screen.reset();
    m_fenced = false;
    const bool is_news = m_retry.lose(now);
    m_deadline = m_retry.next_try();
    if (is_news) {
        say("is unreachable (" + std::move(reason) + "); retrying");
    }
}

Time Lcdproc_display::Client::due() const {
    if (m_socket.has_line()) {
        return Time::min();
    }
    return m_phase == Phase::READY ? std::min(m_deadline, m_retry.settles()) : m_deadline;
}

std::optional<Front_event> Lcdproc_display::Client::take(const std::string& line) {
    const Lcdproc_answer answer = parse_lcdproc_answer(line);
    switch (answer.kind) {
        case Lcdproc_answer::CONNECT:
            return take_greeting(answer.size);
        case Lcdproc_answer::KEY:
            return take_key(answer.word);
        case Lcdproc_answer::LISTEN:
        case Lcdproc_answer::IGNORE:
            if (answer.word == Lcdproc_screen::NAME) {
                m_hidden = answer.kind == Lcdproc_answer::IGNORE;
                send_frame();
            }
            break;
        case Lcdproc_answer::FENCE:
            take_fence();
            break;
        case Lcdproc_answer::END:
            m_socket.close("it said bye");
            break;
        case Lcdproc_answer::SUCCESS:
            break;
        case Lcdproc_answer::REFUSAL:
        case Lcdproc_answer::OTHER:
            complain(line);
            break;
    }
    return std::nullopt;
}

std::optional<Front_event> Lcdproc_display::Client::take_greeting(Lcd_size size) {
    if (m_phase != Phase::GREETING) {
        return std::nullopt;
    }
    m_phase = Phase::READY;
    m_hidden = false;
    m_screen.emplace(size);
    m_socket.send("client_set -name frontpanel");
    std::string keys = "client_add_key";
    for (const auto& [name, key] : m_keys) {
        keys += " " + lcdproc_quoted(name);
    }
    m_socket.send(keys);
    for (const std::string& command : m_screen->setup()) {
        m_socket.send(command);
    }
    m_socket.send("noop");
    m_fenced = true;
    m_deadline = m_now + PATIENCE;
    m_socket.service();
    m_server_size = size;
    if (m_retry.gain(m_now)) {
        report_size();
    }
    return m_fixed ? Front_event{Front_event::REDRAW}
                   : Front_event{Front_event::SIZE, {Key::UP}, panel_size_for(size)};
}

std::optional<Front_event> Lcdproc_display::Client::take_key(const std::string& name) const {
    const auto found = m_keys.find(name);
    if (m_phase != Phase::READY || found == m_keys.end()) {
        return std::nullopt;
    }
    return Front_event{Front_event::KEY, found->second};
}

void Lcdproc_display::Client::take_fence() {
    if (!m_fenced) {
        return;
    }
    m_fenced = false;
    m_deadline = Time::max();
    send_frame();
    m_socket.service();
}

void Lcdproc_display::Client::send_frame() {
    if (m_phase != Phase::READY || m_fenced || m_hidden || !m_frame) {
        return;
    }
    const std::vector<std::string> commands = m_screen->update(*m_frame);
    if (commands.empty()) {
        return;
    }
    for (const std::string& command : commands) {
        m_socket.send(command);
    }
    m_socket.send("noop");
    m_fenced = true;
    m_deadline = m_now + PATIENCE;
}

void Lcdproc_display::Client::say(const std::string& text) {
    m_log << "frontpanel: display server " << m_server.host << " port " << m_server.port << ' '
          << one_line(text) << std::endl;
}

void Lcdproc_display::Client::report_size() {
    say("shows the panel on " + size_text(m_server_size));
}

void Lcdproc_display::Client::complain(const std::string& text) {
    if (m_retry.complain()) {
        say("answered \"" + text + "\"");
    }
}

Lcdproc_display::Lcdproc_display(const Lcdproc_server& server, Key_map keys,
                                 std::optional<Lcd_size> fixed, std::ostream& log)
    : m_client(std::make_unique<Client>(server, std::move(keys), fixed, log)) {}

Lcdproc_display::~Lcdproc_display() = default;

void Lcdproc_display::show(const Frame& frame) {
    m_client->show(frame);
}

std::optional<Front_event> Lcdproc_display::next(Time now) {
    return m_client->next(now);
}

pollfd Lcdproc_display::source() const {
    return m_client->source();
}

Time Lcdproc_display::due() const {
    return m_client->due();
}

}  // namespace frontpanel
