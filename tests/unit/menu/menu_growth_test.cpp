// Whatever a menu file holds, it is accepted or refused soon, and with the memory of a small device. What a load takes is
// counted in allocations, which are the same on every machine.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>
#include <functional>

#include <frontpanel_menu/menu_document.h>
#include <frontpanel_menu/menu_dump.h>
#include "support/allocation_counter.h"
#include "support/folder.h"
#include "support/panel_fixture.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define FRONTPANEL_IS_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define FRONTPANEL_IS_SANITIZED 1
#endif
#endif

namespace frontpanel {
namespace {

#if defined(FRONTPANEL_IS_SANITIZED)
constexpr long MOST_KIB = 4L * 1024 * 1024;  // redzones and what was freed, too
#else
constexpr long MOST_KIB = 256L * 1024;
#endif
// What is allocated in the course of a load, freed memory included: about twice what the largest menu needs.
constexpr uint64_t MOST_ALLOCATIONS = 4'000'000;
constexpr uint64_t MOST_ALLOCATED = 400'000'000;
// Of the processor. Only ends a load that would go on for ever: it has to do for sanitizers and emulators, too.
constexpr rlim_t HANGING_SECONDS = 120;

// What a load took, as its process sends it before the text of the error.
struct Counters {
    uint64_t allocations;
    uint64_t bytes;
};

struct Outcome {
    std::string error;  // the line that was looked for
    Counters counters;
    long kib;
};

std::string all_of(int file) {
    std::string text;
    std::array<char, 4096> piece{};
    for (ssize_t got = 0; (got = read(file, piece.data(), piece.size())) > 0;) {
        text.append(piece.data(), static_cast<size_t>(got));
    }
    return text;
}

bool send(int file, const void* bytes, size_t size) {
    return write(file, bytes, size) == static_cast<ssize_t>(size);
}

[[noreturn]] void load_and_report(const std::function<std::string()>& load, int report) {
    const rlimit limit{HANGING_SECONDS, HANGING_SECONDS};
    setrlimit(RLIMIT_CPU, &limit);
    dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);  // the library prints hidden entries
    const Counters before{support::allocations(), support::allocated_bytes()};
    const std::string error = load();
    const Counters taken{support::allocations() - before.allocations,
                         support::allocated_bytes() - before.bytes};
    const bool is_sent =
        send(report, &taken, sizeof taken) && send(report, error.data(), error.size());
    _exit(is_sent ? 0 : 1);
}

// In a process of its own, whose memory is counted alone.
Outcome outcome_of(const std::function<std::string()>& load) {
    int ends[2] = {-1, -1};
    if (pipe(ends) != 0) {
        return {"no pipe", {}, 0};
    }
    const pid_t child = fork();
    if (child == 0) {
        load_and_report(load, ends[1]);
    }
    close(ends[1]);
    const std::string report = all_of(ends[0]);
    close(ends[0]);
    int status = 0;
    rusage used{};
    const bool is_done = wait4(child, &status, 0, &used) == child && status == 0;
    Outcome outcome{"not done", {}, used.ru_maxrss};
    if (is_done && report.size() >= sizeof outcome.counters) {
        std::memcpy(&outcome.counters, report.data(), sizeof outcome.counters);
        outcome.error = report.substr(sizeof outcome.counters);
    }
    return outcome;
}

void expect_little(const Outcome& outcome) {
    EXPECT_LT(outcome.counters.allocations, MOST_ALLOCATIONS);
    EXPECT_LT(outcome.counters.bytes, MOST_ALLOCATED);
    EXPECT_LT(outcome.kib, MOST_KIB);
}

std::string repeated(const std::string& text, size_t times, const std::string& between = "") {
    std::string result;
    for (size_t i = 0; i < times; ++i) {
        result += (i == 0 ? "" : between) + text;
    }
    return result;
}

// A text for each number, with the number in the place of each '#'.
std::string numbered(const std::string& pattern, size_t times, const std::string& between = ",") {
    std::string result;
    for (size_t i = 0; i < times; ++i) {
        result += i == 0 ? "" : between;
        for (const char c : pattern) {
            result += c == '#' ? std::to_string(i) : std::string(1, c);
        }
    }
    return result;
}

constexpr const char* PARAMETER =
    R"({"name": "g", "pid": 100, "type": "integer", "min": 0, "max": 100, "value": 1},
    {"pid": 101, "type": "integer", "min": 0, "max": 14, "value": 1})";

std::string menu_of(const std::string& items, const std::string& before = "",
                    const std::string& behind = "", const std::string& parameters = "") {
    return "{" + before + R"("device": {"parameters": [)" + PARAMETER + parameters +
           R"(]}, "menu": {"name": "Main", "items": [)" + items + "]}" + behind + "}";
}

