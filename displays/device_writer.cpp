#include "device_writer.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <system_error>

#include <frontpanel_base/descriptor.h>

namespace frontpanel {
namespace {

int event_descriptor() {
    const int number = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (number < 0) {
        throw std::system_error(errno, std::generic_category(), "eventfd");
    }
    return number;
}

void set(const Descriptor& event) {
    const uint64_t one = 1;
    static_cast<void>(!write(event.number(), &one, sizeof one));
}

void clear(const Descriptor& event) {
    uint64_t count = 0;
    static_cast<void>(!read(event.number(), &count, sizeof count));
}

// A pipe without a reader must be an error of the write, not the end of the process.
void block_pipe_signal() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

}  // namespace

struct Device_writer::Shared {
    explicit Shared(std::string file) : path(std::move(file)) {}

    void run();
    std::string transfer(const std::string& bytes);
    std::string open_device();
    bool is_still_there() const;
    std::string write_all(const std::string& bytes);
    std::string wait_for_room();

    const std::string path;
    const Descriptor done{event_descriptor()};
    const Descriptor stop{event_descriptor()};  // a write gives up
    std::mutex mutex;
    std::condition_variable changed;
    // Of the mutex:
    std::optional<std::string> job;
    std::optional<std::string> result;
    std::string stop_reason;
    bool is_ending = false;
    bool has_ended = false;
    // Of the thread:
    Descriptor device;
};

void Device_writer::Shared::run() {
    block_pipe_signal();
    std::unique_lock<std::mutex> lock(mutex);
    for (;;) {
        changed.wait(lock, [this] { return job || is_ending; });
        if (!job) {
            break;
        }
        const std::string bytes = *std::exchange(job, std::nullopt);
        lock.unlock();
        std::string error = transfer(bytes);
        if (!error.empty()) {
            device.reset();
        }
        lock.lock();
        result = std::move(error);
        set(done);
    }
    device.reset();
    has_ended = true;
    changed.notify_all();
}

std::string Device_writer::Shared::transfer(const std::string& bytes) {
    if (device.is_open() && !is_still_there()) {
        return "it went away";
    }
    if (!device.is_open()) {
        if (std::string error = open_device(); !error.empty()) {
            return error;
        }
    }
    return write_all(bytes);
}

// A pipe without a reader and a terminal without a line would otherwise keep `open` waiting. A character device ignores
// the flag.
std::string Device_writer::Shared::open_device() {
    struct stat status {};
    Descriptor opened(open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    if (!opened.is_open() || fstat(opened.number(), &status) != 0) {
        return std::strerror(errno);
    }
    if (!S_ISCHR(status.st_mode) && !S_ISFIFO(status.st_mode)) {
        return "neither a character device nor a pipe";
    }
    device = std::move(opened);
    return "";
}

// A device that was unplugged and plugged in again has a new file, and shows nothing yet.
bool Device_writer::Shared::is_still_there() const {
    struct stat opened {};
    struct stat named {};
    if (fstat(device.number(), &opened) != 0 || stat(path.c_str(), &named) != 0 ||
        opened.st_dev != named.st_dev || opened.st_ino != named.st_ino) {
        return false;
    }
    pollfd state{device.number(), POLLOUT, 0};
    return poll(&state, 1, 0) <= 0 || (state.revents & (POLLERR | POLLHUP | POLLNVAL)) == 0;
}

std::string Device_writer::Shared::write_all(const std::string& bytes) {
    size_t written = 0;
    while (written < bytes.size()) {
        const ssize_t size =
            ::write(device.number(), bytes.data() + written, bytes.size() - written);
        if (size > 0) {
            written += static_cast<size_t>(size);
        } else if (size == 0) {
            return "it takes nothing";
        } else if (errno == EAGAIN) {
            if (std::string error = wait_for_room(); !error.empty()) {
                return error;
            }
        } else if (errno != EINTR) {
            return std::strerror(errno);
        }
    }
    return "";
}

// Until the device takes more, or is given up.
std::string Device_writer::Shared::wait_for_room() {
    pollfd sources[] = {{device.number(), POLLOUT, 0}, {stop.number(), POLLIN, 0}};
    poll(sources, 2, -1);
    if ((sources[1].revents & POLLIN) == 0) {
        return "";
    }
    const std::lock_guard<std::mutex> lock(mutex);
    return stop_reason;
}

Device_writer::Device_writer(std::string path)
    : m_shared(std::make_shared<Shared>(std::move(path))),
      m_thread([shared = m_shared] { shared->run(); }) {}

Device_writer::~Device_writer() {
    std::unique_lock<std::mutex> lock(m_shared->mutex);
    m_shared->is_ending = true;
    m_shared->stop_reason = "the panel ends";
    m_shared->changed.notify_all();
    const auto has_ended = [this] { return m_shared->has_ended; };
    if (!m_shared->changed.wait_for(lock, FAREWELL, has_ended)) {
        set(m_shared->stop);
        m_shared->changed.wait_for(lock, FAREWELL, has_ended);
    }
    const bool ended = m_shared->has_ended;
    lock.unlock();
    if (ended) {
        m_thread.join();
    } else {
        m_thread.detach();
    }
}

void Device_writer::write(std::string bytes) {
    m_is_busy = true;
    clear(m_shared->stop);
    const std::lock_guard<std::mutex> lock(m_shared->mutex);
    m_shared->job = std::move(bytes);
    m_shared->changed.notify_all();
}

std::optional<std::string> Device_writer::take_result() {
    const std::lock_guard<std::mutex> lock(m_shared->mutex);
    if (m_shared->result) {
        clear(m_shared->done);
        m_is_busy = false;
    }
    return std::exchange(m_shared->result, std::nullopt);
}

void Device_writer::give_up(const std::string& reason) {
    const std::lock_guard<std::mutex> lock(m_shared->mutex);
    m_shared->stop_reason = reason;
    set(m_shared->stop);
}

int Device_writer::descriptor() const {
    return m_shared->done.number();
}

}  // namespace frontpanel
