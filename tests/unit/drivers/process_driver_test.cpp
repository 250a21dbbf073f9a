// The driver "process" with adapters in Python: good ones, and ones with every fault that a program can have.
#include <frontpanel_driver_process/process_driver.h>

#include <gtest/gtest.h>

#include <sys/eventfd.h>

#include <algorithm>
#include <iterator>
#include <thread>

#include <frontpanel_drivers/driven_device.h>
#include "support/process_adapter.h"
#include "unit/drivers/cache_fixture.h"

namespace support {
namespace {

using namespace frontpanel;

constexpr const char* PATIENT = R"(, "timeout": "10s", "start-timeout": "60s")";
constexpr const char* IMPATIENT = R"(, "timeout": "50ms", "start-timeout": "60s")";
constexpr const char* ANSWER_ALL = "greet()\nanswer_all()\n";

class Process_driver_test : public testing::Test {
protected:
    void write_file(const std::string& name, const std::string& content) const {
        std::ofstream(m_folder.file(name), std::ios::binary) << content;
    }
    std::string content(const std::string& name) const {
        std::ifstream file(m_folder.file(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    // An adapter with the functions of all, that then does `script`.
    void load(const std::string& script, const char* members = PATIENT, std::size_t numbers = 1,
              const std::string& source_members = "") {
        write_file("adapter.py", ADAPTER_FUNCTIONS + script);
        m_driver.emplace(m_folder,
                         std::string(R"("command": ["python3", "-S", "adapter.py"])") + members,
                         numbers, source_members);
    }
    void start(const std::string& script, const char* members = PATIENT, std::size_t numbers = 1,
               const std::string& source_members = "") {
        load(script, members, numbers, source_members);
        ASSERT_EQ(m_driver->connect(), "done");
    }
    // An adapter that only says `first`, and `then` after the first request; each may be anything.
    void load_lines(const std::string& first, const std::string& then = "") {
        write_file("first", first);
        write_file("then", then);
        load_shell("cat first; read hello; read request; cat then; read more; read more");
    }
    void load_shell(const std::string& script) {
        write_file("adapter.sh", script + "\n");
        m_driver.emplace(m_folder, std::string(R"("command": ["sh", "adapter.sh"])") + PATIENT);
    }
    void start_lines(const std::string& then) {
        load_lines("{\"type\": \"hello\", \"version\": 1}\n", then);
        ASSERT_EQ(m_driver->connect(), "done");
    }
    std::size_t text() const { return 1; }  // the parameter behind one number
    // The process that the adapter says that it is, in the file "process".
    pid_t process() const { return static_cast<pid_t>(std::stol(content("process"))); }

    Folder m_folder;
    std::optional<Driver_at_hand> m_driver;
};

constexpr const char* NOTE_PROCESS =
    "open('process.new', 'w').write(str(os.getpid()))\nos.rename('process.new', 'process')\n";

// ---- values

TEST_F(Process_driver_test, NumbersAndTextsAreReadAndWritten) {
    start(std::string("values.update(n0=-7, text='Hall \\u00e4')\n") + ANSWER_ALL);
    EXPECT_EQ(m_driver->read({0, text()}), (Lines{"0=-7", "1='Hall \xC3\xA4'"}));
    EXPECT_EQ(m_driver->write(0, 21), "done");
    EXPECT_EQ(m_driver->write(text(), "a \"quoted\"\nline"), "done");
    EXPECT_EQ(m_driver->read({0, text()}), (Lines{"0=21", "1='a \"quoted\"\nline'"}));
}

TEST_F(Process_driver_test, ANumberIsScaledExactlyBothWays) {
    start(std::string("values.update(n0=21.5)\n") + ANSWER_ALL, PATIENT, 1, R"(, "scale": 10)");
    EXPECT_EQ(m_driver->read(), Lines{"0=215"});
    EXPECT_EQ(m_driver->write(0, -3), "done");
    EXPECT_EQ(m_driver->read(), Lines{"0=-3"});
}

TEST_F(Process_driver_test, ValuesThatFitNoParameterAreFailuresAndTheConnectionStands) {
    start(R"(
greet()
for value in ("true", "4e1", "1e-12", "-2147483648", "2147483648", "1e300", "1e999", "1e-300",
              "12345678901234567890123", "-1.25E+1", "12.5e-1", "0e300", "1e-99999",
              "1.499999999999999999999e0", "5.551115123125783e-17", "21474836.47e2", "0.00000149999e6",
              "null", "[1]", "{}", '"7"', "5"):
    request = hear()
    if request["type"] == "subscribe":
        refuse(request, "")
        request = hear()
    print('{"type": "result", "id": %d, "value": %s}' % (request["id"], value), flush=True)
)");
    const char* const expected[] = {"=1",
                                    "=40",
                                    "=0",
                                    "=-2147483648",
                                    ": the number does not fit 32 bits",
                                    ": the number has too many digits",
                                    ": the number has too many digits",
                                    "=0",
                                    ": the number has too many digits",
                                    "=-13",
                                    "=1",
                                    "=0",
                                    "=0",
                                    "=1",
                                    "=0",
                                    "=2147483647",
                                    "=1",
                                    ": it has no value",
                                    ": expected a number or a text, found a list or an object",
                                    ": expected a number or a text, found a list or an object",
                                    ": expected a number, found a text",
                                    "=5"};
    for (const char* const line : expected) {
        EXPECT_EQ(m_driver->read(), Lines{std::string("0") + line});
    }
}

TEST_F(Process_driver_test, ATextBeyondAllLimitsIsAFailure) {
    start(std::string("values.update(text='x' * 257)\n") + ANSWER_ALL);
    EXPECT_EQ(m_driver->read({text()}), Lines{"1: the text is longer than 256 bytes"});
    EXPECT_EQ(m_driver->write(text(), "\xFF"), "refused: the text is not UTF-8");
    EXPECT_EQ(m_driver->write(text(), std::string(256, '\x01')), "done");
    EXPECT_EQ(m_driver->read({text()}), Lines{"1='" + std::string(256, '\x01') + "'"});
}

TEST_F(Process_driver_test, AnswersMayComeInAnyOrder) {
    start(R"(
greet()
requests = [hear(), hear(), hear()]
for request in reversed(requests):
    say(type="result", id=request["id"], value=int(request["name"][1:]) * 10)
hang()
)",
          PATIENT, 3);
    EXPECT_EQ(m_driver->read({0, 1, 2}), (Lines{"0=0", "1=10", "2=20"}));
}

TEST_F(Process_driver_test, ManyParametersAreReadWithFewRequestsWithoutAnAnswer) {
    start(R"(
import select
greet()
most = 0
while True:
    requests = [hear()]
    while select.select([0], [], [], 0.01)[0] and len(requests) < 1000:
        requests += [json.loads(line) for line in os.read(0, 100000).decode().splitlines()]
    most = max(most, len(requests))
    for request in requests:
        say(type="result", id=request["id"], value=most)
)",
          PATIENT, 200);
    std::vector<std::size_t> numbers(200);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        numbers[i] = i;
    }
    const Lines lines = m_driver->read(numbers);
    ASSERT_EQ(lines.size(), 200U);
    for (const std::string& line : lines) {
        EXPECT_LE(std::stoi(line.substr(line.find('=') + 1)), 32) << line;
    }
}

// ---- changes

TEST_F(Process_driver_test, AnAdapterThatSubscribesPushesItsChanges) {
    start(R"(
can_subscribe = True
values.update(n0=1)
greet()
answer(hear())
answer(hear())
say(type="changed", name="n0", value=2)
answer(hear())
say(type="changed", name="n0", message="the cable is off")
hang()
)");
    EXPECT_FALSE(m_driver->driver().pushes(0));
    EXPECT_EQ(m_driver->read(), Lines{"0=1"});
    EXPECT_TRUE(m_driver->driver().pushes(0));
    EXPECT_FALSE(m_driver->driver().pushes(text()));
    EXPECT_EQ(m_driver->write(text(), "go on"), "done");
    EXPECT_EQ(m_driver->wait(), "0=2");
    EXPECT_EQ(m_driver->write(text(), "go on"), "done");
    EXPECT_EQ(m_driver->wait(), "0: the cable is off");
}

TEST_F(Process_driver_test, AnAdapterThatDoesNotSubscribeIsPolled) {
    start(R"(
greet()
kinds = []
while True:
    request = hear()
    kinds.append(request["type"])
    if request["type"] == "subscribe":
        refuse(request, "unknown request")
    else:
        say(type="result", id=request["id"], value=" ".join(kinds))
)");
    EXPECT_EQ(m_driver->read({text()}), Lines{"1='subscribe read'"});
    EXPECT_FALSE(m_driver->driver().pushes(text()));
    EXPECT_EQ(m_driver->read({text()}), Lines{"1='subscribe read read'"});
}

constexpr const char* ASKED_SOON = R"(, "timeout": "1s", "start-timeout": "60s")";

TEST_F(Process_driver_test, AnAdapterThatPushesAndSaysNothingIsAskedWhetherItIsThere) {
    start(R"(
can_subscribe = True
values.update(n0=1)
greet()
answer(hear())
request = hear()
values.update(n0=2)
answer(request)
hang()
)",
          ASKED_SOON);
    EXPECT_EQ(m_driver->read(), Lines{"0=1"});
    EXPECT_EQ(m_driver->wait(), "0=2");
    EXPECT_TRUE(m_driver->driver().pushes(0));
}

TEST_F(Process_driver_test, WhatAnAdapterPushedIsNotBelievedWhenItHangs) {
    start(R"(
can_subscribe = True
values.update(n0=1, n1=5)
greet()
answer(hear())
answer(hear())
hang()
)",
          ASKED_SOON, 2);
    EXPECT_EQ(m_driver->read({0, 1}), (Lines{"0=1", "1=5"}));
    EXPECT_EQ(m_driver->wait(), "0: no answer in 1000 ms, 1: no answer in 1000 ms");
    EXPECT_FALSE(m_driver->driver().pushes(0));
    EXPECT_FALSE(m_driver->driver().pushes(1));
}

