// The walk over a menu tree that hands out the shortcut table and prints the menu.
#include <algorithm>
#include <cstdio>
#include <vector>

#include <frontpanel_data/entry.h>
#include <frontpanel_data/link_entry.h>

#include "neighbours.h"

namespace {

constexpr int HAND_OUT_SHORTCUTS = 0x1;
constexpr int FORGET_MOUNTED_MENUS = 0x2;
constexpr int PRINT_ENTRIES = 0x4 | 0x8;
constexpr int REPORT_FLAGS = 4;

void print_indented(Data_entry& entry, int depth) {
    for (int level = 0; level < depth; ++level) {
        std::putchar('\t');
    }
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

class Walk {
public:
    explicit Walk(int flags) : m_flags(flags) {}

    // A link may lead back to an entry that is just being walked: what lies below that comes once.
    void descend(Data_entry* entry, void* argument) {
        if (std::find(m_path.begin(), m_path.end(), entry) != m_path.end()) {
            return;
        }
        m_path.push_back(entry);
        visit_children(entry, argument);
        m_path.pop_back();
    }

private:
    void visit_children(Data_entry* entry, void* argument) {
        neighbours::Met met;
        Data_entry* child = neighbours::first_child(entry);
        while (child != nullptr && met.is_new(child)) {
            if ((m_flags & HAND_OUT_SHORTCUTS) != 0) {
                child->setShortcuts(static_cast<std::map<int, ShortcutS>*>(argument));
            }
            if ((m_flags & FORGET_MOUNTED_MENUS) != 0) {
                forget_mounted_menu(*child);
            }
            child = visit(child, argument);
        }
    }

    // Returns the next sibling, fetched before the child is entered: what happens below may relink the child.
    Data_entry* visit(Data_entry* child, void* argument) {
        if ((m_flags & PRINT_ENTRIES) == 0) {
            Data_entry* const next = neighbours::next(child);
            descend(child, argument);
            return next;
        }
        const int depth = argument != nullptr ? *static_cast<const int*>(argument) : 0;
        print_indented(*child, depth);
        Data_entry* const next = neighbours::next(child);
        int depth_below = depth + 1;
        descend(child, &depth_below);
        return next;
    }

    int m_flags;
    std::vector<const Data_entry*> m_path;  // from the start to the entry that is being walked
};

}  // namespace

void Data_entry::TraverseMenuTree(Data_entry* data_entry, int flags, void* optional_arg) {
    if (data_entry != nullptr) {
        Walk(flags).descend(data_entry, optional_arg);
    }
}
