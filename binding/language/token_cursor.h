// The token at hand, and the errors that are about it.
#ifndef FRONTPANEL_BINDING_LANGUAGE_TOKEN_CURSOR_H
#define FRONTPANEL_BINDING_LANGUAGE_TOKEN_CURSOR_H

#include <cstddef>
#include <string>
#include <string_view>

#include "language/scanner.h"

namespace frontpanel::binding_language {

// Every operation that goes on to another token throws a `Compile_error` when there is none.
class Token_cursor {
public:
    // `source` outlives the cursor. No token is at hand before the first `advance`.
    explicit Token_cursor(std::string_view source) : m_source(source), m_scanner(source) {}

    const Token& token() const { return m_token; }
    // Where the token begins, and where the one before it ended.
    const char* place() const { return m_token.source.data(); }
    const char* last_end() const { return m_last_end; }
    std::size_t offset(const char* place) const {
        return static_cast<std::size_t>(place - m_source.data());
    }
    // Line and column of the token, from 1.
    int line() const { return m_scanner.line(); }
    std::size_t column() const {
        return static_cast<std::size_t>(place() - m_scanner.line_begin()) + 1;
    }
    std::string_view source() const { return m_source; }
    // From `begin` to the end of the token before this one.
    std::string_view source_since(const char* begin) const {
        return {begin, static_cast<std::size_t>(m_last_end - begin)};
    }

    void advance() {
        m_last_end = m_scanner.position();
        m_token = m_scanner.next();
    }
    bool is(Token::Kind kind) const { return m_token.kind == kind; }
    bool accept(Token::Kind kind) {
        const bool found = is(kind);
        if (found) {
            advance();
        }
        return found;
    }
    bool accept_word(std::string_view word) {
        const bool found = m_token.is_word(word);
        if (found) {
            advance();
        }
        return found;
    }
    void expect(Token::Kind kind, const char* expected) {
        if (!accept(kind)) {
            fail_expected(expected);
        }
    }
    // Requires: the token is a WORD. It takes in hyphens, as in "read-only".
    void extend_over_hyphens() { m_token = m_scanner.hyphenated(m_token); }
    // A part of the text that begins at `quote`: see `Scanner::text_part`. Call `advance` behind the last.
    Scanner::Text_part text_part(const char* quote) { return m_scanner.text_part(quote); }

    // For a rule that is wrong: from a mark before it to the separator behind it.
    Scanner mark() const { return m_scanner; }
    void skip_rule(const Scanner& mark) {
        m_scanner = mark;
        m_scanner.skip_rule();
        advance();
    }

    Compile_error error(const char* place, std::string message) const {
        return m_scanner.error(place, std::move(message));
    }
    [[noreturn]] void fail(const char* place, const std::string& message) const;
    [[noreturn]] void fail_expected(const std::string& expected) const;
    [[noreturn]] void fail_too_deep() const;

private:
    std::string_view m_source;
    Scanner m_scanner;
    Token m_token{};
    const char* m_last_end = nullptr;
};

}  // namespace frontpanel::binding_language

#endif
