#include "diagnostics.h"

#include <gtest/gtest.h>

#include <cstdarg>
#include <cstdio>
#include <string>
#include <vector>

#include "support/capture.h"
#include "support/line_gates.h"

namespace {

struct Log_line {
    int priority;
    std::string text;
};
std::vector<Log_line> g_log;

}  // namespace

extern "C" {
__attribute__((format(printf, 2, 3))) void __wrap_syslog(int priority, const char* format, ...);
}

void __wrap_syslog(int priority, const char* format, ...) {
    char text[256];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    g_log.push_back({priority, text});
}

namespace {

using support::capture;
using support::expect_line_gate;
using support::Gate;

TEST(DiagnosticLine, BeginsAsItsPrefixSays) {
    EXPECT_EQ(capture(0x1, [] { LEAF_LINE(GENERAL, NONE, "Op", "n=%d\n", 5); }).out, "n=5\n");
    EXPECT_EQ(capture(0x1, [] { LEAF_LINE(GENERAL, FUNCTION_FIRST, "Op", "n=%d\n", 5); }).out,
              "[Op][diagnostics_test.cpp][#] n=5\n");
    EXPECT_EQ(capture(0x1, [] { LEAF_LINE(GENERAL, FILE_FIRST, "Op", "n=%d\n", 5); }).out,
              "[diagnostics_test.cpp][Op][#] n=5\n");
    EXPECT_EQ(capture(0x1, [] { LEAF_LINE(GENERAL, FUNCTION_ONLY, "Op", "n=%d\n", 5); }).out,
              "[Op] n=5\n");
    EXPECT_EQ(capture(0x1, [] { LEAF_LINE(GENERAL, TAB, "Op", "n=%d\n", 5); }).out,
              "\t[Op][diagnostics_test.cpp][#] n=5\n");
    EXPECT_EQ(capture(0x1, [] { LEAF_LINE(GENERAL, TWO_TABS, "Op", "n=%d\n", 5); }).out,
              "\t\t[Op][diagnostics_test.cpp][#] n=5\n");
}

std::vector<uint32_t> g_told;

TEST(DiagnosticLine, TellsTheListenerItsMaskAndItsEnd) {
    g_told.clear();
    debug_listener = [](uint32_t mask) { g_told.push_back(mask); };
    const std::string out = capture(0x2, [] {
                                LEAF_LINE(GENERAL, NONE, "Op", "closed\n");
                                LEAF_LINE(MODEL_READ, NONE, "Op", "open\n");
                            }).out;
    debug_listener = nullptr;
    EXPECT_EQ(out, "open\n");
    EXPECT_EQ(g_told, (std::vector<uint32_t>{0x3, 0}));
}

TEST(DiagnosticLine, FindsItsMaskByItsNumber) {
    using diagnostics::Prefix;
    EXPECT_EQ(diagnostics::mask_of(diagnostics::place<Prefix::TAB, diagnostics::LIVE_DATA>(4000)),
              diagnostics::LIVE_DATA);
    EXPECT_EQ(diagnostics::mask_of(
                  diagnostics::place<Prefix::TWO_TABS, diagnostics::UNCONDITIONAL>(4000)),
              diagnostics::UNCONDITIONAL);
    g_told.clear();
    debug_listener = [](uint32_t mask) { g_told.push_back(mask); };
    capture(0x400, [] { LEAF_LINE(VISIBILITY, FUNCTION_FIRST, "Op", "n=%d\n", 5); });
    debug_listener = nullptr;
    EXPECT_EQ(g_told, (std::vector<uint32_t>{diagnostics::VISIBILITY, 0}));
}

TEST(DiagnosticLine, TakesATextWithoutArguments) {
    EXPECT_EQ(capture(0x1, [] { LEAF_LINE(GENERAL, NONE, "Op", "100 %%\n"); }).out, "100 %\n");
}

TEST(DiagnosticLine, TellsTheLineOfItsCall) {
    std::string expected;
    support::Stream_scope out(stdout);
    {
        const support::Debug_scope scope(0x1);
        expected = "[Op][diagnostics_test.cpp][" + std::to_string(__LINE__ + 1) + "] \n";
        LEAF_LINE(GENERAL, FUNCTION_FIRST, "Op", "\n");
    }
    EXPECT_EQ(out.text(), expected);
}

TEST(DiagnosticLine, OfALeafIsQuietUnderTheQuietBit) {
    expect_line_gate("line\n", 0x1, Gate::LEAF, [] { LEAF_LINE(GENERAL, NONE, "", "line\n"); });
    expect_line_gate("line\n", 0x1000001, Gate::LEAF,
                     [] { LEAF_LINE(LIVE_DATA, NONE, "", "line\n"); });
}

TEST(DiagnosticLine, OfAnEntryNeedsAVerbosityBit) {
    expect_line_gate("line\n", 0x35, Gate::ENTRY,
                     [] { ENTRY_LINE(ENTRY_REFRESH, NONE, "", "line\n"); });
}

TEST(DiagnosticLine, BehindAClosedGateEvaluatesNothing) {
    int evaluations = 0;
    const auto print = [&] { LEAF_LINE(GENERAL, NONE, "", "%d\n", ++evaluations); };
    for (const uint32_t mask : {0x0u, 0x2u, 0x4001u}) {
        EXPECT_EQ(capture(mask, print).out, "");
        EXPECT_EQ(evaluations, 0);
    }
    EXPECT_EQ(capture(0x1, print).out, "1\n");
}

TEST(DiagnosticLine, IsOneStatement) {
    if (debug != 0)
        LEAF_LINE(GENERAL, NONE, "", "never\n");
    else
        SUCCEED();
}

TEST(DiagnosticMasks, HaveTheirValues) {
    EXPECT_EQ(diagnostics::GENERAL, 0x1u);
    EXPECT_EQ(diagnostics::MODEL_READ, 0x3u);
    EXPECT_EQ(diagnostics::COMMIT, 0x5u);
    EXPECT_EQ(diagnostics::OPTIONS, 0x11u);
    EXPECT_EQ(diagnostics::BINDING, 0x21u);
    EXPECT_EQ(diagnostics::WRITE, 0x25u);
    EXPECT_EQ(diagnostics::ENTRY_REFRESH, 0x35u);
    EXPECT_EQ(diagnostics::CONSTRUCTION, 0x101u);
    EXPECT_EQ(diagnostics::VISIBILITY, 0x401u);
    EXPECT_EQ(diagnostics::BINDING_VISIBILITY, 0x421u);
    EXPECT_EQ(diagnostics::REFRESH, 0x10001u);
    EXPECT_EQ(diagnostics::DISPATCH, 0x10431u);
    EXPECT_EQ(diagnostics::LINK_NAVIGATION, 0x80001u);
    EXPECT_EQ(diagnostics::SHORTCUT, 0x200001u);
    EXPECT_EQ(diagnostics::LINK_VISIBILITY, 0x400001u);
    EXPECT_EQ(diagnostics::LINK_CREATION, 0x480001u);
    EXPECT_EQ(diagnostics::LIVE_DATA, 0x1000001u);
}

TEST(SystemLog, IsWrittenAtErrorLevelWhateverTheMask) {
    g_log.clear();
    const int line = __LINE__ + 1;
    SYSTEM_LOG("file.cpp", "Op", "failed ret[%d]\n", 7);
    ASSERT_EQ(g_log.size(), 1u);
    EXPECT_EQ(g_log[0].priority, LOG_ERR);
    EXPECT_EQ(g_log[0].text, "[file.cpp][Op][" + std::to_string(line) + "] failed ret[7]\n");
}

}  // namespace
