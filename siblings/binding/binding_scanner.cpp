#include "binding_scanner.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include <frontpanel_data/data_interface.h>

namespace {

// Two-character symbols stand first, so that each is found before its own beginning.
constexpr std::array<std::string_view, 10> SYMBOLS = {"==", "!=", "<=", ">=", "..",
                                                      "<",  ">",  ".",  ",",  "-"};

constexpr std::size_t SHOWN_LENGTH = 40;  // of a token in an error, which stays on one line

// The character classes do not depend on the locale that a process happens to run under.
bool is_digit(char byte) {
    return byte >= '0' && byte <= '9';
}

bool is_word_byte(char byte) {
    return is_digit(byte) || (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
           byte == '_';
}

std::size_t word_length(std::string_view text) {
    return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), is_word_byte) -
                                    text.begin());
}

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

std::string Binding_token::description() const {
    if (kind == END) {
        return "end of text";
    }
    if (kind == SEPARATOR && source == "\n") {
        return "end of line";
    }
    if (kind == TEXT) {
        return "a text";
    }
    const bool is_long = source.size() > SHOWN_LENGTH;
    return "\"" + std::string(source.substr(0, SHOWN_LENGTH)) + (is_long ? "...\"" : "\"");
}

Binding_scanner::Binding_scanner(std::string_view source)
    : m_rest(source), m_line(1), m_column(1) {}

Binding_token Binding_scanner::next() {
    skip_blanks_and_comments();
    if (m_rest.empty()) {
        return take(Binding_token::END, 0);
    }
    const char first = m_rest.front();
    if (first == '\n' || first == ';') {
        return take(Binding_token::SEPARATOR, 1);
    }
    if (first == '"') {
        return take_text();
    }
    if (const std::size_t length = number_length()) {
        return take(Binding_token::NUMBER, length);
    }
    if (is_word_byte(first)) {
        return take(Binding_token::WORD, word_length(m_rest));
    }
    if (const std::size_t length = symbol_length()) {
        return take(Binding_token::SYMBOL, length);
    }
    throw Compile_error{m_line, m_column, "unexpected character \"" + shown_byte(first) + "\""};
}

void Binding_scanner::skip_blanks_and_comments() {
    std::size_t length = std::min(m_rest.find_first_not_of(" \t\r"), m_rest.size());
    if (length < m_rest.size() && m_rest[length] == '#') {
        length = std::min(m_rest.find('\n', length), m_rest.size());
    }
    m_rest.remove_prefix(length);
    m_column += length;
}

Binding_token Binding_scanner::take(Binding_token::Kind kind, std::size_t length) {
    Binding_token token{kind, m_rest.substr(0, length), std::string(), m_line, m_column};
    m_rest.remove_prefix(length);
    m_column += length;
    if (token.source == "\n") {
        ++m_line;
        m_column = 1;
    }
    return token;
}

Binding_token Binding_scanner::take_text() {
    std::string value;
    std::size_t at = 1;
    for (; at < m_rest.size() && m_rest[at] != '"' && m_rest[at] != '\n'; ++at) {
        if (m_rest[at] == '\0') {
            throw Compile_error{m_line, m_column + at, "a text cannot hold a zero byte"};
        }
        if (m_rest[at] == '\\') {
            const std::string_view escaped = m_rest.substr(at + 1, 1);
            if (escaped != "\"" && escaped != "\\") {
                throw Compile_error{m_line, m_column + at,
                                    "only \\\" and \\\\ are escapes in a text"};
            }
            ++at;
        }
        value += m_rest[at];
    }
    if (at == m_rest.size() || m_rest[at] != '"') {
        throw Compile_error{m_line, m_column, "text without closing quote"};
    }
    if (value.size() > static_cast<std::size_t>(MAX_STRING_LENGTH)) {
        throw Compile_error{
            m_line, m_column,
            "text longer than " + std::to_string(MAX_STRING_LENGTH) + " characters"};
    }
    Binding_token token = take(Binding_token::TEXT, at + 1);
    token.value = value;
    return token;
}

// A number reaches to the end of its word, so that "40if" is reported as a whole.
std::size_t Binding_scanner::number_length() const {
    const std::size_t sign = m_rest.front() == '-' ? 1 : 0;
    const bool is_number = sign < m_rest.size() && is_digit(m_rest[sign]);
    return is_number ? sign + word_length(m_rest.substr(sign)) : 0;
}

std::size_t Binding_scanner::symbol_length() const {
    for (const std::string_view symbol : SYMBOLS) {
        if (m_rest.substr(0, symbol.size()) == symbol) {
            return symbol.size();
        }
    }
    return 0;
}
