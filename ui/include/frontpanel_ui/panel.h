// A panel over a menu: keys in, frames out. Wires navigation, editing, notices, idle timeout and lock for an
// application, which either drives it in a loop of its own or calls `run`.
//
// Everything runs on the thread that calls it, the menu thread. One panel at a time: while it lives, the menu's
// `access()` is the library's process-wide data interface, and the panel hears the warnings and
// faults of the menu's rules.
//
// What the application asks of the panel it sets in the fields of `menu.access()`: `go_home`, `lock_and_dim` and
// `time_for_timeout`, the idle timeout in seconds. docs/panel.md describes them.
#ifndef FRONTPANEL_UI_PANEL_H
#define FRONTPANEL_UI_PANEL_H

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <frontpanel_base/end_watch.h>
#include <frontpanel_binding/rule_fault.h>
#include <frontpanel_display/front.h>
#include <frontpanel_menu/encoder_settings.h>
#include <frontpanel_menu/menu.h>
#include <frontpanel_ui/log_lines.h>

namespace FrontPanel {
class Message;
}

namespace frontpanel {

class Message_queue;

inline constexpr size_t SHORTEST_PIN = 4;
inline constexpr size_t LONGEST_PIN = 8;

// Whether the text is 4 to 8 digits.
bool is_pin(const std::string& text);

// Whether choices can be posted to cards. The answer to a post is kept in a plain file of /dev, whose name is all
// capitals: /dev must be writable.
bool can_post();

// How the keys of a display are called that answer a question; an empty one is left out.
struct Answer_keys {
    std::string accepting;
    std::string cancelling;
};

struct Panel_options {
    Lcd_size size = {};  // of the display, until `Panel::set_size`
    std::optional<std::string> pin =
        std::nullopt;  // locks the panel at the start and whenever it dims: see `is_pin`
    std::optional<Encoder_settings> encoder = std::nullopt;  // default: those of the menu
    std::optional<std::chrono::seconds> idle_timeout =
        std::nullopt;  // default: what the device says; 0 for never
    // Readable when something that is shown changed at the device: the main loop then lets the panel tick at once. -1 for
    // a device that does not know.
    int device_descriptor = -1;
    // Called at the beginning of each tick, before anything is read: takes what the device has to tell, so that its
    // descriptor is no longer readable.
    std::function<void()> before_tick = nullptr;
    // How many entries that are not shown follow a change of the device, or of a person, before the panel looks for the
    // next key; the others follow in further ticks, which are due after pauses that leave most of the processor to others.
    // Default: all at once.
    size_t refreshes_at_once = SIZE_MAX;
    // Whether an address belongs to the device's network, so that an opened editor may ping it; default: loopback only.
    std::function<bool(const std::string& address)> may_probe = nullptr;
    std::function<Time()> clock = nullptr;  // default: the steady clock
    // Called with each fault of a rule when it is new, for a log. The panel shows those of cause RULE as notices.
    Fault_listener rule_fault = nullptr;
    Log_lines* log =
        nullptr;  // what the diagnostics key shows, outlives the panel; null: nothing is kept
    std::optional<Answer_keys> answer_keys = std::nullopt;  // default: those of a keyboard
};

class Panel {
public:
    // How often what is shown is read again, and long texts scroll.
    static constexpr std::chrono::milliseconds TICK{400};
    // Between two ticks when the device asks for them.
    static constexpr std::chrono::milliseconds SHORTEST_TICK{100};

    // Shows the menu's homescreen, or else its top menu. The menu outlives the panel. Throws std::invalid_argument
    // when `options.pin` is no PIN.
    explicit Panel(Menu& menu, Panel_options options = {});
    ~Panel();
    Panel(const Panel&) = delete;
    Panel& operator=(const Panel&) = delete;

    // In a loop of the application's own: hand over keys as they come, call `tick` when `due` has passed, and show
    // `frame` when it `has_changed`.
    //
    // The key that wakes a dim panel does nothing else; a locked one asks for the PIN.
    void press(const Key& key);
    // Whether an editor takes the character of a keyboard: its key then types it and means nothing else.
    bool types(char character) const;
    // Keys as messages of the front panel: see key_message.h. Any other message, and a damaged one, is ignored.
    void receive(const FrontPanel::Message& message);
    void receive(Message_queue& messages);
    // The person wants to end the panel. While an edit is open that would be lost, the panel asks first.
    void quit();
    // Whether the person ended the panel.
    bool is_over() const;
    // Reads what is shown and what rules depend on from the device, scrolls, and watches the idle timeout; or, when only
    // that is due, lets more entries follow.
    void tick();
    Time due() const;
    // The device has something new: the next tick is due at once, or soon after a tick that has just been.
    void hurry();
    // The descriptor of the options; -1 while the panel hurries anyway.
    int device_descriptor() const;
    // Shows a text under a title until a key acknowledges it, with the alarm LED. Nothing when it is shown already.
    void tell(const std::string& title, const std::string& text);
    // Whether something happened since `frame` was called last.
    bool has_changed() const;
    // What the display shows. The same frame until something happens: drawing scrolls long texts on.
    const Frame& frame();
    // The next frame is drawn anew, although nothing happened: long texts scroll on.
    void scroll();
    // From now on frames have this size.
    void set_size(Lcd_size size);
    // The time of the panel's clock.
    Time now() const;

    // Shows the panel on `front` until the user ends it or SIGINT, SIGTERM, SIGHUP or SIGQUIT asks the process to end.
    // Returns the exit status: 0, or 128 plus the signal's number. An application with an End_watch of its own passes
    // it. main_loop.h does the same one turn at a time, beside other descriptors.
    int run(Front& front);
    int run(Front& front, const End_watch& end);

private:
    struct Parts;
    std::unique_ptr<Parts> m_parts;
};

}  // namespace frontpanel

#endif
