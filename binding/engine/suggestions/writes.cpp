#include "engine/interval.h"
#include "engine/suggestions/suggestion_maker.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include <frontpanel_binding/parameter_address.h>

namespace frontpanel::binding_engine {
namespace {

using binding_language::Value_type;

std::string_view bytes_of(const GetSetS& request) {
    return std::string_view(reinterpret_cast<const char*>(request.buffer), request.length);
}

std::string written_text(const GetSetS& request) {
    if (request.rt == STRING) {
        return quoted(bytes_of(request));
    }
    int32_t value = 0;
    std::memcpy(&value, request.buffer, sizeof value);
    return std::to_string(value);
}

// The writes of all rules that hold, in their order.
class Write_maker : public Suggestion_maker {
public:
    using Suggestion_maker::Suggestion_maker;

    void decide(Reading& reading, bool updates) override {
        std::vector<GetSetS>& requests = m_engine.core().requests;
        requests.clear();
        m_judged.clear();
        const bool is_decided = each_rule_that_holds(reading, [&](const Rule& rule) {
            m_judged.push_back(m_engine.number_of(reading.list(), rule));
            return take(reading, rule);
        });
        if (is_decided && updates) {
            if (std::exchange(m_is_refused, false)) {
                m_suggestion.value.clear();  // so that the entry writes again
            }
            m_suggestion.is_known = true;  // to write nothing is no news
            m_suggestion.suggest(requests);
            m_rules.swap(m_judged);
            mend_unasked();
        }
    }

    void judge(Reading& reading, Judgement& judgement) override {
        std::vector<GetSetS>& requests = m_engine.core().requests;
        requests.clear();
        if (each_rule_that_holds(reading, [&](const Rule& rule) { return take(reading, rule); })) {
            judgement.writes = requests;
        } else {
            judgement.verdict.failed_kinds |= SUGGESTION_SET;
        }
    }

    std::optional<std::string> demand(Reading& reading, const Rule& rule) override {
        m_engine.core().requests.clear();
        if (take(reading, rule) == Step::FAILED) {
            return std::nullopt;
        }
        return request_text(m_engine.core().requests.back());
    }

    int updated() const override { return m_suggestion.is_updated ? SUGGESTION_SET : 0; }

    void clear(int mask) override {
        if ((mask & SUGGESTION_SET) != 0 && m_suggestion.is_updated) {
            m_suggestion.is_updated = false;
            m_engine.core().has_new_writes = true;
        }
    }

    void get(void* out) const override {
        *static_cast<std::vector<GetSetS>*>(out) = m_suggestion.value;
    }

    std::vector<std::string> lines() const override {
        if (m_suggestion.value.empty() || m_is_refused) {
            return {};
        }
        std::vector<std::string> requests;
        for (const GetSetS& request : m_suggestion.value) {
            requests.push_back(request_text(request));
        }
        return {"set " + comma_joined(requests)};
    }

    // The next evaluation offers the list as new, and the entry writes again. The fault remains meanwhile, so that it
    // is reported only once.
    void write_failed(uint32_t pid, uint32_t varidx, std::string_view bytes, int result) override {
        const std::size_t number = find(pid, varidx, bytes);
        if (number == m_suggestion.value.size()) {
            return;
        }
        const std::string reason = "cannot write " + request_text(m_suggestion.value[number]) +
                                   ": device result " + std::to_string(result);
        m_engine.print_error(reason);
        m_is_refused = true;
        m_engine.core().has_new_writes = true;
        if (number < m_rules.size()) {
            m_engine.add_write_fault(m_rules[number], reason);
        }
    }

    void write_done(uint32_t pid, uint32_t varidx, std::string_view bytes) override {
        const std::size_t number = find(pid, varidx, bytes);
        if (number < m_rules.size()) {
            m_engine.written(m_rules[number]);
        }
    }

    // A list that the entry has not taken is not written yet.
    std::vector<GetSetS> done() const override {
        return m_suggestion.is_updated || m_is_refused ? std::vector<GetSetS>()
                                                       : m_suggestion.value;
    }

    void set_done(std::vector<GetSetS> requests) override {
        m_suggestion.value = std::move(requests);
        m_suggestion.is_known = true;
        m_suggestion.is_updated = false;
        m_is_refused = false;
        m_rules.clear();
    }

private:
    // The place of a write in the list; its size when it is none of it.
    std::size_t find(uint32_t pid, uint32_t varidx, std::string_view bytes) const {
        const std::vector<GetSetS>& requests = m_suggestion.value;
        const auto found =
            std::find_if(requests.begin(), requests.end(), [&](const GetSetS& request) {
                return request.varid == pid && request.varidx == varidx &&
                       bytes_of(request) == bytes;
            });
        return static_cast<std::size_t>(found - requests.begin());
    }

