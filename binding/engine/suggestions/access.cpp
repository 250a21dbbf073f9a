#include "engine/suggestions/suggestion_maker.h"

namespace frontpanel::binding_engine {
namespace {

using Access = Data_entry::Data_access;

const char* access_text(Access access) {
    switch (access) {
        case Data_entry::READ_ONLY:
            return "read-only";
        case Data_entry::READ_WRITE:
            return "read-write";
        case Data_entry::WRITE_ONLY:
            return "write-only";
    }
    return "unknown";
}

// The right of the first rule that holds; without one, the entry's own.
class Access_maker : public Suggestion_maker {
public:
    using Suggestion_maker::Suggestion_maker;

    void decide(Reading& reading, bool updates) override {
        const Data_entry* const entry = m_engine.entry();
        Access access = entry != nullptr ? entry->Get_orig_access_type() : Data_entry::READ_WRITE;
        const bool is_decided = each_rule_that_holds(reading, [&](const Rule& rule) {
            access = static_cast<Access>(rule.detail);
            return Step::LAST;
        });
        if (is_decided && updates) {
            m_suggestion.suggest(access);
        }
    }

    void judge(Reading& reading, Judgement& judgement) override {
        std::optional<Access> access;
        const bool is_decided = each_rule_that_holds(reading, [&](const Rule& rule) {
            access = static_cast<Access>(rule.detail);
            return Step::LAST;
        });
        if (is_decided) {
            judgement.verdict.access = access;
        } else {
            judgement.verdict.failed_kinds |= SUGGESTION_ACCESS;
        }
    }

    std::optional<std::string> demand(Reading& /*reading*/, const Rule& rule) override {
        return access_text(static_cast<Access>(rule.detail));
    }

    int updated() const override { return m_suggestion.is_updated ? SUGGESTION_ACCESS : 0; }

    void clear(int mask) override {
        if ((mask & SUGGESTION_ACCESS) != 0) {
            m_suggestion.is_updated = false;
        }
    }

    void get(void* out) const override {
        if (m_suggestion.is_known) {
            *static_cast<Access*>(out) = m_suggestion.value;
        }
    }

    std::vector<std::string> lines() const override {
        if (!m_suggestion.is_known) {
            return {};
        }
        return {std::string("access ") + access_text(m_suggestion.value)};
    }

private:
    Suggestion<Access> m_suggestion;
};

}  // namespace

std::unique_ptr<Suggestion_maker> make_access(Engine& engine, const Rule_kind& kind) {
    return std::make_unique<Access_maker>(engine, kind);
}

}  // namespace frontpanel::binding_engine
