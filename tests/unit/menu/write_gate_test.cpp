#include <frontpanel_menu/write_gate.h>

#include <frontpanel_binding/device_value.h>

#include "unit/menu/items_fixture.h"

namespace frontpanel {
namespace {

using Gate = Write_gate;
using Hidden = Write_gate::Hidden_items;
using Result = Write_gate::Result;

constexpr const char* GATE_PARAMETERS = R"(
    {"name": "mode", "pid": 1, "type": "integer", "min": 0, "max": 3, "value": 0},
    {"name": "limit", "pid": 2, "type": "integer", "min": 0, "max": 100, "value": 50},
    {"name": "level", "pid": 3, "type": "integer", "min": -500, "max": 500, "value": 10},
    {"name": "title", "pid": 4, "type": "text", "length": 8, "value": "abc"},
    {"name": "clock", "pid": 5, "type": "text", "length": 16, "value": "12:30"},
    {"name": "host", "pid": 6, "type": "text", "length": 16, "value": "10.0.0.1"},
    {"name": "spare", "pid": 7, "type": "integer", "min": 0, "max": 9, "value": 1})";

Wanted_value number(uint32_t pid, int value) {
    Wanted_value wanted{{pid, 0}, {}};
    wanted.value.rt = INTEGER;
    wanted.value.i = value;
    return wanted;
}

Wanted_value text(uint32_t pid, const std::string& value) {
    Wanted_value wanted{{pid, 0}, {}};
    wanted.value.rt = STRING;
    wanted.value.s = value;
    return wanted;
}

// The menu as it is shown at the start, with a gate.
class Write_gate_test : public testing::Test {
protected:
    void load(const std::string& items, const std::string& options = "{}") {
        const std::string mode = R"({"type": "range", "name": "Mode", "parameter": "mode"})";
        panel = std::make_unique<Menu_panel>(
            menu_text(GATE_PARAMETERS, items.empty() ? mode : items, options));
        panel->device().clear_records();
    }
    Gate& gate() { return panel->menu().gate(); }
    std::string refusal(const std::vector<Wanted_value>& values, Hidden hidden = Hidden::ACCEPTED) {
        const Gate::Verdict verdict = gate().check(values, hidden);
        return verdict.refusal ? verdict.refusal->text() : "";
    }
    Gate::Outcome write(const std::vector<Wanted_value>& values, const Lines& accepted = {}) {
        return gate().write(values, Hidden::ACCEPTED, accepted);
    }
    int number_of(uint32_t pid) { return panel->device().integer(pid, 0).value(); }
    size_t write_count() { return panel->device().writes().size(); }

    std::unique_ptr<Menu_panel> panel;
};

constexpr const char* LEVEL_ITEM =
    R"({"type": "range", "name": "Level", "parameter": "level", "format": "%d dB", )";

TEST_F(Write_gate_test, AValueOutsideItsParametersLimitsIsRefused) {
    load("");
    EXPECT_EQ(refusal({number(7, 9)}), "");
    EXPECT_EQ(refusal({number(7, 10)}), "parameter 7 10: allowed: 0..9");
    EXPECT_EQ(refusal({number(99, 1)}), "parameter 99 1: the device has no such parameter");
    EXPECT_EQ(refusal({text(7, "1")}), "parameter 7 \"1\": not a number");
    EXPECT_EQ(refusal({number(4, 1)}), "parameter 4 1: not a text");
    EXPECT_EQ(refusal({text(4, "123456789")}), "parameter 4 \"123456789\": at most 8 characters");
    EXPECT_EQ(refusal({number(7, 1), number(7, 2)}), "parameter 7 2: is given twice");
}

TEST_F(Write_gate_test, AnItemsBoundsAndGapsHold) {
    load(std::string(LEVEL_ITEM) +
         R"("min": -20, "max": 240, "ranges": [{"min": -20, "max": 80}, {"min": 120, "max": 240},
            {"min": 90, "max": 95, "options": ["gps"]}]})");
    for (const int allowed : {-20, 0, 80, 120, 240}) {
        EXPECT_EQ(refusal({number(3, allowed)}), "");
    }
    for (const int refused : {-21, 81, 92, 119, 241}) {
        EXPECT_EQ(refusal({number(3, refused)}), "Level " + std::to_string(refused) +
                                                     " dB: allowed: -20 dB..80 dB, 120 dB..240 dB");
    }
}

