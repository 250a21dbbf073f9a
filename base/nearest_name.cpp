#include <frontpanel_base/nearest_name.h>

#include <algorithm>
#include <array>
#include <cctype>

namespace frontpanel {
namespace {

constexpr std::size_t MOST_MISTAKES = 2;
constexpr std::size_t SHORTEST =
    3;  // shorter names, and longer ones than the other limit, are never near
constexpr std::size_t LONGEST = 64;

using Row = std::array<std::size_t, LONGEST + 1>;

// The letters to insert, drop, replace or exchange with their neighbours that make one text of the other.
std::size_t mistakes_between(std::string_view from, std::string_view to) {
    Row before_last{};
    Row last{};
    Row row{};
    for (std::size_t j = 0; j <= to.size(); ++j) {
        last[j] = j;
    }
    for (std::size_t i = 1; i <= from.size(); ++i) {
        row[0] = i;
        for (std::size_t j = 1; j <= to.size(); ++j) {
            const std::size_t replaced = last[j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1);
            row[j] = std::min({replaced, last[j] + 1, row[j - 1] + 1});
            const bool is_exchange =
                i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1];
            if (is_exchange) {
                row[j] = std::min(row[j], before_last[j - 2] + 1);
            }
        }
        before_last = last;
        last = row;
    }
    return last[to.size()];
}

// Names that differ in their numbers alone, such as "gain 1" and "gain 9", are as unlike as any.
std::string without_digits(std::string_view name) {
    std::string rest(name);
    rest.erase(std::remove_if(rest.begin(), rest.end(),
                              [](unsigned char c) { return std::isdigit(c) != 0; }),
               rest.end());
    return rest;
}

}  // namespace

std::size_t Nearest_name::cost(std::string_view unknown, std::string_view known) {
    const std::size_t longer = std::max(known.size(), unknown.size());
    const std::size_t shorter = std::min(known.size(), unknown.size());
    const bool is_compared =
        shorter >= SHORTEST && longer <= LONGEST && longer - shorter <= MOST_MISTAKES;
    return is_compared ? shorter * longer : 0;
}

void Nearest_name::offer(std::string_view known) {
    if (cost(m_unknown, known) == 0) {
        return;
    }
    const std::size_t longer = std::max(known.size(), m_unknown.size());
    const std::size_t distance = mistakes_between(m_unknown, known);
    const bool is_near = distance <= MOST_MISTAKES && 2 * distance <= longer;
    if (is_near && (m_best.empty() || distance < m_distance) &&
        without_digits(known) != without_digits(m_unknown)) {
        m_best = known;
        m_distance = distance;
    }
}

bool offer_within_bounds(Nearest_name& nearest, std::string_view known, std::size_t& searched) {
    if (searched > MOST_NAME_SEARCH) {
        nearest.forget();
        return false;
    }
    searched += 1 + Nearest_name::cost(nearest.unknown(), known);
    nearest.offer(known);
    return true;
}

std::string Nearest_name::hint(const char* quote, const char* end_quote) const {
    return m_best.empty() ? ""
                          : "; did you mean " + (quote + std::string(m_best)) + end_quote + "?";
}

}  // namespace frontpanel
