#include <frontpanel_base/input_error.h>

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
