#include "navigation/list_view.h"

#include <algorithm>
#include <string>
#include <unordered_set>

#include <frontpanel_menu/entry_access.h>
#include <frontpanel_menu/list_line.h>
#include <frontpanel_menu/shown_value.h>

namespace frontpanel {
namespace {

constexpr int LEAST_ROWS_WITH_TITLE = 3;
constexpr const char* READ_ERROR = "read error";
constexpr const char* NO_VALUE = "---";

// A mounted menu is not asked for its first entry again: that would build it anew.
std::vector<Data_entry*> children_of(const Menu_step& menu) {
    std::vector<Data_entry*> children;
    Data_entry* child =
        menu.mounted != nullptr ? menu.mounted : neighbour(*menu.menu, Data_entry::OPERATION_CHILD);
    while (child != nullptr) {
        children.push_back(child);
        child = neighbour(*child, Data_entry::OPERATION_NEXT);
    }
    return children;
}

bool contains(const std::vector<Data_entry*>& entries, const Data_entry* entry) {
    return std::find(entries.begin(), entries.end(), entry) != entries.end();
}

// Where the cursor goes from an entry that is no longer visible: the next visible one behind it.
Data_entry* next_visible(const std::vector<Data_entry*>& all,
                         const std::vector<Data_entry*>& visible, const Data_entry* from) {
    auto candidate = std::find(all.begin(), all.end(), from);
    while (candidate != all.end() && !contains(visible, *candidate)) {
        ++candidate;
    }
    return candidate == all.end() ? nullptr : *candidate;
}

// Not while a value is on its way for the first time.
bool is_alarming(const std::optional<Value_state>& state, bool is_unread) {
    return state ? state->freshness != Freshness::FRESH && state->has_failed : is_unread;
}

}  // namespace

List_view::List_view(Data_entry& menu, const Device_link& device)
    : m_menu{&menu, nullptr}, m_device(device) {
    refresh();
}

void List_view::open(const Menu_step& menu, Data_entry* cursor, bool has_title) {
    m_menu = menu;
    m_has_title = has_title;
    m_is_at_rest = false;
    m_visible.clear();
    m_cursor = 0;
    m_top = 0;
    m_title = Text_line();
    m_lines.clear();
    m_drawn.clear();
    refresh();
    if (contains(m_visible, cursor)) {
        place_cursor(cursor);
    }
}

void List_view::rest(const std::string& text) {
    m_is_at_rest = true;
    m_rest_text = text;
    m_cursor = 0;
}

void List_view::refresh() {
    m_left_in_round = 0;
    refresh([](size_t) { return true; });
}

void List_view::refresh_shown() {
    const size_t first = m_turn;
    m_turn += ENTRIES_A_TURN;
    m_left_in_round -= std::min(m_left_in_round, ENTRIES_A_TURN);
    refresh([first](size_t position) {
        return position >= first && position < first + ENTRIES_A_TURN;
    });
}

bool List_view::is_drawn(const Data_entry* entry) const {
    return std::find(m_drawn.begin(), m_drawn.end(), entry) != m_drawn.end();
}

// Reads the value of a line. False when the entry is hidden afterwards, since its value may decide that.
bool List_view::read(Data_entry& entry) {
    return is_menu(entry) ? m_device.is_listed(entry)
                          : entry.isVisible(true, &m_device.access) >= 0;
}

// An entry that is neither on the display nor due keeps its former answer.
void List_view::refresh(const std::function<bool(size_t)>& is_due) {
    Data_entry* const held = selected();
    const std::vector<Data_entry*> all = children_of(m_menu);
    const std::unordered_set<Data_entry*> before(m_visible.begin(), m_visible.end());
    std::vector<Data_entry*> visible;
    for (size_t position = 0; position < all.size(); ++position) {
        Data_entry* const entry = all[position];
        const bool is_visible = is_drawn(entry)    ? read(*entry)
                                : is_due(position) ? m_device.is_listed(*entry)
                                                   : before.count(entry) != 0;
        if (is_visible) {
            visible.push_back(entry);
        }
    }
    m_size = all.size();
    if (m_turn >= m_size) {
        m_turn = 0;
    }
    m_visible = std::move(visible);
    if (held != nullptr) {
        place_cursor(next_visible(all, m_visible, held));
    }
}

void List_view::move(int steps) {
    const int last = std::max(0, static_cast<int>(m_visible.size()) - 1);
    const int end = steps > 0 ? last : 0;
    const bool goes_round = m_wrap && steps != 0 && m_cursor == end;
    m_cursor = goes_round ? last - end : std::clamp(m_cursor + steps, 0, last);
}

Data_entry* List_view::selected() const {
    return m_visible.empty() ? nullptr : m_visible[static_cast<size_t>(m_cursor)];
}

// Without a wanted entry the cursor goes to the last one.
void List_view::place_cursor(Data_entry* wanted) {
    const auto found = std::find(m_visible.begin(), m_visible.end(), wanted);
    m_cursor = static_cast<int>(found - m_visible.begin());
    move(0);
}

void List_view::scroll_to_cursor(int lines) {
    const int last_top = std::max(0, static_cast<int>(m_visible.size()) - lines);
    m_top = std::clamp(m_top, m_cursor - lines + 1, m_cursor);
    m_top = std::clamp(m_top, 0, last_top);
}

int List_view::first_row(Lcd_size size) const {
    return m_has_title && size.rows >= LEAST_ROWS_WITH_TITLE ? 1 : 0;
}

// The entries on the display.
std::vector<Data_entry*> List_view::with_line(int lines) const {
    const auto top = m_visible.begin() + m_top;
    return {top, top + std::min<std::ptrdiff_t>(lines, m_visible.end() - top)};
}

// The cursor moves to the next visible entry, or to the last.
void List_view::take_out(Data_entry* hidden) {
    const auto found = std::find(m_visible.begin(), m_visible.end(), hidden);
    if (found - m_visible.begin() < m_cursor) {
        --m_cursor;
    }
    m_visible.erase(found);
    move(0);
}

// When a value hides its entry, the next one takes the line and is read as well.
bool List_view::bring_into_view(Lcd_size size) {
    const int lines = size.rows - first_row(size);
    for (bool has_read = false;; has_read = true) {
        scroll_to_cursor(lines);
        const std::vector<Data_entry*> shown = with_line(lines);
        const auto unread = std::find_if(shown.begin(), shown.end(),
                                         [this](Data_entry* entry) { return !is_drawn(entry); });
        if (unread == shown.end()) {
            m_drawn.assign(shown.begin(), shown.end());
            return has_read;
        }
        if (read(**unread)) {
            m_drawn.push_back(*unread);
        } else {
            take_out(*unread);
        }
    }
}

void List_view::draw(Lcd& lcd) {
    bring_into_view(lcd.size());
    m_alarm = false;
    int row = first_row(lcd.size());
    if (row == 1) {
        draw_title(lcd);
    }
    if (m_visible.empty()) {
        lcd.put(row, CURSOR_COLUMNS, m_is_at_rest ? m_rest_text : "(empty)");
    }
    const std::vector<Data_entry*> shown = with_line(lcd.size().rows - row);
    keep_lines(shown);
    for (Data_entry* const entry : shown) {
        lcd.put(row, 0, entry == selected() && !m_is_at_rest ? ">" : " ");
        m_lines[entry].draw(lcd, row, CURSOR_COLUMNS, texts_of(*entry));
        ++row;
    }
}

void List_view::draw_title(Lcd& lcd) {
    const std::string place =
        m_visible.empty() ? ""
                          : std::to_string(m_cursor + 1) + "/" + std::to_string(m_visible.size());
    m_title.draw(lcd, 0, 0, {m_menu.menu->Get_name(), place, ""});
}

void List_view::keep_lines(const std::vector<Data_entry*>& drawn) {
    std::unordered_map<const Data_entry*, Text_line> kept;
    for (const Data_entry* const entry : drawn) {
        kept[entry] = std::move(m_lines[entry]);
    }
    m_lines = std::move(kept);
}

Text_line::Texts List_view::texts_of(Data_entry& entry) {
    const std::string name = entry.Get_name();
    if (is_menu(entry)) {
        return {name, MENU_MARK, ""};
    }
    const std::optional<Value_state> state = m_device.state(housed(entry));
    const bool is_unread = m_device.read_failed(housed(entry));
    const bool is_unknown = state && (is_unread || state->freshness == Freshness::UNKNOWN);
    std::string mark = mark_of(state);
    if (mark.empty() && is_read_only(entry)) {
        mark = READ_ONLY_MARK;
    }
    m_alarm = m_alarm || is_alarming(state, is_unread);
    if (is_unread || is_unknown) {
        return {name, is_unknown ? UNKNOWN_VALUE : READ_ERROR, mark};
    }
    return {name, shown_value(entry).value_or(NO_VALUE), mark, least_name_columns(entry)};
}

}  // namespace frontpanel
