// The binding engine of one entry: evaluates compiled rules and keeps the suggestions that follow.
//
// Give the engine its lists and its fallback range, then hand it to `Data_entry::Set_binding_object`; the
// entry owns it from then on. It makes all six kinds of suggestion. Its operations throw nothing but what the
// standard library throws; errors are kept for `errors`. Menu thread only.
#ifndef FRONTPANEL_BINDING_EXPRESSION_BINDING_H
#define FRONTPANEL_BINDING_EXPRESSION_BINDING_H

#include <memory>
#include <string>
#include <vector>

#include <frontpanel_binding/binding_registry.h>
#include <frontpanel_binding/binding_report.h>
#include <frontpanel_data/binding.h>

namespace frontpanel {

namespace binding_engine {
class Engine;
}

class Expression_binding : public Binding {
public:
    static constexpr int OVERRIDE_FLAG = 4;  // bit of the evaluation flags: see the override

    // `registry` must not be null; it is shared by the engines of a menu and lives as long as the last.
    explicit Expression_binding(std::shared_ptr<Binding_registry> registry);
    // The entry is no dependant of any parameter afterwards.
    ~Expression_binding() override;

    // The range that is suggested while no condition of a range rule holds, both ends inclusive and in either
    // order. The default is what a range entry allows when the engine is attached to it: its constructor's
    // range, or what `setValidRangeAndValues` left of it. An empty suggestion would leave the entry with its
    // last, narrower range. For other entries without a fallback range the last suggestion stays, and the
    // evaluation reports an error.
    void set_fallback_range(int min, int max);

    // The places of all rules of all lists in a file. Faults name these places.
    void set_rule_places(Rule_places places);

    // The errors of the last evaluation, one line each, without line end:
    // "line 2, visible if [gain] > 3: cannot read [gain]: device result 1".
    const std::vector<std::string>& errors() const;

    // Evaluates every rule, and returns the values that it read and its result. Suggestions and errors stay as they
    // are.
    Binding_explanation explain();

    // Levels of `index` that are not in use become 0 in `self_control_info`, so that the entry's key is the
    // key of an expression that names the parameter.
    void setControlInfo(unsigned int pid, const Index_t* index,
                        Data_entry::Entry_type type) override;
    // Registers the entry as a dependant of every parameter that the lists read, those added later included.
    // Null or another entry takes the former one out. With access rules the entry keeps its original access
    // right from now on (`Set_flag_access_type_chg`); with write rules it waits for `settle`.
    void setDataEntry(Data_entry* entry) override;
    // A list that is damaged is not added and becomes an error.
    void addBindingList(BindingListT list) override;
    int numBindingLists() override;

    // With bit EXECUTE_FLAG of `*flags` the suggestions of all kinds but warnings follow the device. With bit
    // OVERRIDE_FLAG as well only the warnings are evaluated, and see the override. Null means no bit: only
    // errors are found. 0, or -1 with errors.
    //
    // - Visibility: VIS_TRUE while any rule holds.
    // - Range: the ranges of all rules that hold; without one, the fallback range.
    // - Keys: those of all rules that hold; without one, all keys of the entry, one by one. Keys that the entry
    //   does not have are left out.
    // - Writes: those of all rules that hold, in the order of the rules. They are new only when the list as a
    //   whole differs from the last one, or the device refused one of them through a `Caching_device`.
    // - Warnings: those of all rules that hold, new when they differ from those of the try before. So a value
    //   that was refused for them is taken when it is tried again; a try that raises none makes the next new.
    // - Access: the first rule that holds; without one, the entry's original access right.
    //
    // Every parameter is read at most once, and not at all while the registry knows its value. When a
    // parameter that a rule needs cannot be read, or a rule fails in another way, the suggestion of that kind
    // stays as it was; warnings that do hold are shown.
    int evaluateAllBindingExpressions(int* flags) override;
    // Prints the errors with the entry's name under the diagnostic mask 0x21 and returns their number.
    int printBindErrors() override;
    void clearBindErrors() override;
    // Prints the suggestions under the diagnostic mask 0x21.
    void printSuggestions() override;

    // With several bits in `mask`, one is enough for `offersSuggestion` and `suggestionUpdated`, and
    // `clearSuggestion` clears each. Entries with options ask for kind 2 and read kind 4: kind 2 is offered
    // along with 4, counts as updated when 4 changes, and clears 4 when it is cleared.
    bool offersSuggestion(int mask) override;
    // The first evaluation that yields the suggestion counts as a change, except for writes and warnings when
    // there are none.
    bool suggestionUpdated(int mask) override;
    // `mask` is a single kind. Before the first evaluation visibility is VIS_TRUE, access is left as it is in
    // `out`, and the others are empty. Ranges are sorted and do not touch; keys are sorted.
    void getSuggestion(int mask, void* out) override;
    void clearSuggestion(int mask) override;

    // A second override replaces the first. It applies to the parameter under all of its names. An override of the
    // entry's own parameter applies to `value` alone: a rule that names the parameter sees the device's value.
    void setOverrideVarid(var_index_s key, return_s value) override;
    void clearOverrideVarid() override;
    void displayWarning(std::string text) override;
    // The registry's map.
    var_index_map_t* getVarIndexMap() override;
    // The parameters that this engine's lists read, in key order; `flags` is not used.
    std::vector<var_index_s> getVarIndexMapKeys(int flags) override;

private:
    std::shared_ptr<Binding_registry> m_registry;
    std::unique_ptr<binding_engine::Engine> m_engine;
};

}  // namespace frontpanel

#endif
