#include "eval/white_space.h"

namespace eval {
namespace {

constexpr int TAB_WIDTH = 8;

// Steps over one character.
void advance(Place& place) {
    switch (*place.at) {
        case '\n':
            advance_line(place);
            return;
        case '\t':
            place.bias -= TAB_WIDTH - 1 - (place.column() - 1) % TAB_WIDTH;
            break;
        case '\f':
        case '\r':
            ++place.bias;
            break;
        default:
            break;
    }
    ++place.at;
}

void skip_block_comment(Place& place) {
    for (; *place.at != '\0'; advance(place)) {
        if (place.at[0] == '*' && place.at[1] == '/') {
            place.at += 2;
            return;
        }
    }
    place.unclosed = evalKernel_block_comment_end_token;
}

void skip_line_comment(Place& place) {
    while (*place.at != '\0' && *place.at != '\n')
        advance(place);
    if (*place.at == '\0') {
        place.unclosed = evalKernel_newline_token;
    } else {
        advance(place);
    }
}

}  // namespace

Place skip_comments(Place place) {
    while (place.unclosed == NO_TOKEN) {
        const Token token = token_at(place.at);
        if (token == evalKernel_white_space_token) {
            advance(place);
        } else if (token == evalKernel_block_comment_token) {
            place.at += 2;
            skip_block_comment(place);
        } else if (token == evalKernel_line_comment_token) {
            place.at += 2;
            skip_line_comment(place);
        } else {
            break;
        }
    }
    return place;
}

}  // namespace eval
