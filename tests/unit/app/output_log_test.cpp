#include "output_log.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <frontpanel_base/input_error.h>
#include "support/capture.h"

namespace frontpanel {
namespace {

namespace fs = std::filesystem;

class OutputLog : public testing::Test {
protected:
    OutputLog() {
        std::string name = (fs::temp_directory_path() / "frontpanel-test-XXXXXX").string();
        m_folder = mkdtemp(name.data());
    }
    ~OutputLog() override { fs::remove_all(m_folder); }

    std::string file(const char* name) const { return (m_folder / name).string(); }
    static std::string content(const std::string& file) {
        std::ostringstream text;
        text << std::ifstream(file).rdbuf();
        return text.str();
    }

    fs::path m_folder;
};

TEST_F(OutputLog, KeepsTheLibrarysLinesAndLetsThePanelsThrough) {
    const std::string shown = support::capture(0, [this] {
                                  Output_log log(file("log"));
                                  std::printf("library\n");
                                  log.out() << "panel\n" << std::flush;
                              }).out;
    EXPECT_EQ(shown, "panel\n");
    EXPECT_EQ(content(file("log")), "library\n");
}

TEST_F(OutputLog, GivesStandardOutputBack) {
    const std::string shown = support::capture(0, [this] {
                                  { Output_log log(file("log")); }
                                  std::printf("after\n");
                              }).out;
    EXPECT_EQ(shown, "after\n");
    EXPECT_EQ(content(file("log")), "");
}

TEST_F(OutputLog, TakesStandardErrorWhenAskedAndGivesItBack) {
    const std::string errors = support::capture(0, [this] {
                                   {
                                       Output_log log(file("log"));
                                       log.take_errors();
                                       std::fprintf(stderr, "hidden\n");
                                   }
                                   std::fprintf(stderr, "seen\n");
                               }).err;
    EXPECT_EQ(errors, "seen\n");
    EXPECT_EQ(content(file("log")), "hidden\n");
}

TEST_F(OutputLog, ReturnsStandardErrorWhenAsked) {
    const std::string errors = support::capture(0, [this] {
                                   Output_log log(file("log"));
                                   log.take_errors();
                                   std::fprintf(stderr, "hidden\n");
                                   log.return_errors();
                                   std::fprintf(stderr, "seen\n");
                                   log.return_errors();
                                   log.take_errors();
                                   std::fprintf(stderr, "hidden too\n");
                               }).err;
    EXPECT_EQ(errors, "seen\n");
    EXPECT_EQ(content(file("log")), "hidden\nhidden too\n");
}

TEST_F(OutputLog, AFileThatCannotBeWrittenIsNamed) {
    const std::string missing = file("absent/log");
    try {
        Output_log log(missing);
        FAIL();
    } catch (const Input_error& error) {
        EXPECT_EQ(error.what(), missing + ": cannot be written: No such file or directory");
    }
}

TEST_F(OutputLog, TheDefaultIsTheUsersStateFolder) {
    setenv("XDG_STATE_HOME", m_folder.c_str(), 1);
    EXPECT_EQ(default_log_file(), file("frontpanel.log"));
    unsetenv("XDG_STATE_HOME");
    setenv("TMPDIR", m_folder.c_str(), 1);
    EXPECT_EQ(default_log_file(),
              file(("frontpanel-" + std::to_string(getuid()) + ".log").c_str()));
    unsetenv("TMPDIR");
}

TEST_F(OutputLog, ALinkInTheDefaultPlaceIsNotFollowed) {
    setenv("XDG_STATE_HOME", m_folder.c_str(), 1);
    fs::create_symlink(file("victim"), file("frontpanel.log"));
    EXPECT_THROW(Output_log(""), Input_error);
    EXPECT_FALSE(fs::exists(file("victim")));
    unsetenv("XDG_STATE_HOME");
}

}  // namespace
}  // namespace frontpanel
