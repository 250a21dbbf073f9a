// A link's place in the menu: its own neighbours, its escape destinations and its mounted menu.
#include <cstdio>
#include <utility>

#include <frontpanel_data/link_entry.h>

#include "../diagnostics.h"

namespace {

const char* name_or_null(const Data_entry* entry) {
    return entry != nullptr ? entry->Get_name() : "NULL";
}

// Requires: `callback` is not empty. Flattened, so that the compiler leaves out the exception for an empty one.
__attribute__((flatten)) Data_entry* call(const FunctionT1& callback) {
    if (callback.empty()) {
        __builtin_unreachable();
    }
    return callback(nullptr);
}

void report_missing_callback(const char* function, int line, const char* end) {
    std::printf(
        "[%s][%d] ERROR. Link entry is a mountable link, but does not have a valid function "
        "pointer to create the dynamic menu.%s",
        function, line, end);
}

}  // namespace

Data_entry* Link_entry::Set_next(Data_entry* new_link_next) {
    valid_next_link = true;
    LEAF_LINE(LINK_NAVIGATION, FUNCTION_FIRST, "Set_next", "[%s]'s New next = [%s]\n", link_name,
              name_or_null(new_link_next));
    return std::exchange(next_link, new_link_next);
}

Data_entry* Link_entry::Set_previous(Data_entry* new_link_previous) {
    valid_previous_link = true;
    LEAF_LINE(LINK_NAVIGATION, FUNCTION_FIRST, "Set_previous", "[%s]'s New previous = [%s]\n",
              link_name, name_or_null(new_link_previous));
    return std::exchange(previous_link, new_link_previous);
}

Data_entry* Link_entry::Set_parent(Data_entry* new_link_parent) {
    valid_parent_link = true;
    LEAF_LINE(LINK_NAVIGATION, FUNCTION_FIRST, "Set_parent", "[%s]'s New parent = [%s]\n",
              link_name, name_or_null(new_link_parent));
    return std::exchange(parent_link, new_link_parent);
}

Data_entry* Link_entry::Set_child(Data_entry* new_link_child) {
    valid_child_link = true;
    LEAF_LINE(LINK_NAVIGATION, FUNCTION_FIRST, "Set_child", "[%s]'s New child = [%s]\n", link_name,
              name_or_null(new_link_child));
    return std::exchange(child_link, new_link_child);
}

Data_entry* Link_entry::Get_next() {
    if (link_entry == nullptr) {
        return nullptr;
    }
    return valid_next_link ? next_link : link_entry->Get_next();
}

Data_entry* Link_entry::Get_previous() {
    if (link_entry == nullptr) {
        return nullptr;
    }
    return valid_previous_link ? previous_link : link_entry->Get_previous();
}

Data_entry* Link_entry::Get_child() {
    LEAF_LINE(LINK_NAVIGATION, NONE, "Get_child", "[%s][%s][%d]\n", "Get_child", __FILE_NAME__,
              __LINE__);
    if (isMountLink()) {
        return enter_mounted_menu();
    }
    if (link_entry == nullptr) {
        return nullptr;
    }
    return valid_child_link ? child_link : link_entry->Get_child();
}

Data_entry* Link_entry::Get_parent() {
    if (isMountLink()) {
        return leave_mounted_menu();
    }
    if (link_entry == nullptr) {
        return nullptr;
    }
    return valid_parent_link ? parent_link : link_entry->Get_parent();
}

Data_entry* Link_entry::Get_parent_link() {
    return parent_link;
}

Data_entry* Link_entry::Get_child_link() {
    return child_link;
}

bool Link_entry::isValidParentLink() {
    return valid_parent_link;
}

bool Link_entry::isMountLink() {
    return is_mounting_link;
}

void Link_entry::setAsMountLink(FunctionT1 create_menu, FunctionT1 destroy_menu) {
    LEAF_LINE(LINK_NAVIGATION, FUNCTION_FIRST, "setAsMountLink", "Link has become a Mount Link.\n");
    is_mounting_link = true;
    create_mount_menu = std::move(create_menu);
    destroy_mount_menu = std::move(destroy_menu);
}

Data_entry* Link_entry::enter_mounted_menu() {
    LEAF_LINE(LINK_NAVIGATION, FUNCTION_FIRST, "Get_child", "Mount link about to generate menu.\n");
    if (!create_mount_menu) {
        report_missing_callback("Get_child", __LINE__, "\n");
        return nullptr;
    }
    Data_entry* const first = call(create_mount_menu);
    if (first != nullptr) {
        return first;
    }
    FRONTPANEL_PRINT_FUNCTION_FIRST(
        diagnostics::UNCONDITIONAL, "Get_child",
        "Dynamic menu creation failed (Child entry is null). Reverting to parent "
        "link.\n");
    return Get_parent_link();
}

Data_entry* Link_entry::leave_mounted_menu() {
    LEAF_LINE(LINK_NAVIGATION, FUNCTION_FIRST, "Get_parent",
              "Mount link checking destroy callback...\n");
    if (!destroy_mount_menu) {
        // The text of the other callback and without an end of line: intended, log readers match it so.
        report_missing_callback("Get_parent", __LINE__, "");
        return nullptr;
    }
    LEAF_LINE(LINK_NAVIGATION, FUNCTION_FIRST, "Get_parent", "Mount link about to destroy menu.\n");
    call(destroy_mount_menu);
    valid_parent_link = false;
    if (parent_link == nullptr) {
        LEAF_LINE(LINK_NAVIGATION, FUNCTION_FIRST, "Get_parent", "Warning, parent is null\n");
    } else {
        LEAF_LINE(LINK_NAVIGATION, FUNCTION_FIRST, "Get_parent", "Returning links parent=[%s]\n",
                  parent_link->Get_name());
    }
    return parent_link;
}

void Link_entry::Set_escape_node(int coming_from, Data_entry* teleport_destination) {
    if ((coming_from & ESCAPE_REDRAW) != 0) {
        redraw_teleport_destination = teleport_destination;
    }
    if ((coming_from & ESCAPE_LEAVE) != 0) {
        escape_teleport_destination = teleport_destination;
    }
    if ((coming_from & ESCAPE_SELECT) != 0) {
        select_teleport_destination = teleport_destination;
    }
}

Data_entry* Link_entry::Get_escape_node(int coming_from) {
    switch (coming_from) {
        case ESCAPE_REDRAW:
            return redraw_teleport_destination;
        case ESCAPE_LEAVE:
            return escape_teleport_destination;
        case ESCAPE_SELECT:
            return select_teleport_destination;
        default:
            return this;
    }
}
