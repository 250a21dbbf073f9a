#include "lcdproc_protocol.h"

#include <algorithm>
#include <sstream>

#include <frontpanel_base/numbers.h>

namespace frontpanel {
namespace {

constexpr Lcd_size LARGEST_SERVER{256, 64};
constexpr int EDIT_OUTPUT = 0x1;
constexpr int ALARM_OUTPUT = 0x2;
constexpr int HEART_OUTPUT = 0x4;

using Words = std::vector<std::string>;

Words words_of(const std::string& line) {
    std::istringstream stream(line);
    stream.exceptions(std::ios::badbit);  // no memory must not look like the end of the line
    Words words;
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

// The number after a word; 0 when it is missing.
int number_behind(const Words& words, const char* name) {
    const auto found = std::find(words.begin(), words.end(), name);
    if (found == words.end() || found + 1 == words.end()) {
        return 0;
    }
    return parse_number<int>(*(found + 1)).value_or(0);
}

Lcdproc_answer greeting(const Words& words) {
    const Lcd_size size{number_behind(words, "wid"), number_behind(words, "hgt")};
    if (size.columns < 1 || size.columns > LARGEST_SERVER.columns || size.rows < 1 ||
        size.rows > LARGEST_SERVER.rows) {
        return {};
    }
    return {Lcdproc_answer::CONNECT, "", size};
}

struct Answer_word {
    const char* word;
    Lcdproc_answer::Kind kind;
    size_t words;  // the least number of them
};
constexpr Answer_word ANSWERS[] = {
    {"success", Lcdproc_answer::SUCCESS, 1}, {"key", Lcdproc_answer::KEY, 2},
    {"listen", Lcdproc_answer::LISTEN, 2},   {"ignore", Lcdproc_answer::IGNORE, 2},
    {"huh?", Lcdproc_answer::REFUSAL, 1},    {"bye", Lcdproc_answer::END, 1},
};

std::string widget_name(int row) {
    return "line" + std::to_string(row + 1);
}

std::string blanks(int count) {
    return std::string(static_cast<size_t>(count), ' ');
}

}  // namespace

Lcdproc_answer parse_lcdproc_answer(const std::string& line) {
    const Words words = words_of(line);
    if (words.empty()) {
        return {};
    }
    if (words[0] == "connect") {
        return greeting(words);
    }
    if (words == Words{"noop", "complete"}) {
        return {Lcdproc_answer::FENCE, ""};
    }
    for (const Answer_word& known : ANSWERS) {
        if (words[0] == known.word && words.size() >= known.words) {
            return {known.kind, words.size() > 1 ? words[1] : ""};
        }
    }
    return {};
}

std::string lcdproc_quoted(std::string_view text) {
    std::string quoted = "\"";
    for (const char byte : text) {
        if (byte == '"' || byte == '\\') {
            quoted += '\\';
        }
        quoted += byte;
    }
    return quoted + '"';
}

Lcdproc_screen::Lcdproc_screen(Lcd_size size)
    : m_size(size), m_lines(static_cast<size_t>(size.rows), blanks(size.columns)) {}

// The server's own sign of life would cover a corner of the text.
std::vector<std::string> Lcdproc_screen::setup() const {
    const std::string name(NAME);
    std::vector<std::string> commands = {
        "screen_add " + name,
        "screen_set " + name + " -name " + name +
            " -priority foreground -heartbeat off -backlight open -cursor off"};
    for (int row = 0; row < m_size.rows; ++row) {
        commands.push_back("widget_add " + name + " " + widget_name(row) + " string");
    }
    return commands;
}

std::vector<std::string> Lcdproc_screen::update(const Frame& frame) {
    std::vector<std::string> commands;
    for (int row = 0; row < m_size.rows; ++row) {
        std::string& held = m_lines[static_cast<size_t>(row)];
        std::string line = line_of(frame.lcd, row);
        if (line != held) {
            commands.push_back("widget_set " + std::string(NAME) + " " + widget_name(row) + " 1 " +
                               std::to_string(row + 1) + " " + lcdproc_quoted(line));
            held = std::move(line);
        }
    }
    update_cursor(frame.lcd, commands);
    update_lamps(frame, commands);
    return commands;
}

std::string Lcdproc_screen::line_of(const Lcd& lcd, int row) const {
    std::string line = row < lcd.size().rows ? lcd.line(row) : "";
    line.resize(static_cast<size_t>(m_size.columns), ' ');
    return line;
}

void Lcdproc_screen::update_cursor(const Lcd& lcd, std::vector<std::string>& commands) {
    const bool shown = lcd.cursor_row() >= 0 && lcd.cursor_row() < m_size.rows &&
                       lcd.cursor_column() < m_size.columns;
    const int row = shown ? lcd.cursor_row() : -1;
    const int column = shown ? lcd.cursor_column() : -1;
    if (row == m_cursor_row && column == m_cursor_column) {
        return;
    }
    m_cursor_row = row;
    m_cursor_column = column;
    const std::string command = "screen_set " + std::string(NAME) + " -cursor ";
    commands.push_back(shown ? command + "on -cursor_x " + std::to_string(column + 1) +
                                   " -cursor_y " + std::to_string(row + 1)
                             : command + "off");
}

void Lcdproc_screen::update_lamps(const Frame& frame, std::vector<std::string>& commands) {
    const int outputs = (frame.leds.edit ? EDIT_OUTPUT : 0) |
                        (frame.leds.alarm ? ALARM_OUTPUT : 0) |
                        (frame.leds.heart ? HEART_OUTPUT : 0);
    if (outputs != m_outputs) {
        m_outputs = outputs;
        commands.push_back("output " + std::to_string(outputs));
    }
    const int backlight = frame.dim ? 0 : 1;
    if (backlight != m_backlight) {
        m_backlight = backlight;
        commands.push_back(std::string("backlight ") + (frame.dim ? "off" : "on"));
    }
}

}  // namespace frontpanel
