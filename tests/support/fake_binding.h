// A binding engine that a test scripts.
//
//     std::vector<std::string> log;
//     auto* binding = new Fake_binding(&log);      // the entry owns it
//     binding->suggest_access(Data_entry::READ_WRITE);
//     entry.Set_binding_object(binding);
//
// A suggestion given by `suggest_...` is offered and updated until it is cleared. `on_evaluate` gives
// suggestions that arise only when the expressions are evaluated. Every call but the two queries
// (`offersSuggestion`, `suggestionUpdated`) goes to the log in order.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_FAKE_BINDING_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_FAKE_BINDING_H

#include <frontpanel_data/binding.h>
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "support/bytes.h"

namespace support {

class Fake_binding : public Binding {
public:
    // `log` may be null and must outlive the binding; the destruction is its last line.
    explicit Fake_binding(std::vector<std::string>* log = nullptr) : m_log(log) {
        self_control_info = {INVALID_TYPE, 0, Index_t{}};
    }
    ~Fake_binding() override { note("~Binding"); }

    // --- the script

    // The kind can be suggested; nothing is suggested yet.
    void offer(int mask) { m_offered.insert(mask); }
    void withdraw(int mask) { m_offered.erase(mask); }
    // Marks a suggestion as changed without an offer, as an engine never should.
    void update_without_offer(int mask) { m_updated.insert(mask); }

    void suggest_visibility(int visibility) {
        m_visibility = visibility;
        update(SUGGESTION_VISIBILITY);
    }
    void suggest_range(std::vector<std::vector<int>> ranges) {
        m_ranges = std::move(ranges);
        update(SUGGESTION_RANGE);
    }
    void suggest_keys(std::vector<std::vector<int>> keys) {
        m_keys = std::move(keys);
        update(SUGGESTION_KEYS);
    }
    void suggest_sets(std::vector<GetSetS> sets) {
        m_sets = std::move(sets);
        update(SUGGESTION_SET);
    }
    void suggest_warnings(std::vector<std::string> warnings) {
        m_warnings = std::move(warnings);
        update(SUGGESTION_WARNING);
    }
    void suggest_access(Data_entry::Data_access access) {
        m_access = access;
        update(SUGGESTION_ACCESS);
    }

    // Runs inside each evaluation, with its flags.
    std::function<void(Fake_binding&, int flags)> on_evaluate;
    // Runs inside each `displayWarning`.
    std::function<void(const std::string&)> on_warning;
    int print_bind_errors_result = 0;
    int evaluate_result = 0;
    std::vector<var_index_s> map_keys;
    // The map that the entry sees; the binding's own unless a test points it elsewhere.
    var_index_map_t own_map;
    var_index_map_t* map = &own_map;

    // --- what happened

    std::vector<BindingListT> lists;
    Data_entry* entry = nullptr;
    bool control_info_given = false;
    const Index_t* control_index = nullptr;
    Data_entry::Entry_type control_type = Data_entry::INVALID_ENTRY_TYPE;
    // The override that is in force, if any; kept as it was last set.
    bool override_in_force = false;
    var_index_s override_key = {INVALID_TYPE, 0, Index_t{}};
    return_s override_value;
    std::vector<std::string> shown_warnings;

    bool is_updated(int mask) const { return m_updated.count(mask) != 0; }

    // --- Binding

