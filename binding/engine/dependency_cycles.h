// Finds the circles in which the bindings of a menu drive each other.
#ifndef FRONTPANEL_BINDING_ENGINE_DEPENDENCY_CYCLES_H
#define FRONTPANEL_BINDING_ENGINE_DEPENDENCY_CYCLES_H

#include <vector>

#include <frontpanel_binding/binding_report.h>

#include "engine/cascade.h"

namespace frontpanel::binding_engine {

// One circle for each group of parameters that all drive each other, those with writes first. A parameter
// drives another when some rule reads the one and writes the other, or limits it by a range or by keys.
// Conditions are not looked into. Linear in the number of such pairs.
std::vector<Binding_cycle> find_cycles(const Cascade& cascade);

}  // namespace frontpanel::binding_engine

#endif
