#include "composition.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>
#include <tuple>

#include <frontpanel_base/character_set.h>
#include "code_blocks.h"
#include "composition_table.h"

namespace frontpanel {
namespace {

// More than any language puts on one letter: further marks are dropped.
constexpr std::size_t MOST_MARKS = 8;

// Accents and other marks of letters, variation selectors, and joiners.
constexpr Code_block COMBINING[] = {
    {0x300, 0x36F},     {0x483, 0x489},   {0x591, 0x5BD},   {0x5BF, 0x5BF},   {0x5C1, 0x5C2},
    {0x5C4, 0x5C5},     {0x5C7, 0x5C7},   {0x610, 0x61A},   {0x64B, 0x65F},   {0x670, 0x670},
    {0x6D6, 0x6DC},     {0x6DF, 0x6E4},   {0x6E7, 0x6E8},   {0x6EA, 0x6ED},   {0xE31, 0xE31},
    {0xE34, 0xE3A},     {0xE47, 0xE4E},   {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF}, {0x200C, 0x200D},
    {0x20D0, 0x20FF},   {0x302A, 0x302D}, {0x3099, 0x309A}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F},
    {0xE0100, 0xE01EF},
};
constexpr int USUAL_CLASS = 230;           // above the letter
constexpr char32_t FIRST_SYMBOL = 0x2000;  // without its stroke, U+2204 would mean the opposite

int class_of(char32_t mark) {
    for (const Mark_class& known : MARK_CLASSES) {
        if (known.mark == mark) {
            return known.number;
        }
    }
    return USUAL_CLASS;
}

std::optional<char32_t> composition_of(char32_t base, char32_t mark) {
    const auto found =
        std::lower_bound(std::begin(COMPOSITIONS), std::end(COMPOSITIONS), std::tuple(base, mark),
                         [](const Composition& row, const std::tuple<char32_t, char32_t>& wanted) {
                             return std::tuple<char32_t, char32_t>(row.base, row.mark) < wanted;
                         });
    const bool is_one =
        found != std::end(COMPOSITIONS) && found->base == base && found->mark == mark;
    return is_one ? std::optional<char32_t>(found->composed) : std::nullopt;
}

}  // namespace

bool is_combining(char32_t character) {
    return is_in(COMBINING, character);
}

std::optional<char32_t> base_letter_of(char32_t character) {
    const auto found =
        std::find_if(std::begin(COMPOSITIONS), std::end(COMPOSITIONS),
                     [character](const Composition& row) { return row.composed == character; });
    const bool is_letter =
        found != std::end(COMPOSITIONS) && found->base >= U'A' && found->base < FIRST_SYMBOL;
    return is_letter ? std::optional<char32_t>(found->base) : std::nullopt;
}

// As in Unicode's canonical composition, a mark that is left out blocks the marks of its class behind it.
char32_t composed(const std::u32string& column, std::set<char32_t>& lost) {
    char32_t result = column.front();
    std::u32string marks = column.substr(1, MOST_MARKS);
    std::stable_sort(marks.begin(), marks.end(), [](char32_t left, char32_t right) {
        return class_of(left) < class_of(right);
    });
    int class_left_out = 0;
    for (const char32_t mark : marks) {
        const auto with_mark =
            class_of(mark) != class_left_out ? composition_of(result, mark) : std::nullopt;
        result = with_mark.value_or(result);
        if (!with_mark) {
            class_left_out = class_of(mark);
            lost.insert(mark);
        }
    }
    lost.insert(column.begin() + static_cast<std::ptrdiff_t>(1 + marks.size()), column.end());
    return result;
}

}  // namespace frontpanel
