// Random expressions, compiled and run, against a plain walk over the trees that they were printed from.
#include <gtest/gtest.h>

#include <algorithm>
#include <boost/multiprecision/cpp_int.hpp>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "unit/binding/language/language_fixture.h"

using namespace frontpanel;

namespace {

using support::Language;

// ---- the plain evaluator

struct Failure {
    std::string text;
};
using Result = std::variant<int64_t, std::string, Failure>;

enum Kind {
    NUMBER,
    INTEGER_PARAMETER,
    OWN,
    OPTION,
    NEGATE,
    NOT,
    ABS,
    LENGTH,
    BINARY,  // arithmetic and ordering, by its symbol
    TEXT_COMPARISON,
    AND,
    OR,
    CONDITIONAL,  // of either type
    MIN,
    MAX,
    IN_RANGE,
    IN_SET,
    TEXT,  // a literal; children are its placeholders
    TEXT_PARAMETER,
};

struct Node {
    Kind kind;
    bool is_text = false;
    int64_t number = 0;
    std::string name;                // operator, parameter or option
    std::vector<std::string> parts;  // of a TEXT, one more than there are children
    std::vector<bool> is_range;      // of an IN_SET: which members are two children
    std::vector<std::unique_ptr<Node>> children;
};
using Tree = std::unique_ptr<Node>;

using Wide = boost::multiprecision::int128_t;

int64_t clamped(Wide number) {
    return static_cast<int64_t>(std::clamp<Wide>(number, INT64_MIN, INT64_MAX));
}

class Walker {
public:
    explicit Walker(const support::Named_values& values) : m_values(values) {}

    Result walk(const Node& node) {
        try {
            return node.is_text ? Result(text(node)) : Result(number(node));
        } catch (const Failure& failure) {
            return failure;
        }
    }

private:
    int64_t number(const Node& node, std::size_t child) { return number(*node.children[child]); }
    std::string text(const Node& node, std::size_t child) { return text(*node.children[child]); }

    int64_t number(const Node& node) {
        switch (node.kind) {
            case NUMBER:
                return node.number;
            case INTEGER_PARAMETER:
                return parameter(m_values.numbers, node.name);
            case OWN:
                return m_values.own_number;
            case OPTION:
                return static_cast<int64_t>(m_values.options.count(node.name));
            case NEGATE:
                return clamped(-Wide{number(node, 0)});
            case NOT:
                return number(node, 0) == 0;
            case ABS: {
                const Wide operand = number(node, 0);
                return clamped(operand < 0 ? -operand : operand);
            }
            case LENGTH:
                return static_cast<int64_t>(text(node, 0).size());
            case BINARY: {
                const int64_t left = number(node, 0);
                return binary(node.name, left, number(node, 1));
            }
            case TEXT_COMPARISON: {
                const std::string left = text(node, 0);
                return (left == text(node, 1)) == (node.name == "==");
            }
            case AND:
                return number(node, 0) != 0 && number(node, 1) != 0;
            case OR:
                return number(node, 0) != 0 || number(node, 1) != 0;
            case CONDITIONAL:
                return number(node, number(node, 0) != 0 ? 1 : 2);
            case MIN:
            case MAX:
                return extreme(node);
            case IN_RANGE: {
                const int64_t wanted = number(node, 0);
                const int64_t low = number(node, 1);
                return between(wanted, low, number(node, 2));
            }
            case IN_SET:
                return node.children[0]->is_text ? in_set(node, text(node, 0))
                                                 : in_set(node, number(node, 0));
            default:
                throw std::logic_error("a text where a number belongs");
        }
    }

    static int64_t binary(const std::string& name, int64_t left, int64_t right) {
        const Wide wide_left = left;
        const Wide wide_right = right;
        if (name == "+") return clamped(wide_left + wide_right);
        if (name == "-") return clamped(wide_left - wide_right);
        if (name == "*") return clamped(wide_left * wide_right);
        if (name == "==") return left == right;
        if (name == "!=") return left != right;
        if (name == "<") return left < right;
        if (name == "<=") return left <= right;
        if (name == ">") return left > right;
        if (name == ">=") return left >= right;
        if (right == 0) throw Failure{"fault: division by zero"};
        return clamped(name == "/" ? wide_left / wide_right : wide_left % wide_right);
    }

