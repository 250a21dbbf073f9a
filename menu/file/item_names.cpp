#include "file/item_names.h"

#include <frontpanel_base/nearest_name.h>

namespace frontpanel {

void Item_names::open(const std::string& menu) {
    m_open.push_back(&m_menus.emplace_back(*m_open.back() + menu + "/"));
}

void Item_names::add_wrong(const std::string& name) {
    m_added.push_back({m_open.back(), m_wrong_names.emplace_back(name).c_str(), nullptr});
}

void Item_names::make_paths() const {
    for (const Added& added : m_added) {
        const auto [found, is_new] =
            m_paths.insert({*added.menu + added.name, Named{added.entry, false}});
        found->second.is_ambiguous = !is_new;
    }
    m_added.clear();
}

bool Item_names::add_id(const std::string& id, Data_entry* entry) {
    return m_ids.emplace(id, entry).second;
}

std::string Item_names::hint(const std::string& unknown) const {
    Nearest_name nearest(unknown);
    for (const auto& [id, entry] : m_ids) {
        if (!offer_within_bounds(nearest, id, m_searched)) {
            return "";
        }
    }
    for (const auto& [path, named] : m_paths) {
        if (!offer_within_bounds(nearest, path, m_searched)) {
            return "";
        }
    }
    return nearest.hint();
}

Data_entry& Item_names::find(const Json_value& reference) const {
    const std::string text = reference.shown_text();
    make_paths();
    const auto by_id = m_ids.find(text);
    const auto by_path = m_paths.find(text);
    if (by_id == m_ids.end() && by_path == m_paths.end()) {
        reference.fail("there is no item \"" + text + "\"" + hint(text));
    }
    if (by_id == m_ids.end() && by_path->second.is_ambiguous) {
        reference.fail("several items are \"" + text +
                       "\": give the item an \"id\" and refer to that");
    }
    Data_entry* const entry = by_id == m_ids.end() ? by_path->second.entry : by_id->second;
    if (entry == nullptr) {
        throw Told_already();
    }
    return *entry;
}

}  // namespace frontpanel
