// Characters that are written on the one before them.
#ifndef FRONTPANEL_BASE_COMPOSITION_H
#define FRONTPANEL_BASE_COMPOSITION_H

#include <set>
#include <string>

namespace frontpanel {

// The character that stands for a character and the combining ones behind it, by Unicode's canonical composition. Those
// that do not fit into it are left out, and added to `lost`. Requires: there is one character at least.
char32_t composed(const std::u32string& column, std::set<char32_t>& lost);

}  // namespace frontpanel

#endif
