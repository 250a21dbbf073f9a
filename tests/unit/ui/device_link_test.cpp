#include "device_link.h"

#include <frontpanel_menu/entry_access.h>
#include "support/panel_fixture.h"

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

constexpr const char* PARAMETERS = R"(
    {"name": "gain", "pid": 1, "type": "integer", "min": 0, "max": 9, "value": 5},
    {"name": "limit", "pid": 2, "type": "integer", "min": 0, "max": 9, "value": 9})";
constexpr const char* ITEMS = R"(
    {"type": "range", "name": "Gain", "parameter": "gain", "binding": "visible if [limit] > 0"})";

class Device_link_test : public testing::Test {
protected:
    Simulated_menu menu = simulated_text(menu_text(PARAMETERS, ITEMS));
    Device_link link = link_to(*menu.menu);
    Data_entry& gain = *menu.menu->root().Get_child();
};

TEST_F(Device_link_test, ReachesTheDeviceThroughTheMenu) {
    int32_t value = 0;
    EXPECT_EQ(link.access.Get(1, 0, &value, sizeof value), 0);
    EXPECT_EQ(value, 5);
    EXPECT_EQ(&link.access, &menu.menu->access());
}

TEST_F(Device_link_test, TellsWhetherTheLastReadFailed) {
    int32_t value = 0;
    link.access.Get(1, 0, &value, sizeof value);
    EXPECT_FALSE(link.read_failed(gain));
    menu.device().set_fault([](const Memory_device::Operation&) { return 100; });
    link.access.Get(1, 0, &value, sizeof value);
    EXPECT_TRUE(link.read_failed(gain));
    EXPECT_FALSE(link.read_failed(menu.menu->root()));
    menu.device().set_fault(nullptr);
    link.access.Get(1, 0, &value, sizeof value);
    EXPECT_FALSE(link.read_failed(gain));
}

TEST_F(Device_link_test, ProbesLoopbackAlone) {
    EXPECT_TRUE(link.may_probe("127.0.0.1"));
    EXPECT_TRUE(link.may_probe("127.1.2.3"));
    EXPECT_FALSE(link.may_probe("192.0.2.1"));
    EXPECT_FALSE(link.may_probe("1270.0.1"));
    EXPECT_FALSE(link.may_probe(""));
}

TEST_F(Device_link_test, PollsAndSettlesWhatRulesDependOn) {
    refresh(gain, link.access);
    link.poll(SIZE_MAX);
    link.settle(SIZE_MAX);
    EXPECT_EQ(link.settle(SIZE_MAX).refreshes, 0U);
    menu.device().set_integer(2, 0, 0);
    link.poll(SIZE_MAX);
    const Binding_settlement settled = link.settle(SIZE_MAX);
    EXPECT_GT(settled.refreshes, 0U);
    EXPECT_TRUE(settled.at_rest);
    EXPECT_LT(gain.isVisible(true, &link.access), 0);
}

}  // namespace
}  // namespace frontpanel
