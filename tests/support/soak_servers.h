// Servers that a soak of the drivers kills, stops and continues: each is one row of the soak, with a clock that is a sensor,
// and settings whose writes it records.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_SOAK_SERVERS_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_SOAK_SERVERS_H

#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <deque>
#include <fstream>
#include <iterator>
#include <map>
#include <mutex>
#include <optional>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <frontpanel_base/descriptor.h>
#include "support/helper_process.h"

namespace support {

using Soak_time = std::chrono::steady_clock::time_point;
using std::chrono::milliseconds;

inline std::int64_t milliseconds_of(Soak_time time) {
    return std::chrono::duration_cast<milliseconds>(time.time_since_epoch()).count();
}

// What a sensor shows: tenths of a second. The value says by itself when it was taken.
inline std::int64_t clock_value(Soak_time time) {
    return milliseconds_of(time) / 100;
}

// The record that a server keeps of writes, in a file that outlives it. A line is "MILLISECONDS NAME VALUE".
class Write_record {
public:
    struct Entry {
        std::int64_t since;  // milliseconds of the steady clock
        std::int64_t value;
    };

    explicit Write_record(std::string path) : m_path(std::move(path)) {}

    const std::string& path() const { return m_path; }
    // Takes the lines that were added.
    void follow() {
        std::ifstream file(m_path);
        file.seekg(m_read);
        std::string text(std::istreambuf_iterator<char>(file), {});
        text.resize(text.rfind('\n') + 1);
        m_read += static_cast<std::streamoff>(text.size());
        std::istringstream lines(text);
        std::string name;
        for (Entry entry{}; lines >> entry.since >> name >> entry.value;) {
            m_entries[name].push_back(entry);
        }
    }
    const std::vector<Entry>& entries(const std::string& name) { return m_entries[name]; }
    std::int64_t held(const std::string& name) {
        const std::vector<Entry>& entries = m_entries[name];
        return entries.empty() ? 0 : entries.back().value;
    }
    // Whether the server held the value at some time from `since` to `until`.
    bool has_held(const std::string& name, std::int64_t value, std::int64_t since,
                  std::int64_t until) {
        std::int64_t held = 0;
        std::int64_t from = 0;
        for (const Entry& entry : m_entries[name]) {
            if (held == value && from <= until && entry.since >= since) {
                return true;
            }
            held = entry.value;
            from = entry.since;
        }
        return held == value && from <= until;
    }
    // Forgets all but the value that is held.
    void forget() {
        for (auto& [name, entries] : m_entries) {
            if (!entries.empty()) {
                std::vector<Entry>{{0, entries.back().value}}.swap(entries);
            }
        }
    }

private:
    std::string m_path;
    std::streamoff m_read = 0;
    std::map<std::string, std::vector<Entry>> m_entries;
};

constexpr milliseconds POLL(200);
// How much older than its driver's bounds a value may be: a tick of the panel, and the delay of a busy machine.
constexpr milliseconds SLACK(1900);
// Three polls; for a server that pushes, two of its time limits.
constexpr milliseconds WINDOW = SLACK + std::max(3 * POLL, milliseconds(1000));

class Soak_server {
public:
    using Random = std::mt19937;

    Soak_server(std::string letter, std::string options, const std::string& record)
        : m_letter(std::move(letter)), m_options(std::move(options)), m_record(record) {}
    virtual ~Soak_server() = default;
    Soak_server(const Soak_server&) = delete;
    Soak_server& operator=(const Soak_server&) = delete;

