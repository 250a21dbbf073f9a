#include <frontpanel_menu/menu.h>

#include <algorithm>
#include <iterator>

#include <frontpanel_menu/entry_access.h>

namespace frontpanel {

Menu::Menu(Data_interface& device)
    : m_bindings(std::make_shared<Binding_registry>(&device)),
      m_access(device, m_bindings),
      m_gate(*this) {}

// An entry's destructor does not free the list that its card sent last: it may still be shown.
Menu::~Menu() {
    for (const std::unique_ptr<Data_entry>& entry : m_entries) {
        if (is_live(*entry)) {
            entry->Update_value(nullptr, 0);
        }
    }
    m_bindings->forget_dependants();
}

std::vector<Data_entry*> Menu::items_of(const Device_variable& variable) {
    const auto before = [](const auto& left, const auto& right) {
        return left.first < right.first;
    };
    if (!m_has_sorted_items) {
        std::stable_sort(m_items.begin(), m_items.end(), before);
        m_has_sorted_items = true;
    }
    std::vector<Data_entry*> items;
    const std::pair<Device_variable, Data_entry*> key(variable, nullptr);
    const auto [first, last] = std::equal_range(m_items.begin(), m_items.end(), key, before);
    std::transform(first, last, std::back_inserter(items),
                   [](const auto& item) { return item.second; });
    return items;
}

void Menu::add_item(Data_entry& entry) {
    m_items.push_back({{entry.Get_pid(), varidx_of(*entry.Get_index())}, &entry});
    m_has_sorted_items = false;
}

std::string Menu::name_of(const Data_entry& entry) {
    return entry.Get_name() == std::string(BRIDGE_NAME) ? std::string() : entry.Get_name();
}

Number_ranges Menu::own_ranges(Range_entry& entry) const {
    const auto found = m_own_ranges.find(&entry);
    return found != m_own_ranges.end() ? found->second : allowed_ranges(entry);
}

void Menu::keep_own_ranges(const Range_entry& entry, Number_ranges ranges) {
    m_own_ranges[&entry] = std::move(ranges);
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
    m_mounted_menus.push_back(std::make_unique<Mounted_menu>(folder, parameters(), m_gate));
    return *m_mounted_menus.back();
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
