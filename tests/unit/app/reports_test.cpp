#include "reports.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include <frontpanel_base/json_document.h>
#include <frontpanel_simulator/state_file.h>

#include "menu_files.h"
#include "rule_state.h"
#include "support/capture.h"

namespace frontpanel {
namespace {

class Reports_test : public Menu_files {
protected:
    std::string report_of() {
        return support::capture(0, [this] { status = report(options); }).out;
    }
    std::string check_of() {
        return support::capture(0,
                                [this] {
                                    Output_log log(options.log);
                                    status = check(options, log);
                                })
            .out;
    }

    int status = -1;
};

TEST_F(Reports_test, AreAskedForByTheirOptions) {
    EXPECT_FALSE(is_report(options));
    options.dump = "table";
    EXPECT_TRUE(is_report(options));
    options = {};
    options.graph = true;
    EXPECT_TRUE(is_report(options));
    options = {};
    options.explain = "Gain";
    EXPECT_TRUE(is_report(options));
}

TEST_F(Reports_test, AMenuThatWasReadIsNotReadAgain) {
    auto document = std::make_unique<Menu_document>(options.menu);
    std::filesystem::remove(options.menu);
    options.dump = "table";
    const std::string printed =
        support::capture(0, [&] { status = report(options, std::move(document)); }).out;
    EXPECT_EQ(status, EXIT_PLAYED);
    EXPECT_NE(printed.find("Gain"), std::string::npos) << printed;
}

TEST_F(Reports_test, ACheckReportsWhatTheNamedDisplayCannotShow) {
    write(
        "menu.json",
        R"({"device": {"parameters": [{"pid": 1, "type": "integer", "min": 0, "max": 9, "value": 5}]},
        "menu": {"name": "Ger\u00e4t", "items": [
            {"type": "range", "name": "R", "pid": 1, "format": "%d k\u03a9"}]}})");
    const auto errors_of = [this](const char* display) {
        options.display = display == nullptr ? Display_choice() : parse_display(display);
        return support::capture(0,
                                [this] {
                                    Output_log log(options.log);
                                    status = check(options, log);
                                })
            .err;
    };
    EXPECT_EQ(errors_of(nullptr), "");
    EXPECT_EQ(errors_of("charlcd"), "");
    EXPECT_EQ(errors_of("text"), "");
    EXPECT_EQ(errors_of("lcdproc"), options.menu +
                                        ":3:64: warning: the display cannot show "
                                        "\"\u03a9\" (U+03A9)\n");
    options.rom = &Character_rom::iso_8859_1();
    EXPECT_EQ(errors_of("charlcd"), "");
    EXPECT_EQ(status, EXIT_PLAYED);
}

TEST_F(Reports_test, AUtf8TextIsItselfInADump) {
    write(
        "menu.json",
        R"({"device": {"parameters": [{"pid": 1, "type": "integer", "min": 0, "max": 9, "value": 5}]},
        "menu": {"name": "Ger\u00e4t", "items": [
            {"type": "range", "name": "R", "pid": 1, "format": "%d k\u03a9"},
            {"type": "range", "name": "S", "pid": 1}]}})");
    options.dump = "table";
    EXPECT_EQ(report_of(),
              "entry  type   parameter  value  state\n"
              "Ger\u00e4t  node\n"
              "  R    range  1          5 k\u03a9   allowed 0..9\n"
              "  S    range  1          5      allowed 0..9\n");
    options.dump = "json";
    const std::string text = report_of();
    EXPECT_NE(text.find("\"value\": \"5 k\u03a9\""), std::string::npos) << text;
}

TEST_F(Reports_test, ADumpIsATable) {
    options.dump = "table";
    EXPECT_EQ(report_of(),
              "entry   type   parameter  value  state\n"
              "Main    node\n"
              "  Gain  range  1          5      allowed 0..9\n");
    EXPECT_EQ(status, EXIT_PLAYED);
}

