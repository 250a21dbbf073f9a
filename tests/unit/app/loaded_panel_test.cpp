#include "loaded_panel.h"

#include <signal.h>

#include <cerrno>
#include <filesystem>
#include <fstream>

#include <frontpanel_base/input_error.h>
#include <frontpanel_base/problems.h>
#include "driver_table.h"
#include "menu_files.h"

namespace frontpanel {
namespace {

class Loaded_panel_test : public Menu_files {};

TEST_F(Loaded_panel_test, IsAMenuOverTheDeviceThatTheFileDescribes) {
    const Loaded_panel loaded = load_panel(options.menu, Cards::OFF, 20);
    EXPECT_EQ(loaded.menu->entry_count(), 2U);
    EXPECT_EQ(loaded.device->memory().integer(1, 0), 5);
    EXPECT_EQ(loaded.device->cards(), nullptr);
    EXPECT_TRUE(loaded.warnings.empty());
    int32_t value = 0;
    EXPECT_EQ(loaded.menu->access().Get(1, 0, &value, sizeof value), 0);
    EXPECT_EQ(value, 5);
}

TEST_F(Loaded_panel_test, WarnsOfWhatTheDisplayCannotShowAtOnce) {
    options.menu = write("long.json", R"({"device": {"parameters": [
        {"pid": 1, "type": "integer", "min": 0, "max": 9, "value": 5}]},
        "menu": {"name": "Main", "items": [
            {"type": "range", "name": "Temperature out", "pid": 1}]}})");
    EXPECT_TRUE(load_panel(options.menu, Cards::OFF, 20).warnings.empty());
    EXPECT_EQ(load_panel(options.menu, Cards::OFF, 16).warnings.size(), 1U);
}

class Loaded_driven_panel_test : public Driven_menu_files {
protected:
    Loaded_driven_panel_test() {
        write("value", "7");
        options.menu = write("driven.json", R"({"device": {
            "drivers": {"files": {"driver": "file"}}, "parameters": [
            {"pid": 1, "type": "integer", "min": 3, "max": 9, "source": {"path": "value"}},
            {"pid": 2, "type": "integer", "min": 0, "max": 9, "value": 4},
            {"pid": 3, "type": "integer", "min": 0, "max": 9, "source": {"path": "missing"}}]},
            "menu": {"name": "Main", "items": [{"type": "range", "name": "Gain", "pid": 1}]}})");
    }
    static std::optional<int32_t> value_of(const Loaded_panel& loaded, uint32_t pid) {
        int32_t value = 0;
        return loaded.menu->access().Get(pid, 0, &value, sizeof value) == 0
                   ? std::optional<int32_t>(value)
                   : std::nullopt;
    }
};

TEST_F(Loaded_driven_panel_test, ParametersLiveAtDriversOrAreSimulated) {
    const Loaded_panel loaded = load_panel(options.menu, Cards::OFF, 20);
    ASSERT_NE(loaded.driven, nullptr);
    EXPECT_TRUE(loaded.warnings.empty());
    loaded.driven->cache().start();
    loaded.driven->cache().read_all(std::chrono::seconds(10));
    EXPECT_EQ(value_of(loaded, 1), 7);
    EXPECT_EQ(value_of(loaded, 2), 4);
    EXPECT_EQ(value_of(loaded, 3), std::nullopt);
    EXPECT_EQ(loaded.device->memory().integer(1, 0), std::nullopt);
}

TEST_F(Loaded_driven_panel_test, TheSimulatorTakesThePlaceOfEveryDriver) {
    const Loaded_panel loaded = load_panel(options.menu, Cards::OFF, 20, Drivers::SIMULATED);
    EXPECT_EQ(loaded.driven, nullptr);
    EXPECT_EQ(value_of(loaded, 1), 3);
    EXPECT_EQ(value_of(loaded, 3), 0);
}

TEST_F(Loaded_driven_panel_test, AMistakeOfASourceIsOneWithASimulatorToo) {
    options.menu = write("wrong.json", R"({"device": {
        "drivers": {"files": {"driver": "file"}}, "parameters": [
        {"pid": 1, "type": "integer", "min": 3, "max": 9, "source": {"path": "value", "pol": "1s"}}]},
        "menu": {"name": "Main", "items": [{"type": "range", "name": "Gain", "pid": 1}]}})");
    for (const Drivers drivers : {Drivers::LOADED, Drivers::SIMULATED}) {
        EXPECT_NE(error_of([&] {
                      load_panel(options.menu, Cards::OFF, 20, drivers);
                  }).find("unknown member \"pol\"; did you mean \"poll\"?"),
                  std::string::npos);
    }
}

// A machine may have two processors, drives, keyboards, batteries and network cards.
TEST_F(Loaded_driven_panel_test, TheMenuOfTheMachineTellsTwoOfAKindApart) {
    for (const char* const name :
         {"devices/platform/coretemp.0/hwmon/hwmon3/temp1_input", "class/hwmon/hwmon3/temp1_input",
          "devices/platform/coretemp.1/hwmon/hwmon4/temp1_input", "class/hwmon/hwmon4/temp1_input",
          "class/nvme/nvme0/hwmon1/temp1_input", "class/hwmon/hwmon1/temp1_input",
          "class/nvme/nvme1/hwmon2/temp1_input", "class/hwmon/hwmon2/temp1_input",
          "class/leds/input3::capslock/brightness", "class/leds/input7::capslock/brightness",
          "class/power_supply/BAT0/capacity", "class/power_supply/BAT1/capacity",
          "class/net/eno1/statistics/rx_bytes", "class/net/eno2/statistics/rx_bytes"}) {
        const std::string file = folder.file(std::string("sys/") + name);
        std::filesystem::create_directories(std::filesystem::path(file).parent_path());
        std::ofstream(file) << "40\n";
    }
    for (const int chip : {1, 2, 3, 4}) {
        std::ofstream(folder.file("sys/class/hwmon/hwmon" + std::to_string(chip) + "/name"))
            << (chip < 3 ? "nvme\n" : "coretemp\n");
    }
    std::string text = read_input_file(FRONTPANEL_SOURCE_DIR "/menus/this-machine.json");
    const std::string system = "\"path\": \"/sys/";
    for (std::size_t at = 0; (at = text.find(system, at)) != std::string::npos;) {
        text.replace(at, system.size(), "\"path\": \"sys/");
    }
    options.menu = write("machine.json", text);
    const Loaded_panel loaded = load_panel(options.menu, Cards::OFF, 20, Drivers::CHECKED);
    EXPECT_EQ(loaded.warnings, std::vector<std::string>());
}

