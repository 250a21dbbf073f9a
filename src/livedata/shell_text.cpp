#include "livedata/shell_text.h"

#include <arpa/inet.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <rapidjson/encodings.h>
#include <rapidjson/memorystream.h>

namespace shell_text {
namespace {

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

bool is_alphanumeric(char c) {
    return is_digit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool is_one_of(char c, const char* set) {
    return c != '\0' && std::strchr(set, c) != nullptr;
}

bool is_port(const char* text) {
    const std::size_t length = std::strspn(text, "0123456789");
    return length >= 1 && length <= 5 && text[length] == '\0' && std::atoi(text) <= 65535;
}

// Left alone by every shell between double quotation marks that are escaped one by one. No comma: some
// shells expand braces around it.
bool is_harmless(char c) {
    return is_alphanumeric(c) || is_one_of(c, "._-+:/%@=");
}

bool is_plain_value(const char* value) {
    for (const char* c = value; *c != '\0'; ++c) {
        const bool single_blank = *c == ' ' && c != value && c[1] != ' ' && c[1] != '\0';
        if (!is_harmless(*c) && !single_blank) {
            return false;
        }
    }
    return true;
}

// Discards the characters that rapidjson copies while it checks a text.
struct Nowhere {
    void Put(char) {}
};

bool is_utf8(const char* text) {
    rapidjson::MemoryStream in(text, std::strlen(text));
    Nowhere out;
    while (in.Tell() < in.size_) {
        if (!rapidjson::UTF8<>::Validate(in, out)) {
            return false;
        }
    }
    return true;
}

// Characters are escaped by their numbers: some echo commands interpret "\n", "\\" and the like, but none
// interprets "\u" without an option.
void append_escaped(char c, std::string& out) {
    char text[8];
    std::snprintf(text, sizeof text, "\\u%04x", static_cast<unsigned char>(c));
    out += text;
}

bool must_escape(char c) {
    const auto code = static_cast<unsigned char>(c);
    return code < 0x20 || code == 0x7f || is_one_of(c, "\"\\'");
}

std::string quoted_body(const char* value) {
    std::string body = "'{\"state\":{\"value\":\"";
    for (const char* c = value; *c != '\0'; ++c) {
        if (must_escape(*c)) {
            append_escaped(*c, body);
        } else {
            body += *c;
        }
    }
    return body + "\"}}'";
}

}  // namespace

bool is_card_address(const char* text) {
    const char* const colon = std::strchr(text, ':');
    const std::size_t length =
        colon != nullptr ? static_cast<std::size_t>(colon - text) : std::strlen(text);
    char host[INET_ADDRSTRLEN] = "";
    if (length >= sizeof host) {
        return false;
    }
    std::memcpy(host, text, length);
    in_addr address;
    return inet_pton(AF_INET, host, &address) == 1 && (colon == nullptr || is_port(colon + 1));
}

bool is_data_format(char letter) {
    return is_alphanumeric(letter);
}

bool is_plain_path(const char* text) {
    if (text == nullptr || *text == '\0' || *text == '-') {
        return false;
    }
    for (const char* c = text; *c != '\0'; ++c) {
        if (!is_alphanumeric(*c) && !is_one_of(*c, "/._-+,:=@%")) {
            return false;
        }
    }
    return true;
}

bool make_commit_body(const char* value, std::string& body) {
    if (is_plain_value(value)) {
        body = std::string("{\\\"state\\\":{\\\"value\\\":\\\"") + value + "\\\"}}";
        return true;
    }
    if (!is_utf8(value)) {
        return false;
    }
    body = quoted_body(value);
    return true;
}

}  // namespace shell_text
