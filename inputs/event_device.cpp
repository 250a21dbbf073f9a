#include "event_device.h"

#include <fcntl.h>
#include <libevdev/libevdev.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

#include <frontpanel_base/descriptor.h>

namespace frontpanel {
namespace {

namespace fs = std::filesystem;

constexpr const char* GONE = "it went away";

Input_signal signal_of(const input_event& event) {
    return {event.type, event.code, event.value};
}

// ---- a device

struct Free_evdev {
    void operator()(libevdev* device) const { libevdev_free(device); }
};
using Evdev = std::unique_ptr<libevdev, Free_evdev>;

class Kernel_device : public Event_device {
public:
    Kernel_device(Descriptor descriptor, Evdev device)
        : m_descriptor(std::move(descriptor)), m_device(std::move(device)) {}

    std::optional<Signal> next() override;
    const std::string& error() const override { return m_error; }
    int descriptor() const override { return m_descriptor.number(); }
    std::string name() const override { return libevdev_get_name(m_device.get()); }
    std::optional<Axis_range> range_of(uint16_t axis) const override;
    std::vector<std::pair<uint16_t, int32_t>> positions() const override;

private:
    Descriptor m_descriptor;
    Evdev m_device;
    std::string m_error;
    bool m_synchronizes = false;  // events were lost
};

std::optional<Event_device::Signal> Kernel_device::next() {
    input_event event{};
    const auto flag = m_synchronizes ? LIBEVDEV_READ_FLAG_SYNC : LIBEVDEV_READ_FLAG_NORMAL;
    const int status = libevdev_next_event(m_device.get(), flag, &event);
    if (status == LIBEVDEV_READ_STATUS_SUCCESS) {
        return Signal{signal_of(event), false};
    }
    if (status == LIBEVDEV_READ_STATUS_SYNC) {
        m_synchronizes = true;
        return Signal{signal_of(event), true};
    }
    if (status == -EAGAIN && m_synchronizes) {
        m_synchronizes = false;
        return next();
    }
    if (status != -EAGAIN && status != -EINTR) {
        m_error = status == -ENODEV ? GONE : std::strerror(-status);
    }
    return std::nullopt;
}

std::optional<Axis_range> Kernel_device::range_of(uint16_t axis) const {
    const input_absinfo* const info = libevdev_get_abs_info(m_device.get(), axis);
    return info == nullptr ? std::nullopt
                           : std::optional<Axis_range>(Axis_range{info->minimum, info->maximum});
}

std::vector<std::pair<uint16_t, int32_t>> Kernel_device::positions() const {
    std::vector<std::pair<uint16_t, int32_t>> all;
    for (uint16_t axis = 0; axis < ABS_CNT; ++axis) {
        if (libevdev_has_event_code(m_device.get(), EV_ABS, axis) != 0) {
            all.emplace_back(axis, libevdev_get_event_value(m_device.get(), EV_ABS, axis));
        }
    }
    return all;
}

// ---- a pipe

class Recorded_device : public Event_device {
public:
    explicit Recorded_device(Descriptor descriptor) : m_descriptor(std::move(descriptor)) {}

    std::optional<Signal> next() override;
    const std::string& error() const override { return m_error; }
    int descriptor() const override { return m_descriptor.number(); }
    std::string name() const override { return ""; }
    std::optional<Axis_range> range_of(uint16_t) const override { return std::nullopt; }
    std::vector<std::pair<uint16_t, int32_t>> positions() const override { return {}; }

private:
    bool receive();

