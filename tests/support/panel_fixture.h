// A panel over a menu that is written in the test.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_PANEL_FIXTURE_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_PANEL_FIXTURE_H

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include <frontpanel_base/character_set.h>
#include <frontpanel_base/input_error.h>
#include <frontpanel_base/problems.h>
#include <frontpanel_ui/panel.h>
#include "controller.h"
#include "support/json_places.h"
#include "support/simulated_menu.h"

namespace frontpanel {

using Lines = std::vector<std::string>;

inline Panel_options options_of_size(Lcd_size size) {
    Panel_options options;
    options.size = size;
    return options;
}

inline Lines lines_of(const Frame& frame) {
    Lines lines;
    for (int row = 0; row < frame.lcd.size().rows; ++row) {
        lines.push_back(text_of(frame.lcd.line(row)));
    }
    return lines;
}

// All that is told of a menu file that does not load; empty when it does.
inline Lines complaints_of(const std::string& text) {
    try {
        simulated_text(text);
    } catch (const Input_errors& errors) {
        return errors.lines();
    }
    return {};
}

// All that is wrong with a menu file, line by line, without the warnings; empty when it loads.
inline std::string error_of(const std::string& text) {
    std::string all;
    for (const std::string& line : complaints_of(text)) {
        if (line.find(": warning: ") == std::string::npos) {
            all += (all.empty() ? "" : "\n") + line;
        }
    }
    return all;
}

// An error's place is its path in the text: see `placed`.
struct Error_case {
    std::string text;
    std::string error;
};

class Menu_panel {
public:
    explicit Menu_panel(const std::string& text, Lcd_size size = {20, 2}, Cards cards = Cards::OFF)
        : m_loaded(simulated_text(text, size.columns, cards)),
          m_controller(m_loaded.menu->root(), link(), size) {
        m_loaded.menu->bindings()->set_warning_listener(
            [this](const std::string& warning) { m_controller.warn(warning); });
        m_loaded.menu->bindings()->set_fault_listener(
            [this](const Rule_fault& fault) { m_controller.tell_fault(fault); });
        m_controller.set_warning_armer([this] { menu().bindings()->arm_warnings(); });
        set_encoder(m_loaded.menu->encoder_settings());
        m_controller.show_home(home_of(menu()));
    }

    Memory_device& device() { return m_loaded.device(); }
    Card_service* cards() { return m_loaded.cards(); }
    Menu& menu() { return *m_loaded.menu; }
    Data_entry& root() { return m_loaded.menu->root(); }
    Controller& controller() { return m_controller; }
    Menu_panel& press(Key::Kind kind, int times = 1) {
        for (int i = 0; i < times; ++i) {
            m_controller.press({kind, 0});
        }
        return *this;
    }
    Menu_panel& shortcut(int button) {
        m_controller.press({Key::SHORTCUT, button});
        return *this;
    }
    Menu_panel& tick() {
        m_controller.tick();
        return *this;
    }
    void set_encoder(const Encoder_settings& encoder) {
        m_controller.configure(encoder, &menu().editor_settings());
    }
    // How an item of the top menu is edited, counted from 0.
    Editor_settings& settings(int item) { return menu().editor_settings()[&this->item(item)]; }
    Data_entry& item(int number) {
        Data_entry* entry = root().Get_child();
        for (int i = 0; i < number; ++i) {
            entry = entry->Get_next();
        }
        return *entry;
    }
    Lines lines() { return lines_of(m_controller.draw()); }
    Leds leds() { return m_controller.draw().leds; }

    // From now on every read, or write, of a parameter without index fails.
    void fail(Memory_device::Operation_kind kind, uint32_t pid) {
        device().set_fault([kind, pid](const Memory_device::Operation& operation) {
            return operation.kind == kind && operation.pid == pid ? 100 : 0;
        });
    }
    void repair() { device().set_fault(nullptr); }

    // From now on no choice can be posted to a card, or again.
    void set_may_post(bool may_post) { m_may_post = may_post; }

private:
    Device_link link() {
        Device_link link = link_to(menu());
        link.may_post = [this] { return m_may_post; };
        return link;
    }

    bool m_may_post = true;
    Simulated_menu m_loaded;
    Controller m_controller;
};

// A panel as an application uses it, over a menu that is written in the test.
struct Application_panel {
    explicit Application_panel(const std::string& text, Panel_options options = {})
        : loaded(simulated_text(text, options.size.columns)),
          panel(*loaded.menu, std::move(options)) {}

    Memory_device& device() { return loaded.device(); }
    Lines lines() { return lines_of(panel.frame()); }

    Simulated_menu loaded;
    Panel panel;
};

// What the display shows in time: the first line, and the lines below it as one text, for a notice all of its pages.
// Each change of those lines is appended until the first one is shown again.
inline std::string shown_in_time(Menu_panel& panel) {
    constexpr int MOST_FRAMES = 300;
    std::string first;
    std::string last;
    std::string all;
    for (int frame = 0; frame < MOST_FRAMES; ++frame) {
        const Lines lines = panel.lines();
        std::string text;
        for (size_t row = 1; row < lines.size(); ++row) {
            text += lines[row].substr(0, lines[row].find_last_not_of(' ') + 1) + " ";
        }
        if (frame == 0) {
            first = text;
            all = lines[0] + "\n" + text;
        } else if (text != last && text == first) {
            break;
        } else if (text != last) {
            all += text;
        }
        last = text;
    }
    return all;
}

}  // namespace frontpanel

#endif
