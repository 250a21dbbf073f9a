// The slot enumeration: its list of slots, its address and its commit.
#include <frontpanel_data/slot_enum_entry.h>
#include <frontpanel_data/string_entry.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <memory>

#include "support/capture.h"
#include "support/fake_binding.h"
#include "support/fake_device.h"
#include "support/faulty_interface.h"
#include "support/indexes.h"
#include "support/line_gates.h"

namespace {

using support::capture;
using support::Fake_device;
using support::index_of;

constexpr unsigned int PID = 500;
constexpr unsigned int SLOT_SELECTION_PID = 0x10008;
constexpr uint32_t GENERAL = 0x1;
constexpr uint32_t REFRESH = 0x10001;
constexpr uint32_t QUIET = 0x4000;
constexpr uint32_t VERBOSE = 0x8000;

std::string line(const std::string& text) {
    return text + std::string(29 - text.size(), ' ');
}

PROD_LIST_S product(prod_id_t id, const std::string& name, const std::string& family = "Radio") {
    PROD_LIST_S record = {};
    record.prod_id = id;
    family.copy(record.prod_family, sizeof record.prod_family);
    name.copy(record.prod_string, sizeof record.prod_string);
    return record;
}

// A product list in which the given slots are fitted.
std::vector<PROD_LIST_S> frame(const std::map<int, PROD_LIST_S>& fitted) {
    std::vector<PROD_LIST_S> rows(16);
    for (const auto& [slot, record] : fitted) {
        rows[static_cast<std::size_t>(slot)] = record;
    }
    return rows;
}

class Open_slots : public Slot_enum_entry {
public:
    using Enum_entry::m_model;
    using Enum_entry::map_enum_to_options;
    using Slot_enum_entry::Slot_enum_entry;
    using Slot_enum_entry::string_entry_refresh;
    using Slot_enum_entry::string_model;

    int stored() {
        int key = 0;
        m_model.Get(&key, sizeof key);
        return key;
    }
};

class Slots : public ::testing::Test {
protected:
    // An entry of `count` slots on a socket; the address is optional.
    void build(unsigned int count, uint16_t socket = 2, unsigned int pid = PID,
               Ip_entry* address = nullptr) {
        index = index_of({socket});
        buffers.assign(count, std::string(30, '.') + "!");
        texts.clear();
        for (std::string& buffer : buffers) {
            texts.push_back(buffer.data());
        }
        entry = std::make_unique<Open_slots>(
            "Slot", "The slots", pid, &index, 0, static_cast<int>(count) - 1, 0, nullptr,
            texts.data(), count, address, nullptr, Data_entry::READ_WRITE, nullptr,
            Data_entry::VISIBLE_ALL, true, Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr);
    }

    // What a refresh asks before it reads the product list, and after.
    void expect_start(int socket = 2, int local_before = 1, unsigned int pid = PID) {
        device.expect_current_selection_local(local_before);
        device.expect_socket(socket);
        device.expect_get_integer(pid, static_cast<unsigned int>(socket), 1);
    }
    void expect_end(int local_before = 1) { device.expect_socket(local_before); }

    std::vector<std::string> lines() const {
        std::vector<std::string> all;
        for (const char* const text : texts) {
            all.emplace_back(text);
        }
        return all;
    }

    // The texts that `build` gives every slot.
    std::vector<std::string> untouched() const {
        return std::vector<std::string>(texts.size(), std::string(30, '.') + "!");
    }

    Fake_device device;
    Index_t index = {};
    std::vector<std::string> buffers;
    std::vector<char*> texts;
    std::unique_ptr<Open_slots> entry;
};

class Slots_with_address : public Slots {
protected:
    Slots_with_address() { build(3, 2, PID, &address); }

    void set_address(const std::string& text) {
        address.Set_value(text.data(), static_cast<unsigned int>(text.size()));
    }
    std::string shown(unsigned int length) {
        std::string buffer(length + 1, '\0');
        EXPECT_EQ(entry->Get_display_string(buffer.data(), length), 0);
        return buffer.c_str();
    }

