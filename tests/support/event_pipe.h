// A pipe in the place of an input device, into which tests write events as the kernel has them.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_EVENT_PIPE_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_EVENT_PIPE_H

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/input.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "support/folder.h"

namespace support {

class Event_pipe {
public:
    Event_pipe() = default;
    ~Event_pipe() { unplug(); }
    Event_pipe(const Event_pipe&) = delete;
    Event_pipe& operator=(const Event_pipe&) = delete;

    std::string path() const { return m_folder.file("event"); }

    void plug_in() {
        ASSERT_EQ(mkfifo(path().c_str(), 0600), 0);
        // For reading too, since nobody else may read yet.
        const int holder = open(path().c_str(), O_RDWR | O_CLOEXEC);
        m_writer = open(path().c_str(), O_WRONLY | O_CLOEXEC);
        close(holder);
        ASSERT_GE(m_writer, 0);
    }
    void unplug() {
        if (m_writer >= 0) {
            close(m_writer);
            unlink(path().c_str());
        }
        m_writer = -1;
    }
    void send(int type, int code, int value) {
        input_event event{};
        event.type = static_cast<uint16_t>(type);
        event.code = static_cast<uint16_t>(code);
        event.value = value;
        send_bytes({reinterpret_cast<const char*>(&event), sizeof event});
    }
    // A detent, or a key that is pressed or let go, with the report behind it.
    void signal(int type, int code, int value) {
        send(type, code, value);
        send(EV_SYN, SYN_REPORT, 0);
    }
    void send_bytes(const std::string& bytes) {
        ASSERT_EQ(write(m_writer, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }

private:
    Folder m_folder;
    int m_writer = -1;
};

}  // namespace support

#endif
