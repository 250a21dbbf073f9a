#include <frontpanel_ui/script_player.h>

#include <frontpanel_base/character_set.h>
#include <frontpanel_base/input_error.h>
#include <frontpanel_base/numbers.h>

namespace frontpanel {
namespace {

constexpr int FAULT_RESULT = 100;  // none of the device's own

std::string name_of(uint32_t pid, uint32_t varidx) {
    std::string name = std::to_string(pid);
    if (varidx != 0) {
        name += "." + std::to_string(varidx & 0xFFU);
    }
    if (varidx > 0xFFU) {
        name += "." + std::to_string(varidx >> 8);
    }
    return name;
}

std::string description_of(const Memory_device::Write& write) {
    return name_of(write.pid, write.varidx) + " = " + write.value +
           (write.result == 0 ? "" : " (failed)");
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

Script_player::Script_player(Controller& controller, Memory_device& device,
                             const Card_service* cards, Display& display, std::ostream& out,
                             std::ostream& differences)
    : m_controller(controller),
      m_device(device),
      m_cards(cards),
      m_display(display),
      m_out(out),
      m_differences(differences) {
    m_device.set_write_listener(
        [this](const Memory_device::Write& write) { m_writes.push_back(write); });
    m_device.set_fault([this](const Memory_device::Operation& operation) {
        const bool write = operation.kind == Memory_device::Operation_kind::WRITE;
        const bool read = operation.kind == Memory_device::Operation_kind::READ;
        const bool fails =
            (read || write) && m_faults.count({write, operation.pid, operation.varidx}) != 0;
        return fails ? FAULT_RESULT : 0;
    });
}

Script_player::~Script_player() {
    m_device.set_write_listener(nullptr);
    m_device.set_fault(nullptr);
}

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
    const auto [pid, varidx] = step.parameter;
    if (names_one && m_device.type(pid, varidx) == INVALID_TYPE) {
        throw Input_error(script.file + ":" + std::to_string(step.line) +
                          ": the device has no parameter " + name_of(pid, varidx));
    }
}

void Script_player::show() {
    m_frame = m_controller.draw();
    m_display.show(*m_frame);
}

void Script_player::perform(const Script& script, const Step& step) {
    switch (step.kind) {
        case Step::PRESS:
        case Step::TICK:
            m_out << "\n> " << printable(step.source) << '\n';
            for (int i = 0; i < step.count; ++i) {
                step.kind == Step::TICK ? m_controller.tick() : press(step.key);
                show();
            }
            break;
        case Step::SAY:
            m_out << "\n" << printable(step.text) << '\n';
            break;
        case Step::FAIL:
            set_fault(step);
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

void Script_player::press(const Key& key) {
    m_messages.push(message_of(key));
    m_controller.receive(m_messages);
}

void Script_player::set_fault(const Step& step) {
    const Fault fault(step.write, step.parameter.pid, step.parameter.varidx);
    if (step.on) {
        m_faults.insert(fault);
    } else {
        m_faults.erase(fault);
    }
}

void Script_player::set_value(const Script& script, const Step& step) {
    const auto [pid, varidx] = step.parameter;
    const std::optional<int32_t> number = parse_number<int32_t>(step.text);
    const bool is_text = m_device.type(pid, varidx) == STRING;
    int result = Memory_device::WRONG_TYPE;
    if (is_text) {
        result = m_device.set_text(pid, varidx, step.text);
    } else if (number) {
        result = m_device.set_integer(pid, varidx, *number);
    }
    if (result != 0) {
        throw Input_error(script.file + ":" + std::to_string(step.line) + ": parameter " +
                          name_of(pid, varidx) + " cannot be set to \"" + step.text +
                          "\": " + Memory_device::result_text(result));
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
            if (m_writes.empty()) {
                return std::nullopt;
            }
            return "expected no write, the device got " + description_of(m_writes.front());
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
    const int selected = m_cards == nullptr ? -1 : m_cards->selected(step.slot, pid);
    if (selected == step.option) {
        return std::nullopt;
    }
    return "the card in slot " + std::to_string(step.slot) + " has " +
           (selected < 0 ? "no option" : "option " + std::to_string(selected)) + " of " +
           std::to_string(pid) + " selected, expected " + std::to_string(step.option);
}

std::optional<std::string> Script_player::write_difference(const Step& step) {
    const std::string expected =
        name_of(step.parameter.pid, step.parameter.varidx) + " = " + step.text;
    if (m_writes.empty()) {
        return "expected the write " + expected + ", the device got none";
    }
    const std::string got = description_of(m_writes.front());
    m_writes.pop_front();
    if (got == expected) {
        return std::nullopt;
    }
    return "expected the write " + expected + ", the device got " + got;
}

}  // namespace frontpanel
