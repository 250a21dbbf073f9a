#include <frontpanel_ui/script_player.h>

#include <frontpanel_base/character_set.h>
#include <frontpanel_base/input_error.h>
#include <frontpanel_binding/parameter_address.h>

namespace frontpanel {
namespace {

// Frames: the longest text, its gap and the time for which its start is held.
constexpr int LONGEST_ROUND = 300;

std::string name_of(const Parameter_name& parameter) {
    return parameter.name.empty() ? address_text(parameter.pid, parameter.varidx)
                                  : "[" + parameter.name + "]";
}

std::string description_of(const Script_device::Write& write) {
    return name_of(write.parameter) + " = " + write.value + (write.failed ? " (failed)" : "");
}

std::string lit(bool edit, bool alarm) {
    const std::string names = std::string(edit ? " edit" : "") + (alarm ? " alarm" : "");
    return names.empty() ? " none" : names;
}

}  // namespace

bool matches(const std::string& line, const std::string& pattern) {
    size_t at = 0;
    size_t in_pattern = 0;
    size_t star = std::string::npos;  // the last '*' passed, and where its text ends so far
    size_t star_end = 0;
    while (at < line.size()) {
        if (in_pattern < pattern.size() && pattern[in_pattern] == '*') {
            star = in_pattern++;
            star_end = at;
        } else if (in_pattern < pattern.size() && pattern[in_pattern] == line[at]) {
            ++in_pattern;
            ++at;
        } else if (star != std::string::npos) {
            in_pattern = star + 1;
            at = ++star_end;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', in_pattern) == std::string::npos;
}

Script_player::Script_player(Panel& panel, Script_device& device, Display& display,
                             std::ostream& out, std::ostream& differences)
    : m_panel(panel),
      m_device(device),
      m_display(display),
      m_out(out),
      m_differences(differences) {}

int Script_player::play(const Script& given) {
    int failures = 0;
    Script script = given;
    for (Step& step : script.steps) {
        resolve(script, step);
    }
    show();
    for (const Step& step : script.steps) {
        perform(script, step);
        if (const auto differs = difference(step)) {
            ++failures;
            m_out.flush();
            m_differences << printable(script.file) << ':' << step.line << ": "
                          << printable(*differs) << '\n';
        }
    }
    return failures;
}

// Messages still use the name of an address that was given by name.
void Script_player::resolve(const Script& script, Step& step) const {
    const bool names_one =
        step.kind == Step::EXPECT_WRITE || step.kind == Step::FAIL || step.kind == Step::SET;
    if (!names_one) {
        return;
    }
    const std::string& name = step.parameter.name;
    const auto found = name.empty() ? step.parameter : m_device.find(name);
    if (found) {
        step.parameter.pid = found->pid;
        step.parameter.varidx = found->varidx;
    }
    if (!found || !m_device.has_parameter(step.parameter)) {
        throw Input_error(script.file + ":" + std::to_string(step.line) +
                          ": the device has no parameter " + name_of(step.parameter));
    }
    const std::string why_fixed =
        step.kind == Step::EXPECT_WRITE ? "" : m_device.why_fixed(step.parameter);
    if (!why_fixed.empty()) {
        throw Input_error(script.file + ":" + std::to_string(step.line) + ": parameter " +
                          name_of(step.parameter) + " " + why_fixed);
    }
}

void Script_player::show() {
    m_frame = m_panel.frame();
    m_display.show(*m_frame);
}

void Script_player::perform(const Script& script, const Step& step) {
    switch (step.kind) {
        case Step::PRESS:
        case Step::TICK:
            m_out << "\n> " << printable(step.source) << '\n';
            for (int i = 0; i < step.count; ++i) {
                step.kind == Step::TICK ? m_panel.tick() : m_panel.press(step.key);
                show();
            }
            break;
        case Step::SAY:
            m_out << "\n" << printable(step.text) << '\n';
            break;
        case Step::FAIL:
            m_device.set_fault(step.parameter, step.write, step.on);
            break;
        case Step::SET:
            set_value(script, step);
            break;
        case Step::EXPECT_LINE:
        case Step::EXPECT_PART:
        case Step::EXPECT_LEDS:
        case Step::EXPECT_WRITE:
        case Step::EXPECT_NO_WRITE:
        case Step::EXPECT_SELECTED:
            break;
    }
}

void Script_player::set_value(const Script& script, const Step& step) {
    if (const auto reason = m_device.set(step.parameter, step.text)) {
        throw Input_error(script.file + ":" + std::to_string(step.line) + ": parameter " +
                          name_of(step.parameter) + " cannot be set to \"" + step.text +
                          "\": " + *reason);
    }
}

std::optional<std::string> Script_player::difference(const Step& step) {
    switch (step.kind) {
        case Step::EXPECT_LINE:
            return line_difference(step);
        case Step::EXPECT_PART:
            return part_difference(step);
        case Step::EXPECT_LEDS:
            return led_difference(step);
        case Step::EXPECT_WRITE:
            return write_difference(step);
        case Step::EXPECT_SELECTED:
            return selection_difference(step);
        case Step::EXPECT_NO_WRITE:
            return no_write_difference();
        default:
            return std::nullopt;
    }
}

std::optional<std::string> Script_player::line_difference(const Step& step) const {
    if (step.row >= m_frame->lcd.size().rows) {
        return "the display has no line " + std::to_string(step.row + 1);
    }
    const std::string shown = m_frame->lcd.text(step.row);
    if (matches(shown, step.text)) {
        return std::nullopt;
    }
    return "line " + std::to_string(step.row + 1) + " shows |" + shown + "|, expected |" +
           step.text + "|";
}

bool Script_player::shows_part(const Step& step) const {
    return matches(m_frame->lcd.text(step.row), "*" + step.text + "*");
}

// A text that scrolls shows all of itself in a round.
std::optional<std::string> Script_player::part_difference(const Step& step) {
    if (step.row >= m_frame->lcd.size().rows) {
        return line_difference(step);
    }
    const std::string first = m_frame->lcd.text(step.row);
    for (int frame = 0; frame < LONGEST_ROUND && !shows_part(step); ++frame) {
        m_panel.scroll();
        m_frame = m_panel.frame();
    }
    if (shows_part(step)) {
        return std::nullopt;
    }
    return "line " + std::to_string(step.row + 1) + " shows |" + first +
           "|, nothing of which is |" + step.text + "|";
}

std::optional<std::string> Script_player::led_difference(const Step& step) const {
    const Leds& leds = m_frame->leds;
    if (leds.edit == step.edit && leds.alarm == step.alarm) {
        return std::nullopt;
    }
    return "LEDs lit:" + lit(leds.edit, leds.alarm) + ", expected:" + lit(step.edit, step.alarm);
}

std::optional<std::string> Script_player::selection_difference(const Step& step) const {
    const auto pid = static_cast<int>(step.parameter.pid);
    const int selected = m_device.selected_option(step.slot, pid);
    if (selected == step.option) {
        return std::nullopt;
    }
    return "the card in slot " + std::to_string(step.slot) + " has " +
           (selected < 0 ? "no option" : "option " + std::to_string(selected)) + " of " +
           std::to_string(pid) + " selected, expected " + std::to_string(step.option);
}

std::optional<std::string> Script_player::write_difference(const Step& step) {
    const std::string expected = name_of(step.parameter) + " = " + step.text;
    const std::optional<Script_device::Write> write = m_device.oldest_write();
    if (!write) {
        return "expected the write " + expected + ", the device got none";
    }
    m_device.drop_write();
    Script_device::Write named = *write;
    const bool is_meant = write->parameter.pid == step.parameter.pid &&
                          write->parameter.varidx == step.parameter.varidx;
    named.parameter.name = is_meant ? step.parameter.name : "";
    const std::string got = description_of(named);
    if (got == expected) {
        return std::nullopt;
    }
    return "expected the write " + expected + ", the device got " + got;
}

std::optional<std::string> Script_player::no_write_difference() const {
    const std::optional<Script_device::Write> write = m_device.oldest_write();
    if (!write) {
        return std::nullopt;
    }
    return "expected no write, the device got " + description_of(*write);
}

}  // namespace frontpanel
