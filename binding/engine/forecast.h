// What rules would say and write if the device held other values.
#ifndef FRONTPANEL_BINDING_ENGINE_FORECAST_H
#define FRONTPANEL_BINDING_ENGINE_FORECAST_H

#include <optional>

#include <frontpanel_binding/rule_verdict.h>

#include "engine/engine.h"

namespace frontpanel::binding_engine {

Rule_verdict judge(Engine& engine, const Proposed_values& values);
// The result of the visibility rules now; empty without such a rule, or when one fails.
std::optional<bool> visibility_now(Engine& engine);
// The values, and beside them what write rules would then write: see `Binding_registry::foresee`.
Proposed_values foresee(const Cascade& cascade, const Proposed_values& values);

}  // namespace frontpanel::binding_engine

#endif
