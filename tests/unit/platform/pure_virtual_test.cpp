#include <dlfcn.h>
#include <gtest/gtest.h>

#include <frontpanel_data/timer.h>

#include <cstring>

namespace {

// The first pure virtual operation of the abstract class, behind its two destructors.
void call_open_operation_of_timer() {
    const LinuxTimer linked_to_the_library;
    constexpr int HEADER = 2;
    constexpr int DESTRUCTORS = 2;
    auto* const table = static_cast<void**>(dlsym(RTLD_DEFAULT, "_ZTV5Timer"));
    ASSERT_NE(table, nullptr);
    void (*operation)() = nullptr;
    std::memcpy(&operation, &table[HEADER + DESTRUCTORS], sizeof operation);
    operation();
}

TEST(Open_operation, EndsTheProgramWithTheCompilersMessage) {
    EXPECT_DEATH(call_open_operation_of_timer(), "pure virtual method called");
}

}  // namespace