    int64_t extreme(const Node& node) {
        int64_t best = number(node, 0);
        for (std::size_t i = 1; i < node.children.size(); ++i) {
            const int64_t next = number(node, i);
            best = node.kind == MIN ? std::min(best, next) : std::max(best, next);
        }
        return best;
    }

    static int64_t between(int64_t wanted, int64_t one, int64_t other) {
        return std::min(one, other) <= wanted && wanted <= std::max(one, other);
    }

    int64_t in_set(const Node& node, int64_t wanted) {
        std::size_t child = 1;
        for (const bool is_range : node.is_range) {
            const int64_t low = number(node, child++);
            if (is_range ? between(wanted, low, number(node, child++)) : wanted == low) {
                return 1;
            }
        }
        return 0;
    }
    int64_t in_set(const Node& node, const std::string& wanted) {
        for (std::size_t i = 1; i < node.children.size(); ++i) {
            if (text(node, i) == wanted) {
                return 1;
            }
        }
        return 0;
    }

    std::string text(const Node& node) {
        if (node.kind == TEXT_PARAMETER) {
            return parameter(m_values.texts, node.name);
        }
        if (node.kind == CONDITIONAL) {
            return text(node, number(node, 0) != 0 ? 1 : 2);
        }
        std::string result = node.parts[0];
        for (std::size_t i = 0; i < node.children.size(); ++i) {
            append(result,
                   node.children[i]->is_text ? text(node, i) : std::to_string(number(node, i)));
            append(result, node.parts[i + 1]);
        }
        return result;
    }

    static void append(std::string& text, const std::string& more) {
        text += more;
        if (text.size() > 256) {
            throw Failure{"fault: text longer than 256 bytes"};
        }
    }

    template <typename Map>
    static typename Map::mapped_type parameter(const Map& values, const std::string& name) {
        const auto known = values.find(name);
        if (known == values.end()) {
            throw Failure{"fault: a parameter cannot be read"};
        }
        return known->second;
    }

    const support::Named_values& m_values;
};

// ---- random trees

class Gardener {
public:
    explicit Gardener(unsigned int seed) : m_random(seed) {}

    std::size_t below(std::size_t count) { return m_random() % count; }

    Tree grow(bool is_text, int depth) { return is_text ? text(depth) : number(depth); }

private:
    template <typename Item, std::size_t count>
    Item one_of(const Item (&items)[count]) {
        return items[below(count)];
    }

    static Tree node(Kind kind, std::string name = "", bool is_text = false) {
        Tree tree = std::make_unique<Node>();
        tree->kind = kind;
        tree->name = std::move(name);
        tree->is_text = is_text;
        return tree;
    }

    Tree with(Tree tree, std::initializer_list<bool> text_children, int depth) {
        for (const bool is_text : text_children) {
            tree->children.push_back(grow(is_text, depth - 1));
        }
        return tree;
    }

    Tree number(int depth) {
        if (depth <= 0 || below(6) == 0) {
            return small_number();
        }
        static const char* const OPERATORS[] = {
            "+", "-", "*", "/", "%", "==", "!=", "<", "<=", ">", ">="};
        static const char* const EQUALITIES[] = {"==", "!="};
        switch (below(18)) {
            case 0:
                return with(node(NEGATE), {false}, depth);
            case 1:
                return with(node(NOT), {false}, depth);
            case 2:
                return with(node(ABS), {false}, depth);
            case 3:
                return with(node(LENGTH), {true}, depth);
            case 4:
                return with(node(TEXT_COMPARISON, one_of(EQUALITIES)), {true, true}, depth);
            case 5:
            case 6:
                return with(node(AND), {false, false}, depth);
            case 7:
            case 8:
                return with(node(OR), {false, false}, depth);
            case 9:
                return with(node(CONDITIONAL), {false, false, false}, depth);
            case 10:
                return with(node(below(2) == 0 ? MIN : MAX), {false, false}, depth);
            case 11:
                return with(node(below(2) == 0 ? MIN : MAX), {false, false, false}, depth);
            case 12:
                return with(node(IN_RANGE), {false, false, false}, depth);
            case 13:
                return set(below(3) == 0, depth);
            default:
                return with(node(BINARY, one_of(OPERATORS)), {false, false}, depth);
        }
    }

