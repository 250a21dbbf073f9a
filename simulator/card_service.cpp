// Makes zlib promise not to change its input.
#define ZLIB_CONST

#include <frontpanel_simulator/card_service.h>

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <zlib.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include <frontpanel_base/json_allocator.h>
#include <frontpanel_base/numbers.h>
#include "chance.h"
#include "http_service.h"

namespace frontpanel {
namespace {

constexpr int OK = 200;
constexpr int BAD_REQUEST = 400;
constexpr int FORBIDDEN = 403;
constexpr int NOT_FOUND = 404;
constexpr int UNAVAILABLE = 503;

// Cards expect exactly these times in requests.
constexpr const char* GET_TIME = "1480088766084";
constexpr const char* SET_TIME = "1481650582406";

const std::string GARBAGE_BYTES("\x7f\x00{\"state\xff\x1f\x8a]", 13);

typedef std::pair<int, int> Document_key;  // slot and variable

struct Live_document {
    std::vector<Card_service::Option> options;
    std::string tree;
    bool is_tree;
    int selected;
};

bool has_option(const Live_document& document, int index) {
    return index >= 0 &&
           (document.is_tree || static_cast<std::size_t>(index) < document.options.size());
}

std::string target_of(const char* verb, const char* time, const Document_key& key, char format) {
    char text[256];
    std::snprintf(text, sizeof text, "/slot/%d/htdocs/cgi-bin/cfgjson?%s&slotid=%d&%d@%c;time&%s",
                  key.first, verb, key.first, key.second, format, time);
    return text;
}

// The number between the first `before` and the next `behind`.
std::optional<int> number_between(std::string_view text, std::string_view before, char behind) {
    const std::size_t found = text.find(before);
    if (found == std::string_view::npos) {
        return std::nullopt;
    }
    text.remove_prefix(found + before.size());
    const std::size_t end = text.find(behind);
    return end == std::string_view::npos ? std::nullopt : parse_number<int>(text.substr(0, end));
}

// The document that a request names. A card understands its requests to the letter, so what was read from
// the target has to yield the same target again.
std::optional<Document_key> key_of(const std::string& target, const char* verb, const char* time) {
    const auto slot = number_between(target, "/slot/", '/');
    const auto varid =
        slot ? number_between(target, "&slotid=" + std::to_string(*slot) + "&", '@') : std::nullopt;
    const std::size_t format = target.find('@') + 1;
    if (!varid || format == target.size()) {
        return std::nullopt;
    }
    const Document_key key(*slot, *varid);
    return target == target_of(verb, time, key, target[format]) ? std::optional(key) : std::nullopt;
}

using Json_buffer = rapidjson::GenericStringBuffer<rapidjson::UTF8<>, Json_allocator>;
using Json_writer =
    rapidjson::Writer<Json_buffer, rapidjson::UTF8<>, rapidjson::UTF8<>, Json_allocator>;
using Json_document =
    rapidjson::GenericDocument<rapidjson::UTF8<>, rapidjson::MemoryPoolAllocator<Json_allocator>,
                               Json_allocator>;

void write_member(Json_writer& writer, const char* name, const std::string& text) {
    writer.Key(name);
    writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

std::string combo_box_text(const Live_document& document) {
    Json_buffer buffer;
    Json_writer writer(buffer);
    writer.StartObject();
    writer.Key("state");
    writer.StartObject();
    write_member(writer, "value", std::to_string(document.selected));
    writer.EndObject();
    writer.Key("options");
    writer.StartArray();
    for (const Card_service::Option& option : document.options) {
        writer.StartObject();
        write_member(writer, "value", option.value);
        write_member(writer, "label", option.label);
        writer.EndObject();
    }
    writer.EndArray();
    writer.EndObject();
    return {buffer.GetString(), buffer.GetSize()};
}

std::string gzip(const std::string& text) {
    constexpr int GZIP_FORMAT = 15 + 16;
    z_stream stream = {};
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, GZIP_FORMAT, 8,
                     Z_DEFAULT_STRATEGY) != Z_OK) {
        throw std::bad_alloc();
    }
    std::string packed(deflateBound(&stream, text.size()), '\0');
    stream.next_in = reinterpret_cast<const Bytef*>(text.data());
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    deflate(&stream, Z_FINISH);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

// The index in {"state":{"value":"INDEX"}}.
std::optional<int> posted_index(const std::string& body) {
    Json_document document;
    document.Parse<rapidjson::kParseIterativeFlag>(body.c_str(), body.size());
    if (document.HasParseError() || !document.IsObject()) return std::nullopt;
    const auto state = document.FindMember("state");
    if (state == document.MemberEnd() || !state->value.IsObject()) return std::nullopt;
    const auto value = state->value.FindMember("value");
    if (value == state->value.MemberEnd() || !value->value.IsString()) return std::nullopt;
    return parse_number({value->value.GetString(), value->value.GetStringLength()}, 0);
}

// Whether a target's path is that of the documents, whatever its query.
bool is_of_documents(const std::string& target) {
    constexpr std::size_t MOST_DIGITS = 9;
    const std::string before = "/slot/";
    const std::string behind = "/htdocs/cgi-bin/cfgjson";
    if (target.compare(0, before.size(), before) != 0) {
        return false;
    }
    const std::string rest = target.substr(before.size(), target.find('?') - before.size());
    const std::size_t start = rest.substr(0, 1) == "-" ? 1 : 0;
    const std::size_t end = std::min(rest.find_first_not_of("0123456789", start), rest.size());
    return end > start && end - start <= MOST_DIGITS && rest.substr(end) == behind;
}

}  // namespace

class Card_service::Server : private Http_service::Handler {
public:
    explicit Server(int port);
    ~Server() override;

