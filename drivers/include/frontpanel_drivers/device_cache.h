// The parameters of drivers as one device. The menu reads and writes memory; a thread for each driver exchanges the
// values with its device.
//
// Every operation is for the menu thread. None waits for a device, except `flush`, `read_all` and the destructor, which
// wait for a bounded time.
//
// A parameter is read only while the menu asks for it, so the cost depends on what is shown.
#ifndef FRONTPANEL_DRIVERS_DEVICE_CACHE_H
#define FRONTPANEL_DRIVERS_DEVICE_CACHE_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

#include <frontpanel_base/value_state.h>
#include <frontpanel_data/pdt_data_access.h>
#include <frontpanel_drivers/driver.h>

namespace frontpanel {

class Driver_desk;
class Driver_news;

// What happened at a driver, for the log and for notices. Each is reported once.
struct Driver_event {
    enum Kind {
        AWAY,             // the driver lost its connection, or could not connect
        BACK,             // it is connected again
        READ_FAILED,      // reading a parameter fails for the first time, or again after it worked
        READ_AGAIN,       // reading it works again
        WRITE_REFUSED,    // the old value is back
        WRITE_TIMED_OUT,  // the value is unknown until it is read again
        WRITE_DROPPED,    // not sent, since the driver was away too long: the old value is back
        WRITE_UNANSWERED  // passed on, but the device has not pushed a value since: the old value is back
    };
    Kind kind;
    std::string driver;     // the instance
    std::string parameter;  // empty for AWAY and BACK
    std::string reason;     // one line; empty for BACK and READ_AGAIN

    // "sensors: away: connection refused", "sensors: gain: write refused: permission denied"
    std::string text() const;
};

// A write that has not reached its device when the panel ends.
struct Unsent_write {
    std::string driver;
    std::string parameter;
    std::string reason;  // one line

    std::string text() const;
};

// A parameter with its value and state, for reports.
struct Driven_value {
    std::string driver;
    std::string parameter;
    std::optional<Parameter_value> value;
    Value_state state;
};

struct Device_cache_settings {
    using Time = std::chrono::steady_clock::time_point;

    // Called from every thread; null: the steady clock.
    std::function<Time()> clock = nullptr;
    // Without threads `step` does their work, for tests and for reading everything once.
    bool has_threads = true;
    std::chrono::milliseconds wanted_for{
        5000};  // a parameter is polled this long after it was last asked for
    std::chrono::milliseconds first_pause{
        500};  // before a driver that is away is tried again; it doubles
    std::chrono::milliseconds longest_pause{30000};
    std::chrono::milliseconds write_patience{
        10000};  // how long a write waits for a driver that is away
    std::chrono::milliseconds end_patience{
        1000};  // how long the destructor waits for a driver that hangs
};

class Device_cache : public Pdt_data_access, public Value_states {
public:
    // Results of `Get` and `Set`; other numbers are those of the device with the other parameters.
    enum Result {
        DONE = 0,
        NOT_KNOWN = 20,  // no value yet, or none any more
        WRONG_SIZE,      // of the buffer
        OUT_OF_BOUNDS,   // of a number, or the length of a text
        WRONG_TYPE       // a text that holds a zero byte
    };
    static const char* result_text(int result);

    static constexpr std::chrono::milliseconds SHORTEST_POLL{100};
    static constexpr std::chrono::milliseconds LONGEST_POLL{3600000};
    static constexpr std::chrono::milliseconds USUAL_POLL{1000};

    // `others` has the parameters that live at no driver, the products and the sockets, and outlives the cache.
    explicit Device_cache(Data_interface& others, Device_cache_settings settings = {});
    // Ends every driver. A driver that hangs is abandoned with its thread and its memory.
    ~Device_cache() override;
    Device_cache(const Device_cache&) = delete;
    Device_cache& operator=(const Device_cache&) = delete;

    // ---- before `start`

