// Numbers under a locale whose decimal separator is a comma.
#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "unit/eval/evaluation.h"

namespace {

using evaluation::outcome_of;
using evaluation::value_of;

// Switches to a locale that writes one and a half as "1,5", compiled by localedef if the system has none.
class Comma_locale {
public:
    Comma_locale() {
        for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "de_DE", "fr_FR"}) {
            if (is_comma(name)) return;
        }
        compile();
        is_comma("comma");
    }
    ~Comma_locale() {
        std::setlocale(LC_ALL, "C");
        unsetenv("LOCPATH");
        if (!m_folder.empty()) std::filesystem::remove_all(m_folder);
    }
    Comma_locale(const Comma_locale&) = delete;
    Comma_locale& operator=(const Comma_locale&) = delete;

    bool is_set() const { return m_is_set; }

private:
    bool is_comma(const char* name) {
        m_is_set = std::setlocale(LC_NUMERIC, name) != nullptr &&
                   std::string(std::localeconv()->decimal_point) == ",";
        return m_is_set;
    }

    void compile() {
        std::string folder = (std::filesystem::temp_directory_path() / "comma-XXXXXX").string();
        if (mkdtemp(folder.data()) == nullptr) return;
        m_folder = folder;
        std::ofstream(folder + "/source") << "comment_char %\nescape_char /\nLC_NUMERIC\n"
                                             "decimal_point \",\"\nthousands_sep \".\"\n"
                                             "grouping 3;3\nEND LC_NUMERIC\n";
        const std::string command = "localedef -c -f ANSI_X3.4-1968 -i '" + folder + "/source' '" +
                                    folder + "/comma' >'" + folder + "/log' 2>&1";
        // It warns about the parts that the locale lacks; whether it worked shows when it is set.
        [[maybe_unused]] const int status = std::system(command.c_str());
        setenv("LOCPATH", folder.c_str(), 1);
    }

    std::string m_folder;
    bool m_is_set = false;
};

TEST(Evaluator_locale, NumbersDoNotDependOnIt) {
    const Comma_locale locale;
    if (!locale.is_set()) GTEST_SKIP() << "no locale with a decimal comma, and localedef made none";
    char shown[16];
    std::snprintf(shown, sizeof shown, "%.1f", 1.5);
    ASSERT_STREQ(shown, "1,5");

    EXPECT_EQ(outcome_of("r = 1.5"), "ok");
    EXPECT_EQ(value_of("r"), 1.5);
    EXPECT_EQ(outcome_of("r = .5e-1 + 2.25"), "ok");
    EXPECT_EQ(value_of("r"), 2.3);
    EXPECT_EQ(outcome_of("r = 1,5"), "ok");
    EXPECT_EQ(value_of("r"), 1.0);
    EXPECT_EQ(outcome_of("r = fmod(7,4)"), "ok");
    EXPECT_EQ(value_of("r"), 3.0);
    EXPECT_EQ(outcome_of("r = 1.5 #"), "1:9 Unexpected '#'");
}

}  // namespace
