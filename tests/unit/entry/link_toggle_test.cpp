// Homescreen entries: their toggle expression, the parameters that it names, and what it reads back.
#include <gtest/gtest.h>

#include <cstring>
#include <iterator>
#include <random>

#include "support/capture.h"
#include "support/line_gates.h"
#include "unit/entry/link_fixture.h"
#include "unit/eval/evaluation.h"

namespace {

using support::capture;
using support::Captured;
using support::expect_line_gate;
using support::Gate;
using support::index_of;

const std::string PREFIX = "[link_toggle.cpp][#] ";

class Link_toggle : public testing::Test {
protected:
    void SetUp() override { evaluation::forget_variables(); }
    void TearDown() override { evaluation::forget_variables(); }

    // A token that is only tested.
    FPData* token() { return reinterpret_cast<FPData*>(&m_token); }

    void store(unsigned int pid, std::initializer_list<uint16_t> index, int32_t value,
               RETURN_TYPE rt = INTEGER) {
        EntryModelCache record(Data_entry::RANGE_LEAF, nullptr, INTEGER);
        record.value_int = value;
        map[support::key_of(rt, pid, index_of(index))] = record;
    }
    void toggle_by(const std::string& expression) {
        EXPECT_EQ(link.setAsHomescreenEntry(expression, &map, token()), 0);
    }
    // The state that an expression without names evaluates to.
    int state_of(const std::string& expression) {
        toggle_by(expression);
        return link.CheckToggleState();
    }
    std::vector<std::string> names() {
        std::vector<std::string> all;
        for (const auto& [name, key] : link.homescreen_keys) {
            all.push_back(name);
        }
        return all;
    }

