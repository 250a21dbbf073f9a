// Without enough memory no folder is left behind.
#include "curl_home.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <exception>
#include <filesystem>

#include "support/allocation_counter.h"
#include "support/folder.h"

namespace frontpanel {
namespace {

TEST(CurlHomeAllocation, AnyAllocationMayFailAndNothingIsLeft) {
    const support::Folder folder;
    setenv("TMPDIR", folder.path().c_str(), 1);
    constexpr std::size_t MOST = 1000;
    std::size_t number = 0;
    for (bool has_failed = true; has_failed && number < MOST;) {
        ++number;
        const std::size_t before = support::allocations();
        support::fail_allocation(number);
        try {
            const Curl_home home;
        } catch (const std::exception&) {
        }
        has_failed = support::allocations() - before >= number;
        support::fail_allocation(0);
        EXPECT_TRUE(std::filesystem::is_empty(folder.path())) << "allocation " << number;
        EXPECT_EQ(std::getenv("CURL_HOME"), nullptr) << "allocation " << number;
    }
    EXPECT_GT(number, 2U);
    EXPECT_LT(number, MOST);
    unsetenv("TMPDIR");
}

}  // namespace
}  // namespace frontpanel
