// Bytes of entries and allocations of operations, compared with the file of this architecture.
#include <frontpanel_data/data_entry.h>
#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "support/allocation_counter.h"
#include "support/indexes.h"

namespace {

#ifdef __x86_64__
constexpr char BUDGET_FILE[] = FRONTPANEL_SOURCE_DIR "/tests/budgets/x86_64.txt";
#else
constexpr char BUDGET_FILE[] = "";
#endif

using Costs = std::map<std::string, std::size_t>;

// Lines "NUMBER NAME"; those of the library belong to scripts/budgets.
Costs read_budget(const std::string& kind) {
    Costs budget;
    std::ifstream file(BUDGET_FILE);
    std::size_t number = 0;
    for (std::string name; file >> number && std::getline(file >> std::ws, name);) {
        if (name.rfind(kind, 0) == 0) {
            budget[name] = number;
        }
    }
    return budget;
}

// A list of option texts, as an application's table holds them.
class Option_texts {
public:
    explicit Option_texts(int count) {
        for (int i = 0; i < count; ++i) {
            m_texts.push_back("Option " + std::to_string(i));
        }
        for (std::string& text : m_texts) {
            m_array.push_back(text.data());
        }
    }
    char** array() { return m_array.data(); }

private:
    std::vector<std::string> m_texts;
    std::vector<char*> m_array;
};

std::unique_ptr<Data_entry> new_node() {
    return std::make_unique<Node_entry>("Menu", "A menu", support::any_index(), nullptr, 1, -1,
                                        nullptr, nullptr, nullptr);
}

std::unique_ptr<Range_entry> new_range(const std::vector<range_s>& ranges = {{0, 101, {}},
                                                                             {200, 1001, {}}}) {
    static char format[] = "%.1f dB";
    static char expression[] = "v/10";
    auto entry = std::make_unique<Range_entry>(
        "Gain", "A number", 120, support::any_index(), 0, 1000, 125, format, expression, nullptr,
        Data_entry::READ_WRITE, 1, true, -1, nullptr, nullptr, nullptr);
    entry->setValidRangeAndValues(ranges);
    return entry;
}

std::unique_ptr<Enum_entry> new_enum(Option_texts& texts, int count) {
    return std::make_unique<Enum_entry>(
        "Mode", "An option", 121, support::any_index(), 0, count - 1, 0, texts.array(),
        static_cast<unsigned int>(count), nullptr, Data_entry::READ_WRITE, 1, true, -1, nullptr,
        nullptr, nullptr, nullptr, nullptr, nullptr);
}

template <class Entry>
std::unique_ptr<Entry> new_text() {
    return std::make_unique<Entry>("Name", "A text", 122, support::any_index(), 16, nullptr,
                                   Data_entry::READ_WRITE, 1, true, -1, nullptr, nullptr, nullptr);
}

template <class Build>
std::size_t bytes_of(Build build) {
    build();  // what the first one of a process allocates
    const std::size_t before = support::live_bytes();
    const auto built = build();
    return support::live_bytes() - before;
}

TEST(Budget, BytesOfAnEntryWithItsHeap) {
    Costs costs;
    costs["bytes of a node"] = bytes_of(new_node);
    costs["bytes of a range with a format and two ranges"] = bytes_of([] { return new_range(); });
    // Of ten, seven are for options that the product lacks.
    costs["bytes of a range with a format and three of ten ranges"] = bytes_of([] {
        std::vector<range_s> ranges(10, {0, 10, {"absent"}});
        for (const std::size_t held : {1U, 4U, 8U}) {
            ranges[held].options.clear();
        }
        return new_range(ranges);
    });
    for (const int count : {2, 4, 16, 100}) {
        Option_texts texts(count);
        costs["bytes of an enumeration of " + std::to_string(count) + " options"] =
            bytes_of([&] { return new_enum(texts, count); });
    }
    costs["bytes of a text"] = bytes_of(new_text<String_entry>);
    costs["bytes of a time"] = bytes_of(new_text<Time_entry>);
    const std::unique_ptr<Data_entry> housed = new_node();
    costs["bytes of a link"] = bytes_of([&] { return std::make_unique<Link_entry>(housed.get()); });
    costs["bytes of a node with 20 product options"] = bytes_of([] {
        std::unique_ptr<Data_entry> node = new_node();
        std::map<std::string, unsigned int> options;
        for (int i = 0; i < 20; ++i) {
            options["option" + std::to_string(i)] = 1;
        }
        node->setProductOptions(options);
        return node;
    });
    if (*BUDGET_FILE == '\0') {
        GTEST_SKIP() << "no budget of this architecture";
    }
    EXPECT_EQ(costs, read_budget("bytes"));
}

template <class Operation>
std::size_t allocations_of(Operation operation) {
    operation();  // what the first one allocates
    const std::size_t before = support::allocations();
    operation();
    return support::allocations() - before;
}

TEST(Budget, AllocationsOfAnOperation) {
    Costs costs;
    Option_texts texts(100);
    const auto range = new_range();
    const auto options = new_enum(texts, 100);
    const auto text = new_text<String_entry>();
    char line[21] = {};
    costs["allocations of building a node"] = allocations_of(new_node);
    costs["allocations of building a range"] = allocations_of([] { new_range(); });
    costs["allocations of building an enumeration of 100 options"] =
        allocations_of([&] { new_enum(texts, 100); });
    costs["allocations of showing a number by a format"] =
        allocations_of([&] { range->Get_display_string(line, 20, 120); });
    costs["allocations of showing an option at a position"] =
        allocations_of([&] { options->Get_display_string(line, 20, 70); });
    costs["allocations of showing a text"] =
        allocations_of([&] { text->Get_display_string(line, 20); });
    costs["allocations of a step of a number"] =
        allocations_of([&] { range->Inc_value(range->Get_max() > 500 ? 1 : -1, 0); });
    costs["allocations of a step of an option"] = allocations_of([&] { options->Inc_value(1, 0); });

    const auto menu = new_node();
    std::vector<std::unique_ptr<Data_entry>> children;
    for (int i = 0; i < 100; ++i) {
        children.push_back(new_node());
        menu->Add_child(*children.back());
    }
    costs["allocations of adding 100 children"] = allocations_of([&] {
        for (const auto& child : children) {
            menu->Add_child(*child);
        }
    });
    std::map<int, ShortcutS> table;
    costs["allocations of a walk over 100 children"] =
        allocations_of([&] { Data_entry::TraverseMenuTree(menu.get(), 0x1, &table); });
    costs["allocations of asking for the visibility of a leaf"] =
        allocations_of([&] { range->isVisible(); });
    costs["allocations of asking for the visibility of a menu"] =
        allocations_of([&] { children.front()->isVisible(); });
    if (*BUDGET_FILE == '\0') {
        GTEST_SKIP() << "no budget of this architecture";
    }
    EXPECT_EQ(costs, read_budget("allocations"));
}

}  // namespace
