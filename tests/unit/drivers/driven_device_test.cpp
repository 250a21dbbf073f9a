// What a menu file's drivers and sources become.
#include <frontpanel_drivers/driven_device.h>

#include <algorithm>

#include <frontpanel_base/json_members.h>

#include "unit/drivers/menu_fixture.h"

namespace support {
namespace {

using namespace frontpanel;

// What the drivers of a test were created with and given.
struct Record {
    std::vector<std::string> lines;
    std::shared_ptr<Scripted_device> device = std::make_shared<Scripted_device>();
};
Record* record = nullptr;

class Noting_driver : public Scripted_driver {
public:
    explicit Noting_driver(const Driver_setup& setup)
        : Scripted_driver(record->device), m_name(setup.name) {}

    void add(const Json_value& source, const Driver_parameter& parameter) override {
        record->lines.push_back(
            m_name + ": " + parameter.name + " " + std::to_string(parameter.varidx) + " " +
            (parameter.is_text
                 ? "text " + std::to_string(parameter.length)
                 : std::to_string(parameter.min) + ".." + std::to_string(parameter.max)) +
            " at " + source.member("place").text());
        m_place = source.place();
    }
    void check(Problems& problems) const override { problems.warn(m_place, "looked over"); }

private:
    std::string m_name;
    Place m_place{};
};

std::unique_ptr<Driver> create(const Json_value& options, const Driver_setup& setup) {
    record->lines.push_back("create " + setup.name + " in " + setup.folder + " for " +
                            text_or(options, "where", "nothing"));
    return std::make_unique<Noting_driver>(setup);
}

const Driver_row NOTING{"noting", {"where"}, {"place"}, create};
const Driver_row OTHER{"other", {}, {"place"}, create};
const Driver_row LEFT_OUT{"absent", {}, {}, nullptr, "DRIVER_ABSENT"};

class Driven_device_test : public Driver_menu_test {
protected:
    Driven_device_test() { record = &m_record; }

    void load(const std::string& drivers, const std::string& parameters) {
        load_menu({&NOTING, &OTHER}, "menus", drivers, parameters);
    }

    Record m_record;
};

constexpr const char* ONE = R"({"plc": {"driver": "noting", "where": "here", "poll": "2s"}})";

TEST_F(Driven_device_test, ParametersAreGivenToTheirDriverWithTheirDeclaration) {
    load(ONE, R"(
        {"name": "gain", "pid": 5, "type": "integer", "min": -3, "max": 9, "source": {"place": "a"}},
        {"pid": 6, "index": [1, 2], "type": "text", "length": 8, "source": {"driver": "plc", "place": "b"}},
        {"pid": 7, "type": "integer", "min": 0, "max": 1, "value": 0})");
    EXPECT_EQ(problems(), Lines{});
    EXPECT_EQ(m_record.lines, (Lines{"create plc in menus for here", "plc: gain 0 -3..9 at a",
                                     "plc: 6.1.2 513 text 8 at b"}));
    EXPECT_TRUE(m_device->cache().has(5, 0));
    EXPECT_TRUE(m_device->cache().has(6, 513));
    EXPECT_FALSE(m_device->cache().has(7, 0));
}

TEST_F(Driven_device_test, AParameterMayBePolledMoreOftenThanItsDriver) {
    load(ONE, R"(
        {"pid": 0, "type": "integer", "min": 0, "max": 9, "source": {"place": "a"}},
        {"pid": 1, "type": "integer", "min": 0, "max": 9, "source": {"place": "b", "poll": "100ms"}})");
    ASSERT_EQ(problems(), Lines{});
    m_record.device->hold(0, 1);
    m_record.device->hold(1, 1);
    m_device->cache().start();
    m_device->cache().read_all(0ms);
    m_device->cache().step();
    EXPECT_EQ(number_of(m_device->cache(), 1), 1);
}

TEST_F(Driven_device_test, MistakesAreReportedAllAtOnceWithTheNearestName) {
    load(
        R"({"plc": {"driver": "notting"}, "b": {"driver": "other", "where": "x", "pol": "1s"},
             "c": {"driver": "other", "poll": "1"}, "": {"driver": "other"}})",
        R"({"pid": 1, "type": "integer", "min": 0, "max": 1, "source": {"driver": "plc", "place": "a"}},
            {"pid": 2, "type": "integer", "min": 0, "max": 1, "source": {"driver": "plk", "place": "a"}},
            {"pid": 3, "type": "integer", "min": 0, "max": 1, "source": {"place": "a"}},
            {"pid": 4, "type": "integer", "min": 0, "max": 1, "source": {"driver": "b", "plaice": "a"}},
            {"pid": 5, "type": "integer", "min": 0, "max": 1, "source": "b"})");
    EXPECT_EQ(
        problems(),
        (Lines{"expected \"noting\" or \"other\", found \"notting\"; did you mean \"noting\"?",
               "unknown member \"where\"", "unknown member \"pol\"; did you mean \"poll\"?",
               "expected a time such as \"500ms\", \"2s\", \"5min\" or \"1h\", found \"1\"",
               "expected a name of 1 to 32 characters",
               "no driver is named \"plk\"; did you mean \"plc\"?", "expected a member \"driver\"",
               "expected a member \"place\"", "unknown member \"plaice\"; did you mean \"place\"?",
               "expected an object, found a text"}));
}

