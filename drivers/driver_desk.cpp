#include "driver_desk.h"

#include <poll.h>

#include <algorithm>
#include <exception>
#include <limits>
#include <utility>

#include <frontpanel_base/input_error.h>

namespace frontpanel {
namespace {

using std::chrono::milliseconds;

constexpr int OLD_AFTER = 3;                // poll intervals
constexpr milliseconds PROVEN_AFTER(5000);  // a connection that lasts this long works
constexpr milliseconds HANGS_AFTER(5000);   // a call of a driver that takes longer
constexpr milliseconds LONGEST_WAIT(60000);
constexpr milliseconds ANSWERED_WITHIN(5000);  // a write that was passed on
constexpr std::size_t MOST_WRITES = 32;        // between two reads
constexpr std::size_t MOST_AWAITED = 256;      // passed-on writes to one parameter without answer
constexpr const char* NO_ANSWER = "it does not answer";
constexpr const char* NO_VALUE = "it delivers no value";
constexpr const char* UNKNOWN_ERROR = "unknown error";
constexpr const char* NOT_READ = "not read yet";
constexpr const char* NOT_RECEIVED = "nothing received yet";
constexpr const char* OVERDUE = "nothing received for too long";
constexpr const char* NOT_TAKEN = "the device keeps its value";

std::string reason_of(const std::string& reason, const char* otherwise) {
    return reason.empty() ? otherwise : one_line(reason);
}

// Why a value does not fit its parameter; empty when it does.
std::string misfit(const Driver_parameter& parameter, const Parameter_value& value) {
    const auto* const number = std::get_if<std::int32_t>(&value);
    if ((number == nullptr) != parameter.is_text) {
        return parameter.is_text ? "expected a text, found a number"
                                 : "expected a number, found a text";
    }
    if (number != nullptr) {
        return *number < parameter.min || *number > parameter.max
                   ? std::to_string(*number) + " is beyond " + std::to_string(parameter.min) +
                         ".." + std::to_string(parameter.max)
                   : "";
    }
    const auto& text = std::get<std::string>(value);
    if (text.size() > parameter.length) {
        return "the text is longer than " + std::to_string(parameter.length) + " bytes";
    }
    return text.find('\0') == std::string::npos ? "" : "the text holds a zero byte";
}

}  // namespace

// Lives for one call of the driver, on the driver's thread.
class Driver_desk::Sink : public Value_sink {
public:
    explicit Sink(Driver_desk& desk) : m_desk(desk) {}

