// The base entry: construction, tree links and display.
// See entry_members.cpp for the plain queries and setters, child_list.cpp for the child list, entry_binding.cpp for
// bindings, visibility.cpp for visibility, product_options.cpp for options, dispatcher.cpp for the dispatcher and
// traversal.cpp for the traversal.
#include <frontpanel_data/entry.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <utility>

#include <frontpanel_data/binding.h>

#include "../assertion.h"
#include "../diagnostics.h"

namespace {

class Lock_guard {
public:
    explicit Lock_guard(pthread_mutex_t& mutex) : m_mutex(mutex) { pthread_mutex_lock(&m_mutex); }
    ~Lock_guard() { pthread_mutex_unlock(&m_mutex); }
    Lock_guard(const Lock_guard&) = delete;
    Lock_guard& operator=(const Lock_guard&) = delete;

private:
    pthread_mutex_t& m_mutex;
};

// Where a child stands in a child list.
enum class Place { ELSEWHERE, ONLY, FIRST, LAST, BETWEEN };

Place place_between(const Data_entry* previous, const Data_entry* next) {
    if (next == nullptr) {
        return previous == nullptr ? Place::ONLY : Place::LAST;
    }
    return previous == nullptr ? Place::FIRST : Place::BETWEEN;
}

void report_removal(const Data_entry& child, const Data_entry& parent, Place place) {
    switch (place) {
        case Place::ELSEWHERE:
            return;
        case Place::ONLY:
        case Place::LAST:
            LEAF_LINE(GENERAL, NONE, "Remove", "[%s] may be the last or only child of parent... ",
                      child.Get_name());
            LEAF_LINE(GENERAL, NONE, "Remove", "%s child\n",
                      place == Place::ONLY ? "Only" : "Last");
            return;
        case Place::FIRST:
            LEAF_LINE(GENERAL, NONE, "Remove",
                      "Getting rid of first child named [%s] from parent [%s]\n", child.Get_name(),
                      parent.Get_name());
            return;
        case Place::BETWEEN:
            LEAF_LINE(GENERAL, NONE, "Remove",
                      "Must sow two children together to remove child [%s] from parent [%s]\n",
                      child.Get_name(), parent.Get_name());
            return;
    }
}

const char* or_empty(const char* text) {
    return text != nullptr ? text : "";
}

// What follows a ':' in a name is for other readers, such as the option text of a link.
void copy_short_name(char (&out)[25], const char* name) {
    std::memset(out, 0, sizeof out);
    const std::size_t length = std::min(std::strcspn(name, ":"), sizeof out - 1);
    std::memcpy(out, name, length);
}

const char* copy_of(const char* text) {
    if (text == nullptr) {
        return nullptr;
    }
    const std::size_t size = std::strlen(text) + 1;
    char* const copy = new char[size];
    std::memcpy(copy, text, size);
    return copy;
}

}  // namespace

Data_entry* setup_link = nullptr;
Data_entry* link_dummy = nullptr;

Data_entry::Data_entry(const char* name, const char* description, unsigned int pid,
                       const Index_t* index, int visible, int shortcut, Data_entry* next,
                       Data_entry* previous, Data_entry* parent, Data_entry* child)
    : m_index(index),
      m_access(READ_ONLY),
      m_access_orig(READ_ONLY),
      flag_access_changed(false),
      m_name(),
      m_description(nullptr),
      m_pid(pid),
      m_shortcut(shortcut),
      m_hs_shortcut(-1),
      m_visible(visible),
      m_has_children(-1),
      m_entry_visible(-1),
      cached_bind_vis(1),
      cached_option_vis(1),
      m_NodeLevel(0),
      suggestion_updated(false),
      m_next(next),
      m_previous(previous),
      m_parent(parent),
      m_child(child),
      m_dynamic_child(nullptr),
      m_dynamic_parent(nullptr),
      m_dynamic_next(nullptr),
      m_dynamic_previous(nullptr),
      m_data_mutex(),
      m_entry_mutex(),
      binding(nullptr),
      bindRefreshIsLocked(false),
      shortcuts_map(nullptr),
      identification_string() {
    if (visible >= 0) {
        FRONTPANEL_ASSERT(name && description && index, "name&&description&&index");
    }
    pthread_mutex_init(&m_data_mutex, nullptr);
    pthread_mutex_init(&m_entry_mutex, nullptr);
    copy_short_name(m_name, or_empty(name));
    LEAF_LINE(CONSTRUCTION, FUNCTION_FIRST, "Data_entry", "m_name=[%s] name=[%s] m_shortcut[%d]\n",
              m_name, or_empty(name), m_shortcut);
    m_description = copy_of(description);
    attach_at_construction(name, visible, parent);
    std::snprintf(identification_string, sizeof identification_string,
                  "[[%s][%d].%d.%d num_index_levels=[%d]]", m_name, static_cast<int>(m_pid),
                  index != nullptr ? index->m_index[0] : 0,
                  index != nullptr ? index->m_index[1] : 0,
                  index != nullptr ? static_cast<int>(index->m_index_num) : 0);
}

// An entry of any other visibility keeps its parent without becoming its child: callers attach it later.
void Data_entry::attach_at_construction(const char* name, int visible, Data_entry* parent) {
    static int invisible_entries = 0;
    if (parent == nullptr) {
        return;
    }
    if (visible == VISIBLE_ALL) {
        LEAF_LINE(GENERAL, NONE, "Data_entry", "Attach [%s] to parent [%s]\n", or_empty(name),
                  parent->Get_name());
        Data_entry::Attach(*parent);
    } else if (visible == VISIBLE_NONE) {
        Data_entry::Attach(*parent);
        std::printf("Invisible entry <%s> added to tree, but will not appear. total so far[%d]\n",
                    or_empty(name), invisible_entries);
        ++invisible_entries;
    }
}

