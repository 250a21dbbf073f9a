#include <frontpanel_binding/binding_registry.h>

#include <algorithm>
#include <utility>

#include "binding_compiler.h"

std::string Compile_error::text() const {
    return "line " + std::to_string(line) + ", column " + std::to_string(column) + ": " + message;
}

Binding_registry::Binding_registry(Data_interface* iface)
    : m_interface(iface), m_compiler(std::make_unique<binding_language::Compiler>()) {}

Binding_registry::~Binding_registry() = default;

Compile_result Binding_registry::compile(std::string_view source, RETURN_TYPE own_type) {
    return m_compiler->compile(source, {m_parameters, own_type});
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
