#include "driver_table.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace frontpanel {
namespace {

TEST(Driver_table, HasEveryDriverInEveryBuild) {
    std::set<std::string> names;
    for (const Driver_row* const row : driver_table()) {
        names.insert(row->name);
    }
    EXPECT_EQ(names, (std::set<std::string>{"file", "modbus", "mqtt", "process"}));
}

TEST(Driver_table, NamesEachDriverOnceAndTheOptionOfOneThatIsLeftOut) {
    std::set<std::string> names;
    for (const Driver_row* const row : driver_table()) {
        EXPECT_TRUE(names.insert(row->name).second) << row->name;
        EXPECT_EQ(row->is_left_out(), row->build_option != nullptr) << row->name;
    }
}

}  // namespace
}  // namespace frontpanel
