// Whether a line of the display shows a text: whole, or as a part that nobody takes for another text.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_SHOWN_TEXT_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_SHOWN_TEXT_H

#include <cctype>
#include <string>

namespace frontpanel {

// The text going round from a character on, with '<' and '>' where a line of that width cuts a word with a digit.
inline std::string part_going_round(const std::string& text, size_t start, size_t columns) {
    const std::string round = text + "   ";
    const auto at = [&round](size_t place) { return round[place % round.size()]; };
    const auto cuts = [&](size_t place) {
        if (at(place) == ' ' || at(place + round.size() - 1) == ' ') {
            return false;
        }
        const size_t inside = place % round.size();
        const size_t begin = round.rfind(' ', inside) + 1;  // npos + 1 is the start
        const std::string word = round.substr(begin, round.find(' ', inside) - begin);
        return word.find_first_of("0123456789") != std::string::npos;
    };
    std::string part;
    for (size_t i = 0; i < columns; ++i) {
        part += at(start + i);
    }
    if (cuts(start)) {
        part.front() = '<';
    }
    if (cuts(start + columns)) {
        part.back() = '>';
    }
    return part;
}

// At the end of the line, behind a blank or the mark of what is read-only. `least` is the columns that a text that goes
// round has at least.
inline bool ends_in(const std::string& line, const std::string& text, size_t least = 8) {
    const auto stands_alone = [&line](size_t width) {
        return width == line.size() || line[line.size() - width - 1] == ' ' ||
               line[line.size() - width - 1] == '=';
    };
    if (text.size() <= line.size() &&
        line.compare(line.size() - text.size(), text.size(), text) == 0 &&
        stands_alone(text.size())) {
        return true;
    }
    for (size_t columns = least; columns < text.size() && columns <= line.size(); ++columns) {
        for (size_t start = 0; start < text.size() + 3; ++start) {
            if (line.substr(line.size() - columns) == part_going_round(text, start, columns) &&
                stands_alone(columns)) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace frontpanel

#endif
