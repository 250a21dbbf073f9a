#include <frontpanel_binding/expression_binding.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <limits>
#include <map>
#include <set>
#include <utility>

#include <frontpanel_data/data_model.h>
#include <frontpanel_data/range_entry.h>

#include "machine.h"
#include "program.h"

namespace {

// The diagnostic lines of bindings show under this mask.
constexpr uint32_t BINDING_MASK = 0x21;

using binding_language::Code;
using binding_language::Fault;
using binding_language::Machine;
using binding_language::Program;
using binding_language::Rule;
using binding_language::Value;

using Parameter_set = std::set<var_index_s, cmp_var_index_t>;

// Keys are ordered by both supported levels, in use or not.
Index_t without_unused_levels(const Index_t& index) {
    Index_t used{};
    used.m_index_num = index.m_index_num;
    std::copy_n(index.m_index, std::min<std::size_t>(index.m_index_num, std::size(used.m_index)),
                used.m_index);
    return used;
}

std::string parameter_text(const var_index_s& key) {
    std::string text = std::to_string(key.var);
    for (uint32_t level = 0; level < key.index.m_index_num; ++level) {
        text += '.' + std::to_string(key.index.m_index[level]);
    }
    return text;
}

int saturated(int64_t number) {
    constexpr int64_t LEAST = std::numeric_limits<int>::min();
    constexpr int64_t GREATEST = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(number, LEAST, GREATEST));
}

// What a range entry allows now; nothing for other entries.
std::optional<std::vector<int>> range_of(Data_entry* entry) {
    auto* const range_entry = dynamic_cast<Range_entry*>(entry);
    if (range_entry == nullptr) {
        return std::nullopt;
    }
    return std::vector<int>{range_entry->Get_min(), range_entry->Get_max()};
}

// Overlapping ranges would make a step pass the same values twice.
std::vector<std::vector<int>> merged(std::vector<Binding_interval> intervals) {
    std::sort(intervals.begin(), intervals.end(),
              [](const Binding_interval& left, const Binding_interval& right) {
                  return left.min < right.min;
              });
    std::vector<std::vector<int>> ranges;
    for (const Binding_interval& interval : intervals) {
        if (!ranges.empty() && int64_t{interval.min} <= int64_t{ranges.back()[1]} + 1) {
            ranges.back()[1] = std::max(ranges.back()[1], interval.max);
        } else {
            ranges.push_back({interval.min, interval.max});
        }
    }
    return ranges;
}

}  // namespace

// One evaluation of all rules. Each parameter is read once, so that all rules judge the same device state;
// an answer that needs a parameter which cannot be read is no answer.
class Expression_binding::Evaluation : public binding_language::Value_source {
public:
    Evaluation(Data_interface* iface, std::vector<std::string>& errors, var_index_s own)
        : m_interface(iface), m_errors(errors), m_own(std::move(own)) {}

    void pretend(const var_index_s& key, const return_s& value) { m_values[key] = value; }

    void report(const std::string& error) { m_errors.push_back(error); }

    std::optional<bool> holds(const Program& program, const Rule& rule) {
        if (rule.condition.empty()) {
            return true;
        }
        const std::optional<int64_t> answer = number(program, rule, rule.condition);
        return answer ? std::optional<bool>(*answer != 0) : std::nullopt;
    }

    std::optional<int64_t> number(const Program& program, const Rule& rule, Code code) {
        m_program = &program;
        Value value;
        const Fault fault = m_machine.run(program, code, *this, value);
        if (fault != Fault::NONE && fault != Fault::UNREADABLE) {
            report("line " + std::to_string(rule.line) + ": " + fault_text(fault) + " in \"" +
                   std::string(rule.source) + "\"");
        }
        return fault == Fault::NONE ? std::optional<int64_t>(value.number) : std::nullopt;
    }

    bool read(std::size_t parameter, Value& value) override {
        return give(m_program->parameter(parameter).key, value);
    }
    bool read_own(Value& value) override { return give(m_own, value); }
    bool has_option(std::size_t) override { return false; }

private:
    bool give(const var_index_s& key, Value& value) {
        const std::optional<return_s>& known = value_of(key);
        if (known) {
            value.number = known->i;
            value.text = known->s;
        }
        return known.has_value();
    }

    const std::optional<return_s>& value_of(const var_index_s& key) {
        const auto known = m_values.find(key);
        return known != m_values.end() ? known->second : m_values[key] = read(key);
    }

