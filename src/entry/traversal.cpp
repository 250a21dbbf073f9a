// The walk over a menu tree that hands out the shortcut table and prints the menu.
#include <algorithm>
#include <cstdio>
#include <forward_list>
#include <iterator>
#include <map>

#include <frontpanel_data/entry.h>
#include <frontpanel_data/link_entry.h>

#include "entry_set.h"
#include "neighbours.h"

namespace {

constexpr int HAND_OUT_SHORTCUTS = 0x1;
constexpr int FORGET_MOUNTED_MENUS = 0x2;
constexpr int PRINT_ENTRIES = 0x4 | 0x8;
constexpr int REPORT_FLAGS = 4;

void indent(int depth) {
    static constexpr char TABS[] = "\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t";
    constexpr int MOST = sizeof TABS - 1;
    for (; depth > 0; depth -= MOST) {
        std::fwrite(TABS, 1, static_cast<std::size_t>(std::min(depth, MOST)), stdout);
    }
}

void print_indented(Data_entry& entry, int depth) {
    indent(depth);
    std::printf("%s\n", entry.getProperties(REPORT_FLAGS).c_str());
}

void forget_mounted_menu(Data_entry& entry) {
    auto* const link = dynamic_cast<Link_entry*>(&entry);
    if (link != nullptr && link->isMountLink()) {
        void* nothing = nullptr;
        Data_entry::EntryTypeSpecificOperation(link, nullptr, nullptr, false,
                                               Data_entry::OPERATION_SET_CHILD, &nothing);
    }
}

// Keeps a stack of its own: a menu may be deeper than the thread's.
class Walk {
public:
    Walk(int flags, void* argument) : m_flags(flags), m_argument(argument) {}

    void run(Data_entry* start) {
        enter(start, 0);
        while (!m_levels.empty()) {
            Level& level = m_levels.front();
            Data_entry* const child = level.next_child;
            if (child == nullptr || !m_met.is_new(level.siblings, child)) {
                leave();
                continue;
            }
            const int depth = visit(*child);
            // Fetched before the child is entered: what happens below may relink the child.
            level.next_child = neighbours::next(child);
            enter(child, depth + 1);
        }
    }

private:
    struct Level {
        Data_entry* entry;
        Data_entry* next_child;
        neighbours::Met::Level siblings;
        int depth;
    };

    // A link may lead back to an entry that is just being walked: what lies below that comes once.
    void enter(Data_entry* entry, int depth) {
        if (m_path.insert(entry)) {
            m_levels.push_front({entry, neighbours::first_child(entry), m_met.enter(), depth});
        }
    }

    void leave() {
        m_met.leave(m_levels.front().siblings);
        m_path.erase(m_levels.front().entry);
        m_levels.pop_front();
    }

    // Returns the depth of the child.
    int visit(Data_entry& child) {
        if ((m_flags & HAND_OUT_SHORTCUTS) != 0) {
            child.setShortcuts(static_cast<std::map<int, ShortcutS>*>(m_argument));
        }
        if ((m_flags & FORGET_MOUNTED_MENUS) != 0) {
            forget_mounted_menu(child);
        }
        if ((m_flags & PRINT_ENTRIES) == 0) {
            return 0;
        }
        const int depth = depth_of_children();
        print_indented(child, depth);
        return depth;
    }

    // Directly below the start the counter is the application's, whose classes may change it during the walk.
    int depth_of_children() const {
        return std::next(m_levels.begin()) == m_levels.end() && m_argument != nullptr
                   ? *static_cast<const int*>(m_argument)
                   : m_levels.front().depth;
    }

    int m_flags;
    void* m_argument;
    std::forward_list<Level> m_levels;  // from the entry that is being walked up to the start
    Entry_set m_path;                   // the entries of `m_levels`
    neighbours::Met m_met;
};

}  // namespace

void Data_entry::TraverseMenuTree(Data_entry* data_entry, int flags, void* optional_arg) {
    if (data_entry != nullptr) {
        Walk(flags, optional_arg).run(data_entry);
    }
}
