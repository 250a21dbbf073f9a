#include <frontpanel_ui/key_place.h>

namespace frontpanel {

Key meant_key(const Key& key, Key_place place) {
    const bool has_cursor = place != Key_place::LIST;
    switch (key.kind) {
        case Key::LEFT:
            return {has_cursor ? Key::COARSER : Key::BACK};
        case Key::RIGHT:
            return {has_cursor ? Key::FINER : Key::SELECT};
        case Key::ERASE:
            return {place == Key_place::TEXT ? Key::DELETE : Key::BACK};
        default:
            return key;
    }
}

}  // namespace frontpanel