    Index_t address_index = index_of({9});
    Ip_entry address{"Address",
                     "An address",
                     700,
                     &address_index,
                     nullptr,
                     Data_entry::READ_WRITE,
                     Data_entry::VISIBLE_ALL,
                     true,
                     Data_entry::SHORTCUT_NONE,
                     nullptr,
                     nullptr,
                     nullptr};
};

TEST_F(Slots, AnswerWhatTheyAre) {
    build(3);
    EXPECT_EQ(entry->Get_entry_type(), Data_entry::SLOT_ENUM);
    EXPECT_EQ(entry->Get_return_type_int_or_string(), INTEGER);
    EXPECT_EQ(entry->bindingReturnType(), INTEGER);
    EXPECT_EQ(entry->Get_ip_entry(), nullptr);
    EXPECT_EQ(entry->GetLiveDataProcessor(), nullptr);
    EXPECT_EQ(entry->getWebTypeAsInt(), -1);
    EXPECT_EQ(entry->getPanelTypeAsInt(), -1);
    EXPECT_FALSE(entry->string_entry_refresh);
    EXPECT_EQ(entry->string_model.Get_max_length(), 19U);
    EXPECT_EQ(entry->string_model.Get_pid(), PID);
    EXPECT_EQ(entry->string_model.Get_varidx(), 2U);
    EXPECT_EQ(entry->getProperties(0),
              "Slot varid[500.2.0@i] num_index_levels=[1] type[6] vis[1] shortcut[-1] ");
}

TEST_F(Slots, ShowProductAndAliasNearThePanelsLine) {
    build(5);
    expect_start();
    device.expect_prod_list(true, true, frame({{3, product(7, "XY")}}));
    device.expect_alias(7, "Main");
    expect_end();
    EXPECT_EQ(entry->Refresh(&device, false, 2, 1, false), 0);
    EXPECT_EQ(lines(),
              (std::vector<std::string>{line("1"), line("2"), "3:XY                     Main",
                                        line("4"), line("5")}));
    EXPECT_EQ(entry->stored(), 1);
    char shown[41] = {};
    EXPECT_EQ(entry->Get_display_string(shown, 40), 0);
    EXPECT_EQ(shown, line("2"));
}

TEST_F(Slots, RestoreTheSelectionAsASocketWhateverItWas) {
    for (const int before : {0, 1, 5, -1}) {
        build(1);
        expect_start(2, before);
        device.expect_prod_list(true, true, frame({}));
        expect_end(before);
        EXPECT_EQ(entry->Refresh(&device, false), 0);
    }
}

TEST_F(Slots, AskForTheLocalListOnTheLocalSocket) {
    build(1, 0);
    expect_start(0, 1);
    device.expect_use_selection_local(false);
    device.expect_prod_list(false, true, frame({{1, product(7, "A")}}));
    device.expect_alias(7, "");
    expect_end(1);
    EXPECT_EQ(entry->Refresh(&device, false), 0);
    EXPECT_EQ(lines(), (std::vector<std::string>{line("1:A")}));
}

TEST_F(Slots, LeaveTheSocketSelectedWhileALocalSelectionIsInForce) {
    build(2, 0);
    expect_start(0, 1);
    device.expect_use_selection_local(true);
    EXPECT_EQ(entry->Refresh(&device, false), 0);
    EXPECT_EQ(device.calls().back(), "Is_use_selection_local");
    EXPECT_EQ(lines(), untouched());
}

TEST_F(Slots, DoNotAskForALocalSelectionOnAnotherSocket) {
    build(1, 3);
    expect_start(3);
    device.expect_prod_list(true, true, frame({}));
    expect_end();
    EXPECT_EQ(entry->Refresh(&device, false), 0);
}

TEST_F(Slots, KeepTheirLinesWhenTheListCannotBeRead) {
    build(2);
    expect_start();
    device.expect_prod_list(true, true, frame({{1, product(7, "A")}}), -3);
    expect_end();
    EXPECT_EQ(entry->Refresh(&device, false), -3);
    EXPECT_EQ(lines(), untouched());
}

TEST_F(Slots, ShowTheListEvenIfTheSelectedSlotCannotBeRead) {
    build(1);
    device.expect_current_selection_local(1);
    device.expect_socket(2);
    device.expect_get_integer(PID, 2, 0, -1);
    device.expect_prod_list(true, true, frame({}));
    expect_end();
    EXPECT_EQ(entry->Refresh(&device, false), 0);
    EXPECT_EQ(lines(), (std::vector<std::string>{line("1")}));
}

TEST_F(Slots, ShowABareNumberForAProductWithoutFamilyOrNumber) {
    build(3);
    expect_start();
    device.expect_prod_list(
        true, true, frame({{1, product(7, "A", "")}, {2, product(0, "B")}, {3, product(9, "C")}}));
    device.expect_alias(9, "", 0);
    expect_end();
    entry->Refresh(&device, false);
    EXPECT_EQ(lines(), (std::vector<std::string>{line("1"), line("2"), line("3:C")}));
}

TEST_F(Slots, IgnoreAnAliasThatCannotBeRead) {
    build(1);
    expect_start();
    device.expect_prod_list(true, true, frame({{1, product(7, "A")}}));
    device.expect_alias(7, "Main", 1);
    expect_end();
    EXPECT_EQ(entry->Refresh(&device, false), 0);
    EXPECT_EQ(lines(), (std::vector<std::string>{line("1:A")}));
}

// The slots of the panel's window: from selected - line + 1 to selected + line + 4.
TEST_F(Slots, AskOnlyForTheAliasesNearThePanelsLine) {
    struct Case {
        int selected, selected_line;
        std::vector<int> asked;
    };
    const Case cases[] = {
        {0, 0, {1, 2, 3, 4}},
        {2, 1, {2, 3, 4, 5, 6, 7}},
        {8, 0, {9, 10, 11, 12}},
        {14, 3, {12, 13, 14, 15}},
        {-4, 0, {}},
        {15, 0, {}},
        {3, -4, {}},
        {INT_MAX, INT_MAX, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}},
        {INT_MIN, INT_MAX, {1, 2, 3}},
        {INT_MIN, INT_MIN, {}},
    };
    std::map<int, PROD_LIST_S> full;
    for (int slot = 0; slot <= 15; ++slot) {
        full[slot] = product(static_cast<prod_id_t>(100 + slot), "P");
    }
    for (const Case& window : cases) {
        SCOPED_TRACE(testing::Message() << window.selected << ", " << window.selected_line);
        build(15);
        expect_start();
        device.expect_prod_list(true, true, frame(full));
        for (const int slot : window.asked) {
            device.expect_alias(static_cast<prod_id_t>(100 + slot), "Alias");
        }
        expect_end();
        EXPECT_EQ(entry->Refresh(&device, false, window.selected, window.selected_line, true), 0);
        for (int slot = 1; slot <= 15; ++slot) {
            const bool asked =
                std::find(window.asked.begin(), window.asked.end(), slot) != window.asked.end();
            const std::string shown = lines()[static_cast<std::size_t>(slot - 1)];
            EXPECT_EQ(shown.find("Alias") != std::string::npos, asked) << shown;
        }
    }
}

