#include "engine/engine.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <limits>
#include <utility>

#include <frontpanel_binding/parameter_address.h>
#include <frontpanel_data/range_entry.h>

#include "engine/reading.h"

namespace frontpanel::binding_engine {
namespace {

using binding_language::Program;
using binding_language::Rule;
using binding_language::Value;
using binding_language::Value_type;

constexpr int64_t LOWEST = std::numeric_limits<int32_t>::min();
constexpr int64_t HIGHEST = std::numeric_limits<int32_t>::max();

// The diagnostic lines of bindings show under this mask.
constexpr uint32_t BINDING_MASK = 0x21;

// Keys that a rule may allow an entry whose number of options is not known.
constexpr int64_t MOST_KEYS = 4096;

int32_t clamped(int64_t value) {
    return static_cast<int32_t>(std::clamp(value, LOWEST, HIGHEST));
}

// What a range entry allows now; nothing for other entries.
std::optional<Interval> range_of(Data_entry* entry) {
    auto* const range_entry = dynamic_cast<Range_entry*>(entry);
    if (range_entry == nullptr) {
        return std::nullopt;
    }
    return Interval{range_entry->Get_min(), range_entry->Get_max()};
}

// Overlapping ranges would make a step pass the same values twice.
void merge(std::vector<Interval>& intervals) {
    std::sort(intervals.begin(), intervals.end(),
              [](const Interval& left, const Interval& right) { return left.low < right.low; });
    std::size_t merged = 0;
    for (const Interval& interval : intervals) {
        if (merged > 0 && int64_t{interval.low} <= int64_t{intervals[merged - 1].high} + 1) {
            intervals[merged - 1].high = std::max(intervals[merged - 1].high, interval.high);
        } else {
            intervals[merged++] = interval;
        }
    }
    intervals.resize(merged);
}

std::string interval_text(int64_t low, int64_t high) {
    return low == high ? std::to_string(low) : std::to_string(low) + ".." + std::to_string(high);
}

std::string joined(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts) {
        all += (all.empty() ? "" : ", ") + text;
    }
    return all;
}

std::string ranges_text(const std::vector<Interval>& intervals) {
    std::vector<std::string> texts;
    texts.reserve(intervals.size());
    for (const Interval& interval : intervals) {
        texts.push_back(std::to_string(interval.low) + ".." + std::to_string(interval.high));
    }
    return joined(texts);
}

// "0, 1, 3..5"
std::string keys_text(const std::vector<Interval>& keys) {
    std::vector<std::string> texts;
    texts.reserve(keys.size());
    for (const Interval& interval : keys) {
        texts.push_back(interval_text(interval.low, interval.high));
    }
    return texts.empty() ? "all" : joined(texts);
}

// Sorted keys, neighbours drawn together.
std::string keys_text(const std::vector<int>& keys) {
    std::vector<Interval> intervals;
    intervals.reserve(keys.size());
    for (const int key : keys) {
        intervals.push_back({key, key});
    }
    merge(intervals);
    return keys_text(intervals);
}

const char* access_text(Data_entry::Data_access access) {
    switch (access) {
        case Data_entry::READ_ONLY:
            return "read-only";
        case Data_entry::READ_WRITE:
            return "read-write";
        case Data_entry::WRITE_ONLY:
            return "write-only";
    }
    return "unknown";
}

std::string_view bytes_of(const GetSetS& request) {
    return std::string_view(reinterpret_cast<const char*>(request.buffer), request.length);
}

std::string written_text(const GetSetS& request) {
    if (request.rt == STRING) {
        return quoted(bytes_of(request));
    }
    int32_t value = 0;
    std::memcpy(&value, request.buffer, sizeof value);
    return std::to_string(value);
}

}  // namespace

Engine::Engine(Core& core, const var_index_s& control) : m_core(core), m_control(control) {
    m_core.cascade.add(*this);
}

