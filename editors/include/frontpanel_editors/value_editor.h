// The interface of every value editor: it takes key events, and returns the text, cursor and LED to show.
//
// An editor draws nothing. The application opens and closes it through the library's dispatcher (`Prepare` and
// `ExitLEDs` of the abstract editors in <frontpanel_data/selection.h>), hands it the keys while it is open, and
// puts its view on its display. An editor changes its entry's value when SELECT accepts it, or at each step of an
// entry with preview; the application then commits the entry. The application owns editor and entry; the entry
// outlives the time for which it is open. Errors are results; nothing is thrown. Menu thread only.
#ifndef FRONTPANEL_EDITORS_VALUE_EDITOR_H
#define FRONTPANEL_EDITORS_VALUE_EDITOR_H

#include <frontpanel_editors/editor_settings.h>

#include <string>

class Data_entry;

namespace frontpanel {

enum class Editor_key { UP, DOWN, SELECT, ESCAPE, COARSER, FINER, INSERT, DELETE, ERASE };

enum class Editor_result {
    OPEN,    // goes on editing
    STORED,  // the entry holds the proposed value, which is to be committed; the editor is still open
    ACCEPTED,   // the entry holds the new value, which is to be committed
    REFUSED,    // the entry refused the value and holds the one before; the editor is still open
    LOCKED,     // the key would change a value that is only viewed
    DISCARDED,  // left with nothing to commit
    RESTORED,   // left; the entry holds the value that it was opened with, which is to be committed
    NOT_RESTORED,  // left, but the entry refuses the value that it was opened with
    MOVED  // the value is not allowed: the nearest one is proposed in its place; the editor is still open
};

// What happened to the proposed value when the allowed values of the entry changed.
enum class Editor_change {
    NONE,     // nothing changed in the editor
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

    // How the next entry is edited. Call it before the editor opens; the settings stay until the next call.
    virtual void configure(const Editor_settings& settings) = 0;
    // `steps`, at least 1, is the number of steps that the detent counts as in a number. A closed editor ignores keys
    // and returns DISCARDED.
    virtual Editor_result press(Editor_key key, int steps = 1) = 0;
    // The characters that can be typed now, printable ASCII; empty for none.
    virtual std::string characters() const { return {}; }
    // Types one of them. One that does not fit where it is typed is ignored. Returns what `press` returns.
    virtual Editor_result type(char /*character*/) { return Editor_result::OPEN; }
    // Whether ERASE removes something that was typed.
    virtual bool can_erase() const { return false; }
    // Tries once more to store what was refused: a warning of the entry's binding refuses a value once. Returns what
    // the refused key would have returned.
    virtual Editor_result retry() = 0;
    // Gives the entry the value back that it was opened with; the proposed value stays. Returns false when the entry
    // refuses it.
    virtual bool restore() = 0;
    // Proposes the entry's value.
    virtual void propose_held() = 0;
    // Whether leaving now would lose something: another value is proposed than the entry was opened with.
    virtual bool has_changes() = 0;
    // Adapts the proposed value to what the entry allows after a refresh. Requires: the editor is open.
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
