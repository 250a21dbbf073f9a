// The panel on servers that are killed, stopped and continued at random while keys are played. Every frame is valid; what is
// shown as fresh was held lately by its server; no write is lost, doubled or out of order; memory and descriptors do not
// grow.
//
// FRONTPANEL_DRIVER_SOAK_SECONDS sets its length, and FRONTPANEL_SOAK_SEED what happens. Each server is a row of `servers`.
#include <dirent.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <frontpanel_base/character_set.h>
#include <frontpanel_data/data_interface.h>
#include <frontpanel_drivers/driven_device.h>
#include <frontpanel_menu/menu_loader.h>
#include <frontpanel_simulator/memory_device.h>
#include <frontpanel_ui/main_loop.h>
#include <frontpanel_ui/panel.h>
#include "driver_table.h"
#include "support/built_drivers.h"
#include "support/folder.h"
#include "support/soak_servers.h"

namespace support {
namespace {

using namespace frontpanel;
using std::chrono::seconds;

constexpr int USUAL_SECONDS = 20;
constexpr Lcd_size SIZE{20, 4};
// A turn that takes longer says nothing of the panel: the machine does something else.
constexpr milliseconds STALL(400);
constexpr milliseconds QUIET(400);
constexpr milliseconds LONGEST_SETTLING(60000);

int number_from(const char* variable, int otherwise) {
    const char* const text = std::getenv(variable);
    return text != nullptr ? std::atoi(text) : otherwise;
}

// A write that the menu made.
struct Made_write {
    std::int64_t value;
    bool may_be_replaced;  // a newer one came before it was done
};

// A parameter that can be written, with what happened to it since the servers last agreed with the panel.
struct Setting {
    Soak_server* server;
    std::string what;
    std::uint32_t pid;
    std::vector<Made_write> writes{};
    std::size_t failures = 0;  // writes that were reported as refused, dropped or without an answer
    std::size_t unknowns = 0;  // of those, without an answer: they may arrive later than others
    std::size_t seen_entries = 0;  // of the record
    std::size_t arrivals = 0;      // in all

    std::string name() const { return server->letter() + " " + what; }
};

// How well arrivals fit the writes that were made: each write that did not arrive needs a reason, and so does each
// arrival out of order. A write of the value that the server already holds may get lost.
struct Fit {
    std::size_t strays = 0;  // arrivals that are no write in its turn
    std::size_t missing = 0;
    bool operator<(const Fit& other) const {
        return strays != other.strays ? strays < other.strays : missing < other.missing;
    }
};

Fit best_fit(const std::vector<Made_write>& writes, const std::vector<std::int64_t>& arrivals,
             std::int64_t held = 0) {
    // fits[j]: of the writes so far and the first j arrivals
    std::vector<Fit> fits(arrivals.size() + 1);
    for (std::size_t j = 1; j < fits.size(); ++j) {
        fits[j].strays = j;
    }
    for (const Made_write& write : writes) {
        std::vector<Fit> next(fits);
        for (std::size_t j = 0; j < next.size(); ++j) {
            const bool is_held = write.value == (j > 0 ? arrivals[j - 1] : held);
            next[j].missing += write.may_be_replaced || is_held ? 0 : 1;
            if (j > 0) {
                Fit with_stray = next[j - 1];
                ++with_stray.strays;
                next[j] = std::min(next[j], with_stray);
                if (arrivals[j - 1] == write.value) {
                    next[j] = std::min(next[j], fits[j - 1]);
                }
            }
        }
        fits.swap(next);
    }
    return fits.back();
}

// The device of the menu: the cache, and a note of each write that it took.
class Noting_device : public Data_interface, public Value_states {
public:
    using Writes = std::function<void(std::uint32_t pid, std::int32_t value, bool is_writing)>;

    Noting_device(Device_cache& cache, Writes writes)
        : m_cache(cache), m_writes(std::move(writes)) {}

