// Why an entry is as it is.
#ifndef FRONTPANEL_BINDING_ENGINE_EXPLANATION_H
#define FRONTPANEL_BINDING_ENGINE_EXPLANATION_H

#include <frontpanel_binding/binding_report.h>

#include "engine/engine.h"

namespace frontpanel::binding_engine {

// Evaluates every rule. Suggestions and errors stay as they are.
Binding_explanation explain(Engine& engine);

}  // namespace frontpanel::binding_engine

#endif
