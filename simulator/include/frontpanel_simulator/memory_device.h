// A slot device in memory: typed parameters, a product list and a router socket.
//
// It replaces the device in tests and in the panel application. A parameter has a type and bounds; an access
// that does not fit fails with a result of its own and changes nothing. Thread-safe: one mutex guards
// everything, and the callbacks run without it, on the calling thread.
#ifndef FRONTPANEL_SIMULATOR_MEMORY_DEVICE_H
#define FRONTPANEL_SIMULATOR_MEMORY_DEVICE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <frontpanel_data/pdt_data_access.h>

namespace frontpanel {

class Memory_device : public Pdt_data_access {
public:
    static constexpr int SLOT_COUNT = 16;    // records of a product list, record i for slot i
    static constexpr int SOCKET_COUNT = 16;  // router sockets; socket 0 is the local unit
    static constexpr std::size_t MAX_ALIAS_LENGTH = 99;  // characters, without the terminator
    static constexpr std::size_t REMEMBERED = 256;       // writes and failed reads kept, newest

    // What an operation returns. A fault callback may add values of its own.
    enum Result {
        DONE = 0,
        UNKNOWN_PARAMETER = 1,
        WRONG_TYPE = 2,     // a number asked of a text, or the reverse; a text with a zero byte
        WRONG_SIZE = 3,     // not 4 bytes for a number; a buffer too short for text and terminator
        OUT_OF_BOUNDS = 4,  // a number outside its limits; a text longer than its maximum
        UNKNOWN_SOCKET = 5,
        UNKNOWN_PRODUCT = 6,  // a product without alias
        UNKNOWN_SLOT = 7,
        ALREADY_DECLARED = 8,
        NO_BUFFER = 9
    };

    enum class Operation_kind { READ, WRITE, PRODUCT_LIST, PRODUCT_ID, ALIAS, SELECT_SOCKET };

    // A call of the data interface, as a fault callback sees it.
    struct Operation {
        Operation_kind kind;
        uint32_t pid;       // READ and WRITE
        uint32_t varidx;    // READ and WRITE
        uint32_t length;    // READ and WRITE, bytes
        int socket;         // the socket to select; with other kinds, the selected one
        prod_id_t product;  // PRODUCT_ID and ALIAS
    };

    // A call of `Set`, failed or not.
    struct Write {
        uint32_t pid;
        uint32_t varidx;
        RETURN_TYPE type;  // the parameter's; INVALID_TYPE when the device has no such parameter
        std::string
            value;  // a number in decimal; a text with "\xNN" for control characters and bytes that are
                    // not UTF-8; in hexadecimal ("01 ff") when the bytes fit neither
        int result;
    };

    // A text as `Write::value` holds it.
    static std::string text_of_write(const std::string& bytes);

    // A call of `Get` that failed.
    struct Failed_read {
        uint32_t pid;
        uint32_t varidx;
        int result;
    };

    // A parameter and what it holds: `number`, or `text`, as its type says.
    struct Value {
        uint32_t pid;
        uint32_t varidx;
        RETURN_TYPE type;
        int32_t number;
        std::string text;
    };

    using Fault = std::function<int(const Operation&)>;
    using Write_listener = std::function<void(const Write&)>;
    using Change_listener = std::function<void()>;

    // Without parameters and products, at the local unit; the application's own fields of the interface are 0.
    Memory_device();
    ~Memory_device() override;
    Memory_device(const Memory_device&) = delete;
    Memory_device& operator=(const Memory_device&) = delete;

    // Declare a parameter with its start value. `varidx` is what `Data_model::Index_convert` makes of an
    // index. ALREADY_DECLARED, or OUT_OF_BOUNDS when the start value does not fit (or `max_length` exceeds
    // MAX_STRING_LENGTH), or WRONG_TYPE for a text with a zero byte; then nothing is declared.
    Result add_integer(uint32_t pid, uint32_t varidx, int32_t min, int32_t max, int32_t value);
    Result add_text(uint32_t pid, uint32_t varidx, std::size_t max_length,
                    const std::string& value);

    // The device's own view of a parameter, past faults and records. Reading yields nothing, writing
    // UNKNOWN_PARAMETER or WRONG_TYPE, when there is no parameter of that type; writing keeps the bounds.
    RETURN_TYPE type(uint32_t pid, uint32_t varidx) const;  // INVALID_TYPE: no such parameter
    std::optional<int32_t> integer(uint32_t pid, uint32_t varidx) const;
    std::optional<std::string> text(uint32_t pid, uint32_t varidx) const;
    Result set_integer(uint32_t pid, uint32_t varidx, int32_t value);
    Result set_text(uint32_t pid, uint32_t varidx, const std::string& value);
    // As `set_integer`, for a measured value: the change listener is not called, since such a value need not be kept.
    Result measure(uint32_t pid, uint32_t varidx, int32_t value);
    // Every parameter, by pid and variable index, all at the same moment.
    std::vector<Value> values() const;

