#include "engine/suggestions/suggestion_maker.h"

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
class Range_maker : public Suggestion_maker {
public:
    using Suggestion_maker::Suggestion_maker;

    void decide(Reading& reading, bool updates) override {
        std::vector<Interval>& intervals = m_engine.core().intervals;
        intervals.clear();
        const bool is_decided =
            each_rule_that_holds(reading, [&](const Rule& rule) { return take(reading, rule); });
        if (!is_decided) {
            return;
        }
        merge(intervals);
        if ((!intervals.empty() || fall_back()) && updates) {
            m_suggestion.suggest(intervals);
        }
    }

    void judge(Reading& reading, Judgement& judgement) override {
        m_engine.core().intervals.clear();
        if (!each_rule_that_holds(reading, [&](const Rule& rule) { return take(reading, rule); })) {
            judgement.verdict.failed_kinds |= SUGGESTION_RANGE;
        } else if (!m_engine.core().intervals.empty()) {
            judgement.verdict.ranges = merged_intervals();
        }
    }

    std::optional<std::string> demand(Reading& reading, const Rule& rule) override {
        m_engine.core().intervals.clear();
        if (take(reading, rule) == Step::FAILED) {
            return std::nullopt;
        }
        return ranges_text(m_engine.core().intervals);
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
    Step take(Reading& reading, const Rule& rule) {
        for (std::size_t number = 0; number < rule.operand_count; number += 2) {
            int64_t low = 0;
            int64_t high = 0;
            if (!reading.interval(rule, number, low, high)) {
                return Step::FAILED;
            }
            if (low > HIGHEST || high < LOWEST) {
                reading.report(rule, interval_text(low, high) + " holds no 32-bit number");
                return Step::FAILED;
            }
            m_engine.core().intervals.push_back({clamped(low), clamped(high)});
        }
        return Step::NEXT;
    }

    // An empty suggestion would leave the entry with its last, narrower range.
    bool fall_back() {
        const std::optional<Interval> range = m_engine.fallback_range();
        if (!range) {
            m_engine.add_error("no range rule holds, and there is no fallback range");
            return false;
        }
        m_engine.core().intervals.push_back(*range);
        return true;
    }

    Suggestion<std::vector<Interval>> m_suggestion;
};

}  // namespace

std::unique_ptr<Suggestion_maker> make_range(Engine& engine, const Rule_kind& kind) {
    return std::make_unique<Range_maker>(engine, kind);
}

}  // namespace frontpanel::binding_engine
