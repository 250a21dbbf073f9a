#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

constexpr const char* PARAMETERS = R"(
    {"name": "mode", "pid": 5, "type": "integer", "min": 0, "max": 2, "value": 1},
    {"name": "input 1 gain", "pid": 6, "index": [1], "type": "integer", "min": -60, "max": 12, "value": 3},
    {"name": "label", "pid": 7, "type": "text", "length": 8, "value": "abc"})";

std::string with_items(const std::string& items) {
    return menu_text(PARAMETERS, items, R"({"gps": 1})");
}

TEST(Circles, CirclesOfWritesAreErrorsAndThoseOfLimitsWarnings) {
    const std::string writes = with_items(R"(
        {"type": "range", "name": "Mode", "parameter": "mode",
         "binding": "set [input 1 gain] = value if value > 1"},
        {"type": "range", "name": "Gain", "parameter": "input 1 gain",
         "binding": "set [mode] = 0 if value > 3"})");
    EXPECT_NE(error_of(writes).find("rules that write drive each other in a circle: "),
              std::string::npos)
        << error_of(writes);
    const std::string limits = with_items(R"(
        {"type": "range", "name": "Mode", "parameter": "mode",
         "binding": "range 0..[input 1 gain]"},
        {"type": "range", "name": "Gain", "parameter": "input 1 gain",
         "binding": "range [mode]..12"})");
    Simulated_menu loaded = simulated_text(limits);
    ASSERT_EQ(loaded.warnings.size(), 1U);
    EXPECT_NE(loaded.warnings[0].find("warning: rules limit each other in a circle: "),
              std::string::npos)
        << loaded.warnings[0];
}

}  // namespace
}  // namespace frontpanel
