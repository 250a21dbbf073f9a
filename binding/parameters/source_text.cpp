#include "parameters/source_text.h"

#include <cstddef>
#include <cstdio>

namespace frontpanel {
namespace {

constexpr std::size_t SHOWN_LENGTH = 40;  // an error stays on one line

}  // namespace

std::string shown_byte(char byte) {
    if (byte >= ' ' && byte <= '~') {
        return std::string(1, byte);
    }
    char escape[5];
    std::snprintf(escape, sizeof escape, "\\x%02x",
                  static_cast<unsigned int>(static_cast<unsigned char>(byte)));
    return escape;
}

std::string quoted_source(std::string_view source) {
    std::string text = "\"";
    for (const char byte : source.substr(0, SHOWN_LENGTH)) {
        text += shown_byte(byte);
    }
    return text + (source.size() > SHOWN_LENGTH ? "...\"" : "\"");
}

}  // namespace frontpanel
