// The part of a file's text that is a value: all of it, a line, or a word of a line.
#ifndef FRONTPANEL_DRIVER_FILE_LINE_PART_H
#define FRONTPANEL_DRIVER_FILE_LINE_PART_H

#include <cstddef>
#include <string>
#include <string_view>

namespace frontpanel {

// Lines and words count from 1; words are what blanks separate.
struct Line_part {
    std::string beginning = {};  // of the line; empty: the line has the number below
    std::size_t line = 0;        // 0: all lines
    std::size_t word = 0;        // 0: the whole line

    bool is_all() const { return beginning.empty() && line == 0 && word == 0; }
};

struct Found_part {
    std::string_view text;  // without the blanks around it
    std::string failure;    // empty: none
};

// `text` outlives the result.
Found_part part_of(std::string_view text, const Line_part& part);

}  // namespace frontpanel

#endif
