#include <frontpanel_ui/script_player.h>

#include <deque>
#include <set>
#include <sstream>

#include <frontpanel_base/input_error.h>
#include <frontpanel_displays/text_display.h>
#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

constexpr const char* PARAMETERS = R"(
    {"pid": 5, "type": "integer", "min": 0, "max": 9, "value": 3},
    {"pid": 6, "index": [1, 2], "type": "text", "length": 4, "value": "abc"})";
constexpr const char* ITEMS = R"({"type": "range", "name": "Level", "pid": 5})";

// A device of the test's own behind the panel, with parameters 5 (a number up to 9) and 6.1.2.
class Fake_script_device : public Script_device {
public:
    explicit Fake_script_device(Memory_device& device) : m_device(device) {
        m_device.set_write_listener([this](const Memory_device::Write& write) {
            m_writes.push_back({{write.pid, write.varidx, ""}, write.value, write.result != 0});
        });
        m_device.set_fault([this](const Memory_device::Operation& operation) {
            const bool write = operation.kind == Memory_device::Operation_kind::WRITE;
            return m_faults.count({operation.pid, write}) != 0 ? 1 : 0;
        });
    }
    ~Fake_script_device() override {
        m_device.set_write_listener(nullptr);
        m_device.set_fault(nullptr);
    }

    std::optional<Parameter_name> find(const std::string& name) const override {
        return name == "level" ? std::optional<Parameter_name>({5, 0, name}) : std::nullopt;
    }
    bool has_parameter(const Parameter_name& parameter) const override {
        return parameter.pid == 5 || (parameter.pid == 6 && parameter.varidx == 0x201);
    }
    std::optional<std::string> set(const Parameter_name& parameter,
                                   const std::string& value) override {
        if (value.size() > 3) {
            return "too long";
        }
        if (parameter.pid == 5) {
            m_device.set_integer(5, 0, std::stoi(value));
        } else {
            m_device.set_text(parameter.pid, parameter.varidx, value);
        }
        return std::nullopt;
    }
    void set_fault(const Parameter_name& parameter, bool write, bool on) override {
        if (on) {
            m_faults.insert({parameter.pid, write});
        } else {
            m_faults.erase({parameter.pid, write});
        }
    }
    std::optional<Write> oldest_write() const override {
        return m_writes.empty() ? std::nullopt : std::optional<Write>(m_writes.front());
    }
    void drop_write() override { m_writes.pop_front(); }
    int selected_option(int slot, int list) const override {
        return slot == 2 && list == 9002 ? 3 : -1;
    }

private:
    Memory_device& m_device;
    std::deque<Write> m_writes;
    std::set<std::pair<uint32_t, bool>> m_faults;
};

struct Outcome {
    int failures;
    std::string out;
    std::string differences;
};

Outcome play(const std::string& script) {
    Application_panel shown(menu_text(PARAMETERS, ITEMS), {{16, 2}});
    std::ostringstream out;
    std::ostringstream differences;
    Text_display display(out);
    Fake_script_device device(shown.device());
    Script_player player(shown.panel, device, display, out, differences);
    const int failures = player.play(parse_script("a.script", script));
    return {failures, out.str(), differences.str()};
}

TEST(ScriptPlayer, FindsParametersByName) {
    EXPECT_EQ(play("set level 7\ntick\nexpect 1 |>Level         7|\nselect\nup\nselect\n"
                   "expect-write [level] 8")
                  .differences,
              "");
    EXPECT_EQ(play("select\nup\nselect\nexpect-write [level] 9").differences,
              "a.script:4: expected the write [level] = 9, the device got [level] = 4\n");
    try {
        play("tick\nset [lvel] 7");
        ADD_FAILURE();
    } catch (const Input_error& error) {
        EXPECT_STREQ(error.what(), "a.script:2: the device has no parameter [lvel]");
    }
}

