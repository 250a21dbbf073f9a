// The web service of slot cards, in process and on loopback: it answers the requests for live-data documents
// that the panel's tools make, and keeps the selections that they post.
//
// Requests may have a head of 16 KiB and a body of 64 KiB; clients that are idle or slow do not delay others. A post
// that a web page of another origin makes a browser send is refused.
//
// Thread-safe. Its thread ends with the object. From the first one on the process ignores SIGPIPE.
#ifndef FRONTPANEL_SIMULATOR_CARD_SERVICE_H
#define FRONTPANEL_SIMULATOR_CARD_SERVICE_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace frontpanel {

class Card_service {
public:
    static constexpr std::size_t REMEMBERED = 256;  // requests kept, newest
    static constexpr std::size_t LONGEST_REMEMBERED =
        1024;  // bytes kept of a target, and of a body

    struct Option {
        std::string value;
        std::string label;
    };

    // A document and the index that is selected in it.
    struct Selection {
        int slot;
        int varid;
        int option;
    };

    // How the service misbehaves.
    enum class Fault {
        NONE,
        LATE,          // answers after a delay
        CUT_OFF,       // announces the whole answer, sends half of it and closes the connection
        ERROR_STATUS,  // answers 503; a post changes nothing
        UNCOMPRESSED,  // sends a document as plain text
        GARBAGE        // sends bytes that are neither compressed nor a document
    };

    struct Request {
        std::string method;  // "GET" or "POST"
        std::string target;  // path and query as they came; cut, as is the body
        std::string body;
        int status;  // of the answer
    };

    // Listens on 127.0.0.1 at `port`, 0 for any free one. Throws std::runtime_error when that fails.
    explicit Card_service(int port = 0);
    ~Card_service();
    Card_service(const Card_service&) = delete;
    Card_service& operator=(const Card_service&) = delete;

    int port() const;
    // "127.0.0.1:PORT", at most 15 characters: a card's address as the panel keeps it.
    std::string address() const;

    // Declares a document of a slot, or replaces it. `selected` is the index of an option; it may lie outside
    // the options, as a card's can.
    void add_combo_box(int slot, int varid, std::vector<Option> options, int selected);
    // `json` is sent as it is. Nothing is selected at first.
    void add_tree(int slot, int varid, std::string json);

    // The index selected last; -1 for a document that is not declared and for a new tree.
    int selected(int slot, int varid) const;
    // The selection of every declared document, by slot and variable.
    std::vector<Selection> selections() const;
    bool has_document(int slot, int varid) const;
    // Selects an option as a post would. False, and nothing changed, when there is no such document or option; a tree
    // takes any index from 0 on.
    bool select(int slot, int varid, int option);
    // The listener is called after a post selected another option, on a thread of the service and under its lock: it
    // must not use the service. Once another listener is set, the former one is no longer called.
    void set_change_listener(std::function<void()> listener);

    // Sets the fault of every request. `delay` is for `LATE` and counts from the arrival of each request. Waiting
    // requests continue at once when another fault is set and when the service ends.
    void set_fault(Fault fault, std::chrono::milliseconds delay = std::chrono::milliseconds(0));

    // From now on each request has a fault with this probability, 0 to 1: each kind equally often, `LATE` by at most
    // `longest_delay`. The same seed and the same sequence of requests give the same faults. `set_fault` ends this.
    void set_random_faults(uint32_t seed, double probability,
                           std::chrono::milliseconds longest_delay = std::chrono::milliseconds(0));

    // The newest requests for a document, oldest first. One is listed before its answer is sent.
    std::vector<Request> requests() const;

private:
    class Server;
    std::unique_ptr<Server> m_server;
};

}  // namespace frontpanel

#endif
