// Random expressions against C++ doubles, and random token strings against a grammar written the other way
// (from the top down). The seeds are fixed.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "unit/eval/evaluation.h"

namespace {

using evaluation::bits_of;
using evaluation::forget_variables;
using evaluation::outcome_of;
using evaluation::value_of;

class Random {
public:
    explicit Random(unsigned seed) : m_engine(seed) {}
    // 0 to limit - 1; the engine's own numbers, since distributions differ between libraries.
    int below(int limit) { return static_cast<int>(m_engine() % static_cast<unsigned>(limit)); }
    bool chance(int percent) { return below(100) < percent; }

private:
    std::mt19937 m_engine;
};

// Writes an expression and computes its value on the way, operand by operand.
class Expression_writer {
public:
    explicit Expression_writer(unsigned seed) : m_random(seed) {
        for (const char* name : {"a", "b", "c", "dd", "e1", "_f"})
            m_variables[name] = 0.0;
    }

    void write_statement() {
        expression(5);
        token(m_random.chance(50) ? ";" : ",");
    }

    const std::string& text() const { return m_text; }
    const std::map<std::string, double>& variables() const { return m_variables; }

private:
    void token(const std::string& text) {
        m_text += text;
        if (m_random.chance(60)) return;
        static const char* const SPACE[] = {" ",    "  ",          "\t",       "\n",
                                            "\r\n", " /* 1 + */ ", " // ; x\n"};
        m_text += SPACE[m_random.below(7)];
    }

    std::string any_name() {
        auto variable = m_variables.begin();
        std::advance(variable, m_random.below(static_cast<int>(m_variables.size())));
        return variable->first;
    }

    double expression(int depth) {
        if (depth == 0 || m_random.chance(80)) return conditional(depth);
        const std::string name = any_name();
        const int operation = m_random.below(5);
        static const char* const OPERATORS[] = {"=", "+=", "-=", "*=", "/="};
        token(name);
        token(OPERATORS[operation]);
        const double right = expression(depth - 1);
        double& value = m_variables[name];
        switch (operation) {
            case 0:
                value = right;
                break;
            case 1:
                value += right;
                break;
            case 2:
                value -= right;
                break;
            case 3:
                value *= right;
                break;
            default:
                value /= right;
                break;
        }
        return value;
    }

    double conditional(int depth) {
        const double condition = binary(depth, 0);
        if (depth == 0 || !m_random.chance(15)) return condition;
        token("?");
        const double second = expression(depth - 1);
        token(":");
        const double third = conditional(depth - 1);
        return condition == 0.0 ? third : second;
    }

    double binary(int depth, int level) {
        static const std::vector<std::string> OPERATORS[] = {
            {"||"}, {"&&"}, {"==", "!="}, {"<", "<=", ">", ">="}, {"+", "-"}, {"*", "/"}};
        if (level == 6) return unary(depth);
        double left = binary(depth, level + 1);
        while (m_random.chance(level < 4 ? 8 : 30)) {
            const int count = static_cast<int>(OPERATORS[level].size());
            const std::string& name =
                OPERATORS[level][static_cast<std::size_t>(m_random.below(count))];
            token(name);
            left =
                name == "/" ? left / divisor(depth) : apply(name, left, binary(depth, level + 1));
        }
        return left;
    }

    // A zero would end the evaluation, so it is written over.
    double divisor(int depth) {
        const std::string text = m_text;
        const auto variables = m_variables;
        const double value = binary(depth, 6);
        if (value != 0.0) return value;
        m_text = text;
        m_variables = variables;
        token("7");
        return 7.0;
    }

    static double apply(const std::string& name, double left, double right) {
        if (name == "||") return left != 0.0 || right != 0.0 ? 1.0 : 0.0;
        if (name == "&&") return left != 0.0 && right != 0.0 ? 1.0 : 0.0;
        if (name == "==") return left == right ? 1.0 : 0.0;
        if (name == "!=") return left != right ? 1.0 : 0.0;
        if (name == "<") return left < right ? 1.0 : 0.0;
        if (name == "<=") return left <= right ? 1.0 : 0.0;
        if (name == ">") return left > right ? 1.0 : 0.0;
        if (name == ">=") return left >= right ? 1.0 : 0.0;
        if (name == "+") return left + right;
        if (name == "-") return left - right;
        return left * right;
    }

    double unary(int depth) {
        if (depth > 0 && m_random.chance(15)) {
            const bool negates = m_random.chance(70);
            token(negates ? "-" : "+");
            const double value = unary(depth - 1);
            return negates ? -value : value;
        }
        const double base = primary(depth);
        if (depth == 0 || !m_random.chance(10)) return base;
        token("**");
        return std::pow(base, unary(depth - 1));
    }

