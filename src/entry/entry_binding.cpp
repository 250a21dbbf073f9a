// The base entry and its binding engine: attaching it, and applying its suggestions.
#include <algorithm>
#include <cstring>

#include <frontpanel_data/binding.h>
#include <frontpanel_data/entry.h>

#include "../diagnostics.h"

namespace {

constexpr int TRY_FLAGS = EVALUATION_UPDATE | EVALUATION_OVERRIDE;

return_s value_for_binding(RETURN_TYPE type, const void* buffer, unsigned int length) {
    return_s value;
    value.rt = type;
    if (type == INTEGER) {
        std::memcpy(&value.i, buffer, std::min<std::size_t>(length, sizeof value.i));
    } else if (type == STRING) {
        const char* const text = static_cast<const char*>(buffer);
        value.s.assign(text, strnlen(text, length));
    } else {
        value.rt = INVALID_TYPE;
        value.i = -1;
    }
    return value;
}

}  // namespace

void Data_entry::Set_binding_object(Binding* binding_object) {
    LEAF_LINE(BINDING, FUNCTION_FIRST, "Set_binding_object", "[%s]\n", Get_name());
    binding = binding_object;
    if (binding == nullptr) {
        LEAF_LINE(BINDING, FUNCTION_FIRST, "Set_binding_object",
                  "[%s] has been given a NULL binding object.\n", Get_name());
        return;
    }
    binding->setControlInfo(Get_pid(), Get_index(), Get_entry_type());
    binding->setDataEntry(this);
}

int Data_entry::Add_binding_list(BindingListT /*list*/) {
    LEAF_LINE(BINDING, FUNCTION_FIRST, "Add_binding_list", "[%s]\n", Get_name());
    // An entry that has its binding refuses, with a text that says the opposite, and one that has none has
    // nowhere to put the list. Both are intended: lists are added to a binding before it is handed over.
    if (binding != nullptr) {
        LEAF_LINE(BINDING, FUNCTION_FIRST, "Add_binding_list",
                  "[%s] Binding object is NULL. Cannot add a binding list to it.\n", Get_name());
    }
    return -1;
}

int Data_entry::Refresh(Data_interface* pDataAccessInf, bool eval_binding) {
    ENTRY_LINE(ENTRY_REFRESH, FUNCTION_FIRST, "Refresh", "[%s]\n", Get_name());
    if (binding == nullptr) {
        return OK;
    }
    if (eval_binding) {
        int flags = Binding::EXECUTE_FLAG;
        binding->evaluateAllBindingExpressions(&flags);
    }
    binding->printBindErrors();
    apply_access_suggestion();
    apply_set_suggestion(pDataAccessInf);
    return OK;
}

void Data_entry::apply_access_suggestion() {
    if (!binding->offersSuggestion(SUGGESTION_ACCESS) ||
        !binding->suggestionUpdated(SUGGESTION_ACCESS)) {
        return;
    }
    ENTRY_LINE(BINDING, FUNCTION_FIRST, "Refresh",
               "getting updated Access permissions suggestion...\n");
    Data_access access = m_access;
    binding->getSuggestion(SUGGESTION_ACCESS, &access);
    binding->clearSuggestion(SUGGESTION_ACCESS);
    Set_access_type(access);
}

void Data_entry::apply_set_suggestion(Data_interface* iface) {
    if (!binding->offersSuggestion(SUGGESTION_SET) || !binding->suggestionUpdated(SUGGESTION_SET)) {
        binding->clearBindErrors();
        return;
    }
    ENTRY_LINE(BINDING, FUNCTION_FIRST, "Refresh", "set suggestionUpdated\n");
    std::vector<GetSetS> requests;
    binding->getSuggestion(SUGGESTION_SET, &requests);
    binding->clearSuggestion(SUGGESTION_SET);
    ENTRY_LINE(BINDING, FUNCTION_FIRST, "Refresh", "About to start setting...\n");
    if (iface == nullptr) {
        return;  // the errors stay: nothing was written that could have settled them
    }
    for (const GetSetS& request : requests) {
        const uint32_t length = std::min<uint32_t>(request.length, sizeof request.buffer);
        iface->Set(request.varid, request.varidx, request.buffer, length);
    }
    binding->clearBindErrors();
}

int Data_entry::Set_value(const void* buffer, unsigned int length) {
    ENTRY_LINE(WRITE, FUNCTION_FIRST, "Set_value", "\n");
    if (binding == nullptr || !binding->offersSuggestion(SUGGESTION_WARNING)) {
        return 0;
    }
    const return_s value = value_for_binding(bindingReturnType(), buffer, length);
    var_index_s own_parameter = {};
    own_parameter.rt = value.rt;
    own_parameter.var = m_pid;
    if (m_index != nullptr) {
        own_parameter.index = *m_index;
    }
    int flags = TRY_FLAGS;
    binding->setOverrideVarid(own_parameter, value);
    binding->evaluateAllBindingExpressions(&flags);
    binding->printBindErrors();
    binding->clearOverrideVarid();
    if (!binding->suggestionUpdated(SUGGESTION_WARNING)) {
        return 0;
    }
    ENTRY_LINE(BINDING, FUNCTION_FIRST, "Set_value", "warn suggestionUpdated\n");
    std::vector<std::string> warnings;
    binding->getSuggestion(SUGGESTION_WARNING, &warnings);
    binding->clearSuggestion(SUGGESTION_WARNING);
    for (const std::string& warning : warnings) {
        binding->displayWarning(warning);
    }
    return 1;
}

int Data_entry::Get_bind_vis() {
    if (binding != nullptr && binding->suggestionUpdated(SUGGESTION_VISIBILITY)) {
        int suggested = VIS_FALSE;
        binding->getSuggestion(SUGGESTION_VISIBILITY, &suggested);
        // The suggestion is not cleared, so that the next caller sees it as well.
        cached_bind_vis = suggested < 1 ? static_cast<int>(VIS_FALSE) : suggested;
        ENTRY_LINE(BINDING_VISIBILITY, FUNCTION_ONLY, "Get_bind_vis",
                   "new vis suggestion. vis=[%d]\n", cached_bind_vis);
        return cached_bind_vis;
    }
    ENTRY_LINE(BINDING_VISIBILITY, FUNCTION_ONLY, "Get_bind_vis", "using cached vis. vis=[%d]\n",
               cached_bind_vis);
    return cached_bind_vis;
}

std::vector<var_index_s> Data_entry::Get_var_index_map_keys(int flags) {
    LEAF_LINE(BINDING, FUNCTION_FIRST, "Get_var_index_map_keys", "[%s]\n", Get_name());
    return binding != nullptr ? binding->getVarIndexMapKeys(flags) : std::vector<var_index_s>();
}

var_index_map_t* Data_entry::Get_var_index_map() {
    LEAF_LINE(BINDING, FUNCTION_FIRST, "Get_var_index_map", "[%s]\n", Get_name());
    return binding != nullptr ? binding->getVarIndexMap() : nullptr;
}

int Data_entry::Print_binding_errors() {
    LEAF_LINE(BINDING, FUNCTION_FIRST, "Print_binding_errors", "[%s]\n", Get_name());
    return binding != nullptr ? binding->printBindErrors() : 0;
}

void Data_entry::Print_suggestions() {
    LEAF_LINE(BINDING, FUNCTION_FIRST, "Print_suggestions", "[%s]\n", Get_name());
    if (binding != nullptr) {
        binding->printSuggestions();
    }
}
