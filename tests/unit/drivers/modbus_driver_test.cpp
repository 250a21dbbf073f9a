// The driver "modbus" against a controller on libmodbus and one on pymodbus, over TCP and over a pair of pseudo
// terminals, with every fault of a controller and of a line.
#include <frontpanel_driver_modbus/modbus_driver.h>

#include <fcntl.h>
#include <sys/resource.h>

#include <fstream>

#include "support/folder.h"
#include "support/helper_process.h"
#include "support/modbus_server.h"
#include "support/noting_sink.h"
#include "unit/drivers/menu_fixture.h"

namespace support {
namespace {

using namespace frontpanel;
using Turn = Modbus_turn;

class Modbus_driver_test : public testing::Test {
protected:
    void load(const std::string& options, const Lines& sources) {
        Problems problems;
        const Source file{"menu.json", 0};
        const Json_document instance(file, "{" + options + "}");
        m_driver = modbus_driver_row().create(Json_value(instance.root(), problems), {"plc", ""});
        for (const std::string& source : sources) {
            const Json_document document(file, "{" + source + "}");
            Driver_parameter parameter;
            parameter.name = "p" + std::to_string(m_numbers.size());
            m_driver->add(Json_value(document.root(), problems), parameter);
            m_numbers.push_back(m_numbers.size());
        }
    }
    std::string connect() { return text_of(m_driver->connect()); }
    // Each parameter once; after them how the call ended, unless it was done. On a slow machine a call returns after some of
    // them.
    Lines read() { return read(m_numbers); }
    Lines read(std::vector<std::size_t> numbers) {
        Lines lines;
        while (!numbers.empty()) {
            const Driver_result result = m_driver->read(numbers, m_sink);
            const Lines more = m_sink.take();
            for (const std::string& line : more) {
                const std::size_t number = std::stoul(line);
                numbers.erase(std::remove(numbers.begin(), numbers.end(), number), numbers.end());
            }
            lines.insert(lines.end(), more.begin(), more.end());
            if (result.kind != Driver_result::DONE || more.empty()) {
                lines.push_back(text_of(result));
                break;
            }
        }
        std::sort(lines.begin(), lines.end());
        return lines;
    }
    std::string write(std::size_t number, std::int32_t value) {
        return text_of(m_driver->write(number, value));
    }

    Noting_sink m_sink;
    std::vector<std::size_t> m_numbers;
    std::unique_ptr<Driver> m_driver;
};

const Lines ALL_TABLES{R"("holding": 10)",
                       R"("holding": 11, "type": "int32")",
                       R"("input": 10, "type": "int16", "scale": "1/10")",
                       R"("coil": 10)",
                       R"("discrete": 10)",
                       R"("holding": 13, "bit": 4, "width": 4)"};

void fill(Modbus_server& server) {
    server.hold(10, {65535, 0xFFFF, 0xFFFE, 0xABCD});
    server.hold_input(10, 0xFF38);  // -200
    server.hold_coil(10, true);
    server.hold_discrete(10, false);
}
const Lines FILLED{"0=65535", "1=-2", "2=-20", "3=1", "4=0", "5=12"};

class Tcp_test : public Modbus_driver_test {
protected:
    // A long time-out: an answer always arrives in it.
    void connect_to_server(const Lines& sources,
                           const std::string& options = R"(, "timeout": "3s")") {
        load(address() + options, sources);
        ASSERT_EQ(connect(), "done");
    }
    std::string address() const {
        return R"("host": "127.0.0.1", "port": )" + std::to_string(m_server.port());
    }

