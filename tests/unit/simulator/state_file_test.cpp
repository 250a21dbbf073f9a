#include <frontpanel_simulator/state_file.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>

#include <frontpanel_base/atomic_file.h>
#include <frontpanel_base/input_error.h>
#include "support/folder.h"
#include "support/json_places.h"

namespace frontpanel {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr uint32_t GAIN = 100;
constexpr uint32_t LABEL = 406;

class State_file_test : public testing::Test {
protected:
    State_file_test() { declare(m_device); }

    static void declare(Memory_device& device, int highest = 120) {
        device.add_integer(GAIN, 1, -600, highest, 0);
        device.add_integer(GAIN, 0x0201, -600, 120, -35);
        device.add_text(LABEL, 0, 16, "Studio A");
    }
    static std::string damage(int number) {
        return R"({"version": 1, "values": [)" + std::to_string(number);
    }
    const std::string& file() const { return m_file; }
    void write(const std::string& text) { std::ofstream(m_file) << text; }
    std::string content() const { return read_input_file(m_file); }
    std::vector<std::string> restore(Memory_device& device) const {
        return State_file(m_file, device).restore();
    }
    std::string refusal() {
        try {
            restore(m_device);
        } catch (const Input_error& error) {
            return error.what();
        }
        return "";
    }

    support::Folder m_folder;
    std::string m_file = m_folder.file("values");
    Memory_device m_device;
};

TEST_F(State_file_test, ValuesSurviveARestart) {
    m_device.set_integer(GAIN, 1, -39);
    m_device.set_text(LABEL, 0, "Van \"2\" \\");
    State_file(file(), m_device).save();

    Memory_device restarted;
    declare(restarted);
    EXPECT_THAT(restore(restarted), IsEmpty());
    EXPECT_EQ(restarted.integer(GAIN, 1), -39);
    EXPECT_EQ(restarted.integer(GAIN, 0x0201), -35);
    EXPECT_EQ(restarted.text(LABEL, 0), "Van \"2\" \\");
}

TEST_F(State_file_test, HoldsOneLineForEachParameter) {
    m_device.set_text(LABEL, 0, "caf\xc3\xa9");
    State_file(file(), m_device).save();
    EXPECT_EQ(content(),
              "{\"version\": 1, \"values\": [\n"
              "{\"pid\":100,\"index\":1,\"integer\":0},\n"
              "{\"pid\":100,\"index\":513,\"integer\":-35},\n"
              "{\"pid\":406,\"index\":0,\"hex\":\"636166c3a9\"}\n"
              "]}\n");
}

TEST_F(State_file_test, AnyBytesOfATextSurvive) {
    std::string bytes;
    for (int byte = 1; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
        if (bytes.size() == 16 || byte == 255) {
            m_device.set_text(LABEL, 0, bytes);
            State_file(file(), m_device).save();
            Memory_device restarted;
            declare(restarted);
            EXPECT_THAT(restore(restarted), IsEmpty());
            EXPECT_EQ(restarted.text(LABEL, 0), bytes);
            bytes.clear();
        }
    }
}

TEST_F(State_file_test, WithoutAFileTheDeviceHasItsStartValues) {
    EXPECT_THAT(restore(m_device), IsEmpty());
    EXPECT_EQ(m_device.text(LABEL, 0), "Studio A");
    EXPECT_FALSE(fs::exists(file()));
}

TEST_F(State_file_test, WhatTheDeviceDoesNotHaveIsKeptForTheDeviceThatHasIt) {
    write(R"({"version": 1, "values": [
        {"pid": 7, "index": 3, "integer": 5},
        {"pid": 100, "index": 1, "text": "a label once"},
        {"pid": 406, "index": 0, "text": "Van"}]})");
    State_file state(file(), m_device);
    EXPECT_THAT(state.restore(), IsEmpty());
    m_device.set_integer(GAIN, 1, 12);
    state.save();
    EXPECT_EQ(content(),
              "{\"version\": 1, \"values\": [\n"
              "{\"pid\":7,\"index\":3,\"integer\":5},\n"
              "{\"pid\":100,\"index\":1,\"integer\":12},\n"
              "{\"pid\":100,\"index\":1,\"text\":\"a label once\"},\n"
              "{\"pid\":100,\"index\":513,\"integer\":-35},\n"
              "{\"pid\":406,\"index\":0,\"text\":\"Van\"}\n"
              "]}\n");
}

