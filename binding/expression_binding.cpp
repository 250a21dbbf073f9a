#include <frontpanel_binding/expression_binding.h>

#include <utility>

#include "engine/core.h"
#include "engine/engine.h"
#include "engine/explanation.h"

namespace frontpanel {

Expression_binding::Expression_binding(std::shared_ptr<Binding_registry> registry)
    : m_registry(std::move(registry)),
      m_engine(std::make_unique<binding_engine::Engine>(m_registry->core(), self_control_info)) {
    self_control_info.var = Data_entry::PID_NONE;  // no entry yet
}

Expression_binding::~Expression_binding() = default;

void Expression_binding::set_fallback_range(int min, int max) {
    m_engine->set_fallback_range(min, max);
}

const std::vector<std::string>& Expression_binding::errors() const {
    return m_engine->errors();
}

Binding_explanation Expression_binding::explain() {
    return binding_engine::explain(*m_engine);
}

void Expression_binding::set_rule_places(Rule_places places) {
    m_engine->set_rule_places(std::move(places));
}

// ---- the entry and its lists

void Expression_binding::setControlInfo(unsigned int pid, const Index_t* index,
                                        Data_entry::Entry_type type) {
    self_control_info = binding_engine::normal_key(
        {EntryModelCache::Type_to_return_type(type), pid, index != nullptr ? *index : Index_t{}});
    m_engine->control_changed(type);
}

void Expression_binding::setDataEntry(Data_entry* entry) {
    m_engine->set_entry(entry);
}

void Expression_binding::addBindingList(BindingListT list) {
    m_engine->add_list(std::move(list));
}

int Expression_binding::numBindingLists() {
    return m_engine->list_count();
}

var_index_map_t* Expression_binding::getVarIndexMap() {
    return m_registry->var_index_map();
}

std::vector<var_index_s> Expression_binding::getVarIndexMapKeys(int /*flags*/) {
    return m_engine->keys();
}

// ---- evaluation

int Expression_binding::evaluateAllBindingExpressions(int* flags) {
    const int bits = flags != nullptr ? *flags : 0;
    return m_engine->evaluate((bits & EXECUTE_FLAG) != 0, (bits & OVERRIDE_FLAG) != 0) ? 0 : -1;
}

int Expression_binding::printBindErrors() {
    m_engine->print_errors();
    return static_cast<int>(m_engine->errors().size());
}

void Expression_binding::clearBindErrors() {
    m_engine->clear_errors();
}

// ---- suggestions

void Expression_binding::printSuggestions() {
    m_engine->print_suggestions();
}

bool Expression_binding::offersSuggestion(int mask) {
    return m_engine->offers(mask);
}

bool Expression_binding::suggestionUpdated(int mask) {
    return m_engine->is_updated(mask);
}

void Expression_binding::getSuggestion(int mask, void* out) {
    m_engine->get(mask, out);
}

void Expression_binding::clearSuggestion(int mask) {
    m_engine->clear(mask);
}

void Expression_binding::setOverrideVarid(var_index_s key, return_s value) {
    m_engine->set_override(key, std::move(value));
}

void Expression_binding::clearOverrideVarid() {
    m_engine->clear_override();
}

void Expression_binding::displayWarning(std::string text) {
    m_registry->show_warning(text);
}

}  // namespace frontpanel
