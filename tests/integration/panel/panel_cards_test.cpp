// The panel on options that come from a card, with the tools that fetch and post them. Every test has a
// parameter of its own, since the files under /tmp are named by it.
#include <unistd.h>

#include <chrono>

#include "curl_home.h"
#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

class Cards_panel {
public:
    Cards_panel(int pid, const std::string& members, const std::string& web_type,
                const std::string& more = "", bool fetched = true)
        : m_pid(pid),
          m_panel(R"({"device": {"parameters": [], "cards": [{"slot": 3, )" + members +
                      R"(}]}, "menu": {"name": "Main", "items": [
                          {"type": "enum", "name": "Live", "pid": )" +
                      std::to_string(pid) + R"(, "live": {"slot": 3, "web-type": ")" + web_type +
                      "\"}" + more + "}]}}",
                  {20, 2}, Cards::ON) {
        if (fetched) {
            fetch();
        }
    }
    // Lets time pass until the card has been asked for the first time.
    void wait_for_fetch() {
        for (int i = 0; i < 11 && card().requests().empty(); ++i) {
            tick();
        }
    }
    ~Cards_panel() {
        for (const char* const kind : {"-json", "-json.gz", "-post"}) {
            unlink(("/tmp/" + std::to_string(m_pid) + kind).c_str());
        }
    }

    // The options are fetched at every eleventh refresh of what is on the display.
    void fetch() {
        m_panel.lines();
        for (int i = 0; i < 11; ++i) {
            tick();
        }
    }
    Menu_panel* operator->() { return &m_panel; }
    Card_service& card() { return *m_panel.cards(); }

private:
    void tick() {
        m_panel.controller().tick();
        m_panel.lines();
    }

    int m_pid;
    Curl_home m_curl_home;
    Menu_panel m_panel;
};

std::string combo_box(int pid, int selected = 1) {
    return R"("combo-boxes": [{"pid": )" + std::to_string(pid) +
           R"(, "options": ["25 Hz", "30 Hz", "50 Hz"], "selected": )" + std::to_string(selected) +
           "}]";
}

TEST(PanelCards, TheOptionsOfACardAreShown) {
    Cards_panel panel(9061, combo_box(9061), "combobox");
    EXPECT_EQ(panel->lines()[0], ">Live          30 Hz");
    EXPECT_FALSE(panel->leds().alarm);
}

// The entry itself counts the options from before a fetch, so without the panel's help the end of the first
// list would be missing.
TEST(PanelCards, TheFirstFetchShowsTheWholeList) {
    Cards_panel panel(9069, combo_box(9069, 2), "combobox", "", false);
    panel.wait_for_fetch();
    EXPECT_EQ(panel.card().requests().size(), 1U);
    EXPECT_EQ(panel->lines()[0], ">Live          50 Hz");
    panel->press(Key::SELECT);
    EXPECT_EQ(panel->lines()[0], "Live             3/3");
}

TEST(PanelCards, AChosenOptionIsPosted) {
    if (access("/dev", W_OK) != 0) {
        GTEST_SKIP() << "a post needs a writable /dev";
    }
    Cards_panel panel(9062, combo_box(9062), "combobox");
    panel->press(Key::SELECT).press(Key::UP);
    EXPECT_EQ(panel->lines(), (Lines{"Live             3/3", "50 Hz               "}));
    EXPECT_EQ(panel.card().selected(3, 9062), 1);
    panel->press(Key::SELECT);
    EXPECT_EQ(panel.card().selected(3, 9062), 2);
    panel.fetch();
    EXPECT_EQ(panel->lines()[0], ">Live          50 Hz");
}

TEST(PanelCards, AChoiceThatCannotBePostedIsTold) {
    Cards_panel panel(9058, combo_box(9058), "combobox");
    panel->set_may_post(false);
    panel->press(Key::SELECT).press(Key::UP).press(Key::SELECT);
    EXPECT_EQ(panel->lines(), (Lines{"Live                ", "write failed        "}));
    EXPECT_TRUE(panel->leds().alarm);
}

// A card that is asked again while its list is open: the chosen text stays, wherever it stands by then.
TEST(PanelCards, AListThatIsReplacedUnderItsEditorKeepsTheChoice) {
    Cards_panel panel(9059, combo_box(9059), "combobox");
    panel->press(Key::SELECT).press(Key::UP);
    panel.card().add_combo_box(3, 9059, {{"0", "50 Hz"}, {"1", "60 Hz"}}, 1);
    panel.fetch();
    EXPECT_EQ(panel->lines(), (Lines{"Live                ", "options: choice kept"}));
    panel->press(Key::BACK);
    EXPECT_EQ(panel->lines(), (Lines{"Live             1/2", "50 Hz               "}));
    panel->press(Key::BACK);
    EXPECT_EQ(panel->lines()[0], ">Live          60 Hz");
    EXPECT_EQ(panel.card().selected(3, 9059), 1);
}