TEST_F(Slots, AreRefreshedFromTheTopThroughTheDispatcher) {
    build(1);
    expect_start();
    device.expect_prod_list(true, true, frame({{1, product(7, "A")}}));
    device.expect_alias(7, "Top");
    expect_end();
    EXPECT_EQ(Data_entry::EntryTypeSpecificOperation(entry.get(), &device, nullptr, true,
                                                     Data_entry::OPERATION_REFRESH, nullptr),
              0);
    EXPECT_EQ(lines().front(), "1:A                       Top");
}

TEST_F(Slots, DoNotApplyTheirBinding) {
    std::vector<std::string> log;
    build(1);
    entry->Set_binding_object(new support::Fake_binding(&log));
    log.clear();
    expect_start();
    device.expect_prod_list(true, true, frame({}));
    expect_end();
    entry->Refresh(&device, true);
    EXPECT_TRUE(log.empty());
    entry.reset();
}

TEST_F(Slots, BeyondTheProductListKeepTheirTexts) {
    build(20);
    expect_start();
    device.expect_prod_list(true, true, frame({{15, product(7, "Z")}}));
    expect_end();
    EXPECT_EQ(entry->Refresh(&device, false), 0);
    EXPECT_EQ(lines()[14], line("15:Z"));
    for (std::size_t slot = 16; slot <= 20; ++slot) {
        EXPECT_EQ(lines()[slot - 1], std::string(30, '.') + "!");
    }
}

