#include <map>
#include <tuple>

#include "check/checks.h"

namespace frontpanel {
namespace {

// A text of the file, whichever copy of it.
using Text = std::tuple<size_t, uint32_t, uint32_t>;
// A condition in a text, and what it always is.
using Condition = std::tuple<Text, size_t, size_t, bool>;

Text text_at(const Place& place) {
    return {place.source->number, place.line, place.column};
}

struct Found {
    const Built_menu::Constant* first;
    size_t count;
};

}  // namespace

// In copies of a template a condition such as "[count] >= 1" is meant for the other copies. So it is doubtful only
// when there are several, and it is the same in all of them.
void check_constants(const Built_menu& built, Problems& problems) {
    std::map<Text, size_t> copies;
    for (const Place& place : built.condition_texts) {
        ++copies[text_at(place)];
    }
    std::map<Condition, Found> found;
    for (const Built_menu::Constant& constant : built.constants) {
        const Condition key(text_at(constant.rules.place()), constant.rule, constant.number,
                            constant.is_true);
        ++found.emplace(key, Found{&constant, 0}).first->second.count;
    }
    for (const auto& [key, each] : found) {
        const size_t all = copies[std::get<0>(key)];
        const bool is_copy = each.first->place.copy != nullptr;
        if (!is_copy || (all > 1 && each.count == all)) {
            problems.warn(each.first->place, each.first->warning);
        }
    }
}

}  // namespace frontpanel
