// A file descriptor that is closed with its object.
#ifndef FRONTPANEL_BASE_DESCRIPTOR_H
#define FRONTPANEL_BASE_DESCRIPTOR_H

#include <unistd.h>

#include <utility>

namespace frontpanel {

// A negative number is no descriptor, as `open` returns on failure.
class Descriptor {
public:
    explicit Descriptor(int number = -1) : m_number(number) {}
    ~Descriptor() { reset(); }
    Descriptor(Descriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        if (this != &other) {
            reset();
            m_number = std::exchange(other.m_number, -1);
        }
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int number() const { return m_number; }
    bool is_open() const { return m_number >= 0; }
    // Leaves the descriptor to the caller.
    int release() { return std::exchange(m_number, -1); }
    void reset() {
        if (is_open()) {
            close(m_number);
        }
        m_number = -1;
    }

private:
    int m_number;
};

}  // namespace frontpanel

#endif
