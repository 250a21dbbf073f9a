// Evaluates arbitrary text. Each text is evaluated twice from an empty table and has to end the same way.
#include <frontpanel_data/evaluator.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

void check(bool condition) {
    if (!condition) std::abort();
}

// So that a text does not depend on the texts before it, and the table does not fill up.
void forget_variables() {
    for (int i = 0; i < nVariables; ++i)
        std::free(variable[i].name);
    nVariables = 0;
}

// The place, the error and the table, value by value.
std::string outcome_of(std::string text) {
    forget_variables();
    const int result = evaluateExpression(text.data());
    const evalKernel_pcb_type& pcb = evalKernel_pcb;
    check(pcb.exit_flag != evalKernel_running &&
          (result == 0) == (pcb.exit_flag == evalKernel_success));
    check(pcb.line >= 1 && pcb.column >= 1 && pcb.ssx >= 0 && pcb.ssx < 128);
    check(pcb.la_ptr >= pcb.pointer && pcb.la_ptr <= pcb.pointer + std::strlen(text.c_str()));
    check(nVariables >= 0 && nVariables <= 100);
    check(charStackTop >= charStack && charStackTop <= charStack + 1000);
    check(argStackTop >= argStack && argStackTop <= argStack + 200);

    const bool is_described = result != 0 && pcb.exit_flag != evalKernel_stack_overflow;
    std::string outcome = std::to_string(pcb.exit_flag) + " " + std::to_string(pcb.line) + ":" +
                          std::to_string(pcb.column) + " " +
                          (is_described ? errorRecord.message : "");
    for (int i = 0; i < nVariables; ++i) {
        check(i == 0 || std::strcmp(variable[i - 1].name, variable[i].name) < 0);
        outcome += std::string("\n") + variable[i].name + " ";
        outcome.append(reinterpret_cast<const char*>(&variable[i].value), sizeof(double));
    }
    return outcome;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    check(outcome_of(text) == outcome_of(text));
    return 0;
}