    // The name of its driver and of its items.
    const std::string& letter() const { return m_letter; }
    // The members of its driver in the menu file.
    const std::string& options() const { return m_options; }
    // The members of a "source": "clock", or "set" and "live", which can be written; "text" where it has texts.
    virtual std::string source(const std::string& what) const = 0;
    // The name of a setting in its record.
    virtual std::string recorded(const std::string& what) const { return what; }
    virtual bool has_text() const { return false; }
    // Whether all its parameters have the interval POLL.
    virtual bool has_poll() const { return true; }
    static std::string poll_member() {
        return R"("poll": ")" + std::to_string(POLL.count()) + R"(ms")";
    }
    // A value that is shown as fresh now must have been held at this time or later.
    virtual Soak_time oldest(const std::string& /*what*/, Soak_time now) const {
        return now - WINDOW;
    }
    // With all writes that have reached the server.
    Write_record& record() {
        take_writes();
        m_record.follow();
        return m_record;
    }

    // Something happens to it. What it was, and how long it lasts.
    virtual std::pair<std::string, milliseconds> disturb(Random& random) = 0;
    // What happened is over: it serves again, or will soon.
    virtual void mend() = 0;

protected:
    // Records what has reached the server, where that does not happen before the panel learns of it.
    virtual void take_writes() {}
    static milliseconds time_between(Random& random, int least, int most) {
        return milliseconds(std::uniform_int_distribution<int>(least, most)(random));
    }

private:
    const std::string m_letter;
    const std::string m_options;
    Write_record m_record;
};

// Files that a thread keeps up to date. What is written goes into pipes, so that every write is seen.
class File_server : public Soak_server {
public:
    File_server(const std::string& letter, const std::string& folder)
        : Soak_server(letter, R"("driver": "file", "folder": ")" + folder + "\"",
                      folder + "/record"),
          m_folder(folder),
          m_log(
              open((folder + "/record").c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600)) {
        for (Setting& setting : m_settings) {
            put(setting.name, "0");
            mkfifo(pipe_of(setting).c_str(), 0600);
            setting.pipe = frontpanel::Descriptor(
                open(pipe_of(setting).c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
        }
        m_thread = std::thread([this] { run(); });
    }
    ~File_server() override {
        m_is_over = true;
        m_thread.join();
    }

    std::string source(const std::string& what) const override {
        return what == "clock" ? R"("path": "clock")"
                               : R"("path": ")" + what + R"(", "write": ")" + what + R"(.pipe")";
    }
    std::pair<std::string, milliseconds> disturb(Random& random) override {
        static constexpr const char* TEXTS[] = {"is as ever",  "is missing",  "holds garbage",
                                                "is a pipe",   "is a folder", "is empty",
                                                "is very long"};
        const auto fault =
            static_cast<Fault>(std::uniform_int_distribution<int>(MISSING, LONG)(random));
        if (std::uniform_int_distribution<int>(0, 1)(random) == 0) {
            for (const Setting& setting : m_settings) {
                rename(pipe_of(setting).c_str(), (pipe_of(setting) + ".away").c_str());
            }
            return {"cannot be written", time_between(random, 200, 3000)};
        }
        m_fault = fault;
        return {std::string("clock ") + TEXTS[fault], time_between(random, 1000, 5000)};
    }
    void mend() override {
        m_fault = NONE;
        for (const Setting& setting : m_settings) {
            rename((pipe_of(setting) + ".away").c_str(), pipe_of(setting).c_str());
        }
    }

private:
    void take_writes() override {
        const std::lock_guard<std::mutex> lock(m_mutex);
        for (Setting& setting : m_settings) {
            receive(setting);
        }
    }

    enum Fault { NONE, MISSING, GARBAGE, PIPE, FOLDER, EMPTY, LONG };
    struct Setting {
        const char* name;
        frontpanel::Descriptor pipe{};
        std::string received = {};
    };

    std::string pipe_of(const Setting& setting) const {
        return m_folder + "/" + setting.name + ".pipe";
    }
    // In the place of what was there, so that it is never read by halves.
    void put(const std::string& name, const std::string& text) const {
        const std::string whole = m_folder + "/" + name;
        std::ofstream(whole + ".new") << text << '\n';
        rename((whole + ".new").c_str(), whole.c_str());
    }
    void run() {
        Fault before = NONE;
        while (!m_is_over) {
            const Fault fault = m_fault;
            if (fault != before) {
                const std::string clock = m_folder + "/clock";
                rmdir(clock.c_str());
                unlink(clock.c_str());
                begin(fault, clock);
                before = fault;
            }
            if (fault == NONE) {
                put("clock", std::to_string(clock_value(std::chrono::steady_clock::now())));
            }
            take_writes();
            pollfd sources[] = {{m_settings[0].pipe.number(), POLLIN, 0},
                                {m_settings[1].pipe.number(), POLLIN, 0}};
            constexpr int INTERVAL = 50;  // milliseconds
            poll(sources, 2, INTERVAL);
        }
    }
    void begin(Fault fault, const std::string& clock) const {
        if (fault == GARBAGE || fault == EMPTY || fault == LONG) {
            put("clock", fault == GARBAGE ? "12x4"
                         : fault == EMPTY ? ""
                                          : std::string(100000, '1'));
        } else if (fault == PIPE) {
            mkfifo(clock.c_str(), 0600);
        } else if (fault == FOLDER) {
            mkdir(clock.c_str(), 0700);
        }
    }
    void receive(Setting& setting) {
        char bytes[4096];
        const ssize_t size = read(setting.pipe.number(), bytes, sizeof bytes);
        setting.received.append(bytes, size > 0 ? static_cast<std::size_t>(size) : 0);
        for (std::size_t end = 0; (end = setting.received.find('\n')) != std::string::npos;) {
            const std::string value = setting.received.substr(0, end);
            setting.received.erase(0, end + 1);
            const std::string line =
                std::to_string(milliseconds_of(std::chrono::steady_clock::now())) + " " +
                setting.name + " " + value + "\n";
            (void)!write(m_log.number(), line.data(), line.size());
            put(setting.name, value);
        }
    }

    const std::string m_folder;
    const frontpanel::Descriptor m_log;
    std::mutex m_mutex;
    Setting m_settings[2]{{"set"}, {"live"}};
    std::atomic<Fault> m_fault{NONE};
    std::atomic<bool> m_is_over{false};
    std::thread m_thread;
};

// A process that is stopped and continued, or killed.
class Process_server : public Soak_server {
public:
    using Soak_server::Soak_server;

    std::pair<std::string, milliseconds> disturb(Random& random) override {
        const bool is_killed = std::uniform_int_distribution<int>(0, 1)(random) == 0;
        const pid_t id = process();
        if (id <= 0) {
            return {"is away", milliseconds(500)};
        }
        if (is_killed) {
            kill(id, SIGKILL);
            ended(id);
            return {"is killed", time_between(random, 0, 3000)};
        }
        m_stopped = id;
        kill(id, SIGSTOP);
        return {"is stopped", time_between(random, 200, 6000)};
    }
    void mend() override {
        if (m_stopped > 0 && m_stopped == process()) {
            kill(m_stopped, SIGCONT);
        }
        m_stopped = 0;
    }

protected:
    // Its id; 0 when it does not run.
    virtual pid_t process() const = 0;
    virtual void ended(pid_t id) = 0;
    bool is_stopped() const { return m_stopped > 0; }

private:
    pid_t m_stopped = 0;
};

// A program that the panel starts, and starts again. It writes its id into RECORD.pid.
class Child_server : public Process_server {
public:
    Child_server(const std::string& letter, const std::string& folder)
        : Process_server(
              letter,
              R"("driver": "process", "timeout": "500ms", "command": ["python3", "-S", ")" +
                  std::string(SCRIPT) + R"(", "polled", ")" + folder + R"(/record"])",
              folder + "/record"),
          m_folder(folder) {}

    std::string source(const std::string& what) const override {
        return R"("name": ")" + what + "\"";
    }
    bool has_text() const override { return true; }

