#include <frontpanel_ui/script_player.h>

#include <frontpanel_base/character_set.h>
#include <frontpanel_base/input_error.h>
#include <frontpanel_binding/parameter_address.h>

namespace frontpanel {
namespace {

std::string name_of(const Parameter_name& parameter) {
    return address_text(parameter.pid, parameter.varidx);
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

int Script_player::play(const Script& script) {
    int failures = 0;
    for (const Step& step : script.steps) {
        check_parameter(script, step);
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

void Script_player::check_parameter(const Script& script, const Step& step) const {
    const bool names_one =
        step.kind == Step::EXPECT_WRITE || step.kind == Step::FAIL || step.kind == Step::SET;
    if (names_one && !m_device.has_parameter(step.parameter)) {
        throw Input_error(script.file + ":" + std::to_string(step.line) +
                          ": the device has no parameter " + name_of(step.parameter));
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
    const std::string shown = text_of(m_frame->lcd.line(step.row));
    if (matches(shown, step.text)) {
        return std::nullopt;
    }
    return "line " + std::to_string(step.row + 1) + " shows |" + shown + "|, expected |" +
           step.text + "|";
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
    const std::string got = description_of(*write);
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
