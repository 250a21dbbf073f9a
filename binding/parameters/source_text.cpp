#include "parameters/source_text.h"

#include <cstddef>

#include <frontpanel_base/character_set.h>
#include <frontpanel_base/text_bytes.h>

namespace frontpanel {
namespace {

constexpr std::size_t SHOWN_LENGTH = 40;  // an error stays on one line
constexpr std::size_t LONGEST_CHARACTER = 4;

}  // namespace

std::string shown_character(std::string_view source) {
    const std::u32string characters = characters_of(source.substr(0, LONGEST_CHARACTER));
    const bool is_damaged = characters.front() == DAMAGED;
    const std::size_t size = is_damaged ? 1 : utf8_of(characters.front()).size();
    return escaped(source.substr(0, size), has_one_column);
}

std::string quoted_source(std::string_view source) {
    const std::string_view beginning = beginning_of(source, SHOWN_LENGTH);
    return "\"" + escaped(beginning, has_one_column) +
           (beginning.size() < source.size() ? "...\"" : "\"");
}

}  // namespace frontpanel
