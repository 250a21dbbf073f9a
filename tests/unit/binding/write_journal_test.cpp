#include <frontpanel_binding/write_journal.h>

#include <frontpanel_binding/device_value.h>

#include "unit/binding/binding_fixture.h"

namespace binding_fixture {
namespace {

class Write_journal_test : public Binding_fixture {
protected:
    Write_journal_test() : cache(device, registry) {}
    void SetUp() override {
        device.add_integer(1, 0, 0, 9, 1);
        device.add_integer(2, 0x0203, 0, 99, 2);
        device.add_text(3, 0, 8, "abcd");
        registry->parameters().declare("title", {STRING, 3, no_level});
    }
    int set(uint32_t pid, uint32_t varidx, int value) {
        return cache.Set(pid, varidx, &value, sizeof value);
    }

    Caching_device cache;
};

TEST_F(Write_journal_test, PutsBackWhatTheDeviceHeldFirst) {
    Write_journal journal(cache, *registry);
    set(1, 0, 5);
    set(1, 0, 6);
    set(2, 0x0203, 7);
    EXPECT_EQ(write_value(cache, {3, 0}, {STRING, 0, "four"}), 0);
    EXPECT_TRUE(journal.put_back().empty());
    EXPECT_EQ(device.integer(1, 0), 1);
    EXPECT_EQ(device.integer(2, 0x0203), 2);
    EXPECT_EQ(device.text(3, 0), "abcd");
    EXPECT_TRUE(journal.put_back().empty());
}

TEST_F(Write_journal_test, SeesTheWritesOfRulesAndLetsThemCountAsNotMade) {
    Number_entry entry("Mode", 1, no_level, 0, 9);
    bind(entry, "set [2.3.2] = value * 10");
    registry->settle(&cache);
    EXPECT_EQ(device.integer(2, 0x0203), 10);
    set(2, 0x0203, 77);
    {
        Write_journal journal(cache, *registry);
        set(1, 0, 4);
        registry->settle(&cache);
        EXPECT_EQ(device.integer(2, 0x0203), 40);
        EXPECT_TRUE(journal.put_back().empty());
    }
    registry->settle(&cache);
    EXPECT_EQ(device.integer(1, 0), 1);
    EXPECT_EQ(device.integer(2, 0x0203), 77);
}

TEST_F(Write_journal_test, NamesWhatTheDeviceDoesNotTakeBack) {
    Write_journal journal(cache, *registry);
    set(1, 0, 5);
    set(2, 0x0203, 7);
    device.set_fault([](const Memory_device::Operation& operation) {
        return operation.kind == Memory_device::Operation_kind::WRITE && operation.pid == 1 ? 9 : 0;
    });
    EXPECT_EQ(journal.put_back(), (std::vector<Device_variable>{{1, 0}}));
    EXPECT_EQ(device.integer(2, 0x0203), 2);
}

}  // namespace
}  // namespace binding_fixture