// Menus with as many of an item as a menu holds, whatever the item, up to `count` in all.
std::string filled(const std::string& item, size_t count) {
    std::string menus;
    for (size_t i = 0; i < count / 1000; ++i) {
        menus += (i == 0 ? "" : ",") + std::string(R"({"type": "node", "name": "N", "items": [)") +
                 repeated(item, 1000, ",") + "]}";
    }
    return menus;
}

// Templates of which each uses the next one, the last with that content.
std::string chained(const std::string& argument, size_t uses, const std::string& last) {
    std::string templates = R"("templates": {)";
    for (int i = 0; i < 15; ++i) {
        const std::string use = R"({"template": "t)" + std::to_string(i + 1) +
                                R"(", "arguments": {"x": ")" + argument + R"("}})";
        templates += "\"t" + std::to_string(i) + R"(": {"arguments": ["x"], "content": [)" +
                     repeated(use, uses, ",") + "]},";
    }
    return templates + R"("t15": {"arguments": ["x"], "content": [)" + last + "]}},";
}

// A text is long, so it is made only where it is tested.
struct Shape {
    const char* name;
    std::function<std::string()> text;
    std::string error;  // a part of what it is refused with; empty when it is accepted
};

void PrintTo(const Shape& shape, std::ostream* stream) {
    *stream << shape.name;
}

std::string identifier_of(const testing::TestParamInfo<Shape>& shape) {
    std::string name = shape.param.name;
    std::replace(name.begin(), name.end(), ' ', '_');
    return name;
}

std::string use_of_first_template() {
    return R"({"template": "t0", "arguments": {"x": "aaaa"}})";
}

constexpr const char* RANGE = R"({"type": "range", "name": "G", "pid": 100)";
constexpr const char* DESCRIBED_RANGES =
    R"({"type": "range", "name": "G", "pid": 100, "description": "{x}",
    "repeat": {"counter": "n", "from": 1, "to": 1000}})";

std::string ranges(const std::string& members, size_t count) {
    return filled(RANGE + members + "}", count);
}

std::string menu_with_argument(size_t size) {
    return menu_of(R"({"template": "t", "arguments": {"x": ")" + std::string(size, 'a') + "\"}}",
                   std::string(R"("templates": {"t": {"arguments": ["x"], "content": [)") +
                       DESCRIBED_RANGES + "]}},");
}

