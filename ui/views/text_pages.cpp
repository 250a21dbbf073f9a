#include "views/text_pages.h"

#include <frontpanel_editors/line_text.h>
#include <frontpanel_editors/still_texts.h>

#include <algorithm>

namespace frontpanel {
namespace {

// In calls of `show`, which a panel calls five times in two seconds: at least a second, and 150 words a minute.
constexpr int LEAST_WAIT = 3;
constexpr int READ_IN_A_CALL = 5;  // characters

std::size_t pages_of(std::size_t lines, std::size_t rows) {
    return std::max<std::size_t>(1, (lines + rows - 1) / rows);
}

}  // namespace

void Text_pages::fit(int columns, int rows, bool has_number_beside) {
    const auto wanted_rows = static_cast<std::size_t>(std::max(1, rows));
    if (columns == m_columns && wanted_rows == m_rows) {
        return;
    }
    m_columns = columns;
    m_rows = wanted_rows;
    m_lines = wrapped(m_text, columns);
    m_count = pages_of(m_lines.size(), m_rows);
    for (std::size_t digits = 1; has_number_beside && m_count > 1; ++digits) {
        const int beside = static_cast<int>(2 * digits) + 2;  // "2/3" behind a blank
        m_lines = wrapped(m_text, std::max(1, columns - beside));
        m_count = pages_of(m_lines.size(), m_rows);
        if (std::to_string(m_count).size() <= digits) {
            break;
        }
    }
    m_page = std::min(m_page, m_count - 1);
    m_shown = 0;
}

void Text_pages::turn(int pages) {
    const auto count = static_cast<int>(m_count);
    m_page = static_cast<std::size_t>(((static_cast<int>(m_page) + pages) % count + count) % count);
    m_is_turned_by_hand = true;
}

int Text_pages::wait() const {
    const std::size_t first = m_page * m_rows;
    const std::size_t last = std::min(first + m_rows, m_lines.size());
    int characters = 0;
    for (std::size_t line = first; line < last; ++line) {
        characters += width_of(m_lines[line]);
    }
    return LEAST_WAIT + characters / READ_IN_A_CALL;
}

std::vector<std::string> Text_pages::show() {
    if (!m_is_turned_by_hand && m_shown >= wait()) {
        m_page = (m_page + 1) % m_count;
        m_shown = 0;
    }
    m_shown += Still_texts::are_still() ? 0 : 1;
    const std::size_t first = std::min(m_page * m_rows, m_lines.size());
    const std::size_t last = std::min(first + m_rows, m_lines.size());
    return {m_lines.begin() + static_cast<std::ptrdiff_t>(first),
            m_lines.begin() + static_cast<std::ptrdiff_t>(last)};
}

std::string Text_pages::number() const {
    return m_count > 1 ? std::to_string(m_page + 1) + "/" + std::to_string(m_count) : "";
}

}  // namespace frontpanel
