// Numbers of a simulated device that move by themselves, as measured values do.
//
// Where a number stands follows from the time alone. A write, or a fault, does not stop it.
#ifndef FRONTPANEL_SIMULATOR_MOVEMENT_H
#define FRONTPANEL_SIMULATOR_MOVEMENT_H

#include <chrono>
#include <cstdint>
#include <vector>

#include <frontpanel_simulator/memory_device.h>

namespace frontpanel {

// The way of a number: steadily from one value to another and back in `round`, which is more than 0. It begins at
// `start`, or the nearer end when that is not on the way, and towards `to`.
struct Course {
    uint32_t pid;
    uint32_t varidx;
    int32_t from;
    int32_t to;
    int32_t start;
    std::chrono::milliseconds round;
};

// Where the number stands when it has moved for so long.
int32_t place_on(const Course& course, std::chrono::milliseconds elapsed);

class Movement {
public:
    // The device outlives the movement.
    explicit Movement(Memory_device& device) : m_device(device) {}

    // Of a number that the device has, within its limits.
    void add(const Course& course) { m_courses.push_back(course); }
    // Puts every number where it stands after so long.
    void advance(std::chrono::milliseconds elapsed);

private:
    Memory_device& m_device;
    std::vector<Course> m_courses;
};

}  // namespace frontpanel

#endif
