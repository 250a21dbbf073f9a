// Whether an entry is shown, and what of the answer is remembered.
#include <array>
#include <forward_list>
#include <utility>

#include <frontpanel_data/binding.h>
#include <frontpanel_data/entry.h>
#include <frontpanel_data/link_entry.h>

#include "../diagnostics.h"
#include "neighbours.h"
#include "overriding.h"

namespace {

// Raises a flag for as long as it lives.
class Raised {
public:
    explicit Raised(bool& flag) : m_flag(flag), m_before(flag) { m_flag = true; }
    ~Raised() { m_flag = m_before; }
    Raised(const Raised&) = delete;
    Raised& operator=(const Raised&) = delete;

private:
    bool& m_flag;
    bool m_before;
};

}  // namespace

// One question, with the entries below that have to be asked for its answer. It keeps a stack of its own: a menu may
// be deeper than the thread's.
class Visibility_question {
public:
    explicit Visibility_question(Data_interface* iface) : m_iface(iface) {}
    ~Visibility_question() {
        while (m_asked.size() > 0) {
            drop();
        }
    }
    Visibility_question(const Visibility_question&) = delete;
    Visibility_question& operator=(const Visibility_question&) = delete;

    int answer_of_entry(Data_entry& entry, bool refresh) {
        ask_entry(entry, refresh);
        return answer();
    }
    int answer_of_link(Link_entry& link, bool refresh) {
        ask_link(link, refresh);
        return answer();
    }

private:
    enum class Step { START, FIRST_CHILD, SIBLING, HOUSED };

    // An entry that waits for the answer of another one.
    struct Asked {
        Data_entry* entry;
        Data_entry* below;  // the one whose answer it waits for
        Step step;
        bool refresh;
        bool links;  // there are links among its children
        int toggle;  // of a link
        neighbours::Met::Level siblings;
    };

    // The first few within the object, so that shallow menus allocate nothing.
    class Stack {
    public:
        std::size_t size() const { return m_size; }
        Asked& back() { return m_size <= FEW ? few(m_size - 1) : m_more.front(); }
        void push(Asked asked) {
            if (m_size < FEW) {
                few(m_size) = std::move(asked);
            } else {
                m_more.push_front(std::move(asked));
            }
            ++m_size;
        }
        void pop() {
            if (m_size > FEW) {
                m_more.pop_front();
            }
            --m_size;
        }

    private:
        static constexpr std::size_t FEW = 4;
        Asked& few(std::size_t at) { return m_few[at]; }

        std::array<Asked, FEW> m_few{};
        std::forward_list<Asked> m_more;
        std::size_t m_size = 0;
    };

    int answer() {
        while (m_asked.size() > 0) {
            proceed();
        }
        return m_answer;
    }

    void ask(Data_entry& entry, bool refresh) {
        switch (overriding::of_is_visible(entry)) {
            case overriding::Version::BASE:
                return ask_entry(entry, refresh);
            case overriding::Version::LINK:
                return ask_link(static_cast<Link_entry&>(entry), refresh);
            case overriding::Version::OTHER:
                m_answer = entry.isVisible(refresh, m_iface);
        }
    }

    void ask_entry(Data_entry& entry, bool refresh) {
        if (!entry.asks_its_children(refresh)) {
            m_answer = entry.visibility_alone(refresh, m_iface);
            return;
        }
        m_asked.push({&entry, nullptr, Step::START, refresh, false, 0, m_met.enter()});
        entry.m_visibility_asked = true;  // last, since only `drop` resets it
    }

    void ask_link(Link_entry& link, bool refresh) {
        if (&link == setup_link) {
            m_answer = VIS_TRUE;
            return;
        }
        const int toggle = link.toggle_visibility();
        if (link.link_entry == nullptr) {
            m_answer = link.visibility(toggle, false);
            return;
        }
        m_asked.push({&link, link.link_entry, Step::HOUSED, refresh, false, toggle, m_met.enter()});
        ask(*link.link_entry, refresh);
    }

    void proceed() {
        Asked& asked = m_asked.back();
        switch (asked.step) {
            case Step::START:
                return start(asked);
            case Step::FIRST_CHILD:
                if (m_answer >= 0) {
                    return finish(true);
                }
                asked.links = asked.below->Get_entry_type() == Data_entry::LINK_ENTRY;
                m_met.is_new(asked.siblings, asked.below);
                return ask_next_sibling(asked);
            case Step::SIBLING:
                return m_answer >= 0 ? finish(true) : ask_next_sibling(asked);
            case Step::HOUSED: {
                Link_entry& link = static_cast<Link_entry&>(*asked.entry);
                const int toggle = asked.toggle;
                drop();
                m_answer = link.visibility(toggle, m_answer >= 0);
                return;
            }
        }
    }

