#include "options.h"

#include <gtest/gtest.h>

#include <sstream>
#include <streambuf>
#include <vector>

#include "inputs.h"
#include "shipped.h"

namespace frontpanel {
namespace {

struct Outcome {
    std::variant<Options, int> result;
    std::string out;
    std::string errors;
};

Outcome parse(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "frontpanel");
    std::ostringstream out;
    std::ostringstream errors;
    auto result = parse_options(static_cast<int>(arguments.size()), arguments.data(), out, errors);
    return {std::move(result), out.str(), errors.str()};
}

Options options_of(const std::vector<const char*>& arguments) {
    return std::get<Options>(parse(arguments).result);
}

TEST(Options, ShowTheShippedMenuOnTwentyByFourByDefault) {
    const Options options = options_of({});
    EXPECT_EQ(options.menu, shipped_menu());
    EXPECT_EQ(options.script, "");
    EXPECT_EQ(options.log, "");
    EXPECT_EQ(options.state, "");
    EXPECT_EQ(options.screenshot, "");
    EXPECT_EQ(options.size.columns, 20);
    EXPECT_EQ(options.size.rows, 4);
    EXPECT_EQ(options.debug, 0U);
    EXPECT_FALSE(options.check);
}

TEST(Options, AreTakenAsGiven) {
    const Options options =
        options_of({"--menu", "m", "--script", "s", "--log", "l", "--size", "40x4", "--debug",
                    "0x80000001", "--check", "--state", "v", "--screenshot", "p"});
    EXPECT_EQ(options.menu, "m");
    EXPECT_EQ(options.script, "s");
    EXPECT_EQ(options.log, "l");
    EXPECT_EQ(options.state, "v");
    EXPECT_EQ(options.screenshot, "p");
    EXPECT_EQ(options.size.columns, 40);
    EXPECT_EQ(options.size.rows, 4);
    EXPECT_EQ(options.debug, 0x80000001U);
    EXPECT_TRUE(options.check);
}

TEST(Options, TheSmallestAndLargestDisplayAreAccepted) {
    EXPECT_EQ(options_of({"--size", "16x2"}).size.columns, 16);
    EXPECT_EQ(options_of({"--size", "80x16"}).size.rows, 16);
}

TEST(Options, ASizeThatNoDisplayHasIsOneLineAndStatusTwo) {
    for (const char* size : {"15x2", "20x1", "81x2", "20x17", "20", "x", "20x", "x2", "20x2x",
                             "-20x2", "20X2", "99999999999x2", "20 x 2", ""}) {
        const Outcome outcome = parse({"--size", size});
        ASSERT_NE(std::get_if<int>(&outcome.result), nullptr) << size;
        EXPECT_EQ(std::get<int>(outcome.result), 2) << size;
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.errors,
                  std::string("frontpanel: --size: expected COLUMNSxROWS from 16x2 to 80x16, "
                              "found \"") +
                      size + "\"\n");
    }
}

TEST(Options, AnUnknownOptionIsOneLineAndStatusTwo) {
    for (const std::vector<const char*>& arguments : {std::vector<const char*>{"--colour"},
                                                      {"file"},
                                                      {"--menu"},
                                                      {"--debug", "much"},
                                                      {"--debug", "0x100000000"},
                                                      {"two\nlines"}}) {
        const Outcome outcome = parse(arguments);
        ASSERT_NE(std::get_if<int>(&outcome.result), nullptr) << arguments[0];
        EXPECT_EQ(std::get<int>(outcome.result), 2) << arguments[0];
        EXPECT_EQ(outcome.errors.find('\n'), outcome.errors.size() - 1) << outcome.errors;
        EXPECT_EQ(outcome.errors.rfind("frontpanel: ", 0), 0U) << outcome.errors;
    }
}

TEST(Options, AnErrorSaysWhatWasExpectedOrMeant) {
    const auto error_of = [](const std::vector<const char*>& arguments) {
        return parse(arguments).errors;
    };
    EXPECT_EQ(error_of({"--szie", "20x4"}),
              "frontpanel: The following arguments were not expected: 20x4 --szie; did you mean "
              "--size?\n");
    EXPECT_EQ(
        error_of({"--chek=1"}),
        "frontpanel: The following argument was not expected: --chek=1; did you mean --check?\n");
    EXPECT_EQ(error_of({"--debug", "zz"}),
              "frontpanel: --debug: expected a number from 0 to 0xffffffff, found \"zz\"\n");
    EXPECT_EQ(error_of({"--debug", "0x"}),
              "frontpanel: --debug: expected a number from 0 to 0xffffffff, found \"0x\"\n");
    EXPECT_EQ(error_of({"--debug", "-1"}),
              "frontpanel: --debug: expected a number from 0 to 0xffffffff, found \"-1\"\n");
}

TEST(Options, AFileWithoutANameIsRefused) {
    for (const char* option : {"--menu", "--script", "--log", "--state", "--screenshot"}) {
        const Outcome outcome = parse({option, ""});
        ASSERT_NE(std::get_if<int>(&outcome.result), nullptr) << option;
        EXPECT_EQ(std::get<int>(outcome.result), 2) << option;
        EXPECT_EQ(outcome.errors,
                  std::string("frontpanel: ") + option + ": expected the name of a file\n");
    }
}

