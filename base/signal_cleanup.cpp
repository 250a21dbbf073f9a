#include <frontpanel_base/signal_cleanup.h>

#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstddef>

namespace frontpanel {
namespace {

constexpr int MOST_ACTS = 5;

// Read by the handler, on whichever thread the signal comes.
std::atomic<void (*)()> acts[MOST_ACTS];
std::atomic<int> act_count{0};
int crash_act_count = 0;  // of them, those for any ending
std::atomic<bool> is_ending{false};

constexpr int REQUESTS[] = {SIGINT,  SIGTERM, SIGHUP,  SIGQUIT, SIGPIPE,
                            SIGALRM, SIGUSR1, SIGUSR2, SIGXCPU};
constexpr int CRASHES[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGSYS};

std::atomic<void (*)(int)> signal_taker{nullptr};

void act_and_raise(int signal_number) {
    do_last_acts();
    std::signal(signal_number, SIG_DFL);
    std::raise(signal_number);
}

extern "C" void end_after_fault(int signal_number) {
    act_and_raise(signal_number);
}

extern "C" void end_on_request(int signal_number) {
    void (*const take)(int) = signal_taker;
    take != nullptr ? take(signal_number) : act_and_raise(signal_number);
}

void unblock(int signal_number) {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, signal_number);
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

template <std::size_t COUNT>
void handle(const int (&signals)[COUNT], void (*handler)(int)) {
    for (const int signal_number : signals) {
        if (std::signal(signal_number, handler) == SIG_IGN) {
            std::signal(signal_number, SIG_IGN);
        }
    }
}

}  // namespace

Signal_cleanup::Signal_cleanup(Ending ending, void (*act)()) : m_ending(ending) {
    acts[act_count] = act;
    if (++act_count == 1) {
        handle(REQUESTS, end_on_request);
    }
    if (m_ending == Ending::ANY && ++crash_act_count == 1) {
        handle(CRASHES, end_after_fault);
    }
}

Signal_cleanup::~Signal_cleanup() {
    if (m_ending == Ending::ANY && --crash_act_count == 0) {
        handle(CRASHES, SIG_DFL);
    }
    if (act_count == 1) {
        handle(REQUESTS, SIG_DFL);
    }
    --act_count;
    // Another thread may be calling the acts, or about to, and then ends the process: what they need must exist until
    // then.
    while (is_ending) {
        pause();
    }
}

void set_signal_taker(void (*take)(int)) {
    signal_taker = take;
}

void do_last_acts() {
    is_ending = true;
    for (int i = act_count - 1; i >= 0; --i) {
        acts[i].load()();
    }
}

void end_by_signal(int signal_number) {
    constexpr int SIGNAL_STATUS = 128;
    act_and_raise(signal_number);
    unblock(signal_number);
    _exit(SIGNAL_STATUS + signal_number);
}

}  // namespace frontpanel
