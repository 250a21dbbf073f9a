// What an evaluation allocates.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "unit/eval/evaluation.h"

// Every way to allocate that the library's objects could call: the C library's, and operator new.
extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* memory, std::size_t size);
void* real_new(std::size_t size) __asm__("__real__Znw" SIZE_TYPE);
void* real_new_array(std::size_t size) __asm__("__real__Zna" SIZE_TYPE);
void* __wrap_malloc(std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
void* __wrap_realloc(void* memory, std::size_t size);
void* wrap_new(std::size_t size) __asm__("__wrap__Znw" SIZE_TYPE);
void* wrap_new_array(std::size_t size) __asm__("__wrap__Zna" SIZE_TYPE);
}

namespace {

int g_allocations = 0;
bool g_is_out_of_memory = false;

int allocations_of(const std::string& source, int expected_result) {
    std::string text = source;
    const int before = g_allocations;
    const int result = evaluateExpression(text.data());
    const int allocations = g_allocations - before;
    EXPECT_EQ(result, expected_result) << source;
    return allocations;
}

TEST(Evaluator_allocation, ANewVariableCostsOneNameCopy) {
    EXPECT_EQ(allocations_of("fresh_a = 1", 0), 1);
    EXPECT_EQ(allocations_of("fresh_b = fresh_c + fresh_d", 0), 3);
    EXPECT_EQ(allocations_of(std::string(900, 'f'), 0), 1);
}

TEST(Evaluator_allocation, EverythingElseAllocatesNothing) {
    ASSERT_EQ(evaluation::evaluate("a = 1; b = 2"), 0);
    EXPECT_EQ(allocations_of("", 0), 0);
    EXPECT_EQ(allocations_of("a = b = 3 + 4.25e3 / b ** 2 - fmod(7, a + 1) /* x */ // y\n", 0), 0);
    EXPECT_EQ(allocations_of("a = b ? a < b || !a : a && b", 0), 0);
    EXPECT_EQ(allocations_of("a = 0." + std::string(1000, '7'), 0), 0);
    EXPECT_EQ(allocations_of(std::string(120, '(') + "a" + std::string(120, ')'), 0), 0);
    EXPECT_EQ(allocations_of("a = 1/0", 1), 0);
    EXPECT_EQ(allocations_of("a = fabs(1, 2)", 1), 0);
    EXPECT_EQ(allocations_of("a = nothing(1)", 1), 0);
    EXPECT_EQ(allocations_of("a = (1", 1), 0);
    EXPECT_EQ(allocations_of("a = #", 1), 0);
    EXPECT_EQ(allocations_of("never_created = 1/0", 1), 0);
}

TEST(Evaluator_allocation, WithoutMemoryForItsNameAVariableIsRefused) {
    ASSERT_EQ(evaluation::evaluate("a = 1"), 0);
    std::string text = "a = 2; unaffordable = 3; a = 4";
    g_is_out_of_memory = true;
    const int result = evaluateExpression(text.data());
    g_is_out_of_memory = false;
    EXPECT_EQ(result, 1);
    EXPECT_EQ(evaluation::last_error(), "1:24 Symbol Table Full");
    EXPECT_EQ(evaluation::value_of("a"), 2.0);
    EXPECT_FALSE(evaluation::value_of("unaffordable").has_value());
}

}  // namespace

void* __wrap_malloc(std::size_t size) {
    ++g_allocations;
    return g_is_out_of_memory ? nullptr : __real_malloc(size);
}

void* __wrap_calloc(std::size_t count, std::size_t size) {
    ++g_allocations;
    return __real_calloc(count, size);
}

void* __wrap_realloc(void* memory, std::size_t size) {
    ++g_allocations;
    return __real_realloc(memory, size);
}

void* wrap_new(std::size_t size) {
    ++g_allocations;
    return real_new(size);
}

void* wrap_new_array(std::size_t size) {
    ++g_allocations;
    return real_new_array(size);
}
