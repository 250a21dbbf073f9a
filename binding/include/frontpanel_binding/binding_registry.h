// What the binding engines of one menu share: compiled rules, dependants and the device.
//
// `compile` makes a binding list of a source text, and the `Expression_binding` of an entry takes the list. The
// registry keeps which entries depend on which parameter, so that a commit refreshes them.
//
// Keep the registry in a `std::shared_ptr`: every engine shares it. No operation throws anything but what the
// standard library throws; errors are results. Menu thread only.
#ifndef FRONTPANEL_BINDING_BINDING_REGISTRY_H
#define FRONTPANEL_BINDING_BINDING_REGISTRY_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <frontpanel_binding/binding_report.h>
#include <frontpanel_binding/done_writes.h>
#include <frontpanel_binding/parameter_table.h>
#include <frontpanel_binding/rule_fault.h>
#include <frontpanel_binding/rule_verdict.h>
#include <frontpanel_data/binding.h>

namespace frontpanel {

namespace binding_engine {
struct Core;
}
namespace binding_language {
class Compiler;
}

// Why a source text was rejected, and where. Lines and columns count from 1, columns in bytes.
struct Compile_error {
    std::size_t line;
    std::size_t column;
    std::string message;  // "expected a comparison (== != < <= > >=), found \"3\""
    // The name in brackets when it is not declared, for an application that can add the reason. Else empty.
    std::string unknown_name = {};

    std::string text() const;  // "line 1, column 12: MESSAGE"
};

// The constants of a rule, for an application that checks them against its entries and its device. A rule has a note
// for each of its ranges or keys; any other rule has one note.
struct Rule_note {
    Suggestion_kind kind;
    std::size_t
        offset;  // in the text, in bytes: of the range, the key or the written value; else of the rule
    // The ends of a range or of a run of keys, low first, or twice the number that is written. Empty unless they
    // are constants.
    std::optional<std::pair<std::int32_t, std::int32_t>> numbers;
    std::optional<std::size_t>
        text_length;      // of a written text, in bytes; empty unless it is a constant
    var_index_s written;  // of a rule that writes
};

// A parameter of a text, where it is first named.
struct Named_parameter {
    var_index_s key;
    std::size_t offset;  // in the text, in bytes: of the first character in the brackets
};

// An option that a text names, once for each time.
struct Named_option {
    std::string name;
    std::size_t offset;  // in the text, in bytes: of the name
};

// A condition, or a comparison in it, that the declared bounds of the parameters make always or never true.
struct Constant_condition {
    std::size_t rule;  // in the order of the text, from 0
    std::size_t
        number;  // among the comparisons of the rule, from 0; the condition as a whole is the last
    bool is_true;
    Compile_error warning;  // "\"[volt] > 1000\" is never true: [volt] is 0 to 300"
};

// The list of a source text, or its errors and an empty list.
struct Compile_result {
    BindingListT list;
    std::vector<Rule_note> notes;             // in the order of the text
    std::vector<std::size_t> rule_offsets;    // where each rule begins in the text, in bytes
    std::vector<Named_parameter> parameters;  // each once, read or written
    // Valid, but probably a mistake: conditions and comparisons that read nothing. One for a rule at
    // most, and 100 for a text.
    std::vector<Compile_error> warnings;
    std::vector<Named_option> options;
    // Doubtful, unless the text is used in several places, as in a template, and varies in another one.
    std::vector<Constant_condition> constants;
    std::optional<Compile_error> error;  // the first of `errors`
    // In the order of the text: one for a rule at most, and 100 for a text.
    std::vector<Compile_error> errors;

    bool ok() const { return !error; }
};

// A condition translated for the toggles of homescreen links, or why it cannot be translated.
struct Toggle_result {
    std::string expression;  // for `Link_entry::setAsHomescreenEntry`
    std::vector<Named_parameter> parameters;
    std::vector<Named_option> options;
    std::vector<Compile_error> warnings;
    std::vector<Constant_condition> constants;
    std::optional<Compile_error> error;
};

class Binding_registry {
public:
    using Warning_listener = std::function<void(const std::string&)>;

    // Parameters are read from `iface`, which outlives the registry; with null, from
    // `VarIdDataInfStore::m_pDataAccessInf`, which is looked up at each evaluation.
    explicit Binding_registry(Data_interface* iface = nullptr);
    ~Binding_registry();
    Binding_registry(const Binding_registry&) = delete;
    Binding_registry& operator=(const Binding_registry&) = delete;

    // Compiles rules such as "visible if [gain] > 3; range 0..[limit] if [102] == 1"; docs/bindings.md describes the
    // language. `own_type` is the type of the entry's own value: INTEGER, STRING, or INVALID_TYPE for an entry
    // without one. Every rule is checked, so that all errors are reported at once. A list is complete: it depends on
    // no registry, and may be stored. `own_bounds` are those of an integer value, for `Compile_result::constants`.
    Compile_result compile(std::string_view source, RETURN_TYPE own_type = INTEGER,
                           std::pair<std::int32_t, std::int32_t> own_bounds = {
                               std::numeric_limits<std::int32_t>::min(),
                               std::numeric_limits<std::int32_t>::max()});

    // Translates a condition of the rule language to what the library's toggles take. The toggle is on exactly while the
    // condition holds, for all values within the declared bounds; a fault, such as a division by zero, turns it off.
    // Texts and integers beyond 2^53 are errors. Options count as they are set now. Every parameter has to be watched
    // before a link gets the toggle.
    Toggle_result compile_toggle(std::string_view condition);

