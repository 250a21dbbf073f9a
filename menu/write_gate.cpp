#include <frontpanel_menu/write_gate.h>

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <set>
#include <utility>

#include <frontpanel_binding/device_value.h>
#include <frontpanel_binding/write_journal.h>
#include <frontpanel_editors/number_ranges.h>
#include <frontpanel_editors/time_editor.h>
#include <frontpanel_editors/value_text.h>
#include <frontpanel_menu/choice_entry.h>
#include <frontpanel_menu/entry_access.h>
#include <frontpanel_menu/entry_kind.h>
#include <frontpanel_menu/menu.h>

namespace frontpanel {
namespace {

constexpr const char* READ_ONLY = "read only";
constexpr const char* HIDDEN = "not shown";
constexpr const char* NOT_OFFERED = "not offered";
// Rules may overwrite what was written; a person would set it once more.
constexpr int MOST_ROUNDS = 3;

std::string quoted_text(const return_s& value) {
    return value.rt == STRING ? "\"" + value.s + "\"" : std::to_string(value.i);
}

std::string shown_option(Data_entry& entry, int key) {
    const auto* const choices = dynamic_cast<Choice_entry*>(&entry);
    const std::string text = choices != nullptr ? choices->text_of(key) : "";
    return text.empty() ? std::to_string(key) : text;
}

// As the entry shows a value that it need not hold.
std::string shown_by(Data_entry& entry, const return_s& value) {
    if (value.rt == INTEGER) {
        switch (entry.Get_entry_type()) {
            case Data_entry::RANGE_LEAF:
                return value_text(static_cast<Range_entry&>(entry), value.i);
            case Data_entry::ENUM_LEAF:
                return shown_option(entry, value.i);
            case Data_entry::SLOT_ENUM:
                return "slot " + std::to_string(int64_t{value.i} + 1);
            default:
                break;
        }
    }
    return quoted_text(value);
}

std::string shown_ranges(Range_entry& entry, const Number_ranges& ranges) {
    std::string text;
    for (const Number_range& range : ranges) {
        text += (text.empty() ? "" : ", ") + value_text(entry, range.first);
        if (range.first != range.last) {
            text += ".." + value_text(entry, range.last);
        }
    }
    return text;
}

Number_ranges ranges_of(const Rule_verdict::Ranges& ranges) {
    Number_ranges converted;
    for (const auto& [first, last] : ranges) {
        converted.push_back({first, last});
    }
    return normalized(std::move(converted));
}

// The keys of all options that the product has, by no rule.
bool has_key(Enum_entry& entry, int key) {
    const ControlsT offered = entry.optionControls();
    const auto count = static_cast<int>(entry.Get_size_enum());
    return key >= 0 && key < count &&
           (offered.empty() || std::find(offered.begin(), offered.end(), key) != offered.end());
}

// Whether the entry offers the key now.
bool shows_key(Enum_entry& entry, int key) {
    int first = 0;
    int last = 0;
    int count = 0;
    entry.minMaxSize(&first, &last, &count);
    for (int position = first; count > 0 && position <= last; ++position) {
        int shown = -1;
        if (entry.Get_value(&shown, sizeof shown, position) == 0 && shown == key) {
            return true;
        }
    }
    return false;
}

bool is_address(const std::string& text) {
    in_addr parsed{};
    return inet_pton(AF_INET, text.c_str(), &parsed) == 1;
}

// What is wrong with a value for the parameter itself; empty for nothing.
std::string limit_misfit(const Parameter& parameter, const return_s& value) {
    if (parameter.type != value.rt) {
        return parameter.type == STRING ? "not a text" : "not a number";
    }
    if (value.rt == STRING) {
        if (value.s.find('\0') != std::string::npos) {
            return "holds a zero byte";
        }
        return value.s.size() > parameter.length
                   ? "at most " + std::to_string(parameter.length) + " characters"
                   : "";
    }
    return value.i < parameter.min || value.i > parameter.max
               ? "allowed: " + std::to_string(parameter.min) + ".." + std::to_string(parameter.max)
               : "";
}

bool are_numbers(const Parameter& parameter, const return_s& value) {
    return parameter.type == INTEGER && value.rt == INTEGER;
}

Proposed_values proposed(const std::vector<Wanted_value>& values) {
    Proposed_values all;
    for (const Wanted_value& wanted : values) {
        all[wanted.variable] = wanted.value;
    }
    return all;
}

// What an entry holds, as its device stores it.
return_s held_by(Data_entry& entry) {
    return_s value;
    value.rt = entry.Get_return_type_int_or_string();
    if (value.rt == STRING) {
        std::array<char, MAX_STRING_LENGTH + 1> text{};
        entry.Get_value(text.data(), text.size());
        value.s = text.data();
    } else if (entry.Get_entry_type() == Data_entry::RANGE_LEAF) {
        entry.Get_value(&value.i, sizeof value.i);
    } else {
        value.i = static_cast<Enum_entry&>(entry).Get_integer_enum();
    }
    return value;
}

Write_gate::Outcome refused(Write_gate::Refusal refusal) {
    Write_gate::Outcome outcome;
    outcome.result = Write_gate::Result::REFUSED;
    outcome.refusal = std::move(refusal);
    return outcome;
}

}  // namespace

struct Write_gate::Judged {
    std::string misfit;  // empty: the entry accepts the value
    std::vector<std::string> warnings;
};

std::string Write_gate::Refusal::text() const {
    return name + " " + value + ": " + reason;
}

// ---- judging

// Named by the item on the display, or else by the parameter.
Write_gate::Refusal Write_gate::refusal_of(const Wanted_value& wanted, std::string reason) const {
    for (Data_entry* const entry : m_menu.items_of(wanted.variable)) {
        const std::string name = m_menu.name_of(*entry);
        if (!name.empty()) {
            return {name, shown_by(*entry, wanted.value), std::move(reason)};
        }
    }
    return {"parameter " + std::to_string(wanted.variable.pid), quoted_text(wanted.value),
            std::move(reason)};
}

Write_gate::Verdict Write_gate::check(const std::vector<Wanted_value>& values,
                                      Hidden_items hidden) const {
    Verdict verdict;
    std::set<Device_variable> seen;
    for (const Wanted_value& wanted : values) {
        if (!seen.insert(wanted.variable).second) {
            verdict.refusal = refusal_of(wanted, "is given twice");
            return verdict;
        }
    }
    // The device may have changed while a person thought about a question.
    for (const Wanted_value& wanted : values) {
        for (const Data_entry* const entry : m_menu.items_of(wanted.variable)) {
            m_menu.bindings()->read_again(*entry);
        }
    }
    const Proposed_values foreseen = m_menu.bindings()->foresee(proposed(values));
    for (const Wanted_value& wanted : values) {
        verdict.refusal = judge(wanted, foreseen, hidden, verdict.warnings);
        if (verdict.refusal) {
            verdict.warnings.clear();
            return verdict;
        }
    }
    return verdict;
}

// An item that would accept the value suffices: a person could set it there. What an item allows is within the limits of
// its parameter, and it says so in its own unit.
std::optional<Write_gate::Refusal> Write_gate::judge(const Wanted_value& wanted,
                                                     const Proposed_values& foreseen,
                                                     Hidden_items hidden,
                                                     std::vector<std::string>& warnings) const {
    const Parameter* const parameter =
        m_menu.parameters().find(wanted.variable.pid, index_of(wanted.variable.varidx));
    if (parameter == nullptr) {
        return refusal_of(wanted, "the device has no such parameter");
    }
    const std::string limits = limit_misfit(*parameter, wanted.value);
    if (!limits.empty() && !are_numbers(*parameter, wanted.value)) {
        return refusal_of(wanted, limits);
    }
    std::string reason;
    bool is_accepted = false;
    for (Data_entry* const entry : m_menu.items_of(wanted.variable)) {
        Judged judged = judge(*entry, wanted, foreseen, hidden);
        if (!judged.misfit.empty()) {
            reason = reason.empty() || reason == READ_ONLY ? judged.misfit : reason;
            continue;
        }
        is_accepted = true;
        for (std::string& warning : judged.warnings) {
            if (std::find(warnings.begin(), warnings.end(), warning) == warnings.end()) {
                warnings.push_back(std::move(warning));
            }
        }
    }
    if (!limits.empty()) {
        return refusal_of(wanted, reason.empty() ? limits : reason);
    }
    return is_accepted || reason.empty() ? std::nullopt
                                         : std::optional<Refusal>(refusal_of(wanted, reason));
}

Write_gate::Judged Write_gate::judge(Data_entry& entry, const Wanted_value& wanted,
                                     const Proposed_values& foreseen, Hidden_items hidden) const {
    const Rule_verdict verdict = m_menu.bindings()->judge(entry, foreseen).value_or(Rule_verdict());
    const bool is_access_known = (verdict.failed_kinds & SUGGESTION_ACCESS) == 0;
    const Data_entry::Data_access access =
        is_access_known ? verdict.access.value_or(entry.Get_orig_access_type())
                        : entry.Get_access_type();
    if (access == Data_entry::READ_ONLY && !is_held(wanted)) {
        return {READ_ONLY, {}};
    }
    if (hidden == Hidden_items::REFUSED &&
        (!verdict.is_visible.value_or(true) || entry.isVisible(true, &m_menu.access()) < 0)) {
        return {HIDDEN, {}};
    }
    return {misfit(entry, wanted.value, verdict), verdict.warnings};
}

std::string Write_gate::range_misfit(Range_entry& entry, int value,
                                     const Rule_verdict& verdict) const {
    const bool is_judged = (verdict.failed_kinds & SUGGESTION_RANGE) == 0;
    Number_ranges allowed = is_judged ? m_menu.own_ranges(entry) : allowed_ranges(entry);
    if (verdict.ranges) {
        allowed = common_ranges(allowed, ranges_of(*verdict.ranges));
    }
    if (allows(allowed, value)) {
        return "";
    }
    return allowed.empty() ? "no value allowed" : "allowed: " + shown_ranges(entry, allowed);
}

// Why the entry would not take the value; empty when it would.
std::string Write_gate::misfit(Data_entry& entry, const return_s& value,
                               const Rule_verdict& verdict) const {
    switch (entry.Get_entry_type()) {
        case Data_entry::RANGE_LEAF:
            return range_misfit(static_cast<Range_entry&>(entry), value.i, verdict);
        case Data_entry::ENUM_LEAF: {
            auto& choices = static_cast<Enum_entry&>(entry);
            const bool is_judged = (verdict.failed_kinds & SUGGESTION_KEYS) == 0;
            const bool is_offered =
                is_judged ? has_key(choices, value.i) &&
                                (!verdict.keys || allows(ranges_of(*verdict.keys), value.i))
                          : shows_key(choices, value.i);
            return is_offered ? "" : NOT_OFFERED;
        }
        case Data_entry::SLOT_ENUM:
            return value.i >= 0 && value.i < static_cast<Enum_entry&>(entry).Get_size_enum()
                       ? ""
                       : NOT_OFFERED;
        case Data_entry::IP_LEAF:
            return is_address(value.s) ? "" : "no address";
        case Data_entry::TIME_LEAF:
            return is_time(value.s) ? "" : "no time";
        default:
            return "";
    }
}

// ---- writing

bool Write_gate::is_held(const Wanted_value& wanted) const {
    const std::optional<return_s> held =
        read_value(m_menu.access(), wanted.variable, wanted.value.rt);
    return held && is_same_value(*held, wanted.value);
}

Write_gate::Outcome Write_gate::failure(const Wanted_value& wanted, std::string reason) const {
    Outcome outcome;
    outcome.result = Result::FAILED;
    outcome.refusal = refusal_of(wanted, std::move(reason));
    return outcome;
}

std::string Write_gate::why_unreadable(const Device_variable& variable) const {
    const auto state = m_menu.access().state(variable.pid, variable.varidx);
    return !state || state->reason.empty() ? "cannot be read" : "value unknown: " + state->reason;
}

Write_gate::Outcome Write_gate::write(const std::vector<Wanted_value>& values, Hidden_items hidden,
                                      const std::vector<std::string>& accepted) {
    Verdict verdict = check(values, hidden);
    if (verdict.refusal) {
        return refused(std::move(*verdict.refusal));
    }
    const auto is_accepted = [&accepted](const std::string& warning) {
        return std::find(accepted.begin(), accepted.end(), warning) != accepted.end();
    };
    Outcome outcome;
    if (!std::all_of(verdict.warnings.begin(), verdict.warnings.end(), is_accepted)) {
        outcome.result = Result::WARNED;
        outcome.warnings = std::move(verdict.warnings);
        return outcome;
    }
    // A value that cannot be read could not be restored.
    for (const Wanted_value& wanted : values) {
        if (!read_value(m_menu.access(), wanted.variable, wanted.value.rt)) {
            return refused(refusal_of(wanted, why_unreadable(wanted.variable)));
        }
    }
    Write_journal journal(m_menu.access(), *m_menu.bindings());
    if (std::optional<Outcome> failed = write_all(values, outcome.settlement)) {
        for (const Device_variable& variable : journal.put_back()) {
            failed->not_put_back.push_back(refusal_of({variable, {}}, "").name);
        }
        failed->settlement = m_menu.bindings()->settle();
        return std::move(*failed);
    }
    return outcome;
}

// In rounds, until the device holds all values.
std::optional<Write_gate::Outcome> Write_gate::write_all(const std::vector<Wanted_value>& values,
                                                         Binding_settlement& settlement) {
    for (int round = 1;; ++round) {
        const Wanted_value* overwritten = nullptr;
        for (const Wanted_value& wanted : values) {
            if (is_held(wanted)) {
                continue;
            }
            overwritten = &wanted;
            if (round <= MOST_ROUNDS &&
                write_value(m_menu.access(), wanted.variable, wanted.value) != 0) {
                return failure(wanted, "write failed");
            }
        }
        if (overwritten == nullptr) {
            return std::nullopt;
        }
        if (round > MOST_ROUNDS) {
            return failure(*overwritten, "a rule sets another value");
        }
        const Binding_settlement settled = m_menu.bindings()->settle();
        settlement = settlement.at_rest ? settled : settlement;
        // Rules that follow their entry's own value have seen it only now.
        if (std::optional<Refusal> refusal = check(values, Hidden_items::ACCEPTED).refusal) {
            Outcome outcome = refused(std::move(*refusal));
            outcome.result = Result::FAILED;
            return outcome;
        }
    }
}

// By the device's present values: they may have changed since the editor, or a question, was drawn.
std::string Write_gate::present_misfit(Data_entry& entry, const return_s& value) const {
    m_menu.bindings()->read_again(entry);
    const Rule_verdict verdict = m_menu.bindings()->judge(entry, {}).value_or(Rule_verdict());
    if (verdict.access == Data_entry::READ_ONLY) {
        return READ_ONLY;
    }
    return verdict.is_visible.value_or(true) ? misfit(entry, value, verdict) : HIDDEN;
}

Write_gate::Outcome Write_gate::commit(Data_entry& entry) {
    Wanted_value wanted{{entry.Get_pid(), varidx_of(*entry.Get_index())}, held_by(entry)};
    const Refusal unjudged{entry.Get_name(), shown_by(entry, wanted.value), ""};
    const auto refuse = [&unjudged](std::string reason) {
        return refused({unjudged.name, unjudged.value, std::move(reason)});
    };
    if (entry.Get_access_type() == Data_entry::READ_ONLY) {
        return refuse(READ_ONLY);
    }
    const Parameter* const parameter =
        is_live(entry) ? nullptr : m_menu.parameters().find(entry.Get_pid(), *entry.Get_index());
    if (parameter != nullptr) {
        const std::string limits = limit_misfit(*parameter, wanted.value);
        std::string reason;
        if (limits.empty() || are_numbers(*parameter, wanted.value)) {
            reason = present_misfit(entry, wanted.value);
        }
        reason = reason.empty() ? limits : reason;
        if (!reason.empty()) {
            return refuse(std::move(reason));
        }
    }
    return frontpanel::commit(entry, m_menu.access()) == 0 ? Outcome()
                                                           : failure(wanted, "write failed");
}

int Write_gate::put_back(Data_entry& entry) {
    return frontpanel::commit(entry, m_menu.access());
}

}  // namespace frontpanel
