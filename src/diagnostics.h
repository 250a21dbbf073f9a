// Diagnostic lines: which bits of `debug` show a line, and how it begins.
//
// One line is one macro call with its mask, its prefix, the name of the operation that the caller asked for
// and a printf text. LEAF_LINE and ENTRY_LINE differ in their gate. A closed gate costs one test and
// evaluates no argument.
#ifndef FRONTPANEL_DATA_SRC_DIAGNOSTICS_H
#define FRONTPANEL_DATA_SRC_DIAGNOSTICS_H

#include <syslog.h>

#include <cstdint>

#include <frontpanel_data/data_interface.h>

namespace diagnostics {

// The public categories by the short names that lines give.
enum Mask : uint32_t {
    GENERAL = DIAGNOSTIC_GENERAL,
    MODEL_READ = DIAGNOSTIC_MODEL_READ,
    COMMIT = DIAGNOSTIC_COMMIT,
    OPTIONS = DIAGNOSTIC_OPTIONS,
    BINDING = DIAGNOSTIC_BINDING,
    WRITE = DIAGNOSTIC_WRITE,
    ENTRY_REFRESH = DIAGNOSTIC_ENTRY_REFRESH,
    CONSTRUCTION = DIAGNOSTIC_CONSTRUCTION,
    VISIBILITY = DIAGNOSTIC_VISIBILITY,
    BINDING_VISIBILITY = DIAGNOSTIC_BINDING_VISIBILITY,
    REFRESH = DIAGNOSTIC_REFRESH,
    DISPATCH = DIAGNOSTIC_DISPATCH,
    LINK_NAVIGATION = DIAGNOSTIC_LINK_NAVIGATION,
    SHORTCUT = DIAGNOSTIC_SHORTCUT,
    LINK_VISIBILITY = DIAGNOSTIC_LINK_VISIBILITY,
    LINK_CREATION = DIAGNOSTIC_LINK_CREATION,
    LIVE_DATA = DIAGNOSTIC_LIVE_DATA
};

constexpr uint32_t QUIET = DIAGNOSTIC_QUIET;
constexpr uint32_t VERBOSE = DIAGNOSTIC_VERBOSE;

// Value models and leaves: quiet under QUIET unless VERBOSE is set too.
inline bool leaf_gate() {
    return (debug & (QUIET | VERBOSE)) != QUIET;
}

// Refresh, set and visibility of the base entry: only under QUIET or VERBOSE.
inline bool entry_gate() {
    return (debug & (QUIET | VERBOSE)) != 0;
}

// How a line begins. Each but NONE and FUNCTION_ONLY ends with the line number and a blank.
enum class Prefix {
    NONE,            // nothing
    FUNCTION_FIRST,  // "[function][file][line] "
    FILE_FIRST,      // "[file][function][line] "
    FUNCTION_ONLY,   // "[function] "
    TAB,             // as FUNCTION_FIRST, behind a tabulator
    TWO_TABS         // as FUNCTION_FIRST, behind two
};

struct Place {
    const char* function;
    const char* file;
    int line;
};

__attribute__((format(printf, 3, 4))) void write(Prefix prefix, const Place& place,
                                                 const char* format, ...);

// Tells the listener of a line while it is printed.
class Announcement {
public:
    explicit Announcement(uint32_t mask) { tell(mask); }
    ~Announcement() { tell(0); }
    Announcement(const Announcement&) = delete;
    Announcement& operator=(const Announcement&) = delete;

private:
    static void tell(uint32_t mask) {
        if (debug_listener != nullptr) {
            debug_listener(mask);
        }
    }
};

}  // namespace diagnostics

#define FRONTPANEL_LINE(gate, mask, prefix, function, ...)                                      \
    do {                                                                                        \
        if ((debug & (mask)) != 0 && (gate)) {                                                  \
            const ::diagnostics::Announcement announcement(mask);                               \
            ::diagnostics::write((prefix), {(function), __FILE_NAME__, __LINE__}, __VA_ARGS__); \
        }                                                                                       \
    } while (false)

// LEAF_LINE(mask, prefix, function, format, ...): a line of a value model or a leaf.
#define LEAF_LINE(mask, prefix, function, ...)                       \
    FRONTPANEL_LINE(::diagnostics::leaf_gate(), ::diagnostics::mask, \
                    ::diagnostics::Prefix::prefix, function, __VA_ARGS__)

// ENTRY_LINE(mask, prefix, function, format, ...): a line of the base entry's refresh, set or visibility.
#define ENTRY_LINE(mask, prefix, function, ...)                       \
    FRONTPANEL_LINE(::diagnostics::entry_gate(), ::diagnostics::mask, \
                    ::diagnostics::Prefix::prefix, function, __VA_ARGS__)

// SYSTEM_LOG(first, second, format, ...): a system-log line at error level behind "[first][second][line] ",
// written whatever `debug` holds. `format` is a literal.
#define SYSTEM_LOG(first, second, format, ...) \
    syslog(LOG_ERR, "[%s][%s][%d] " format, (first), (second), __LINE__, __VA_ARGS__)

#endif
