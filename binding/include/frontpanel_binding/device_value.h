// Values of a device, read and written by their type.
#ifndef FRONTPANEL_BINDING_DEVICE_VALUE_H
#define FRONTPANEL_BINDING_DEVICE_VALUE_H

#include <cstdint>
#include <optional>

#include <frontpanel_binding/rule_verdict.h>

namespace frontpanel {

// The index of two levels that has this variable index.
Index_t index_of(uint32_t varidx);

// Empty when the device cannot deliver it.
std::optional<return_s> read_value(Data_interface& device, const Device_variable& variable,
                                   RETURN_TYPE type);
// 0, or what the device returns.
int write_value(Data_interface& device, const Device_variable& variable, const return_s& value);
bool is_same_value(const return_s& left, const return_s& right);

}  // namespace frontpanel

#endif
