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

TEST(File_reader, OfALargeFileTheBeginningIsRead) {
    EXPECT_EQ(File_reader().read("/dev/zero").text.size(), File_reader::LARGEST);
}

TEST(File_reader, AFailureIsAReason) {
    File_reader reader;
    EXPECT_EQ(reader.read("/nowhere/at/all").failure, "No such file or directory");
    EXPECT_EQ(write_file("/nowhere/at/all", "1"), "No such file or directory");
}

}  // namespace
}  // namespace frontpanel
