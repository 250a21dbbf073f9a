// Places in the input, and the white space and comments between tokens.
#ifndef FRONTPANEL_DATA_SRC_EVAL_WHITE_SPACE_H
#define FRONTPANEL_DATA_SRC_EVAL_WHITE_SPACE_H

#include <cstddef>

#include "eval/tokens.h"

namespace eval {

// The first character that is not consumed. Only newlines, tabs and the like are tracked; along all other
// characters the column follows from the address.
struct Place {
    unsigned char* at;
    unsigned char* start;  // of the input
    std::ptrdiff_t bias;   // offset of a character from the start, less its column
    int line;
    Token unclosed;  // the token that an open comment lacks at the end of the input, or NO_TOKEN

    int column() const { return static_cast<int>(at - start - bias); }
};

inline Place place_at(unsigned char* start) {
    return {start, start, -1, 1, NO_TOKEN};
}

// Steps over a newline.
inline void advance_line(Place& place) {
    ++place.line;
    place.bias = place.at - place.start;
    ++place.at;
}

// The same as `skip_white_space`, for more than blanks and newlines.
Place skip_comments(Place place);

// Steps over white space and comments. An open comment sets `unclosed`.
inline void skip_white_space(Place& place) {
    unsigned char c = *place.at;
    while (c <= ' ') {
        if (c == ' ') {
            ++place.at;
        } else if (c == '\n') {
            advance_line(place);
        } else {
            break;
        }
        c = *place.at;
    }
    if (c > '/' || c == '\0') return;
    const bool is_comment = c == '/' && (place.at[1] == '*' || place.at[1] == '/');
    if (is_comment || is_white_space(c)) place = skip_comments(place);
}

}  // namespace eval

#endif
