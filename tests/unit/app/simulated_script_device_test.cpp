#include "simulated_script_device.h"

#include <gtest/gtest.h>

#include <cstring>

namespace frontpanel {
namespace {

const Parameter_name NUMBER{5, 0};
const Parameter_name TEXT{6, 0x201};

class Simulated_script_device_test : public testing::Test {
protected:
    Simulated_script_device_test() {
        memory.add_integer(NUMBER.pid, NUMBER.varidx, 0, 9, 3);
        memory.add_text(TEXT.pid, TEXT.varidx, 4, "abc");
    }
    int write(int32_t value) { return memory.Set(NUMBER.pid, NUMBER.varidx, &value, sizeof value); }
    int read() {
        int32_t value = 0;
        return memory.Get(NUMBER.pid, NUMBER.varidx, &value, sizeof value);
    }

    Memory_device memory;
    Parameter_table parameters;
    Simulated_script_device device{memory, nullptr, parameters};
};

TEST_F(Simulated_script_device_test, HasTheParametersOfTheDevice) {
    EXPECT_TRUE(device.has_parameter(NUMBER));
    EXPECT_TRUE(device.has_parameter(TEXT));
    EXPECT_FALSE(device.has_parameter({5, 1}));
    EXPECT_FALSE(device.has_parameter({7, 0}));
}

TEST_F(Simulated_script_device_test, FindsParametersByTheirDeclaredNames) {
    Parameter parameter;
    parameter.pid = 100;
    parameter.index = {2, {3, 1}};
    parameters.declare("gain 3", parameter);
    const auto found = device.find("gain 3");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->pid, 100U);
    EXPECT_EQ(found->varidx, 0x103U);
    EXPECT_FALSE(device.find("gain 4"));
}

TEST_F(Simulated_script_device_test, SetsNumbersAndTexts) {
    EXPECT_EQ(device.set(NUMBER, "7"), std::nullopt);
    EXPECT_EQ(device.set(TEXT, "xy"), std::nullopt);
    EXPECT_EQ(memory.integer(NUMBER.pid, NUMBER.varidx), 7);
    EXPECT_EQ(memory.text(TEXT.pid, TEXT.varidx), "xy");
    EXPECT_FALSE(device.oldest_write());  // the device did it by itself
}

TEST_F(Simulated_script_device_test, SaysWhyAParameterCannotHoldAValue) {
    EXPECT_EQ(device.set(NUMBER, "10"), Memory_device::result_text(Memory_device::OUT_OF_BOUNDS));
    EXPECT_EQ(device.set(NUMBER, "x"), Memory_device::result_text(Memory_device::WRONG_TYPE));
    EXPECT_EQ(device.set(TEXT, "abcde"), Memory_device::result_text(Memory_device::OUT_OF_BOUNDS));
    EXPECT_EQ(memory.integer(NUMBER.pid, NUMBER.varidx), 3);
    EXPECT_EQ(memory.text(TEXT.pid, TEXT.varidx), "abc");
}

TEST_F(Simulated_script_device_test, KeepsTheWritesInTheirOrder) {
    write(4);
    write(99);
    ASSERT_TRUE(device.oldest_write());
    EXPECT_EQ(device.oldest_write()->parameter.pid, NUMBER.pid);
    EXPECT_EQ(device.oldest_write()->value, "4");
    EXPECT_FALSE(device.oldest_write()->failed);
    device.drop_write();
    EXPECT_EQ(device.oldest_write()->value, "99");
    EXPECT_TRUE(device.oldest_write()->failed);
    device.drop_write();
    EXPECT_FALSE(device.oldest_write());
}

// As a script names it.
TEST_F(Simulated_script_device_test, KeepsAWrittenTextInUtf8) {
    const std::string text = "\u00FC\n";
    memory.Set(TEXT.pid, TEXT.varidx, text.data(), static_cast<unsigned int>(text.size()));
    EXPECT_EQ(device.oldest_write()->value, "\u00FC\\x0a");
}

TEST_F(Simulated_script_device_test, FailsReadsAndWritesOfAParameterEachForItself) {
    device.set_fault(NUMBER, true, true);
    EXPECT_NE(write(4), 0);
    EXPECT_EQ(read(), 0);
    device.set_fault(NUMBER, false, true);
    EXPECT_NE(read(), 0);
    device.set_fault(NUMBER, true, false);
    EXPECT_EQ(write(4), 0);
    EXPECT_NE(read(), 0);
    device.set_fault(NUMBER, false, false);
    EXPECT_EQ(read(), 0);
}

TEST_F(Simulated_script_device_test, ACardThatDoesNotRunHasNothingSelected) {
    EXPECT_EQ(device.selected_option(3, 9001), -1);
}

TEST(SimulatedScriptDevice, TellsWhatACardHasSelected) {
    Memory_device memory;
    Card_service cards;
    cards.add_combo_box(3, 9001, {{"a", "A"}, {"b", "B"}}, 1);
    const Parameter_table parameters;
    const Simulated_script_device device(memory, &cards, parameters);
    EXPECT_EQ(device.selected_option(3, 9001), 1);
    EXPECT_EQ(device.selected_option(3, 9002), -1);
}

TEST(SimulatedScriptDevice, LeavesTheDeviceAlone) {
    Memory_device memory;
    memory.add_integer(1, 0, 0, 9, 3);
    { Simulated_script_device(memory, nullptr, Parameter_table()).set_fault({1, 0}, false, true); }
    int32_t value = 0;
    EXPECT_EQ(memory.Get(1, 0, &value, sizeof value), 0);
}

}  // namespace
}  // namespace frontpanel