    void start(Asked& asked) {
        asked.below = neighbours::first_child(asked.entry);
        if (asked.below == nullptr) {
            return finish(false);
        }
        asked.step = Step::FIRST_CHILD;
        ask(*asked.below, asked.refresh);
    }

    // The stored results differ on purpose: only a walk that reached the end has asked all children.
    void ask_next_sibling(Asked& asked) {
        for (;;) {
            asked.below = neighbours::next(asked.below);
            if (asked.below == nullptr || !m_met.is_new(asked.siblings, asked.below)) {
                const bool links = asked.links;
                asked.entry->Set_has_children(links);
                return finish(links);
            }
            if (asked.below->Get_entry_type() != Data_entry::LINK_ENTRY) {
                asked.step = Step::SIBLING;
                return ask(*asked.below, true);
            }
            asked.links = true;  // counts without being asked: what it houses lies in another menu
        }
    }

    // The entry itself is still being asked while it is refreshed.
    void finish(bool shows_something) {
        const Asked& asked = m_asked.back();
        m_answer = asked.entry->conclude_visibility(asked.refresh, m_iface, shows_something, false);
        drop();
    }

    void drop() {
        Asked& asked = m_asked.back();
        if (asked.step != Step::HOUSED) {
            asked.entry->m_visibility_asked = false;
        }
        m_met.leave(asked.siblings);
        m_asked.pop();
    }

    Data_interface* m_iface;
    Stack m_asked;  // from the first one to the one that is asked now
    int m_answer = VIS_FALSE;
    neighbours::Met m_met;
};

int Data_entry::isVisible() {
    return isVisible(false, nullptr);
}

int Data_entry::isVisible(bool if_control_refresh, Data_interface* pDataAccessInf) {
    if (!asks_its_children(if_control_refresh)) {
        return visibility_alone(if_control_refresh, pDataAccessInf);
    }
    return Visibility_question(pDataAccessInf).answer_of_entry(*this, if_control_refresh);
}

bool Data_entry::asks_its_children(bool if_control_refresh) const {
    const bool is_known = this == setup_link || (!if_control_refresh && m_entry_visible >= 0);
    return !is_known && !m_visibility_asked && Get_entry_type() == NODE && this != link_dummy;
}

int Data_entry::visibility_alone(bool if_control_refresh, Data_interface* pDataAccessInf) {
    if (this == setup_link) {
        return VIS_TRUE;
    }
    if (!if_control_refresh && m_entry_visible >= 0) {
        return m_entry_visible;
    }
    // An entry that is already being asked is reached again through a link to an ancestor: it counts as
    // having something to show, which ends the circle.
    const bool asked_again = m_visibility_asked;
    const Raised asking(m_visibility_asked);
    if (!asked_again) {
        Set_has_children(true);
    }
    return conclude_visibility(if_control_refresh, pDataAccessInf, true, asked_again);
}

int Data_entry::conclude_visibility(bool if_control_refresh, Data_interface* pDataAccessInf,
                                    bool shows_something, bool asked_again) {
    if (if_control_refresh && !asked_again && Get_entry_type() != NODE) {
        refresh_for_visibility(pDataAccessInf);
    }
    int result = VIS_FALSE;
    if (cached_option_vis >= 0 && shows_something && Get_bind_vis() >= 0 && Get_visible() >= 0) {
        result = Get_visible();
        if (!if_control_refresh || asked_again) {
            return result;  // on purpose not remembered: only a refresh vouches for being visible
        }
    }
    Set_entry_visible(result);
    return result;
}

void Data_entry::refresh_for_visibility(Data_interface* iface) {
    if (EntryTypeSpecificOperation(this, iface, nullptr, true, OPERATION_REFRESH, nullptr) != 0) {
        if ((debug & diagnostics::VISIBILITY) == 0 || !diagnostics::entry_gate()) return;
        const diagnostics::Announcement announcement(diagnostics::VISIBILITY);
        const int visible = isVisible();  // may print lines of its own
        FRONTPANEL_PRINT_FUNCTION_FIRST(diagnostics::UNCONDITIONAL, "isVisible",
                                        "Error refreshing entry [%s] vis=[%d]\n", Get_name(),
                                        visible);
    }
}

int Link_entry::isVisible(bool if_control_refresh, Data_interface* m_pDataAccessInf) {
    return Visibility_question(m_pDataAccessInf).answer_of_link(*this, if_control_refresh);
}
