#include <frontpanel_driver_process/process_driver.h>

#include <poll.h>

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>

#include <frontpanel_base/text_bytes.h>
#include <frontpanel_drivers/duration.h>
#include <frontpanel_drivers/scale.h>
#include "adapter_connection.h"
#include "adapter_message.h"
#include "adapter_place.h"

namespace frontpanel {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;
using Time = Clock::time_point;

constexpr milliseconds USUAL_TIMEOUT(2000);
constexpr milliseconds USUAL_START_TIMEOUT(10000);
constexpr milliseconds SHORTEST_TIMEOUT(10);
constexpr milliseconds LONGEST_TIMEOUT(10000);
constexpr milliseconds LONGEST_START_TIMEOUT(60000);
constexpr milliseconds LONGEST_READ(500);  // then it returns with some of the values
constexpr milliseconds NEWS_INTERVAL(
    20);  // between changes that are passed on, of an adapter that sends very many
constexpr int SILENT_AFTER = 3;  // time limits without a word, of an adapter that owes answers
constexpr std::size_t MOST_REQUESTS = 32;    // without an answer, beside a write
constexpr std::size_t MOST_LINES = 200;      // that are taken at a time
constexpr std::size_t LONGEST_REASON = 200;  // of an adapter

constexpr const char* NO_VALUE = "it has no value";
constexpr const char* PANEL_ENDS = "the panel ends";

// A parameter of the menu.
struct Spot {
    std::string name;       // the adapter's name
    std::string parameter;  // as the menu file names it
    Place place;            // only for the check, while the file is there
    bool is_text;
    Scale scale;
};

struct News {
    std::optional<Parameter_value> value;
    std::string failure;  // without a value
    Time time = Clock::now();
};

enum class Asked { READ, SUBSCRIBE, WRITE };

struct Request {
    Asked asked;
    std::size_t number;
    std::uint64_t place;  // among all that was sent
    Time deadline;
};

// Whether the adapter sends changes of a parameter by itself.
enum class Watch { NOT_TRIED, STANDS, NOT_POSSIBLE };

std::string beginning(const std::string& reason) {
    return std::string(beginning_of(reason, LONGEST_REASON));
}

News failure(std::string reason) {
    return {std::nullopt, reason.empty() ? "no reason given" : beginning(reason)};
}

News number_news(const Spot& spot, const std::string& written) {
    const Scaled_number scaled = spot.scale.from_json(written);
    const auto* const value = std::get_if<std::int32_t>(&scaled);
    return value != nullptr ? News{*value, ""} : failure(std::get<std::string>(scaled));
}

News news_of(const Spot& spot, const Adapter_value& value) {
    switch (value.kind) {
        case Adapter_value::NUMBER:
            return spot.is_text ? failure("expected a text, found a number")
                                : number_news(spot, value.text);
        case Adapter_value::TEXT:
            if (!spot.is_text) {
                return failure("expected a number, found a text");
            }
            return value.text.size() > LONGEST_ADAPTER_TEXT
                       ? failure("the text is longer than " + std::to_string(LONGEST_ADAPTER_TEXT) +
                                 " bytes")
                       : News{value.text, ""};
        case Adapter_value::OTHER:
            return failure("expected a number or a text, found a list or an object");
        case Adapter_value::MISSING:
        case Adapter_value::NOTHING:
            break;
    }
    return failure(NO_VALUE);
}

bool is_readable(int descriptor) {
    pollfd source{descriptor, POLLIN, 0};
    return poll(&source, 1, 0) > 0;
}

class Process_driver : public Driver {
public:
    Process_driver(const Json_value& options, const Driver_setup& setup)
        : Process_driver(options, setup, adapter_place_of(options, setup.folder)) {}

    // ---- the menu file

