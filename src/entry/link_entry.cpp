// A link's construction and its own operations. See link_forwarding.cpp for those that it forwards,
// link_navigation.cpp for neighbours and mounted menus, and link_toggle.cpp for the toggle.
#include <frontpanel_data/link_entry.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <utility>

#include <frontpanel_data/binding.h>
#include <frontpanel_data/range_entry.h>

#include "../assertion.h"
#include "../diagnostics.h"

namespace {

constexpr char BRIDGE_NAME[] = "Bridge Entry";
constexpr std::size_t PREFIX_LENGTH = 19;
constexpr std::size_t JOINED_LENGTH =
    25;  // one more than a name holds: the last character is then cut

bool is_bridge(const char* name) {
    return std::strcmp(name, BRIDGE_NAME) == 0;
}

// The names of the entries above an indexed one, as many as it has index levels. An ancestor that is not
// there has no part in it.
std::string prefix_of(const Data_entry& entry, unsigned int levels) {
    if (levels > 2) {
        return "";
    }
    std::string prefix;
    const Data_entry* ancestor = entry.Get_parent();
    for (unsigned int level = 0; level < levels && ancestor != nullptr; ++level) {
        prefix.append(ancestor->Get_name()).append(".");
        ancestor = ancestor->Get_parent();
    }
    return prefix.substr(0, PREFIX_LENGTH);
}

std::string display_name_of(const Data_entry& entry) {
    std::string name = entry.Get_name();
    if (is_bridge(name.c_str())) {
        return name;
    }
    const Index_t* const index = entry.Get_index();
    FRONTPANEL_ASSERT(index, "housed_entry->Get_index()");
    if (index->m_index_num == 0) {
        return name;
    }
    const std::string prefix = prefix_of(entry, index->m_index_num);
    // "(null)" for a name that does not fit is intended: panels recognise it as the mark of an over-long name.
    return prefix + (prefix.size() + name.size() <= JOINED_LENGTH ? name : "(null)");
}

}  // namespace

Link_entry::Link_entry(Data_entry* housed_entry)
    : Data_entry(housed_entry != nullptr ? housed_entry->Get_name() : "",
                 housed_entry != nullptr ? housed_entry->Get_description() : "",
                 housed_entry != nullptr ? housed_entry->Get_pid() : 0,
                 housed_entry != nullptr ? housed_entry->Get_index() : nullptr,
                 housed_entry != nullptr ? housed_entry->Get_visible() : VISIBLE_NONE,
                 housed_entry != nullptr ? housed_entry->Get_shortcut() : SHORTCUT_NONE,
                 housed_entry != nullptr ? housed_entry->Get_next() : nullptr,
                 housed_entry != nullptr ? housed_entry->Get_previous() : nullptr, nullptr,
                 housed_entry != nullptr ? housed_entry->Get_child() : nullptr),
      link_name(),
      link_entry(housed_entry),
      entry_type(LINK_ENTRY),
      redraw_teleport_destination(nullptr),
      escape_teleport_destination(nullptr),
      select_teleport_destination(nullptr),
      link_behaviour(LINK_STAY),
      is_bridge_link(false),
      link_visible(housed_entry == nullptr || housed_entry->Get_visible() != 0),
      is_mounting_link(false),
      is_homescreen_entry(false),
      vim(nullptr),
      next_link(nullptr),
      previous_link(nullptr),
      parent_link(nullptr),
      child_link(nullptr),
      valid_next_link(false),
      valid_previous_link(false),
      valid_parent_link(false),
      valid_child_link(false) {
    const char* const housed_name = housed_entry != nullptr ? housed_entry->Get_name() : "none";
    LEAF_LINE(LINK_CREATION, FUNCTION_FIRST, "Link_entry", "Creating Link entry named [%s]\n",
              housed_name);
    const std::string name =
        housed_entry != nullptr ? display_name_of(*housed_entry) : std::string(housed_name);
    std::memcpy(link_name, name.data(), std::min(name.size(), sizeof link_name - 1));
    if (housed_entry != nullptr) {
        Data_entry::Set_parent(housed_entry->Get_parent());
    }
}