    int Get(unsigned int pid, unsigned int varidx, void* buffer, unsigned int length) override {
        return m_cache.Get(pid, varidx, buffer, length);
    }
    int Set(unsigned int pid, unsigned int varidx, const void* buffer,
            unsigned int length) override {
        const auto before = m_cache.state(pid, varidx);
        const int result = m_cache.Set(pid, varidx, buffer, length);
        if (result == 0 && before && length == sizeof(std::int32_t)) {
            std::int32_t value = 0;
            std::memcpy(&value, buffer, sizeof value);
            m_writes(pid, value, before->is_writing);
        }
        return result;
    }
    int Get_prod_list(PROD_LIST_S* list, bool remote, bool refresh) override {
        return m_cache.Get_prod_list(list, remote, refresh);
    }
    int Set_product_id(prod_id_t product) override { return m_cache.Set_product_id(product); }
    int Get_prod_alias_name(char* name, prod_id_t product) override {
        return m_cache.Get_prod_alias_name(name, product);
    }
    std::optional<Value_state> state(std::uint32_t pid, std::uint32_t varidx) const override {
        return m_cache.state(pid, varidx);
    }

private:
    Device_cache& m_cache;
    Writes m_writes;
};

// The keys of a person, and the display in front of them.
class Person : public Front {
public:
    explicit Person(std::uint32_t seed) : m_random(seed) {}

    std::optional<Front_event> next(Time now) override {
        if (m_rests || now < m_next_key) {
            return std::nullopt;
        }
        // Mostly quickly, and sometimes the person just looks at the list.
        const bool looks = is_in_list() && below(25) == 0;
        m_next_key = now + milliseconds(looks ? 500 + below(2500) : 5 + below(60));
        ++m_keys;
        return Front_event{Front_event::KEY, {key(), 1 + below(9)}};
    }
    pollfd source() const override { return {-1, 0, 0}; }
    Time due() const override { return m_rests ? Time::max() : m_next_key; }
    void show(const Frame& frame) override {
        m_frame = frame;
        ++m_frames;
    }

    const std::optional<Frame>& frame() const { return m_frame; }
    void rest(bool rests) { m_rests = rests; }
    std::size_t keys() const { return m_keys; }
    std::size_t frames() const { return m_frames; }

private:
    int below(int end) { return std::uniform_int_distribution<int>(0, end - 1)(m_random); }
    bool is_in_list() const { return m_frame && m_frame->mode == Panel_mode::TOP_MENU; }
    template <std::size_t COUNT>
    Key::Kind any_of(const Key::Kind (&kinds)[COUNT]) {
        return kinds[below(COUNT)];
    }
    Key::Kind key() {
        switch (m_frame ? m_frame->mode : Panel_mode::MENU) {
            case Panel_mode::NUMBER:
                return any_of({Key::UP, Key::UP, Key::UP, Key::UP, Key::UP, Key::DOWN, Key::DOWN,
                               Key::SELECT, Key::SELECT, Key::SELECT, Key::BACK, Key::COARSER,
                               Key::FINER});
            case Panel_mode::NOTICE:
            case Panel_mode::QUESTION:
                return any_of({Key::SELECT, Key::SELECT, Key::BACK});
            case Panel_mode::MENU:
            case Panel_mode::TOP_MENU:
                return any_of({Key::UP, Key::UP, Key::UP, Key::DOWN, Key::DOWN, Key::DOWN,
                               Key::SELECT, Key::SELECT, Key::SELECT, Key::BACK, Key::RIGHT});
            default:
                return any_of({Key::BACK, Key::SELECT, Key::UP});
        }
    }

