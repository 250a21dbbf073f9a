#include "editing/editing.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include <frontpanel_menu/entry_access.h>
#include <frontpanel_menu/entry_kind.h>
#include <frontpanel_menu/shown_value.h>
#include <frontpanel_ui/log_lines.h>

namespace frontpanel {
namespace {

constexpr int TITLE_ROW = 0;
constexpr int TEXT_ROW = 1;

// Why an editor closes by itself, and what it does instead.
constexpr const char* LOCKED = "locked: edit ended";
constexpr const char* NO_VALUE = "no value: edit ended";
constexpr const char* WRITE_FAILED = "write failed";
constexpr const char* LIMITS_MOVED_VALUE = "limit: new value";
constexpr const char* OPTIONS_MOVED_CHOICE = "options: new choice";
constexpr const char* OPTIONS_KEPT_CHOICE = "options: choice kept";

// The keys that an open editor takes; any other means one of these in every place, or nothing.
struct Editing_key {
    Key::Kind panel;
    Editor_key editor;
};
constexpr Editing_key EDITING_KEYS[] = {
    {Key::UP, Editor_key::UP},           {Key::DOWN, Editor_key::DOWN},
    {Key::SELECT, Editor_key::SELECT},   {Key::BACK, Editor_key::ESCAPE},
    {Key::COARSER, Editor_key::COARSER}, {Key::FINER, Editor_key::FINER},
    {Key::INSERT, Editor_key::INSERT},   {Key::DELETE, Editor_key::DELETE},
    {Key::ERASE, Editor_key::ERASE},
};

std::optional<Editor_key> editor_key_of(Key::Kind kind) {
    for (const Editing_key& key : EDITING_KEYS) {
        if (key.panel == kind) {
            return key.editor;
        }
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
    return size <= 1 && shown_value(entry) == NO_OPTION_YET;
}

// Why there is nothing to edit.
std::string no_value_text(const std::optional<Value_state>& state) {
    if (!state) {
        return "read error";
    }
    return state->reason.empty() ? "no value yet" : "no value: " + state->reason;
}

// A rule may leave a number without any allowed value.
bool has_no_value(Data_entry& entry) {
    return kind_of(entry).has(Entry_kind::IS_NUMBER) && !shown_value(entry);
}

}  // namespace

Editing::Editing(const Device_link& device, Notices& notices, Closed closed)
    : m_device(device), m_notices(notices), m_closed(std::move(closed)) {}

void Editing::configure(const Encoder_settings& encoder, const Editor_settings_table* entries) {
    m_encoder = encoder;
    m_settings_of = entries;
}

Editor_settings Editing::settings_of(const Data_entry& entry) const {
    Editor_settings settings;
    if (m_settings_of != nullptr && m_settings_of->count(&entry) != 0) {
        settings = m_settings_of->at(&entry);
    }
    settings.wrap = settings.wrap.value_or(m_encoder.wrap);
    return settings;
}

void Editing::open(Data_entry& entry, const std::string& name) {
    m_name = name;
    const Preset* const preset = preset_of(entry);
    if (preset != nullptr && !preset->damage().line.empty()) {
        print_always(preset->damage().line);
        tell("damaged: " + preset->damage().brief());
        return;
    }
    if (refresh(entry, m_device.access); m_device.read_failed(entry)) {
        tell(no_value_text(m_device.state(entry)), true);
        return;
    }
    if (const auto state = m_device.state(entry); state && state->freshness == Freshness::OLD) {
        tell("old value: " + state->reason);
    }
    if (has_no_value(entry) || waits_for_its_card(entry)) {
        tell(is_live(entry) ? "no options yet" : "no value allowed");
        return;
    }
    m_title = m_name;
    m_title_line = Text_line();
    m_reach = reach_of(entry);
    m_level = 0;
    m_settings = settings_of(entry);
    m_speed.reset();
    if (m_arm) {
        m_arm();
    }
    m_editor = m_editors.open(entry, m_settings);
    m_was_changing = is_changing();
}

// An address is asked for an answer once, when it is opened: that takes up to a second. The entry itself would ask
// the text that its line shows, so the panel asks the address that was just read. The library's own mark needs words.
std::string Editing::reach_of(Data_entry& entry) const {
    if (!kind_of(entry).has(Entry_kind::IS_PROBED)) {
        return "";
    }
    auto& address = static_cast<Ip_entry&>(entry);
    std::array<char, Ip_entry::IP_STRING_MAX_LENGTH + 1> text{};
    address.Get_value(text.data(), Ip_entry::IP_STRING_MAX_LENGTH);
    if (!m_device.may_probe(text.data())) {
        return "";
    }
    return Data_entry::isRemoteConnected(text.data()) ? "online" : "offline";
}

// The text beside the title. An option of a tree has an asterisk for each level above it, which is hard to count, and
// not always visible while the option scrolls.
std::string Editing::note_of(const Editor_view& shown) {
    constexpr int TREE = 1;  // as `getWebTypeAsInt` returns it
    if (!is_live(entry()) || static_cast<Enum_entry&>(entry()).getWebTypeAsInt() != TREE) {
        return shown.step.empty() ? m_reach : shown.step;
    }
    const size_t level = std::min(shown.text.find_first_not_of('*'), shown.text.size());
    if (level > 0 || shown.step != m_level_step) {
        m_level = level;
        m_level_step = shown.step;
    }
    return m_level == 0 ? shown.step : "level " + std::to_string(m_level) + " " + shown.step;
}

void Editing::press(const Key& key) {
    const std::optional<Editor_key> editor_key = editor_key_of(key.kind);
    if (editor_key) {
        const int steps = steps_of(key.kind);
        attempt([&] { return m_editor->press(*editor_key, steps); });
    }
}

void Editing::type(char character) {
    attempt([&] { return m_editor->type(character); });
}

Panel_mode Editing::mode() const {
    const Entry_kind& kind = kind_of(entry());
    return !is_changing()                    ? Panel_mode::VIEW
           : kind.has(Entry_kind::IS_TYPED)  ? Panel_mode::TEXT
           : kind.has(Entry_kind::IS_NUMBER) ? Panel_mode::NUMBER
           : m_editor->characters().empty()  ? Panel_mode::OPTIONS
                                             : Panel_mode::FIELDS;
}

int Editing::steps_of(Key::Kind key) {
    const bool is_detent = key == Key::UP || key == Key::DOWN;
    if (!is_detent || !m_encoder.acceleration || m_settings.acceleration <= 1 || !m_clock) {
        return 1;
    }
    return m_speed.steps(key, m_clock(), m_settings.acceleration);
}

// A value that raises warnings is refused, and taken when it is tried again. An engine may count it as news too
// that its warnings end: then there is nothing to ask.
void Editing::attempt(const Attempt& store) {
    m_warnings.clear();
    Editor_result result = store();
    if (result == Editor_result::REFUSED && m_warnings.empty()) {
        result = m_editor->retry();
    }
    if (result == Editor_result::REFUSED && !m_warnings.empty()) {
        m_notices.ask(m_name, m_warnings, [this](bool accepted) { answer(accepted); });
    } else {
        perform(result);
    }
}

void Editing::answer(bool accepted) {
    if (accepted) {
        attempt([this] { return m_editor->retry(); });
    } else {
        cancel();
    }
}

// Trying the old value makes an engine forget what it has warned of, unless that is warned of in the same words.
void Editing::cancel() {
    if (m_settings.preview) {
        m_editor->propose_held();
    } else {
        restore();
    }
    if (m_arm) {
        m_arm();
    }
}

// The old value is not asked about: the device has it, or had it.
void Editing::restore() {
    if (!m_editor->restore()) {
        m_editor->restore();
    }
}

void Editing::perform(Editor_result result) {
    switch (result) {
        case Editor_result::OPEN:
            break;
        case Editor_result::STORED:
            if (!write()) {
                refresh(entry(), m_device.access);
                m_editor->propose_held();
            }
            break;
        case Editor_result::REFUSED:
            tell("value refused");
            break;
        case Editor_result::MOVED:
            tell(kind_of(entry()).has(Entry_kind::IS_NUMBER) ? LIMITS_MOVED_VALUE
                                                             : OPTIONS_MOVED_CHOICE);
            break;
        case Editor_result::LOCKED:
            tell(is_read_only(entry()) ? "read only" : "cannot be edited");
            break;
        case Editor_result::DISCARDED:
            close();
            break;
        case Editor_result::NOT_RESTORED:
            restore();
            put_back_and_close();
            break;
        case Editor_result::RESTORED:
            put_back_and_close();
            break;
        case Editor_result::ACCEPTED:
            write_and_close();
            break;
    }
}

// Shows the reason when a value was not written.
bool Editing::write() {
    const Write_gate::Outcome outcome = m_device.gate.commit(entry());
    if (outcome.result == Write_gate::Result::REFUSED) {
        tell(outcome.refusal.reason);
        return false;
    }
    const bool is_posted = !is_live(entry()) || m_device.may_post();
    const bool is_written = outcome.result == Write_gate::Result::WRITTEN && is_posted;
    if (!is_written) {
        tell(WRITE_FAILED, true);
    }
    return is_written;
}

void Editing::write_and_close() {
    Preset* const preset = preset_of(entry());
    if (preset != nullptr && preset->is_chosen()) {
        load(*preset, {});
        return;
    }
    write();
    close();
}

void Editing::put_back_and_close() {
    const bool is_written =
        m_device.gate.put_back(entry()) == 0 && (!is_live(entry()) || m_device.may_post());
    close();
    if (!is_written) {
        tell(WRITE_FAILED, true);
    }
}

// The questions of all its values are asked as one.
void Editing::load(Preset& preset, const std::vector<std::string>& accepted) {
    const Write_gate::Outcome outcome =
        m_device.gate.write(preset.values(), Write_gate::Hidden_items::ACCEPTED, accepted);
    if (outcome.result == Write_gate::Result::WARNED) {
        m_notices.ask(m_name, outcome.warnings,
                      [this, &preset, warnings = outcome.warnings](bool is_accepted) {
                          if (is_accepted) {
                              load(preset, warnings);
                          } else {
                              preset.wait();
                          }
                      });
        return;
    }
    if (m_settled) {
        m_settled(outcome.settlement);
    }
    tell_loaded(preset, outcome);
    preset.wait();
    close();
}

void Editing::tell_loaded(Preset& preset, const Write_gate::Outcome& outcome) {
    if (outcome.result == Write_gate::Result::WRITTEN) {
        const Data_entry* const menu = preset.Get_parent();
        m_notices.tell(menu != nullptr ? menu->Get_name() : m_name, m_name + " loaded");
        return;
    }
    std::string text = "not loaded: " + outcome.refusal.text();
    for (const std::string& name : outcome.not_put_back) {
        text += ", " + name + " not put back";
    }
    tell(text, outcome.result == Write_gate::Result::FAILED);
}

void Editing::follow() {
    refresh(entry(), m_device.access);
    if (m_device.read_failed(entry()) || !follow_access()) {
        return;
    }
    if (waits_for_its_card(entry())) {
        end(NO_VALUE);
        return;
    }
    const bool is_number = kind_of(entry()).has(Entry_kind::IS_NUMBER);
    switch (m_editor->follow()) {
        case Editor_change::NONE:
            break;
        case Editor_change::KEPT:
            tell(OPTIONS_KEPT_CHOICE);
            break;
        case Editor_change::MOVED:
            tell(is_number ? LIMITS_MOVED_VALUE : OPTIONS_MOVED_CHOICE);
            break;
        case Editor_change::NO_VALUE:
            end(NO_VALUE);
            break;
    }
}

// False when the entry was edited and is read-only by now. One that may be edited by now is opened anew.
bool Editing::follow_access() {
    const bool was_changing = std::exchange(m_was_changing, is_changing());
    if (was_changing && !m_was_changing) {
        end(LOCKED);
        return false;
    }
    if (!was_changing && m_was_changing) {
        m_editors.open(entry(), m_settings);
    }
    return true;
}

void Editing::drop() {
    m_notices.cancel();
    m_warnings.clear();
    perform(m_editor->press(Editor_key::ESCAPE));
}

void Editing::end(const std::string& reason) {
    drop();
    tell(reason);
}

void Editing::close() {
    Data_entry* const target = m_editors.close(*m_editor->entry());
    m_editor = nullptr;
    m_closed(target);
}

void Editing::draw(Frame& frame) {
    const Editor_view shown = m_editor->view(frame.lcd.size().columns);
    m_title_line.draw(frame.lcd, TITLE_ROW, 0,
                      {m_title, note_of(shown), mark_of(m_device.state(entry()))});
    frame.lcd.put(TEXT_ROW, 0, shown.text);
    if (shown.cursor != Editor_view::NO_CURSOR) {
        frame.lcd.set_cursor(TEXT_ROW, shown.cursor);
    }
    frame.leds.edit = shown.edit_led;
    frame.leds.alarm = m_device.read_failed(entry());
}

}  // namespace frontpanel
