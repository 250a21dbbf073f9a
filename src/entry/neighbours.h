// Neighbours of an entry as the menu shows them: fetched through the dispatcher, which follows links.
#ifndef FRONTPANEL_DATA_SRC_ENTRY_NEIGHBOURS_H
#define FRONTPANEL_DATA_SRC_ENTRY_NEIGHBOURS_H

#include <algorithm>
#include <memory>
#include <vector>

#include <frontpanel_data/entry.h>

#include "../step_counter.h"
#include "entry_set.h"

namespace neighbours {

inline Data_entry* fetch(Data_entry* entry, Data_entry::Operation_flag which) {
    void* found = nullptr;
    Data_entry::EntryTypeSpecificOperation(entry, nullptr, nullptr, false, which, &found);
    return static_cast<Data_entry*>(found);
}

inline Data_entry* first_child(Data_entry* entry) {
    return fetch(entry, Data_entry::OPERATION_CHILD_LINK);
}

inline Data_entry* next(Data_entry* entry) {
    return fetch(entry, Data_entry::OPERATION_NEXT);
}

// The siblings that a walk has met, on each level that it has not left yet. A link without a next entry of its own
// goes on behind the entry it houses, which may lead back into the list: a sibling that was met before ends the level.
class Met {
public:
    // A level of a walk. Levels are left in the reverse order of entering.
    class Level {
    public:
        Level() = default;

    private:
        friend class Met;
        explicit Level(std::size_t first) : m_first(first) {}

        std::size_t m_first = 0;            // the first of its siblings in the list of all
        std::unique_ptr<Entry_set> m_many;  // its siblings, once there are many
    };

    Level enter() const { return Level(m_siblings.size()); }
    void leave(const Level& level) { cut(level.m_first); }

    // Requires: `level` is the one that was entered last.
    bool is_new(Level& level, const Data_entry* sibling) {
        if (level.m_many != nullptr) {
            return level.m_many->insert(sibling);
        }
        const auto first = m_siblings.begin() + static_cast<std::ptrdiff_t>(level.m_first);
        const auto found = std::find(first, m_siblings.end(), sibling);
        step_counter::siblings_compared += static_cast<std::size_t>(found - first);
        if (found != m_siblings.end()) {
            return false;
        }
        m_siblings.push_back(sibling);
        if (m_siblings.size() - level.m_first > FEW) {
            level.m_many = std::make_unique<Entry_set>();
            for (std::size_t at = level.m_first; at < m_siblings.size(); ++at) {
                level.m_many->insert(m_siblings[at]);
            }
            cut(level.m_first);
        }
        return true;
    }

private:
    void cut(std::size_t size) {
        m_siblings.erase(m_siblings.begin() + static_cast<std::ptrdiff_t>(size), m_siblings.end());
    }

    static constexpr std::size_t FEW = 16;  // found as fast by comparing

    std::vector<const Data_entry*> m_siblings;
};

}  // namespace neighbours

#endif