    Descriptor m_descriptor;
    std::string m_error;
    std::string m_bytes;   // the beginning of an event
    bool m_skips = false;  // events were lost: up to the next report the others are incomplete
};

// Whether there are more bytes now.
bool Recorded_device::receive() {
    char bytes[sizeof(input_event)];
    const ssize_t size = read(m_descriptor.number(), bytes, sizeof(input_event) - m_bytes.size());
    if (size > 0) {
        m_bytes.append(bytes, static_cast<size_t>(size));
        return true;
    }
    if (size == 0) {
        m_error = GONE;
    } else if (errno != EAGAIN && errno != EINTR) {
        m_error = std::strerror(errno);
    }
    return false;
}

std::optional<Event_device::Signal> Recorded_device::next() {
    for (;;) {
        if (m_bytes.size() < sizeof(input_event)) {
            if (!receive()) {
                return std::nullopt;
            }
            continue;
        }
        input_event event{};
        std::memcpy(&event, m_bytes.data(), sizeof event);
        m_bytes.clear();
        if (event.type == EV_SYN && event.code == SYN_DROPPED) {
            m_skips = true;
            return Signal{signal_of(event), true};
        }
        const bool is_skipped = m_skips;
        m_skips = m_skips && !(event.type == EV_SYN && event.code == SYN_REPORT);
        if (!is_skipped) {
            return Signal{signal_of(event), false};
        }
    }
}

// ---- opening

Opened_device failure(int error) {
    return {nullptr, std::strerror(error)};
}

Opened_device open_kernel_device(Descriptor descriptor) {
    libevdev* opened = nullptr;
    const int status = libevdev_new_from_fd(descriptor.number(), &opened);
    if (status < 0) {
        return {nullptr, status == -ENOTTY || status == -EINVAL ? "not an input device"
                                                                : std::strerror(-status)};
    }
    Evdev device(opened);
    const int grabbed = libevdev_grab(opened, LIBEVDEV_GRAB);
    if (grabbed < 0) {
        return {nullptr,
                grabbed == -EBUSY ? "another program has grabbed it" : std::strerror(-grabbed)};
    }
    return {std::make_unique<Kernel_device>(std::move(descriptor), std::move(device)), ""};
}

// The files of input devices, in the order of their numbers.
std::vector<std::string> device_files(const std::string& folder) {
    std::vector<std::string> files;
    std::error_code error;
    for (fs::directory_iterator file(folder, error), end; !error && file != end;
         file.increment(error)) {
        if (file->path().filename().string().rfind("event", 0) == 0) {
            files.push_back(file->path().string());
        }
    }
    std::sort(files.begin(), files.end(), [](const std::string& one, const std::string& other) {
        return std::pair(one.size(), one) < std::pair(other.size(), other);
    });
    return files;
}

enum class Name { OTHER, WANTED, UNREADABLE };

// Only asks for the name. With UNREADABLE `errno` holds the reason.
Name ask_name(const std::string& path, const std::string& wanted) {
    const Descriptor descriptor(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    if (!descriptor.is_open()) {
        return Name::UNREADABLE;
    }
    libevdev* opened = nullptr;
    if (libevdev_new_from_fd(descriptor.number(), &opened) < 0) {
        return Name::OTHER;
    }
    const Evdev device(opened);
    return wanted == libevdev_get_name(opened) ? Name::WANTED : Name::OTHER;
}

}  // namespace

Opened_device open_event_device(const std::string& path) {
    Descriptor descriptor(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    struct stat status {};
    if (!descriptor.is_open() || fstat(descriptor.number(), &status) != 0) {
        return failure(errno);
    }
    if (S_ISFIFO(status.st_mode)) {
        return {std::make_unique<Recorded_device>(std::move(descriptor)), ""};
    }
    if (!S_ISCHR(status.st_mode)) {
        return {nullptr, "neither an input device nor a pipe"};
    }
    return open_kernel_device(std::move(descriptor));
}

// Of several devices of the name one may be free: two knobs of a kind, or the parts of a keyboard.
Opened_device find_event_device(const std::string& name, const std::string& folder) {
    std::string refusal;
    std::string unreadable;
    for (const std::string& file : device_files(folder)) {
        const Name found = ask_name(file, name);
        if (found == Name::UNREADABLE && unreadable.empty()) {
            unreadable = "; " + file + ": " + std::strerror(errno);
        }
        if (found != Name::WANTED) {
            continue;
        }
        Opened_device opened = open_event_device(file);
        if (opened.device) {
            return opened;
        }
        refusal = refusal.empty() ? opened.error : refusal;
    }
    return {nullptr, refusal.empty() ? "no input device has this name" + unreadable : refusal};
}

}  // namespace frontpanel
