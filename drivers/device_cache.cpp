#include <frontpanel_drivers/device_cache.h>

#include <pthread.h>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <iterator>
#include <utility>

#include "driver_desk.h"
#include "driver_news.h"

namespace frontpanel {
namespace {

constexpr int LOCAL_SOCKET = 0;

// The signals that a thread starts with. Those of the process belong to the menu thread.
class All_signals_blocked {
public:
    All_signals_blocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    ~All_signals_blocked() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    All_signals_blocked(const All_signals_blocked&) = delete;
    All_signals_blocked& operator=(const All_signals_blocked&) = delete;

private:
    sigset_t m_before{};
};

Device_cache_settings completed(Device_cache_settings settings) {
    if (!settings.clock) {
        settings.clock = [] { return std::chrono::steady_clock::now(); };
    }
    return settings;
}

const char* text_of(Driver_event::Kind kind) {
    static constexpr const char* TEXTS[] = {"away",        "back",          "read failed",
                                            "read again",  "write refused", "write timed out",
                                            "not written", "no answer"};
    static_assert(std::size(TEXTS) == Driver_event::WRITE_UNANSWERED + 1, "a text for each kind");
    return TEXTS[kind];
}

std::string joined(const std::string& driver, const std::string& parameter, const std::string& what,
                   const std::string& reason) {
    return driver + ": " + (parameter.empty() ? "" : parameter + ": ") + what +
           (reason.empty() ? "" : ": " + reason);
}

int read_number(std::int32_t number, void* buffer, unsigned int length) {
    if (length != sizeof number) {
        return Device_cache::WRONG_SIZE;
    }
    std::memcpy(buffer, &number, sizeof number);
    return Device_cache::DONE;
}

int read_text(const std::string& text, void* buffer, unsigned int length) {
    if (length <= text.size()) {
        return Device_cache::WRONG_SIZE;
    }
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return Device_cache::DONE;
}

int number_of(const Driver_parameter& parameter, const void* bytes, unsigned int length,
              Parameter_value& value) {
    std::int32_t number = 0;
    if (length != sizeof number) {
        return Device_cache::WRONG_SIZE;
    }
    std::memcpy(&number, bytes, sizeof number);
    value = number;
    return number >= parameter.min && number <= parameter.max ? Device_cache::DONE
                                                              : Device_cache::OUT_OF_BOUNDS;
}

int text_of(const Driver_parameter& parameter, const void* bytes, unsigned int length,
            Parameter_value& value) {
    if (length > parameter.length) {
        return Device_cache::OUT_OF_BOUNDS;
    }
    std::string text(length == 0 ? "" : static_cast<const char*>(bytes), length);
    const bool is_text = text.find('\0') == std::string::npos;
    value = std::move(text);
    return is_text ? Device_cache::DONE : Device_cache::WRONG_TYPE;
}

}  // namespace

std::string Driver_event::text() const {
    return joined(driver, parameter, text_of(kind), reason);
}

std::string Unsent_write::text() const {
    return joined(driver, parameter, "not written", reason);
}

const char* Device_cache::result_text(int result) {
    static constexpr const char* TEXTS[] = {"no value", "wrong size", "out of bounds",
                                            "wrong type"};
    static_assert(std::size(TEXTS) == WRONG_TYPE - NOT_KNOWN + 1, "a text for each result");
    if (result == DONE) {
        return "done";
    }
    return result >= NOT_KNOWN && result <= WRONG_TYPE ? TEXTS[result - NOT_KNOWN] : "device error";
}

Device_cache::Device_cache(Data_interface& others, Device_cache_settings settings)
    : m_others(others),
      m_sockets(dynamic_cast<Pdt_data_access*>(&others)),
      m_settings(completed(std::move(settings))),
      m_news(std::make_shared<Driver_news>()) {
    go_home = others.go_home;
    lock_and_dim = others.lock_and_dim;
    time_for_timeout = others.time_for_timeout;
}

Device_cache::~Device_cache() {
    stop();
}

void Device_cache::stop() {
    for (const std::shared_ptr<Driver_desk>& desk : m_desks) {
        desk->stop();
    }
    const auto end = std::chrono::steady_clock::now() + m_settings.end_patience;
    for (std::size_t i = 0; i < m_threads.size(); ++i) {
        if (m_desks[i]->wait_for_end(end)) {
            m_threads[i].join();
        } else {
            m_threads[i].detach();
        }
    }
    m_threads.clear();
}

// ---- before the drivers work

std::size_t Device_cache::add_driver(const std::string& name, std::unique_ptr<Driver> driver,
                                     std::chrono::milliseconds poll) {
    m_desks.push_back(
        std::make_shared<Driver_desk>(name, std::move(driver), poll, m_settings, m_news));
    return m_desks.size() - 1;
}

bool Device_cache::add_parameter(std::size_t driver, const Driver_parameter& parameter,
                                 std::optional<std::chrono::milliseconds> poll) {
    Driver_desk& desk = *m_desks[driver];
    const std::size_t number = desk.add(parameter, poll);
    return m_places.try_emplace(address(parameter.pid, parameter.varidx), Place{&desk, number})
        .second;
}

void Device_cache::start() {
    if (!m_settings.has_threads) {
        return;
    }
    const All_signals_blocked blocked;
    for (const std::shared_ptr<Driver_desk>& desk : m_desks) {
        m_threads.emplace_back([desk] { desk->run(); });
    }
}

// ---- while they work

const Device_cache::Place* Device_cache::place_of(std::uint32_t pid, std::uint32_t varidx) const {
    const auto found = m_places.find(address(pid, varidx));
    return found == m_places.end() ? nullptr : &found->second;
}

bool Device_cache::has(std::uint32_t pid, std::uint32_t varidx) const {
    return place_of(pid, varidx) != nullptr;
}

std::optional<Value_state> Device_cache::state(std::uint32_t pid, std::uint32_t varidx) const {
    const Place* const place = place_of(pid, varidx);
    return place == nullptr ? std::nullopt
                            : std::optional<Value_state>(place->desk->state(place->number));
}

int Device_cache::descriptor() const {
    return m_news->descriptor();
}

bool Device_cache::take_changes() {
    return m_news->take_changes();
}

std::vector<Driver_event> Device_cache::take_events() {
    for (const std::shared_ptr<Driver_desk>& desk : m_desks) {
        desk->watch();
    }
    return m_news->take_events();
}

std::vector<Unsent_write> Device_cache::outstanding() const {
    std::vector<Unsent_write> all;
    for (const std::shared_ptr<Driver_desk>& desk : m_desks) {
        const std::vector<Unsent_write> some = desk->outstanding();
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

template <typename Is_done>
void Device_cache::work_until(std::chrono::milliseconds most, Is_done is_done) {
    const auto end = std::chrono::steady_clock::now() + most;
    for (;;) {
        const std::uint64_t rounds = m_news->rounds();
        if (is_done() || std::chrono::steady_clock::now() >= end) {
            return;
        }
        if (m_settings.has_threads) {
            m_news->wait_for_round(rounds, end);
        } else if (!step()) {
            return;
        }
    }
}

std::vector<Unsent_write> Device_cache::flush(std::chrono::milliseconds most) {
    if (!outstanding().empty()) {
        for (const std::shared_ptr<Driver_desk>& desk : m_desks) {
            desk->hurry();
        }
        work_until(most, [this] { return outstanding().empty(); });
    }
    return outstanding();
}

void Device_cache::read_all(std::chrono::milliseconds most) {
    work_until(most, [this] {
        bool is_done = true;
        for (const std::shared_ptr<Driver_desk>& desk : m_desks) {
            is_done = desk->want_all() && is_done;
        }
        return is_done;
    });
}

std::vector<Driven_value> Device_cache::values() const {
    std::vector<Driven_value> all;
    for (const std::shared_ptr<Driver_desk>& desk : m_desks) {
        desk->add_values(all);
    }
    return all;
}

bool Device_cache::step() {
    bool did_anything = false;
    for (const std::shared_ptr<Driver_desk>& desk : m_desks) {
        did_anything = desk->step() || did_anything;
    }
    return did_anything;
}

// ---- the data interface

int Device_cache::Get(unsigned int pid, unsigned int varidx, void* buffer, unsigned int length) {
    const Place* const place = place_of(pid, varidx);
    if (place == nullptr) {
        return m_others.Get(pid, varidx, buffer, length);
    }
    const std::optional<Parameter_value> value = place->desk->get(place->number);
    if (!value) {
        return NOT_KNOWN;
    }
    const auto* const text = std::get_if<std::string>(&*value);
    return text != nullptr ? read_text(*text, buffer, length)
                           : read_number(std::get<std::int32_t>(*value), buffer, length);
}

int Device_cache::Set(unsigned int pid, unsigned int varidx, const void* buffer,
                      unsigned int length) {
    const Place* const place = place_of(pid, varidx);
    if (place == nullptr) {
        return m_others.Set(pid, varidx, buffer, length);
    }
    const Driver_parameter& parameter = place->desk->parameter(place->number);
    Parameter_value value;
    const int result = parameter.is_text ? text_of(parameter, buffer, length, value)
                                         : number_of(parameter, buffer, length, value);
    if (result == DONE && m_write_listener) {
        m_write_listener(pid, varidx, value);
    }
    if (result == DONE) {
        place->desk->set(place->number, std::move(value));
    }
    return result;
}

void Device_cache::Init() {
    m_others.Init();
}

int Device_cache::Get_prod_list(PROD_LIST_S* list, bool remote, bool refresh) {
    return m_others.Get_prod_list(list, remote, refresh);
}

int Device_cache::Set_product_id(prod_id_t product) {
    return m_others.Set_product_id(product);
}

int Device_cache::Get_prod_alias_name(char* name, prod_id_t product) {
    return m_others.Get_prod_alias_name(name, product);
}

int Device_cache::Is_current_selection_local() {
    return m_sockets != nullptr ? m_sockets->Is_current_selection_local() : LOCAL_SOCKET;
}

bool Device_cache::Is_use_selection_local() {
    return m_sockets != nullptr && m_sockets->Is_use_selection_local();
}

int Device_cache::setCurrentRouterSocket(int socket) {
    if (m_sockets != nullptr) {
        return m_sockets->setCurrentRouterSocket(socket);
    }
    return socket == LOCAL_SOCKET ? 0 : -1;
}

}  // namespace frontpanel