// Without a refresh in between.
TEST(PanelCards, AListThatGrowsOrShrinksHasItsCountAndTextsAtOnce) {
    Cards_panel panel(9070, combo_box(9070), "combobox");
    panel.card().add_combo_box(3, 9070,
                               {{"0", "a"}, {"1", "b"}, {"2", "c"}, {"3", "d"}, {"4", "e"}}, 4);
    panel.fetch();
    EXPECT_EQ(panel->lines()[0], ">Live              e");
    panel->press(Key::SELECT);
    EXPECT_EQ(panel->lines(), (Lines{"Live             5/5", "e                   "}));
    panel->press(Key::BACK);
    panel.card().add_combo_box(3, 9070, {{"0", "f"}, {"1", "g"}}, 1);
    panel.fetch();
    EXPECT_EQ(panel->lines()[0], ">Live              g");
    panel->press(Key::SELECT);
    EXPECT_EQ(panel->lines(), (Lines{"Live             2/2", "g                   "}));
    panel->press(Key::DOWN, 3);
    EXPECT_EQ(panel->lines(), (Lines{"Live             1/2", "f                   "}));
}

TEST(PanelCards, AListWithoutTheChoiceGoesBackToTheCardsOwn) {
    Cards_panel panel(9060, combo_box(9060), "combobox");
    panel->press(Key::SELECT).press(Key::UP);
    panel.card().add_combo_box(3, 9060, {{"0", "60 Hz"}, {"1", "75 Hz"}}, 1);
    panel.fetch();
    EXPECT_EQ(panel->lines(), (Lines{"Live                ", "options: new choice "}));
    panel->press(Key::BACK);
    EXPECT_EQ(panel->lines(), (Lines{"Live             2/2", "75 Hz               "}));
}

TEST(PanelCards, BackPostsNothing) {
    Cards_panel panel(9063, combo_box(9063), "combobox");
    panel->press(Key::SELECT).press(Key::UP).press(Key::BACK);
    EXPECT_EQ(panel.card().selected(3, 9063), 1);
    for (const Card_service::Request& request : panel.card().requests()) {
        EXPECT_EQ(request.method, "GET");
    }
}

TEST(PanelCards, ATreeIsShownLineByLine) {
    Cards_panel panel(9064, R"("trees": [{"pid": 9064, "tree": {"label": "Input", "children": [
        {"label": "Line"}, {"label": "Microphone"}]}}])",
                      "tree");
    EXPECT_EQ(panel->lines()[0], ">Live          Input");
    panel->press(Key::SELECT).press(Key::UP);
    EXPECT_EQ(panel->lines(), (Lines{"Live     level 1 2/3", "*Line               "}));
}

TEST(PanelCards, AReadOnlyListIsShownAndNotWritten) {
    Cards_panel panel(9065, combo_box(9065), "combobox", R"(, "access": "read-only")");
    EXPECT_EQ(panel->lines()[0], ">Live=         30 Hz");
    panel->press(Key::SELECT).press(Key::UP).press(Key::SELECT);
    EXPECT_EQ(panel->lines(), (Lines{"Live                ", "value refused       "}));
    EXPECT_EQ(panel.card().selected(3, 9065), 1);
}

TEST(PanelCards, ACardThatFailsLeavesTheLastOptions) {
    for (const auto fault : {Card_service::Fault::ERROR_STATUS, Card_service::Fault::CUT_OFF,
                             Card_service::Fault::UNCOMPRESSED, Card_service::Fault::GARBAGE}) {
        Cards_panel panel(9066, combo_box(9066), "combobox");
        panel.card().set_fault(fault);
        panel.fetch();
        EXPECT_EQ(panel->lines()[0], ">Live          30 Hz");
    }
}

TEST(PanelCards, ACardThatHangsIsGivenUpSoon) {
    Cards_panel panel(9067, combo_box(9067), "combobox");
    panel.card().set_fault(Card_service::Fault::LATE, std::chrono::seconds(30));
    const auto start = std::chrono::steady_clock::now();
    panel.fetch();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(15));
    panel.card().set_fault(Card_service::Fault::NONE);
    EXPECT_EQ(panel->lines()[0], ">Live          30 Hz");
}

TEST(PanelCards, BeforeTheFirstFetchNoOptionIsShownNorOffered) {
    Menu_panel panel(R"({"device": {"parameters": [], "cards": [{"slot": 3, )" + combo_box(9068) +
                     R"(}]}, "menu": {"name": "Main", "items": [{"type": "enum", "name": "Live",
                "pid": 9068, "live": {"slot": 3, "web-type": "combobox"}}]}})");
    EXPECT_EQ(panel.lines()[0], ">Live              -");
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{"Live                ", "no options yet      "}));
    EXPECT_FALSE(panel.leds().edit);
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.lines()[0], ">Live              -");
}

}  // namespace
}  // namespace frontpanel
