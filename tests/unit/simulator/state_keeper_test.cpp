#include <frontpanel_simulator/state_keeper.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include <frontpanel_base/input_error.h>
#include "support/folder.h"

namespace frontpanel {
namespace {

namespace fs = std::filesystem;

constexpr uint32_t GAIN = 100;

class State_keeper_test : public testing::Test {
protected:
    State_keeper_test() { m_device.add_integer(GAIN, 1, -600, 120, 0); }

    const std::string& file() const { return m_file; }
    std::string content() const { return read_input_file(m_file); }

    support::Folder m_folder;
    std::string m_file = m_folder.file("values");
    Memory_device m_device;
};

constexpr std::chrono::milliseconds AT_ONCE{0};
constexpr std::chrono::hours NOT_NOW{1};

TEST_F(State_keeper_test, AChangeIsWrittenWithoutBeingAskedFor) {
    State_file state(file(), m_device);
    State_keeper keeper(state, m_device, nullptr, AT_ONCE);
    m_device.set_integer(GAIN, 1, 5);
    while (keeper.save_count() == 0) {
        std::this_thread::yield();
    }
    EXPECT_NE(content().find("\"index\":1,\"integer\":5"), std::string::npos);
}

TEST_F(State_keeper_test, ManyChangesAreWrittenOnce) {
    State_file state(file(), m_device);
    State_keeper keeper(state, m_device, nullptr, NOT_NOW);
    for (int value = 1; value <= 100; ++value) {
        m_device.set_integer(GAIN, 1, value);
    }
    keeper.finish();
    EXPECT_EQ(keeper.save_count(), 1);
    EXPECT_NE(content().find("\"index\":1,\"integer\":100"), std::string::npos);
}

TEST_F(State_keeper_test, WithoutAChangeNothingIsWritten) {
    State_file state(file(), m_device);
    State_keeper keeper(state, m_device, nullptr, AT_ONCE);
    m_device.set_integer(GAIN, 1, 0);
    keeper.finish();
    EXPECT_EQ(keeper.save_count(), 0);
    EXPECT_FALSE(fs::exists(file()));
}

TEST_F(State_keeper_test, AChangeIsWrittenAtOnceWhenThatIsAskedFor) {
    State_file state(file(), m_device);
    State_keeper keeper(state, m_device, nullptr, NOT_NOW);
    m_device.set_integer(GAIN, 1, 5);
    std::thread([&keeper] { keeper.save_now(); }).join();
    EXPECT_NE(content().find("\"index\":1,\"integer\":5"), std::string::npos);
    keeper.save_now();
    keeper.finish();
    EXPECT_EQ(keeper.save_count(), 1);
}

TEST_F(State_keeper_test, WhatCouldNotBeWrittenAtOnceIsWrittenAtTheEnd) {
    State_file state(m_folder.file("late/values"), m_device);
    State_keeper keeper(state, m_device, nullptr, NOT_NOW);
    m_device.set_integer(GAIN, 1, 5);
    EXPECT_THROW(keeper.save_now(), Input_error);
    fs::create_directory(m_folder.file("late"));
    keeper.finish();
    EXPECT_EQ(keeper.save_count(), 1);
}

TEST_F(State_keeper_test, TheEndTellsWhatCouldNotBeWritten) {
    const std::string absent = m_folder.file("absent/values");
    State_file state(absent, m_device);
    State_keeper keeper(state, m_device, nullptr, NOT_NOW);
    m_device.set_integer(GAIN, 1, 5);
    try {
        keeper.finish();
        FAIL() << "there is no such folder";
    } catch (const Input_error& error) {
        EXPECT_EQ(error.what(), absent + ": cannot be written: No such file or directory");
    }
}

TEST_F(State_keeper_test, WhatCouldNotBeWrittenIsWrittenLater) {
    State_file state(m_folder.file("late/values"), m_device);
    State_keeper keeper(state, m_device, nullptr, AT_ONCE);
    m_device.set_integer(GAIN, 1, 5);
    fs::create_directory(m_folder.file("late"));
    while (keeper.save_count() == 0) {
        std::this_thread::yield();
    }
    keeper.finish();
    EXPECT_NE(read_input_file(m_folder.file("late/values")).find("\"integer\":5"),
              std::string::npos);
}

}  // namespace
}  // namespace frontpanel