    double primary(int depth) {
        const int kind = m_random.below(depth == 0 ? 6 : 10);
        if (kind < 3) return number();
        if (kind < 6) return named_variable();
        if (kind == 6) return call(depth);
        if (kind == 7) {
            token("!");
            return primary(depth - 1) == 0.0 ? 1.0 : 0.0;
        }
        token("(");
        const double value = expression(depth - 1);
        token(")");
        return value;
    }

    double named_variable() {
        const std::string name = any_name();
        token(name);
        return m_variables[name];
    }

    double call(int depth) {
        static const char* const NAMES[] = {"sin", "sqrt", "atan", "fabs", "fmod", "atan2"};
        const int function = m_random.below(6);
        token(NAMES[function]);
        token("(");
        const double first = expression(depth - 1);
        double second = 0.0;
        if (function >= 4) {
            token(",");
            second = expression(depth - 1);
        }
        token(")");
        switch (function) {
            case 0:
                return std::sin(first);
            case 1:
                return std::sqrt(first);
            case 2:
                return std::atan(first);
            case 3:
                return std::fabs(first);
            case 4:
                return std::fmod(first, second);
            default:
                return std::atan2(first, second);
        }
    }

    std::string digits(int most) {
        std::string text;
        for (int i = 0, count = 1 + m_random.below(most); i < count; ++i) {
            text += static_cast<char>('0' + m_random.below(10));
        }
        return text;
    }

    double number() {
        std::string text;
        double value = 0.0;
        const bool has_integer_part = m_random.chance(85);
        if (has_integer_part) {
            text = digits(m_random.chance(80) ? 3 : 25);
            for (const char digit : text)
                value = value * 10.0 + (digit - '0');
            if (m_random.chance(50)) {
                token(text);
                return value;
            }
        }
        text += '.';
        if (!has_integer_part || m_random.chance(85)) {
            const std::string fraction = digits(m_random.chance(80) ? 3 : 30);
            double rest = 0.0;
            for (auto digit = fraction.rbegin(); digit != fraction.rend(); ++digit) {
                rest = ((*digit - '0') + rest) / 10.0;
            }
            text += fraction;
            value += rest;
        }
        if (m_random.chance(30)) value = exponent(text, value);
        token(text);
        return value;
    }

    double exponent(std::string& text, double value) {
        const int size = m_random.below(m_random.chance(90) ? 20 : 400);
        const int sign = m_random.below(3);
        text += m_random.chance(50) ? 'e' : 'E';
        if (sign != 0) text += sign == 1 ? '+' : '-';
        text += std::to_string(size);
        return value * std::pow(10.0, sign == 2 ? -size : size);
    }

    Random m_random;
    std::string m_text;
    std::map<std::string, double> m_variables;
};

bool is_same(double left, double right) {
    return (std::isnan(left) && std::isnan(right)) || bits_of(left) == bits_of(right);
}

TEST(Evaluator_random, ExpressionsHaveTheValuesOfDoubles) {
    for (unsigned seed = 1; seed <= 5000; ++seed) {
        Expression_writer writer(seed);
        for (int i = 0; i < 4; ++i)
            writer.write_statement();
        ASSERT_EQ(outcome_of("a=b=c=dd=e1=_f=0"), "ok");
        ASSERT_EQ(outcome_of(writer.text()), "ok") << "seed " << seed << ":\n" << writer.text();
        for (const auto& [name, value] : writer.variables()) {
            const double found = value_of(name).value();
            ASSERT_TRUE(is_same(found, value))
                << name << " is " << found << " instead of " << value << ", seed " << seed << ":\n"
                << writer.text();
        }
    }
}

// The grammar as a recursive descent over a list of tokens. `accept` says "ok" or the message of the first
// token that cannot continue the text.
class Grammar {
public:
    std::string accept(const std::vector<std::string>& tokens) {
        m_tokens = tokens;
        m_tokens.push_back("");
        m_at = 0;
        m_error.clear();
        expressions();
        return m_error.empty() ? "ok" : m_error;
    }

private:
    const std::string& now() const { return m_tokens[m_at]; }
    bool is(const char* text) const { return now() == text; }
    bool is_any(const std::vector<std::string>& texts) const {
        return std::find(texts.begin(), texts.end(), now()) != texts.end();
    }
    bool is_name() const { return is("x") || is("fabs"); }
    bool failed() const { return !m_error.empty(); }
    void next() { ++m_at; }

    std::string column() const {
        std::size_t column = 1;
        for (std::size_t i = 0; i < m_at; ++i)
            column += m_tokens[i].size() + 1;
        return "1:" + std::to_string(column);
    }

    void unexpected() {
        if (failed()) return;
        std::string what = "'" + now() + "'";
        if (now().size() == 2) what = "\"" + now() + "\"";
        if (is("")) what = "eof";
        if (is("1")) what = "digit";
        if (is_name()) what = "letter";
        m_error = column() + " Unexpected " + what;
    }

    void closing(const char* token) {
        if (failed()) return;
        if (is(token)) return next();
        if (!is_any({",", ";", ":", ")", ""})) return unexpected();
        m_error = column() + " Missing '" + token + "'";
    }

