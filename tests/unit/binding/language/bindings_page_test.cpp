// The examples of docs/bindings.md: the page is read, and what it says is what happens.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "unit/binding/language/language_fixture.h"

using namespace frontpanel;

namespace {

using support::Language;

std::vector<std::string> page() {
    std::ifstream file(FRONTPANEL_SOURCE_DIR "/docs/bindings.md");
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

// The lines below the heading `## NAME`, up to the next of its rank.
std::vector<std::string> section(const std::string& name) {
    std::vector<std::string> lines;
    bool is_inside = false;
    for (const std::string& line : page()) {
        if (line.rfind("## ", 0) == 0) {
            is_inside = line == "## " + name;
        } else if (is_inside) {
            lines.push_back(line);
        }
    }
    return lines;
}

// The texts in backquotes of a table's row.
std::vector<std::string> code_of(const std::string& row) {
    std::vector<std::string> code;
    std::istringstream parts(row);
    std::string part;
    for (bool is_code = false; std::getline(parts, part, '`'); is_code = !is_code) {
        if (is_code) {
            code.push_back(part);
        }
    }
    return code;
}

// The page's own names beside those of every test.
void declare_more(Language& language) {
    const char* const NAMES[] = {"preset", "output", "input", "locked"};
    for (std::size_t i = 0; i < std::size(NAMES); ++i) {
        language.declare(NAMES[i], INTEGER, static_cast<uint32_t>(500 + i));
        language.values.numbers[NAMES[i]] = 1;
    }
}

TEST(Bindings_page, EveryBlockOfRulesCompiles) {
    Language language;
    declare_more(language);
    std::string block;
    bool is_inside = false;
    int blocks = 0;
    for (const std::string& line : page()) {
        if (is_inside && line == "```") {
            SCOPED_TRACE(block);
            EXPECT_EQ(language.error_of(block), "ok");
            ++blocks;
            is_inside = false;
        } else if (is_inside) {
            block += line + "\n";
        } else if (line == "```binding") {
            block.clear();
            is_inside = true;
        }
    }
    EXPECT_FALSE(is_inside);
    EXPECT_EQ(blocks, 7);
}

TEST(Bindings_page, TheExamplesYieldWhatThePageSays) {
    Language language;
    int examples = 0;
    for (const std::string& line : section("Examples")) {
        const std::vector<std::string> code = code_of(line);
        if (line.rfind("| `", 0) == 0) {
            ASSERT_EQ(code.size(), 2U) << line;
            EXPECT_EQ(language.outcome(code[0]), code[1]) << line;
            ++examples;
        }
    }
    EXPECT_GE(examples, 10);
}

TEST(Bindings_page, TheValuesOfTheExamplesAreThoseOfThisTest) {
    const Language language;
    const support::Named_values& values = language.values;
    std::string sentence;
    for (const std::string& line : section("Examples")) {
        sentence = sentence.empty() ? line : sentence;
    }
    const auto number = [&](const char* name) {
        return " `" + std::string(name) + "` " + std::to_string(values.numbers.at(name)) + ",";
    };
    EXPECT_EQ(sentence, "With" + number("gain") + number("mode") + number("limit") +
                            number("delta") + " `title` \"" + values.texts.at("title") +
                            "\" and the entry's own value " + std::to_string(values.own_number) +
                            ":");
}

TEST(Bindings_page, TheMistakesAreReportedAsThePageSays) {
    Language language;
    int mistakes = 0;
    for (const std::string& line : section("Mistakes")) {
        const std::vector<std::string> code = code_of(line);
        if (line.rfind("| `", 0) == 0) {
            ASSERT_EQ(code.size(), 2U) << line;
            EXPECT_EQ(language.error_of(code[0]), code[1]) << line;
            ++mistakes;
        }
    }
    EXPECT_GE(mistakes, 8);
}

TEST(Bindings_page, DoubtfulRulesAreWarnedOfAsThePageSays) {
    Language language;
    int doubts = 0;
    for (const std::string& line : section("Doubtful rules")) {
        const std::vector<std::string> code = code_of(line);
        if (line.rfind("| `", 0) == 0) {
            ASSERT_EQ(code.size(), 2U) << line;
            const Compile_result compiled = language.compile(code[0]);
            ASSERT_EQ(compiled.warnings.size(), 1U) << line;
            EXPECT_EQ(compiled.warnings[0].text(), code[1]) << line;
            ++doubts;
        }
    }
    EXPECT_GE(doubts, 1);
}

TEST(Bindings_page, TheLimitsAreThoseOfTheCompiler) {
    std::string limits;
    for (const std::string& line : section("Limits")) {
        limits += line + "\n";
    }
    Language language;
    const auto error_beyond = [&](const std::string& source) {
        return language.error_of(source) != "ok";
    };
    EXPECT_NE(limits.find("| a source text | 1,048,576 bytes |"), std::string::npos);
    EXPECT_FALSE(error_beyond("visible if 1" + std::string(1048576 - 12, ' ')));
    EXPECT_TRUE(error_beyond("visible if 1" + std::string(1048577 - 12, ' ')));
    EXPECT_NE(limits.find("| levels of nesting in an expression | 64,"), std::string::npos);
    const auto nested = [](std::size_t levels) {
        return "visible if " + std::string(levels, '(') + "1" + std::string(levels, ')');
    };
    EXPECT_FALSE(error_beyond(nested(64)));
    EXPECT_TRUE(error_beyond(nested(65)));
    EXPECT_NE(limits.find("| reported errors of a text, and reported warnings | 100 each |"),
              std::string::npos);
    std::string mistakes;
    for (int i = 0; i < 101; ++i) {
        mistakes += "!;";
    }
    EXPECT_EQ(language.compile(mistakes).errors.size(), 100U);
    EXPECT_NE(limits.find("| bytes of a text in a rule, read or computed | 256 |"),
              std::string::npos);
    EXPECT_FALSE(error_beyond("warn \"" + std::string(256, 'x') + "\""));
    EXPECT_TRUE(error_beyond("warn \"" + std::string(257, 'x') + "\""));
}

}  // namespace
