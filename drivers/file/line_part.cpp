#include "line_part.h"

#include <algorithm>
#include <optional>

namespace frontpanel {
namespace {

constexpr std::string_view BLANKS = " \t\r\n\v\f";

std::string_view trimmed(std::string_view text) {
    const std::size_t begin = std::min(text.find_first_not_of(BLANKS), text.size());
    const std::size_t end = text.find_last_not_of(BLANKS);
    return end == std::string_view::npos ? std::string_view() : text.substr(begin, end + 1 - begin);
}

// Cuts the first line off.
std::string_view take_line(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return line;
}

std::optional<std::string_view> line_of(std::string_view text, const Line_part& part) {
    if (part.beginning.empty() && part.line == 0) {
        return part.word == 0 ? text : take_line(text);
    }
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::string_view line = take_line(text);
        const bool is_meant = part.beginning.empty()
                                  ? number == part.line
                                  : line.substr(0, part.beginning.size()) == part.beginning;
        if (is_meant) {
            return line;
        }
    }
    return std::nullopt;
}

std::string_view word_of(std::string_view line, std::size_t word) {
    std::string_view found;
    for (std::size_t i = 0; i < word; ++i) {
        line.remove_prefix(std::min(line.find_first_not_of(BLANKS), line.size()));
        found = line.substr(0, line.find_first_of(BLANKS));
        line.remove_prefix(found.size());
    }
    return found;
}

}  // namespace

Found_part part_of(std::string_view text, const Line_part& part) {
    const std::optional<std::string_view> line = line_of(text, part);
    if (!line) {
        return {{},
                part.beginning.empty() ? "there is no line " + std::to_string(part.line)
                                       : "no line begins with \"" + part.beginning + "\""};
    }
    const std::string_view found = part.word == 0 ? trimmed(*line) : word_of(*line, part.word);
    if (found.empty() && part.word != 0) {
        return {{}, "the line has no word " + std::to_string(part.word)};
    }
    return {found, ""};
}

}  // namespace frontpanel
