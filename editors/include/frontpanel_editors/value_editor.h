// What every value editor has in common towards the panel: it takes key events and tells what it shows.
//
// An editor draws nothing. The panel opens and closes it through the library's dispatcher, hands it the
// keys while it is open, and puts its text, cursor and LEDs wherever its display has them. An editor changes
// its entry's value when SELECT accepts it, or at each step of an entry with preview; writing the value to the
// device is the panel's. Used from the menu thread.
#ifndef FRONTPANEL_EDITORS_VALUE_EDITOR_H
#define FRONTPANEL_EDITORS_VALUE_EDITOR_H

#include <frontpanel_editors/editor_settings.h>

#include <string>

class Data_entry;

namespace frontpanel {

enum class Editor_key { UP, DOWN, SELECT, ESCAPE, COARSER, FINER, INSERT, DELETE };

enum class Editor_result {
    OPEN,    // goes on editing
    STORED,  // the entry holds the proposed value, which is to be committed; the editor is still open
    ACCEPTED,   // the entry holds the new value, which is to be committed
    REFUSED,    // the entry refused the value and holds the one before; the editor is still open
    LOCKED,     // the key would change what is only viewed
    DISCARDED,  // left with nothing to commit
    RESTORED,   // left; the entry holds the value that it was opened with, which is to be committed
    NOT_RESTORED  // left, but the entry refuses the value that it was opened with
};

// What has become of a proposed value when what the entry allows has changed.
enum class Editor_change {
    NONE,     // nothing that the editor shows
    KEPT,     // other values are allowed, and the proposed one is still among them
    MOVED,    // it was not, and another one is proposed in its place
    NO_VALUE  // no value is allowed at all
};

struct Editor_view {
    static constexpr int NO_CURSOR = -1;

    std::string text;        // at most the columns that were asked for
    int cursor = NO_CURSOR;  // column of `text` that the next step changes
    std::string step;        // what one encoder step changes, as a short text; empty when it is 1
    bool edit_led = false;
};

class Value_editor {
public:
    Value_editor();
    virtual ~Value_editor();
    Value_editor(const Value_editor&) = delete;
    Value_editor& operator=(const Value_editor&) = delete;

    // How the next entry is edited; before the editor opens.
    virtual void configure(const Editor_settings& settings) = 0;
    // `steps`, at least 1, is what a detent counts for where numbers are turned. A closed editor ignores keys
    // and answers DISCARDED.
    virtual Editor_result press(Editor_key key, int steps = 1) = 0;
    // Tries once more to store what was refused: a warning of the entry's binding refuses a value once. The answer is what the refused key's would have been.
    virtual Editor_result retry() = 0;
    // Gives the entry the value back that it was opened with; the proposed value stays. False when the entry
    // refuses it.
    virtual bool restore() = 0;
    // Proposes what the entry holds.
    virtual void propose_held() = 0;
    // Looks at the entry again after it was refreshed. The entry must be open.
    virtual Editor_change follow() = 0;
    // What the editor shows on a line of `columns` characters (at least 2). A text that does not fit scrolls
    // by one character a call. A closed editor shows nothing.
    virtual Editor_view view(int columns) = 0;
    // Whether keys change the value; not when closed, nor when the value is only viewed.
    virtual bool can_change() const = 0;
    // The entry being edited; null when closed.
    virtual Data_entry* entry() const = 0;
};

}  // namespace frontpanel

#endif
