#include "engine/suggestions/suggestion_maker.h"

namespace frontpanel::binding_engine {
namespace {

// Shown while any rule holds.
class Visibility_maker : public Suggestion_maker {
public:
    using Suggestion_maker::Suggestion_maker;

    void decide(Reading& reading, bool updates) override {
        int visibility = VIS_FALSE;
        const bool is_decided = each_rule_that_holds(reading, [&](const Rule&) {
            visibility = VIS_TRUE;
            return Step::LAST;
        });
        if (is_decided && updates) {
            m_suggestion.suggest(visibility);
        }
    }

    void judge(Reading& reading, Judgement& judgement) override {
        bool is_visible = false;
        const bool is_decided = each_rule_that_holds(reading, [&](const Rule&) {
            is_visible = true;
            return Step::LAST;
        });
        if (is_decided) {
            judgement.verdict.is_visible = is_visible;
        } else {
            judgement.verdict.failed_kinds |= SUGGESTION_VISIBILITY;
        }
    }

    std::optional<std::string> demand(Reading& /*reading*/, const Rule& /*rule*/) override {
        return "visible";
    }

    int updated() const override { return m_suggestion.is_updated ? SUGGESTION_VISIBILITY : 0; }

    void clear(int mask) override {
        if ((mask & SUGGESTION_VISIBILITY) != 0) {
            m_suggestion.is_updated = false;
        }
    }

    void get(void* out) const override {
        *static_cast<int*>(out) = m_suggestion.is_known ? m_suggestion.value : VIS_TRUE;
    }

    std::vector<std::string> lines() const override {
        if (!m_suggestion.is_known) {
            return {};
        }
        return {m_suggestion.value > 0 ? "visible" : "hidden"};
    }

private:
    Suggestion<int> m_suggestion;
};

}  // namespace

std::unique_ptr<Suggestion_maker> make_visibility(Engine& engine, const Rule_kind& kind) {
    return std::make_unique<Visibility_maker>(engine, kind);
}

}  // namespace frontpanel::binding_engine
