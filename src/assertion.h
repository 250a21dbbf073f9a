// Assertions for programming errors: active in every build type, but for those whose test costs too much.
#ifndef FRONTPANEL_DATA_SRC_ASSERTION_H
#define FRONTPANEL_DATA_SRC_ASSERTION_H

namespace assertion {

// Prints "FILE:LINE: FUNCTION: Assertion `TEXT' failed." to standard error and aborts.
[[noreturn]] void fail(const char* text, const char* file, int line, const char* function);

}  // namespace assertion

// FRONTPANEL_ASSERT(condition, text): `text` is the documented form of the condition, and is printed unchanged.
#define FRONTPANEL_ASSERT(condition, text)               \
    (static_cast<bool>(condition) ? static_cast<void>(0) \
                                  : ::assertion::fail((text), __FILE_NAME__, __LINE__, __func__))

// FRONTPANEL_DEBUG_ASSERT(condition, text): the same in builds without NDEBUG; elsewhere `condition` is not
// evaluated.
#ifdef NDEBUG
#define FRONTPANEL_DEBUG_ASSERT(condition, text) \
    static_cast<void>(false && static_cast<bool>(condition))
#else
#define FRONTPANEL_DEBUG_ASSERT(condition, text) FRONTPANEL_ASSERT(condition, text)
#endif

#endif
