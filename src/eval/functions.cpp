#include <cmath>

#include <frontpanel_data/evaluator.h>

namespace {

bool has_count(int argCount, int expected) {
    if (argCount == expected) return true;
    diagnoseError(const_cast<char*>("Wrong Number of Arguments"));
    return false;
}

template <double (*function)(double)>
double with_one(int argCount, double* args) {
    return has_count(argCount, 1) ? function(args[0]) : 0.0;
}

template <double (*function)(double, double)>
double with_two(int argCount, double* args) {
    return has_count(argCount, 2) ? function(args[0], args[1]) : 0.0;
}

}  // namespace

// Arguments outside a function's domain are left to the mathematics library: a display expression then
// shows its NaN or infinity instead of failing.
const FunctionDescriptor functionTable[16] = {
    {"acos", with_one<::acos>},   {"asin", with_one<::asin>},   {"atan", with_one<::atan>},
    {"atan2", with_two<::atan2>}, {"cos", with_one<::cos>},     {"cosh", with_one<::cosh>},
    {"exp", with_one<::exp>},     {"fabs", with_one<::fabs>},   {"fmod", with_two<::fmod>},
    {"log", with_one<::log>},     {"log10", with_one<::log10>}, {"sin", with_one<::sin>},
    {"sinh", with_one<::sinh>},   {"sqrt", with_one<::sqrt>},   {"tan", with_one<::tan>},
    {"tanh", with_one<::tanh>},
};
