#include "modbus_settings.h"

#include <gtest/gtest.h>

#include <string>

#include "support/made_of_json.h"

namespace frontpanel {
namespace {

support::Made_of_json<Modbus_settings> read_settings(const std::string& text) {
    return {text, [](const Json_value& value) { return modbus_settings_of(value); }};
}

TEST(ModbusSettings, AnAddressIsReachedOverTcp) {
    const auto read = read_settings(R"({"host": "127.0.0.1"})");
    EXPECT_EQ(read.error, "");
    EXPECT_FALSE(read.result.is_serial());
    EXPECT_EQ(read.result.host, "127.0.0.1");
    EXPECT_EQ(read.result.port, 502);
    EXPECT_EQ(read.result.unit, 1);
    EXPECT_EQ(read.result.timeout.count(), 500);
    EXPECT_EQ(read.result.retries, 1);
    EXPECT_EQ(read.result.gap, 0);
    EXPECT_EQ(read_settings(R"({"host": "::1", "port": 1502})").result.host, "::1");
}

TEST(ModbusSettings, ADeviceIsASerialLine) {
    const auto usual = read_settings(R"({"device": "/dev/ttyS0"})");
    EXPECT_TRUE(usual.result.is_serial());
    EXPECT_EQ(usual.result.baud, 19200);
    EXPECT_EQ(usual.result.parity, 'E');
    EXPECT_EQ(usual.result.stop_bits, 1);
    const auto own =
        read_settings(R"({"device": "/dev/ttyS0", "baud": 9600, "parity": "none", "stop": 2,
        "unit": 17, "words": "low-first", "timeout": "1s", "retries": 0, "gap": 8})");
    EXPECT_EQ(own.error, "");
    EXPECT_EQ(own.result.baud, 9600);
    EXPECT_EQ(own.result.parity, 'N');
    EXPECT_EQ(own.result.stop_bits, 2);
    EXPECT_EQ(own.result.unit, 17);
    EXPECT_TRUE(own.result.is_low_word_first);
    EXPECT_EQ(own.result.timeout.count(), 1000);
    EXPECT_EQ(own.result.retries, 0);
    EXPECT_EQ(own.result.gap, 8);
}

TEST(ModbusSettings, MistakesAreReported) {
    const struct {
        const char* options;
        const char* error;
    } cases[] = {
        {"{}", R"(expected a member "host")"},
        {R"({"host": "plc.local"})", R"(expected an IPv4 or IPv6 address, found "plc.local")"},
        {R"({"host": "127.1"})", R"(expected an IPv4 or IPv6 address, found "127.1")"},
        {R"({"host": "127.0.0.1", "port": 0})", "expected a whole number from 1 to 65535, found 0"},
        {R"({"host": "127.0.0.1", "device": "/dev/ttyS0"})", R"("host" does not go with "device")"},
        {R"({"host": "127.0.0.1", "baud": 9600})", R"("baud" does not go with "host")"},
        {R"({"device": "ttyS0"})", R"(expected a path that begins with "/", found "ttyS0")"},
        {R"({"device": "/dev/ttyS0", "baud": 9601})",
         "expected a usual rate such as 9600, 19200 or 115200, found 9601"},
        {R"({"device": "/dev/ttyS0", "parity": "evn"})",
         R"(expected one of "even", "odd", "none", found "evn"; did you mean "even"?)"},
        {R"({"device": "/dev/ttyS0", "stop": 3})", "expected a whole number from 1 to 2, found 3"},
        {R"({"device": "/dev/ttyS0", "unit": 0})",
         "expected a whole number from 1 to 247, found 0"},
        {R"({"host": "127.0.0.1", "unit": 250})",
         "expected a unit from 0 to 247, or 255, found 250"},
        {R"({"host": "127.0.0.1", "timeout": "4s"})",
         R"(expected a time from 10ms to 3s, found "4s")"},
        {R"({"host": "127.0.0.1", "retries": 6})", "expected a whole number from 0 to 5, found 6"},
        {R"({"host": "127.0.0.1", "gap": 101})",
         "expected a whole number from 0 to 100, found 101"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.options);
        EXPECT_EQ(read_settings(c.options).error, c.error);
    }
}

}  // namespace
}  // namespace frontpanel
