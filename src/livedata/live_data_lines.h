// The diagnostic lines of the live-data classes, which begin with the file.
#ifndef FRONTPANEL_DATA_SRC_LIVEDATA_LIVE_DATA_LINES_H
#define FRONTPANEL_DATA_SRC_LIVEDATA_LIVE_DATA_LINES_H

#include "diagnostics.h"

// LIVE_LINE(operation, format, ...): a diagnostic line.
#define LIVE_LINE(operation, ...) LEAF_LINE(LIVE_DATA, FILE_FIRST, operation, __VA_ARGS__)

// LIVE_TEXT(format, ...): a diagnostic line without a prefix.
#define LIVE_TEXT(...) LEAF_LINE(LIVE_DATA, NONE, "", __VA_ARGS__)

// LIVE_LOG(operation, format, ...): a system-log line; it needs an argument behind the format.
#define LIVE_LOG(operation, ...) SYSTEM_LOG(__FILE_NAME__, operation, __VA_ARGS__)

// LIVE_ERROR(operation, format, ...): the same text as a diagnostic line and in the system log.
#define LIVE_ERROR(operation, ...)         \
    do {                                   \
        LIVE_LINE(operation, __VA_ARGS__); \
        LIVE_LOG(operation, __VA_ARGS__);  \
    } while (false)

// LIVE_FAILURE(lead, operation, format, ...): a line on standard output whatever `debug` holds. The lead is
// "Error:" or "Error: ": both are in use, and readers of the output depend on them.
#define LIVE_FAILURE(lead, operation, ...)                                                   \
    do {                                                                                     \
        ::diagnostics::write_text(::diagnostics::UNCONDITIONAL, "%s", (lead));               \
        FRONTPANEL_PRINT_FILE_FIRST(::diagnostics::UNCONDITIONAL, (operation), __VA_ARGS__); \
    } while (false)

#endif