// What was on its way when the write was made must not be taken for what the device holds afterwards.
TEST_F(Process_driver_test, AChangeFromBeforeAWriteIsNotTheLastWord) {
    start(R"(
can_subscribe = True
values.update(n0=1)
greet()
answer(hear())
request = hear()
say(type="changed", name="n0", value=5)
values["n0"] = 9
say(type="result", id=request["id"])
answer_all()
)");
    EXPECT_EQ(m_driver->read(), Lines{"0=1"});
    EXPECT_EQ(m_driver->write(0, 10), "done");
    EXPECT_FALSE(m_driver->driver().pushes(0));
    EXPECT_EQ(m_driver->read(), Lines{"0=9"});
    EXPECT_TRUE(m_driver->driver().pushes(0));
}

TEST_F(Process_driver_test, AChangeThatCameDuringAWriteIsAsOldAsItIs) {
    start(R"(
sys.stdout.write('{"type": "hello", "version": 1}\n{"type": "changed", "name": "n0", "value": 5}\n')
sys.stdout.flush()
hang()
)",
          R"(, "timeout": "500ms", "start-timeout": "60s")");
    EXPECT_EQ(m_driver->write(text(), "slow"), "timed out: no answer in 500 ms");
    Age_sink sink;
    EXPECT_EQ(text_of(m_driver->driver().wait(0ms, -1, sink)), "done");
    EXPECT_EQ(sink.take(), Lines{"0=5"});
    EXPECT_GT(sink.age(), 0ms);
    EXPECT_LT(sink.age(), 20s);
}

