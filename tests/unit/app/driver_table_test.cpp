#include "driver_table.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace frontpanel {
namespace {

TEST(Driver_table, NamesEachDriverOnce) {
    std::set<std::string> names;
    for (const Driver_row* const row : driver_table()) {
        EXPECT_TRUE(names.insert(row->name).second) << row->name;
        EXPECT_NE(row->create, nullptr);
    }
}

}  // namespace
}  // namespace frontpanel
