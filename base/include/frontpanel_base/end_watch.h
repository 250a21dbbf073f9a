// Notices the signals that ask the process to end, whatever the menu thread is doing.
//
// The menu thread may be running a command that fetches live data, and `system` ignores SIGINT while the command
// runs. So a separate thread takes the signals.
#ifndef FRONTPANEL_BASE_END_WATCH_H
#define FRONTPANEL_BASE_END_WATCH_H

#include <atomic>
#include <chrono>
#include <csignal>
#include <functional>
#include <mutex>
#include <thread>

#include <frontpanel_base/signal_cleanup.h>

namespace frontpanel {

class End_watch {
public:
    // From now on SIGINT, SIGTERM, SIGHUP, SIGQUIT and a SIGPIPE that is sent to the process are noted; a write to a
    // closed pipe only fails. So are SIGALRM, SIGUSR1, SIGUSR2 and SIGXCPU, which commands that the process runs do not
    // find blocked: some of them wait for an alarm. The loop has `patience` to end after the first of them: then, or with a second one, the
    // process ends at once, after the act below and the last acts. One watch at a time, created before any other
    // thread. std::system_error when the thread cannot be created.
    explicit End_watch(std::chrono::milliseconds patience = std::chrono::seconds(1));
    ~End_watch();
    End_watch(const End_watch&) = delete;
    End_watch& operator=(const End_watch&) = delete;

    // The signal that came; 0 for none.
    int signal_number() const { return m_signal; }
    // Sets what the watch's thread does before it ends the process at once; an empty function for nothing. Unlike the
    // last acts it may do anything, except throw or wait for the menu thread. Once this call returns, the act that was
    // set before is no longer called.
    void set_forced_end(std::function<void()> act);
    // Readable once a signal came.
    int descriptor() const { return m_wake[0]; }

private:
    void watch();
    void force_end(int signal_number);
    void close_pipe() const;

    // The signals that are not blocked have its handler, which hands them to the watch.
    Signal_cleanup m_handlers{Ending::REQUESTED, [] {}};
    std::chrono::milliseconds m_patience;
    sigset_t m_watched{};
    sigset_t m_before{};
    int m_wake[2];
    std::atomic<int> m_signal{0};
    std::atomic<bool> m_stopped{false};
    std::mutex m_mutex;
    std::function<void()> m_forced_end;
    std::thread m_thread;
};

}  // namespace frontpanel

#endif
