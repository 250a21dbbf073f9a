#include "parameters/source_text.h"

#include <gtest/gtest.h>

namespace frontpanel {
namespace {

TEST(SourceText, AByteIsShownAsItselfOrEscaped) {
    EXPECT_EQ(shown_byte('a'), "a");
    EXPECT_EQ(shown_byte('~'), "~");
    EXPECT_EQ(shown_byte('\x1B'), "\\x1b");
    EXPECT_EQ(shown_byte('\x7F'), "\\x7f");
    EXPECT_EQ(shown_byte('\xE4'), "\\xe4");
    EXPECT_EQ(shown_byte('\0'), "\\x00");
}

TEST(SourceText, AQuotationIsCutAfterFortyBytes) {
    EXPECT_EQ(quoted_source("gain\t"), "\"gain\\x09\"");
    const std::string forty(40, 'x');
    EXPECT_EQ(quoted_source(forty), "\"" + forty + "\"");
    EXPECT_EQ(quoted_source(forty + "y").find("\"" + forty), 0U);
    EXPECT_EQ(quoted_source(forty + "y").find('y'), std::string::npos);
}

}  // namespace
}  // namespace frontpanel
