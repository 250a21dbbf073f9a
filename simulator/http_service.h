// A small HTTP service on loopback: whole requests in, whole answers out, one request a connection.
//
// One thread serves all clients and waits for none of them, so that an idle or slow client does not delay others. The
// memory for requests is bounded.
#ifndef FRONTPANEL_SIMULATOR_HTTP_SERVICE_H
#define FRONTPANEL_SIMULATOR_HTTP_SERVICE_H

#include <poll.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <list>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace frontpanel {

struct Http_request {
    std::string method;
    std::string target;                 // path and query as they came
    std::optional<std::string> host;    // of the header, as are the following
    std::optional<std::string> origin;  // the page that made a browser send the request
    std::string body;
};

struct Http_answer {
    int status = 200;
    std::string body;
    std::string type;     // of the content
    bool is_cut = false;  // half of the body is sent, and the connection is closed
};

class Http_service {
public:
    using Time = std::chrono::steady_clock::time_point;

    // Of one request, across the calls of `Handler::answer`.
    struct Wait {
        bool has_begun = false;  // the handler's own
        int order = 0;           // the handler's own
        Time due = Time::max();  // when the handler is asked again
    };

    class Handler {
    public:
        virtual ~Handler() = default;
        // The answer, or nothing: then the request is asked about again when it is due and after each `wake`. Called
        // on the service's thread.
        virtual std::optional<Http_answer> answer(const Http_request& request, Wait& wait) = 0;
    };

    static constexpr const char* HOST = "127.0.0.1";
    static constexpr std::size_t LONGEST_HEAD =
        std::size_t{16} * 1024;  // a longer one is answered 431
    static constexpr std::size_t LONGEST_BODY =
        std::size_t{64} * 1024;  // a longer one is answered 413
    static constexpr std::size_t MOST_CLIENTS =
        64;  // one more displaces the oldest that is not served
    static constexpr std::chrono::seconds PATIENCE{
        5};  // for a whole request, and for taking an answer

    // Listens on loopback at `port`, 0 for any free one. Throws std::runtime_error when that fails. The handler
    // outlives the service.
    Http_service(int port, Handler& handler);
    // Requests that still wait are asked about once more.
    ~Http_service();
    Http_service(const Http_service&) = delete;
    Http_service& operator=(const Http_service&) = delete;

    int port() const { return m_port; }
    // Asks about all requests that wait. From any thread.
    void wake();

private:
    enum class Phase { READING, WAITING, WRITING, LINGERING, DONE };
    struct Client {
        int socket;
        Phase phase = Phase::READING;
        Time deadline;
        std::string in;
        std::size_t body_start = 0;  // of `in`; 0 before the head is whole
        std::size_t body_size = 0;
        Http_request request;
        Wait wait;
        std::string out;
        std::size_t sent = 0;
    };

    void listen(int port);
    void start();
    void run();
    std::vector<pollfd> sources();
    int patience() const;
    void accept_clients();
    void displace_one();
    void serve_all(const pollfd* ready);
    void serve(Client& client, short events, Time now);
    void receive(Client& client);
    void take_head(Client& client, std::size_t searched);
    void ask(Client& client);
    void answer(Client& client, const Http_answer& answer);
    void refuse(Client& client, int status);
    void send(Client& client);
    void linger(Client& client);
    void close_all();

    Handler& m_handler;
    int m_port = 0;
    int m_listener = -1;
    int m_wakers[2] = {-1, -1};  // a pipe
    std::atomic<bool> m_ends{false};
    std::list<Client> m_clients;  // the oldest first
    std::thread m_thread;
};

}  // namespace frontpanel

#endif
