#include <frontpanel_base/input_error.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "support/folder.h"

namespace frontpanel {
namespace {

std::string error_of_reading(const std::string& file, size_t largest) {
    try {
        read_input_file(file, largest);
    } catch (const Input_error& error) {
        return error.what();
    }
    return "";
}

TEST(InputError, IsOneLineWithoutControlCharacters) {
    EXPECT_STREQ(Input_error("a\nb\tc\x1B[1m\x7F").what(), "a?b c?[1m?");
    EXPECT_EQ(one_line("Gain \xC2\xB0"), "Gain \xC2\xB0");
}

TEST(InputError, LeavesTheMiddleOfALongTextOut) {
    EXPECT_EQ(one_line(std::string(1000, 'x')), std::string(1000, 'x'));
    EXPECT_EQ(one_line(std::string(600, 'a') + std::string(600, 'b')),
              std::string(500, 'a') + " ... " + std::string(500, 'b'));
}

TEST(InputFile, IsReadAsItIs) {
    const support::Folder folder;
    const std::string text("a\0b\r\n", 5);
    std::ofstream(folder.file("input"), std::ios::binary) << text;
    EXPECT_EQ(read_input_file(folder.file("input")), text);
    std::ofstream(folder.file("empty")).flush();
    EXPECT_EQ(read_input_file(folder.file("empty")), "");
}

TEST(InputFile, ThatCannotBeReadIsNamed) {
    const support::Folder folder;
    EXPECT_EQ(error_of_reading("", LARGEST_INPUT), "a file without a name cannot be opened");
    EXPECT_EQ(error_of_reading(folder.file("absent"), LARGEST_INPUT),
              folder.file("absent") + ": cannot be opened: No such file or directory");
    EXPECT_THAT(error_of_reading(folder.file(""), LARGEST_INPUT),
                testing::EndsWith("cannot be read: Is a directory"));
}

TEST(InputFile, AFileOfTheLargestSizeIsReadAndALargerOneIsRefused) {
    const support::Folder folder;
    const std::string file = folder.file("input");
    const struct {
        size_t largest;
        const char* text;
    } CASES[] = {{size_t{64} * 1024, "64 KiB"}, {LARGEST_INPUT, "4 MiB"}};
    for (const auto& expected : CASES) {
        std::ofstream(file) << std::string(expected.largest, 'x');
        EXPECT_EQ(read_input_file(file, expected.largest).size(), expected.largest);
        std::ofstream(file, std::ios::app) << 'x';
        EXPECT_EQ(error_of_reading(file, expected.largest),
                  file + ": is larger than " + expected.text);
    }
}

TEST(InputFile, AnEndlessFileIsRefused) {
    EXPECT_EQ(error_of_reading("/dev/zero", LARGEST_INPUT), "/dev/zero: is larger than 4 MiB");
}

}  // namespace
}  // namespace frontpanel
