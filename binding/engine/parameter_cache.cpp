#include "engine/parameter_cache.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>

#include <frontpanel_base/value_state.h>
#include <frontpanel_binding/parameter_address.h>

#include "engine/cascade.h"
#include "engine/engine.h"

namespace frontpanel::binding_engine {
namespace {

template <typename Item>
bool contains(const std::vector<Item>& items, const Item& item) {
    return std::find(items.begin(), items.end(), item) != items.end();
}

template <typename Item>
void erase_one(std::vector<Item>& items, const Item& item) {
    const auto found = std::find(items.begin(), items.end(), item);
    if (found != items.end()) {
        items.erase(found);
    }
}

void write_record(EntryModelCache& record, const Cached_parameter& parameter) {
    record.model_type = parameter.rt;
    record.value_int = parameter.number;
    if (parameter.rt == STRING) {
        const std::size_t length =
            std::min(parameter.text.size(), std::size(record.value_string) - 1);
        parameter.text.copy(record.value_string, length);
        record.value_string[length] = '\0';
    }
}

}  // namespace

var_index_s normal_key(var_index_s key) {
    const std::size_t used =
        std::min<std::size_t>(key.index.m_index_num, std::size(key.index.m_index));
    std::fill(key.index.m_index + used, std::end(key.index.m_index), uint16_t{0});
    return key;
}

std::string shown_address(const var_index_s& key) {
    return "[" + address_text(key.var, key.index) + "]";
}

Parameter_cache::Parameter_cache(Data_interface* iface, Cascade& cascade)
    : m_interface(iface), m_cascade(cascade) {}

Data_interface* Parameter_cache::interface() const {
    if (m_caching_interface != nullptr) {
        return m_caching_interface;
    }
    return m_interface != nullptr ? m_interface : VarIdDataInfStore::m_pDataAccessInf;
}

void Parameter_cache::set_caching_interface(Data_interface* iface) {
    m_caching_interface = iface;
    for (auto& [place, variable] : m_variables) {
        for (Cached_parameter* const parameter : {variable.number.get(), variable.text.get()}) {
            if (parameter != nullptr) {
                parameter->is_kept = false;  // whatever went by another way was not seen
            }
        }
    }
}

void Parameter_cache::end_caching_interface(const Data_interface* iface) {
    if (m_caching_interface == iface) {
        set_caching_interface(nullptr);
    }
}

// ---- parameters and who refers to them

Cached_parameter& Parameter_cache::at(const var_index_s& named) {
    const var_index_s key = normal_key(named);
    const uint32_t varidx = varidx_of(key.index);
    Variable& variable = m_variables[address(key.var, varidx)];
    std::unique_ptr<Cached_parameter>& parameter =
        key.rt == STRING ? variable.text : variable.number;
    if (parameter == nullptr) {
        parameter = std::make_unique<Cached_parameter>();
        parameter->pid = key.var;
        parameter->varidx = varidx;
        parameter->rt = key.rt == STRING ? STRING : INTEGER;
        if (parameter->rt == STRING) {
            parameter->text.reserve(MAX_STRING_LENGTH);
        }
    }
    add_record(*parameter, key);
    return *parameter;
}

// A commit leaves an empty record in the map for a parameter without dependants: it is filled here.
void Parameter_cache::add_record(Cached_parameter& parameter, const var_index_s& key) {
    Cached_parameter::Record* const record = &*m_map.try_emplace(key).first;
    if (!contains(parameter.records, record)) {
        parameter.records.push_back(record);
        write_record(record->second, parameter);
        record->second.binding_dependant_entries = parameter.listed;
    }
}

Cached_parameter* Parameter_cache::find(const var_index_s& key) {
    const auto variable = m_variables.find(address(key.var, varidx_of(normal_key(key).index)));
    if (variable == m_variables.end()) {
        return nullptr;
    }
    return key.rt == STRING ? variable->second.text.get() : variable->second.number.get();
}

void Parameter_cache::add_reader(Cached_parameter& parameter, Engine& engine) {
    parameter.readers.push_back(&engine);
    update_polling(parameter);
}

void Parameter_cache::remove_reader(Cached_parameter& parameter, Engine& engine) {
    erase_one(parameter.readers, &engine);
    m_cascade.reader_removed(parameter);
    update_polling(parameter);
}

void Parameter_cache::list_dependant(Cached_parameter& parameter, Data_entry* entry) {
    parameter.listed.push_back(entry);
    for (Cached_parameter::Record* const record : parameter.records) {
        record->second.binding_dependant_entries.push_back(entry);
    }
}

void Parameter_cache::unlist_dependant(Cached_parameter& parameter, Data_entry* entry) {
    erase_one(parameter.listed, entry);
    for (Cached_parameter::Record* const record : parameter.records) {
        erase_one(record->second.binding_dependant_entries, entry);
    }
}

void Parameter_cache::forget_dependants() {
    for (const auto& [place, variable] : m_variables) {
        for (Cached_parameter* const parameter : {variable.number.get(), variable.text.get()}) {
            if (parameter == nullptr) {
                continue;
            }
            parameter->listed.clear();
            for (Cached_parameter::Record* const record : parameter->records) {
                record->second.binding_dependant_entries.clear();
            }
            parameter->readers.clear();
            m_cascade.reader_removed(*parameter);
            update_polling(*parameter);
        }
    }
}

void Parameter_cache::add_owner(Cached_parameter& parameter, const var_index_s& key,
                                Engine& engine) {
    parameter.owners.push_back(&engine);
    EntryModelCache& record = m_map[normal_key(key)];
    if (record.monitored_entry == nullptr && engine.entry() != nullptr) {
        record.monitored_entry = engine.entry();
        record.entry_type = engine.entry_type();
    }
}

void Parameter_cache::remove_owner(Cached_parameter& parameter, Engine& engine, Data_entry* entry) {
    erase_one(parameter.owners, &engine);
    for (Cached_parameter::Record* const record : parameter.records) {
        if (entry != nullptr && record->second.monitored_entry == entry) {
            record->second.monitored_entry = nullptr;
        }
    }
}

void Parameter_cache::watch(Cached_parameter& parameter) {
    ++parameter.watchers;
    update_polling(parameter);
}

void Parameter_cache::unwatch(Cached_parameter& parameter) {
    parameter.watchers = std::max(0, parameter.watchers - 1);
    update_polling(parameter);
}

void Parameter_cache::update_polling(Cached_parameter& parameter) {
    const bool is_wanted = !parameter.readers.empty() || parameter.watchers > 0;
    if (is_wanted && parameter.polled_at == 0) {
        m_polled.push_back(&parameter);
        parameter.polled_at = m_polled.size();
    } else if (!is_wanted && parameter.polled_at != 0) {
        m_polled[parameter.polled_at - 1] = m_polled.back();
        m_polled.back()->polled_at = parameter.polled_at;
        m_polled.pop_back();
        parameter.polled_at = 0;
    }
}

// ---- values

bool Parameter_cache::is_current(const Cached_parameter& parameter) const {
    return m_caching_interface != nullptr && parameter.is_kept && parameter.socket == m_socket &&
           parameter.kept_in == m_polls;
}

bool Parameter_cache::bring_up_to_date(Cached_parameter& parameter) {
    if (is_current(parameter)) {
        return true;
    }
    if (parameter.read_in == m_evaluation) {
        return parameter.failure == 0;
    }
    parameter.read_in = m_evaluation;
    return read(parameter) == 0;
}

std::string Parameter_cache::failure_text(const Cached_parameter& parameter) const {
    if (parameter.failure == NO_INTERFACE) {
        return "no data interface";
    }
    const auto* const states = dynamic_cast<const Value_states*>(interface());
    const auto state = states != nullptr ? states->state(parameter.pid, parameter.varidx)
                                         : std::optional<Value_state>();
    return state && !state->reason.empty() ? state->reason
                                           : "device result " + std::to_string(parameter.failure);
}

int Parameter_cache::read(Cached_parameter& parameter) {
    Data_interface* const iface = interface();
    char buffer[MAX_STRING_LENGTH + 1] = {};
    const std::size_t length = parameter.rt == STRING ? sizeof buffer : sizeof parameter.number;
    const int result = iface != nullptr ? iface->Get(parameter.pid, parameter.varidx, buffer,
                                                     static_cast<unsigned int>(length))
                                        : NO_INTERFACE;
    if (result != 0) {
        note_failure(parameter.pid, parameter.varidx, result);
        parameter.failure = result;
        return result;
    }
    buffer[MAX_STRING_LENGTH] = '\0';  // whatever the device wrote
    keep_read(parameter.pid, parameter.varidx, buffer, length);
    return 0;
}

const std::vector<var_index_s>& Parameter_cache::poll(std::size_t at_most) {
    m_changed.clear();
    ++m_polls;
    begin_evaluation();
    m_is_polling = true;
    // By number: a callback of the device may take parameters off the list.
    const std::size_t count = std::min(at_most, m_polled.size());
    for (std::size_t i = 0; i < count && !m_polled.empty(); ++i) {
        m_next_polled = m_next_polled < m_polled.size() ? m_next_polled : 0;
        Cached_parameter& parameter = *m_polled[m_next_polled++];
        parameter.read_in = m_evaluation;
        read(parameter);
    }
    m_is_polling = false;
    return m_changed;
}

void Parameter_cache::read_again(const std::vector<Cached_parameter*>& parameters) {
    begin_evaluation();
    for (Cached_parameter* const parameter : parameters) {
        parameter->read_in = m_evaluation;
        read(*parameter);
    }
}

void Parameter_cache::keep_read(uint32_t pid, uint32_t varidx, const void* buffer,
                                std::size_t length) {
    const auto variable = m_variables.find(address(pid, varidx));
    if (variable == m_variables.end()) {
        return;
    }
    if (variable->second.number != nullptr && length == sizeof(int32_t)) {
        int32_t value = 0;
        std::memcpy(&value, buffer, sizeof value);
        keep_number(*variable->second.number, value);
    }
    if (variable->second.text != nullptr) {
        const char* const text = static_cast<const char*>(buffer);
        const std::size_t text_length = strnlen(text, length);
        // A text that fills a short buffer may go on on the device.
        if (text_length < length || length > MAX_STRING_LENGTH) {
            keep_text(*variable->second.text, std::string_view(text, text_length));
        }
    }
}

void Parameter_cache::keep_write(uint32_t pid, uint32_t varidx, const void* bytes,
                                 std::size_t length) {
    m_cascade.write_done(pid, varidx, {static_cast<const char*>(bytes), length});
    const auto variable = m_variables.find(address(pid, varidx));
    if (variable == m_variables.end()) {
        return;
    }
    if (variable->second.number != nullptr && length == sizeof(int32_t)) {
        int32_t value = 0;
        std::memcpy(&value, bytes, sizeof value);
        m_cascade.written(*variable->second.number);
        keep_number(*variable->second.number, value);
    } else if (variable->second.number != nullptr) {
        variable->second.number->is_kept = false;  // what the device makes of it is not known
    }
    if (variable->second.text != nullptr) {
        const char* const text = static_cast<const char*>(bytes);
        m_cascade.written(*variable->second.text);
        keep_text(*variable->second.text,
                  std::string_view(text, length == 0 ? 0 : strnlen(text, length)));
    }
}

void Parameter_cache::note_failed_write(uint32_t pid, uint32_t varidx, std::string_view bytes,
                                        int result) {
    note_failure(pid, varidx, result);
    m_cascade.write_failed(pid, varidx, bytes, result);
}

void Parameter_cache::keep_number(Cached_parameter& parameter, int32_t value) {
    const bool changed = !parameter.is_known || parameter.failure != 0 || parameter.number != value;
    parameter.number = value;
    kept(parameter, changed);
}

void Parameter_cache::keep_text(Cached_parameter& parameter, std::string_view value) {
    value = value.substr(0, MAX_STRING_LENGTH);
    const bool changed = !parameter.is_known || parameter.failure != 0 || parameter.text != value;
    parameter.text.assign(value);
    kept(parameter, changed);
}

// Recovery after a failed read counts as a change.
void Parameter_cache::kept(Cached_parameter& parameter, bool changed) {
    parameter.is_known = true;
    parameter.failure = 0;
    parameter.is_awaited = false;
    parameter.is_kept = true;
    parameter.kept_in = m_polls;
    parameter.socket = m_socket;
    if (!changed) {
        return;
    }
    for (Cached_parameter::Record* const record : parameter.records) {
        write_record(record->second, parameter);
    }
    if (m_is_polling) {
        m_cascade.device_changed(parameter);
    } else {
        for (Engine* const reader : parameter.readers) {
            m_cascade.input_changed(*reader);
        }
    }
    if (m_is_polling && !parameter.records.empty()) {
        m_changed.push_back(parameter.records.front()->first);
    }
}

template <typename Act>
void Parameter_cache::for_each_cached(uint32_t pid, uint32_t varidx, Act act) {
    const auto variable = m_variables.find(address(pid, varidx));
    if (variable == m_variables.end()) {
        return;
    }
    for (Cached_parameter* const parameter :
         {variable->second.number.get(), variable->second.text.get()}) {
        if (parameter != nullptr) {
            act(*parameter);
        }
    }
}

// The value stays, but the next evaluation that needs it asks the device again.
void Parameter_cache::note_failure(uint32_t pid, uint32_t varidx, int result) {
    for_each_cached(pid, varidx, [result](Cached_parameter& parameter) {
        parameter.is_kept = false;
        parameter.failure = result;
    });
}

// When the wait ends without a value, the rules that read the parameter are evaluated again: now it is a fault.
void Parameter_cache::note_awaited(uint32_t pid, uint32_t varidx, bool is_awaited) {
    for_each_cached(pid, varidx, [this, is_awaited](Cached_parameter& parameter) {
        if (std::exchange(parameter.is_awaited, is_awaited) && !is_awaited) {
            for (Engine* const reader : parameter.readers) {
                m_cascade.input_changed(*reader);
            }
        }
    });
}

}  // namespace frontpanel::binding_engine
