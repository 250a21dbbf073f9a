#include <frontpanel_data/data_model.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <random>
#include <string>

#include "support/capture.h"
#include "support/fake_device.h"
#include "support/faulty_interface.h"
#include "support/indexes.h"
#include "support/line_gates.h"

namespace {

using support::capture;
using support::expect_line_gate;
using support::Fake_device;
using support::Fault;
using support::Faulty_interface;
using support::Gate;
using support::Operation;

const Index_t INDEX = support::index_of({3});
constexpr unsigned int UNREAD_PID = 65547;
constexpr unsigned int ALL = MAX_STRING_LENGTH + 1;

class String_probe : public String_model {
public:
    using String_model::String_model;
    bool is_initialised() const { return m_init; }
};

// A model between two fields of bytes that no operation may touch.
class Guarded_model {
public:
    explicit Guarded_model(const std::string& text, unsigned int max_length = 8,
                           unsigned int pid = 120)
        : model(pid, &INDEX, max_length) {
        std::memset(m_before, GUARD, sizeof m_before);
        std::memset(m_after, GUARD, sizeof m_after);
        model.Set(text.data(), static_cast<unsigned int>(text.size()));
    }
    ~Guarded_model() {
        EXPECT_EQ(std::count(m_before, m_before + sizeof m_before, GUARD), 64);
        EXPECT_EQ(std::count(m_after, m_after + sizeof m_after, GUARD), 64);
    }
    Guarded_model(const Guarded_model&) = delete;
    Guarded_model& operator=(const Guarded_model&) = delete;