TEST(ScriptPlayer, FindsAPartOfALineThatScrolls) {
    const std::string text =
        menu_text(R"({"name": "note", "pid": 6, "index": [1, 2], "type": "text", "length": 40,
                      "value": "clean the air filter now"})",
                  R"({"type": "text", "name": "Note", "parameter": "note"})");
    for (const Lcd_size size : {Lcd_size{16, 2}, {20, 2}, {20, 4}, {40, 4}}) {
        Application_panel shown(text, {size});
        std::ostringstream out;
        std::ostringstream differences;
        Text_display display(out);
        Fake_script_device device(shown.device());
        Script_player player(shown.panel, device, display, out, differences);
        const std::string row = size.rows > 2 ? "2" : "1";
        const std::string script = "expect " + row + " contains |filter|\nexpect " + row +
                                   " contains |>Note|\nexpect " + row + " contains |dust|";
        EXPECT_EQ(player.play(parse_script("a.script", script)), 1);
        EXPECT_EQ(differences.str().find("a.script:3: line " + row + " shows |>"), 0U)
            << differences.str();
        EXPECT_NE(differences.str().find("nothing of which is |dust|"), std::string::npos);
    }
}

TEST(ScriptPlayer, ShowsEveryFrame) {
    const Outcome outcome = play("say Now the level:\nselect\nup");
    EXPECT_EQ(outcome.out,
              "+----------------+\n"
              "|>Level         3|\n"
              "|                |\n"
              "+----------------+\n"
              "( ) Edit  ( ) Alarm\n"
              "\nNow the level:\n"
              "\n> select\n"
              "+----------------+\n"
              "|Level           |\n"
              "|3               |\n"
              "+----------------+\n"
              "(*) Edit  ( ) Alarm\n"
              "\n> up\n"
              "+----------------+\n"
              "|Level           |\n"
              "|4               |\n"
              "+----------------+\n"
              "(*) Edit  ( ) Alarm\n");
    EXPECT_EQ(outcome.differences, "");
    EXPECT_EQ(outcome.failures, 0);
}

// A script comes from somewhere, and the terminal that shows it obeys control characters.
TEST(ScriptPlayer, ControlCharactersOfAScriptAreNotRepeated) {
    const Outcome outcome = play(
        "say \x1b[2J \xC2\x9B\x32J \x9B\x32J \xC3\xA9\nup\nexpect 1 |\xC2\x9B\x32J             |\n");
    EXPECT_NE(outcome.out.find("\n?[2J ?2J ?2J \xC3\xA9\n"), std::string::npos) << outcome.out;
    for (const std::string& text : {outcome.out, outcome.differences}) {
        EXPECT_EQ(text.find('\x1b'), std::string::npos);
        EXPECT_EQ(text.find('\x9B'), std::string::npos);
    }
    EXPECT_EQ(outcome.failures, 1);
}

TEST(ScriptPlayer, MetExpectationsSayNothing) {
    const Outcome outcome = play(R"(
        expect 1 |>Level         3|
        expect 2 |*|
        expect-leds none
        select
        expect-leds edit
        up 2
        expect-no-write
        select
        expect-write 5 5
        expect-no-write
        expect 1 |>Level*5|)");
    EXPECT_EQ(outcome.differences, "");
    EXPECT_EQ(outcome.failures, 0);
}

TEST(ScriptPlayer, EveryDifferenceIsOneLineWithItsPlace) {
    const Outcome outcome = play(R"(expect 1 |>Level         4|
expect 1 |>Level         3 |
expect 3 |x|
expect-leds edit alarm
expect-write 5 4
select
up
select
expect-no-write
expect-write 6.1.2 xy
expect-write 5 4)");
    EXPECT_EQ(outcome.differences,
              "a.script:1: line 1 shows |>Level         3|, expected |>Level         4|\n"
              "a.script:2: line 1 shows |>Level         3|, expected |>Level         3 |\n"
              "a.script:3: the display has no line 3\n"
              "a.script:4: LEDs lit: none, expected: edit alarm\n"
              "a.script:5: expected the write 5 = 4, the device got none\n"
              "a.script:9: expected no write, the device got 5 = 4\n"
              "a.script:10: expected the write 6.1.2 = xy, the device got 5 = 4\n"
              "a.script:11: expected the write 5 = 4, the device got none\n");
    EXPECT_EQ(outcome.failures, 8);
}