TEST_F(Process_driver_test, AFloodOfChangesIsTakenInPiecesAndDelaysNoWrite) {
    start(R"(
can_subscribe = True
values.update(n0=0)
greet()
answer(hear())
for number in range(3000):
    print('{"type": "changed", "name": "n0", "value": %d}' % number)
sys.stdout.flush()
answer(hear())
say(type="changed", name="n0", value=-1)
hang()
)");
    EXPECT_EQ(m_driver->read().size(), 1U);
    m_driver->wait();
    EXPECT_EQ(m_driver->write(text(), "in between"), "done");
    std::size_t passed_on = 0;
    for (std::string last; last != "0=-1"; ++passed_on) {
        last = m_driver->wait();
        ASSERT_EQ(last.compare(0, 2, "0="), 0) << last;
    }
    EXPECT_LT(passed_on, 3000U);
}

TEST_F(Process_driver_test, AFloodOfChangesDoesNotKeepItFromWakingUp) {
    start(R"(
greet()
while True:
    say(type="changed", name="n0", value=1)
)");
    m_driver->raise_wake();
    EXPECT_EQ(text_of(m_driver->driver().wait(60s, m_driver->wake(), m_driver->sink())), "done");
}

// ---- what the adapter refuses

TEST_F(Process_driver_test, AWriteIsRefusedWithTheReasonOfTheAdapter) {
    start(R"(
greet()
refuse(hear(), "the door is open")
say(type="error", id=hear()["id"])
refuse(hear(), "x" * 300)
hang()
)");
    EXPECT_EQ(m_driver->write(0, 1), "refused: the door is open");
    EXPECT_EQ(m_driver->write(0, 1), "refused: no reason given");
    EXPECT_EQ(m_driver->write(0, 1), "refused: " + std::string(200, 'x'));
}

TEST_F(Process_driver_test, AFailedReadHasTheReasonOfTheAdapter) {
    start(ANSWER_ALL);
    EXPECT_EQ(m_driver->read(), Lines{"0: no such parameter"});
}

TEST_F(Process_driver_test, MessagesAndMembersOfALaterVersionAreIgnored) {
    start(R"(
say(type="hello", version=1, name="later", colours=["red"])
hear()
request = hear()
say(type="weather", id=request["id"], value=3)
say(type="hello", version=7)
say(type="changed", name="nobody asked for it", value=3)
say(type="result", id=request["id"], value=4, unit={"value": 5}, values=[6])
hang()
)");
    EXPECT_EQ(m_driver->read(), Lines{"0=4"});
}

// ---- late, wrong and doubled answers

TEST_F(Process_driver_test, ALateAnswerIsAFailureAndIsNotTakenForALaterOne) {
    start(R"(
greet()
first = hear()
second = hear()
say(type="result", id=first["id"], value=1)
say(type="result", id=second["id"], value=2)
hang()
)",
          R"(, "timeout": "1s", "start-timeout": "60s")");
    EXPECT_EQ(m_driver->read(), Lines{"0: no answer in 1000 ms"});
    EXPECT_EQ(m_driver->read(), Lines{"0=2"});
}

TEST_F(Process_driver_test, AWriteWithoutAnAnswerTimesOut) {
    start("greet()\nhear()\nhear()\nanswer_all()\n", IMPATIENT);
    EXPECT_EQ(m_driver->write(0, 1), "timed out: no answer in 50 ms");
}

TEST_F(Process_driver_test, AnAnswerFromBeforeAWriteIsNotTakenForOneBehindIt) {
    start(R"(
greet()
both = [hear(), hear()]
answer_first, answer_late = both if both[0]["name"] == "text" else reversed(both)
say(type="result", id=answer_first["id"], value="now")
write = hear()
say(type="result", id=write["id"])
say(type="result", id=answer_late["id"], value=1)
say(type="result", id=hear()["id"], value=2)
hang()
)");
    m_driver->driver().read({0, text()}, m_driver->sink());
    EXPECT_EQ(m_driver->sink().take(), Lines{"1='now'"});
    EXPECT_EQ(m_driver->write(0, 2), "done");
    EXPECT_EQ(m_driver->read(), Lines{"0=2"});
}

