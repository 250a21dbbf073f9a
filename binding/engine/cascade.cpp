#include "engine/cascade.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "engine/engine.h"
#include "engine/parameter_cache.h"

namespace frontpanel::binding_engine {
namespace {

std::string joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) {
        text += (text.empty() ? "" : " -> ") + name;
    }
    return text;
}

// A commit locks its entry while it refreshes what depends on it.
bool is_being_committed(const Cached_parameter& parameter) {
    return std::any_of(parameter.owners.begin(), parameter.owners.end(), [](const Engine* owner) {
        return owner->entry()->GetBindRefreshIsLocked();
    });
}

bool is_writer(const Engine& engine) {
    return engine.offers(SUGGESTION_SET);
}

bool is_probably_circle(const Trail& trail) {
    return trail.returns() > Cascade::MOST_REFRESHES;
}

}  // namespace

Trail Trail::beyond(uint64_t engine) const {
    Trail next = *this;
    const auto number = static_cast<uint32_t>(engine);
    if (is_new()) {
        next.m_watched = number;
    } else if (++next.m_steps > FIRST_WATCH << m_watches) {
        next.m_watched = number;
        next.m_steps = 0;
        if (m_watches < LAST_WATCH) {
            ++next.m_watches;
        }
        next.m_returns = 0;
    } else if (number == m_watched && m_returns < UINT8_MAX) {
        ++next.m_returns;
    }
    return next;
}

bool Trail::is_longer_than(const Trail& other) const {
    const auto length = [](const Trail& trail) {
        return std::make_tuple(!trail.is_new(), trail.m_watches, trail.m_steps);
    };
    return length(*this) > length(other);
}

void Waiting_engines::remove(Engine& engine) {
    const auto first = m_engines.begin() + static_cast<std::ptrdiff_t>(m_next);
    m_engines.erase(std::remove(first, m_engines.end(), &engine), m_engines.end());
}

// An engine that was evaluated after it was marked is still in the list, but no longer waits.
Engine* Waiting_engines::take() {
    drop_taken();
    while (!is_empty()) {
        Engine* const engine = m_engines[m_next++];
        Cascade_state& state = engine->cascade_state();
        state.is_listed = false;
        if (std::exchange(state.is_marked, false)) {
            return engine;
        }
    }
    m_engines.clear();
    m_next = 0;
    return nullptr;
}

// Removes the engines that were taken, once they are half of the list: so each costs one move on average.
void Waiting_engines::drop_taken() {
    constexpr std::size_t FEW = 1000;
    if (m_next > FEW && m_next > m_engines.size() / 2) {
        m_engines.erase(m_engines.begin(), m_engines.begin() + static_cast<std::ptrdiff_t>(m_next));
        m_next = 0;
    }
}

void Cascade::add(Engine& engine) {
    engine.cascade_state().number = ++m_last_number;
    m_engines[m_last_number] = &engine;
}

void Cascade::remove(Engine& engine) {
    const Cascade_state& state = engine.cascade_state();
    m_engines.erase(state.number);
    if (state.is_listed) {
        m_urgent.remove(engine);
        m_waiting.remove(engine);
    }
}

void Cascade::entry_changed(const Engine& engine, const Data_entry* before, const Data_entry* now) {
    const uint64_t number = engine.cascade_state().number;
    m_by_entry.erase({before, number});
    if (now != nullptr) {
        m_by_entry.insert({now, number});
    }
}

Engine* Cascade::engine_of(const Data_entry* entry) const {
    const auto first = m_by_entry.lower_bound({entry, 0});
    return entry != nullptr && first != m_by_entry.end() && first->first == entry
               ? m_engines.at(first->second)
               : nullptr;
}

bool Cascade::is_within_turn() const {
    return m_turn_began_with != nullptr && is_being_committed(*m_turn_began_with);
}

void Cascade::end_commits() {
    while (!m_commits.empty() && !is_being_committed(*m_commits.back())) {
        m_commits.pop_back();
    }
}

bool Cascade::is_too_deep() {
    end_commits();
    return m_commits.size() > DEEPEST_COMMITS;
}