protected:
    // Not that of another process, which may have the number by now.
    pid_t process() const override {
        pid_t id = 0;
        std::ifstream(m_folder + "/record.pid") >> id;
        std::ifstream file("/proc/" + std::to_string(id) + "/cmdline");
        const std::string command(std::istreambuf_iterator<char>(file), {});
        return command.find(m_folder) != std::string::npos ? id : 0;
    }
    void ended(pid_t /*id*/) override {}

private:
    static constexpr const char* SCRIPT = FRONTPANEL_SOURCE_DIR "/tests/support/soak_adapter.py";
    const std::string m_folder;
};

// A program that the soak starts, and starts again when it was killed.
class Unsteady_program {
public:
    explicit Unsteady_program(std::vector<std::string> command) : m_command(std::move(command)) {
        start();
    }
    ~Unsteady_program() { kill_it(); }
    Unsteady_program(const Unsteady_program&) = delete;
    Unsteady_program& operator=(const Unsteady_program&) = delete;

    // Its process; 0 when it does not run.
    pid_t id() const { return m_process ? m_process->id() : 0; }
    // Waits until it serves. False when it ends before.
    bool wait_until_ready() { return m_process && m_process->wait_for("ready"); }
    // Returns when it has ended, also if it was stopped.
    void kill_it() {
        if (m_process) {
            m_process->signal(SIGKILL);
            m_process.reset();
        }
    }
    void start_again() {
        if (id() == 0) {
            start();
        }
    }

private:
    void start() { m_process.emplace(m_command, Helper_process::Errors::IGNORED); }

