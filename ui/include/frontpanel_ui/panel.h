// A panel over a menu: keys in, frames out. Wires navigation, editing, notices, idle timeout and lock for an
// application, which either drives it in a loop of its own or calls `run`.
//
// Everything runs on the thread that calls it, the menu thread. One panel at a time: while it lives, the menu's
// `access()` is the library's process-wide data interface, and the panel receives the warnings and faults of the
// menu's rules.
//
// The application controls the panel through the fields of `menu.access()`: `go_home`, `lock_and_dim` and
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

// Whether choices can be posted to cards. The library writes the answer to a post to the file /dev/NULL, so /dev must
// be writable.
bool can_post();

// The names of the keys that answer a question; an empty one is left out.
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
        std::nullopt;  // default: the device's `time_for_timeout`; 0 for never
    // Becomes readable when a value that is shown changes at the device: the panel's tick is then due at once. -1 for a
    // device without such a descriptor.
    int device_descriptor = -1;
    // Called at the beginning of each tick, before anything is read: takes the device's events, so that its descriptor
    // is no longer readable.
    std::function<void()> before_tick = nullptr;
    // How many entries that are not shown are refreshed after a change before the panel looks for the next key. The
    // others follow in further ticks, which are due after pauses that leave most of the processor to other processes.
    // Default: all at once.
    size_t refreshes_at_once = SIZE_MAX;
    // Whether the editor of an address may ping it, since it belongs to the device's network; default: loopback only.
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
    // The interval in which shown values are read again and long texts scroll.
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
    // The key that wakes a dim panel has no other effect; a locked panel asks for the PIN.
    void press(const Key& key);
    // Whether an editor or the PIN prompt accepts this character: its key then types it and has no other meaning.
    bool types(char character) const;
    // Keys as messages of the front panel: see key_message.h. Any other message, and a damaged one, is ignored.
    void receive(const FrontPanel::Message& message);
    void receive(Message_queue& messages);
    // Ends the panel for the user. The panel asks first if an edit would be lost.
    void quit();
    // Whether the person ended the panel.
    bool is_over() const;
    // Reads the shown values and the parameters of rules from the device, scrolls, and checks the idle timeout; or,
    // when only that is due, refreshes more entries.
    void tick();
    Time due() const;
    // Call it when the device has a change: the next tick is due at once, or shortly after the last one.
    void hurry();
    // The descriptor of the options; -1 while the next tick is due early anyway.
    int device_descriptor() const;
    // Shows a text under a title until a key acknowledges it, with the alarm LED. Does nothing if it is already shown.
    void tell(const std::string& title, const std::string& text);
    // Whether something happened since `frame` was called last.
    bool has_changed() const;
    // The frame for the display. It is drawn only after something happened, since drawing scrolls long texts.
    const Frame& frame();
    // Draws the next frame again although nothing happened: long texts scroll on.
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