    int port() const { return m_http.port(); }
    void declare(const Document_key& key, Live_document document);
    int selected(const Document_key& key) const;
    std::vector<Selection> selections() const;
    bool has_document(const Document_key& key) const;
    bool select(const Document_key& key, int option);
    void set_change_listener(std::function<void()> listener);
    void set_fault(Fault fault, std::chrono::milliseconds delay);
    void set_random_faults(uint32_t seed, double probability,
                           std::chrono::milliseconds longest_delay);
    std::vector<Request> requests() const;

private:
    typedef std::unique_lock<std::mutex> Lock;

    std::optional<Http_answer> answer(const Http_request& request,
                                      Http_service::Wait& wait) override;
    struct Trouble {
        Fault fault;
        std::chrono::milliseconds delay;
    };
    struct Dice {
        Chance chance;
        double probability;
        std::chrono::milliseconds longest_delay;
    };
    Trouble next_trouble();
    std::optional<Fault> fault_of(Http_service::Wait& wait);
    void change_order();
    bool is_foreign(const Http_request& request) const;
    Http_answer make_answer(const Http_request& request, Fault fault);
    Http_answer send_document(const Http_request& request, Fault fault) const;
    Http_answer keep_selection(const Http_request& request);
    void remember(const Http_request& request, int status);

    mutable std::mutex m_mutex;
    std::map<Document_key, Live_document> m_documents;
    std::deque<Request> m_requests;
    std::function<void()> m_change_listener;
    Trouble m_trouble{Fault::NONE, std::chrono::milliseconds(0)};
    std::optional<Dice> m_dice;  // while the faults are drawn
    int m_orders = 0;            // how often other faults were asked for

