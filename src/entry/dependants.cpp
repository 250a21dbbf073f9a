#include "dependants.h"

#include <algorithm>
#include <cstdio>

#include "../step_counter.h"

namespace dependants {
namespace {

// A stray trace around each refresh that log readers have come to expect, whatever `debug` holds.
constexpr char TRACE[] = "@@@@@@@@@@@@@@@@@@@@@ here 14";

class Bind_refresh_lock {
public:
    explicit Bind_refresh_lock(Data_entry& entry) : m_entry(entry) {
        m_entry.SetBindRefreshIsLocked(true);
    }
    ~Bind_refresh_lock() { m_entry.SetBindRefreshIsLocked(false); }
    Bind_refresh_lock(const Bind_refresh_lock&) = delete;
    Bind_refresh_lock& operator=(const Bind_refresh_lock&) = delete;

private:
    Data_entry& m_entry;
};

#define COMMIT_LINE(lines, ...)                                                                   \
    do {                                                                                          \
        if ((debug & ::diagnostics::mask_of((lines).place)) != 0 && ::diagnostics::leaf_gate()) { \
            ::diagnostics::write((lines).place, (lines).function, (lines).file, __VA_ARGS__);     \
        }                                                                                         \
    } while (false)

std::vector<Data_entry*> dependants_of(var_index_map_t& map, const var_index_s& key,
                                       bool adds_record) {
    if (adds_record) {
        return map[key].binding_dependant_entries;
    }
    const auto record = map.find(key);
    return record != map.end() ? record->second.binding_dependant_entries
                               : std::vector<Data_entry*>();
}

// Finds the entries of a snapshot, asked for in its order, in the list as it is by then. While refreshes leave the
// list alone, or take out and add entries here and there, the next one is close to the one found before.
class Finder {
public:
    Finder(const var_index_map_t& map, const var_index_s& key) : m_map(map), m_key(key) {}

    bool is_listed(const Data_entry* entry) {
        const auto record = m_map.find(m_key);
        if (record == m_map.end()) {
            return false;
        }
        const std::vector<Data_entry*>& listed = record->second.binding_dependant_entries;
        // Further away by one each time, to both sides: as far as the whole list.
        const std::size_t size = listed.size();
        const std::size_t start = std::min(m_expected, size);
        for (std::size_t away = 0; away < size; ++away) {
            ++step_counter::dependants_compared;
            if (start + away < size && listed[start + away] == entry) {
                m_expected = start + away + 1;
                return true;
            }
            if (away < start && listed[start - 1 - away] == entry) {
                m_expected = start - away;
                return true;
            }
        }
        return false;
    }

private:
    const var_index_map_t& m_map;
    const var_index_s& m_key;
    std::size_t m_expected = 0;
};

void refresh_one(Data_entry& dependant, Data_entry& committed, const var_index_s& key,
                 Data_interface* iface, const Commit_lines& lines) {
    COMMIT_LINE(lines,
                "Bind expression of entry [%s] depends on [%s][%d.%d.%d]@%s num index levels = "
                "[%d]\n",
                dependant.Get_name(), committed.Get_name(), static_cast<int>(key.var),
                key.index.m_index[0], key.index.m_index[1], key.rt == INTEGER ? "i" : "s",
                static_cast<int>(key.index.m_index_num));
    std::printf("%s\n", TRACE);
    Data_entry::EntryTypeSpecificOperation(&dependant, iface, nullptr, true,
                                           Data_entry::OPERATION_REFRESH, nullptr);
    std::printf("%s\n", TRACE);
}

}  // namespace

void refresh(Data_entry& committed, Binding* binding, Data_interface* iface,
             const Commit_lines& lines) {
    if (binding == nullptr) {
        if (lines.reports_missing_binding) {
            COMMIT_LINE(lines,
                        "Binding is null. Cannot update dependant controls' binding "
                        "expressions.\n");
        }
        return;
    }
    var_index_map_t* const map = committed.Get_var_index_map();
    if (map == nullptr) {
        COMMIT_LINE(lines,
                    "Var index map is null. Cannot update dependant controls' binding "
                    "expressions.\n");
        return;
    }
    const Bind_refresh_lock lock(committed);
    const var_index_s key = binding->self_control_info;
    const std::vector<Data_entry*> snapshot = dependants_of(*map, key, lines.adds_record);
    if (lines.announces_walk) {
        COMMIT_LINE(lines, "About to see if I have any dependants...\n");
    }
    Finder finder(*map, key);
    for (Data_entry* const dependant : snapshot) {
        if (finder.is_listed(dependant) && !dependant->GetBindRefreshIsLocked()) {
            refresh_one(*dependant, committed, key, iface, lines);
        }
    }
}

}  // namespace dependants