    std::mt19937 m_random;
    std::optional<Frame> m_frame;
    Time m_next_key{};
    bool m_rests = false;
    std::size_t m_keys = 0;
    std::size_t m_frames = 0;
};

std::size_t descriptor_count() {
    std::size_t count = 0;
    DIR* const folder = opendir("/proc/self/fd");
    while (readdir(folder) != nullptr) {
        ++count;
    }
    closedir(folder);
    return count;
}

// Bytes on the heap; 0 where the memory is a sanitizer's.
std::size_t heap_size() {
    malloc_trim(0);
    return mallinfo2().uordblks;
}

std::size_t resident_kilobytes() {
    std::ifstream file("/proc/self/statm");
    std::size_t all = 0;
    std::size_t resident = 0;
    file >> all >> resident;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) / 1024;
}

class Driver_soak {
public:
    explicit Driver_soak(std::uint32_t seed) : m_random(seed), m_person(seed + 1) {
        make_servers();
        for (const auto& server : m_servers) {
            m_next_event.push_back(Time::min());
            m_is_disturbed.push_back(false);
            add_settings(*server);
        }
        Menu_document document("soak.json", menu_text());
        m_driven =
            std::make_unique<Driven_device>(document.root(), document.problems(), driver_table(),
                                            m_folder.path(), m_others, settings());
        m_device.emplace(m_driven->cache(),
                         [this](std::uint32_t pid, std::int32_t value, bool is_writing) {
                             note(pid, value, is_writing);
                         });
        m_menu = load_menu(document, *m_device).menu;
        Panel_options options;
        options.size = SIZE;
        options.device_descriptor = m_driven->cache().descriptor();
        options.before_tick = [this] { take_events(); };
        m_panel.emplace(*m_menu, std::move(options));
        m_loop.emplace(*m_panel, m_person);
        m_driven->cache().start();
    }

    // Plays, and lets things happen, for a while.
    void play(Time end) {
        m_person.rest(false);
        while (Clock::now() < end && !testing::Test::HasFailure()) {
            disturb(Clock::now());
            turn();
        }
    }
    // Everything is well again: the panel and the servers come to agree.
    void settle() {
        if (testing::Test::HasFailure()) {
            return;
        }
        m_person.rest(true);
        for (std::size_t i = 0; i < m_servers.size(); ++i) {
            mend(i);
        }
        leave_editor();
        const Time end = Clock::now() + LONGEST_SETTLING;
        Time agreed_since = Time::max();
        while (!testing::Test::HasFailure()) {
            turn();
            const Time now = Clock::now();
            const std::string difference = differences();
            agreed_since = difference.empty() ? std::min(agreed_since, now) : Time::max();
            if (agreed_since != Time::max() && now - agreed_since >= QUIET) {
                break;
            }
            ASSERT_LT(now, end) << "the panel does not recover: " << difference << history();
        }
        for (Setting& setting : m_settings) {
            check_writes(setting);
        }
        for (const auto& server : m_servers) {
            server->record().forget();
        }
        for (Setting& setting : m_settings) {
            std::vector<Made_write>().swap(setting.writes);
            setting.failures = setting.unknowns = 0;
            setting.seen_entries =
                setting.server->record().entries(setting.server->recorded(setting.what)).size();
        }
    }

    Person& person() { return m_person; }
    std::size_t shown_fresh() const { return m_shown_fresh; }
    std::size_t shown_old() const { return m_shown_old; }
    std::size_t events() const { return m_events; }
    std::size_t made() const { return m_made; }
    std::size_t failed() const { return m_failed; }
    std::size_t arrived() const {
        std::size_t all = 0;
        for (const Setting& setting : m_settings) {
            all += setting.arrivals;
        }
        return all;
    }
    std::vector<Unsent_write> finish() { return m_driven->cache().flush(seconds(5)); }

private:
    using Clock = std::chrono::steady_clock;

