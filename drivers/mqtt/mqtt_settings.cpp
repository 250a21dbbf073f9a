#include "mqtt_settings.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include <frontpanel_base/json_members.h>
#include <frontpanel_drivers/ip_address.h>

namespace frontpanel {
namespace {

constexpr int PORT_WITH_TLS = 8883;
constexpr std::int64_t LARGEST_PORT = 65535;
constexpr int LARGEST_QOS = 2;
constexpr std::size_t LONGEST_CLIENT = 23;  // that every broker takes
constexpr std::size_t LONGEST_TOPIC = 1000;

std::string file_of(const Json_value& options, const char* name, const std::string& folder) {
    const auto value = options.find(name);
    if (!value) {
        return "";
    }
    const std::string path = value->text();
    if (path.empty()) {
        value->fail("expected a path");
    }
    return folder.empty() || path.front() == '/' ? path : folder + "/" + path;
}

std::string quoted(const std::string& text) {
    return "\"" + text + "\"";
}

std::string fault_of(const std::string& file) {
    struct stat status {};
    if (stat(file.c_str(), &status) != 0 || access(file.c_str(), R_OK) != 0) {
        return std::generic_category().message(errno);
    }
    return S_ISREG(status.st_mode) ? "" : "not a file";
}

void read_encryption(const Json_value& options, const std::string& folder,
                     Mqtt_settings& settings) {
    settings.ca = file_of(options, "ca", folder);
    settings.certificate = file_of(options, "cert", folder);
    settings.key = file_of(options, "key", folder);
    if (settings.certificate.empty() != settings.key.empty()) {
        options.member(settings.key.empty() ? "cert" : "key")
            .fail("\"cert\" and \"key\" go together");
    }
    if (!settings.key.empty() && settings.ca.empty()) {
        options.member("key").fail("\"key\" needs \"ca\"");
    }
}

}  // namespace

std::vector<std::string> Mqtt_settings::file_faults() const {
    std::vector<std::string> faults;
    for (const std::string& file : {login, ca, certificate, key}) {
        const std::string fault = file.empty() ? "" : fault_of(file);
        if (!fault.empty()) {
            faults.push_back(quoted(file).append(": ").append(fault));
        }
    }
    return faults;
}

std::vector<const char*> mqtt_members() {
    return {"host", "port", "client", "login", "ca", "cert", "key", "status", "qos"};
}

Mqtt_settings mqtt_settings_of(const Json_value& options, const std::string& folder) {
    Mqtt_settings settings;
    settings.host = ip_address_of(options.member("host"));
    read_encryption(options, folder, settings);
    settings.port = static_cast<std::uint16_t>(integer_or(
        options, "port", 1, LARGEST_PORT, settings.is_encrypted() ? PORT_WITH_TLS : settings.port));
    if (const auto client = options.find("client")) {
        settings.client = client->text_of_length(1, LONGEST_CLIENT);
    }
    settings.login = file_of(options, "login", folder);
    if (const auto status = options.find("status")) {
        settings.status = topic_of(*status);
    }
    settings.qos = integer_or(options, "qos", 0, LARGEST_QOS, settings.qos);
    return settings;
}

std::string topic_of(const Json_value& value) {
    std::string topic = value.shown_text_of_length(1, LONGEST_TOPIC);
    if (topic.find_first_of("+#") != std::string::npos) {
        value.fail("expected a topic without \"+\" and \"#\", found \"" + topic + "\"");
    }
    return topic;
}

}  // namespace frontpanel