TEST(ScriptPlayer, TheDeviceChangesByItselfAndFails) {
    const Outcome outcome = play(R"(
        set 5 8
        set 6.1.2 xy
        tick
        expect 1 |>Level         8|
        fail read 5 on
        set 5 1
        tick
        expect 1 |>Leve read error|
        expect-leds alarm
        fail read 5 off
        tick
        expect 1 |>Level         1|
        fail write 5 on
        select
        up
        select
        expect-write 5 2 (failed)
        expect 2 |write failed    |
        fail write 5 off)");
    EXPECT_EQ(outcome.differences, "");
    EXPECT_EQ(outcome.failures, 0);
}

TEST(ScriptPlayer, TheSelectionOfACardIsCompared) {
    EXPECT_EQ(play("expect-selected 2 9002 3").differences, "");
    EXPECT_EQ(play("expect-selected 2 9002 1").differences,
              "a.script:1: the card in slot 2 has option 3 of 9002 selected, expected 1\n");
    EXPECT_EQ(play("expect-selected 3 9001 1").differences,
              "a.script:1: the card in slot 3 has no option of 9001 selected, expected 1\n");
}

TEST(ScriptPlayer, AValueThatTheDeviceCannotHoldIsAnError) {
    try {
        play("\nset 6.1.2 abcde");
        ADD_FAILURE();
    } catch (const Input_error& error) {
        EXPECT_STREQ(error.what(),
                     "a.script:2: parameter 6.1.2 cannot be set to \"abcde\": too long");
    }
}

TEST(ScriptPlayer, AParameterThatTheDeviceLacksIsAnErrorBeforeAnythingIsPlayed) {
    for (const char* step :
         {"set 7.1 3", "fail read 7.1 on", "fail write 7.1 off", "expect-write 7.1 3"}) {
        std::ostringstream out;
        Application_panel shown(menu_text(PARAMETERS, ITEMS), {{16, 2}});
        Text_display display(out);
        Fake_script_device device(shown.device());
        Script_player player(shown.panel, device, display, out, out);
        try {
            player.play(parse_script("a.script", std::string("select\n") + step));
            ADD_FAILURE() << step;
        } catch (const Input_error& error) {
            EXPECT_STREQ(error.what(), "a.script:2: the device has no parameter 7.1");
        }
        EXPECT_EQ(out.str(), "") << step;
    }
}

TEST(ScriptPlayer, AParameterThatAScriptCannotChangeIsAnErrorBeforeAnythingIsPlayed) {
    struct Fixed_device : Fake_script_device {
        using Fake_script_device::Fake_script_device;
        std::string why_fixed(const Parameter_name& /*parameter*/) const override {
            return "is bolted down";
        }
    };
    for (const char* step : {"set 5 3", "fail read 5 on", "fail write 5 off"}) {
        std::ostringstream out;
        Application_panel shown(menu_text(PARAMETERS, ITEMS), {{16, 2}});
        Text_display display(out);
        Fixed_device device(shown.device());
        Script_player player(shown.panel, device, display, out, out);
        try {
            player.play(parse_script("a.script", std::string("select\n") + step));
            ADD_FAILURE() << step;
        } catch (const Input_error& error) {
            EXPECT_STREQ(error.what(), "a.script:2: parameter 5 is bolted down");
        }
        EXPECT_EQ(out.str(), "") << step;
    }
}

TEST(ScriptPlayer, AStarStandsForAnyCharacters) {
    EXPECT_TRUE(matches("", ""));
    EXPECT_TRUE(matches("", "*"));
    EXPECT_TRUE(matches("abc", "abc"));
    EXPECT_TRUE(matches("abc", "*"));
    EXPECT_TRUE(matches("abc", "a*c"));
    EXPECT_TRUE(matches("abc", "abc*"));
    EXPECT_TRUE(matches("abcbc", "a*bc"));
    EXPECT_TRUE(matches("abxcbc", "*b*bc"));
    EXPECT_FALSE(matches("abc", ""));
    EXPECT_FALSE(matches("", "a"));
    EXPECT_FALSE(matches("abc", "ab"));
    EXPECT_FALSE(matches("abc", "a*b"));
    EXPECT_FALSE(matches("abc", "abcd"));
    EXPECT_FALSE(matches("abc", "*d*"));
}

}  // namespace
}  // namespace frontpanel