// Not in the parameter's, which the display never shows.
TEST_F(Write_gate_test, ReasonsAreInTheUnitOfTheItem) {
    load(R"({"type": "range", "name": "Level", "parameter": "level", "value_format": "v/10",
             "format": "%.1f dB of the full scale", "min": -300, "max": 120})");
    const std::string allowed = "allowed: -30.0 dB of the full scale..12.0 dB of the full scale";
    EXPECT_EQ(refusal({number(3, 125)}), "Level 12.5 dB of the full scale: " + allowed);
    EXPECT_EQ(refusal({number(3, 505)}), "Level 50.5 dB of the full scale: " + allowed);
}

TEST_F(Write_gate_test, ASlotIsNamedByItsNumber) {
    load(R"({"type": "slot", "name": "Source", "parameter": "spare"})");
    EXPECT_EQ(refusal({number(7, 9)}), "");
    EXPECT_EQ(refusal({number(7, 10)}), "Source slot 11: not offered");
}

TEST_F(Write_gate_test, RulesHoldByTheValuesThatWillStandTogether) {
    load(std::string(LEVEL_ITEM) + R"("min": 0, "max": 100,
        "binding": "range 0..[limit]; access read-only if [mode] == 2"})");
    EXPECT_EQ(refusal({number(3, 60)}), "Level 60 dB: allowed: 0 dB..50 dB");
    EXPECT_EQ(refusal({number(3, 60), number(2, 70)}), "");
    EXPECT_EQ(refusal({number(2, 70), number(3, 60)}), "");
    EXPECT_EQ(refusal({number(3, 40), number(2, 30)}), "Level 40 dB: allowed: 0 dB..30 dB");
    EXPECT_EQ(refusal({number(3, 40), number(1, 2)}), "Level 40 dB: read only");
    EXPECT_EQ(refusal({number(3, 10), number(1, 2)}), "") << "it holds that value";
    EXPECT_EQ(write_count(), 0U);
    EXPECT_EQ(panel->menu().bindings()->faults().size(), 0U);
}

TEST_F(Write_gate_test, WhatWriteRulesWouldSetCounts) {
    load(R"({"type": "range", "name": "Mode", "parameter": "mode",
             "binding": "set [spare] = value if [mode] > 0"},
            {"type": "range", "name": "Spare", "parameter": "spare",
             "binding": "set [limit] = 20 if value == 3"},)" +
         std::string(LEVEL_ITEM) + R"("min": 0, "max": 100, "binding": "range 0..[limit]"})");
    EXPECT_EQ(refusal({number(3, 40)}), "");
    // `value` is what the device holds of the entry's own parameter until it is written.
    EXPECT_EQ(refusal({number(3, 40), number(7, 3)}), "");
    EXPECT_EQ(write({number(3, 40), number(7, 3)}).result, Result::FAILED);
    EXPECT_EQ(number_of(7), 1);
    EXPECT_EQ(number_of(3), 10);
    EXPECT_EQ(number_of(2), 50);
    load(R"({"type": "range", "name": "Mode", "parameter": "mode"},
            {"type": "range", "name": "Spare", "parameter": "spare",
             "binding": "set [limit] = 20 if [mode] == 3"},)" +
         std::string(LEVEL_ITEM) + R"("min": 0, "max": 100, "binding": "range 0..[limit]"})");
    EXPECT_EQ(refusal({number(3, 40), number(1, 3)}), "Level 40 dB: allowed: 0 dB..20 dB");
    EXPECT_EQ(refusal({number(3, 40), number(1, 3), number(2, 60)}), "");
}

TEST_F(Write_gate_test, OptionsAreThoseOfTheProductAndOfRules) {
    load(R"({"type": "enum", "name": "Mode", "parameter": "mode",
             "choices": ["a", {"text": "b", "options": ["gps"]}, "c", "d"],
             "binding": "keys 0, 1, 3 if [limit] < 60"})");
    EXPECT_EQ(refusal({number(1, 0)}), "");
    EXPECT_EQ(refusal({number(1, 1)}), "Mode b: not offered");
    EXPECT_EQ(refusal({number(1, 2)}), "Mode c: not offered");
    EXPECT_EQ(refusal({number(1, 2), number(2, 60)}), "");
    EXPECT_EQ(refusal({number(1, 3)}), "");
    EXPECT_EQ(refusal({number(1, 4)}), "Mode 4: not offered");
    EXPECT_EQ(refusal({text(1, "d")}), "Mode \"d\": not a number");
    Data_entry& entry = panel->item(0);
    const int position = 1;  // of those that are offered
    entry.Set_value(&position, sizeof position);
    panel->fail(Memory_device::Operation_kind::WRITE, 1);
    EXPECT_EQ(gate().commit(entry).refusal.text(), "Mode d: write failed");
}

