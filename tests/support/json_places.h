// Finds where a value stands in a JSON text, so that a test can name it by its path.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_JSON_PLACES_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_JSON_PLACES_H

#include <algorithm>
#include <string>

namespace frontpanel {

// Walks over a JSON text. A path that is not in it leads to the end of the text.
class Json_walker {
public:
    explicit Json_walker(const std::string& text) : m_text(text) {}

    // The offset of the value at a path such as "/menu/items/0/max". A path that ends with '@' means the
    // name of the member, and "/" the whole text.
    size_t find(std::string path) {
        const bool wants_name = path.back() == '@';
        path.resize(path.size() - (wants_name ? 1 : 0));
        size_t name = 0;
        m_at = 0;
        skip_blanks();
        for (size_t start = 1; start < path.size();) {
            const size_t end = std::min(path.find('/', start), path.size());
            name = step(path.substr(start, end - start));
            start = end + 1;
        }
        return wants_name ? name : m_at;
    }

private:
    void skip_blanks() {
        m_at = std::min(m_text.find_first_not_of(" \t\r\n,:", m_at), m_text.size());
    }
    char at() const { return m_at < m_text.size() ? m_text[m_at] : '}'; }
    std::string take_string() {
        const size_t start = std::min(m_at + 1, m_text.size());
        m_at = std::min(m_text.find_first_of("\"\\", start), m_text.size());
        while (at() == '\\') {
            m_at = std::min(m_text.find_first_of("\"\\", m_at + 2), m_text.size());
        }
        return m_text.substr(start, m_at++ - start);
    }
    void skip_value() {
        if (at() == '"') {
            take_string();
        } else if (at() == '{' || at() == '[') {
            ++m_at;
            for (skip_blanks(); at() != '}' && at() != ']'; skip_blanks()) {
                skip_value();
            }
            ++m_at;
        } else {
            m_at = std::min(m_text.find_first_of(" \t\r\n,]}", m_at), m_text.size());
        }
    }
    // Goes into the value at hand; returns where the member's name or the element begins.
    size_t step(const std::string& token) {
        const bool in_list = at() == '[';
        size_t begin = 0;
        ++m_at;
        for (size_t i = 0; skip_blanks(), at() != '}' && at() != ']'; ++i) {
            begin = m_at;
            if (in_list ? std::to_string(i) == token : take_string() == token) {
                break;
            }
            skip_blanks();
            skip_value();
        }
        skip_blanks();
        return begin;
    }

    const std::string& m_text;
    size_t m_at = 0;
};

// "menu.json: /menu/items/0: TEXT" with the place's line and column in `text` instead of its path, line by line.
inline std::string placed(const std::string& text, const std::string& errors) {
    const std::string file = "menu.json: /";
    std::string result;
    for (size_t start = 0; start < errors.size();) {
        const size_t end = std::min(errors.find('\n', start), errors.size());
        std::string line = errors.substr(start, end - start);
        if (line.rfind(file, 0) == 0) {
            const size_t message = line.find(": ", file.size());
            const size_t path = file.size() - 1;
            const size_t at = Json_walker(text).find(line.substr(path, message - path));
            const std::string before = text.substr(0, at);
            const size_t column = at - (before.rfind('\n') + 1) + 1;
            line =
                "menu.json:" + std::to_string(std::count(before.begin(), before.end(), '\n') + 1) +
                ":" + std::to_string(column) + line.substr(message);
        }
        result += (result.empty() ? "" : "\n") + line;
        start = end + 1;
    }
    return result;
}

}  // namespace frontpanel

#endif
