// Runs the code of programs.
#ifndef FRONTPANEL_BINDING_LANGUAGE_MACHINE_H
#define FRONTPANEL_BINDING_LANGUAGE_MACHINE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "language/program.h"

namespace frontpanel::binding_language {

enum class Fault {
    NONE,
    UNREADABLE,  // the source could not read a parameter, and has noted which
    DIVISION_BY_ZERO,
    TEXT_TOO_LONG,  // over LONGEST_TEXT
};

// One line for a report: "division by zero".
const char* fault_text(Fault fault);

// Where code gets its values from. Asked once for each use: a source that wants all rules to judge the same
// state keeps what it has read.
class Value_source {
public:
    virtual ~Value_source() = default;
    // Fills the number or the text of `value`, by the type of the program's parameter. A text stays
    // valid until the run is over and its result used. False when it cannot be read: the run ends.
    virtual bool read(std::size_t parameter, Value& value) = 0;
    // The same for the entry's own value.
    virtual bool read_own(Value& value) = 0;
    virtual bool has_option(std::size_t option) = 0;
};

// Its memory is taken when it is made, about 18 KiB; a run allocates nothing. Menu thread only.
class Machine {
public:
    Machine();

    // Evaluates `code`, which is not empty. `result` is set when there is no fault; its text is valid until
    // the next run, as long as `program`, and as long as `source` keeps what it gave.
    Fault run(const Program& program, Code code, Value_source& source, Value& result);

private:
    static constexpr std::size_t DEPTH = 64;

    using Text_buffer = std::array<char, LONGEST_TEXT>;
    struct Memory {
        std::array<Value, DEPTH> values;
        std::array<Text_buffer, DEPTH>
            texts;  // of the value at the same place, when the run made it
    };

    friend class Run;
    std::unique_ptr<Memory> m_memory;
};

}  // namespace frontpanel::binding_language

#endif
