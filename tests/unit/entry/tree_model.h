// A plain model of a menu's tree: numbers in place of pointers, and what the library does with them written
// down once more, as short as it goes.
#ifndef FRONTPANEL_DATA_TESTS_UNIT_ENTRY_TREE_MODEL_H
#define FRONTPANEL_DATA_TESTS_UNIT_ENTRY_TREE_MODEL_H

#include <frontpanel_data/entry.h>

#include <algorithm>
#include <array>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

inline constexpr int NONE = -1;

enum Direction { NEXT, PREVIOUS, PARENT, CHILD };
using Neighbours = std::array<int, 4>;
inline constexpr Neighbours NOWHERE = {NONE, NONE, NONE, NONE};

enum class Kind { NODE, LEAF, LINK };
enum class Toggle { ABSENT, ON, OFF };

struct Entry_model {
    bool alive = true;
    Kind kind = Kind::NODE;
    Data_entry::Entry_type type = Data_entry::NODE;
    std::string name;
    unsigned int pid = Data_entry::PID_NONE;
    int levels = 0;  // of the index; NONE without one
    int visible = 1;
    int shortcut = -1;
    Neighbours base = NOWHERE;
    Neighbours dynamic = NOWHERE;
    int option_visible = 1;
    int entry_visible = -1;
    int has_children = -1;
    int refreshes = 0;
    bool has_table = false;
    bool is_asked = false;  // within a question for its visibility

    // Of a link.
    int housed = NONE;
    Neighbours own = NOWHERE;
    std::array<bool, 4> valid = {};
    std::array<int, 3> escape = {NONE, NONE, NONE};  // redraw, select, leave
    int behaviour = 1;
    bool link_visible = true;
    bool is_bridge = false;
    Toggle toggle = Toggle::ABSENT;
    bool is_mount = false;
    bool builds = false;    // the callback of a mount link delivers a menu
    std::vector<int> menu;  // the mounted menu: its node, then the leaves
    int taken_down = 0;

    bool is_link() const { return kind == Kind::LINK; }
};

class Model {
public:
    std::vector<Entry_model> entries;
    std::string output;  // what the library has printed

    Entry_model& at(int entry) { return entries[static_cast<std::size_t>(entry)]; }
    const Entry_model& at(int entry) const { return entries[static_cast<std::size_t>(entry)]; }
    int size() const { return static_cast<int>(entries.size()); }

    int add(Entry_model entry) {
        entries.push_back(std::move(entry));
        return size() - 1;
    }

    // What an operation that links forward works on; NONE for a link that houses nothing.
    int addressed(int entry) const {
        while (entry != NONE && at(entry).is_link()) {
            entry = at(entry).housed;
        }
        return entry;
    }

    // --- the tree that stands in the base fields

    bool holds(int parent, int child) const {
        int sibling = at(parent).base[CHILD];
        while (sibling != NONE && sibling != child) {
            sibling = at(sibling).base[NEXT];
        }
        return sibling != NONE;
    }

    void join_neighbours_of(int parent, int child) {
        const int next = at(child).base[NEXT];
        const int previous = at(child).base[PREVIOUS];
        (previous != NONE ? at(previous).base[NEXT] : at(parent).base[CHILD]) = next;
        if (next != NONE) {
            at(next).base[PREVIOUS] = previous;
        }
    }

    bool add_child(int parent, int child) {
        parent = addressed(parent);
        if (parent == NONE || parent == child) {
            return false;
        }
        if (holds(parent, child)) {
            join_neighbours_of(parent, child);
        } else if (at(child).base[PARENT] != NONE && holds(at(child).base[PARENT], child)) {
            return false;  // the caller removes it there first
        }
        int last = NONE;
        for (int sibling = at(parent).base[CHILD]; sibling != NONE;
             sibling = at(sibling).base[NEXT]) {
            if (sibling == child) {
                return false;  // its neighbours did not agree, and the list would be closed
            }
            last = sibling;
        }
        at(child).base[PARENT] = parent;
        at(child).base[NEXT] = NONE;
        at(child).base[PREVIOUS] = last;
        (last != NONE ? at(last).base[NEXT] : at(parent).base[CHILD]) = child;
        return true;
    }

    bool remove(int parent, int child) {
        parent = addressed(parent);
        if (parent == NONE || !holds(parent, child)) {
            return false;
        }
        join_neighbours_of(parent, child);
        at(child).base[PARENT] = NONE;
        return true;
    }

    bool has_endless_siblings() const {
        for (const Entry_model& entry : entries) {
            int steps = 0;
            for (int sibling = entry.base[NEXT]; sibling != NONE && entry.alive;
                 sibling = at(sibling).base[NEXT]) {
                if (++steps > size()) {
                    return true;
                }
            }
        }
        return false;
    }

    // --- neighbours as the menu shows them

    int own_or_housed(int entry, Direction direction) const {
        const Entry_model& link = at(entry);
        if (link.housed == NONE) {
            return NONE;
        }
        return link.valid[direction] ? link.own[direction] : at(link.housed).base[direction];
    }

