#include "engine/explanation.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "engine/reading.h"
#include "engine/suggestions/suggestion_maker.h"

namespace frontpanel::binding_engine {
namespace {

std::string fault_of(const Engine& engine, std::size_t rule) {
    for (const Rule_fault& fault : engine.faults()) {
        if (fault.rule == rule && fault.is_notable()) {
            return (fault.place.empty() ? "" : fault.place + ": ") + fault.reason;
        }
    }
    return "";
}

Rule_explanation explain_rule(const Engine& engine, Reading& reading, const Rule& rule) {
    Rule_explanation explanation{rule.kind, rule.line, std::string(rule.source), {}, {}, {}, {}};
    reading.note_values(&explanation.seen);
    bool holds = false;
    const bool is_judged = reading.condition(rule, holds);
    const std::optional<std::string> demand =
        is_judged && holds ? engine.find_maker(rule.kind)->demand(reading, rule) : std::nullopt;
    if (is_judged && !holds) {
        explanation.outcome = Rule_explanation::Outcome::DOES_NOT_HOLD;
    } else if (demand) {
        explanation.outcome = Rule_explanation::Outcome::HOLDS;
        explanation.result = *demand;
    } else {
        explanation.outcome = Rule_explanation::Outcome::FAILED;
        explanation.result = reading.last_mistake();
    }
    reading.note_values(nullptr);
    explanation.fault = fault_of(engine, engine.number_of(reading.list(), rule));
    return explanation;
}

}  // namespace

Binding_explanation explain(Engine& engine) {
    Binding_explanation explanation;
    explanation.entry = engine.name();
    std::vector<std::string> errors = engine.exchange_errors({});
    Reading reading(engine, false);
    for (Bound_list& list : engine.lists()) {
        reading.enter(list);
        for (std::size_t number = 0; number < list.program.rule_count(); ++number) {
            explanation.rules.push_back(explain_rule(engine, reading, list.program.rule(number)));
        }
    }
    engine.exchange_errors(std::move(errors));
    explanation.suggestions = engine.suggestion_lines();
    return explanation;
}

}  // namespace frontpanel::binding_engine