    var_index_map_t map;
    Housed housed{"Volume"};
    Open_link link{&housed};

private:
    int m_token = 0;
};

// --- becoming a homescreen entry

TEST_F(Link_toggle, AHomescreenEntryNeedsItsMapAndItsToken) {
    EXPECT_EQ(link.setAsHomescreenEntry("a=0", nullptr, token()), 0);
    EXPECT_FALSE(link.isHomescreenEntry());
    EXPECT_EQ(link.GetToggleExpression(), "a=0");
    EXPECT_EQ(link.Get_var_index_map(), nullptr);
    EXPECT_EQ(link.setAsHomescreenEntry("a=0*1", &map, nullptr), 0);
    EXPECT_FALSE(link.isHomescreenEntry());
    EXPECT_EQ(link.GetToggleExpression(), "a=0*1");
    EXPECT_EQ(link.Get_var_index_map(), &map);
    EXPECT_EQ(link.isVisible(), 1) << "the expression is not looked at";
    EXPECT_EQ(link.setAsHomescreenEntry("a=0", &map, token()), 0);
    EXPECT_TRUE(link.isHomescreenEntry());
    EXPECT_EQ(link.isVisible(), -1);
}

TEST_F(Link_toggle, NamesOfAnEntryThatIsNoHomescreenEntryAreNotLookedUp) {
    Captured printed =
        capture(0xFFFFFFFF, [&] { link.setAsHomescreenEntry("a=[]", &map, nullptr); });
    EXPECT_EQ(printed.err, "");
    EXPECT_EQ(link.GetToggleExpression(), "a=[]");
    printed = capture(0xFFFFFFFF, [&] { EXPECT_EQ(link.createGetRequests(token()), 0); });
    EXPECT_EQ(printed.out + printed.err, "");
}

TEST_F(Link_toggle, TellsThatItBecameAHomescreenEntry) {
    Menu parent("Input 1");
    Housed gain("Gain", support::any_index(), &parent);
    Link_entry named(&gain);
    const auto make = [&] { named.setAsHomescreenEntry("", nullptr, nullptr); };
    const std::string line =
        "[setAsHomescreenEntry]" + PREFIX + "Link [Gain] has become a Homescreen entry.\n";
    EXPECT_EQ(capture(0x400000, make).out, line) << "by the name of the housed entry";
    EXPECT_EQ(capture(0x80000, make).out, line);
    expect_line_gate(line, 0x480001, Gate::LEAF, make);
    Link_entry nowhere(nullptr);
    EXPECT_EQ(capture(0x80000, [&] { nowhere.setAsHomescreenEntry("", &map, nullptr); }).out,
              "[setAsHomescreenEntry]" + PREFIX + "Link [none] has become a Homescreen entry.\n");
}

TEST_F(Link_toggle, MayBeAMountLinkAsWell) {
    toggle_by("a=1");
    link.setAsMountLink(FunctionT1(), FunctionT1());
    EXPECT_TRUE(link.isHomescreenEntry());
    EXPECT_TRUE(link.isMountLink());
}

// --- names

void expect_key(const var_index_s& key, unsigned int pid, std::initializer_list<uint16_t> index) {
    EXPECT_EQ(key.rt, INTEGER);
    EXPECT_EQ(key.var, pid);
    const Index_t expected = index_of(index);
    EXPECT_EQ(key.index.m_index_num, expected.m_index_num);
    for (std::size_t level = 0; level < 8; ++level) {
        EXPECT_EQ(key.index.m_index[level], expected.m_index[level]) << level;
    }
}

TEST_F(Link_toggle, NamesAreParameterAddresses) {
    store(120, {}, 1);
    store(120, {2}, 2);
    store(120, {2, 7}, 3);
    toggle_by("a=[120]+[120.2]+[120.2.7]");
    EXPECT_EQ(names(), (Log{"120", "120.2", "120.2.7"}));
    expect_key(link.homescreen_keys["120"], 120, {});
    expect_key(link.homescreen_keys["120.2"], 120, {2});
    expect_key(link.homescreen_keys["120.2.7"], 120, {2, 7});
    EXPECT_EQ(link.GetToggleExpression(), "a=[120]+[120.2]+[120.2.7]") << "kept as it was given";
}

TEST_F(Link_toggle, PartsThatAreNoNumberCountAsZero) {
    store(0, {}, 1);
    store(120, {0}, 1);
    store(120, {2, 7}, 1);
    store(120, {0, 0}, 1);
    toggle_by("a=[mode]+[120.x]+[120.2.7.9]+[120..]+[ 120.2.7x]");
    EXPECT_EQ(link.homescreen_keys.size(), 5u);
    expect_key(link.homescreen_keys["mode"], 0, {});
    expect_key(link.homescreen_keys["120.x"], 120, {0});
    expect_key(link.homescreen_keys["120.2.7.9"], 120, {2, 7});
    expect_key(link.homescreen_keys["120.."], 120, {0, 0});
    expect_key(link.homescreen_keys[" 120.2.7x"], 120, {2, 7});
}

// Cut to the size of an index level it would be 120.2, another parameter.
TEST_F(Link_toggle, NumbersThatNoParameterHasAreUnknown) {
    store(120, {2}, 1);
    store(0, {}, 1);
    for (const char* const name :
         {"120.65538", "4294967296", "120.-65534", "-1", "99999999999999999999999999"}) {
        capture(0, [&] { toggle_by("a=[" + std::string(name) + "]"); });
        EXPECT_EQ(link.GetToggleExpression(), "error") << name;
    }
    EXPECT_TRUE(link.homescreen_keys.empty());
}

TEST_F(Link_toggle, ANameThatComesTwiceIsRecordedOnce) {
    store(120, {}, 1);
    toggle_by("a=[120]+[120]");
    EXPECT_EQ(names(), Log{"120"});
}

TEST_F(Link_toggle, AnEmptyNameTurnsTheExpressionOffForGood) {
    const Captured printed = capture(0, [&] { toggle_by("a=[]"); });
    EXPECT_EQ(printed.err,
              "Homescreen ERROR: Entry with name \"\" does not have a varid. Will not be able to "
              "evaluate toggle expression for [Volume].\n");
    EXPECT_EQ(printed.out, "");
    EXPECT_EQ(link.GetToggleExpression(), "error");
    EXPECT_TRUE(link.isHomescreenEntry());
    EXPECT_EQ(link.CheckToggleState(), 0);
    EXPECT_EQ(link.isVisible(), -1);
}

TEST_F(Link_toggle, AnUnknownParameterTurnsTheExpressionOffAndKeepsTheNamesBeforeIt) {
    store(120, {2}, 1);
    store(121, {}, 1);
    const Captured printed = capture(0, [&] { toggle_by("a=[120.2]+[77.1]+[121]"); });
    EXPECT_EQ(printed.err,
              "Homescreen ERROR: Entry with name \"77.1\" does not have a varid or index. Is it "
              "using new HS notation? Will not be able to evaluate toggle expression for "
              "[Volume].\n");
    EXPECT_EQ(printed.out, "");
    EXPECT_EQ(link.GetToggleExpression(), "error");
    EXPECT_EQ(names(), Log{"120.2"});
}

// Another number of levels is another parameter.
TEST_F(Link_toggle, AnAddressMatchesAllLevelsAndTheTypeOfTheKey) {
    store(120, {2}, 1);
    store(130, {}, 1, STRING);
    for (const char* const name : {"120", "120.2.0", "120.3", "121.2", "130"}) {
        capture(0, [&] { toggle_by("a=[" + std::string(name) + "]"); });
        EXPECT_EQ(link.GetToggleExpression(), "error") << name;
    }
}

TEST_F(Link_toggle, TellsTheNamesItFinds) {
    store(120, {}, 1);
    store(120, {2}, 1);
    store(120, {2, 7}, 1);
    toggle_by("a=[120]+[120.2]+[120.2.7]");
    const auto extract = [&] { EXPECT_EQ(link.createGetRequests(nullptr), 0); };
    const std::string start = "[createGetRequests]" + PREFIX;
    const std::string lines[] = {
        start + "Extracting dependecies for toggle expression\n",
        start + "homescreen_key = [120].0.0@i num_index_levels[0]\n",
        start + "homescreen_key = [120].2.0@i num_index_levels[1]\n",
        start + "homescreen_key = [120].2.7@i num_index_levels[2]\n",
    };
    EXPECT_EQ(capture(0x400000, extract).out, lines[0] + lines[1] + lines[2] + lines[3]);
    expect_line_gate(lines[0], 0x400001, Gate::LEAF, extract);
    expect_line_gate(lines[3], 0x400001, Gate::LEAF, extract);
}

TEST_F(Link_toggle, KeysOfTheExpressionFollowThoseOfTheHousedEntry) {
    housed.keys = {support::key_of(INTEGER, 5, index_of({}))};
    store(9, {}, 1);
    store(120, {}, 1);
    store(30, {4}, 1);
    toggle_by("a=[9]+[120]+[30.4]");
    std::vector<unsigned int> pids;
    for (const var_index_s& key : link.Get_var_index_map_keys(0)) {
        pids.push_back(key.var);
    }
    EXPECT_EQ(pids, (std::vector<unsigned int>{5, 120, 30, 9})) << "in the order of their names";
    Open_link nowhere(nullptr);
    nowhere.setAsHomescreenEntry("a=[9]", &map, token());
    EXPECT_EQ(nowhere.Get_var_index_map_keys(0).size(), 1u);
}

// --- values

TEST_F(Link_toggle, AValueIsCopied) {
    store(120, {2}, -123456);
    toggle_by("a=[120.2]");
    int32_t value = 0;
    EXPECT_EQ(link.GetGetRequest("120.2", &value, 4), 0);
    EXPECT_EQ(value, -123456);
    store(120, {2}, 8);
    EXPECT_EQ(link.GetGetRequest("120.2", &value, 4), 0);
    EXPECT_EQ(value, 8) << "looked up anew";
}

TEST_F(Link_toggle, AValueIsCopiedUpToItsSize) {
    store(120, {}, 0x01020304);
    toggle_by("a=[120]");
    unsigned char bytes[9] = "????????";
    EXPECT_EQ(link.GetGetRequest("120", bytes, 2), 0);
    EXPECT_EQ(bytes[2], '?');
    EXPECT_EQ(link.GetGetRequest("120", bytes, 6), 0);
    EXPECT_EQ(bytes[4], 0);
    EXPECT_EQ(bytes[5], 0);
    EXPECT_EQ(bytes[6], '?');
    int32_t value = 0;
    std::memcpy(&value, bytes, sizeof value);
    EXPECT_EQ(value, 0x01020304);
    for (const int length : {0, -1, -1000}) {
        EXPECT_EQ(link.GetGetRequest("120", nullptr, length), 0) << length;
    }
}

TEST_F(Link_toggle, ANameThatWasNeverRecordedIsNotFound) {
    store(120, {}, 8);
    toggle_by("a=1");
    int32_t value = 77;
    int result = 0;
    const auto get = [&] { result = link.GetGetRequest("120", &value, 4); };
    EXPECT_EQ(capture(0, get).out, "[NOT FOUND]\n");
    EXPECT_EQ(result, -1);
    EXPECT_EQ(value, 0);
    EXPECT_EQ(names(), Log{"120"}) << "and is there without a type from now on";
    EXPECT_EQ(link.homescreen_keys["120"].rt, INVALID_TYPE);
    expect_line_gate("[NOT FOUND]\n", 0, Gate::ALWAYS, get);
}

TEST_F(Link_toggle, WithoutAMapNothingIsFound) {
    int32_t value = 77;
    int result = 0;
    EXPECT_EQ(capture(0, [&] { result = link.GetGetRequest("120", &value, 4); }).out,
              "[NOT FOUND]\n");
    EXPECT_EQ(result, -1);
    EXPECT_EQ(value, 0);
}

TEST_F(Link_toggle, AKeyOfAnotherTypeIsRefused) {
    store(120, {}, 8, STRING);
    toggle_by("a=1");
    link.homescreen_keys["text"] = support::key_of(STRING, 120, index_of({}));
    int32_t value = 77;
    int result = 0;
    const auto get = [&] { result = link.GetGetRequest("text", &value, 4); };
    EXPECT_EQ(capture(0, get).out, "[NOT INTEGER RETURN]\n");
    EXPECT_EQ(result, -1);
    EXPECT_EQ(value, 0);
    expect_line_gate("[NOT INTEGER RETURN]\n", 0, Gate::ALWAYS, get);
}

// The record says so itself, and what it delivers then is taken.
TEST_F(Link_toggle, ARecordOfAnotherTypeReportsItself) {
    store(120, {}, 8);
    map.begin()->second.model_type = STRING;
    toggle_by("a=[120]");
    int32_t value = 77;
    int result = -1;
    EXPECT_EQ(capture(0, [&] { result = link.GetGetRequest("120", &value, 4); }).out,
              "[NOT INTEGER RETURN]\n");
    EXPECT_EQ(result, 0);
    EXPECT_EQ(value, -1);
}

// --- the state

TEST_F(Link_toggle, AnEmptyExpressionIsAlwaysOn) {
    toggle_by("");
    EXPECT_EQ(link.CheckToggleState(), 1);
    EXPECT_EQ(link.isVisible(), 1);
    housed.visibility = -1;
    EXPECT_EQ(link.isVisible(), -1);
    EXPECT_EQ(nVariables, 0) << "nothing was evaluated";
}

TEST_F(Link_toggle, TheExpressionErrorIsAlwaysOff) {
    const Captured printed = capture(0xFFFFFFFF & ~0x400001u, [&] {
        toggle_by("error");
        EXPECT_EQ(link.CheckToggleState(), 0);
        EXPECT_EQ(link.isVisible(), -1);
    });
    EXPECT_EQ(printed.err, "");
    EXPECT_EQ(nVariables, 0) << "nothing was evaluated";
}

TEST_F(Link_toggle, ValuesTakeThePlaceOfNames) {
    store(120, {2}, 3);
    toggle_by("a=[120.2]==3");
    EXPECT_EQ(link.CheckToggleState(), 1);
    EXPECT_EQ(link.isVisible(), 1);
    store(120, {2}, 4);
    EXPECT_EQ(link.CheckToggleState(), 0) << "evaluated anew";
    EXPECT_EQ(link.isVisible(), -1);
    EXPECT_EQ(link.Get_visible(), -1);
}

// A sign is part of the text that takes the name's place, so what binds tighter than it needs parentheses.
TEST_F(Link_toggle, ValuesBelowZeroStandWithTheirSign) {
    store(120, {}, -3);
    const std::pair<const char*, int> cases[] = {
        {"a=[120]==-3", 1},       {"a=5-[120]==8", 1},   {"a=-[120]==3", 1},
        {"a=2**[120]==0.125", 1}, {"a=![120]", 0},       {"a=!([120])", 0},
        {"a=!([120]+3)", 1},      {"a=[120]**2==-9", 1}, {"a=([120])**2==9", 1},
    };
    for (const auto& [expression, state] : cases) {
        capture(0, [&, expression = expression, state = state] {
            toggle_by(expression);
            EXPECT_EQ(link.CheckToggleState(), state) << expression;
        });
    }
    toggle_by("a=![120]");
    EXPECT_EQ(capture(0, [&] { link.CheckToggleState(); }).err,
              "Bad logical expression for home entry \"Volume\"! expression[a=!-3]\n");
}

TEST_F(Link_toggle, AHiddenHousedEntryStaysHiddenWhateverTheToggleSays) {
    housed.visibility = -1;
    toggle_by("a=1");
    EXPECT_EQ(link.isVisible(), -1);
}

TEST_F(Link_toggle, TheVisibilityTellsTheToggle) {
    toggle_by("a=0");
    EXPECT_EQ(
        capture(0x400000, [&] { link.isVisible(); }).out,
        "[CheckToggleState]" + PREFIX +
            "entry[Volume] toggle expression [a=0] -> [a=0]"
            "[isVisible][link_entry.cpp][#] name[Volume] toggle_vis[-1] && link_visible[1] && "
            "link_entry->isVisible()[1]   =  [1]\n")
        << "the line about the toggle stays open";
}

TEST_F(Link_toggle, TheResultIsAnythingButZero) {
    EXPECT_EQ(state_of("a=1"), 1);
    EXPECT_EQ(state_of("a=0"), 0);
    EXPECT_EQ(state_of("a=-3"), 1);
    EXPECT_EQ(state_of("a=0.25"), 1);
    EXPECT_EQ(state_of("a=-0"), 0);
    EXPECT_EQ(state_of("b=1,a=!b"), 0);
}

TEST_F(Link_toggle, TellsTheExpressionWithItsValues) {
    Menu parent("Input 1");
    Housed gain("Gain", support::any_index(), &parent);
    Link_entry named(&gain);
    store(120, {2}, -3);
    store(121, {}, 7);
    named.setAsHomescreenEntry("a=[120.2]<[121]", &map, token());
    const auto check = [&] { named.CheckToggleState(); };
    const std::string line = "[CheckToggleState]" + PREFIX +
                             "entry[Input 1.Gain] toggle expression [a=[120.2]<[121]] -> [a=-3<7]";
    EXPECT_EQ(capture(0x400000, check).out, line) << "without an end of line";
    expect_line_gate(line, 0x400001, Gate::LEAF, check);
}

TEST_F(Link_toggle, AMalformedExpressionIsOffAndReported) {
    store(120, {}, 5);
    toggle_by("a=[120]==");
    const auto check = [&] { EXPECT_EQ(link.CheckToggleState(), 0); };
    const char* const message =
        "Bad logical expression for home entry \"Volume\"! expression[a=5==]\n";
    Captured printed = capture(0, check);
    EXPECT_EQ(printed.err, message);
    EXPECT_EQ(printed.out, "");
    printed = capture(0x400000, check);
    EXPECT_EQ(printed.err, message);
    EXPECT_EQ(printed.out, "[CheckToggleState]" + PREFIX +
                               "entry[Volume] toggle expression [a=[120]==] -> [a=5==]\n");
    expect_line_gate("-> [a=5==]\n", 0x400001, Gate::LEAF, check);
}

TEST_F(Link_toggle, AnErrorWhileEvaluatingIsOff) {
    capture(0, [&] {
        EXPECT_EQ(state_of("a=1"), 1);
        EXPECT_EQ(state_of("a=1/0"), 0);
    });
}

TEST_F(Link_toggle, AParameterThatIsGoneTurnsTheToggleOff) {
    store(120, {}, 1);
    toggle_by("a=[120]");
    map.clear();
    int state = 1;
    const Captured printed = capture(0x400000, [&] { state = link.CheckToggleState(); });
    EXPECT_EQ(state, 0);
    EXPECT_EQ(printed.out, "[NOT FOUND]\n");
    EXPECT_EQ(printed.err, "");
    EXPECT_EQ(nVariables, 0) << "nothing was evaluated";
}

// --- the evaluator's first variable

// A toggle is read back from the first variable by name. Whatever expression of the process creates a name
// that sorts before the toggle's takes its place, for good.
TEST_F(Link_toggle, ReadsAnotherExpressionsVariableThatSortsBeforeItsOwn) {
    EXPECT_EQ(state_of("b=1"), 1);
    ASSERT_EQ(evaluation::evaluate("alarm=0"), 0);
    EXPECT_EQ(link.CheckToggleState(), 0) << "off, although b is 1";
    ASSERT_EQ(evaluation::evaluate("alarm=2"), 0);
    EXPECT_EQ(state_of("b=0"), 1) << "on, although b is 0";
}

TEST_F(Link_toggle, ReadsTheLastResultWhenItAssignsNothing) {
    EXPECT_EQ(state_of("a=1"), 1);
    EXPECT_EQ(state_of("0"), 1);
}

// The rule that works: every toggle assigns to "a", and no other name begins with a capital or an
// underscore.
TEST_F(Link_toggle, NamedAIsSafeFromDisplayExpressionsAndOtherSmallNames) {
    for (const char* const other : {"v=0", "aa=0", "a1=0", "a_=0", "alarm=0", "zz=0"}) {
        ASSERT_EQ(evaluation::evaluate(other), 0);
        EXPECT_EQ(state_of("a=1"), 1) << other;
    }
    ASSERT_EQ(evaluation::evaluate("v=1,aa=1,alarm=1"), 0);
    EXPECT_EQ(state_of("a=0"), 0);
    ASSERT_EQ(evaluation::evaluate("_x=1"), 0);
    EXPECT_EQ(link.CheckToggleState(), 1) << "an underscore sorts before small letters";
}

// No name at all sorts before "A".
TEST_F(Link_toggle, NamedCapitalAIsSafeFromEveryName) {
    for (const char* const other : {"_=0", "_A=0", "AA=0", "A0=0", "A_=0", "a=0", "B=0", "Z=0"}) {
        ASSERT_EQ(evaluation::evaluate(other), 0);
        EXPECT_EQ(state_of("A=1"), 1) << other;
    }
}

// --- texts that no menu should have

TEST_F(Link_toggle, PercentSignsAreNoFormat) {
    store(120, {}, 3);
    toggle_by("a=[120]%d%s%n");
    const std::string err = capture(0, [&] { EXPECT_EQ(link.CheckToggleState(), 0); }).err;
    EXPECT_EQ(err, "Bad logical expression for home entry \"Volume\"! expression[a=3%d%s%n]\n");
}

TEST_F(Link_toggle, ABracketThatDoesNotCloseTakesTheRestAsItsName) {
    store(120, {}, 3);
    toggle_by("a=1;a=[120==3");
    EXPECT_EQ(names(), Log{"120==3"});
    EXPECT_EQ(link.CheckToggleState(), 1);
    EXPECT_EQ(evaluation::value_of("a"), 3.0) << "all of the rest was replaced";
    capture(0, [&] { toggle_by("a=1["); });
    EXPECT_EQ(link.GetToggleExpression(), "error") << "an empty name";
}

TEST_F(Link_toggle, AClosingBracketBeforeTheFirstNameIsNoEnd) {
    store(120, {}, 3);
    for (const char* const expression : {"]a=[120]", "a=]", "a=[120]]", "][", "]"}) {
        capture(0, [&] {
            toggle_by(expression);
            EXPECT_EQ(link.CheckToggleState(), 0) << expression;
        });
    }
}

TEST_F(Link_toggle, ABracketInsideANameBelongsToIt) {
    store(120, {}, 3);
    capture(0, [&] { toggle_by("a=[[120]]"); });
    EXPECT_EQ(link.GetToggleExpression(), "error");
}

// Whatever a text holds, every name in it is looked up or turns it off, and nothing is left in brackets.
TEST_F(Link_toggle, RandomTextsAreEvaluatedOrOff) {
    store(120, {}, 3);
    store(0, {}, 1);
    std::mt19937 random(20261121);
    const std::string pieces[] = {"[", "]", "120", ".", "a=", "%d", "+", ";", "-", "[120]", "=="};
    for (int round = 0; round < 2000; ++round) {
        std::string text;
        for (auto left = random() % 12; left > 0; --left) {
            text += pieces[random() % std::size(pieces)];
        }
        SCOPED_TRACE(text);
        int state = -1;
        const Captured printed = capture(0, [&] {
            toggle_by(text);
            state = link.CheckToggleState();
        });
        EXPECT_TRUE(state == 0 || state == 1);
        if (link.GetToggleExpression() == "error") {
            EXPECT_NE(printed.err.find("Homescreen ERROR: "), std::string::npos);
            EXPECT_EQ(state, 0);
        } else {
            EXPECT_EQ(link.GetToggleExpression(), text);
            EXPECT_EQ(printed.out, "") << "every name was recorded";
            const std::string start = "expression[";
            const std::size_t at = printed.err.find(start);
            EXPECT_TRUE(at == std::string::npos ||
                        printed.err.find('[', at + start.size()) == std::string::npos)
                << printed.err;
        }
    }
}

}  // namespace