    Tree small_number() {
        static const char* const NAMES[] = {"gain", "mode", "limit",  "delta",
                                            "huge", "tiny", "broken", "input 1 gain"};
        static const int64_t NUMBERS[] = {0,
                                          1,
                                          2,
                                          3,
                                          5,
                                          40,
                                          -1,
                                          -3,
                                          INT32_MAX,
                                          INT32_MIN,
                                          int64_t{INT32_MAX} + 1,
                                          INT64_MAX,
                                          INT64_MIN,
                                          3037000500};
        switch (below(8)) {
            case 0:
                return node(OWN);
            case 1:
                return node(OPTION, below(2) == 0 ? "gps" : "slot3");
            case 2:
            case 3:
            case 4: {
                Tree tree = node(NUMBER);
                tree->number = one_of(NUMBERS);
                return tree;
            }
            default:
                return node(INTEGER_PARAMETER, one_of(NAMES));
        }
    }

    Tree set(bool is_text, int depth) {
        Tree tree = node(IN_SET);
        tree->children.push_back(grow(is_text, depth - 1));
        for (std::size_t count = 1 + below(4); count > 0; --count) {
            tree->is_range.push_back(!is_text && below(3) == 0);
            tree->children.push_back(grow(is_text, depth - 1));
            if (tree->is_range.back()) {
                tree->children.push_back(grow(is_text, depth - 1));
            }
        }
        return tree;
    }

    Tree text(int depth) {
        static const char* const NAMES[] = {"title", "nothing", "longest", "title"};
        if (depth <= 0 || below(4) == 0) {
            return below(2) == 0 ? literal(0, 0) : node(TEXT_PARAMETER, one_of(NAMES), true);
        }
        if (below(4) == 0) {
            Tree tree = with(node(CONDITIONAL, "", true), {false}, depth);
            tree->children.push_back(text(depth - 1));
            tree->children.push_back(text(depth - 1));
            return tree;
        }
        return literal(below(4), depth);
    }

    Tree literal(std::size_t placeholders, int depth) {
        static const char* const PARTS[] = {"",       "",       "a", "dB ", "{", "}}", "\"",
                                            "\\\\\"", "Studio", "5", "#; ", "[", "ä",  "{x}{"};
        Tree tree = node(TEXT, "", true);
        tree->parts.emplace_back(one_of(PARTS));
        for (; placeholders > 0; --placeholders) {
            tree->children.push_back(grow(below(2) == 0, depth - 1));
            tree->parts.emplace_back(one_of(PARTS));
        }
        return tree;
    }

    std::mt19937 m_random;
};

// ---- printing, with no more parentheses than needed, and some more

class Printer {
public:
    explicit Printer(Gardener& chance) : m_chance(chance) {}

    // As an operand of something that binds at `level`.
    std::string print(const Node& node, int level = 0) {
        const bool needs_parentheses = level_of(node) < level || m_chance.below(12) == 0;
        const std::string inside = bare(node);
        return needs_parentheses ? "(" + blank() + inside + ")" : inside;
    }

private:
    enum { CHOICE, EITHER, BOTH, DENIAL, RELATION, SUM, PRODUCT, SIGN, PRIMARY };

    static int level_of(const Node& node) {
        switch (node.kind) {
            case CONDITIONAL:
                return CHOICE;
            case OR:
                return EITHER;
            case AND:
                return BOTH;
            case NOT:
                return DENIAL;
            case TEXT_COMPARISON:
            case IN_RANGE:
            case IN_SET:
                return RELATION;
            case BINARY:
                return node.name == "+" || node.name == "-"                       ? SUM
                       : node.name == "*" || node.name == "/" || node.name == "%" ? PRODUCT
                                                                                  : RELATION;
            case NEGATE:
                return SIGN;
            case NUMBER:
                return node.number < 0 ? SIGN : PRIMARY;
            default:
                return PRIMARY;
        }
    }

    std::string blank() { return std::string(m_chance.below(8) == 0 ? 2 : 0, ' '); }

    std::string child(const Node& node, std::size_t number, int level) {
        return print(*node.children[number], level);
    }

