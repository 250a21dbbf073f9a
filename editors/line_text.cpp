#include <frontpanel_editors/line_text.h>
#include <frontpanel_editors/value_editor.h>

#include <utility>

namespace frontpanel {
namespace {

constexpr int HOLD_CALLS = 2;

}  // namespace

void Scrolling_text::set(std::string text) {
    m_text = std::move(text);
    m_text.erase(m_text.find_last_not_of(' ') + 1);
    m_offset = 0;
    m_held = HOLD_CALLS;
}

void Scrolling_text::update(std::string text) {
    const Scrolling_text before = *this;
    set(std::move(text));
    if (m_text == before.m_text) {
        *this = before;
    }
}

std::string Scrolling_text::show(int columns) {
    const auto width = static_cast<std::size_t>(columns);
    if (m_text.size() <= width) {
        return m_text;
    }
    if (m_held > 0) {
        --m_held;
        return m_text.substr(0, width);
    }
    std::string shown = (m_text + ' ' + m_text).substr(m_offset, width);
    m_offset = (m_offset + 1) % m_text.size();
    m_held = m_offset == 0 ? HOLD_CALLS : 0;
    return shown;
}

void show_with_cursor(const std::string& text, std::size_t cursor, int columns,
                      Editor_view& shown) {
    const auto width = static_cast<std::size_t>(columns);
    const std::size_t start = cursor < width ? 0 : cursor - width + 1;
    shown.text = text.substr(start, width);
    shown.cursor = static_cast<int>(cursor - start);
}

}  // namespace frontpanel
