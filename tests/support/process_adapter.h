// Adapters of the process driver that a test writes in Python, and what the driver makes of them.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_PROCESS_ADAPTER_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_PROCESS_ADAPTER_H

#include <signal.h>
#include <sys/eventfd.h>

#include <cerrno>
#include <fstream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include <frontpanel_base/descriptor.h>
#include <frontpanel_driver_process/process_driver.h>
#include "support/folder.h"
#include "support/noting_sink.h"

namespace support {

// The functions that every adapter of a test has. `answer` does what a well-behaved one does.
inline constexpr const char* ADAPTER_FUNCTIONS = R"(
import json, os, signal, sys
values = {}
subscribed = set()
can_subscribe = False
def say(**message):
    print(json.dumps(message), flush=True)
def hear():
    line = sys.stdin.readline()
    if not line:
        sys.exit(0)
    return json.loads(line)
def greet():
    say(type="hello", version=1)
    hear()
def refuse(request, message):
    say(type="error", id=request["id"], message=message)
def answer(request):
    kind, name = request["type"], request["name"]
    if kind == "subscribe" and can_subscribe:
        subscribed.add(name)
    elif kind not in ("read", "write"):
        return refuse(request, "unknown request")
    if kind == "write":
        values[name] = request["value"]
    elif name not in values:
        return refuse(request, "no such parameter")
    say(type="result", id=request["id"], value=values[name])
def answer_all():
    while True:
        answer(hear())
def hang():
    while True:
        signal.pause()
)";

inline bool is_gone(pid_t process) {
    return kill(process, 0) != 0 && errno == ESRCH;
}

// A driver of the test's own, with numbers "n0", "n1" and so on behind which comes one text, "text".
class Driver_at_hand {
public:
    // `options` are members of the instance. Files are in `folder`.
    Driver_at_hand(const Folder& folder, const std::string& options, std::size_t numbers = 1,
                   const std::string& more_members = "")
        : m_text("[{" + options + "}" + sources(numbers, more_members) + "]") {
        const frontpanel::Json_document document(m_source, m_text);
        const std::vector<frontpanel::Json_value> values =
            frontpanel::Json_value(document.root(), m_problems).items();
        m_driver = frontpanel::process_driver_row().create(values[0], {"room", folder.path()});
        for (std::size_t i = 1; i < values.size(); ++i) {
            frontpanel::Driver_parameter parameter;
            parameter.name = "parameter " + std::to_string(i - 1);
            parameter.is_text = i == values.size() - 1;
            m_driver->add(values[i], parameter);
        }
    }

    frontpanel::Driver& driver() { return *m_driver; }
    Noting_sink& sink() { return m_sink; }
    std::string connect() { return text_of(m_driver->connect()); }
    // Reads until each parameter was passed on, or the driver says more than "done".
    std::vector<std::string> read(std::vector<std::size_t> numbers = {0}) {
        frontpanel::Driver_result result;
        while (!numbers.empty() && result.kind == frontpanel::Driver_result::DONE) {
            result = m_driver->read(numbers, m_sink);
            std::vector<std::size_t> rest;
            for (const std::size_t number : numbers) {
                if (!m_sink.has(number)) {
                    rest.push_back(number);
                }
            }
            numbers = rest;
        }
        std::vector<std::string> lines = m_sink.take();
        if (result.kind != frontpanel::Driver_result::DONE) {
            lines.push_back(text_of(result));
        }
        return lines;
    }
    std::string write(std::size_t number, const frontpanel::Parameter_value& value) {
        return text_of(m_driver->write(number, value));
    }
    // Waits until something is passed on, or the driver is away.
    std::string wait() {
        while (m_sink.count() == 0) {
            const frontpanel::Driver_result result =
                m_driver->wait(std::chrono::seconds(60), m_wake.number(), m_sink);
            if (result.kind != frontpanel::Driver_result::DONE) {
                return text_of(result);
            }
        }
        std::string all;
        for (const std::string& line : m_sink.take()) {
            all += (all.empty() ? "" : ", ") + line;
        }
        return all;
    }
    int wake() const { return m_wake.number(); }
    void raise_wake() const {
        const std::uint64_t one = 1;
        (void)!::write(m_wake.number(), &one, sizeof one);
    }
    std::vector<std::string> check() {
        m_driver->check(m_problems);
        return m_problems.warnings();
    }

private:
    static std::string sources(std::size_t numbers, const std::string& more_members) {
        std::string text;
        for (std::size_t i = 0; i < numbers; ++i) {
            text += R"(,{"name": "n)" + std::to_string(i) + "\"" + more_members + "}";
        }
        return text + R"(,{"name": "text"})";
    }

    std::string m_text;
    frontpanel::Source m_source{"menu.json", 0};
    frontpanel::Problems m_problems;
    std::unique_ptr<frontpanel::Driver> m_driver;
    Noting_sink m_sink;
    frontpanel::Descriptor m_wake{eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
};

}  // namespace support

#endif
