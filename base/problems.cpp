#include <frontpanel_base/problems.h>

#include <algorithm>
#include <tuple>

namespace frontpanel {
namespace {

constexpr size_t MOST_KEPT = 10000;  // a template that is wrong is wrong in each of its copies

auto order_of(const Place& place) {
    return std::make_tuple(place.source->number, place.line, place.column);
}

}  // namespace

std::string line_of(const Place& place, const std::string& text) {
    return place.source->name + ":" + std::to_string(place.line) + ":" +
           std::to_string(place.column) + ": " + text +
           (place.copy == nullptr ? "" : " (" + *place.copy + ")");
}

void Problems::report(const Place& place, const std::string& text) {
    add_error(place, one_line(line_of(place, text)));
}

void Problems::warn(const Place& place, const std::string& text) {
    if (m_warnings.size() < MOST_KEPT) {
        m_warnings.push_back({place, one_line(line_of(place, "warning: " + text))});
    }
}

void Problems::add_error(const Place& place, const std::string& line) {
    ++m_error_count;
    if (m_errors.size() < MOST_KEPT) {
        m_errors.push_back({place, line});
    }
}

std::vector<std::string> Problems::lines(std::vector<Problem> problems) {
    std::stable_sort(problems.begin(), problems.end(), [](const Problem& a, const Problem& b) {
        return order_of(a.place) < order_of(b.place);
    });
    std::vector<std::string> lines;
    size_t left_out = 0;
    for (const Problem& problem : problems) {
        if (std::find(lines.begin(), lines.end(), problem.line) != lines.end()) {
            continue;
        }
        if (lines.size() < MOST_LINES) {
            lines.push_back(problem.line);
        } else {
            ++left_out;
        }
    }
    if (left_out > 0) {
        lines.push_back(problems.front().place.source->name + ": " + std::to_string(left_out) +
                        " more like these");
    }
    return lines;
}

}  // namespace frontpanel
