#include "menu.h"

#include <algorithm>
#include <stdexcept>

#include "entry_access.h"
#include "input_error.h"

namespace panel {

Menu::Menu() : m_bindings(std::make_shared<Binding_registry>(&m_device)) {}

// An entry's destructor leaves the list that its card sent last to whoever may still show it.
Menu::~Menu() {
    for (const std::unique_ptr<Data_entry>& entry : m_entries) {
        if (is_live(*entry)) {
            entry->Update_value(nullptr, 0);
        }
    }
}

void Menu::start_cards() {
    try {
        m_cards = std::make_unique<Card_service>();
    } catch (const std::runtime_error& error) {
        throw Input_error(std::string("the cards cannot be started: ") + error.what());
    }
}

Live_Data_Processor* Menu::add_processor(int slot) {
    if (m_cards == nullptr) {
        return nullptr;
    }
    std::string address = m_cards->address();
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

void Menu::share_shortcuts() {
    constexpr int SHARE_SHORTCUTS = 0x1;
    root().setShortcuts(&m_shortcuts);
    Data_entry::TraverseMenuTree(&root(), SHARE_SHORTCUTS, &m_shortcuts);
}

}  // namespace panel
