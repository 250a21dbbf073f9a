#include "language/scanner.h"

#include <algorithm>
#include <array>
#include <utility>

#include "parameters/source_text.h"

namespace frontpanel::binding_language {

namespace {

constexpr uint64_t LARGEST_MAGNITUDE = uint64_t{1} << 63;  // of the least number

enum Byte_class : uint8_t { OTHER = 0, WORD_BYTE = 1, DIGIT = 2 };

// Does not depend on the locale that a process happens to run under.
constexpr std::array<uint8_t, 256> make_classes() {
    std::array<uint8_t, 256> classes{};
    for (std::size_t byte = 0; byte < classes.size(); ++byte) {
        const bool is_digit = byte >= '0' && byte <= '9';
        const bool is_letter = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
        classes[byte] = static_cast<uint8_t>((is_digit ? DIGIT | WORD_BYTE : OTHER) |
                                             (is_letter || byte == '_' ? WORD_BYTE : OTHER));
    }
    return classes;
}

constexpr std::array<uint8_t, 256> CLASSES = make_classes();

bool is_of(char byte, Byte_class wanted) {
    return (CLASSES[static_cast<unsigned char>(byte)] & wanted) != 0;
}

// Digits of a base up to 16, all of them and at least one. False when `digits` holds anything else; a number
// beyond LARGEST_MAGNITUDE becomes one more.
bool parse(std::string_view digits, unsigned int base, uint64_t& magnitude) {
    magnitude = 0;
    for (const char byte : digits) {
        const char lower = static_cast<char>(byte | 0x20);
        const bool is_digit = is_of(byte, DIGIT);
        if (!is_digit && !(base == 16 && lower >= 'a' && lower <= 'f')) {
            return false;
        }
        const auto digit = static_cast<unsigned int>(is_digit ? byte - '0' : lower - 'a' + 10);
        const bool fits = magnitude <= (LARGEST_MAGNITUDE - digit) / base;
        magnitude = fits ? magnitude * base + digit : LARGEST_MAGNITUDE + 1;
    }
    return !digits.empty();
}

}  // namespace

std::string Token::description() const {
    switch (kind) {
        case END:
            return "end of text";
        case SEPARATOR:
            return source == "\n" ? "end of line" : "\";\"";
        case QUOTE:
            return "a text";
        default:
            return quoted_source(source);
    }
}

Scanner::Scanner(std::string_view source)
    : m_begin(source.data()), m_at(m_begin), m_end(m_begin + source.size()) {}

Token Scanner::next() {
    skip_blanks_and_comments();
    if (m_at == m_end) {
        return token(Token::END, 0);
    }
    const char first = *m_at;
    if (is_of(first, WORD_BYTE)) {
        return is_of(first, DIGIT) ? number() : word();
    }
    if (first == '[') {
        return parameter();
    }
    return symbol();
}

void Scanner::skip_blanks_and_comments() {
    while (m_at != m_end && (*m_at == ' ' || *m_at == '\t' || *m_at == '\r')) {
        ++m_at;
    }
    if (m_at != m_end && *m_at == '#') {
        m_at = std::find(m_at, m_end, '\n');
    }
}

Token Scanner::token(Token::Kind kind, std::size_t length) {
    const char* const begin = m_at;
    m_at += length;
    return {kind, {begin, length}, 0};
}

Token Scanner::word() {
    std::size_t length = 1;
    while (is_of(peek(length), WORD_BYTE)) {
        ++length;
    }
    return token(Token::WORD, length);
}

// A number reaches to the end of its word, so that "40if" is reported as a whole.
Token Scanner::number() {
    Token number = word();
    number.kind = Token::NUMBER;
    const std::string_view source = number.source;
    const bool is_hexadecimal = source.size() > 1 && source[0] == '0' && (source[1] | 0x20) == 'x';
    if (!parse(source.substr(is_hexadecimal ? 2 : 0), is_hexadecimal ? 16 : 10, number.magnitude)) {
        throw error(source.data(), number.description() + " is not a number");
    }
    if (number.magnitude > LARGEST_MAGNITUDE) {
        throw error(source.data(), number.description() +
                                       " is not a number from -9223372036854775808 to "
                                       "9223372036854775807");
    }
    return number;
}

Token Scanner::parameter() {
    std::size_t length = 1;
    while (peek(length) != ']') {
        if (m_at + length == m_end || m_at[length] == '\n') {
            throw error(m_at, "parameter without closing bracket");
        }
        ++length;
    }
    return token(Token::PARAMETER, length + 1);
}

Token Scanner::symbol() {
    switch (*m_at) {
        case '\n':
            ++m_line;
            m_line_begin = m_at + 1;
            return token(Token::SEPARATOR, 1);
        case ';':
            return token(Token::SEPARATOR, 1);
        case '"':
            return token(Token::QUOTE, 1);
        case ',':
            return token(Token::COMMA, 1);
        case '(':
            return token(Token::OPEN, 1);
        case ')':
            return token(Token::CLOSE, 1);
        case '{':
            return token(Token::OPEN_BRACE, 1);
        case '}':
            return token(Token::CLOSE_BRACE, 1);
        case '?':
            return token(Token::QUESTION, 1);
        case ':':
            return token(Token::COLON, 1);
        case '+':
            return token(Token::PLUS, 1);
        case '-':
            return token(Token::MINUS, 1);
        case '*':
            return token(Token::TIMES, 1);
        case '/':
            return token(Token::DIVIDE, 1);
        case '%':
            return token(Token::PERCENT, 1);
        case '=':
            return two_or_one('=', Token::EQUAL, Token::ASSIGN);
        case '<':
            return two_or_one('=', Token::LESS_EQUAL, Token::LESS);
        case '>':
            return two_or_one('=', Token::GREATER_EQUAL, Token::GREATER);
        case '!':
            return two_or_one('=', Token::NOT_EQUAL, Token::DENY);
        case '&':
            if (peek(1) == '&') {
                return token(Token::BOTH, 2);
            }
            throw error(m_at, "\"&\" is not an operator; \"and\" joins conditions");
        case '|':
            if (peek(1) == '|') {
                return token(Token::EITHER, 2);
            }
            throw error(m_at, "\"|\" is not an operator; \"or\" joins conditions");
        case '.':
            if (peek(1) == '.') {
                return token(Token::TO, 2);
            }
            throw error(m_at, "unexpected \".\"; addresses are written in brackets, as in [100.0]");
        default:
            throw error(m_at, "unexpected character \"" +
                                  shown_character({m_at, static_cast<std::size_t>(m_end - m_at)}) +
                                  "\"");
    }
}

Token Scanner::two_or_one(char second, Token::Kind both, Token::Kind first) {
    return peek(1) == second ? token(both, 2) : token(first, 1);
}

Token Scanner::hyphenated(const Token& first) {
    m_at = first.source.data();
    std::size_t length = 0;
    while (is_of(peek(length), WORD_BYTE) || peek(length) == '-') {
        ++length;
    }
    return token(Token::WORD, length);
}

Scanner::Text_part Scanner::text_part(const char* quote) {
    const char* const begin = m_at;
    bool has_escapes = false;
    for (;; ++m_at) {
        const char byte = peek(0);
        if (byte == '"') {
            break;
        }
        if (byte == '{' && peek(1) != '{') {
            break;
        }
        if (byte == '\\' || byte == '{' || byte == '}') {
            const bool is_right =
                byte == '\\' ? peek(1) == '"' || peek(1) == '\\' : peek(1) == byte;
            if (!is_right) {
                throw error(m_at, byte == '\\' ? "only \\\" and \\\\ are escapes in a text"
                                               : "a brace in a text is written }}");
            }
            has_escapes = true;
            ++m_at;
        } else if (m_at == m_end || byte == '\n') {
            throw error(quote, "text without closing quote");
        }
    }
    const std::string_view source(begin, static_cast<std::size_t>(m_at - begin));
    const bool ends_text = *m_at == '"';
    ++m_at;
    return {source, has_escapes, ends_text};
}

void Scanner::append_unescaped(std::string_view source, std::string& text) {
    for (std::size_t i = 0; i < source.size(); ++i) {
        if (source[i] == '\\' || source[i] == '{' || source[i] == '}') {
            ++i;  // the second byte is what is meant
        }
        text += source[i];
    }
}

// Separators in a text, in brackets or in a comment do not count. The text around a placeholder goes on
// behind it.
void Scanner::skip_rule() {
    std::string open;  // the quotes and braces that are open here, outermost first
    std::size_t open_texts = 0;
    while (m_at != m_end && *m_at != '\n' && (*m_at != ';' || open_texts > 0)) {
        const bool is_quote = *m_at == '"';
        const bool is_in_text = !open.empty() && open.back() == '"';
        if (is_quote) {
            is_in_text ? --open_texts : ++open_texts;
        }
        is_in_text ? skip_in_text(open) : skip_in_expression(open);
    }
}

// Past a byte, or an escape of two bytes. Nothing here goes past the end of the line.
void Scanner::skip_in_text(std::string& open) {
    const char byte = *m_at++;
    if (byte == '"') {
        open.pop_back();
    } else if (byte == '{' && peek(0) != '{') {
        open += byte;
    } else if ((byte == '\\' && (peek(0) == '"' || peek(0) == '\\')) || byte == '{') {
        ++m_at;
    }
}

void Scanner::skip_in_expression(std::string& open) {
    const char byte = *m_at++;
    if (byte == '"' || byte == '{') {
        open += byte;
    } else if (byte == '}' && !open.empty()) {
        open.pop_back();
    } else if (byte == '#') {
        m_at = std::find(m_at, m_end, '\n');
    } else if (byte == '[') {
        const char* const line_end = std::find(m_at, m_end, '\n');
        m_at = std::find(m_at, line_end, ']');
    }
}

Compile_error Scanner::error(const char* place, std::string message) const {
    const std::string_view before(m_begin, static_cast<std::size_t>(place - m_begin));
    const auto lines = static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
    const std::size_t line_end = before.rfind('\n');
    const std::size_t column =
        line_end == std::string_view::npos ? before.size() : before.size() - line_end - 1;
    return {lines + 1, column + 1, std::move(message)};
}

}  // namespace frontpanel::binding_language
