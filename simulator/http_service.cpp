#include "http_service.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <frontpanel_base/numbers.h>

namespace frontpanel {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int BAD_REQUEST = 400;
constexpr int LENGTH_REQUIRED = 411;
constexpr int TOO_LARGE = 413;
constexpr int HEAD_TOO_LARGE = 431;
constexpr const char* HEAD_END = "\r\n\r\n";
constexpr std::size_t HEAD_END_SIZE = 4;

constexpr std::pair<int, const char*> REASONS[] = {
    {200, "OK"},
    {BAD_REQUEST, "Bad Request"},
    {403, "Forbidden"},
    {404, "Not Found"},
    {LENGTH_REQUIRED, "Length Required"},
    {TOO_LARGE, "Content Too Large"},
    {HEAD_TOO_LARGE, "Request Header Fields Too Large"},
    {503, "Service Unavailable"},
};

const char* reason_of(int status) {
    for (const auto& [known, reason] : REASONS) {
        if (known == status) {
            return reason;
        }
    }
    return "Unknown";
}

bool is_later(int error) {
    return error == EAGAIN || error == EINTR;
}

// The first line of the text, without its end, which both are taken from the text.
std::string take_line(std::string& text) {
    const std::size_t end = std::min(text.find("\r\n"), text.size());
    std::string line = text.substr(0, end);
    text.erase(0, std::min(end + 2, text.size()));
    return line;
}

std::string lower_case(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

std::string trimmed(const std::string& text) {
    const std::size_t start = text.find_first_not_of(" \t");
    return start == std::string::npos
               ? ""
               : text.substr(start, text.find_last_not_of(" \t") - start + 1);
}

bool take_request_line(const std::string& line, Http_request& request) {
    const std::size_t first = line.find(' ');
    const std::size_t last = line.rfind(' ');
    if (first == std::string::npos || last == first) {
        return false;
    }
    request.method = line.substr(0, first);
    request.target = line.substr(first + 1, last - first - 1);
    return line.compare(last + 1, 7, "HTTP/1.") == 0 &&
           request.target.find(' ') == std::string::npos;
}

// A header that comes twice, or whose name other readers may take for another, hides what it holds.
int take_once(const std::string& value, std::optional<std::string>& header) {
    if (header) {
        return BAD_REQUEST;
    }
    header = value;
    return 0;
}

// 0, or the status to refuse the request with.
int take_header(const std::string& line, Http_request& request, std::size_t& body_size) {
    const std::size_t colon = line.find(':');
    if (colon == std::string::npos || line.find_first_of(" \t") < colon) {
        return BAD_REQUEST;
    }
    const std::string name = lower_case(line.substr(0, colon));
    const std::string value = trimmed(line.substr(colon + 1));
    if (name == "host") {
        return take_once(value, request.host);
    }
    if (name == "origin") {
        return take_once(value, request.origin);
    }
    if (name == "transfer-encoding") {
        return LENGTH_REQUIRED;
    }
    if (name == "content-length") {
        if (value.empty() || value.find_first_not_of("0123456789") != std::string::npos) {
            return BAD_REQUEST;
        }
        const auto size = parse_number<std::size_t>(value, 0, Http_service::LONGEST_BODY);
        body_size = size.value_or(0);
        return size ? 0 : TOO_LARGE;
    }
    return 0;
}

int take_head_lines(std::string head, Http_request& request, std::size_t& body_size) {
    if (!take_request_line(take_line(head), request)) {
        return BAD_REQUEST;
    }
    while (!head.empty()) {
        if (const int status = take_header(take_line(head), request, body_size)) {
            return status;
        }
    }
    return 0;
}

std::string text_of(const Http_answer& answer) {
    const std::string body =
        answer.is_cut ? answer.body.substr(0, answer.body.size() / 2) : answer.body;
    return "HTTP/1.1 " + std::to_string(answer.status) + " " + reason_of(answer.status) +
           "\r\nContent-Type: " + answer.type +
           "\r\nContent-Length: " + std::to_string(answer.body.size()) +
           "\r\nConnection: close\r\n\r\n" + body;
}

}  // namespace

Http_service::Http_service(int port, Handler& handler) : m_handler(handler) {
    if (pipe2(m_wakers, O_CLOEXEC | O_NONBLOCK) != 0) {
        throw std::runtime_error("cannot create a pipe");
    }
    try {
        listen(port);
        start();
    } catch (...) {
        close_all();
        throw;
    }
}

Http_service::~Http_service() {
    m_ends = true;
    // Wakes the thread whatever becomes of a write.
    close(m_wakers[1]);
    m_wakers[1] = -1;
    m_thread.join();
    close_all();
}

void Http_service::start() {
    try {
        m_thread = std::thread([this] { run(); });
    } catch (const std::system_error& error) {
        throw std::runtime_error(std::string("cannot start its thread: ") + error.what());
    }
}

void Http_service::wake() {
    // A pipe that is full wakes as well.
    if (write(m_wakers[1], "", 1) < 0) {
        return;
    }
}

void Http_service::close_all() {
    for (const Client& client : m_clients) {
        close(client.socket);
    }
    for (const int descriptor : {m_listener, m_wakers[0], m_wakers[1]}) {
        if (descriptor >= 0) {
            close(descriptor);
        }
    }
}

void Http_service::listen(int port) {
    m_listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    // Not SO_REUSEPORT: two services must not share a port.
    const int on = 1;
    setsockopt(m_listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<uint16_t>(port));
    socklen_t size = sizeof address;
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    if (port < 0 || port > UINT16_MAX || bind(m_listener, any, size) != 0 ||
        ::listen(m_listener, SOMAXCONN) != 0 || getsockname(m_listener, any, &size) != 0) {
        throw std::runtime_error("cannot listen at " + std::string(HOST) + ":" +
                                 std::to_string(port));
    }
    m_port = ntohs(address.sin_port);
}

// The wakers first, then the listener, then the clients in their order.
std::vector<pollfd> Http_service::sources() {
    std::vector<pollfd> all{{m_wakers[0], POLLIN, 0}, {m_listener, POLLIN, 0}};
    for (const Client& client : m_clients) {
        // A request that waits for its answer is served whether its client is still there or not.
        const bool waits = client.phase == Phase::WAITING;
        const auto events = static_cast<short>(client.phase == Phase::WRITING ? POLLOUT : POLLIN);
        all.push_back({waits ? -1 : client.socket, events, 0});
    }
    return all;
}

// Milliseconds until something is due, for `poll`.
int Http_service::patience() const {
    Time next = Time::max();
    for (const Client& client : m_clients) {
        next = std::min(next, client.phase == Phase::WAITING ? client.wait.due : client.deadline);
    }
    if (next == Time::max()) {
        return -1;
    }
    constexpr std::chrono::milliseconds::rep LONGEST = 60000;
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(next - Clock::now()).count();
    return static_cast<int>(std::clamp<std::chrono::milliseconds::rep>(left + 1, 0, LONGEST));
}

void Http_service::run() {
    while (!m_ends) {
        std::vector<pollfd> ready = sources();
        if (poll(ready.data(), ready.size(), patience()) < 0) {
            continue;
        }
        std::array<char, 64> wakes{};
        while (read(m_wakers[0], wakes.data(), wakes.size()) > 0) {
        }
        serve_all(ready.data() + 2);
        if (ready[1].revents != 0) {
            accept_clients();
        }
    }
    serve_all(nullptr);
}

// What poll() reported of the clients, in their order; null for nothing.
void Http_service::serve_all(const pollfd* ready) {
    const Time now = Clock::now();
    for (Client& client : m_clients) {
        serve(client, ready != nullptr ? (ready++)->revents : short{0}, now);
    }
    m_clients.remove_if([](const Client& client) { return client.phase == Phase::DONE; });
}

// Some at a time, so that each has its turn before it can be displaced.
void Http_service::accept_clients() {
    for (std::size_t i = 0; i < MOST_CLIENTS / 2; ++i) {
        const int socket = accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
        if (socket < 0) {
            // Without a descriptor for it the client would be announced for ever.
            if (errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM) {
                displace_one();
            }
            return;
        }
        if (m_clients.size() >= MOST_CLIENTS) {
            displace_one();
        }
        Client& client = m_clients.emplace_back();
        client.socket = socket;
        client.deadline = Clock::now() + PATIENCE;
    }
}

void Http_service::displace_one() {
    const auto oldest = std::find_if(m_clients.begin(), m_clients.end(), [](const Client& client) {
        return client.phase != Phase::WAITING;
    });
    const auto displaced = oldest != m_clients.end() ? oldest : m_clients.begin();
    if (displaced == m_clients.end()) {
        // Other parts of the process use all descriptors: try again later.
        constexpr int SOME_TIME_MS = 100;
        poll(nullptr, 0, SOME_TIME_MS);
        return;
    }
    close(displaced->socket);
    m_clients.erase(displaced);
}

void Http_service::serve(Client& client, short events, Time now) {
    if (client.phase == Phase::READING && events != 0) {
        receive(client);
    }
    if (client.phase == Phase::WAITING) {
        ask(client);
    }
    if (client.phase == Phase::WRITING) {
        send(client);
    }
    if (client.phase == Phase::LINGERING) {
        linger(client);
    }
    if (client.phase != Phase::WAITING && now >= client.deadline) {
        client.phase = Phase::DONE;
    }
    if (client.phase == Phase::DONE) {
        close(client.socket);
    }
}

void Http_service::receive(Client& client) {
    std::array<char, 16384> bytes{};
    const ssize_t size = recv(client.socket, bytes.data(), bytes.size(), 0);
    if (size <= 0) {
        client.phase = size < 0 && is_later(errno) ? Phase::READING : Phase::DONE;
        return;
    }
    const std::size_t searched = client.in.size();
    client.in.append(bytes.data(), static_cast<std::size_t>(size));
    if (client.body_start == 0) {
        take_head(client, searched);
    }
    if (client.phase == Phase::READING && client.body_start != 0 &&
        client.in.size() - client.body_start >= client.body_size) {
        client.request.body = client.in.substr(client.body_start, client.body_size);
        client.in.clear();
        client.phase = Phase::WAITING;
    }
}

void Http_service::take_head(Client& client, std::size_t searched) {
    const std::size_t start = searched - std::min(searched, HEAD_END_SIZE - 1);
    const std::size_t end = client.in.find(HEAD_END, start);
    if (std::min(end, client.in.size()) > LONGEST_HEAD) {
        refuse(client, HEAD_TOO_LARGE);
    } else if (end != std::string::npos) {
        client.body_start = end + HEAD_END_SIZE;
        if (const int status =
                take_head_lines(client.in.substr(0, end), client.request, client.body_size)) {
            refuse(client, status);
        }
    }
}

void Http_service::ask(Client& client) {
    if (const std::optional<Http_answer> made = m_handler.answer(client.request, client.wait)) {
        answer(client, *made);
    }
}

void Http_service::answer(Client& client, const Http_answer& answer) {
    client.out = text_of(answer);
    client.in.clear();
    client.phase = Phase::WRITING;
    client.deadline = Clock::now() + PATIENCE;
}

void Http_service::refuse(Client& client, int status) {
    answer(client, {status, std::string(reason_of(status)) + ".\n", "text/plain"});
}

void Http_service::send(Client& client) {
    while (client.sent < client.out.size()) {
        const ssize_t size = ::send(client.socket, client.out.data() + client.sent,
                                    client.out.size() - client.sent, MSG_NOSIGNAL);
        if (size < 0) {
            client.phase = is_later(errno) ? Phase::WRITING : Phase::DONE;
            return;
        }
        client.sent += static_cast<std::size_t>(size);
    }
    shutdown(client.socket, SHUT_WR);
    client.out.clear();
    client.phase = Phase::LINGERING;
}

// To close a connection on which something still arrives would make the client lose its answer.
void Http_service::linger(Client& client) {
    std::array<char, 16384> bytes{};
    const ssize_t size = recv(client.socket, bytes.data(), bytes.size(), 0);
    if (size == 0 || (size < 0 && !is_later(errno))) {
        client.phase = Phase::DONE;
    }
}

}  // namespace frontpanel