TEST_F(Reports_test, ADumpForProgramsIsJson) {
    options.dump = "json";
    const std::string text = report_of();
    const Source source{"dump", 0};
    const Json_document document(source, text);
    const Json_node* const entries = document.root().member("entries");
    ASSERT_NE(entries, nullptr) << text;
    ASSERT_EQ(entries->elements().size(), 2U);
    const Json_node& gain = entries->elements()[1];
    EXPECT_EQ(gain.member("path")->text(), "Gain");
    EXPECT_EQ(gain.member("parameter")->text(), "1");
    EXPECT_EQ(gain.member("value")->text(), "5");
    EXPECT_EQ(gain.member("allowed")->text(), "0..9");
    EXPECT_EQ(gain.member("access")->text(), "read-write");
    EXPECT_TRUE(gain.member("shown")->boolean());
    EXPECT_TRUE(gain.member("hidden")->is(Json_node::Kind::NOTHING));
}

TEST_F(Reports_test, TheyShowTheStateAndWhatAScriptMakesOfIt) {
    options.dump = "table";
    const auto gain_line = [this] {
        const std::string text = report_of();
        return text.substr(text.rfind("  Gain"));
    };
    const std::string state = R"({"version": 1, "values": [
{"pid":1,"index":0,"integer":7}
], "selections": [
]}
)";
    options.state = write("values", state);
    EXPECT_EQ(gain_line(), "  Gain  range  1          7      allowed 0..9\n");
    options.script = write("up.script", "select\nup\nselect\nexpect-write 1 8\n");
    EXPECT_EQ(gain_line(), "  Gain  range  1          8      allowed 0..9\n");
    EXPECT_EQ(status, EXIT_PLAYED);
    std::ifstream file(options.state);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), state);
    options.script = write("down.script", "select\ndown\nselect\nexpect-write 1 8\n");
    EXPECT_EQ(gain_line(), "  Gain  range  1          6      allowed 0..9\n");
    EXPECT_EQ(status, EXIT_DIFFERENCE);
}

// A program that takes a value and never answers.
TEST_F(Reports_test, AWriteOfTheScriptThatTheDeviceDoesNotConfirmIsNamed) {
    if (!support::has_driver("process")) {
        GTEST_SKIP() << "built without the driver for programs";
    }
    write("adapter.sh", R"(
echo '{"type": "hello", "version": 1}'
read -r hello
read -r request
echo '{"type": "result", "id": 1, "value": 5}'
cat > /dev/null
)");
    options.menu = write("driven.json", R"({"device": {
        "drivers": {"room": {"driver": "process", "command": ["sh", "adapter.sh"],
                             "timeout": "10s"}},
        "parameters": [{"name": "gain", "pid": 1, "type": "integer", "min": 0, "max": 9,
                        "source": {"name": "gain"}}]},
        "menu": {"name": "Main", "items": [{"type": "range", "name": "Gain", "pid": 1}]}})");
    options.dump = "table";
    options.script = write("up.script", "select\nup\nselect\n");
    const support::Captured captured = support::capture(0, [this] { status = report(options); });
    EXPECT_EQ(captured.err,
              "frontpanel: room: gain: not written: no answer: it may or may not have been "
              "written\n");
    EXPECT_EQ(status, EXIT_DIFFERENCE);
}

// A person changed what a rule had written before the restart.
TEST_F(Reports_test, ARuleDoesNotActAgainOnTheStateThatIsRestored) {
    options.menu = write("rules.json", R"({"device": {"parameters": [
        {"name": "mode", "pid": 1, "type": "integer", "min": 0, "max": 9, "value": 1},
        {"name": "gain", "pid": 2, "type": "integer", "min": 0, "max": 99, "value": 5}]},
        "menu": {"name": "Main", "items": [
            {"type": "range", "name": "Mode", "parameter": "mode",
             "binding": "set [gain] = 50 if [mode] == 1"},
            {"type": "range", "name": "Gain", "parameter": "gain"}]}})");
    options.dump = "table";
    EXPECT_NE(report_of().find("Gain  range  2          50 "), std::string::npos);
    options.state = folder.file("values");
    {
        const Loaded_panel loaded = load_panel(options.menu, Cards::OFF, 20);
        State_file file(options.state, loaded.device->memory(), nullptr);
        loaded.menu->bindings()->poll();
        loaded.menu->bindings()->settle();
        loaded.device->memory().set_integer(2, 0, 60);
        keep_rules(*loaded.menu, file);
        file.save();
    }
    EXPECT_NE(report_of().find("Gain  range  2          60 "), std::string::npos) << report_of();
}