TEST_F(Process_driver_test, AnAnswerThatComesTwiceIsTakenOnce) {
    start(R"(
greet()
while True:
    request = hear()
    for value in (1, 2):
        say(type="result", id=request["id"], value=value)
)");
    EXPECT_EQ(m_driver->read(), Lines{"0=1"});
    EXPECT_EQ(m_driver->write(0, 5), "done");
    EXPECT_EQ(m_driver->read(), Lines{"0=1"});
}

TEST_F(Process_driver_test, AnAnswerToNoRequestEndsTheConnection) {
    for (const char* const id : {"999", "0", "-1", "9223372036854775807"}) {
        SCOPED_TRACE(id);
        start_lines(std::string(R"({"type": "result", "value": 1, "id": )") + id + "}\n");
        EXPECT_EQ(m_driver->read(), Lines{"away: it answered a request that was not made"});
    }
}

// ---- lines that are none

TEST_F(Process_driver_test, WhatIsNoMessageEndsTheConnectionWithAReason) {
    const std::string result = R"({"type": "result", "id": 1, "value": nan})";
    const struct {
        std::string line;
        std::string reason;
    } cases[] = {
        {"Reading the sensor", "expected a JSON object, found \"Reading the sensor\""},
        {"\x1b[2J\x07", "expected a JSON object, found \"?[2J?\""},
        {"", "expected a JSON object, found \"\""},
        {std::string(1, '\0'), "expected a JSON object, found \"?\""},
        {"{} {}", "expected a JSON object, found \"{} {}\""},
        {std::string(4000, '['),
         "expected a JSON object, found \"" + std::string(40, '[') + "...\""},
        {result, "expected a JSON object, found \"" + result.substr(0, 40) + "...\""},
        {R"({"type": "result", "id": "1"})", "a message \"result\" has no valid \"id\""},
        {R"({"type": 5})", "a message has no text \"type\""},
    };
    for (const auto& [line, reason] : cases) {
        SCOPED_TRACE(line);
        start_lines(line + "\n");
        EXPECT_EQ(m_driver->read(), Lines{"away: " + reason});
    }
}

TEST_F(Process_driver_test, ALineWithoutAnEndCostsLittleAndEndsTheAdapter) {
    start(std::string(NOTE_PROCESS) + R"(
greet()
hear()
count = os.open("count", os.O_WRONLY | os.O_CREAT)
written = 0
while True:
    written += os.write(1, b"x" * 65536)
    os.pwrite(count, b"%12d" % written, 0)
)");
    EXPECT_EQ(m_driver->read(), Lines{"away: a line is longer than 4096 bytes"});
    EXPECT_TRUE(is_gone(process()));
    // What the pipe holds, and a little more.
    EXPECT_LT(std::stoi(content("count") + " 0"), 1000000);
}

TEST_F(Process_driver_test, TheLongestLineIsTaken) {
    start(R"(
greet()
request = hear()
line = '{"type": "result", "id": %d, "value": 8, "more": "' % request["id"]
line += "x" * (4096 - len(line) - 2) + '"}'
assert len(line) == 4096
print(line, flush=True)
request = hear()
print(line + " ", flush=True)
hang()
)");
    EXPECT_EQ(m_driver->read(), Lines{"0=8"});
    EXPECT_EQ(m_driver->read(), Lines{"away: a line is longer than 4096 bytes"});
}

// ---- the end of an adapter

TEST_F(Process_driver_test, AnAdapterThatEndsInTheMiddleOfALineIsAway) {
    start(R"(
greet()
hear()
os.write(1, b'{"type": "resu')
sys.exit(3)
)");
    EXPECT_EQ(m_driver->read(), Lines{"away: it ended with status 3 in the middle of a line"});
    EXPECT_EQ(m_driver->write(0, 1), "away: it ended with status 3 in the middle of a line");
}

TEST_F(Process_driver_test, WhatAnAdapterSaidBeforeItsEndIsDelivered) {
    start(R"(
greet()
request = hear()
say(type="result", id=request["id"], value=6)
say(type="error", message="the bus is gone")
sys.exit(0)
)");
    EXPECT_EQ(m_driver->read(), Lines{"0=6"});
    EXPECT_EQ(m_driver->wait(), "away: it ended with status 0: the bus is gone");
}

// What it said once is no reason for an end much later.
TEST_F(Process_driver_test, AnErrorWithoutARequestIsLoggedAndHoldsUntilTheNextValue) {
    const auto start_and_say = [this](const std::string& more) {
        start(R"(
greet()
request = hear()
say(type="error", message="the bus\nis gone")
)" + more + "\nsys.exit(1)\n");
    };
    testing::internal::CaptureStderr();
    start_and_say("");
    EXPECT_EQ(m_driver->read(), Lines{"away: it ended with status 1: the bus\nis gone"});
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "room: the bus?is gone\n");
    start_and_say(R"(say(type="changed", name="n0", message="broken"))");
    EXPECT_EQ(m_driver->read(), Lines{"0: broken"});
    EXPECT_EQ(m_driver->wait(), "away: it ended with status 1: the bus\nis gone");
    for (const char* const value : {R"(say(type="changed", name="n0", value=5))",
                                    R"(say(type="result", id=request["id"], value=5))"}) {
        start_and_say(value);
        EXPECT_EQ(m_driver->read(), Lines{"0=5"});
        EXPECT_EQ(m_driver->wait(), "away: it ended with status 1");
    }
}

