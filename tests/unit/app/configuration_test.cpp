#include "configuration.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <vector>

#include "file_roles.h"
#include "inputs.h"
#include "options.h"
#include "support/folder.h"

#include <frontpanel_base/input_error.h>

namespace frontpanel {
namespace {

class Configuration : public testing::Test {
protected:
    std::variant<Options, int> parse(const std::string& text,
                                     std::vector<const char*> arguments = {}) {
        std::ofstream(m_file) << text;
        arguments.insert(arguments.begin(), {"frontpanel", "--config", m_file.c_str()});
        std::ostringstream out;
        std::ostringstream errors;
        auto result =
            parse_options(static_cast<int>(arguments.size()), arguments.data(), out, errors);
        m_errors = errors.str();
        return result;
    }

    Options options_of(const std::string& text, const std::vector<const char*>& arguments = {}) {
        const auto result = parse(text, arguments);
        EXPECT_TRUE(std::holds_alternative<Options>(result)) << m_errors;
        return std::holds_alternative<Options>(result) ? std::get<Options>(result) : Options();
    }

    // What is reported behind the file's name; the status is that of bad input.
    std::string error_of(const std::string& text, const std::vector<const char*>& arguments = {}) {
        const auto result = parse(text, arguments);
        EXPECT_TRUE(std::holds_alternative<int>(result)) << text;
        EXPECT_EQ(std::holds_alternative<int>(result) ? std::get<int>(result) : 0, EXIT_BAD_INPUT);
        const std::string start = "frontpanel: " + m_file + ":";
        EXPECT_EQ(m_errors.rfind(start, 0), 0U) << m_errors;
        return m_errors.substr(std::min(start.size(), m_errors.size()));
    }