Engine::~Engine() {
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
    return m_own != nullptr ? address_text(m_control) : "an entry";
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
    for (std::size_t number = 0; number < list.program.rule_count(); ++number) {
        const Rule rule = list.program.rule(number);
        m_rule_kinds |= rule.kind;
        // A warning sees the value that is tried, and what the device has then.
        m_follows_own = m_follows_own ||
                        (rule.kind != SUGGESTION_WARNING && list.program.reads_own_value(rule));
    }
    m_reads_own = m_reads_own || list.program.own_type().has_value();
}

void Engine::refresh_options(Bound_list& list) {
    if (list.options_version == m_core.options.version()) {
        return;
    }
    list.options_version = m_core.options.version();
    for (std::size_t number = 0; number < list.options.size(); ++number) {
        list.options[number] = m_core.options.has(list.program.option_name(number));
    }
}

const Cached_parameter* Engine::find_written(const Bound_list& list, const Rule& rule) const {
    return m_core.parameters.find(list.program.parameter(rule.target).key);
}

Cached_parameter* Engine::find_own() {
    return m_control.var != Data_entry::PID_NONE ? &m_core.parameters.at(m_control) : nullptr;
}

// Everything that the rules read, and the entry's own parameter if they do.
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
        m_errors.push_back("not evaluated: entries that limit each other do not come to rest");
        return false;
    }
    if (!tries && m_core.cascade.is_too_deep()) {
        m_core.cascade.mark(*this);
        return true;
    }
    Reading reading(*this, tries);
    if (tries) {
        if (updates) {
            decide_warnings(reading);
        }
    } else {
        update_suggestions(reading, updates);
    }
    return m_errors.empty();
}

void Engine::update_suggestions(Reading& reading, bool updates) {
    int visibility = VIS_FALSE;
    if (offers(SUGGESTION_VISIBILITY) && decide_visibility(reading, visibility) && updates) {
        m_visibility.suggest(visibility);
    }
    if ((m_rule_kinds & SUGGESTION_RANGE) != 0 && decide_ranges(reading) && updates) {
        m_ranges.suggest(m_core.intervals);
    }
    if (offers(SUGGESTION_KEYS) && decide_keys(reading) && updates) {
        const bool was_updated = std::exchange(m_keys.is_updated, false);
        m_keys.suggest(m_core.keys);
        m_announces_keys = m_announces_keys || m_keys.is_updated;
        m_keys.is_updated = m_keys.is_updated || was_updated;
    }
    if (offers(SUGGESTION_SET) && decide_requests(reading) && updates) {
        m_requests.is_known = true;  // to write nothing is no news
        m_requests.suggest(m_core.requests);
    }
    Data_entry::Data_access access = Data_entry::READ_ONLY;
    if (offers(SUGGESTION_ACCESS) && decide_access(reading, access) && updates) {
        m_access.suggest(access);
    }
    if (updates) {
        m_was_evaluated = true;
        m_core.cascade.evaluated(*this);
    }
}

// `take` judges each rule that holds. False when a rule or `take` failed.
template <typename Take>
bool Engine::each_rule_that_holds(Suggestion_kind kind, Reading& reading, Take take) {
    for (Bound_list& list : m_lists) {
        reading.enter(list);
        for (std::size_t number = 0; number < list.program.rule_count(); ++number) {
            const Rule rule = list.program.rule(number);
            bool holds = false;
            if (rule.kind != kind) {
                continue;
            }
            if (!reading.condition(rule, holds)) {
                if (kind == SUGGESTION_WARNING) {
                    continue;  // a warning that cannot be judged silences no other
                }
                return false;
            }
            const Step step = holds ? take(rule) : Step::NEXT;
            if (step != Step::NEXT) {
                return step == Step::LAST;
            }
        }
    }
    return true;
}