TEST_F(Process_driver_test, AnAdapterThatIsKilledIsAwayAndComesBack) {
    start(std::string(NOTE_PROCESS) + "values.update(n0=3)\n" + ANSWER_ALL);
    kill(process(), SIGKILL);
    EXPECT_EQ(m_driver->wait(), "away: it was ended by signal 9");
    EXPECT_EQ(m_driver->connect(), "done");
    EXPECT_EQ(m_driver->read(), Lines{"0=3"});
}

TEST_F(Process_driver_test, AWriteThatWasUnderWayWhenTheAdapterEndedIsNotMadeTwice) {
    start("greet()\nhear()\nsys.exit(1)\n");
    EXPECT_EQ(m_driver->write(0, 1), "timed out: it ended with status 1");
    EXPECT_EQ(m_driver->write(0, 1), "away: it ended with status 1");
}

TEST_F(Process_driver_test, AnAdapterThatClosedItsInputIsAway) {
    start(R"(
greet()
os.close(0)
say(type="changed", name="n0", value=1)
hang()
)");
    EXPECT_EQ(m_driver->wait(), "0=1");
    EXPECT_EQ(m_driver->write(0, 1), "away: it closed its input");
}

TEST_F(Process_driver_test, AnAdapterThatOnlyClosedItsOutputIsEnded) {
    start(std::string(NOTE_PROCESS) + R"(
signal.signal(signal.SIGTERM, signal.SIG_DFL)
greet()
os.close(1)
hang()
)");
    EXPECT_EQ(m_driver->wait(), "away: it was ended by signal 15");
    EXPECT_TRUE(is_gone(process()));
}

TEST_F(Process_driver_test, AnAdapterThatReadsNothingIsAwayAndNoWriteWaitsForEver) {
    start(R"(
import fcntl, threading, time
fcntl.fcntl(0, 1031, 4096)  # the smallest pipe
greet()
def talk():
    while True:
        say(type="changed", name="n0", value=1)
        time.sleep(0.01)
threading.Thread(target=talk, daemon=True).start()
hang()
)",
          R"(, "timeout": "500ms", "start-timeout": "60s")");
    // Two lines are in the pipe, perhaps one is with the adapter, and another has no room.
    const std::string longest(256, '\x01');
    Lines results;
    do {
        results.push_back(m_driver->write(text(), longest));
    } while (results.back() == "timed out: no answer in 500 ms" && results.size() < 5);
    EXPECT_GE(results.size(), 3U);
    EXPECT_EQ(results.back(), "away: it reads nothing");
}

TEST_F(Process_driver_test, AnAdapterThatHangsIsEndedEvenIfItIgnoresThat) {
    start(std::string("signal.signal(signal.SIGTERM, signal.SIG_IGN)\n") + NOTE_PROCESS + R"(
greet()
hang()
)",
          IMPATIENT);
    EXPECT_EQ(m_driver->read().front(), "0: no answer in 50 ms");
    std::string last;
    while (last.compare(0, 4, "away") != 0) {
        last = m_driver->read().back();
    }
    EXPECT_EQ(last, "away: it does not answer");
    EXPECT_TRUE(is_gone(process()));
}

TEST_F(Process_driver_test, AnAdapterThatIsStoppedAtItsStartIsEnded) {
    load(std::string(NOTE_PROCESS) + "os.kill(os.getpid(), signal.SIGSTOP)\n",
         R"(, "start-timeout": "1s")");
    EXPECT_EQ(m_driver->connect(), "away: no greeting in 1000 ms");
}

// ---- the greeting

TEST_F(Process_driver_test, AGreetingThatIsWrongIsAReasonToBeAway) {
    const struct {
        const char* line;
        const char* reason;
    } cases[] = {
        {R"({"type": "hello", "version": 2})", "it speaks version 2 of the protocol, not 1"},
        {R"({"type": "hello"})", "a message \"hello\" has no valid \"version\""},
        {"Starting", "expected a JSON object, found \"Starting\""},
        {R"({"type": "changed", "name": "n0", "value": 1})",
         "expected a greeting, found another message"},
        {R"({"type": "error", "message": "no bus"})", "no bus"},
    };
    for (const auto& [line, reason] : cases) {
        SCOPED_TRACE(line);
        load_lines(std::string(line) + "\n");
        EXPECT_EQ(m_driver->connect(), std::string("away: ") + reason);
    }
}

TEST_F(Process_driver_test, AnAdapterThatEndsWithoutAGreetingIsAwayWithItsLastWords) {
    load_shell("exit 4");
    EXPECT_EQ(m_driver->connect(), "away: it ended with status 4");
    load_shell("echo first >&2; printf 'no \\033[2J bus' >&2; exit 1");
    testing::internal::CaptureStderr();
    EXPECT_EQ(m_driver->connect(), "away: it ended with status 1: no ?[2J bus");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "room: first\nroom: no ?[2J bus\n");
}

