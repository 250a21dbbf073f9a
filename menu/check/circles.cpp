#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "check/checks.h"
#include "check/entry_table.h"
#include "file/item_members.h"

namespace frontpanel {
namespace {

// The texts of the rules in a circle, whichever copies of them.
using Texts = std::set<std::tuple<size_t, uint32_t, uint32_t>>;

enum class Limit { LOWEST, HIGHEST };

std::vector<std::string> rules_in(const std::string& text) {
    std::vector<std::string> rules(1);
    for (const char character : text) {
        if (character == ';' || character == '\n') {
            rules.emplace_back();
        } else if (character != ' ' || !rules.back().empty()) {
            rules.back() += character;
        }
    }
    return rules;
}

// Which end of its range the rules of an item take from a parameter: nothing unless one rule does so, without a
// condition, as in "range [lowest]..100".
std::optional<Limit> limit_of(const std::string& text) {
    std::optional<Limit> limit;
    for (const std::string& rule : rules_in(text)) {
        if (rule.rfind("range ", 0) != 0 || rule.find('[') == std::string::npos) {
            continue;
        }
        const size_t middle = rule.find("..");
        const bool is_low = rule.find('[') < middle;
        const bool is_both = is_low && rule.find('[', middle) != std::string::npos;
        const bool is_plain = rule.find(',') == std::string::npos &&
                              rule.find("-[") == std::string::npos &&
                              rule.find("- [") == std::string::npos &&
                              rule.find_first_of("*/%?(") == std::string::npos &&
                              rule.find(" if ") == std::string::npos;
        if (limit || is_both || !is_plain) {
            return std::nullopt;
        }
        limit = is_low ? Limit::LOWEST : Limit::HIGHEST;
    }
    return limit;
}

class Circles {
public:
    Circles(const Built_menu& built, Problems& problems) : m_built(built), m_problems(problems) {
        m_items.reserve(built.rules.size());
        for (const Built_menu::Item& item : built.items) {
            if (item.item.find(member::BINDING)) {
                m_items.add(item.entry, item.item);
            }
        }
        m_items.complete();
    }

    void check() {
        for (const Binding_cycle& cycle : m_built.menu.bindings()->find_cycles()) {
            const Place* const place = place_of(cycle);
            if (place == nullptr || !m_reported.insert(texts_of(cycle)).second) {
                continue;
            }
            if (cycle.kind == Binding_cycle::Kind::WRITES) {
                m_problems.report(*place,
                                  "rules that write drive each other in a circle: " + cycle.text());
            } else if (!is_pair(cycle) && !is_allowed(cycle)) {
                m_problems.warn(*place, "rules limit each other in a circle: " + cycle.text());
            }
        }
    }

private:
    const Place* place_of(const Binding_cycle& cycle) const {
        for (const Binding_cycle::Step& step : cycle.steps) {
            const auto found = m_built.rules.find(step.entry);
            if (found != m_built.rules.end()) {
                return &found->second;
            }
        }
        return nullptr;
    }

    Texts texts_of(const Binding_cycle& cycle) const {
        Texts texts;
        for (const Binding_cycle::Step& step : cycle.steps) {
            const auto found = m_built.rules.find(step.entry);
            if (found != m_built.rules.end()) {
                const Place& place = found->second;
                texts.emplace(place.source->number, place.line, place.column);
            }
        }
        return texts;
    }

    // A lowest and a highest value that leave room for each other.
    bool is_pair(const Binding_cycle& cycle) const {
        if (cycle.steps.size() != 2) {
            return false;
        }
        const auto first = limit_at(cycle.steps[0]);
        const auto second = limit_at(cycle.steps[1]);
        return first && second && *first != *second;
    }
    std::optional<Limit> limit_at(const Binding_cycle::Step& step) const {
        const Json_value* const found = m_items.find(step.entry);
        return found == nullptr ? std::nullopt
                                : limit_of(found->member(member::BINDING).text_with_lines());
    }

    bool is_allowed(const Binding_cycle& cycle) const {
        return std::any_of(cycle.steps.begin(), cycle.steps.end(),
                           [this](const Binding_cycle::Step& step) {
                               return m_built.allowed_circles.count(step.entry) > 0;
                           });
    }

    const Built_menu& m_built;
    Problems& m_problems;
    Entry_table<Json_value> m_items;
    std::set<Texts> m_reported;
};

}  // namespace

// A circle of writes may never come to rest. Limits that follow each other do, and are often meant so.
void check_circles(const Built_menu& built, Problems& problems) {
    Circles(built, problems).check();
}

bool has_circle_of_writes(const Built_menu& built) {
    const std::vector<Binding_cycle> cycles = built.menu.bindings()->find_cycles();
    return std::any_of(cycles.begin(), cycles.end(), [](const Binding_cycle& cycle) {
        return cycle.kind == Binding_cycle::Kind::WRITES;
    });
}

}  // namespace frontpanel