    const std::vector<std::string> m_command;
    std::optional<Helper_process> m_process;
};

// A server that the soak starts.
class Listening_server : public Process_server {
public:
    Listening_server(const std::string& letter, const std::string& options,
                     const std::string& folder, std::vector<std::string> command)
        : Process_server(letter, options, folder + "/record"), m_program(std::move(command)) {}
    // Waits until it serves. False when it ends before.
    bool wait_until_ready() { return m_program.wait_until_ready(); }
    void mend() override {
        Process_server::mend();
        m_program.start_again();
    }

protected:
    pid_t process() const override { return m_program.id(); }
    void ended(pid_t /*id*/) override { m_program.kill_it(); }

private:
    Unsteady_program m_program;
};

// An adapter behind a Unix socket, which sends changes by itself.
class Socket_server : public Listening_server {
public:
    Socket_server(const std::string& letter, const std::string& folder)
        : Listening_server(
              letter,
              R"("driver": "process", "timeout": "500ms", "unix": ")" + folder + R"(/socket")",
              folder,
              {"python3", "-S", FRONTPANEL_SOURCE_DIR "/tests/support/soak_adapter.py", "pushing",
               folder + "/record", folder + "/socket"}) {}

    std::string source(const std::string& what) const override {
        return R"("name": ")" + what + "\"";
    }
    bool has_text() const override { return true; }
};

// A controller on pymodbus.
class Controller_server : public Listening_server {
public:
    Controller_server(const std::string& letter, const std::string& folder, std::uint16_t port)
        : Listening_server(
              letter,
              R"("driver": "modbus", "timeout": "500ms", "host": "127.0.0.1", "port": )" +
                  std::to_string(port),
              folder,
              {"/usr/bin/python3", FRONTPANEL_SOURCE_DIR "/tests/support/soak_modbus.py",
               folder + "/record", "127.0.0.1", std::to_string(port)}) {}

    std::string source(const std::string& what) const override {
        return what == "clock" ? R"("holding": 0, "type": "uint32")"
                               : R"("holding": )" + recorded(what);
    }
    std::string recorded(const std::string& what) const override {
        return what == "set" ? "10" : "11";
    }
};

#ifdef FRONTPANEL_SOAK_MQTT_DEVICE
// A device behind a broker. Either may be killed or stopped.
class Broker_server : public Process_server {
public:
    Broker_server(const std::string& letter, const std::string& folder, std::uint16_t port)
        : Process_server(
              letter,
              R"("driver": "mqtt", "status": "soak/panel", "host": "127.0.0.1", "port": )" +
                  std::to_string(port),
              folder + "/record"),
          m_broker({"/usr/sbin/mosquitto", "-c", settings(folder, port)}),
          m_device({FRONTPANEL_SOAK_MQTT_DEVICE, folder + "/record", std::to_string(port)}) {}

