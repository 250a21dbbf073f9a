// Notices the signals that ask the process to end, whatever the menu thread is doing.
//
// The menu thread may be within a command that fetches live data, and the call that runs it ignores SIGINT for
// its time. So a thread of the watch's own takes the signals.
#ifndef FRONTPANEL_BASE_END_WATCH_H
#define FRONTPANEL_BASE_END_WATCH_H

#include <atomic>
#include <chrono>
#include <csignal>
#include <thread>

namespace frontpanel {

class End_watch {
public:
    // From now on SIGINT, SIGTERM and SIGHUP are noted. The loop has `patience` to end after the first of them:
    // then, or with a second one, the process ends at once, after the last acts. One watch at a time, created
    // before any other thread.
    explicit End_watch(std::chrono::milliseconds patience = std::chrono::seconds(1));
    ~End_watch();
    End_watch(const End_watch&) = delete;
    End_watch& operator=(const End_watch&) = delete;

    // The signal that came; 0 for none.
    int signal_number() const { return m_signal; }
    // Readable once a signal came.
    int descriptor() const { return m_wake[0]; }

private:
    void watch();

    std::chrono::milliseconds m_patience;
    sigset_t m_watched{};
    sigset_t m_before{};
    int m_wake[2];
    std::atomic<int> m_signal{0};
    std::atomic<bool> m_stopped{false};
    std::thread m_thread;
};

}  // namespace frontpanel

#endif
