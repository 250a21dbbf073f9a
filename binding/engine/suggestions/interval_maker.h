// The maker of a kind of rule whose operands are intervals, such as "range 0..4, 8" or "keys 1, 3..5".
//
// The intervals of one evaluation are in `Core::intervals`, which all engines share.
#ifndef FRONTPANEL_BINDING_ENGINE_SUGGESTIONS_INTERVAL_MAKER_H
#define FRONTPANEL_BINDING_ENGINE_SUGGESTIONS_INTERVAL_MAKER_H

#include <cstdint>
#include <optional>
#include <vector>

#include "engine/interval.h"
#include "engine/suggestions/suggestion_maker.h"

namespace frontpanel::binding_engine {

class Interval_maker : public Suggestion_maker {
public:
    using Suggestion_maker::Suggestion_maker;

    void judge(Reading& reading, Judgement& judgement) override;

protected:
    // The intervals of the evaluation; every rule that holds adds at least one.
    std::vector<Interval>& intervals() { return m_engine.core().intervals; }
    // Takes the intervals of all rules that hold. False when one fails, which is reported.
    bool take_rules(Reading& reading);
    // Takes the intervals of one rule.
    bool take_rule(Reading& reading, const Rule& rule);
    // Adds the interval of one operand, as far as the entry can have it. False, and an error is reported, when the rule
    // must not have it.
    virtual bool take(Reading& reading, const Rule& rule, int64_t low, int64_t high) = 0;
    // The member of a verdict for this kind.
    virtual std::optional<Rule_verdict::Ranges>& member_of(Rule_verdict& verdict) const = 0;

private:
    bool add_operands(Reading& reading, const Rule& rule);
};

}  // namespace frontpanel::binding_engine

#endif