bool Engine::decide_visibility(Reading& reading, int& visibility) {
    visibility = VIS_FALSE;
    return each_rule_that_holds(SUGGESTION_VISIBILITY, reading, [&](const Rule&) {
        visibility = VIS_TRUE;
        return Step::LAST;
    });
}

bool Engine::decide_ranges(Reading& reading) {
    m_core.intervals.clear();
    const bool decided = each_rule_that_holds(
        SUGGESTION_RANGE, reading, [&](const Rule& rule) { return take_intervals(reading, rule); });
    if (!decided) {
        return false;
    }
    merge(m_core.intervals);
    return !m_core.intervals.empty() || fall_back_to_range();
}

Engine::Step Engine::take_intervals(Reading& reading, const Rule& rule) {
    for (std::size_t number = 0; number < rule.operand_count; number += 2) {
        int64_t low = 0;
        int64_t high = 0;
        if (!reading.interval(rule, number, low, high)) {
            return Step::FAILED;
        }
        if (low > HIGHEST || high < LOWEST) {
            reading.report(rule, interval_text(low, high) + " holds no number of 32 bits");
            return Step::FAILED;
        }
        m_core.intervals.push_back({clamped(low), clamped(high)});
    }
    return Step::NEXT;
}

// An empty suggestion would leave the entry with its last, narrower range.
bool Engine::fall_back_to_range() {
    const std::optional<Interval>& range = m_fallback_range ? m_fallback_range : m_entry_range;
    if (!range) {
        m_errors.push_back("no range rule holds, and there is no fallback range");
        return false;
    }
    m_core.intervals.push_back(*range);
    return true;
}

bool Engine::decide_keys(Reading& reading) {
    m_core.intervals.clear();
    bool any = false;
    const bool decided = each_rule_that_holds(SUGGESTION_KEYS, reading, [&](const Rule& rule) {
        any = true;
        return take_keys(reading, rule);
    });
    if (!decided) {
        return false;
    }
    if (!any) {
        fall_back_to_keys();
    }
    return list_keys();
}

Engine::Step Engine::take_keys(Reading& reading, const Rule& rule) {
    for (std::size_t number = 0; number < rule.operand_count; number += 2) {
        int64_t low = 0;
        int64_t high = 0;
        if (!reading.interval(rule, number, low, high)) {
            return Step::FAILED;
        }
        if (m_options == nullptr && int64_t{clamped(high)} - clamped(low) >= MOST_KEYS) {
            reading.report(rule, "more than " + std::to_string(MOST_KEYS) + " keys");
            return Step::FAILED;
        }
        take_keys(low, high);
    }
    return Step::NEXT;
}

// Keys that the entry does not have are left out, but one: with an empty list the entry would show all.
void Engine::take_keys(int64_t low, int64_t high) {
    low = clamped(low);
    high = clamped(high);
    if (m_options != nullptr) {
        const int64_t last = int64_t{m_options->Get_size_enum()} - 1;
        if (high < 0 || low > last) {
            high = low;
        } else {
            low = std::max<int64_t>(low, 0);
            high = std::min(high, last);
        }
    }
    m_core.intervals.push_back({clamped(low), clamped(high)});
}

// All keys, one by one: an empty list would allow none to an entry that has control options as well.
void Engine::fall_back_to_keys() {
    if (m_options != nullptr && m_options->Get_size_enum() > 0) {
        take_keys(0, HIGHEST);
    }
}

// Writes the intervals out, each key once: rules may name the same keys over and over.
bool Engine::list_keys() {
    m_core.keys.clear();
    merge(m_core.intervals);
    int64_t count = 0;
    for (const Interval& interval : m_core.intervals) {
        count += int64_t{interval.high} - interval.low + 1;
    }
    if (m_options == nullptr && count > MOST_KEYS) {
        m_errors.push_back("the rules allow more than " + std::to_string(MOST_KEYS) + " keys");
        return false;
    }
    for (const Interval& interval : m_core.intervals) {
        for (int64_t key = interval.low; key <= interval.high; ++key) {
            m_core.keys.push_back(static_cast<int>(key));
        }
    }
    return true;
}

