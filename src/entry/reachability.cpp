// The reachability probe: one ping with a deadline of one second.
#include <frontpanel_data/entry.h>
#include <frontpanel_data/string_entry.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

constexpr int CANNOT_EXECUTE = 127;

bool names_a_host(const char* ip) {
    const std::size_t length = std::strlen(ip);
    const bool network = length >= 2 && std::strcmp(ip + length - 2, ".0") == 0;
    return std::strcmp(ip, Ip_entry::DEFAULT_IP) != 0 && !network;
}

// The probe's output must not reach the panel. Closing its streams for writing would be enough for that, but
// a ping that checks at its end whether its summary could be written then fails although the address
// answered; the null device takes the summary and leaves the exit status to the answer. Without a null device
// the stream ends up closed, which silences it as well.
void silence(std::FILE* stream) {
    [[maybe_unused]] const std::FILE* const reopened = std::freopen("/dev/null", "w", stream);
}

[[noreturn]] void run_ping(const char* ip) {
    silence(stdout);
    silence(stderr);
    execl("/bin/ping", "ping", "-q", "-c", "1", "-w", "1", ip, static_cast<char*>(nullptr));
    _exit(CANNOT_EXECUTE);
}

// Waits through signals: an interrupted wait would leave the child behind.
bool ended_well(pid_t child) {
    int status = 0;
    pid_t ended = -1;
    do {
        ended = waitpid(child, &status, 0);
    } while (ended == -1 && errno == EINTR);
    return ended == child && status == 0;
}

}  // namespace

bool Data_entry::isRemoteConnected(char* ip) {
    if (!names_a_host(ip)) {
        return false;
    }
    // What is still in the buffers would otherwise be written twice: the child reopens its streams.
    std::fflush(stdout);
    std::fflush(stderr);
    const pid_t child = fork();
    if (child == -1) {
        return false;
    }
    if (child == 0) {
        run_ping(ip);
    }
    return ended_well(child);
}
