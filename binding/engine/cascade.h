// Which engines have to look at their parameters again, and the bounded round that lets them.
//
// A parameter that changes marks the engines that read it. `settle` refreshes their entries one after the
// other, with what their writes mark in turn, until nothing is left. Engines are known by number, so that one
// that ends meanwhile is passed over. Menu thread only.
#ifndef FRONTPANEL_BINDING_ENGINE_CASCADE_H
#define FRONTPANEL_BINDING_ENGINE_CASCADE_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <frontpanel_binding/binding_report.h>

namespace frontpanel::binding_engine {

class Engine;
struct Cached_parameter;

// How the change that marked an engine came to it, from engine to engine: each wrote what marked the next. What comes
// from outside begins a new trail, so that only a circle makes a trail without end.
//
// A trail watches one of its engines. One that comes back to it more often than a chain of changes may refresh an entry is
// probably a circle. It may also be two entries that read each other and follow the device as well: a change of the device
// then goes on with a trail that would have ended. Only what the engines do without such changes tells them apart. The
// watched engine need not be on the circle: after twice as many steps as before it is the engine that the trail has come to.
class Trail {
public:
    // The trail as it leaves an engine.
    Trail beyond(uint64_t engine) const;
    bool is_new() const { return m_watched == 0; }
    int returns() const { return m_returns; }
    bool is_longer_than(const Trail& other) const;

private:
    static constexpr uint32_t FIRST_WATCH = 64;
    static constexpr uint8_t LAST_WATCH =
        24;  // doublings: a menu has far fewer engines than that many steps

    // Small, since each of thousands of engines has one. Numbers of engines stay below four billion.
    uint32_t m_watched = 0;  // 0: a trail that begins
    uint32_t m_steps = 0;    // with this engine watched
    uint8_t m_watches =
        0;  // engines that were watched before, each for twice as many steps as the last
    uint8_t m_returns = 0;
};

// What the cascade remembers of an engine.
struct Cascade_state {
    uint64_t number = 0;     // of the engine; never used again
    bool is_marked = false;  // a parameter changed since it was evaluated
    bool is_listed = false;  // among those that wait for a round
    bool is_urgent = false;  // and come first in it
    uint64_t cause = 0;      // the engine whose writes the trail came by; 0: none
    uint64_t wave = 0;       // the latest wave that marked it
    uint64_t counted = 0;    // the wave that `refreshes` counts
    int refreshes = 0;
    Trail trail = {};  // the longest that led to the marks since it was evaluated
};

// Engines in the order in which they were marked, each once.
class Waiting_engines {
public:
    void add(Engine& engine) { m_engines.push_back(&engine); }
    void remove(Engine& engine);
    // Null when no engine waits.
    Engine* take();
    bool is_empty() const { return m_next == m_engines.size(); }

private:
    void drop_taken();

    std::vector<Engine*> m_engines;
    std::size_t m_next = 0;  // the first that has not been taken
};

class Cascade {
public:
    // How often one entry is refreshed in a wave, and one parameter written in a turn. A longer chain of changes than
    // that means a circle: an entry is refreshed again only when a parameter changes once more after the last refresh.
    static constexpr int MOST_REFRESHES = 32;
    // How many commits may be under way within each other. A chain of entries that limit each other is as long as a
    // menu, and would take the stack of its thread.
    static constexpr std::size_t DEEPEST_COMMITS = 32;
    // Readers of a parameter that are marked together.
    static constexpr std::size_t MOST_MARKED_AT_ONCE = 1000;

    void add(Engine& engine);
    void remove(Engine& engine);
    // An engine is another entry's from now on; null for none, before and now.
    void entry_changed(const Engine& engine, const Data_entry* before, const Data_entry* now);
    const std::map<uint64_t, Engine*>& engines() const { return m_engines; }
    // Null when there is none. The first when there are several.
    Engine* engine_of(const Data_entry* entry) const;

    // The writes of one commit and all that follows from it are a turn. While entries that limit each other
    // write one parameter over and over within a turn, their suggestions are frozen: then they come to rest.
    void written(Cached_parameter& parameter);
    bool is_frozen() const { return m_is_frozen; }
    // What follows from now on is left to the next round.
    bool is_too_deep();
    // A write that the device refused: its engine asks for it again at the next evaluation.
    void write_failed(uint32_t pid, uint32_t varidx, std::string_view bytes, int result);
    // A write that the device took: what it refused of the rule before is mended.
    void write_done(uint32_t pid, uint32_t varidx, std::string_view bytes);

    void input_changed(Engine& engine);
    // The same for all readers of a parameter that the device changed by itself. Of very many readers only those with
    // write rules are marked at once; `settle` marks the others in parts.
    void device_changed(Cached_parameter& parameter);
    // A reader of the parameter ends.
    void reader_removed(Cached_parameter& parameter);
    void mark(Engine& engine);
    // The engine answered with what the parameters are now.
    void evaluated(Engine& engine);
    bool is_at_rest() const {
        return m_urgent.is_empty() && m_waiting.is_empty() && m_spreading.empty();
    }

    // Does nothing during a round, which also takes what its refreshes mark. All entries whose rules write come first:
    // their writes are part of the change, and the rules of other entries read them. So do those of what is probably a
    // circle: within a round the device changes nothing, so either they come to rest or it is one. After `at_most` others
    // the rest waits for the next call.
    Binding_settlement settle(Data_interface* iface, std::size_t at_most);

private:
    void mark(Engine& engine, uint64_t wave, const Trail& trail);
    void device_changed(Engine& engine);
    void spread();
    Engine* take_next();
    bool is_within_turn() const;
    void end_commits();
    void run_round(Data_interface* iface, std::size_t at_most, Binding_settlement& settlement);
    void take_turn(Engine& engine, Data_interface* iface, Binding_settlement& settlement);
    std::string circle_of(const Engine& engine) const;

    std::map<uint64_t, Engine*> m_engines;  // by number, in the order of their making
    std::set<std::pair<const Data_entry*, uint64_t>> m_by_entry;  // engines that have one
    Waiting_engines m_urgent;   // with write rules, or on a trail that is probably a circle
    Waiting_engines m_waiting;  // the others
    std::deque<Cached_parameter*> m_spreading;  // whose readers are not all marked yet
    uint64_t m_last_number = 0;
    uint64_t m_last_evaluated = 0;
    // A wave is everything that changes because of changes from outside between two rounds. A parameter that keeps
    // changing causes wave after wave, which is no circle.
    uint64_t m_next_wave = 1;  // for changes before the next round
    uint64_t m_wave = 0;       // of the entry that is being refreshed
    Trail m_trail;             // of what the engine writes that was evaluated last
    uint64_t m_turn = 1;
    Cached_parameter* m_turn_began_with = nullptr;
    std::vector<const Cached_parameter*> m_commits;  // under way, the outermost first
    bool m_is_frozen = false;
    bool m_is_settling = false;
    std::string m_frozen_circle;  // for the next round to report
};

}  // namespace frontpanel::binding_engine

#endif
