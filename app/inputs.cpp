#include "inputs.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

#include <frontpanel_base/input_error.h>
#include <frontpanel_display/combined_front.h>
#include <frontpanel_displays/led_folders.h>
#ifdef FRONTPANEL_INPUTS
#include <frontpanel_inputs/evdev_input.h>
#endif

namespace frontpanel {

namespace {

// Names of the kernel, whatever a display calls its keys.
bool is_event_name(const std::string& name) {
    constexpr const char* PREFIXES[] = {"KEY_", "BTN_", "REL_", "ABS_"};
    return std::any_of(std::begin(PREFIXES), std::end(PREFIXES),
                       [&name](const char* prefix) { return name.rfind(prefix, 0) == 0; });
}

bool is_axis(const std::pair<const std::string, Key>& entry) {
    return entry.first.rfind("REL_", 0) == 0 || entry.first.rfind("ABS_", 0) == 0;
}

constexpr const char* LACKS_INPUTS =
    "this build lacks the input \"evdev\" (build with -D FRONTPANEL_INPUTS=ON)";

bool has_axes_only(const Key_map& keys) {
    return std::all_of(keys.begin(), keys.end(), is_axis);
}

#ifdef FRONTPANEL_INPUTS

// A map that only reverses an axis keeps the usual buttons.
Event_key_map event_keys_of(const Options& options) {
    Event_key_map keys = options.input_keys;
    if (has_axes_only(keys)) {
        keys.merge(usual_event_keys());
    }
    return keys;
}

std::vector<std::unique_ptr<Input>> inputs_of(const Options& options, std::ostream& log) {
    const Event_key_map keys = event_keys_of(options);
    std::vector<std::unique_ptr<Input>> inputs;
    for (const std::string& device : options.inputs) {
        inputs.push_back(std::make_unique<Evdev_input>(device, keys, log));
    }
    return inputs;
}

#else

void check_event_names(const Key_map& keys) {
    if (!keys.empty()) {
        throw Input_error(std::string(LACKS_INPUTS) + ", and \"" + keys.begin()->first +
                          "\" is a key of it");
    }
}

// Requires: the options name no input; `parse_input` rejects every one in this build.
std::vector<std::unique_ptr<Input>> inputs_of(const Options&, std::ostream&) {
    return {};
}

#endif

}  // namespace

bool has_inputs() {
#ifdef FRONTPANEL_INPUTS
    return true;
#else
    return false;
#endif
}

std::string parse_input(const std::string& text) {
    constexpr const char* PREFIX = "evdev:";
    std::string place = text.substr(text.find(':') + 1);
    if (text.rfind(PREFIX, 0) != 0 || place.empty()) {
        throw Input_error("expected evdev:PATH or evdev:NAME, found \"" + text + "\"");
    }
    if (!has_inputs()) {
        throw Input_error(LACKS_INPUTS);
    }
    return place;
}

void split_keys(const Key_map& keys, Key_map& of_display, Key_map& of_inputs) {
    Key_map others;
    Key_map named;
    for (const auto& [name, key] : keys) {
        (is_event_name(name) ? named : others)[name] = key;
    }
    check_event_names(named);
    if (!has_select(keys) && !has_axes_only(keys)) {
        throw Input_error("no key selects");
    }
    of_inputs = std::move(named);
    of_display = others.empty() ? usual_keys() : std::move(others);
}

void check_input_keys(const Options& options) {
    if (!options.inputs.empty() && !has_axes_only(options.input_keys) &&
        !has_select(options.input_keys)) {
        throw Input_error("--keys: no key of an input selects, and the display has no keys");
    }
}

std::unique_ptr<Front> whole_front(std::unique_ptr<Front> display, const Options& options,
                                   std::ostream& log) {
    if (options.inputs.empty() && options.leds.empty()) {
        return display;
    }
    std::vector<std::unique_ptr<Front>> fronts;
    fronts.push_back(std::move(display));
    if (!options.leds.empty()) {
        fronts.push_back(std::make_unique<Led_folders>(options.leds, log));
    }
    return std::make_unique<Combined_front>(std::move(fronts), inputs_of(options, log));
}

}  // namespace frontpanel
