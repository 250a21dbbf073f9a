// The binding engine as the library sees it, and the cached value of a parameter.
//
// A binding engine decides at run time which entries are visible, which values they allow and which
// parameters are written. The library only asks it; a sibling implements it. One engine belongs to one
// entry. All calls come from the menu thread.
#ifndef FRONTPANEL_DATA_BINDING_H
#define FRONTPANEL_DATA_BINDING_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include <frontpanel_data/data_interface.h>
#include <frontpanel_data/entry.h>
#include <frontpanel_data/export.h>

// The kinds of suggestion, with the type that `Binding::getSuggestion` fills. Each is a bit of a mask.
//
// An enumerated entry asks for its allowed keys under the kind of ranges: it tests and clears SUGGESTION_RANGE
// (`offersSuggestion`, `suggestionUpdated`, `clearSuggestion`) and reads SUGGESTION_KEYS (`getSuggestion`). So
// an engine that suggests keys offers and updates SUGGESTION_RANGE. Keys that it marks only as SUGGESTION_KEYS
// are never applied.
enum Suggestion_kind {
    SUGGESTION_VISIBILITY = 1,  // int; below 1 is hidden; never cleared
    SUGGESTION_RANGE = 2,  // std::vector<std::vector<int>>, each the two ends of a closed range
    SUGGESTION_KEYS = 4,   // std::vector<std::vector<int>>, the first holds the allowed enum keys
    SUGGESTION_SET = 8,    // std::vector<GetSetS>
    SUGGESTION_WARNING = 16,  // std::vector<std::string>
    SUGGESTION_ACCESS = 32    // Data_entry::Data_access
};

enum VIS_TYPE { VIS_FALSE = -1, VIS_TRUE = 1 };

// The bits of the flags of `Binding::evaluateAllBindingExpressions`. A refresh sets the first alone; a value
// that is tried (`Data_entry::Set_value`) sets both.
enum Evaluation_flag {
    EVALUATION_UPDATE = 0x1,   // update the suggestions
    EVALUATION_OVERRIDE = 0x4  // evaluate against the override
};

class FRONTPANEL_DATA_EXPORT Binding {
public:
    // EVALUATION_UPDATE, the flags of a refresh.
    static const int EXECUTE_FLAG;

    Binding();
    virtual ~Binding();
    Binding(const Binding&) = delete;
    Binding& operator=(const Binding&) = delete;

    // Sets the parameter that the entry controls; `self_control_info` holds it from then on.
    // `index` may be null.
    virtual void setControlInfo(unsigned int pid, const Index_t* index,
                                Data_entry::Entry_type type) = 0;
    // Sets the engine's entry, which outlives the engine.
    virtual void setDataEntry(Data_entry* entry) = 0;
    virtual void addBindingList(BindingListT list) = 0;
    virtual int numBindingLists() = 0;
    // Evaluates every expression. `*flags` holds bits of `Evaluation_flag`; it is the caller's copy and may be
    // changed.
    virtual int evaluateAllBindingExpressions(int* flags) = 0;
    // Print and forget the errors of the last evaluation.
    virtual int printBindErrors() = 0;
    virtual void clearBindErrors() = 0;
    virtual void printSuggestions() = 0;
    // Whether the engine can make this kind of suggestion at all. An enumerated entry asks for SUGGESTION_RANGE
    // when it means its keys, here, in `suggestionUpdated` and in `clearSuggestion`.
    virtual bool offersSuggestion(int mask) = 0;
    // Whether that suggestion changed since it was last cleared.
    virtual bool suggestionUpdated(int mask) = 0;
    // Copies the suggestion to `out`, an object of the type listed at `Suggestion_kind`.
    virtual void getSuggestion(int mask, void* out) = 0;
    // Marks that suggestion as consumed.
    virtual void clearSuggestion(int mask) = 0;
    // Makes evaluations see `value` for a parameter instead of the device's, until cleared.
    virtual void setOverrideVarid(var_index_s key, return_s value) = 0;
    virtual void clearOverrideVarid() = 0;
    // Shows a warning to the user.
    virtual void displayWarning(std::string text) = 0;
    // The parameters of all expressions with their dependants. Owned by the engine or shared between
    // engines; it outlives the entry. May be null.
    virtual var_index_map_t* getVarIndexMap() = 0;
    virtual std::vector<var_index_s> getVarIndexMapKeys(int flags) = 0;

    // The parameter that the entry controls: the key under which a commit looks up its dependants.
    var_index_s self_control_info;
};

// The cached value of one parameter, and the entries that depend on it.
class FRONTPANEL_DATA_EXPORT EntryModelCache {
public:
    EntryModelCache();
    EntryModelCache(Data_entry::Entry_type entry_type, Data_entry* monitored_entry,
                    RETURN_TYPE model_type);
    EntryModelCache(const EntryModelCache& other);
    EntryModelCache& operator=(const EntryModelCache& other);
    ~EntryModelCache();

    // The value as a number. For a value of another type it prints "[NOT INTEGER RETURN]" and returns -1.
    int getInt();
    // The value as text, valid until the record changes or ends.
    char* getString();
    Data_entry* Get_entry() { return monitored_entry; }
    // The name of the monitored entry; empty without one.
    std::string Get_entry_name();
    // The type of value that a binding sees of an entry type: INTEGER for ranges and enumerations.
    static RETURN_TYPE Type_to_return_type(Data_entry::Entry_type entry_type);

    std::vector<Data_entry*>
        binding_dependant_entries;  // whose bindings depend on the value; not owned
    Data_entry::Entry_type entry_type;
    RETURN_TYPE model_type;
    Data_entry* monitored_entry;  // the entry that holds the parameter; not owned
    char value_string[32];        // zero-terminated
    int32_t value_int;
};

#endif
