#include <frontpanel_binding/binding_registry.h>

#include <algorithm>
#include <utility>

#include "binding_compiler.h"
#include "binding_rule.h"

std::string Compile_error::text() const {
    return "line " + std::to_string(line) + ", column " + std::to_string(column) + ": " + message;
}

Binding_registry::Binding_registry(Data_interface* iface) : m_interface(iface) {}

Binding_registry::~Binding_registry() = default;

Compile_result Binding_registry::compile(std::string_view source) {
    Compile_result result;
    try {
        for (Binding_rule& rule : compile_binding_rules(source)) {
            result.list.push_back(static_cast<int>(m_rules.size()));
            result.intervals.insert(result.intervals.end(), rule.intervals.begin(),
                                    rule.intervals.end());
            m_rules.push_back(std::make_unique<const Binding_rule>(std::move(rule)));
        }
    } catch (const Compile_error& error) {
        result.error = error;
    }
    return result;
}

Data_interface* Binding_registry::interface() const {
    return m_interface != nullptr ? m_interface : VarIdDataInfStore::m_pDataAccessInf;
}

void Binding_registry::set_warning_listener(Warning_listener listener) {
    m_warning_listener = std::move(listener);
}

void Binding_registry::show_warning(const std::string& text) const {
    if (m_warning_listener) {
        m_warning_listener(text);
    }
}

const Binding_rule* Binding_registry::rule(int id) const {
    const bool is_known = id >= 0 && static_cast<std::size_t>(id) < m_rules.size();
    return is_known ? m_rules[static_cast<std::size_t>(id)].get() : nullptr;
}

bool Binding_registry::add_dependant(const var_index_s& key, Data_entry* entry) {
    const auto fresh = EntryModelCache(Data_entry::INVALID_ENTRY_TYPE, nullptr, key.rt);
    auto& listed = m_var_index_map.emplace(key, fresh).first->second.binding_dependant_entries;
    if (std::find(listed.begin(), listed.end(), entry) != listed.end()) {
        return false;
    }
    listed.push_back(entry);
    return true;
}

void Binding_registry::remove_dependant(const var_index_s& key, Data_entry* entry) {
    const auto record = m_var_index_map.find(key);
    if (record != m_var_index_map.end()) {
        auto& listed = record->second.binding_dependant_entries;
        listed.erase(std::remove(listed.begin(), listed.end(), entry), listed.end());
    }
}
