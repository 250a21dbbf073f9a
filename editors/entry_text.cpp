#include "entry_text.h"

namespace frontpanel {

bool store_text(String_entry& entry, const std::string& text) {
    return entry.Set_value(text.c_str(), static_cast<unsigned int>(text.size())) == 0;
}

}  // namespace frontpanel
