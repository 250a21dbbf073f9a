// An enumeration whose options come from a card: the entry, the processor, the real tools and the service.
#include <fcntl.h>
#include <frontpanel_data/data_entry.h>
#include <frontpanel_data/live_data_processor.h>
#include <frontpanel_simulator/card_service.h>
#include <sys/file.h>
#include <unistd.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/capture.h"
#include "support/fake_binding.h"
#include "support/fake_device.h"
#include "support/indexes.h"
#include "support/leaf.h"
#include "support/live_data.h"

using namespace frontpanel;

namespace {

using support::Fake_binding;
using support::Fake_device;
using support::index_of;
using support::key_of;
using Texts = std::vector<std::string>;

constexpr unsigned int PID = 9087;  // live data, with temporary files of its own
constexpr int SLOT = 3;
constexpr int REFRESHES_TO_THE_NEXT_FETCH = 11;

// The temporary files carry the parameter's id: one test at a time uses them.
class Pid_lock {
public:
    Pid_lock() : m_lock(open("/tmp", O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        EXPECT_EQ(flock(m_lock, LOCK_EX), 0);
    }
    ~Pid_lock() {
        for (const char* const kind : {"-json", "-json.gz", "-post"}) {
            unlink(("/tmp/" + std::to_string(PID) + kind).c_str());
        }
        close(m_lock);
    }
    Pid_lock(const Pid_lock&) = delete;
    Pid_lock& operator=(const Pid_lock&) = delete;

private:
    int m_lock;
};

// The throttle of fetches is one for the process; each test starts as a new process does.
class Throttle : public Enum_entry {
public:
    static void reset() { dynamic_counter = 0; }
};

class Live_enumeration : public ::testing::Test {
protected:
    explicit Live_enumeration(Data_entry::Data_access access = Data_entry::READ_WRITE,
                              const char* web_type = "json-dynamic-combobox")
        : m_web_type(web_type),
          m_entry("Fan", "The fan's speed", PID, &m_index, 0, 1, 0, m_first_texts, 1, nullptr,
                  access, Data_entry::VISIBLE_ALL, true, Data_entry::SHORTCUT_NONE, nullptr,
                  nullptr, nullptr, m_web_type.data(), m_panel_type, &m_processor) {
        Throttle::reset();
        std::string address = m_service.address();
        m_processor.updateLDP(0, address.data(), SLOT);
    }
    ~Live_enumeration() override { free_card_texts(); }

    void add_combo_box(const Texts& labels, int selected) {
        std::vector<Card_service::Option> options;
        for (const std::string& label : labels) {
            options.push_back({"v" + label, label});
        }
        m_service.add_combo_box(SLOT, PID, options, selected);
    }

    // One refresh as an application makes it: a list of another size counts its options with the next update
    // of the map. What the tools and the library print is not of interest here.
    int refresh() {
        int result = -1;
        support::capture(0, [&] { result = m_entry.Refresh(&m_device, true); });
        m_entry.updateControlOptionMap();
        return result;
    }
    void refresh_until_fetched() {
        for (int call = 0; call < REFRESHES_TO_THE_NEXT_FETCH; ++call) {
            EXPECT_EQ(refresh(), 0);
        }
    }

    std::string shown() {
        char line[41] = {};
        m_entry.Get_display_string(line, 40);
        return line;
    }
    Texts options() {
        Texts all;
        for (int position = 0; position < m_entry.Get_size_enum(); ++position) {
            char line[41] = {};
            EXPECT_EQ(m_entry.Get_display_string(line, 40, position), 0);
            all.push_back(line);
        }
        return all;
    }

    // The entry keeps the last list: nobody frees it in the field. Here an application's list replaces it.
    void free_card_texts() { m_entry.Update_value(m_first_texts, 1); }

