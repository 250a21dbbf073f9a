#include "engine/suggestions/suggestion_maker.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace frontpanel::binding_engine {
namespace {

// The warnings of one try. An entry refuses a value that raises news, and takes it when it is tried again: so
// what a person agreed to is stored. A try without any is no news, and arms the next.
class Warning_maker : public Suggestion_maker {
public:
    using Suggestion_maker::Suggestion_maker;

    void decide(Reading& reading, bool updates) override {
        if (!updates) {
            return;
        }
        m_warnings.swap(m_warnings_before);
        const std::size_t count_before = std::exchange(m_count, 0);
        each_rule_that_holds(reading, [&](const Rule& rule) {
            take(reading, rule);
            return Step::NEXT;
        });
        const unsigned int round = m_engine.core().warning_round;
        const bool is_armed = std::exchange(m_round, round) != round;
        const bool is_same = !is_armed && m_count == count_before &&
                             std::equal(m_warnings.cbegin(), end(), m_warnings_before.cbegin());
        m_is_updated = m_count > 0 && (m_is_updated || !is_same);
    }

    void judge(Reading& reading, Judgement& judgement) override {
        each_rule_that_holds(reading, [&](const Rule& rule) {
            Value text;
            if (reading.value(rule, reading.program().operand(rule, 0), text)) {
                judgement.verdict.warnings.emplace_back(text.text);
            }
            return Step::NEXT;
        });
    }

    std::optional<std::string> demand(Reading& reading, const Rule& rule) override {
        Value text;
        if (!reading.value(rule, reading.program().operand(rule, 0), text)) {
            return std::nullopt;
        }
        return quoted(text.text);
    }

    int updated() const override { return m_is_updated ? SUGGESTION_WARNING : 0; }

    void clear(int mask) override {
        if ((mask & SUGGESTION_WARNING) != 0) {
            m_is_updated = false;
        }
    }

    void get(void* out) const override {
        static_cast<std::vector<std::string>*>(out)->assign(m_warnings.begin(), end());
    }

    std::vector<std::string> lines() const override {
        std::vector<std::string> lines;
        std::transform(m_warnings.begin(), end(), std::back_inserter(lines),
                       [](const std::string& warning) { return "warn " + quoted(warning); });
        return lines;
    }

private:
    std::vector<std::string>::const_iterator end() const {
        return m_warnings.begin() + static_cast<std::ptrdiff_t>(m_count);
    }

    void take(Reading& reading, const Rule& rule) {
        Value text;
        if (!reading.value(rule, reading.program().operand(rule, 0), text)) {
            return;
        }
        if (m_count == m_warnings.size()) {
            m_warnings.emplace_back();
        }
        m_warnings[m_count++].assign(text.text);
    }

    std::vector<std::string> m_warnings;  // the first `m_count` count
    std::size_t m_count = 0;
    std::vector<std::string> m_warnings_before;  // of the try before; keeps its memory
    bool m_is_updated = false;
    unsigned int m_round = 0;  // of the core, at the last try
};

}  // namespace

std::unique_ptr<Suggestion_maker> make_warning(Engine& engine, const Rule_kind& kind) {
    return std::make_unique<Warning_maker>(engine, kind);
}

}  // namespace frontpanel::binding_engine
