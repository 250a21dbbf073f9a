// What a commit costs the bindings of a menu, by the size of the menu and by the number of dependants; what a
// turn of the panel costs; and what the search for circles costs a loader.
#include <benchmark/benchmark.h>
#include <frontpanel_binding/caching_device.h>
#include <frontpanel_binding/expression_binding.h>
#include <frontpanel_data/data_entry.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <memory>
#include <string>
#include <vector>

using namespace frontpanel;

namespace {

constexpr unsigned int MODE = 1;
constexpr unsigned int FIRST = 1000;

// Holds nothing: every parameter is 0 until it is written, and then what was written last.
class Quick_device : public Data_interface {
public:
    int Get(unsigned int pid, unsigned int, void* buffer, unsigned int length) override {
        ++reads;
        const int32_t value = pid == MODE ? m_mode : 0;
        std::memcpy(buffer, &value, std::min<std::size_t>(length, sizeof value));
        return 0;
    }
    int Set(unsigned int pid, unsigned int, const void* buffer, unsigned int) override {
        if (pid == MODE) {
            std::memcpy(&m_mode, buffer, sizeof m_mode);
        }
        return 0;
    }
    int Get_prod_list(PROD_LIST_S*, bool, bool) override { return 1; }
    int Set_product_id(prod_id_t) override { return 1; }
    int Get_prod_alias_name(char*, prod_id_t) override { return 1; }

    int64_t reads = 0;

private:
    int32_t m_mode = 0;
};

// `dependants` entries whose range follows the mode, among `size` entries with three rules of their own.
class Bound_menu {
public:
    Bound_menu(int64_t size, int64_t dependants) {
        for (int64_t i = 0; i < size; ++i) {
            const std::string own = "[" + std::to_string(FIRST + i) + "]";
            const std::string next = "[" + std::to_string(FIRST + (i + 1) % size) + "]";
            std::string source = "visible if " + next + " < 9; warn \"{value}\" if value > 90\n";
            source += i < dependants ? "range 0..50 + [1]" : "range 0..50 if " + own + " < 9";
            add(static_cast<unsigned int>(FIRST + i), source);
        }
        for (Range_entry& entry : m_entries) {
            entry.Refresh(&cache, true);
        }
        m_mode_engine.setControlInfo(MODE, &m_no_level, Data_entry::RANGE_LEAF);
    }

    // A write of the mode, and the refresh of all that depends on it.
    void commit() {
        m_value ^= 1;
        cache.Set(MODE, 0, &m_value, sizeof m_value);
        registry->settle(&cache);
    }

    Quick_device device;
    std::shared_ptr<Binding_registry> registry = std::make_shared<Binding_registry>(&device);
    Caching_device cache{device, registry};

private:
    void add(unsigned int pid, const std::string& source) {
        static char no_format[] = "";
        Range_entry& entry = m_entries.emplace_back(
            "Gain", "A number", pid, &m_no_level, 0, 100, 0, no_format, no_format, nullptr,
            Data_entry::READ_WRITE, Data_entry::VISIBLE_ALL, true, Data_entry::SHORTCUT_NONE,
            nullptr, nullptr, nullptr);
        entry.setValidRangeAndValues({{0, 101, {}}});
        auto* const engine = new Expression_binding(registry);
        engine->addBindingList(registry->compile(source).list);
        entry.Set_binding_object(engine);
    }

    const Index_t m_no_level = {};
    std::deque<Range_entry> m_entries;
    Expression_binding m_mode_engine{registry};
    int32_t m_value = 0;
};

// An entry that only takes part in refreshes.
class Quick_entry : public Node_entry {
public:
    explicit Quick_entry(const Index_t& index)
        : Node_entry("Level", "Follows", &index, nullptr, VISIBLE_ALL, SHORTCUT_NONE, nullptr,
                     nullptr, nullptr) {}
    int Refresh(Data_interface*, bool) override { return 0; }
};

// The commit of an entry by the library, which refreshes each dependant of its parameter.
void commit(benchmark::State& state) {
    static char no_format[] = "";
    const Index_t no_level = {};
    Quick_device device;
    const auto registry = std::make_shared<Binding_registry>(&device);
    Caching_device cache(device, registry);
    Range_entry mode("Mode", "A number", MODE, &no_level, 0, 100, 0, no_format, no_format, nullptr,
                     Data_entry::READ_WRITE, Data_entry::VISIBLE_ALL, true,
                     Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr);
    mode.setValidRangeAndValues({{0, 101, {}}});
    mode.Set_binding_object(new Expression_binding(registry));
    var_index_s key;
    key.var = MODE;
    key.rt = INTEGER;
    std::deque<Quick_entry> dependants;
    std::vector<Data_entry*>& listed = (*registry->var_index_map())[key].binding_dependant_entries;
    for (int64_t i = 0; i < state.range(0); ++i) {
        listed.push_back(&dependants.emplace_back(no_level));
    }
    int32_t value = 0;
    for (auto _ : state) {
        value ^= 1;
        mode.Set_value(&value, sizeof value);
        benchmark::DoNotOptimize(mode.Commit(&cache));
    }
    state.counters["per_entry"] =
        benchmark::Counter(static_cast<double>(state.iterations() * state.range(0)),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(commit)->RangeMultiplier(10)->Range(10, 100000);

// Ten dependants, whatever the size of the menu.
void commit_by_menu_size(benchmark::State& state) {
    Bound_menu menu(state.range(0), 10);
    for (auto _ : state) {
        menu.commit();
    }
}
BENCHMARK(commit_by_menu_size)->Arg(100)->Arg(1000)->Arg(10000);

void commit_by_dependants(benchmark::State& state) {
    Bound_menu menu(10000, state.range(0));
    for (auto _ : state) {
        menu.commit();
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(commit_by_dependants)->RangeMultiplier(10)->Range(1, 1000)->Complexity(benchmark::oN);

// A parameter's access through the cache, next to the device alone.
void read_through_the_cache(benchmark::State& state) {
    Bound_menu menu(state.range(0), 10);
    int32_t value = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(menu.cache.Get(FIRST + 7, 0, &value, sizeof value));
    }
}
BENCHMARK(read_through_the_cache)->Arg(100)->Arg(10000);

void poll(benchmark::State& state) {
    Bound_menu menu(state.range(0), 10);
    for (auto _ : state) {
        benchmark::DoNotOptimize(menu.registry->poll().size());
    }
}
BENCHMARK(poll)->Arg(100)->Arg(10000);

void find_cycles(benchmark::State& state) {
    Bound_menu menu(state.range(0), 10);
    for (auto _ : state) {
        benchmark::DoNotOptimize(menu.registry->find_cycles().size());
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(find_cycles)->Arg(100)->Arg(1000)->Arg(10000)->Complexity(benchmark::oN);

}  // namespace
