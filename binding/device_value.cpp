#include <frontpanel_binding/device_value.h>

#include <frontpanel_data/data_interface.h>

namespace frontpanel {

Index_t index_of(uint32_t varidx) {
    constexpr unsigned int LEVEL_BITS = 8;
    constexpr uint32_t LEVEL_MASK = 0xFF;
    Index_t index{};
    index.m_index_num = 2;
    index.m_index[0] = static_cast<uint16_t>(varidx & LEVEL_MASK);
    index.m_index[1] = static_cast<uint16_t>(varidx >> LEVEL_BITS);
    return index;
}

std::optional<return_s> read_value(Data_interface& device, const Device_variable& variable,
                                   RETURN_TYPE type) {
    return_s value;
    value.rt = type;
    char text[MAX_STRING_LENGTH + 1] = {};
    const bool is_text = type == STRING;
    void* const buffer = is_text ? static_cast<void*>(text) : &value.i;
    const auto length = static_cast<unsigned int>(is_text ? sizeof text : sizeof value.i);
    if (device.Get(variable.pid, variable.varidx, buffer, length) != 0) {
        return std::nullopt;
    }
    text[MAX_STRING_LENGTH] = '\0';  // whatever the device wrote
    value.s = text;
    return value;
}

int write_value(Data_interface& device, const Device_variable& variable, const return_s& value) {
    const bool is_text = value.rt == STRING;
    const void* const bytes = is_text ? static_cast<const void*>(value.s.data()) : &value.i;
    return device.Set(variable.pid, variable.varidx, bytes,
                      static_cast<unsigned int>(is_text ? value.s.size() : sizeof value.i));
}

bool is_same_value(const return_s& left, const return_s& right) {
    return left.rt == right.rt && (left.rt == STRING ? left.s == right.s : left.i == right.i);
}

}  // namespace frontpanel
