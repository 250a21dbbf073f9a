#include "keys/key_place.h"

#include <frontpanel_display/key_table.h>

namespace frontpanel {

Key meant_key(const Key& key, Key_place place) {
    const Key_row* const row = row_of(key.kind);
    if (row == nullptr) {
        return key;
    }
    switch (place) {
        case Key_place::LIST:
            return {row->in_list};
        case Key_place::CURSOR:
            return {row->at_cursor};
        case Key_place::TEXT:
            return {row->in_text};
    }
    return key;
}

}  // namespace frontpanel