TEST_F(Slots, WriteOnlyTheirThirtyOneBytes) {
    build(2);
    for (std::string& buffer : buffers) {
        buffer = std::string(31, '.') + "##";
    }
    for (std::size_t slot = 0; slot < buffers.size(); ++slot) {
        texts[slot] = buffers[slot].data();
    }
    expect_start();
    device.expect_prod_list(true, true, frame({{1, product(7, "ABCDEFGHIJKLMNOP")}}));
    device.expect_alias(7, std::string(99, 'a'));
    expect_end();
    entry->Refresh(&device, false);
    entry->ClearMenu();
    for (const std::string& buffer : buffers) {
        EXPECT_EQ(buffer.substr(31), "##");
    }
}

TEST_F(Slots, ReadProductTextsWithoutTerminator) {
    build(1);
    expect_start();
    PROD_LIST_S record = product(7, "ABCDEFGHIJKLMNOP", "FEDCBA9876543210");
    device.expect_prod_list(true, true, frame({{1, record}}));
    device.expect_alias(7, "");
    expect_end();
    const std::string out = capture(REFRESH | VERBOSE, [&] { entry->Refresh(&device, false); }).out;
    EXPECT_NE(out.find("[Refresh] Slot-7 name: FEDCBA9876543210\n"), std::string::npos);
    EXPECT_EQ(lines(), (std::vector<std::string>{line("1:ABCDEFGHIJKLMNOP")}));
}

TEST_F(Slots, ReadAnAliasWithoutTerminator) {
    class Overfull : public support::Faulty_interface {
    public:
        using Faulty_interface::Faulty_interface;
        int Get_prod_alias_name(char* name, prod_id_t) override {
            std::memset(name, 'a', 100);
            return 0;
        }
    } overfull(device);
    build(1);
    expect_start();
    device.expect_prod_list(true, true, frame({{1, product(7, "A")}}));
    expect_end();
    const std::string out =
        capture(REFRESH | VERBOSE, [&] { entry->Refresh(&overfull, false); }).out;
    EXPECT_NE(out.find("[Refresh] Slot-7 alias: " + std::string(99, 'a') + "\n"),
              std::string::npos);
    EXPECT_EQ(lines().front().size(), 29U);
}

// An interface that knows no sockets.
class Plain_interface : public Data_interface {
public:
    int Get(unsigned int, unsigned int, void* buffer, unsigned int length) override {
        std::memset(buffer, 0, length);
        calls.push_back("Get");
        return 0;
    }
    int Set(unsigned int, unsigned int, const void*, unsigned int) override { return 1; }
    int Get_prod_list(PROD_LIST_S* list, bool remote, bool refresh) override {
        calls.push_back("Get_prod_list " + std::to_string(remote) + std::to_string(refresh));
        list[1] = product(7, "A");
        return 0;
    }
    int Set_product_id(prod_id_t) override { return 1; }
    int Get_prod_alias_name(char* name, prod_id_t) override {
        std::strcpy(name, "Main");
        return 0;
    }
    std::vector<std::string> calls;
};

