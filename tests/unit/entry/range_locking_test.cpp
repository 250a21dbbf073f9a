#include <frontpanel_data/evaluator.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <cstddef>
#include <string>
#include <thread>
#include <vector>

#include "range_fixture.h"
#include "support/allocation_counter.h"
#include "support/capture.h"
#include "support/fake_binding.h"
#include "support/fake_device.h"

namespace {

// Takes of one mutex, counted where the library's objects call the platform.
pthread_mutex_t* watched = nullptr;
std::atomic<int> taken{0};
std::atomic<int> held{0};

}  // namespace

extern "C" {
int __real_pthread_mutex_lock(pthread_mutex_t* mutex);
int __real_pthread_mutex_unlock(pthread_mutex_t* mutex);

int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex) {
    if (mutex == watched) {
        ++taken;
        ++held;
    }
    return __real_pthread_mutex_lock(mutex);
}

int __wrap_pthread_mutex_unlock(pthread_mutex_t* mutex) {
    if (mutex == watched) {
        --held;
    }
    return __real_pthread_mutex_unlock(mutex);
}
}

namespace {

using support::Fake_binding;
using support::Fake_device;

struct Range_locking : testing::Test {
    Range_locking() {
        // The mutex is the wrapper's first member.
        watched = reinterpret_cast<pthread_mutex_t*>(&entry.min_max_mutex);
        taken = 0;
    }
    ~Range_locking() override {
        EXPECT_EQ(held, 0);
        watched = nullptr;
    }

    template <class Action>
    int takes(Action action) {
        taken = 0;
        action();
        EXPECT_EQ(held, 0);
        return taken;
    }

    Open_range entry{{0, 100, 10}};
};

TEST_F(Range_locking, TheBoundsAreReadUnderTheMutex) {
    int value = 0;
    EXPECT_EQ(takes([&] { entry.Get_min(); }), 1);
    EXPECT_EQ(takes([&] { entry.Get_max(); }), 1);
    EXPECT_EQ(takes([&] { entry.Get_value(&value, 4); }), 1);
}

TEST_F(Range_locking, TheBindingsBoundsAreWrittenUnderTheMutex) {
    auto* binding = new Fake_binding;
    entry.Set_binding_object(binding);
    EXPECT_EQ(takes([&] { entry.updateRange(); }), 0) << "nothing to write";
    binding->suggest_range({{1, 2}});
    EXPECT_EQ(takes([&] { entry.updateRange(); }), 1);
}

// Intended: options are evaluated before the panel runs, when nobody else reads.
TEST_F(Range_locking, OptionsAreEvaluatedWithoutTheMutex) {
    EXPECT_EQ(takes([&] { entry.evaluateOptions(); }), 0);
    EXPECT_EQ(takes([&] { entry.setValidRangeAndValues({{0, 10, {}}}); }), 0);
}

TEST_F(Range_locking, StepsDoNotTakeTheMutex) {
    EXPECT_EQ(takes([&] { entry.increment(5, 7); }), 0);
    EXPECT_EQ(takes([&] { entry.Inc_value(1, 0); }), 0);
}

// The listener is given the lines while nothing is locked: it may ask the entry for its bounds.
struct Listening {
    explicit Listening(Open_range& entry) {
        asked = &entry;
        debug_listener = [](uint32_t) {
            ++lines;
            lines_under_mutex += held;
            if (held == 0) {
                asked->Get_min();
            }
        };
    }
    ~Listening() { debug_listener = nullptr; }

