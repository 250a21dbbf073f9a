// Writes the state file whenever the device's values change, on a thread of its own, so that a slow disk does not delay
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

    // A change is written after `delay`, together with those that follow it. Sets the change callbacks of device and
    // cards; `cards` is null when no cards run. All outlive the object.
    State_keeper(State_file& file, Memory_device& device, Card_service* cards = nullptr,
                 std::chrono::milliseconds delay = USUAL_DELAY);
    // As `finish`, but errors are ignored.
    ~State_keeper();
    State_keeper(const State_keeper&) = delete;
    State_keeper& operator=(const State_keeper&) = delete;

    // Writes changes that were not written yet, and ends. Input_error when that fails.
    void finish();
    // Writes changes that were not written yet at once. Input_error when that fails. Any thread may call it.
    void save_now();

    // Call it when other contents of the file changed: the file is written as after a change of a value. Any thread
    // may.
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
