#include <frontpanel_displays/picture.h>

#include <utility>

#include <frontpanel_base/atomic_file.h>
#include <frontpanel_base/character_set.h>

namespace frontpanel {
namespace {

// All lengths are in pixels of the picture, which scales to any size.
constexpr int CELL_WIDTH = 14;
constexpr int CELL_HEIGHT = 25;
constexpr int GAP = 2;           // between cells
constexpr int BASELINE = 18;     // of a character, below the top of its cell
constexpr int BEZEL = 14;        // around the cells
constexpr int MARGIN = 26;       // around everything
constexpr int CONTROLS = 64;     // height of the strip of LEDs and buttons below the display
constexpr int KNOB = 42;         // radius of the encoder's knob
constexpr int KNOB_SPACE = 128;  // width that the knob takes at the right

constexpr const char* STYLE =
    "<style>"
    "text{font-family:'DejaVu Sans Mono',Menlo,Consolas,monospace;text-anchor:middle}"
    ".ink{font-size:21px;fill:#1b2410}.inverse{font-size:21px;fill:#aec648}"
    ".print{font-size:10px;fill:#c9cdd2;letter-spacing:1px}"
    ".sign{font-size:15px;fill:#e8eaed}"
    ".cell{fill:#a5bd40}.dim{fill:#101214;opacity:.5}.cursor{fill:#1b2410}.key{fill:#4b5159;stroke:#24272b;stroke-width:2}"
    "</style>\n";

std::string escaped(const std::string& text) {
    std::string result;
    for (const char character : text) {
        if (character == '&') {
            result += "&amp;";
        } else if (character == '<') {
            result += "&lt;";
        } else if (character == '>') {
            result += "&gt;";
        } else {
            result += character;
        }
    }
    return result;
}

std::string attribute(const char* name, int value) {
    return std::string(" ") + name + "=\"" + std::to_string(value) + "\"";
}

std::string rectangle(int x, int y, int width, int height, const std::string& look) {
    return "<rect" + attribute("x", x) + attribute("y", y) + attribute("width", width) +
           attribute("height", height) + " " + look + "/>\n";
}

std::string circle(int x, int y, int radius, const std::string& look) {
    return "<circle" + attribute("cx", x) + attribute("cy", y) + attribute("r", radius) + " " +
           look + "/>\n";
}

std::string print(int x, int y, const char* look, const std::string& text) {
    return "<text" + attribute("x", x) + attribute("y", y) + " class=\"" + look + "\">" +
           escaped(text) + "</text>\n";
}

struct Place {
    int x;
    int y;
};

Place cell_place(int row, int column) {
    return {MARGIN + BEZEL + column * (CELL_WIDTH + GAP),
            MARGIN + BEZEL + row * (CELL_HEIGHT + GAP)};
}

Place display_size(Lcd_size size) {
    return {size.columns * (CELL_WIDTH + GAP) - GAP + 2 * BEZEL,
            size.rows * (CELL_HEIGHT + GAP) - GAP + 2 * BEZEL};
}

Place picture_size(Lcd_size size) {
    const Place display = display_size(size);
    return {display.x + 2 * MARGIN + KNOB_SPACE, display.y + 2 * MARGIN + CONTROLS};
}

bool is_cursor(const Lcd& lcd, int row, int column) {
    return row == lcd.cursor_row() && column == lcd.cursor_column();
}

std::string cells(const Lcd& lcd) {
    std::string text;
    for (int row = 0; row < lcd.size().rows; ++row) {
        for (int column = 0; column < lcd.size().columns; ++column) {
            const Place place = cell_place(row, column);
            text += rectangle(place.x, place.y, CELL_WIDTH, CELL_HEIGHT,
                              is_cursor(lcd, row, column) ? "class=\"cursor\"" : "class=\"cell\"");
        }
    }
    return text;
}

// Each character has a place of its own, so that the grid holds whatever font is at hand.
std::string line(const Lcd& lcd, int row) {
    std::string text;
    for (int column = 0; column < lcd.size().columns; ++column) {
        const char32_t character = lcd.characters(row)[static_cast<size_t>(column)];
        if (character != U' ') {
            const Place place = cell_place(row, column);
            text += print(place.x + CELL_WIDTH / 2, place.y + BASELINE,
                          is_cursor(lcd, row, column) ? "inverse" : "ink",
                          text_in_columns(std::u32string(1, character)));
        }
    }
    return text;
}

// A display without its light is still to be read.
std::string display(const Frame& frame) {
    const Lcd& lcd = frame.lcd;
    const Place size = display_size(lcd.size());
    const auto glass = [&size](const char* look) {
        return rectangle(MARGIN + BEZEL / 2, MARGIN + BEZEL / 2, size.x - BEZEL, size.y - BEZEL,
                         look);
    };
    std::string text = rectangle(MARGIN, MARGIN, size.x, size.y, "rx=\"8\" fill=\"#101214\"") +
                       glass("rx=\"3\" fill=\"#aec648\"") + cells(lcd);
    for (int row = 0; row < lcd.size().rows; ++row) {
        text += line(lcd, row);
    }
    return text + (frame.dim ? glass("rx=\"3\" class=\"dim\"") : "");
}

std::string led(Place place, const char* name, bool is_lit, const std::string& colour,
                const char* dark) {
    const std::string glow =
        is_lit ? circle(place.x, place.y, 12, "fill=\"" + colour + "\" fill-opacity=\"0.35\"") : "";
    return glow +
           circle(place.x, place.y, 7,
                  "fill=\"" + (is_lit ? colour : std::string(dark)) +
                      "\" stroke=\"#15171a\" stroke-width=\"2\"") +
           print(place.x, place.y + 26, "print", name);
}

std::string button(Place place, const char* sign, const char* name) {
    return rectangle(place.x - 22, place.y - 13, 44, 26, "rx=\"5\" class=\"key\"") +
           print(place.x, place.y + 5, "sign", sign) + print(place.x, place.y + 26, "print", name);
}

std::string controls(const Frame& frame) {
    const Place size = display_size(frame.lcd.size());
    const int y = MARGIN + size.y + CONTROLS / 2;
    const int right = MARGIN + size.x;
    return led({MARGIN + 22, y}, "EDIT", frame.leds.edit, "#ffc53d", "#4d3c12") +
           led({MARGIN + 82, y}, "ALARM", frame.leds.alarm, "#ff4b3e", "#4e1713") +
           button({right - 142, y}, "-", "FINER") + button({right - 82, y}, "+", "COARSER") +
           button({right - 22, y}, "\xE2\x86\x90", "BACK");
}

std::string knob(Lcd_size lcd) {
    const Place size = picture_size(lcd);
    const Place centre{size.x - MARGIN - KNOB_SPACE / 2 + 14, size.y / 2 - 8};
    return circle(centre.x, centre.y, KNOB + 5, "fill=\"#1b1d20\"") +
           circle(centre.x, centre.y, KNOB,
                  "fill=\"#5a6169\" stroke=\"#2a2d31\" stroke-width=\"2\"") +
           circle(centre.x, centre.y, KNOB - 9, "fill=\"#6a727b\"") +
           rectangle(centre.x - 2, centre.y - KNOB + 3, 4, 14, "rx=\"2\" fill=\"#e8eaed\"") +
           print(centre.x, centre.y + KNOB + 24, "print", "SELECT");
}

std::string description(const Lcd& lcd) {
    std::string text = "<title>Front panel</title>\n<desc>";
    for (int row = 0; row < lcd.size().rows; ++row) {
        text += (row == 0 ? "|" : "\n|") + escaped(lcd.text(row)) + "|";
    }
    return text + "</desc>\n";
}

}  // namespace

std::string svg_of(const Frame& frame) {
    const Place size = picture_size(frame.lcd.size());
    const std::string extent = attribute("width", size.x) + attribute("height", size.y);
    return "<svg xmlns=\"http://www.w3.org/2000/svg\"" + extent + " viewBox=\"0 0 " +
           std::to_string(size.x) + " " + std::to_string(size.y) + "\" role=\"img\">\n" +
           description(frame.lcd) + STYLE +
           rectangle(1, 1, size.x - 2, size.y - 2,
                     "rx=\"14\" fill=\"#32363c\" stroke=\"#1d2023\" stroke-width=\"2\"") +
           display(frame) + controls(frame) + knob(frame.lcd.size()) + "</svg>\n";
}

Picture_display::Picture_display(std::string file) : m_file(std::move(file)) {}

void Picture_display::show(const Frame& frame) {
    m_frame = frame;
}

void Picture_display::finish() const {
    if (m_frame) {
        write_whole_file(m_file, svg_of(*m_frame));
    }
}

}  // namespace frontpanel
