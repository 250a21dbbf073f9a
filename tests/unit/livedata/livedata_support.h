// What the tests of the live-data classes share: the mask, the system log, documents on disk.
#ifndef FRONTPANEL_DATA_TESTS_UNIT_LIVEDATA_LIVEDATA_SUPPORT_H
#define FRONTPANEL_DATA_TESTS_UNIT_LIVEDATA_LIVEDATA_SUPPORT_H

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/capture.h"

namespace livedata_test {

constexpr uint32_t LIVE_DATA_MASK = 0x1000000;

// Line numbers become "#", also those that are thrown and those in `message`.
inline std::string masked(const std::string& text) {
    static const std::regex LINE(R"(\[line=\d+\])");
    static const std::regex NUMBER(R"(Exception Nr\.\[\d\d+\])");
    return std::regex_replace(
        std::regex_replace(support::mask_line_numbers(text), LINE, "[line=#]"), NUMBER,
        "Exception Nr.[#]");
}

// Standard output of `action` under `mask`.
template <class Action>
std::string output_of(uint32_t mask, Action&& action) {
    return masked(support::capture(mask, action).out);
}

// Lines sent to the system log since the last call, each with its priority in front.
std::vector<std::string> take_system_log();

// A file in the temporary folder that goes with the object.
class Temporary_file {
public:
    explicit Temporary_file(const std::string& content) {
        const std::string name = ::testing::TempDir() + "livedata-XXXXXX";
        m_path.assign(name.c_str(), name.c_str() + name.size() + 1);
        std::FILE* const file = fdopen(mkstemp(m_path.data()), "w");
        std::fwrite(content.data(), 1, content.size(), file);
        std::fclose(file);
    }
    ~Temporary_file() { unlink(m_path.data()); }
    Temporary_file(const Temporary_file&) = delete;
    Temporary_file& operator=(const Temporary_file&) = delete;

    char* path() { return m_path.data(); }
    std::string name() const { return m_path.data(); }

private:
    std::vector<char> m_path;
};

}  // namespace livedata_test

#endif
