#include "interactive.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>

#include "terminal.h"

namespace panel {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds TICK(400);  // how often what is shown is read again, and long texts scroll
constexpr int SIGNAL_STATUS = 128;

volatile std::sig_atomic_t end_signal = 0;

extern "C" void note_end(int signal_number) {
    end_signal = signal_number;
}

// Catches the signals that ask the process to end, so that the terminal is restored on the way out.
class End_signals {
public:
    End_signals() {
        end_signal = 0;
        struct sigaction action = {};
        action.sa_handler = note_end;
        for (size_t i = 0; i < COUNT; ++i) {
            sigaction(SIGNALS[i], &action, &m_before[i]);
        }
    }
    ~End_signals() {
        for (size_t i = 0; i < COUNT; ++i) {
            sigaction(SIGNALS[i], &m_before[i], nullptr);
        }
    }
    End_signals(const End_signals&) = delete;
    End_signals& operator=(const End_signals&) = delete;

private:
    static constexpr int SIGNALS[] = {SIGINT, SIGTERM, SIGHUP};
    static constexpr size_t COUNT = 3;
    struct sigaction m_before[COUNT];
};

// A terminal that went away answers every wait at once, with nothing.
bool input_is_gone() {
    pollfd input{STDIN_FILENO, POLLIN, 0};
    return poll(&input, 1, 0) > 0 && (input.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
}

milliseconds time_until(steady_clock::time_point moment) {
    const auto left = std::chrono::ceil<milliseconds>(moment - steady_clock::now());
    return std::max(left, milliseconds(0));
}

}  // namespace

int use_terminal(Controller& controller, int output) {
    Terminal terminal(output);
    const End_signals end_signals;
    Message_queue messages;
    steady_clock::time_point next_tick = steady_clock::now() + TICK;
    while (end_signal == 0 && !input_is_gone()) {
        terminal.show(controller.draw());
        const Terminal_event event = terminal.wait(time_until(next_tick));
        if (event.kind == Terminal_event::QUIT) {
            return 0;
        }
        if (event.kind == Terminal_event::KEY) {
            messages.push(message_of(event.key));
            controller.receive(messages);
        }
        if (steady_clock::now() >= next_tick) {
            controller.tick();
            next_tick = steady_clock::now() + TICK;
        }
    }
    return end_signal == 0 ? 0 : SIGNAL_STATUS + end_signal;
}

}  // namespace panel