TEST_F(Slots, ReadTheListWithoutSelectingASocketWhereThereAreNone) {
    for (const uint16_t socket : {uint16_t{0}, uint16_t{2}}) {
        Plain_interface plain;
        build(1, socket);
        EXPECT_EQ(entry->Refresh(&plain, false), 0);
        EXPECT_EQ(plain.calls, (std::vector<std::string>{
                                   "Get", socket == 0 ? "Get_prod_list 01" : "Get_prod_list 11"}));
        EXPECT_EQ(lines().front(), "1:A                      Main");
    }
}

TEST_F(Slots, ClearTheirLinesToBareNumbers) {
    build(12);
    EXPECT_EQ(entry->ClearMenu(), 0);
    EXPECT_EQ(lines().front(), "1");
    EXPECT_EQ(lines().back(), "12");
}

TEST_F(Slots, SkipASlotWithoutText) {
    build(3);
    texts[1] = nullptr;
    EXPECT_EQ(entry->ClearMenu(), 0);
    expect_start();
    device.expect_prod_list(true, true, frame({}));
    expect_end();
    EXPECT_EQ(entry->Refresh(&device, false), 0);
    EXPECT_EQ(texts[0], line("1"));
    EXPECT_EQ(texts[2], line("3"));
}

TEST_F(Slots, DoNothingWithoutVisibleSlots) {
    build(2);
    entry->Set_size(0);
    expect_start();
    device.expect_prod_list(true, true, frame({{1, product(7, "A")}}));
    expect_end();
    EXPECT_EQ(entry->Refresh(&device, false), 0);
    entry->ClearMenu();
    EXPECT_EQ(lines(), untouched());
}

TEST_F(Slots, TellWhatTheyReadOnlyUnderAVerbosityBit) {
    for (const uint32_t gate : {QUIET, VERBOSE, QUIET | VERBOSE}) {
        SCOPED_TRACE(gate);
        build(2);
        expect_start();
        device.expect_prod_list(true, true, frame({{1, product(70, "XY")}}));
        device.expect_alias(70, "Main");
        expect_end();
        EXPECT_EQ(capture(0x10000 | gate, [&] { entry->Refresh(&device, false, 1, 1, true); }).out,
                  "[slot_enum_entry.cpp][Refresh][#] selected=[2] selected_line=[1]local=[1]\n"
                  "[Refresh] Returned slot enum after getting prod list\n"
                  "[Refresh] Slot-70 name: Radio\n"
                  "[Refresh] Slot-70 alias: Main\n"
                  "[Refresh] slot name2: 1:XY                     Main\n"
                  "[Refresh] slot name2: " +
                      line("2") +
                      "\n"
                      "[Refresh] SLOT_NAME[i] [1:XY                     Main]\n"
                      "[Refresh] SLOT_NAME[i] [" +
                      line("2") +
                      "]\n"
                      "[slot_enum_entry.cpp][Refresh][#] Exiting function. local=[2]\n");
    }
    for (const uint32_t closed : {REFRESH, 0xFFFEFFFEU}) {
        build(1);
        expect_start();
        device.expect_prod_list(true, true, frame({}));
        expect_end();
        const std::string out = capture(closed, [&] { entry->Refresh(&device, false); }).out;
        EXPECT_EQ(out.find("slot_enum"), std::string::npos);
        EXPECT_EQ(out.find("SLOT_NAME"), std::string::npos);
    }
}

// The three values stand behind each other's labels.
TEST_F(Slots, LabelTheirValuesAsLogReadersKnowThem) {
    build(1, 6);
    expect_start(6);
    device.expect_prod_list(true, true, frame({}));
    expect_end();
    const std::string out =
        capture(0x10000 | VERBOSE, [&] { entry->Refresh(&device, false, 4, 3, false); }).out;
    EXPECT_EQ(out.substr(0, out.find('\n')),
              "[slot_enum_entry.cpp][Refresh][#] selected=[6] selected_line=[4]local=[3]");
}

