// The interface of a driver, which reaches parameters of a device: as files, registers, topics or a program of the
// user's. docs/drivers.md is the guide for writing one.
//
// A driver is filled while the menu file is read, on the menu thread. From then on a thread of its own makes every
// call, one at a time, so a driver needs no lock and may wait for its device.
#ifndef FRONTPANEL_DRIVERS_DRIVER_H
#define FRONTPANEL_DRIVERS_DRIVER_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include <frontpanel_base/json_value.h>

namespace frontpanel {

// A number, or a text of at most 256 bytes without a zero byte.
using Parameter_value = std::variant<std::int32_t, std::string>;

// A parameter as the menu file declares it.
struct Driver_parameter {
    std::uint32_t pid = 0;
    std::uint32_t varidx = 0;  // index levels 0 and 1 in bits 0 to 7 and 8 to 15
    std::string name = {};     // for messages: the declared name, or else the address
    bool is_text = false;
    std::int32_t min = 0;  // of a number
    std::int32_t max = 0;
    std::size_t length = 0;  // of a text: bytes at most
};

// The result of a driver's call. A reason is one line for a person, without the names of driver and parameter:
// "connection refused". It may quote the device; the caller cuts it and makes it printable.
struct Driver_result {
    enum Kind {
        DONE,
        REFUSED,    // by the device; the connection remains
        TIMED_OUT,  // no answer in time: a write may or may not have been done
        AWAY,       // no connection: nothing was sent that could still have an effect
        PASSED_ON   // a write on its way to the device, which then pushes its new value
    };
    Kind kind = DONE;
    std::string reason = {};  // empty when DONE

    static Driver_result done() { return {}; }
    static Driver_result refused(std::string reason) { return {REFUSED, std::move(reason)}; }
    static Driver_result timed_out(std::string reason) { return {TIMED_OUT, std::move(reason)}; }
    static Driver_result away(std::string reason) { return {AWAY, std::move(reason)}; }
    static Driver_result passed_on() { return {PASSED_ON, ""}; }
};

// Receives the values that a driver reads. Valid only within the call that it was passed to.
class Value_sink {
public:
    virtual ~Value_sink();
    // The device holds this value now. A value of the wrong type, beyond the declared limits or too long counts as a
    // failure; it is never cut or changed to fit.
    virtual void value(std::size_t number, const Parameter_value& value) = 0;
    // The device held this value `age` ago, and has not reported another one since. For values that arrived during a
    // call without a sink. The base passes it to `value`.
    virtual void late_value(std::size_t number, const Parameter_value& value,
                            std::chrono::milliseconds age);
    // The parameter has no usable value now, although the connection works.
    virtual void failure(std::size_t number, const std::string& reason) = 0;
};

class Driver {
public:
    Driver() = default;
    virtual ~Driver();
    Driver(const Driver&) = delete;
    Driver& operator=(const Driver&) = delete;

    // ---- on the menu thread, while the menu file is read

    // Adds a parameter. Parameters are numbered from 0 in the order of these calls; a call that throws is not counted.
    // `source` is the parameter's member of that name, whose members are known to be among the row's `source_members`.
    // Throws Placed_error for errors in it. Keep no `Json_value`: the file no longer exists when the driver runs.
    virtual void add(const Json_value& source, const Driver_parameter& parameter) = 0;
    // After the last `add`, when the file is checked: warns of what is valid but probably a mistake, such as a
    // register that two parameters share or a path that cannot be read here. Must not take longer than a second, write
    // anything, or connect. The base warns of nothing.
    virtual void check(Problems& problems) const;

    // ---- on the driver's thread, after the last `add`

    // Connects, also after a call that returned AWAY. Returns DONE, or AWAY: the caller then pauses before it tries
    // again. A driver without a connection returns DONE.
    virtual Driver_result connect() = 0;
    // Called once at the end, if connected. The base does nothing; the destructor follows, on any thread.
    virtual void disconnect();

    // Whether the driver passes changes of the parameter to the sink of `wait` by itself, so that it is not polled.
    // Called while connected; may depend on the device's answers.
    virtual bool pushes(std::size_t number) const;
    // Whether a pushed parameter is pushed at least once in every `poll` interval, so that a value without a successor
    // is old. Called once, after `add`; the base returns false.
    virtual bool repeats(std::size_t number) const;
    // Reads the parameters `numbers`, in ascending order, and passes each value to `sink`. Neighbours may be read in
    // one request. A driver that takes longer than about half a second returns after some of them, at least one: the
    // others are asked for again, after the waiting writes. DONE, or AWAY when the connection is lost. TIMED_OUT and
    // REFUSED mean a failure of every parameter that was not passed to `sink`.
    virtual Driver_result read(const std::vector<std::size_t>& numbers, Value_sink& sink) = 0;
    // Writes a value of the parameter's type, within its declared limits. DONE only when the device has taken it;
    // PASSED_ON, for a pushed parameter, when another party such as a broker passes it to the device.
    virtual Driver_result write(std::size_t number, const Parameter_value& value) = 0;
    // Waits until `wake` is readable, `most` has passed, or something has arrived, which it passes to `sink` and
    // answers if necessary. Only polls `wake`, never reads it. DONE, or AWAY when the connection is lost. The base
    // waits for `wake` alone.
    virtual Driver_result wait(std::chrono::milliseconds most, int wake, Value_sink& sink);

    // ---- on another thread

    // The panel ends: the call in progress, and every later one, must return soon, so that `disconnect` is reached.
    // Called once, at any time, possibly during another call. The base does nothing.
    virtual void stop();
};

// The arguments for creating a driver.
struct Driver_setup {
    std::string name;  // of the instance, as the menu file names it
    std::string
        folder;  // of the menu file, for files that are named relative to it; empty: the working directory
};

// A kind of driver. The application has a table with the rows of all kinds.
struct Driver_row {
    const char* name;                         // of the kind, in menu files
    std::vector<const char*> members;         // of an instance, beside "driver" and "poll"
    std::vector<const char*> source_members;  // of a "source", beside "driver" and "poll"
    // `options` is the instance, whose members are known to be among `members`. Throws Placed_error for errors in it.
    // Must not connect. Null when the build leaves the driver out.
    std::unique_ptr<Driver> (*create)(const Json_value& options, const Driver_setup& setup);
    // The build option that adds a driver which is left out. The row of such a driver has a name and no members.
    const char* build_option = nullptr;

    bool is_left_out() const { return create == nullptr; }
};

}  // namespace frontpanel

#endif
