// The engine of one entry behind `Expression_binding`: its rules, their evaluation and what follows from it.
#ifndef FRONTPANEL_BINDING_ENGINE_ENGINE_H
#define FRONTPANEL_BINDING_ENGINE_ENGINE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <frontpanel_binding/binding_report.h>
#include <frontpanel_data/binding.h>
#include <frontpanel_data/enum_entry.h>

#include "engine/cascade.h"
#include "engine/core.h"
#include "engine/parameter_cache.h"
#include "language/machine.h"
#include "language/program.h"

namespace frontpanel::binding_engine {

// A compiled list with what its parameters are in the menu.
struct Bound_list {
    binding_language::Program program;
    std::vector<Cached_parameter*> parameters;  // by number; null for one that is only written
    std::vector<bool> options;                  // by number: whether the product has it
    uint64_t options_version = 0;
};

template <typename Value>
struct Suggestion {
    Value value{};
    bool is_known = false;
    bool is_updated = false;

    // Takes `suggested` if it is another value, and leaves the former one there.
    void suggest(Value& suggested) {
        if (!is_known || !(value == suggested)) {
            std::swap(value, suggested);
            is_known = true;
            is_updated = true;
        }
    }
};

class Reading;

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
    bool offers(int mask) const { return (offered() & mask) != 0; }
    bool is_updated(int mask) const { return (updated() & mask) != 0; }
    void get(int mask, void* out) const;
    void clear(int mask);
    void set_override(const var_index_s& key, return_s value);
    void clear_override() { m_override_key.reset(); }
    std::vector<var_index_s> keys() const;
    const std::vector<std::string>& errors() const { return m_errors; }
    void clear_errors() { m_errors.clear(); }
    // Both print under the diagnostic mask of bindings.
    void print_errors() const;
    void print_suggestions() const;
    // One line for each kind that has a suggestion: "range 0..4, 10..14 (new)".
    std::vector<std::string> suggestion_lines() const;
    Binding_explanation explain();

    // For the cascade and the search for cycles.
    Cascade_state& cascade_state() { return m_cascade_state; }
    const Cascade_state& cascade_state() const { return m_cascade_state; }
    Data_entry* entry() const { return m_entry; }
    Data_entry::Entry_type entry_type() const { return m_entry_type; }
    std::string name() const;
    bool was_evaluated() const { return m_was_evaluated; }
    // Whether rules tell which options an enumerated entry has.
    bool limits_options() const {
        return m_options != nullptr && (m_rule_kinds & SUGGESTION_KEYS) != 0;
    }
    // Whether the entry is enumerated and was not told its allowed keys yet.
    bool has_new_options() const { return m_announces_keys && m_options != nullptr; }
    void report_cascade(const std::string& path);
    void write_failed(uint32_t pid, uint32_t varidx, std::string_view bytes, int result);
    const std::vector<Bound_list>& lists() const { return m_lists; }
    // The parameter that a write rule of the list writes; null when nobody refers to it otherwise.
    const Cached_parameter* find_written(const Bound_list& list,
                                         const binding_language::Rule& rule) const;
    // The entry's own parameter; null for an entry without one.
    Cached_parameter* own() const { return m_own; }

private:
    std::vector<std::string>::const_iterator end_of_warnings() const;
    friend class Reading;

    enum class Step { NEXT, LAST, FAILED };

    int offered() const;
    int updated() const;
    void bind_parameters(Bound_list& list);
    void attach();
    void detach();
    std::vector<Cached_parameter*> parameters() const;
    Cached_parameter* find_own();
    Cached_parameter* overridden();
    void refresh_options(Bound_list& list);

    void update_suggestions(Reading& reading, bool updates);
    template <typename Take>
    bool each_rule_that_holds(Suggestion_kind kind, Reading& reading, Take take);
    bool decide_visibility(Reading& reading, int& visibility);
    bool decide_ranges(Reading& reading);
    bool fall_back_to_range();
    bool decide_keys(Reading& reading);
    void fall_back_to_keys();
    bool decide_requests(Reading& reading);
    bool decide_access(Reading& reading, Data_entry::Data_access& access);
    void decide_warnings(Reading& reading);
    Step take_intervals(Reading& reading, const binding_language::Rule& rule);
    Step take_keys(Reading& reading, const binding_language::Rule& rule);
    Step take_request(Reading& reading, const binding_language::Rule& rule);
    void take_keys(int64_t low, int64_t high);
    bool list_keys();
    void print_error(const std::string& error) const;
    std::string request_text(const GetSetS& request) const;
    Rule_explanation explain_rule(Reading& reading, const binding_language::Rule& rule);
    std::optional<std::string> demand_text(Reading& reading, const binding_language::Rule& rule);

    Core& m_core;
    const var_index_s& m_control;
    Cascade_state m_cascade_state;
    Data_entry* m_entry = nullptr;  // not owned
    Data_entry::Entry_type m_entry_type = Data_entry::INVALID_ENTRY_TYPE;
    Enum_entry* m_options = nullptr;  // the entry, when it has options
    std::vector<Bound_list> m_lists;
    int m_rule_kinds = 0;
    std::vector<Cached_parameter*> m_read;  // all that some rule reads, once each
    Cached_parameter* m_own = nullptr;
    bool m_reads_own = false;
    bool m_follows_own = false;  // in a rule that is no warning
    std::optional<Interval> m_fallback_range;
    std::optional<Interval> m_entry_range;  // of a range entry, as it was attached

    std::optional<var_index_s> m_override_key;
    return_s m_override_value;

    bool m_was_evaluated = false;
    Suggestion<int> m_visibility;
    Suggestion<std::vector<Interval>> m_ranges;
    Suggestion<std::vector<int>> m_keys;
    bool m_announces_keys = false;  // by the kind that enumerated entries ask for
    Suggestion<std::vector<GetSetS>> m_requests;
    Suggestion<Data_entry::Data_access> m_access;
    std::vector<std::string> m_warnings;  // the first `m_warning_count` count
    std::size_t m_warning_count = 0;
    std::vector<std::string> m_warnings_before;  // of the try before; keeps its memory
    bool m_warns_anew = false;
    unsigned int m_warning_round = 0;  // of the core, at the last try
    std::vector<std::string> m_errors;
};

}  // namespace frontpanel::binding_engine

#endif
