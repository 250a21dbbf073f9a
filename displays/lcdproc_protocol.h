// The language of an LCDproc server, as far as the panel speaks it: lines of words in ISO-8859-1.
#ifndef FRONTPANEL_DISPLAYS_LCDPROC_PROTOCOL_H
#define FRONTPANEL_DISPLAYS_LCDPROC_PROTOCOL_H

#include <string>
#include <string_view>
#include <vector>

#include <frontpanel_display/lcd.h>

namespace frontpanel {

// One line of the server.
struct Lcdproc_answer {
    enum Kind {
        CONNECT,  // the answer to "hello"; `size` is the display's
        LISTEN,   // the screen `word` is shown from now on
        IGNORE,   // the screen `word` is hidden from now on
        KEY,      // the key `word` was pressed
        FENCE,    // the answer to "noop": everything before it is done
        SUCCESS,
        REFUSAL,  // "huh?"
        END,      // "bye"
        OTHER
    };
    Kind kind = OTHER;
    std::string word;
    Lcd_size size{0, 0};
};

// A greeting without a size between 1x1 and 256x64 is OTHER.
Lcdproc_answer parse_lcdproc_answer(const std::string& line);

// The word or text as one argument of a command: quoted, with quotes and backslashes escaped.
std::string lcdproc_quoted(std::string_view text);

// Shows frames on the panel's screen at the server: keeps what the server shows, and returns the commands that change
// it to another frame.
class Lcdproc_screen {
public:
    static constexpr const char* NAME = "panel";

    // A screen of the size of the server's display. The server has none yet.
    explicit Lcdproc_screen(Lcd_size size);

    // The commands that make the screen, blank.
    std::vector<std::string> setup() const;
    // The commands that make it show the frame from what it shows now; none when it does. What does not fit the
    // display is cut, what is left of it stays blank.
    std::vector<std::string> update(const Frame& frame);

private:
    void update_cursor(const Lcd& lcd, std::vector<std::string>& commands);
    void update_lamps(const Frame& frame, std::vector<std::string>& commands);
    std::string line_of(const Lcd& lcd, int row) const;

    Lcd_size m_size;
    std::vector<std::string> m_lines;
    int m_cursor_row = -1;
    int m_cursor_column = -1;
    int m_outputs = -1;    // unknown
    int m_backlight = -1;  // unknown
};

}  // namespace frontpanel

#endif
