#include <frontpanel_simulator/memory_device.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>

#include <frontpanel_base/text_bytes.h>

namespace frontpanel {
namespace {

template <typename Record>
void remember(std::deque<Record>& records, const Record& record) {
    if (records.size() == Memory_device::REMEMBERED) {
        records.pop_front();
    }
    records.push_back(record);
}

template <typename Record>
std::vector<Record> as_vector(const std::deque<Record>& records) {
    return std::vector<Record>(records.begin(), records.end());
}

std::string in_hexadecimal(const std::string& bytes) {
    std::string text;
    for (const char byte : bytes) {
        char digits[4];
        std::snprintf(digits, sizeof digits, text.empty() ? "%02x" : " %02x",
                      static_cast<unsigned int>(static_cast<unsigned char>(byte)));
        text += digits;
    }
    return text;
}

template <std::size_t SIZE>
void terminate(char (&text)[SIZE]) {
    text[SIZE - 1] = '\0';
}

bool is_within(int number, int count) {
    return number >= 0 && number < count;
}

}  // namespace

std::string Memory_device::text_of_write(const std::string& bytes) {
    return escaped(bytes);
}

Memory_device::Memory_device()
    : m_has_changed(false), m_product_id(0), m_socket(0), m_use_selection_local(false) {
    go_home = 0;
    lock_and_dim = 0;
    time_for_timeout = 0;
}

Memory_device::~Memory_device() = default;

// ---- the device's own view

Memory_device::Result Memory_device::add_integer(uint32_t pid, uint32_t varidx, int32_t min,
                                                 int32_t max, int32_t value) {
    Parameter parameter{INTEGER, min, max, 0, value, false, nullptr};
    const Result fits = check_number(parameter, value);
    return add(pid, varidx, std::move(parameter), fits);
}

Memory_device::Result Memory_device::add_text(uint32_t pid, uint32_t varidx, std::size_t max_length,
                                              const std::string& value) {
    Parameter parameter{STRING, 0, 0, 0, 0, false, std::make_unique<std::string>(value)};
    if (max_length > static_cast<std::size_t>(MAX_STRING_LENGTH)) {
        return add(pid, varidx, std::move(parameter), OUT_OF_BOUNDS);
    }
    parameter.max_length = static_cast<uint32_t>(max_length);
    const Result fits = check_text(parameter, value);
    return add(pid, varidx, std::move(parameter), fits);
}

Memory_device::Result Memory_device::add(uint32_t pid, uint32_t varidx, Parameter parameter,
                                         Result fits) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (fits != DONE) {
        return find(pid, varidx) != nullptr ? ALREADY_DECLARED : fits;
    }
    // Parameters are usually added in ascending order.
    const std::size_t count = m_parameters.size();
    m_parameters.emplace_hint(m_parameters.end(), Key(pid, varidx), std::move(parameter));
    return m_parameters.size() > count ? DONE : ALREADY_DECLARED;
}

RETURN_TYPE Memory_device::type(uint32_t pid, uint32_t varidx) const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const Parameter* const parameter = find(pid, varidx);
    return parameter != nullptr ? parameter->type : INVALID_TYPE;
}

std::optional<int32_t> Memory_device::integer(uint32_t pid, uint32_t varidx) const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const Parameter* const parameter = find(pid, varidx);
    if (parameter == nullptr || parameter->type != INTEGER) {
        return std::nullopt;
    }
    return parameter->number;
}

std::optional<std::string> Memory_device::text(uint32_t pid, uint32_t varidx) const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const Parameter* const parameter = find(pid, varidx);
    if (parameter == nullptr || parameter->type != STRING) {
        return std::nullopt;
    }
    return *parameter->text;
}

template <typename Step>
Memory_device::Result Memory_device::change(const Step& step) {
    Result result = DONE;
    Change_listener listener;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_has_changed = false;
        result = step();
        if (m_has_changed) {
            listener = m_change_listener;
        }
    }
    if (listener) {
        listener();
    }
    return result;
}

Memory_device::Result Memory_device::set_integer(uint32_t pid, uint32_t varidx, int32_t value) {
    return change([&] {
        Parameter* const parameter = find(pid, varidx);
        return parameter != nullptr ? keep_number(*parameter, value) : UNKNOWN_PARAMETER;
    });
}

Memory_device::Result Memory_device::measure(uint32_t pid, uint32_t varidx, int32_t value) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    Parameter* const parameter = find(pid, varidx);
    return parameter != nullptr ? keep_number(*parameter, value) : UNKNOWN_PARAMETER;
}

Memory_device::Result Memory_device::set_text(uint32_t pid, uint32_t varidx,
                                              const std::string& value) {
    return change([&] {
        Parameter* const parameter = find(pid, varidx);
        return parameter != nullptr ? keep_text(*parameter, value) : UNKNOWN_PARAMETER;
    });
}

std::vector<Memory_device::Value> Memory_device::values() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<Value> values;
    for (const auto& [key, parameter] : m_parameters) {
        values.push_back({key.first, key.second, parameter.type, parameter.number,
                          parameter.text != nullptr ? *parameter.text : std::string()});
    }
    return values;
}