bool Engine::decide_requests(Reading& reading) {
    m_core.requests.clear();
    return each_rule_that_holds(SUGGESTION_SET, reading,
                                [&](const Rule& rule) { return take_request(reading, rule); });
}

Engine::Step Engine::take_request(Reading& reading, const Rule& rule) {
    Value value;
    if (!reading.value(rule, reading.program().operand(rule, 0), value)) {
        return Step::FAILED;
    }
    const auto target = reading.program().parameter(rule.target);
    GetSetS request{};
    request.varid = target.key.var;
    request.varidx = varidx_of(target.key.index);
    request.rt = target.key.rt;
    if (value.type == Value_type::TEXT) {
        if (value.text.size() > sizeof request.buffer) {
            reading.report(rule, "a text of " + std::to_string(value.text.size()) +
                                     " bytes cannot be written, at most " +
                                     std::to_string(sizeof request.buffer));
            return Step::FAILED;
        }
        request.length = static_cast<uint32_t>(value.text.size());
        std::copy(value.text.begin(), value.text.end(), request.buffer);
    } else {
        if (value.number < LOWEST || value.number > HIGHEST) {
            reading.report(rule, std::to_string(value.number) + " is no number of 32 bits");
            return Step::FAILED;
        }
        const auto number = static_cast<int32_t>(value.number);
        request.length = sizeof number;
        std::memcpy(request.buffer, &number, sizeof number);
    }
    m_core.requests.push_back(request);
    return Step::NEXT;
}

bool Engine::decide_access(Reading& reading, Data_entry::Data_access& access) {
    access = m_entry != nullptr ? m_entry->Get_orig_access_type() : Data_entry::READ_WRITE;
    return each_rule_that_holds(SUGGESTION_ACCESS, reading, [&](const Rule& rule) {
        access = rule.access;
        return Step::LAST;
    });
}

// The warnings of one try. An entry refuses a value that raises news, and takes it when it is tried again: so
// what a person agreed to is stored. A try without any is no news, and arms the next.
void Engine::decide_warnings(Reading& reading) {
    m_warnings.swap(m_warnings_before);
    const std::size_t count_before = std::exchange(m_warning_count, 0);
    each_rule_that_holds(SUGGESTION_WARNING, reading, [&](const Rule& rule) {
        Value text;
        if (!reading.value(rule, reading.program().operand(rule, 0), text)) {
            return Step::NEXT;
        }
        if (m_warning_count == m_warnings.size()) {
            m_warnings.emplace_back();
        }
        m_warnings[m_warning_count++].assign(text.text);
        return Step::NEXT;
    });
    const bool is_armed =
        std::exchange(m_warning_round, m_core.warning_round) != m_core.warning_round;
    const bool is_same =
        !is_armed && m_warning_count == count_before &&
        std::equal(m_warnings.cbegin(), end_of_warnings(), m_warnings_before.cbegin());
    m_warns_anew = m_warning_count > 0 && (m_warns_anew || !is_same);
}

void Engine::report_cascade(const std::string& path) {
    m_errors.push_back("the writes do not come to rest: " + path);
    print_error(m_errors.back());
}