    void make_servers() {
        const auto folder = [this](const char* name) {
            const std::string path = m_folder.file(name);
            mkdir(path.c_str(), 0700);
            return path;
        };
        if (has_driver("file")) {
            m_servers.push_back(std::make_unique<File_server>("F", folder("files")));
        }
        if (has_driver("process")) {
            m_servers.push_back(std::make_unique<Child_server>("C", folder("child")));
            m_servers.push_back(std::make_unique<Socket_server>("S", folder("socket")));
        }
        if (has_driver("modbus")) {
            add_controller(folder("controller"));
        }
        add_broker(folder("broker"));
    }
    void add_controller(const std::string& folder) {
        auto controller = std::make_unique<Controller_server>("M", folder, free_port());
        if (controller->wait_until_ready()) {
            m_servers.push_back(std::move(controller));
        } else {
            std::printf("python3-pymodbus is not installed: no controller\n");
        }
    }
    void add_broker([[maybe_unused]] const std::string& folder) {
#ifdef FRONTPANEL_SOAK_MQTT_DEVICE
        auto broker = std::make_unique<Broker_server>("B", folder, free_port());
        if (broker->wait_until_ready()) {
            m_servers.push_back(std::move(broker));
        } else {
            std::printf("mosquitto is not installed: no broker\n");
        }
#endif
    }
    void add_settings(Soak_server& server) {
        for (const char* const what : {"set", "live"}) {
            m_settings.push_back({&server, what, ++m_pids});
        }
    }
    static Device_cache_settings settings() {
        Device_cache_settings settings;
        settings.first_pause = milliseconds(200);
        settings.longest_pause = milliseconds(2000);
        settings.write_patience = milliseconds(4000);
        return settings;
    }