// ---- the child

TEST_F(Process_driver_test, AnAdapterThatCannotBeStartedIsAway) {
    write_file("plain", "no program");
    const struct {
        const char* command;
        const char* reason;
    } cases[] = {{"no-such-program-anywhere", "PATH has no program \"no-such-program-anywhere\""},
                 {"./missing", "cannot start FOLDER/./missing: No such file or directory"},
                 {"./plain", "cannot start FOLDER/./plain: Permission denied"}};
    for (const auto& [command, reason] : cases) {
        m_driver.emplace(m_folder, std::string(R"("command": [")") + command + "\"]");
        std::string expected = std::string("away: ") + reason;
        if (const std::size_t at = expected.find("FOLDER"); at != std::string::npos) {
            expected.replace(at, 6, m_folder.path());
        }
        EXPECT_EQ(m_driver->connect(), expected);
    }
}

TEST_F(Process_driver_test, NothingOfTheCommandIsReadByAShell) {
    write_file("adapter.py", std::string(ADAPTER_FUNCTIONS) +
                                 "values.update(text=' '.join(sys.argv[1:]))\n" + ANSWER_ALL);
    m_driver.emplace(
        m_folder, R"("command": ["python3", "adapter.py", "$HOME; touch made", "`id`", "", "*"])");
    ASSERT_EQ(m_driver->connect(), "done");
    EXPECT_EQ(m_driver->read({text()}), Lines{"1='$HOME; touch made `id`  *'"});
    EXPECT_NE(access(m_folder.file("made").c_str(), F_OK), 0);
}

TEST_F(Process_driver_test, TheAdapterAndWhatItStartedEndWithTheConnection) {
    start(std::string("import subprocess\nchild = subprocess.Popen(['sleep', '600'])\n"
                      "open('grandchild', 'w').write(str(child.pid))\n") +
          NOTE_PROCESS + ANSWER_ALL);
    const auto grandchild = static_cast<pid_t>(std::stol(content("grandchild")));
    m_driver->driver().disconnect();
    EXPECT_TRUE(is_gone(process()));
    // Whoever adopted it takes its end note of it: until then it is a zombie.
    const std::string status = "/proc/" + std::to_string(grandchild) + "/stat";
    std::string fields = "S";
    while (!is_gone(grandchild) && fields != "Z") {
        std::ifstream file(status);
        std::string line;
        std::getline(file, line);
        fields = line.empty() ? "Z" : line.substr(line.find(") ") + 2, 1);
    }
}

TEST_F(Process_driver_test, StandardErrorGoesToTheLogWithinBounds) {
    testing::internal::CaptureStderr();
    start(R"(
greet()
hear()
for number in range(5000):
    print("line", number, "x" * 300, "\x1b[2J", file=sys.stderr)
print("no end", end="", file=sys.stderr)
sys.exit(1)
)");
    const Lines lines = m_driver->read();
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_LT(log.size(), 20000U);
    EXPECT_EQ(log.substr(0, 15), "room: line 0 xx");
    EXPECT_EQ(log.find('\x1b'), std::string::npos);
    EXPECT_EQ(lines, Lines{"away: it ended with status 1: no end"});
}

TEST_F(Process_driver_test, AStopEndsACallThatWaits) {
    start("greet()\nopen('greeted', 'w')\nhang()\n");
    std::thread reader([&] { EXPECT_EQ(m_driver->read(), Lines{"timed out: the panel ends"}); });
    m_driver->driver().stop();
    reader.join();
    EXPECT_EQ(m_driver->write(0, 1).substr(0, 9), "timed out");
    EXPECT_EQ(text_of(m_driver->driver().wait(60s, m_driver->wake(), m_driver->sink())), "done");
    m_driver->driver().disconnect();
}

// ---- sockets

// An adapter behind a socket, which is a process of its own.
class Socket_adapter {
public:
    Socket_adapter(const Folder& folder, const std::string& script, const std::string& address) {
        const std::string name = folder.file("server.py");
        std::ofstream(name) << ADAPTER_FUNCTIONS << R"(
import socket
address = sys.argv[1]
if address.startswith("/"):
    server = socket.socket(socket.AF_UNIX)
    server.bind(address)
else:
    server = socket.create_server(("127.0.0.1", int(address)))
server.listen()
print(server.getsockname(), flush=True)
keep, _ = server.accept()
sys.stdin = keep.makefile("r")
sys.stdout = keep.makefile("w")
)" << script;
        m_process = popen(("exec python3 -S " + name + " " + address).c_str(), "r");
        char line[256] = {};
        if (m_process == nullptr || fgets(line, sizeof line, m_process) == nullptr) {
            throw std::runtime_error("no server");
        }
        m_name = line;
    }
    ~Socket_adapter() { pclose(m_process); }
    Socket_adapter(const Socket_adapter&) = delete;
    Socket_adapter& operator=(const Socket_adapter&) = delete;

    std::string port() const {
        return m_name.substr(m_name.find(", ") + 2, m_name.find(')') - m_name.find(", ") - 2);
    }

private:
    FILE* m_process = nullptr;
    std::string m_name;
};