TEST_F(Slots, CommitTheSelectedSlot) {
    build(3);
    int position = 2;
    entry->Set_value(&position, sizeof position);
    device.expect_set_integer(PID, 2, 2);
    EXPECT_EQ(capture(0x4, [&] { EXPECT_EQ(entry->Commit(&device), 0); }).out,
              "[slot_enum_entry.cpp][Commit][#] About to commit...\n"
              "Integer_model::Commit:m_pid=500, m_varidx=2, m_value=2\n");
    device.expect_set_integer(PID, 2, 2, -1);
    EXPECT_EQ(capture(0x4 | QUIET, [&] { EXPECT_EQ(entry->Commit(&device), 1); }).out, "");
}

TEST_F(Slots_with_address, ShowTheAddress) {
    set_address("10.0.0.17");
    EXPECT_EQ(entry->Get_ip_entry(), &address);
    EXPECT_EQ(shown(16), "10.0.0.17");
}

TEST_F(Slots_with_address, ScrollTheAddressAsItDoesItself) {
    set_address("192.168.100.200");
    for (const char* const expected :
         {"192.168.10", "192.168.10", "192.168.10", "92.168.100", "2.168.100."}) {
        EXPECT_EQ(shown(10), expected);
    }
}

TEST_F(Slots_with_address, HandTheAddressAClearedLine) {
    class Silent_address : public Ip_entry {
    public:
        explicit Silent_address(const Index_t* index)
            : Ip_entry("Address", "An address", 700, index, nullptr, READ_WRITE, VISIBLE_ALL, true,
                       SHORTCUT_NONE, nullptr, nullptr, nullptr) {}
        int Get_display_string(char*, unsigned int) override { return 5; }
    } silent(&address_index);
    silent.Set_value("1.2.3.4", 7);
    build(3, 2, PID, &silent);
    std::string buffer(21, '#');
    EXPECT_EQ(entry->Get_display_string(buffer.data(), 20), 5);
    EXPECT_EQ(buffer, std::string(20, '\0') + "#");
}

TEST_F(Slots_with_address, CommitTheAddressThatWasShown) {
    set_address("10.0.0.17");
    shown(16);
    set_address("10.0.0.99");
    entry->string_entry_refresh = true;
    device.expect_set(PID, 2, "10.0.0.17");
    EXPECT_EQ(capture(0x4, [&] { EXPECT_EQ(entry->Commit(&device), 0); }).out,
              "[slot_enum_entry.cpp][Commit][#] Commit ip_entry\n");
    EXPECT_FALSE(entry->string_entry_refresh);
}

TEST_F(Slots_with_address, CommitNoMoreOfTheAddressThanTheLineHeld) {
    set_address("192.168.100.200");
    shown(7);
    device.expect_set(PID, 2, "192.168");
    EXPECT_EQ(entry->Commit(&device), 0);
}

TEST_F(Slots_with_address, ReportAFailedCommitAndReadTheAddressAgain) {
    entry->string_entry_refresh = true;
    device.expect_set(PID, 2, "", -1);
    EXPECT_EQ(entry->Commit(&device), 1);
    EXPECT_FALSE(entry->string_entry_refresh);
}

TEST_F(Slots_with_address, CommitAnAddressWithoutRefreshingDependants) {
    auto* binding = new support::Fake_binding();
    binding->map = nullptr;
    entry->Set_binding_object(binding);
    device.expect_set(PID, 2, "");
    EXPECT_EQ(capture(0x20, [&] { entry->Commit(&device); }).out, "");
}

TEST_F(Slots_with_address, CommitTheSlotWhereItIsTheSlotSelection) {
    build(3, 2, SLOT_SELECTION_PID, &address);
    set_address("10.0.0.17");
    shown(16);
    entry->string_entry_refresh = true;
    device.expect_set_integer(SLOT_SELECTION_PID, 2, 0);
    EXPECT_EQ(entry->Commit(&device), 0);
    EXPECT_TRUE(entry->string_entry_refresh);
}

