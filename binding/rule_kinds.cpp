#include "rule_kinds.h"

#include <iterator>
#include <memory>

#include "engine/suggestions/suggestion_maker.h"

namespace frontpanel {

// Each in a file of engine/suggestions.
namespace binding_engine {
using Maker = std::unique_ptr<Suggestion_maker>;
Maker make_visibility(Engine& engine, const Rule_kind& kind);
Maker make_range(Engine& engine, const Rule_kind& kind);
Maker make_keys(Engine& engine, const Rule_kind& kind);
Maker make_set(Engine& engine, const Rule_kind& kind);
Maker make_warning(Engine& engine, const Rule_kind& kind);
Maker make_access(Engine& engine, const Rule_kind& kind);
}  // namespace binding_engine

namespace {

constexpr Rule_choice ACCESS_RIGHTS[] = {
    {"read-only", Data_entry::READ_ONLY},
    {"read-write", Data_entry::READ_WRITE},
    {"write-only", Data_entry::WRITE_ONLY},
};

constexpr bool NEEDS_CONDITION = true;
constexpr bool JUDGES_TRIES = true;

constexpr Rule_kind KINDS[] = {
    {SUGGESTION_VISIBILITY, "visible", Rule_operands::NONE, nullptr, 0, NEEDS_CONDITION,
     !JUDGES_TRIES, Rule_effect::NONE, Rule_entries::ALL, &binding_engine::make_visibility},
    {SUGGESTION_RANGE, "range", Rule_operands::INTERVALS, nullptr, 0, !NEEDS_CONDITION,
     !JUDGES_TRIES, Rule_effect::LIMITS_ENTRY, Rule_entries::RANGES, &binding_engine::make_range},
    {SUGGESTION_KEYS, "keys", Rule_operands::KEYS, nullptr, 0, !NEEDS_CONDITION, !JUDGES_TRIES,
     Rule_effect::LIMITS_ENTRY, Rule_entries::ENUMERATIONS, &binding_engine::make_keys},
    {SUGGESTION_SET, "set", Rule_operands::WRITTEN_VALUE, nullptr, 0, !NEEDS_CONDITION,
     !JUDGES_TRIES, Rule_effect::WRITES, Rule_entries::ALL, &binding_engine::make_set},
    {SUGGESTION_WARNING, "warn", Rule_operands::TEXT, nullptr, 0, !NEEDS_CONDITION, JUDGES_TRIES,
     Rule_effect::NONE, Rule_entries::WITH_VALUE, &binding_engine::make_warning},
    {SUGGESTION_ACCESS, "access", Rule_operands::NONE, ACCESS_RIGHTS, std::size(ACCESS_RIGHTS),
     !NEEDS_CONDITION, !JUDGES_TRIES, Rule_effect::NONE, Rule_entries::WITH_VALUE,
     &binding_engine::make_access},
};

// The row of a kind; the last one for a kind without a row.
std::size_t row_of(int suggestion) {
    std::size_t row = 0;
    while (row + 1 < std::size(KINDS) && KINDS[row].suggestion != suggestion) {
        ++row;
    }
    return row;
}

}  // namespace

Rule_kinds rule_kinds() {
    return {KINDS, std::size(KINDS)};
}

const Rule_kind* find_rule_kind(int suggestion) {
    const std::size_t row = row_of(suggestion);
    return KINDS[row].suggestion == suggestion ? &KINDS[row] : nullptr;
}

std::string_view rule_word(Suggestion_kind kind) {
    return KINDS[row_of(kind)].word;
}

Rule_entries rule_entries(Suggestion_kind kind) {
    return KINDS[row_of(kind)].entries;
}

}  // namespace frontpanel
