#include <frontpanel_simulator/memory_device.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "support/bytes.h"

using namespace frontpanel;

namespace {

using support::bytes_of;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr unsigned int GAIN = 100;   // a number, 0 to 40
constexpr unsigned int TITLE = 200;  // a text of at most 8 characters

std::string shown(const Memory_device::Write& write) {
    static const char* const TYPES[] = {"unknown", "number", "text"};
    return std::to_string(write.pid) + "." + std::to_string(write.varidx) + " " +
           TYPES[write.type] + " [" + write.value + "] " + std::to_string(write.result);
}

std::vector<std::string> shown(const std::vector<Memory_device::Write>& writes) {
    std::vector<std::string> lines;
    for (const Memory_device::Write& write : writes) {
        lines.push_back(shown(write));
    }
    return lines;
}

PROD_LIST_S product_of(prod_id_t id, const char* family, const char* name) {
    PROD_LIST_S product = {};
    product.prod_id = id;
    std::strncpy(product.prod_family, family, sizeof product.prod_family - 1);
    std::strncpy(product.prod_string, name, sizeof product.prod_string - 1);
    return product;
}

class Memory_device_test : public testing::Test {
protected:
    Memory_device_test() {
        EXPECT_EQ(device.add_integer(GAIN, 0, 0, 40, 7), Memory_device::DONE);
        EXPECT_EQ(device.add_text(TITLE, 1, 8, "Studio"), Memory_device::DONE);
    }

    int write(unsigned int pid, unsigned int varidx, const std::string& bytes) {
        return device.Set(pid, varidx, bytes.data(), static_cast<unsigned int>(bytes.size()));
    }
    int write(unsigned int pid, unsigned int varidx, int32_t value) {
        return write(pid, varidx, bytes_of(value));
    }
    int read(unsigned int pid, unsigned int varidx, unsigned int length = 4) {
        std::vector<char> buffer(length + 1);
        return device.Get(pid, varidx, buffer.data(), length);
    }

