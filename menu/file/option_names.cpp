#include "file/option_names.h"

#include <frontpanel_base/nearest_name.h>

#include <algorithm>
#include <cctype>
#include <cstring>

namespace frontpanel {
namespace {

// In UTF-8, so that a log can be read. A menu file holds ASCII.
constexpr const char* LETTER_N = "\u00f1";
constexpr const char* OPEN = "\u00ab";
constexpr const char* CLOSE = "\u00bb";

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    for (size_t at = text.find(from); at != std::string::npos;
         at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

std::string prefix_of_pattern(const std::string& pattern) {
    return pattern.substr(0, pattern.size() - std::strlen(Option_names::NUMBER));
}

}  // namespace

bool Option_names::is_pattern(const std::string& name) {
    const size_t at = name.find(NUMBER);
    return at != std::string::npos && at > 0 && at + std::strlen(NUMBER) == name.size();
}

void Option_names::declare(const std::string& name) {
    if (is_pattern(name)) {
        m_prefixes.insert(prefix_of_pattern(name));
    } else {
        m_names.insert(name);
    }
}

std::string Option_names::prefix_of(const std::string& name) const {
    const size_t digits = name.find_last_not_of("0123456789") + 1;
    for (size_t length = name.size(); length-- > std::max<size_t>(digits, 1);) {
        if (m_prefixes.count(name.substr(0, length)) > 0) {
            return name.substr(0, length);
        }
    }
    return digits < name.size() && m_prefixes.count(name.substr(0, digits)) > 0
               ? name.substr(0, digits)
               : "";
}

bool Option_names::knows(const std::string& name) const {
    return is_pattern(name) ? m_prefixes.count(prefix_of_pattern(name)) > 0
                            : m_names.count(name) > 0 || !prefix_of(name).empty();
}

std::string Option_names::library_name(const std::string& name) const {
    if (is_pattern(name)) {
        return OPEN + prefix_of_pattern(name) + CLOSE + "n";
    }
    const std::string prefix = m_names.count(name) > 0 ? "" : prefix_of(name);
    return prefix.empty() ? replaced(name, "n", LETTER_N)
                          : OPEN + prefix + CLOSE + name.substr(prefix.size());
}

std::string Option_names::file_name(const std::string& library_name) {
    const size_t close = library_name.find(CLOSE);
    if (close == std::string::npos) {
        return replaced(library_name, LETTER_N, "n");
    }
    const std::string prefix = library_name.substr(std::strlen(OPEN), close - std::strlen(OPEN));
    const std::string number = library_name.substr(close + std::strlen(CLOSE));
    return prefix + (number == "n" ? NUMBER : number);
}

std::string Option_names::hint(const std::string& unknown) const {
    const size_t digits = unknown.find_last_not_of("0123456789") + 1;
    const std::string stem = unknown.substr(0, digits);
    if (digits < unknown.size() && m_names.count(stem + "n") > 0) {
        return "; numbered options are declared as \"" + stem + NUMBER + "\"";
    }
    Nearest_name nearest(unknown);
    for (const std::string& name : m_names) {
        if (!offer_within_bounds(nearest, name, m_searched)) {
            break;
        }
    }
    return nearest.hint();
}

}  // namespace frontpanel
