// What every value editor has in common towards the panel: it takes key events and tells what it shows.
//
// An editor draws nothing. The panel opens and closes it through the library's dispatcher, hands it the
// keys while it is open, and puts its text, cursor and LEDs wherever its display has them. An editor changes
// its entry's value only when SELECT accepts it; writing the value to the device is the panel's. Used from
// the menu thread.
#ifndef FRONTPANEL_EDITORS_VALUE_EDITOR_H
#define FRONTPANEL_EDITORS_VALUE_EDITOR_H

#include <string>

class Data_entry;

enum class Editor_key { UP, DOWN, SELECT, ESCAPE, COARSER, FINER };

enum class Editor_result {
    OPEN,      // goes on editing
    ACCEPTED,  // the entry holds the new value, which is to be committed
    REFUSED,   // the entry refused the value and holds the old one; the editor is still open
    DISCARDED  // left without a change
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

    // A closed editor ignores keys and answers DISCARDED.
    virtual Editor_result press(Editor_key key) = 0;
    // What the editor shows on a line of `columns` characters (at least 2). A text that does not fit scrolls
    // by one character a call. A closed editor shows nothing.
    virtual Editor_view view(int columns) = 0;
    // The entry being edited; null when closed.
    virtual Data_entry* entry() const = 0;
};

#endif