    Memory_device device;
};

// ---- declaring

TEST_F(Memory_device_test, ADeclaredParameterHasItsTypeAndStartValue) {
    EXPECT_EQ(device.type(GAIN, 0), INTEGER);
    EXPECT_EQ(device.type(TITLE, 1), STRING);
    EXPECT_EQ(device.type(GAIN, 1), INVALID_TYPE);
    EXPECT_EQ(device.integer(GAIN, 0), 7);
    EXPECT_EQ(device.text(TITLE, 1), "Studio");
}

TEST_F(Memory_device_test, AVariableIndexMakesAParameterOfItsOwn) {
    EXPECT_EQ(device.add_integer(GAIN, 0x103, 0, 40, 12), Memory_device::DONE);

    EXPECT_EQ(device.integer(GAIN, 0), 7);
    EXPECT_EQ(device.integer(GAIN, 0x103), 12);
}

TEST_F(Memory_device_test, ASecondDeclarationIsRefusedAndKeepsTheFirst) {
    EXPECT_EQ(device.add_integer(GAIN, 0, 0, 99, 50), Memory_device::ALREADY_DECLARED);
    EXPECT_EQ(device.add_text(GAIN, 0, 8, "x"), Memory_device::ALREADY_DECLARED);

    EXPECT_EQ(device.type(GAIN, 0), INTEGER);
    EXPECT_EQ(device.integer(GAIN, 0), 7);
}

TEST_F(Memory_device_test, AStartValueThatDoesNotFitDeclaresNothing) {
    EXPECT_EQ(device.add_integer(101, 0, 0, 10, 11), Memory_device::OUT_OF_BOUNDS);
    EXPECT_EQ(device.add_integer(101, 0, 10, 0, 5), Memory_device::OUT_OF_BOUNDS);
    EXPECT_EQ(device.add_text(101, 0, 3, "four"), Memory_device::OUT_OF_BOUNDS);
    EXPECT_EQ(device.add_text(101, 0, 257, ""), Memory_device::OUT_OF_BOUNDS);
    EXPECT_EQ(device.add_text(101, 0, 8, std::string("a\0b", 3)), Memory_device::WRONG_TYPE);

    EXPECT_EQ(device.type(101, 0), INVALID_TYPE);
}

// ---- reading

TEST_F(Memory_device_test, ANumberIsReadAsFourBytes) {
    int32_t value = -1;

    EXPECT_EQ(device.Get(GAIN, 0, &value, sizeof value), 0);

    EXPECT_EQ(value, 7);
}

TEST_F(Memory_device_test, ATextIsReadWithItsTerminatorAndNothingBeyond) {
    char buffer[16];
    std::memset(buffer, '?', sizeof buffer);

    EXPECT_EQ(device.Get(TITLE, 1, buffer, sizeof buffer), 0);

    EXPECT_EQ(std::string(buffer, sizeof buffer), std::string("Studio\0?????????", 16));
}

TEST_F(Memory_device_test, ATextFitsABufferThatHoldsJustItsTerminator) {
    EXPECT_EQ(read(TITLE, 1, 7), Memory_device::DONE);
    EXPECT_EQ(read(TITLE, 1, 6), Memory_device::WRONG_SIZE);
    EXPECT_EQ(read(TITLE, 1, 0), Memory_device::WRONG_SIZE);
}

TEST_F(Memory_device_test, AReadThatDoesNotFitLeavesTheBufferAsItWas) {
    struct Case {
        unsigned int pid;
        unsigned int varidx;
        unsigned int length;
        int result;
    };
    for (const Case& each :
         {Case{999, 0, 4, Memory_device::UNKNOWN_PARAMETER},
          Case{GAIN, 1, 4, Memory_device::UNKNOWN_PARAMETER},
          Case{GAIN, 0, 2, Memory_device::WRONG_SIZE}, Case{GAIN, 0, 8, Memory_device::WRONG_SIZE},
          Case{TITLE, 1, 4, Memory_device::WRONG_SIZE}}) {
        SCOPED_TRACE(std::to_string(each.pid) + "." + std::to_string(each.varidx) + " length " +
                     std::to_string(each.length));
        char buffer[] = "????????";
        EXPECT_EQ(device.Get(each.pid, each.varidx, buffer, each.length), each.result);
        EXPECT_STREQ(buffer, "????????");
    }
}

TEST_F(Memory_device_test, AMissingBufferIsAnErrorAndNoCrash) {
    EXPECT_EQ(device.Get(GAIN, 0, nullptr, 4), Memory_device::NO_BUFFER);
    EXPECT_EQ(device.Set(GAIN, 0, nullptr, 4), Memory_device::NO_BUFFER);
    EXPECT_EQ(device.Get_prod_list(nullptr, false, true), Memory_device::NO_BUFFER);
    EXPECT_EQ(device.Get_prod_alias_name(nullptr, 1), Memory_device::NO_BUFFER);
}

// ---- writing

TEST_F(Memory_device_test, ANumberIsWrittenUpToItsBounds) {
    EXPECT_EQ(write(GAIN, 0, 40), Memory_device::DONE);
    EXPECT_EQ(device.integer(GAIN, 0), 40);
    EXPECT_EQ(write(GAIN, 0, 0), Memory_device::DONE);
    EXPECT_EQ(device.integer(GAIN, 0), 0);
}

TEST_F(Memory_device_test, AWriteThatDoesNotFitChangesNothing) {
    EXPECT_EQ(write(999, 0, 1), Memory_device::UNKNOWN_PARAMETER);
    EXPECT_EQ(write(GAIN, 0, 41), Memory_device::OUT_OF_BOUNDS);
    EXPECT_EQ(write(GAIN, 0, -1), Memory_device::OUT_OF_BOUNDS);
    EXPECT_EQ(write(GAIN, 0, std::string("12")), Memory_device::WRONG_SIZE);
    EXPECT_EQ(write(TITLE, 1, std::string("too long!")), Memory_device::OUT_OF_BOUNDS);
    EXPECT_EQ(write(TITLE, 1, std::string("a\0b", 3)), Memory_device::WRONG_TYPE);

    EXPECT_EQ(device.integer(GAIN, 0), 7);
    EXPECT_EQ(device.text(TITLE, 1), "Studio");
}

TEST_F(Memory_device_test, AZeroLengthWriteEmptiesAText) {
    EXPECT_EQ(device.Set(TITLE, 1, nullptr, 0), Memory_device::DONE);
    EXPECT_EQ(device.text(TITLE, 1), "");
}

TEST_F(Memory_device_test, ATextOfExactlyItsMaximumIsWritten) {
    EXPECT_EQ(write(TITLE, 1, std::string("Studio 2")), Memory_device::DONE);
    EXPECT_EQ(device.text(TITLE, 1), "Studio 2");
}

TEST_F(Memory_device_test, TheWholeRangeOfIntegersCanBeAllowed) {
    constexpr int32_t LOWEST = std::numeric_limits<int32_t>::min();
    constexpr int32_t HIGHEST = std::numeric_limits<int32_t>::max();
    EXPECT_EQ(device.add_integer(101, 0, LOWEST, HIGHEST, 0), Memory_device::DONE);

    EXPECT_EQ(write(101, 0, LOWEST), Memory_device::DONE);
    EXPECT_EQ(device.integer(101, 0), LOWEST);
    EXPECT_EQ(write(101, 0, HIGHEST), Memory_device::DONE);
    EXPECT_EQ(device.integer(101, 0), HIGHEST);
}

// ---- the device's own view

TEST_F(Memory_device_test, TheDevicesOwnChangeKeepsTheBoundsAndIsNoWrite) {
    EXPECT_EQ(device.set_integer(GAIN, 0, 9), Memory_device::DONE);
    EXPECT_EQ(device.set_integer(GAIN, 0, 41), Memory_device::OUT_OF_BOUNDS);
    EXPECT_EQ(device.set_text(TITLE, 1, "Hall"), Memory_device::DONE);
    EXPECT_EQ(device.set_text(TITLE, 1, "too long!"), Memory_device::OUT_OF_BOUNDS);

    EXPECT_EQ(device.integer(GAIN, 0), 9);
    EXPECT_EQ(device.text(TITLE, 1), "Hall");
    EXPECT_THAT(device.writes(), IsEmpty());
}

TEST_F(Memory_device_test, TheDevicesOwnViewKeepsTheTypesApart) {
    EXPECT_EQ(device.integer(TITLE, 1), std::nullopt);
    EXPECT_EQ(device.text(GAIN, 0), std::nullopt);
    EXPECT_EQ(device.integer(999, 0), std::nullopt);
    EXPECT_EQ(device.text(999, 0), std::nullopt);
    EXPECT_EQ(device.set_integer(TITLE, 1, 1), Memory_device::WRONG_TYPE);
    EXPECT_EQ(device.set_text(GAIN, 0, "1"), Memory_device::WRONG_TYPE);
    EXPECT_EQ(device.set_integer(999, 0, 1), Memory_device::UNKNOWN_PARAMETER);
    EXPECT_EQ(device.set_text(999, 0, ""), Memory_device::UNKNOWN_PARAMETER);
}

// ---- records

TEST_F(Memory_device_test, EveryWriteIsRecordedWithItsValueAndResult) {
    write(GAIN, 0, 12);
    write(GAIN, 0, -3);
    write(GAIN, 0, std::string("\x01\xff", 2));
    write(TITLE, 1, std::string("A\n\xc3\xa9"));
    write(999, 2, std::string("hi"));
    device.Set(GAIN, 0, nullptr, 4);

    EXPECT_THAT(shown(device.writes()),
                ElementsAre("100.0 number [12] 0", "100.0 number [-3] 4", "100.0 number [01 ff] 3",
                            "200.1 text [A\\x0a\xc3\xa9] 0", "999.2 unknown [68 69] 1",
                            "100.0 number [] 9"));
}

TEST_F(Memory_device_test, TheRecordOfAHugeWriteIsCut) {
    write(TITLE, 1, std::string(5000, 'x'));

    ASSERT_THAT(device.writes(), SizeIs(1));
    EXPECT_EQ(device.writes()[0].value, std::string(256, 'x') + "...");
}

TEST_F(Memory_device_test, OnlyTheNewestRecordsAreKept) {
    for (int32_t i = 0; i < 300; ++i) {
        write(GAIN, 0, i % 41);
        read(1000 + static_cast<unsigned int>(i), 0);
    }

    ASSERT_THAT(device.writes(), SizeIs(Memory_device::REMEMBERED));
    EXPECT_EQ(shown(device.writes().back()), "100.0 number [12] 0");
    ASSERT_THAT(device.failed_reads(), SizeIs(Memory_device::REMEMBERED));
    EXPECT_EQ(device.failed_reads().front().pid, 1044u);
    EXPECT_EQ(device.failed_reads().back().pid, 1299u);
}

TEST_F(Memory_device_test, TheListenerHearsEveryWriteAndMayUseTheDevice) {
    std::vector<std::string> heard;
    device.set_write_listener([&](const Memory_device::Write& each) {
        heard.push_back(shown(each) + " now " + std::to_string(*device.integer(GAIN, 0)));
    });
    write(GAIN, 0, 12);
    write(GAIN, 0, 99);
    device.set_write_listener(nullptr);
    write(GAIN, 0, 1);

    EXPECT_THAT(heard, ElementsAre("100.0 number [12] 0 now 12", "100.0 number [99] 4 now 12"));
}

TEST_F(Memory_device_test, AFailedReadIsRememberedUntilTheNextGoodOne) {
    EXPECT_FALSE(device.last_read_failed(GAIN, 0));
    read(GAIN, 0, 2);
    EXPECT_TRUE(device.last_read_failed(GAIN, 0));
    EXPECT_FALSE(device.last_read_failed(TITLE, 1));
    read(GAIN, 0);
    EXPECT_FALSE(device.last_read_failed(GAIN, 0));

    ASSERT_THAT(device.failed_reads(), SizeIs(1));
    EXPECT_EQ(device.failed_reads()[0].pid, GAIN);
    EXPECT_EQ(device.failed_reads()[0].varidx, 0u);
    EXPECT_EQ(device.failed_reads()[0].result, Memory_device::WRONG_SIZE);
}

TEST_F(Memory_device_test, AParameterThatTheDeviceDoesNotHaveCountsAsFailed) {
    EXPECT_TRUE(device.last_read_failed(999, 0));
}

TEST_F(Memory_device_test, ClearingTheRecordsKeepsTheStateOfReads) {
    write(GAIN, 0, 1);
    read(GAIN, 0, 2);

    device.clear_records();

    EXPECT_THAT(device.writes(), IsEmpty());
    EXPECT_THAT(device.failed_reads(), IsEmpty());
    EXPECT_TRUE(device.last_read_failed(GAIN, 0));
}

// ---- faults

TEST_F(Memory_device_test, AFaultFailsTheCallBeforeItTouchesAnything) {
    device.set_alias(5, "Main");
    device.set_fault([](const Memory_device::Operation&) { return 42; });
    char alias[100] = "untouched";
    PROD_LIST_S list[Memory_device::SLOT_COUNT] = {};
    list[0].prod_id = 77;
    int32_t value = 123;

    EXPECT_EQ(device.Get(GAIN, 0, &value, 4), 42);
    EXPECT_EQ(write(GAIN, 0, 12), 42);
    EXPECT_EQ(device.Get_prod_list(list, false, true), 42);
    EXPECT_EQ(device.Set_product_id(5), 42);
    EXPECT_EQ(device.Get_prod_alias_name(alias, 5), 42);
    EXPECT_EQ(device.setCurrentRouterSocket(3), 42);

    EXPECT_EQ(value, 123);
    EXPECT_EQ(device.integer(GAIN, 0), 7);
    EXPECT_EQ(list[0].prod_id, 77);
    EXPECT_EQ(device.product_id(), 0);
    EXPECT_STREQ(alias, "untouched");
    EXPECT_EQ(device.current_socket(), 0);
    EXPECT_TRUE(device.last_read_failed(GAIN, 0));
    EXPECT_THAT(shown(device.writes()), ElementsAre("100.0 number [12] 42"));
}

TEST_F(Memory_device_test, AFaultSeesWhatIsAskedOfTheDevice) {
    std::vector<std::string> seen;
    device.set_fault([&](const Memory_device::Operation& asked) {
        seen.push_back(std::to_string(static_cast<int>(asked.kind)) + " " +
                       std::to_string(asked.pid) + "." + std::to_string(asked.varidx) + " length " +
                       std::to_string(asked.length) + " socket " + std::to_string(asked.socket) +
                       " product " + std::to_string(asked.product));
        return 0;
    });
    char alias[100];
    PROD_LIST_S list[Memory_device::SLOT_COUNT];
    device.setCurrentRouterSocket(2);
    read(TITLE, 1, 20);
    write(GAIN, 0, 3);
    device.Get_prod_list(list, true, false);
    device.Set_product_id(8);
    device.Get_prod_alias_name(alias, 9);

    EXPECT_THAT(
        seen,
        ElementsAre("5 0.0 length 0 socket 2 product 0", "0 200.1 length 20 socket 2 product 0",
                    "1 100.0 length 4 socket 2 product 0", "2 0.0 length 0 socket 2 product 0",
                    "3 0.0 length 0 socket 2 product 8", "4 0.0 length 0 socket 2 product 9"));
}

TEST_F(Memory_device_test, AFaultMayFailOneParameterAndUseTheDevice) {
    device.set_fault([&](const Memory_device::Operation& asked) {
        return asked.kind == Memory_device::Operation_kind::READ && asked.pid == GAIN &&
                       *device.integer(GAIN, 0) == 7
                   ? 5
                   : 0;
    });

    EXPECT_EQ(read(GAIN, 0), 5);
    EXPECT_EQ(read(TITLE, 1, 20), 0);
    device.set_integer(GAIN, 0, 8);
    EXPECT_EQ(read(GAIN, 0), 0);
}

TEST_F(Memory_device_test, AnEmptyFaultEndsTheFaults) {
    device.set_fault([](const Memory_device::Operation&) { return 1; });
    EXPECT_EQ(read(GAIN, 0), 1);
    device.set_fault(nullptr);
    EXPECT_EQ(read(GAIN, 0), 0);
}

// ---- products and sockets

TEST_F(Memory_device_test, TheProductListHasARecordForEachSlot) {
    EXPECT_EQ(device.set_product(3, product_of(31, "router", "XY")), Memory_device::DONE);
    PROD_LIST_S list[Memory_device::SLOT_COUNT];
    std::memset(list, 0x55, sizeof list);

    EXPECT_EQ(device.Get_prod_list(list, false, true), 0);

    for (int slot = 0; slot < Memory_device::SLOT_COUNT; ++slot) {
        SCOPED_TRACE(slot);
        EXPECT_EQ(list[slot].prod_id, slot == 3 ? 31 : 0);
        EXPECT_STREQ(list[slot].prod_family, slot == 3 ? "router" : "");
        EXPECT_STREQ(list[slot].prod_string, slot == 3 ? "XY" : "");
    }
}

TEST_F(Memory_device_test, ARemoteProductListIsThatOfTheSelectedSocket) {
    device.set_product(1, product_of(10, "local", "L"));
    device.set_product(1, product_of(20, "remote", "R"), 4);
    PROD_LIST_S list[Memory_device::SLOT_COUNT];
    const auto first_product = [&](bool remote) {
        EXPECT_EQ(device.Get_prod_list(list, remote, true), 0);
        return list[1].prod_id;
    };

    EXPECT_EQ(first_product(true), 10);
    EXPECT_EQ(device.setCurrentRouterSocket(4), 0);
    EXPECT_EQ(first_product(true), 20);
    EXPECT_EQ(first_product(false), 10);
    EXPECT_EQ(device.setCurrentRouterSocket(5), 0);
    EXPECT_EQ(first_product(true), 0);
}

TEST_F(Memory_device_test, ProductTextsAreTerminatedWhateverTheRecordHolds) {
    PROD_LIST_S product;
    std::memset(&product, 'x', sizeof product);
    device.set_product(0, product);
    PROD_LIST_S list[Memory_device::SLOT_COUNT];
    device.Get_prod_list(list, false, true);

    EXPECT_EQ(std::string(list[0].prod_family), std::string(15, 'x'));
    EXPECT_EQ(std::string(list[0].prod_string), std::string(15, 'x'));
}

TEST_F(Memory_device_test, SlotsAndSocketsBeyondTheFrameAreRefused) {
    const PROD_LIST_S product = product_of(1, "a", "b");

    EXPECT_EQ(device.set_product(16, product), Memory_device::UNKNOWN_SLOT);
    EXPECT_EQ(device.set_product(-1, product), Memory_device::UNKNOWN_SLOT);
    EXPECT_EQ(device.set_product(0, product, 16), Memory_device::UNKNOWN_SOCKET);
    EXPECT_EQ(device.setCurrentRouterSocket(15), Memory_device::DONE);
    EXPECT_EQ(device.setCurrentRouterSocket(16), Memory_device::UNKNOWN_SOCKET);
    EXPECT_EQ(device.setCurrentRouterSocket(-1), Memory_device::UNKNOWN_SOCKET);
    EXPECT_EQ(device.current_socket(), 15);
}

// Whoever reads a card's parameter hands the status back as the socket: it must select what was selected.
TEST_F(Memory_device_test, TheLocalStatusHandedBackRestoresTheSocket) {
    for (const int socket : {0, 1, 9}) {
        SCOPED_TRACE(socket);
        device.setCurrentRouterSocket(socket);
        const int status = device.Is_current_selection_local();
        device.setCurrentRouterSocket(7);
        device.setCurrentRouterSocket(status);
        EXPECT_EQ(device.current_socket(), socket);
    }
}

TEST_F(Memory_device_test, ALocalSelectionIsInForceWhenSet) {
    EXPECT_FALSE(device.Is_use_selection_local());
    device.set_use_selection_local(true);
    EXPECT_TRUE(device.Is_use_selection_local());
}

TEST_F(Memory_device_test, AliasesBelongToAProduct) {
    const std::string longest(Memory_device::MAX_ALIAS_LENGTH, 'a');
    EXPECT_EQ(device.set_alias(5, longest), Memory_device::DONE);
    EXPECT_EQ(device.set_alias(5, longest + "a"), Memory_device::OUT_OF_BOUNDS);
    EXPECT_EQ(device.set_alias(5, std::string("a\0b", 3)), Memory_device::WRONG_TYPE);
    EXPECT_EQ(device.set_alias(6, ""), Memory_device::DONE);
    char alias[100] = "?";

    EXPECT_EQ(device.Get_prod_alias_name(alias, 5), 0);
    EXPECT_EQ(alias, longest);
    EXPECT_EQ(device.Get_prod_alias_name(alias, 6), 0);
    EXPECT_STREQ(alias, "");
    EXPECT_EQ(device.Get_prod_alias_name(alias, 7), Memory_device::UNKNOWN_PRODUCT);
}

TEST_F(Memory_device_test, TheProductIdIsTheLastOneSet) {
    EXPECT_EQ(device.Set_product_id(12), 0);
    EXPECT_EQ(device.Set_product_id(13), 0);
    EXPECT_EQ(device.product_id(), 13);
}

TEST_F(Memory_device_test, ItIsADataInterfaceForWhoeverAsks) {
    Data_interface* const iface = &device;
    iface->Init();

    EXPECT_NE(dynamic_cast<Pdt_data_access*>(iface), nullptr);
}

TEST_F(Memory_device_test, TheApplicationsOwnFieldsStartAtZero) {
    EXPECT_EQ(device.go_home, 0);
    EXPECT_EQ(device.lock_and_dim, 0);
    EXPECT_EQ(device.time_for_timeout, 0);
}

TEST(Memory_device_results, EachResultHasItsWords) {
    EXPECT_STREQ(Memory_device::result_text(0), "done");
    EXPECT_STREQ(Memory_device::result_text(1), "unknown parameter");
    EXPECT_STREQ(Memory_device::result_text(2), "wrong type");
    EXPECT_STREQ(Memory_device::result_text(3), "wrong size");
    EXPECT_STREQ(Memory_device::result_text(4), "out of bounds");
    EXPECT_STREQ(Memory_device::result_text(5), "unknown socket");
    EXPECT_STREQ(Memory_device::result_text(6), "unknown product");
    EXPECT_STREQ(Memory_device::result_text(7), "unknown slot");
    EXPECT_STREQ(Memory_device::result_text(8), "already declared");
    EXPECT_STREQ(Memory_device::result_text(9), "no buffer");
    EXPECT_STREQ(Memory_device::result_text(10), "device error");
    EXPECT_STREQ(Memory_device::result_text(-1), "device error");
}

TEST_F(Memory_device_test, ThreadsMayReadAndWriteAtOnce) {
    std::vector<std::thread> threads;
    for (int32_t thread = 0; thread < 4; ++thread) {
        threads.emplace_back([this, thread] {
            for (int i = 0; i < 200; ++i) {
                write(GAIN, 0, thread);
                read(GAIN, 0);
                device.writes();
                device.setCurrentRouterSocket(thread);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }

    EXPECT_THAT(device.failed_reads(), IsEmpty());
    EXPECT_THAT(device.writes(), SizeIs(Memory_device::REMEMBERED));
}

TEST_F(Memory_device_test, TellsWhenAParameterTakesAnotherValueAndOnlyThen) {
    int changes = 0;
    device.set_change_listener([&changes] { ++changes; });
    write(GAIN, 0, 8);
    EXPECT_EQ(changes, 1);
    write(GAIN, 0, 8);
    write(GAIN, 0, 41);
    device.set_integer(GAIN, 0, 41);
    device.set_text(TITLE, 1, "Studio");
    device.add_integer(GAIN + 1, 0, 0, 1, 1);
    EXPECT_EQ(changes, 1);
    device.set_integer(GAIN, 0, 9);
    device.set_text(TITLE, 1, "Van");
    write(TITLE, 1, "Truck");
    EXPECT_EQ(changes, 4);
    device.set_change_listener(nullptr);
    write(GAIN, 0, 1);
    EXPECT_EQ(changes, 4);
}

TEST_F(Memory_device_test, AFailedWriteIsNoChange) {
    int changes = 0;
    device.set_change_listener([&changes] { ++changes; });
    device.set_fault([](const Memory_device::Operation&) { return 100; });
    write(GAIN, 0, 8);
    EXPECT_EQ(changes, 0);
}

TEST_F(Memory_device_test, AChangeListenerMayUseTheDevice) {
    std::vector<int> seen;
    device.set_change_listener([&] { seen.push_back(device.integer(GAIN, 0).value()); });
    write(GAIN, 0, 8);
    EXPECT_THAT(seen, ElementsAre(8));
}

TEST_F(Memory_device_test, ListsEveryParameterInOrder) {
    device.add_integer(GAIN, 2, -5, 5, -3);
    std::vector<std::string> lines;
    for (const Memory_device::Value& value : device.values()) {
        lines.push_back(std::to_string(value.pid) + "." + std::to_string(value.varidx) + " " +
                        (value.type == STRING ? value.text : std::to_string(value.number)));
    }
    EXPECT_THAT(lines, ElementsAre("100.0 7", "100.2 -3", "200.1 Studio"));
}

}  // namespace
