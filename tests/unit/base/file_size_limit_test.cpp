#include <frontpanel_base/file_size_limit.h>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace frontpanel {
namespace {

rlim_t limit_now() {
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    return limit.rlim_cur;
}

class FileSizeLimit : public testing::Test {
protected:
    FileSizeLimit() {
        m_name = (std::filesystem::temp_directory_path() / "frontpanel-test-XXXXXX").string();
        m_file = mkstemp(m_name.data());
    }
    ~FileSizeLimit() override {
        close(m_file);
        unlink(m_name.c_str());
    }
    off_t size() const {
        struct stat status {};
        fstat(m_file, &status);
        return status.st_size;
    }

    std::string m_name;
    int m_file = -1;
};

TEST_F(FileSizeLimit, AWriteBeyondItFailsWithoutSignal) {
    const std::string text(4000, 'x');
    const File_size_limit limit(4096);
    EXPECT_EQ(write(m_file, text.data(), text.size()), 4000);
    EXPECT_EQ(write(m_file, text.data(), text.size()), 96);
    EXPECT_EQ(write(m_file, text.data(), text.size()), -1);
    EXPECT_EQ(errno, EFBIG);
    EXPECT_EQ(size(), 4096);
}

TEST_F(FileSizeLimit, HoldsForCommandsAndLetsThemReport) {
    const File_size_limit limit(4096);
    const int status =
        std::system(("exec head -c 1000000 /dev/zero > " + m_name + " 2>/dev/null").c_str());
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_NE(status, 0);
    EXPECT_EQ(size(), 4096);
}

TEST_F(FileSizeLimit, EndsWithTheObject) {
    const rlim_t before = limit_now();
    {
        const File_size_limit outer(8192);
        {
            const File_size_limit inner(4096);
            EXPECT_EQ(limit_now(), 4096U);
            const File_size_limit larger(1000000);
            EXPECT_EQ(limit_now(), 4096U);
        }
        EXPECT_EQ(limit_now(), 8192U);
    }
    EXPECT_EQ(limit_now(), before);
    struct sigaction action {};
    sigaction(SIGXFSZ, nullptr, &action);
    EXPECT_EQ(action.sa_handler, SIG_DFL);
}

}  // namespace
}  // namespace frontpanel