TEST_F(Slots_with_address, RefreshTheAddressOnceAndAgainAfterACommit) {
    for (int refresh = 0; refresh < 4; ++refresh) {
        SCOPED_TRACE(refresh);
        if (refresh == 0 || refresh == 2) {
            device.expect_get_text(700, 9, "10.0.0.1", -1);
        }
        expect_start();
        device.expect_prod_list(true, true, frame({}));
        expect_end();
        EXPECT_EQ(entry->Refresh(&device, false), 0);
        EXPECT_TRUE(entry->string_entry_refresh) << "a failed read counts as well";
        if (refresh == 1) {
            device.expect_set(PID, 2, "");
            entry->Commit(&device);
        }
    }
}

TEST_F(Slots_with_address, TellThatTheAddressIsRefreshed) {
    const auto refresh = [&] {
        entry->string_entry_refresh = false;
        device.expect_get_text(700, 9, "10.0.0.1");
        expect_start();
        device.expect_prod_list(true, true, frame({}));
        expect_end();
        entry->Refresh(&device, false);
    };
    EXPECT_NE(capture(GENERAL | VERBOSE, refresh).out.find("String_node_entry::Refresh["),
              std::string::npos)
        << "without a line end";
    EXPECT_EQ(capture(GENERAL, refresh).out.find("String_node_entry"), std::string::npos);
    EXPECT_EQ(capture(0x10000 | VERBOSE, refresh).out.find("String_node_entry"), std::string::npos);
}

// The category of a refresh; unlike other leaves' lines these need a verbosity bit.
TEST_F(Slots, AllLinesOfARefreshAreInOneCategory) {
    build(2);
    device.answer_current_selection_local(1);
    device.answer_socket(1);
    device.answer_socket(2);
    device.answer_get_integer(PID, 2, 1);
    device.answer_prod_list(true, true, frame({{1, product(70, "XY")}}));
    device.answer_alias(70, "Main");
    support::expect_line_gates(
        {"selected=[2] selected_line=[0]local=[0]", "Returned slot enum after getting prod list",
         "Slot-70 name: Radio", "Slot-70 alias: Main", "slot name2: 1:XY", "SLOT_NAME[i] [1:XY",
         "Exiting function. local=[2]"},
        REFRESH, support::Gate::ENTRY, [&] { entry->Refresh(&device, false); });
}

TEST_F(Slots_with_address, LinesOfARefreshedAddressAndOfCommitsHaveTheirOwnGates) {
    device.answer_current_selection_local(1);
    device.answer_socket(1);
    device.answer_socket(2);
    device.answer_get_integer(PID, 2, 1);
    device.answer_get_text(700, 9, "10.0.0.1");
    device.answer_prod_list(true, true, frame({}));
    support::expect_line_gate("String_node_entry::Refresh", GENERAL, support::Gate::ENTRY, [&] {
        entry->string_entry_refresh = false;
        entry->Refresh(&device, false);
    });
    support::expect_line_gate("Commit ip_entry\n", 0x5, support::Gate::LEAF, [&] {
        device.expect_set(PID, 2, "");
        entry->Commit(&device);
    });
    build(3);
    support::expect_line_gate("About to commit...\n", 0x5, support::Gate::LEAF, [&] {
        device.expect_set_integer(PID, 2, 0);
        entry->Commit(&device);
    });
}

using SlotsDeathTest = Slots_with_address;

TEST_F(SlotsDeathTest, ShowAnAddressOnlyInABuffer) {
    char buffer[4] = {};
    EXPECT_DEATH(entry->Get_display_string(nullptr, 4), "Assertion `buffer&&length' failed");
    EXPECT_DEATH(entry->Get_display_string(buffer, 0), "Assertion `buffer&&length' failed");
}

}  // namespace
