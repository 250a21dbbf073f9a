// Compiles arbitrary texts as binding rules. The error of a rejected text names a place inside it; the list of an
// accepted text passes the check for lists, holds the text's own rules, and runs.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "language/compiler.h"
#include "language/machine.h"
#include "language/program.h"
#include "unit/binding/language/program_exercise.h"

using namespace frontpanel;

using namespace frontpanel::binding_language;
using support::require;

namespace {

Parameter_table declared_parameters() {
    Parameter_table table;
    uint32_t pid = 100;
    for (const char* const name : {"gain", "mode", "limit", "input 1 gain", "a"}) {
        require(table.declare(name, {INTEGER, pid++, {}}));
    }
    for (const char* const name : {"title", "t"}) {
        require(table.declare(name, {STRING, pid++, {}}));
    }
    return table;
}

void check_error(const Compile_error& error, std::string_view source) {
    const auto lines = static_cast<std::size_t>(std::count(source.begin(), source.end(), '\n')) + 1;
    require(error.line >= 1 && error.line <= lines);
    require(error.column >= 1 && error.column <= source.size() + 1);
    require(!error.message.empty() && error.message.size() < 1000);
    for (const char byte : error.message) {
        require(byte >= ' ' && byte <= '~');
    }
}

// One for a rule: each stands behind the one before.
void check_places(const std::vector<Compile_error>& errors) {
    const auto stands_before = [](const Compile_error& one, const Compile_error& other) {
        return one.line < other.line || (one.line == other.line && one.column < other.column);
    };
    for (std::size_t i = 1; i < errors.size(); ++i) {
        require(stands_before(errors[i - 1], errors[i]));
    }
}

void check_program(const Program& program, std::string_view source, Machine& machine) {
    require(program.rule_count() > 0);
    for (std::size_t i = 0; i < program.rule_count(); ++i) {
        const Rule rule = program.rule(i);
        require(source.find(rule.source) != std::string_view::npos);
        require(rule.source.find('\n') == std::string_view::npos);
    }
    support::exercise(program, machine);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    static const Parameter_table parameters = declared_parameters();
    static Compiler compiler;
    static Machine machine;
    const std::string source(reinterpret_cast<const char*>(data), size);
    const RETURN_TYPE own_type = size % 3 == 0 ? STRING : size % 7 == 0 ? INVALID_TYPE : INTEGER;

    const Compile_result result = compiler.compile(source, {parameters, own_type});
    const Compile_result again = Compiler().compile(source, {parameters, own_type});
    require(result.ok() == again.ok() && result.list == again.list);
    if (!result.ok()) {
        require(result.list.empty() && result.errors.size() == again.errors.size());
        require(result.error->text() == result.errors.front().text());
        for (std::size_t i = 0; i < result.errors.size(); ++i) {
            check_error(result.errors[i], source);
            require(result.errors[i].text() == again.errors[i].text());
        }
        check_places(result.errors);
        return 0;
    }
    std::string why;
    const std::optional<Program> program = Program::decode(result.list, why);
    require(program.has_value());
    check_program(*program, source, machine);
    return 0;
}
