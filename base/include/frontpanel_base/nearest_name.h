// The known name that somebody probably meant by one that is unknown.
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
    // Takes back what was offered.
    void forget() { m_best = {}; }
    // The pairs of letters that `offer` compares.
    static std::size_t cost(std::string_view unknown, std::string_view known);
    // The name with the fewest typing mistakes, at most two and half of its letters, digits excluded; the
    // first of several. Empty for none.
    std::string_view found() const { return m_best; }
    // What a message adds: `; did you mean "gain"?`, or nothing. `quote` and `end_quote` stand around the name.
    std::string hint(const char* quote = "\"", const char* end_quote = "\"") const;

private:
    std::string_view m_unknown;
    std::string_view m_best;
    std::size_t m_distance = 0;  // of the best
};

// Names and pairs of letters that all searches in one set of names look at, which a file may fill with thousands of names
// and of mistakes: some tenths of a second.
inline constexpr std::size_t MOST_NAME_SEARCH = 20'000'000;

// Offers a name unless the searches have exceeded that by now; `searched` is theirs in common, 0 at first. False when they
// have: nothing is found then.
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