TEST_F(State_file_test, AValueThatNoLongerFitsIsDroppedWithALine) {
    write(R"({"version": 1, "values": [
        {"pid": 100, "index": 1, "integer": 121},
        {"pid": 100, "index": 513, "integer": -600},
        {"pid": 406, "index": 0, "text": "seventeen letters"}]})");
    EXPECT_THAT(restore(m_device),
                ElementsAre(file() + ": parameter 100 with index 1 has its start value: 121 is out "
                                     "of bounds",
                            file() + ": parameter 406 with index 0 has its start value: "
                                     "\"seventeen letters\" is out of bounds"));
    EXPECT_EQ(m_device.integer(GAIN, 1), 0);
    EXPECT_EQ(m_device.integer(GAIN, 0x0201), -600);
    EXPECT_EQ(m_device.text(LABEL, 0), "Studio A");
}

TEST_F(State_file_test, ADamagedFileIsPutAsideAndNothingOfItIsUsed) {
    const std::string damaged =
        R"({"version": 1, "values": [{"pid": 100, "index": 1, "integer": 7}, {"pid": 100)";
    write(damaged);
    EXPECT_THAT(
        restore(m_device),
        ElementsAre(testing::MatchesRegex(file() + ":1:[0-9]+: .*; the file is now " + file() +
                                          ".damaged, the device has its start values")));
    EXPECT_EQ(m_device.integer(GAIN, 1), 0);
    EXPECT_FALSE(fs::exists(file()));
    EXPECT_EQ(read_input_file(file() + ".damaged"), damaged);
}

TEST_F(State_file_test, ADamagedFileThatWasPutAsideStays) {
    for (int i = 1; i <= 10; ++i) {
        write(damage(i));
        restore(m_device);
    }
    EXPECT_EQ(read_input_file(file() + ".damaged"), damage(1));
    EXPECT_EQ(read_input_file(file() + ".damaged-8"), damage(8));
    EXPECT_EQ(read_input_file(file() + ".damaged-9"), damage(10));
}

TEST_F(State_file_test, EveryKindOfDamageIsTold) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"", ":1:1: The document is empty."},
        {R"({"version": 1, "values": [], "x": 1})", ": /x@: unknown member \"x\""},
        {R"({"version": 1, "values": [7]})", ": /values/0: expected an object"},
        {R"({"version": 1, "values": [{"pid": -1, "index": 0, "integer": 1}]})",
         ": /values/0/pid: expected"},
        {R"({"version": 1, "values": [{"pid": 1, "index": 4294967296, "integer": 1}]})",
         ": /values/0/index: expected"},
        {R"({"version": 1, "values": [{"pid": 1, "index": 0, "integer": 2147483648}]})",
         ": /values/0/integer: expected"},
        {R"({"version": 1, "values": [{"pid": 1, "index": 0}]})", ": /values/0: expected"},
        {R"({"version": 1, "values": [{"pid": 1, "index": 0, "integer": 1, "text": ""}]})",
         ": /values/0/text@: unknown member \"text\""},
        {R"({"version": 1, "values": [{"pid": 1, "index": 0, "hex": "0"}]})",
         ": /values/0/hex: expected pairs of the digits 0 to 9 and a to f"},
        {R"({"version": 1, "values": [{"pid": 1, "index": 0, "hex": "0G"}]})",
         ": /values/0/hex: expected pairs of the digits 0 to 9 and a to f"},
        {R"({"version": 1, "values": [{"pid": 1, "index": 0, "integer": 1},
                                      {"pid": 1, "index": 0, "integer": 1}]})",
         ": /values/1: duplicate parameter"},
        {R"({"version": 1, "values": [], "selections": [{"slot": 3, "pid": 9071}]})",
         ": /selections/0: expected a member \"option\""},
        {R"({"version": 1, "values": [], "selections": [{"slot": 3, "pid": 9071, "option": 1},
                                                        {"slot": 3, "pid": 9071, "option": 1}]})",
         ": /selections/1: duplicate list"},
        {std::string(5000, '\0'), ":1:1: The document is empty."},
        {R"({"ver)", ":1:6: Missing a closing quotation mark in string."},
        {R"({"version": 1, "values": [)" + std::string(5000, '['), ":"},
    };
    for (const auto& [text, problem] : cases) {
        write(text);
        const std::vector<std::string> lines = restore(m_device);
        ASSERT_EQ(lines.size(), 1U) << text;
        const std::string line = file() + placed(text, "menu.json" + problem).substr(9);
        EXPECT_EQ(lines[0].rfind(line, 0), 0U) << lines[0] << "\nfor " << text.substr(0, 200);
        EXPECT_EQ(m_device.integer(GAIN, 1), 0) << text.substr(0, 200);
    }
}

