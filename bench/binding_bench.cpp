// Binding rules: compiling them beside what the text of their menu costs to parse, and evaluating them.
//
// The menu has 10,000 items in the form of menus/demo.json, each with its parameter and a binding of three rules.
#include <frontpanel_binding/binding_registry.h>
#include <frontpanel_binding/expression_binding.h>

#include <cstdlib>
#include <deque>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>
#include <frontpanel_data/data_entry.h>
#include <rapidjson/document.h>

#include <frontpanel_base/json_document.h>
#include "language/compiler.h"
#include "language/machine.h"
#include "language/program.h"

using namespace frontpanel;

namespace {

using namespace frontpanel::binding_language;

constexpr int ITEMS = 10000;
constexpr int RULES_PER_ITEM = 3;
constexpr int CHANNELS = 100;  // of a card

Index_t index_of(int item) {
    return {2, {static_cast<uint16_t>(item / CHANNELS), static_cast<uint16_t>(item % CHANNELS)}};
}

std::string place_of(int item) {
    return std::to_string(item / CHANNELS) + "." + std::to_string(item % CHANNELS);
}

// What an item's binding says; `mode` is how it writes the parameter that it follows.
std::string rules_of(const std::string& mode) {
    return "visible if " + mode + " != 0; range -27..-20 if " + mode + " == 1; range -26..-22 if " +
           mode + " == 2";
}

std::string address_rules(int item) {
    return rules_of("[103." + place_of(item) + "]");
}

std::string mode_name(int item) {
    return "mode " + place_of(item);
}

std::string menu_text() {
    std::string parameters;
    std::string items;
    for (int i = 0; i < ITEMS; ++i) {
        const std::string index =
            std::to_string(i / CHANNELS) + ", " + std::to_string(i % CHANNELS);
        parameters += R"(
            {"pid": 104, "index": [)" +
                      index + R"(], "type": "integer", "min": -40, "max": -10, "value": -23},)";
        items += R"(
                    {"type": "range", "name": "Target )" +
                 place_of(i) + R"(", "description": "Loudness target", "pid": 104, "index": [)" +
                 index + R"(], "format": "%d LUFS",
                     "binding": ")" +
                 address_rules(i) + R"("},)";
    }
    parameters.back() = ' ';
    items.back() = ' ';
    return R"({"device": {"parameters": [)" + parameters + R"(]},
    "menu": {"name": "Menu", "items": [)" +
           items + "]}}\n";
}

// What the panel itself reads a menu file to: values that know their places.
void read_menu_file(benchmark::State& state) {
    const std::string text = menu_text();
    const frontpanel::Source source{"menu.json", 0};
    for (auto _ : state) {
        const frontpanel::Json_document menu(source, text);
        benchmark::DoNotOptimize(&menu.root());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}
BENCHMARK(read_menu_file)->Unit(benchmark::kMillisecond);

// What the JSON library alone needs for it.
void parse_menu_text(benchmark::State& state) {
    const std::string text = menu_text();
    for (auto _ : state) {
        rapidjson::Document document;
        document.Parse(text.data(), text.size());
        if (document.HasParseError()) {
            std::abort();
        }
        benchmark::DoNotOptimize(document);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}
BENCHMARK(parse_menu_text)->Unit(benchmark::kMillisecond);

// The bindings of the menu, with the parameters that they name.
struct Menu_bindings {
    explicit Menu_bindings(bool by_name) {
        for (int i = 0; i < ITEMS; ++i) {
            sources.push_back(by_name ? rules_of("[" + mode_name(i) + "]") : address_rules(i));
            bytes += static_cast<int64_t>(sources.back().size());
        }
    }
    static void declare(Parameter_table& table) {
        for (int i = 0; i < ITEMS; ++i) {
            table.declare(mode_name(i), {INTEGER, 103, index_of(i)});
        }
    }

    std::vector<std::string> sources;
    int64_t bytes = 0;
};

void report(benchmark::State& state, const Menu_bindings& bindings) {
    state.SetBytesProcessed(state.iterations() * bindings.bytes);
    state.counters["rules"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * ITEMS * RULES_PER_ITEM,
                           benchmark::Counter::kIsRate);
}

void compile_bindings(benchmark::State& state, bool by_name) {
    const Menu_bindings bindings(by_name);
    Binding_registry registry;
    Menu_bindings::declare(registry.parameters());
    for (auto _ : state) {
        for (const std::string& source : bindings.sources) {
            Compile_result result = registry.compile(source);
            benchmark::DoNotOptimize(result.list.data());
        }
    }
    report(state, bindings);
}
BENCHMARK_CAPTURE(compile_bindings, by_address, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(compile_bindings, by_name, true)->Unit(benchmark::kMillisecond);

void check_lists(benchmark::State& state) {
    const Menu_bindings bindings(false);
    Binding_registry registry;
    std::vector<BindingListT> lists;
    for (const std::string& source : bindings.sources) {
        lists.push_back(registry.compile(source).list);
    }
    std::string why;
    for (auto _ : state) {
        for (BindingListT& list : lists) {
            std::optional<Program> program = Program::decode(std::move(list), why);
            if (!program) {
                std::abort();
            }
            list = std::move(*program).take_list();
        }
    }
    report(state, bindings);
}
BENCHMARK(check_lists)->Unit(benchmark::kMillisecond);

// An item's entry without all that a real one brings.
class Plain_entry : public Data_entry {
public:
    explicit Plain_entry(const Index_t* index)
        : Data_entry("Target", "Loudness target", 104, index, VISIBLE_ALL, SHORTCUT_NONE, nullptr,
                     nullptr, nullptr, nullptr) {}
    Entry_type Get_entry_type() const override { return RANGE_LEAF; }
    RETURN_TYPE Get_return_type_int_or_string() const override { return INTEGER; }
    int Get_value(void*, unsigned int) override { return OK; }
    int Inc_value(int, int) override { return OK; }
};

// Everything from the source texts to engines that know their entries. The engines of all turns stay until the
// end, as they do in a menu, so that no turn builds in the ruins of the one before.
void compile_and_attach_bindings(benchmark::State& state) {
    const Menu_bindings bindings(false);
    std::deque<Index_t> indexes;
    std::deque<Plain_entry> entries;
    for (int i = 0; i < ITEMS; ++i) {
        indexes.push_back(index_of(i));
        entries.emplace_back(&indexes.back());
    }
    std::vector<std::unique_ptr<Expression_binding>> engines;
    engines.reserve(static_cast<std::size_t>(state.max_iterations) * ITEMS);
    for (auto _ : state) {
        auto registry = std::make_shared<Binding_registry>();
        for (int i = 0; i < ITEMS; ++i) {
            const auto item = static_cast<std::size_t>(i);
            Compile_result result = registry->compile(bindings.sources[item]);
            engines.push_back(std::make_unique<Expression_binding>(registry));
            engines.back()->addBindingList(std::move(result.list));
            engines.back()->setControlInfo(104, &indexes[item], Data_entry::RANGE_LEAF);
            engines.back()->setDataEntry(&entries[item]);
        }
    }
    report(state, bindings);
}
BENCHMARK(compile_and_attach_bindings)->Unit(benchmark::kMillisecond)->Iterations(5);

// ---- evaluation

class Fixed_values : public Value_source {
public:
    bool read(std::size_t, Value& value) override {
        value.number = 5;
        value.text = "Studio";
        return true;
    }
    bool read_own(Value& value) override {
        value.number = 12;
        return true;
    }
    bool has_option(std::size_t) override { return true; }
};

void evaluate(benchmark::State& state, const char* source) {
    Parameter_table parameters;
    parameters.declare("gain", {INTEGER, 100, {}});
    parameters.declare("mode", {INTEGER, 101, {}});
    parameters.declare("title", {STRING, 102, {}});
    const Compile_result result = Compiler().compile(source, {parameters, INTEGER});
    std::string why;
    const std::optional<Program> program = Program::decode(result.list, why);
    if (!program) {
        std::abort();
    }
    const Rule rule = program->rule(0);
    const Code code = rule.operand_count != 0 ? program->operand(rule, 0) : rule.condition;
    Machine machine;
    Fixed_values values;
    Value value;
    for (auto _ : state) {
        if (machine.run(*program, code, values, value) != Fault::NONE) {
            std::abort();
        }
        benchmark::DoNotOptimize(value.number);
    }
}
BENCHMARK_CAPTURE(evaluate, comparison, "visible if [gain] == 5");
BENCHMARK_CAPTURE(evaluate, logic, "visible if [gain] > 3 and [mode] != 1 or value in 1..5");
BENCHMARK_CAPTURE(evaluate, arithmetic, "visible if ([gain] + 3) * 7 / (value - 2) % 5");
BENCHMARK_CAPTURE(evaluate, set, "visible if [gain] in {1, 3, 7..9, 4, 5}");
BENCHMARK_CAPTURE(evaluate, text_comparison, "visible if [title] == \"Studio\"");
BENCHMARK_CAPTURE(evaluate, text, "warn \"{value} dB is above {[gain]} dB in {[title]}\"");

}  // namespace