    // The parameters that texts may name. Declare them before compiling. Rules write a declared parameter within its
    // declared limits only.
    Parameter_table& parameters() { return m_parameters; }

    // The interface that parameters are read from: the `Caching_device` of this registry while there is one. Null only
    // when neither the registry nor the process has an interface.
    Data_interface* interface() const;

    // Called with each warning that an engine shows. Without one, warnings are dropped.
    void set_warning_listener(Warning_listener listener);
    void show_warning(const std::string& text) const;
    // Shows warnings that were already shown again at the next try that raises them, in every engine. Call it when the
    // user declines a warning, or starts with another value.
    void arm_warnings();

    // The listener is called with each new fault of a rule, and at once with those that remain. Faults are also kept
    // without a listener.
    void set_fault_listener(Fault_listener listener);
    // The faults that remain, in the order in which the engines were made.
    std::vector<Rule_fault> faults() const;

    // Every parameter that a rule reads, that an entry with an engine controls or that is watched, with the value
    // last seen and the entries that depend on it. Owned by the registry. A device variable with several keys has a
    // record for each of them, all with the same value.
    var_index_map_t* var_index_map();
    // Call it before all entries with engines are destroyed: no entry depends on a parameter afterwards. Without this
    // call, each of thousands of dependants of one parameter is searched for and removed one by one.
    void forget_dependants();
    // Keeps the value of a parameter current even if no rule reads it, such as a toggle's. The key is then in the map,
    // and `poll` reads it until `unwatch` was called as often as `watch`.
    void watch(const var_index_s& key);
    void unwatch(const var_index_s& key);
    // The value last seen, a text in full; the map's records hold 31 characters. Empty when the parameter is not in
    // the map, or was never read. `rt` of the key selects number or text.
    std::optional<return_s> value(const var_index_s& key) const;

    // Reads every parameter from the device that a rule reads or that is watched, once each. Returns a key for each
    // that changed, recovery after a failed read included; valid until the next call. What depends on them waits for
    // `settle`. With a limit, each call continues where the last one ended, so that the cost does not grow with the
    // menu; parameters that it leaves out are read when a rule needs them.
    const std::vector<var_index_s>& poll(std::size_t at_most = SIZE_MAX);
    // Reads the parameters that the rules of an entry read, for a check that cannot wait for the next poll. Their
    // dependants wait for `settle`.
    void read_again(const Data_entry& entry);
    // Whether `settle` has something to do.
    bool has_unsettled() const;
    // Refreshes with `iface` (null: the registry's) every entry whose parameters changed since its engine last
    // evaluated them, until what these refreshes change is settled as well. An entry that was never refreshed waits
    // until it is, unless it has write rules. Changes between two calls refresh an entry at most 32 times; beyond that,
    // the result and its engine's errors name the circle, also one that goes on over several calls while the device keeps
    // changing. Entries and engines may be destroyed meanwhile. A call from within a refresh does nothing. All entries
    // with write rules come first, and so do entries that changed each other over many calls; after `at_most` others the
    // rest is left to the next call, so that the caller can do other work in between.
    Binding_settlement settle(Data_interface* iface = nullptr, std::size_t at_most = SIZE_MAX);

    // What the device would hold after these values were written, and once more after the rules have acted: the values,
    // and those that write rules would write to other parameters. Writes nothing, and reports no fault.
    Proposed_values foresee(const Proposed_values& values) const;
    // The results of an entry's rules if the device held these values: see rule_verdict.h. Empty for an entry without
    // an engine of this registry.
    std::optional<Rule_verdict> judge(const Data_entry& entry, const Proposed_values& values) const;

    // Evaluates the rules of an entry that was never refreshed, from the values of their parameters; the entry's own
    // value is not read. Returns the result of the visibility rules for an entry that waits for `settle`, and so still
    // has its former visibility; empty for any other entry, and for one without such a rule.
    std::optional<bool> visibility_ahead(const Data_entry& entry);

    // The last writes of all entries with write rules. An application that keeps them beside the device's values passes
    // them to `set_done_writes` at the next start, before the first `settle`: then a rule writes again only when its
    // value changes. Rules that the list lacks count as not having written. Without the call every rule that holds
    // writes at the start.
    std::vector<Done_writes> done_writes() const;
    void set_done_writes(const std::vector<Done_writes>& done);
    // The listener is called at the end of a `settle` when `done_writes` may have changed since the last call.
    void set_done_listener(std::function<void()> listener);

    // The product's options for `has_option`, tested as `Data_entry::isOptionStatic` does. Later evaluations use them.
    // `library_name`, if given, translates a name in a rule to the name in `options`.
    using Option_namer = std::function<std::string(const std::string&)>;
    void set_product_options(std::map<std::string, unsigned int> options,
                             Option_namer library_name = nullptr);

    // The circles in which rules affect each other, one for each group of parameters, those that write first.
    // Conditions are ignored. Call it when the menu is complete.
    std::vector<Binding_cycle> find_cycles() const;
    // Explains the state of `entry`. Empty for an entry without an engine of this registry.
    std::optional<Binding_explanation> explain(const Data_entry& entry);

    // Internal: for the engines and the caching device. The type is private to the component.
    binding_engine::Core& core() { return *m_core; }

private:
    std::unique_ptr<binding_engine::Core> m_core;
    Parameter_table m_parameters;
    std::unique_ptr<binding_language::Compiler> m_compiler;
    Warning_listener m_warning_listener;
    std::function<void()> m_done_listener;
};

}  // namespace frontpanel

#endif