void Cascade::written(Cached_parameter& parameter) {
    end_commits();
    m_commits.push_back(&parameter);
    if (!is_within_turn()) {
        // Not what a list refreshes, but what a person or the application writes comes from outside.
        const bool is_of_last = std::any_of(
            parameter.owners.begin(), parameter.owners.end(),
            [this](Engine* owner) { return owner->cascade_state().number == m_last_evaluated; });
        m_trail = m_is_settling || is_of_last ? m_trail : Trail();
        ++m_turn;
        m_turn_began_with = &parameter;
        m_is_frozen = false;
    }
    if (parameter.written_in != m_turn) {
        parameter.written_in = m_turn;
        parameter.writes = 0;
    }
    if (++parameter.writes > MOST_REFRESHES && !m_is_frozen) {
        m_is_frozen = true;
        const auto writer = m_engines.find(m_last_evaluated);
        m_frozen_circle = writer != m_engines.end() ? circle_of(*writer->second) : "";
    }
}

void Cascade::write_failed(uint32_t pid, uint32_t varidx, std::string_view bytes, int result) {
    const auto writer = m_engines.find(m_last_evaluated);
    if (writer != m_engines.end()) {
        writer->second->write_failed(pid, varidx, bytes, result);
    }
}

void Cascade::write_done(uint32_t pid, uint32_t varidx, std::string_view bytes) {
    const auto writer = m_engines.find(m_last_evaluated);
    if (writer != m_engines.end()) {
        writer->second->write_done(pid, varidx, bytes);
    }
}

// An entry that was never refreshed asks for its parameters when it first is.
void Cascade::input_changed(Engine& engine) {
    if (engine.was_evaluated()) {
        mark(engine);
    }
}

void Cascade::mark(Engine& engine) {
    mark(engine, m_is_settling ? m_wave : m_next_wave, m_trail);
}

void Cascade::mark(Engine& engine, uint64_t wave, const Trail& trail) {
    Cascade_state& state = engine.cascade_state();
    if (trail.is_longer_than(state.trail)) {
        state.trail = trail;
        state.cause = m_last_evaluated;
    }
    state.wave = std::max(state.wave, wave);
    state.is_marked = engine.entry() != nullptr;
    const bool is_urgent = is_writer(engine) || is_probably_circle(state.trail);
    if (!state.is_marked || (state.is_listed && (state.is_urgent || !is_urgent))) {
        return;
    }
    if (state.is_listed) {
        m_waiting.remove(engine);
    }
    state.is_listed = true;
    state.is_urgent = is_urgent;
    (is_urgent ? m_urgent : m_waiting).add(engine);
}

// Writes come from an engine whose entry was just refreshed, right after it was evaluated.
void Cascade::evaluated(Engine& engine) {
    Cascade_state& state = engine.cascade_state();
    state.is_marked = false;
    const Trail trail = std::exchange(state.trail, Trail());
    // A refresh may evaluate an engine twice, the second time without a mark.
    const bool is_again = state.number == m_last_evaluated && !m_trail.is_new();
    if (!is_again || trail.is_longer_than(m_trail)) {
        m_trail = trail.beyond(state.number);
    }
    m_last_evaluated = state.number;
}

void Cascade::device_changed(Engine& engine) {
    if (engine.was_evaluated()) {
        mark(engine, m_next_wave, Trail());
    }
}

// A parameter that changes again meanwhile is spread to all of its readers once more, from where it got to.
void Cascade::device_changed(Cached_parameter& parameter) {
    if (parameter.readers.size() <= MOST_MARKED_AT_ONCE) {
        for (Engine* const reader : parameter.readers) {
            device_changed(*reader);
        }
        return;
    }
    for (Engine* const reader : parameter.readers) {
        if (is_writer(*reader)) {
            device_changed(*reader);
        }
    }
    if (parameter.left_to_mark == 0) {
        parameter.next_to_mark = 0;
        m_spreading.push_back(&parameter);
    }
    parameter.left_to_mark = parameter.readers.size();
}

// The others have moved.
void Cascade::reader_removed(Cached_parameter& parameter) {
    if (parameter.left_to_mark > 0) {
        parameter.left_to_mark = parameter.readers.size();
    }
}

