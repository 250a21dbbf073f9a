// A script without enough memory is an error, never a part of the script.
#include <frontpanel_ui/script.h>
#include <gtest/gtest.h>

#include <new>
#include <optional>

#include "support/allocation_counter.h"

namespace frontpanel {
namespace {

// A name, a line and a word that need memory of their own.
const std::string FILE_NAME = "a-script-with-a-long-name.script";
const std::string TEXT =
    "say a text that is longer than what a string holds without memory\n"
    "set 100000000.1.2 1234567890123456789012345678901234567890\n"
    "expect 1 |a line of the display that needs memory of its own|\n"
    "tick 1000\n";

TEST(ScriptAllocation, AnyAllocationMayFailAndNoStepIsLost) {
    constexpr std::size_t STEPS = 4;
    constexpr std::size_t MOST = 10000;
    std::size_t number = 0;
    for (bool has_failed = true; has_failed && number < MOST;) {
        ++number;
        std::optional<Script> script;
        const std::size_t before = support::allocations();
        support::fail_allocation(number);
        try {
            script = parse_script(FILE_NAME, TEXT);
        } catch (const std::bad_alloc&) {
        }
        has_failed = support::allocations() - before >= number;
        support::fail_allocation(0);
        EXPECT_TRUE(!script || script->steps.size() == STEPS) << "allocation " << number;
    }
    EXPECT_GT(number, 10U);
    EXPECT_LT(number, MOST);
}

}  // namespace
}  // namespace frontpanel
