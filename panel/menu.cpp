#include "menu.h"

namespace panel {

Menu::Menu() : m_bindings(std::make_shared<Binding_registry>(&m_device)) {}

Menu::~Menu() = default;

const Index_t* Menu::keep_index(const Index_t& index) {
    m_indices.push_back(index);
    return &m_indices.back();
}

bool Menu::add_shortcut(int button, Data_entry& entry) {
    return m_shortcuts.insert({button, ShortcutS{button, &entry, false}}).second;
}

void Menu::share_shortcuts() {
    constexpr int SHARE_SHORTCUTS = 0x1;
    root().setShortcuts(&m_shortcuts);
    Data_entry::TraverseMenuTree(&root(), SHARE_SHORTCUTS, &m_shortcuts);
}

}  // namespace panel
