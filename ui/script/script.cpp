#include <frontpanel_ui/script.h>

#include <algorithm>
#include <optional>
#include <sstream>

#include <frontpanel_base/input_error.h>
#include <frontpanel_base/nearest_name.h>
#include <frontpanel_base/numbers.h>
#include <frontpanel_binding/parameter_address.h>
#include <frontpanel_display/key_table.h>
#include <frontpanel_display/lcd.h>
#include <frontpanel_menu/entry_access.h>

namespace frontpanel {
namespace {

constexpr int MOST_REPEATS = 1000;
constexpr int LAST_SLOT = 15;

// The words of one line, from left to right.
class Line {
public:
    Line(std::string place, const std::string& text) : m_place(std::move(place)), m_words(text) {
        m_words.exceptions(std::ios::badbit);
    }

    [[noreturn]] void fail(const std::string& message) const {
        throw Input_error(m_place + ": " + message);
    }
    bool at_end() { return (m_words >> std::ws).eof(); }
    std::string word(const std::string& expected) {
        std::string word;
        if (!(m_words >> word)) {
            fail("expected " + expected);
        }
        return word;
    }
    // What is left of the line, without blanks around it.
    std::string rest() {
        std::string rest;
        std::getline(m_words >> std::ws, rest);
        return rest;
    }
    int number(int min, int max, const std::string& what) {
        const std::string word = this->word(what);
        const std::optional<int> number = parse_number(word, min, max);
        if (!number) {
            fail("expected " + what + " from " + std::to_string(min) + " to " +
                 std::to_string(max) + ", found \"" + word + "\"");
        }
        return *number;
    }
    // One of two words; true for the first.
    bool either(const std::string& first, const std::string& second) {
        const std::string expected = "\"" + first + "\" or \"" + second + "\"";
        const std::string word = this->word(expected);
        if (word != first && word != second) {
            fail("expected " + expected + ", found \"" + word + "\"");
        }
        return word == first;
    }
    // What follows is taken away when it is next.
    bool takes(const std::string& word) {
        const std::streampos start = m_words.tellg();
        std::string next;
        if (m_words >> next && next == word) {
            return true;
        }
        m_words.clear();
        m_words.seekg(start);
        return false;
    }
    Parameter_name parameter();

private:
    std::string marked(char closing);

