#include "editing.h"

#include <array>
#include <optional>
#include <utility>

#include "entry_access.h"

namespace panel {
namespace {

constexpr int TITLE_ROW = 0;
constexpr int TEXT_ROW = 1;
constexpr int SOME_COLUMNS = 16;

std::optional<Editor_key> editor_key_of(Key::Kind kind) {
    switch (kind) {
        case Key::UP:
            return Editor_key::UP;
        case Key::DOWN:
            return Editor_key::DOWN;
        case Key::SELECT:
            return Editor_key::SELECT;
        case Key::BACK:
            return Editor_key::ESCAPE;
        case Key::COARSER:
            return Editor_key::COARSER;
        case Key::FINER:
            return Editor_key::FINER;
        case Key::SHORTCUT:
            break;
    }
    return std::nullopt;
}

// A list that its card has not sent yet holds nothing that could be posted.
bool waits_for_its_card(Data_entry& entry) {
    if (!is_live(entry)) {
        return false;
    }
    int smallest = 0;
    int largest = 0;
    int size = 0;
    static_cast<Enum_entry&>(entry).minMaxSize(&smallest, &largest, &size);
    return size <= 1 && display_value(entry, SOME_COLUMNS) == NO_OPTION_YET;
}

// A rule may leave a number without any allowed value.
bool has_no_value(Data_entry& entry) {
    return entry.Get_entry_type() == Data_entry::RANGE_LEAF && !display_value(entry, SOME_COLUMNS);
}

}  // namespace

Editing::Editing(const Device_link& device, Notices& notices, Closed closed)
    : m_device(device), m_notices(notices), m_closed(std::move(closed)) {}

void Editing::open(Data_entry& entry) {
    if (entry.Get_access_type() == Data_entry::READ_ONLY && !is_warning(entry)) {
        m_notices.tell(entry.Get_name(), "read only");
        return;
    }
    if (refresh(entry, m_device.access); m_device.read_failed(entry)) {
        m_notices.tell(entry.Get_name(), "read error", true);
        return;
    }
    if (has_no_value(entry) || waits_for_its_card(entry)) {
        m_notices.tell(entry.Get_name(), is_live(entry) ? "no options yet" : "no value allowed");
        return;
    }
    m_title = title_of(entry);
    m_editor = m_editors.open(entry);
}

// An address is asked for an answer once, when it is opened: that takes up to a second.
std::string Editing::title_of(Data_entry& entry) const {
    if (entry.Get_entry_type() != Data_entry::IP_LEAF) {
        return entry.Get_name();
    }
    auto& address = static_cast<Ip_entry&>(entry);
    std::array<char, Ip_entry::IP_STRING_MAX_LENGTH + 1> text{};
    address.Get_value(text.data(), Ip_entry::IP_STRING_MAX_LENGTH);
    return m_device.may_probe(text.data()) ? address.Get_name() : entry.Get_name();
}

void Editing::press(const Key& key) {
    const std::optional<Editor_key> editor_key = editor_key_of(key.kind);
    if (!editor_key) {
        return;
    }
    switch (m_editor->press(*editor_key)) {
        case Editor_result::OPEN:
            break;
        case Editor_result::ACCEPTED:
            commit_edited();
            break;
        case Editor_result::REFUSED:
            tell_refusal();
            break;
        case Editor_result::DISCARDED:
            close();
            break;
    }
    m_warnings.clear();
}

void Editing::tell_refusal() {
    const std::string name = m_editor->entry()->Get_name();
    if (m_warnings.empty()) {
        m_notices.tell(name, "value refused");
    }
    for (const std::string& warning : m_warnings) {
        m_notices.tell(name, warning);
    }
}

void Editing::commit_edited() {
    Data_entry& entry = *m_editor->entry();
    const int result = commit(entry, m_device.access);
    const bool is_lost = is_live(entry) && !m_device.may_post();
    close();
    if (result != 0 || is_lost) {
        m_notices.tell(entry.Get_name(), "write failed", true);
    }
}

void Editing::close() {
    Data_entry* const target = m_editors.close(*m_editor->entry());
    m_editor = nullptr;
    m_closed(target);
}

void Editing::draw(Frame& frame) {
    const Editor_view shown = m_editor->view(frame.lcd.size().columns);
    frame.lcd.put(TITLE_ROW, 0, m_title);
    if (!shown.step.empty()) {
        frame.lcd.put_right(TITLE_ROW, " " + shown.step);
    }
    frame.lcd.put(TEXT_ROW, 0, shown.text);
    if (shown.cursor != Editor_view::NO_CURSOR) {
        frame.lcd.set_cursor(TEXT_ROW, shown.cursor);
    }
    frame.leds.edit = shown.edit_led;
}

}  // namespace panel
