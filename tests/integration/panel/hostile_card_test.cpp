// A live entry on a card that answers to do harm, with the tools that fetch and post.
#include <frontpanel_data/live_data_processor.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>

#include <frontpanel_menu/live_entry.h>
#include <frontpanel_simulator/memory_device.h>
#include "curl_home.h"
#include "support/live_data.h"

namespace frontpanel {
namespace {

constexpr off_t LARGEST_FILE = Live_entry::LARGEST_FILE;
// What an answer may cost in all.
constexpr off_t MOST_BYTES = 16000000;
// A fetch takes two seconds at most. A machine that runs much else is slower, and curl may give up a card there
// before it has been asked.
constexpr std::chrono::seconds SOON(30);
constexpr int MOST_TRIES = 10;

// Answers every request, one after the other, as the test says, until the client is gone or the test ends.
class Hostile_card {
public:
    // Sends its pieces until it returns false.
    using Send = std::function<bool(const std::string&)>;
    using Answer = std::function<void(const Send&)>;

    explicit Hostile_card(Answer answer)
        : m_answer(std::move(answer)), m_listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto* const any = reinterpret_cast<sockaddr*>(&address);
        EXPECT_EQ(bind(m_listener, any, size), 0);
        EXPECT_EQ(listen(m_listener, 8), 0);
        EXPECT_EQ(getsockname(m_listener, any, &size), 0);
        m_address = "127.0.0.1:" + std::to_string(ntohs(address.sin_port));
        m_thread = std::thread([this] { run(); });
    }
    ~Hostile_card() {
        m_ends = true;
        shutdown(m_listener, SHUT_RDWR);
        m_thread.join();
        close(m_listener);
    }
    Hostile_card(const Hostile_card&) = delete;
    Hostile_card& operator=(const Hostile_card&) = delete;

    std::string address() const { return m_address; }
    int requests() const { return m_requests; }

private:
    void run() {
        while (!m_ends) {
            const int client = accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
            if (client < 0) {
                continue;
            }
            // A client that does not read is looked after again and again.
            const timeval moment{0, 50000};
            setsockopt(client, SOL_SOCKET, SO_SNDTIMEO, &moment, sizeof moment);
            setsockopt(client, SOL_SOCKET, SO_RCVTIMEO, &moment, sizeof moment);
            serve(client);
            close(client);
        }
    }
    void serve(int client) {
        std::string request;
        std::array<char, 4096> bytes{};
        while (!m_ends && request.find("\r\n\r\n") == std::string::npos) {
            const ssize_t size = recv(client, bytes.data(), bytes.size(), 0);
            if (size == 0) {
                return;
            }
            request.append(bytes.data(), size > 0 ? static_cast<size_t>(size) : 0);
        }
        ++m_requests;
        m_answer([this, client](const std::string& piece) { return send_all(client, piece); });
    }
    bool send_all(int client, const std::string& piece) {
        size_t sent = 0;
        while (sent < piece.size() && !m_ends) {
            const ssize_t size =
                ::send(client, piece.data() + sent, piece.size() - sent, MSG_NOSIGNAL);
            if (size < 0 && errno != EAGAIN && errno != EINTR) {
                return false;
            }
            sent += size > 0 ? static_cast<size_t>(size) : 0;
        }
        return !m_ends;
    }

