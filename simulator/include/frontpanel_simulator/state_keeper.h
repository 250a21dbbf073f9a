// Writes the state file whenever the device's values changed, on a thread of its own: a slow disk does not hold up
// the panel.
#ifndef FRONTPANEL_SIMULATOR_STATE_KEEPER_H
#define FRONTPANEL_SIMULATOR_STATE_KEEPER_H

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include <frontpanel_simulator/state_file.h>

namespace frontpanel {

class State_keeper {
public:
    static constexpr std::chrono::milliseconds USUAL_DELAY{1000};

    // A change is written, with all that follow it, when `delay` is over. Takes the change callbacks of device and
    // cards; `cards` is null where none run. All outlive the object.
    State_keeper(State_file& file, Memory_device& device, Card_service* cards = nullptr,
                 std::chrono::milliseconds delay = USUAL_DELAY);
    // As `finish`, but errors are ignored.
    ~State_keeper();
    State_keeper(const State_keeper&) = delete;
    State_keeper& operator=(const State_keeper&) = delete;

    // Writes what was not written yet and ends. Input_error when that cannot be done.
    void finish();
    // Writes what was not written yet, at once, on any thread. Input_error when that cannot be done.
    void save_now();

    // What the file keeps beside the device's values changed: it is written as after a change of these. On any thread.
    void note_change();

    // How often the file was written.
    int save_count() const;

private:
    void run();
    void end_thread();

    State_file& m_file;
    Memory_device& m_device;
    Card_service* m_cards;
    std::chrono::milliseconds m_delay;
    std::mutex m_saving;  // held while the file is written; locked before the other
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_is_dirty = false;
    bool m_ends = false;
    int m_save_count = 0;
    std::thread m_thread;
};

}  // namespace frontpanel

#endif
