// Finds the texts of a menu file that a display cannot show.
#ifndef FRONTPANEL_MENU_CHARACTER_CHECK_H
#define FRONTPANEL_MENU_CHARACTER_CHECK_H

#include <functional>

#include <frontpanel_menu/menu_document.h>

namespace frontpanel {

// Whether a display can show the character, if only in a plain form.
using Shows_character = std::function<bool(char32_t character)>;

// Warns in the document's problems of each character of a text that the display cannot show, once a text.
void warn_of_characters(Menu_document& document, const Shows_character& shows);

}  // namespace frontpanel

#endif