TEST_F(Process_driver_test, AnAdapterMayListenAtAUnixSocket) {
    m_driver.emplace(m_folder, R"("unix": "adapter.sock")");
    EXPECT_EQ(m_driver->connect(), "away: No such file or directory");
    {
        const Socket_adapter adapter(
            m_folder,
            "values.update(n0=4)\ngreet()\nanswer(hear())\nanswer(hear())\nanswer(hear())\n",
            m_folder.file("adapter.sock"));
        EXPECT_EQ(m_driver->connect(), "done");
        EXPECT_EQ(m_driver->read(), Lines{"0=4"});
        EXPECT_EQ(m_driver->write(0, 5), "done");
        EXPECT_EQ(m_driver->wait(), "away: it closed the connection");
    }
    EXPECT_EQ(m_driver->connect(), "away: Connection refused");
}

TEST_F(Process_driver_test, AnAdapterMayListenAtAPortOfThisMachine) {
    std::string port;
    {
        const Socket_adapter adapter(m_folder, "values.update(n0=4)\n" + std::string(ANSWER_ALL),
                                     "0");
        port = adapter.port();
        m_driver.emplace(m_folder, R"("tcp": "localhost:)" + port + "\"");
        EXPECT_EQ(m_driver->connect(), "done");
        EXPECT_EQ(m_driver->read(), Lines{"0=4"});
        m_driver->driver().disconnect();
    }
    EXPECT_EQ(m_driver->connect(), "away: Connection refused");
}

// ---- the examples

const std::string EXAMPLES = FRONTPANEL_SOURCE_DIR "/examples/process-adapter/";

// A driver with the numbers "first", scaled by ten, and "second", and the text "note".
std::unique_ptr<Driver> example_driver(const std::string& command, const std::string& first,
                                       const std::string& second) {
    const std::string text = "[{\"command\": [" + command +
                             R"(], "timeout": "10s", "start-timeout": "60s"},
        {"name": ")" + first +
                             R"(", "scale": 10}, {"name": ")" + second + R"("}, {"name": "note"}])";
    const Source source{"menu.json", 0};
    const Json_document document(source, text);
    Problems problems;
    const auto values = Json_value(document.root(), problems).items();
    std::unique_ptr<Driver> driver = process_driver_row().create(values[0], {"room", ""});
    driver->add(values[1], number_parameter(1));
    driver->add(values[2], number_parameter(2));
    driver->add(values[3], text_parameter(3, 20));
    EXPECT_EQ(text_of(driver->connect()), "done");
    return driver;
}

Lines read_from(Driver& driver, const std::vector<std::size_t>& numbers) {
    Noting_sink sink;
    EXPECT_EQ(text_of(driver.read(numbers, sink)), "done");
    return sink.take();
}

TEST_F(Process_driver_test, TheExampleInPythonIsARoomThatGetsWarm) {
    const auto driver =
        example_driver("\"python3\", \"" + EXAMPLES + "adapter.py\"", "temperature", "target");
    EXPECT_EQ(read_from(*driver, {1}), Lines{"1=21"});
    EXPECT_EQ(read_from(*driver, {2}), Lines{"2='idle'"});
    EXPECT_EQ(text_of(driver->write(1, 31)), "refused: expected 5 to 30");
    EXPECT_EQ(text_of(driver->write(1, 30)), "done");
    EXPECT_EQ(text_of(driver->write(2, "a person")), "done");
    EXPECT_EQ(text_of(driver->write(0, 1)), "refused: temperature can only be read");
    EXPECT_EQ(read_from(*driver, {1}), Lines{"1=30"});
    const Lines temperature = read_from(*driver, {0});
    ASSERT_EQ(temperature.size(), 1U);
    EXPECT_TRUE(driver->pushes(0));
    const Descriptor never(eventfd(0, EFD_CLOEXEC));
    Noting_sink sink;
    while (sink.count() == 0) {
        ASSERT_EQ(text_of(driver->wait(10s, never.number(), sink)), "done");
    }
    EXPECT_GT(std::stoi(sink.take().front().substr(2)), std::stoi(temperature.front().substr(2)));
    driver->disconnect();
}

#ifdef FRONTPANEL_PROCESS_ADAPTER
TEST_F(Process_driver_test, TheExampleInCShowsTheLoadOfTheMachine) {
    const auto driver = example_driver("\"" FRONTPANEL_PROCESS_ADAPTER "\"", "load", "level");
    const Lines load = read_from(*driver, {0});
    ASSERT_EQ(load.size(), 1U);
    EXPECT_EQ(load.front().substr(0, 2), "0=");
    EXPECT_FALSE(driver->pushes(0));
    EXPECT_EQ(read_from(*driver, {1}), Lines{"1=50"});
    EXPECT_EQ(text_of(driver->write(1, 101)), "refused: expected 0 to 100");
    EXPECT_EQ(text_of(driver->write(1, 7)), "done");
    EXPECT_EQ(read_from(*driver, {1}), Lines{"1=7"});
    EXPECT_EQ(text_of(driver->write(0, 7)), "refused: it can only be read");
    EXPECT_EQ(read_from(*driver, {2}), Lines{"2: there is no such parameter"});
    driver->disconnect();
}
#endif

