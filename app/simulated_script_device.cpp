#include "simulated_script_device.h"

#include <frontpanel_base/numbers.h>
#include <frontpanel_data/data_model.h>

namespace frontpanel {
namespace {

constexpr int FAULT_RESULT = 100;  // none of the device's own

std::string text_of(const Parameter_value& value) {
    const auto* const number = std::get_if<std::int32_t>(&value);
    return number != nullptr ? std::to_string(*number)
                             : Memory_device::text_of_write(std::get<std::string>(value));
}

}  // namespace

Simulated_script_device::Simulated_script_device(Memory_device& device, const Card_service* cards,
                                                 const Parameter_table& parameters,
                                                 Device_cache* driven)
    : m_device(device), m_cards(cards), m_parameters(parameters), m_driven(driven) {
    if (m_driven != nullptr) {
        m_driven->set_write_listener(
            [this](std::uint32_t pid, std::uint32_t varidx, const Parameter_value& value) {
                m_writes.push_back({{pid, varidx, ""}, text_of(value), false});
            });
    }
    m_device.set_write_listener([this](const Memory_device::Write& write) {
        m_writes.push_back({{write.pid, write.varidx, ""}, write.value, write.result != 0});
    });
    m_device.set_fault([this](const Memory_device::Operation& operation) {
        const bool write = operation.kind == Memory_device::Operation_kind::WRITE;
        const bool read = operation.kind == Memory_device::Operation_kind::READ;
        const bool fails =
            (read || write) && m_faults.count({write, operation.pid, operation.varidx}) != 0;
        return fails ? FAULT_RESULT : 0;
    });
}

Simulated_script_device::~Simulated_script_device() {
    m_device.set_write_listener(nullptr);
    m_device.set_fault(nullptr);
    if (m_driven != nullptr) {
        m_driven->set_write_listener(nullptr);
    }
}

std::optional<Parameter_name> Simulated_script_device::find(const std::string& name) const {
    const Parameter* const parameter = m_parameters.find(name);
    if (parameter == nullptr) {
        return std::nullopt;
    }
    unsigned int varidx = 0;
    Data_model::Index_convert(&parameter->index, varidx);
    return Parameter_name{parameter->pid, varidx, name};
}

bool Simulated_script_device::has_parameter(const Parameter_name& parameter) const {
    return m_device.type(parameter.pid, parameter.varidx) != INVALID_TYPE || is_driven(parameter);
}

bool Simulated_script_device::is_driven(const Parameter_name& parameter) const {
    return m_driven != nullptr && m_driven->has(parameter.pid, parameter.varidx);
}

std::string Simulated_script_device::why_fixed(const Parameter_name& parameter) const {
    return is_driven(parameter) ? "lives at a driver: use --simulate to change it or let it fail"
                                : "";
}

std::optional<std::string> Simulated_script_device::set(const Parameter_name& parameter,
                                                        const std::string& value) {
    const uint32_t pid = parameter.pid;
    const uint32_t varidx = parameter.varidx;
    int result = Memory_device::WRONG_TYPE;
    if (m_device.type(pid, varidx) == STRING) {
        result = m_device.set_text(pid, varidx, value);
    } else if (const auto number = parse_number<int32_t>(value)) {
        result = m_device.set_integer(pid, varidx, *number);
    }
    return result == 0 ? std::nullopt
                       : std::optional<std::string>(Memory_device::result_text(result));
}

void Simulated_script_device::set_fault(const Parameter_name& parameter, bool write, bool on) {
    const Fault fault(write, parameter.pid, parameter.varidx);
    if (on) {
        m_faults.insert(fault);
    } else {
        m_faults.erase(fault);
    }
}

std::optional<Script_device::Write> Simulated_script_device::oldest_write() const {
    return m_writes.empty() ? std::nullopt : std::optional<Write>(m_writes.front());
}

int Simulated_script_device::selected_option(int slot, int list) const {
    return m_cards == nullptr ? -1 : m_cards->selected(slot, list);
}

}  // namespace frontpanel