TEST_F(Write_gate_test, TextsTimesAndAddressesAreValid) {
    load(R"({"type": "text", "name": "Title", "parameter": "title"},
            {"type": "time", "name": "Clock", "parameter": "clock"},
            {"type": "address", "name": "Host", "parameter": "host"})");
    EXPECT_EQ(refusal({text(4, "Studio A")}), "");
    EXPECT_EQ(refusal({text(4, "Studio AB")}), "Title \"Studio AB\": at most 8 characters");
    for (const char* const time : {"23:59", "00:00:00", "2024-02-29", "2026-01-31 10:00"}) {
        EXPECT_EQ(refusal({text(5, time)}), "") << time;
    }
    for (const char* const time : {"24:00", "2023-02-29", "2026-00-10", "noon", "", "7:5"}) {
        EXPECT_EQ(refusal({text(5, time)}), "Clock \"" + std::string(time) + "\": no time");
    }
    EXPECT_EQ(refusal({text(6, "192.168.0.255")}), "");
    for (const char* const host : {"192.168.0.256", "1.2.3", "host", "1..2.3", ""}) {
        EXPECT_EQ(refusal({text(6, host)}), "Host \"" + std::string(host) + "\": no address");
    }
}

TEST_F(Write_gate_test, ReadOnlyItemsRefuseUnlessAnotherItemAccepts) {
    load(std::string(LEVEL_ITEM) + R"("access": "read-only"})");
    EXPECT_EQ(refusal({number(3, 40)}), "Level 40 dB: read only");
    load(std::string(LEVEL_ITEM) + R"("access": "read-only"},
        {"type": "range", "name": "Set level", "parameter": "level", "max": 45})");
    EXPECT_EQ(refusal({number(3, 40)}), "");
    EXPECT_EQ(refusal({number(3, 60)}), "Level 60 dB: allowed: -500..45");
}

TEST_F(Write_gate_test, HiddenItemsAreForPresetsOnly) {
    load(std::string(LEVEL_ITEM) + R"("binding": "visible if [mode] == 1"})");
    EXPECT_EQ(refusal({number(3, 40)}, Hidden::ACCEPTED), "");
    EXPECT_EQ(refusal({number(3, 40)}, Hidden::REFUSED), "Level 40 dB: not shown");
    EXPECT_EQ(refusal({number(3, 501)}, Hidden::ACCEPTED),
              "Level 501 dB: allowed: -500 dB..500 dB");
}

TEST_F(Write_gate_test, WarningsOfAllValuesAreAskedTogetherEachOnce) {
    load(R"({"type": "range", "name": "Mode", "parameter": "mode",
             "binding": "warn \"quiet\" if value > 1"},
            {"type": "range", "name": "Limit", "parameter": "limit",
             "binding": "warn \"{value} over {[limit]} in {[mode]}\" if value > [limit]"},
            {"type": "range", "name": "Spare", "parameter": "spare",
             "binding": "warn \"quiet\" if value > 1"})");
    const std::vector<Wanted_value> values{number(1, 2), number(2, 80), number(7, 5)};
    const Lines warnings{"quiet", "80 over 50 in 2"};
    EXPECT_EQ(gate().check(values, Hidden::ACCEPTED).warnings, warnings);
    const Gate::Outcome asked = write(values, {"quiet"});
    EXPECT_EQ(asked.result, Result::WARNED);
    EXPECT_EQ(asked.warnings, warnings);
    EXPECT_EQ(write_count(), 0U);
    EXPECT_EQ(write(values, warnings).result, Result::WRITTEN);
    EXPECT_EQ(number_of(2), 80);
}

TEST_F(Write_gate_test, WritesWhatTheDeviceDoesNotHoldYet) {
    load("");
    EXPECT_EQ(write({number(2, 50), number(3, 11), text(4, "abc"), text(4 + 1, "13:00")}).result,
              Result::WRITTEN);
    EXPECT_EQ(write_count(), 2U);
}

TEST_F(Write_gate_test, ARefusedValuePutsBackAllWithWhatRulesMadeOfIt) {
    load(R"({"type": "range", "name": "Mode", "parameter": "mode",
             "binding": "set [spare] = 7 if [mode] == 2"},)" +
         std::string(LEVEL_ITEM) + R"("binding": "range 0..[limit]"})");
    panel->fail(Memory_device::Operation_kind::WRITE, 4);
    const Gate::Outcome outcome =
        write({number(1, 2), number(2, 5), number(3, 5), text(4, "new"), number(7, 3)});
    EXPECT_EQ(outcome.result, Result::FAILED);
    EXPECT_EQ(outcome.refusal.text(), "parameter 4 \"new\": write failed");
    EXPECT_TRUE(outcome.not_put_back.empty());
    EXPECT_EQ(number_of(1), 0);
    EXPECT_EQ(number_of(2), 50);
    EXPECT_EQ(number_of(3), 10);
    EXPECT_EQ(number_of(7), 1);
    EXPECT_EQ(panel->device().text(4, 0), "abc");
    panel->repair();
    panel->tick();
    EXPECT_EQ(number_of(7), 1);
    EXPECT_EQ(number_of(3), 10);
}