    void value(std::size_t number, const Parameter_value& value) override {
        late_value(number, value, milliseconds(0));
    }
    void late_value(std::size_t number, const Parameter_value& value, milliseconds age) override {
        const bool is_pushed = m_desk.m_driver->pushes(number);
        const std::lock_guard<std::mutex> lock(m_desk.m_mutex);
        m_desk.receive(number, value, is_pushed, age);
    }
    void failure(std::size_t number, const std::string& reason) override {
        const bool is_pushed = m_desk.m_driver->pushes(number);
        const std::lock_guard<std::mutex> lock(m_desk.m_mutex);
        m_desk.receive_failure(number, reason, is_pushed);
    }

private:
    Driver_desk& m_desk;
};

Driver_desk::Driver_desk(std::string name, std::unique_ptr<Driver> driver, Milliseconds poll,
                         Device_cache_settings settings, std::shared_ptr<Driver_news> news)
    : m_name(std::move(name)),
      m_driver(std::move(driver)),
      m_poll(poll),
      m_settings(std::move(settings)),
      m_news(std::move(news)) {}

Driver_desk::~Driver_desk() = default;

std::size_t Driver_desk::add(const Driver_parameter& parameter, std::optional<Milliseconds> poll) {
    Record& record = m_records.emplace_back();
    record.parameter = parameter;
    record.poll = poll.value_or(m_poll);
    record.is_repeated = m_driver->repeats(m_records.size() - 1);
    return m_records.size() - 1;
}

// ---- the state of a parameter; the lock is held

bool Driver_desk::is_wanted(const Record& record, Time time) const {
    return record.is_active && time - record.wanted <= m_settings.wanted_for;
}

bool Driver_desk::hangs(Time time) const {
    const auto is_late = [time](const std::optional<Time>& since) {
        return since && time - *since > HANGS_AFTER;
    };
    return m_busy_since ? is_late(m_busy_since) : is_late(m_woken_at) || is_late(m_wait_ends);
}

// A value that was pushed holds as long as the device could push another one.
bool Driver_desk::is_confirmed(const Record& record, Time time) const {
    const bool is_recent = time - record.taken <= OLD_AFTER * record.poll;
    if (!record.is_pushed) {
        return is_recent;
    }
    const bool is_current = m_is_connected && record.connection == m_connection;
    return is_current && record.failure.empty() && !hangs(time) &&
           (is_recent || !record.is_repeated);
}

Freshness Driver_desk::freshness(const Record& record, Time time) const {
    if (!record.is_known) {
        return Freshness::UNKNOWN;
    }
    return is_confirmed(record, time) ? Freshness::FRESH : Freshness::OLD;
}

Driver_desk::Sight Driver_desk::sight(const Record& record, Time time) const {
    for (const auto* const written : {&record.unsent, &record.in_flight, &record.passed_on}) {
        if (*written) {
            return {*written, freshness(record, time), true};
        }
    }
    std::optional<Parameter_value> value;
    if (record.is_known) {
        value = record.value;
    }
    return {std::move(value), freshness(record, time), false};
}

bool Driver_desk::has_failed(const Record& record, Time time) const {
    return !record.failure.empty() || hangs(time) || (!m_is_connected && m_is_told_away);
}

std::string Driver_desk::reason(const Record& record, Time time) const {
    if (!m_is_connected && m_is_told_away) {
        return m_away_reason;
    }
    if (hangs(time)) {
        return NO_ANSWER;
    }
    if (!record.failure.empty()) {
        return record.failure;
    }
    if (freshness(record, time) == Freshness::FRESH) {
        return "";
    }
    if (!record.is_pushed) {
        return NOT_READ;
    }
    return record.is_known && record.connection == m_connection ? OVERDUE : NOT_RECEIVED;
}

Value_state Driver_desk::state_of(const Record& record, Time time) const {
    Value_state state;
    state.freshness = freshness(record, time);
    state.is_writing = record.unsent || record.in_flight || record.passed_on;
    state.has_failed = has_failed(record, time);
    if (record.is_known) {
        state.age = std::chrono::duration_cast<Milliseconds>(time - record.taken);
    }
    state.reason = reason(record, time);
    return state;
}

template <typename Change>
void Driver_desk::changing(Record& record, Change change) {
    const Time time = now();
    const Sight before = sight(record, time);
    change(time);
    if (is_wanted(record, time) && !(sight(record, time) == before)) {
        m_news->raise();
    }
}

void Driver_desk::tell(Driver_event::Kind kind, const Record* record, std::string reason) {
    m_news->add({kind, m_name, record == nullptr ? "" : record->parameter.name, std::move(reason)});
}

void Driver_desk::wake() {
    if (!m_is_awake) {
        m_is_awake = true;
        m_woken_at = now();
        m_wake.raise();
    }
}

void Driver_desk::activate(std::size_t number, Time time) {
    Record& record = m_records[number];
    record.wanted = time;
    if (!record.is_active) {
        record.is_active = true;
        m_active.push_back(number);
        wake();
    }
}

void Driver_desk::queue_write(std::size_t number) {
    m_records[number].unsent_turn = ++m_turn;
    m_writes.push_back({number, m_turn});
}

// ---- menu thread

std::optional<Parameter_value> Driver_desk::get(std::size_t number) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const Time time = now();
    activate(number, time);
    return sight(m_records[number], time).value;
}

// A newer value goes behind what was written meanwhile: what a person set last is also sent last.
void Driver_desk::set(std::size_t number, Parameter_value value) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    Record& record = m_records[number];
    record.unsent = std::move(value);
    record.unsent_since = now();
    queue_write(number);
    wake();
}

Value_state Driver_desk::state(std::size_t number) const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return state_of(m_records[number], now());
}

