#include <frontpanel_data/string_entry.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "../assertion.h"

namespace {

constexpr std::size_t BLOCK_LENGTH_MAX = 3;

// A decimal number that prints back the same: this refuses leading zeros, a plus sign and letters. A minus sign
// is accepted on purpose, since callers depend on it.
bool valid_block(const char* block) {
    if (std::strlen(block) > BLOCK_LENGTH_MAX) {
        return false;
    }
    const int value = static_cast<int>(std::strtol(block, nullptr, 10));
    if (value > Ip_entry::IP_VALUE_MAX) {
        return false;
    }
    char printed[16];
    std::snprintf(printed, sizeof printed, "%d", value);
    return std::strcmp(printed, block) == 0;
}

}  // namespace

Ip_entry::Ip_entry(const char* name, const char* description, unsigned int pid,
                   const Index_t* index, Data_entry* parent, Data_access access, int visible,
                   bool active, int shortcut, Data_entry* next, Data_entry* previous,
                   Data_entry* child)
    : String_entry(name, description, pid, index, IP_STRING_MAX_LENGTH, parent, access, visible,
                   active, shortcut, next, previous, child),
      connect_status_name() {}

Ip_entry::~Ip_entry() = default;

std::string Ip_entry::getProperties(int flags) {
    return Data_entry::getProperties(flags);
}

Data_entry::Entry_type Ip_entry::Get_entry_type() const {
    return IP_LEAF;
}

RETURN_TYPE Ip_entry::Get_return_type_int_or_string() const {
    return STRING;
}

int Ip_entry::Get_display_string(char* buffer, unsigned int length) {
    FRONTPANEL_ASSERT(buffer && length, "buffer&&length");
    // Strictly longer on purpose: an address that fills the line scrolls, which a text does not.
    if (length > m_model.Get_current_length()) {
        return Get_value(buffer, length);
    }
    return show_marquee(buffer, length);
}

int Ip_entry::Inc_value(int value, int position) {
    return m_model.Inc_value(value, position);
}

char* Ip_entry::Get_name() {
    constexpr unsigned int LINE_LENGTH = 16;
    char address[LINE_LENGTH + 1] = {};  // the marquee terminates behind its last character
    Get_value(address, LINE_LENGTH);
    Get_display_string(address, LINE_LENGTH);
    const char* const mark = isRemoteConnected(address) ? "[C]" : "[ ]";
    std::memset(connect_status_name, 0, sizeof connect_status_name);
    std::snprintf(connect_status_name, sizeof connect_status_name, "%s%s", mark, m_name);
    return connect_status_name;
}

bool Ip_entry::Valid_ip(const char* ip) {
    FRONTPANEL_ASSERT(ip, "ip");
    char work[32] = {};
    const std::size_t length = std::strlen(ip);
    if (length < static_cast<std::size_t>(IP_STRING_MIN_LENGTH) || length >= sizeof work) {
        return false;
    }
    std::memcpy(work, ip, length);
    int blocks = 0;
    char* rest = nullptr;
    for (const char* block = strtok_r(work, ".", &rest); block != nullptr;
         block = strtok_r(nullptr, ".", &rest)) {
        if (!valid_block(block)) {
            return false;
        }
        ++blocks;
    }
    return blocks == IP_STRING_MAX_BLOCK;
}