TEST_F(State_file_test, AFileThatNeverHeldValuesIsRefusedAndStays) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"[]", ": /: expected an object, found a list"},
        {R"({"values": []})", ": /: expected a member \"version\""},
        {R"({"version": 3, "values": []})",
         ": /version: expected a whole number from 1 to 2, found 3"},
        {R"({"device": {"parameters": []}, "menu": {"name": "Main", "items": []}})",
         ": /: expected a member \"version\""},
        {R"({"version": "1.0.3", "dependencies": {}})",
         ": /version: expected a whole number from 1 to 2, found a text"},
        {"A letter", ":1:1: Invalid value."},
        {std::string(5000, '['), ":1:101: values are nested more than 100 deep"},
    };
    for (const auto& [text, problem] : cases) {
        write(text);
        EXPECT_EQ(refusal(), file() + placed(text, "menu.json" + problem).substr(9) +
                                 "; this is not a state file of version 1 or 2 and stays as it is");
        EXPECT_EQ(content(), text);
        EXPECT_FALSE(fs::exists(file() + ".damaged"));
    }
}

TEST_F(State_file_test, AFileWithAMistakeAnywhereIsTakenPutAsideOrLeftAsItIs) {
    State_file(file(), m_device).save();
    const std::string whole = content();
    std::mt19937 random(7);
    for (size_t at = 0; at < whole.size(); ++at) {
        std::string text = whole;
        text[at] = static_cast<char>(random() % 256);
        write(text);
        if (!refusal().empty()) {
            EXPECT_EQ(content(), text);
        }
        write(whole.substr(0, at));
        restore(m_device);
        for (const fs::directory_entry& entry : fs::directory_iterator(m_folder.path())) {
            fs::remove(entry);
        }
    }
}

TEST_F(State_file_test, WhatIsNoFileOrTooLargeIsRefusedAndStays) {
    EXPECT_EQ(State_file("/dev/zero", m_device).name(), "/dev/zero");
    EXPECT_THROW(State_file("/dev/zero", m_device).restore(), Input_error);
    fs::create_directory(file());
    EXPECT_EQ(refusal(), file() + ": cannot be read: not a regular file");
    fs::remove(file());
    write("");
    fs::resize_file(file(), State_file::LARGEST + 1);
    EXPECT_EQ(refusal(), file() + ": is larger than 64 MiB");
    EXPECT_EQ(fs::file_size(file()), State_file::LARGEST + 1);
}

TEST_F(State_file_test, ADamagedFileThatCannotBePutAsideIsRefused) {
    write(damage(1));
    const support::Read_only_folder read_only(m_folder.path());
    EXPECT_EQ(refusal(), file() + ": is damaged and cannot be put aside: Permission denied");
    EXPECT_EQ(content(), damage(1));
}

TEST_F(State_file_test, ADamagedFileWhoseNameLeavesNoRoomForAnotherIsRefused) {
    const std::string name = m_folder.file(std::string(248, 'x'));
    std::ofstream(name) << damage(1);
    try {
        State_file(name, m_device).restore();
        ADD_FAILURE() << "the file cannot be put aside";
    } catch (const Input_error& error) {
        EXPECT_EQ(error.what(), name + ": is damaged and cannot be put aside: File name too long");
    }
    EXPECT_EQ(read_input_file(name), damage(1));
}

TEST_F(State_file_test, AFileThatCannotBeReachedIsRefusedWithItsReason) {
    const std::string name = m_folder.file(std::string(300, 'x'));
    EXPECT_THROW(State_file(name, m_device).restore(), Input_error);
    try {
        State_file(name, m_device).restore();
    } catch (const Input_error& error) {
        EXPECT_EQ(error.what(), name + ": cannot be read: File name too long");
    }
}

// ---- as many values as a device may have

constexpr uint32_t MANY = 20480;

