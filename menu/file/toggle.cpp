#include "file/toggle.h"

#include <frontpanel_data/evaluator.h>

#include <algorithm>

namespace frontpanel {

// A value with its sign takes the most room.
std::optional<std::string> toggle_error(const std::string& expression) {
    constexpr const char* VALUE = "-1";
    constexpr int OUT_OF_STACK = 4;
    std::string text;
    size_t done = 0;
    for (size_t open = expression.find('['); open != std::string::npos;
         open = expression.find('[', done)) {
        text += expression.substr(done, open - done) + VALUE;
        done = std::min(expression.find(']', open), expression.size() - 1) + 1;
    }
    text += expression.substr(done);
    if (evaluateExpression(text.data()) == 0) {
        return std::nullopt;
    }
    return evalKernel_pcb.exit_flag == OUT_OF_STACK
               ? "this condition is too deeply nested for the homescreen"
               : std::string("this condition is none for the homescreen: ") + errorRecord.message;
}

}  // namespace frontpanel