constexpr const char* LACKED = R"({"plc": {"driver": "absent", "where": "here"}})";
constexpr const char* ANYWHERE =
    R"({"pid": 1, "type": "integer", "min": 0, "max": 1, "source": {"anything": "a"}})";

std::string drivers_of(std::size_t count) {
    std::string drivers;
    for (std::size_t number = 0; number < count; ++number) {
        drivers +=
            (number == 0 ? "\"d" : ", \"d") + std::to_string(number) + R"(": {"driver": "noting"})";
    }
    return "{" + drivers + "}";
}

TEST_F(Driven_device_test, ThereAreAtMost32Drivers) {
    const auto refusals = [this] {
        const Lines lines = problems();
        return std::count(lines.begin(), lines.end(), "expected at most 32 drivers");
    };
    load(drivers_of(32), "");
    EXPECT_EQ(m_record.lines.size(), 32U);
    EXPECT_EQ(refusals(), 0);
    load(drivers_of(33), "");
    EXPECT_EQ(m_record.lines.size(), 32U);
    EXPECT_EQ(refusals(), 1);
}

TEST_F(Driven_device_test, ADriverThatTheBuildLeavesOutIsNamedWithItsOption) {
    load_menu({&NOTING, &LEFT_OUT}, "", LACKED, ANYWHERE);
    EXPECT_EQ(problems(),
              Lines{"this build lacks the driver \"absent\" (build with -D DRIVER_ABSENT=ON)"});
    load_menu({&LEFT_OUT}, "", R"({"plc": {"driver": "absend"}})", "");
    EXPECT_EQ(problems().back(), "expected \"absent\", found \"absend\"; did you mean \"absent\"?");
}

TEST_F(Driven_device_test, WhereAnotherDeviceStandsInALackingDriverIsOnlyWarnedOf) {
    load_menu({&NOTING, &LEFT_OUT}, "", LACKED, ANYWHERE, Work::STEPS, Lacking_drivers::WARNED_OF);
    EXPECT_EQ(problems(), Lines{"warning: this build lacks the driver \"absent\", so what lives at "
                                "\"plc\" is not checked"});
    EXPECT_FALSE(m_device->cache().has(1, 0));
}

TEST_F(Driven_device_test, WhereAnotherDeviceStandsInADriverThatNobodyKnowsIsOnlyWarnedOf) {
    load_menu({&NOTING, &LEFT_OUT}, "", R"({"plc": {"driver": "notin"}})", ANYWHERE, Work::STEPS,
              Lacking_drivers::WARNED_OF);
    EXPECT_EQ(problems(), Lines{"warning: this build lacks the driver \"notin\", so what lives at "
                                "\"plc\" is not checked; did you mean \"noting\"?"});
}

TEST_F(Driven_device_test, WhereAnotherDeviceStandsInTheSourcesOfOtherDriversAreChecked) {
    load_menu({&NOTING, &LEFT_OUT}, "", ONE, ANYWHERE, Work::STEPS, Lacking_drivers::WARNED_OF);
    EXPECT_EQ(problems(), (Lines{"expected a member \"place\"", "unknown member \"anything\""}));
}

TEST_F(Driven_device_test, ADriverThatNothingLivesAtIsProbablyAMistake) {
    load(ONE, R"({"pid": 7, "type": "integer", "min": 0, "max": 1, "value": 0})");
    EXPECT_EQ(problems(), Lines{"warning: no parameter lives at \"plc\""});
}

TEST_F(Driven_device_test, TheDriversWarnOnlyWhenTheyAreAsked) {
    load(ONE, R"({"pid": 5, "type": "integer", "min": 0, "max": 9, "source": {"place": "a"}})");
    EXPECT_EQ(problems(), Lines{});
    m_device->check(m_problems);
    EXPECT_EQ(problems(), Lines{"warning: looked over"});
}

TEST_F(Driven_device_test, AFileIsAskedWhetherAnyParameterHasASource) {
    const auto has = [](const std::string& text) {
        const Source source{"menu.json", 0};
        const Json_document document(source, text);
        Problems problems;
        return has_sources(Json_value(document.root(), problems));
    };
    EXPECT_TRUE(has(R"({"device": {"parameters": [{}, {"source": {}}]}})"));
    EXPECT_FALSE(has(R"({"device": {"parameters": [{}]}})"));
    EXPECT_FALSE(has(R"({"device": {"parameters": 7}})"));
    EXPECT_FALSE(has(R"({"device": 7})"));
    EXPECT_FALSE(has("7"));
}

}  // namespace
}  // namespace support
