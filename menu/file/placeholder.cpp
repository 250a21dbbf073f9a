#include "file/placeholder.h"

#include <algorithm>
#include <cctype>
#include <string_view>

#include <frontpanel_base/numbers.h>

namespace frontpanel {
namespace {

bool is_name_start(char c) {
    return std::isalpha(static_cast<unsigned char>(c)) != 0;
}

bool is_name_part(char c) {
    return is_name_start(c) || std::isdigit(static_cast<unsigned char>(c)) != 0 || c == '_';
}

// Reads a placeholder from its brace on.
class Reader {
public:
    Reader(const std::string& text, size_t start) : m_text(text), m_at(start) {}

    std::optional<Placeholder> read() {
        Placeholder result{};
        result.begin = m_at++;
        result.name = take_name();
        bool is_valid = !result.name.empty();
        if (is_valid && take('*')) {
            is_valid = take_number(result.factor, result.is_too_large);
            result.is_plain = false;
        }
        const bool is_minus = at() == '-';
        if (is_valid && (take('+') || take('-'))) {
            is_valid = take_number(result.summand, result.is_too_large);
            result.summand = is_minus ? -result.summand : result.summand;
            result.is_plain = false;
        }
        if (!is_valid || !take('}')) {
            return std::nullopt;
        }
        result.end = m_at;
        result.text = m_text.substr(result.begin, result.end - result.begin);
        return result;
    }

private:
    char at() const { return m_at < m_text.size() ? m_text[m_at] : '\0'; }
    bool take(char wanted) {
        const bool is_there = at() == wanted;
        m_at += is_there ? 1U : 0U;
        return is_there;
    }
    std::string take_name() {
        const size_t start = m_at;
        while (is_name_part(at()) && (m_at > start || is_name_start(at()))) {
            ++m_at;
        }
        return m_text.substr(start, m_at - start);
    }
    bool take_number(int64_t& number, bool& is_too_large) {
        const size_t start = m_at;
        m_at = std::min(m_text.find_first_not_of("0123456789", start), m_text.size());
        const auto parsed =
            parse_number<int64_t>(std::string_view(m_text).substr(start, m_at - start));
        const bool has_digits = m_at > start;
        number = parsed.value_or(0);
        is_too_large = is_too_large || (has_digits && !parsed);
        return has_digits;
    }

    const std::string& m_text;
    size_t m_at;
};

}  // namespace

std::optional<Placeholder> find_placeholder(const std::string& text, size_t start) {
    for (size_t at = text.find('{', start); at != std::string::npos; at = text.find('{', at + 1)) {
        if (auto found = Reader(text, at).read()) {
            return found;
        }
    }
    return std::nullopt;
}

}  // namespace frontpanel
