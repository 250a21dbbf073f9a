#include <frontpanel_base/file_size_limit.h>

#include <algorithm>

namespace frontpanel {

// An ignored signal stays ignored in the commands, so that a command that hits the limit reports an error and removes
// what it wrote instead of leaving a core dump.
File_size_limit::File_size_limit(std::size_t bytes) {
    struct sigaction ignored {};
    ignored.sa_handler = SIG_IGN;
    sigaction(SIGXFSZ, &ignored, &m_action_before);
    getrlimit(RLIMIT_FSIZE, &m_before);
    rlimit limit = m_before;
    limit.rlim_cur =
        std::min<rlim_t>(limit.rlim_cur, bytes);  // RLIM_INFINITY is the largest number
    setrlimit(RLIMIT_FSIZE, &limit);
}

File_size_limit::~File_size_limit() {
    setrlimit(RLIMIT_FSIZE, &m_before);
    sigaction(SIGXFSZ, &m_action_before, nullptr);
}

}  // namespace frontpanel
