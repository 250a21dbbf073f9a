#include "file/product_options.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace frontpanel {
namespace {

class Product_options_test : public testing::Test {
protected:
    Json_value value(const std::string& text) {
        m_document = std::make_unique<Json_document>(m_source, text);
        return {m_document->root(), m_problems};
    }

    Source m_source{"menu.json", 0};
    std::unique_ptr<Json_document> m_document;
    Problems m_problems;
    Work_budget m_work{m_problems};
    Product_options m_options{m_problems, m_work};
};

TEST_F(Product_options_test, TheHighestValueOfAnOptionCounts) {
    m_options.declare(value(R"({"gps": 1, "slots": 4})"));
    m_options.declare("gps", 3);
    m_options.declare("slots", 2);
    EXPECT_EQ(m_options.values(),
              (std::map<std::string, unsigned int>{{"gps", 3U}, {"slots", 4U}}));
}

TEST_F(Product_options_test, AMistakeIsReportedAndTheOthersCount) {
    m_options.declare(
        value(R"({"": 1, "gps": -1, "dolby": 1, ")" + std::string(64, 'x') + R"(": 1})"));
    EXPECT_EQ(m_options.values(), (std::map<std::string, unsigned int>{{"dolby", 1U}}));
    EXPECT_EQ(m_problems.error_count(), 3U);
}

TEST_F(Product_options_test, ANameThatIsNotDeclaredIsWarnedOf) {
    m_options.declare(value(R"({"gps": 1, "slot{n}": 2})"));
    m_options.expect("dolby");
    m_options.use(value(R"(["gsp", 3, "dolby", "slot7", "slot{n}"])"));
    EXPECT_EQ(m_problems.warnings(),
              (std::vector<std::string>{"menu.json:1:2: warning: no product option \"gsp\" is "
                                        "declared; did you mean \"gps\"?"}));
    EXPECT_EQ(m_problems.error_count(), 1U);
}

TEST_F(Product_options_test, TheNumberOfAPatternEndsItsName) {
    m_options.declare(value(R"({"{n}": 1, "a{n}b": 1, "a{n}{n}": 1, "slot{n}": 1})"));
    EXPECT_EQ(m_options.values().size(), 1U);
    EXPECT_EQ(m_problems.error_count(), 3U);
}

TEST_F(Product_options_test, TestsOfOptionsTakeWorkForEachOptionThatTheProductHas) {
    std::string options;
    for (int i = 0; i < 1000; ++i) {
        options += (i == 0 ? "{" : ", ") + ("\"o" + std::to_string(i) + "\": 1");
    }
    m_options.declare(value(options + "}"));
    const size_t most = Work_budget::MOST_STEPS * Work_budget::COMPARISONS_IN_STEP / 1000;
    const Json_value item = value("[7]");
    EXPECT_TRUE(m_problems.attempt([&] { m_options.copy(item, most - 9); }));
    EXPECT_TRUE(m_problems.attempt([&] { m_options.use(value("[\"o1\"]")); }));
    EXPECT_FALSE(m_problems.attempt([&] { m_options.use(value("[\"o1\"]")); }));
    EXPECT_EQ(m_problems.errors().size(), 1U);
}

}  // namespace
}  // namespace frontpanel
