// Parses the rules of a source text into the tables of a list.
#ifndef FRONTPANEL_BINDING_LANGUAGE_RULE_PARSER_H
#define FRONTPANEL_BINDING_LANGUAGE_RULE_PARSER_H

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include <frontpanel_binding/binding_registry.h>

#include "language/code_writer.h"
#include "language/compiler.h"
#include "language/constant_warnings.h"
#include "language/expression_parser.h"
#include "language/list_tables.h"
#include "language/parameter_references.h"
#include "language/token_cursor.h"
#include "rule_kinds.h"

namespace frontpanel::binding_language {

// One pass: each construct is written to the tables as it is read.
class Rule_parser {
public:
    // All outlive the parser. Notes, warnings and errors go to `result`.
    Rule_parser(std::string_view source, const Compile_context& context, List_tables& tables,
                Compile_result& result)
        : m_tables(tables),
          m_notes(result.notes),
          m_rule_offsets(result.rule_offsets),
          m_errors(result.errors),
          m_cursor(source),
          m_code(tables, m_cursor),
          m_parameters(context.parameters, tables, m_cursor),
          m_warnings(m_cursor, result),
          m_expressions(context, tables, m_cursor, m_code, m_parameters, m_warnings) {}

    // After an error the tables hold nothing of use.
    void parse();
    // A text that is one condition, as if "visible if" stood before it. Throws a `Compile_error`.
    void parse_condition();

private:
    void rule_or_separator();
    void recover(const Scanner& rule_start);
    void rule();
    const Rule_kind& kind_of_rule();
    void operands(const Rule_kind& kind);
    void interval();
    void keys();
    void written_value();
    void choice(const Rule_kind& kind);
    void begin_rule(const Rule_kind& kind);
    void condition_of(const Rule_kind& kind);
    void condition();
    void end_rule(const char* expected);
    Value_bounds segment(Value_type type);
    std::optional<int32_t> integer_segment(int32_t least);
    Rule_note& note(Suggestion_kind kind);
    void note_rule(Suggestion_kind kind);

    List_tables& m_tables;
    std::vector<Rule_note>& m_notes;
    std::vector<std::size_t>& m_rule_offsets;
    std::vector<Compile_error>& m_errors;
    Token_cursor m_cursor;
    Code_writer m_code;
    Parameter_references m_parameters;
    Constant_warnings m_warnings;
    Expression_parser m_expressions;
};

}  // namespace frontpanel::binding_language

#endif