// Marks some readers of the parameter that waits longest. A parameter with more readers goes to the end of the queue,
// since it may change again and again.
void Cascade::spread() {
    if (m_spreading.empty()) {
        return;
    }
    Cached_parameter& parameter = *m_spreading.front();
    m_spreading.pop_front();
    const std::size_t size = parameter.readers.size();
    const std::size_t count = std::min({parameter.left_to_mark, size, MOST_MARKED_AT_ONCE});
    for (std::size_t i = 0; i < count; ++i) {
        parameter.next_to_mark %= size;
        Engine& reader = *parameter.readers[parameter.next_to_mark++];
        if (!is_writer(reader)) {
            device_changed(reader);
        }
    }
    parameter.left_to_mark = size == 0 ? 0 : parameter.left_to_mark - count;
    if (parameter.left_to_mark > 0) {
        m_spreading.push_back(&parameter);
    }
}

// Null when no engine waits except urgent ones.
Engine* Cascade::take_next() {
    for (;;) {
        if (Engine* const engine = m_waiting.take()) {
            return engine;
        }
        if (m_spreading.empty()) {
            return nullptr;
        }
        spread();
    }
}

Binding_settlement Cascade::settle(Data_interface* iface, std::size_t at_most) {
    Binding_settlement settlement;
    if (m_is_settling) {
        return settlement;
    }
    if (!m_frozen_circle.empty()) {
        settlement.at_rest = false;
        settlement.path.swap(m_frozen_circle);
    }
    m_is_frozen = false;
    m_is_settling = true;
    ++m_next_wave;
    run_round(iface, at_most, settlement);
    m_is_settling = false;
    m_trail = Trail();
    settlement.is_complete = is_at_rest();
    return settlement;
}

// Each call marks some readers first. Otherwise entries that are marked again and again would keep the others from
// their turn.
void Cascade::run_round(Data_interface* iface, std::size_t at_most,
                        Binding_settlement& settlement) {
    spread();
    for (std::size_t taken = 0;;) {
        if (Engine* const urgent = m_urgent.take()) {
            take_turn(*urgent, iface, settlement);
            continue;
        }
        Engine* const engine = taken++ < at_most ? take_next() : nullptr;
        if (engine == nullptr) {
            return;
        }
        take_turn(*engine, iface, settlement);
    }
}

void Cascade::take_turn(Engine& engine, Data_interface* iface, Binding_settlement& settlement) {
    Cascade_state& state = engine.cascade_state();
    if (state.counted != state.wave) {
        state.counted = state.wave;
        state.refreshes = 0;
    }
    if (state.refreshes == MOST_REFRESHES) {
        state.trail = Trail();
        if (settlement.at_rest) {
            settlement.at_rest = false;
            settlement.path = circle_of(engine);
            engine.report_cascade(settlement.path);
        }
        return;
    }
    ++state.refreshes;
    ++settlement.refreshes;
    m_wave = state.wave;
    // The refresh may destroy any engine, this one included.
    Data_entry::EntryTypeSpecificOperation(engine.entry(), iface, nullptr, true,
                                           Data_entry::OPERATION_REFRESH, nullptr);
}

// From the engine back through what marked it, until one comes up again; reported in the order of the writes.
std::string Cascade::circle_of(const Engine& engine) const {
    std::vector<uint64_t> numbers;
    uint64_t number = engine.cascade_state().number;
    while (m_engines.count(number) != 0 &&
           std::find(numbers.begin(), numbers.end(), number) == numbers.end()) {
        numbers.push_back(number);
        number = m_engines.at(number)->cascade_state().cause;
    }
    const auto first = std::find(numbers.begin(), numbers.end(), number);
    std::vector<std::string> names;
    if (first != numbers.end()) {
        names.push_back(m_engines.at(*first)->name());
        numbers.erase(numbers.begin(), first);
    }
    std::for_each(numbers.rbegin(), numbers.rend(),
                  [&](uint64_t each) { names.push_back(m_engines.at(each)->name()); });
    return joined(names);
}

}  // namespace frontpanel::binding_engine
