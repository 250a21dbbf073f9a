#include <frontpanel_displays/led_folders.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include <frontpanel_base/descriptor.h>
#include <frontpanel_base/input_error.h>
#include <frontpanel_base/numbers.h>
#include <frontpanel_display/retry.h>

namespace frontpanel {
namespace {

constexpr const char* CLASS = "/sys/class/leds/";
constexpr const char* NO_TRIGGER = "none";

struct Led_name {
    const char* name;
    bool Leds::*led;
};
constexpr Led_name LED_NAMES[] = {
    {"edit", &Leds::edit}, {"alarm", &Leds::alarm}, {"alive", &Leds::heart}};

const Led_name* find_led(const std::string& name) {
    const auto* const found =
        std::find_if(std::begin(LED_NAMES), std::end(LED_NAMES),
                     [&name](const Led_name& known) { return name == known.name; });
    return found == std::end(LED_NAMES) ? nullptr : found;
}

// A file in a folder of an LED cannot be read or written.
class Led_error : public std::runtime_error {
public:
    Led_error(const char* file, int error)
        : std::runtime_error(std::string(file) + ": " + std::strerror(error)) {}
    using std::runtime_error::runtime_error;
};

void write_file(const std::string& folder, const char* name, const std::string& text) {
    const Descriptor file(open((folder + "/" + name).c_str(),
                               O_WRONLY | O_TRUNC | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    if (!file.is_open() || write(file.number(), text.data(), text.size()) < 0) {
        throw Led_error(name, errno);
    }
}

// The beginning of a file that holds a line.
std::string read_file(const std::string& folder, const char* name) {
    const Descriptor file(
        open((folder + "/" + name).c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    std::array<char, 4096> bytes{};
    const ssize_t size =
        file.is_open() ? read(file.number(), bytes.data(), bytes.size()) : ssize_t{-1};
    if (size < 0) {
        throw Led_error(name, errno);
    }
    const std::string text(bytes.data(), static_cast<size_t>(size));
    return text.substr(0, text.find('\n'));
}

// The one in brackets of "none [timer] heartbeat".
std::string active_trigger(const std::string& triggers) {
    const size_t begin = triggers.find('[');
    const size_t end = triggers.find(']', std::min(begin, triggers.size()));
    return end == std::string::npos ? "" : triggers.substr(begin + 1, end - begin - 1);
}

using Identity = std::pair<dev_t, ino_t>;

Identity identity_of(const std::string& folder) {
    struct stat status {};
    if (stat(folder.c_str(), &status) != 0) {
        throw Led_error(std::strerror(errno));
    }
    return {status.st_dev, status.st_ino};
}

}  // namespace

Led_map parse_led_map(const std::string& text) {
    Led_map leds;
    size_t start = 0;
    while (start <= text.size()) {
        const size_t end = std::min(text.find(',', start), text.size());
        const std::string assignment = text.substr(start, end - start);
        const size_t middle = std::min(assignment.find('='), assignment.size());
        const std::string name = assignment.substr(0, middle);
        std::string folder = assignment.substr(std::min(middle + 1, assignment.size()));
        if (find_led(name) == nullptr || folder.empty()) {
            throw Input_error("expected edit, alarm or alive=FOLDER, found \"" + assignment + "\"");
        }
        if (folder.find('/') == std::string::npos) {
            folder.insert(0, CLASS);
        }
        if (std::any_of(leds.begin(), leds.end(),
                        [&folder](const auto& led) { return led.second == folder; })) {
            throw Input_error("duplicate folder \"" + folder + "\"");
        }
        if (!leds.emplace(name, folder).second) {
            throw Input_error("duplicate LED \"" + name + "\"");
        }
        start = end + 1;
    }
    return leds;
}

class Led_folders::Lamp {
public:
    Lamp(std::string folder, bool Leds::*led, std::ostream& log)
        : m_folder(std::move(folder)), m_led(led), m_log(log) {}
    ~Lamp() { give_back(); }
    Lamp(const Lamp&) = delete;
    Lamp& operator=(const Lamp&) = delete;

    void want(const Leds& leds) { m_wanted = leds.*m_led; }
    void update(Time now);
    Time due() const {
        return m_is_up ? std::min(m_next_check, m_retry.settles()) : m_retry.next_try();
    }

private:
    void set_up();
    void set(bool lit);
    void give_back();
    void say(const std::string& text);

    std::string m_folder;
    bool Leds::*m_led;
    std::ostream& m_log;
    Retry m_retry;
    bool m_is_up = false;
    bool m_wanted = false;
    bool m_is_lit = false;
    Time m_next_check{};
    Identity m_identity;
    std::string m_brightest;  // as a text
    std::string m_trigger;    // which the LED had before; empty for none
};

void Led_folders::Lamp::update(Time now) {
    if (!m_is_up && now < m_retry.next_try()) {
        return;
    }
    try {
        if (!m_is_up || now >= m_next_check) {
            set_up();
            m_next_check = now + CHECK;
        } else if (m_wanted != m_is_lit) {
            set(m_wanted);
        }
        if (m_is_up ? m_retry.settle(now) : m_retry.gain(now)) {
            say("is used");
        }
        m_is_up = true;
    } catch (const Led_error& error) {
        m_is_up = false;
        if (m_retry.lose(now)) {
            say(std::string("is unreachable (") + error.what() + "); retrying");
        }
    }
}

// A trigger of the kernel would switch the LED by itself. Not every LED has one.
void Led_folders::Lamp::set_up() {
    const Identity identity = identity_of(m_folder);
    if (!m_is_up || identity != m_identity) {
        if (identity != m_identity) {
            m_trigger.clear();
        }
        m_identity = identity;
        const std::string most = read_file(m_folder, "max_brightness");
        if (!parse_number<int>(most, 1)) {
            throw Led_error("max_brightness: expected a number from 1, found \"" + most + "\"");
        }
        m_brightest = most;
        if (access((m_folder + "/trigger").c_str(), F_OK) == 0) {
            const std::string active = active_trigger(read_file(m_folder, "trigger"));
            if (!active.empty() && active != NO_TRIGGER) {
                m_trigger = active;
                write_file(m_folder, "trigger", NO_TRIGGER);
            }
        }
    }
    set(m_wanted);
}

void Led_folders::Lamp::set(bool lit) {
    write_file(m_folder, "brightness", lit ? m_brightest : "0");
    m_is_lit = lit;
}

// An LED that refused a write may take the last one. Its loss was reported.
void Led_folders::Lamp::give_back() {
    if (m_brightest.empty()) {
        return;
    }
    try {
        if (identity_of(m_folder) != m_identity) {
            return;
        }
        set(false);
        if (!m_trigger.empty()) {
            write_file(m_folder, "trigger", m_trigger);
        }
    } catch (const Led_error& error) {
        if (m_is_up) {
            say(std::string("cannot be switched off (") + error.what() + ")");
        }
    }
}

void Led_folders::Lamp::say(const std::string& text) {
    m_log << "frontpanel: LED " << one_line(m_folder + " " + text) << std::endl;
}

Led_folders::Led_folders(const Led_map& leds, std::ostream& log) {
    for (const auto& [name, folder] : leds) {
        m_lamps.push_back(std::make_unique<Lamp>(folder, find_led(name)->led, log));
    }
}

Led_folders::~Led_folders() = default;

void Led_folders::show(const Frame& frame) {
    for (const std::unique_ptr<Lamp>& lamp : m_lamps) {
        lamp->want(frame.leds);
        if (m_now != Time::min()) {
            lamp->update(m_now);
        }
    }
}

std::optional<Front_event> Led_folders::next(Time now) {
    m_now = now;
    for (const std::unique_ptr<Lamp>& lamp : m_lamps) {
        lamp->update(now);
    }
    return std::nullopt;
}

Time Led_folders::due() const {
    Time earliest = Time::max();
    for (const std::unique_ptr<Lamp>& lamp : m_lamps) {
        earliest = std::min(earliest, lamp->due());
    }
    return earliest;
}

}  // namespace frontpanel
