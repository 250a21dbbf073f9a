#include <frontpanel_data/data_model.h>
#include <gtest/gtest.h>

#include "support/allocation_counter.h"
#include "support/indexes.h"

namespace {

// Answers every call without allocating.
class Quiet_interface : public Data_interface {
public:
    int Get(unsigned int, unsigned int, void* buffer, unsigned int) override {
        static_cast<char*>(buffer)[0] = 'A';
        return 0;
    }
    int Set(unsigned int, unsigned int, const void*, unsigned int) override { return 0; }
    int Get_prod_list(PROD_LIST_S*, bool, bool) override { return 1; }
    int Set_product_id(prod_id_t) override { return 1; }
    int Get_prod_alias_name(char*, prod_id_t) override { return 1; }
};

TEST(Allocation, IsCountedByThisTest) {
    const std::size_t before = support::allocations();
    ::operator delete(::operator new(8));  // a call that compilers may not leave out
    EXPECT_EQ(support::allocations(), before + 1);
}

TEST(Allocation, NoOperationOfTheIntegerModelAllocates) {
    const Index_t index = support::index_of({3, 1});
    Quiet_interface interface;
    int32_t value = 5;
    const std::size_t before = support::allocations();
    {
        Integer_model model(120, &index, 0, 100, 5);
        model.Init();
        model.Get(&value, sizeof value);
        model.Set(&value, sizeof value);
        model.Set_min(1);
        model.Set_max(50);
        model.Inc_value(3, 0);
        model.Refresh(&interface);
        model.Commit(&interface);
    }
    EXPECT_EQ(support::allocations(), before);
}

TEST(Allocation, NoOperationOfTheStringModelAllocates) {
    const Index_t index = support::index_of({3, 1});
    Quiet_interface interface;
    char buffer[300];
    const std::size_t before = support::allocations();
    {
        String_model model(120, &index, 256);
        model.Init();
        model.Set("HELLO WORLD", 11);
        model.Get(buffer, sizeof buffer);
        model.Get(buffer, 4, 9);
        model.Inc_value(1, 0);
        model.Inc_value(1, 20);
        model.Inc_value(1, -20);
        model.Refresh(&interface);
        model.Commit(&interface);
    }
    EXPECT_EQ(support::allocations(), before);
}

}  // namespace