TEST_F(Write_gate_test, WhatCannotBePutBackIsNamed) {
    load(R"({"type": "range", "name": "Mode", "parameter": "mode"})");
    int writes = 0;
    panel->device().set_fault([&writes](const Memory_device::Operation& operation) {
        return operation.kind == Memory_device::Operation_kind::WRITE && ++writes > 1 ? 100 : 0;
    });
    const Gate::Outcome outcome = write({number(1, 2), number(2, 5)});
    EXPECT_EQ(outcome.result, Result::FAILED);
    EXPECT_EQ(outcome.not_put_back, (Lines{"Mode"}));
}

TEST_F(Write_gate_test, WhatCannotBeReadIsNotTouched) {
    load("");
    panel->fail(Memory_device::Operation_kind::READ, 2);
    const Gate::Outcome outcome = write({number(1, 2), number(2, 5)});
    EXPECT_EQ(outcome.result, Result::REFUSED);
    EXPECT_EQ(outcome.refusal.text(), "parameter 2 5: cannot be read");
    EXPECT_EQ(write_count(), 0U);
}

TEST_F(Write_gate_test, AValueThatARuleOverwritesIsWrittenOnceMore) {
    load(R"({"type": "range", "name": "Mode", "parameter": "mode",
             "binding": "set [spare] = 7 if [mode] == 2"},
            {"type": "range", "name": "Spare", "parameter": "spare"})");
    EXPECT_EQ(write({number(1, 2), number(7, 3)}).result, Result::WRITTEN);
    EXPECT_EQ(number_of(7), 3);
    panel->tick();
    EXPECT_EQ(number_of(7), 3);
}

TEST_F(Write_gate_test, AnEntriesValueIsCheckedBeforeItIsCommitted) {
    load(std::string(LEVEL_ITEM) +
         R"("min": 0, "max": 240, "ranges": [{"min": 0, "max": 80}, {"min": 120, "max": 240}]})");
    Data_entry& entry = panel->item(0);
    const int in_gap = 100;
    entry.Set_value(&in_gap, sizeof in_gap);
    const Gate::Outcome refused = gate().commit(entry);
    EXPECT_EQ(refused.result, Result::REFUSED);
    EXPECT_EQ(refused.refusal.reason, "allowed: 0 dB..80 dB, 120 dB..240 dB");
    EXPECT_EQ(write_count(), 0U);
    const int allowed = 80;
    entry.Set_value(&allowed, sizeof allowed);
    EXPECT_EQ(gate().commit(entry).result, Result::WRITTEN);
    EXPECT_EQ(number_of(3), 80);
    entry.Set_access_type(Data_entry::READ_ONLY);
    EXPECT_EQ(gate().commit(entry).refusal.reason, "read only");
}

// Without a poll or a refresh between.
TEST_F(Write_gate_test, WhatTheDeviceHoldsAtThisMomentDecides) {
    load(std::string(LEVEL_ITEM) + R"("binding": "access read-only if [mode] == 1;)"
                                   R"( visible if [mode] != 2; range 0..[limit]"})");
    Data_entry& entry = panel->item(0);
    const int value = 40;
    const auto reason_in = [&](int mode, int limit) {
        entry.Set_value(&value, sizeof value);
        panel->device().set_integer(1, 0, mode);
        panel->device().set_integer(2, 0, limit);
        const std::string reason = gate().commit(entry).refusal.reason;
        EXPECT_EQ(refusal({number(3, value)}, Hidden::REFUSED),
                  reason.empty() ? "" : "Level 40 dB: " + reason);
        return reason;
    };
    EXPECT_EQ(reason_in(1, 50), "read only");
    EXPECT_EQ(reason_in(2, 50), "not shown");
    EXPECT_EQ(reason_in(0, 39), "allowed: 0 dB..39 dB");
    EXPECT_EQ(write_count(), 0U);
    EXPECT_EQ(reason_in(0, 40), "");
    EXPECT_EQ(number_of(3), 40);
}

}  // namespace
}  // namespace frontpanel
