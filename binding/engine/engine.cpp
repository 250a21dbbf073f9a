#include "engine/engine.h"

#include <algorithm>
#include <bitset>
#include <cstdio>
#include <limits>
#include <utility>

#include <frontpanel_data/range_entry.h>

#include "engine/reading.h"
#include "engine/suggestions/suggestion_maker.h"
#include "rule_kinds.h"

namespace frontpanel::binding_engine {
namespace {

using binding_language::Program;
using binding_language::Rule;

// The diagnostic lines of bindings show under this mask.
constexpr uint32_t BINDING_MASK = 0x21;

// What a range entry allows now; nothing for other entries.
std::optional<Interval> range_of(Data_entry* entry) {
    auto* const range_entry = dynamic_cast<Range_entry*>(entry);
    if (range_entry == nullptr) {
        return std::nullopt;
    }
    return Interval{range_entry->Get_min(), range_entry->Get_max()};
}

// A warning sees the value that is tried, and what the device has then.
bool follows_own_value(const Program& program, std::size_t number) {
    return program.own_type().has_value() &&
           !find_rule_kind(program.kind_of_rule(number))->judges_tries &&
           program.reads_own_value(program.rule(number));
}

}  // namespace

Engine::Engine(Core& core, const var_index_s& control) : m_core(core), m_control(control) {
    m_core.cascade.add(*this);
}

Engine::~Engine() {
    m_core.cascade.entry_changed(*this, m_entry, nullptr);
    detach();
    for (Cached_parameter* const parameter : m_read) {
        m_core.parameters.remove_reader(*parameter, *this);
    }
    m_core.cascade.remove(*this);
}

std::string Engine::name() const {
    if (m_entry != nullptr) {
        return m_entry->Get_name();
    }
    return m_own != nullptr ? shown_address(m_control) : "an entry";
}

// ---- the entry and its lists

void Engine::control_changed(Data_entry::Entry_type type) {
    Data_entry* const entry = m_entry;
    detach();
    m_entry_type = type;
    m_own = find_own();
    m_entry = entry;
    attach();
}

void Engine::set_entry(Data_entry* entry) {
    m_core.cascade.entry_changed(*this, m_entry, entry);
    detach();
    m_entry = entry;
    m_options = dynamic_cast<Enum_entry*>(entry);
    m_entry_range = range_of(entry);
    m_was_evaluated = false;
    m_cascade_state.is_marked = false;
    attach();
}

void Engine::set_fallback_range(int min, int max) {
    m_fallback_range = Interval{std::min(min, max), std::max(min, max)};
}

void Engine::add_list(BindingListT list) {
    std::string why;
    std::optional<Program> program = Program::decode(std::move(list), why);
    if (!program) {
        m_errors.push_back("binding list not added: " + why);
        return;
    }
    Data_entry* const entry = m_entry;
    detach();
    m_lists.push_back({std::move(*program), {}, {}, 0});
    bind_parameters(m_lists.back());
    note_kinds(m_lists.back().program);
    m_entry = entry;
    attach();
}

void Engine::bind_parameters(Bound_list& list) {
    for (std::size_t number = 0; number < list.program.parameter_count(); ++number) {
        const auto parameter = list.program.parameter(number);
        Cached_parameter* const bound =
            parameter.is_read ? &m_core.parameters.at(parameter.key) : nullptr;
        list.parameters.push_back(bound);
        if (bound != nullptr && std::find(m_read.begin(), m_read.end(), bound) == m_read.end()) {
            m_read.push_back(bound);
            m_core.parameters.add_reader(*bound, *this);
        }
    }
    list.options.resize(list.program.option_count());
    list.options_version = m_core.options.version() - 1;
    m_reads_own = m_reads_own || list.program.own_type().has_value();
}

void Engine::note_kinds(const Program& program) {
    for (std::size_t number = 0; number < program.rule_count(); ++number) {
        m_rule_kinds |= program.kind_of_rule(number);
        m_follows_own = m_follows_own || follows_own_value(program, number);
    }
    add_makers();
}

void Engine::add_makers() {
    const auto kinds = static_cast<unsigned int>(m_rule_kinds);
    m_makers.reserve(std::bitset<std::numeric_limits<unsigned int>::digits>(kinds).count());
    std::size_t place = 0;
    for (const Rule_kind& kind : rule_kinds()) {
        if ((m_rule_kinds & kind.suggestion) == 0) {
            continue;
        }
        const auto next = m_makers.begin() + static_cast<std::ptrdiff_t>(place++);
        if (next == m_makers.end() || (*next)->kind().suggestion != kind.suggestion) {
            m_offered |= (*m_makers.insert(next, kind.make(*this, kind)))->offered();
        }
    }
}

Suggestion_maker* Engine::find_maker(int kind) const {
    const auto found = std::find_if(m_makers.begin(), m_makers.end(), [&](const auto& maker) {
        return maker->kind().suggestion == kind;
    });
    return found != m_makers.end() ? found->get() : nullptr;
}

void Engine::refresh_options(Bound_list& list) const {
    if (list.options_version == m_core.options.version()) {
        return;
    }
    list.options_version = m_core.options.version();
    for (std::size_t number = 0; number < list.options.size(); ++number) {
        list.options[number] = m_core.options.has(list.program.option_name(number));
    }
}

const Cached_parameter* Engine::find_written(const Bound_list& list, const Rule& rule) const {
    return m_core.parameters.find(list.program.parameter(rule.target()).key);
}

Cached_parameter* Engine::find_own() {
    return m_control.var != Data_entry::PID_NONE ? &m_core.parameters.at(m_control) : nullptr;
}

// The entry's own parameter, too, if they read it.
std::vector<Cached_parameter*> Engine::parameters() const {
    std::vector<Cached_parameter*> all = m_read;
    if (m_reads_own && m_own != nullptr && std::find(all.begin(), all.end(), m_own) == all.end()) {
        all.push_back(m_own);
    }
    return all;
}

void Engine::attach() {
    if (m_entry == nullptr) {
        return;
    }
    for (Cached_parameter* const parameter : parameters()) {
        m_core.parameters.list_dependant(*parameter, m_entry);
    }
    if (m_own != nullptr) {
        m_core.parameters.add_owner(*m_own, m_control, *this);
        if (m_follows_own) {
            m_core.parameters.add_reader(*m_own, *this);
        }
    }
    if (offers(SUGGESTION_ACCESS)) {
        // What the rules suggest must not pass for what the entry was built with.
        m_entry->Set_flag_access_type_chg(true);
    }
    if (offers(SUGGESTION_SET)) {
        m_core.cascade.mark(*this);  // writes do not wait until the entry is shown
    }
}

void Engine::detach() {
    if (m_entry == nullptr) {
        return;
    }
    for (Cached_parameter* const parameter : parameters()) {
        m_core.parameters.unlist_dependant(*parameter, m_entry);
    }
    if (m_own != nullptr) {
        m_core.parameters.remove_owner(*m_own, *this, m_entry);
        if (m_follows_own) {
            m_core.parameters.remove_reader(*m_own, *this);
        }
    }
    m_entry = nullptr;
}

std::vector<var_index_s> Engine::keys() const {
    std::vector<var_index_s> keys;
    for (const Bound_list& list : m_lists) {
        for (std::size_t number = 0; number < list.parameters.size(); ++number) {
            if (list.parameters[number] != nullptr) {
                keys.push_back(list.program.parameter(number).key);
            }
        }
    }
    if (m_reads_own && m_own != nullptr) {
        keys.push_back(m_control);
    }
    const cmp_var_index_t before;
    const auto is_same = [&](const var_index_s& left, const var_index_s& right) {
        return !before(left, right) && !before(right, left);
    };
    std::sort(keys.begin(), keys.end(), before);
    keys.erase(std::unique(keys.begin(), keys.end(), is_same), keys.end());
    return keys;
}

// ---- evaluation

bool Engine::evaluate(bool updates, bool tries) {
    m_errors.clear();
    if (m_core.cascade.is_frozen() && !tries) {
        m_errors.push_back("not evaluated: entries that limit each other do not settle");
        return false;
    }
    if (!tries && m_core.cascade.is_too_deep()) {
        m_core.cascade.mark(*this);
        return true;
    }
    Reading reading(*this, tries);
    reading.set_reports_faults(updates);
    for (const auto& maker : m_makers) {
        if (maker->kind().judges_tries == tries) {
            maker->decide(reading, updates);
        }
    }
    if (updates && !tries) {
        m_was_evaluated = true;
        m_core.cascade.evaluated(*this);
        show_new_options();
    }
    return m_errors.empty();
}

// Updates the visible options before the refresh goes on, which replaces a hidden option: one that has just become
// allowed must be visible by then.
void Engine::show_new_options() {
    const Suggestion_maker* const keys =
        m_options != nullptr ? find_maker(SUGGESTION_KEYS) : nullptr;
    if (keys != nullptr && (keys->updated() & SUGGESTION_RANGE) != 0) {
        m_options->updateControlOptionMap();
    }
}

void Engine::report_cascade(const std::string& path) {
    m_errors.push_back("the writes do not settle: " + path);
    print_error(m_errors.back());
}

void Engine::write_failed(uint32_t pid, uint32_t varidx, std::string_view bytes, int result) {
    for (const auto& maker : m_makers) {
        maker->write_failed(pid, varidx, bytes, result);
    }
}

void Engine::write_done(uint32_t pid, uint32_t varidx, std::string_view bytes) {
    if (m_faults.empty()) {
        return;
    }
    for (const auto& maker : m_makers) {
        maker->write_done(pid, varidx, bytes);
    }
}

void Engine::print_error(const std::string& error) const {
    if ((debug & BINDING_MASK) != 0) {
        std::printf("Binding error in [%s]: %s\n", name().c_str(), error.c_str());
    }
}

void Engine::print_errors() const {
    for (const std::string& error : m_errors) {
        print_error(error);
    }
}

void Engine::print_suggestions() const {
    if ((debug & BINDING_MASK) == 0) {
        return;
    }
    for (const std::string& line : suggestion_lines()) {
        std::printf("Suggested for [%s]: %s\n", name().c_str(), line.c_str());
    }
}

// ---- faults

void Engine::set_rule_places(Rule_places places) {
    m_places = std::make_unique<const Rule_places>(std::move(places));
}

// Of all the entry's lists.
std::size_t Engine::number_of(const Bound_list& list, const Rule& rule) const {
    std::size_t number = rule.number;
    for (const Bound_list* before = m_lists.data(); before != &list; ++before) {
        number += before->program.rule_count();
    }
    return number;
}

std::string Engine::place_of(std::size_t rule) const {
    if (m_places == nullptr || m_places->file == nullptr || rule >= m_places->rules.size()) {
        return {};
    }
    const Rule_places::Position& position = m_places->rules[rule];
    return *m_places->file + ":" + std::to_string(position.line) + ":" +
           std::to_string(position.column);
}

void Engine::add_fault(const Bound_list& list, const Rule& rule, std::string reason,
                       Rule_fault::Cause cause) {
    const std::size_t number = number_of(list, rule);
    const bool names_line = m_places == nullptr || !m_places->is_exact;
    const std::string line = names_line ? "line " + std::to_string(rule.line) + ", " : "";
    Rule_fault fault{m_entry,           name(), place_of(number), number, line + shown(rule.source),
                     std::move(reason), cause};
    if (m_faults.add(fault) && m_core.fault_listener) {
        m_core.fault_listener(fault);
    }
}

void Engine::judged(const Bound_list& list, const Rule& rule) {
    if (!m_faults.empty()) {
        m_faults.judged(number_of(list, rule));
    }
}

void Engine::add_write_fault(std::size_t rule, std::string reason) {
    for (const Bound_list& list : m_lists) {
        if (rule < list.program.rule_count()) {
            add_fault(list, list.program.rule(rule), std::move(reason), Rule_fault::Cause::WRITE);
            return;
        }
        rule -= list.program.rule_count();
    }
}

// ---- suggestions

int Engine::updated() const {
    int kinds = 0;
    for (const auto& maker : m_makers) {
        kinds |= maker->updated();
    }
    return kinds;
}

// A kind without rules gets what its maker has before its first evaluation.
void Engine::get(int mask, void* out) {
    if (const Suggestion_maker* const maker = find_maker(mask)) {
        maker->get(out);
    } else if (const Rule_kind* const kind = find_rule_kind(mask)) {
        kind->make(*this, *kind)->get(out);
    }
}

void Engine::clear(int mask) {
    for (const auto& maker : m_makers) {
        maker->clear(mask);
    }
}

void Engine::set_override(const var_index_s& key, return_s value) {
    m_override_key = normal_key(key);
    m_override_value = std::move(value);
}

Cached_parameter* Engine::overridden() const {
    const bool is_usable = m_override_key && m_override_key->rt == m_override_value.rt &&
                           m_override_value.rt != INVALID_TYPE;
    return is_usable ? m_core.parameters.find(*m_override_key) : nullptr;
}

std::vector<std::string> Engine::suggestion_lines() const {
    std::vector<std::string> lines;
    for (const auto& maker : m_makers) {
        const char* const news = maker->is_news() ? " (new)" : "";
        for (const std::string& line : maker->lines()) {
            lines.push_back(line + news);
        }
    }
    return lines;
}

}  // namespace frontpanel::binding_engine