    std::string menu_text() {
        std::string drivers;
        std::string parameters;
        std::string items;
        const auto add = [](std::string& list, const std::string& member) {
            list += (list.empty() ? "" : ",\n") + member;
        };
        for (const auto& server : m_servers) {
            const std::string letter = server->letter();
            add(drivers, "\"" + letter + "\": {" + server->options() +
                             (server->has_poll() ? ", " + Soak_server::poll_member() : "") + "}");
            const auto declare = [&](const std::string& what, std::uint32_t pid,
                                     const std::string& type) {
                add(parameters, R"({"name": ")" + letter + " " + what + R"(", "pid": )" +
                                    std::to_string(pid) + ", " + type +
                                    R"(, "source": {"driver": ")" + letter + "\", " +
                                    server->source(what) + "}}");
            };
            const auto show = [&](const std::string& type, const std::string& what,
                                  const std::string& more) {
                add(items, R"({"type": ")" + type + R"(", "name": ")" + letter + " " + what +
                               R"(", "parameter": ")" + letter + " " + what + "\"" + more + "}");
            };
            const std::string number = R"("type": "integer", "min": 0, "max": )";
            declare("clock", ++m_pids, number + "2000000000");
            show("range", "clock", R"(, "access": "read-only")");
            if (server->has_text()) {
                declare("text", ++m_pids, R"("type": "text", "length": 16)");
                show("text", "text", R"(, "access": "read-only")");
            }
            for (const Setting& setting : m_settings) {
                if (setting.server == server.get()) {
                    declare(setting.what, setting.pid, number + "60000");
                    show("range", setting.what,
                         setting.what == "live" ? R"(, "editor": {"preview": true})" : "");
                }
            }
        }
        return R"({"device": {"drivers": {)" + drivers + "},\n\"parameters\": [" + parameters +
               "]},\n\"menu\": {\"name\": \"Soak\", \"items\": [" + items + "]}}";
    }

    // ---- what happens

    void disturb(Time now) {
        for (std::size_t i = 0; i < m_servers.size(); ++i) {
            if (now < m_next_event[i]) {
                continue;
            }
            if (m_is_disturbed[i]) {
                mend(i);
                m_next_event[i] = now + milliseconds(500 + below(5000));
            } else if (m_next_event[i] == Time::min()) {
                m_next_event[i] = now + milliseconds(below(4000));
            } else {
                const auto [what, length] = m_servers[i]->disturb(m_random);
                remember(m_servers[i]->letter() + " " + what);
                m_is_disturbed[i] = true;
                m_next_event[i] = now + length;
                ++m_events;
            }
        }
    }
    void mend(std::size_t number) {
        if (m_is_disturbed[number]) {
            m_servers[number]->mend();
            remember(m_servers[number]->letter() + " serves again");
            m_is_disturbed[number] = false;
        }
    }

    // One turn of the panel's loop; what was shown until then is judged before.
    void turn() {
        const Time now = Clock::now();
        if (m_person.frame() && now - m_last_turn < STALL) {
            check_frame(*m_person.frame(), now);
        }
        m_last_turn = now;
        m_loop->turn();
        constexpr milliseconds LONGEST_WAIT(25);
        const Time after = Clock::now();
        const Time due = std::clamp(m_loop->due(), after, after + LONGEST_WAIT);
        pollfd source{m_panel->device_descriptor(), POLLIN, 0};
        poll(&source, 1, static_cast<int>(std::chrono::ceil<milliseconds>(due - after).count()));
    }

    void leave_editor() {
        for (int keys = 0; keys < 100 && m_person.frame()->mode != Panel_mode::TOP_MENU; ++keys) {
            m_panel->press({Key::BACK, 0});
            m_person.show(m_panel->frame());
        }
        ASSERT_EQ(m_person.frame()->mode, Panel_mode::TOP_MENU) << history();
    }

    void take_events() {
        Device_cache& cache = m_driven->cache();
        cache.take_changes();
        for (const Driver_event& event : cache.take_events()) {
            remember(event.text());
            if (event.kind >= Driver_event::WRITE_REFUSED) {
                note_failure(event);
            }
            if (event.kind == Driver_event::AWAY || event.kind >= Driver_event::WRITE_REFUSED) {
                m_panel->tell(event.parameter.empty() ? event.driver : event.parameter,
                              event.reason);
            }
        }
    }
    void note_failure(const Driver_event& event) {
        for (Setting& setting : m_settings) {
            if (setting.name() == event.parameter) {
                ++setting.failures;
                setting.unknowns += event.kind == Driver_event::WRITE_TIMED_OUT ? 1 : 0;
                ++m_failed;
            }
        }
    }
    void note(std::uint32_t pid, std::int32_t value, bool is_writing) {
        for (Setting& setting : m_settings) {
            if (setting.pid == pid) {
                if (is_writing && !setting.writes.empty()) {
                    setting.writes.back().may_be_replaced = true;
                }
                setting.writes.push_back({value, false});
                remember(setting.name() + " is set to " + std::to_string(value));
                ++m_made;
            }
        }
    }

    // ---- what must hold

    void check_frame(const Frame& frame, Time now) {
        ASSERT_EQ(frame.lcd.size().rows, SIZE.rows);
        for (int row = 0; row < SIZE.rows; ++row) {
            const std::string& line = frame.lcd.line(row);
            ASSERT_EQ(line.size(), static_cast<std::size_t>(SIZE.columns)) << history();
            ASSERT_TRUE(
                std::all_of(line.begin(), line.end(), [](char c) { return c >= ' ' && c <= '~'; }))
                << line << history();
            if (frame.mode == Panel_mode::TOP_MENU && row > 0) {
                check_line(line, now);
            }
        }
        ASSERT_LT(frame.lcd.cursor_row(), SIZE.rows);
        ASSERT_LT(frame.lcd.cursor_column(), SIZE.columns);
    }
    // ">F clock=    412345": the mark behind the name says whether the value is fresh.
    void check_line(const std::string& line, Time now) {
        const std::size_t start = line.find_first_not_of("> ");
        if (start == std::string::npos) {
            return;
        }
        const std::string letter = line.substr(start, 1);
        const std::size_t end = line.find_first_of(" *?=", start + 2);
        const std::size_t value_start = line.find_last_of(' ') + 1;
        if (end == std::string::npos || value_start <= end) {
            return;
        }
        const std::string what = line.substr(start + 2, end - start - 2);
        const std::string value = line.substr(value_start);
        if (line[end] == '*' || line[end] == '?') {
            m_shown_old += line[end] == '?' ? 1U : 0U;
            return;
        }
        const auto server = std::find_if(m_servers.begin(), m_servers.end(),
                                         [&](const auto& one) { return one->letter() == letter; });
        const std::string digits = value.substr(value[0] == 'T' ? 1 : 0);
        if (server == m_servers.end() ||
            digits.find_first_not_of("0123456789") != std::string::npos) {
            return;
        }
        ++m_shown_fresh;
        check_fresh(**server, what, std::stoll(digits), now, line);
    }
    void check_fresh(Soak_server& server, const std::string& what, std::int64_t value, Time now,
                     const std::string& line) {
        const Soak_time oldest = server.oldest(what, now);
        if (what == "clock" || what == "text") {
            ASSERT_GE(value, clock_value(oldest))
                << "shown as fresh: " << line << " at " << clock_value(now) << history();
            ASSERT_LE(value, clock_value(now)) << line << history();
            return;
        }
        ASSERT_TRUE(server.record().has_held(server.recorded(what), value, milliseconds_of(oldest),
                                             milliseconds_of(now)))
            << "shown as fresh: " << line << ", held is "
            << server.record().held(server.recorded(what)) << history();
    }

    // What keeps the panel and the servers from agreeing; empty when they do.
    std::string differences() {
        Device_cache& cache = m_driven->cache();
        for (const Driven_value& value : cache.values()) {
            std::int32_t number = 0;
            std::array<char, 257> text{};
            const std::uint32_t pid = pid_of(value.parameter);
            (void)cache.Get(pid, 0, &number, sizeof number);
            (void)cache.Get(pid, 0, text.data(), text.size());
            if (value.state.is_writing || value.state.freshness != Freshness::FRESH) {
                return value.parameter + ": " + value.state.reason;
            }
        }
        for (Setting& setting : m_settings) {
            std::int32_t value = -1;
            (void)cache.Get(setting.pid, 0, &value, sizeof value);
            const auto held = setting.server->record().held(setting.server->recorded(setting.what));
            if (value != held) {
                return setting.name() + " is " + std::to_string(value) + ", held is " +
                       std::to_string(held);
            }
        }
        return "";
    }
    std::uint32_t pid_of(const std::string& name) const {
        const Parameter* const parameter = m_menu->parameters().find(name);
        return parameter == nullptr ? 0 : parameter->pid;
    }
    void check_writes(Setting& setting) {
        const auto& entries =
            setting.server->record().entries(setting.server->recorded(setting.what));
        std::vector<std::int64_t> arrivals;
        std::string all;
        for (std::size_t i = setting.seen_entries; i < entries.size(); ++i) {
            arrivals.push_back(entries[i].value);
            all += " " + std::to_string(entries[i].value);
        }
        setting.arrivals += arrivals.size();
        const Fit fit =
            best_fit(setting.writes, arrivals,
                     setting.seen_entries == 0 ? 0 : entries[setting.seen_entries - 1].value);
        std::string made;
        for (const Made_write& write : setting.writes) {
            made += " " + std::to_string(write.value) + (write.may_be_replaced ? "~" : "");
        }
        EXPECT_TRUE(fit.strays <= setting.unknowns && fit.missing <= setting.failures)
            << setting.name() << ": " << fit.strays << " doubled or out of order, " << fit.missing
            << " lost, " << setting.failures << " reported as failed\nwritten:" << made
            << "\narrived:" << all << history();
    }

    // ---- for whoever looks for the reason

    void remember(const std::string& what) {
        constexpr std::size_t REMEMBERED = 60;
        m_history.push_back(std::to_string(milliseconds_of(Clock::now())) + " " + what);
        if (m_history.size() > REMEMBERED) {
            m_history.pop_front();
        }
    }
    std::string history() const {
        std::string all = "\n";
        for (const std::string& line : m_history) {
            all += line + "\n";
        }
        return all;
    }
    int below(int end) {
        return std::uniform_int_distribution<int>(0, end - 1)(m_random);
    }

    std::mt19937 m_random;
    Person m_person;
    Folder m_folder;
    std::vector<std::unique_ptr<Soak_server>> m_servers;
    std::vector<Time> m_next_event;
    std::vector<bool> m_is_disturbed;
    std::uint32_t m_pids = 0;
    std::deque<Setting> m_settings;
    Memory_device m_others;
    std::unique_ptr<Driven_device> m_driven;
    std::optional<Noting_device> m_device;
    std::unique_ptr<Menu> m_menu;
    std::optional<Panel> m_panel;
    std::optional<Main_loop> m_loop;
    Time m_last_turn{};
    std::deque<std::string> m_history;
    std::size_t m_shown_fresh = 0;
    std::size_t m_shown_old = 0;
    std::size_t m_events = 0;
    std::size_t m_made = 0;
    std::size_t m_failed = 0;
};

