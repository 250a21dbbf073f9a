// Options that a slot card builds at run time. The processor's operations and the system log are replaced at
// link time, so that a test scripts what the card answers and sees what is asked of it.
#include <frontpanel_data/live_data_processor.h>

#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <regex>

#include "enum_fixture.h"
#include "support/capture.h"
#include "support/fake_binding.h"
#include "support/fake_device.h"
#include "support/leaf.h"
#include "support/line_gates.h"

namespace {

// What the card answers next, and what has been asked of it.
struct Card {
    std::vector<std::string> texts;
    std::vector<std::size_t> skipped;  // options without text
    uint32_t selection = 0;
    int fetch_result = 0;
    bool delivers_no_array = false;
    bool delivers_no_size = false;
    int file_result = 0;
    int post_result = 0;
    int fetches = 0;
    std::vector<std::string> calls;
    std::vector<std::string> system_log;

    char** array() const {
        if (delivers_no_array) {
            return nullptr;
        }
        if (delivers_no_size) {
            static char* none[1] = {};
            return none;
        }
        char** const array = new char*[texts.size()];
        for (std::size_t key = 0; key < texts.size(); ++key) {
            array[key] = new char[texts[key].size() + 1];
            std::memcpy(array[key], texts[key].c_str(), texts[key].size() + 1);
        }
        for (const std::size_t key : skipped) {
            delete[] array[key];
            array[key] = nullptr;
        }
        return array;
    }
};

Card* g_card = nullptr;

}  // namespace

