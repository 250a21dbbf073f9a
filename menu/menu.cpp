#include <frontpanel_menu/menu.h>

#include <algorithm>

#include <frontpanel_menu/entry_access.h>

namespace frontpanel {

Menu::Menu(Data_interface& device)
    : m_bindings(std::make_shared<Binding_registry>(&device)), m_access(device, m_bindings) {}

// An entry's destructor leaves the list that its card sent last to whoever may still show it.
Menu::~Menu() {
    for (const std::unique_ptr<Data_entry>& entry : m_entries) {
        if (is_live(*entry)) {
            entry->Update_value(nullptr, 0);
        }
    }
}

Live_Data_Processor* Menu::add_processor(int slot) {
    if (m_card_service.empty()) {
        return nullptr;
    }
    std::string address = m_card_service;
    m_processors.push_back(std::make_unique<Live_Data_Processor>(0, address.data(), slot));
    return m_processors.back().get();
}

char** Menu::keep_texts(const std::vector<std::string>& texts, size_t room) {
    Texts& kept = m_texts.emplace_back(Texts{texts, {}});
    for (std::string& text : kept.texts) {
        text.resize(std::max(text.size(), room));
        kept.array.push_back(text.data());
    }
    return kept.array.data();
}

const Index_t* Menu::keep_index(const Index_t& index) {
    m_indices.push_back(index);
    return &m_indices.back();
}

bool Menu::add_shortcut(int button, Data_entry& entry) {
    return m_shortcuts.insert({button, ShortcutS{button, &entry, false}}).second;
}

Data_entry* Menu::release_last() {
    Data_entry* const last = m_entries.back().release();
    m_entries.pop_back();
    return last;
}

Mounted_menu& Menu::add_mounted_menu(const std::string& folder) {
    m_mounted_menus.push_back(std::make_unique<Mounted_menu>(folder, parameters(), *m_bindings));
    return *m_mounted_menus.back();
}

void Menu::watch(const Parameter& parameter) {
    m_bindings->watch(parameter.key());
}

void Menu::make_homescreen_entry(Link_entry& link, const std::string& toggle) {
    link.setAsHomescreenEntry(toggle, m_bindings->var_index_map(), &m_front_panel_data);
}

void Menu::share_shortcuts() {
    constexpr int SHARE_SHORTCUTS = 0x1;
    for (Data_entry* const top : {&root(), m_homescreen, m_favourites}) {
        if (top != nullptr) {
            top->setShortcuts(&m_shortcuts);
            Data_entry::TraverseMenuTree(top, SHARE_SHORTCUTS, &m_shortcuts);
        }
    }
}

}  // namespace frontpanel
