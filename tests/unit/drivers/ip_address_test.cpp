#include <frontpanel_drivers/ip_address.h>

#include <gtest/gtest.h>

#include <string>

#include "support/made_of_json.h"

namespace frontpanel {
namespace {

support::Made_of_json<std::string> read_address(const std::string& json) {
    return {json, [](const Json_value& value) { return ip_address_of(value); }};
}

TEST(IpAddress, IsTakenAsItIsWritten) {
    for (const std::string address : {"127.0.0.1", "::1", "fe80::2"}) {
        const auto read = read_address("\"" + address + "\"");
        EXPECT_EQ(read.error, "");
        EXPECT_EQ(read.result, address);
    }
}

TEST(IpAddress, NothingElseIsOne) {
    for (const std::string text :
         {"", "localhost", "127.1", "127.0.0.1:80", "[::1]", "256.0.0.1"}) {
        EXPECT_EQ(read_address("\"" + text + "\"").error,
                  "expected an IPv4 or IPv6 address, found \"" + text + "\"");
    }
}

}  // namespace
}  // namespace frontpanel
