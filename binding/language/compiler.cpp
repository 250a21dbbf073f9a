#include "language/compiler.h"

#include <optional>
#include <string>
#include <utility>

#include "language/list_tables.h"
#include "language/rule_parser.h"
#include "language/scanner.h"
#include "language/toggle_writer.h"

namespace frontpanel::binding_language {

namespace {

constexpr std::size_t LONGEST_SOURCE = 1U << 20;

// Why a text is not read at all.
std::optional<Compile_error> unreadable(std::string_view source) {
    const Scanner scanner(source);
    if (source.size() > LONGEST_SOURCE) {
        return scanner.error(
            source.data(), "source text longer than " + std::to_string(LONGEST_SOURCE) + " bytes");
    }
    const std::size_t zero_byte = source.find('\0');
    if (zero_byte != std::string_view::npos) {
        return scanner.error(source.data() + zero_byte, "unexpected character \"\\x00\"");
    }
    return std::nullopt;
}

Compile_result refused(std::vector<Compile_error> errors) {
    Compile_result result;
    result.errors = std::move(errors);
    result.error = result.errors.front();
    return result;
}

}  // namespace

Compiler::Compiler() : m_tables(std::make_unique<List_tables>()) {}

Compiler::~Compiler() = default;

Compile_result Compiler::compile(std::string_view source, const Compile_context& context) {
    if (const std::optional<Compile_error> error = unreadable(source)) {
        return refused({*error});
    }
    Compile_result result;
    m_tables->clear();
    Rule_parser(source, context, *m_tables, result).parse();
    if (!result.errors.empty()) {
        return refused(std::move(result.errors));
    }
    result.list = m_tables->list(source);
    result.parameters = m_tables->named_parameters();
    return result;
}

Toggle_result Compiler::compile_toggle(std::string_view condition,
                                       const Parameter_table& parameters,
                                       const std::function<bool(std::string_view)>& has_option) {
    Toggle_result toggle;
    toggle.error = unreadable(condition);
    if (toggle.error) {
        return toggle;
    }
    Compile_context context{parameters, INVALID_TYPE, {}};
    context.is_toggle = true;
    Compile_result result;
    m_tables->clear();
    try {
        Rule_parser(condition, context, *m_tables, result).parse_condition();
    } catch (const Compile_error& error) {
        toggle.error = error;
        return toggle;
    }
    toggle.expression = toggle_text(*m_tables, condition, has_option);
    toggle.parameters = m_tables->named_parameters();
    toggle.options = std::move(result.options);
    toggle.warnings = std::move(result.warnings);
    toggle.constants = std::move(result.constants);
    if (toggle.expression.empty()) {
        toggle.error = Compile_error{1, 1, "this condition is too large for the homescreen"};
    }
    return toggle;
}

}  // namespace frontpanel::binding_language