TEST(BestFit, EveryArrivalInItsTurnFits) {
    const std::vector<Made_write> writes{{1, false}, {2, true}, {3, false}};
    EXPECT_EQ(best_fit(writes, {1, 2, 3}).strays + best_fit(writes, {1, 3}).missing, 0U);
}

TEST(BestFit, ALostWriteIsMissing) {
    EXPECT_EQ(best_fit({{1, false}, {2, false}}, {2}).missing, 1U);
    EXPECT_EQ(best_fit({{1, false}, {2, false}}, {1}).missing, 1U);
}

TEST(BestFit, AWriteOfWhatIsHeldMayGetLost) {
    EXPECT_EQ(best_fit({{5, false}}, {}, 5).missing, 0U);
    EXPECT_EQ(best_fit({{5, false}}, {}, 4).missing, 1U);
    EXPECT_EQ(best_fit({{6, false}, {6, false}, {7, false}}, {6, 7}, 5).missing, 0U);
    EXPECT_EQ(best_fit({{6, false}, {5, false}}, {6}, 5).missing, 1U);
}

TEST(BestFit, ADoubledOrLateWriteIsAStray) {
    EXPECT_EQ(best_fit({{1, false}, {2, false}}, {1, 1, 2}).strays, 1U);
    EXPECT_EQ(best_fit({{1, false}, {2, false}}, {2, 1}).strays, 1U);
    EXPECT_EQ(best_fit({}, {7}).strays, 1U);
}