void Driver_desk::add_values(std::vector<Driven_value>& values) const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const Time time = now();
    for (const Record& record : m_records) {
        values.push_back(
            {m_name, record.parameter.name, sight(record, time).value, state_of(record, time)});
    }
}

std::vector<Unsent_write> Driver_desk::outstanding() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<Unsent_write> writes;
    for (const Record& record : m_records) {
        if (record.unsent) {
            writes.push_back({m_name, record.parameter.name,
                              m_is_told_away ? m_away_reason : "not sent in time"});
        } else if (record.in_flight) {
            writes.push_back(
                {m_name, record.parameter.name, "no answer: it may or may not have been written"});
        }
    }
    return writes;
}

void Driver_desk::hurry() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_next_try = Time::min();
    wake();
}

bool Driver_desk::want_all() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const Time time = now();
    bool is_settled = true;
    for (std::size_t number = 0; number < m_records.size(); ++number) {
        activate(number, time);
        const Record& record = m_records[number];
        is_settled = is_settled && (record.is_known || !record.failure.empty());
    }
    return is_settled || m_is_told_away || hangs(time);
}

void Driver_desk::watch() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const Time time = now();
    if (!hangs(time)) {
        if (std::exchange(m_is_told_hanging, false)) {
            tell(Driver_event::BACK, nullptr, "");
        }
        return;
    }
    drop_late_writes(time, NO_ANSWER);
    if (!std::exchange(m_is_told_hanging, true)) {
        tell(Driver_event::AWAY, nullptr, NO_ANSWER);
    }
}

void Driver_desk::stop() {
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_is_stopping = true;
        wake();
    }
    m_driver->stop();
}

bool Driver_desk::wait_for_end(Time end) {
    Lock lock(m_mutex);
    return m_ended_now.wait_until(lock, end, [this] { return m_has_ended; });
}

// ---- the driver's thread

void Driver_desk::run() {
    Lock lock(m_mutex);
    while (!m_is_stopping) {
        const Milliseconds left = turn(lock);
        m_news->note_round();
        if (!m_is_stopping) {
            wait(lock, left);
        }
    }
    if (m_is_connected) {
        call(lock, [this] {
            m_driver->disconnect();
            return Driver_result::done();
        });
    }
    m_has_ended = true;
    m_ended_now.notify_all();
}

bool Driver_desk::step() {
    Lock lock(m_mutex);
    m_did_anything = false;
    turn(lock);
    wait(lock, Milliseconds(0));
    return m_did_anything;
}

template <typename Call>
Driver_result Driver_desk::unlocked(Lock& lock, Call call) {
    lock.unlock();
    Driver_result result;
    try {
        result = call();
    } catch (const std::exception& error) {
        result = Driver_result::away(error.what());
    } catch (...) {
        result = Driver_result::away(UNKNOWN_ERROR);
    }
    lock.lock();
    return result;
}

// A driver that has just returned is alive, however long ago it was woken.
template <typename Call>
Driver_result Driver_desk::call(Lock& lock, Call call) {
    m_did_anything = true;
    m_busy_since = now();
    Driver_result result = unlocked(lock, call);
    m_busy_since.reset();
    if (m_woken_at) {
        m_woken_at = now();
    }
    return result;
}

Driver_desk::Milliseconds Driver_desk::turn(Lock& lock) {
    if (std::exchange(m_is_awake, false)) {
        m_wake.take();
        m_woken_at.reset();
    }
    if (m_is_connected || connect(lock)) {
        send_writes(lock);
        read_due(lock);
        give_up_answers(now());
        if (m_is_connected && now() - m_connected_at >= PROVEN_AFTER) {
            prove();
        }
    }
    if (!m_is_connected) {
        drop_late_writes(now(), m_away_reason.c_str());
    }
    return time_left(now());
}

void Driver_desk::wait(Lock& lock, Milliseconds most) {
    const bool is_connected = m_is_connected;
    m_wait_ends = now() + most;
    const Driver_result result = unlocked(lock, [this, most, is_connected] {
        if (is_connected) {
            Sink sink(*this);
            return m_driver->wait(most, m_wake.number(), sink);
        }
        pollfd source{m_wake.number(), POLLIN, 0};
        poll(&source, 1, static_cast<int>(most.count()));
        return Driver_result::done();
    });
    m_wait_ends.reset();
    if (is_connected && result.kind == Driver_result::AWAY) {
        go_away(result.reason);
    }
}