TEST_F(Loaded_driven_panel_test, OnlyTheCheckWarnsOfWhatCannotBeReadHere) {
    const Loaded_panel loaded = load_panel(options.menu, Cards::OFF, 20, Drivers::CHECKED);
    ASSERT_EQ(loaded.warnings.size(), 1U);
    EXPECT_NE(loaded.warnings[0].find("cannot be read here: No such file"), std::string::npos);
}

TEST_F(Loaded_panel_test, TheSimulatorNeedsNoDriverOfTheBuild) {
    options.menu = write("driven.json", R"({"device": {
        "drivers": {"bus": {"driver": "teapot", "spout": 1}}, "parameters": [
        {"pid": 1, "type": "integer", "min": 3, "max": 9, "source": {"lid": "open"}}]},
        "menu": {"name": "Main", "items": [{"type": "range", "name": "Gain", "pid": 1}]}})");
    const Loaded_panel loaded = load_panel(options.menu, Cards::OFF, 20, Drivers::SIMULATED);
    EXPECT_EQ(loaded.driven, nullptr);
    EXPECT_EQ(loaded.warnings,
              std::vector<std::string>{options.menu +
                                       ":2:39: warning: this build lacks the driver \"teapot\", "
                                       "so what lives at \"bus\" is not checked"});
    EXPECT_NE(error_of([&] { load_panel(options.menu, Cards::OFF, 20); }).find("found \"teapot\""),
              std::string::npos);
}

TEST_F(Loaded_panel_test, ADriverThatTheBuildLeavesOutIsNamedInEveryUse) {
    for (const Driver_row* const row : driver_table()) {
        SCOPED_TRACE(row->name);
        const std::string name = row->name;
        options.menu =
            write(name + ".json", R"({"device": {"drivers": {"one": {"driver": ")" + name +
                                      R"("}}, "parameters": []}, "menu": {"name": "Main"}})");
        const std::string lacks =
            ":1:43: this build lacks the driver \"" + name + "\" (build with -D FRONTPANEL_DRIVER_";
        for (const Drivers drivers : {Drivers::LOADED, Drivers::CHECKED}) {
            const std::string error =
                error_of([&] { load_panel(options.menu, Cards::OFF, 20, drivers); });
            EXPECT_EQ(error.find(lacks) != std::string::npos, row->is_left_out()) << error;
        }
        const std::string simulated =
            error_of([&] { load_panel(options.menu, Cards::OFF, 20, Drivers::SIMULATED); });
        EXPECT_EQ(simulated.find("driver"), std::string::npos) << simulated;
    }
}

TEST_F(Loaded_panel_test, AProgramThatIgnoresItsEndEndsWithThePanel) {
    if (!support::has_driver("process")) {
        GTEST_SKIP() << "built without the driver for programs";
    }
    write("adapter.py", R"(
import json, os, signal
signal.signal(signal.SIGTERM, signal.SIG_IGN)
print('{"type": "hello", "version": 1}', flush=True)
input()
request = json.loads(input())
print(json.dumps({"type": "result", "id": request["id"], "value": os.getpid()}), flush=True)
while True:
    signal.pause()
)");
    options.menu = write("driven.json", R"({"device": {
        "drivers": {"room": {"driver": "process", "command": ["python3", "-S", "adapter.py"]}},
        "parameters": [{"pid": 1, "type": "integer", "min": 0, "max": 2147483647,
                        "source": {"name": "process"}}]},
        "menu": {"name": "Main", "items": [{"type": "range", "name": "Process", "pid": 1}]}})");
    int32_t process = 0;
    {
        const Loaded_panel loaded = load_panel(options.menu, Cards::OFF, 20);
        loaded.driven->cache().start();
        loaded.driven->cache().read_all(std::chrono::seconds(60));
        ASSERT_EQ(loaded.menu->access().Get(1, 0, &process, sizeof process), 0);
    }
    EXPECT_EQ(kill(process, 0), -1);
    EXPECT_EQ(errno, ESRCH);
}

TEST_F(Loaded_panel_test, AMenuWithoutSourcesHasNoDrivers) {
    EXPECT_EQ(load_panel(options.menu, Cards::OFF, 20).driven, nullptr);
}

TEST_F(Loaded_panel_test, MistakesOfMenuAndDeviceAreToldTogether) {
    options.menu = write("bad.json", R"({"device": {"parameters": [
        {"pid": 1, "type": "integer", "min": 0, "max": 9, "value": 10}]},
        "menu": {"name": "Main", "items": [{"type": "range", "name": "Gain", "pid": 2}]}})");
    try {
        load_panel(options.menu, Cards::OFF, 20);
        ADD_FAILURE();
    } catch (const Input_errors& errors) {
        EXPECT_EQ(errors.lines().size(), 2U);
    }
}

}  // namespace
}  // namespace frontpanel
