// One driver with the parameters that live at it: what the menu thread wants of them, and what the driver's thread has
// done about it.
//
// The menu thread and the driver's thread share it through its mutex, which is free during each call of the driver.
// A thread that hangs keeps the desk alive, and touches nothing else.
#ifndef FRONTPANEL_DRIVERS_DRIVER_DESK_H
#define FRONTPANEL_DRIVERS_DRIVER_DESK_H

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <frontpanel_drivers/device_cache.h>
#include "driver_news.h"

namespace frontpanel {

class Driver_desk {
public:
    using Time = std::chrono::steady_clock::time_point;
    using Milliseconds = std::chrono::milliseconds;

    Driver_desk(std::string name, std::unique_ptr<Driver> driver, Milliseconds poll,
                Device_cache_settings settings, std::shared_ptr<Driver_news> news);
    ~Driver_desk();
    Driver_desk(const Driver_desk&) = delete;
    Driver_desk& operator=(const Driver_desk&) = delete;

    // ---- before the driver works
    std::size_t add(const Driver_parameter& parameter, std::optional<Milliseconds> poll);

    // ---- menu thread; none of them waits
    const Driver_parameter& parameter(std::size_t number) const {
        return m_records[number].parameter;
    }
    // The value that is shown. Marks the parameter as wanted.
    std::optional<Parameter_value> get(std::size_t number);
    void set(std::size_t number, Parameter_value value);
    Value_state state(std::size_t number) const;
    void add_values(std::vector<Driven_value>& values) const;
    // The writes that have not reached the device.
    std::vector<Unsent_write> outstanding() const;
    // A driver that is away is tried at once.
    void hurry();
    // Marks every parameter as wanted. Whether each has been read or has failed.
    bool want_all();
    // Reports a driver that does not come back from a call.
    void watch();
    // The driver's thread ends once the driver returns.
    void stop();
    // Whether it ended, `end` at the latest.
    bool wait_for_end(Time end);

    // ---- the driver's thread
    // Works until it is stopped.
    void run();
    // What the thread does once, without waiting. Whether the driver was asked for anything but to wait.
    bool step();

private:
    class Sink;
    struct Record {
        Driver_parameter parameter;
        Milliseconds poll;
        Parameter_value value{};  // as the device last confirmed it
        bool is_known = false;
        bool is_pushed = false;
        bool is_repeated = false;      // a pushed value has a successor in each poll interval
        bool is_active = false;        // among m_active
        bool is_reported = false;      // in the read that is under way
        bool is_left = false;          // by a read that took too long
        Time taken{};                  // when the value was confirmed
        std::uint64_t connection = 0;  // in which a pushed value was confirmed
        Time next_read = Time::min();
        Time wanted{};
        std::string failure;  // why the last read failed; empty: it did not
        std::optional<Parameter_value> unsent;
        std::uint64_t unsent_turn = 0;  // its place in m_writes
        Time unsent_since{};
        std::optional<Parameter_value> in_flight;
        std::optional<Parameter_value> passed_on;      // the last write, until the device answers
        std::deque<Parameter_value> passed_on_before;  // earlier writes, oldest first
        Time passed_on_at{};
    };
    // What the display shows of the parameter.
    struct Sight {
        std::optional<Parameter_value> value;
        Freshness freshness;
        bool is_writing;
        bool operator==(const Sight& other) const {
            return value == other.value && freshness == other.freshness &&
                   is_writing == other.is_writing;
        }
    };
    struct Queued_write {
        std::size_t number;
        std::uint64_t turn;
    };
    using Lock = std::unique_lock<std::mutex>;

    Time now() const { return m_settings.clock(); }
    bool is_wanted(const Record& record, Time time) const;
    bool is_confirmed(const Record& record, Time time) const;
    Freshness freshness(const Record& record, Time time) const;
    Sight sight(const Record& record, Time time) const;
    bool has_failed(const Record& record, Time time) const;
    std::string reason(const Record& record, Time time) const;
    Value_state state_of(const Record& record, Time time) const;
    // Does `change`, and notifies the menu thread when the display has to show a difference.
    template <typename Change>
    void changing(Record& record, Change change);
    void tell(Driver_event::Kind kind, const Record* record, std::string reason);
    void activate(std::size_t number, Time time);
    void wake();
    void queue_write(std::size_t number);
    bool hangs(Time time) const;

    // Of the driver's thread. Each holds the lock, and gives it up during calls of the driver.
    Milliseconds turn(Lock& lock);
    void wait(Lock& lock, Milliseconds most);
    bool connect(Lock& lock);
    void go_away(const std::string& reason);
    void prove();
    void note_life();
    void drop_late_writes(Time time, const char* reason);
    void send_writes(Lock& lock);
    void send_write(Lock& lock, std::size_t number);
    void finish_write(Record& record, std::size_t number, const Driver_result& result, Time since);
    void await_answer(std::size_t number, Time time);
    void give_up_answers(Time time);
    static bool is_answer(Record& record, const Parameter_value& value);
    static void end_wait(Record& record);
    void lose_answers();
    void read_due(Lock& lock);
    std::vector<std::size_t> due_numbers(Time time);
    void prefer_left(std::vector<std::size_t>& due) const;
    void finish_read(const std::vector<std::size_t>& numbers, const Driver_result& result);
    Milliseconds time_left(Time time) const;
    void end_failure(Record& record);
    void receive(std::size_t number, const Parameter_value& value, bool is_pushed,
                 Milliseconds age);
    void receive_failure(std::size_t number, const std::string& failure, bool is_pushed);
    template <typename Call>
    Driver_result call(Lock& lock, Call call);
    // Makes a call without the lock. What it throws is no reason to end the panel.
    template <typename Call>
    static Driver_result unlocked(Lock& lock, Call call);

    const std::string m_name;
    const std::unique_ptr<Driver> m_driver;
    const Milliseconds m_poll;
    const Device_cache_settings m_settings;
    const std::shared_ptr<Driver_news> m_news;
    const Wake_descriptor m_wake;

    mutable std::mutex m_mutex;
    std::condition_variable m_ended_now;
    std::deque<Record> m_records;       // their number does not change once the driver works
    std::vector<std::size_t> m_active;  // those that were wanted lately
    std::deque<Queued_write> m_writes;
    std::vector<std::size_t> m_passed_on;  // those with a write that was passed on
    std::uint64_t m_turn = 0;
    bool m_is_awake = false;  // m_wake is raised
    bool m_is_stopping = false;
    bool m_has_ended = false;
    bool m_did_anything = false;  // in this step

    bool m_is_connected = false;
    bool m_is_proven = false;  // the connection carried something
    bool m_is_told_away = false;
    bool m_is_told_hanging = false;
    std::uint64_t m_connection = 0;
    Time m_connected_at{};
    Time m_next_try = Time::min();
    Milliseconds m_pause{0};
    std::string m_away_reason;
    std::optional<Time> m_busy_since;  // a call of the driver that is to return soon
    std::optional<Time> m_woken_at;    // the thread was woken and has not noticed yet
    std::optional<Time> m_wait_ends;   // when the wait that is under way is to return at the latest
};

}  // namespace frontpanel

#endif
