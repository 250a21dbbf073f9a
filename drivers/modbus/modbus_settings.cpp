#include "modbus_settings.h"

#include <algorithm>
#include <array>
#include <optional>

#include <frontpanel_base/json_members.h>
#include <frontpanel_drivers/duration.h>
#include <frontpanel_drivers/ip_address.h>

namespace frontpanel {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds SHORTEST_TIMEOUT(10);
constexpr milliseconds LONGEST_TIMEOUT(3000);
constexpr int MOST_RETRIES = 5;
constexpr int LARGEST_GAP = 100;
constexpr int LARGEST_UNIT = 247;
constexpr int TCP_UNIT = 255;  // the controller at the address itself
constexpr std::int64_t LARGEST_PORT = 65535;
constexpr std::size_t LONGEST_PATH = 255;

// The library takes any other rate for 9600.
constexpr std::array<int, 11> RATES{1200,  2400,   4800,   9600,   19200, 38400,
                                    57600, 115200, 230400, 460800, 921600};

constexpr std::array<const char*, 4> SERIAL_MEMBERS{"device", "baud", "parity", "stop"};
constexpr std::array<const char*, 2> TCP_MEMBERS{"host", "port"};

std::string device_of(const Json_value& value) {
    std::string path = value.text_of_length(1, LONGEST_PATH);
    if (path.front() != '/') {
        value.fail("expected a path that begins with \"/\", found \"" + path + "\"");
    }
    return path;
}

int baud_of(const Json_value& value) {
    const std::int64_t baud = value.integer(1, RATES.back());
    if (std::find(RATES.begin(), RATES.end(), baud) == RATES.end()) {
        value.fail("expected a usual rate such as 9600, 19200 or 115200, found " +
                   std::to_string(baud));
    }
    return static_cast<int>(baud);
}

char parity_of(const Json_value& value) {
    return std::array<char, 3>{'E', 'O', 'N'}[value.choice({"even", "odd", "none"})];
}

template <std::size_t COUNT>
void expect_none(const Json_value& options, const std::array<const char*, COUNT>& names,
                 const char* other) {
    for (const char* const name : names) {
        if (const auto value = options.find(name)) {
            value->fail(std::string("\"") + name + "\" does not go with \"" + other + "\"");
        }
    }
}

void read_serial(const Json_value& options, Modbus_settings& settings) {
    expect_none(options, TCP_MEMBERS, "device");
    settings.device = device_of(options.member("device"));
    if (const auto baud = options.find("baud")) {
        settings.baud = baud_of(*baud);
    }
    if (const auto parity = options.find("parity")) {
        settings.parity = parity_of(*parity);
    }
    settings.stop_bits = integer_or(options, "stop", 1, 2, settings.stop_bits);
}

void read_tcp(const Json_value& options, Modbus_settings& settings) {
    settings.host = ip_address_of(options.member("host"));
    expect_none(options, SERIAL_MEMBERS, "host");
    settings.port =
        static_cast<std::uint16_t>(integer_or(options, "port", 1, LARGEST_PORT, settings.port));
}

}  // namespace

std::vector<const char*> modbus_members() {
    std::vector<const char*> names(TCP_MEMBERS.begin(), TCP_MEMBERS.end());
    names.insert(names.end(), SERIAL_MEMBERS.begin(), SERIAL_MEMBERS.end());
    names.insert(names.end(), {"unit", "words", "timeout", "retries", "gap"});
    return names;
}

Modbus_settings modbus_settings_of(const Json_value& options) {
    Modbus_settings settings;
    const bool is_serial = options.find("device").has_value();
    is_serial ? read_serial(options, settings) : read_tcp(options, settings);
    settings.unit = unit_of(options, is_serial, settings.unit);
    settings.is_low_word_first = is_low_word_first(options, settings.is_low_word_first);
    settings.timeout =
        duration_or(options, "timeout", SHORTEST_TIMEOUT, LONGEST_TIMEOUT, settings.timeout);
    settings.retries = integer_or(options, "retries", 0, MOST_RETRIES, settings.retries);
    settings.gap = integer_or(options, "gap", 0, LARGEST_GAP, settings.gap);
    return settings;
}

int unit_of(const Json_value& owner, bool is_serial, int otherwise) {
    const auto value = owner.find("unit");
    if (!value) {
        return otherwise;
    }
    // On a serial line 0 addresses all units at once, and none of them answers.
    const std::int64_t unit =
        value->integer(is_serial ? 1 : 0, is_serial ? LARGEST_UNIT : TCP_UNIT);
    if (unit > LARGEST_UNIT && unit != TCP_UNIT) {
        value->fail("expected a unit from 0 to 247, or 255, found " + std::to_string(unit));
    }
    return static_cast<int>(unit);
}

bool is_low_word_first(const Json_value& owner, bool otherwise) {
    const auto value = owner.find("words");
    return value ? value->choice({"high-first", "low-first"}) == 1 : otherwise;
}

}  // namespace frontpanel
