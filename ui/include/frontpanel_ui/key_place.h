// What keys do that depend on where they are pressed: the arrows to the sides, and the one that erases.
//
// | key     | in a list, a question, the PIN | where a cursor moves sideways | in a text that is edited |
// |---------|--------------------------------|-------------------------------|--------------------------|
// | LEFT    | BACK                           | COARSER                       | COARSER                  |
// | RIGHT   | SELECT                         | FINER                         | FINER                    |
// | ERASE   | BACK                           | BACK                          | DELETE                   |
#ifndef FRONTPANEL_UI_KEY_PLACE_H
#define FRONTPANEL_UI_KEY_PLACE_H

#include <frontpanel_display/key.h>

namespace frontpanel {

enum class Key_place { LIST, CURSOR, TEXT };

// The key as it is meant there; any other stays what it is.
Key meant_key(const Key& key, Key_place place);

}  // namespace frontpanel

#endif