    Pid_lock m_lock;
    support::Work_folder m_folder;
    Card_service m_service;
    Live_Data_Processor m_processor{1, nullptr, SLOT};
    Fake_device m_device;  // expects no call: live data goes past it
    Index_t m_index = index_of({SLOT});
    char m_first_text[8] = "none";
    char* m_first_texts[1] = {m_first_text};
    std::string m_web_type;
    char m_panel_type[5] = "list";
    Enum_entry m_entry;
};

TEST_F(Live_enumeration, FirstRefreshShowsTheCardsOptionsAndSelection) {
    add_combo_box({"Off", "Slow", "Fast"}, 1);
    EXPECT_EQ(shown(), "none");
    EXPECT_EQ(refresh(), 0);
    EXPECT_EQ(options(), (Texts{"Off", "Slow", "Fast"}));
    EXPECT_EQ(shown(), "Slow");
    EXPECT_EQ(m_entry.Get_max(), 2);
}

TEST_F(Live_enumeration, LongerListCountsItsOptionsWithTheNextUpdateOfTheMap) {
    add_combo_box({"Off", "Slow", "Fast"}, 1);
    support::capture(0, [&] { m_entry.Refresh(&m_device, true); });
    char line[41] = {};
    EXPECT_EQ(m_entry.Get_display_string(line, 40), 1);
    EXPECT_STREQ(line, "-");
    m_entry.updateControlOptionMap();
    EXPECT_EQ(shown(), "Slow");
}

TEST_F(Live_enumeration, FetchesWithTheFirstAndThenEveryEleventhRefresh) {
    add_combo_box({"Off", "Slow"}, 0);
    for (int call = 1; call <= 25; ++call) {
        EXPECT_EQ(refresh(), 0);
        const std::size_t fetches = 1 + static_cast<std::size_t>(call - 1) / 11;
        EXPECT_EQ(m_service.requests().size(), fetches) << "refresh " << call;
    }
}

TEST_F(Live_enumeration, ChangedListReplacesTheOldOne) {
    add_combo_box({"Off", "Slow", "Fast"}, 2);
    refresh();
    add_combo_box({"Low", "High"}, 0);
    refresh_until_fetched();
    EXPECT_EQ(options(), (Texts{"Low", "High"}));
    EXPECT_EQ(shown(), "Low");
}

TEST_F(Live_enumeration, SelectionIsPostedAndComesBackWithTheNextFetch) {
    const support::Post_permit permit;
    if (!permit.granted()) {
        GTEST_SKIP() << "/dev is not writable, so the device's post command cannot run here";
    }
    add_combo_box({"Off", "Slow", "Fast"}, 0);
    refresh();
    EXPECT_EQ(m_entry.Inc_value(1, 0), 0);
    EXPECT_EQ(m_entry.Inc_value(1, 0), 0);
    EXPECT_EQ(m_service.selected(SLOT, PID), 0);
    support::capture(0, [&] { EXPECT_EQ(m_entry.Commit(&m_device), 0); });
    EXPECT_EQ(m_service.selected(SLOT, PID), 2);
    EXPECT_EQ(m_entry.Inc_value(-1, 0), 0);  // an edit that is not committed
    refresh_until_fetched();
    EXPECT_EQ(shown(), "Fast");
}

TEST_F(Live_enumeration, CommitRefreshesDependants) {
    const support::Post_permit permit;
    if (!permit.granted()) {
        GTEST_SKIP() << "/dev is not writable, so the device's post command cannot run here";
    }
    add_combo_box({"Off", "Slow"}, 0);
    refresh();
    auto* const binding = new Fake_binding;
    m_entry.Set_binding_object(binding);
    std::vector<std::string> log;
    support::Leaf dependant("Speed", nullptr, {Data_entry::RANGE_LEAF, &log});
    binding->own_map[key_of(INTEGER, PID, m_index)].binding_dependant_entries = {&dependant};
    support::capture(0, [&] { EXPECT_EQ(m_entry.Commit(&m_device), 0); });
    EXPECT_EQ(log, (Texts{"Refresh Speed interface=1 eval=1"}));
}

class Faulty_card : public Live_enumeration,
                    public ::testing::WithParamInterface<Card_service::Fault> {};

TEST_P(Faulty_card, WhatWasShownStaysAndTheNextGoodFetchIsTaken) {
    add_combo_box({"Off", "Slow", "Fast"}, 1);
    refresh();
    m_service.set_fault(GetParam(), std::chrono::seconds(20));
    refresh_until_fetched();
    EXPECT_EQ(options(), (Texts{"Off", "Slow", "Fast"}));
    EXPECT_EQ(shown(), "Slow");
    m_service.set_fault(Card_service::Fault::NONE);
    add_combo_box({"Low", "High"}, 1);
    refresh_until_fetched();
    EXPECT_EQ(options(), (Texts{"Low", "High"}));
    EXPECT_EQ(shown(), "High");
}

INSTANTIATE_TEST_SUITE_P(Faults, Faulty_card,
                         ::testing::Values(Card_service::Fault::LATE, Card_service::Fault::CUT_OFF,
                                           Card_service::Fault::ERROR_STATUS,
                                           Card_service::Fault::UNCOMPRESSED,
                                           Card_service::Fault::GARBAGE));

class Read_only_enumeration : public Live_enumeration {
protected:
    Read_only_enumeration() : Live_enumeration(Data_entry::READ_ONLY) {}
};

TEST_F(Read_only_enumeration, IsWalkedThroughButNeverPosted) {
    add_combo_box({"Off", "Slow"}, 0);
    refresh();
    EXPECT_EQ(m_entry.Get_access_type(), Data_entry::READ_WRITE);
    EXPECT_EQ(m_entry.Get_orig_access_type(), Data_entry::READ_ONLY);
    const int position = 1;
    EXPECT_EQ(m_entry.Set_value(&position, sizeof position), 1);
    EXPECT_EQ(m_entry.Commit(&m_device), 0);
    EXPECT_EQ(m_service.requests().size(), 1u);
    EXPECT_EQ(m_service.selected(SLOT, PID), 0);
}

class Live_tree : public Live_enumeration {
protected:
    Live_tree() : Live_enumeration(Data_entry::READ_WRITE, "jsontree") {}
};

TEST_F(Live_tree, ShowsItsNodesWithAStarForEachLevel) {
    m_service.add_tree(SLOT, PID,
                       R"({"label":"Top","children":[{"label":"Leaf"},{"label":"Twig"}]})");
    EXPECT_EQ(refresh(), 0);
    EXPECT_EQ(options(), (Texts{"Top", "*Leaf", "*Twig"}));
    EXPECT_EQ(shown(), "Top");
}

}  // namespace