Data_entry::~Data_entry() {
    delete[] m_description;
    delete binding;
}

std::string Data_entry::getProperties(int flags) {
    constexpr int NAME_ONLY = 0x8;
    char line[1024] = {};
    if ((flags & NAME_ONLY) != 0) {
        std::snprintf(line, sizeof line, "%s ", Get_name());
        return line;
    }
    const Index_t* const index = Get_index();
    std::snprintf(line, sizeof line,
                  "%s varid[%d.%d.%d@%s] num_index_levels=[%d] type[%d] vis[%d] shortcut[%d] ",
                  Get_name(), static_cast<int>(Get_pid()), index != nullptr ? index->m_index[0] : 0,
                  index != nullptr ? index->m_index[1] : 0,
                  Get_return_type_int_or_string() == INTEGER ? "i" : "s",
                  index != nullptr ? static_cast<int>(index->m_index_num) : 0,
                  static_cast<int>(Get_entry_type()), Get_visible(), Get_shortcut());
    return line;
}

bool Data_entry::Is_node_entry() const {
    return Get_entry_type() == NODE;
}

int Data_entry::Add_child(Data_entry& child) {
    FRONTPANEL_ASSERT(&child != this, "&child!=this");
    const Lock_guard lock(m_entry_mutex);
    remember_list();
    if (holds(child)) {
        // Added again it moves: linked twice it would end or close the list.
        join_neighbours_of(child);
        child.m_listed_in = 0;
    } else {
        // The sibling links of a child are those of one list: another parent's would end at the child.
        FRONTPANEL_DEBUG_ASSERT(
            child.m_parent == nullptr || child.m_parent == this || !child.m_parent->holds(child),
            "!child.m_parent->holds(child)");
    }
    append(child);
    return 0;
}

int Data_entry::Attach(Data_entry& parent) {
    FRONTPANEL_ASSERT(&parent != this, "&parent!=this");  // its mutex would be locked twice
    const Lock_guard lock(m_entry_mutex);
    return parent.Add_child(*this);
}

int Data_entry::Remove(Data_entry* child) {
    if (child == nullptr) {
        std::printf("Child sent for removal for parent [%s][%p] is null\n", Get_name(),
                    static_cast<void*>(this));
        return -1;
    }
    LEAF_LINE(GENERAL, NONE, "Remove",
              "Child named [%s][%p] sent for removal from parent [%s][%p] \n", child->Get_name(),
              static_cast<void*>(child), Get_name(), static_cast<void*>(this));
    Place place = Place::ELSEWHERE;
    {
        const Lock_guard lock(m_entry_mutex);
        remember_list();
        if (holds(*child)) {
            place = place_between(child->m_previous, child->m_next);
            unlink(*child);
        }
    }
    // Printed after the mutex is released, so that a listener may ask the entry.
    if (place == Place::ELSEWHERE) {
        std::printf("Could not find child named [%s][%p] from parent [%s][%p]\n", child->Get_name(),
                    static_cast<void*>(child), Get_name(), static_cast<void*>(this));
    } else {
        report_removal(*child, *this, place);
    }
    return 0;
}

// The removed child keeps its own sibling links: a walk that stands on it still finds its former siblings.
void Data_entry::unlink(Data_entry& child) {
    join_neighbours_of(child);
    child.m_listed_in = 0;
    child.m_parent = nullptr;
}

int Data_entry::Get_display_string(char* buffer, unsigned int length) {
    FRONTPANEL_ASSERT(buffer, "buffer");
    if (length < 2) {
        return ERROR;
    }
    const std::size_t name_length = std::strlen(m_name);
    if (name_length < length) {
        std::memcpy(buffer, m_name, name_length + 1);
        return OK;
    }
    std::memcpy(buffer, m_name, length - 1);
    // One past the last character on purpose: callers pass one less than their buffer's size and look for
    // the terminator at its last byte.
    buffer[length] = '\0';
    return OK;
}

Data_entry* Data_entry::getShortcut(int button) {
    if (shortcuts_map == nullptr) {
        LEAF_LINE(SHORTCUT, FUNCTION_FIRST, "getShortcut",
                  "Asked to get shortcut for button number [%d], but shortcuts_map is NULL.\n",
                  button);
        return nullptr;
    }
    const auto row = shortcuts_map->find(button);
    if (row == shortcuts_map->end()) {
        LEAF_LINE(SHORTCUT, FUNCTION_FIRST, "getShortcut",
                  "Asked to get shortcut for button number [%d], but that is not a shortcut "
                  "button.\n",
                  button);
        return nullptr;
    }
    Data_entry* const entry = row->second.entry;
    if (entry == nullptr) {
        LEAF_LINE(SHORTCUT, FUNCTION_FIRST, "getShortcut",
                  "Asked to get shortcut for button number [%d], but that is not assigned.\n",
                  button);
        return nullptr;
    }
    LEAF_LINE(SHORTCUT, FUNCTION_FIRST, "getShortcut",
              "Asked to get shortcut for button number [%d], returning entry [%s].\n", button,
              entry->Get_name());
    return entry;
}

RETURN_TYPE Data_entry::bindingReturnType() {
    return EntryModelCache::Type_to_return_type(Get_entry_type());
}
