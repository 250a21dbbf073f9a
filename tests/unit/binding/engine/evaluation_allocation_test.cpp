// What a warmed-up engine takes from the heap: nothing.
#include <frontpanel_binding/caching_device.h>

#include <gtest/gtest.h>

#include <cstring>

#include "support/allocation_counter.h"
#include "unit/binding/binding_fixture.h"

using namespace frontpanel;

namespace {

using binding_fixture::Number_entry;
using support::index_of;

// Answers every call without allocating: a number that changes with every read, or a text.
class Restless_device : public Data_interface {
public:
    int Get(unsigned int pid, unsigned int, void* buffer, unsigned int length) override {
        if (pid >= 200) {
            std::memset(buffer, 0, length);
            std::memset(buffer, 'a' + m_reads++ % 20, 40);
            return 0;
        }
        const int32_t value = m_reads++ % 7;
        std::memcpy(buffer, &value, sizeof value);
        return 0;
    }
    int Set(unsigned int, unsigned int, const void*, unsigned int) override { return 0; }
    int Get_prod_list(PROD_LIST_S*, bool, bool) override { return 1; }
    int Set_product_id(prod_id_t) override { return 1; }
    int Get_prod_alias_name(char*, prod_id_t) override { return 1; }

private:
    int m_reads = 0;
};

class Evaluation_allocation : public testing::Test {
protected:
    Evaluation_allocation() {
        registry->set_product_options({{"gps", 1}});
        const Compile_result compiled = registry->compile(
            "visible if [100] > 3 and has_option(\"gps\"); range 0..[101], 100..200 if [100] > 2\n"
            "keys 0, [100]..3 if [102] > 1; keys 2 if [100] > 1\n"
            "set [103] = [100] if [101] > 1; set [201@s] = \"is {[100]}\"\n"
            "warn \"Gain {[100]} of {[200@s]} is more than the amplifier can bear\" if [101] > 0\n"
            "access read-only if [200@s] == \"b\" or [100] > 3");
        EXPECT_TRUE(compiled.ok()) << compiled.error->text();
        engine = new Expression_binding(registry);
        engine->addBindingList(compiled.list);
        engine->set_fallback_range(0, 10);
        entry.Set_binding_object(engine);
    }

    // As a refresh and a try evaluate, without what the callers' own copies take.
    void evaluate_all() {
        int flags = Binding::EXECUTE_FLAG;
        engine->evaluateAllBindingExpressions(&flags);
        engine->clearSuggestion(63);
        flags = Binding::EXECUTE_FLAG | Expression_binding::OVERRIDE_FLAG;
        engine->evaluateAllBindingExpressions(&flags);
        engine->clearSuggestion(63);
    }

    Restless_device device;
    std::shared_ptr<Binding_registry> registry = std::make_shared<Binding_registry>(&device);
    const Index_t no_level = index_of({});
    Number_entry entry{"Source", 120, no_level, 0, 10};  // one with options would number them anew
    Expression_binding* engine = nullptr;
};

TEST_F(Evaluation_allocation, AWarmEngineTakesNoMemory) {
    for (int i = 0; i < 100; ++i) {
        evaluate_all();
    }
    const std::size_t before = support::allocations();
    for (int i = 0; i < 1000; ++i) {
        evaluate_all();
    }
    EXPECT_EQ(support::allocations(), before);
}

TEST_F(Evaluation_allocation, ReadsWritesAndPollsThroughTheCacheTakeNoMemory) {
    Caching_device cache(device, registry);
    const auto turn = [&] {
        int32_t value = 0;
        char text[257];
        cache.Get(100, 0, &value, sizeof value);
        cache.Set(101, 0, &value, sizeof value);
        cache.Get(200, 0, text, sizeof text);
        registry->poll();
        evaluate_all();
    };
    for (int i = 0; i < 100; ++i) {
        turn();
    }
    const std::size_t before = support::allocations();
    for (int i = 0; i < 1000; ++i) {
        turn();
    }
    EXPECT_EQ(support::allocations(), before);
}

}  // namespace
