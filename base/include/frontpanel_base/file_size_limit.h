// A limit for the size of files while commands run on behalf of the process.
#ifndef FRONTPANEL_BASE_FILE_SIZE_LIMIT_H
#define FRONTPANEL_BASE_FILE_SIZE_LIMIT_H

#include <sys/resource.h>

#include <csignal>
#include <cstddef>

namespace frontpanel {

// While it lives, no file grows beyond the limit, neither by this process nor by commands that it starts: a write that
// would fails with EFBIG, and no signal comes. A lower limit that holds already stays. Limits may be nested.
//
// It holds for every thread of the process, but is created and destroyed on one only.
class File_size_limit {
public:
    explicit File_size_limit(std::size_t bytes);
    ~File_size_limit();
    File_size_limit(const File_size_limit&) = delete;
    File_size_limit& operator=(const File_size_limit&) = delete;

private:
    rlimit m_before{};
    struct sigaction m_action_before {};
};

}  // namespace frontpanel

#endif
