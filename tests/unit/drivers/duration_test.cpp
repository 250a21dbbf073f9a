#include <frontpanel_drivers/duration.h>

#include <gtest/gtest.h>

#include <string>

namespace frontpanel {
namespace {

using namespace std::chrono_literals;

std::string read(const std::string& text) {
    const Source file{"menu.json", 0};
    const Json_document document(file, R"({"poll": ")" + text + R"("})");
    Problems problems;
    try {
        const Json_value owner(document.root(), problems);
        return std::to_string(duration_or(owner, "poll", 100ms, 1h, 5s).count());
    } catch (const Placed_error& error) {
        return error.what();
    }
}

TEST(Duration, IsANumberWithAUnit) {
    EXPECT_EQ(read("100ms"), "100");
    EXPECT_EQ(read("2s"), "2000");
    EXPECT_EQ(read("5min"), "300000");
    EXPECT_EQ(read("1h"), "3600000");
}

TEST(Duration, OfAnotherFormIsRefused) {
    for (const char* const text : {"", "2", "s", "2 s", "2m", "1.5s", "-1s", "99999999999s"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(read(text),
                  "menu.json:1:10: expected a time such as \"500ms\", \"2s\", \"5min\" or "
                  "\"1h\", found \"" +
                      std::string(text) + "\"");
    }
}

TEST(Duration, BeyondItsLimitsIsRefused) {
    EXPECT_EQ(read("99ms"), "menu.json:1:10: expected a time from 100ms to 1h, found \"99ms\"");
    EXPECT_EQ(read("2h"), "menu.json:1:10: expected a time from 100ms to 1h, found \"2h\"");
}

TEST(Duration, ThatIsMissingIsTheUsualOne) {
    const Source file{"menu.json", 0};
    const Json_document document(file, "{}");
    Problems problems;
    const Json_value owner(document.root(), problems);
    EXPECT_EQ(duration_or(owner, "poll", 100ms, 1h, 5s), 5s);
}

}  // namespace
}  // namespace frontpanel
