#include <frontpanel_base/problems.h>

#include <algorithm>
#include <set>
#include <string_view>
#include <tuple>

namespace frontpanel {
namespace {

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
    if (m_warnings.size() < MOST_ERRORS) {
        m_warnings.push_back({place, one_line(line_of(place, "warning: " + text))});
    }
}

void Problems::end(const Place& place, const std::string& text) {
    add_error(place, one_line(line_of(place, text)));
    throw All_ended();
}

bool Problems::add_caught(const Placed_error& error) {
    try {
        add_error(error.place(), error.what());
    } catch (const All_ended&) {
        return leave();
    }
    return false;
}

bool Problems::leave() const {
    if (m_depth > 1) {
        throw All_ended();
    }
    return false;
}

// A template that is wrong is wrong in each of its copies.
void Problems::add_error(const Place& place, const std::string& line) {
    if (++m_error_count <= MOST_ERRORS) {
        m_errors.push_back({place, line});
    } else if (m_depth > 0) {
        throw All_ended();
    }
}

std::vector<std::string> Problems::lines(const std::vector<Problem>& problems) {
    std::vector<const Problem*> ordered(problems.size());
    std::transform(problems.begin(), problems.end(), ordered.begin(),
                   [](const Problem& problem) { return &problem; });
    std::stable_sort(ordered.begin(), ordered.end(), [](const Problem* a, const Problem* b) {
        return order_of(a->place) < order_of(b->place);
    });
    std::vector<std::string> lines;
    std::set<std::string_view> seen;
    for (const Problem* const problem : ordered) {
        if (seen.insert(problem->line).second && seen.size() <= MOST_LINES) {
            lines.push_back(problem->line);
        }
    }
    if (seen.size() > MOST_LINES) {
        lines.push_back(ordered.front()->place.source->name + ": " +
                        std::to_string(seen.size() - MOST_LINES) + " more like these");
    }
    return lines;
}

}  // namespace frontpanel
