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
bool leaf_gate();

// Refresh, set and visibility of the base entry: only under QUIET or VERBOSE.
bool entry_gate();

// When optimising for size, the test is a function call: inline, it takes some twenty bytes at each of two hundred
// lines.
#ifdef __OPTIMIZE_SIZE__
#define FRONTPANEL_GATE_CALL __attribute__((noinline))
#else
#define FRONTPANEL_GATE_CALL inline
#endif

// Whether a line with this mask is printed.
template <uint32_t MASK, bool (*GATE)()>
FRONTPANEL_GATE_CALL bool is_open() {
    return (debug & MASK) != 0 && GATE();
}

// How a line begins. Each but NONE and FUNCTION_ONLY ends with the line number and a blank.
enum class Prefix : uint32_t {
    NONE,            // nothing
    FUNCTION_FIRST,  // "[function][file][line] "
    FILE_FIRST,      // "[file][function][line] "
    FUNCTION_ONLY,   // "[function] "
    TAB,             // as FUNCTION_FIRST, behind a tabulator
    TWO_TABS         // as FUNCTION_FIRST, behind two
};

// The mask of a line that does not depend on `debug`. The listener is not called for it.
constexpr uint32_t UNCONDITIONAL = 0;

// The masks of lines. A line names its mask by its number here.
inline constexpr uint32_t MASKS[] = {UNCONDITIONAL,
                                     GENERAL,
                                     MODEL_READ,
                                     COMMIT,
                                     OPTIONS,
                                     BINDING,
                                     WRITE,
                                     ENTRY_REFRESH,
                                     CONSTRUCTION,
                                     VISIBILITY,
                                     BINDING_VISIBILITY,
                                     REFRESH,
                                     DISPATCH,
                                     LINK_NAVIGATION,
                                     SHORTCUT,
                                     LINK_VISIBILITY,
                                     LINK_CREATION,
                                     LIVE_DATA};
constexpr uint32_t MASK_COUNT = sizeof MASKS / sizeof *MASKS;

constexpr uint32_t number_of(uint32_t mask) {
    uint32_t number = 0;
    while (number < MASK_COUNT && MASKS[number] != mask) {
        ++number;
    }
    return number;
}

// The source line, the number of the mask and that of the prefix in one argument instead of three, which keeps two
// hundred calls small.
constexpr uint32_t PREFIX_BITS = 3;
constexpr uint32_t MASK_BITS = 5;
template <Prefix PREFIX, uint32_t MASK>
constexpr uint32_t place(int line) {
    static_assert(number_of(MASK) < MASK_COUNT && MASK_COUNT <= 1U << MASK_BITS);
    return (static_cast<uint32_t>(line) << MASK_BITS | number_of(MASK)) << PREFIX_BITS |
           static_cast<uint32_t>(PREFIX);
}
constexpr uint32_t mask_of(uint32_t place) {
    return MASKS[place >> PREFIX_BITS & ((1U << MASK_BITS) - 1)];
}

// Calls the listener with the mask of a line before the line is printed, and with 0 afterwards. `write` does this itself. Use
// this class for a line with an argument that prints lines of its own: they belong between the two calls.
class Announcement {
public:
    explicit Announcement(uint32_t mask);
    ~Announcement();
    Announcement(const Announcement&) = delete;
    Announcement& operator=(const Announcement&) = delete;

private:
    void tell(uint32_t mask) const;

    const bool m_tells;
};

// Prints a line. Calls the listener with the line's mask before it, and with 0 after it.
__attribute__((cold, format(printf, 4, 5))) void write(uint32_t place, const char* function,
                                                       const char* file, const char* format, ...);
// The same without a prefix.
__attribute__((cold, format(printf, 2, 3))) void write_text(uint32_t mask, const char* format, ...);

}  // namespace diagnostics

// The call that prints a line, for each prefix.
#define FRONTPANEL_PRINT_NONE(mask, function, ...) ::diagnostics::write_text(mask, __VA_ARGS__)
#define FRONTPANEL_PRINT_FUNCTION_FIRST(mask, ...) \
    FRONTPANEL_PRINT(FUNCTION_FIRST, mask, __VA_ARGS__)
#define FRONTPANEL_PRINT_FILE_FIRST(mask, ...) FRONTPANEL_PRINT(FILE_FIRST, mask, __VA_ARGS__)
#define FRONTPANEL_PRINT_FUNCTION_ONLY(mask, ...) FRONTPANEL_PRINT(FUNCTION_ONLY, mask, __VA_ARGS__)
#define FRONTPANEL_PRINT_TAB(mask, ...) FRONTPANEL_PRINT(TAB, mask, __VA_ARGS__)
#define FRONTPANEL_PRINT_TWO_TABS(mask, ...) FRONTPANEL_PRINT(TWO_TABS, mask, __VA_ARGS__)
#define FRONTPANEL_PRINT(prefix, mask, function, ...)                                         \
    ::diagnostics::write(::diagnostics::place<::diagnostics::Prefix::prefix, mask>(__LINE__), \
                         function, __FILE_NAME__, __VA_ARGS__)

#define FRONTPANEL_LINE(gate, mask, prefix, function, ...)                         \
    do {                                                                           \
        if (::diagnostics::is_open<::diagnostics::mask, ::diagnostics::gate>()) {  \
            FRONTPANEL_PRINT_##prefix(::diagnostics::mask, function, __VA_ARGS__); \
        }                                                                          \
    } while (false)

// LEAF_LINE(mask, prefix, function, format, ...): a line of a value model or a leaf.
#define LEAF_LINE(mask, prefix, function, ...) \
    FRONTPANEL_LINE(leaf_gate, mask, prefix, function, __VA_ARGS__)

// ENTRY_LINE(mask, prefix, function, format, ...): a line of the base entry's refresh, set or visibility.
#define ENTRY_LINE(mask, prefix, function, ...) \
    FRONTPANEL_LINE(entry_gate, mask, prefix, function, __VA_ARGS__)

// SYSTEM_LOG(first, second, format, ...): a system-log line at error level behind "[first][second][line] ",
// written whatever `debug` holds. `format` is a literal.
#define SYSTEM_LOG(first, second, format, ...) \
    syslog(LOG_ERR, "[%s][%s][%d] " format, (first), (second), __LINE__, __VA_ARGS__)

#endif
