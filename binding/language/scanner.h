// Splits the source text of binding rules into tokens.
#ifndef FRONTPANEL_BINDING_LANGUAGE_SCANNER_H
#define FRONTPANEL_BINDING_LANGUAGE_SCANNER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <frontpanel_binding/binding_registry.h>

namespace frontpanel::binding_language {

struct Token {
    enum Kind : uint8_t {
        END,
        SEPARATOR,  // ";" or a line end
        WORD,
        NUMBER,
        PARAMETER,  // "[...]"
        QUOTE,      // begins a text; see `Scanner::text_part`
        COMMA,
        OPEN,
        CLOSE,
        OPEN_BRACE,
        CLOSE_BRACE,
        ASSIGN,
        TO,  // ".."
        QUESTION,
        COLON,
        BOTH,    // "&&"
        EITHER,  // "||"
        DENY,    // "!"
        PLUS,
        MINUS,
        TIMES,
        DIVIDE,
        PERCENT,
        EQUAL,
        NOT_EQUAL,
        LESS,
        LESS_EQUAL,
        GREATER,
        GREATER_EQUAL,
    };

    Kind kind;
    std::string_view source;  // as written; a part of the scanned text
    uint64_t magnitude;       // of a NUMBER, at most 2^63

    bool is_word(std::string_view word) const { return kind == WORD && source == word; }
    // How an error names the token: "end of line", "\"visble\"".
    std::string description() const;
};

class Scanner {
public:
    // `source` holds no zero byte and outlives the scanner and its tokens.
    explicit Scanner(std::string_view source);

    // The next token; END again and again at the end. Throws a `Compile_error`.
    Token next();

    // A part of a text, after its QUOTE or after the CLOSE_BRACE of a placeholder.
    struct Text_part {
        std::string_view source;  // up to the end of the part, escapes as written
        bool has_escapes;         // else `source` is the text
        bool ends_text;  // at the closing quote; else at the brace that opens a placeholder
    };
    // `quote` is where the text begins, for its error.
    Text_part text_part(const char* quote);
    // Appends a part of a text with its escapes resolved.
    static void append_unescaped(std::string_view source, std::string& text);

    // Goes to the separator at which the rule that begins here ends, or to the end, whatever is wrong before it.
    void skip_rule();

    // The word at `token`, hyphens included, as in "read-only"; the scanner goes on behind it.
    Token hyphenated(const Token& token);

    // The line, from 1, and the end of what was scanned last.
    int line() const { return m_line; }
    // Where that line begins.
    const char* line_begin() const { return m_line_begin; }
    const char* position() const { return m_at; }
    // An error at a place in the scanned text.
    Compile_error error(const char* place, std::string message) const;

private:
    Token token(Token::Kind kind, std::size_t length);
    Token word();
    Token number();
    Token parameter();
    Token symbol();
    Token two_or_one(char second, Token::Kind both, Token::Kind first);
    void skip_blanks_and_comments();
    void skip_in_text(std::string& open);
    void skip_in_expression(std::string& open);
    char peek(std::size_t ahead) const {
        return static_cast<std::size_t>(m_end - m_at) > ahead ? m_at[ahead] : '\0';
    }

    const char* m_begin;
    const char* m_at;
    const char* m_end;
    const char* m_line_begin = m_begin;
    int m_line = 1;
};

}  // namespace frontpanel::binding_language

#endif
