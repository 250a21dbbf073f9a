#include "device_writer.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <fstream>
#include <sstream>

#include "support/folder.h"

namespace frontpanel {
namespace {

class Device_writer_test : public testing::Test {
protected:
    void SetUp() override { plug_in(); }
    void TearDown() override { close(reader); }

    void plug_in() {
        ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
        reader = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        ASSERT_GE(reader, 0);
    }
    static std::string result_of(Device_writer& writer) {
        pollfd done{writer.descriptor(), POLLIN, 0};
        EXPECT_EQ(poll(&done, 1, 20000), 1);
        return writer.take_result().value_or("(none)");
    }
    std::string read_some() {
        pollfd ready{reader, POLLIN, 0};
        poll(&ready, 1, 20000);
        std::array<char, 10000> bytes{};
        const ssize_t size = read(reader, bytes.data(), bytes.size());
        return std::string(bytes.data(), size > 0 ? static_cast<size_t>(size) : 0);
    }

    support::Folder folder;
    std::string path = folder.file("lcd");
    int reader = -1;
};

TEST_F(Device_writer_test, WritesAndReportsSuccess) {
    Device_writer writer(path);
    EXPECT_FALSE(writer.is_busy());
    writer.write("one");
    EXPECT_TRUE(writer.is_busy());
    EXPECT_EQ(result_of(writer), "");
    EXPECT_FALSE(writer.is_busy());
    EXPECT_FALSE(writer.take_result());
    writer.write("two");
    EXPECT_EQ(result_of(writer), "");
    EXPECT_EQ(read_some(), "onetwo");
}

TEST_F(Device_writer_test, ADeviceThatTakesALittleAtATimeGetsAll) {
    Device_writer writer(path);
    std::string sent;
    for (int i = 0; sent.size() < 300000; ++i) {
        sent += std::to_string(i);
    }
    writer.write(sent);
    std::string received;
    while (received.size() < sent.size()) {
        const std::string piece = read_some();
        ASSERT_NE(piece, "");
        received += piece;
    }
    EXPECT_EQ(received, sent);
    EXPECT_EQ(result_of(writer), "");
}

TEST_F(Device_writer_test, AMissingDeviceIsAnErrorAndIsTriedAgain) {
    close(reader);
    unlink(path.c_str());
    Device_writer writer(path);
    writer.write("one");
    EXPECT_EQ(result_of(writer), "No such file or directory");
    plug_in();
    writer.write("two");
    EXPECT_EQ(result_of(writer), "");
    EXPECT_EQ(read_some(), "two");
}

TEST_F(Device_writer_test, APipeThatNobodyReadsIsAnError) {
    Device_writer writer(path);
    writer.write("one");
    EXPECT_EQ(result_of(writer), "");
    close(reader);
    reader = -1;
    writer.write("two");
    EXPECT_EQ(result_of(writer), "it went away");
    writer.write("three");
    EXPECT_EQ(result_of(writer), "No such device or address");
}

TEST_F(Device_writer_test, AnotherDeviceOfTheNameIsNoticedWithoutWriting) {
    Device_writer writer(path);
    writer.write("one");
    EXPECT_EQ(result_of(writer), "");
    const int old = reader;
    unlink(path.c_str());
    plug_in();
    writer.write("");
    EXPECT_EQ(result_of(writer), "it went away");
    close(old);
    writer.write("two");
    EXPECT_EQ(result_of(writer), "");
    EXPECT_EQ(read_some(), "two");
}

TEST_F(Device_writer_test, FilesAndFoldersAreLeftAlone) {
    const std::string file = folder.file("values");
    std::ofstream(file) << "precious";
    Device_writer writer(file);
    writer.write("one");
    EXPECT_EQ(result_of(writer), "neither a character device nor a pipe");
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    EXPECT_EQ(text.str(), "precious");
    Device_writer other(folder.path());
    other.write("one");
    EXPECT_EQ(result_of(other), "Is a directory");
}

TEST_F(Device_writer_test, AHangingWriteIsGivenUp) {
    Device_writer writer(path);
    writer.write(std::string(300000, 'x'));
    EXPECT_FALSE(writer.take_result());
    writer.give_up("it takes nothing");
    EXPECT_EQ(result_of(writer), "it takes nothing");
    // What comes next is not given up.
    for (int i = 0; i < 40; ++i) {
        if (read_some().empty()) {
            break;
        }
    }
    writer.write("two");
    EXPECT_EQ(result_of(writer), "");
}

TEST_F(Device_writer_test, EndsWhileADeviceHangs) {
    Device_writer writer(path);
    writer.write(std::string(300000, 'x'));
}

TEST_F(Device_writer_test, TheLastWriteIsDoneAtTheEnd) {
    {
        Device_writer writer(path);
        writer.write("bye");
    }
    EXPECT_EQ(read_some(), "bye");
}

}  // namespace
}  // namespace frontpanel
