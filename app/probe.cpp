#include "probe.h"

#include <algorithm>
#include <array>
#include <chrono>

#include <frontpanel_base/character_set.h>
#include <frontpanel_base/input_error.h>
#include <frontpanel_editors/line_text.h>
#include <frontpanel_menu/list_line.h>

namespace frontpanel {
namespace {

constexpr std::chrono::seconds LONGEST(10);

using Row = std::array<std::string, 5>;

std::string text_of(const Parameter_value& value) {
    const auto* const number = std::get_if<std::int32_t>(&value);
    return number != nullptr ? std::to_string(*number)
                             : "\"" + printable(std::get<std::string>(value)) + "\"";
}

// "0.3 s"
std::string text_of(std::chrono::milliseconds age) {
    constexpr int TENTHS = 10;
    const auto tenths = age.count() * TENTHS / 1000;
    return std::to_string(tenths / TENTHS) + "." + std::to_string(tenths % TENTHS) + " s";
}

std::size_t columns_in(const std::string& text) {
    return static_cast<std::size_t>(width_of(text));
}

bool has_failed(const Driven_value& value) {
    return value.state.has_failed || !value.value;
}

Row row_of(const Driven_value& value) {
    return {printable(value.parameter), printable(value.driver),
            value.value ? text_of(*value.value) : UNKNOWN_VALUE,
            value.value ? text_of(value.state.age) : UNKNOWN_VALUE, value.state.reason};
}

}  // namespace

std::string probe_table(const std::vector<Driven_value>& values) {
    std::vector<Row> rows{{"PARAMETER", "DRIVER", "VALUE", "AGE", "ERROR"}};
    std::transform(values.begin(), values.end(), std::back_inserter(rows), row_of);
    std::array<std::size_t, std::tuple_size<Row>::value> widths{};
    for (const Row& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], columns_in(row[i]));
        }
    }
    std::string table;
    for (const Row& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i) {
            line += row[i] + std::string(widths[i] - columns_in(row[i]) + 2, ' ');
        }
        table += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
    }
    return table;
}

int probe(const Options& options, Output_log& log, Menu_pointer document) {
    const Loaded_panel loaded = load(options, log, Cards::OFF, std::move(document));
    if (loaded.driven == nullptr || loaded.driven->cache().parameter_count() == 0) {
        throw Input_error(options.menu + ": no parameter lives at a driver");
    }
    Device_cache& cache = loaded.driven->cache();
    cache.start();
    cache.read_all(LONGEST);
    const std::vector<Driven_value> values = cache.values();
    log.out() << probe_table(values);
    log.out().flush();
    check_written(!log.out());
    return std::any_of(values.begin(), values.end(), has_failed) ? EXIT_DIFFERENCE : EXIT_PLAYED;
}

}  // namespace frontpanel