TEST(Driver_soak, WhateverServersDoTheDisplayIsRightAndNoWriteIsLost) {
    const int length = number_from("FRONTPANEL_DRIVER_SOAK_SECONDS", USUAL_SECONDS);
    const int seed = number_from("FRONTPANEL_SOAK_SEED", 1);
    SCOPED_TRACE("seed " + std::to_string(seed));
    Driver_soak soak(static_cast<std::uint32_t>(seed));
    soak.person().show(Frame{Lcd(SIZE), Leds()});
    const auto end = std::chrono::steady_clock::now() + seconds(length);
    constexpr int WARM_ROUNDS = 2;
    std::size_t heap = 0;
    std::size_t descriptors = 0;
    int round = 0;
    for (; std::chrono::steady_clock::now() < end; ++round) {
        // Rounds become longer: first everything is met once, and then there is time for much to meet.
        const auto part = seconds(std::min(5 + 5 * round, 60));
        soak.play(std::min(end, std::chrono::steady_clock::now() + part));
        soak.settle();
        ASSERT_FALSE(testing::Test::HasFailure());
        if (round == WARM_ROUNDS - 1) {
            heap = heap_size();
            descriptors = descriptor_count();
        } else if (round >= WARM_ROUNDS) {
            constexpr std::size_t LEEWAY = std::size_t{512} * 1024;
            EXPECT_LE(heap_size(), heap + LEEWAY) << "in round " << round;
            EXPECT_EQ(descriptor_count(), descriptors) << "in round " << round;
        }
        std::printf(
            "round %d: heap %zu, resident %zu KiB, %zu descriptors, %zu keys, %zu frames, "
            "%zu events, %zu writes, %zu failed, %zu arrived, %zu fresh, %zu old\n",
            round, heap_size(), resident_kilobytes(), descriptor_count(), soak.person().keys(),
            soak.person().frames(), soak.events(), soak.made(), soak.failed(), soak.arrived(),
            soak.shown_fresh(), soak.shown_old());
        std::fflush(stdout);
    }
    EXPECT_TRUE(soak.finish().empty());
    // It did reach what it is about.
    EXPECT_GT(soak.made(), 0U);
    EXPECT_GT(soak.arrived(), 0U);
    EXPECT_GT(soak.shown_fresh(), 0U);
    EXPECT_GT(soak.events(), 0U);
    constexpr int LONG = 60;
    EXPECT_TRUE(length < LONG || (soak.shown_old() > 0 && soak.failed() > 0));
}

}  // namespace
}  // namespace support
