// Where a key is pressed, which decides what some of them mean: see `Key_row`.
#ifndef FRONTPANEL_UI_KEY_PLACE_H
#define FRONTPANEL_UI_KEY_PLACE_H

#include <frontpanel_display/key.h>

namespace frontpanel {

enum class Key_place { LIST, CURSOR, TEXT };

// The key as it is meant there; any other stays what it is.
Key meant_key(const Key& key, Key_place place);

}  // namespace frontpanel

#endif
