// Numbers of a simulated device that move by themselves, as measured values do.
//
// The value of a number depends only on the time. A write, or a fault, does not stop it.
#ifndef FRONTPANEL_SIMULATOR_MOVEMENT_H
#define FRONTPANEL_SIMULATOR_MOVEMENT_H

#include <chrono>
#include <cstdint>
#include <vector>

#include <frontpanel_simulator/memory_device.h>

namespace frontpanel {

// The movement of a number: steadily from one value to another and back in `round`, which is more than 0. It begins at
// `start`, or at the nearer end when `start` is not between them, and moves towards `to` first.
struct Course {
    uint32_t pid;
    uint32_t varidx;
    int32_t from;
    int32_t to;
    int32_t start;
    std::chrono::milliseconds round;
};

// The value of the number after this time.
int32_t place_on(const Course& course, std::chrono::milliseconds elapsed);

class Movement {
public:
    // The device outlives the movement.
    explicit Movement(Memory_device& device) : m_device(device) {}

    // Requires: the device has the number, and the course is within its limits.
    void add(const Course& course) { m_courses.push_back(course); }
    // Sets every number to its value after this time.
    void advance(std::chrono::milliseconds elapsed);

private:
    Memory_device& m_device;
    std::vector<Course> m_courses;
};

}  // namespace frontpanel

#endif