    Http_service m_http;  // the last: its thread uses the others
};

Card_service::Server::Server(int port) try : m_http(port, *this) {
    // A client may close its connection at any time: the failed write reports it.
    std::signal(SIGPIPE, SIG_IGN);
} catch (const std::runtime_error& error) {
    throw std::runtime_error(std::string("the card service ") + error.what());
}

// Requests that wait have their answer before the service ends.
Card_service::Server::~Server() {
    set_fault(Fault::NONE, {});
}

void Card_service::Server::declare(const Document_key& key, Live_document document) {
    const Lock lock(m_mutex);
    m_documents[key] = std::move(document);
}

int Card_service::Server::selected(const Document_key& key) const {
    const Lock lock(m_mutex);
    const auto found = m_documents.find(key);
    return found != m_documents.end() ? found->second.selected : -1;
}

std::vector<Card_service::Selection> Card_service::Server::selections() const {
    const Lock lock(m_mutex);
    std::vector<Selection> selections;
    for (const auto& [key, document] : m_documents) {
        selections.push_back({key.first, key.second, document.selected});
    }
    return selections;
}

bool Card_service::Server::has_document(const Document_key& key) const {
    const Lock lock(m_mutex);
    return m_documents.count(key) != 0;
}

bool Card_service::Server::select(const Document_key& key, int option) {
    const Lock lock(m_mutex);
    const auto found = m_documents.find(key);
    if (found == m_documents.end() || !has_option(found->second, option)) {
        return false;
    }
    found->second.selected = option;
    return true;
}

void Card_service::Server::set_change_listener(std::function<void()> listener) {
    const Lock lock(m_mutex);
    m_change_listener = std::move(listener);
}

void Card_service::Server::set_fault(Fault fault, std::chrono::milliseconds delay) {
    const Lock lock(m_mutex);
    if (m_dice || m_trouble.fault != fault) {
        change_order();
    }
    m_dice.reset();
    m_trouble = {fault, delay};
}

void Card_service::Server::set_random_faults(uint32_t seed, double probability,
                                             std::chrono::milliseconds longest_delay) {
    const Lock lock(m_mutex);
    change_order();
    m_dice.emplace(Dice{Chance(seed), probability, longest_delay});
    m_trouble = {Fault::NONE, std::chrono::milliseconds(0)};
}

// Requests that wait for the former order go on.
void Card_service::Server::change_order() {
    ++m_orders;
    m_http.wake();
}

std::vector<Card_service::Request> Card_service::Server::requests() const {
    const Lock lock(m_mutex);
    return {m_requests.begin(), m_requests.end()};
}

void Card_service::Server::remember(const Http_request& request, int status) {
    if (m_requests.size() == REMEMBERED) {
        m_requests.pop_front();
    }
    m_requests.push_back({request.method, request.target.substr(0, LONGEST_REMEMBERED),
                          request.body.substr(0, LONGEST_REMEMBERED), status});
}

Card_service::Server::Trouble Card_service::Server::next_trouble() {
    constexpr Fault FAULTS[] = {Fault::LATE, Fault::CUT_OFF, Fault::ERROR_STATUS,
                                Fault::UNCOMPRESSED, Fault::GARBAGE};
    if (!m_dice || !m_dice->chance.happens(m_dice->probability)) {
        return m_trouble;
    }
    const Fault fault = FAULTS[m_dice->chance.below(std::size(FAULTS))];
    return {fault,
            std::chrono::milliseconds(m_dice->chance.below(m_dice->longest_delay.count() + 1))};
}

// The fault that holds for the answer; nothing while the request is to wait.
std::optional<Card_service::Fault> Card_service::Server::fault_of(Http_service::Wait& wait) {
    const auto now = std::chrono::steady_clock::now();
    if (wait.has_begun) {
        if (wait.order != m_orders) {
            return m_trouble.fault;
        }
        return now >= wait.due ? std::optional<Fault>(Fault::LATE) : std::nullopt;
    }
    const Trouble trouble = next_trouble();
    if (trouble.fault != Fault::LATE) {
        return trouble.fault;
    }
    wait = {true, m_orders, now + trouble.delay};
    return trouble.delay.count() > 0 ? std::nullopt : std::optional<Fault>(Fault::LATE);
}

std::optional<Http_answer> Card_service::Server::answer(const Http_request& request,
                                                        Http_service::Wait& wait) {
    const bool is_known = request.method == "GET" || request.method == "POST";
    if (!is_known || !is_of_documents(request.target)) {
        return Http_answer{NOT_FOUND, "There is no such document.\n", "text/plain"};
    }
    const Lock lock(m_mutex);
    const std::optional<Fault> fault = fault_of(wait);
    if (!fault) {
        return std::nullopt;
    }
    Http_answer made = make_answer(request, *fault);
    made.is_cut = *fault == Fault::CUT_OFF;
    remember(request, made.status);
    return made;
}

Http_answer Card_service::Server::make_answer(const Http_request& request, Fault fault) {
    if (fault == Fault::ERROR_STATUS) {
        return {UNAVAILABLE, "The card is busy.\n", "text/plain"};
    }
    return request.method == "POST" ? keep_selection(request) : send_document(request, fault);
}

Http_answer Card_service::Server::send_document(const Http_request& request, Fault fault) const {
    const auto key = key_of(request.target, "Get", GET_TIME);
    const auto found = key ? m_documents.find(*key) : m_documents.end();
    if (found == m_documents.end()) {
        return {NOT_FOUND, "There is no such document.\n", "text/plain"};
    }
    if (fault == Fault::GARBAGE) {
        return {OK, GARBAGE_BYTES, "application/gzip"};
    }
    const Live_document& document = found->second;
    const std::string text = document.is_tree ? document.tree : combo_box_text(document);
    if (fault == Fault::UNCOMPRESSED) {
        return {OK, text, "application/json"};
    }
    return {OK, gzip(text), "application/gzip"};
}

// Whether a web page of another origin, or a host name that was made to point here, made a browser send the request.
bool Card_service::Server::is_foreign(const Http_request& request) const {
    const std::string port = ":" + std::to_string(m_http.port());
    const auto is_ours = [&port](const std::string& place, const std::string& lead) {
        return place == lead + Http_service::HOST + port || place == lead + "localhost" + port;
    };
    return (request.origin && !is_ours(*request.origin, "http://")) ||
           (request.host && !is_ours(*request.host, ""));
}

Http_answer Card_service::Server::keep_selection(const Http_request& request) {
    if (is_foreign(request)) {
        return {FORBIDDEN, "Only the panel selects.\n", "text/plain"};
    }
    const auto key = key_of(request.target, "Set", SET_TIME);
    const auto found = key ? m_documents.find(*key) : m_documents.end();
    if (found == m_documents.end()) {
        return {NOT_FOUND, "There is no such document.\n", "text/plain"};
    }
    Live_document& document = found->second;
    const auto index = posted_index(request.body);
    if (!index || !has_option(document, *index)) {
        return {BAD_REQUEST, "There is no such option.\n", "text/plain"};
    }
    const bool has_changed = document.selected != *index;
    document.selected = *index;
    if (has_changed && m_change_listener) {
        m_change_listener();
    }
    return {OK, "{}\n", "application/json"};
}

Card_service::Card_service(int port) : m_server(std::make_unique<Server>(port)) {}

Card_service::~Card_service() = default;

int Card_service::port() const {
    return m_server->port();
}

std::string Card_service::address() const {
    return Http_service::HOST + (":" + std::to_string(port()));
}

void Card_service::add_combo_box(int slot, int varid, std::vector<Option> options, int selected) {
    m_server->declare({slot, varid}, {std::move(options), "", false, selected});
}

void Card_service::add_tree(int slot, int varid, std::string json) {
    m_server->declare({slot, varid}, {{}, std::move(json), true, -1});
}

int Card_service::selected(int slot, int varid) const {
    return m_server->selected({slot, varid});
}

std::vector<Card_service::Selection> Card_service::selections() const {
    return m_server->selections();
}

bool Card_service::has_document(int slot, int varid) const {
    return m_server->has_document({slot, varid});
}

bool Card_service::select(int slot, int varid, int option) {
    return m_server->select({slot, varid}, option);
}

void Card_service::set_change_listener(std::function<void()> listener) {
    m_server->set_change_listener(std::move(listener));
}

void Card_service::set_fault(Fault fault, std::chrono::milliseconds delay) {
    m_server->set_fault(fault, delay);
}

void Card_service::set_random_faults(uint32_t seed, double probability,
                                     std::chrono::milliseconds longest_delay) {
    m_server->set_random_faults(seed, probability, longest_delay);
}

std::vector<Card_service::Request> Card_service::requests() const {
    return m_server->requests();
}

}  // namespace frontpanel