void declare_many(Memory_device& device, uint32_t count, const std::string& text) {
    for (uint32_t i = 0; i < count; ++i) {
        ASSERT_EQ(device.add_text(1000 + i, 0, MAX_STRING_LENGTH, text), Memory_device::DONE);
    }
}

TEST_F(State_file_test, WhatADeviceOfManyLongTextsWritesIsReadAgain) {
    const std::string texts[] = {std::string(MAX_STRING_LENGTH, '"'),
                                 std::string(MAX_STRING_LENGTH, '\xE9')};
    Memory_device device;
    declare_many(device, MANY, texts[0]);
    for (uint32_t i = 0; i < MANY; i += 2) {
        ASSERT_EQ(device.set_text(1000 + i, 0, texts[1]), Memory_device::DONE);
    }
    State_file(file(), device).save();
    EXPECT_GT(fs::file_size(file()), size_t{8} << 20);
    Memory_device restarted;
    declare_many(restarted, MANY, "");
    EXPECT_THAT(restore(restarted), IsEmpty());
    for (uint32_t i = 0; i < MANY; ++i) {
        ASSERT_EQ(restarted.text(1000 + i, 0), texts[(i + 1) % 2]) << i;
    }
}

TEST_F(State_file_test, ValuesThatCouldNotBeReadAgainAreNotWritten) {
    constexpr size_t KIB = 1024;
    State_file(file(), m_device).save();
    std::string before = content();
    std::string refused;
    Memory_device device;
    for (uint32_t i = 0; refused.empty(); ++i) {
        ASSERT_EQ(device.add_text(i, 0, MAX_STRING_LENGTH, std::string(256, '\xE9')), 0);
        State_file state(file(), device, nullptr, KIB);
        try {
            state.check_savable();
            state.save();
            before = content();
            EXPECT_THAT(state.restore(), IsEmpty());
        } catch (const Input_error& error) {
            refused = error.what();
            EXPECT_THROW(state.save(), Input_error);
        }
    }
    EXPECT_THAT(refused, testing::MatchesRegex(file() + ": cannot be written: the values need "
                                                        "[0-9]* bytes, more than 1024"));
    EXPECT_EQ(content(), before);
}

// ---- what is selected on cards

TEST_F(State_file_test, SelectionsOnCardsSurviveARestart) {
    Card_service cards;
    cards.add_combo_box(3, 9071, {{"0", "Sport"}, {"1", "News"}}, 0);
    cards.add_tree(5, 9072, "{}");
    EXPECT_TRUE(cards.select(3, 9071, 1));
    State_file(file(), m_device, &cards).save();
    EXPECT_NE(content().find("], \"selections\": [\n"
                             "{\"slot\":3,\"pid\":9071,\"option\":1},\n"
                             "{\"slot\":5,\"pid\":9072,\"option\":-1}\n"
                             "]}\n"),
              std::string::npos)
        << content();

    Card_service restarted;
    restarted.add_combo_box(3, 9071, {{"0", "Sport"}, {"1", "News"}}, 0);
    restarted.add_tree(5, 9072, "{}");
    EXPECT_THAT(State_file(file(), m_device, &restarted).restore(), IsEmpty());
    EXPECT_EQ(restarted.selected(3, 9071), 1);
    EXPECT_EQ(restarted.selected(5, 9072), -1);
}

TEST_F(State_file_test, ASelectionThatIsGoneIsDroppedWithALine) {
    write(R"({"version": 1, "values": [], "selections": [{"slot": 3, "pid": 9071, "option": 2}]})");
    Card_service cards;
    cards.add_combo_box(3, 9071, {{"0", "Sport"}, {"1", "News"}}, 1);
    EXPECT_THAT(State_file(file(), m_device, &cards).restore(),
                ElementsAre(file() + ": list 9071 of the card in slot 3 has its start selection: "
                                     "there is no option 2"));
    EXPECT_EQ(cards.selected(3, 9071), 1);
}

TEST_F(State_file_test, ASelectionOfACardThatIsNotThereIsKeptForIt) {
    const std::string selection = R"({"slot":4,"pid":9071,"option":2})";
    write(R"({"version": 1, "values": [], "selections": [)" + selection + "]}");
    Card_service cards;
    State_file with_cards(file(), m_device, &cards);
    EXPECT_THAT(with_cards.restore(), IsEmpty());
    with_cards.save();
    EXPECT_NE(content().find(selection), std::string::npos);
    State_file without_cards(file(), m_device);
    EXPECT_THAT(without_cards.restore(), IsEmpty());
    without_cards.save();
    EXPECT_NE(content().find(selection), std::string::npos);
}

