// What a driver implements: how parameters of the device are reached, as files, registers, topics or a program of the
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

// How a call of a driver ended. A reason is one line for a person, without the names of driver and parameter:
// "connection refused". What comes from the device may stand in it; it is cut and made printable by the caller.
struct Driver_result {
    enum Kind {
        DONE,
        REFUSED,    // by the device; the connection stands
        TIMED_OUT,  // no answer in time: a write may or may not have been done
        AWAY,       // no connection: nothing was sent that could still have an effect
        PASSED_ON   // of a write: on its way to the device, which pushes the value that it then has
    };
    Kind kind = DONE;
    std::string reason = {};  // empty when DONE

    static Driver_result done() { return {}; }
    static Driver_result refused(std::string reason) { return {REFUSED, std::move(reason)}; }
    static Driver_result timed_out(std::string reason) { return {TIMED_OUT, std::move(reason)}; }
    static Driver_result away(std::string reason) { return {AWAY, std::move(reason)}; }
    static Driver_result passed_on() { return {PASSED_ON, ""}; }
};

// Takes what a driver receives. Valid only within the call that it was passed to.
class Value_sink {
public:
    virtual ~Value_sink();
    // The device holds this value now. One of the wrong type, beyond the declared limits or too long counts as a
    // failure: a value is never cut or bent to fit.
    virtual void value(std::size_t number, const Parameter_value& value) = 0;
    // The device held this value `age` ago, and has not reported another one since. For values that arrived during a
    // call without a sink. The base passes it to `value`.
    virtual void late_value(std::size_t number, const Parameter_value& value,
                            std::chrono::milliseconds age);
    // The parameter has no usable value now, although the connection stands.
    virtual void failure(std::size_t number, const std::string& reason) = 0;
};

class Driver {
public:
    Driver() = default;
    virtual ~Driver();
    Driver(const Driver&) = delete;
    Driver& operator=(const Driver&) = delete;

    // ---- on the menu thread, while the menu file is read

    // Takes one more parameter: the driver's parameters are numbered from 0 in the order of these calls, of those that
    // throw nothing. `source` is the member of that name, whose members are known to be among the row's
    // `source_members`. Throws Placed_error for what is wrong with it. Keep no `Json_value`: the file is gone
    // when the driver runs.
    virtual void add(const Json_value& source, const Driver_parameter& parameter) = 0;
    // After the last `add`, when the file is checked: warns of what is valid but probably a mistake, such as a
    // register that two parameters share or a path that cannot be read here. Takes no longer than a second, writes
    // nothing, and connects to nothing. The base has nothing to warn of.
    virtual void check(Problems& problems) const;

    // ---- on the driver's thread, after the last `add`

    // Connects, anew after a call that returned AWAY. DONE, or else AWAY: the caller pauses before it tries again.
    // A driver without a connection returns DONE.
    virtual Driver_result connect() = 0;
    // Called once at the end, if connected. The base does nothing; the destructor follows, on any thread.
    virtual void disconnect();

    // Whether the driver passes changes of the parameter to the sink of `wait` by itself, so that it is not polled.
    // Asked while connected; may depend on what the device said.
    virtual bool pushes(std::size_t number) const;
    // Whether a parameter that is pushed is pushed once in every `poll` interval at least, so that a value without a
    // successor is old. Asked once, after `add`; the base returns false.
    virtual bool repeats(std::size_t number) const;
    // Reads parameters, in ascending order, and passes each to `sink`. Neighbours may be asked for in one request. A
    // driver that takes longer than about half a second returns after some of them, at least one: the others are asked
    // for again, behind the writes that wait. DONE, or AWAY when the connection is gone. TIMED_OUT and REFUSED are the
    // failure of every parameter that was not passed to `sink`.
    virtual Driver_result read(const std::vector<std::size_t>& numbers, Value_sink& sink) = 0;
    // Writes a value of the parameter's type, within its declared limits. DONE only when the device has taken it;
    // PASSED_ON, of a parameter that is pushed, when somebody else brings it to the device.
    virtual Driver_result write(std::size_t number, const Parameter_value& value) = 0;
    // Waits until `wake` is readable, or `most` has passed, or something arrived, which is passed to `sink` and answered
    // as far as needed. `wake` is only polled, never read. DONE, or AWAY when the connection is gone. The base waits for
    // `wake` alone.
    virtual Driver_result wait(std::chrono::milliseconds most, int wake, Value_sink& sink);

    // ---- on another thread

    // The panel ends: the call that is under way, and every later one, returns soon, so that `disconnect` is reached.
    // Called once, at any time, possibly during another call. The base does nothing.
    virtual void stop();
};

// What a driver is created with.
struct Driver_setup {
    std::string name;  // of the instance, as the menu file names it
    std::string
        folder;  // of the menu file, for files that are named relative to it; empty: the working directory
};

// A kind of driver: the application puts the rows of those it has into a table.
struct Driver_row {
    const char* name;                         // of the kind, in menu files
    std::vector<const char*> members;         // of an instance, beside "driver" and "poll"
    std::vector<const char*> source_members;  // of a "source", beside "driver" and "poll"
    // `options` is the instance, whose members are known to be among `members`. Throws Placed_error for what is wrong
    // with it. Connects to nothing. Null when the build leaves the driver out.
    std::unique_ptr<Driver> (*create)(const Json_value& options, const Driver_setup& setup);
    // The build option that adds a driver which is left out. The row of such a driver has a name and no members.
    const char* build_option = nullptr;

    bool is_left_out() const { return create == nullptr; }
};

}  // namespace frontpanel

#endif
