// The binding engine of one entry: evaluates compiled rules and keeps the suggestions that follow.
//
// Give the engine its lists and its fallback range, then hand it to `Data_entry::Set_binding_object`; the
// entry owns it from then on. It offers visibility and ranges. Menu thread only.
#ifndef FRONTPANEL_BINDING_EXPRESSION_BINDING_H
#define FRONTPANEL_BINDING_EXPRESSION_BINDING_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <frontpanel_binding/binding_registry.h>
#include <frontpanel_data/binding.h>

namespace binding_language {
class Program;
struct Rule;
}  // namespace binding_language

class Expression_binding : public Binding {
public:
    static constexpr int OVERRIDE_FLAG = 4;  // bit of the evaluation flags: see the override

    // `registry` must not be null; it is shared by the engines of a menu and lives as long as the last.
    explicit Expression_binding(std::shared_ptr<Binding_registry> registry);
    // The entry is no dependant of any parameter afterwards.
    ~Expression_binding() override;

    // The range that is suggested while no condition of a range rule holds, both ends inclusive and in either
    // order. Unless told, it is what a range entry allows when the engine is attached to it: its constructor's
    // range, or what `setValidRangeAndValues` left of it. An empty suggestion would leave the entry with its
    // last, narrower range. For other entries without a fallback range the last suggestion stays, and the
    // evaluation reports an error.
    void set_fallback_range(int min, int max);

    // The errors of the last evaluation, one line each, without line end.
    const std::vector<std::string>& errors() const { return m_errors; }

    // Levels of `index` that are not in use become 0 in `self_control_info`, so that the entry's key is the
    // key of an expression that names the parameter.
    void setControlInfo(unsigned int pid, const Index_t* index,
                        Data_entry::Entry_type type) override;
    // Registers the entry as a dependant of every parameter of the lists, those added later included. Null
    // or another entry takes the former one out.
    void setDataEntry(Data_entry* entry) override;
    // A list that is damaged, or made for an entry of another type, is not added and becomes an error.
    void addBindingList(BindingListT list) override;
    int numBindingLists() override;

    // Bit EXECUTE_FLAG of `*flags` updates the suggestions, bit OVERRIDE_FLAG sees the override; null means
    // no bit. Every parameter is read at most once. While a parameter that a rule needs cannot be read, the
    // suggestion of that kind stays as it was, and the failure becomes an error. 0, or -1 with errors.
    int evaluateAllBindingExpressions(int* flags) override;
    // Prints the errors under the diagnostic mask 0x21 and returns their number.
    int printBindErrors() override;
    void clearBindErrors() override;
    // Prints the suggestions under the diagnostic mask 0x21.
    void printSuggestions() override;

    // Of several bits in `mask` one suffices for `offersSuggestion` and `suggestionUpdated`, and
    // `clearSuggestion` clears each.
    bool offersSuggestion(int mask) override;
    // The first evaluation that yields the suggestion counts as a change.
    bool suggestionUpdated(int mask) override;
    // `mask` is a single kind. Before the first evaluation visibility is VIS_TRUE and the range list empty;
    // `out` is left as it is for a kind that the engine does not know. Ranges are sorted and do not touch.
    void getSuggestion(int mask, void* out) override;
    void clearSuggestion(int mask) override;

    // A second override replaces the first.
    void setOverrideVarid(var_index_s key, return_s value) override;
    void clearOverrideVarid() override;
    void displayWarning(std::string text) override;
    // The registry's map.
    var_index_map_t* getVarIndexMap() override;
    // The parameters of this engine's lists in key order; `flags` is not used.
    std::vector<var_index_s> getVarIndexMapKeys(int flags) override;

private:
    using Ranges = std::vector<std::vector<int>>;
    template <typename Value>
    struct Suggestion {
        std::optional<Value> value;
        bool updated = false;

        void suggest(const Value& suggested);
    };
    class Evaluation;

    void register_entry();
    void unregister_entry();
    int rule_kinds() const;
    void evaluate(Evaluation& evaluation, bool update);
    std::optional<int> visibility_of(Evaluation& evaluation) const;
    std::optional<Ranges> ranges_of(Evaluation& evaluation) const;
    static bool add_intervals(Evaluation& evaluation, const binding_language::Program& program,
                              const binding_language::Rule& rule,
                              std::vector<Binding_interval>& intervals);
    std::optional<Ranges> fallback(Evaluation& evaluation) const;

    std::shared_ptr<Binding_registry> m_registry;
    Data_entry* m_entry;  // not owned
    std::vector<binding_language::Program> m_programs;
    std::vector<var_index_s> m_registered;  // where this engine listed the entry
    std::optional<std::vector<int>> m_fallback_range;
    std::optional<std::vector<int>> m_entry_range;  // of a range entry, as it was attached
    std::optional<var_index_s> m_override_key;
    return_s m_override_value;
    Suggestion<int> m_visibility;
    Suggestion<Ranges> m_ranges;
    std::vector<std::string> m_errors;
};

#endif
