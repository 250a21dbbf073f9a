// What building, taking apart and walking a menu costs, by the number of entries: each case reports the time per
// entry, which stays flat.
#include <benchmark/benchmark.h>
#include <frontpanel_data/data_entry.h>
#include <malloc.h>

#include <climits>
#include <map>
#include <memory>
#include <vector>

namespace {

const Index_t NO_LEVEL = {};

class Menu : public Node_entry {
public:
    explicit Menu(Data_entry* parent = nullptr)
        : Node_entry("Menu", "A menu", &NO_LEVEL, parent, VISIBLE_ALL, SHORTCUT_NONE, nullptr,
                     nullptr, nullptr) {}
};

using Entries = std::vector<std::unique_ptr<Menu>>;

Entries wide(Menu& menu, int64_t size) {
    Entries children;
    children.reserve(static_cast<std::size_t>(size));
    for (int64_t i = 0; i < size; ++i) {
        children.push_back(std::make_unique<Menu>(&menu));
    }
    return children;
}

Entries deep(Menu& menu, int64_t size) {
    Entries levels;
    levels.reserve(static_cast<std::size_t>(size));
    for (int64_t i = 0; i < size; ++i) {
        levels.push_back(std::make_unique<Menu>(i == 0 ? &menu : levels.back().get()));
    }
    return levels;
}

void count_entries(benchmark::State& state) {
    state.counters["per_entry"] =
        benchmark::Counter(static_cast<double>(state.iterations() * state.range(0)),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// The heap keeps freed memory, and has held as many entries before. So no case waits for the kernel to clear memory,
// whichever cases ran earlier.
void warm_heap(int64_t size) {
    mallopt(M_TRIM_THRESHOLD, INT_MAX);
    mallopt(M_MMAP_THRESHOLD, INT_MAX);
    Menu menu;
    wide(menu, size);
}

// Without parents: what the entries alone cost.
void build_apart(benchmark::State& state) {
    warm_heap(state.range(0));
    for (auto _ : state) {
        Entries entries;
        entries.reserve(static_cast<std::size_t>(state.range(0)));
        for (int64_t i = 0; i < state.range(0); ++i) {
            entries.push_back(std::make_unique<Menu>());
        }
        state.PauseTiming();
        entries.clear();
        state.ResumeTiming();
    }
    count_entries(state);
}
BENCHMARK(build_apart)->RangeMultiplier(10)->Range(10, 1000000);

void build(benchmark::State& state, Entries (*shape)(Menu&, int64_t)) {
    warm_heap(state.range(0));
    for (auto _ : state) {
        Menu menu;
        Entries entries = shape(menu, state.range(0));
        state.PauseTiming();
        entries.clear();
        state.ResumeTiming();
    }
    count_entries(state);
}
BENCHMARK_CAPTURE(build, wide, wide)->RangeMultiplier(10)->Range(10, 1000000);
BENCHMARK_CAPTURE(build, deep, deep)->RangeMultiplier(10)->Range(10, 1000000);

void remove(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        Menu menu;
        Entries entries = wide(menu, state.range(0));
        state.ResumeTiming();
        for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
            menu.Remove(entry->get());
        }
        state.PauseTiming();
        entries.clear();
        state.ResumeTiming();
    }
    count_entries(state);
}
BENCHMARK(remove)->RangeMultiplier(10)->Range(10, 1000000);

// Exchanges the links of as many entries, in the order of the removal: the time for their memory alone.
void exchange_links(benchmark::State& state) {
    Menu menu;
    Entries entries = wide(menu, state.range(0));
    for (auto _ : state) {
        for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
            Data_entry* const previous = (*entry)->Get_previous();
            if (previous != nullptr) {
                previous->Set_next(entry->get());
            }
            (*entry)->Set_parent(&menu);
        }
    }
    count_entries(state);
}
BENCHMARK(exchange_links)->RangeMultiplier(10)->Range(10, 1000000);

// Hands out the shortcut table.
void walk(benchmark::State& state, Entries (*shape)(Menu&, int64_t)) {
    Menu menu;
    const Entries entries = shape(menu, state.range(0));
    std::map<int, ShortcutS> table;
    for (auto _ : state) {
        Data_entry::TraverseMenuTree(&menu, 0x1, &table);
    }
    count_entries(state);
}
BENCHMARK_CAPTURE(walk, wide, wide)->RangeMultiplier(10)->Range(10, 1000000);
BENCHMARK_CAPTURE(walk, deep, deep)->RangeMultiplier(10)->Range(10, 1000000);

// Of a menu without leaves, which asks every entry.
void is_visible(benchmark::State& state, Entries (*shape)(Menu&, int64_t)) {
    Menu menu;
    const Entries entries = shape(menu, state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(menu.isVisible(true, nullptr));
    }
    count_entries(state);
}
BENCHMARK_CAPTURE(is_visible, wide, wide)->RangeMultiplier(10)->Range(10, 1000000);
BENCHMARK_CAPTURE(is_visible, deep, deep)->RangeMultiplier(10)->Range(10, 1000000);

// The next sibling, by a call of its own and as the walks fetch it.
void next_by_call(benchmark::State& state) {
    Menu menu;
    const Entries entries = wide(menu, 2);
    Data_entry* entry = entries.front().get();
    for (auto _ : state) {
        benchmark::DoNotOptimize(entry);
        benchmark::DoNotOptimize(entry->Get_next());
    }
}
BENCHMARK(next_by_call);

void next_by_dispatcher(benchmark::State& state) {
    Menu menu;
    const Entries entries = wide(menu, 2);
    Data_entry* entry = entries.front().get();
    void* found = nullptr;
    for (auto _ : state) {
        benchmark::DoNotOptimize(entry);
        Data_entry::EntryTypeSpecificOperation(entry, nullptr, nullptr, false,
                                               Data_entry::OPERATION_NEXT, &found);
        benchmark::DoNotOptimize(found);
    }
}
BENCHMARK(next_by_dispatcher);

}  // namespace
