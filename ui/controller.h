// The panel's front without its hardware: messages of keys in, frames out.
//
// Shows the list of one menu, an open editor, or a notice that stays until a key acknowledges it. Uses no
// terminal and no clock: its owner passes keys, calls `tick`, and draws.
#ifndef FRONTPANEL_UI_CONTROLLER_H
#define FRONTPANEL_UI_CONTROLLER_H

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include <frontpanel_binding/rule_fault.h>
#include <frontpanel_display/key.h>
#include <frontpanel_display/lcd.h>
#include <frontpanel_ui/message_queue.h>
#include "device_link.h"
#include "editing/editing.h"
#include "keys/key_place.h"
#include "navigation/navigation.h"
#include "views/log_view.h"
#include "views/notices.h"

namespace frontpanel {

class Controller {
public:
    // Shows the menu below `root`. Menu and device outlive the controller.
    Controller(Data_entry& root, const Device_link& device, Lcd_size size);

    // Adds a homescreen and favourites to the menu, and goes to the top. The entries in `home` outlive the
    // controller.
    void show_home(const Home& home) { m_navigation.show_home(home); }
    // How the encoder works, and which entries are edited in their own way; null for none. The table outlives
    // the controller.
    void configure(const Encoder_settings& encoder, const Editor_settings_table* entries);
    // See `Notices::set_keys`.
    void set_answer_keys(const std::string& accepting, const std::string& cancelling) {
        m_notices.set_keys(accepting, cancelling);
    }
    // See `Editing`.
    void set_warning_armer(std::function<void()> arm) {
        m_editing.set_warning_armer(std::move(arm));
    }
    void set_clock(Editing::Clock clock) { m_editing.set_clock(std::move(clock)); }

    // Handles the message of a key. The message of an idle panel leads back to the top menu, and drops an edited
    // value. Any other message, and a damaged one, is ignored.
    void receive(const FrontPanel::Message& message);
    // Takes all that waits.
    void receive(Message_queue& messages);
    // What the diagnostics key shows; outlives the controller. Without it the key says that nothing is kept.
    void set_log(Log_lines& lines) { m_log.emplace(lines); }

    void press(const Key& key);
    // What a keyboard can type now; empty while nothing is edited. A key with one of these characters types it.
    std::string characters() const;
    // The key as the menu takes it: the encoder may be set up to turn the other way.
    Key turned(const Key& key) const;
    // The person wants to end the panel. Whether it ends at once: an edit that would be lost is asked about first, and
    // `ends` is called when the person agrees.
    bool may_end(std::function<void()> ends);
    // Reads what is shown from the device again, and what rules depend on.
    void tick();
    // How many entries follow the device in one `press` or `tick`; default: all that have to. What is shown follows at
    // once; the rest waits for `settle_rest`.
    void set_most_refreshes(size_t most) { m_most_refreshes = most; }
    // Whether entries wait, and may follow now.
    bool has_rest() const;
    // Lets as many of them follow as a tick does, or asks some of the list. Whether another frame is due for it.
    bool settle_rest();
    // From now on frames have this size.
    void set_size(Lcd_size size) { m_size = size; }
    // The entry of the open editor; null while none is open.
    const Data_entry* edited() const { return m_editing.is_open() ? &m_editing.entry() : nullptr; }
    // Draws the current frame. Long texts scroll by one character a call. Values that were not drawn last time are read
    // first.
    Frame draw();

    // Shows a fault of a rule, unless the device is to blame: that shows where its values do.
    void tell_fault(const Rule_fault& fault);
    // Shows what happened at the device, unless it is shown already.
    void tell_device(const std::string& title, const std::string& text) {
        m_notices.tell_once(title, text, true);
    }
    // Shows a text of the binding engines, such as a warning about a value, as soon as the panel is free.
    void warn(const std::string& text) { m_editing.warn(text); }

private:
    static constexpr Key::Kind NO_KEY = Key::SHORTCUT;  // one that ends no editing

    Key_place place() const;
    Panel_mode mode() const;
    Key_uses key_uses();
    void press_meant(const Key& key);
    void press_in_menu(const Key& key);
    bool is_free() const;
    bool settle();
    void tell_circle(const Binding_settlement& settled);
    void settle_and_show();
    void show_log();
    void go_home();
    void answer_end(bool accepted, const std::function<void()>& ends);
    void editor_closed();
    void follow_edited();
    void read_list();

    Device_link m_device;
    Lcd_size m_size;
    size_t m_most_refreshes = SIZE_MAX;
    bool m_has_rest = false;
    Notices m_notices;
    Navigation m_navigation;
    Data_entry* m_edited = nullptr;  // the entry in the menu: a link, or the edited entry itself
    Key::Kind m_key = NO_KEY;        // that is just being pressed
    bool m_is_reversed = false;
    Editing m_editing;
    std::optional<Log_view> m_log;
    std::set<std::string> m_told_circles;
    bool m_asks_for_end = false;
    int m_shown_faults = 0;  // among the notices
};

}  // namespace frontpanel

#endif
