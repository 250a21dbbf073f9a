// One kind of suggestion of one entry: how it follows from the rules, and what the library asks about it.
//
// Each kind of rule has a maker in a file of this folder; the table in rule_kinds.cpp says which. An engine makes
// it when a list brings the first rule of that kind. Menu thread only.
#ifndef FRONTPANEL_BINDING_ENGINE_SUGGESTIONS_SUGGESTION_MAKER_H
#define FRONTPANEL_BINDING_ENGINE_SUGGESTIONS_SUGGESTION_MAKER_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <frontpanel_binding/rule_verdict.h>

#include "engine/core.h"
#include "engine/engine.h"
#include "engine/reading.h"
#include "language/program.h"
#include "rule_kinds.h"

namespace frontpanel::binding_engine {

using binding_language::Rule;
using binding_language::Value;

// A suggested value, and whether it is news.
template <typename Value>
struct Suggestion {
    Value value{};
    bool is_known = false;
    bool is_updated = false;

    // Takes `suggested` if it is another value, and leaves the former one there.
    void suggest(Value& suggested) {
        if (!is_known || !(value == suggested)) {
            std::swap(value, suggested);
            is_known = true;
            is_updated = true;
        }
    }
};

// What the rules of an engine say by other values than the device's.
struct Judgement {
    Rule_verdict verdict;
    std::optional<std::vector<GetSetS>> writes;  // empty when a rule fails
};

class Suggestion_maker {
public:
    Suggestion_maker(Engine& engine, const Rule_kind& kind) : m_engine(engine), m_kind(kind) {}
    virtual ~Suggestion_maker() = default;
    Suggestion_maker(const Suggestion_maker&) = delete;
    Suggestion_maker& operator=(const Suggestion_maker&) = delete;

    const Rule_kind& kind() const { return m_kind; }

    // Judges the rules; what is wrong becomes an error of the engine. With `updates`, and without a fault, the
    // suggestion is what follows from them.
    virtual void decide(Reading& reading, bool updates) = 0;
    // What the rules say by the values that the reading has; the suggestion stays as it is.
    virtual void judge(Reading& reading, Judgement& judgement) = 0;
    // What a rule that holds asks for, as explanations have it; nothing when that fails.
    virtual std::optional<std::string> demand(Reading& reading, const Rule& rule) = 0;

    // Bits of `Suggestion_kind`: what the suggestion is offered as, and as what it is news.
    virtual int offered() const { return m_kind.suggestion; }
    virtual int updated() const = 0;
    // `mask` holds any bits.
    virtual void clear(int mask) = 0;
    // Fills `out`, of the type that the kind has.
    virtual void get(void* out) const = 0;
    // One line, or one for each of several: "range 0..4", without " (new)".
    virtual std::vector<std::string> lines() const = 0;
    // The device refused a write, or took it; only a maker of writes takes it up.
    virtual void write_failed(uint32_t /*pid*/, uint32_t /*varidx*/, std::string_view /*bytes*/,
                              int /*result*/) {}
    virtual void write_done(uint32_t /*pid*/, uint32_t /*varidx*/, std::string_view /*bytes*/) {}
    // What was written last, and what counts as that from now on; of a maker of writes alone.
    virtual std::vector<GetSetS> done() const { return {}; }
    virtual void set_done(std::vector<GetSetS> /*requests*/) {}
    // Whether `updated` holds for the lines.
    bool is_news() const { return (updated() & m_kind.suggestion) != 0; }

protected:
    enum class Step { NEXT, LAST, FAILED };

    // `take` judges each rule that holds. Returns false when a rule or `take` failed.
    template <typename Take>
    bool each_rule_that_holds(Reading& reading, Take take);

    Engine& m_engine;

private:
    const Rule_kind& m_kind;
};

template <typename Take>
bool Suggestion_maker::each_rule_that_holds(Reading& reading, Take take) {
    for (Bound_list& list : m_engine.lists()) {
        reading.enter(list);
        for (std::size_t number = 0; number < list.program.rule_count(); ++number) {
            if (list.program.kind_of_rule(number) != m_kind.suggestion) {
                continue;
            }
            const Rule rule = list.program.rule(number);
            const std::size_t reports_before = reading.reports();
            bool holds = false;
            if (!reading.condition(rule, holds)) {
                if (m_kind.judges_tries) {
                    continue;  // a warning that cannot be judged silences no other
                }
                return false;
            }
            const Step step = holds ? take(rule) : Step::NEXT;
            if (reading.reports() == reports_before) {
                reading.judged(rule);
            }
            if (step != Step::NEXT) {
                return step == Step::LAST;
            }
        }
    }
    return true;
}

}  // namespace frontpanel::binding_engine

#endif
