// Compiled lists: what they hold, and that no damage to one does harm.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "language/list_checker.h"
#include "language/list_format.h"
#include "unit/binding/language/language_fixture.h"
#include "unit/binding/language/program_exercise.h"

using namespace frontpanel;

namespace {

using namespace frontpanel::binding_language;
using support::Language;
using support::repair;
using testing::ElementsAre;
using testing::IsEmpty;

// ---- what a list holds

TEST(Binding_list, RulesAreTheSourcesRulesInItsOrder) {
    Language language;
    const Program program = language.program(
        "\n visible if [gain] > 3 ; range 0..[limit], 50..60 if [mode]\n"
        "keys 3, 5..[gain]# keys\nset [title] = \"a\"\n\n\tset [mode] = 1 if 1;warn \"w\" if 2 \r\n"
        "access write-only if 3;access read-only");
    struct Expected {
        Suggestion_kind kind;
        int line;
        const char* source;
        std::size_t operands;
        bool has_condition;
    };
    const Expected RULES[] = {
        {SUGGESTION_VISIBILITY, 2, "visible if [gain] > 3", 0, true},
        {SUGGESTION_RANGE, 2, "range 0..[limit], 50..60 if [mode]", 4, true},
        {SUGGESTION_KEYS, 3, "keys 3, 5..[gain]", 4, false},
        {SUGGESTION_SET, 4, "set [title] = \"a\"", 1, false},
        {SUGGESTION_SET, 6, "set [mode] = 1 if 1", 1, true},
        {SUGGESTION_WARNING, 6, "warn \"w\" if 2", 1, true},
        {SUGGESTION_ACCESS, 7, "access write-only if 3", 0, true},
        {SUGGESTION_ACCESS, 7, "access read-only", 0, false},
    };
    ASSERT_EQ(program.rule_count(), std::size(RULES));
    for (std::size_t i = 0; i < program.rule_count(); ++i) {
        SCOPED_TRACE(RULES[i].source);
        const Rule rule = program.rule(i);
        EXPECT_EQ(rule.kind, RULES[i].kind);
        EXPECT_EQ(rule.line, RULES[i].line);
        EXPECT_EQ(rule.source, RULES[i].source);
        EXPECT_EQ(rule.operand_count, RULES[i].operands);
        EXPECT_EQ(rule.condition.empty(), !RULES[i].has_condition);
    }
    EXPECT_EQ(program.parameter(program.rule(3).target()).name, "title");
    EXPECT_EQ(program.parameter(program.rule(4).target()).name, "mode");
    EXPECT_EQ(program.rule(6).detail, Data_entry::WRITE_ONLY);
    EXPECT_EQ(program.rule(7).detail, Data_entry::READ_ONLY);
}

TEST(Binding_list, OperandsAreTheEndsOfTheRulesRanges) {
    Language language;
    const Program program =
        language.program("range 9..[limit], -2..[gain] + 1; keys 3, [gain]..7, 8 if 0");
    const auto values_of = [&](std::size_t number) {
        std::vector<std::string> values;
        const Rule rule = program.rule(number);
        for (std::size_t i = 0; i < rule.operand_count; ++i) {
            const Code code = program.operand(rule, i);
            values.push_back(code.empty() ? "" : language.run(program, code));
        }
        return values;
    };
    EXPECT_THAT(values_of(0), ElementsAre("9", "40", "-2", "6"));
    EXPECT_THAT(values_of(1), ElementsAre("3", "", "5", "7", "8", ""));
    EXPECT_EQ(language.run(program, program.rule(1).condition), "0");
}

std::string shown(const Program_parameter& parameter) {
    std::string text = std::string(parameter.name) + "=" +
                       (parameter.key.rt == STRING ? "s" : "i") + std::to_string(parameter.key.var);
    for (uint32_t level = 0; level < parameter.key.index.m_index_num; ++level) {
        text += "." + std::to_string(parameter.key.index.m_index[level]);
    }
    return text + (parameter.is_read ? " read" : "") + (parameter.is_written ? " written" : "");
}

TEST(Binding_list, ParametersAreListedOnceWithTheirUses) {
    Language language;
    const Program program = language.program(
        "set [title] = \"{[gain]} {[100]} {[100.0]} {[100.3.1]}\" if [406@s] == [407@s]\n"
        "set [406] = [4294967294.65535.65535]; set [gain] = 1; set [mode] = value");
    std::vector<std::string> parameters;
    for (std::size_t i = 0; i < program.parameter_count(); ++i) {
        parameters.push_back(shown(program.parameter(i)));
    }
    EXPECT_THAT(parameters, ElementsAre("title=s200 written", "gain=i100 read written",
                                        "100.0=i100.0 read", "100.3.1=i100.3.1 read",
                                        "406@s=s406 read", "407@s=s407 read", "406=i406 written",
                                        "4294967294.65535.65535=i4294967294.65535.65535 read",
                                        "mode=i101 written"));
}

TEST(Binding_list, ARuleTellsWhatItReads) {
    Language language;
    const Program program = language.program(
        "range [limit]..[gain] if [mode] and [gain]; set [mode] = 3; visible if value > 1");
    std::vector<std::size_t> reads;
    program.append_reads(program.rule(0), reads);
    EXPECT_THAT(reads, ElementsAre(0U, 1U, 2U));
    program.append_reads(program.rule(0), reads);
    EXPECT_EQ(reads.size(), 6U);
    reads.clear();
    program.append_reads(program.rule(1), reads);
    EXPECT_THAT(reads, IsEmpty());
    EXPECT_FALSE(program.reads_own_value(program.rule(0)));
    EXPECT_TRUE(program.reads_own_value(program.rule(2)));
}

TEST(Binding_list, OptionsAndTheTypeOfTheOwnValueAreKept) {
    Language language;
    const Program with_options =
        language.program("visible if has_option(\"gps\") or has_option(\"a {{b}}\")");
    ASSERT_EQ(with_options.option_count(), 2U);
    EXPECT_EQ(with_options.option_name(0), "gps");
    EXPECT_EQ(with_options.option_name(1), "a {b}");
    EXPECT_EQ(with_options.own_type(), std::nullopt);
    EXPECT_EQ(language.program("visible if value").own_type(), Value_type::INTEGER);
    language.own_type = STRING;
    EXPECT_EQ(language.program("warn value").own_type(), Value_type::TEXT);
}

std::string text_of(const Rule_note& note) {
    std::string text = std::to_string(note.kind) + "@" + std::to_string(note.offset);
    if (note.numbers) {
        text +=
            " " + std::to_string(note.numbers->first) + ".." + std::to_string(note.numbers->second);
    }
    if (note.text_length) {
        text += " " + std::to_string(*note.text_length) + " bytes";
    }
    return text;
}

std::vector<std::string> notes_of(const std::string& source) {
    Language language;
    const Compile_result compiled = language.compile(source);
    EXPECT_TRUE(compiled.ok()) << compiled.error->text();
    std::vector<std::string> notes;
    for (const Rule_note& note : compiled.notes) {
        notes.push_back(text_of(note));
    }
    return notes;
}

TEST(Binding_list, EachRangeAndItsNumbersAreNoted) {
    EXPECT_THAT(
        notes_of("range 5..2, 7..7, 0..[limit] if [mode]; range 1 + 1..3; "
                 "range -2147483648..2147483647"),
        ElementsAre("2@6 2..5", "2@12 7..7", "2@18", "2@46", "2@62 -2147483648..2147483647"));
}

TEST(Binding_list, EachKeyAndItsNumbersAreNoted) {
    EXPECT_THAT(notes_of("keys 1, 4..2, [mode]..9, 3 if value"),
                ElementsAre("4@5 1..1", "4@8 2..4", "4@14", "4@25 3..3"));
}

TEST(Binding_list, WhatIsWrittenIsNotedWithItsParameter) {
    const std::string source =
        "set [mode] = -3; set [title] = \"a \\\"b\\\"\"; set [title] = \"{[mode]}\"; set [9.3.1] = value";
    EXPECT_THAT(notes_of(source), ElementsAre("8@13 -3..-3", "8@31 5 bytes", "8@56", "8@82"));
    Language language;
    const Compile_result compiled = language.compile(source);
    EXPECT_EQ(compiled.notes[1].written.rt, STRING);
    EXPECT_EQ(compiled.notes[3].written.var, 9U);
    EXPECT_EQ(compiled.notes[3].written.index.m_index_num, 2U);
    EXPECT_EQ(compiled.notes[3].written.index.m_index[0], 3);
    EXPECT_EQ(compiled.notes[3].written.index.m_index[1], 1);
}

TEST(Binding_list, OtherRulesAreNotedWhereTheyBegin) {
    EXPECT_THAT(notes_of("visible if 1; warn \"a\"\naccess read-only if [mode]"),
                ElementsAre("1@0", "16@14", "32@23"));
}

TEST(Binding_list, ParametersAreToldWhereTheyAreFirstNamed) {
    Language language;
    const std::string source = "visible if [mode] + [9.1] > [mode]; set [7@s] = \"a\"";
    std::vector<std::pair<uint32_t, std::string>> named;
    for (const Named_parameter& parameter : language.compile(source).parameters) {
        named.emplace_back(parameter.key.var, source.substr(parameter.offset, 4));
    }
    ASSERT_EQ(named.size(), 3U);
    EXPECT_EQ(named[0].second, "mode");
    EXPECT_EQ(named[1], std::pair(9U, std::string("9.1]")));
    EXPECT_EQ(named[2], std::pair(7U, std::string("7@s]")));
}

TEST(Binding_list, AMovedProgramKeepsItsTexts) {
    Language language;
    Program first = language.program("warn \"{[gain]} \\\"dB\\\"\" if [mode]");
    const Program second = std::move(first);
    EXPECT_EQ(second.rule(0).source, "warn \"{[gain]} \\\"dB\\\"\" if [mode]");
    EXPECT_EQ(language.run(second, second.operand(second.rule(0), 0)), "\"5 \"dB\"\"");
}

// ---- lists that are refused

// Texts with every kind of rule, instruction and section.
const char* const SOURCES[] = {
    "visible if 1",
    "visible if [gain] > 3 and not [mode] == 1 or value in 1..5; warn \"a {{b}} {[title]}\"",
    "range 0..[limit], -5..5000000000 - [gain] if has_option(\"gps\")\nkeys 1, 2..[gain]",
    "set [title] = [mode] ? \"on\" : [gain] > 4 ? \"{[gain]}\" : \"\\\"\" if [title] != \"x\"",
    "set [limit] = min(1, max([gain], abs(-[delta]), length([title]))) * 2 / 3 % 4 - 5 + value",
    "visible if [gain] in {1, 2..3, [mode]} or [title] in {\"a\", [title]}",
    "access read-only if 1 < 2 and 2 <= 2 and 3 >= 3 and 4 != 5; access read-write",
};

std::string refusal(const BindingListT& list) {
    std::string why;
    return Program::decode(list, why) ? "accepted" : why;
}

TEST(Binding_list, WhatIsNoListIsRefused) {
    EXPECT_EQ(refusal({}), "it is too short for a binding list");
    EXPECT_EQ(refusal({0, 7}), "it is too short for a binding list");
    EXPECT_EQ(refusal(BindingListT(100)), "not a binding list");
    Language language;
    BindingListT list = language.compile("visible if 1").list;
    EXPECT_EQ(refusal(list), "accepted");
    BindingListT other = list;
    other[HEADER_VERSION] = 2;
    EXPECT_EQ(refusal(other), "unknown version 2");
    other = list;
    other.push_back(0);
    EXPECT_EQ(refusal(other), "its length is wrong");
    other = list;
    other.back() ^= 1;
    EXPECT_EQ(refusal(other), "its checksum is wrong");
}

// A list with one number changed and a right checksum.
class Damaged_list {
public:
    explicit Damaged_list(const char* source) {
        m_list = m_language.compile(source).list;
        std::string why;
        EXPECT_TRUE(check_list(m_list, m_sections, why)) << why;
    }
    std::string with(std::size_t at, int number) const {
        BindingListT list = m_list;
        list.at(at) = number;
        list[HEADER_CHECKSUM] = list_checksum(list.data(), list.size());
        return refusal(list);
    }
    std::string with_parameter(Parameter_field field, int number) const {
        return with(m_sections.parameters + static_cast<std::size_t>(field), number);
    }
    std::string with_rule(Rule_field field, int number) const {
        return with(m_sections.rules + static_cast<std::size_t>(field), number);
    }
    std::string with_operation(std::size_t instruction, Operation operation) const {
        return with(m_sections.code + instruction * INSTRUCTION_SIZE, static_cast<int>(operation));
    }
    std::string with_argument(std::size_t instruction, int argument) const {
        return with(m_sections.code + instruction * INSTRUCTION_SIZE + 1, argument);
    }
    const List_sections& sections() const { return m_sections; }
    int at(std::size_t place) const { return m_list.at(place); }

private:
    Language m_language;
    BindingListT m_list;
    List_sections m_sections{};
};

TEST(Binding_list, CountsAndReferencesOutOfRangeAreRefused) {
    const Damaged_list list("warn \"{[title]}!\" if [300.1] > 5000000000 and has_option(\"gps\")");
    EXPECT_EQ(list.with(HEADER_OWN_TYPE, 3), "unknown type of the own value");
    EXPECT_EQ(list.with(HEADER_OWN_TYPE, -1), "unknown type of the own value");
    EXPECT_EQ(list.with(HEADER_PARAMETERS, -1), "negative count of a section");
    EXPECT_EQ(list.with(HEADER_PARAMETERS, INT32_MAX), "a section goes beyond its end");
    EXPECT_EQ(list.with(HEADER_POOL_BYTES, 4), "its sections do not fill it");
    EXPECT_EQ(list.with(HEADER_POOL_BYTES, INT32_MAX), "a section goes beyond its end");
    EXPECT_EQ(list.with(HEADER_POOL_BYTES, list.at(HEADER_POOL_BYTES) - 1),
              "bytes after its texts");
    EXPECT_EQ(list.with(list.sections().pool, 'a'), "a zero byte in its texts");
    EXPECT_EQ(list.with_parameter(PARAMETER_TYPE, 0), "unknown type of parameter 0");
    EXPECT_EQ(list.with_parameter(PARAMETER_TYPE, 3), "unknown type of parameter 0");
    EXPECT_EQ(list.with_parameter(PARAMETER_PID, -1), "bad address of parameter 0");
    EXPECT_EQ(list.with_parameter(PARAMETER_LEVELS, 3), "bad levels of parameter 0");
    EXPECT_EQ(list.with_parameter(PARAMETER_LEVELS, -1), "bad levels of parameter 0");
    EXPECT_EQ(list.with_parameter(PARAMETER_LEVEL_0, 1), "bad index of parameter 0");
    const std::size_t second = list.sections().parameters + PARAMETER_SIZE;
    EXPECT_EQ(list.with(second + PARAMETER_LEVEL_0, 65536), "bad index of parameter 1");
    EXPECT_EQ(list.with(second + PARAMETER_LEVEL_0, -1), "bad index of parameter 1");
    EXPECT_EQ(list.with(second + PARAMETER_LEVEL_1, 1), "bad index of parameter 1");
    EXPECT_EQ(list.with(second + PARAMETER_LEVEL_0, 65535), "accepted");
    EXPECT_EQ(list.with_parameter(PARAMETER_NAME, -1), "bad name of parameter 0");
    EXPECT_EQ(list.with_parameter(PARAMETER_NAME_LENGTH, 1000), "bad name of parameter 0");
    EXPECT_EQ(list.with_parameter(PARAMETER_NAME_LENGTH, INT32_MAX), "bad name of parameter 0");
    EXPECT_EQ(list.with_parameter(PARAMETER_USES, 0), "unknown use of parameter 0");
    EXPECT_EQ(list.with_parameter(PARAMETER_USES, 4), "unknown use of parameter 0");
    EXPECT_EQ(list.with_parameter(PARAMETER_USES, PARAMETER_IS_WRITTEN),
              "unmarked read at instruction 0");
    EXPECT_EQ(list.with(list.sections().options, 1000), "bad name of option 0");
    EXPECT_EQ(list.with(list.sections().texts + 1, -1), "bad text 0");
}

TEST(Binding_list, RulesOfTheWrongShapeAreRefused) {
    const Damaged_list range("range 0..1 if [gain]");
    EXPECT_EQ(range.with_rule(RULE_KIND, 0), "bad shape of rule 0");
    EXPECT_EQ(range.with_rule(RULE_KIND, 3), "bad shape of rule 0");
    EXPECT_EQ(range.with_rule(RULE_KIND, SUGGESTION_VISIBILITY), "bad shape of rule 0");
    EXPECT_EQ(range.with_rule(RULE_KIND, SUGGESTION_WARNING), "bad shape of rule 0");
    EXPECT_EQ(range.with_rule(RULE_KIND, SUGGESTION_SET), "bad shape of rule 0");
    EXPECT_EQ(range.with_rule(RULE_KIND, SUGGESTION_ACCESS), "bad shape of rule 0");
    EXPECT_EQ(range.with_rule(RULE_KIND, SUGGESTION_KEYS), "accepted");
    EXPECT_EQ(range.with_rule(RULE_LINE, 0), "bad line of rule 0");
    EXPECT_EQ(range.with_rule(RULE_SOURCE, 1000), "bad source of rule 0");
    EXPECT_EQ(range.with_rule(RULE_DETAIL, 1), "bad shape of rule 0");
    EXPECT_EQ(range.with_rule(RULE_FIRST_SEGMENT, 1), "bad segments of rule 0");
    EXPECT_EQ(range.with_rule(RULE_OPERANDS, 1), "bad shape of rule 0");
    EXPECT_EQ(range.with_rule(RULE_OPERANDS, 3), "bad operands of rule 0");
    EXPECT_EQ(range.with_rule(RULE_OPERANDS, -1), "bad operands of rule 0");
    EXPECT_EQ(range.with(range.sections().segments, 0), "missing code of rule 0");
    EXPECT_EQ(range.with(range.sections().segments + 1, 0), "bad code of rule 0");
    EXPECT_EQ(range.with(range.sections().segments + 2, 2), "code that belongs to no rule");
    EXPECT_EQ(range.with(range.sections().segments + 2, 4), "bad code of rule 0");

    const Damaged_list visible("visible if [gain]");
    EXPECT_EQ(visible.with_rule(RULE_KIND, SUGGESTION_RANGE), "bad shape of rule 0");
    EXPECT_EQ(visible.with_rule(RULE_KIND, SUGGESTION_ACCESS), "accepted");
    EXPECT_EQ(visible.with(visible.sections().segments, 0), "missing code of rule 0");

    const Damaged_list access("access read-only");
    EXPECT_EQ(access.with_rule(RULE_DETAIL, 3), "bad shape of rule 0");
    EXPECT_EQ(access.with_rule(RULE_DETAIL, -1), "bad shape of rule 0");
    EXPECT_EQ(access.with_rule(RULE_KIND, SUGGESTION_VISIBILITY), "missing code of rule 0");

    const Damaged_list set("set [gain] = [mode]");
    EXPECT_EQ(set.with_rule(RULE_DETAIL, 1), "bad shape of rule 0");
    EXPECT_EQ(set.with_rule(RULE_DETAIL, 2), "bad shape of rule 0");
    EXPECT_EQ(set.with_rule(RULE_DETAIL, -1), "bad shape of rule 0");
    EXPECT_EQ(set.with_rule(RULE_KIND, SUGGESTION_WARNING),
              "result of the wrong type at instruction 1");
    EXPECT_EQ(set.with_parameter(PARAMETER_TYPE, STRING),
              "result of the wrong type at instruction 1");
}

TEST(Binding_list, CodeThatCannotRunIsRefused) {
    // 0 READ gain, 1 NUMBER 3, 2 GREATER, 3 AND 8, 4 READ title, 5 TEXT, 6 TEXT_EQUAL, 7 NOT
    const Damaged_list list("visible if [gain] > 3 and not ([title] == \"a\")");
    EXPECT_EQ(list.with_argument(0, 2), "argument out of range at instruction 0");
    EXPECT_EQ(list.with_argument(0, -1), "argument out of range at instruction 0");
    EXPECT_EQ(list.with_argument(0, 1), "operand of the wrong type at instruction 2");
    EXPECT_EQ(list.with_operation(0, Operation::READ_OWN),
              "own value without a type at instruction 0");
    EXPECT_EQ(list.with_operation(0, Operation::WIDE_NUMBER),
              "argument out of range at instruction 0");
    EXPECT_EQ(list.with_operation(0, Operation::HAS_OPTION),
              "argument out of range at instruction 0");
    EXPECT_EQ(list.with_operation(0, Operation::NOT), "missing operand at instruction 0");
    EXPECT_EQ(list.with_operation(2, Operation::BETWEEN), "missing operand at instruction 2");
    EXPECT_EQ(list.with_operation(2, Operation::JOIN),
              "operand of the wrong type at instruction 2");
    EXPECT_EQ(list.with_argument(2, 1), "argument without use at instruction 2");
    EXPECT_EQ(list.with_operation(2, Operation::COUNT), "unknown operation at 2");
    EXPECT_EQ(list.with_operation(2, static_cast<Operation>(-1)), "unknown operation at 2");
    EXPECT_EQ(list.with_argument(3, 3), "jump out of its expression at instruction 3");
    EXPECT_EQ(list.with_argument(3, 0), "jump out of its expression at instruction 3");
    EXPECT_EQ(list.with_argument(3, -1), "jump out of its expression at instruction 3");
    EXPECT_EQ(list.with_argument(3, 9), "jump out of its expression at instruction 3");
    EXPECT_EQ(list.with_argument(3, 7), "accepted");
    EXPECT_EQ(list.with_argument(3, 4), "types that differ at instruction 4");
    EXPECT_EQ(list.with_argument(3, 5), "types that differ at instruction 5");
    EXPECT_EQ(list.with_operation(3, Operation::JUMP_IF_ZERO),
              "types that differ at instruction 8");
    EXPECT_EQ(list.with_operation(3, Operation::JUMP), "unreachable code after instruction 3");
    EXPECT_EQ(list.with_operation(7, Operation::NO_MEMBER), "accepted");
    EXPECT_EQ(list.with_operation(7, Operation::DIGITS), "types that differ at instruction 8");
    EXPECT_EQ(list.with_operation(6, Operation::JOIN),
              "operand of the wrong type at instruction 7");

    const Damaged_list sum("visible if 1 + 2");
    EXPECT_EQ(sum.with_operation(2, Operation::NUMBER), "no single result at instruction 3");
    EXPECT_EQ(sum.with_operation(2, Operation::DIGITS), "no single result at instruction 3");

    // 0 NUMBER 1, 1 AND 8, 2 NUMBER 2, 3 AND 6, 4 NUMBER 3, 5 TRUTH, 6 NUMBER...
    const Damaged_list nested("visible if 1 and (2 and 3) + 4");
    EXPECT_EQ(nested.with_argument(1, 4), "jumps that cross at instruction 3");
}

TEST(Binding_list, AStackThatGrowsTooDeepIsRefused) {
    Language language;
    BindingListT list = language.compile("visible if 1").list;
    List_sections sections{};
    std::string why;
    ASSERT_TRUE(check_list(list, sections, why));
    // 65 numbers, and as many additions as make one of them.
    BindingListT code;
    for (int i = 0; i < 65; ++i) {
        code.insert(code.end(), {static_cast<int>(Operation::NUMBER), 1});
    }
    for (int i = 0; i < 64; ++i) {
        code.insert(code.end(), {static_cast<int>(Operation::ADD), 0});
    }
    const auto code_begin = static_cast<std::ptrdiff_t>(sections.code);
    list.erase(list.begin() + code_begin,
               list.begin() + static_cast<std::ptrdiff_t>(sections.pool));
    list.insert(list.begin() + code_begin, code.begin(), code.end());
    list[HEADER_INSTRUCTIONS] = 129;
    list[sections.segments] = 129;
    repair(list);
    EXPECT_EQ(refusal(list), "stack too deep at instruction 64");
}

// ---- damage of every kind, everywhere

// What becomes of a list, and no harm.
bool survives(const BindingListT& list, Machine& machine) {
    std::string why;
    const std::optional<Program> program = Program::decode(list, why);
    if (program) {
        support::exercise(*program, machine);
        return true;
    }
    EXPECT_FALSE(why.empty());
    EXPECT_EQ(why.find('\n'), std::string::npos);
    return false;
}

// Calls `check` with each list that differs from `list` in one number.
void change_each(const BindingListT& list,
                 const std::function<void(const BindingListT&, std::size_t)>& check) {
    BindingListT changed = list;
    for (std::size_t i = 0; i < list.size(); ++i) {
        for (unsigned int bit = 0; bit < 32; ++bit) {
            changed[i] = static_cast<int>(static_cast<uint32_t>(list[i]) ^ 1U << bit);
            check(changed, i);
        }
        for (const int number : {list[i] ^ 3, 0, 1, 2, 5, 17, 28, 31, -1, INT32_MAX, INT32_MIN}) {
            if (number != list[i]) {
                changed[i] = number;
                check(changed, i);
            }
        }
        changed[i] = list[i];
    }
}

TEST(Damaged_binding_list, AChangedNumberIsRefused) {
    Language language;
    for (const char* const source : SOURCES) {
        SCOPED_TRACE(source);
        change_each(language.compile(source).list,
                    [&](const BindingListT& changed, std::size_t place) {
                        std::string why;
                        EXPECT_FALSE(Program::decode(changed, why)) << place;
                    });
    }
}

TEST(Damaged_binding_list, AChangedNumberWithARightChecksumDoesNoHarm) {
    Language language;
    int accepted = 0;
    for (const char* const source : SOURCES) {
        SCOPED_TRACE(source);
        change_each(language.compile(source).list, [&](BindingListT changed, std::size_t place) {
            if (place != HEADER_CHECKSUM) {
                changed[HEADER_CHECKSUM] = list_checksum(changed.data(), changed.size());
                accepted += survives(changed, language.machine) ? 1 : 0;
            }
        });
    }
    EXPECT_GT(accepted, 1000);  // so that harm had its chance
}

TEST(Damaged_binding_list, ATruncatedListIsRefusedAndDoesNoHarm) {
    Language language;
    for (const char* const source : SOURCES) {
        SCOPED_TRACE(source);
        const BindingListT list = language.compile(source).list;
        for (std::size_t length = 0; length < list.size(); ++length) {
            BindingListT cut(list.begin(), list.begin() + static_cast<std::ptrdiff_t>(length));
            EXPECT_FALSE(survives(cut, language.machine)) << length;
            repair(cut);
            EXPECT_FALSE(survives(cut, language.machine)) << length;
        }
    }
}

TEST(Damaged_binding_list, AListWithANumberMoreOrLessIsRefusedAndDoesNoHarm) {
    Language language;
    for (const char* const source : SOURCES) {
        SCOPED_TRACE(source);
        const BindingListT list = language.compile(source).list;
        for (std::ptrdiff_t i = 0; i < static_cast<std::ptrdiff_t>(list.size()); ++i) {
            for (const int number : {0, 1, -1, INT32_MAX}) {
                BindingListT longer = list;
                longer.insert(longer.begin() + i, number);
                EXPECT_FALSE(survives(longer, language.machine)) << i;
                repair(longer);
                survives(longer, language.machine);
            }
            BindingListT shorter = list;
            shorter.erase(shorter.begin() + i);
            EXPECT_FALSE(survives(shorter, language.machine)) << i;
            repair(shorter);
            survives(shorter, language.machine);
        }
    }
}

}  // namespace