    // Puts a product into a slot of a socket's list. UNKNOWN_SLOT or UNKNOWN_SOCKET beyond the counts. Both
    // texts of the record are cut to fit with their terminator.
    Result set_product(int slot, const PROD_LIST_S& product, int socket = 0);
    // OUT_OF_BOUNDS for more than MAX_ALIAS_LENGTH characters, WRONG_TYPE for one with a zero byte; an empty
    // alias is valid.
    Result set_alias(prod_id_t product, const std::string& alias);
    prod_id_t product_id() const;  // the last one given to `Set_product_id`; 0 at start
    int current_socket() const;
    void set_use_selection_local(bool in_force);

    // Called before each call of the data interface; a non-zero result fails the call with that result
    // before it touches anything. An empty function takes the callback away.
    void set_fault(Fault fault);
    // Called after each call of `Set`, with its result.
    void set_write_listener(Write_listener listener);
    // Called after the value of a parameter changed by any operation except `measure`.
    void set_change_listener(Change_listener listener);

    std::vector<Write> writes() const;              // oldest first
    std::vector<Failed_read> failed_reads() const;  // oldest first
    // Whether the latest `Get` of the parameter failed. True for a parameter that the device does not have.
    bool last_read_failed(uint32_t pid, uint32_t varidx) const;
    void clear_records();  // forgets writes and failed reads; `last_read_failed` stays

    // A few words on a result, for a log: "out of bounds". Never null.
    static const char* result_text(int result);

    // The data interface. `Get` of a number needs a length of 4; `Get` of a text needs room for its
    // terminator and writes no byte beyond it. The buffer is untouched on failure.
    int Get(unsigned int pid, unsigned int varidx, void* buffer, unsigned int length) override;
    int Set(unsigned int pid, unsigned int varidx, const void* buffer,
            unsigned int length) override;
    // The local list, or with `remote` that of the selected socket; empty records where nothing was put.
    // `refresh` changes nothing, since the list is always the present one.
    int Get_prod_list(PROD_LIST_S* list, bool remote, bool refresh) override;
    int Set_product_id(prod_id_t product) override;
    int Get_prod_alias_name(char* name, prod_id_t product) override;

    // The selected socket: 0 is the local unit. The library restores a selection by passing this result to
    // `setCurrentRouterSocket`, so it must be the selected socket.
    int Is_current_selection_local() override;
    bool Is_use_selection_local() override;
    int setCurrentRouterSocket(int socket) override;

private:
    struct Parameter {
        RETURN_TYPE type;
        int32_t min;
        int32_t max;
        uint32_t max_length;
        int32_t number;
        bool last_read_failed;
        std::unique_ptr<std::string> text;  // null for a number, as most are
    };
    using Key = std::pair<uint32_t, uint32_t>;  // pid, variable index
    using Product_list = std::array<PROD_LIST_S, SLOT_COUNT>;

    static Result check_number(const Parameter& parameter, int32_t value);
    static Result check_text(const Parameter& parameter, const std::string& value);
    static Result read(const Parameter* parameter, void* buffer, std::size_t length);
    Result store(Parameter* parameter, const void* buffer, std::size_t length);
    Result store_number(Parameter& parameter, const void* buffer, std::size_t length);
    Result store_text(Parameter& parameter, const void* buffer, std::size_t length);
    static std::string value_text(const Parameter* parameter, const void* buffer,
                                  std::size_t length);

    Parameter* find(uint32_t pid, uint32_t varidx);
    const Parameter* find(uint32_t pid, uint32_t varidx) const;
    Result add(uint32_t pid, uint32_t varidx, Parameter parameter, Result fits);
    int fault_of(Operation operation) const;
    Result keep_number(Parameter& parameter, int32_t value);
    Result keep_text(Parameter& parameter, const std::string& value);

    // Carries out a step that may change a parameter, and calls the listener if it did.
    template <typename Step>
    Result change(const Step& step);

    mutable std::mutex m_mutex;
    bool m_has_changed;  // a parameter's value, since this was last reset
    std::map<Key, Parameter> m_parameters;
    std::map<int, Product_list> m_products;  // by socket
    std::map<prod_id_t, std::string> m_aliases;
    prod_id_t m_product_id;
    int m_socket;
    bool m_use_selection_local;
    Fault m_fault;
    Write_listener m_write_listener;
    Change_listener m_change_listener;
    std::deque<Write> m_writes;
    std::deque<Failed_read> m_failed_reads;
};

}  // namespace frontpanel

#endif