Driver_desk::Milliseconds Driver_desk::time_left(Time time) const {
    Time due = time + LONGEST_WAIT;
    if (m_is_connected) {
        if (!m_writes.empty()) {
            return Milliseconds(0);
        }
        for (const std::size_t number : m_active) {
            if (!m_records[number].is_pushed) {
                due = std::min(due, m_records[number].next_read);
            }
        }
        for (const std::size_t number : m_passed_on) {
            due = std::min(due, m_records[number].passed_on_at + ANSWERED_WITHIN);
        }
        if (!m_is_proven) {
            due = std::min(due, m_connected_at + PROVEN_AFTER);
        }
    } else {
        due = std::min(due, m_next_try);
        for (const Queued_write& write : m_writes) {
            due = std::min(due, m_records[write.number].unsent_since + m_settings.write_patience);
        }
    }
    return due <= time ? Milliseconds(0) : std::chrono::ceil<Milliseconds>(due - time);
}

// ---- the connection

bool Driver_desk::connect(Lock& lock) {
    if (m_is_stopping || now() < m_next_try) {
        return false;
    }
    const Driver_result result = call(lock, [this] { return m_driver->connect(); });
    if (result.kind != Driver_result::DONE) {
        go_away(result.reason);
        return false;
    }
    m_is_connected = true;
    m_is_proven = false;
    ++m_connection;
    m_connected_at = now();
    return true;
}

// A value that was pushed is no longer confirmed from here on.
void Driver_desk::go_away(const std::string& reason) {
    const Time time = now();
    for (Record& record : m_records) {
        if (m_is_connected && record.is_pushed && !record.is_repeated &&
            record.connection == m_connection) {
            record.taken = time;
        }
    }
    m_is_connected = false;
    m_away_reason = reason_of(reason, "no connection");
    m_pause = std::clamp(2 * m_pause, m_settings.first_pause, m_settings.longest_pause);
    m_next_try = time + m_pause;
    if (!std::exchange(m_is_told_away, true)) {
        tell(Driver_event::AWAY, nullptr, m_away_reason);
    }
    lose_answers();
}

// A connection that is made and lost again at once is none: the pauses go on growing.
void Driver_desk::prove() {
    m_is_proven = true;
    m_pause = Milliseconds(0);
    if (std::exchange(m_is_told_away, false)) {
        tell(Driver_event::BACK, nullptr, "");
    }
}

// A driver that passes something on in its wait does not hang, however late it returns.
void Driver_desk::note_life() {
    if (m_wait_ends) {
        m_wait_ends = std::max(*m_wait_ends, now());
    }
}

// ---- writes

// What a person set long ago must not come as a surprise when the device is back.
void Driver_desk::drop_late_writes(Time time, const char* reason) {
    for (const Queued_write& write : m_writes) {
        Record& record = m_records[write.number];
        const bool is_current = record.unsent && record.unsent_turn == write.turn;
        if (is_current && time - record.unsent_since >= m_settings.write_patience) {
            changing(record, [&](Time) { record.unsent.reset(); });
            tell(Driver_event::WRITE_DROPPED, &record, reason);
        }
    }
    const auto is_done = [this](const Queued_write& write) {
        const Record& record = m_records[write.number];
        return !record.unsent || record.unsent_turn != write.turn;
    };
    m_writes.erase(std::remove_if(m_writes.begin(), m_writes.end(), is_done), m_writes.end());
}

void Driver_desk::send_writes(Lock& lock) {
    for (std::size_t sent = 0; sent < MOST_WRITES && m_is_connected && !m_is_stopping;) {
        if (m_writes.empty()) {
            return;
        }
        const Queued_write write = m_writes.front();
        m_writes.pop_front();
        const Record& record = m_records[write.number];
        if (record.unsent && record.unsent_turn == write.turn) {
            send_write(lock, write.number);
            ++sent;
        }
    }
}

