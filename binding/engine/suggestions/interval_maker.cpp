#include "engine/suggestions/interval_maker.h"

namespace frontpanel::binding_engine {

void Interval_maker::judge(Reading& reading, Judgement& judgement) {
    if (!take_rules(reading)) {
        judgement.verdict.failed_kinds |= kind().suggestion;
        return;
    }
    if (intervals().empty()) {
        return;
    }
    merge(intervals());
    Rule_verdict::Ranges& ranges = member_of(judgement.verdict).emplace();
    for (const Interval& interval : intervals()) {
        ranges.emplace_back(interval.low, interval.high);
    }
}

bool Interval_maker::take_rules(Reading& reading) {
    intervals().clear();
    return each_rule_that_holds(reading, [&](const Rule& rule) {
        return add_operands(reading, rule) ? Step::NEXT : Step::FAILED;
    });
}

bool Interval_maker::take_rule(Reading& reading, const Rule& rule) {
    intervals().clear();
    return add_operands(reading, rule);
}

bool Interval_maker::add_operands(Reading& reading, const Rule& rule) {
    for (std::size_t number = 0; number < rule.operand_count; number += 2) {
        int64_t low = 0;
        int64_t high = 0;
        if (!reading.interval(rule, number, low, high) || !take(reading, rule, low, high)) {
            return false;
        }
    }
    return true;
}

}  // namespace frontpanel::binding_engine