    void add(const Json_value& source, const Driver_parameter& parameter) override {
        const std::string name = source.member("name").text_of_length(1, LONGEST_ADAPTER_NAME);
        if (parameter.is_text && source.find("scale")) {
            source.member("scale").fail("a text has no scale");
        }
        const Scale scale = parameter.is_text ? Scale() : Scale::of(source);
        m_numbers[name].push_back(m_spots.size());
        m_spots.push_back({name, parameter.name, source.place(), parameter.is_text, scale});
    }

    void check(Problems& problems) const override {
        if (const std::string fault = m_place.fault(); !fault.empty()) {
            problems.warn(m_menu_place, "cannot be reached here: " + fault);
        }
        std::map<std::string, std::string> parameters;
        for (const Spot& spot : m_spots) {
            const auto [first, is_new] = parameters.emplace(spot.name, spot.parameter);
            if (!is_new) {
                problems.warn(spot.place, "\"" + first->second + "\" has the same name");
            }
        }
    }

    // ---- the connection

    Driver_result connect() override {
        m_requests.clear();
        m_news.clear();
        m_said.clear();
        m_watches.assign(m_spots.size(), Watch::NOT_TRIED);
        m_asked.assign(m_spots.size(), 0);
        m_heard = Clock::now();
        m_is_awaited.assign(m_spots.size(), false);
        m_last_id = 0;
        m_owes_since.reset();
        const Time end = Clock::now() + m_start_timeout;
        if (m_connection.open(end)) {
            m_connection.send(hello_line());
            while (m_connection.is_open() && !m_connection.has_line() && !is_over(end)) {
                m_connection.serve(end);
            }
            take_greeting();
        }
        return state();
    }

    void disconnect() override { m_connection.close(PANEL_ENDS); }

    void stop() override { m_connection.stop(); }

    // ---- parameters

    bool pushes(std::size_t number) const override {
        return number < m_watches.size() && m_watches[number] == Watch::STANDS;
    }

    Driver_result read(const std::vector<std::size_t>& numbers, Value_sink& sink) override {
        await(numbers);
        const Time enough = Clock::now() + LONGEST_READ;
        std::size_t next = 0;
        while (m_connection.is_open() && !m_connection.is_stopped()) {
            while (next < numbers.size() && m_requests.size() < MOST_REQUESTS) {
                ask(numbers[next++]);
            }
            if (m_settled == numbers.size() || (m_settled > 0 && Clock::now() >= enough)) {
                break;
            }
            serve(m_settled > 0 ? enough : Time::max());
        }
        for (const std::size_t number : numbers) {
            m_is_awaited[number] = false;
        }
        const bool is_some = m_settled > 0;
        deliver(sink);
        // Otherwise the connection would count as lost, and would not be closed in order.
        return m_connection.is_open() && !is_some ? Driver_result::timed_out(PANEL_ENDS) : state();
    }

    Driver_result write(std::size_t number, const Parameter_value& value) override {
        if (!m_connection.is_open()) {
            return state();
        }
        const Spot& spot = m_spots[number];
        const std::int64_t id = m_last_id + 1;
        const std::optional<std::string> line = write_line(id, spot, value);
        if (!line) {
            return Driver_result::refused("the text is not UTF-8");
        }
        forget_reads(spot.name);
        m_write_result.reset();
        const std::uint64_t place = request(Asked::WRITE, number, *line);
        while (!m_write_result && m_connection.is_open() && !m_connection.is_stopped()) {
            serve(Time::max());
        }
        if (!m_write_result) {
            m_requests.erase(id);
            m_write_result = unanswered(place);
        }
        if (m_write_result->kind != Driver_result::REFUSED) {
            doubt(spot.name);
        }
        return *m_write_result;
    }

