#include <frontpanel_drivers/driver.h>

#include <poll.h>

#include <algorithm>
#include <limits>

namespace frontpanel {

Value_sink::~Value_sink() = default;

void Value_sink::late_value(std::size_t number, const Parameter_value& value,
                            std::chrono::milliseconds /*age*/) {
    this->value(number, value);
}

Driver::~Driver() = default;

void Driver::check(Problems& /*problems*/) const {}

void Driver::disconnect() {}

void Driver::stop() {}

bool Driver::pushes(std::size_t /*number*/) const {
    return false;
}

bool Driver::repeats(std::size_t /*number*/) const {
    return false;
}

Driver_result Driver::wait(std::chrono::milliseconds most, int wake, Value_sink& /*sink*/) {
    constexpr std::chrono::milliseconds LONGEST(std::numeric_limits<int>::max());
    pollfd source{wake, POLLIN, 0};
    poll(&source, 1, static_cast<int>(std::clamp(most, most.zero(), LONGEST).count()));
    return Driver_result::done();
}

}  // namespace frontpanel
