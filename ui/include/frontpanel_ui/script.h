// A script: key events, and the expected display and writes. docs/scripts.md describes the words.
#ifndef FRONTPANEL_UI_SCRIPT_H
#define FRONTPANEL_UI_SCRIPT_H

#include <cstdint>
#include <string>
#include <vector>

#include <frontpanel_display/key.h>

namespace frontpanel {

// A parameter by its address, or by the name that the menu file declares.
struct Parameter_name {
    uint32_t pid = 0;
    uint32_t varidx = 0;
    std::string name = {};  // empty: `pid` and `varidx` are the address
};

struct Step {
    enum Kind {
        PRESS,
        TICK,
        SAY,
        EXPECT_LINE,
        EXPECT_PART,
        EXPECT_LEDS,
        EXPECT_WRITE,
        EXPECT_NO_WRITE,
        EXPECT_SELECTED,
        FAIL,
        SET
    };

    int line = 0;        // in the file, from 1
    std::string source;  // the step as it is written, without blanks around it
    Kind kind = TICK;
    int count = 1;             // PRESS and TICK: how often
    Key key{Key::UP};          // PRESS
    int row = 0;               // EXPECT_LINE and EXPECT_PART, from 0
    std::string text;          // what is said, expected or set
    bool edit = false;         // EXPECT_LEDS
    bool alarm = false;        // EXPECT_LEDS
    Parameter_name parameter;  // EXPECT_WRITE, FAIL, SET
    int slot = 0;              // EXPECT_SELECTED: the card's
    int option = 0;            // EXPECT_SELECTED: the option's index; `parameter` names the list
    bool write = false;        // FAIL: writing fails; false: reading
    bool on = false;           // FAIL: begins; false: ends
};

struct Script {
    std::string file;
    std::vector<Step> steps;
};

// Input_error, naming file and line, when the text is no script. `file` only names it.
Script parse_script(const std::string& file, const std::string& text);

}  // namespace frontpanel

#endif
