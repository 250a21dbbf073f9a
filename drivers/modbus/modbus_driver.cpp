#include <frontpanel_driver_modbus/modbus_driver.h>

#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "modbus_line.h"
#include "modbus_settings.h"
#include "register_place.h"
#include "register_requests.h"
#include "resting_units.h"

namespace frontpanel {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds READ_SPAN(500);  // the writes that wait come next

class Modbus_driver : public Driver {
public:
    explicit Modbus_driver(const Json_value& options)
        : m_settings(modbus_settings_of(options)), m_line(m_settings) {
        if (const auto device = options.find("device")) {
            m_device_place = device->place();
        }
    }

    void add(const Json_value& source, const Driver_parameter& parameter) override {
        if (parameter.is_text) {
            source.fail("a register or coil holds no text");
        }
        m_places.push_back(register_place_of(source, m_settings));
        m_is_first.push_back(false);
        m_sources.push_back({source.place(), parameter.name});
    }

    void check(Problems& problems) const override {
        if (m_settings.is_serial() && access(m_settings.device.c_str(), R_OK | W_OK) != 0) {
            problems.warn(*m_device_place, "\"" + m_settings.device +
                                               "\": " + std::generic_category().message(errno));
        }
        for (const Register_overlap& overlap : overlaps_of(m_places)) {
            const Register_range& range = m_places[overlap.number].range;
            problems.warn(m_sources[overlap.number].place,
                          std::string(noun_of(range.table)) + " " +
                              std::to_string(overlap.address) + " of unit " +
                              std::to_string(range.unit) + " also holds \"" +
                              m_sources[overlap.other].name + "\"");
        }
    }

    Driver_result connect() override {
        m_is_first.assign(m_places.size(), false);
        return m_line.open();
    }
    void disconnect() override { m_line.close(); }
    void stop() override { m_line.stop(); }

    Driver_result read(const std::vector<std::size_t>& numbers, Value_sink& sink) override;
    Driver_result write(std::size_t number, const Parameter_value& value) override;

private:
    using Requests = std::deque<Register_request>;

    struct Source_of {
        Place place;  // for `check` only
        std::string name;
    };

    bool passes_resting(const Register_request& request, Value_sink& sink) const;
    Driver_result read_one(const Register_request& request, Requests& requests, Value_sink& sink);
    void split(const Register_request& request, Requests& requests);
    void pass_values(const Register_request& request, const Words& words, Value_sink& sink);
    void note(int unit, const Driver_result& result);
    Driver_result read_part(const Register_range& range, Words& words);

