// Compiles source texts of binding rules and runs them against a device of the test's own.
//
//     Language language;
//     EXPECT_EQ(language.outcome("[gain] + 1"), "6");
#ifndef FRONTPANEL_DATA_TESTS_UNIT_BINDING_LANGUAGE_LANGUAGE_FIXTURE_H
#define FRONTPANEL_DATA_TESTS_UNIT_BINDING_LANGUAGE_LANGUAGE_FIXTURE_H

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>

#include "language/compiler.h"
#include "language/machine.h"
#include "language/program.h"
#include "support/indexes.h"

namespace support {

using namespace frontpanel;

// Gives values by the names that the program's parameters have in its source.
class Named_values : public binding_language::Value_source {
public:
    std::map<std::string, int64_t, std::less<>> numbers;
    std::map<std::string, std::string, std::less<>> texts;
    std::set<std::string, std::less<>> options;
    int64_t own_number = 12;
    std::string own_text = "own";
    std::string log;  // "gain value ", in the order of reading

    void serve(const binding_language::Program& program) { m_program = &program; }

    bool read(std::size_t number, binding_language::Value& value) override {
        const std::string_view name = m_program->parameter(number).name;
        log += std::string(name) + " ";
        if (m_program->parameter_type(number) == binding_language::Value_type::TEXT) {
            const auto text = texts.find(name);
            value.text = text != texts.end() ? std::string_view(text->second) : "";
            return text != texts.end();
        }
        const auto known = numbers.find(name);
        value.number = known != numbers.end() ? known->second : 0;
        return known != numbers.end();
    }
    bool read_own(binding_language::Value& value) override {
        log += "value ";
        value.number = own_number;
        value.text = own_text;
        return true;
    }
    bool has_option(std::size_t number) override {
        return options.find(m_program->option_name(number)) != options.end();
    }

private:
    const binding_language::Program* m_program = nullptr;
};

class Language {
public:
    Language() {
        declare("gain", INTEGER, 100);
        declare("mode", INTEGER, 101);
        declare("limit", INTEGER, 102);
        declare("delta", INTEGER, 103);
        declare("huge", INTEGER, 104);
        declare("tiny", INTEGER, 105);
        declare("broken", INTEGER, 106);
        declare("input 1 gain", INTEGER, 107);
        declare("title", STRING, 200);
        declare("nothing", STRING, 201);
        declare("longest", STRING, 202);
        values.numbers = {{"gain", 5},     {"mode", 1},         {"limit", 40},
                          {"delta", -3},   {"huge", INT64_MAX}, {"tiny", INT64_MIN},
                          {"100.2", 102},  {"300", 30},         {"300.1", 31},
                          {"300.1.2", 32}, {"input 1 gain", 7}, {"300@i", 33}};
        values.texts = {{"title", "Studio"},
                        {"nothing", ""},
                        {"longest", std::string(256, 'x')},
                        {"406@s", "text of 406"},
                        {"200", "Studio by address"}};
        values.options = {"gps", "a \"b\" \\ {c}"};
    }

    void declare(const char* name, RETURN_TYPE type, uint32_t pid) {
        if (!parameters.declare(name, {type, pid, index_of({})})) {
            throw std::logic_error(name);
        }
    }

    Compile_result compile(std::string_view source) {
        return compiler.compile(source, {parameters, own_type});
    }
    // Throws for a text that is refused.
    binding_language::Program program(std::string_view source) {
        const Compile_result compiled = compile(source);
        if (!compiled.ok()) {
            throw std::runtime_error(compiled.error->text());
        }
        return decoded(compiled.list);
    }
    static binding_language::Program decoded(const BindingListT& list) {
        std::string why;
        std::optional<binding_language::Program> program =
            binding_language::Program::decode(list, why);
        if (!program) {
            throw std::runtime_error("refused its own list: " + why);
        }
        return *std::move(program);
    }

    // What code yields: "3", "\"text\"", or "fault: division by zero".
    std::string run(const binding_language::Program& program, binding_language::Code code) {
        values.serve(program);
        binding_language::Value value;
        const binding_language::Fault fault = machine.run(program, code, values, value);
        if (fault != binding_language::Fault::NONE) {
            return std::string("fault: ") + binding_language::fault_text(fault);
        }
        return value.type == binding_language::Value_type::TEXT
                   ? '"' + std::string(value.text) + '"'
                   : std::to_string(value.number);
    }

    // The value of an expression of either type, or the error of the text that holds it.
    std::string outcome(const std::string& expression) {
        const Compile_result as_text = compile("warn " + expression);
        if (as_text.ok()) {
            const binding_language::Program program = decoded(as_text.list);
            return run(program, program.operand(program.rule(0), 0));
        }
        const Compile_result as_condition = compile("visible if " + expression);
        if (!as_condition.ok()) {
            return as_condition.error->text();
        }
        const binding_language::Program program = decoded(as_condition.list);
        return run(program, program.rule(0).condition);
    }

    // "ok", or the error of a source text.
    std::string error_of(std::string_view source) {
        const Compile_result compiled = compile(source);
        if (compiled.ok()) {
            decoded(compiled.list);
            return "ok";
        }
        return compiled.error->text();
    }

    Parameter_table parameters;
    RETURN_TYPE own_type = INTEGER;
    Named_values values;
    binding_language::Compiler compiler;
    binding_language::Machine machine;
};

}  // namespace support

#endif
