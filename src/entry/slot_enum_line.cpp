#include "slot_enum_line.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace slot_enum_line {
namespace {

// Blanks reach one further than a finished line, up to the character behind its end.
constexpr std::size_t LAST = LINE_SIZE - 1;

std::size_t fill(Line& line, int length) {
    const std::size_t used = std::min(static_cast<std::size_t>(std::max(length, 0)), LAST);
    std::memset(line + used, ' ', LAST - used);
    line[LAST] = '\0';
    return used;
}

}  // namespace

bool is_fitted(const PROD_LIST_S& record) {
    return record.prod_id != 0 && record.prod_family[0] != '\0';
}

void write_empty(Line& line, int slot) {
    fill(line, std::snprintf(line, sizeof line, "%d", slot));
}

std::size_t write_product(Line& line, int slot, const PROD_LIST_S& record) {
    constexpr int NAME_SIZE = sizeof record.prod_string;
    return fill(line,
                std::snprintf(line, sizeof line, "%d:%.*s", slot, NAME_SIZE, record.prod_string));
}

void write_alias(Line& line, std::size_t used, const char* alias) {
    const std::size_t length = strnlen(alias, ALIAS_SIZE - 1);
    const std::size_t room = LINE_SIZE - used;
    if (length <= room) {
        // The room counts two characters too many, so an alias that fills it covers the end of the name.
        // Intended: all aliases end in one column.
        std::memcpy(line + LINE_LENGTH - length, alias, length);
        return;
    }
    // An alias that is too long shows only what exceeds the room, taken backwards from the room's end, and
    // loses the last of these to the line's end. Intended: installed panels show it so.
    const std::size_t count = std::min({length - room, room, LINE_LENGTH + 1});
    for (std::size_t k = 0; k < count; ++k) {
        line[LINE_LENGTH - k] = alias[room - 1 - k];
    }
}

void finish(Line& line) {
    line[LINE_LENGTH] = '\0';
}

}  // namespace slot_enum_line