    // The device refuses nothing of rules that write nothing now.
    void mend_unasked() {
        std::vector<std::size_t> mended;
        for (const Rule_fault& fault : m_engine.faults()) {
            if (std::find(m_rules.begin(), m_rules.end(), fault.rule) == m_rules.end()) {
                mended.push_back(fault.rule);
            }
        }
        for (const std::size_t rule : mended) {
            m_engine.written(rule);
        }
    }

    Step take(Reading& reading, const Rule& rule) {
        Value value;
        if (!reading.value(rule, reading.program().operand(rule, 0), value)) {
            return Step::FAILED;
        }
        const auto target = reading.program().parameter(rule.target());
        GetSetS request{};
        request.varid = target.key.var;
        request.varidx = varidx_of(target.key.index);
        request.rt = target.key.rt;
        const Parameter* const declared =
            m_engine.core().declared.find(target.key.var, target.key.index);
        const Target limits{
            declared != nullptr && declared->type == target.key.rt ? declared : nullptr,
            target.name};
        const bool is_filled = value.type == Value_type::TEXT
                                   ? fill_text(reading, rule, value.text, limits, request)
                                   : fill_number(reading, rule, value.number, limits, request);
        if (!is_filled) {
            return Step::FAILED;
        }
        m_engine.core().requests.push_back(request);
        return Step::NEXT;
    }

    // What is declared of the parameter that is written; null for nothing.
    struct Target {
        const Parameter* declared;
        std::string_view name;
    };

    static bool fill_text(Reading& reading, const Rule& rule, std::string_view text,
                          const Target& target, GetSetS& request) {
        if (target.declared != nullptr && text.size() > target.declared->length) {
            reading.report(rule, "a text of " + std::to_string(text.size()) +
                                     " bytes is too long for " + bracketed(target.name) +
                                     ", at most " + std::to_string(target.declared->length));
            return false;
        }
        if (text.size() > sizeof request.buffer) {
            reading.report(rule, "a text of " + std::to_string(text.size()) +
                                     " bytes cannot be written, at most " +
                                     std::to_string(sizeof request.buffer));
            return false;
        }
        request.length = static_cast<uint32_t>(text.size());
        std::copy(text.begin(), text.end(), request.buffer);
        return true;
    }

    static bool fill_number(Reading& reading, const Rule& rule, int64_t value, const Target& target,
                            GetSetS& request) {
        if (value < LOWEST || value > HIGHEST) {
            reading.report(rule, std::to_string(value) + " is not a 32-bit number");
            return false;
        }
        const Parameter* const declared = target.declared;
        if (declared != nullptr && (value < declared->min || value > declared->max)) {
            reading.report(rule, std::to_string(value) + " is beyond the limits of " +
                                     bracketed(target.name) + ", " +
                                     interval_text(declared->min, declared->max));
            return false;
        }
        const auto number = static_cast<int32_t>(value);
        request.length = sizeof number;
        std::memcpy(request.buffer, &number, sizeof number);
        return true;
    }

    // By the name that a rule of the entry gives the parameter.
    std::string request_text(const GetSetS& request) const {
        for (const Bound_list& list : m_engine.lists()) {
            for (std::size_t number = 0; number < list.program.parameter_count(); ++number) {
                const auto parameter = list.program.parameter(number);
                if (parameter.is_written && parameter.key.var == request.varid &&
                    varidx_of(parameter.key.index) == request.varidx) {
                    return bracketed(parameter.name) + " = " + written_text(request);
                }
            }
        }
        return "parameter " + std::to_string(request.varid) + " = " + written_text(request);
    }

    Suggestion<std::vector<GetSetS>> m_suggestion;
    bool m_is_refused = false;          // by the device, at least in part
    std::vector<std::size_t> m_rules;   // by number: whose each write of the suggestion is
    std::vector<std::size_t> m_judged;  // the same of the evaluation that is under way
};

}  // namespace

std::unique_ptr<Suggestion_maker> make_set(Engine& engine, const Rule_kind& kind) {
    return std::make_unique<Write_maker>(engine, kind);
}

}  // namespace frontpanel::binding_engine
