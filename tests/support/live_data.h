// What tests of live data with the real tools share: a folder of their own with a time limit for curl, and
// the permit to post.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_LIVE_DATA_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_LIVE_DATA_H

#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <set>
#include <string>

namespace support {

// Where the post command leaves the card's answer.
inline constexpr char ANSWER_FILE[] = "/dev/NULL";

inline std::set<std::string> names_in(const std::string& folder) {
    std::set<std::string> names;
    DIR* const stream = opendir(folder.c_str());
    while (const dirent* const entry = readdir(stream)) {
        names.insert(entry->d_name);
    }
    closedir(stream);
    return names;
}

// A working folder of the test's own, the tools' time limit in it.
class Work_folder {
public:
    Work_folder() {
        std::string name = ::testing::TempDir() + "livedata-XXXXXX";
        m_path = mkdtemp(name.data());
        std::ofstream(m_path + "/.curlrc") << "max-time = 1\nnoproxy = *\n";
        setenv("CURL_HOME", m_path.c_str(), 1);
        m_before = getcwd(nullptr, 0);
        if (chdir(m_path.c_str()) != 0) {
            ADD_FAILURE() << "cannot enter " << m_path;
        }
    }
    ~Work_folder() {
        EXPECT_EQ(chdir(m_before), 0);
        std::free(m_before);
        for (const std::string& name : names_in(m_path)) {
            unlink((m_path + "/" + name).c_str());
        }
        rmdir(m_path.c_str());
        unsetenv("CURL_HOME");
    }
    Work_folder(const Work_folder&) = delete;
    Work_folder& operator=(const Work_folder&) = delete;

    const std::string& path() const { return m_path; }

private:
    std::string m_path;
    char* m_before;
};

// Posts leave the card's answer in a file of /dev, which a build machine should not keep. One test at a time
// holds the permit, also among those of other processes.
class Post_permit {
public:
    Post_permit() : m_dev(open("/dev", O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        EXPECT_EQ(flock(m_dev, LOCK_EX), 0);
        m_had_answer_file = access(ANSWER_FILE, F_OK) == 0;
    }
    ~Post_permit() {
        if (!m_had_answer_file) {
            unlink(ANSWER_FILE);
        }
        close(m_dev);
    }
    Post_permit(const Post_permit&) = delete;
    Post_permit& operator=(const Post_permit&) = delete;

    // Whether posts can run here at all.
    bool granted() const { return access("/dev", W_OK) == 0; }

private:
    int m_dev;
    bool m_had_answer_file = true;
};

}  // namespace support

#endif
