// Placeholders in the texts of templates and repetitions: "{n}", "{n+1}", "{n*16-1}".
#ifndef FRONTPANEL_MENU_PLACEHOLDER_H
#define FRONTPANEL_MENU_PLACEHOLDER_H

#include <cstdint>
#include <optional>
#include <string>

namespace frontpanel {

struct Placeholder {
    size_t begin;      // of the brace in the text
    size_t end;        // behind the closing brace
    std::string text;  // with its braces
    std::string name;
    int64_t factor = 1;
    int64_t summand = 0;
    bool is_plain = true;       // neither of both is written
    bool is_too_large = false;  // factor or summand has more digits than a number
};

// The first placeholder of a text from `start` on. Braces around anything else are none.
std::optional<Placeholder> find_placeholder(const std::string& text, size_t start);

}  // namespace frontpanel

#endif