    Modbus_server m_server;
};

constexpr const char* SHORT = R"(, "timeout": "1s", "retries": 0)";

// ---- values

TEST_F(Tcp_test, EveryTableIsRead) {
    fill(m_server);
    connect_to_server(ALL_TABLES);
    EXPECT_EQ(read(), FILLED);
}

TEST_F(Tcp_test, NeighboursAreReadInOneRequest) {
    connect_to_server(ALL_TABLES);
    read();
    EXPECT_EQ(m_server.take_requests(),
              (Lines{"unit 1: 3 10+4", "unit 1: 4 10+1", "unit 1: 1 10+1", "unit 1: 2 10+1"}));
}

TEST_F(Tcp_test, AGapIsReadAlongOnlyWhereItIsAllowed) {
    connect_to_server({R"("holding": 0)", R"("holding": 5)"});
    read();
    EXPECT_EQ(m_server.take_requests(), (Lines{"unit 1: 3 0+1", "unit 1: 3 5+1"}));
    load(address() + R"(, "gap": 4)", {});
    m_numbers.clear();
    connect_to_server({R"("holding": 0)", R"("holding": 5)"}, R"(, "gap": 4)");
    read();
    EXPECT_EQ(m_server.take_requests(), Lines{"unit 1: 3 0+6"});
}

TEST_F(Tcp_test, OnlyWhatIsAskedForIsRead) {
    connect_to_server(ALL_TABLES);
    read({3});
    EXPECT_EQ(m_server.take_requests(), Lines{"unit 1: 1 10+1"});
}

TEST_F(Tcp_test, RegistersAndCoilsAreWritten) {
    connect_to_server(ALL_TABLES);
    EXPECT_EQ(write(0, 65535), "done");
    EXPECT_EQ(write(1, -2), "done");
    EXPECT_EQ(write(3, 1), "done");
    EXPECT_EQ(m_server.take_requests(),
              (Lines{"unit 1: 6 10=65535", "unit 1: 16 11+2", "unit 1: 5 10=65280"}));
    EXPECT_EQ(m_server.held(10), 0xFFFF);
    EXPECT_EQ(m_server.held(11), 0xFFFF);
    EXPECT_EQ(m_server.held(12), 0xFFFE);
    EXPECT_TRUE(m_server.held_coil(10));
    EXPECT_EQ(write(3, 0), "done");
    EXPECT_FALSE(m_server.held_coil(10));
}

TEST_F(Tcp_test, WritingAPartOfARegisterKeepsItsOtherBits) {
    m_server.hold(13, {0xABCD});
    connect_to_server(ALL_TABLES);
    EXPECT_EQ(write(5, 1), "done");
    EXPECT_EQ(m_server.held(13), 0xAB1D);
    EXPECT_EQ(m_server.take_requests(), (Lines{"unit 1: 3 13+1", "unit 1: 6 13=43805"}));
}

TEST_F(Tcp_test, ANumberThatDoesNotFitIsNotSent) {
    connect_to_server(ALL_TABLES);
    EXPECT_EQ(write(0, 65536), "refused: 65536 is beyond 0..65535 of the holding register");
    EXPECT_EQ(write(3, 2), "refused: 2 is beyond 0..1 of the coil");
    EXPECT_EQ(m_server.take_requests(), Lines{});
}

TEST_F(Tcp_test, InputsCannotBeWritten) {
    connect_to_server(ALL_TABLES);
    EXPECT_EQ(write(2, 1), "refused: input registers cannot be written");
    EXPECT_EQ(write(4, 1), "refused: discrete inputs cannot be written");
    EXPECT_EQ(m_server.take_requests(), Lines{});
}

TEST_F(Tcp_test, ANumberBeyondTheMenusRangeIsAFailureOfItsParameterAlone) {
    m_server.hold(0, {0xFFFF, 0xFFFF, 7});
    connect_to_server({R"("holding": 0, "type": "uint32")", R"("holding": 2)"});
    EXPECT_EQ(read(), (Lines{"0: the number does not fit 32 bits: 4294967295", "1=7"}));
}

TEST_F(Modbus_driver_test, AControllerIsReachedOverIpv6) {
    std::optional<Modbus_server> server;
    try {
        server.emplace(AF_INET6);
    } catch (const std::runtime_error&) {
        GTEST_SKIP() << "no IPv6 on this machine";
    }
    server->hold(0, {42});
    load(R"("host": "::1", "timeout": "3s", "port": )" + std::to_string(server->port()),
         {R"("holding": 0)"});
    ASSERT_EQ(connect(), "done");
    EXPECT_EQ(read(), Lines{"0=42"});
}

// ---- the connection

TEST_F(Tcp_test, AControllerThatIsAwayAndBackIsReadAgain) {
    m_server.hold(0, {5});
    connect_to_server({R"("holding": 0)"});
    EXPECT_EQ(read(), Lines{"0=5"});
    m_server.stop();
    EXPECT_EQ(read(), Lines{"away: Connection refused"});
    EXPECT_EQ(connect(), "away: Connection refused");
    EXPECT_EQ(write(0, 6), "away: Connection refused");
    m_server.start();
    EXPECT_EQ(connect(), "done");
    EXPECT_EQ(read(), Lines{"0=5"});
}

TEST_F(Tcp_test, AConnectionThatTheControllerClosedWhenIdleIsMadeAnew) {
    m_server.hold(0, {5});
    connect_to_server({R"("holding": 0)"});
    m_server.hang_up();
    EXPECT_EQ(read(), Lines{"0=5"});
    m_server.hang_up();
    EXPECT_EQ(write(0, 6), "done");
    EXPECT_EQ(m_server.take_requests(), (Lines{"unit 1: 3 0+1", "unit 1: 6 0=6"}));
    EXPECT_EQ(m_server.connection_count(), 3);
}

TEST_F(Tcp_test, AReadWhoseConnectionIsCutIsAway) {
    connect_to_server({R"("holding": 0)"});
    m_server.answer({{Turn::CUT}});
    EXPECT_EQ(read(), Lines{"away: Connection reset by peer"});
    EXPECT_EQ(connect(), "done");
    EXPECT_EQ(read(), Lines{"0=0"});
}

TEST_F(Tcp_test, AWriteWhoseConnectionIsCutIsUnknownAndNotRepeated) {
    connect_to_server({R"("holding": 0)"}, R"(, "timeout": "3s", "retries": 5)");
    m_server.answer({{Turn::CUT}});
    EXPECT_EQ(write(0, 7), "timed out: Connection reset by peer");
    EXPECT_EQ(m_server.take_requests(), Lines{"unit 1: 6 0=7"});
    EXPECT_EQ(read(), Lines{"0=0"});
}

TEST_F(Modbus_driver_test, TooManyOpenFilesAreReportedInsteadOfACrash) {
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
    std::vector<Descriptor> open_files;
    do {
        open_files.emplace_back(open("/dev/null", O_RDONLY | O_CLOEXEC));
    } while (open_files.back().is_open() && open_files.back().number() < 1024);
    if (!open_files.back().is_open()) {
        GTEST_SKIP() << "no more than 1024 files can be open";
    }
    load(R"("device": "/dev/ptmx")", {R"("holding": 0)"});
    EXPECT_EQ(connect(), "away: too many files are open");
}

// ---- answers

TEST_F(Tcp_test, AReadWithoutAnAnswerIsTriedAgain) {
    m_server.hold(0, {5});
    connect_to_server({R"("holding": 0)"}, R"(, "timeout": "600ms", "retries": 2)");
    m_server.answer({{Turn::SILENT}, {Turn::SILENT}});
    EXPECT_EQ(read(), Lines{"0=5"});
    EXPECT_EQ(m_server.take_requests().size(), 3U);
}

TEST_F(Tcp_test, AControllerThatNeverAnswersIsAFailureWithinBounds) {
    connect_to_server({R"("holding": 0)", R"("input": 0)"}, SHORT);
    m_server.answer({{Turn::SILENT}, {Turn::SILENT}});
    EXPECT_EQ(read(), (Lines{"0: no answer from unit 1", "1: no answer from unit 1"}));
}

TEST_F(Tcp_test, HalfAnAnswerIsNone) {
    connect_to_server({R"("holding": 0)"}, SHORT);
    m_server.answer({{Turn::HALF}});
    EXPECT_EQ(read(), Lines{"0: no answer from unit 1"});
}

TEST_F(Tcp_test, AnAnswerToAnotherRequestIsDamaged) {
    connect_to_server({R"("holding": 0)"}, SHORT);
    m_server.answer({{Turn::GARBLED}});
    EXPECT_EQ(read(), Lines{"0: damaged answer from unit 1"});
}

TEST_F(Tcp_test, AnAnswerThatComesAfterItsTimeIsNotTakenForTheNextOne) {
    m_server.hold(0, {111, 0, 222});
    connect_to_server({R"("holding": 0)", R"("holding": 2)"}, SHORT);
    m_server.answer({{Turn::LATE}});
    EXPECT_EQ(read({0}), Lines{"0: no answer from unit 1"});
    EXPECT_TRUE(m_server.wait_for_hang_up());
    EXPECT_EQ(write(1, 223), "done");
    m_server.send_late_answer();
    EXPECT_EQ(read({1}), Lines{"1=223"});
}

TEST_F(Tcp_test, AReadOfManyGivesWayToWritesAfterASlowAnswer) {
    connect_to_server({R"("holding": 0)", R"("input": 0)"},
                      R"(, "timeout": "600ms", "retries": 0)");
    m_server.answer({{Turn::SILENT}});
    EXPECT_EQ(text_of(m_driver->read({0, 1}, m_sink)), "done");
    EXPECT_EQ(m_sink.take(), Lines{"0: no answer from unit 1"});
}

TEST_F(Tcp_test, ExceptionsAreReasons) {
    const struct {
        unsigned code;
        const char* reason;
    } cases[] = {
        {1, "the controller does not have this function (exception 1)"},
        {2, "the controller has no such address (exception 2)"},
        {3, "the controller rejects this value (exception 3)"},
        {4, "the controller reports a failure (exception 4)"},
        {6, "the controller is busy (exception 6)"},
        {8, "the controller reports a memory error (exception 8)"},
        {10, "the gateway has no path to the unit (exception 10)"},
        {77, "the controller refuses (unknown exception)"},
    };
    connect_to_server({R"("holding": 0)"}, R"(, "timeout": "3s", "retries": 0)");
    for (const auto& c : cases) {
        SCOPED_TRACE(c.code);
        m_server.answer({{Turn::EXCEPTION, c.code}, {Turn::EXCEPTION, c.code}});
        EXPECT_EQ(read(), Lines{std::string("0: ") + c.reason});
        EXPECT_EQ(write(0, 1), std::string("refused: ") + c.reason);
    }
    EXPECT_EQ(m_server.held(0), 0);
}

TEST_F(Tcp_test, AWriteThatMayStillBeDoneIsUnknown) {
    connect_to_server({R"("holding": 0)"}, R"(, "timeout": "1s", "retries": 5)");
    m_server.answer({{Turn::EXCEPTION, 5}});
    EXPECT_EQ(write(0, 1),
              "timed out: the controller has accepted it and is still at it (exception 5)");
    m_server.answer({{Turn::EXCEPTION, 11}});
    EXPECT_EQ(write(0, 2), "timed out: the unit behind the gateway does not answer (exception 11)");
    m_server.answer({{Turn::SILENT}});
    EXPECT_EQ(write(0, 3), "timed out: no answer from unit 1");
    EXPECT_EQ(m_server.take_requests(), (Lines{"unit 1: 6 0=1", "unit 1: 6 0=2", "unit 1: 6 0=3"}));
}

TEST_F(Tcp_test, ABusyControllerIsAskedAgain) {
    m_server.hold(0, {5});
    connect_to_server({R"("holding": 0)"}, R"(, "timeout": "3s", "retries": 1)");
    m_server.answer({{Turn::EXCEPTION, 6}});
    EXPECT_EQ(read(), Lines{"0=5"});
    m_server.answer({{Turn::EXCEPTION, 6}});
    EXPECT_EQ(write(0, 9), "done");
    EXPECT_EQ(m_server.held(0), 9);
}

TEST_F(Tcp_test, APartIsNotWrittenWhenTheRestOfItsRegisterIsUnknown) {
    connect_to_server({R"("holding": 0, "bit": 3)"}, SHORT);
    m_server.answer({{Turn::SILENT}});
    EXPECT_EQ(write(0, 1), "refused: no answer from unit 1; nothing was written");
    m_server.answer({{Turn::EXCEPTION, 4}});
    EXPECT_EQ(write(0, 1), "refused: the controller reports a failure (exception 4)");
    EXPECT_EQ(m_server.take_requests(), (Lines{"unit 1: 3 0+1", "unit 1: 3 0+1"}));
}

TEST_F(Tcp_test, ARegisterThatTheControllerDoesNotHaveLeavesItsNeighboursReadable) {
    m_server.hold(0, {10, 11, 12, 13});
    m_server.have_no(2);
    connect_to_server({R"("holding": 0)", R"("holding": 1)", R"("holding": 2)", R"("holding": 3)"});
    const Lines expected{"0=10", "1=11", "2: the controller has no such address (exception 2)",
                         "3=13"};
    EXPECT_EQ(read(), expected);
    EXPECT_EQ(m_server.take_requests(), (Lines{"unit 1: 3 0+4", "unit 1: 3 0+2", "unit 1: 3 2+2",
                                               "unit 1: 3 2+1", "unit 1: 3 3+1"}));
    EXPECT_EQ(read(), expected);
    EXPECT_EQ(m_server.take_requests(), (Lines{"unit 1: 3 0+2", "unit 1: 3 2+1", "unit 1: 3 3+1"}));
}

TEST_F(Tcp_test, AUnitThatDoesNotAnswerDoesNotHoldUpTheOthers) {
    m_server.hold(0, {5});
    connect_to_server({R"("holding": 0)", R"("holding": 0, "unit": 2)"},
                      R"(, "timeout": "3s", "retries": 1)");
    const Lines expected{"0=5", "1: the unit behind the gateway does not answer (exception 11)"};
    EXPECT_EQ(read(), expected);
    EXPECT_EQ(m_server.take_requests(), (Lines{"unit 1: 3 0+1", "unit 2: 3 0+1", "unit 2: 3 0+1"}));
    EXPECT_EQ(read({0}), Lines{"0=5"});
}

TEST_F(Tcp_test, NothingIsPrintedWhateverTheControllerAnswers) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    connect_to_server({R"("holding": 0)"}, SHORT);
    m_server.answer({{Turn::SILENT},
                     {Turn::HALF},
                     {Turn::GARBLED},
                     {Turn::EXCEPTION, 77},
                     {Turn::EXCEPTION, 2},
                     {Turn::CUT}});
    for (int i = 0; i < 7; ++i) {
        write(0, 1);
    }
    m_server.stop();
    read();
    m_driver.reset();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

// ---- the end of the panel

constexpr const char* PATIENT = R"(, "timeout": "3s", "retries": 5)";

TEST_F(Tcp_test, AStopEndsAReadWithoutAnAnswer) {
    connect_to_server({R"("holding": 0)"}, PATIENT);
    m_server.answer({{Turn::SILENT}, {Turn::SILENT}});
    std::thread end([this] {
        m_server.wait_for_requests(1);
        m_driver->stop();
    });
    EXPECT_EQ(text_of(m_driver->read({0}, m_sink)).substr(0, 4), "away");
    end.join();
    EXPECT_EQ(m_sink.take(), Lines{});
    EXPECT_EQ(m_server.take_requests(), Lines{"unit 1: 3 0+1"});
    m_driver->disconnect();
    EXPECT_TRUE(m_server.wait_for_hang_up());
}

TEST_F(Tcp_test, AStopEndsAWriteWithoutAnAnswerWhichIsUnknown) {
    connect_to_server({R"("holding": 0)"}, PATIENT);
    m_server.answer({{Turn::SILENT}});
    std::thread end([this] {
        m_server.wait_for_requests(1);
        m_driver->stop();
    });
    EXPECT_EQ(write(0, 5), "timed out: Connection reset by peer");
    end.join();
}

TEST_F(Tcp_test, AfterAStopNothingIsSent) {
    connect_to_server({R"("holding": 0)"}, PATIENT);
    m_driver->stop();
    EXPECT_EQ(write(0, 5), "away: the panel ends");
    EXPECT_EQ(read(), Lines{"away: the panel ends"});
    EXPECT_EQ(connect(), "away: the panel ends");
    EXPECT_EQ(m_server.take_requests(), Lines{});
}

// The queue of a listener that accepts nobody is full after a few connections.
TEST_F(Modbus_driver_test, AStopEndsAConnectionThatNobodyAccepts) {
    const Descriptor listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const where = reinterpret_cast<sockaddr*>(&address);
    ASSERT_EQ(bind(listener.number(), where, size), 0);
    ASSERT_EQ(listen(listener.number(), 0), 0);
    ASSERT_EQ(getsockname(listener.number(), where, &size), 0);
    std::vector<Descriptor> waiting;
    for (int i = 0; i < 4; ++i) {
        waiting.emplace_back(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
        (void)::connect(waiting.back().number(), where, size);
    }
    load(R"("host": "127.0.0.1", "port": )" + std::to_string(ntohs(address.sin_port)) + PATIENT,
         {R"("holding": 0)"});
    std::thread end([this] { m_driver->stop(); });
    EXPECT_EQ(connect(), "away: the panel ends");
    end.join();
}

// ---- a serial line

// A pair of pseudo terminals, which socat joins as a cable does.
class Serial_test : public Modbus_driver_test {
protected:
    void SetUp() override {
        if (!m_socat.wait_for("starting data transfer loop")) {
            GTEST_SKIP() << "no pair of pseudo terminals without socat: " << m_socat.output();
        }
        // A terminal that nobody has open ends socat.
        for (const char* const name : {"ours", "its"}) {
            m_ends.emplace_back(open(m_folder.file(name).c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
            ASSERT_TRUE(m_ends.back().is_open());
        }
    }
    void connect_to_line(const Lines& sources,
                         const std::string& options = R"(, "timeout": "3s")") {
        load(R"("device": ")" + m_folder.file("ours") + "\"" + options, sources);
        ASSERT_EQ(connect(), "done");
    }
    std::string terminal(const char* name) const {
        return "pty,raw,echo=0,link=" + m_folder.file(name);
    }

    Folder m_folder;
    Helper_process m_socat{{"socat", "-d", "-d", terminal("ours"), terminal("its")}};
    std::vector<Descriptor> m_ends;
};

TEST_F(Serial_test, EveryTableIsReadAndWritten) {
    Modbus_server server(m_folder.file("its"));
    fill(server);
    connect_to_line(ALL_TABLES);
    EXPECT_EQ(read(), FILLED);
    EXPECT_EQ(write(1, 70000), "done");
    EXPECT_EQ(write(3, 0), "done");
    EXPECT_EQ(write(5, 0), "done");
    EXPECT_EQ(read(), (Lines{"0=65535", "1=70000", "2=-20", "3=0", "4=0", "5=0"}));
    EXPECT_EQ(server.held(13), 0xAB0D);
}

TEST_F(Serial_test, AnAnswerThatComesAfterItsTimeIsNotTakenForTheNextOne) {
    Modbus_server server(m_folder.file("its"));
    server.hold(0, {111, 0, 222});
    connect_to_line({R"("holding": 0)", R"("holding": 2)"}, SHORT);
    server.answer({{Turn::LATE}});
    EXPECT_EQ(read({0}), Lines{"0: no answer from unit 1"});
    server.send_late_answer();
    // A write is sent to a unit that rests, and ends its rest.
    EXPECT_EQ(write(1, 223), "done");
    EXPECT_EQ(read({1}), Lines{"1=223"});
}

TEST_F(Serial_test, AfterAStopNoFurtherTryIsMade) {
    Modbus_server server(m_folder.file("its"));
    connect_to_line({R"("holding": 0)"}, R"(, "timeout": "1s", "retries": 5)");
    server.answer({{Turn::SILENT}, {Turn::SILENT}});
    std::thread end([this, &server] {
        server.wait_for_requests(1);
        m_driver->stop();
    });
    EXPECT_EQ(read(), Lines{"away: the panel ends"});
    end.join();
    EXPECT_EQ(server.take_requests(), Lines{"unit 1: 3 0+1"});
}

TEST_F(Serial_test, AnotherUnitDoesNotAnswer) {
    const Modbus_server server(m_folder.file("its"));
    connect_to_line({R"("holding": 0, "unit": 2)", R"("holding": 0)"}, SHORT);
    EXPECT_EQ(read(), (Lines{"0: no answer from unit 2", "1=0"}));
}

TEST_F(Serial_test, ADamagedAnswerIsAFailureOrTriedAgain) {
    Modbus_server server(m_folder.file("its"));
    server.hold(0, {5});
    connect_to_line({R"("holding": 0)"}, R"(, "timeout": "1s", "retries": 1)");
    server.answer({{Turn::GARBLED}});
    EXPECT_EQ(read(), Lines{"0=5"});
    server.answer({{Turn::GARBLED}, {Turn::HALF}});
    EXPECT_EQ(read(), Lines{"0: no answer from unit 1"});
}

TEST_F(Modbus_driver_test, ALineThatIsMissingIsAwayUntilItIsThere) {
    const Folder folder;
    load(R"("device": ")" + folder.file("ttyUSB0") + "\"", {R"("holding": 0)"});
    EXPECT_EQ(connect(), "away: No such file or directory");
    std::ofstream(folder.file("ttyUSB0")) << "no terminal";
    EXPECT_EQ(connect(), "away: Inappropriate ioctl for device");
}

// ---- a controller that is not ours

class Pymodbus {
public:
    explicit Pymodbus(std::vector<std::string> arguments)
        : m_process(command(std::move(arguments))), m_is_ready(m_process.wait_for("ready ")) {}
    bool is_ready() const { return m_is_ready; }
    std::string port() const { return m_process.line().substr(std::strlen("ready ")); }

private:
    static std::vector<std::string> command(std::vector<std::string> arguments) {
        std::vector<std::string> all{"/usr/bin/python3",
                                     FRONTPANEL_SOURCE_DIR "/tests/support/pymodbus_server.py"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return all;
    }

    Helper_process m_process;
    bool m_is_ready;
};

const Lines PYMODBUS_SOURCES{
    R"("holding": 10)", R"("holding": 11)",  R"("input": 12)",
    R"("coil": 13)",    R"("discrete": 14)", R"("holding": 20, "type": "int32", "scale": "1/10")"};
const Lines PYMODBUS_VALUES{"0=1010", "1=1011", "2=2012", "3=1", "4=0", "5=6684774"};

TEST_F(Modbus_driver_test, PymodbusIsReadAndWrittenOverTcp) {
    const Pymodbus server({"tcp"});
    if (!server.is_ready()) {
        GTEST_SKIP() << "python3-pymodbus is not installed";
    }
    load(R"("host": "127.0.0.1", "timeout": "3s", "port": )" + server.port(), PYMODBUS_SOURCES);
    ASSERT_EQ(connect(), "done");
    EXPECT_EQ(read(), PYMODBUS_VALUES);
    EXPECT_EQ(write(0, 65535), "done");
    EXPECT_EQ(write(3, 0), "done");
    EXPECT_EQ(write(5, -7), "done");
    EXPECT_EQ(read(), (Lines{"0=65535", "1=1011", "2=2012", "3=0", "4=0", "5=-7"}));
}

TEST_F(Modbus_driver_test, PymodbusRefusesAnAddressThatItDoesNotHave) {
    const Pymodbus server({"tcp"});
    if (!server.is_ready()) {
        GTEST_SKIP() << "python3-pymodbus is not installed";
    }
    load(R"("host": "127.0.0.1", "timeout": "3s", "port": )" + server.port(),
         {R"("holding": 299)", R"("holding": 300)"});
    ASSERT_EQ(connect(), "done");
    EXPECT_EQ(read(), (Lines{"0=1299", "1: the controller has no such address (exception 2)"}));
    EXPECT_EQ(write(1, 1), "refused: the controller has no such address (exception 2)");
}

TEST_F(Serial_test, PymodbusIsReadAndWrittenOverALine) {
    const Pymodbus server({"rtu", m_folder.file("its")});
    if (!server.is_ready()) {
        GTEST_SKIP() << "python3-pymodbus or python3-serial-asyncio is not installed";
    }
    connect_to_line(PYMODBUS_SOURCES);
    EXPECT_EQ(read(), PYMODBUS_VALUES);
    EXPECT_EQ(write(0, 65535), "done");
    EXPECT_EQ(write(3, 0), "done");
    EXPECT_EQ(write(5, -7), "done");
    EXPECT_EQ(read(), (Lines{"0=65535", "1=1011", "2=2012", "3=0", "4=0", "5=-7"}));
}

// ---- in a menu file

class Modbus_menu_test : public Driver_menu_test {
protected:
    void load(const std::string& driver, const std::string& parameters) {
        load_menu({&modbus_driver_row()}, "menus",
                  R"({"plc": {"driver": "modbus", )" + driver + "}}", parameters);
    }
    void step() {
        m_clock->advance(2s);
        number_of(m_device->cache(), 1);
        m_device->cache().step();
    }
};

TEST_F(Modbus_menu_test, MistakesAreReportedWithTheNearestName) {
    load(R"("host": "127.0.0.1", "timout": "1s")",
         number(1, "a", R"("holdin": 1)") + "," +
             number(2, "b", R"("holding": 1, "scal": "1/10")") +
             R"(,{"pid": 3, "type": "text", "length": 4, "source": {"holding": 1}})");
    EXPECT_EQ(problems(),
              (Lines{"unknown member \"timout\"; did you mean \"timeout\"?",
                     "expected a member \"holding\", \"input\", \"coil\" or \"discrete\"",
                     "unknown member \"holdin\"; did you mean \"holding\"?",
                     "unknown member \"scal\"; did you mean \"scale\"?",
                     "a register or coil holds no text"}));
}

TEST_F(Modbus_menu_test, SharedRegistersAndAMissingLineAreProbablyMistakes) {
    load(R"("device": "/nowhere/ttyUSB0")",
         number(1, "speed", R"("holding": 10, "type": "int32")") + "," +
             number(2, "mode", R"("holding": 11)") + "," + number(3, "ready", R"("coil": 11)"));
    EXPECT_EQ(problems(), Lines{});
    m_device->check(m_problems);
    EXPECT_EQ(problems(), (Lines{"warning: \"/nowhere/ttyUSB0\": No such file or directory",
                                 "warning: holding register 11 of unit 1 also holds \"speed\""}));
}

TEST_F(Modbus_menu_test, TheMenuSeesAControllerGoAndComeBack) {
    Modbus_server server;
    server.hold(0, {5});
    load(R"("host": "127.0.0.1", "timeout": "3s", "port": )" + std::to_string(server.port()),
         number(1, "speed", R"("holding": 0)"));
    ASSERT_EQ(problems(), Lines{});
    Device_cache& cache = m_device->cache();
    cache.start();
    step();
    EXPECT_EQ(number_of(cache, 1), 5);
    EXPECT_EQ(cache.state(1, 0)->freshness, Freshness::FRESH);

    server.stop();
    step();
    step();
    EXPECT_EQ(texts_of(cache.take_events()), Lines{"plc: away: Connection refused"});
    EXPECT_EQ(cache.state(1, 0)->freshness, Freshness::OLD);
    EXPECT_EQ(cache.state(1, 0)->reason, "Connection refused");

    server.hold(0, {6});
    server.start();
    m_clock->advance(30s);
    step();
    EXPECT_EQ(texts_of(cache.take_events()), Lines{"plc: back"});
    EXPECT_EQ(number_of(cache, 1), 6);
    EXPECT_EQ(cache.state(1, 0)->freshness, Freshness::FRESH);
}

}  // namespace
}  // namespace support
