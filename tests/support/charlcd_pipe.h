// A pipe in the place of a display's device file, with the display that reads it.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_CHARLCD_PIPE_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_CHARLCD_PIPE_H

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <string>

#include "support/charlcd_emulator.h"
#include "support/folder.h"

namespace support {

class Charlcd_pipe {
public:
    Charlcd_pipe(int columns, int rows)
        : m_columns(columns), m_rows(rows), emulator(columns, rows) {}
    ~Charlcd_pipe() { unplug(); }
    Charlcd_pipe(const Charlcd_pipe&) = delete;
    Charlcd_pipe& operator=(const Charlcd_pipe&) = delete;

    std::string path() const { return m_folder.file("lcd"); }

    // A display that has just been switched on.
    void plug_in() {
        emulator = Charlcd_emulator(m_columns, m_rows);
        ASSERT_EQ(mkfifo(path().c_str(), 0600), 0);
        m_reader = open(path().c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        ASSERT_GE(m_reader, 0);
    }
    void unplug() {
        if (m_reader >= 0) {
            close(m_reader);
            unlink(path().c_str());
        }
        m_reader = -1;
    }
    // From now on the display takes nothing, until `drain`.
    void fill() {
        const int writer = open(path().c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
        const std::string page(4096, ' ');
        while (write(writer, page.data(), page.size()) > 0) {
        }
        close(writer);
    }
    // Takes what is there without showing it.
    void drain() {
        const Charlcd_emulator before = emulator;
        read_all();
        emulator = before;
    }
    // Shows what has been written. The bytes.
    std::string read_all() {
        std::string all;
        std::array<char, 4096> bytes{};
        for (ssize_t size = 0; (size = read(m_reader, bytes.data(), bytes.size())) > 0;) {
            all.append(bytes.data(), static_cast<size_t>(size));
        }
        emulator.feed(all);
        return all;
    }

private:
    Folder m_folder;
    int m_columns;
    int m_rows;
    int m_reader = -1;

public:
    Charlcd_emulator emulator;
};

}  // namespace support

#endif
