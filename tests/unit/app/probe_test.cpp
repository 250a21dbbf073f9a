#include "probe.h"

#include "menu_files.h"
#include "support/capture.h"

namespace frontpanel {
namespace {

TEST(Probe_table, HasALineForEachParameter) {
    Value_state fresh;
    fresh.age = std::chrono::milliseconds(1250);
    Value_state unknown;
    unknown.freshness = Freshness::UNKNOWN;
    unknown.has_failed = true;
    unknown.reason = "no route";
    EXPECT_EQ(probe_table({{"plc", "gain", -7, fresh},
                           {"plc", "name of it", std::string("a\x1b"), fresh},
                           {"far away", "x", std::nullopt, unknown}}),
              "PARAMETER   DRIVER    VALUE  AGE    ERROR\n"
              "gain        plc       -7     1.2 s\n"
              "name of it  plc       \"a?\"   1.2 s\n"
              "x           far away  --     --     no route\n");
}

TEST(Probe_table, ColumnsCountCharacters) {
    Value_state fresh;
    EXPECT_EQ(
        probe_table({{"plc", "Größe", std::string("5 °C"), fresh}, {"plc", "x", 12345, fresh}}),
        "PARAMETER  DRIVER  VALUE   AGE    ERROR\n"
        "Größe      plc     \"5 °C\"  0.0 s\n"
        "x          plc     12345   0.0 s\n");
}

class Probe_test : public Driven_menu_files {
protected:
    support::Captured probe_of(const std::string& parameters) {
        options.probe = true;
        options.menu = write("driven.json", R"({"device": {
            "drivers": {"files": {"driver": "file"}}, "parameters": [)" +
                                                parameters + R"(]},
            "menu": {"name": "Main", "items": [{"type": "range", "name": "Gain", "pid": 1}]}})");
        return support::capture(0, [this] {
            Output_log log(options.log);
            status = probe(options, log);
        });
    }

    int status = -1;
};

constexpr const char* GAIN =
    R"({"name": "gain", "pid": 1, "type": "integer", "min": 0, "max": 9, "source": {"path": "value"}})";

TEST_F(Probe_test, EveryParameterIsReadOnce) {
    write("value", "7");
    const std::string table = probe_of(GAIN).out;
    EXPECT_EQ(table.substr(0, 70),
              "PARAMETER  DRIVER  VALUE  AGE    ERROR\n"
              "gain       files   7      0.0 s")
        << table;
    EXPECT_EQ(status, EXIT_PLAYED);
}

TEST_F(Probe_test, AParameterThatCannotBeReadChangesTheStatus) {
    EXPECT_EQ(probe_of(GAIN).out,
              "PARAMETER  DRIVER  VALUE  AGE  ERROR\n"
              "gain       files   --     --   No such file or directory\n");
    EXPECT_EQ(status, EXIT_DIFFERENCE);
}

TEST_F(Probe_test, AMenuWithoutDriversIsAMistake) {
    Output_log log(options.log);
    EXPECT_EQ(error_of([&] { probe(options, log); }),
              options.menu + ": no parameter lives at a driver");
}

}  // namespace
}  // namespace frontpanel
