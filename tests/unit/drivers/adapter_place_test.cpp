#include "adapter_place.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/un.h>

#include <cstdlib>
#include <fstream>
#include <optional>

#include "support/folder.h"

namespace frontpanel {
namespace {

// The place in the members, or why there is none.
std::optional<Adapter_place> place_of(const std::string& members, std::string* fault = nullptr,
                                      const std::string& folder = "menus") {
    const Source source{"menu.json", 0};
    const Json_document document(source, "{" + members + "}");
    Problems problems;
    try {
        return adapter_place_of(Json_value(document.root(), problems), folder);
    } catch (const Placed_error& error) {
        if (fault != nullptr) {
            *fault = error.what();
        }
        return std::nullopt;
    }
}

std::string fault_of(const std::string& members) {
    std::string fault;
    place_of(members, &fault);
    return fault.substr(std::min(fault.find(": "), fault.size()));
}

TEST(Adapter_place, IsACommandOrASocket) {
    EXPECT_EQ(place_of(R"("command": ["python3", "", "a b"])")->command,
              (std::vector<std::string>{"python3", "", "a b"}));
    EXPECT_EQ(place_of(R"("unix": "x.sock")")->path, "menus/x.sock");
    EXPECT_EQ(place_of(R"("unix": "/run/x.sock")")->path, "/run/x.sock");
    const std::string one = ": expected one of the members \"command\", \"unix\" and \"tcp\"";
    EXPECT_EQ(fault_of(""), one);
    EXPECT_EQ(fault_of(R"("unix": "x", "tcp": "localhost:1")"), one);
    EXPECT_EQ(fault_of(R"("command": [])"), ": expected 1 to 64 arguments, found 0");
    EXPECT_EQ(fault_of(R"("command": "rm -rf x")"), ": expected a list, found a text");
    EXPECT_EQ(fault_of(R"("command": [""])"), ": expected a text of 1 to 1024 characters, found 0");
    EXPECT_EQ(fault_of(R"("unix": ")" + std::string(105, 'x') + "\""),
              ": the path with the folder of the menu file is longer than 107 characters");
}

TEST(Adapter_place, OfTcpIsOnThisMachine) {
    for (const char* const address : {"localhost:7400", "127.0.0.1:7400", "127.9.8.7:1"}) {
        SCOPED_TRACE(address);
        const auto place = place_of(std::string(R"("tcp": ")") + address + "\"");
        ASSERT_TRUE(place);
        EXPECT_EQ(place->address.ss_family, AF_INET);
        EXPECT_EQ(place->address_size, sizeof(sockaddr_in));
    }
    EXPECT_EQ(place_of(R"("tcp": "[::1]:7400")")->address.ss_family, AF_INET6);
    for (const char* const address :
         {"", "7400", "localhost", "localhost:", "localhost:0", "localhost:65536", "localhost:+1",
          "192.168.0.1:7400", "10.0.0.1:1", "0.0.0.0:1", "[::]:1", "::1:7400", "[::2]:1",
          "example.org:80", "127.0.0.1.example.org:80", ":7400", "localhost:1:2"}) {
        SCOPED_TRACE(address);
        EXPECT_EQ(
            fault_of(std::string(R"("tcp": ")") + address + "\""),
            std::string(": expected an address on this machine with a port, such as "
                        "\"localhost:7400\", \"127.0.0.1:7400\" or \"[::1]:7400\", found \"") +
                address + "\"");
    }
}

TEST(Adapter_place, AProgramIsInTheFolderOrInPath) {
    const support::Folder folder;
    std::ofstream(folder.file("tool")) << "#!/bin/sh\n";
    chmod(folder.file("tool").c_str(), 0755);
    std::ofstream(folder.file("plain")) << "text";
    const std::string path = std::getenv("PATH");
    setenv("PATH", (".::" + folder.path() + "/none:" + folder.path()).c_str(), 1);
    const auto program_of = [&](const char* name) {
        return place_of(std::string(R"("command": [")") + name + "\"]", nullptr, folder.path());
    };
    EXPECT_EQ(program_of("tool")->program(), folder.file("tool"));
    EXPECT_EQ(program_of("tool")->fault(), "");
    EXPECT_EQ(program_of("./tool")->program(), folder.file("./tool"));
    EXPECT_EQ(program_of("/bin/sh")->program(), "/bin/sh");
    EXPECT_EQ(program_of("plain")->program(), "");
    EXPECT_EQ(program_of("plain")->fault(), "PATH has no program \"plain\"");
    EXPECT_EQ(program_of("./none")->fault(), folder.file("./none: No such file or directory"));
    EXPECT_EQ(program_of("./")->fault(), folder.file("./: it is no file"));
    setenv("PATH", path.c_str(), 1);
}

TEST(Adapter_place, ASocketThatIsMissingShows) {
    EXPECT_EQ(place_of(R"("unix": "/nowhere/x.sock")")->fault(),
              "/nowhere/x.sock: No such file or directory");
    EXPECT_EQ(place_of(R"("tcp": "localhost:1")")->fault(), "");
}

}  // namespace
}  // namespace frontpanel