    Driver_result wait(milliseconds most, int wake, Value_sink& sink) override {
        const Time end = Clock::now() + most;
        bool is_over = false;
        while (m_connection.is_open() && !is_over) {
            const Time check = check_adapter();
            serve(std::min({end, check, m_news.empty() ? end : m_delivered + NEWS_INTERVAL}), wake);
            is_over = this->is_over(end) || is_readable(wake) || has_due_news();
        }
        if (has_due_news() || !m_connection.is_open()) {
            deliver(sink);
        }
        return state();
    }

private:
    Process_driver(const Json_value& options, const Driver_setup& setup, Adapter_place place)
        : m_place(place),
          m_menu_place(options.place()),
          m_timeout(
              duration_or(options, "timeout", SHORTEST_TIMEOUT, LONGEST_TIMEOUT, USUAL_TIMEOUT)),
          m_start_timeout(duration_or(options, "start-timeout", SHORTEST_TIMEOUT,
                                      LONGEST_START_TIMEOUT, USUAL_START_TIMEOUT)),
          m_connection(std::move(place), setup.name) {}

    bool is_over(Time end) const { return m_connection.is_stopped() || Clock::now() >= end; }

    // DONE while the connection is open.
    Driver_result state() const {
        if (m_connection.is_open()) {
            return Driver_result::done();
        }
        return Driver_result::away(m_connection.fault() + (m_said.empty() ? "" : ": " + m_said));
    }

    void take_greeting() {
        const std::optional<std::string> line = m_connection.next_line();
        if (!line) {
            m_connection.fail("no greeting in " + std::to_string(m_start_timeout.count()) + " ms");
            return;
        }
        const Adapter_message message = parse_adapter_message(*line);
        if (message.kind == Adapter_message::FAULTY || message.kind == Adapter_message::ERROR) {
            m_connection.fail(beginning(message.text));
        } else if (message.kind != Adapter_message::HELLO) {
            m_connection.fail("expected a greeting, found another message");
        } else if (message.version != PROTOCOL_VERSION) {
            m_connection.fail("it speaks version " + std::to_string(message.version) +
                              " of the protocol, not " + std::to_string(PROTOCOL_VERSION));
        }
    }

    // ---- requests

    std::uint64_t request(Asked asked, std::size_t number, const std::string& line) {
        const Time now = Clock::now();
        m_owes_since = m_owes_since.value_or(now);
        const std::uint64_t place = m_connection.send(line);
        m_requests.emplace(++m_last_id, Request{asked, number, place, now + m_timeout});
        return place;
    }

    // One that only sends changes may have none, or may hang: after a time limit without a word it is asked. When to call
    // this again.
    Time check_adapter() {
        if (!m_requests.empty()) {
            return Time::max();
        }
        const auto watched = std::find(m_watches.begin(), m_watches.end(), Watch::STANDS);
        if (watched == m_watches.end()) {
            return Time::max();
        }
        if (Clock::now() - m_heard < m_timeout) {
            return m_heard + m_timeout;
        }
        ask(static_cast<std::size_t>(watched - m_watches.begin()));
        return Time::max();
    }

    void ask(std::size_t number) {
        if (m_asked[number] != 0) {
            return;
        }
        const std::string& name = m_spots[number].name;
        const std::int64_t id = m_last_id + 1;
        m_asked[number] = id;
        if (m_watches[number] == Watch::NOT_POSSIBLE) {
            request(Asked::READ, number, read_line(id, name));
        } else {
            request(Asked::SUBSCRIBE, number, subscribe_line(id, name));
        }
    }

    static std::optional<std::string> write_line(std::int64_t id, const Spot& spot,
                                                 const Parameter_value& value) {
        const auto* const number = std::get_if<std::int32_t>(&value);
        return number != nullptr ? write_number_line(id, spot.name, spot.scale.to_decimal(*number))
                                 : write_text_line(id, spot.name, std::get<std::string>(value));
    }

    // What was asked before a write may be answered after it, with the value before.
    void forget_reads(const std::string& name) {
        for (const std::size_t number : m_numbers.at(name)) {
            m_requests.erase(m_asked[number]);
            m_asked[number] = 0;
        }
    }

