// Values by entry: all are added first, then looked up. A menu has tens of thousands of entries, and a map with a node
// for each takes three times as much memory.
#ifndef FRONTPANEL_MENU_ENTRY_TABLE_H
#define FRONTPANEL_MENU_ENTRY_TABLE_H

#include <frontpanel_data/data_entry.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

namespace frontpanel {

template <typename Value>
class Entry_table {
public:
    using Row = std::pair<const Data_entry*, Value>;

    // Reserves memory for this many entries.
    void reserve(std::size_t count) { m_rows.reserve(count); }
    // Requires: the entry has not been added.
    void add(const Data_entry* entry, Value value) { m_rows.emplace_back(entry, std::move(value)); }
    // Sorts the entries. Call it after the last `add` and before the first lookup.
    void complete() { std::sort(m_rows.begin(), m_rows.end(), is_before); }

    // Null for an entry that was not added.
    const Value* find(const Data_entry* entry) const {
        const auto found = std::lower_bound(m_rows.begin(), m_rows.end(), entry,
                                            [](const Row& row, const Data_entry* other) {
                                                return std::less<>()(row.first, other);
                                            });
        return found != m_rows.end() && found->first == entry ? &found->second : nullptr;
    }
    Value* find(const Data_entry* entry) {
        return const_cast<Value*>(std::as_const(*this).find(entry));
    }
    const std::vector<Row>& rows() const { return m_rows; }

private:
    static bool is_before(const Row& left, const Row& right) {
        return std::less<>()(left.first, right.first);
    }

    std::vector<Row> m_rows;
};

}  // namespace frontpanel

#endif