Link_entry::~Link_entry() {
    if (link_entry != nullptr && is_bridge(link_name)) {
        delete link_entry->Get_index();
        delete link_entry;
    }
}

Data_entry& Link_entry::housed() const {
    FRONTPANEL_ASSERT(link_entry, "link_entry");
    return *link_entry;
}

const char* Link_entry::Get_name() const {
    return link_name;
}

Data_entry::Entry_type Link_entry::Get_entry_type() const {
    return entry_type;
}

Data_entry* Link_entry::Get_housed_entry() {
    return link_entry;
}

void Link_entry::setAsBridgeLink() {
    is_bridge_link = true;
}

bool Link_entry::isBridgeLink() {
    return is_bridge_link;
}

int Link_entry::getBehaviour() {
    return link_behaviour;
}

int Link_entry::setBehaviour(int stay_or_skip) {
    if (stay_or_skip == LINK_STAY || stay_or_skip == LINK_SKIP) {
        return std::exchange(link_behaviour, stay_or_skip);
    }
    LEAF_LINE(LINK_NAVIGATION, FUNCTION_FIRST, "setBehaviour",
              "[%d] is not a valid link behaviour. Try LINK_STAY or LINK_SKIP.\n", stay_or_skip);
    return link_behaviour;
}

bool Link_entry::Set_visible(bool visible) {
    return std::exchange(link_visible, visible);
}

int Link_entry::Get_visible() {
    return isVisible();
}

int Link_entry::isVisible() {
    return isVisible(false, nullptr);
}

int Link_entry::toggle_visibility() {
    return !is_homescreen_entry || CheckToggleState() != 0 ? VIS_TRUE : VIS_FALSE;
}

int Link_entry::visibility(int toggle_vis, bool housed_is_visible) const {
    const int vis_link_entry = housed_is_visible ? VIS_TRUE : VIS_FALSE;
    // The link's own flag is printed, also as the outcome, but has no effect. Intended: it belongs to the
    // application, which sets it by `Set_visible(bool)`.
    LEAF_LINE(LINK_VISIBILITY, FUNCTION_FIRST, "isVisible",
              "name[%s] toggle_vis[%d] && link_visible[%d] && link_entry->isVisible()[%d]   =  "
              "[%d]\n",
              link_name, toggle_vis, link_visible, vis_link_entry, link_visible);
    return toggle_vis == VIS_FALSE ? toggle_vis : vis_link_entry;
}

int Link_entry::Get_display_string(char* buffer, unsigned int length) {
    if (link_entry == nullptr) {
        return 0;
    }
    FRONTPANEL_ASSERT(buffer, "buffer");
    const Entry_type type = link_entry->Get_entry_type();
    switch (type) {
        case NODE:
            *buffer = '\0';
            return 0;
        case RANGE_LEAF:
            if (auto* const range = dynamic_cast<Range_entry*>(link_entry)) {
                return range->Get_display_string(buffer, length, false, -1);
            }
            return link_entry->Get_display_string(buffer, length);
        case ENUM_LEAF:
        case STRING_LEAF:
        case IP_LEAF:
        case TIME_LEAF:
        case SLOT_ENUM:
            return link_entry->Get_display_string(buffer, length);
        default:
            return std::fprintf(stderr, "LinkEntry::, unhandled type %i\n", static_cast<int>(type));
    }
}

std::vector<var_index_s> Link_entry::Get_var_index_map_keys(int flags) {
    std::vector<var_index_s> keys;
    if (link_entry != nullptr) {
        entry_type = link_entry->Get_entry_type();
        keys = link_entry->Get_var_index_map_keys(flags);
        entry_type = LINK_ENTRY;
    }
    if (is_homescreen_entry) {
        for (const auto& [name, key] : homescreen_keys) {
            keys.push_back(key);
        }
    }
    return keys;
}

var_index_map_t* Link_entry::Get_var_index_map() {
    return vim;
}