    // False when there is no broker.
    bool wait_until_ready() { return m_broker.id() > 0 && m_device.wait_until_ready(); }
    std::string source(const std::string& what) const override {
        static const std::map<std::string, std::string> SOURCES{
            {"clock", R"("topic": "soak/clock", "qos": 0, )"},
            {"text", R"("topic": "soak/state", "member": "text", )"},
            {"set", R"("topic": "soak/set", "write": "soak/write/set", )"},
            {"live", R"("topic": "soak/live", "member": "level", "write": "soak/write/live", )"
                     R"("write-member": "value", "qos": 2)"}};
        return SOURCES.at(what) + (what == "live" ? "" : poll_member());
    }
    bool has_text() const override { return true; }
    // "live" has no interval.
    bool has_poll() const override { return false; }
    // A message that was published while the broker was stopped counts as new when the broker continues, since it does
    // not contain its time. Without an interval a value is fresh until the panel notices that the broker is silent.
    Soak_time oldest(const std::string& what, Soak_time now) const override {
        constexpr milliseconds SILENCE(10000);
        constexpr milliseconds ON_THE_WAY(200);
        Soak_time oldest =
            Process_server::oldest(what, now) - (what == "live" ? SILENCE : milliseconds(0));
        for (auto stand = m_stands.rbegin(); stand != m_stands.rend() && stand->end >= oldest;
             ++stand) {
            oldest = std::min(oldest, stand->begin - ON_THE_WAY);
        }
        return oldest;
    }

    std::pair<std::string, milliseconds> disturb(Random& random) override {
        const auto is_one_of = [&random](int count) {
            return std::uniform_int_distribution<int>(1, count)(random) == 1;
        };
        m_victim = is_one_of(2) ? &m_device : &m_broker;
        auto [what, length] = Process_server::disturb(random);
        if (m_victim == &m_broker && is_stopped()) {
            m_stopped_at = std::chrono::steady_clock::now();
            // By then the panel has noticed the silence itself.
            length = is_one_of(4) ? time_between(random, 9000, 14000) : length;
        }
        return {(m_victim == &m_broker ? "broker " : "device ") + what, length};
    }
    void mend() override {
        Process_server::mend();
        if (m_stopped_at) {
            m_stands.push_back({*m_stopped_at, std::chrono::steady_clock::now()});
            m_stopped_at.reset();
        }
        constexpr std::size_t REMEMBERED = 10;
        if (m_stands.size() > REMEMBERED) {
            m_stands.pop_front();
        }
        m_broker.start_again();
        m_device.start_again();
    }

protected:
    pid_t process() const override { return m_victim->id(); }
    void ended(pid_t /*id*/) override { m_victim->kill_it(); }

private:
    struct Stand {
        Soak_time begin;
        Soak_time end;
    };

    static std::string settings(const std::string& folder, std::uint16_t port) {
        std::string file = folder + "/broker.conf";
        std::ofstream(file) << "listener " << port
                            << " 127.0.0.1\nallow_anonymous true\nuser root\nlog_dest none\n";
        return file;
    }

    Unsteady_program m_broker;
    Unsteady_program m_device;
    Unsteady_program* m_victim = &m_broker;
    std::optional<Soak_time> m_stopped_at;
    std::deque<Stand> m_stands;
};
#endif

// A port of loopback that nobody has.
inline std::uint16_t free_port() {
    const frontpanel::Descriptor listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const where = reinterpret_cast<sockaddr*>(&address);
    if (bind(listener.number(), where, size) != 0 ||
        getsockname(listener.number(), where, &size) != 0) {
        throw std::runtime_error("no port is free");
    }
    return ntohs(address.sin_port);
}

}  // namespace support

#endif