    std::string bare(const Node& node) {
        switch (node.kind) {
            case NUMBER:
                return node.number > 0 && m_chance.below(4) == 0 ? hexadecimal(node.number)
                                                                 : std::to_string(node.number);
            case INTEGER_PARAMETER:
            case TEXT_PARAMETER:
                return "[" + node.name + "]";
            case OWN:
                return "value";
            case OPTION:
                return "has_option(\"" + node.name + "\")";
            case NEGATE:
                return "-" + blank() + child(node, 0, SIGN);
            case NOT:
                return m_chance.below(2) == 0 ? "not " + child(node, 0, DENIAL)
                                              : "!" + blank() + child(node, 0, SIGN);
            case ABS:
                return "abs(" + child(node, 0, CHOICE) + ")";
            case LENGTH:
                return "length(" + child(node, 0, CHOICE) + ")";
            case BINARY:
            case TEXT_COMPARISON: {
                const int own = level_of(node);
                return child(node, 0, own == RELATION ? SUM : own) + blank() + node.name + blank() +
                       child(node, 1, own == RELATION ? SUM : own + 1);
            }
            case AND:
                return child(node, 0, BOTH) + (m_chance.below(2) == 0 ? " and " : "&&") +
                       child(node, 1, DENIAL);
            case OR:
                return child(node, 0, EITHER) + (m_chance.below(2) == 0 ? " or " : "||") +
                       child(node, 1, BOTH);
            case CONDITIONAL:
                return child(node, 0, EITHER) + " ? " + child(node, 1, CHOICE) + " : " +
                       child(node, 2, CHOICE);
            case MIN:
            case MAX:
                return (node.kind == MIN ? "min(" : "max(") + listed(node, 0) + ")";
            case IN_RANGE:
                return child(node, 0, SUM) + " in " + child(node, 1, SUM) + ".." +
                       child(node, 2, SUM);
            case IN_SET:
                return child(node, 0, SUM) + " in {" + members(node) + "}";
            case TEXT:
                return quoted(node);
        }
        return "";
    }

    static std::string hexadecimal(int64_t number) {
        char text[32];
        std::snprintf(text, sizeof text, "0x%llX", static_cast<unsigned long long>(number));
        return text;
    }

    std::string listed(const Node& node, std::size_t first) {
        std::string text = child(node, first, CHOICE);
        for (std::size_t i = first + 1; i < node.children.size(); ++i) {
            text += "," + blank() + child(node, i, CHOICE);
        }
        return text;
    }

    std::string members(const Node& node) {
        std::string text;
        std::size_t number = 1;
        for (const bool is_range : node.is_range) {
            text += (text.empty() ? "" : ", ") + child(node, number++, CHOICE);
            if (is_range) {
                text += " .. " + child(node, number++, CHOICE);
            }
        }
        return text;
    }

    std::string quoted(const Node& node) {
        std::string text = "\"" + escaped(node.parts[0]);
        for (std::size_t i = 0; i < node.children.size(); ++i) {
            text +=
                "{" + blank() + child(node, i, CHOICE) + blank() + "}" + escaped(node.parts[i + 1]);
        }
        return text + "\"";
    }

    static std::string escaped(const std::string& part) {
        std::string text;
        for (const char byte : part) {
            if (byte == '"' || byte == '\\') {
                text += '\\';
            } else if (byte == '{' || byte == '}') {
                text += byte;
            }
            text += byte;
        }
        return text;
    }

    Gardener& m_chance;
};

std::string shown(const Result& result) {
    if (const auto* const number = std::get_if<int64_t>(&result)) {
        return std::to_string(*number);
    }
    if (const auto* const text = std::get_if<std::string>(&result)) {
        return '"' + *text + '"';
    }
    return std::get<Failure>(result).text;
}

TEST(Binding_differential, RandomExpressionsAgreeWithAPlainWalkOverTheirTrees) {
    Language language;
    int faults = 0;
    constexpr unsigned int TREES = 12000;
    for (unsigned int seed = 1; seed <= TREES; ++seed) {
        Gardener gardener(seed);
        const Tree tree = gardener.grow(seed % 3 == 0, static_cast<int>(2 + seed % 4));
        const std::string source = Printer(gardener).print(*tree);
        const Result expected = Walker(language.values).walk(*tree);
        faults += std::holds_alternative<Failure>(expected) ? 1 : 0;
        ASSERT_EQ(language.outcome(source), shown(expected)) << "seed " << seed << ": " << source;
    }
    EXPECT_GT(faults, static_cast<int>(TREES / 20));
    EXPECT_LT(faults, static_cast<int>(TREES / 2));
}

}  // namespace