// Rules that have written 50 to a parameter, and those that wrote a text.
std::vector<State_file::Rule_writes> some_rules() {
    return {{"5.0-0123456789abcdef", {{GAIN, 1, INTEGER, 50, ""}}},
            {"-00", {{LABEL, 0, STRING, 0, "a \"b\""}, {GAIN, 1, INTEGER, -3, ""}}}};
}

TEST_F(State_file_test, WhatRulesHaveDoneSurvivesARestart) {
    State_file state(m_file, m_device);
    EXPECT_TRUE(state.set_rule_writes(some_rules()));
    EXPECT_FALSE(state.set_rule_writes(some_rules()));
    state.save();
    EXPECT_EQ(
        content(),
        "{\"version\": 2, \"values\": [\n"
        "{\"pid\":100,\"index\":1,\"integer\":0},\n"
        "{\"pid\":100,\"index\":513,\"integer\":-35},\n"
        "{\"pid\":406,\"index\":0,\"text\":\"Studio A\"}\n"
        "], \"rules\": [\n"
        "{\"rules\":\"-00\",\"writes\":[{\"pid\":406,\"index\":0,\"text\":\"a \\\"b\\\"\"},"
        "{\"pid\":100,\"index\":1,\"integer\":-3}]},\n"
        "{\"rules\":\"5.0-0123456789abcdef\",\"writes\":[{\"pid\":100,\"index\":1,\"integer\":50}]}\n"
        "]}\n");
    State_file restarted(m_file, m_device);
    EXPECT_THAT(restarted.restore(), IsEmpty());
    ASSERT_EQ(restarted.rule_writes().size(), 2U);
    EXPECT_EQ(restarted.rule_writes()[0].writes.at(0).text, "a \"b\"");
    EXPECT_FALSE(restarted.set_rule_writes(some_rules()));
}

TEST_F(State_file_test, RulesOfOtherMenusAreKeptAndThoseThatWroteNothingGo) {
    {
        State_file state(m_file, m_device);
        state.set_rule_writes(some_rules());
        state.save();
    }
    State_file state(m_file, m_device);
    state.restore();
    EXPECT_TRUE(state.set_rule_writes({{"-00", {}}, {"-11", {}}}));
    state.save();
    State_file restarted(m_file, m_device);
    restarted.restore();
    ASSERT_EQ(restarted.rule_writes().size(), 1U);
    EXPECT_EQ(restarted.rule_writes()[0].rules, "5.0-0123456789abcdef");
    EXPECT_TRUE(restarted.set_rule_writes({{"5.0-0123456789abcdef", {}}}));
    restarted.save();
    EXPECT_EQ(content().rfind("{\"version\": 1,", 0), 0U) << "any panel reads it again";
}

TEST_F(State_file_test, DamagedRulesAreADamagedFile) {
    for (const char* const rules :
         {R"([{"rules": "", "writes": []}])", R"([{"rules": "a"}])",
          R"([{"rules": "a", "writes": [1]}])",
          R"([{"rules": "a", "writes": []}, {"rules": "a", "writes": []}])"}) {
        SCOPED_TRACE(rules);
        write(std::string(R"({"version": 2, "values": [], "rules": )") + rules + "}");
        State_file state(m_file, m_device);
        EXPECT_EQ(state.restore().size(), 1U);
        EXPECT_THAT(state.rule_writes(), IsEmpty());
    }
    write(R"({"version": 1, "values": [], "rules": []})");
    EXPECT_EQ(restore(m_device).size(), 1U) << "the first version has no rules";
}

TEST_F(State_file_test, RulesBeyondTheLargestFileAreNotWritten) {
    State_file state(m_file, m_device, nullptr, 1024);
    state.save();
    const std::string before = content();
    std::vector<State_file::Rule_writes> rules;
    for (int i = 0; i < 40; ++i) {
        rules.push_back({"rules " + std::to_string(i), {{GAIN, 1, INTEGER, i, ""}}});
    }
    state.set_rule_writes(rules);
    EXPECT_THROW(state.save(), Input_error);
    EXPECT_EQ(content(), before);
}

}  // namespace
}  // namespace frontpanel
