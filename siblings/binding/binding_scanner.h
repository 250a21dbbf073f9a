// Splits the source text of binding rules into tokens.
#ifndef FRONTPANEL_BINDING_BINDING_SCANNER_H
#define FRONTPANEL_BINDING_BINDING_SCANNER_H

#include <cstddef>
#include <string>
#include <string_view>

#include <frontpanel_binding/binding_registry.h>

struct Binding_token {
    enum Kind { WORD, NUMBER, TEXT, SYMBOL, SEPARATOR, END };

    Kind kind;
    std::string_view source;  // as written; a part of the scanned text
    std::string value;        // of a TEXT: without quotes and escapes
    std::size_t line;
    std::size_t column;

    bool is(std::string_view word_or_symbol) const {
        return (kind == WORD || kind == SYMBOL) && source == word_or_symbol;
    }
    // How an error names the token: "end of line", "\"visble\"".
    std::string description() const;
    Compile_error error(const std::string& message) const { return {line, column, message}; }
};

class Binding_scanner {
public:
    // `source` outlives the scanner and its tokens.
    explicit Binding_scanner(std::string_view source);

    // The next token; END again and again at the end. Throws a `Compile_error`.
    Binding_token next();

private:
    void skip_blanks_and_comments();
    Binding_token take(Binding_token::Kind kind, std::size_t length);
    Binding_token take_text();
    std::size_t number_length() const;
    std::size_t symbol_length() const;

    std::string_view m_rest;
    std::size_t m_line;
    std::size_t m_column;
};

// Shows a byte of a source text in an error: itself, or "\xNN" when it is not printable ASCII.
std::string shown_byte(char byte);

#endif
