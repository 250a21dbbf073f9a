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
    const auto limits = [](const std::string& mode, const std::string& gain) {
        return simulated_text(with_items(R"(
            {"type": "range", "name": "Mode", "parameter": "mode", )" +
                                         mode + R"(},
            {"type": "range", "name": "Gain", "parameter": "input 1 gain", )" +
                                         gain + "}"))
            .warnings;
    };
    const char* const MODE = R"("binding": "range 0..[input 1 gain]")";
    EXPECT_EQ(limits(MODE, R"("binding": "range [mode]..12")"), Lines{});
    for (const char* const gain :
         {R"("binding": "range -60..[mode]")", R"("binding": "range [mode]..12 if [mode] > 1")",
          R"("binding": "range [mode]..[mode] + 2")"}) {
        const Lines warnings = limits(MODE, gain);
        ASSERT_EQ(warnings.size(), 1U) << gain;
        EXPECT_NE(warnings[0].find("warning: rules limit each other in a circle: "),
                  std::string::npos)
            << warnings[0];
        EXPECT_EQ(limits(MODE, gain + std::string(R"(, "allow_circle": true)")), Lines{});
    }
}

TEST(Circles, ACircleInEveryCopyIsReportedOnce) {
    Simulated_menu loaded = simulated_text(R"({"device": {"parameters": [
        {"name": "a {i}", "pid": 5, "index": ["{i}"], "type": "integer", "min": 0, "max": 9, "value": 1,
         "repeat": {"counter": "i", "from": 1, "to": 3}},
        {"name": "b {i}", "pid": 6, "index": ["{i}"], "type": "integer", "min": 0, "max": 9, "value": 1,
         "repeat": {"counter": "i", "from": 1, "to": 3}}]},
        "menu": {"name": "Main", "items": [{"type": "node", "name": "N {i}", "items": [
            {"type": "range", "name": "A", "parameter": "a {i}", "binding": "range 0..[b {i}]"},
            {"type": "range", "name": "B", "parameter": "b {i}", "binding": "range 0..[a {i}]"}],
            "repeat": {"counter": "i", "from": 1, "to": 3}}]}})");
    ASSERT_EQ(loaded.warnings.size(), 1U);
    EXPECT_NE(loaded.warnings[0].find("circle: A -> B -> A (i = 1)"), std::string::npos)
        << loaded.warnings[0];
}

}  // namespace
}  // namespace frontpanel
