#include <frontpanel_displays/terminal.h>

#include <curses.h>
#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>

#include <frontpanel_base/input_error.h>
#include <frontpanel_display/legend.h>
#include <frontpanel_displays/character_rom.h>
#include "terminal_keys.h"

namespace frontpanel {
namespace {

constexpr int BORDER = 1;
constexpr int LED_ROWS = 1;
constexpr int ESCAPE_DELAY_MS = 25;  // how long an escape key waits for the rest of an arrow key

constexpr int LEAST_LEGEND_COLUMNS = 40;

// What ends the process must not leave the terminal without echo.
void restore_terminal() {
    endwin();
}

// Whether the terminal can put its cursor anywhere: without that there is no picture, only its pieces.
bool moves_cursor() {
    const char* const sequence = tigetstr("cup");
    // terminfo's own mark of a capability that is no text
    const char* const no_text = reinterpret_cast<char*>(-1);  // NOLINT(performance-no-int-to-ptr)
    return sequence != nullptr && sequence != no_text;
}

// A terminal that went away answers every wait at once, with nothing.
bool input_is_gone() {
    pollfd input{STDIN_FILENO, POLLIN, 0};
    return poll(&input, 1, 0) > 0 && (input.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
}

std::string terminal_type() {
    const char* const type = std::getenv("TERM");
    return "terminal type \"" + std::string(type == nullptr ? "" : type) + "\"";
}

// The library keeps several copies of the whole screen, however large it is.
constexpr int MOST_COLUMNS_OR_ROWS = 1000;

void check_extent(const std::string& source, long extent) {
    if (extent > MOST_COLUMNS_OR_ROWS) {
        throw Input_error(source + ": expected at most " + std::to_string(MOST_COLUMNS_OR_ROWS));
    }
}

// What the library takes for the terminal's size: the environment, in any notation of C, before the terminal's own
// word.
void check_extents(int output) {
    for (const char* const name : {"COLUMNS", "LINES"}) {
        if (const char* const value = std::getenv(name)) {
            check_extent(name + ("=" + std::string(value)), std::strtol(value, nullptr, 0));
        }
    }
    winsize window{};
    if (ioctl(output, TIOCGWINSZ, &window) == 0) {
        check_extent("a terminal of " + std::to_string(window.ws_col) + " columns", window.ws_col);
        check_extent("a terminal of " + std::to_string(window.ws_row) + " lines", window.ws_row);
    }
}

char ascii_of(char32_t character) {
    return character >= U' ' && character <= U'~' ? static_cast<char>(character)
                                                  : plain_letter_of(character).value_or('?');
}

// A terminal of another character set has ASCII.
std::string terminal_text(const Lcd& lcd, int row) {
    if (std::string(nl_langinfo(CODESET)) == "UTF-8") {
        return lcd.text(row);
    }
    const std::u32string& characters = lcd.characters(row);
    std::string text(characters.size(), ' ');
    std::transform(characters.begin(), characters.end(), text.begin(), ascii_of);
    return text;
}

}  // namespace

Lcd_size terminal_size_for(Lcd_size lcd, int columns) {
    const int least = std::max(lcd.columns + 2 * BORDER, LEAST_LEGEND_COLUMNS);
    const int legend = most_legend_lines(std::max(least, columns), QUIT_KEY);
    return {least, lcd.rows + 2 * BORDER + LED_ROWS + legend};
}

Terminal::Terminal(int output) : m_output(fdopen(dup(output), "w")), m_screen(nullptr) {
    check_extents(output);
    // Characters only: numbers keep their decimal point.
    std::setlocale(LC_CTYPE, "");
    m_screen = m_output ? newterm(nullptr, m_output.get(), stdin) : nullptr;
    if (m_screen == nullptr) {
        throw Input_error(terminal_type() +
                          " is not known: set TERM, or name a script with --script");
    }
    if (!moves_cursor()) {
        endwin();
        delscreen(m_screen);
        throw Input_error(terminal_type() +
                          " cannot move its cursor: set TERM, or name a script with --script");
    }
    m_last_act.emplace(Ending::ANY, restore_terminal);
    cbreak();
    noecho();
    nonl();
    keypad(stdscr, TRUE);
    nodelay(stdscr, TRUE);
    set_escdelay(ESCAPE_DELAY_MS);
}

Terminal::~Terminal() {
    endwin();
    m_last_act.reset();
    delscreen(m_screen);
}

void Terminal::show(const Frame& frame) {
    erase();
    const Lcd_size needed = terminal_size_for(frame.lcd.size(), COLS);
    if (COLS < needed.columns || LINES < needed.rows) {
        curs_set(0);
        mvaddnstr(0, 0, "Terminal too small", COLS);
        const std::string sizes =
            "needs " + size_text(needed) + ", has " + size_text({COLS, LINES});
        mvaddnstr(1, 0, sizes.c_str(), COLS);
    } else {
        draw_lcd(frame.lcd, frame.dim);
        const int below = frame.lcd.size().rows + 2 * BORDER;
        draw_leds(below, frame.leds);
        draw_legend(below + LED_ROWS, frame);
        place_cursor(frame.lcd);
    }
    refresh();
}

void Terminal::draw_lcd(const Lcd& lcd, bool dim) const {
    const int right = lcd.size().columns + BORDER;
    const int bottom = lcd.size().rows + BORDER;
    mvhline(0, BORDER, ACS_HLINE, lcd.size().columns);
    mvhline(bottom, BORDER, ACS_HLINE, lcd.size().columns);
    mvvline(BORDER, 0, ACS_VLINE, lcd.size().rows);
    mvvline(BORDER, right, ACS_VLINE, lcd.size().rows);
    mvaddch(0, 0, ACS_ULCORNER);
    mvaddch(0, right, ACS_URCORNER);
    mvaddch(bottom, 0, ACS_LLCORNER);
    mvaddch(bottom, right, ACS_LRCORNER);
    attrset(dim ? A_DIM : A_NORMAL);
    for (int row = 0; row < lcd.size().rows; ++row) {
        mvaddstr(BORDER + row, BORDER, terminal_text(lcd, row).c_str());
    }
    attrset(A_NORMAL);
}

void Terminal::draw_leds(int row, const Leds& leds) const {
    const std::string text = std::string(leds.edit ? "(*)" : "( )") + " Edit  " +
                             (leds.alarm ? "(*)" : "( )") + " Alarm  " +
                             (leds.heart ? "(*)" : "( )") + " Alive";
    mvaddstr(row, 0, text.c_str());
}

void Terminal::draw_legend(int row, const Frame& frame) const {
    for (const std::string& line : folded(legend_of(frame, QUIT_KEY), COLS)) {
        mvaddstr(row++, 0, line.c_str());
    }
}

void Terminal::place_cursor(const Lcd& lcd) const {
    const bool shown = lcd.cursor_row() >= 0;
    curs_set(shown ? 1 : 0);
    if (shown) {
        move(BORDER + lcd.cursor_row(), BORDER + lcd.cursor_column());
    }
}

pollfd Terminal::source() const {
    return {STDIN_FILENO, POLLIN, 0};
}

std::optional<Front_event> Terminal::next(Time) {
    if (input_is_gone()) {
        return Front_event{Front_event::GONE};
    }
    // A key without a meaning is passed over.
    for (int code = getch(); code != ERR; code = getch()) {
        if (const std::optional<Front_event> event = event_of(code)) {
            return event;
        }
    }
    return std::nullopt;
}

}  // namespace frontpanel