TEST_F(Process_driver_test, TheExamplesAreShort) {
    for (const char* const name : {"adapter.py", "adapter.c"}) {
        std::ifstream file(EXAMPLES + name);
        EXPECT_LT(std::count(std::istreambuf_iterator<char>(file), {}, '\n'), 100) << name;
    }
}

// ---- behind the cache

TEST_F(Process_driver_test, ThePausesGrowUntilTheAdapterIsBack) {
    write_file("adapter.sh", R"(
printf x >> starts
[ -e healthy ] || exit 1
printf '{"type": "hello", "version": 1}\n'; read hello
read request; printf '{"type": "result", "id": 1, "value": 8}\n'; read more
)");
    const std::string text = R"({"device": {
        "drivers": {"room": {"driver": "process", "command": ["sh", "adapter.sh"],
                             "timeout": "10s", "start-timeout": "60s"}},
        "parameters": [{"pid": 1, "type": "integer", "min": 0, "max": 9, "source": {"name": "n0"}}]}})";
    const Source source{"menu.json", 0};
    const Json_document document(source, text);
    Problems problems;
    Fake_device others;
    const auto clock = std::make_shared<Test_clock>();
    Device_cache_settings settings;
    settings.has_threads = false;
    settings.clock = [clock] { return clock->now(); };
    Driven_device device(Json_value(document.root(), problems), problems,
                         Driver_table{&process_driver_row()}, m_folder.path(), others, settings);
    ASSERT_EQ(problems.errors(), Lines{});
    Device_cache& cache = device.cache();
    cache.start();
    // Seconds from a start to the next one, with half seconds.
    std::vector<int> pauses;
    int half_seconds = 0;
    std::size_t starts = 0;
    while (pauses.size() < 10) {
        number_of(cache, 1);
        cache.step();
        if (const std::size_t now = content("starts").size(); now != starts) {
            pauses.push_back(half_seconds);
            starts = now;
            half_seconds = 0;
        }
        clock->advance(500ms);
        ++half_seconds;
    }
    EXPECT_EQ(pauses, (std::vector<int>{0, 1, 2, 4, 8, 16, 32, 60, 60, 60}));
    EXPECT_EQ(texts_of(cache.take_events()), Lines{"room: away: it ended with status 1"});
    EXPECT_EQ(cache.state(1, 0)->reason, "it ended with status 1");
    write_file("healthy", "");
    clock->advance(30s);
    number_of(cache, 1);
    cache.step();
    EXPECT_EQ(number_of(cache, 1), 8);
    EXPECT_EQ(texts_of(cache.take_events()), Lines{"room: back"});
}

// ---- the menu file

TEST_F(Process_driver_test, ACheckWarnsOfWhatIsMissingAndOfNamesThatComeTwice) {
    m_driver.emplace(m_folder, R"("command": ["./adapter"])", 2);
    EXPECT_EQ(m_driver->check(), Lines{"menu.json:1:2: warning: cannot be reached here: " +
                                       m_folder.file("./adapter: No such file or directory")});
    const std::string text = R"([{"tcp": "localhost:1"}, {"name": "a"}, {"name": "a"}])";
    const Source source{"menu.json", 0};
    const Json_document document(source, text);
    Problems problems;
    const auto values = Json_value(document.root(), problems).items();
    const auto driver = process_driver_row().create(values[0], {"room", ""});
    driver->add(values[1], number_parameter(1));
    driver->add(values[2], number_parameter(2));
    driver->check(problems);
    EXPECT_EQ(problems.warnings(), Lines{"menu.json:1:41: warning: \"p1\" has the same name"});
}

TEST_F(Process_driver_test, MistakesInTheMenuFileAreReportedAtTheirPlace) {
    const std::string text = R"({"device": {
"drivers": {
"a": {"driver": "process", "comand": ["x"], "tcp": "localhost:1"},
"b": {"driver": "process"},
"c": {"driver": "process", "tcp": "localhost:1", "timeout": "11s"}},
"parameters": [
{"pid": 1, "type": "integer", "min": 0, "max": 9, "source": {"driver": "a", "nam": "n"}},
{"pid": 2, "type": "integer", "min": 0, "max": 9, "source": {"driver": "a", "name": ""}},
{"pid": 3, "type": "text", "length": 9, "source": {"driver": "a", "name": "t", "scale": 10}}]}})";
    const Source source{"menu.json", 0};
    const Json_document document(source, text);
    Problems problems;
    Fake_device others;
    const Driven_device device(Json_value(document.root(), problems), problems,
                               Driver_table{&process_driver_row()}, m_folder.path(), others);
    EXPECT_EQ(problems.errors(),
              (Lines{"menu.json:3:28: unknown member \"comand\"; did you mean \"command\"?",
                     "menu.json:4:6: expected one of the members \"command\", \"unix\" and \"tcp\"",
                     "menu.json:5:61: expected a time from 10ms to 10s, found \"11s\"",
                     "menu.json:7:61: expected a member \"name\"",
                     "menu.json:7:77: unknown member \"nam\"; did you mean \"name\"?",
                     "menu.json:8:85: expected a text of 1 to 64 characters, found 0",
                     "menu.json:9:89: a text has no scale"}));
}

}  // namespace
}  // namespace support
