#include "entry_text.h"

#include <array>

namespace frontpanel {

std::string text_of(String_entry& entry) {
    std::array<char, MAX_STRING_LENGTH + 1> text = {};
    entry.Get_value(text.data(), text.size());
    return text.data();
}

bool store_text(String_entry& entry, const std::string& text) {
    return entry.Set_value(text.c_str(), static_cast<unsigned int>(text.size())) == 0;
}

}  // namespace frontpanel