    void setControlInfo(unsigned int pid, const Index_t* index,
                        Data_entry::Entry_type type) override {
        note("setControlInfo pid=" + std::to_string(pid) + " type=" + std::to_string(type));
        control_info_given = true;
        control_index = index;
        control_type = type;
        self_control_info = {EntryModelCache::Type_to_return_type(type), pid,
                             index != nullptr ? *index : Index_t{}};
    }
    void setDataEntry(Data_entry* data_entry) override {
        note("setDataEntry");
        entry = data_entry;
    }
    void addBindingList(BindingListT list) override {
        note("addBindingList");
        lists.push_back(std::move(list));
    }
    int numBindingLists() override {
        note("numBindingLists");
        return static_cast<int>(lists.size());
    }
    int evaluateAllBindingExpressions(int* flags) override {
        note("evaluate flags=" + std::to_string(*flags));
        if (on_evaluate) {
            on_evaluate(*this, *flags);
        }
        return evaluate_result;
    }
    int printBindErrors() override {
        note("printBindErrors");
        return print_bind_errors_result;
    }
    void clearBindErrors() override { note("clearBindErrors"); }
    void printSuggestions() override { note("printSuggestions"); }
    bool offersSuggestion(int mask) override { return m_offered.count(mask) != 0; }
    bool suggestionUpdated(int mask) override { return m_updated.count(mask) != 0; }
    void getSuggestion(int mask, void* out) override {
        note("getSuggestion " + std::to_string(mask));
        copy_suggestion(mask, out);
    }
    void clearSuggestion(int mask) override {
        note("clearSuggestion " + std::to_string(mask));
        m_updated.erase(mask);
    }
    void setOverrideVarid(var_index_s key, return_s value) override {
        note("setOverrideVarid pid=" + std::to_string(key.var) + " rt=" + std::to_string(key.rt) +
             " value: rt=" + std::to_string(value.rt) + " i=" + std::to_string(value.i) + " s=[" +
             value.s + "]");
        override_in_force = true;
        override_key = key;
        override_value = std::move(value);
    }
    void clearOverrideVarid() override {
        note("clearOverrideVarid");
        override_in_force = false;
    }
    void displayWarning(std::string text) override {
        note("displayWarning " + text);
        shown_warnings.push_back(text);
        if (on_warning) {
            on_warning(text);
        }
    }
    var_index_map_t* getVarIndexMap() override {
        note("getVarIndexMap");
        return map;
    }
    std::vector<var_index_s> getVarIndexMapKeys(int flags) override {
        note("getVarIndexMapKeys " + std::to_string(flags));
        return map_keys;
    }

private:
    void note(std::string line) {
        if (m_log != nullptr) {
            m_log->push_back(std::move(line));
        }
    }

    void update(int mask) {
        m_offered.insert(mask);
        m_updated.insert(mask);
    }

    void copy_suggestion(int mask, void* out) const {
        switch (mask) {
            case SUGGESTION_VISIBILITY:
                *static_cast<int*>(out) = m_visibility;
                return;
            case SUGGESTION_RANGE:
                *static_cast<std::vector<std::vector<int>>*>(out) = m_ranges;
                return;
            case SUGGESTION_KEYS:
                *static_cast<std::vector<std::vector<int>>*>(out) = m_keys;
                return;
            case SUGGESTION_SET:
                *static_cast<std::vector<GetSetS>*>(out) = m_sets;
                return;
            case SUGGESTION_WARNING:
                *static_cast<std::vector<std::string>*>(out) = m_warnings;
                return;
            case SUGGESTION_ACCESS:
                *static_cast<Data_entry::Data_access*>(out) = m_access;
                return;
            default:
                ADD_FAILURE() << "no suggestion of kind " << mask;
        }
    }

    std::vector<std::string>* m_log;
    std::set<int> m_offered;
    std::set<int> m_updated;
    int m_visibility = VIS_TRUE;
    std::vector<std::vector<int>> m_ranges;
    std::vector<std::vector<int>> m_keys;
    std::vector<GetSetS> m_sets;
    std::vector<std::string> m_warnings;
    Data_entry::Data_access m_access = Data_entry::READ_ONLY;
};

// One requested write of an integer.
inline GetSetS set_request(uint32_t pid, uint32_t varidx, int32_t value) {
    GetSetS request = {pid, varidx, INTEGER, {}, sizeof value};
    std::memcpy(request.buffer, &value, sizeof value);
    return request;
}

// One requested write of a text of at most 128 characters.
inline GetSetS set_request(uint32_t pid, uint32_t varidx, const std::string& text) {
    GetSetS request = {pid, varidx, STRING, {}, static_cast<uint32_t>(text.size())};
    text.copy(reinterpret_cast<char*>(request.buffer), sizeof request.buffer);
    return request;
}

}  // namespace support

#endif
