#include "mqtt_settings.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <string>

#include "support/folder.h"
#include "support/made_of_json.h"

namespace frontpanel {
namespace {

support::Made_of_json<Mqtt_settings> read_settings(const std::string& text) {
    return {text, [](const Json_value& value) { return mqtt_settings_of(value, "menus"); }};
}

TEST(MqttSettings, FilesAreNamedRelativeToTheMenu) {
    const auto read =
        read_settings(R"({"host": "::1", "login": "login.txt", "ca": "/etc/ca.pem"})");
    EXPECT_EQ(read.error, "");
    EXPECT_EQ(read.result.login, "menus/login.txt");
    EXPECT_EQ(read.result.ca, "/etc/ca.pem");
}

TEST(MqttSettings, AFileThatCannotBeReadIsAFault) {
    const support::Folder folder;
    Mqtt_settings settings;
    settings.login = folder.file("login");
    settings.ca = folder.file("pipe");
    ASSERT_EQ(mkfifo(settings.ca.c_str(), 0600), 0);
    EXPECT_EQ(settings.file_faults(),
              (std::vector<std::string>{"\"" + settings.login + "\": No such file or directory",
                                        "\"" + settings.ca + "\": not a file"}));
    settings.ca = "";
    std::ofstream(settings.login) << "user\n";
    EXPECT_EQ(settings.file_faults(), std::vector<std::string>{});
}

TEST(MqttSettings, EncryptionHasAPortOfItsOwn) {
    EXPECT_EQ(read_settings(R"({"host": "127.0.0.1"})").result.port, 1883);
    EXPECT_EQ(read_settings(R"({"host": "127.0.0.1", "ca": "a"})").result.port, 8883);
    EXPECT_EQ(read_settings(R"({"host": "127.0.0.1", "ca": "a", "port": 1})").result.port, 1);
}

TEST(MqttSettings, MistakesAreReported) {
    const struct {
        const char* options;
        const char* error;
    } cases[] = {
        {"{}", R"(expected a member "host")"},
        {R"({"host": "broker.local"})",
         R"(expected an IPv4 or IPv6 address, found "broker.local")"},
        {R"({"host": "127.0.0.1", "qos": 3})", "expected a whole number from 0 to 2, found 3"},
        {R"({"host": "127.0.0.1", "status": "panel/#"})",
         R"(expected a topic without "+" and "#", found "panel/#")"},
        {R"({"host": "127.0.0.1", "ca": "a", "key": "k"})", R"("cert" and "key" go together)"},
        {R"({"host": "127.0.0.1", "cert": "a", "key": "k"})", R"("key" needs "ca")"},
        {R"({"host": "127.0.0.1", "login": ""})", "expected a path"},
        {R"({"host": "127.0.0.1", "client": "123456789012345678901234"})",
         "expected a text of 1 to 23 characters, found 24"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.options);
        EXPECT_EQ(read_settings(c.options).error, c.error);
    }
}

}  // namespace
}  // namespace frontpanel