TEST_F(Reports_test, AFaultThatAScriptBeginsIsExplained) {
    options.menu = write("rules.json", R"({"device": {"parameters": [
        {"name": "mode", "pid": 1, "type": "integer", "min": 0, "max": 9, "value": 1},
        {"name": "gain", "pid": 2, "type": "integer", "min": 0, "max": 99, "value": 5}]},
        "menu": {"name": "Main", "items": [
            {"type": "range", "name": "Mode", "parameter": "mode", "binding": "set [gain] = [mode]"},
            {"type": "range", "name": "Gain", "parameter": "gain"}]}})");
    options.explain = "Mode";
    EXPECT_EQ(report_of().find("fault: "), std::string::npos);
    options.script = write("fail.script", "fail write gain on\nset mode 7\ntick\n");
    EXPECT_NE(report_of().find("rules.json:5:80: cannot write [gain] = 7: device result"),
              std::string::npos)
        << report_of();
}

TEST_F(Reports_test, CardsRunWhileAScriptIsPlayed) {
    options.menu = write("cards.json", R"({"device": {"parameters": [], "cards": [{"slot": 3,
        "combo-boxes": [{"pid": 9063, "options": ["Sport", "News"], "selected": 1}]}]},
        "menu": {"name": "Main", "items": [{"type": "enum", "name": "Preset", "pid": 9063,
            "live": {"slot": 3, "web-type": "combobox"}}]}})");
    options.dump = "table";
    EXPECT_EQ(report_of().find("News"), std::string::npos);
    options.script = write("wait.script", "tick 12\nexpect 1 |>*News|\n");
    EXPECT_NE(report_of().find("News"), std::string::npos);
    EXPECT_EQ(status, EXIT_PLAYED);
    for (const char* const kind : {"-json", "-json.gz", "-post"}) {
        unlink(("/tmp/9063" + std::string(kind)).c_str());
    }
}

TEST_F(Reports_test, AGraphIsForGraphviz) {
    options.graph = true;
    const std::string graph = report_of();
    EXPECT_EQ(graph.rfind("digraph", 0), 0U) << graph;
    EXPECT_NE(graph.find("Gain"), std::string::npos) << graph;
}

TEST_F(Reports_test, AnEntryIsExplainedByItsId) {
    options.explain = "gain";
    EXPECT_NE(report_of().find("Gain"), std::string::npos);
    options.explain = "absent";
    EXPECT_EQ(error_of([this] { report_of(); }), "the menu has no entry \"absent\"");
}

TEST_F(Reports_test, ACheckCountsTheEntries) {
    EXPECT_EQ(check_of(), options.menu + ": a menu of 2 entries\n");
    EXPECT_EQ(status, EXIT_PLAYED);
}

TEST_F(Reports_test, ACheckReadsTheScriptToo) {
    options.script = write("a.script", "jump\n");
    EXPECT_EQ(error_of([this] { check_of(); }), options.script + ":1: unknown word \"jump\"");
}

TEST_F(Reports_test, ACheckReadsThePresetsToo) {
    write("menu.json", R"({"device": {"parameters": [
        {"name": "gain", "pid": 1, "type": "integer", "min": 0, "max": 9, "value": 5}]},
        "menu": {"name": "Main", "items": [
            {"type": "mount", "name": "Presets", "folder": "."}]}})");
    EXPECT_EQ(error_of([this] { check_of(); }),
              folder.file("./menu.json") + ":1:2: the device has no parameter \"device\"");
}

TEST_F(Reports_test, OutputThatCannotBeWrittenIsAnError) {
    EXPECT_EQ(error_of([] { check_written(true); }), "standard output cannot be written");
    EXPECT_EQ(error_of([] { check_written(false); }), "");
}

}  // namespace
}  // namespace frontpanel
