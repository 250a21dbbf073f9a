#include <frontpanel_binding/caching_device.h>
#include <frontpanel_binding/write_journal.h>

#include <string_view>
#include <utility>

#include "engine/core.h"

namespace frontpanel {

Caching_device::Caching_device(Data_interface& device, std::shared_ptr<Binding_registry> registry)
    : m_device(device),
      m_sockets(dynamic_cast<Pdt_data_access*>(&device)),
      m_states(dynamic_cast<const Value_states*>(&device)),
      m_registry(std::move(registry)) {
    go_home = device.go_home;
    lock_and_dim = device.lock_and_dim;
    time_for_timeout = device.time_for_timeout;
    m_registry->core().parameters.set_caching_interface(this);
}

Caching_device::~Caching_device() {
    m_registry->core().parameters.end_caching_interface(this);
}

bool Caching_device::last_read_failed(uint32_t pid, uint32_t varidx) const {
    return m_failed_reads.count(address(pid, varidx)) > 0;
}

std::optional<Value_state> Caching_device::state(uint32_t pid, uint32_t varidx) const {
    if (m_states == nullptr) {
        return std::nullopt;
    }
    std::optional<Value_state> now = m_states->state(pid, varidx);
    const auto kept = m_doubtful.find(address(pid, varidx));
    const bool is_newer = now && now->freshness == Freshness::FRESH && !now->is_writing;
    return is_newer && kept != m_doubtful.end() ? kept->second : now;
}

void Caching_device::keep_state(uint32_t pid, uint32_t varidx) {
    const std::optional<Value_state> state =
        m_states != nullptr ? m_states->state(pid, varidx) : std::nullopt;
    if (state && (state->freshness != Freshness::FRESH || state->is_writing)) {
        m_doubtful[address(pid, varidx)] = *state;
    } else if (!m_doubtful.empty()) {
        m_doubtful.erase(address(pid, varidx));
    }
}

// The device may have refused the value before it can be asked.
void Caching_device::keep_written(uint32_t pid, uint32_t varidx) {
    std::optional<Value_state> state =
        m_states != nullptr ? m_states->state(pid, varidx) : std::nullopt;
    if (state) {
        state->is_writing = true;
        m_doubtful[address(pid, varidx)] = *state;
    }
}

void Caching_device::Init() {
    m_device.Init();
}

int Caching_device::Get(unsigned int pid, unsigned int varidx, void* buffer, unsigned int length) {
    // Before the value is read: one that arrives in between is newer than its state, never older.
    keep_state(pid, varidx);
    const int result = m_device.Get(pid, varidx, buffer, length);
    if (result == 0) {
        m_failed_reads.erase(address(pid, varidx));
        m_registry->core().parameters.keep_read(pid, varidx, buffer, length);
    } else {
        m_failed_reads.insert(address(pid, varidx));
        m_registry->core().parameters.note_failure(pid, varidx, result);
        const std::optional<Value_state> known = state(pid, varidx);
        m_registry->core().parameters.note_awaited(
            pid, varidx, known && known->freshness == Freshness::UNKNOWN && !known->has_failed);
    }
    return result;
}

int Caching_device::Set(unsigned int pid, unsigned int varidx, const void* buffer,
                        unsigned int length) {
    if (m_journal != nullptr) {
        m_journal->note(pid, varidx, length);
    }
    const int result = m_device.Set(pid, varidx, buffer, length);
    if (result == 0) {
        keep_written(pid, varidx);
        m_registry->core().parameters.keep_write(pid, varidx, buffer, length);
    } else {
        const std::string_view bytes(static_cast<const char*>(buffer), length);
        m_registry->core().parameters.note_failed_write(pid, varidx, bytes, result);
    }
    return result;
}

int Caching_device::Get_prod_list(PROD_LIST_S* list, bool remote, bool refresh) {
    return m_device.Get_prod_list(list, remote, refresh);
}

int Caching_device::Set_product_id(prod_id_t product) {
    return m_device.Set_product_id(product);
}

int Caching_device::Get_prod_alias_name(char* name, prod_id_t product) {
    return m_device.Get_prod_alias_name(name, product);
}

int Caching_device::Is_current_selection_local() {
    return m_sockets != nullptr ? m_sockets->Is_current_selection_local() : LOCAL_SOCKET;
}

bool Caching_device::Is_use_selection_local() {
    return m_sockets != nullptr && m_sockets->Is_use_selection_local();
}

int Caching_device::setCurrentRouterSocket(int socket) {
    if (m_sockets == nullptr) {
        return socket == LOCAL_SOCKET ? 0 : -1;
    }
    const int result = m_sockets->setCurrentRouterSocket(socket);
    if (result == 0) {
        m_registry->core().parameters.select_socket(socket);
    }
    return result;
}

}  // namespace frontpanel
