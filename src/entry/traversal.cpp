// The walk over a menu tree that hands out the shortcut table and prints the menu.
#include <cstdio>

#include <frontpanel_data/entry.h>

#include "neighbours.h"

namespace {

constexpr int HAND_OUT_SHORTCUTS = 0x1;
constexpr int PRINT_ENTRIES = 0x4 | 0x8;
constexpr int REPORT_FLAGS = 4;

void print_indented(Data_entry& entry, int depth) {
    for (int level = 0; level < depth; ++level) {
        std::putchar('\t');
    }
    std::printf("%s\n", entry.getProperties(REPORT_FLAGS).c_str());
}

}  // namespace

void Data_entry::TraverseMenuTree(Data_entry* data_entry, int flags, void* optional_arg) {
    if (data_entry == nullptr) {
        return;
    }
    Data_entry* child = neighbours::first_child(data_entry);
    while (child != nullptr) {
        if ((flags & HAND_OUT_SHORTCUTS) != 0) {
            child->setShortcuts(static_cast<std::map<int, ShortcutS>*>(optional_arg));
        }
        // Fetched before the child is entered: what happens below may relink the child.
        Data_entry* next = nullptr;
        if ((flags & PRINT_ENTRIES) != 0) {
            const int depth = optional_arg != nullptr ? *static_cast<const int*>(optional_arg) : 0;
            print_indented(*child, depth);
            next = neighbours::next(child);
            int depth_below = depth + 1;
            TraverseMenuTree(child, flags, &depth_below);
        } else {
            next = neighbours::next(child);
            TraverseMenuTree(child, flags, optional_arg);
        }
        child = next;
    }
}
