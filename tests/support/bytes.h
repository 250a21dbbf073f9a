// Values as the bytes that travel through the data interface, and bytes as text for messages.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_BYTES_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_BYTES_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

namespace support {

// The four bytes of an integer in memory order.
inline std::string bytes_of(int32_t value) {
    std::string bytes(sizeof value, '\0');
    std::memcpy(&bytes[0], &value, sizeof value);
    return bytes;
}

inline std::string bytes_of(const void* data, std::size_t length) {
    return length == 0 ? std::string() : std::string(static_cast<const char*>(data), length);
}

// Bytes as "05 00 00 00".
inline std::string hex(const std::string& bytes) {
    static const char* const DIGITS = "0123456789abcdef";
    std::string text;
    for (const char byte : bytes) {
        const unsigned int value = static_cast<unsigned char>(byte);
        if (!text.empty()) {
            text += ' ';
        }
        text += DIGITS[value / 16];
        text += DIGITS[value % 16];
    }
    return text;
}

}  // namespace support

#endif
