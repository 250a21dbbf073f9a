#include <frontpanel_simulator/random_faults.h>

#include <gtest/gtest.h>

#include <string>

using namespace frontpanel;

namespace {

Memory_device::Operation read_of(uint32_t pid) {
    return {Memory_device::Operation_kind::READ, pid, 0, 4, 0, 0};
}

// Which of so many calls fail: "..x." for the third of four.
std::string pattern(const Random_faults& faults, int calls) {
    std::string text;
    for (int i = 0; i < calls; ++i) {
        text += faults(read_of(7)) == 0 ? '.' : 'x';
    }
    return text;
}

TEST(RandomFaults, AreTheSameForTheSameSeedAndOthersForAnother) {
    Random_faults::Plan plan;
    plan.probability = 0.3;
    const std::string first = pattern(Random_faults(plan), 200);
    EXPECT_EQ(pattern(Random_faults(plan), 200), first);
    plan.seed = 2;
    EXPECT_NE(pattern(Random_faults(plan), 200), first);
}

TEST(RandomFaults, ComeAboutAsOftenAsTold) {
    Random_faults::Plan plan;
    plan.probability = 0.25;
    const Random_faults faults(plan);
    pattern(faults, 10000);
    EXPECT_NEAR(static_cast<double>(faults.failures()), 2500, 150);
    EXPECT_EQ(faults.delays(), 0U);
}

TEST(RandomFaults, NeverAndAlwaysAreExact) {
    Random_faults::Plan plan;
    plan.probability = 0;
    EXPECT_EQ(pattern(Random_faults(plan), 1000), std::string(1000, '.'));
    plan.probability = 1;
    EXPECT_EQ(pattern(Random_faults(plan), 1000), std::string(1000, 'x'));
}

TEST(RandomFaults, ACopyGoesOnInTheSameSequence) {
    const Random_faults whole{Random_faults::Plan()};
    const Random_faults half{Random_faults::Plan()};
    const Random_faults other_half(half);
    const std::string expected = pattern(whole, 100);
    const std::string begin = pattern(half, 50);
    EXPECT_EQ(begin + pattern(other_half, 50), expected);
    EXPECT_EQ(half.failures(), whole.failures());
}

TEST(RandomFaults, FailADevicesCallsWithTheirResult) {
    Memory_device device;
    device.add_integer(7, 0, 0, 9, 5);
    Random_faults::Plan plan;
    plan.probability = 1;
    plan.result = 77;
    device.set_fault(Random_faults(plan));
    int32_t value = 3;
    EXPECT_EQ(device.Get(7, 0, &value, sizeof value), 77);
    EXPECT_EQ(device.Set(7, 0, &value, sizeof value), 77);
    EXPECT_EQ(device.integer(7, 0), 5);
    EXPECT_EQ(value, 3);
}

TEST(RandomFaults, ASlowCallIsCarriedOut) {
    Random_faults::Plan plan;
    plan.probability = 0;
    plan.delay_probability = 1;
    plan.longest_delay = std::chrono::microseconds(100);
    const Random_faults faults(plan);
    EXPECT_EQ(pattern(faults, 5), ".....");
    EXPECT_EQ(faults.delays(), 5U);
}

}  // namespace