// The names of the replaced operations are those that the compiler gives them.
extern "C" {

int __wrap__ZN19Live_Data_Processor7getDataEiciiPPPcPjS3_(Live_Data_Processor*, int pid,
                                                          char format, int web_type, int panel_type,
                                                          char*** array, uint32_t* selection,
                                                          uint32_t* size);
int __wrap__ZN19Live_Data_Processor18createLDCommitFileEiPcS0_i(Live_Data_Processor*, int pid,
                                                                char* file_name, char* text, int);
int __wrap__ZN19Live_Data_Processor6CommitEicPc(Live_Data_Processor*, int pid, char format,
                                                char* file_name);
__attribute__((format(printf, 2, 3))) void __wrap_syslog(int priority, const char* format, ...);

int __wrap__ZN19Live_Data_Processor7getDataEiciiPPPcPjS3_(Live_Data_Processor*, int pid,
                                                          char format, int web_type, int panel_type,
                                                          char*** array, uint32_t* selection,
                                                          uint32_t* size) {
    ++g_card->fetches;
    g_card->calls.push_back("getData " + std::to_string(pid) + " " + format + " " +
                            std::to_string(web_type) + " " + std::to_string(panel_type));
    if (g_card->fetch_result == 0) {
        *array = g_card->array();
        *selection = g_card->selection;
        *size = g_card->delivers_no_size ? 0 : static_cast<uint32_t>(g_card->texts.size());
    }
    return g_card->fetch_result;
}

int __wrap__ZN19Live_Data_Processor18createLDCommitFileEiPcS0_i(Live_Data_Processor*, int pid,
                                                                char* file_name, char* text, int) {
    g_card->calls.push_back("createLDCommitFile " + std::to_string(pid) + " " + file_name + " [" +
                            text + "]");
    return g_card->file_result;
}

int __wrap__ZN19Live_Data_Processor6CommitEicPc(Live_Data_Processor*, int pid, char format,
                                                char* file_name) {
    g_card->calls.push_back("Commit " + std::to_string(pid) + " " + format + " " + file_name);
    return g_card->post_result;
}

void __wrap_syslog(int priority, const char* format, ...) {
    char line[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    g_card->system_log.push_back(std::to_string(priority) + " " + support::mask_line_numbers(line));
}

}  // extern "C"

namespace {

using support::capture;
using support::Fake_binding;
using support::Fake_device;

constexpr unsigned int PID = 9000;
constexpr uint32_t GENERAL = 0x1;

// Frees what came from the card when the test ends: the entry itself never frees its last list.
class Live_enum : public Open_enum {
public:
    using Open_enum::Open_enum;
    ~Live_enum() override { Update_value(nullptr, 0); }
};

class Enum_live_data : public ::testing::Test {
protected:
    Enum_live_data() {
        g_card = &card;
        Open_enum::dynamic_counter = 0;
        card.texts = {"Main", "Backup", "Test"};
        card.selection = 1;
    }
    ~Enum_live_data() override { g_card = nullptr; }

    Enum_arguments live() {
        return Enum_arguments()
            .pid(PID)
            .web_type("json-dynamic-combobox")
            .panel_type("list")
            .processor(&processor);
    }

    Card card;
    Fake_device device;  // live data never reaches it
    Live_Data_Processor processor{1, nullptr, 2};
};

TEST_F(Enum_live_data, KnowsItsTypes) {
    EXPECT_EQ(Open_enum().getWebTypeAsInt(), -1);
    EXPECT_EQ(Open_enum().getPanelTypeAsInt(), -1);
    const std::pair<const char*, int> web_types[] = {{"json-dynamic-combobox", 0},
                                                     {"jsontree", 1},
                                                     {"jsontre", -1},
                                                     {"jsontree ", -1},
                                                     {"list", -1},
                                                     {"", -1},
                                                     {"JSONTREE", -1}};
    for (const auto& [name, value] : web_types) {
        EXPECT_EQ(Open_enum(Enum_arguments().web_type(name)).getWebTypeAsInt(), value) << name;
    }
    const std::pair<const char*, int> panel_types[] = {
        {"list", 0}, {"lists", -1}, {"jsontree", -1}, {"", -1}};
    for (const auto& [name, value] : panel_types) {
        EXPECT_EQ(Open_enum(Enum_arguments().panel_type(name)).getPanelTypeAsInt(), value) << name;
    }
    EXPECT_EQ(Open_enum(live()).GetLiveDataProcessor(), &processor);
}

TEST_F(Enum_live_data, IsFetchedAtTheFirstAndThenAtEveryEleventhRefresh) {
    Live_enum entry(live());
    std::vector<int> fetched_at;
    std::vector<uint32_t> counters;
    for (int refresh = 1; refresh <= 36; ++refresh) {
        const int before = card.fetches;
        EXPECT_EQ(entry.Refresh(&device, false), 0);
        if (card.fetches != before) {
            fetched_at.push_back(refresh);
        }
        counters.push_back(Open_enum::dynamic_counter);
    }
    EXPECT_EQ(fetched_at, (std::vector<int>{1, 12, 23, 34}));
    EXPECT_EQ(std::vector<uint32_t>(counters.begin(), counters.begin() + 13),
              (std::vector<uint32_t>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 0, 1, 2}));
    EXPECT_EQ(card.calls.front(), "getData 9000 s 0 0");
}

TEST_F(Enum_live_data, SharesItsCountAmongAllEntries) {
    Live_enum first(live());
    Live_enum second(live().pid(9001).web_type("jsontree"));
    for (int refresh = 0; refresh < 6; ++refresh) {
        first.Refresh(&device, false);
        second.Refresh(&device, false);
    }
    EXPECT_EQ(card.calls, (std::vector<std::string>{"getData 9000 s 0 0", "getData 9001 s 1 0"}));
}

TEST_F(Enum_live_data, StartsOverFromACountBeyondTheLast) {
    Live_enum entry(live());
    Open_enum::dynamic_counter = 4000000000U;
    entry.Refresh(&device, false);
    EXPECT_EQ(Open_enum::dynamic_counter, 0U);
    EXPECT_EQ(card.fetches, 0);
}

TEST_F(Enum_live_data, BelongsToItsBandOfParameters) {
    for (const unsigned int pid : {9000U, 9050U, 9100U}) {
        Open_enum::dynamic_counter = 0;
        Live_enum entry(live().pid(pid));
        card.calls.clear();
        entry.Refresh(&device, false);
        EXPECT_EQ(card.calls.size(), 1U) << pid;
        entry.Commit(&device);
        EXPECT_EQ(card.calls.size(), 3U) << pid;
    }
    for (const unsigned int pid : {8999U, 9101U}) {
        Open_enum::dynamic_counter = 0;
        Live_enum entry(live().pid(pid));
        card.calls.clear();
        device.expect_get_integer(pid, 3, 2);
        entry.Refresh(&device, false);
        EXPECT_EQ(Open_enum::dynamic_counter, 0U);
        device.expect_set_integer(pid, 3, 2);
        entry.Commit(&device);
        EXPECT_TRUE(card.calls.empty()) << pid;
    }
}

TEST_F(Enum_live_data, IsNotFetchedWithoutProcessorOrTypes) {
    const Enum_arguments cases[] = {live().processor(nullptr), live().web_type(nullptr),
                                    live().panel_type("tree")};
    for (const Enum_arguments& arguments : cases) {
        Live_enum entry(arguments);
        EXPECT_EQ(entry.Refresh(&device, false), 0);
        EXPECT_EQ(Open_enum::dynamic_counter, 0U);
        EXPECT_EQ(entry.shown(), "Off");
    }
    EXPECT_EQ(card.fetches, 0);
}

TEST_F(Enum_live_data, ReplacesOptionsAndSelection) {
    Live_enum entry(live().min(1).default_value(3));
    entry.Refresh(&device, false);
    EXPECT_EQ(entry.Get_min_enum(), 0);
    EXPECT_EQ(entry.Get_max_enum(), 2);
    EXPECT_EQ(entry.Get_size_enum(), 3);
    EXPECT_EQ(entry.stored(), 1);
    EXPECT_EQ(entry.shown(), "Backup");
    entry.m_model.Inc_value(99, 0);
    EXPECT_EQ(entry.stored(), 2) << "the model's upper bound";
    entry.m_model.Inc_value(-99, 0);
    EXPECT_EQ(entry.stored(), 0) << "the model's lower bound";
}

// Without control options and binding the counts are those of the options before, and their keys stay.
TEST_F(Enum_live_data, CountsTheOptionsBeforeUntilTheNextFetch) {
    Live_enum entry(live());
    card.texts = {"A", "B", "C", "D", "E", "F"};
    card.selection = 5;
    entry.Refresh(&device, false);
    EXPECT_EQ(entry.Get_size(), 4);
    EXPECT_EQ(entry.shown(20, -1, 1), "-");
    Open_enum::dynamic_counter = 0;
    entry.Refresh(&device, false);
    EXPECT_EQ(entry.Get_size(), 6);
    EXPECT_EQ(entry.shown(), "F");
}

TEST_F(Enum_live_data, NeverStepsBeyondAShorterList) {
    Live_enum entry(live());
    entry.Refresh(&device, false);
    EXPECT_EQ(entry.map_enum_to_options.size(), 4U) << "the key of the longer list stays";
    entry.put(2);
    EXPECT_EQ(entry.Inc_value(1, 0), -1);
    EXPECT_EQ(entry.stored(), 2);
    EXPECT_EQ(entry.set(3), 1);
    EXPECT_EQ(entry.shown(20, 3), "Main") << "a position out of range";
    EXPECT_EQ(entry.getProperties(0x8), "Mode enum={  0(Main)  1(Backup)  2(Test)  3()  }");
}

TEST_F(Enum_live_data, AppliesControlOptionsToTheNewOptions) {
    Live_enum entry(live());
    entry.setProductOptions({{"gps", 1}});
    entry.Set_control_options({{1, {"gps"}}, {2, {"gps"}}});
    card.selection = 2;
    entry.Refresh(&device, false);
    EXPECT_EQ(entry.map_enum_to_options, (Open_enum::Positions{{0, -1}, {1, 0}, {2, 1}}));
    EXPECT_EQ(entry.position(), 1);
}

TEST_F(Enum_live_data, FreesTheTextsOfTheFetchBefore) {
    Live_enum entry(live());
    for (int fetch = 0; fetch < 5; ++fetch) {
        card.texts.push_back("Option " + std::to_string(fetch));
        Open_enum::dynamic_counter = 0;
        entry.Refresh(&device, false);
        EXPECT_EQ(entry.m_value[card.texts.size() - 1], card.texts.back());
    }
    EXPECT_EQ(card.fetches, 5);
}

TEST_F(Enum_live_data, NeverFreesTheTextsOfTheConstructor) {
    Texts texts({"One", "Two", "Three", "Four"});
    Live_enum entry(live().texts(&texts));
    entry.Refresh(&device, false);
    EXPECT_STREQ(texts.array()[3], "Four");
}

TEST_F(Enum_live_data, FreesItsTextsWhenTheApplicationInstallsOthers) {
    Live_enum entry(live());
    entry.Refresh(&device, false);
    entry.Update_value(four_texts().array(), 4);
    EXPECT_STREQ(four_texts().array()[0], "Off");
    Open_enum::dynamic_counter = 0;
    entry.Refresh(&device, false);
    EXPECT_STREQ(four_texts().array()[3], "Auto") << "what the application installed stays its own";
    entry.Update_value(entry.m_value, 2);
    EXPECT_STREQ(entry.m_value[2], "Test") << "the same list again is kept whole";
}

TEST_F(Enum_live_data, ShowsASkippedOptionWithoutText) {
    Live_enum entry(live());
    card.skipped = {1};
    entry.Refresh(&device, false);
    EXPECT_EQ(entry.shown(20, -1, 1), "-");
    EXPECT_EQ(entry.shown(20, 0), "Main");
    EXPECT_EQ(entry.getProperties(0x8), "Mode enum={  0(Main)  1()  2(Test)  3()  }");
    entry.Commit(&device);
    EXPECT_EQ(card.calls[1], "createLDCommitFile 9000 /tmp/9000-post [1]");
}

TEST_F(Enum_live_data, KeepsItsOptionsWhenAFetchFails) {
    struct Failure {
        const char* what;
        int result;
        bool no_array, no_size;
        const char* line;
    };
    const Failure failures[] = {
        {"status", 256, false, false, "ret[256] newSize[0] array[(nil)]"},
        {"no array", 0, true, false, "ret[0] newSize[3] array[(nil)]"},
        {"nothing", 0, true, true, "ret[0] newSize[0] array[(nil)]"},
        {"no size", 0, false, true, "ret[0] newSize[0] array[0x]"},
    };
    for (const Failure& failure : failures) {
        SCOPED_TRACE(failure.what);
        Open_enum::dynamic_counter = 0;
        Live_enum entry(live().access(Data_entry::READ_ONLY).default_value(2));
        card.fetch_result = failure.result;
        card.delivers_no_array = failure.no_array;
        card.delivers_no_size = failure.no_size;
        std::string out =
            capture(GENERAL, [&] { EXPECT_EQ(entry.Refresh(&device, false), 0); }).out;
        out = std::regex_replace(out, std::regex("0x[0-9a-f]+"), "0x");
        EXPECT_EQ(out,
                  "[Refresh][enum_entry.cpp][#] Enum Entry Refresh name=[Mode]\n"
                  "[Refresh][enum_live_data.cpp][#] varId[9000] name[Mode] webType[0] "
                  "panelType[0]\n"
                  "[Refresh][enum_live_data.cpp][#] live data received error, " +
                      std::string(failure.line) +
                      "\n"
                      "Integer_model::Get: value[2], length[4] m_value[2]\n"
                      "[Refresh][enum_entry.cpp][#] Value of the key =[2] name=[Mode]\n");
        EXPECT_EQ(entry.shown(), "High");
        EXPECT_EQ(entry.m_value, four_texts().array());
        EXPECT_EQ(entry.Get_access_type(), Data_entry::READ_ONLY);
        EXPECT_EQ(Open_enum::dynamic_counter, 1U) << "a failed fetch counts";
    }
}

TEST_F(Enum_live_data, ReportsWhatItFetches) {
    Live_enum entry(live());
    const std::string out = capture(GENERAL, [&] { entry.Refresh(&device, false); }).out;
    EXPECT_EQ(out,
              "[Refresh][enum_entry.cpp][#] Enum Entry Refresh name=[Mode]\n"
              "[Refresh][enum_live_data.cpp][#] varId[9000] name[Mode] webType[0] panelType[0]\n"
              "[Refresh][enum_live_data.cpp][#] pid[9000], newEnumSize=[3] \n"
              "Integer_model::Set: value[1], length[4]\n"
              "Integer_model::Get: value[1], length[4] m_value[1]\n"
              "[Refresh][enum_entry.cpp][#] Value of the key =[1] name=[Mode]\n");
}

TEST_F(Enum_live_data, ReportsAMissingProcessor) {
    Live_enum entry(live().processor(nullptr).web_type(nullptr));
    EXPECT_EQ(capture(GENERAL, [&] { entry.Refresh(&device, false); }).out,
              "[Refresh][enum_entry.cpp][#] Enum Entry Refresh name=[Mode]\n"
              "[Refresh][enum_live_data.cpp][#] varId[9000] name[Mode] webType[-1] panelType[0]\n"
              "[Refresh][enum_live_data.cpp][#] LiveDataProcess is not present for varID[9000]\n"
              "Integer_model::Get: value[0], length[4] m_value[0]\n"
              "[Refresh][enum_entry.cpp][#] Value of the key =[0] name=[Mode]\n");
}

TEST_F(Enum_live_data, AppliesTheBindingAfterTheFetch) {
    std::vector<std::string> log;
    Live_enum entry(live());
    auto* binding = new Fake_binding(&log);
    entry.Set_binding_object(binding);
    int fetches_at_evaluation = 0;
    binding->on_evaluate = [&](Fake_binding&, int) { fetches_at_evaluation = card.fetches; };
    entry.Refresh(&device, true);
    EXPECT_EQ(fetches_at_evaluation, 1);
}

TEST_F(Enum_live_data, BecomesWritableButRemembersThatItWasNot) {
    Live_enum entry(live().access(Data_entry::READ_ONLY));
    EXPECT_EQ(entry.set(1), 0) << "before the first fetch the application decides";
    entry.Refresh(&device, false);
    EXPECT_EQ(entry.Get_access_type(), Data_entry::READ_WRITE);
    EXPECT_EQ(entry.Get_orig_access_type(), Data_entry::READ_ONLY);
    EXPECT_TRUE(entry.Get_flag_access_type_chg());
    EXPECT_EQ(entry.Inc_value(1, 0), 0) << "the user may look through the options";
    EXPECT_EQ(entry.set(0), 1);
    EXPECT_EQ(entry.stored(), 2);
}

TEST_F(Enum_live_data, RefusesAValueBeforeTheBindingIsAsked) {
    std::vector<std::string> log;
    Live_enum entry(live().access(Data_entry::READ_ONLY));
    auto* binding = new Fake_binding(&log);
    binding->offer(SUGGESTION_WARNING);
    entry.Set_binding_object(binding);
    entry.Refresh(&device, false);
    log.clear();
    const std::string out = capture(GENERAL, [&] { entry.set(0); }).out;
    EXPECT_TRUE(log.empty());
    EXPECT_NE(out.find("enum set Set_value [0] current_selection=[1]\nRead Only varId[]\n"),
              std::string::npos);
}

TEST_F(Enum_live_data, RefusesAValueEvenWithoutProcessor) {
    Live_enum entry(live().access(Data_entry::READ_ONLY).processor(nullptr));
    entry.Set_flag_access_type_chg(true);
    EXPECT_EQ(entry.set(1), 1);
    entry.Set_flag_access_type_chg(false);
    EXPECT_EQ(entry.set(1), 0);
}

TEST_F(Enum_live_data, TakesValuesThatWereWritableFromTheStart) {
    for (const Data_entry::Data_access access : {Data_entry::READ_WRITE, Data_entry::WRITE_ONLY}) {
        Open_enum::dynamic_counter = 0;
        Live_enum entry(live().access(access));
        entry.Refresh(&device, false);
        EXPECT_EQ(entry.Get_access_type(), access);
        EXPECT_FALSE(entry.Get_flag_access_type_chg());
        EXPECT_EQ(entry.set(2), 0);
        entry.Set_flag_access_type_chg(true);
        EXPECT_EQ(entry.set(1), 0) << "what was writable stays so whoever changes the access";
        card.calls.clear();
        entry.Commit(&device);
        EXPECT_EQ(card.calls.size(), 2U);
    }
}

TEST_F(Enum_live_data, CommitsThroughAFile) {
    Live_enum entry(live().pid(9042));
    entry.Refresh(&device, false);
    entry.set(2);
    card.calls.clear();
    EXPECT_EQ(capture(GENERAL, [&] { EXPECT_EQ(entry.Commit(&device), 0); }).out,
              "[Commit][enum_entry.cpp][#] Calling m_model commit...\n"
              "Integer_model::Get: value[2], length[4] m_value[2]\n"
              "[Commit][enum_live_data.cpp][#] ret[0], varId[9042], selected[2] "
              "filename[/tmp/9042-post]\n");
    EXPECT_EQ(card.calls, (std::vector<std::string>{"createLDCommitFile 9042 /tmp/9042-post [2]",
                                                    "Commit 9042 s /tmp/9042-post"}));
    EXPECT_TRUE(card.system_log.empty());
}

TEST_F(Enum_live_data, DoesNotReportAFailedPost) {
    Live_enum entry(live());
    card.post_result = 7;
    EXPECT_EQ(entry.Commit(&device), 0);
    EXPECT_TRUE(card.system_log.empty());
}

TEST_F(Enum_live_data, ReportsAFileThatCannotBeWritten) {
    Live_enum entry(live().default_value(2));
    card.file_result = 512;
    const char line[] =
        "Live Data Commit file create failed ret[512], varId[9000], selected[2] "
        "filename[/tmp/9000-post] \n";
    EXPECT_EQ(capture(GENERAL, [&] { EXPECT_EQ(entry.Commit(&device), 512); }).out,
              "[Commit][enum_entry.cpp][#] Calling m_model commit...\n"
              "Integer_model::Get: value[2], length[4] m_value[2]\n"
              "[Commit][enum_live_data.cpp][#] ret[0], varId[9000], selected[2] "
              "filename[/tmp/9000-post]\n"
              "[Commit][enum_live_data.cpp][#] " +
                  std::string(line));
    EXPECT_EQ(card.system_log,
              (std::vector<std::string>{"3 [Commit][enum_live_data.cpp][#] " + std::string(line)}));
    EXPECT_EQ(card.calls.size(), 1U) << "nothing is posted";
    EXPECT_EQ(capture(0, [&] { entry.Commit(&device); }).out, "");
    EXPECT_EQ(card.system_log.size(), 2U) << "the system log is written whatever the mask";
}

TEST_F(Enum_live_data, CommitsNothingThatWasReadOnly) {
    Live_enum entry(live().access(Data_entry::READ_ONLY));
    entry.Refresh(&device, false);
    card.calls.clear();
    EXPECT_EQ(entry.Commit(&device), 0);
    EXPECT_TRUE(card.calls.empty());
}

TEST_F(Enum_live_data, CommitsToTheDeviceWithoutAProcessor) {
    Live_enum entry(live().processor(nullptr));
    device.expect_set_integer(PID, 3, 0, -1);
    EXPECT_EQ(entry.Commit(&device), 1);
}

TEST_F(Enum_live_data, CommitRefreshesDependantsWhetherItWritesOrNot) {
    for (const Data_entry::Data_access access : {Data_entry::READ_WRITE, Data_entry::READ_ONLY}) {
        Open_enum::dynamic_counter = 0;
        support::Leaf dependant("Level");
        Live_enum entry(live().access(access));
        auto* binding = new Fake_binding();
        entry.Set_binding_object(binding);
        binding->own_map[binding->self_control_info].binding_dependant_entries = {&dependant};
        entry.Refresh(&device, false);
        card.file_result = 1;
        capture(0, [&] { entry.Commit(&device); });
        EXPECT_EQ(dependant.refresh_count, 1);
    }
}

TEST_F(Enum_live_data, PostsASafeOptionInsteadOfAHiddenOne) {
    Live_enum entry(live());
    entry.setProductOptions({{"gps", 1}});
    entry.Set_control_options({{2, {"gps"}}});
    entry.Refresh(&device, false);
    EXPECT_EQ(entry.stored(), 2);
    EXPECT_EQ(card.calls, (std::vector<std::string>{"getData 9000 s 0 0",
                                                    "createLDCommitFile 9000 /tmp/9000-post [2]",
                                                    "Commit 9000 s /tmp/9000-post"}));
}

template <class Action>
void expect_general_leaf_lines(const std::vector<std::string>& lines, Action&& action) {
    support::expect_line_gates(lines, GENERAL, support::Gate::LEAF, action);
}

TEST_F(Enum_live_data, ItsLinesAreGeneralLeafLines) {
    Live_enum entry(live().access(Data_entry::READ_ONLY));
    const auto refresh = [&] {
        Open_enum::dynamic_counter = 0;
        entry.Refresh(&device, false);
    };
    expect_general_leaf_lines(
        {"varId[9000] name[Mode] webType[0] panelType[0]", "pid[9000], newEnumSize=[3]"}, refresh);
    expect_general_leaf_lines({"Read Only varId[]"}, [&] { entry.set(0); });
    card.fetch_result = 1;
    expect_general_leaf_lines({"live data received error, ret[1]"}, refresh);

    Live_enum without_processor(live().processor(nullptr));
    expect_general_leaf_lines({"LiveDataProcess is not present for varID[9000]"},
                              [&] { without_processor.Refresh(&device, false); });

    Live_enum writable(live());
    card.file_result = 1;
    expect_general_leaf_lines({"ret[0], varId[9000], selected[0] filename[/tmp/9000-post]\n",
                               "Live Data Commit file create failed ret[1]"},
                              [&] { writable.Commit(&device); });
}

TEST_F(Enum_live_data, FreesNothingWhenItEnds) {
    char** left = nullptr;
    {
        Open_enum entry(live());
        entry.Refresh(&device, false);
        left = entry.m_value;
    }
    EXPECT_STREQ(left[2], "Test");
    for (std::size_t key = 0; key < 3; ++key) {
        delete[] left[key];
    }
    delete[] left;
}

}  // namespace
