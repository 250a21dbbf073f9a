// A compiled binding list as the engine reads it: parameters, options, rules and code, checked in full.
//
// A list is self-contained: it holds all that its rules need, and may come from anywhere. What `decode`
// accepts runs in bounded time and memory. Immutable after `decode`; menu thread only.
#ifndef FRONTPANEL_BINDING_LANGUAGE_PROGRAM_H
#define FRONTPANEL_BINDING_LANGUAGE_PROGRAM_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <frontpanel_data/binding.h>

namespace frontpanel::binding_language {

class Run;

enum class Value_type : uint8_t { INTEGER, TEXT };

inline Value_type value_type(RETURN_TYPE type) {
    return type == STRING ? Value_type::TEXT : Value_type::INTEGER;
}
// As errors have it: "an integer".
inline const char* name_of(Value_type type) {
    return type == Value_type::TEXT ? "a text" : "an integer";
}

// The longest text that an expression may yield or read, in bytes: the longest of a string parameter.
inline constexpr std::size_t LONGEST_TEXT = MAX_STRING_LENGTH;

struct Value {
    Value_type type = Value_type::INTEGER;
    int64_t number = 0;     // of an INTEGER
    std::string_view text;  // of a TEXT; see who made the value for how long it is valid
};

// A part of a program's code: one expression.
struct Code {
    uint32_t begin = 0;
    uint32_t end = 0;

    bool empty() const { return begin == end; }
};

struct Program_parameter {
    var_index_s key;        // `key.rt` is the type that is read; unused levels are 0
    std::string_view name;  // as written between the brackets, for reports
    bool is_read;           // some rule reads it: its entry depends on it
    bool is_written;        // some SET rule writes it
};

// A rule of a program; pass it back to the program that made it.
struct Rule {
    Suggestion_kind kind;
    std::string_view source;  // as written, on one line, for reports
    int line;                 // of its source text, from 1
    std::size_t number;       // in its program, from 0
    Code condition;           // an integer, 0 is false; empty holds always
    // RANGE and KEYS: pairs of integers, low and high, in either order; an empty high end of KEYS stands for
    // the low one. SET: the value. WARNING: the text. The others have none.
    std::size_t operand_count;
    uint32_t first_segment;  // private to the program
    int detail;  // of SET the number of the parameter, else that of the chosen word, else 0

    std::size_t target() const { return static_cast<std::size_t>(detail); }
};

class Program {
public:
    // Nothing, with one line in `why`, for a list that is damaged, of another version, or none at all.
    static std::optional<Program> decode(BindingListT list, std::string& why);

    std::size_t rule_count() const { return m_rule_count; }
    Rule rule(std::size_t number) const;
    // The kind of a rule alone, which costs less.
    Suggestion_kind kind_of_rule(std::size_t number) const;
    // `number` is less than `rule.operand_count`.
    Code operand(const Rule& rule, std::size_t number) const;

    std::size_t parameter_count() const { return m_parameter_count; }
    Program_parameter parameter(std::size_t number) const;
    Value_type parameter_type(std::size_t number) const;
    // Appends the numbers of the parameters that `rule` reads, once each, in the order of their first use.
    void append_reads(const Rule& rule, std::vector<std::size_t>& parameters) const;

    std::size_t option_count() const { return m_option_count; }
    std::string_view option_name(std::size_t number) const;

    // The type that the code takes `value`, the entry's own value, for; nothing when it does not use it.
    std::optional<Value_type> own_type() const;
    // Whether any part of `rule` uses `value`.
    bool reads_own_value(const Rule& rule) const;

    const BindingListT& list() const { return m_list; }
    // Gives the list away; the program is of no use afterwards.
    BindingListT take_list() && { return std::move(m_list); }

private:
    friend class Run;

    explicit Program(BindingListT list) : m_list(std::move(list)) {}
    std::string_view pooled(std::size_t reference) const;
    Code segment(std::size_t number) const;
    Code code_of(const Rule& rule) const;

    BindingListT m_list;
    uint32_t m_rule_count = 0;
    uint32_t m_parameter_count = 0;
    uint32_t m_option_count = 0;
    // Where the sections begin in the list.
    uint32_t m_parameters = 0;
    uint32_t m_options = 0;
    uint32_t m_texts = 0;
    uint32_t m_wide_numbers = 0;
    uint32_t m_segments = 0;
    uint32_t m_rules = 0;
    uint32_t m_code = 0;
    uint32_t m_pool = 0;
};

}  // namespace frontpanel::binding_language

#endif
