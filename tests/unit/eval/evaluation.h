// What one evaluation yields, for tests.
#ifndef FRONTPANEL_DATA_TESTS_UNIT_EVAL_EVALUATION_H
#define FRONTPANEL_DATA_TESTS_UNIT_EVAL_EVALUATION_H

#include <frontpanel_data/evaluator.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>

namespace evaluation {

inline int evaluate(std::string source) {
    return evaluateExpression(source.data());
}

// Empties the table, which otherwise only grows: what follows does not depend on what came before.
inline void forget_variables() {
    for (int i = 0; i < nVariables; ++i)
        std::free(variable[i].name);
    nVariables = 0;
}

// The value of a variable; nothing if it was never created.
inline std::optional<double> value_of(const std::string& name) {
    for (int i = 0; i < nVariables; ++i) {
        if (name == variable[i].name) return variable[i].value;
    }
    return std::nullopt;
}

// Tells 0.0 from -0.0, and takes a NaN for equal to itself.
inline uint64_t bits_of(double value) {
    uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

// The last error as "LINE:COLUMN MESSAGE".
inline std::string last_error() {
    return std::to_string(errorRecord.line) + ":" + std::to_string(errorRecord.column) + " " +
           errorRecord.message;
}

// "ok", or the error that the evaluation ended with.
inline std::string outcome_of(const std::string& source) {
    const int result = evaluate(source);
    if (result == 0) return "ok";
    if (result != 1) return "result " + std::to_string(result);
    return evalKernel_pcb.exit_flag == evalKernel_stack_overflow ? "overflow" : last_error();
}

inline std::string repeated(const std::string& text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i)
        all += text;
    return all;
}

}  // namespace evaluation

#endif
