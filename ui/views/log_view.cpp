#include "views/log_view.h"

#include <frontpanel_data/data_interface.h>
#include <frontpanel_editors/line_text.h>

#include <algorithm>
#include <cctype>
#include <iterator>

namespace frontpanel {
namespace {

constexpr int LEAST_ROWS_WITH_TITLE = 3;
constexpr const char* TITLE = "Diagnostics";

// The bits of `debug`: kinds of lines, and the two that make lines of every kind quiet or talkative.
struct Bit {
    uint32_t mask;
    const char* name;
};
constexpr Bit KINDS[] = {{0x1, "general"},        {0x2, "reading"},     {0x4, "writing"},
                         {0x10, "options"},       {0x20, "bindings"},   {0x100, "building"},
                         {0x400, "visibility"},   {0x10000, "refresh"}, {0x80000, "links"},
                         {0x200000, "shortcuts"}, {0x400000, "linked"}, {0x1000000, "live data"}};
constexpr Bit VERBOSITY[] = {{0x4000, "quiet"}, {0x8000, "verbose"}};
constexpr int KIND_COUNT = static_cast<int>(std::size(KINDS));
constexpr int ALL = 0;
constexpr int ALWAYS_PRINTED = KIND_COUNT + 1;

// The list: the two filters, then a switch for each bit.
enum Item { ONLY_KIND, ONLY_ENTRY, FIRST_SWITCH };
constexpr int ITEM_COUNT = FIRST_SWITCH + KIND_COUNT + static_cast<int>(std::size(VERBOSITY));

const Bit& bit_of(int item) {
    const int number = item - FIRST_SWITCH;
    return number < KIND_COUNT ? KINDS[number] : VERBOSITY[number - KIND_COUNT];
}

std::string name_of(int item) {
    return item < FIRST_SWITCH ? "show" : std::string("print ") + bit_of(item).name;
}

bool is_part_of_a_word(char character) {
    return std::isalnum(static_cast<unsigned char>(character)) != 0;
}

// Whether the text holds the name as a whole word.
bool mentions(const std::string& text, const std::string& name) {
    size_t at = text.find(name);
    while (at != std::string::npos) {
        const size_t end = at + name.size();
        const bool goes_on_before = at > 0 && is_part_of_a_word(text[at - 1]);
        const bool goes_on_behind = end < text.size() && is_part_of_a_word(text[end]);
        if (!goes_on_before && !goes_on_behind) {
            return true;
        }
        at = text.find(name, at + 1);
    }
    return false;
}

}  // namespace

void Log_view::open(const std::string& entry) {
    m_entry = entry;
    m_is_open = true;
    m_is_list = false;
    m_only_entry = false;
    m_kind = ALL;
    m_follows = true;
    m_pan = 0;
    m_cursor = 0;
}

void Log_view::press(Key::Kind key) {
    if (m_is_list) {
        press_in_list(key);
    } else {
        press_among_lines(key);
    }
}

void Log_view::press_among_lines(Key::Kind key) {
    switch (key) {
        case Key::UP:
            move(-1);
            break;
        case Key::DOWN:
            move(1);
            break;
        case Key::COARSER:
            m_pan = std::max(0, m_pan - 1);
            break;
        case Key::FINER:
            m_pan = std::min(m_pan + 1, static_cast<int>(Log_lines::LONGEST_LINE));
            break;
        case Key::SELECT:
            m_is_list = true;
            break;
        case Key::BACK:
        case Key::DIAGNOSTICS:
            close();
            break;
        default:
            break;
    }
}

void Log_view::press_in_list(Key::Kind key) {
    switch (key) {
        case Key::UP:
            m_cursor = std::max(0, m_cursor - 1);
            break;
        case Key::DOWN:
            m_cursor = std::min(m_cursor + 1, ITEM_COUNT - 1);
            break;
        case Key::SELECT:
            change();
            break;
        case Key::BACK:
            m_is_list = false;
            break;
        case Key::DIAGNOSTICS:
            close();
            break;
        default:
            break;
    }
}

void Log_view::change() {
    switch (m_cursor) {
        case ONLY_KIND:
            m_kind = m_kind == ALWAYS_PRINTED ? ALL : m_kind + 1;
            break;
        case ONLY_ENTRY:
            m_only_entry = !m_only_entry && !m_entry.empty();
            break;
        default:
            debug ^= bit_of(m_cursor).mask;
            break;
    }
}

bool Log_view::passes(const Log_line& line) const {
    if (m_only_entry && !mentions(line.text, m_entry)) {
        return false;
    }
    if (m_kind == ALL || m_kind == ALWAYS_PRINTED) {
        return m_kind == ALL || line.mask == 0;
    }
    return (line.mask & KINDS[m_kind - 1].mask) != 0;
}

std::vector<Log_view::Shown> Log_view::shown_lines() const {
    std::vector<Shown> shown;
    uint64_t number = m_lines.dropped();
    for (const Log_line& line : m_lines.lines()) {
        if (passes(line)) {
            shown.push_back({number, &line});
        }
        ++number;
    }
    return shown;
}

// The place of the lowest line shown; not without any.
size_t Log_view::bottom_of(const std::vector<Shown>& shown) const {
    if (m_follows) {
        return shown.size() - 1;
    }
    const auto behind = std::find_if(shown.begin(), shown.end(), [this](const Shown& candidate) {
        return candidate.number > m_bottom;
    });
    return behind == shown.begin() ? 0 : static_cast<size_t>(behind - shown.begin()) - 1;
}

void Log_view::move(int lines) {
    const std::vector<Shown> shown = shown_lines();
    if (shown.empty()) {
        return;
    }
    const auto last = static_cast<int>(shown.size()) - 1;
    const int place = std::clamp(static_cast<int>(bottom_of(shown)) + lines, 0, last);
    m_bottom = shown[static_cast<size_t>(place)].number;
    m_follows = place == last;
}

void Log_view::draw(Lcd& lcd) {
    m_lines.read();
    const int first_row = lcd.size().rows >= LEAST_ROWS_WITH_TITLE ? 1 : 0;
    if (first_row == 1) {
        lcd.put(0, 0, TITLE);
    }
    if (m_is_list) {
        draw_list(lcd, first_row);
    } else {
        draw_lines(lcd, first_row);
    }
}

void Log_view::draw_lines(Lcd& lcd, int first_row) {
    const std::vector<Shown> shown = shown_lines();
    if (shown.empty()) {
        lcd.put(first_row, 0, m_lines.is_kept() ? "(no output)" : "(not kept)");
        return;
    }
    const int rows = lcd.size().rows - first_row;
    const auto last = static_cast<int>(shown.size()) - 1;
    // The oldest lines fill the display too.
    const int bottom = std::max(static_cast<int>(bottom_of(shown)), std::min(rows - 1, last));
    m_bottom = shown[static_cast<size_t>(bottom)].number;
    m_follows = bottom == last;
    const int top = std::max(0, bottom - rows + 1);
    const int end = std::min(static_cast<int>(shown.size()), top + rows);
    const auto longest = std::max_element(
        shown.begin() + top, shown.begin() + end, [](const Shown& a, const Shown& b) {
            return width_of(a.line->text) < width_of(b.line->text);
        });
    const int step = lcd.size().columns / 2;
    m_pan = std::min(m_pan, std::max(0, width_of(longest->line->text) - 1) / step);
    for (int place = top; place < end; ++place) {
        const std::string& text = shown[static_cast<size_t>(place)].line->text;
        lcd.put(first_row + place - top, 0, rest_of(text, m_pan * step));
    }
    if (first_row == 1) {
        lcd.put_right(0, " " + std::to_string(bottom + 1) + "/" + std::to_string(shown.size()));
    }
}

std::string Log_view::kind_name() const {
    if (m_kind == ALL) {
        return "all kinds";
    }
    return m_kind == ALWAYS_PRINTED ? "other" : KINDS[m_kind - 1].name;
}

std::string Log_view::state_of(int item) const {
    switch (item) {
        case ONLY_KIND:
            return kind_name();
        case ONLY_ENTRY:
            return m_only_entry ? m_entry : "any entry";
        default:
            return (debug & bit_of(item).mask) != 0 ? "on" : "off";
    }
}

void Log_view::draw_list(Lcd& lcd, int first_row) const {
    const int rows = lcd.size().rows - first_row;
    const int top = std::clamp(m_cursor - rows + 1, 0, std::max(0, ITEM_COUNT - rows));
    for (int row = 0; row < std::min(rows, ITEM_COUNT); ++row) {
        const int item = top + row;
        lcd.put(first_row + row, 0, (item == m_cursor ? ">" : " ") + name_of(item));
        lcd.put_right(first_row + row, " " + state_of(item));
    }
}

}  // namespace frontpanel
