#include "file/display_expression.h"

#include <frontpanel_data/evaluator.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstring>

namespace frontpanel {
namespace {

constexpr const char* VALUE = "v";
constexpr int OUT_OF_STACK = 4;  // exit flag

// What the library evaluates for a raw value.
bool evaluates(const std::string& expression, int raw_value) {
    std::string source = "v=" + std::to_string(raw_value) + ";\nv=" + expression + ";\n";
    return evaluateExpression(source.data()) == 0;
}

// The parser sees a ';' behind the expression that is not in the file.
std::string reason(size_t offset, size_t size) {
    if (evalKernel_pcb.exit_flag == OUT_OF_STACK) {
        return "too deeply nested";
    }
    const std::string message = errorRecord.message;
    return offset >= size && message.compare(0, 10, "Unexpected") == 0 ? "Unexpected end" : message;
}

// Columns count from 1 behind "v=" on line 2, and a tab takes several.
size_t error_offset(const std::string& expression) {
    constexpr int FIRST_COLUMN = 3;
    const bool is_known = evalKernel_pcb.exit_flag != OUT_OF_STACK && errorRecord.line == 2;
    const int offset = is_known ? errorRecord.column - FIRST_COLUMN : 0;
    return std::min(static_cast<size_t>(std::max(offset, 0)), expression.size());
}

bool is_name_part(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

double shown_number() {
    for (int i = 0; i < nVariables; ++i) {
        if (std::strcmp(variable[i].name, VALUE) == 0) {
            return variable[i].value;
        }
    }
    return 0;
}

}  // namespace

std::optional<Expression_error> display_expression_error(const std::string& expression, int min,
                                                         int max) {
    if (expression.empty() || evaluates(expression, max) || evaluates(expression, min)) {
        return std::nullopt;
    }
    const size_t offset = error_offset(expression);
    return Expression_error{offset, "not an expression in v: " + reason(offset, expression.size())};
}

// Names of functions and the exponents of numbers begin elsewhere.
bool names_value(const std::string& expression) {
    for (size_t at = expression.find(VALUE); at != std::string::npos;
         at = expression.find(VALUE, at + 1)) {
        const bool begins = at == 0 || !is_name_part(expression[at - 1]);
        const bool ends = at + 1 == expression.size() || !is_name_part(expression[at + 1]);
        if (begins && ends) {
            return true;
        }
    }
    return false;
}

bool has_decimals(const std::string& expression, int min, int max) {
    constexpr int64_t TRIED = 12;
    for (int64_t raw = min; raw <= max && raw < int64_t{min} + TRIED; ++raw) {
        if (evaluates(expression, static_cast<int>(raw))) {
            const double shown = shown_number();
            if (std::isfinite(shown) && shown != std::trunc(shown)) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace frontpanel
