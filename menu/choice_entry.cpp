#include <frontpanel_menu/choice_entry.h>

namespace frontpanel {
namespace {

int key_in(Integer_model& model) {
    int key = 0;
    model.Get(&key, sizeof key);
    return key;
}

}  // namespace

int Choice_entry::stored_key() {
    return key_in(m_model);
}

std::string Choice_entry::text_of(int key) const {
    return key >= 0 && key < m_size_enum && m_value[key] != nullptr ? m_value[key] : "";
}

int Slot_choice_entry::stored_key() {
    return key_in(m_model);
}

}  // namespace frontpanel