    support::Folder m_folder;
    std::string m_file = m_folder.file("panel.conf");
    std::string m_errors;
};

TEST_F(Configuration, GivesEachOptionItsValue) {
    const Options options = options_of(
        "# a comment\n"
        "; another\n"
        "\n"
        "[default]\n"
        "menu = m  # this one too\n"
        "  size=16x2\r\n"
        "state = 'a state'\n"
        "screenshot = \"a#b.svg\"\n"
        "log = it's\n"
        "debug=0x8401\n"
        "display = lcdproc:[::1]:13666\n"
        "keys = \"Up=up,Enter=select\"\n"
        "timeout = 12\n"
        "still\n"
        "no-acceleration = true\n"
        "check = false\n"
        "dump\n");
    EXPECT_EQ(options.menu, "m");
    EXPECT_EQ(options.size.columns, 16);
    EXPECT_TRUE(options.has_size);
    EXPECT_EQ(options.state, "a state");
    EXPECT_EQ(options.screenshot, "a#b.svg");
    EXPECT_EQ(options.log, "it's");
    EXPECT_EQ(options.debug, 0x8401U);
    EXPECT_EQ(options.display.argument, "[::1]:13666");
    EXPECT_EQ(options.keys.size(), 2U);
    EXPECT_EQ(options.time_out, 12);
    EXPECT_TRUE(options.still);
    EXPECT_TRUE(options.no_acceleration);
    EXPECT_FALSE(options.check);
    EXPECT_EQ(options.dump, "table");
    EXPECT_EQ(options_of("dump=json").dump, "json");
    EXPECT_TRUE(options_of("\xEF\xBB\xBFstill\n").still);
}

TEST_F(Configuration, AnOptionWithoutAValueIsOnOrOff) {
    for (const char* const word : {"true", "yes", "on", "1", "True"}) {
        EXPECT_TRUE(options_of(std::string("still = ") + word).still) << word;
        EXPECT_EQ(options_of(std::string("dump = ") + word).dump, "table") << word;
    }
    for (const char* const word : {"false", "no", "off", "0", "NO"}) {
        EXPECT_FALSE(options_of(std::string("still = ") + word).still) << word;
        EXPECT_EQ(options_of(std::string("dump = ") + word).dump, "") << word;
    }
    EXPECT_EQ(error_of("still = maybe"), "1: --still: expected true or false, found \"maybe\"\n");
    EXPECT_EQ(error_of("still = 2"), "1: --still: expected true or false, found \"2\"\n");
}

TEST_F(Configuration, AnOptionThatMayBeGivenSeveralTimesHasALineEachOrAList) {
    if (!has_inputs()) {
        GTEST_SKIP() << "built without inputs";
    }
    const std::vector<std::string> wanted{"/dev/input/event0", "A knob"};
    EXPECT_EQ(options_of("input = evdev:/dev/input/event0\ninput = \"evdev:A knob\"\n").inputs,
              wanted);
    EXPECT_EQ(options_of("input = [\"evdev:/dev/input/event0\", \"evdev:A knob\"]\n").inputs,
              wanted);
    EXPECT_EQ(options_of("input = evdev:one\n", {"--input", "evdev:two"}).inputs,
              std::vector<std::string>{"two"});
    EXPECT_EQ(error_of("input = evdev:one\ninput = two\n"),
              "2: --input: expected evdev:PATH or evdev:NAME, found \"two\"\n");
}

TEST_F(Configuration, TheCommandLineWins) {
    const Options options =
        options_of("size = 16x2\nmenu = file\ntimeout = 1\n", {"--size", "40x4", "--menu=line"});
    EXPECT_EQ(options.size.columns, 40);
    EXPECT_EQ(options.menu, "line");
    EXPECT_EQ(options.time_out, 1);
}

TEST_F(Configuration, AReportOfTheCommandLineTakesThePlaceOfAnother) {
    const Options options = options_of("graph\ndebug = 1\n", {"--dump"});
    EXPECT_EQ(options.dump, "table");
    EXPECT_FALSE(options.graph);
    EXPECT_EQ(options.debug, 1U);
    EXPECT_FALSE(options_of("graph\n", {"--check"}).graph);
    EXPECT_FALSE(options_of("check\n", {"--probe"}).check);
}

TEST_F(Configuration, MistakesAreReportedWithFileAndLine) {
    EXPECT_EQ(error_of("\n\nszie = 16x2\n"),
              "3: unknown option \"szie\"; did you mean \"size\"?\n");
    EXPECT_EQ(error_of("size = 16x2\nsize = 16x2\n"), "2: duplicate option \"size\"\n");
    EXPECT_EQ(error_of("size = 9x2\n"),
              "1: --size: expected COLUMNSxROWS from 16x2 to 80x16, found \"9x2\"\n");
    EXPECT_EQ(error_of("timeout = never"),
              "1: --timeout: expected seconds from 0 to 86400, found \"never\"\n");
    EXPECT_EQ(error_of("menu = \"\""), "1: --menu: expected the name of a file\n");
    EXPECT_EQ(error_of("dump = xml"), "1: --dump: expected table or json, found \"xml\"\n");
    EXPECT_EQ(error_of("graph\ndump\n"), "2: --dump excludes --graph\n");
    EXPECT_EQ(error_of("keys = Up=up,Enter=select"),
              "1: --keys: expected one value: quote a text with commas or blanks\n");
    EXPECT_EQ(error_of("menu = my menu.json"),
              "1: --menu: expected one value: quote a text with commas or blanks\n");
}

TEST_F(Configuration, WhatHasNoFormIsReportedWithFileAndLine) {
    EXPECT_EQ(error_of("# \"\n\nmenu = \"my.json\n"), "3: expected \" at the end of the text\n");
    EXPECT_EQ(error_of("menu = \n"), "1: expected a value after \"=\"\n");
    EXPECT_EQ(error_of("menu = # my.json\n"), "1: expected a value after \"=\"\n");
    EXPECT_EQ(error_of("menu = []\n"), "1: --menu: expected a value\n");
    EXPECT_EQ(error_of("menu = [a,\nb]\n"), "1: expected \"]\" on the same line\n");
    EXPECT_EQ(error_of("[panel]\nsize = 16x2\n"),
              "1: expected an option, found the section \"[panel]\"\n");
    EXPECT_EQ(error_of("= 16x2\n"), "1: expected the name of an option\n");
    EXPECT_EQ(error_of("a\n"), "1: unknown option \"a\"\n");
    EXPECT_EQ(error_of("panel.size = 16x2\n"), "1: unknown option \"panel.size\"\n");
    EXPECT_EQ(error_of(std::string("still\nme\0nu = a\n", 16)), "2: control character\n");
    EXPECT_EQ(error_of("menu = \x1B[2J\n"), "1: control character\n");
}

TEST_F(Configuration, HelpVersionAndAnotherFileStandOnTheCommandLineOnly) {
    for (const char* const name : {"help", "version", "config"}) {
        EXPECT_EQ(error_of(std::string(name) + " = x\n"),
                  std::string("1: unknown option \"") + name + "\"\n");
    }
}

TEST_F(Configuration, AFileThatCannotBeReadIsOneLine) {
    const std::string missing = m_folder.file("missing");
    const char* const arguments[] = {"frontpanel", "--config", missing.c_str()};
    std::ostringstream out;
    std::ostringstream errors;
    EXPECT_EQ(std::get<int>(parse_options(3, arguments, out, errors)), EXIT_BAD_INPUT);
    EXPECT_EQ(errors.str(),
              "frontpanel: " + missing + ": cannot be opened: No such file or directory\n");
}

TEST_F(Configuration, FilesAreProtectedAsThoseOfTheCommandLine) {
    EXPECT_THROW(check_files(options_of("menu = same\nstate = same\n")), Input_error);
    EXPECT_THROW(check_files(options_of("screenshot = same\n", {"--menu", "same"})), Input_error);
    EXPECT_THROW(check_files(options_of("state = \"" + m_file + "\"\n")), Input_error);
    EXPECT_NO_THROW(check_files(options_of("menu = one\nstate = two\n")));
}

TEST_F(Configuration, EachLineOfTheExampleIsAccepted) {
    std::ifstream example(FRONTPANEL_SOURCE_DIR "/packaging/frontpanel.conf");
    int count = 0;
    for (std::string line; std::getline(example, line);) {
        ASSERT_TRUE(line.empty() || line[0] == '#') << line << ": the example changes something";
        if (line.size() > 1 && line[1] != ' ') {
            SCOPED_TRACE(line);
            if (has_inputs() || line.rfind("#input = ", 0) != 0) {
                options_of(line.substr(1) + '\n');
            }
            ++count;
        }
    }
    EXPECT_GE(count, 16);
}

}  // namespace
}  // namespace frontpanel
