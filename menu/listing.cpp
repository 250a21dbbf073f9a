#include <frontpanel_menu/listing.h>

#include <frontpanel_menu/entry_access.h>
#include <frontpanel_menu/menu.h>

namespace frontpanel {
namespace {

// Deeper links and submenus, such as links in a circle, count as having something to show.
constexpr int DEEPEST = 1000;

class Question {
public:
    explicit Question(Menu& menu) : m_menu(menu) {}

    bool is_listed(Data_entry& entry, int depth) {
        if (&entry == setup_link || depth == DEEPEST) {
            return true;
        }
        if (is_link(entry)) {
            return is_link_listed(entry, depth);
        }
        if (!is_submenu(entry)) {
            return is_leaf_listed(entry);
        }
        auto* const node = dynamic_cast<Menu_node*>(&entry);
        return node != nullptr ? is_node_listed(*node, depth)
                               : entry.isVisible(true, &m_menu.access()) >= 0;
    }

private:
    // Clears the answer of the last refresh first, so that it is worked out anew, without a read.
    bool is_visible_unread(Data_entry& entry) {
        entry.Set_entry_visible(-1);
        return entry.isVisible(false, &m_menu.access()) >= 0;
    }

    bool is_leaf_listed(Data_entry& leaf) {
        const std::optional<bool> ahead = m_menu.bindings()->visibility_ahead(leaf);
        if (ahead && !*ahead) {
            return false;
        }
        return is_visible_unread(leaf) || (ahead && leaf.isVisible(true, &m_menu.access()) >= 0);
    }

    // Apart from its toggle, a link is visible when its housed entry is: it takes that entry's remembered answer.
    bool is_link_listed(Data_entry& entry, int depth) {
        Link_entry* const link = link_of(entry);
        if (link == nullptr || is_mount(entry)) {
            return entry.isVisible(true, &m_menu.access()) >= 0;
        }
        Data_entry& target = housed(entry);
        if (!is_listed(target, depth + 1)) {
            return false;
        }
        target.Set_entry_visible(VIS_TRUE);
        const bool is_on = entry.isVisible(false, &m_menu.access()) >= 0;
        target.Set_entry_visible(VIS_FALSE);
        return is_on;
    }

    // A submenu with a link in it is listed without asking the link, whose housed entry is in another menu.
    bool is_node_listed(Menu_node& node, int depth) {
        refresh(node, m_menu.access());
        if (!node.is_allowed()) {
            return false;
        }
        for (Data_entry* child = neighbour(node, Data_entry::OPERATION_CHILD); child != nullptr;
             child = neighbour(*child, Data_entry::OPERATION_NEXT)) {
            if (is_link(*child) || is_listed(*child, depth + 1)) {
                return true;
            }
        }
        return false;
    }

    Menu& m_menu;
};

}  // namespace

bool Menu_node::is_allowed() {
    return cached_option_vis >= 0 && Get_bind_vis() >= 0 && Get_visible() >= 0;
}

bool is_listed(Data_entry& entry, Menu& menu) {
    return Question(menu).is_listed(entry, 0);
}

}  // namespace frontpanel
