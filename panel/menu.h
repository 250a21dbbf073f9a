// A menu with everything it stands on: the device's parameters, the binding engines and the entries.
//
// The order of the members is the order of building: entries go first at the end, then what they refer to.
#ifndef FRONTPANEL_PANEL_MENU_H
#define FRONTPANEL_PANEL_MENU_H

#include <frontpanel_binding/expression_binding.h>
#include <frontpanel_data/data_entry.h>
#include <frontpanel_device/memory_device.h>

#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace panel {

class Menu {
public:
    Menu();
    ~Menu();
    Menu(const Menu&) = delete;
    Menu& operator=(const Menu&) = delete;

    Memory_device& device() { return m_device; }
    const std::shared_ptr<Binding_registry>& bindings() { return m_bindings; }
    // The top of the tree: the first entry that was added.
    Data_entry& root() { return *m_entries.front(); }
    size_t entry_count() const { return m_entries.size(); }

    // Keeps an index for as long as the entries live.
    const Index_t* keep_index(const Index_t& index);
    // Takes over an entry; its neighbours are or will be the menu's too.
    template <typename Entry>
    Entry& add(std::unique_ptr<Entry> entry) {
        Entry& added = *entry;
        m_entries.push_back(std::move(entry));
        return added;
    }
    // Assigns a shortcut button. False when the button is taken.
    bool add_shortcut(int button, Data_entry& entry);
    // Hands the shortcut table to every entry; once the tree is complete.
    void share_shortcuts();

private:
    Memory_device m_device;
    std::shared_ptr<Binding_registry> m_bindings;
    std::deque<Index_t> m_indices;
    std::map<int, ShortcutS> m_shortcuts;
    std::vector<std::unique_ptr<Data_entry>> m_entries;
};

}  // namespace panel

#endif
