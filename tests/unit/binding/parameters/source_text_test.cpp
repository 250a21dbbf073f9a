#include "parameters/source_text.h"

#include <gtest/gtest.h>

namespace frontpanel {
namespace {

TEST(SourceText, ACharacterIsShownAsItselfOrEscaped) {
    EXPECT_EQ(shown_character("ab"), "a");
    EXPECT_EQ(shown_character("~"), "~");
    EXPECT_EQ(shown_character("\u00E4b"), "\u00E4");
    EXPECT_EQ(shown_character("\u20AC"), "\u20AC");
    EXPECT_EQ(shown_character("\x1B"), "\\x1b");
    EXPECT_EQ(shown_character("\x7F"), "\\x7f");
    EXPECT_EQ(shown_character("\xE4z"), "\\xe4");
    EXPECT_EQ(shown_character("\uFEFFvisible"), "\\xef\\xbb\\xbf");
    EXPECT_EQ(shown_character(std::string(1, '\0')), "\\x00");
}

TEST(SourceText, AQuotationIsCutAfterFortyBytes) {
    EXPECT_EQ(quoted_source("gain\t"), "\"gain\\x09\"");
    EXPECT_EQ(quoted_source("\"W\u00E4rme\""), "\"\"W\u00E4rme\"\"");
    const std::string forty(40, 'x');
    EXPECT_EQ(quoted_source(forty), "\"" + forty + "\"");
    EXPECT_EQ(quoted_source(forty + "y"), "\"" + forty + "...\"");
    EXPECT_EQ(quoted_source(forty.substr(1) + "\u00E4"), "\"" + forty.substr(1) + "...\"");
}

}  // namespace
}  // namespace frontpanel
