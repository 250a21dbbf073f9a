#include <algorithm>

#include "check/checks.h"

namespace frontpanel {

// A circle of writes may never come to rest. Limits that follow each other do, and are often meant so.
void check_circles(const Built_menu& built, Problems& problems) {
    for (const Binding_cycle& cycle : built.menu.bindings()->find_cycles()) {
        const auto step = std::find_if(cycle.steps.begin(), cycle.steps.end(),
                                       [&built](const Binding_cycle::Step& candidate) {
                                           return built.rules.count(candidate.entry) > 0;
                                       });
        if (step == cycle.steps.end()) {
            continue;
        }
        const Place& place = built.rules.at(step->entry);
        if (cycle.kind == Binding_cycle::Kind::WRITES) {
            problems.report(place,
                            "rules that write drive each other in a circle: " + cycle.text());
        } else {
            problems.warn(place, "rules limit each other in a circle: " + cycle.text());
        }
    }
}

}  // namespace frontpanel