// The list is forgotten, so that the next evaluation finds it new and the entry writes again.
void Engine::write_failed(uint32_t pid, uint32_t varidx, std::string_view bytes, int result) {
    const auto failed =
        std::find_if(m_requests.value.begin(), m_requests.value.end(), [&](const GetSetS& request) {
            return request.varid == pid && request.varidx == varidx && bytes_of(request) == bytes;
        });
    if (failed != m_requests.value.end()) {
        print_error("cannot write " + request_text(*failed) + ": device result " +
                    std::to_string(result));
        m_requests.value.clear();
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

// ---- suggestions

// Entries with options ask for ranges and are told keys.
int Engine::offered() const {
    return m_rule_kinds | ((m_rule_kinds & SUGGESTION_KEYS) != 0 ? SUGGESTION_RANGE : 0);
}

std::vector<std::string>::const_iterator Engine::end_of_warnings() const {
    return m_warnings.begin() + static_cast<std::ptrdiff_t>(m_warning_count);
}

int Engine::updated() const {
    return (m_visibility.is_updated ? SUGGESTION_VISIBILITY : 0) |
           (m_ranges.is_updated || m_announces_keys ? SUGGESTION_RANGE : 0) |
           (m_keys.is_updated ? SUGGESTION_KEYS : 0) |
           (m_requests.is_updated ? SUGGESTION_SET : 0) | (m_warns_anew ? SUGGESTION_WARNING : 0) |
           (m_access.is_updated ? SUGGESTION_ACCESS : 0);
}

void Engine::get(int mask, void* out) const {
    switch (mask) {
        case SUGGESTION_VISIBILITY:
            *static_cast<int*>(out) = m_visibility.is_known ? m_visibility.value : VIS_TRUE;
            break;
        case SUGGESTION_RANGE: {
            auto& ranges = *static_cast<std::vector<std::vector<int>>*>(out);
            ranges.clear();
            for (const Interval& interval : m_ranges.value) {
                ranges.push_back({interval.low, interval.high});
            }
            break;
        }
        case SUGGESTION_KEYS:
            static_cast<std::vector<std::vector<int>>*>(out)->assign(1, m_keys.value);
            break;
        case SUGGESTION_SET:
            *static_cast<std::vector<GetSetS>*>(out) = m_requests.value;
            break;
        case SUGGESTION_WARNING:
            static_cast<std::vector<std::string>*>(out)->assign(m_warnings.begin(),
                                                                end_of_warnings());
            break;
        case SUGGESTION_ACCESS:
            if (m_access.is_known) {
                *static_cast<Data_entry::Data_access*>(out) = m_access.value;
            }
            break;
        default:
            break;
    }
}

void Engine::clear(int mask) {
    if ((mask & SUGGESTION_VISIBILITY) != 0) {
        m_visibility.is_updated = false;
    }
    if ((mask & SUGGESTION_RANGE) != 0) {
        m_ranges.is_updated = false;
        // Who took the keys at the announcement clears no more than that.
        m_announces_keys = false;
        m_keys.is_updated = false;
    }
    if ((mask & SUGGESTION_KEYS) != 0) {
        m_keys.is_updated = false;
    }
    if ((mask & SUGGESTION_SET) != 0) {
        m_requests.is_updated = false;
    }
    if ((mask & SUGGESTION_WARNING) != 0) {
        m_warns_anew = false;
    }
    if ((mask & SUGGESTION_ACCESS) != 0) {
        m_access.is_updated = false;
    }
}

void Engine::set_override(const var_index_s& key, return_s value) {
    m_override_key = normal_key(key);
    m_override_value = std::move(value);
}

// Null when nobody refers to it, or the value is of another type than the key says.
Cached_parameter* Engine::overridden() {
    const bool is_usable = m_override_key && m_override_key->rt == m_override_value.rt &&
                           m_override_value.rt != INVALID_TYPE;
    return is_usable ? m_core.parameters.find(*m_override_key) : nullptr;
}

std::vector<std::string> Engine::suggestion_lines() const {
    std::vector<std::string> lines;
    const auto add = [&](const std::string& line, bool is_updated) {
        lines.push_back(line + (is_updated ? " (new)" : ""));
    };
    if (m_visibility.is_known) {
        add(m_visibility.value > 0 ? "visible" : "hidden", m_visibility.is_updated);
    }
    if (m_ranges.is_known) {
        add("range " + ranges_text(m_ranges.value), m_ranges.is_updated);
    }
    if (m_keys.is_known) {
        add("keys " + keys_text(m_keys.value), m_keys.is_updated);
    }
    if (m_requests.is_known && !m_requests.value.empty()) {
        std::vector<std::string> requests;
        for (const GetSetS& request : m_requests.value) {
            requests.push_back(request_text(request));
        }
        add("set " + joined(requests), m_requests.is_updated);
    }
    for (std::size_t number = 0; number < m_warning_count; ++number) {
        add("warn " + quoted(m_warnings[number]), m_warns_anew);
    }
    if (m_access.is_known) {
        add(std::string("access ") + access_text(m_access.value), m_access.is_updated);
    }
    return lines;
}

// By the name that a rule of the entry gives the parameter.
std::string Engine::request_text(const GetSetS& request) const {
    for (const Bound_list& list : m_lists) {
        for (std::size_t number = 0; number < list.program.parameter_count(); ++number) {
            const auto parameter = list.program.parameter(number);
            if (parameter.is_written && parameter.key.var == request.varid &&
                varidx_of(parameter.key.index) == request.varidx) {
                return bracketed(parameter.name) + " = " + written_text(request);
            }
        }
    }
    return "parameter " + std::to_string(request.varid) + " = " + written_text(request);
}

// ---- explanation

Binding_explanation Engine::explain() {
    Binding_explanation explanation;
    explanation.entry = name();
    std::vector<std::string> errors;
    errors.swap(m_errors);
    Reading reading(*this, false);
    for (Bound_list& list : m_lists) {
        reading.enter(list);
        for (std::size_t number = 0; number < list.program.rule_count(); ++number) {
            explanation.rules.push_back(explain_rule(reading, list.program.rule(number)));
        }
    }
    m_errors.swap(errors);
    explanation.suggestions = suggestion_lines();
    return explanation;
}

Rule_explanation Engine::explain_rule(Reading& reading, const Rule& rule) {
    Rule_explanation explanation{rule.kind, rule.line, std::string(rule.source), {}, {}, {}};
    reading.note_values(&explanation.seen);
    bool holds = false;
    const bool is_judged = reading.condition(rule, holds);
    const std::optional<std::string> demand =
        is_judged && holds ? demand_text(reading, rule) : std::nullopt;
    if (is_judged && !holds) {
        explanation.outcome = Rule_explanation::Outcome::DOES_NOT_HOLD;
    } else if (demand) {
        explanation.outcome = Rule_explanation::Outcome::HOLDS;
        explanation.result = *demand;
    } else {
        explanation.outcome = Rule_explanation::Outcome::FAILED;
        explanation.result = reading.last_mistake();
    }
    reading.note_values(nullptr);
    return explanation;
}

// What a rule that holds asks for; nothing when it fails.
std::optional<std::string> Engine::demand_text(Reading& reading, const Rule& rule) {
    switch (rule.kind) {
        case SUGGESTION_VISIBILITY:
            return "visible";
        case SUGGESTION_ACCESS:
            return access_text(rule.access);
        case SUGGESTION_RANGE:
            m_core.intervals.clear();
            if (take_intervals(reading, rule) == Step::FAILED) {
                return std::nullopt;
            }
            return ranges_text(m_core.intervals);
        case SUGGESTION_KEYS:
            m_core.intervals.clear();
            if (take_keys(reading, rule) == Step::FAILED) {
                return std::nullopt;
            }
            merge(m_core.intervals);
            return keys_text(m_core.intervals);
        case SUGGESTION_SET:
            m_core.requests.clear();
            if (take_request(reading, rule) == Step::FAILED) {
                return std::nullopt;
            }
            return request_text(m_core.requests.back());
        case SUGGESTION_WARNING: {
            Value text;
            if (!reading.value(rule, reading.program().operand(rule, 0), text)) {
                return std::nullopt;
            }
            return quoted(text.text);
        }
    }
    return std::nullopt;
}

}  // namespace frontpanel::binding_engine
