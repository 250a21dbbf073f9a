// Tables of the expression language: which token a character begins, and what a token does to its operands.
#ifndef FRONTPANEL_DATA_SRC_EVAL_TOKENS_H
#define FRONTPANEL_DATA_SRC_EVAL_TOKENS_H

#include <array>
#include <cstdint>

#include <frontpanel_data/evaluator.h>

namespace eval {

typedef evalKernel_token_type Token;

constexpr Token NO_TOKEN = static_cast<Token>(0);

namespace tables {

using Characters = std::array<uint8_t, 256>;

constexpr void fill(Characters& table, const char* characters, Token token) {
    for (; *characters != '\0'; ++characters)
        table[static_cast<unsigned char>(*characters)] = token;
}

constexpr Characters single_characters() {
    Characters table{};
    table[0] = evalKernel_eof_token;
    fill(table, " \t\v\f\r\n", evalKernel_white_space_token);
    fill(table, "0123456789", evalKernel_digit_token);
    fill(table, "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_", evalKernel_letter_token);
    fill(table, ".", evalKernel_point_token);
    fill(table, "=", evalKernel_assign_token);
    fill(table, "?", evalKernel_question_mark_token);
    fill(table, ":", evalKernel_colon_token);
    fill(table, "<", evalKernel_less_token);
    fill(table, ">", evalKernel_greater_token);
    fill(table, "+", evalKernel_plus_token);
    fill(table, "-", evalKernel_minus_token);
    fill(table, "*", evalKernel_times_token);
    fill(table, "/", evalKernel_divide_token);
    fill(table, "(", evalKernel_left_parenthesis_token);
    fill(table, ")", evalKernel_right_parenthesis_token);
    fill(table, "!", evalKernel_not_token);
    fill(table, ",", evalKernel_comma_token);
    fill(table, ";", evalKernel_semicolon_token);
    return table;
}

// The token that a character makes with a '=' behind it.
constexpr Characters with_equals() {
    Characters table{};
    fill(table, "+", evalKernel_add_assign_token);
    fill(table, "-", evalKernel_subtract_assign_token);
    fill(table, "*", evalKernel_multiply_assign_token);
    fill(table, "/", evalKernel_divide_assign_token);
    fill(table, "=", evalKernel_equal_token);
    fill(table, "!", evalKernel_not_equal_token);
    fill(table, "<", evalKernel_less_or_equal_token);
    fill(table, ">", evalKernel_greater_or_equal_token);
    return table;
}

// The token that a character makes with itself behind it.
constexpr Characters doubled() {
    Characters table{};
    fill(table, "|", evalKernel_or_token);
    fill(table, "&", evalKernel_and_token);
    fill(table, "*", evalKernel_power_token);
    fill(table, "/", evalKernel_line_comment_token);
    return table;
}

inline constexpr Characters SINGLE = single_characters();
inline constexpr Characters WITH_EQUALS = with_equals();
inline constexpr Characters DOUBLED = doubled();

constexpr Characters pairs() {
    Characters table{};
    for (unsigned i = 0; i < table.size(); ++i)
        table[i] = WITH_EQUALS[i] != 0 || DOUBLED[i] != 0;
    return table;
}

constexpr Characters name_characters() {
    Characters table{};
    for (unsigned i = 0; i < table.size(); ++i) {
        table[i] = SINGLE[i] == evalKernel_letter_token || SINGLE[i] == evalKernel_digit_token;
    }
    return table;
}

inline constexpr Characters MAY_PAIR = pairs();
inline constexpr Characters IN_NAME = name_characters();

}  // namespace tables

// Whether the character is a letter, a digit or an underscore, in any locale.
inline bool is_name_character(unsigned char c) {
    return tables::IN_NAME[c] != 0;
}

inline bool is_digit(unsigned char c) {
    return static_cast<unsigned>(c) - '0' < 10;
}

inline bool is_white_space(unsigned char c) {
    return tables::SINGLE[c] == evalKernel_white_space_token;
}

// The longest token that begins at `text`; NO_TOKEN if none does.
inline Token token_at(const unsigned char* text) {
    const unsigned char c = text[0];
    if (tables::MAY_PAIR[c] != 0) {
        const unsigned char next = text[1];
        if (next == '=' && tables::WITH_EQUALS[c] != 0) {
            return static_cast<Token>(tables::WITH_EQUALS[c]);
        }
        if (next == c && tables::DOUBLED[c] != 0) return static_cast<Token>(tables::DOUBLED[c]);
        if (c == '/' && next == '*') return evalKernel_block_comment_token;
    }
    return static_cast<Token>(tables::SINGLE[c]);
}

}  // namespace eval

#endif
