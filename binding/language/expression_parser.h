// Parses an expression and writes its code in one pass.
#ifndef FRONTPANEL_BINDING_LANGUAGE_EXPRESSION_PARSER_H
#define FRONTPANEL_BINDING_LANGUAGE_EXPRESSION_PARSER_H

#include <cstddef>
#include <cstdint>

#include "language/code_writer.h"
#include "language/compiler.h"
#include "language/constant_warnings.h"
#include "language/list_tables.h"
#include "language/parameter_references.h"
#include "language/program.h"
#include "language/token_cursor.h"
#include "language/value_bounds.h"

namespace frontpanel::binding_language {

// What a part of an expression yields.
struct Operand {
    Value_type type;
    bool is_truth;             // an integer that is 0 or 1
    const char* place;         // where it begins
    Value_bounds bounds = {};  // of an integer
};

class Expression_parser {
public:
    // All outlive the parser.
    Expression_parser(const Compile_context& context, List_tables& tables, Token_cursor& cursor,
                      Code_writer& code, Parameter_references& parameters,
                      Constant_warnings& warnings)
        : m_context(context),
          m_tables(tables),
          m_cursor(cursor),
          m_code(code),
          m_parameters(parameters),
          m_warnings(warnings) {}

    // Parses from the token at hand up to the first that does not belong to the expression. Throws a
    // `Compile_error` when it is wrong, or not of `type`. Returns the bounds of an integer.
    Value_bounds parse(Value_type type);

private:
    // How tightly operators bind, loosest first.
    enum Level : uint8_t {
        NO_LEVEL,
        OR_LEVEL,
        AND_LEVEL,
        NOT_LEVEL,
        COMPARISON_LEVEL,
        SUM_LEVEL,
        PRODUCT_LEVEL,
        SIGN_LEVEL
    };
    struct Binary_operator {
        Level level = NO_LEVEL;
        Operation operation{};
    };
    // Counts a level of nesting while it lives.
    class Nesting {
    public:
        explicit Nesting(Expression_parser& parser) : m_parser(parser) {
            if (++m_parser.m_nesting > DEEPEST_NESTING) {
                m_parser.m_cursor.fail_too_deep();
            }
        }
        ~Nesting() { --m_parser.m_nesting; }
        Nesting(const Nesting&) = delete;
        Nesting& operator=(const Nesting&) = delete;

    private:
        Expression_parser& m_parser;
    };

    static Binary_operator operator_of(const Token& token);
    Operand expression();
    Operand conditional(Operand condition);
    Operand binary(Level least);
    Operand unary(Level least);
    Operand denial(const char* place, Level least);
    Operand negative(const char* place);
    Operand primary();
    Operand number();
    Operand in_parentheses();
    Operand combine(const Operand& left, const Binary_operator& with);
    Operand logic(const Operand& left, const Binary_operator& with);
    Operand for_toggle(const Operand& operand) const;
    void check_comparison(const Operand& left, const char* left_end, bool left_reads,
                          const Operand& result);
    Operand comparison(const Operand& left, Operation operation, const char* place);
    Operand membership(const Operand& left);
    Operand set_membership(const Operand& left);
    Value_bounds set_element(const Operand& left, int& last_jump);
    Operand word();
    Operand own_value();
    Operand has_option();
    Operand function(Operation operation, Value_type takes);
    Operand extreme(Operation operation);
    [[noreturn]] void fail_unknown_word(const Token& name) const;
    Operand text();
    bool text_part(const Scanner::Text_part& part, bool is_first);
    void placeholder();
    int text_reference(const Scanner::Text_part& part);
    void add_reference(BindingListT& table, std::string_view source) const;
    Operand read_parameter();

    void require_type(const Operand& operand, Value_type type) const;
    Operand require_integer(const Operand& operand) const;

    const Compile_context& m_context;
    List_tables& m_tables;
    Token_cursor& m_cursor;
    Code_writer& m_code;
    Parameter_references& m_parameters;
    Constant_warnings& m_warnings;
    std::size_t m_nesting = 0;
};

}  // namespace frontpanel::binding_language

#endif
