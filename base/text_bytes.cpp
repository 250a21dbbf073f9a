#include <frontpanel_base/text_bytes.h>

#include <array>
#include <cstdio>

#include <frontpanel_base/character_set.h>

namespace frontpanel {
namespace {

constexpr std::size_t LONGEST_REST = 3;  // of a character behind its first byte

bool continues_character(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

void append_escaped(std::string& text, std::string_view bytes) {
    for (const char byte : bytes) {
        std::array<char, 5> escape{};
        std::snprintf(escape.data(), escape.size(), "\\x%02x",
                      static_cast<unsigned int>(static_cast<unsigned char>(byte)));
        text += escape.data();
    }
}

}  // namespace

std::string escaped(std::string_view text, Keeps_character keeps) {
    std::string result;
    for (const char32_t character : characters_of(text)) {
        const std::size_t size = character == DAMAGED ? 1 : utf8_of(character).size();
        const bool is_kept = keeps != nullptr ? keeps(character) : !is_control(character);
        if (character != DAMAGED && is_kept) {
            result += text.substr(0, size);
        } else {
            append_escaped(result, text.substr(0, size));
        }
        text.remove_prefix(size);
    }
    return result;
}

std::string_view beginning_of(std::string_view text, std::size_t most) {
    if (text.size() <= most) {
        return text;
    }
    std::size_t size = most;
    while (size > 0 && most - size < LONGEST_REST && continues_character(text[size])) {
        --size;
    }
    return text.substr(0, continues_character(text[size]) ? most : size);
}

std::string quoted_beginning(std::string_view text, std::size_t most) {
    const std::string_view beginning = beginning_of(text, most);
    return "\"" + std::string(beginning) + (beginning.size() < text.size() ? "...\"" : "\"");
}

}  // namespace frontpanel
