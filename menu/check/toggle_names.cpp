#include "check/checks.h"
#include "file/toggle.h"

namespace frontpanel {

void check_toggle_names(const Built_menu& built) {
    if (!built.has_toggles) {
        return;
    }
    for (const auto& [place, text] : built.display_expressions) {
        for (const std::string& name : variables_of(text)) {
            if (name < TOGGLE_RESULT) {
                place.report("\"" + name + "\" sorts before \"" + TOGGLE_RESULT +
                             "\", in which toggles yield their result");
            }
        }
    }
}

}  // namespace frontpanel