Memory_device::Result Memory_device::set_product(int slot, const PROD_LIST_S& product, int socket) {
    if (!is_within(socket, SOCKET_COUNT)) {
        return UNKNOWN_SOCKET;
    }
    if (!is_within(slot, SLOT_COUNT)) {
        return UNKNOWN_SLOT;
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    PROD_LIST_S& record = m_products[socket][static_cast<std::size_t>(slot)];
    record = product;
    terminate(record.prod_family);
    terminate(record.prod_string);
    return DONE;
}

Memory_device::Result Memory_device::set_alias(prod_id_t product, const std::string& alias) {
    if (alias.size() > MAX_ALIAS_LENGTH) {
        return OUT_OF_BOUNDS;
    }
    if (alias.find('\0') != std::string::npos) {
        return WRONG_TYPE;
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_aliases[product] = alias;
    return DONE;
}

prod_id_t Memory_device::product_id() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_product_id;
}

int Memory_device::current_socket() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_socket;
}

void Memory_device::set_use_selection_local(bool in_force) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_use_selection_local = in_force;
}

// ---- faults and records

void Memory_device::set_fault(Fault fault) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_fault = std::move(fault);
}

void Memory_device::set_write_listener(Write_listener listener) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_write_listener = std::move(listener);
}

void Memory_device::set_change_listener(Change_listener listener) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_change_listener = std::move(listener);
}

std::vector<Memory_device::Write> Memory_device::writes() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return as_vector(m_writes);
}

std::vector<Memory_device::Failed_read> Memory_device::failed_reads() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return as_vector(m_failed_reads);
}

bool Memory_device::last_read_failed(uint32_t pid, uint32_t varidx) const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const Parameter* const parameter = find(pid, varidx);
    return parameter == nullptr || parameter->last_read_failed;
}

void Memory_device::clear_records() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_writes.clear();
    m_failed_reads.clear();
}

const char* Memory_device::result_text(int result) {
    static constexpr const char* TEXTS[] = {
        "done",           "unknown parameter", "wrong type",   "wrong size",       "out of bounds",
        "unknown socket", "unknown product",   "unknown slot", "already declared", "no buffer"};
    static_assert(std::size(TEXTS) == NO_BUFFER + 1, "a text for each result");
    return is_within(result, static_cast<int>(std::size(TEXTS))) ? TEXTS[result] : "device error";
}

// The callback may itself use the device, so it runs without the lock.
int Memory_device::fault_of(Operation operation) const {
    Fault fault;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (operation.kind != Operation_kind::SELECT_SOCKET) {
            operation.socket = m_socket;
        }
        fault = m_fault;
    }
    return fault ? fault(operation) : DONE;
}

// ---- the data interface

int Memory_device::Get(unsigned int pid, unsigned int varidx, void* buffer, unsigned int length) {
    int result = fault_of({Operation_kind::READ, pid, varidx, length, 0, 0});
    const std::lock_guard<std::mutex> lock(m_mutex);
    Parameter* const parameter = find(pid, varidx);
    if (result == DONE) {
        result = read(parameter, buffer, length);
    }
    if (parameter != nullptr) {
        parameter->last_read_failed = result != DONE;
    }
    if (result != DONE) {
        remember(m_failed_reads, {pid, varidx, result});
    }
    return result;
}

int Memory_device::Set(unsigned int pid, unsigned int varidx, const void* buffer,
                       unsigned int length) {
    Write write{pid, varidx, INVALID_TYPE, std::string(), DONE};
    write.result = fault_of({Operation_kind::WRITE, pid, varidx, length, 0, 0});
    Write_listener listener;
    change([&] {
        Parameter* const parameter = find(pid, varidx);
        write.type = parameter != nullptr ? parameter->type : INVALID_TYPE;
        write.value = value_text(parameter, buffer, length);
        if (write.result == DONE) {
            write.result = store(parameter, buffer, length);
        }
        remember(m_writes, write);
        listener = m_write_listener;
        return DONE;
    });
    if (listener) {
        listener(write);
    }
    return write.result;
}

