#include <frontpanel_data/evaluator.h>

#include <cstdlib>

#include "unit/menu/links_fixture.h"

namespace frontpanel {
namespace {

// A variable outlives its expression: "Half" would take the results of the other tests' toggles.
void forget_variables() {
    while (nVariables > 0) {
        --nVariables;
        std::free(variable[nVariables].name);
    }
}

TEST(ToggleNames, ADisplayExpressionMayNotTakeTheTogglesResultAway) {
    const std::string home = R"("homescreen": [{"target": "Gain", "toggle": "[mute] == 1"}])";
    const auto with_expression = [](const std::string& expression) {
        return R"({"type": "range", "name": "Gain", "parameter": "gain 1", "value_format": ")" +
               expression + "\"}";
    };
    const std::string capital = with_items(with_expression("(Half=v/2)"), home);
    EXPECT_EQ(error_of(capital),
              placed(capital,
                     "menu.json: /menu/items/0/value_format: \"Half\" sorts before \"a\", in which "
                     "toggles yield their result"));
    EXPECT_EQ(error_of(with_items(with_expression("1E2*exp(v)"), home)), "");
    EXPECT_EQ(error_of(with_items(with_expression("(Half=v/2)"))), "");
    forget_variables();
}

}  // namespace
}  // namespace frontpanel
