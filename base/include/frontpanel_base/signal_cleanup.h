// What has to be restored before a signal ends the process.
#ifndef FRONTPANEL_BASE_SIGNAL_CLEANUP_H
#define FRONTPANEL_BASE_SIGNAL_CLEANUP_H

namespace frontpanel {

enum class Ending {
    REQUESTED,  // by a signal that asks the process to end, such as SIGTERM
    ANY         // also by a signal of a fault in the program, such as SIGSEGV
};

// While the object lives, such a signal calls `act` before it ends the process as it always does, with the
// signal's own status. A signal that is ignored stays so. Of several acts the youngest is called first; a signal
// that one of them waits for calls all. Created and destroyed on the menu thread, youngest first; at most five
// at a time.
class Signal_cleanup {
public:
    // `act` may call only what a signal handler may.
    Signal_cleanup(Ending ending, void (*act)());
    // Does not return while another thread calls the acts, which then ends the process. So the acts may use what is
    // destroyed after this object.
    ~Signal_cleanup();
    Signal_cleanup(const Signal_cleanup&) = delete;
    Signal_cleanup& operator=(const Signal_cleanup&) = delete;

private:
    Ending m_ending;
};

// `take` receives the signals that would otherwise call the acts and end the process; null restores that. It may call
// only what a signal handler may, and is called on any thread.
void set_signal_taker(void (*take)(int signal_number));

// Calls the acts, youngest first. Any thread may call it. Requires: the caller then ends the process.
void do_last_acts();

// Calls the acts, then ends the process as this signal would have without `set_signal_taker`. Any thread may call it.
[[noreturn]] void end_by_signal(int signal_number);

}  // namespace frontpanel

#endif