void Driver_desk::send_write(Lock& lock, std::size_t number) {
    Record& record = m_records[number];
    record.in_flight = std::move(record.unsent);
    record.unsent.reset();
    const Time since = record.unsent_since;
    const Parameter_value value = *record.in_flight;
    const Driver_result result =
        call(lock, [this, number, &value] { return m_driver->write(number, value); });
    finish_write(record, number, result, since);
}

void Driver_desk::finish_write(Record& record, std::size_t number, const Driver_result& result,
                               Time since) {
    if (result.kind == Driver_result::AWAY) {
        if (!record.unsent) {
            record.unsent = std::move(record.in_flight);
            record.unsent_since = since;
            record.unsent_turn = ++m_turn;
            m_writes.push_front({number, m_turn});
        }
        record.in_flight.reset();
        go_away(result.reason);
        return;
    }
    prove();
    const std::string reason = reason_of(result.reason, "no reason given");
    changing(record, [&](Time time) {
        if (result.kind == Driver_result::PASSED_ON) {
            await_answer(number, time);
        } else if (result.kind != Driver_result::REFUSED) {
            end_wait(record);
        }
        if (result.kind == Driver_result::DONE) {
            record.value = std::move(*record.in_flight);
            record.is_known = true;
            record.taken = time;
            record.connection = m_connection;
            end_failure(record);
        } else if (result.kind == Driver_result::TIMED_OUT) {
            record.is_known = false;
            record.failure = reason;
        }
        record.in_flight.reset();
        record.next_read = Time::min();
    });
    if (result.kind == Driver_result::REFUSED) {
        tell(Driver_event::WRITE_REFUSED, &record, reason);
    } else if (result.kind == Driver_result::TIMED_OUT) {
        tell(Driver_event::WRITE_TIMED_OUT, &record, reason);
    }
}

// Requires: the value is in flight. A device that has it already has nothing to push.
void Driver_desk::await_answer(std::size_t number, Time time) {
    Record& record = m_records[number];
    if (record.passed_on) {
        record.passed_on_before.push_back(*std::move(record.passed_on));
        if (record.passed_on_before.size() > MOST_AWAITED) {
            record.passed_on_before.pop_front();
        }
    } else if (freshness(record, time) == Freshness::FRESH && record.value == record.in_flight) {
        return;
    } else {
        m_passed_on.push_back(number);
    }
    record.passed_on = std::move(record.in_flight);
    record.passed_on_at = time;
}

void Driver_desk::end_wait(Record& record) {
    record.passed_on.reset();
    record.passed_on_before.clear();
}

// Whether the value is the device's answer to the last write. Until it takes that write, a device may push its former
// value, some of them again and again, and its answers to earlier writes.
bool Driver_desk::is_answer(Record& record, const Parameter_value& value) {
    std::deque<Parameter_value>& before = record.passed_on_before;
    const bool is_awaited_again = before.empty() && value == record.passed_on;
    if (record.is_known && value == record.value && !is_awaited_again) {
        return false;
    }
    const auto found = std::find(before.begin(), before.end(), value);
    if (found != before.end()) {
        before.erase(before.begin(), found + 1);
        return false;
    }
    return true;
}

void Driver_desk::give_up_answers(Time time) {
    const auto is_over = [this, time](std::size_t number) {
        Record& record = m_records[number];
        if (record.passed_on && time - record.passed_on_at >= ANSWERED_WITHIN) {
            const bool is_taken =
                freshness(record, time) == Freshness::FRESH && record.value == record.passed_on;
            changing(record, [&](Time) { end_wait(record); });
            if (!is_taken) {
                tell(Driver_event::WRITE_UNANSWERED, &record, NOT_TAKEN);
            }
        }
        return !record.passed_on;
    };
    m_passed_on.erase(std::remove_if(m_passed_on.begin(), m_passed_on.end(), is_over),
                      m_passed_on.end());
}

// Whether the device received the writes on their way is unknown.
void Driver_desk::lose_answers() {
    for (const std::size_t number : std::exchange(m_passed_on, {})) {
        Record& record = m_records[number];
        if (record.passed_on) {
            changing(record, [&](Time) {
                end_wait(record);
                record.is_known = false;
            });
            tell(Driver_event::WRITE_TIMED_OUT, &record, m_away_reason);
        }
    }
}

