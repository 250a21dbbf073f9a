#include "engine/reading.h"

#include <algorithm>
#include <cstdio>

#include <frontpanel_base/text_bytes.h>

namespace frontpanel::binding_engine {
namespace {

using binding_language::Fault;
using binding_language::Value_type;

std::string value_text(const binding_language::Value& value) {
    return value.type == Value_type::TEXT ? quoted(value.text) : std::to_string(value.number);
}

}  // namespace

std::string shown(std::string_view source) {
    constexpr std::size_t LONGEST = 100;
    return source.size() <= LONGEST ? std::string(source)
                                    : std::string(beginning_of(source, LONGEST)) + "...";
}

std::string quoted(std::string_view text) {
    std::string result = "\"";
    for (const char byte : text) {
        const auto code = static_cast<unsigned char>(byte);
        if (byte == '"' || byte == '\\') {
            result += '\\';
            result += byte;
        } else if (code < ' ' || code == 0x7F) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\x%02x", code);
            result += escape;
        } else {
            result += byte;
        }
    }
    return result + '"';
}

std::string bracketed(std::string_view name) {
    return "[" + std::string(name) + "]";
}

Reading::Reading(Engine& engine, bool is_try)
    : m_engine(engine),
      m_tried(is_try ? engine.overridden() : nullptr),
      m_is_try(is_try),
      m_proposed(nullptr),
      m_list(nullptr),
      m_seen(nullptr) {
    engine.core().parameters.begin_evaluation();
}

Reading::Reading(Engine& engine, bool is_try, const Proposed_values& proposed)
    : Reading(engine, is_try) {
    m_tried = nullptr;
    m_proposed = &proposed;
}

void Reading::enter(Bound_list& list) {
    m_list = &list;
    m_engine.refresh_options(list);
}

bool Reading::condition(const Rule& rule, bool& holds) {
    holds = true;
    if (rule.condition.empty()) {
        return true;
    }
    Value result;
    if (!value(rule, rule.condition, result)) {
        return false;
    }
    holds = result.number != 0;
    return true;
}

bool Reading::value(const Rule& rule, Code code, Value& value) {
    const Fault fault = m_engine.core().machine.run(m_list->program, code, *this, value);
    if (fault == Fault::NONE) {
        return true;
    }
    const bool is_unreadable = fault == Fault::UNREADABLE;
    report(rule, is_unreadable ? m_failure : fault_text(fault),
           is_unreadable ? m_cause : Rule_fault::Cause::RULE, is_unreadable && m_is_awaited);
    return false;
}

bool Reading::interval(const Rule& rule, std::size_t number, int64_t& low, int64_t& high) {
    Value first;
    Value last;
    if (!value(rule, m_list->program.operand(rule, number), first)) {
        return false;
    }
    const Code end = m_list->program.operand(rule, number + 1);
    if (end.empty()) {
        last = first;
    } else if (!value(rule, end, last)) {
        return false;
    }
    low = std::min(first.number, last.number);
    high = std::max(first.number, last.number);
    return true;
}

void Reading::report(const Rule& rule, const std::string& mistake, Rule_fault::Cause cause,
                     bool is_awaited) {
    ++m_reports;
    m_last_mistake = mistake;
    if (m_reports_faults && !is_awaited) {
        m_engine.add_fault(*m_list, rule, mistake, cause);
    }
    m_engine.add_error("line " + std::to_string(rule.line) + ", " + shown(rule.source) + ": " +
                       mistake);
}

void Reading::judged(const Rule& rule) {
    if (m_reports_faults) {
        m_engine.judged(*m_list, rule);
    }
}

bool Reading::read(std::size_t parameter, Value& value) {
    Cached_parameter& known = *m_list->parameters[parameter];
    const bool is_tried = &known == m_tried && &known != m_engine.own();
    const return_s* const proposed = &known != m_engine.own() ? find_proposed(known) : nullptr;
    if (proposed != nullptr) {
        take(known, *proposed, value);
        return true;
    }
    const bool is_readable = is_tried ? take_tried(known, value) : fetch(known, value);
    if (!is_readable || m_seen != nullptr) {
        const std::string name = bracketed(m_list->program.parameter(parameter).name);
        note(name, is_readable, value);
        return is_readable ||
               fail("cannot read " + name + ": " + m_engine.core().parameters.failure_text(known),
                    Rule_fault::Cause::DEVICE, known.is_awaited);
    }
    return true;
}

bool Reading::read_own(Value& value) {
    Cached_parameter* const own = m_engine.own();
    const RETURN_TYPE wanted = m_list->program.own_type() == Value_type::TEXT ? STRING : INTEGER;
    if (own == nullptr || own->rt != wanted) {
        note("value", false, value);
        return fail(own == nullptr     ? "the entry has no value"
                    : wanted == STRING ? "the entry's value is not a text"
                                       : "the entry's value is not a number",
                    Rule_fault::Cause::RULE);
    }
    if (const return_s* const proposed = m_is_try ? find_proposed(*own) : nullptr) {
        take(*own, *proposed, value);
        return true;
    }
    const bool is_readable = own == m_tried ? take_tried(*own, value) : fetch(*own, value);
    note("value", is_readable, value);
    return is_readable ||
           fail("cannot read the entry's value: " + m_engine.core().parameters.failure_text(*own),
                Rule_fault::Cause::DEVICE, own->is_awaited);
}

bool Reading::has_option(std::size_t option) {
    const bool has = m_list->options[option];
    if (m_seen != nullptr) {
        Value value;
        value.number = has ? 1 : 0;
        note("has_option(" + quoted(m_list->program.option_name(option)) + ")", true, value);
    }
    return has;
}

bool Reading::take_tried(const Cached_parameter& parameter, Value& value) const {
    take(parameter, m_engine.override_value(), value);
    return true;
}

void Reading::take(const Cached_parameter& parameter, const return_s& taken, Value& value) {
    value.type = binding_language::value_type(parameter.rt);
    value.number = taken.i;
    value.text = taken.s;
}

const return_s* Reading::find_proposed(const Cached_parameter& parameter) const {
    if (m_proposed == nullptr) {
        return nullptr;
    }
    const auto found = m_proposed->find({parameter.pid, parameter.varidx});
    return found != m_proposed->end() && found->second.rt == parameter.rt ? &found->second
                                                                          : nullptr;
}

bool Reading::fetch(Cached_parameter& parameter, Value& value) {
    value.type = binding_language::value_type(parameter.rt);
    if (!m_engine.core().parameters.bring_up_to_date(parameter)) {
        return false;
    }
    value.number = parameter.number;
    value.text = parameter.text;
    return true;
}

bool Reading::fail(std::string mistake, Rule_fault::Cause cause, bool is_awaited) {
    m_failure = std::move(mistake);
    m_cause = cause;
    m_is_awaited = is_awaited;
    return false;
}

void Reading::note(std::string name, bool is_readable, const Value& value) {
    if (m_seen == nullptr) {
        return;
    }
    const auto known = std::find_if(m_seen->begin(), m_seen->end(),
                                    [&](const auto& seen) { return seen.name == name; });
    if (known == m_seen->end()) {
        m_seen->push_back({std::move(name), is_readable ? value_text(value) : "unreadable"});
    }
}

}  // namespace frontpanel::binding_engine
