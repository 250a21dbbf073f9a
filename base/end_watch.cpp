#include <frontpanel_base/end_watch.h>

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <utility>

#include <frontpanel_base/input_error.h>
#include <frontpanel_base/signal_cleanup.h>

namespace frontpanel {
namespace {

constexpr int WATCHED[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE};
constexpr int WAKE = SIGUSR2;  // sent to the watch's thread

// What a handler finds: the thread of the watch, and the signal that it hands over.
std::atomic<pthread_t> watching;
std::atomic<int> handed_over{0};

void hand_over(int signal_number) {
    handed_over = signal_number;
    pthread_kill(watching, WAKE);
}

timespec span_of(std::chrono::milliseconds time) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    timespec span = {};
    span.tv_sec = static_cast<time_t>(seconds.count());
    span.tv_nsec = static_cast<long>(std::chrono::nanoseconds(time - seconds).count());
    return span;
}

}  // namespace

End_watch::End_watch(std::chrono::milliseconds patience) : m_patience(patience) {
    if (pipe2(m_wake, O_CLOEXEC | O_NONBLOCK) != 0) {
        throw Input_error(std::string("cannot create a pipe: ") + std::strerror(errno));
    }
    sigemptyset(&m_watched);
    for (const int signal_number : WATCHED) {
        struct sigaction action = {};
        sigaction(signal_number, nullptr, &action);
        if (action.sa_handler != SIG_IGN) {
            sigaddset(&m_watched, signal_number);
        }
    }
    pthread_sigmask(SIG_BLOCK, &m_watched, &m_before);
    // The thread takes no other signal: those have handlers that belong to the menu thread.
    sigset_t all;
    sigfillset(&all);
    sigset_t of_caller;
    pthread_sigmask(SIG_SETMASK, &all, &of_caller);
    try {
        m_thread = std::thread([this] { watch(); });
    } catch (...) {
        pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
        close_pipe();
        throw;
    }
    watching = m_thread.native_handle();
    handed_over = 0;
    set_signal_taker(hand_over);
    pthread_sigmask(SIG_SETMASK, &of_caller, nullptr);
}

End_watch::~End_watch() {
    set_signal_taker(nullptr);
    m_stopped = true;
    pthread_kill(m_thread.native_handle(), WAKE);
    m_thread.join();
    pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    close_pipe();
}

void End_watch::close_pipe() const {
    close(m_wake[0]);
    close(m_wake[1]);
}

void End_watch::set_forced_end(std::function<void()> act) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_forced_end = std::move(act);
}

// The mutex stays locked: an act that has begun is finished before the owner can withdraw it.
void End_watch::force_end(int signal_number) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_forced_end) {
        m_forced_end();
    }
    end_by_signal(signal_number);
}

void End_watch::watch() {
    sigset_t awaited = m_watched;
    sigaddset(&awaited, WAKE);
    int taken = 0;
    while (sigwait(&awaited, &taken) != 0) {
    }
    if (m_stopped) {
        return;
    }
    if (taken == WAKE && handed_over != 0) {
        taken = handed_over;
    }
    m_signal = taken;
    if (write(m_wake[1], "", 1) != 1) {
        force_end(taken);
    }
    const timespec patience = span_of(m_patience);
    while (sigtimedwait(&awaited, nullptr, &patience) < 0 && errno == EINTR) {
    }
    if (!m_stopped) {
        force_end(taken);
    }
}

}  // namespace frontpanel
