#include <frontpanel_simulator/state_keeper.h>

#include <csignal>
#include <exception>

namespace frontpanel {
namespace {

// Signals are for the menu thread, which waits for them.
class No_signals {
public:
    No_signals() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    ~No_signals() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    No_signals(const No_signals&) = delete;
    No_signals& operator=(const No_signals&) = delete;

private:
    sigset_t m_before;
};

}  // namespace

State_keeper::State_keeper(State_file& file, Memory_device& device, Card_service* cards,
                           std::chrono::milliseconds delay)
    : m_file(file), m_device(device), m_cards(cards), m_delay(delay) {
    const No_signals no_signals;
    m_thread = std::thread([this] { run(); });
    m_device.set_change_listener([this] { note_change(); });
    if (m_cards != nullptr) {
        m_cards->set_change_listener([this] { note_change(); });
    }
}

void State_keeper::note_change() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_is_dirty = true;
    m_changed.notify_one();
}

State_keeper::~State_keeper() {
    try {
        finish();
    } catch (const std::exception&) {
        // A caller that handles errors calls `finish` first.
    }
}

void State_keeper::end_thread() {
    m_device.set_change_listener(nullptr);
    if (m_cards != nullptr) {
        m_cards->set_change_listener(nullptr);
    }
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_ends = true;
        m_changed.notify_one();
    }
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

void State_keeper::finish() {
    end_thread();
    save_now();
}

int State_keeper::save_count() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_save_count;
}

// A change that comes while the file is written makes it be written again.
void State_keeper::save_now() {
    const std::lock_guard<std::mutex> saving(m_saving);
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_is_dirty) {
            return;
        }
        m_is_dirty = false;
    }
    try {
        m_file.save();
    } catch (...) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_is_dirty = true;
        throw;
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    ++m_save_count;
}

// A failure, of memory too, may be over later. It is reported at the end, if the file cannot be written then either.
void State_keeper::run() {
    std::unique_lock<std::mutex> lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_is_dirty || m_ends; });
        if (m_changed.wait_for(lock, m_delay, [this] { return m_ends; })) {
            return;
        }
        lock.unlock();
        try {
            save_now();
        } catch (const std::exception&) {
        }
        lock.lock();
    }
}

}  // namespace frontpanel
