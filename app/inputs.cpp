#include "inputs.h"

#include <utility>
#include <vector>

#include <frontpanel_base/input_error.h>
#include <frontpanel_display/combined_front.h>
#include <frontpanel_displays/led_folders.h>
#ifdef FRONTPANEL_INPUTS
#include <frontpanel_inputs/evdev_input.h>
#endif

namespace frontpanel {

std::string parse_input(const std::string& text) {
    constexpr const char* PREFIX = "evdev:";
    std::string place = text.substr(text.find(':') + 1);
    if (text.rfind(PREFIX, 0) != 0 || place.empty()) {
        throw Input_error("expected evdev:PATH or evdev:NAME, found \"" + text + "\"");
    }
#ifndef FRONTPANEL_INPUTS
    throw Input_error("this build has no inputs");
#else
    return place;
#endif
}

#ifdef FRONTPANEL_INPUTS

void split_keys(const Key_map& keys, Key_map& of_display, Key_map& of_inputs) {
    Key_map others;
    Key_map named;
    for (const auto& [name, key] : keys) {
        (is_event_name(name) ? named : others)[name] = key;
    }
    check_event_names(named);
    of_inputs = std::move(named);
    of_display = others.empty() ? usual_keys() : std::move(others);
}

namespace {

std::vector<std::unique_ptr<Input>> inputs_of(const Options& options, std::ostream& log) {
    const Event_key_map keys = options.input_keys.empty() ? usual_event_keys() : options.input_keys;
    std::vector<std::unique_ptr<Input>> inputs;
    for (const std::string& device : options.inputs) {
        inputs.push_back(std::make_unique<Evdev_input>(device, keys, log));
    }
    return inputs;
}

}  // namespace

#else

void split_keys(const Key_map& keys, Key_map& of_display, Key_map& of_inputs) {
    of_display = keys;
    of_inputs.clear();
}

namespace {

std::vector<std::unique_ptr<Input>> inputs_of(const Options&, std::ostream&) {
    return {};
}

}  // namespace

#endif

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
