// The parameters that a menu's bindings and toggles refer to, with the values last seen.
//
// A device variable is one record here, found by its address in constant time, and any number of records in
// the var index map, one for each way to name it: `[100]` and `[100.0]` are the same variable. All of them
// are kept at the same value and list the same dependants. Menu thread only.
#ifndef FRONTPANEL_BINDING_ENGINE_PARAMETER_CACHE_H
#define FRONTPANEL_BINDING_ENGINE_PARAMETER_CACHE_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <frontpanel_data/binding.h>

namespace frontpanel::binding_engine {

class Engine;
class Cascade;

// The failure of an access without interface, beside the results of devices.
inline constexpr int NO_INTERFACE = std::numeric_limits<int>::min();

// A device variable, read as a number or as a text.
struct Cached_parameter {
    using Record = var_index_map_t::value_type;

    uint32_t pid;
    uint32_t varidx;
    RETURN_TYPE rt;
    int32_t number = 0;
    std::string text;  // in full; the map's records hold its first 31 characters
    bool is_known = false;
    int failure = 0;       // what the last access returned
    bool is_kept = false;  // every access since `number` or `text` was taken has passed this cache
    bool is_awaited = false;  // the last access failed because no value has come yet
    int socket = 0;           // selected when the value was taken
    uint64_t kept_in = 0;     // the number of polls begun by then
    uint64_t read_in = 0;     // the evaluation that last asked the device
    std::vector<Record*> records;
    std::vector<Engine*> readers;     // whose rules read it
    std::vector<Data_entry*> listed;  // the dependants in each of the records
    std::vector<Engine*> owners;      // whose entries control it
    int watchers = 0;
    uint64_t written_in = 0;  // the turn of `writes`
    int writes = 0;
    std::size_t next_to_mark = 0;  // of the readers: see Cascade
    std::size_t left_to_mark = 0;
    std::size_t polled_at = 0;  // place among the polled ones, from 1; 0: not polled
};

// Unused levels are 0: keys are ordered by both supported levels, in use or not.
var_index_s normal_key(var_index_s key);
// "[100.2]"
std::string shown_address(const var_index_s& key);

class Parameter_cache {
public:
    Parameter_cache(Data_interface* iface, Cascade& cascade);

    // Null only when neither the cache nor the process has an interface.
    Data_interface* interface() const;
    // From now on every access of the application passes `keep_...`: values need not be asked for again.
    void set_caching_interface(Data_interface* iface);
    // The former interface is used again.
    void end_caching_interface(const Data_interface* iface);

    var_index_map_t& map() { return m_map; }
    // The variable that `key` names, with a record for `key` in the map. Valid as long as the cache.
    Cached_parameter& at(const var_index_s& key);
    // Null when nothing refers to the variable in that type.
    Cached_parameter* find(const var_index_s& key);

    // An engine is added once.
    void add_reader(Cached_parameter& parameter, Engine& engine);
    void remove_reader(Cached_parameter& parameter, Engine& engine);
    void list_dependant(Cached_parameter& parameter, Data_entry* entry);
    void unlist_dependant(Cached_parameter& parameter, Data_entry* entry);
    // Removes all dependants and all readers of all parameters.
    void forget_dependants();
    void add_owner(Cached_parameter& parameter, const var_index_s& key, Engine& engine);
    void remove_owner(Cached_parameter& parameter, Engine& engine, Data_entry* entry);
    void watch(Cached_parameter& parameter);
    void unwatch(Cached_parameter& parameter);

    // Begins an evaluation: in it, each parameter is asked for at most once.
    void begin_evaluation() { ++m_evaluation; }
    // Makes `parameter` hold the device's value; false when it cannot be read. A value that is known to be current is
    // not read again; one that the last poll left out is, since the device may have changed it.
    bool bring_up_to_date(Cached_parameter& parameter);
    // Why the last access failed: the device's reason, such as "no such file", or its result.
    std::string failure_text(const Cached_parameter& parameter) const;
    // Reads parameters that have readers or watchers from the device, in turns. The keys of those that changed are
    // valid until the next poll.
    const std::vector<var_index_s>& poll(std::size_t at_most);
    // Asks the device for these, whatever is known of them.
    void read_again(const std::vector<Cached_parameter*>& parameters);

    // Reports of accesses by others. `length` is the size of the buffer for a read.
    void keep_read(uint32_t pid, uint32_t varidx, const void* buffer, std::size_t length);
    void keep_write(uint32_t pid, uint32_t varidx, const void* bytes, std::size_t length);
    void note_failure(uint32_t pid, uint32_t varidx, int result);
    // Whether the last failure only means that the first value has not arrived yet: then it is no fault of a rule.
    void note_awaited(uint32_t pid, uint32_t varidx, bool is_awaited);
    void note_failed_write(uint32_t pid, uint32_t varidx, std::string_view bytes, int result);
    void select_socket(int socket) { m_socket = socket; }

private:
    // One address can be read in two ways, but only one of them succeeds on a device.
    struct Variable {
        std::unique_ptr<Cached_parameter> number;
        std::unique_ptr<Cached_parameter> text;
    };

    static uint64_t address(uint32_t pid, uint32_t varidx) { return uint64_t{pid} << 32 | varidx; }
    void add_record(Cached_parameter& parameter, const var_index_s& key);
    void update_polling(Cached_parameter& parameter);
    // Calls `act` for the variable as a number and as a text, where it is read so.
    template <typename Act>
    void for_each_cached(uint32_t pid, uint32_t varidx, Act act);
    int read(Cached_parameter& parameter);
    void keep_number(Cached_parameter& parameter, int32_t value);
    void keep_text(Cached_parameter& parameter, std::string_view value);
    void kept(Cached_parameter& parameter, bool changed);
    bool is_current(const Cached_parameter& parameter) const;

    Data_interface* m_interface;
    Data_interface* m_caching_interface = nullptr;
    Cascade& m_cascade;
    var_index_map_t m_map;
    std::unordered_map<uint64_t, Variable> m_variables;
    std::vector<Cached_parameter*> m_polled;
    std::size_t m_next_polled = 0;
    std::vector<var_index_s> m_changed;  // in the last poll
    bool m_is_polling = false;
    uint64_t m_polls = 0;
    uint64_t m_evaluation = 1;
    int m_socket = 0;
};

}  // namespace frontpanel::binding_engine

#endif
