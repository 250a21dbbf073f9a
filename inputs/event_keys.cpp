#include <frontpanel_inputs/event_keys.h>

#include <libevdev/libevdev.h>

#include <algorithm>
#include <cstdlib>

#include <frontpanel_base/input_error.h>
#include <frontpanel_display/key_table.h>

namespace frontpanel {
namespace {

constexpr int PRESSED = 1;
constexpr int REPEATED = 2;

constexpr int SHORTCUT_KEYS = 12;

struct Usual_key {
    const char* name;
    Key::Kind kind;
};
// Volume knobs on USB are keyboards with these keys.
constexpr Usual_key USUAL_KEYS[] = {
    {"KEY_UP", Key::UP},          {"KEY_DOWN", Key::DOWN},     {"KEY_LEFT", Key::LEFT},
    {"KEY_RIGHT", Key::RIGHT},    {"KEY_ENTER", Key::SELECT},  {"KEY_KPENTER", Key::SELECT},
    {"KEY_SELECT", Key::SELECT},  {"KEY_OK", Key::SELECT},     {"BTN_0", Key::SELECT},
    {"KEY_MUTE", Key::SELECT},    {"KEY_ESC", Key::BACK},      {"KEY_BACK", Key::BACK},
    {"BTN_1", Key::BACK},         {"KEY_VOLUMEUP", Key::UP},   {"KEY_VOLUMEDOWN", Key::DOWN},
    {"KEY_INSERT", Key::INSERT},  {"KEY_DELETE", Key::DELETE}, {"KEY_BACKSPACE", Key::ERASE},
    {"KEY_KPPLUS", Key::COARSER}, {"KEY_KPMINUS", Key::FINER},
};

int type_of(const std::string& name) {
    return libevdev_event_type_from_code_name(name.c_str());
}

uint16_t code_of(const std::string& name) {
    return static_cast<uint16_t>(libevdev_event_code_from_code_name(name.c_str()));
}

bool is_axis(int type) {
    return type == EV_REL || type == EV_ABS;
}

// A wheel sends its steps a second time in finer units.
bool is_fine(const Input_signal& signal) {
    return signal.type == EV_REL &&
           (signal.code == REL_WHEEL_HI_RES || signal.code == REL_HWHEEL_HI_RES);
}

// A key that is held turns and moves on. It does not accept or leave again and again.
bool repeats(Key::Kind kind) {
    constexpr Key::Kind REPEATING[] = {Key::UP,    Key::DOWN,  Key::COARSER,
                                       Key::FINER, Key::ERASE, Key::DELETE};
    return std::find(std::begin(REPEATING), std::end(REPEATING), kind) != std::end(REPEATING);
}

}  // namespace

Event_key_map usual_event_keys() {
    Event_key_map keys;
    for (const Usual_key& key : USUAL_KEYS) {
        keys[key.name] = {key.kind};
    }
    for (int button = 1; button <= SHORTCUT_KEYS; ++button) {
        keys["KEY_F" + std::to_string(button)] = {Key::SHORTCUT, button};
        if (button < 10) {
            keys["KEY_" + std::to_string(button)] = {Key::SHORTCUT, button};
        }
    }
    return keys;
}

void check_event_names(const Event_key_map& keys) {
    for (const auto& [name, key] : keys) {
        const int type = type_of(name);
        if (type != EV_KEY && !is_axis(type)) {
            throw Input_error("unknown key or axis \"" + name + "\" of an input device");
        }
        if (is_axis(type) && key.kind != Key::UP && key.kind != Key::DOWN) {
            throw Input_error(std::string("expected ")
                                  .append(name)
                                  .append("=up or ")
                                  .append(name)
                                  .append("=down"));
        }
    }
}

Event_keys::Event_keys(const Event_key_map& keys) {
    for (const auto& [name, key] : keys) {
        const int type = type_of(name);
        if (is_axis(type)) {
            m_reversed[{static_cast<uint16_t>(type), code_of(name)}] = key.kind == Key::DOWN;
        } else {
            m_keys[code_of(name)] = key;
        }
    }
}

std::vector<Key> Event_keys::take(const Input_signal& signal,
                                  const std::optional<Axis_range>& range) {
    if (signal.type == EV_REL && !is_fine(signal)) {
        return turn(signal.type, signal.code, signal.value);
    }
    if (signal.type == EV_ABS) {
        return turn(signal.type, signal.code, steps_to(signal, range));
    }
    if (signal.type == EV_KEY) {
        const auto found = m_keys.find(signal.code);
        const bool counts =
            found != m_keys.end() &&
            (signal.value == PRESSED || (signal.value == REPEATED && repeats(found->second.kind)));
        return counts ? std::vector<Key>{found->second} : std::vector<Key>();
    }
    return {};
}

int64_t Event_keys::steps_to(const Input_signal& signal, const std::optional<Axis_range>& range) {
    const auto known = m_positions.find(signal.code);
    const int64_t before = known == m_positions.end() ? signal.value : known->second;
    const int64_t steps = signal.value - before;
    m_positions[signal.code] = signal.value;
    if (!range || range->max <= range->min) {
        return steps;
    }
    if (signal.value == range->max || before == range->max) {
        m_whole_ranges.insert(signal.code);
    }
    const int64_t round =
        int64_t{range->max} - range->min + (m_whole_ranges.count(signal.code) > 0);
    return steps + (steps > round / 2 ? -round : steps < -(round / 2) ? round : 0);
}

std::vector<Key> Event_keys::turn(uint16_t type, uint16_t code, int64_t steps) const {
    const auto found = m_reversed.find({type, code});
    const bool is_reversed = found != m_reversed.end() && found->second;
    const Key key{(steps > 0) != is_reversed ? Key::UP : Key::DOWN};
    const int64_t count = std::min<int64_t>(std::abs(steps), MOST_STEPS);
    return std::vector<Key>(static_cast<size_t>(count), key);
}

}  // namespace frontpanel
