#include <frontpanel_display/combined_front.h>

#include <sys/epoll.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

namespace frontpanel {

Combined_front::Combined_front(std::vector<std::unique_ptr<Front>> fronts,
                               std::vector<std::unique_ptr<Input>> inputs)
    : m_fronts(std::move(fronts)),
      m_inputs(std::move(inputs)),
      m_waiting(epoll_create1(EPOLL_CLOEXEC)) {
    if (!m_waiting.is_open()) {
        throw std::system_error(errno, std::generic_category(), "epoll_create1");
    }
    for (const std::unique_ptr<Front>& front : m_fronts) {
        m_parts.push_back(front.get());
    }
    for (const std::unique_ptr<Input>& input : m_inputs) {
        m_parts.push_back(input.get());
    }
}

void Combined_front::show(const Frame& frame) {
    for (const std::unique_ptr<Front>& front : m_fronts) {
        front->show(frame);
    }
}

std::optional<Front_event> Combined_front::next(Time now) {
    const size_t first = m_turn;
    for (size_t i = 0; i < m_parts.size(); ++i) {
        const size_t number = (first + i) % m_parts.size();
        if (const std::optional<Front_event> event = m_parts[number]->next(now)) {
            m_turn = (number + 1) % m_parts.size();
            return event;
        }
    }
    return std::nullopt;
}

// A descriptor that was closed is forgotten by the kernel, and its number may be that of another one since.
void Combined_front::watch(const pollfd& source) const {
    epoll_event wanted{};
    wanted.events = ((source.events & POLLIN) != 0 ? EPOLLIN : 0U) |
                    ((source.events & POLLOUT) != 0 ? EPOLLOUT : 0U);
    if (epoll_ctl(m_waiting.number(), EPOLL_CTL_MOD, source.fd, &wanted) != 0) {
        epoll_ctl(m_waiting.number(), EPOLL_CTL_ADD, source.fd, &wanted);
    }
}

pollfd Combined_front::source() const {
    std::set<int> watched;
    for (const Input* const part : m_parts) {
        const pollfd source = part->source();
        if (source.fd >= 0) {
            watch(source);
            watched.insert(source.fd);
        }
    }
    for (const int descriptor : m_watched) {
        if (watched.count(descriptor) == 0) {
            epoll_ctl(m_waiting.number(), EPOLL_CTL_DEL, descriptor, nullptr);
        }
    }
    m_watched = std::move(watched);
    return {m_waiting.number(), POLLIN, 0};
}

Time Combined_front::due() const {
    Time earliest = Time::max();
    for (const Input* const part : m_parts) {
        earliest = std::min(earliest, part->due());
    }
    return earliest;
}

}  // namespace frontpanel
