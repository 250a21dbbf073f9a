// A panel redraws its entries several times a second: refreshing and drawing a large enumeration must not
// touch the heap.
#include "enum_fixture.h"
#include "support/allocation_counter.h"
#include "support/fake_binding.h"

namespace {

class Quiet_interface : public Data_interface {
public:
    int Get(unsigned int, unsigned int, void* buffer, unsigned int) override {
        *static_cast<int*>(buffer) = key;
        return 0;
    }
    int Set(unsigned int, unsigned int, const void*, unsigned int) override { return 0; }
    int Get_prod_list(PROD_LIST_S*, bool, bool) override { return 1; }
    int Set_product_id(prod_id_t) override { return 1; }
    int Get_prod_alias_name(char*, prod_id_t) override { return 1; }

    int key = 500;
};

class EnumAllocation : public ::testing::Test {
protected:
    EnumAllocation()
        : texts(std::vector<std::string>(1000, "An option with a text of more than a line")),
          entry(Enum_arguments().texts(&texts).max(999)) {
        entry.Set_binding_object(new support::Fake_binding());
        entry.Refresh(&device, false);
        before = support::allocations();
    }
    // Compared before anything is reported, since a report allocates.
    std::size_t allocations() const { return support::allocations() - before; }

    Texts texts;
    Open_enum entry;
    Quiet_interface device;
    std::size_t before;
};

TEST_F(EnumAllocation, IsCountedByThisTest) {
    ::operator delete(::operator new(8));  // a call that compilers may not leave out
    EXPECT_EQ(allocations(), 1U);
}

// Rebuilding the map is what allocates; a refresh leaves it alone. What an engine does to evaluate its
// expressions is not the entry's.
TEST_F(EnumAllocation, RefreshOfAThousandOptionsAllocatesNothing) {
    for (int refresh = 0; refresh < 10; ++refresh) {
        device.key = refresh * 100;
        entry.Refresh(&device, false);
    }
    const std::size_t counted = allocations();
    EXPECT_EQ(counted, 0U);
}

TEST_F(EnumAllocation, DisplayAndSteppingAllocateNothing) {
    char line[17] = {};
    int position = 0;
    int wrong = 0;
    for (int step = 0; step < 100; ++step) {
        wrong += entry.Get_display_string(line, 16);
        wrong += entry.Get_display_string(line, 16, step);
        wrong += entry.Inc_value(1, 0);
        wrong += entry.Get_value(&position, sizeof position);
    }
    const std::size_t counted = allocations();
    EXPECT_EQ(counted, 0U);
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(position, 600);
}

// A key that only the device has makes the list of positions out of date.
TEST_F(EnumAllocation, WithoutMemoryAnOptionIsFoundAllTheSame) {
    device.key = 5000;
    entry.Refresh(&device, false);
    for (int wanted = 1; wanted <= 3; ++wanted) {
        support::fail_allocation(static_cast<std::size_t>(wanted));
        int key = 0;
        int result = -1;
        EXPECT_NO_THROW(result = entry.Get_value(&key, sizeof key, 700 + wanted));
        support::fail_allocation(0);
        EXPECT_EQ(result, 0);
        EXPECT_EQ(key, 700 + wanted);
    }
}

}  // namespace
