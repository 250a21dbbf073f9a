// Writes to a device file, such as that of a display driver, on a thread of its own: a device whose bus hangs keeps
// only by the thread.
//
// Everything but the thread's own work is called on one thread, the menu thread.
#ifndef FRONTPANEL_DISPLAYS_DEVICE_WRITER_H
#define FRONTPANEL_DISPLAYS_DEVICE_WRITER_H

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <thread>

namespace frontpanel {

class Device_writer {
public:
    // How long the destructor waits for a write that is under way; then it leaves the thread to the device.
    static constexpr std::chrono::milliseconds FAREWELL{500};

    // std::system_error when no thread can be created.
    explicit Device_writer(std::string path);
    ~Device_writer();
    Device_writer(const Device_writer&) = delete;
    Device_writer& operator=(const Device_writer&) = delete;

    // Opens the device unless it is open, and writes all bytes; without bytes it only finds out whether the device is
    // still the one that was opened. A file that is neither a character device nor a pipe is not opened: nothing that
    // holds data is overwritten. Requires: not busy.
    void write(std::string bytes);
    // Whether something is being written, or its result was not taken.
    bool is_busy() const { return m_is_busy; }
    // What came of `write`: empty for success, or why it failed; then the device is closed. Nothing while it goes on.
    std::optional<std::string> take_result();
    // Ends a write that waits for the device, as far as the device lets it; the result is `reason`.
    void give_up(const std::string& reason);
    // Readable when there may be a result.
    int descriptor() const;

private:
    struct Shared;

    std::shared_ptr<Shared> m_shared;  // which the thread may need longer than this object lives
    std::thread m_thread;
    bool m_is_busy = false;
};

}  // namespace frontpanel

#endif
