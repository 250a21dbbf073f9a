#include "support/pseudo_evdev.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

std::vector<support::Pseudo_evdev*> devices;

support::Pseudo_evdev* device_of(int descriptor) {
    const auto found = std::find_if(
        devices.begin(), devices.end(),
        [descriptor](const auto* const device) { return device->is_open_at(descriptor); });
    return found == devices.end() ? nullptr : *found;
}

// In words of the machine, as the kernel has them.
void set_bit(std::string& bits, unsigned bit) {
    unsigned long word = 0;
    constexpr unsigned WORD_BITS = 8 * sizeof word;
    char* const place = bits.data() + bit / WORD_BITS * sizeof word;
    std::memcpy(&word, place, sizeof word);
    word |= 1UL << bit % WORD_BITS;
    std::memcpy(place, &word, sizeof word);
}

}  // namespace

// In the place of the system's: libraries call this one.
extern "C" __attribute__((visibility("default"))) int ioctl(int descriptor, unsigned long request,
                                                            ...) {
    va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    support::Pseudo_evdev* const device =
        _IOC_TYPE(request) == 'E' ? device_of(descriptor) : nullptr;
    if (device != nullptr) {
        return device->answer(request, argument);
    }
    using Function = int (*)(int, unsigned long, void*);
    static const auto of_system = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "ioctl"));
    return of_system(descriptor, request, argument);
}

namespace support {

Pseudo_evdev::Pseudo_evdev(const std::string& name)
    : m_name(name), m_master(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    EXPECT_GE(m_master, 0);
    EXPECT_EQ(grantpt(m_master), 0);
    EXPECT_EQ(unlockpt(m_master), 0);
    char path[64] = "";
    EXPECT_EQ(ptsname_r(m_master, path, sizeof path), 0);
    m_path = path;
    m_holder = open(path, O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios settings{};
    tcgetattr(m_holder, &settings);
    cfmakeraw(&settings);
    tcsetattr(m_holder, TCSANOW, &settings);
    devices.push_back(this);
}

Pseudo_evdev::~Pseudo_evdev() {
    devices.erase(std::find(devices.begin(), devices.end(), this));
    close(m_holder);
    close(m_master);
}

bool Pseudo_evdev::is_open_at(int descriptor) const {
    struct stat asked {};
    struct stat mine {};
    return fstat(descriptor, &asked) == 0 && fstat(m_holder, &mine) == 0 &&
           asked.st_rdev == mine.st_rdev;
}

void Pseudo_evdev::send(int type, int code, int value) const {
    input_event event{};
    event.type = static_cast<uint16_t>(type);
    event.code = static_cast<uint16_t>(code);
    event.value = value;
    ASSERT_EQ(write(m_master, &event, sizeof event), static_cast<ssize_t>(sizeof event));
}

void Pseudo_evdev::signal(int type, int code, int value) const {
    send(type, code, value);
    send(EV_SYN, SYN_REPORT, 0);
}

int Pseudo_evdev::answer(unsigned long request, void* argument) {
    const unsigned number = _IOC_NR(request);
    const size_t size = _IOC_SIZE(request);
    const auto give = [argument, size](const std::string& bytes) {
        const size_t given = std::min(size, bytes.size());
        std::memcpy(argument, bytes.data(), given);
        return static_cast<int>(given);
    };
    if (request == EVIOCGVERSION) {
        *static_cast<int*>(argument) = EV_VERSION;
        return 0;
    }
    if (request == EVIOCGID) {
        std::memset(argument, 0, size);
        return 0;
    }
    if (request == EVIOCGRAB) {
        if (m_is_taken) {
            errno = EBUSY;
            return -1;
        }
        m_is_grabbed = argument != nullptr;
        return 0;
    }
    if (number == _IOC_NR(EVIOCGNAME(0))) {
        return give(m_name + std::string(1, '\0'));
    }
    std::string bits(size + sizeof(long), '\0');
    if (number == _IOC_NR(EVIOCGBIT(0, 0))) {
        for (const unsigned type : {0U + EV_SYN, 0U + EV_KEY, 0U + EV_REL, 0U + EV_ABS}) {
            set_bit(bits, type);
        }
    } else if (number == _IOC_NR(EVIOCGBIT(EV_REL, 0))) {
        set_bit(bits, REL_DIAL);
    } else if (number == _IOC_NR(EVIOCGBIT(EV_ABS, 0))) {
        set_bit(bits, ABS_WHEEL);
    } else if (number == _IOC_NR(EVIOCGBIT(EV_KEY, 0))) {
        set_bit(bits, BTN_0);
    } else if (number == _IOC_NR(EVIOCGKEY(0))) {
        if (m_button) {
            set_bit(bits, BTN_0);
        }
    } else if (request == EVIOCGABS(ABS_WHEEL)) {
        const input_absinfo wheel{m_wheel, 0, m_wheel_end, 0, 0, 0};
        std::memcpy(argument, &wheel, sizeof wheel);
        return 0;
    } else if (number == _IOC_NR(EVIOCGPHYS(0)) || number == _IOC_NR(EVIOCGUNIQ(0))) {
        errno = ENOENT;
        return -1;
    }
    return give(bits);
}

}  // namespace support
