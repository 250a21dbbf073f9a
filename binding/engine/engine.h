// The engine of one entry behind `Expression_binding`: its rules, their evaluation and what follows from it.
#ifndef FRONTPANEL_BINDING_ENGINE_ENGINE_H
#define FRONTPANEL_BINDING_ENGINE_ENGINE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <frontpanel_data/binding.h>
#include <frontpanel_data/enum_entry.h>

#include "engine/cascade.h"
#include "engine/core.h"
#include "engine/fault_list.h"
#include "engine/parameter_cache.h"
#include "language/program.h"

namespace frontpanel::binding_engine {

// A compiled list with what its parameters are in the menu.
struct Bound_list {
    binding_language::Program program;
    std::vector<Cached_parameter*> parameters;  // by number; null for one that is only written
    std::vector<bool> options;                  // by number: whether the product has it
    uint64_t options_version = 0;
};

class Suggestion_maker;

class Engine {
public:
    // `control` is the key of the entry's parameter; it lives as long as the engine.
    Engine(Core& core, const var_index_s& control);
    ~Engine();
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    // The operations of `Expression_binding`.
    void control_changed(Data_entry::Entry_type type);
    void set_entry(Data_entry* entry);
    void set_fallback_range(int min, int max);
    void add_list(BindingListT list);
    int list_count() const { return static_cast<int>(m_lists.size()); }
    bool evaluate(bool updates, bool tries);
    bool offers(int mask) const { return (m_offered & mask) != 0; }
    bool is_updated(int mask) const { return (updated() & mask) != 0; }
    void get(int mask, void* out);
    void clear(int mask);
    void set_override(const var_index_s& key, return_s value);
    void clear_override() { m_override_key.reset(); }
    std::vector<var_index_s> keys() const;
    const std::vector<std::string>& errors() const { return m_errors; }
    void clear_errors() { m_errors.clear(); }
    void add_error(std::string error) { m_errors.push_back(std::move(error)); }
    // Takes the errors out, and puts `errors` in their place.
    std::vector<std::string> exchange_errors(std::vector<std::string> errors) {
        return std::exchange(m_errors, std::move(errors));
    }
    void set_rule_places(Rule_places places);
    // Of a rule of one of the lists. It is reported when it is new.
    void add_fault(const Bound_list& list, const binding_language::Rule& rule, std::string reason,
                   Rule_fault::Cause cause);
    // Of a rule by its number.
    void add_write_fault(std::size_t rule, std::string reason);
    // The device has taken what the rule writes, or the rule writes nothing now.
    void written(std::size_t rule) { m_faults.written(rule); }
    // The rule was judged: its fault, if it had one, is mended.
    void judged(const Bound_list& list, const binding_language::Rule& rule);
    const std::vector<Rule_fault>& faults() const { return m_faults.faults(); }
    // Of a rule of one of the lists, among those of all lists.
    std::size_t number_of(const Bound_list& list, const binding_language::Rule& rule) const;
    // Everything that the rules read, once each.
    std::vector<Cached_parameter*> parameters() const;
    // All print under the diagnostic mask of bindings.
    void print_error(const std::string& error) const;
    void print_errors() const;
    void print_suggestions() const;
    // One line for each kind that has a suggestion: "range 0..4, 10..14 (new)".
    std::vector<std::string> suggestion_lines() const;

    // For the cascade and the search for cycles.
    Cascade_state& cascade_state() { return m_cascade_state; }
    const Cascade_state& cascade_state() const { return m_cascade_state; }
    Data_entry* entry() const { return m_entry; }
    Data_entry::Entry_type entry_type() const { return m_entry_type; }
    std::string name() const;
    bool was_evaluated() const { return m_was_evaluated; }
    void report_cascade(const std::string& path);
    void write_failed(uint32_t pid, uint32_t varidx, std::string_view bytes, int result);
    void write_done(uint32_t pid, uint32_t varidx, std::string_view bytes);
    // The parameter that a write rule of the list writes; null when it has no other use.
    const Cached_parameter* find_written(const Bound_list& list,
                                         const binding_language::Rule& rule) const;

    // For readings, the makers of suggestions and explanations.
    Core& core() const { return m_core; }
    const std::vector<Bound_list>& lists() const { return m_lists; }
    std::vector<Bound_list>& lists() { return m_lists; }
    // Looks the options of a list up again if the product's have changed.
    void refresh_options(Bound_list& list) const;
    // The entry's own parameter; null for an entry without one.
    Cached_parameter* own() const { return m_own; }
    // The entry as one with options; null for others.
    Enum_entry* options() const { return m_options; }
    // What is suggested while no range rule holds.
    const std::optional<Interval>& fallback_range() const {
        return m_fallback_range ? m_fallback_range : m_entry_range;
    }
    // The overridden parameter, and the value. Null when the parameter has no other use, or the value is of another
    // type than its key.
    Cached_parameter* overridden() const;
    const return_s& override_value() const { return m_override_value; }
    // Null when no list has a rule of that kind.
    Suggestion_maker* find_maker(int kind) const;

private:
    int updated() const;
    void show_new_options();
    void add_makers();
    void bind_parameters(Bound_list& list);
    void note_kinds(const binding_language::Program& program);
    void attach();
    void detach();
    Cached_parameter* find_own();
    std::string place_of(std::size_t rule) const;

    Core& m_core;
    const var_index_s& m_control;
    Cascade_state m_cascade_state;
    Data_entry* m_entry = nullptr;  // not owned
    Data_entry::Entry_type m_entry_type = Data_entry::INVALID_ENTRY_TYPE;
    Enum_entry* m_options = nullptr;  // the entry, when it has options
    std::vector<Bound_list> m_lists;
    int m_rule_kinds = 0;                   // bits of Suggestion_kind
    int m_offered = 0;                      // likewise
    std::vector<Cached_parameter*> m_read;  // all that some rule reads, once each
    Cached_parameter* m_own = nullptr;
    bool m_reads_own = false;
    bool m_follows_own = false;  // in a rule that is no warning
    std::optional<Interval> m_fallback_range;
    std::optional<Interval> m_entry_range;  // of a range entry, as it was attached

    std::optional<var_index_s> m_override_key;
    return_s m_override_value;

    bool m_was_evaluated = false;
    // Of each kind that a list has rules of, in the order of the table of kinds.
    std::vector<std::unique_ptr<Suggestion_maker>> m_makers;
    std::vector<std::string> m_errors;
    Fault_list m_faults;
    std::unique_ptr<const Rule_places> m_places;  // null for none
};

}  // namespace frontpanel::binding_engine

#endif
