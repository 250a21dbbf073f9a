// The child list of an entry: membership, end, and taking a child in and out.
//
// A list that was walked is remembered: its number, which its children carry, and its last child. A child is then
// found, added and removed without a walk. The application may change links by the plain setters, which know
// neither the list nor whether its parent still exists. A change that a remembered list may contain therefore makes
// all lists forgotten: the number that is next becomes the oldest one that counts. A forgotten list is walked once
// more. Lists that lead back into themselves are walked each time.
//
// A class of the application may also write the links, which are protected, itself. A list of few children is
// therefore compared with what is remembered of it each time, and a longer one as far as that goes.
#include <frontpanel_data/entry.h>

#include <utility>

#include "../step_counter.h"
#include "child_list.h"

namespace child_list {

std::atomic<uint32_t> latest_number{0};
std::atomic<uint32_t> forgotten_up_to{0};

}  // namespace child_list

namespace {

using child_list::forgotten_up_to;
using child_list::latest_number;

constexpr int FEW = 16;

// 0 when there are no more: lists that are not remembered are walked from then on.
uint32_t next_number() {
    uint32_t number = latest_number;
    while (number != UINT32_MAX && !latest_number.compare_exchange_weak(number, number + 1)) {
    }
    return number != UINT32_MAX ? number + 1 : 0;
}

void forget_all_lists() {
    const uint32_t number = next_number();
    const uint32_t up_to = number != 0 ? number : UINT32_MAX;
    uint32_t before = forgotten_up_to;
    while (before < up_to && !forgotten_up_to.compare_exchange_weak(before, up_to)) {
    }
}

bool counts(uint32_t number) {
    return number > forgotten_up_to.load(std::memory_order_relaxed);
}

}  // namespace

Data_entry* Data_entry::Set_child(Data_entry* child) {
    if (is_list_remembered() && child != m_child) {
        forget_all_lists();
    }
    return std::exchange(m_child, child);
}

Data_entry* Data_entry::Set_next(Data_entry* next) {
    if (is_in_remembered_list() && next != m_next) {
        forget_all_lists();
    }
    return std::exchange(m_next, next);
}

bool Data_entry::is_list_remembered() const {
    return counts(m_list);
}

bool Data_entry::is_in_remembered_list() const {
    return counts(m_listed_in);
}

// Whether the few children that are compared are those of the remembered list.
bool Data_entry::is_as_remembered() const {
    const Data_entry* last = nullptr;
    const Data_entry* child = m_child;
    for (int compared = 0; child != nullptr && compared < FEW; ++compared) {
        if (child->m_listed_in != m_list || child->m_previous != last) {
            return false;
        }
        last = child;
        child = child->m_next;
    }
    return child == nullptr ? last == m_last_child : m_last_child->m_next == nullptr;
}

void Data_entry::remember_list() {
    if (is_list_remembered()) {
        if (is_as_remembered()) {
            return;
        }
        forget_all_lists();
    }
    Data_entry* const last = last_child();
    if (last != nullptr && last->m_next != nullptr) {
        return;
    }
    bool in_another_list = false;
    std::size_t steps = 0;
    for (const Data_entry* child = m_child; child != nullptr; child = child->m_next) {
        in_another_list = in_another_list || child->is_in_remembered_list();
        ++steps;
    }
    step_counter::children_walked += steps;
    if (in_another_list) {
        forget_all_lists();
    }
    const uint32_t number = next_number();
    for (Data_entry* child = m_child; child != nullptr; child = child->m_next) {
        child->m_listed_in = number;
    }
    m_list = number;
    m_last_child = last;
}

// Whether a child that carries the number of a list of few children is among them.
bool Data_entry::is_reached(const Data_entry& child) const {
    const Data_entry* at = m_child;
    for (int compared = 0; at != nullptr && at != &child && compared < FEW; ++compared) {
        at = at->m_next;
    }
    return at != nullptr;
}

bool Data_entry::holds(const Data_entry& child) const {
    if (is_list_remembered()) {
        return child.m_listed_in == m_list && is_reached(child);
    }
    const Data_entry* const last = last_child();
    const Data_entry* at = m_child;
    std::size_t steps = 0;
    for (; at != &child && at != last; ++steps) {
        at = at->m_next;
    }
    step_counter::children_walked += steps;
    return at == &child;
}

// A link that was placed by its neighbours alone still has the base links of the entry that it houses, and
// these may lead back into the list. The last child is then the one before the first that comes twice.
Data_entry* Data_entry::last_child() const {
    if (is_list_remembered()) {
        return m_last_child;
    }
    Data_entry* last = m_child;
    const Data_entry* ahead = m_child;
    std::size_t steps = 0;
    for (; ahead != nullptr && ahead->m_next != nullptr; ++steps) {
        last = last->m_next;
        ahead = ahead->m_next->m_next;
        if (last == ahead) {
            return end_of_circle(last);
        }
    }
    for (; last != nullptr && last->m_next != nullptr; ++steps) {
        last = last->m_next;
    }
    step_counter::children_walked += steps;
    return last;
}

// `inside` is where two walks met, one twice as fast as the other: as far from the circle's start as the
// list's start is.
Data_entry* Data_entry::end_of_circle(Data_entry* inside) const {
    const Data_entry* start = m_child;
    while (start != inside) {
        start = start->m_next;
        inside = inside->m_next;
    }
    while (inside->m_next != start) {
        inside = inside->m_next;
    }
    return inside;
}

// Whether the neighbours that a child of a remembered list names are those that the list has.
bool Data_entry::neighbours_agree(const Data_entry& child) const {
    const Data_entry* const previous = child.m_previous;
    return previous == nullptr ? m_child == &child
                               : previous->m_listed_in == m_list && previous->m_next == &child;
}

void Data_entry::join_neighbours_of(const Data_entry& child) {
    if (!is_list_remembered() || !neighbours_agree(child)) {
        forget_all_lists();  // what the child names as its neighbour may be in any list
    }
    Data_entry* const previous = child.m_previous;
    Data_entry* const next = child.m_next;
    (previous != nullptr ? previous->m_next : m_child) = next;
    if (next != nullptr) {
        next->m_previous = previous;
    }
    if (m_last_child == &child) {
        m_last_child = previous;
    }
}

void Data_entry::append(Data_entry& child) {
    Data_entry* const last = last_child();
    if (!is_list_remembered() || child.is_in_remembered_list()) {
        forget_all_lists();  // a link that is overwritten may be in any list
    }
    child.m_parent = this;
    child.m_next = nullptr;
    child.m_previous = last;
    (last != nullptr ? last->m_next : m_child) = &child;
    if (is_list_remembered()) {
        child.m_listed_in = m_list;
        m_last_child = &child;
    }
}