int Memory_device::Get_prod_list(PROD_LIST_S* list, bool remote, bool /*refresh*/) {
    const int result = fault_of({Operation_kind::PRODUCT_LIST, 0, 0, 0, 0, 0});
    if (result != DONE) {
        return result;
    }
    if (list == nullptr) {
        return NO_BUFFER;
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto products = m_products.find(remote ? m_socket : 0);
    const Product_list empty{};
    const Product_list& source = products != m_products.end() ? products->second : empty;
    std::copy(source.begin(), source.end(), list);
    return DONE;
}

int Memory_device::Set_product_id(prod_id_t product) {
    const int result = fault_of({Operation_kind::PRODUCT_ID, 0, 0, 0, 0, product});
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (result == DONE) {
        m_product_id = product;
    }
    return result;
}

int Memory_device::Get_prod_alias_name(char* name, prod_id_t product) {
    const int result = fault_of({Operation_kind::ALIAS, 0, 0, 0, 0, product});
    if (result != DONE) {
        return result;
    }
    if (name == nullptr) {
        return NO_BUFFER;
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto alias = m_aliases.find(product);
    if (alias == m_aliases.end()) {
        return UNKNOWN_PRODUCT;
    }
    std::memcpy(name, alias->second.c_str(), alias->second.size() + 1);
    return DONE;
}

int Memory_device::Is_current_selection_local() {
    return current_socket();
}

bool Memory_device::Is_use_selection_local() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_use_selection_local;
}

int Memory_device::setCurrentRouterSocket(int socket) {
    const int result = fault_of({Operation_kind::SELECT_SOCKET, 0, 0, 0, socket, 0});
    if (result != DONE) {
        return result;
    }
    if (!is_within(socket, SOCKET_COUNT)) {
        return UNKNOWN_SOCKET;
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_socket = socket;
    return DONE;
}

// ---- parameters; the lock is held

Memory_device::Parameter* Memory_device::find(uint32_t pid, uint32_t varidx) {
    const auto found = m_parameters.find(Key(pid, varidx));
    return found != m_parameters.end() ? &found->second : nullptr;
}

const Memory_device::Parameter* Memory_device::find(uint32_t pid, uint32_t varidx) const {
    const auto found = m_parameters.find(Key(pid, varidx));
    return found != m_parameters.end() ? &found->second : nullptr;
}

Memory_device::Result Memory_device::check_number(const Parameter& parameter, int32_t value) {
    if (parameter.type != INTEGER) {
        return WRONG_TYPE;
    }
    return value >= parameter.min && value <= parameter.max ? DONE : OUT_OF_BOUNDS;
}

Memory_device::Result Memory_device::check_text(const Parameter& parameter,
                                                const std::string& value) {
    if (parameter.type != STRING || value.find('\0') != std::string::npos) {
        return WRONG_TYPE;
    }
    return value.size() <= parameter.max_length ? DONE : OUT_OF_BOUNDS;
}

Memory_device::Result Memory_device::read(const Parameter* parameter, void* buffer,
                                          std::size_t length) {
    if (parameter == nullptr) {
        return UNKNOWN_PARAMETER;
    }
    if (buffer == nullptr) {
        return NO_BUFFER;
    }
    if (parameter->type == STRING) {
        if (length <= parameter->text->size()) {
            return WRONG_SIZE;
        }
        std::memcpy(buffer, parameter->text->c_str(), parameter->text->size() + 1);
        return DONE;
    }
    if (length != sizeof parameter->number) {
        return WRONG_SIZE;
    }
    std::memcpy(buffer, &parameter->number, sizeof parameter->number);
    return DONE;
}

Memory_device::Result Memory_device::store(Parameter* parameter, const void* buffer,
                                           std::size_t length) {
    if (parameter == nullptr) {
        return UNKNOWN_PARAMETER;
    }
    if (buffer == nullptr && length != 0) {
        return NO_BUFFER;
    }
    return parameter->type == STRING ? store_text(*parameter, buffer, length)
                                     : store_number(*parameter, buffer, length);
}

Memory_device::Result Memory_device::store_number(Parameter& parameter, const void* buffer,
                                                  std::size_t length) {
    int32_t number = 0;
    if (length != sizeof number) {
        return WRONG_SIZE;
    }
    std::memcpy(&number, buffer, sizeof number);
    return keep_number(parameter, number);
}

Memory_device::Result Memory_device::store_text(Parameter& parameter, const void* buffer,
                                                std::size_t length) {
    if (length > parameter.max_length) {
        return OUT_OF_BOUNDS;
    }
    const std::string text =
        length != 0 ? std::string(static_cast<const char*>(buffer), length) : std::string();
    return keep_text(parameter, text);
}

Memory_device::Result Memory_device::keep_number(Parameter& parameter, int32_t value) {
    const Result result = check_number(parameter, value);
    if (result == DONE) {
        m_has_changed = m_has_changed || parameter.number != value;
        parameter.number = value;
    }
    return result;
}

Memory_device::Result Memory_device::keep_text(Parameter& parameter, const std::string& value) {
    const Result result = check_text(parameter, value);
    if (result == DONE) {
        m_has_changed = m_has_changed || *parameter.text != value;
        *parameter.text = value;
    }
    return result;
}

std::string Memory_device::value_text(const Parameter* parameter, const void* buffer,
                                      std::size_t length) {
    if (buffer == nullptr) {
        return std::string();
    }
    if (parameter != nullptr && parameter->type == INTEGER && length == sizeof(int32_t)) {
        int32_t number = 0;
        std::memcpy(&number, buffer, sizeof number);
        return std::to_string(number);
    }
    const std::size_t kept = std::min<std::size_t>(length, MAX_STRING_LENGTH);
    const std::string bytes(static_cast<const char*>(buffer), kept);
    const bool is_text = parameter != nullptr && parameter->type == STRING;
    return (is_text ? Memory_device::text_of_write(bytes) : in_hexadecimal(bytes)) +
           (kept < length ? "..." : "");
}

}  // namespace frontpanel
