#include "engine/suggestions/interval_maker.h"

#include <algorithm>

namespace frontpanel::binding_engine {
namespace {

// Keys that a rule may allow an entry whose number of options is not known.
constexpr int64_t MOST_KEYS = 4096;

// "0, 1, 3..5"
std::string keys_text(const std::vector<Interval>& keys) {
    std::vector<std::string> texts;
    texts.reserve(keys.size());
    for (const Interval& interval : keys) {
        texts.push_back(interval_text(interval.low, interval.high));
    }
    return texts.empty() ? "all" : comma_joined(texts);
}

// Sorted keys, neighbours drawn together.
std::string keys_text(const std::vector<int>& keys) {
    std::vector<Interval> intervals;
    intervals.reserve(keys.size());
    for (const int key : keys) {
        intervals.push_back({key, key});
    }
    merge(intervals);
    return keys_text(intervals);
}

// The keys of all rules that hold. Entries with options ask for ranges and read keys.
class Key_maker : public Interval_maker {
public:
    using Interval_maker::Interval_maker;

    void decide(Reading& reading, bool updates) override {
        if (!take_rules(reading)) {
            return;
        }
        if (intervals().empty()) {
            fall_back();
        }
        if (list_keys() && updates) {
            suggest();
        }
    }

    std::optional<std::string> demand(Reading& reading, const Rule& rule) override {
        if (!take_rule(reading, rule)) {
            return std::nullopt;
        }
        merge(intervals());
        return keys_text(intervals());
    }

    int offered() const override { return SUGGESTION_KEYS | SUGGESTION_RANGE; }

    int updated() const override {
        return (m_suggestion.is_updated ? SUGGESTION_KEYS : 0) |
               (m_is_announced ? SUGGESTION_RANGE : 0);
    }

    // Entries ask for keys under SUGGESTION_RANGE, and clear only that.
    void clear(int mask) override {
        if ((mask & SUGGESTION_RANGE) != 0) {
            m_is_announced = false;
        }
        if ((mask & (SUGGESTION_RANGE | SUGGESTION_KEYS)) != 0) {
            m_suggestion.is_updated = false;
        }
    }

    void get(void* out) const override {
        static_cast<std::vector<std::vector<int>>*>(out)->assign(1, m_suggestion.value);
    }

    std::vector<std::string> lines() const override {
        if (!m_suggestion.is_known) {
            return {};
        }
        return {"keys " + keys_text(m_suggestion.value)};
    }

private:
    void suggest() {
        const bool was_updated = std::exchange(m_suggestion.is_updated, false);
        m_suggestion.suggest(m_engine.core().keys);
        m_is_announced = m_is_announced || m_suggestion.is_updated;
        m_suggestion.is_updated = m_suggestion.is_updated || was_updated;
    }

    std::optional<Rule_verdict::Ranges>& member_of(Rule_verdict& verdict) const override {
        return verdict.keys;
    }

    bool take(Reading& reading, const Rule& rule, int64_t low, int64_t high) override {
        if (m_engine.options() == nullptr && int64_t{clamped(high)} - clamped(low) >= MOST_KEYS) {
            reading.report(rule, "more than " + std::to_string(MOST_KEYS) + " keys");
            return false;
        }
        add(low, high);
        return true;
    }

    // Leaves out keys that the entry lacks, except one: with an empty list the entry would show all.
    void add(int64_t low, int64_t high) {
        low = clamped(low);
        high = clamped(high);
        if (m_engine.options() != nullptr) {
            const int64_t last = int64_t{m_engine.options()->Get_size_enum()} - 1;
            if (high < 0 || low > last) {
                high = low;
            } else {
                low = std::max<int64_t>(low, 0);
                high = std::min(high, last);
            }
        }
        intervals().push_back({clamped(low), clamped(high)});
    }

    // All keys, one by one: an empty list would allow none to an entry that has control options as well.
    void fall_back() {
        if (m_engine.options() != nullptr && m_engine.options()->Get_size_enum() > 0) {
            add(0, HIGHEST);
        }
    }

    // Writes the intervals out, each key once: rules may name the same keys over and over.
    bool list_keys() {
        Core& core = m_engine.core();
        core.keys.clear();
        merge(intervals());
        int64_t count = 0;
        for (const Interval& interval : intervals()) {
            count += int64_t{interval.high} - interval.low + 1;
        }
        if (m_engine.options() == nullptr && count > MOST_KEYS) {
            m_engine.add_error("the rules allow more than " + std::to_string(MOST_KEYS) + " keys");
            return false;
        }
        for (const Interval& interval : intervals()) {
            for (int64_t key = interval.low; key <= interval.high; ++key) {
                core.keys.push_back(static_cast<int>(key));
            }
        }
        return true;
    }

    Suggestion<std::vector<int>> m_suggestion;
    bool m_is_announced = false;  // as the kind that enumerated entries ask for
};

}  // namespace

std::unique_ptr<Suggestion_maker> make_keys(Engine& engine, const Rule_kind& kind) {
    return std::make_unique<Key_maker>(engine, kind);
}

}  // namespace frontpanel::binding_engine
