#include <frontpanel_base/parameter_declaration.h>

#include <gtest/gtest.h>

#include <string>

namespace frontpanel {
namespace {

class Declaration {
public:
    explicit Declaration(const std::string& text) : m_document(m_source, text) {}

    Json_value value() { return {m_document.root(), problems}; }
    // The error that `read` ends with; empty when it does not.
    template <typename Read>
    std::string error_of(Read read) {
        try {
            read(value());
        } catch (const Placed_error& error) {
            return error.what();
        }
        return "";
    }

    Problems problems;

private:
    Source m_source{"menu.json", 0};
    Json_document m_document;
};

TEST(ParameterDeclaration, AnAddressIsAPidAndUpToTwoLevels) {
    EXPECT_EQ(pid_of(Declaration(R"({"pid": 4294967294})").value()), 4294967294U);
    EXPECT_EQ(Declaration(R"({"pid": 4294967295})").error_of(pid_of),
              "menu.json:1:9: expected a whole number from 0 to 4294967294, found 4294967295");
    EXPECT_EQ(levels_of(Declaration("{}").value()), std::vector<uint16_t>());
    EXPECT_EQ(levels_of(Declaration(R"({"index": [3, 255]})").value()),
              (std::vector<uint16_t>{3, 255}));
    EXPECT_EQ(Declaration(R"({"index": [1, 2, 3]})").error_of(levels_of),
              "menu.json:1:11: expected at most 2 levels, found 3");
    EXPECT_EQ(Declaration(R"({"index": [256]})").error_of(levels_of),
              "menu.json:1:12: expected a whole number from 0 to 255, found 256");
}

TEST(ParameterDeclaration, ATypeIsANumberOrAText) {
    EXPECT_FALSE(is_text_parameter(Declaration(R"({"type": "integer"})").value()));
    EXPECT_TRUE(is_text_parameter(Declaration(R"({"type": "text"})").value()));
    EXPECT_EQ(Declaration(R"({"type": "real"})").error_of(is_text_parameter),
              "menu.json:1:10: expected \"integer\" or \"text\", found \"real\"");
}

TEST(ParameterDeclaration, WrongLimitsAreReportedAndTheWidestTakeTheirPlace) {
    Declaration number(R"({"min": 5, "max": 4})");
    const Number_limits limits = number_limits_of(number.value(), number.problems);
    EXPECT_EQ(limits.min, 5);
    EXPECT_EQ(limits.max, 2147483647);
    EXPECT_EQ(number.problems.errors(),
              (std::vector<std::string>{
                  "menu.json:1:19: expected a whole number from 5 to 2147483647, found 4"}));
    Declaration text(R"({"length": 257})");
    EXPECT_EQ(text_limit_of(text.value(), text.problems), 256U);
    EXPECT_EQ(text.problems.errors(),
              (std::vector<std::string>{
                  "menu.json:1:12: expected a whole number from 1 to 256, found 257"}));
}

}  // namespace
}  // namespace frontpanel