    // Of a mount link not for the plain parent and child, which take a menu down and build one.
    int delivered(int entry, int flag) const {
        const Entry_model& asked = at(entry);
        const Direction direction = direction_of(flag);
        const bool dynamic = (flag & Data_entry::OPERATION_DYNAMIC) != 0 &&
                             (direction == NEXT || direction == PREVIOUS) &&
                             asked.type != Data_entry::TIME_LEAF;
        if (asked.is_link()) {
            const bool link_form =
                (flag & (Data_entry::OPERATION_PARENT_LINK | Data_entry::OPERATION_CHILD_LINK)) !=
                0;
            return link_form ? asked.own[direction] : own_or_housed(entry, direction);
        }
        return dynamic ? asked.dynamic[direction] : asked.base[direction];
    }

    static Direction direction_of(int flag) {
        if ((flag & (Data_entry::OPERATION_PARENT | Data_entry::OPERATION_PARENT_LINK)) != 0) {
            return PARENT;
        }
        if ((flag & (Data_entry::OPERATION_CHILD | Data_entry::OPERATION_CHILD_LINK)) != 0) {
            return CHILD;
        }
        return (flag & Data_entry::OPERATION_NEXT) != 0 ? NEXT : PREVIOUS;
    }

    // --- the walk

    // Calls `visit` with each entry below and its depth. False when there are too many.
    bool walk(int entry, const std::function<void(int, int)>& visit) {
        m_path.clear();
        m_budget = 150;
        descend(entry, 0, visit);
        return m_budget > 0;
    }

    std::string report(int entry) const {
        const Entry_model& told = at(entry);
        const int housed = addressed(entry);
        const bool is_number = housed != NONE && at(housed).type == Data_entry::RANGE_LEAF;
        return told.name + " varid[" + std::to_string(static_cast<int>(told.pid)) + "." +
               (told.levels > 0 ? "3" : "0") + ".0@" + (is_number ? "i" : "s") +
               "] num_index_levels=[" + std::to_string(std::max(told.levels, 0)) + "] type[" +
               std::to_string(told.type) + "] vis[" + std::to_string(told.visible) + "] shortcut[" +
               std::to_string(told.shortcut) + "] ";
    }

    // --- visibility

    // 1 and more or -1. False in `is_asked_too_much` when the tree asks too often.
    int is_visible(int entry, bool refresh) {
        if (--m_questions < 0) {
            return -1;
        }
        return at(entry).is_link() ? is_link_visible(entry, refresh)
                                   : is_plain_visible(entry, refresh);
    }
    void begin_questions() { m_questions = 2000; }
    bool is_asked_too_much() const { return m_questions < 0; }

private:
    void descend(int entry, int depth, const std::function<void(int, int)>& visit) {
        if (std::find(m_path.begin(), m_path.end(), entry) != m_path.end()) {
            return;
        }
        m_path.push_back(entry);
        std::set<int> met;
        int child = delivered(entry, Data_entry::OPERATION_CHILD_LINK);
        while (child != NONE && met.insert(child).second && --m_budget > 0) {
            visit(child, depth);
            const int next = delivered(child, Data_entry::OPERATION_NEXT);
            descend(child, depth + 1, visit);
            child = next;
        }
        m_path.pop_back();
    }

    int is_link_visible(int entry, bool refresh) {
        const int housed = at(entry).housed;
        const bool shows = housed != NONE && is_visible(housed, refresh) >= 0;
        return at(entry).toggle != Toggle::OFF && shows ? 1 : -1;
    }

    int is_plain_visible(int entry, bool refresh) {
        if (!refresh && at(entry).entry_visible >= 0) {
            return at(entry).entry_visible;
        }
        const bool asked_again = at(entry).is_asked;
        at(entry).is_asked = true;
        const bool shows = asked_again || shows_something(entry, refresh);
        at(entry).is_asked = asked_again;
        if (refresh && !asked_again && at(entry).kind == Kind::LEAF) {
            ++at(entry).refreshes;
        }
        Entry_model& asked = at(entry);
        const bool visible = asked.option_visible >= 0 && shows && asked.visible >= 0;
        if (!visible || (refresh && !asked_again)) {
            asked.entry_visible = visible ? asked.visible : -1;
        }
        return visible ? asked.visible : -1;
    }

    bool shows_something(int entry, bool refresh) {
        if (at(entry).kind != Kind::NODE) {
            at(entry).has_children = 1;
            return true;
        }
        const int first = at(entry).base[CHILD];
        if (first == NONE) {
            return false;
        }
        if (is_visible(first, refresh) >= 0) {
            return true;
        }
        bool links = at(first).is_link();
        std::set<int> met = {first};
        for (int sibling = delivered(first, Data_entry::OPERATION_NEXT);
             sibling != NONE && met.insert(sibling).second;
             sibling = delivered(sibling, Data_entry::OPERATION_NEXT)) {
            if (at(sibling).is_link()) {
                links = true;
            } else if (is_visible(sibling, true) >= 0) {
                return true;
            }
        }
        at(entry).has_children = links;
        return links;
    }

    std::vector<int> m_path;
    int m_budget = 0;
    int m_questions = 0;
};

#endif
