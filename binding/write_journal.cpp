#include <frontpanel_binding/write_journal.h>

#include <frontpanel_binding/device_value.h>

namespace frontpanel {

Write_journal::Write_journal(Caching_device& device, Binding_registry& registry)
    : m_device(device), m_registry(registry), m_done(registry.done_writes()) {
    m_device.set_journal(this);
}

Write_journal::~Write_journal() {
    m_device.set_journal(nullptr);
}

void Write_journal::note(unsigned int pid, unsigned int varidx, unsigned int length) {
    const Device_variable variable{pid, varidx};
    if (!m_noted.insert(variable).second) {
        return;
    }
    RETURN_TYPE type = m_registry.parameters().type_of({INVALID_TYPE, pid, index_of(varidx)});
    if (type == INVALID_TYPE) {
        type = length == sizeof(int32_t) ? INTEGER : STRING;
    }
    const std::optional<return_s> value = read_value(m_device, variable, type);
    m_held.push_back({variable, value.value_or(return_s()), value.has_value()});
}

bool Write_journal::put_back(const Held& held) {
    if (!held.is_known) {
        return false;
    }
    const std::optional<return_s> now = read_value(m_device, held.variable, held.value.rt);
    return (now && is_same_value(*now, held.value)) ||
           write_value(m_device, held.variable, held.value) == 0;
}

std::vector<Device_variable> Write_journal::put_back() {
    std::vector<Device_variable> failed;
    for (auto held = m_held.rbegin(); held != m_held.rend(); ++held) {
        if (!put_back(*held)) {
            failed.push_back(held->variable);
        }
    }
    m_held.clear();
    m_noted.clear();
    m_registry.set_done_writes(m_done);
    return failed;
}

}  // namespace frontpanel