    std::optional<return_s> read(const var_index_s& key) {
        if (m_interface == nullptr) {
            report("cannot read parameter " + parameter_text(key) + ": no data interface");
            return std::nullopt;
        }
        unsigned int varidx = 0;
        Data_model::Index_convert(&key.index, varidx);
        return_s value;
        value.rt = key.rt;
        const int result = key.rt == STRING
                               ? read_text(key.var, varidx, value.s)
                               : m_interface->Get(key.var, varidx, &value.i, sizeof value.i);
        if (result != 0) {
            report("cannot read parameter " + parameter_text(key) + ": device result " +
                   std::to_string(result));
            return std::nullopt;
        }
        return value;
    }

    int read_text(uint32_t pid, uint32_t varidx, std::string& text) {
        char buffer[MAX_STRING_LENGTH + 1] = {};
        const int result = m_interface->Get(pid, varidx, buffer, sizeof buffer);
        buffer[MAX_STRING_LENGTH] = '\0';  // whatever the device wrote
        text = buffer;
        return result;
    }

    Data_interface* m_interface;
    std::vector<std::string>& m_errors;
    var_index_s m_own;
    Machine m_machine;
    const Program* m_program = nullptr;
    std::map<var_index_s, std::optional<return_s>, cmp_var_index_t> m_values;
};

template <typename Value>
void Expression_binding::Suggestion<Value>::suggest(const Value& suggested) {
    if (value != suggested) {
        value = suggested;
        updated = true;
    }
}

Expression_binding::Expression_binding(std::shared_ptr<Binding_registry> registry)
    : m_registry(std::move(registry)), m_entry(nullptr) {}

Expression_binding::~Expression_binding() {
    unregister_entry();
}

void Expression_binding::set_fallback_range(int min, int max) {
    m_fallback_range = {std::min(min, max), std::max(min, max)};
}

// ---- the entry and its lists

void Expression_binding::setControlInfo(unsigned int pid, const Index_t* index,
                                        Data_entry::Entry_type type) {
    self_control_info.rt = EntryModelCache::Type_to_return_type(type);
    self_control_info.var = pid;
    self_control_info.index = index != nullptr ? without_unused_levels(*index) : Index_t{};
}

void Expression_binding::setDataEntry(Data_entry* entry) {
    unregister_entry();
    m_entry = entry;
    m_entry_range = range_of(entry);
    register_entry();
}

void Expression_binding::addBindingList(BindingListT list) {
    std::string why;
    std::optional<Program> program = Program::decode(std::move(list), why);
    if (!program) {
        m_errors.push_back("binding list not added: " + why);
        return;
    }
    m_programs.push_back(*std::move(program));
    register_entry();
}

int Expression_binding::numBindingLists() {
    return static_cast<int>(m_programs.size());
}

void Expression_binding::register_entry() {
    if (m_entry == nullptr) {
        return;
    }
    for (const var_index_s& key : getVarIndexMapKeys(0)) {
        if (m_registry->add_dependant(key, m_entry)) {
            m_registered.push_back(key);
        }
    }
}

void Expression_binding::unregister_entry() {
    for (const var_index_s& key : m_registered) {
        m_registry->remove_dependant(key, m_entry);
    }
    m_registered.clear();
}

var_index_map_t* Expression_binding::getVarIndexMap() {
    return m_registry->var_index_map();
}

std::vector<var_index_s> Expression_binding::getVarIndexMapKeys(int /*flags*/) {
    Parameter_set parameters;
    for (const Program& program : m_programs) {
        for (std::size_t i = 0; i < program.parameter_count(); ++i) {
            if (program.parameter(i).is_read) {
                parameters.insert(program.parameter(i).key);
            }
        }
    }
    return std::vector<var_index_s>(parameters.begin(), parameters.end());
}

// ---- evaluation

int Expression_binding::evaluateAllBindingExpressions(int* flags) {
    const int bits = flags != nullptr ? *flags : 0;
    m_errors.clear();
    Evaluation evaluation(m_registry->interface(), m_errors, self_control_info);
    if ((bits & OVERRIDE_FLAG) != 0 && m_override_key) {
        evaluation.pretend(*m_override_key, m_override_value);
    }
    evaluate(evaluation, (bits & EXECUTE_FLAG) != 0);
    return m_errors.empty() ? 0 : -1;
}

void Expression_binding::evaluate(Evaluation& evaluation, bool update) {
    const std::optional<int> visibility = visibility_of(evaluation);
    if (visibility && update) {
        m_visibility.suggest(*visibility);
    }
    const std::optional<Ranges> ranges = ranges_of(evaluation);
    if (ranges && update) {
        m_ranges.suggest(*ranges);
    }
}

std::optional<int> Expression_binding::visibility_of(Evaluation& evaluation) const {
    if ((rule_kinds() & SUGGESTION_VISIBILITY) == 0) {
        return std::nullopt;
    }
    for (const Program& program : m_programs) {
        for (std::size_t i = 0; i < program.rule_count(); ++i) {
            const Rule rule = program.rule(i);
            if (rule.kind != SUGGESTION_VISIBILITY) {
                continue;
            }
            const std::optional<bool> answer = evaluation.holds(program, rule);
            if (!answer) {
                return std::nullopt;
            }
            if (*answer) {
                return VIS_TRUE;
            }
        }
    }
    return VIS_FALSE;
}