    // After a write the value is asked for again, even if it is pushed: a change that was on its way is not the last word.
    void doubt(const std::string& name) {
        for (const std::size_t number : m_numbers.at(name)) {
            m_news.erase(number);
            if (m_watches[number] == Watch::STANDS) {
                m_watches[number] = Watch::NOT_TRIED;
            }
        }
    }

    Driver_result unanswered(std::uint64_t place) const {
        if (!m_connection.has_begun(place)) {
            return m_connection.is_open() ? Driver_result::timed_out(PANEL_ENDS) : state();
        }
        return Driver_result::timed_out(m_connection.is_open() ? PANEL_ENDS : state().reason);
    }

    // ---- answers

    // Takes what arrives until `end`, or the next request is late, or there is news.
    void serve(Time end, int wake = Adapter_connection::NO_WAKE) {
        if (!m_requests.empty()) {
            end = std::min(end, m_requests.begin()->second.deadline);
        }
        m_connection.serve(std::min(end, Clock::now() + LONGEST_START_TIMEOUT), wake);
        for (std::size_t lines = 0; lines < MOST_LINES && m_connection.has_line(); ++lines) {
            m_owes_since.reset();
            m_heard = Clock::now();
            take(parse_adapter_message(*m_connection.next_line()));
        }
        expire(Clock::now());
    }

    // A value shows that the adapter works again: an earlier error without a request no longer counts.
    void take(const Adapter_message& message) {
        if (message.value.kind != Adapter_value::MISSING) {
            m_said.clear();
        }
        switch (message.kind) {
            case Adapter_message::RESULT:
                answer(*message.id, &message.value, "");
                break;
            case Adapter_message::ERROR:
                if (message.id) {
                    answer(*message.id, nullptr, message.text);
                } else {
                    m_said = beginning(message.text);
                    m_connection.log(m_said);
                }
                break;
            case Adapter_message::CHANGED:
                take_change(message);
                break;
            case Adapter_message::FAULTY:
                m_connection.fail(message.text);
                break;
            case Adapter_message::HELLO:
            case Adapter_message::UNKNOWN:
                break;
        }
    }

    void take_change(const Adapter_message& message) {
        const auto found = m_numbers.find(message.name);
        if (found == m_numbers.end()) {
            return;
        }
        for (const std::size_t number : found->second) {
            const bool is_known = message.value.kind != Adapter_value::MISSING;
            settle(number, !is_known && !message.text.empty()
                               ? failure(message.text)
                               : news_of(m_spots[number], message.value));
        }
    }

    // `value` is null for an error. An answer that is late or comes twice is none.
    void answer(std::int64_t id, const Adapter_value* value, const std::string& reason) {
        const auto found = m_requests.find(id);
        if (found == m_requests.end()) {
            if (id < 1 || id > m_last_id) {
                m_connection.fail("it answered a request that was not made");
            }
            return;
        }
        const Request request = found->second;
        m_requests.erase(found);
        if (request.asked == Asked::WRITE) {
            m_write_result = value != nullptr ? Driver_result::done()
                                              : Driver_result::refused(failure(reason).failure);
            return;
        }
        m_asked[request.number] = 0;
        if (request.asked == Asked::SUBSCRIBE) {
            m_watches[request.number] = value != nullptr ? Watch::STANDS : Watch::NOT_POSSIBLE;
            if (value == nullptr) {
                ask(request.number);
                return;
            }
        }
        settle(request.number,
               value != nullptr ? news_of(m_spots[request.number], *value) : failure(reason));
    }