    // Takes a driver, and returns its number. Its parameters are read every `poll` unless they say otherwise.
    std::size_t add_driver(const std::string& name, std::unique_ptr<Driver> driver,
                           std::chrono::milliseconds poll = USUAL_POLL);
    // Announces the parameter that was added to the driver before. Requires: the driver was given the same parameters in
    // the same order. False when the parameter lives at a driver already.
    bool add_parameter(std::size_t driver, const Driver_parameter& parameter,
                       std::optional<std::chrono::milliseconds> poll = std::nullopt);
    // From now on the drivers work. std::system_error when a thread cannot be created.
    void start();

    // ---- while the drivers work

    // Whether the parameter lives at a driver.
    bool has(std::uint32_t pid, std::uint32_t varidx) const;
    std::size_t parameter_count() const { return m_places.size(); }
    // OLD: the value was read more than three poll intervals ago, was pushed before the connection was lost, or has had
    // no successor for three poll intervals although its driver repeats it. UNKNOWN: it was never read, or a write to
    // it timed out. Empty for a parameter that lives at no driver.
    std::optional<Value_state> state(std::uint32_t pid, std::uint32_t varidx) const override;
    // Becomes readable when an event happens, or when the value or the state of a parameter that was asked for changes.
    int descriptor() const;
    // Makes the descriptor unreadable again. Returns whether it was readable.
    bool take_changes();
    // What happened since the last call, the oldest first. Of very many the last are replaced by one that counts them.
    std::vector<Driver_event> take_events();

    // Waits until every write has reached its device, at most for `most`, and returns the writes that did not. A driver
    // that is away is tried at once.
    std::vector<Unsent_write> flush(std::chrono::milliseconds most);
    // Asks for every parameter, and waits until each has been read or has failed, at most for `most`.
    void read_all(std::chrono::milliseconds most);
    // Every parameter, by driver and in the order in which they were added.
    std::vector<Driven_value> values() const;
    // Without threads: does the work of each driver's thread once, without waiting. Returns whether there was any.
    bool step();

    // Called with each value that `Set` keeps for a driver, on the menu thread; null for no listener.
    using Write_listener =
        std::function<void(std::uint32_t pid, std::uint32_t varidx, const Parameter_value& value)>;
    void set_write_listener(Write_listener listener) { m_write_listener = std::move(listener); }

    // The value in memory; NOT_KNOWN when there is none. Marks the parameter as wanted.
    int Get(unsigned int pid, unsigned int varidx, void* buffer, unsigned int length) override;
    // Keeps the value for the driver; `Get` returns it from now on. A newer value replaces one that has not been sent.
    int Set(unsigned int pid, unsigned int varidx, const void* buffer,
            unsigned int length) override;

    // Passed on to the device of the other parameters.
    void Init() override;
    int Get_prod_list(PROD_LIST_S* list, bool remote, bool refresh) override;
    int Set_product_id(prod_id_t product) override;
    int Get_prod_alias_name(char* name, prod_id_t product) override;
    // For a device that is no `Pdt_data_access`: the local unit is selected and no other can be.
    int Is_current_selection_local() override;
    bool Is_use_selection_local() override;
    int setCurrentRouterSocket(int socket) override;

private:
    struct Place {
        Driver_desk* desk;
        std::size_t number;
    };

    static std::uint64_t address(std::uint32_t pid, std::uint32_t varidx) {
        return std::uint64_t{pid} << 32U | varidx;
    }
    const Place* place_of(std::uint32_t pid, std::uint32_t varidx) const;
    std::vector<Unsent_write> outstanding() const;
    template <typename Is_done>
    void work_until(std::chrono::milliseconds most, Is_done is_done);
    void stop();

    Data_interface& m_others;
    Pdt_data_access* m_sockets;  // the others; null when they have no sockets
    Device_cache_settings m_settings;
    Write_listener m_write_listener;
    std::shared_ptr<Driver_news> m_news;  // shared with the threads, which may outlive the cache
    std::vector<std::shared_ptr<Driver_desk>> m_desks;
    std::vector<std::thread> m_threads;
    std::unordered_map<std::uint64_t, Place> m_places;
};

}  // namespace frontpanel

#endif
