#include <frontpanel_data/evaluator.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "assertion.h"

char charStack[1001];
char* charStackTop = charStack;
double argStack[200];
double* argStackTop = argStack;
VariableDescriptor variable[100];
int nVariables = 0;
ErrorRecord errorRecord = {nullptr, 0, 0};

namespace {

constexpr int MAX_PENDING_CHARACTERS = 1000;
constexpr int MAX_PENDING_ARGUMENTS = 200;
constexpr int MAX_VARIABLES = 100;
constexpr int FUNCTION_COUNT = sizeof functionTable / sizeof functionTable[0];

void raise(const char* message) {
    diagnoseError(const_cast<char*>(message));
}

// As `strcmp`, without the call: names are short and differ early.
int compare_names(const char* left, const char* right) {
    while (*left == *right && *left != '\0') {
        ++left;
        ++right;
    }
    return static_cast<unsigned char>(*left) - static_cast<unsigned char>(*right);
}

struct Position {
    int index;  // of the entry, or where it belongs
    bool found;
};

template <typename Entry>
Position find_by_name(const Entry* table, int size, const char* name) {
    int low = 0;
    int high = size;
    while (low < high) {
        const int middle = low + (high - low) / 2;
        const int order = compare_names(name, table[middle].name);
        if (order == 0) return {middle, true};
        if (order < 0) {
            high = middle;
        } else {
            low = middle + 1;
        }
    }
    return {low, false};
}

// Two characters and the length of a name identify a function.
constexpr unsigned FUNCTION_SLOTS = 32;

constexpr unsigned function_slot(const char* name, int length) {
    const auto first = static_cast<unsigned char>(name[0]);
    const auto second = static_cast<unsigned char>(name[1]);
    return (first * 4U + second * 7U + static_cast<unsigned>(length)) % FUNCTION_SLOTS;
}

// The place in the table of the function of each slot.
struct Function_index {
    unsigned char place[FUNCTION_SLOTS];
};

constexpr Function_index make_function_index() {
    constexpr const char* NAMES[] = {"acos", "asin", "atan", "atan2", "cos",   "cosh",
                                     "exp",  "fabs", "fmod", "log",   "log10", "sin",
                                     "sinh", "sqrt", "tan",  "tanh"};
    static_assert(sizeof NAMES / sizeof NAMES[0] == FUNCTION_COUNT);
    Function_index index{};
    for (unsigned char i = 0; i < FUNCTION_COUNT; ++i) {
        int length = 0;
        while (NAMES[i][length] != '\0')
            ++length;
        index.place[function_slot(NAMES[i], length)] = i;
    }
    return index;
}

constexpr Function_index FUNCTION_INDEX = make_function_index();

// Returns null if no function has this name. An application may have pushed characters behind the end of the name: then
// its length leads to no function.
const FunctionDescriptor* find_function(const char* name, int length) {
    if (length > 0) {
        const int likely = FUNCTION_INDEX.place[function_slot(name, length)];
        if (compare_names(name, functionTable[likely].name) == 0) return &functionTable[likely];
    }
    const Position position = find_by_name(functionTable, FUNCTION_COUNT, name);
    return position.found ? &functionTable[position.index] : nullptr;
}

const char* pop_name(int length) {
    *charStackTop = '\0';
    charStackTop -= length;
    return charStackTop;
}

char* copy_name(const char* name) {
    const std::size_t size = std::strlen(name) + 1;
    void* copy = std::malloc(size);
    return copy == nullptr ? nullptr : static_cast<char*>(std::memcpy(copy, name, size));
}

// The address, or null if the table cannot take another variable.
double* create_variable(int index, const char* name) {
    char* copy = nVariables < MAX_VARIABLES ? copy_name(name) : nullptr;
    if (copy == nullptr) return nullptr;
    std::copy_backward(variable + index, variable + nVariables, variable + nVariables + 1);
    ++nVariables;
    variable[index] = {copy, 0.0};
    return &variable[index].value;
}

}  // namespace

int evaluateExpression(char* expressionString) {
    FRONTPANEL_ASSERT(expressionString != nullptr, "expressionString");
    charStackTop = charStack;
    argStackTop = argStack;
    evalKernel_pcb.pointer = reinterpret_cast<unsigned char*>(expressionString);
    evalKernel();
    return evalKernel_pcb.exit_flag == evalKernel_success ? 0 : 1;
}

char* diagnoseError(char* msg) {
    if (evalKernel_pcb.exit_flag == evalKernel_running) {
        evalKernel_pcb.exit_flag = evalKernel_semantic_error;
    }
    errorRecord = {msg, evalKernel_pcb.line, evalKernel_pcb.column};
    return msg;
}

double checkZero(double value) {
    if (value != 0.0) return value;
    raise("Divide by Zero");
    return 1.0;
}

void pushChar(int c) {
    if (charStackTop == charStack + MAX_PENDING_CHARACTERS) {
        raise("Character Stack Overflow");
        return;
    }
    *charStackTop++ = static_cast<char>(c);
}

void pushArg(double x) {
    if (argStackTop == argStack + MAX_PENDING_ARGUMENTS) {
        raise("Argument Stack Full");
        return;
    }
    *argStackTop++ = x;
}

double* locateVariable(int nameLength) {
    static double scratch;
    const char* name = pop_name(nameLength);
    const Position position = find_by_name(variable, nVariables, name);
    if (position.found) return &variable[position.index].value;
    double* created = create_variable(position.index, name);
    if (created != nullptr) return created;
    raise("Symbol Table Full");
    return &scratch;
}

double callFunction(int nameLength, int argCount) {
    const char* name = pop_name(nameLength);
    argStackTop -= argCount;
    const FunctionDescriptor* const called = find_function(name, nameLength);
    if (called != nullptr) return called->function(argCount, argStackTop);
    raise("Unknown Function");
    return 0.0;
}