    Modbus_settings m_settings;
    Modbus_line m_line;
    std::optional<Place> m_device_place;  // for `check` only
    std::vector<Register_place> m_places;
    std::vector<Source_of> m_sources;
    std::vector<bool> m_is_first;  // cannot be read together with those before it
    Resting_units m_resting;
};

Driver_result Modbus_driver::read(const std::vector<std::size_t>& numbers, Value_sink& sink) {
    const auto joined = requests_for(m_places, numbers, m_settings.gap, m_is_first);
    Requests requests(joined.begin(), joined.end());
    const auto end = Clock::now() + READ_SPAN;
    bool is_some = false;
    while (!requests.empty() && (!is_some || Clock::now() < end)) {
        const Register_request request = std::move(requests.front());
        requests.pop_front();
        const std::size_t waiting = requests.size();
        if (!passes_resting(request, sink)) {
            Driver_result result = read_one(request, requests, sink);
            if (result.kind == Driver_result::AWAY) {
                return result;
            }
        }
        is_some = is_some || requests.size() == waiting;
    }
    return Driver_result::done();
}

// Whether the unit rests: then the parameters have failed.
bool Modbus_driver::passes_resting(const Register_request& request, Value_sink& sink) const {
    const std::string* const reason = m_resting.reason(request.range.unit, Clock::now());
    if (reason == nullptr) {
        return false;
    }
    for (const std::size_t number : request.numbers) {
        sink.failure(number, *reason);
    }
    return true;
}

Driver_result Modbus_driver::read_one(const Register_request& request, Requests& requests,
                                      Value_sink& sink) {
    const int unit = request.range.unit;
    Words words;
    Modbus_line::Answer answer =
        m_line.read(request.range, words, m_resting.is_alive(unit) ? m_settings.retries : 0);
    note(unit, answer);
    if (answer.kind == Driver_result::DONE) {
        pass_values(request, words, sink);
    } else if (answer.kind != Driver_result::AWAY) {
        if (answer.is_bad_address && request.numbers.size() > 1) {
            split(request, requests);
            return Driver_result::done();
        }
        for (const std::size_t number : request.numbers) {
            sink.failure(number, answer.reason);
        }
    }
    return answer;
}

// One register that the controller does not have must not take its neighbours along: the halves are asked for one after
// the other, and stay apart until the next connection.
void Modbus_driver::split(const Register_request& request, Requests& requests) {
    const auto middle = static_cast<std::ptrdiff_t>(request.numbers.size() / 2);
    const auto half = request.numbers.begin() + middle;
    m_is_first[*half] = true;
    const auto halves = requests_for(m_places, request.numbers, m_settings.gap, m_is_first);
    requests.insert(requests.begin(), halves.begin(), halves.end());
}

void Modbus_driver::pass_values(const Register_request& request, const Words& words,
                                Value_sink& sink) {
    for (const std::size_t number : request.numbers) {
        const Register_place& place = m_places[number];
        const auto offset = static_cast<std::size_t>(place.range.first - request.range.first);
        const Scaled_number value = number_in(place, words.data() + offset);
        if (const auto* const reason = std::get_if<std::string>(&value)) {
            sink.failure(number, *reason);
        } else {
            sink.value(number, std::get<std::int32_t>(value));
        }
    }
}

void Modbus_driver::note(int unit, const Driver_result& result) {
    if (result.kind == Driver_result::TIMED_OUT) {
        m_resting.silent(unit, Clock::now(), result.reason);
    } else if (result.kind != Driver_result::AWAY) {
        m_resting.answered(unit);
    }
}

Driver_result Modbus_driver::write(std::size_t number, const Parameter_value& value) {
    const Register_place& place = m_places[number];
    const auto* const wanted = std::get_if<std::int32_t>(&value);
    if (wanted == nullptr || !place.range.is_writable()) {
        return Driver_result::refused(
            std::string(noun_of(place.range.table)) +
            (wanted == nullptr ? "s hold no text" : "s cannot be written"));
    }
    Words words(static_cast<std::size_t>(place.range.count), 0);
    if (place.is_part()) {
        Driver_result result = read_part(place.range, words);
        if (result.kind != Driver_result::DONE) {
            return result;
        }
    }
    if (const std::string misfit = put_number(place, *wanted, words); !misfit.empty()) {
        return Driver_result::refused(misfit);
    }
    Driver_result result = m_line.write(place.range, words);
    if (result.kind == Driver_result::DONE || result.kind == Driver_result::REFUSED) {
        m_resting.answered(place.range.unit);
    }
    return result;
}

// The other bits of registers of which a part is written.
Driver_result Modbus_driver::read_part(const Register_range& range, Words& words) {
    Driver_result result = m_line.read(range, words, m_settings.retries);
    note(range.unit, result);
    if (result.kind == Driver_result::TIMED_OUT) {
        return Driver_result::refused(result.reason + "; nothing was written");
    }
    return result;
}

std::unique_ptr<Driver> create(const Json_value& options, const Driver_setup& /*setup*/) {
    return std::make_unique<Modbus_driver>(options);
}

}  // namespace

const Driver_row& modbus_driver_row() {
    static const Driver_row ROW{"modbus", modbus_members(), register_members(), create};
    return ROW;
}

}  // namespace frontpanel
