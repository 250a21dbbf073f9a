#include <frontpanel_binding/binding_registry.h>

#include <utility>

#include "engine/core.h"
#include "engine/dependency_cycles.h"
#include "engine/done_list.h"
#include "engine/engine.h"
#include "engine/explanation.h"
#include "engine/forecast.h"
#include "language/compiler.h"

namespace frontpanel {

std::string Compile_error::text() const {
    return "line " + std::to_string(line) + ", column " + std::to_string(column) + ": " + message;
}

Binding_registry::Binding_registry(Data_interface* iface)
    : m_core(std::make_unique<binding_engine::Core>(iface, m_parameters)),
      m_compiler(std::make_unique<binding_language::Compiler>()) {}

Binding_registry::~Binding_registry() = default;

Compile_result Binding_registry::compile(std::string_view source, RETURN_TYPE own_type,
                                         std::pair<std::int32_t, std::int32_t> own_bounds) {
    return m_compiler->compile(source,
                               {m_parameters, own_type, {own_bounds.first, own_bounds.second}});
}

Toggle_result Binding_registry::compile_toggle(std::string_view condition) {
    return m_compiler->compile_toggle(condition, m_parameters, [this](std::string_view name) {
        return m_core->options.has(name);
    });
}

Data_interface* Binding_registry::interface() const {
    return m_core->parameters.interface();
}

void Binding_registry::set_warning_listener(Warning_listener listener) {
    m_warning_listener = std::move(listener);
}

void Binding_registry::arm_warnings() {
    ++m_core->warning_round;
}

void Binding_registry::show_warning(const std::string& text) const {
    if (m_warning_listener) {
        m_warning_listener(text);
    }
}

void Binding_registry::set_fault_listener(Fault_listener listener) {
    m_core->fault_listener = std::move(listener);
    if (m_core->fault_listener) {
        for (const Rule_fault& fault : faults()) {
            m_core->fault_listener(fault);
        }
    }
}

std::vector<Rule_fault> Binding_registry::faults() const {
    std::vector<Rule_fault> all;
    for (const auto& [number, engine] : m_core->cascade.engines()) {
        const std::vector<Rule_fault>& faults = engine->faults();
        all.insert(all.end(), faults.begin(), faults.end());
    }
    return all;
}

// ---- parameters

var_index_map_t* Binding_registry::var_index_map() {
    return &m_core->parameters.map();
}

void Binding_registry::forget_dependants() {
    m_core->parameters.forget_dependants();
}

void Binding_registry::watch(const var_index_s& key) {
    m_core->parameters.watch(m_core->parameters.at(key));
}

void Binding_registry::unwatch(const var_index_s& key) {
    if (binding_engine::Cached_parameter* const parameter = m_core->parameters.find(key)) {
        m_core->parameters.unwatch(*parameter);
    }
}

std::optional<return_s> Binding_registry::value(const var_index_s& key) const {
    const binding_engine::Cached_parameter* const parameter = m_core->parameters.find(key);
    if (parameter == nullptr || !parameter->is_known) {
        return std::nullopt;
    }
    return_s value;
    value.rt = parameter->rt;
    value.i = parameter->number;
    value.s = parameter->text;
    return value;
}

const std::vector<var_index_s>& Binding_registry::poll(std::size_t at_most) {
    return m_core->parameters.poll(at_most);
}

void Binding_registry::read_again(const Data_entry& entry) {
    if (binding_engine::Engine* const engine = m_core->cascade.engine_of(&entry)) {
        m_core->parameters.read_again(engine->parameters());
    }
}

bool Binding_registry::has_unsettled() const {
    return !m_core->cascade.is_at_rest();
}

Binding_settlement Binding_registry::settle(Data_interface* iface, std::size_t at_most) {
    Binding_settlement settlement =
        m_core->cascade.settle(iface != nullptr ? iface : interface(), at_most);
    if (m_done_listener && std::exchange(m_core->has_new_writes, false)) {
        m_done_listener();
    }
    return settlement;
}

Proposed_values Binding_registry::foresee(const Proposed_values& values) const {
    return binding_engine::foresee(m_core->cascade, values);
}

std::optional<Rule_verdict> Binding_registry::judge(const Data_entry& entry,
                                                    const Proposed_values& values) const {
    binding_engine::Engine* const engine = m_core->cascade.engine_of(&entry);
    return engine != nullptr ? std::optional<Rule_verdict>(binding_engine::judge(*engine, values))
                             : std::nullopt;
}

// An engine that waits for `settle` is not evaluated here: its writes would then wait for the entry's next refresh.
std::optional<bool> Binding_registry::visibility_ahead(const Data_entry& entry) {
    binding_engine::Engine* const engine = m_core->cascade.engine_of(&entry);
    if (engine == nullptr) {
        return std::nullopt;
    }
    if (engine->cascade_state().is_marked) {
        return binding_engine::visibility_now(*engine);
    }
    if (!engine->was_evaluated()) {
        engine->evaluate(true, false);
    }
    return std::nullopt;
}

std::vector<Done_writes> Binding_registry::done_writes() const {
    return binding_engine::done_writes(m_core->cascade);
}

void Binding_registry::set_done_writes(const std::vector<Done_writes>& done) {
    binding_engine::set_done_writes(m_core->cascade, done);
    m_core->has_new_writes = true;
}

void Binding_registry::set_done_listener(std::function<void()> listener) {
    m_done_listener = std::move(listener);
}

void Binding_registry::set_product_options(std::map<std::string, unsigned int> options,
                                           Option_namer library_name) {
    m_core->options.set(std::move(options), std::move(library_name));
}

// ---- reports

std::vector<Binding_cycle> Binding_registry::find_cycles() const {
    return binding_engine::find_cycles(m_core->cascade);
}

std::optional<Binding_explanation> Binding_registry::explain(const Data_entry& entry) {
    binding_engine::Engine* const engine = m_core->cascade.engine_of(&entry);
    if (engine == nullptr) {
        return std::nullopt;
    }
    return binding_engine::explain(*engine);
}

}  // namespace frontpanel
