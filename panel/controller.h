// The panel's front without its hardware: keys in, frames out.
//
// Shows the list of one menu, an open editor, or a notice that stays until a key acknowledges it. Knows no
// terminal and no clock: whoever drives it presses keys, lets time pass with `tick`, and draws.
#ifndef FRONTPANEL_PANEL_CONTROLLER_H
#define FRONTPANEL_PANEL_CONTROLLER_H

#include <string>
#include <vector>

#include "device_link.h"
#include "editor_set.h"
#include "key.h"
#include "lcd.h"
#include "list_view.h"

namespace panel {

class Controller {
public:
    // Shows the menu below `root`. Menu and device outlive the controller.
    Controller(Data_entry& root, const Device_link& device, Lcd_size size);

    void press(const Key& key);
    // Reads what is shown from the device again.
    void tick();
    // Draws the front as it stands. Long texts scroll by one character a call.
    Frame draw();

    // Shows a text of the binding engines, such as a warning about a value, when the panel next stands still.
    void warn(const std::string& text);

private:
    void press_in_list(const Key& key);
    void press_in_editor(const Key& key);
    void select();
    void leave();
    void jump(int button);
    void edit(Data_entry& entry);
    void commit_edited();
    void tell_refusal();
    void close_editor();
    void refresh_list();
    void notify(const std::string& title, const std::string& text, bool alarm);
    std::string title_of(Data_entry& entry) const;
    void draw_editor(Frame& frame);
    void draw_notice(Frame& frame) const;

    struct Notice {
        std::string title;
        std::string text;
        bool alarm;
    };

    Data_entry& m_root;
    Device_link m_device;
    Lcd_size m_size;
    List_view m_list;
    Editor_set m_editors;
    Value_editor* m_editor = nullptr;     // open, or null
    std::string m_title;                  // of the open editor
    std::vector<Notice> m_notices;        // the first is shown
    std::vector<std::string> m_warnings;  // raised by the value being stored
};

}  // namespace panel

#endif
