// The parameters of drivers as one device: the menu asks memory, and a thread for each driver fills and drains it.
//
// Every operation is for the menu thread, and none of them waits for a device, but `flush`, `read_all` and the
// destructor, which wait for a bounded time.
//
// Polling follows demand: a parameter is read while somebody asks for it, so a menu costs what it shows.
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
        AWAY,             // the driver lost, or did not get, its connection
        BACK,             // and has it again
        READ_FAILED,      // a parameter that could be read, or was never read, fails
        READ_AGAIN,       // and does no longer
        WRITE_REFUSED,    // the old value is back
        WRITE_TIMED_OUT,  // the value is unknown until it is read again
        WRITE_DROPPED,    // never sent, since the driver was away too long: the old value is back
        WRITE_UNANSWERED  // passed on, but the device has not pushed a value since: the old value is back
    };
    Kind kind;
    std::string driver;     // the instance
    std::string parameter;  // empty for AWAY and BACK
    std::string reason;     // one line; empty for BACK and READ_AGAIN

    // "sensors: away: connection refused", "sensors: gain: write refused: permission denied"
    std::string text() const;
};

// A write that the end of the panel leaves behind.
struct Unsent_write {
    std::string driver;
    std::string parameter;
    std::string reason;  // one line

    std::string text() const;
};

// A parameter with what is known of it, for reports.
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
        5000};  // a parameter is read for so long after it was asked for
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
    // Results of `Get` and `Set`, beside those of the device that has the other parameters.
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
    // Ends every driver. One that hangs is left behind with its thread and its memory.
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
    // OLD is a value that was read more than three poll intervals ago, or was pushed before the connection was lost, or
    // has no successor within three poll intervals though its driver repeats it; UNKNOWN one that was never read, or to which a write timed out. Nothing for a parameter that lives at no driver.
    std::optional<Value_state> state(std::uint32_t pid, std::uint32_t varidx) const override;
    // Readable when a value that was lately asked for, or its state, changed, or an event happened.
    int descriptor() const;
    // Whether it was readable; it no longer is.
    bool take_changes();
    // What happened since the last call, the oldest first. Of very many the last are replaced by one that counts them.
    std::vector<Driver_event> take_events();

    // Waits until every write has reached its device, `most` at the longest. The writes that did not. A driver that is
    // away is tried at once.
    std::vector<Unsent_write> flush(std::chrono::milliseconds most);
    // Asks for every parameter, and waits until each has been read or has failed, `most` at the longest.
    void read_all(std::chrono::milliseconds most);
    // Every parameter, by driver and in the order in which they were added.
    std::vector<Driven_value> values() const;
    // Without threads: does once for each driver what its thread would, without waiting. Whether anything was done.
    bool step();

    // Called with each value that `Set` keeps for a driver, on the menu thread; null for nobody.
    using Write_listener =
        std::function<void(std::uint32_t pid, std::uint32_t varidx, const Parameter_value& value)>;
    void set_write_listener(Write_listener listener) { m_write_listener = std::move(listener); }

    // The value in memory; NOT_KNOWN when there is none. Marks the parameter as wanted.
    int Get(unsigned int pid, unsigned int varidx, void* buffer, unsigned int length) override;
    // Keeps the value for the driver, and as the value that `Get` returns from now on. A value that has not been sent is
    // replaced by a newer one.
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
