#include "engine/suggestions/interval_maker.h"

namespace frontpanel::binding_engine {
namespace {

std::string ranges_text(const std::vector<Interval>& intervals) {
    std::vector<std::string> texts;
    texts.reserve(intervals.size());
    for (const Interval& interval : intervals) {
        texts.push_back(std::to_string(interval.low) + ".." + std::to_string(interval.high));
    }
    return comma_joined(texts);
}

// The ranges of all rules that hold.
class Range_maker : public Interval_maker {
public:
    using Interval_maker::Interval_maker;

    void decide(Reading& reading, bool updates) override {
        if (!take_rules(reading)) {
            return;
        }
        merge(intervals());
        if ((!intervals().empty() || fall_back()) && updates) {
            m_suggestion.suggest(intervals());
        }
    }

    std::optional<std::string> demand(Reading& reading, const Rule& rule) override {
        if (!take_rule(reading, rule)) {
            return std::nullopt;
        }
        return ranges_text(intervals());
    }

    int updated() const override { return m_suggestion.is_updated ? SUGGESTION_RANGE : 0; }

    void clear(int mask) override {
        if ((mask & SUGGESTION_RANGE) != 0) {
            m_suggestion.is_updated = false;
        }
    }

    void get(void* out) const override {
        auto& ranges = *static_cast<std::vector<std::vector<int>>*>(out);
        ranges.clear();
        for (const Interval& interval : m_suggestion.value) {
            ranges.push_back({interval.low, interval.high});
        }
    }

    std::vector<std::string> lines() const override {
        if (!m_suggestion.is_known) {
            return {};
        }
        return {"range " + ranges_text(m_suggestion.value)};
    }

private:
    std::optional<Rule_verdict::Ranges>& member_of(Rule_verdict& verdict) const override {
        return verdict.ranges;
    }

    bool take(Reading& reading, const Rule& rule, int64_t low, int64_t high) override {
        if (low > HIGHEST || high < LOWEST) {
            reading.report(rule, interval_text(low, high) + " holds no 32-bit number");
            return false;
        }
        intervals().push_back({clamped(low), clamped(high)});
        return true;
    }

    // An empty suggestion would leave the entry with its last, narrower range.
    bool fall_back() {
        const std::optional<Interval> range = m_engine.fallback_range();
        if (!range) {
            m_engine.add_error("no range rule holds, and there is no fallback range");
            return false;
        }
        intervals().push_back(*range);
        return true;
    }

    Suggestion<std::vector<Interval>> m_suggestion;
};

}  // namespace

std::unique_ptr<Suggestion_maker> make_range(Engine& engine, const Rule_kind& kind) {
    return std::make_unique<Range_maker>(engine, kind);
}

}  // namespace frontpanel::binding_engine