    Answer m_answer;
    int m_listener;
    std::string m_address;
    std::atomic<bool> m_ends{false};
    std::atomic<int> m_requests{0};
    std::thread m_thread;
};

std::string gzip(const std::string& text) {
    constexpr int GZIP_FORMAT = 15 + 16;
    z_stream stream = {};
    EXPECT_EQ(
        deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, GZIP_FORMAT, 8, Z_DEFAULT_STRATEGY),
        Z_OK);
    std::string from = text;
    std::string packed(deflateBound(&stream, text.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(from.data());
    stream.avail_in = static_cast<uInt>(from.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

// A document with one option that unpacks to so many bytes.
std::string document_of(off_t size) {
    std::string text = R"({"state":{"value":"0"},"options":[{"value":"0","label":"On"}]})";
    text.resize(static_cast<size_t>(size), ' ');
    return text;
}

void send_whole(const Hostile_card::Send& send, const std::string& body) {
    send("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n");
    send(body);
}

void send_for_ever(const Hostile_card::Send& send, const std::string& head,
                   const std::string& piece) {
    for (bool goes_on = send(head); goes_on; goes_on = send(piece)) {
    }
}

// A piece now and then.
void drip(const Hostile_card::Send& send, const std::string& head, const std::string& piece) {
    for (bool goes_on = send(head); goes_on; goes_on = send(piece)) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
}

// The most that this process has had so far.
long most_memory_kib() {
    rusage used{};
    getrusage(RUSAGE_SELF, &used);
    return used.ru_maxrss;
}

off_t size_of(const std::string& file) {
    struct stat status {};
    return stat(file.c_str(), &status) == 0 ? status.st_size : 0;
}

// Tests run side by side, and the files under /tmp are named by the parameter.
int parameter_of_this_test() {
    constexpr int FIRST = 9025;
    const testing::UnitTest& all = *testing::UnitTest::GetInstance();
    int place = 0;
    while (all.current_test_suite()->GetTestInfo(place) != all.current_test_info()) {
        ++place;
    }
    return FIRST + place;
}

class Hostile_card_test : public testing::Test {
protected:
    ~Hostile_card_test() override {
        m_entry.Update_value(nullptr, 0);  // an entry's destructor keeps its last list
        for (const std::string& name : {m_document, m_document + ".gz", m_post}) {
            unlink(name.c_str());
        }
    }

    void use(const Hostile_card& card) {
        std::string address = card.address();
        m_processor.updateLDP(0, address.data(), 3);
    }
    // Has the answer fetched once; returns what the entry then shows.
    std::string fetch(const Hostile_card::Answer& answer) {
        const Hostile_card card(answer);
        use(card);
        for (int i = 0; i < MOST_TRIES && card.requests() == 0; ++i) {
            fetch_once();
        }
        EXPECT_GT(card.requests(), 0);
        return shown();
    }
    // What a fetch leaves behind, and how long it takes, is bounded.
    void fetch_once() {
        const auto start = std::chrono::steady_clock::now();
        constexpr int REFRESHES_OF_ONE_FETCH = 11;
        for (int i = 0; i < REFRESHES_OF_ONE_FETCH; ++i) {
            m_entry.Refresh(&m_device, false);
        }
        EXPECT_LT(std::chrono::steady_clock::now() - start, SOON);
        EXPECT_LE(size_of(m_document + ".gz"), LARGEST_FILE);
        EXPECT_LE(size_of(m_document), LARGEST_FILE);
    }
    std::string shown() {
        char text[20] = "";
        m_entry.Get_display_string(text, 10);
        return text;
    }

    int m_pid = parameter_of_this_test();
    std::string m_document = "/tmp/" + std::to_string(m_pid) + "-json";
    std::string m_post = "/tmp/" + std::to_string(m_pid) + "-post";
    Curl_home m_curl_home;
    Memory_device m_device;
    Index_t m_index;
    Live_Data_Processor m_processor{0, nullptr, 3};
    std::array<std::string, 3> m_texts{"-", "json-dynamic-combobox", "list"};
    std::array<char*, 1> m_options{m_texts[0].data()};
    Live_entry m_entry{"Live",
                       "",
                       static_cast<unsigned int>(m_pid),
                       &m_index,
                       0,
                       0,
                       0,
                       m_options.data(),
                       1,
                       nullptr,
                       Data_entry::READ_WRITE,
                       Data_entry::VISIBLE_ALL,
                       true,
                       Data_entry::SHORTCUT_NONE,
                       nullptr,
                       nullptr,
                       nullptr,
                       m_texts[1].data(),
                       m_texts[2].data(),
                       &m_processor};
};

TEST_F(Hostile_card_test, TheLimitsBoundAnAnswerAltogether) {
    EXPECT_LE(2 * LARGEST_FILE, MOST_BYTES);
}

TEST_F(Hostile_card_test, AnEndlessBodyWithoutLengthIsCut) {
    EXPECT_EQ(fetch([](const auto& send) {
                  send_for_ever(send, "HTTP/1.1 200 OK\r\n\r\n", std::string(100000, 'x'));
              }),
              "-");
}

TEST_F(Hostile_card_test, AnEndlessBodyInChunksIsCut) {
    EXPECT_EQ(fetch([](const auto& send) {
                  send_for_ever(send, "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n",
                                "10000\r\n" + std::string(0x10000, 'x') + "\r\n");
              }),
              "-");
}

TEST_F(Hostile_card_test, ABombIsNotUnpacked) {
    // A hundred parts of 10 MB each, all of them in a megabyte.
    const std::string part = gzip(std::string(10000000, ' '));
    std::string bomb;
    for (int i = 0; i < 100; ++i) {
        bomb += part;
    }
    ASSERT_LT(bomb.size(), 1048576U);
    EXPECT_EQ(fetch([&bomb](const auto& send) { send_whole(send, bomb); }), "-");
    EXPECT_EQ(size_of(m_document), 0);
}

TEST_F(Hostile_card_test, ADocumentMayBeAsLargeAsTheLimitAndNoLarger) {
    const std::string large = gzip(document_of(LARGEST_FILE));
    for (int i = 0; i < MOST_TRIES && shown() != "On"; ++i) {
        fetch([&large](const auto& send) { send_whole(send, large); });
    }
    EXPECT_EQ(shown(), "On");
    const std::string other = gzip(document_of(LARGEST_FILE + 1));
    fetch([&other](const auto& send) { send_whole(send, other); });
    EXPECT_EQ(size_of(m_document), 0);
}

// Some kilobytes make a list of as many options as fit the limit, each of which the entry has to keep a place for.
TEST_F(Hostile_card_test, AListOfEmptyOptionsTakesLittleMemory) {
    constexpr long MOST_KIB = 100000;
    std::string text = R"({"state":{"value":"0"},"options":[{"value":"0","label":"On"})";
    const std::string end = "]}";
    const std::string option = ",{}";
    while (text.size() + option.size() + end.size() <= Live_entry::LARGEST_FILE) {
        text += option;
    }
    const std::string packed = gzip(text + end);
    EXPECT_LT(packed.size(), 20000U);
    const long before = most_memory_kib();
    for (int i = 0; i < MOST_TRIES && shown() != "On"; ++i) {
        fetch([&packed](const auto& send) { send_whole(send, packed); });
    }
    EXPECT_EQ(shown(), "On");
    EXPECT_LT(most_memory_kib() - before, MOST_KIB);
}

TEST_F(Hostile_card_test, ABodyThatDripsIsGivenUp) {
    EXPECT_EQ(fetch([](const auto& send) { drip(send, "HTTP/1.1 200 OK\r\n\r\n", "x"); }), "-");
}

TEST_F(Hostile_card_test, AHeadThatDripsIsGivenUp) {
    EXPECT_EQ(fetch([](const auto& send) { drip(send, "HTTP/1.1 200 OK\r\n", "X: y\r\n"); }), "-");
}

TEST_F(Hostile_card_test, AHeadWithoutEndIsGivenUp) {
    EXPECT_EQ(fetch([](const auto& send) {
                  send_for_ever(send, "HTTP/1.1 200 OK\r\n",
                                "X: " + std::string(1000, 'y') + "\r\n");
              }),
              "-");
    EXPECT_EQ(fetch([](const auto& send) {
                  send_for_ever(send, "HTTP/1.1 200 OK\r\nX: ", std::string(100000, 'y'));
              }),
              "-");
}

TEST_F(Hostile_card_test, TrailersWithoutEndAreGivenUp) {
    EXPECT_EQ(fetch([](const auto& send) {
                  send_for_ever(
                      send, "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n1\r\nx\r\n0\r\n",
                      "X: " + std::string(1000, 'y') + "\r\n");
              }),
              "-");
}

TEST_F(Hostile_card_test, AnAnswerElsewhereIsNotFollowed) {
    const std::string place = "http://127.0.0.1:1/";
    EXPECT_EQ(fetch([&place](const auto& send) {
                  send("HTTP/1.1 302 Found\r\nLocation: " + place +
                       "\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
              }),
              "-");
}

TEST_F(Hostile_card_test, TheAnswerToAPostIsCut) {
    const support::Post_permit permit;
    if (!permit.granted()) {
        GTEST_SKIP() << "a post needs a writable /dev";
    }
    const Hostile_card card([](const auto& send) {
        send_for_ever(send, "HTTP/1.1 200 OK\r\n\r\n", std::string(100000, 'x'));
    });
    use(card);
    for (int i = 0; i < MOST_TRIES && card.requests() == 0; ++i) {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(m_entry.Commit(&m_device), 0);
        EXPECT_LT(std::chrono::steady_clock::now() - start, SOON);
    }
    EXPECT_GT(card.requests(), 0);
    EXPECT_LE(size_of(support::ANSWER_FILE), LARGEST_FILE);
}

}  // namespace
}  // namespace frontpanel