    static Open_range* asked;
    static int lines;
    static int lines_under_mutex;
};

Open_range* Listening::asked = nullptr;
int Listening::lines = 0;
int Listening::lines_under_mutex = 0;

TEST_F(Range_locking, NoLineIsPrintedUnderTheMutex) {
    auto* binding = new Fake_binding;
    entry.Set_binding_object(binding);
    const Listening listening(entry);
    for (const int value : {-1, 101}) {
        Fake_device device;
        device.expect_get_integer(120, 3, value);
        device.expect_set_integer(120, 3, value < 0 ? 0 : 40);
        const std::string out = support::capture(0xFFFFFFFF, [&] {
                                    entry.setValidRangeAndValues({{0, 41, {}}});
                                    binding->suggest_range({{0, 50}});
                                    entry.Refresh(&device, true);
                                    entry.getProperties(0);
                                    entry.increment(5, 7);
                                }).out;
        EXPECT_NE(out.find("final min[0] max[40]\n"), std::string::npos);
        EXPECT_NE(out.find("is not in range [0,40]. Setting/Commiting product to the value ["),
                  std::string::npos);
    }
    EXPECT_GT(Listening::lines, 0);
    EXPECT_EQ(Listening::lines_under_mutex, 0);
}

// A device that reads the bounds back while it is written to, as another thread might.
class Asking_device : public Fake_device {
public:
    explicit Asking_device(Open_range& entry) : m_entry(entry) {}
    int Set(unsigned int pid, unsigned int varidx, const void* buffer,
            unsigned int length) override {
        bounds_seen = m_entry.Get_max() - m_entry.Get_min();
        return Fake_device::Set(pid, varidx, buffer, length);
    }
    int bounds_seen = -1;

private:
    Open_range& m_entry;
};

TEST_F(Range_locking, ACorrectionIsChosenUnderTheMutexAndCommittedWithoutIt) {
    Asking_device device(entry);
    device.expect_get_integer(120, 3, 101);
    device.expect_set_integer(120, 3, 100);
    EXPECT_EQ(takes([&] { entry.Refresh(&device, true); }), 4)
        << "value, correction, two by the device";
    EXPECT_EQ(device.bounds_seen, 100);
}

TEST_F(Range_locking, AnotherThreadReadsWholeBounds) {
    auto* binding = new Fake_binding;
    entry.Set_binding_object(binding);
    entry.setValidRangeAndValues({{0, 1000, {}}});
    std::thread reader([this] {
        for (int i = 0; i < 2000; ++i) {
            EXPECT_GE(entry.Get_max(), 0);
            EXPECT_LE(entry.Get_min(), 400);
        }
    });
    for (int i = 0; i < 400; ++i) {
        binding->suggest_range({{i, 999 - i}});
        entry.updateRange();
    }
    reader.join();
}

template <class Action>
std::size_t allocations_of(Action action) {
    const std::size_t before = support::allocations();
    action();
    return support::allocations() - before;
}

TEST(Range_allocation, PlainNumbersAndTableTextsAreShownWithoutAny) {
    Open_range plain;
    Open_range table({0, 100, 10, "0:Switched off for now,1:On,%d dB", "v"});
    char line[33];
    EXPECT_EQ(allocations_of([&] { plain.Get_display_string(line, 32, -2147483647); }), 0U);
    EXPECT_STREQ(line, "-2147483647");
    EXPECT_EQ(allocations_of([&] { table.Get_display_string(line, 32, 0); }), 0U);
    EXPECT_STREQ(line, "Switched off for now");
    EXPECT_EQ(allocations_of([&] { table.Get_display_string(line, 8, 0); }), 0U);
}

TEST(Range_allocation, IsCounted) {
    EXPECT_EQ(allocations_of([] { ::operator delete(::operator new(1)); }), 1U);
}

TEST(Range_allocation, ValuesAreReadAndSteppedWithoutAny) {
    Open_range entry;
    entry.setValidRangeAndValues({{0, 6, {}}, {20, 30, {}}});
    EXPECT_EQ(allocations_of([&] {
                  int value = 3;
                  entry.Set_value(&value, 4);
                  entry.Get_value(&value, 4);
                  entry.Inc_value(1, 0);
                  entry.increment(5, 8);
              }),
              0U);
}

}  // namespace
