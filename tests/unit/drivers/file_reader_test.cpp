#include "file_reader.h"

#include <gtest/gtest.h>

#include <fstream>

#include "support/folder.h"

namespace frontpanel {
namespace {

TEST(File_reader, AFileIsReadOnce) {
    const support::Folder folder;
    std::ofstream(folder.file("value")) << "1";
    File_reader reader;
    EXPECT_EQ(reader.read(folder.file("value")).text, "1");
    std::ofstream(folder.file("value")) << "2";
    EXPECT_EQ(reader.read(folder.file("value")).text, "1");
    EXPECT_EQ(File_reader().read(folder.file("value")).text, "2");
}

// A value that was cut would be another value.
TEST(File_reader, OfALargeFileTheWholeLinesOfItsBeginningAreRead) {
    const support::Folder folder;
    const std::string first(File_reader::LARGEST - 3, 'x');
    std::ofstream(folder.file("large")) << first + "\n12345\n";
    EXPECT_EQ(File_reader().read(folder.file("large")).text, first + "\n");
    std::ofstream(folder.file("full")) << first + "x\n\n";
    EXPECT_EQ(File_reader().read(folder.file("full")).text, first + "x\n\n");
    std::ofstream(folder.file("line")) << std::string(File_reader::LARGEST + 1, '1');
    EXPECT_EQ(File_reader().read(folder.file("line")).text, "");
    EXPECT_EQ(File_reader().read(folder.file("line")).failure, "the first line is too long");
    EXPECT_EQ(File_reader().read("/dev/zero").failure, "the first line is too long");
}

TEST(File_reader, AFailureIsAReason) {
    File_reader reader;
    EXPECT_EQ(reader.read("/nowhere/at/all").failure, "No such file or directory");
    EXPECT_EQ(write_file("/nowhere/at/all", "1"), "No such file or directory");
}

}  // namespace
}  // namespace frontpanel
