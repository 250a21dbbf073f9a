#include <frontpanel_simulator/movement.h>

#include <algorithm>
#include <cmath>

namespace frontpanel {

int32_t place_on(const Course& course, std::chrono::milliseconds elapsed) {
    const int64_t span = int64_t{course.to} - course.from;
    if (span == 0) {
        return course.from;
    }
    // Twice the span is a round. Rounded to the nearest value, so that both ends are reached.
    const int64_t round = course.round.count();
    const int64_t length = 2 * (span < 0 ? -span : span);
    const int64_t gone = (int64_t{course.start} - course.from) * (span < 0 ? -1 : 1);
    const int64_t begun = std::clamp<int64_t>(gone, 0, length / 2);
    const int64_t moved = std::llround(static_cast<double>(elapsed.count() % round) *
                                       static_cast<double>(length) / static_cast<double>(round));
    const int64_t place = (begun + moved) % length;
    const int64_t away = place <= length / 2 ? place : length - place;
    return static_cast<int32_t>(course.from + (span < 0 ? -away : away));
}

void Movement::advance(std::chrono::milliseconds elapsed) {
    for (const Course& course : m_courses) {
        m_device.measure(course.pid, course.varidx, place_on(course, elapsed));
    }
}

}  // namespace frontpanel
