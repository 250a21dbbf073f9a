// An input device that the kernel does not have: a pseudo terminal, whose other side writes the events, and the calls of
// `ioctl` by which an input device is asked and grabbed.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_PSEUDO_EVDEV_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_PSEUDO_EVDEV_H

#include <linux/input.h>

#include <string>

namespace support {

// It has the axes REL_DIAL and ABS_WHEEL, from 0 to 23, and the key BTN_0.
class Pseudo_evdev {
public:
    explicit Pseudo_evdev(const std::string& name);
    ~Pseudo_evdev();
    Pseudo_evdev(const Pseudo_evdev&) = delete;
    Pseudo_evdev& operator=(const Pseudo_evdev&) = delete;

    const std::string& path() const { return m_path; }
    void send(int type, int code, int value) const;
    // The event, and the report behind it.
    void signal(int type, int code, int value) const;
    // The state that a program asks for, as the events before brought it about.
    void set_wheel(int position) { m_wheel = position; }
    // The largest value that the wheel announces.
    void set_wheel_end(int end) { m_wheel_end = end; }
    void set_button(bool pressed) { m_button = pressed; }
    // Somebody else has grabbed it.
    void take_away() { m_is_taken = true; }
    bool is_grabbed() const { return m_is_grabbed; }

    bool is_open_at(int descriptor) const;
    // What `ioctl` returns for a request to an input device; the terminal's own requests are not for it.
    int answer(unsigned long request, void* argument);

private:
    std::string m_name;
    std::string m_path;
    int m_master;
    int m_holder;  // of the other side, so that what is written stays until it is read
    int m_wheel = 0;
    int m_wheel_end = 23;
    bool m_button = false;
    bool m_is_taken = false;
    bool m_is_grabbed = false;
};

}  // namespace support

#endif