TEST(Options, HelpFitsAPage) {
    const Outcome outcome = parse({"--help"});
    EXPECT_EQ(std::get<int>(outcome.result), 0);
    EXPECT_EQ(outcome.errors, "");
    std::istringstream lines(outcome.out);
    std::string line;
    int count = 0;
    while (std::getline(lines, line)) {
        ++count;
        EXPECT_LE(line.size(), 80U) << line;
    }
    EXPECT_LE(count, 40) << outcome.out;
    EXPECT_GE(count, 15) << outcome.out;
}

// A device that is full.
class Full_buffer : public std::streambuf {
    int overflow(int) override { return traits_type::eof(); }
};

TEST(Options, AReportThatCannotBeWrittenIsNoSuccess) {
    for (const char* const option : {"--help", "--version"}) {
        const char* const arguments[] = {"frontpanel", option};
        Full_buffer full;
        std::ostream out(&full);
        std::ostringstream errors;
        EXPECT_EQ(std::get<int>(parse_options(2, arguments, out, errors)), EXIT_BAD_INPUT);
        EXPECT_EQ(errors.str(), "frontpanel: standard output cannot be written\n") << option;
    }
}

TEST(Options, HelpHasALineForEachOption) {
    const std::string help = parse({"-h"}).out;
    EXPECT_NE(
        help.find("\n      --screenshot FILE    Write an SVG picture of the panel, then exit\n"),
        std::string::npos)
        << help;
    EXPECT_NE(help.find("\n      --check              Check the menu"), std::string::npos) << help;
    EXPECT_NE(help.find("\n  -h, --help               Print"), std::string::npos) << help;
}

TEST(Options, TheVersionIsOneLine) {
    const Outcome outcome = parse({"--version"});
    EXPECT_EQ(std::get<int>(outcome.result), 0);
    EXPECT_EQ(outcome.out, "frontpanel " FRONTPANEL_VERSION "\n");
    EXPECT_EQ(outcome.errors, "");
}

TEST(Options, TellDisplayKeysTimeOutAndPin) {
    const Options usual = options_of({});
    EXPECT_FALSE(usual.has_size);
    EXPECT_EQ(usual.display.display, nullptr);
    EXPECT_EQ(usual.keys.size(), 6U);
    EXPECT_EQ(usual.rom, &Character_rom::a00());
    EXPECT_EQ(options_of({"--charset", "a02"}).rom, &Character_rom::a02());
    EXPECT_EQ(usual.time_out, 300);
    EXPECT_EQ(usual.pin_file, "");

    const Options options =
        options_of({"--display", "lcdproc:localhost:2000", "--keys", "A=select,B=1", "--timeout",
                    "0", "--pin-file", "pin", "--size", "16x2"});
    EXPECT_TRUE(options.has_size);
    ASSERT_NE(options.display.display, nullptr);
    EXPECT_STREQ(options.display.display->name, "lcdproc");
    EXPECT_EQ(options.display.argument, "localhost:2000");
    EXPECT_EQ(options.keys.at("B").button, 1);
    EXPECT_EQ(options.time_out, 0);
    EXPECT_EQ(options.pin_file, "pin");
}

TEST(Options, SeveralInputsHaveTheirKeys) {
    if (!has_inputs()) {
        GTEST_SKIP() << "built without inputs";
    }
    const Options options =
        options_of({"--input", "evdev:/dev/input/event0", "--input", "evdev:A knob", "--keys",
                    "KEY_A=select,REL_X=down", "--check"});
    EXPECT_EQ(options.inputs, (std::vector<std::string>{"/dev/input/event0", "A knob"}));
    EXPECT_EQ(options.input_keys.size(), 2U);
    EXPECT_EQ(options.keys.size(), 6U);
    EXPECT_TRUE(options.check);
}

TEST(Options, LedsHaveTheirFolders) {
    EXPECT_EQ(options_of({"--leds", "alarm=red,edit=/tmp/led"}).leds,
              (Led_map{{"alarm", "/sys/class/leds/red"}, {"edit", "/tmp/led"}}));
}

TEST(Options, WhatIsNoDisplayKeyMapOrTimeOutIsOneLine) {
    const std::vector<std::vector<const char*>> CASES = {
        {"--display", "screen"},  {"--charset", "utf-8"}, {"--input", "knob"},
        {"--leds", "power=red"},

        {"--keys", "A=jump"},     {"--timeout", "-1"},    {"--timeout", "86401"},
        {"--timeout", "a while"}, {"--pin-file", ""},
    };
    for (const std::vector<const char*>& arguments : CASES) {
        const Outcome outcome = parse(arguments);
        ASSERT_TRUE(std::holds_alternative<int>(outcome.result)) << arguments[1];
        EXPECT_EQ(std::get<int>(outcome.result), EXIT_BAD_INPUT) << arguments[1];
        EXPECT_EQ(outcome.errors.rfind(std::string("frontpanel: ") + arguments[0], 0), 0U)
            << outcome.errors;
        EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1)
            << outcome.errors;
    }
}

}  // namespace
}  // namespace frontpanel
