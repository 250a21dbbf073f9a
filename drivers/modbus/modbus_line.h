// A connection to a controller, or a serial line with several of them.
//
// Every operation is for one thread, but `stop`.
#ifndef FRONTPANEL_DRIVER_MODBUS_MODBUS_LINE_H
#define FRONTPANEL_DRIVER_MODBUS_MODBUS_LINE_H

#include <chrono>
#include <memory>
#include <mutex>
#include <string>

#include <frontpanel_base/descriptor.h>
#include <frontpanel_drivers/driver.h>

#include "modbus_settings.h"
#include "register_place.h"

using modbus_t = struct _modbus;

namespace frontpanel {

class Modbus_line {
public:
    // std::system_error when no descriptor can be created.
    explicit Modbus_line(Modbus_settings settings);
    ~Modbus_line();

    // DONE or AWAY.
    Driver_result open();
    void close();

    // What an answer of a controller means, beside its kind.
    struct Answer : Driver_result {
        // The controller has no such registers, or does not deliver them together.
        bool is_bad_address = false;
    };
    // Reads a range that fits one request into `words`; tries again up to `retries` times, for two seconds at most.
    // AWAY only when there is no connection any more. A connection that the controller has closed is made anew.
    Answer read(const Register_range& range, Words& words, int retries);
    // Writes one coil, or all registers of a range in one request. Sent again only when the controller said that it was
    // busy. TIMED_OUT when it is unknown whether it was done.
    Driver_result write(const Register_range& range, const Words& words);
    // The call that is under way, and every later one, returns: over TCP at once, on a serial line when the time for the
    // answer that is awaited is over. What was not sent by then is AWAY. For any thread.
    void stop();

private:
    struct Outcome;

    Driver_result make_ready();
    Driver_result open_tcp();
    Driver_result open_serial();
    void set_context(modbus_t* context);
    bool is_stopped() const;
    // Ends early when stopped.
    void pause(std::chrono::milliseconds time) const;
    bool is_hung_up() const;
    // Discards what arrives until nothing has arrived for the time-out. False when that takes too long.
    bool is_quiet();
    void set_answer_time(const Register_range& range);
    template <typename Request>
    Outcome ask(const Register_range& range, Request request);

    struct Closer {
        void operator()(modbus_t* context) const;
    };

    Modbus_settings m_settings;
    const Descriptor m_stop;  // readable once stopped
    // `stop` ends the connection of the driver's thread: it must not be closed meanwhile, as its number might then be that of
    // another file.
    std::mutex m_context_mutex;
    std::unique_ptr<modbus_t, Closer> m_context;  // null: closed
    bool m_is_disturbed = false;  // the rest of a late answer may arrive on the serial line
};

}  // namespace frontpanel

#endif
