// The last check of a toggle before a homescreen link gets it.
#ifndef FRONTPANEL_MENU_TOGGLE_H
#define FRONTPANEL_MENU_TOGGLE_H

#include <optional>
#include <string>

namespace frontpanel {

// Why the library cannot evaluate a toggle whatever the values: too deeply nested, or no room for its names.
std::optional<std::string> toggle_error(const std::string& expression);

}  // namespace frontpanel

#endif