    std::string text() {
        char buffer[ALL];
        EXPECT_EQ(model.Get(buffer, ALL), Data_model::OK);
        return std::string(buffer, strnlen(buffer, ALL));
    }

private:
    static constexpr unsigned char GUARD = 0xA5;
    unsigned char m_before[64];

public:
    String_probe model;

private:
    unsigned char m_after[64];
};

TEST(StringModel, StartsEmpty) {
    String_probe model(120, &INDEX, 16);
    EXPECT_EQ(model.Get_current_length(), 0u);
    EXPECT_EQ(model.Get_max_length(), 16u);
    EXPECT_TRUE(model.Is_active());
    EXPECT_FALSE(model.is_initialised());
}

TEST(StringModel, TakesTheLongestTextThatADeviceHolds) {
    Guarded_model guarded(std::string(256, 'x'), 256);
    EXPECT_EQ(guarded.model.Get_current_length(), 256u);
    EXPECT_EQ(guarded.text(), std::string(256, 'x'));
}

TEST(StringModelDeathTest, AMaximumBeyondTheLongestTextIsAProgrammingError) {
    EXPECT_DEATH(String_model(120, &INDEX, 257),
                 "Assertion `max_length<=MAX_STRING_LENGTH' failed");
    EXPECT_DEATH(String_model(120, &INDEX, 0xFFFFFFFF),
                 "Assertion `max_length<=MAX_STRING_LENGTH' failed");
    EXPECT_DEATH(String_model(120, nullptr, 257), "Assertion `index' failed");
}

TEST(StringModelDeathTest, NullBuffersAndZeroLengthsAreProgrammingErrors) {
    String_model model(120, &INDEX, 16);
    char buffer[8];
    EXPECT_DEATH(model.Get(nullptr, 4), "Assertion `buffer&&length' failed");
    EXPECT_DEATH(model.Get(buffer, 0), "Assertion `buffer&&length' failed");
    EXPECT_DEATH(model.Get(nullptr, 4, 0), "Assertion `buffer&&length' failed");
    EXPECT_DEATH(model.Get(buffer, 0, 0), "Assertion `buffer&&length' failed");
    EXPECT_DEATH(model.Set(nullptr, 4), "Assertion `buffer' failed");
}

TEST(StringModel, SetCutsALongTextAtTheMaximum) {
    Guarded_model guarded(std::string(300, 'a') + "b", 16);
    EXPECT_EQ(guarded.text(), std::string(16, 'a'));
}

TEST(StringModel, SetOfNoCharactersEmptiesTheText) {
    Guarded_model guarded("ABC");
    EXPECT_EQ(guarded.model.Set("XYZ", 0), Data_model::OK);
    EXPECT_EQ(guarded.text(), "");
}

TEST(StringModel, SetTakesOnlyTheCharactersTold) {
    Guarded_model guarded("ABC");
    EXPECT_EQ(guarded.model.Set("UVWXYZ", 2), Data_model::OK);
    EXPECT_EQ(guarded.text(), "UV");
    EXPECT_EQ(guarded.model.Get_current_length(), 2u);
}

TEST(StringModel, GetCopiesTheTerminatorAndWhatFollowsIt) {
    Guarded_model guarded("ABCDEF");
    guarded.model.Set("XY", 2);
    char buffer[8];
    std::memset(buffer, 'e', sizeof buffer);
    EXPECT_EQ(guarded.model.Get(buffer, 6), Data_model::OK);
    EXPECT_EQ(std::string(buffer, sizeof buffer), std::string("XY\0DEFee", 8));
}

TEST(StringModel, GetCopiesAtMostItsStore) {
    Guarded_model guarded("AB");
    char buffer[300];
    std::memset(buffer, 'e', sizeof buffer);
    EXPECT_EQ(guarded.model.Get(buffer, sizeof buffer), Data_model::OK);
    EXPECT_STREQ(buffer, "AB");
    EXPECT_EQ(std::count(buffer + ALL, buffer + sizeof buffer, 'e'), 300 - 257);
}

TEST(StringModel, GetOfFewerCharactersWritesNoTerminator) {
    Guarded_model guarded("ABCDEF");
    char buffer[4] = {'e', 'e', 'e', 'e'};
    EXPECT_EQ(guarded.model.Get(buffer, 2), Data_model::OK);
    EXPECT_EQ(std::string(buffer, sizeof buffer), "ABee");
}

// What a window of `length` characters at `offset` shows of a text that is at least as long.
std::string window(const std::string& text, unsigned int length, unsigned int offset) {
    const std::string round = text + " " + text;
    const unsigned int start = offset > text.size() ? 0 : offset;
    return start + length <= text.size() ? text.substr(start, length) : round.substr(start, length);
}

TEST(StringModelWindow, GoesRoundWithOneBlank) {
    Guarded_model guarded("HELLO");
    char buffer[5] = {'e', 'e', 'e', 'e', 'e'};
    EXPECT_EQ(guarded.model.Get(buffer, 4, 3), Data_model::OK);
    EXPECT_EQ(std::string(buffer, 5), "LO He");
}

TEST(StringModelWindow, ShowsEveryPlaceOfATextWithoutATerminator) {
    const std::string text = "ABCDEFGHIJ";
    Guarded_model guarded(text, 16);
    for (unsigned int length = 1; length <= text.size(); ++length) {
        for (const unsigned int offset :
             {0u, 1u, 2u, 5u, 8u, 9u, 10u, 11u, 12u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
            char buffer[12];
            std::memset(buffer, 'e', sizeof buffer);
            EXPECT_EQ(guarded.model.Get(buffer, length, offset), Data_model::OK);
            EXPECT_EQ(std::string(buffer, sizeof buffer),
                      window(text, length, offset) + std::string(sizeof buffer - length, 'e'))
                << "length " << length << " offset " << offset;
        }
    }
}

TEST(StringModelWindow, AShortTextIsCopiedWhole) {
    Guarded_model guarded("HELLO");
    char buffer[8];
    std::memset(buffer, 'e', sizeof buffer);
    EXPECT_EQ(guarded.model.Get(buffer, 6, 3), Data_model::OK);
    EXPECT_STREQ(buffer, "HELLO");
    EXPECT_EQ(buffer[6], 'e');
}

TEST(StringModelWindow, OfAnEmptyTextIsTheTerminator) {
    Guarded_model guarded("");
    char buffer[2] = {'e', 'e'};
    EXPECT_EQ(guarded.model.Get(buffer, 1, 0), Data_model::OK);
    EXPECT_EQ(std::string(buffer, 2), std::string("\0e", 2));
}

TEST(StringModelWindow, BeyondTheStoreIsCopiedOnlyToItsEnd) {
    Guarded_model guarded("HELLO");
    char buffer[300];
    std::memset(buffer, 'e', sizeof buffer);
    EXPECT_EQ(guarded.model.Get(buffer, sizeof buffer, 3), Data_model::OK);
    EXPECT_STREQ(buffer, "HELLO");
    EXPECT_EQ(buffer[ALL], 'e');
}

struct Step {
    const char* text;
    int value;
    int position;
    int result;
    const char* after;
};

// The maximum is 8 characters.
const Step STEPS[] = {
    {"AB", 1, 0, Data_model::OK, "AC"},
    {"AB", 1, 1, Data_model::OK, "BB"},
    {"AB", -1, 1, Data_model::OK, "@B"},
    {"AB", 0, 0, Data_model::OK, "AB"},
    // The printable characters end a step, they do not wrap it.
    {"~", 1, 0, Data_model::OK, "\x7f"},
    {"~", 2, 0, Data_model::INVALID, "~"},
    {"\x7f", 1, 0, Data_model::INVALID, "\x7f"},
    {"!", -1, 0, Data_model::OK, " "},
    {" ", -1, 0, Data_model::INVALID, " "},
    {"A ", -5, 0, Data_model::INVALID, "A "},
    // Characters count modulo 256.
    {"A", 256, 0, Data_model::OK, "A"},
    {"A", 257, 0, Data_model::OK, "B"},
    {"A", -256, 0, Data_model::OK, "A"},
    {"A", 191, 0, Data_model::INVALID, "A"},
    {"A", 223, 0, Data_model::OK, " "},
    {"A", INT_MAX, 0, Data_model::OK, "@"},
    {"A", INT_MIN, 0, Data_model::OK, "A"},
    {"\xe4", -112, 0, Data_model::OK, "t"},
    {"\xe4", 0, 0, Data_model::INVALID, "\xe4"},
    {"\xe4", 60, 0, Data_model::OK, " "},
    // Left of the text: blanks, and nothing is stepped.
    {"AB", 0, 2, Data_model::OK, " AB"},
    {"AB", 0, 3, Data_model::OK, "  AB"},
    {"AB", 5, 3, Data_model::OK, "  AB"},
    {"AB", 0, 6, Data_model::OK, "     AB"},
    {"AB", 0, 7, Data_model::INVALID, "AB"},
    {"AB", 0, 8, Data_model::INVALID, "AB"},
    {"AB", 0, INT_MAX, Data_model::INVALID, "AB"},
    {"", 1, 0, Data_model::OK, " "},
    {"", 1, 6, Data_model::OK, "       "},
    {"", 1, 7, Data_model::INVALID, ""},
    {"ABCDEFG", 0, 7, Data_model::INVALID, "ABCDEFG"},
    {"ABCDEFGH", 0, 8, Data_model::INVALID, "ABCDEFGH"},
    // Right of the text: blanks, and nothing is stepped.
    {"AB", 0, -1, Data_model::OK, "AB "},
    {"AB", 0, -2, Data_model::OK, "AB  "},
    {"AB", 9, -2, Data_model::OK, "AB  "},
    {"AB", 0, -6, Data_model::OK, "AB      "},
    {"AB", 0, -7, Data_model::INVALID, "AB"},
    {"AB", 0, INT_MIN, Data_model::INVALID, "AB"},
    {"", 0, -1, Data_model::OK, " "},
    {"", 0, -8, Data_model::OK, "        "},
    {"", 0, -9, Data_model::INVALID, ""},
    {"ABCDEFGH", 0, -1, Data_model::INVALID, "ABCDEFGH"},
    {"ABCDEFGH", 1, 0, Data_model::OK, "ABCDEFGI"},
    {"ABCDEFGH", 1, 7, Data_model::OK, "BBCDEFGH"},
};

TEST(StringModelStep, StepsOrWidens) {
    for (const Step& step : STEPS) {
        Guarded_model guarded(step.text);
        EXPECT_EQ(guarded.model.Inc_value(step.value, step.position), step.result)
            << "[" << step.text << "] " << step.value << " at " << step.position;
        EXPECT_EQ(guarded.text(), step.after)
            << "[" << step.text << "] " << step.value << " at " << step.position;
    }
}

TEST(StringModelStep, ATextWithoutRoomRefusesAllSteps) {
    for (const int position : {INT_MIN, -1, 0, 1, INT_MAX}) {
        Guarded_model guarded("", 0);
        EXPECT_EQ(guarded.model.Inc_value(1, position), Data_model::INVALID) << position;
        EXPECT_EQ(guarded.text(), "");
    }
}

TEST(StringModelStep, MarksTheModelInitialisedWithoutReading) {
    Guarded_model guarded("AB");
    guarded.model.Inc_value(1, 0);
    EXPECT_TRUE(guarded.model.is_initialised());
}

TEST(StringModelStep, MarksTheModelInitialisedEvenWhenItRefuses) {
    Guarded_model guarded("AB");
    EXPECT_EQ(guarded.model.Inc_value(0, 8), Data_model::INVALID);
    EXPECT_TRUE(guarded.model.is_initialised());
}

TEST(StringModelStep, OfATextThatTheDeviceMadeTooLongStaysInsideIt) {
    Fake_device device;
    device.expect_get_text(120, 3, "ABCDEFGHIJKL");
    Guarded_model guarded("", 8);
    ASSERT_EQ(guarded.model.Refresh(&device), Data_model::OK);
    EXPECT_EQ(guarded.model.Inc_value(1, 0), Data_model::INVALID);
    EXPECT_EQ(guarded.model.Inc_value(1, 3), Data_model::INVALID);
    EXPECT_EQ(guarded.model.Inc_value(1, -1), Data_model::INVALID);
    EXPECT_EQ(guarded.model.Inc_value(1, 12), Data_model::INVALID);
    EXPECT_EQ(guarded.text(), "ABCDEFGHIJKL");
    EXPECT_EQ(guarded.model.Inc_value(1, 4), Data_model::OK);
    EXPECT_EQ(guarded.text(), "ABCDEFGIIJKL");
}

// The whole operation, said in another way.
int step_text(std::string& text, long max, long value, long position) {
    const long length = static_cast<long>(text.size());
    const long index = length - position - 1;
    if (index >= max || (index < 0 && max <= position + 1)) {
        return Data_model::INVALID;
    }
    if (index < 0) {
        text.insert(0, static_cast<std::size_t>(-index), ' ');
    } else if (position < 0) {
        text.append(static_cast<std::size_t>(-position), ' ');
    } else {
        const auto old = static_cast<unsigned char>(text[static_cast<std::size_t>(index)]);
        const long stepped = ((old + value) % 256 + 256) % 256;
        if (stepped < 32 || stepped > 127) {
            return Data_model::INVALID;
        }
        text[static_cast<std::size_t>(index)] = static_cast<char>(stepped);
    }
    return Data_model::OK;
}

TEST(StringModelStep, AnySequenceOfStepsKeepsTheTextWithinItsStore) {
    std::mt19937 random(20240229);
    const auto number = [&](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    for (int round = 0; round < 300; ++round) {
        const int max = round % 3 == 0 ? 256 : number(0, 12);
        std::string text(static_cast<std::size_t>(number(0, max)), 'm');
        Guarded_model guarded(text, static_cast<unsigned int>(max));
        for (int step = 0; step < 60; ++step) {
            const bool wild = number(0, 9) == 0;
            const int value = wild ? number(INT_MIN, INT_MAX) : number(-60, 60);
            const int position = wild ? number(INT_MIN, INT_MAX) : number(-4, max + 4);
            const std::string before = text;
            const int expected = step_text(text, max, value, position);
            ASSERT_EQ(guarded.model.Inc_value(value, position), expected)
                << "[" << before << "] " << value << " at " << position << " of " << max;
            ASSERT_EQ(guarded.text(), text)
                << "[" << before << "] " << value << " at " << position << " of " << max;
        }
    }
}

TEST(StringModel, RefreshReadsTheWholeStore) {
    Fake_device device;
    device.expect_get_text(120, 3, "HELLO");
    Guarded_model guarded("AB");
    EXPECT_EQ(guarded.model.Refresh(&device), Data_model::OK);
    EXPECT_EQ(guarded.text(), "HELLO");
}

TEST(StringModel, ATextThatTheDeviceDidNotEndEndsAtTheStore) {
    Fake_device device;
    device.expect_get(120, 3, ALL, std::string(300, 'z'));
    Guarded_model guarded("AB", 16);
    EXPECT_EQ(guarded.model.Refresh(&device), Data_model::OK);
    EXPECT_EQ(guarded.model.Get_current_length(), 256u);
    EXPECT_EQ(guarded.text(), std::string(256, 'z'));
}

TEST(StringModel, AFailedReadIsAnErrorAndKeepsWhatTheInterfaceLeft) {
    Fake_device device;
    Faulty_interface faulty(device);
    faulty.fail_call(Operation::GET, 1);
    faulty.fail_call(Operation::GET, 2, Fault{5, "X"});
    faulty.fail_call(Operation::GET, 3, Fault{-1, std::string(257, 'z')});
    Guarded_model guarded("AB");
    EXPECT_EQ(guarded.model.Refresh(&faulty), Data_model::ERROR);
    EXPECT_EQ(guarded.text(), "AB");
    EXPECT_EQ(guarded.model.Refresh(&faulty), Data_model::ERROR);
    EXPECT_EQ(guarded.text(), "XB");
    EXPECT_EQ(guarded.model.Refresh(&faulty), Data_model::ERROR);
    EXPECT_EQ(guarded.text(), std::string(256, 'z')) << "ended, although the read failed";
}

TEST(StringModel, CommitDoesNotSendTheTerminator) {
    Fake_device device;
    device.expect_set(120, 3, "HELLO");
    Guarded_model guarded("HELLO");
    EXPECT_EQ(guarded.model.Commit(&device), Data_model::OK);
}

TEST(StringModel, CommitOfAnEmptyTextWritesNoBytes) {
    Fake_device device;
    device.expect_set(120, 3, "");
    Guarded_model guarded("");
    EXPECT_EQ(guarded.model.Commit(&device), Data_model::OK);
}

TEST(StringModel, AFailedWriteIsAnErrorAndKeepsTheText) {
    for (const int failure : {-1, 1, 2, 77}) {
        Fake_device device;
        device.expect_set(120, 3, "AB", failure);
        Guarded_model guarded("AB");
        EXPECT_EQ(guarded.model.Commit(&device), Data_model::ERROR);
        EXPECT_EQ(guarded.text(), "AB");
    }
}

TEST(StringModel, TheUnreadParameterIsWrittenButNeverRead) {
    Fake_device device;
    Guarded_model guarded("AB", 8, UNREAD_PID);
    EXPECT_EQ(guarded.model.Refresh(&device), Data_model::OK);
    EXPECT_EQ(guarded.text(), "AB");
    device.expect_set(UNREAD_PID, 3, "AB");
    EXPECT_EQ(guarded.model.Commit(&device), Data_model::OK);
}

TEST(StringModel, InitReadsNothing) {
    Fake_device device;
    VarIdDataInfStore::m_pDataAccessInf = &device;
    Guarded_model guarded("AB");
    Data_model& base = guarded.model;
    base.Init();
    EXPECT_EQ(base.Refresh(), Data_model::OK);
    EXPECT_EQ(base.Commit(), Data_model::OK);
    VarIdDataInfStore::m_pDataAccessInf = nullptr;
    EXPECT_TRUE(guarded.model.is_initialised());
    EXPECT_TRUE(device.calls().empty());
}

TEST(StringModelLines, ReadingTheTextPrintsNothing) {
    Guarded_model guarded("ABCDEF");
    char buffer[ALL];
    EXPECT_EQ(capture(0xFFFFFFFF,
                      [&] {
                          guarded.model.Get(buffer, ALL);
                          guarded.model.Get(buffer, 2, 1);
                      })
                  .out,
              "");
}

TEST(StringModelLines, SetTellsTheLengthAskedFor) {
    Guarded_model guarded("");
    const auto action = [&] { guarded.model.Set("HELLO", 5); };
    EXPECT_EQ(capture(0xFFFFFFFF, action).out, "String_model::Set: value[HELLO], length[5]\n");
    expect_line_gate("String_model::Set: value[HELLO], length[5]\n", 0x1, Gate::LEAF, action);
    EXPECT_EQ(capture(0x1, [&] { guarded.model.Set("ABCDEFGHIJ", 10); }).out,
              "String_model::Set: value[ABCDEFGH], length[10]\n");
}

TEST(StringModelLines, SteppingTellsItsArguments) {
    Guarded_model guarded("AB");
    const auto action = [&] { guarded.model.Inc_value(0, 1); };
    EXPECT_EQ(capture(0xFFFFFFFF, action).out, "String_model::Inc_value: value[0], position[1]\n");
    expect_line_gate("String_model::Inc_value: value[0], position[1]\n", 0x1, Gate::LEAF, action);
}

TEST(StringModelLines, WideningToTheRightTellsThePosition) {
    Guarded_model guarded("AB");
    EXPECT_EQ(capture(0x1, [&] { guarded.model.Inc_value(0, -2); }).out,
              "String_model::Inc_value: value[0], position[-2]\nposition[-2], length[2]\n");
}

TEST(StringModelLines, ARefusedStepTellsOnlyItsArguments) {
    Guarded_model guarded("AB");
    EXPECT_EQ(capture(0x1, [&] { guarded.model.Inc_value(0, -7); }).out,
              "String_model::Inc_value: value[0], position[-7]\n");
}

TEST(StringModelLines, RefreshTellsTheTextBeforeAndAfter) {
    Fake_device device;
    device.answer_get_text(120, 3, "XYZ");
    Guarded_model guarded("AB");
    char line[64];
    std::snprintf(line, sizeof line, "String_model::Refresh pDataAccessInf[%p] \n",
                  static_cast<void*>(static_cast<Data_interface*>(&device)));
    const auto action = [&] { guarded.model.Refresh(&device); };
    EXPECT_EQ(capture(0x1, action).out,
              "[Refresh][string_model.cpp][#] \n"
              "String_model::Refresh before:m_pid=120 65547, m_varidx=3, m_value=AB \n" +
                  std::string(line) +
                  "String_model::Refresh after:m_pid=120, m_varidx=3, m_value=XYZ \n");
    expect_line_gate("[Refresh][string_model.cpp][#] \n", 0x10001, Gate::LEAF, action);
    expect_line_gate("String_model::Refresh before:", 0x10001, Gate::LEAF, action);
    expect_line_gate(line, 0x10001, Gate::LEAF, action);
    expect_line_gate("String_model::Refresh after:", 0x10001, Gate::LEAF, action);
}

TEST(StringModelLines, RefreshOfTheUnreadParameterNamesNoInterface) {
    Guarded_model guarded("AB", 8, UNREAD_PID);
    EXPECT_EQ(capture(0x1, [&] { guarded.model.Refresh(nullptr); }).out,
              "[Refresh][string_model.cpp][#] \n"
              "String_model::Refresh before:m_pid=65547 65547, m_varidx=3, m_value=AB \n"
              "String_model::Refresh after:m_pid=65547, m_varidx=3, m_value=AB \n");
}

TEST(StringModelLines, CommitTellsTheTextWritten) {
    Fake_device device;
    Faulty_interface quiet(device);
    quiet.fail(Operation::SET, Fault{0, ""});
    Guarded_model guarded("AB");
    const auto action = [&] { guarded.model.Commit(&quiet); };
    const char* const line = "String_model::Commit: m_pid[120], m_varidx[3], m_value[AB]\n";
    EXPECT_EQ(capture(0xFFFFFFFF, action).out, line);
    expect_line_gate(line, 0x1, Gate::LEAF, action);
}

}  // namespace