    // An adapter that does not take requests, or owes answers and says nothing, is no longer there.
    void expire(Time now) {
        bool is_late = false;
        while (m_connection.is_open() && !m_requests.empty() &&
               m_requests.begin()->second.deadline <= now) {
            const Request request = m_requests.begin()->second;
            m_requests.erase(m_requests.begin());
            is_late = true;
            if (!m_connection.has_begun(request.place)) {
                m_connection.close("it reads nothing");
                return;
            }
            give_up(request);
        }
        if (!is_late || !is_silent(now)) {
            return;
        }
        if (now - *m_owes_since >= SILENT_AFTER * m_timeout) {
            m_connection.close("it does not answer");
        } else {
            doubt_watches();
        }
    }

    // Whether it owes answers for longer than a time limit, and has said nothing else since.
    bool is_silent(Time now) const { return m_owes_since && now - *m_owes_since >= m_timeout; }

    std::string lateness() const {
        return "no answer in " + std::to_string(m_timeout.count()) + " ms";
    }

    // Of an adapter that is silent, no value counts as pushed until it is asked for again.
    void doubt_watches() {
        for (std::size_t number = 0; number < m_watches.size(); ++number) {
            if (m_watches[number] == Watch::STANDS) {
                m_watches[number] = Watch::NOT_TRIED;
                settle(number, failure(lateness()));
            }
        }
    }

    void give_up(const Request& request) {
        const std::string reason = lateness();
        if (request.asked == Asked::WRITE) {
            m_write_result = Driver_result::timed_out(reason);
            return;
        }
        m_asked[request.number] = 0;
        if (request.asked == Asked::SUBSCRIBE) {
            m_watches[request.number] =
                is_silent(request.deadline) ? Watch::NOT_TRIED : Watch::NOT_POSSIBLE;
        }
        settle(request.number, failure(reason));
    }

    // ---- what the menu gets

    void await(const std::vector<std::size_t>& numbers) {
        m_settled = 0;
        for (const std::size_t number : numbers) {
            m_is_awaited[number] = true;
        }
    }

    void settle(std::size_t number, News news) {
        m_news[number] = std::move(news);
        if (m_is_awaited[number]) {
            m_is_awaited[number] = false;
            ++m_settled;
        }
    }

    bool has_due_news() const {
        return !m_news.empty() && Clock::now() - m_delivered >= NEWS_INTERVAL;
    }

    void deliver(Value_sink& sink) {
        for (const auto& [number, news] : m_news) {
            if (news.value) {
                sink.late_value(number, *news.value,
                                std::chrono::duration_cast<milliseconds>(Clock::now() - news.time));
            } else {
                sink.failure(number, news.failure);
            }
        }
        m_news.clear();
        m_delivered = Clock::now();
    }

    const Adapter_place m_place;
    const Place m_menu_place;  // only for the check
    const milliseconds m_timeout;
    const milliseconds m_start_timeout;
    Adapter_connection m_connection;
    std::vector<Spot> m_spots;
    std::unordered_map<std::string, std::vector<std::size_t>> m_numbers;  // by name

    std::int64_t m_last_id = 0;
    std::map<std::int64_t, Request> m_requests;  // without an answer; the oldest is due first
    std::vector<std::int64_t> m_asked;  // the request for each parameter's value; 0 for none
    std::vector<Watch> m_watches;
    std::optional<Driver_result> m_write_result;
    std::optional<Time> m_owes_since;  // the first request that was made since its last word
    Time m_heard{};                    // its last word
    std::string m_said;                // the last error without a request, until the next value

    std::map<std::size_t, News> m_news;  // the last of each parameter, to be passed on
    Time m_delivered{};
    std::vector<bool> m_is_awaited;  // by the read that is under way
    std::size_t m_settled = 0;       // of those
};

std::unique_ptr<Driver> create(const Json_value& options, const Driver_setup& setup) {
    return std::make_unique<Process_driver>(options, setup);
}

}  // namespace

const Driver_row& process_driver_row() {
    static const Driver_row ROW{"process",
                                {"command", "unix", "tcp", "timeout", "start-timeout"},
                                {"name", "scale"},
                                create};
    return ROW;
}

}  // namespace frontpanel
