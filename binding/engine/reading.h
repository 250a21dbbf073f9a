// What the rules of an engine see while they are evaluated.
//
// Each parameter is read at most once in an evaluation, so that all rules judge the same state of the device.
#ifndef FRONTPANEL_BINDING_ENGINE_READING_H
#define FRONTPANEL_BINDING_ENGINE_READING_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <frontpanel_binding/rule_verdict.h>

#include "engine/engine.h"
#include "language/machine.h"
#include "language/program.h"

namespace frontpanel::binding_engine {

// `text` in quotes, with escapes for quotes and backslashes and "\xNN" for what is not printable.
std::string quoted(std::string_view text);
// At most about 100 characters: a rule of many ends would hide what is said about it.
std::string shown(std::string_view source);
// "[gain]"
std::string bracketed(std::string_view name);

class Reading : public binding_language::Value_source {
public:
    using Rule = binding_language::Rule;
    using Code = binding_language::Code;
    using Value = binding_language::Value;

    // With `is_try` the engine's override replaces the value of its parameter. An override of the entry's own parameter
    // replaces only `value`: the name of the parameter still means the device's value.
    Reading(Engine& engine, bool is_try);

    // Proposed values replace the device's values, except that of the entry's own parameter, whose proposed value is
    // `value` with `is_try`. The values outlive the reading.
    Reading(Engine& engine, bool is_try, const Proposed_values& proposed);

    // The list whose rules are asked for next.
    void enter(Bound_list& list);
    const Bound_list& list() const { return *m_list; }
    const binding_language::Program& program() const { return m_list->program; }

    // What follows is false when there is a fault, which has become an error of the engine.
    bool condition(const Rule& rule, bool& holds);
    bool value(const Rule& rule, Code code, Value& value);
    // The two ends of operand `number` and the next, the lesser one first.
    bool interval(const Rule& rule, std::size_t number, int64_t& low, int64_t& high);
    // Reports a mistake of `rule` as an error of the engine, and as a fault unless the value just has not arrived yet.
    void report(const Rule& rule, const std::string& mistake,
                Rule_fault::Cause cause = Rule_fault::Cause::RULE, bool is_awaited = false);

    // Whether faults are noted as the engine's, or are only those of an explanation or a trial.
    void set_reports_faults(bool reports) { m_reports_faults = reports; }
    // How often something was reported.
    std::size_t reports() const { return m_reports; }
    // The rule was judged without a fault.
    void judged(const Rule& rule);

    // Notes every value that is read from now on; null ends it.
    void note_values(std::vector<Rule_explanation::Seen>* seen) { m_seen = seen; }
    // What the last fault was.
    const std::string& last_mistake() const { return m_last_mistake; }

    bool read(std::size_t parameter, Value& value) override;
    bool read_own(Value& value) override;
    bool has_option(std::size_t option) override;

private:
    static void take(const Cached_parameter& parameter, const return_s& taken, Value& value);
    bool take_tried(const Cached_parameter& parameter, Value& value) const;
    bool fetch(Cached_parameter& parameter, Value& value);
    const return_s* find_proposed(const Cached_parameter& parameter) const;
    bool fail(std::string mistake, Rule_fault::Cause cause, bool is_awaited = false);
    void note(std::string name, bool is_readable, const Value& value);

    Engine& m_engine;
    Cached_parameter* m_tried;  // the overridden parameter
    bool m_is_try;
    const Proposed_values* m_proposed;  // null for none
    Bound_list* m_list;
    std::string m_failure;  // why the last read failed
    std::string m_last_mistake;
    Rule_fault::Cause m_cause = Rule_fault::Cause::RULE;  // of the last failure
    bool m_is_awaited = false;                            // the value of the last failed read
    std::size_t m_reports = 0;
    bool m_reports_faults = false;
    std::vector<Rule_explanation::Seen>* m_seen;
};

}  // namespace frontpanel::binding_engine

#endif
