// A table that finds no memory.
#include <frontpanel_binding/parameter_table.h>
#include <gtest/gtest.h>

#include <new>
#include <string>

#include "support/allocation_counter.h"
#include "support/indexes.h"

using namespace frontpanel;

namespace {

constexpr std::uint32_t COUNT = 100;

std::string name_of(std::uint32_t pid) {
    return "p" + std::to_string(pid);
}

void declare(Parameter_table& table, std::uint32_t pid) {
    table.declare(name_of(pid), {INTEGER, pid, support::index_of({}), 0, 9});
}

TEST(Parameter_table_memory, WhatIsDeclaredAgainAfterItFailedIsFound) {
    for (std::size_t failing = 1; failing <= 40; ++failing) {
        Parameter_table table;
        support::fail_allocation(failing);
        for (std::uint32_t pid = 0; pid < COUNT; ++pid) {
            try {
                declare(table, pid);
            } catch (const std::bad_alloc&) {
                declare(table, pid);
            }
        }
        support::fail_allocation(0);
        for (std::uint32_t pid = 0; pid < COUNT; ++pid) {
            const Parameter* const found = table.find(pid, support::index_of({}));
            ASSERT_NE(found, nullptr) << failing << " " << pid;
            ASSERT_EQ(found->pid, pid);
            ASSERT_EQ(table.find(name_of(pid)), found) << failing << " " << pid;
        }
    }
}

}  // namespace