// ---- reads

// Parameters that are no longer wanted leave the list.
std::vector<std::size_t> Driver_desk::due_numbers(Time time) {
    std::vector<std::size_t> due;
    std::size_t kept = 0;
    for (const std::size_t number : m_active) {
        Record& record = m_records[number];
        if (!is_wanted(record, time)) {
            record.is_active = false;
            continue;
        }
        m_active[kept++] = number;
        record.is_pushed = m_driver->pushes(number);
        record.is_reported = false;
        if (!record.is_pushed && record.next_read <= time) {
            due.push_back(number);
        }
    }
    m_active.resize(kept);
    std::sort(due.begin(), due.end());
    prefer_left(due);
    return due;
}

// A device that is too slow for its intervals would otherwise be asked for its first parameters alone, which are due again
// before the last ones were read. What was never read, or has just been written, is asked for in any case.
void Driver_desk::prefer_left(std::vector<std::size_t>& due) const {
    const auto is_left = [this](std::size_t number) { return m_records[number].is_left; };
    if (std::none_of(due.begin(), due.end(), is_left)) {
        return;
    }
    const auto may_wait = [this](std::size_t number) {
        return !m_records[number].is_left && m_records[number].next_read != Time::min();
    };
    due.erase(std::remove_if(due.begin(), due.end(), may_wait), due.end());
}

void Driver_desk::read_due(Lock& lock) {
    if (!m_is_connected || m_is_stopping) {
        return;
    }
    const std::vector<std::size_t> numbers = due_numbers(now());
    if (numbers.empty()) {
        return;
    }
    const Driver_result result = call(lock, [this, &numbers] {
        Sink sink(*this);
        return m_driver->read(numbers, sink);
    });
    finish_read(numbers, result);
}

void Driver_desk::finish_read(const std::vector<std::size_t>& numbers,
                              const Driver_result& result) {
    if (result.kind == Driver_result::AWAY) {
        go_away(result.reason);
        return;
    }
    const bool is_some = std::any_of(numbers.begin(), numbers.end(), [this](std::size_t number) {
        return m_records[number].is_reported;
    });
    for (const std::size_t number : numbers) {
        m_records[number].is_left = !m_records[number].is_reported;
        if (!m_records[number].is_reported && (result.kind != Driver_result::DONE || !is_some)) {
            receive_failure(number, reason_of(result.reason, NO_VALUE), false);
        }
    }
}

void Driver_desk::end_failure(Record& record) {
    if (!record.failure.empty()) {
        record.failure.clear();
        tell(Driver_event::READ_AGAIN, &record, "");
    }
}

void Driver_desk::receive(std::size_t number, const Parameter_value& value, bool is_pushed,
                          Milliseconds age) {
    if (number >= m_records.size()) {
        return;
    }
    Record& record = m_records[number];
    if (const std::string fault = misfit(record.parameter, value); !fault.empty()) {
        receive_failure(number, fault, is_pushed);
        return;
    }
    prove();
    note_life();
    changing(record, [&](Time time) {
        if (record.passed_on && is_answer(record, value)) {
            end_wait(record);
        }
        record.value = value;
        record.is_known = true;
        record.is_pushed = is_pushed;
        record.is_reported = true;
        record.taken = time - age;
        record.connection = m_connection;
        record.next_read = time + record.poll;
        end_failure(record);
    });
}

void Driver_desk::receive_failure(std::size_t number, const std::string& failure, bool is_pushed) {
    if (number >= m_records.size()) {
        return;
    }
    Record& record = m_records[number];
    prove();
    changing(record, [&](Time time) {
        const bool is_new = record.failure.empty();
        record.failure = reason_of(failure, NO_VALUE);
        record.is_pushed = is_pushed;
        record.is_reported = true;
        record.next_read = time + record.poll;
        end_wait(record);
        if (is_new) {
            tell(Driver_event::READ_FAILED, &record, record.failure);
        }
    });
}

}  // namespace frontpanel
