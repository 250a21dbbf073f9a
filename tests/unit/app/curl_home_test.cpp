#include "curl_home.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include <frontpanel_base/input_error.h>

namespace frontpanel {
namespace {

std::string variable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "(none)" : value;
}

TEST(CurlHome, HoldsSettingsWithLimits) {
    const Curl_home home;
    EXPECT_EQ(variable("CURL_HOME"), home.folder());
    const std::string settings = read_input_file(home.folder() + "/.curlrc");
    for (const char* const setting : {"max-time", "connect-timeout", "max-filesize", "noproxy"}) {
        EXPECT_NE(settings.find(setting), std::string::npos) << setting;
    }
}

TEST(CurlHome, LeavesNothingBehind) {
    setenv("CURL_HOME", "/before", 1);
    std::string folder;
    {
        const Curl_home home;
        folder = home.folder();
        EXPECT_TRUE(std::filesystem::exists(folder));
    }
    EXPECT_FALSE(std::filesystem::exists(folder));
    EXPECT_EQ(variable("CURL_HOME"), "/before");
    unsetenv("CURL_HOME");
    { const Curl_home home; }
    EXPECT_EQ(variable("CURL_HOME"), "(none)");
}

TEST(CurlHome, AMissingFolderForTemporaryFilesIsTold) {
    const std::string before = variable("TMPDIR");
    setenv("TMPDIR", "/no/such/folder", 1);
    EXPECT_THROW(Curl_home(), Input_error);
    if (before == "(none)") {
        unsetenv("TMPDIR");
    } else {
        setenv("TMPDIR", before.c_str(), 1);
    }
    EXPECT_EQ(variable("CURL_HOME"), "(none)");
}

}  // namespace
}  // namespace frontpanel
