// Printing an entry and all below it.
#include <pthread.h>

#include <cstdio>
#include <forward_list>
#include <utility>

#include <frontpanel_data/link_entry.h>

#include "entry_set.h"
#include "neighbours.h"
#include "overriding.h"

// Prints an entry and those below it. It keeps a stack of its own: a menu may be deeper than the thread's. The mutex of
// an entry is locked while its children are printed.
class Printing {
public:
    Printing() : m_outer(innermost) { innermost = this; }
    ~Printing() {
        while (!m_levels.empty()) {
            leave();
        }
        innermost = m_outer;
    }
    Printing(const Printing&) = delete;
    Printing& operator=(const Printing&) = delete;

    void run(Data_entry& start) {
        enter(start);
        while (!m_levels.empty()) {
            proceed(m_levels.front());
        }
    }

private:
    struct Level {
        Data_entry* entry;
        Data_entry* child;  // whose turn it is; null before the first
        neighbours::Met::Level siblings;
    };

    void proceed(Level& level) {
        level.child = level.child == nullptr ? level.entry->m_child : level.child->m_next;
        if (level.child == nullptr || !m_met.is_new(level.siblings, level.child)) {
            leave();
        } else {
            print(*level.child);
        }
    }

    void print(Data_entry& entry) {
        Data_entry* at = &entry;
        while (at != nullptr && overriding::of_print(*at) == overriding::Version::LINK) {
            at = static_cast<Link_entry*>(at)->link_entry;
        }
        if (at == nullptr) {
            return;
        }
        if (overriding::of_print(*at) == overriding::Version::BASE) {
            enter(*at);
        } else {
            at->Print();
        }
    }

    void enter(Data_entry& entry) {
        if (is_under_way(entry)) {
            // Reached again through a link below itself, with its mutex locked and its children on their way.
            print_heading(entry);
            return;
        }
        // The level is added after everything that may throw, since leaving it unlocks the entry.
        m_entries.insert(&entry);
        m_levels.push_front({&entry, nullptr, m_met.enter()});
        pthread_mutex_lock(&entry.m_entry_mutex);
        print_heading(entry);
    }

    void leave() {
        Level& level = m_levels.front();
        pthread_mutex_unlock(&level.entry->m_entry_mutex);
        m_entries.erase(level.entry);
        m_met.leave(level.siblings);
        m_levels.pop_front();
    }

    static bool is_under_way(const Data_entry& entry) {
        const Printing* at = innermost;
        while (at != nullptr && !at->m_entries.holds(&entry)) {
            at = at->m_outer;
        }
        return at != nullptr;
    }

    static void print_heading(const Data_entry& entry) {
        const char* const description = entry.Get_description();
        std::printf("----- data entry (%s) -----\n", entry.Get_name());
        std::printf("Description:\n%s\n", description != nullptr ? description : "");
    }

    // Of this thread: the version of an application's class may print again by the base's.
    static thread_local const Printing* innermost;

    const Printing* m_outer;
    std::forward_list<Level> m_levels;
    Entry_set m_entries;  // the entries of all levels
    neighbours::Met m_met;
};

thread_local const Printing* Printing::innermost = nullptr;

void Data_entry::Print() {
    Printing().run(*this);
}
