#include "device_link.h"

#include <gtest/gtest.h>

namespace frontpanel {
namespace {

TEST(DeviceLink, AddressesOfLoopbackMayBeAsked) {
    for (const char* const address : {"127.0.0.1", "127.0.0.0", "127.255.255.255", "127.9.8.7"}) {
        EXPECT_TRUE(is_loopback(address)) << address;
    }
}

TEST(DeviceLink, NothingElseMayBeAsked) {
    for (const char* const address :
         {"127.host.example", "127.0.0.1.example", "127.0.0.1 ", " 127.0.0.1", "127.0.0.1\n",
          "127.1", "127.", "127.0.0.256", "127.0.0.0177", "0127.0.0.1", "0x7f.0.0.1", "2130706433",
          "128.0.0.1", "126.255.255.255", "27.0.0.1", "12.7.0.0", "::1", "localhost", ""}) {
        EXPECT_FALSE(is_loopback(address)) << address;
    }
}

}  // namespace
}  // namespace frontpanel