std::vector<Shape> exploding_shapes() {
    return {
        {"an argument that each template multiplies",
         [] {
             return menu_of(use_of_first_template(), chained("{x}{x}{x}{x}", 1, DESCRIBED_RANGES));
         },
         "the text grows beyond 65536 bytes here (in \"t7\" with x = aaaa"},
        {"a long argument repeated", [] { return menu_with_argument(1000000); },
         "a text is longer than 65536 bytes"},
        {"a less long argument repeated", [] { return menu_with_argument(60000); },
         "the texts of the menu grow beyond 16777216 bytes here"},
        {"a long text repeated",
         [] {
             return menu_of(RANGE + (R"(, "description": ")" + std::string(60000, 'a')) +
                            R"(", "repeat": {"counter": "n", "from": 1, "to": 1000}})");
         },
         "the texts of the menu grow beyond 16777216 bytes here"},
        {"a large list that nothing comes of",
         [] {
             return menu_of(R"({"type": "node", "name": "N", "items": [{"x": [)" +
                            repeated("1", 490000, ",") +
                            R"(], "repeat": {"counter": "n", "from": 1, "to": 1}}],
                            "repeat": {"counter": "n", "from": 1, "to": 1000}})");
         },
         "\"n\" is already in use here (n = 1)"},
        {"templates that use each other for nothing",
         [] { return menu_of(use_of_first_template(), chained("", 50, "")); },
         "the menu grows beyond 500000 values here"},
        {"a use with many members repeated",
         [] {
             return menu_of(R"({"template": "t", )" + numbered(R"("m#": 1)", 100000) +
                                R"(, "repeat": {"counter": "n", "from": 1, "to": 1000}})",
                            R"("templates": {"t": {"content": []}},)");
         },
         "unknown member \"m0\""},
        {"a use with many arguments",
         [] {
             return menu_of(
                 R"({"template": "t", "arguments": {)" + numbered(R"("a#": 1)", 100000) + "}}",
                 R"("templates": {"t": {"content": [], "arguments": [)" +
                     numbered(R"("a#")", 100000) + "]}},");
         },
         "expected at most 64 arguments, found 100000"},
        {"repetitions in each other without end",
         [] {
             return menu_of(R"({"type": "node", )" +
                            numbered(R"("repeat": {"counter": "n#", "from": 1, "to": 1})", 80000) +
                            "}");
         },
         "duplicate member \"repeat\""},
    };
}

std::vector<Shape> large_shapes() {
    return {
        {"many items", [] { return menu_of(ranges("", 25000)); }, ""},
        {"rules on many items",
         [] { return menu_of(ranges(R"(, "binding": "visible if [g] == 1")", 10000)); }, ""},
        {"rules on too many items",
         [] { return menu_of(ranges(R"(, "binding": "visible if [g] == 1")", 50000)); },
         "grow beyond 500000 steps here"},
        {"long toggles in copies",
         [] {
             return menu_of(RANGE + std::string(R"(, "id": "z"})"), "",
                            R"(, "homescreen": [{"target": "z", "toggle": ")" +
                                repeated("[g]==1||", 1990) +
                                R"(0", "repeat": {"counter": "n", "from": 1, "to": 100}}])");
         },
         ""},
        {"slot lists",
         [] { return menu_of(filled(R"({"type": "slot", "name": "S", "pid": 101})", 40000)); },
         "grow beyond 500000 steps here"},
        {"hidden menus beside links",
         [] {
             return menu_of(filled(R"({"type": "node", "name": "M", "visible": false, "items": [)" +
                                       (RANGE + std::string("}]}")),
                                   10000) +
                            "," + filled(R"({"type": "link", "target": "z"})", 20000) + "," +
                            RANGE + R"(, "id": "z"})");
         },
         ""},
        {"patterns of options beside their uses",
         [] {
             return menu_of(RANGE + (R"(, "options": [)" + numbered(R"("x#")", 2000)) + "]}",
                            R"("options": {)" + numbered(R"("n#{n}": 1)", 2000) + "},");
         },
         ""},
        {"patterns of options beside more uses",
         [] {
             return menu_of(RANGE + (R"(, "options": [)" + numbered(R"("x#")", 100000)) + "]}",
                            R"("options": {)" + numbered(R"("n#{n}": 1)", 100000) + "},");
         },
         "grow beyond 500000 steps here"},
        {"product options in many items",
         [] {
             return menu_of(ranges(R"(, "options": ["o1"])", 30000),
                            R"("options": {)" + numbered(R"("o#": 1)", 1000) + "},");
         },
         "grow beyond 500000 steps here"},
        {"long names of options",
         [] {
             return menu_of(ranges(R"(, "options": ["o1"])", 5000),
                            R"("options": {)" +
                                numbered("\"" + std::string(3000, 'o') + "#\": 1", 100) + "},");
         },
         "expected an option name of 1 to 63 printable ASCII characters"},
        {"rules that read nothing",
         [] {
             const std::string rules = R"(, "binding": ")" + repeated("visible if 1;", 4000) + '"';
             return menu_of(repeated(RANGE + rules + "}", 70, ","));
         },
         ""},
        {"unknown parameters beside many like them",
         [] {
             const std::string rules =
                 R"(, "binding": ")" + repeated("visible if [nnnnnnxx];", 50) + '"';
             return menu_of(
                 repeated(RANGE + rules + "}", 300, ","), "", "",
                 "," + numbered(R"({"name": "nnnnnn#", "pid": 1#, "type": "integer", "min": 0,
                     "max": 9, "value": 0})",
                                20000));
         },
         "unknown parameter"},
        {"wrong values in a list",
         [] {
             return R"({"device": {"parameters": [)" + repeated("1", 490000, ",") +
                    R"(]}, "menu": {"name": "Main", "items": []}})";
         },
         "expected an object, found a whole number"},
        {"unknown members", [] { return "{" + numbered(R"("m#": 1)", 400000) + "}"; },
         "unknown member \"m0\""},
        {"duplicate members", [] { return "{" + repeated(R"("m": 1)", 400000, ",") + "}"; },
         "duplicate member \"m\""},
        {"long names",
         [] { return "{" + numbered("\"" + std::string(60000, 'm') + "#\": 1", 60) + "}"; },
         "unknown member \"mmm"},
        {"lines", [] { return std::string(4000000, '\n'); }, "The document is empty"},
    };
}

// The first line with that text; all when there is none.
std::string line_with(const Lines& lines, const std::string& text) {
    std::string all;
    for (const std::string& line : lines) {
        if (line.find(text) != std::string::npos) {
            return line;
        }
        all += all.size() < 1000 ? line + "\n" : "";
    }
    return all;
}

class Menu_growth : public testing::TestWithParam<Shape> {};

TEST_P(Menu_growth, IsAcceptedOrRefusedSoonAtItsPlace) {
    const Shape& shape = GetParam();
    const std::string text = shape.text();
    const Outcome outcome = outcome_of([&] { return line_with(complaints_of(text), shape.error); });
    EXPECT_NE(outcome.error.find(shape.error), std::string::npos) << outcome.error;
    EXPECT_EQ(outcome.error.empty(), shape.error.empty()) << outcome.error;
    expect_little(outcome);
}

INSTANTIATE_TEST_SUITE_P(Exploding, Menu_growth, testing::ValuesIn(exploding_shapes()),
                         identifier_of);
INSTANTIATE_TEST_SUITE_P(Large, Menu_growth, testing::ValuesIn(large_shapes()), identifier_of);

// Numbers with names, bounds and formats of their own, and a rule each where one is given, a thousand in each menu.
std::string ordinary_menu(size_t count, const std::string& rule) {
    const std::string number = R"({"type": "range", "name": "Gain #", "parameter": "gain #",
        "value_format": "v/10", "format": "%.1f dB")" +
                               (rule.empty() ? "" : R"(, "binding": ")" + rule + "\"") + "}";
    const std::string items = R"({"type": "node", "name": "Bank", "items": [)" +
                              numbered(number, std::min<size_t>(count, 1000)) + "]}";
    return menu_of(repeated(items, std::max<size_t>(count / 1000, 1), ","), "", "",
                   "," + numbered(R"({"name": "gain #", "pid": 2#, "type": "integer", "min": -600,
                       "max": 120, "value": 0})",
                                  count));
}

// The most memory that a check takes at once, for each entry.
size_t bytes_of_an_entry(size_t count, const std::string& rule) {
    const std::string text = ordinary_menu(count, rule);
    support::forget_peak();
    const size_t before = support::live_bytes();
    EXPECT_EQ(complaints_of(text), Lines{});
    return (support::peak_bytes() - before) / count;
}

TEST(MenuGrowth, AnOrdinaryMenuOf10000EntriesIsCheckedInLittleMemory) {
    constexpr size_t MOST_BYTES = 1700;
    constexpr size_t MOST_BYTES_WITH_RULES = 3150;
    const std::string rule = "visible if [gain 7] <= 100";
    const size_t plain = bytes_of_an_entry(10000, "");
    const size_t ruled = bytes_of_an_entry(10000, rule);
    EXPECT_LT(plain, MOST_BYTES);
    EXPECT_LT(ruled, MOST_BYTES_WITH_RULES);
    EXPECT_LT(plain, bytes_of_an_entry(1000, "") * 3 / 2);
    EXPECT_LT(ruled, bytes_of_an_entry(1000, rule) * 3 / 2);
}

TEST(MenuGrowth, FilesThatIncludeEachOtherManyTimesAreRefusedSoon) {
    const support::Folder folder;
    const auto write = [&folder](const std::string& name, const std::string& text) {
        std::ofstream(folder.file(name)) << text;
    };
    for (int i = 0; i < 15; ++i) {
        const std::string next = R"({"include": ")" + std::to_string(i + 1) + R"(.json"})";
        write(std::to_string(i) + ".json", "[" + repeated(next, 50, ",") + "]");
    }
    write("15.json", "[]");
    write("menu.json", menu_of(R"({"include": "0.json"})"));
    write("templates.json", R"({"templates": [{"include": "0.json"}]})");
    for (const char* const file : {"menu.json", "templates.json"}) {
        const std::string expected = "the menu grows beyond 500000 values here";
        const Outcome outcome = outcome_of([&] {
            Menu_document document(folder.file(file));
            return line_with(document.problems().errors(), expected);
        });
        EXPECT_NE(outcome.error.find(expected), std::string::npos) << file << outcome.error;
        SCOPED_TRACE(file);
        expect_little(outcome);
    }
}

TEST(MenuGrowth, AReportOfALongListOfRangesCopiesItOnce) {
    const std::string item =
        RANGE + (R"(, "ranges": [)" +
                 repeated(R"({"min": 1, "max": 1},{"min": 3, "max": 4})", 10000, ",") + "]}");
    const Outcome outcome = outcome_of([&] {
        const Simulated_menu loaded = simulated_text(menu_of(item));
        return dump_of(*loaded.menu);
    });
    EXPECT_NE(outcome.error.find("allowed 1, 3..4, 1, 3..4"), std::string::npos)
        << outcome.error.substr(0, 1000);
    expect_little(outcome);
}

}  // namespace
}  // namespace frontpanel