// False when it cannot be told.
bool Expression_binding::add_intervals(Evaluation& evaluation, const Program& program,
                                       const Rule& rule, std::vector<Binding_interval>& intervals) {
    if (rule.kind != SUGGESTION_RANGE) {
        return true;
    }
    const std::optional<bool> answer = evaluation.holds(program, rule);
    for (std::size_t i = 0; answer.value_or(false) && i < rule.operand_count; i += 2) {
        const auto low = evaluation.number(program, rule, program.operand(rule, i));
        const auto high = evaluation.number(program, rule, program.operand(rule, i + 1));
        if (!low || !high) {
            return false;
        }
        intervals.push_back({saturated(std::min(*low, *high)), saturated(std::max(*low, *high))});
    }
    return answer.has_value();
}

std::optional<Expression_binding::Ranges> Expression_binding::ranges_of(
    Evaluation& evaluation) const {
    if ((rule_kinds() & SUGGESTION_RANGE) == 0) {
        return std::nullopt;
    }
    std::vector<Binding_interval> intervals;
    for (const Program& program : m_programs) {
        for (std::size_t i = 0; i < program.rule_count(); ++i) {
            if (!add_intervals(evaluation, program, program.rule(i), intervals)) {
                return std::nullopt;
            }
        }
    }
    return intervals.empty() ? fallback(evaluation) : merged(intervals);
}

std::optional<Expression_binding::Ranges> Expression_binding::fallback(
    Evaluation& evaluation) const {
    const auto& range = m_fallback_range ? m_fallback_range : m_entry_range;
    if (!range) {
        evaluation.report("no range rule holds, and there is no fallback range");
        return std::nullopt;
    }
    return Ranges{*range};
}

int Expression_binding::printBindErrors() {
    if ((debug & BINDING_MASK) != 0) {
        for (const std::string& error : m_errors) {
            std::printf("Binding error: %s\n", error.c_str());
        }
    }
    return static_cast<int>(m_errors.size());
}

void Expression_binding::clearBindErrors() {
    m_errors.clear();
}

// ---- suggestions

void Expression_binding::printSuggestions() {
    if ((debug & BINDING_MASK) == 0) {
        return;
    }
    if (m_visibility.value) {
        std::printf("Suggested visibility: %d%s\n", *m_visibility.value,
                    m_visibility.updated ? " (new)" : "");
    }
    if (m_ranges.value) {
        std::printf("Suggested range:");
        for (const std::vector<int>& range : *m_ranges.value) {
            std::printf(" %d..%d", range[0], range[1]);
        }
        std::printf("%s\n", m_ranges.updated ? " (new)" : "");
    }
}

int Expression_binding::rule_kinds() const {
    int kinds = 0;
    for (const Program& program : m_programs) {
        for (std::size_t i = 0; i < program.rule_count(); ++i) {
            const Suggestion_kind kind = program.rule(i).kind;
            kinds |= kind == SUGGESTION_VISIBILITY || kind == SUGGESTION_RANGE ? kind : 0;
        }
    }
    return kinds;
}

bool Expression_binding::offersSuggestion(int mask) {
    return (rule_kinds() & mask) != 0;
}

bool Expression_binding::suggestionUpdated(int mask) {
    return ((mask & SUGGESTION_VISIBILITY) != 0 && m_visibility.updated) ||
           ((mask & SUGGESTION_RANGE) != 0 && m_ranges.updated);
}

void Expression_binding::getSuggestion(int mask, void* out) {
    if (mask == SUGGESTION_VISIBILITY) {
        *static_cast<int*>(out) = m_visibility.value.value_or(VIS_TRUE);
    } else if (mask == SUGGESTION_RANGE) {
        *static_cast<Ranges*>(out) = m_ranges.value.value_or(Ranges());
    }
}

void Expression_binding::clearSuggestion(int mask) {
    if ((mask & SUGGESTION_VISIBILITY) != 0) {
        m_visibility.updated = false;
    }
    if ((mask & SUGGESTION_RANGE) != 0) {
        m_ranges.updated = false;
    }
}

void Expression_binding::setOverrideVarid(var_index_s key, return_s value) {
    key.index = without_unused_levels(key.index);
    m_override_key = key;
    m_override_value = std::move(value);
}

void Expression_binding::clearOverrideVarid() {
    m_override_key.reset();
}

void Expression_binding::displayWarning(std::string text) {
    m_registry->show_warning(text);
}
