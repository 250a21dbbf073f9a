// The known name that was probably meant by an unknown one.
#ifndef FRONTPANEL_BASE_NEAREST_NAME_H
#define FRONTPANEL_BASE_NEAREST_NAME_H

#include <cstddef>
#include <string>
#include <string_view>

namespace frontpanel {

class Nearest_name {
public:
    // The text of `unknown` outlives the object.
    explicit Nearest_name(std::string_view unknown) : m_unknown(unknown) {}

    std::string_view unknown() const { return m_unknown; }
    // Compares a known name, whose text outlives the object.
    void offer(std::string_view known);
    // Forgets all names that were offered.
    void forget() { m_best = {}; }
    // The number of pairs of letters that `offer` compares.
    static std::size_t cost(std::string_view unknown, std::string_view known);
    // The offered name with the fewest typing mistakes; the first of several. It has at most two mistakes, in at most
    // half of its letters, and differs from `unknown` in more than digits. Empty when there is none.
    std::string_view found() const { return m_best; }
    // The end of a message: `; did you mean "gain"?`, or empty. `quote` and `end_quote` enclose the name.
    std::string hint(const char* quote = "\"", const char* end_quote = "\"") const;

private:
    std::string_view m_unknown;
    std::string_view m_best;
    std::size_t m_distance = 0;  // of the best
};

// Limit of the names and pairs of letters that all searches in one set of names compare: a few tenths of a second. A
// file may have thousands of names and thousands of mistakes.
inline constexpr std::size_t MOST_NAME_SEARCH = 20'000'000;

// Offers a name unless the searches have exceeded that limit. `searched` counts for all of them, from 0. Returns false
// beyond the limit; then nothing is found.
bool offer_within_bounds(Nearest_name& nearest, std::string_view known, std::size_t& searched);

// The hint for one of several names.
template <typename Names>
std::string hint_of(std::string_view unknown, const Names& names) {
    Nearest_name nearest(unknown);
    for (const auto& name : names) {
        nearest.offer(name);
    }
    return nearest.hint();
}

}  // namespace frontpanel

#endif