    std::string m_place;
    std::istringstream m_words;
};

// The text up to the closing mark; the opening one has been read.
std::string Line::marked(char closing) {
    std::string text;
    std::getline(m_words, text, closing);
    if (m_words.eof()) {
        fail(std::string("the closing ") + closing + " of a parameter's name is missing");
    }
    return text;
}

// "100", "100.1" or "100.1.2": the parameter id and up to two index levels, also in brackets. A name is written as it
// is; one with blanks in brackets, as in rules, or in quotation marks.
Parameter_name Line::parameter() {
    constexpr const char* EXPECTED = "expected a parameter such as 100, 100.1.2, level or [gain 1]";
    if (at_end()) {
        fail("expected a parameter");
    }
    const auto first = static_cast<char>(m_words.peek());
    const bool is_marked = first == '[' || first == '"';
    if (is_marked) {
        m_words.get();
    }
    const std::string text = is_marked ? marked(first == '[' ? ']' : '"') : word("a parameter");
    if (is_like_address(text)) {
        const std::optional<Parameter_address> address = parse_address(text);
        if (address && address->type == INVALID_TYPE && is_unique(address->index)) {
            return {address->pid, varidx_of(address->index)};
        }
        fail(std::string(EXPECTED) + ", found \"" + text + "\"");
    }
    if (text.empty()) {
        fail(EXPECTED);
    }
    return {0, 0, text};
}

// What is pressed or let pass may be repeated.
void read_count(Line& line, Step& step) {
    if (!line.at_end()) {
        step.count = line.number(1, MOST_REPEATS, "a number of times");
    }
}

void read_press(Line& line, Step& step, Key::Kind kind) {
    step.kind = Step::PRESS;
    step.key = {kind, 0};
    read_count(line, step);
}

void read_shortcut(Line& line, Step& step) {
    step.kind = Step::PRESS;
    step.key = {Key::SHORTCUT, line.number(FIRST_SHORTCUT, LAST_SHORTCUT, "a button")};
}

void read_tick(Line& line, Step& step) {
    step.kind = Step::TICK;
    read_count(line, step);
}

void read_say(Line& line, Step& step) {
    step.kind = Step::SAY;
    step.text = line.rest();
}

void read_expect(Line& line, Step& step) {
    step.kind = Step::EXPECT_LINE;
    step.row = line.number(1, LARGEST_LCD.rows, "a display line") - 1;
    if (line.takes("contains")) {
        step.kind = Step::EXPECT_PART;
    }
    const std::string framed = line.rest();
    if (framed.size() < 2 || framed.front() != '|' || framed.back() != '|') {
        line.fail("expected the line between two bars, such as |>Gain       3 dB |");
    }
    step.text = framed.substr(1, framed.size() - 2);
}

void read_expect_leds(Line& line, Step& step) {
    step.kind = Step::EXPECT_LEDS;
    bool none = false;
    do {
        const std::string led = line.word("\"none\", \"edit\" or \"alarm\"");
        none = none || led == "none";
        if (led == "edit") {
            step.edit = true;
        } else if (led == "alarm") {
            step.alarm = true;
        } else if (led != "none") {
            line.fail("expected \"none\", \"edit\" or \"alarm\", found \"" + led + "\"");
        }
    } while (!line.at_end());
    if (none && (step.edit || step.alarm)) {
        line.fail("\"none\" cannot be combined with a LED");
    }
}

void read_expect_write(Line& line, Step& step) {
    step.kind = Step::EXPECT_WRITE;
    step.parameter = line.parameter();
    step.text = line.rest();
}

void read_expect_no_write(Line& /*line*/, Step& step) {
    step.kind = Step::EXPECT_NO_WRITE;
}

void read_expect_selected(Line& line, Step& step) {
    step.kind = Step::EXPECT_SELECTED;
    step.slot = line.number(1, LAST_SLOT, "a slot");
    step.parameter.pid =
        static_cast<uint32_t>(line.number(FIRST_LIVE_PID, LAST_LIVE_PID, "a list of a card"));
    step.option = line.number(0, MOST_REPEATS, "an option");
}

void read_fail(Line& line, Step& step) {
    step.kind = Step::FAIL;
    step.write = line.either("write", "read");
    step.parameter = line.parameter();
    step.on = line.either("on", "off");
}

void read_set(Line& line, Step& step) {
    step.kind = Step::SET;
    step.parameter = line.parameter();
    step.text = line.rest();
}

struct Word {
    const char* name;
    void (*read)(Line& line, Step& step);
};

// Beside the words of the keys.
constexpr Word WORDS[] = {{"shortcut", read_shortcut},
                          {"tick", read_tick},
                          {"say", read_say},
                          {"expect", read_expect},
                          {"expect-leds", read_expect_leds},
                          {"expect-write", read_expect_write},
                          {"expect-no-write", read_expect_no_write},
                          {"expect-selected", read_expect_selected},
                          {"fail", read_fail},
                          {"set", read_set}};

std::string hint_of_word(const std::string& unknown) {
    Nearest_name nearest(unknown);
    for (const Word& word : WORDS) {
        nearest.offer(word.name);
    }
    for (const Key_row& key : KEY_TABLE) {
        nearest.offer(key.word);
    }
    return nearest.hint();
}

void read_step(const std::string& name, Line& line, Step& step) {
    if (const std::optional<Key::Kind> key = key_of_word(name)) {
        read_press(line, step, *key);
        return;
    }
    const auto word = std::find_if(std::begin(WORDS), std::end(WORDS),
                                   [&name](const Word& known) { return name == known.name; });
    if (word == std::end(WORDS)) {
        line.fail("unknown word \"" + name + "\"" + hint_of_word(name));
    }
    word->read(line, step);
}

Step parse_step(const std::string& file, int number, const std::string& text) {
    Line line(file + ":" + std::to_string(number), text);
    Step step;
    step.line = number;
    step.source = text;
    const std::string name = line.word("a word");
    read_step(name, line, step);
    if (!line.at_end()) {
        line.fail("expected nothing after \"" + name + "\", found \"" + line.rest() + "\"");
    }
    return step;
}

std::string trimmed(const std::string& text) {
    constexpr const char* BLANKS = " \t\r";
    const size_t first = text.find_first_not_of(BLANKS);
    if (first == std::string::npos) {
        return "";
    }
    return text.substr(first, text.find_last_not_of(BLANKS) + 1 - first);
}

}  // namespace

Script parse_script(const std::string& file, const std::string& text) {
    Script script{file, {}};
    std::istringstream lines(text);
    // A stream keeps exceptions to itself otherwise, and the script would end where memory ran out.
    lines.exceptions(std::ios::badbit);
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        line = trimmed(line);
        if (!line.empty() && line.front() != '#') {
            script.steps.push_back(parse_step(file, number, line));
        }
    }
    return script;
}

}  // namespace frontpanel
