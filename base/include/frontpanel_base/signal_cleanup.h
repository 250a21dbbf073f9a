// What has to be put right before a signal ends the process.
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
    // Does not return while another thread calls the acts, since the process ends then: what they need may go after it.
    ~Signal_cleanup();
    Signal_cleanup(const Signal_cleanup&) = delete;
    Signal_cleanup& operator=(const Signal_cleanup&) = delete;

private:
    Ending m_ending;
};

// Who gets the signals that would end the process after the acts, in place of that; null for nobody. `take` may call only
// what a signal handler may, and is called on any thread.
void set_signal_taker(void (*take)(int signal_number));

// Calls the acts, youngest first. From any thread, which ends the process then.
void do_last_acts();

// Ends the process as the signal does that was taken otherwise: the acts are called first. From any thread.
[[noreturn]] void end_by_signal(int signal_number);

}  // namespace frontpanel

#endif