    void expressions() {
        while (!failed() && !is("")) {
            if (!is_any({",", ";"})) expression();
            if (!failed() && !is_any({",", ";", ""})) unexpected();
            if (is_any({",", ";"})) next();
        }
    }

    void expression() {
        static const std::vector<std::string> ASSIGNING = {"=", "+=", "/="};
        if (is_name()) {
            next();
            if (is_any(ASSIGNING)) {
                next();
                return expression();
            }
            --m_at;
        }
        conditional();
    }

    void conditional() {
        binary(0);
        if (failed() || !is("?")) return;
        next();
        expression();
        closing(":");
        if (!failed()) conditional();
    }

    void binary(std::size_t level) {
        static const std::vector<std::string> OPERATORS[] = {{"||"},      {"&&"},     {"=="},
                                                             {"<", ">="}, {"+", "-"}, {"*", "/"}};
        if (level == 6) return unary();
        binary(level + 1);
        while (!failed() && is_any(OPERATORS[level])) {
            next();
            binary(level + 1);
        }
    }

    void unary() {
        while (is_any({"-", "+"}))
            next();
        primary();
        if (failed() || !is("**")) return;
        next();
        unary();
    }

    void primary() {
        if (is("1")) return next();
        if (is("!")) {
            next();
            return primary();
        }
        if (is("(")) {
            next();
            expression();
            return closing(")");
        }
        if (!is_name()) return unexpected();
        next();
        if (is("(")) arguments();
    }

    void arguments() {
        next();
        if (is(")")) return next();
        expression();
        while (!failed() && is(",")) {
            next();
            expression();
        }
        if (failed()) return;
        if (!is(")")) return unexpected();
        next();
    }

    std::vector<std::string> m_tokens;
    std::size_t m_at = 0;
    std::string m_error;
};

std::string joined(const std::vector<std::string>& tokens) {
    std::string text;
    for (const std::string& token : tokens)
        text += (text.empty() ? "" : " ") + token;
    return text.empty() ? text : text + " ";
}

// Whether both agree; an evaluation error hides what would follow.
void expect_agreement(const std::vector<std::string>& tokens) {
    const std::string text = joined(tokens);
    const std::string outcome = outcome_of(text);
    if (evalKernel_pcb.exit_flag == evalKernel_semantic_error) return;
    ASSERT_EQ(outcome, Grammar().accept(tokens)) << text;
}

const std::vector<std::string> TOKENS = {"1",  "x",  "(",  ")",  "+",  "-",    "*", "/",
                                         "**", "!",  "=",  "+=", "?",  ":",    ",", ";",
                                         "<",  ">=", "==", "||", "&&", "fabs", "/="};

TEST(Evaluator_random, EveryTextOfThreeTokensIsJudgedByTheGrammar) {
    for (const std::string& first : TOKENS) {
        expect_agreement({first});
        for (const std::string& second : TOKENS) {
            expect_agreement({first, second});
            for (const std::string& third : TOKENS)
                expect_agreement({first, second, third});
        }
    }
}

// Operands and operators take turns most of the time, so that texts get far.
TEST(Evaluator_random, LongTextsAreJudgedByTheGrammar) {
    Random random(20);
    const std::vector<std::string> before = {"1", "x", "(", "-", "!", "fabs", "x", "("};
    for (int i = 0; i < 20000; ++i) {
        std::vector<std::string> tokens;
        bool wants_operand = true;
        for (int k = 0, count = 1 + random.below(16); k < count; ++k) {
            const std::vector<std::string>& source =
                wants_operand && random.chance(95) ? before : TOKENS;
            tokens.push_back(
                source[static_cast<std::size_t>(random.below(static_cast<int>(source.size())))]);
            const std::string& last = tokens.back();
            wants_operand = !(last == "1" || last == "x" || last == "fabs" || last == ")");
        }
        ASSERT_NO_FATAL_FAILURE(expect_agreement(tokens));
    }
}

TEST(Evaluator_random, AnyBytesEndInAnErrorOrASuccess) {
    static const std::string BYTES = "1x(+-*/!=?:,;<>|&.e \n\t_9)~\xFF";
    Random random(30);
    for (int i = 0; i < 20000; ++i) {
        std::string text;
        for (int k = 0, count = random.below(40); k < count; ++k) {
            text += BYTES[static_cast<std::size_t>(random.below(static_cast<int>(BYTES.size())))];
        }
        forget_variables();
        const int result = evaluateExpression(text.data());
        ASSERT_EQ(result, evalKernel_pcb.exit_flag == evalKernel_success ? 0 : 1) << text;
        ASSERT_NE(evalKernel_pcb.exit_flag, evalKernel_running) << text;
        ASSERT_LE(evalKernel_pcb.la_ptr - evalKernel_pcb.pointer,
                  static_cast<std::ptrdiff_t>(std::strlen(text.c_str())));
    }
    forget_variables();
}

}  // namespace
