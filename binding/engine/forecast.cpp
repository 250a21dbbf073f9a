#include "engine/forecast.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

#include <frontpanel_binding/device_value.h>

#include "engine/done_list.h"
#include "engine/suggestions/suggestion_maker.h"

namespace frontpanel::binding_engine {
namespace {

// Faults are not reported: the values are only tried.
Judgement judgement_of(Engine& engine, int kinds, const Proposed_values& values) {
    Judgement judgement;
    std::vector<std::string> errors = engine.exchange_errors({});
    for (const Rule_kind& kind : rule_kinds()) {
        Suggestion_maker* const maker =
            (kinds & kind.suggestion) != 0 ? engine.find_maker(kind.suggestion) : nullptr;
        if (maker != nullptr) {
            Reading reading(engine, kind.judges_tries, values);
            maker->judge(reading, judgement);
        }
    }
    engine.exchange_errors(std::move(errors));
    return judgement;
}

// Rules write when their list changes, as they do on the device.
class Forecast {
public:
    explicit Forecast(const Proposed_values& wanted) : m_wanted(wanted), m_values(wanted) {}

    // Whether the engine's writes changed a value.
    bool let_write(Engine& engine) {
        const Judgement judgement = judgement_of(engine, SUGGESTION_SET, m_values);
        if (!judgement.writes) {
            return false;
        }
        auto& done = m_done.try_emplace(&engine, done_by(engine)).first->second;
        if (done == *judgement.writes) {
            return false;
        }
        done = *judgement.writes;
        bool changes = false;
        for (const GetSetS& request : done) {
            changes = write(request) || changes;
        }
        return changes;
    }

    Proposed_values take() && { return std::move(m_values); }

private:
    static std::vector<GetSetS> done_by(const Engine& engine) {
        std::vector<GetSetS> writes;
        engine.find_maker(SUGGESTION_SET)->get(&writes);
        return writes;
    }

    bool write(const GetSetS& request) {
        const Device_variable target{request.varid, request.varidx};
        if (m_wanted.count(target) != 0) {
            return false;
        }
        return_s value = value_of(request);
        const auto known = m_values.find(target);
        if (known != m_values.end() && is_same_value(known->second, value)) {
            return false;
        }
        m_values[target] = std::move(value);
        return true;
    }

    const Proposed_values& m_wanted;
    Proposed_values m_values;
    std::map<const Engine*, std::vector<GetSetS>> m_done;
};

}  // namespace

Rule_verdict judge(Engine& engine, const Proposed_values& values) {
    constexpr int ALL_BUT_WRITES = ~SUGGESTION_SET;
    return judgement_of(engine, ALL_BUT_WRITES, values).verdict;
}

std::optional<bool> visibility_now(Engine& engine) {
    return judgement_of(engine, SUGGESTION_VISIBILITY, {}).verdict.is_visible;
}

Proposed_values foresee(const Cascade& cascade, const Proposed_values& values) {
    Forecast forecast(values);
    bool changes = true;
    for (int round = 0; changes && round < Cascade::MOST_REFRESHES; ++round) {
        changes = false;
        for (const auto& [number, engine] : cascade.engines()) {
            if (engine->offers(SUGGESTION_SET)) {
                changes = forecast.let_write(*engine) || changes;
            }
        }
    }
    return std::move(forecast).take();
}

}  // namespace frontpanel::binding_engine
