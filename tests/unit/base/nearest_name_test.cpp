#include <frontpanel_base/nearest_name.h>

#include <gtest/gtest.h>

#include <vector>

namespace frontpanel {
namespace {

std::string nearest(const std::string& unknown, const std::vector<std::string>& names) {
    Nearest_name result(unknown);
    for (const std::string& name : names) {
        result.offer(name);
    }
    return std::string(result.found());
}

TEST(NearestName, ATypingMistakeLeadsToTheNameThatWasMeant) {
    const std::vector<std::string> names{"format", "menu", "Temp", "value_format", "min", "max"};
    EXPECT_EQ(nearest("fromat", names), "format");
    EXPECT_EQ(nearest("mneu", names), "menu");
    EXPECT_EQ(nearest("Tmep", names), "Temp");
    EXPECT_EQ(nearest("temp", names), "Temp");
    EXPECT_EQ(nearest("valueformat", names), "value_format");
    EXPECT_EQ(nearest("maks", names), "max");
}

TEST(NearestName, ANameThatSharesLittleIsNotNear) {
    EXPECT_EQ(nearest("volume", {"gain", "limit"}), "");
    EXPECT_EQ(nearest("fax", {"gps"}), "");
    EXPECT_EQ(nearest("gain 9", {"gain 1", "gain 12"}), "");
    EXPECT_EQ(nearest("x", {"y", ""}), "");
    EXPECT_EQ(nearest("pid", {"id"}), "");
    EXPECT_EQ(nearest("", {"a"}), "");
    EXPECT_EQ(nearest(std::string(64, 'a') + "b", {std::string(65, 'a')}), "");
    EXPECT_EQ(nearest(std::string(63, 'a') + "b", {std::string(64, 'a')}), std::string(64, 'a'));
}

TEST(NearestName, TheNearestCountsAndOfSeveralTheFirst) {
    EXPECT_EQ(nearest("gian 4", {"gains 4", "gain 4", "gain 3"}), "gain 4");
    EXPECT_EQ(nearest("limits", {"limiter", "limit"}), "limit");
}

TEST(NearestName, TheHintQuotesTheName) {
    EXPECT_EQ(hint_of("gian", std::vector<const char*>{"gain"}), "; did you mean \"gain\"?");
    EXPECT_EQ(hint_of("volume", std::vector<const char*>{"gain"}), "");
    Nearest_name name("gian");
    name.offer("gain");
    EXPECT_EQ(name.hint("[", "]"), "; did you mean [gain]?");
}

TEST(NearestName, SearchesEndWhenAllHaveLookedAtTooMuch) {
    const std::string known(60, 'k');
    const std::string unknown = known + "x";
    size_t searched = 0;
    size_t offers = 0;
    Nearest_name name(unknown);
    while (offer_within_bounds(name, known, searched)) {
        ++offers;
        ASSERT_EQ(name.found(), known);
    }
    EXPECT_EQ(offers, MOST_NAME_SEARCH / (60 * 61 + 1) + 1);
    EXPECT_EQ(name.found(), "");
    Nearest_name later("gian");
    EXPECT_FALSE(offer_within_bounds(later, "gain", searched));
}

}  // namespace
}  // namespace frontpanel
