#include <frontpanel_data/data_model.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>

#include "support/capture.h"
#include "support/fake_device.h"
#include "support/faulty_interface.h"
#include "support/indexes.h"
#include "support/line_gates.h"

namespace {

using support::capture;
using support::expect_line_gate;
using support::Fake_device;
using support::Fault;
using support::Faulty_interface;
using support::Gate;
using support::Operation;

const Index_t INDEX = support::index_of({3});
constexpr unsigned int UNREAD_PID = 65547;

int32_t value_of(Integer_model& model) {
    int32_t value = 0;
    EXPECT_EQ(model.Get(&value, sizeof value), Data_model::OK);
    return value;
}

int set(Integer_model& model, int32_t value) {
    return model.Set(&value, sizeof value);
}

class Integer_probe : public Integer_model {
public:
    using Integer_model::Integer_model;
    bool is_initialised() const { return m_init; }
    int32_t minimum() const { return m_min; }
    int32_t maximum() const { return m_max; }
    int32_t default_value() const { return m_default; }
};

TEST(IntegerModel, StartsAtItsDefault) {
    Integer_probe model(120, &INDEX, 0, 10, 7);
    EXPECT_EQ(value_of(model), 7);
    EXPECT_EQ(model.minimum(), 0);
    EXPECT_EQ(model.maximum(), 10);
    EXPECT_EQ(model.default_value(), 7);
    EXPECT_TRUE(model.Is_active());
    EXPECT_EQ(model.Get_varidx(), 3u);
}

TEST(IntegerModel, TheDefaultMayLieOnABound) {
    Integer_model low(120, &INDEX, 0, 10, 0);
    Integer_model high(120, &INDEX, 0, 10, 10);
    Integer_model single(120, &INDEX, INT_MIN, INT_MIN, INT_MIN);
    EXPECT_EQ(value_of(low), 0);
    EXPECT_EQ(value_of(high), 10);
    EXPECT_EQ(value_of(single), INT_MIN);
}

TEST(IntegerModelDeathTest, ADefaultOutsideTheBoundsIsAProgrammingError) {
    EXPECT_DEATH(Integer_model(120, &INDEX, 0, 10, 11), "Assertion `default_value<=max' failed");
    EXPECT_DEATH(Integer_model(120, &INDEX, 0, 10, -1), "Assertion `min<=default_value' failed");
}

TEST(IntegerModelDeathTest, ANullIndexIsReportedBeforeTheBounds) {
    EXPECT_DEATH(Integer_model(120, nullptr, 0, 10, 11), "Assertion `index' failed");
}

TEST(IntegerModelDeathTest, NullBuffersAndZeroLengthsAreProgrammingErrors) {
    Integer_model model(120, &INDEX, 0, 10, 7);
    int32_t value = 0;
    EXPECT_DEATH(model.Get(nullptr, 4), "Assertion `buffer&&length' failed");
    EXPECT_DEATH(model.Get(&value, 0), "Assertion `buffer&&length' failed");
    EXPECT_DEATH(model.Set(nullptr, 4), "Assertion `buffer&&length' failed");
    EXPECT_DEATH(model.Set(&value, 0), "Assertion `buffer&&length' failed");
}

TEST(IntegerModel, GetCopiesTheFirstBytesInMemoryOrder) {
    const int32_t stored = 0x04030201;
    Integer_model model(120, &INDEX, INT_MIN, INT_MAX, stored);
    unsigned char expected[4];
    std::memcpy(expected, &stored, sizeof expected);
    for (unsigned int length = 1; length <= 8; ++length) {
        unsigned char buffer[8];
        std::memset(buffer, 0xEE, sizeof buffer);
        EXPECT_EQ(model.Get(buffer, length), Data_model::OK);
        const unsigned int copied = std::min(length, 4u);
        EXPECT_EQ(std::memcmp(buffer, expected, copied), 0) << "length " << length;
        for (unsigned int i = copied; i < sizeof buffer; ++i) {
            EXPECT_EQ(buffer[i], 0xEE) << "length " << length << " byte " << i;
        }
    }
}

TEST(IntegerModel, SetDoesNotCheckTheBounds) {
    Integer_model model(120, &INDEX, 0, 10, 7);
    EXPECT_EQ(set(model, 11), Data_model::OK);
    EXPECT_EQ(value_of(model), 11);
    EXPECT_EQ(set(model, -5), Data_model::OK);
    EXPECT_EQ(value_of(model), -5);
}

TEST(IntegerModel, SetOfTwoBytesKeepsTheOthers) {
    Integer_model model(120, &INDEX, INT_MIN, INT_MAX, 0x04030201);
    const unsigned char bytes[2] = {0xAA, 0xBB};
    EXPECT_EQ(model.Set(bytes, 2), Data_model::OK);
    int32_t expected = 0x04030201;
    std::memcpy(&expected, bytes, sizeof bytes);
    EXPECT_EQ(value_of(model), expected);
}

// The length is the caller's: more than four bytes go on over the bounds that follow the value.
TEST(IntegerModel, SetDoesNotLimitTheLength) {
    Integer_probe model(120, &INDEX, 0, 10, 7);
    const int32_t values[2] = {5, -3};
    EXPECT_EQ(model.Set(values, sizeof values), Data_model::OK);
    EXPECT_EQ(value_of(model), 5);
    EXPECT_EQ(model.minimum(), -3);
    EXPECT_EQ(model.maximum(), 10);
}

struct Step {
    int min;
    int max;
    int start;
    int value;
    int result;
};

TEST(IntegerModel, SteppingStopsAtTheBounds) {
    const Step steps[] = {
        {0, 10, 9, 1, 10},
        {0, 10, 9, 5, 10},
        {0, 10, 10, 1, 10},
        {0, 10, 10, -20, 0},
        {0, 10, 1, -1, 0},
        {0, 10, 0, -1, 0},
        {0, 10, 5, 0, 5},
        {0, 10, 5, INT_MAX, 10},
        {0, 10, 5, INT_MIN, 0},
        {INT_MIN, INT_MAX, INT_MAX, 1, INT_MAX},
        {INT_MIN, INT_MAX, INT_MAX, INT_MAX, INT_MAX},
        {INT_MIN, INT_MAX, INT_MIN, -1, INT_MIN},
        {INT_MIN, INT_MAX, INT_MIN, INT_MIN, INT_MIN},
        {INT_MIN, INT_MAX, INT_MIN, INT_MAX, -1},
        {-10, -1, -5, 7, -1},
        {-10, -1, -5, -7, -10},
    };
    for (const Step& step : steps) {
        Integer_model model(120, &INDEX, step.min, step.max, step.start);
        EXPECT_EQ(model.Inc_value(step.value, 0), Data_model::OK);
        EXPECT_EQ(value_of(model), step.result) << step.start << " stepped by " << step.value;
    }
}

TEST(IntegerModel, SteppingIgnoresThePosition) {
    for (const int position : {-1, 0, 1, 100, INT_MIN, INT_MAX}) {
        Integer_model model(120, &INDEX, 0, 10, 5);
        EXPECT_EQ(model.Inc_value(1, position), Data_model::OK);
        EXPECT_EQ(value_of(model), 6);
    }
}

TEST(IntegerModel, SteppingBringsAValueFromOutsideBackToABound) {
    Integer_model model(120, &INDEX, 0, 10, 5);
    set(model, 100);
    EXPECT_EQ(model.Inc_value(-1, 0), Data_model::OK);
    EXPECT_EQ(value_of(model), 10);
    set(model, -100);
    EXPECT_EQ(model.Inc_value(0, 0), Data_model::OK);
    EXPECT_EQ(value_of(model), 0);
}

TEST(IntegerModel, NewBoundsAreNotChecked) {
    Integer_model model(120, &INDEX, 0, 10, 5);
    model.Set_min(20);
    model.Set_max(3);
    EXPECT_EQ(value_of(model), 5);
    // Above the maximum and below the minimum: the maximum is asked first.
    EXPECT_EQ(model.Inc_value(1, 0), Data_model::OK);
    EXPECT_EQ(value_of(model), 3);
}

TEST(IntegerModel, RefreshReadsFourBytes) {
    Fake_device device;
    device.expect_get_integer(120, 3, 42);
    Integer_model model(120, &INDEX, 0, 10, 5);
    EXPECT_EQ(model.Refresh(&device), Data_model::OK);
    EXPECT_EQ(value_of(model), 42) << "what the device says is not checked against the bounds";
}

TEST(IntegerModel, AFailedReadIsAnErrorAndKeepsWhatTheInterfaceLeft) {
    for (const int failure : {-1, 1, 2, 77}) {
        Fake_device device;
        device.expect_get(120, 3, 4, "", failure);
        Integer_model model(120, &INDEX, 0, 10, 5);
        EXPECT_EQ(model.Refresh(&device), Data_model::ERROR);
        EXPECT_EQ(value_of(model), 5);
    }
    Fake_device device;
    Faulty_interface faulty(device);
    faulty.fail(Operation::GET, Fault{-1, support::bytes_of(9)});
    Integer_model model(120, &INDEX, 0, 10, 5);
    EXPECT_EQ(model.Refresh(&faulty), Data_model::ERROR);
    EXPECT_EQ(value_of(model), 9);
}

TEST(IntegerModel, CommitWritesFourBytes) {
    Fake_device device;
    device.expect_set_integer(120, 3, 5);
    Integer_model model(120, &INDEX, 0, 10, 5);
    EXPECT_EQ(model.Commit(&device), Data_model::OK);
}

TEST(IntegerModel, AFailedWriteIsAnErrorAndKeepsTheValue) {
    for (const int failure : {-1, 1, 2, 77}) {
        Fake_device device;
        device.expect_set_integer(120, 3, 5, failure);
        Integer_model model(120, &INDEX, 0, 10, 5);
        EXPECT_EQ(model.Commit(&device), Data_model::ERROR);
        EXPECT_EQ(value_of(model), 5);
    }
}

TEST(IntegerModel, TheUnreadParameterIsWrittenButNeverRead) {
    Fake_device device;
    Integer_model model(UNREAD_PID, &INDEX, 0, 10, 5);
    EXPECT_EQ(model.Refresh(&device), Data_model::OK);
    EXPECT_EQ(value_of(model), 5);
    EXPECT_TRUE(device.calls().empty());
    device.expect_set_integer(UNREAD_PID, 3, 5);
    EXPECT_EQ(model.Commit(&device), Data_model::OK);
}

TEST(IntegerModel, TheUnreadParameterNeedsNoInterface) {
    Integer_model model(UNREAD_PID, &INDEX, 0, 10, 5);
    EXPECT_EQ(model.Refresh(nullptr), Data_model::OK);
}

TEST(IntegerModel, NeighboursOfTheUnreadParameterAreRead) {
    for (const unsigned int pid : {UNREAD_PID - 1, UNREAD_PID + 1}) {
        Fake_device device;
        device.expect_get_integer(pid, 3, 8);
        Integer_model model(pid, &INDEX, 0, 10, 5);
        EXPECT_EQ(model.Refresh(&device), Data_model::OK);
    }
}

// A caller that holds the base must not reach the device through `Init`.
TEST(IntegerModel, InitReadsNothing) {
    Fake_device device;
    VarIdDataInfStore::m_pDataAccessInf = &device;
    Integer_probe model(120, &INDEX, 0, 10, 5);
    Data_model& base = model;
    base.Init();
    EXPECT_EQ(base.Refresh(), Data_model::OK);
    EXPECT_EQ(base.Commit(), Data_model::OK);
    VarIdDataInfStore::m_pDataAccessInf = nullptr;
    EXPECT_TRUE(model.is_initialised());
    EXPECT_EQ(value_of(model), 5);
    EXPECT_TRUE(device.calls().empty());
}

TEST(IntegerModelLines, GetTellsTheValueDelivered) {
    Integer_model model(120, &INDEX, 0, 10, 5);
    int32_t value = 0;
    const auto action = [&] { model.Get(&value, sizeof value); };
    const char* const line = "Integer_model::Get: value[5], length[4] m_value[5]\n";
    EXPECT_EQ(capture(0x1, action).out, line);
    expect_line_gate(line, 0x3, Gate::LEAF, action);
}

TEST(IntegerModelLines, SetTellsTheNewValue) {
    Integer_model model(120, &INDEX, 0, 10, 5);
    const auto action = [&] { set(model, 8); };
    const char* const line = "Integer_model::Set: value[8], length[4]\n";
    EXPECT_EQ(capture(0x1, action).out, line);
    expect_line_gate(line, 0x25, Gate::LEAF, action);
}

TEST(IntegerModelLines, SteppingTellsItsArguments) {
    Integer_model model(120, &INDEX, 0, 10, 5);
    const auto action = [&] { model.Inc_value(-2, 4); };
    const char* const line = "Integer_model::Inc_value: value[-2], position[4]\n";
    EXPECT_EQ(capture(0xFFFFFFFF, action).out, line);
    expect_line_gate(line, 0x1, Gate::LEAF, action);
}

TEST(IntegerModelLines, RefreshTellsTheValueBeforeAndAfter) {
    Fake_device device;
    device.expect_get_integer(120, 3, 8);
    Integer_model model(120, &INDEX, 0, 10, 5);
    EXPECT_EQ(capture(0x1, [&] { model.Refresh(&device); }).out,
              "Integer_model::Refresh before:m_pid=120, m_varidx=3, m_value=5 m_max=[10] "
              "m_min=[0]\n"
              "Integer_model::Refresh after:m_pid=120, m_varidx=3, m_value=8 m_max=[10] "
              "m_min=[0]\n");
}

TEST(IntegerModelLines, RefreshOfTheUnreadParameterTellsTheSame) {
    Integer_model model(UNREAD_PID, &INDEX, 0, 10, 5);
    const auto action = [&] { model.Refresh(nullptr); };
    EXPECT_EQ(capture(0x1, action).out,
              "Integer_model::Refresh before:m_pid=65547, m_varidx=3, m_value=5 m_max=[10] "
              "m_min=[0]\n"
              "Integer_model::Refresh after:m_pid=65547, m_varidx=3, m_value=5 m_max=[10] "
              "m_min=[0]\n");
    expect_line_gate("Integer_model::Refresh before:", 0x1, Gate::LEAF, action);
    expect_line_gate("Integer_model::Refresh after:", 0x1, Gate::LEAF, action);
}

TEST(IntegerModelLines, CommitTellsTheValueWritten) {
    Fake_device device;
    Faulty_interface quiet(device);
    quiet.fail(Operation::SET, Fault{0, ""});
    Integer_model model(120, &INDEX, 0, 10, 5);
    const auto action = [&] { model.Commit(&quiet); };
    const char* const line = "Integer_model::Commit:m_pid=120, m_varidx=3, m_value=5\n";
    EXPECT_EQ(capture(0x1, action).out, line);
    expect_line_gate(line, 0x5, Gate::LEAF, action);
}

}  // namespace
