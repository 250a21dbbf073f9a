// What a simulated device takes from a menu file.
#include <frontpanel_simulator/simulated_device.h>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>

#include "support/json_places.h"

namespace frontpanel {
namespace {

// A file whose device has one parameter and these further members.
std::string with_device(const std::string& members) {
    return R"({"device": {"parameters": [
        {"pid": 5, "type": "integer", "min": 0, "max": 9, "value": 7}], )" +
           members + "}}";
}

std::string with_product(const std::string& members) {
    return with_device(R"("products": [{"slot": 2, )" + members + "}]");
}

std::string with_card(const std::string& members) {
    return with_device(R"("cards": [{"slot": 3, )" + members + "}]");
}

std::string deep_tree(int depth) {
    std::string tree = R"({"label": "leaf"})";
    for (int i = 1; i < depth; ++i) {
        tree = R"({"label": "n", "children": [)" + tree + "]}";
    }
    return with_card(R"("trees": [{"pid": 9002, "tree": )" + tree + "}]");
}

// The device of a file that is written in the test, with what is wrong with the file.
class Simulation {
public:
    explicit Simulation(const std::string& text, Cards cards = Cards::OFF,
                        Sources sources = Sources::SIMULATED)
        : m_document(m_source, text),
          m_device(Json_value(m_document.root(), m_problems), m_problems, cards, sources) {}

    Simulated_device& operator*() { return m_device; }
    Simulated_device* operator->() { return &m_device; }
    // One line each.
    std::string errors() const {
        std::string all;
        for (const std::string& line : m_problems.errors()) {
            all += (all.empty() ? "" : "\n") + line;
        }
        return all;
    }

private:
    Source m_source{"menu.json", 0};
    Problems m_problems;
    Json_document m_document;
    Simulated_device m_device;
};

struct Error_case {
    std::string text;
    std::string error;  // its place is its path in the text: see `placed`
};

TEST(SimulatedDevice, ParametersHoldTheirStartValues) {
    Simulation device(R"({"device": {"parameters": [
        {"pid": 5, "index": [1, 2], "type": "integer", "min": 0, "max": 9, "value": 7},
        {"pid": 6, "type": "text", "length": 4, "value": "MUTE"}]}})");
    EXPECT_EQ(device.errors(), "");
    EXPECT_EQ(device->memory().integer(5, 0x201), 7);
    EXPECT_EQ(device->memory().set_integer(5, 0x201, 10), Memory_device::OUT_OF_BOUNDS);
    EXPECT_EQ(device->memory().text(6, 0), "MUTE");
    EXPECT_EQ(device->memory().set_text(6, 0, "LOUD!"), Memory_device::OUT_OF_BOUNDS);
}

TEST(SimulatedDevice, AWrongStartValueIsReportedAndItsParameterKnown) {
    const std::string text = R"({"device": {"parameters": [
        {"pid": 5, "type": "integer", "min": 0, "max": 9, "value": 10},
        {"pid": 6, "type": "text", "length": 4},
        {"pid": 7, "index": [1], "type": "text", "length": 4, "value": "MUTED"}]}})";
    Simulation device(text);
    EXPECT_EQ(device.errors(),
              placed(text,
                     "menu.json: /device/parameters/0/value: expected a whole number from 0 "
                     "to 9, found 10") +
                  "\n" +
                  placed(text, "menu.json: /device/parameters/1: expected a member \"value\"") +
                  "\n" +
                  placed(text,
                         "menu.json: /device/parameters/2/value: expected a text of 0 to 4 "
                         "characters, found 5"));
    EXPECT_EQ(device->wrong_parameters(),
              (std::set<std::pair<uint32_t, uint32_t>>{{5, 0}, {6, 0}, {7, 1}}));
}

TEST(SimulatedDevice, AnErrorNamesPlaceAndExpectation) {
    const std::string product = R"("id": 7, "name": "DEC", "family": "Decoder")";
    const Error_case CASES[] = {
        {with_device(R"("products": {})"),
         "menu.json: /device/products: expected a list, found an object"},
        {with_device(R"("products": [{"slot": 16}])"),
         "menu.json: /device/products/0/slot: expected a whole number from 1 to 15, found 16"},
        {with_device(R"("products": [{"slot": 0}])"),
         "menu.json: /device/products/0/slot: expected a whole number from 1 to 15, found 0"},
        {with_product(R"("id": 0)"),
         "menu.json: /device/products/0/id: expected a whole number from 1 to 65535, found 0"},
        {with_product(R"("id": 7)"), "menu.json: /device/products/0: expected a member \"name\""},
        {with_product(R"("id": 7, "name": "1234567890123456")"),
         "menu.json: /device/products/0/name: expected a text of 1 to 15 characters, found 16"},
        {with_product(R"("id": 7, "name": "DEC", "family": "")"),
         "menu.json: /device/products/0/family: expected a text of 1 to 15 characters, found 0"},
        {with_product(product + R"(, "alias": 3)"),
         "menu.json: /device/products/0/alias: expected a text, found a whole number"},
        {with_product(product + R"(, "colour": 3)"),
         "menu.json: /device/products/0/colour@: unknown member \"colour\""},
        {with_device(R"("products": [{"slot": 2, )" + product + R"(}, {"slot": 2, )" + product +
                     "}]"),
         "menu.json: /device/products/1/slot: slot 2 has a product already"},
        {with_device(R"("products": [{"slot": 2, "alias": "A", )" + product +
                     R"(}, {"slot": 3, "alias": "B", )" + product + "}]"),
         "menu.json: /device/products/1/alias: product 7 has another alias already"},
        {with_device(R"("products": [{"slot": 2, "alias": "A", )" + product +
                     R"(}, {"slot": 3, "alias": "A", )" + product + "}]"),
         ""},
        {with_device(R"("cards": [{}])"), "menu.json: /device/cards/0: expected a member \"slot\""},
        {with_card(R"("boxes": [])"),
         "menu.json: /device/cards/0/boxes@: unknown member \"boxes\""},
        {with_card(R"("combo-boxes": [{"pid": 8999}])"),
         "menu.json: /device/cards/0/combo-boxes/0/pid: expected a whole number from 9000 to 9100, "
         "found 8999"},
        {with_card(R"("combo-boxes": [{"pid": 9001, "options": []}])"),
         "menu.json: /device/cards/0/combo-boxes/0/options: expected at least one option"},
        {with_card(R"("combo-boxes": [{"pid": 9001, "options": ["A", ""]}])"),
         "menu.json: /device/cards/0/combo-boxes/0/options/1: expected a text of 1 to 256 "
         "characters, found 0"},
        {with_card(R"("combo-boxes": [{"pid": 9001, "options": ["A", "B"], "selected": 2}])"),
         "menu.json: /device/cards/0/combo-boxes/0/selected: expected a whole number from 0 to 1, "
         "found 2"},
        {with_card(R"("combo-boxes": [{"pid": 9001, "options": ["A"]}],
                      "trees": [{"pid": 9001, "tree": {"label": "T"}}])"),
         "menu.json: /device/cards/0/trees/0/pid: the card in slot 3 has a document 9001 already"},
        {with_card(R"("trees": [{"pid": 9002}])"),
         "menu.json: /device/cards/0/trees/0: expected a member \"tree\""},
        {with_card(R"("trees": [{"pid": 9002, "tree": []}])"),
         "menu.json: /device/cards/0/trees/0/tree: expected an object, found a list"},
        {with_card(R"("trees": [{"pid": 9002, "tree": {"label": "T", "children": [{}]}}])"),
         "menu.json: /device/cards/0/trees/0/tree/children/0: expected a member \"label\""},
        {with_card(R"("trees": [{"pid": 9002, "tree": {"label": "T", "type": "x"}}])"),
         "menu.json: /device/cards/0/trees/0/tree/type@: unknown member \"type\""},
        {deep_tree(16), ""},
    };
    for (const Error_case& expected : CASES) {
        EXPECT_EQ(Simulation(expected.text).errors(), placed(expected.text, expected.error))
            << expected.text.substr(0, 300);
    }
}

TEST(SimulatedDevice, ATreeThatIsTooDeepIsRefused) {
    const std::string text = deep_tree(17);
    std::string path = "/device/cards/0/trees/0/tree";
    for (int i = 1; i < 17; ++i) {
        path += "/children/0";
    }
    EXPECT_EQ(Simulation(text).errors(),
              placed(text, "menu.json: " + path + ": trees are nested more than 16 deep"));
}

TEST(SimulatedDevice, ProductsStandInTheirSlotsWithTheirAliases) {
    Simulation device(
        with_product(R"("id": 7, "name": "DEC-4", "family": "Decoder", "alias": "Main")"));
    PROD_LIST_S list[Memory_device::SLOT_COUNT] = {};
    ASSERT_EQ(device->memory().Get_prod_list(list, false, true), 0);
    EXPECT_EQ(list[2].prod_id, 7);
    EXPECT_STREQ(list[2].prod_string, "DEC-4");
    EXPECT_STREQ(list[2].prod_family, "Decoder");
    EXPECT_EQ(list[1].prod_id, 0);
    char alias[100] = {};
    EXPECT_EQ(device->memory().Get_prod_alias_name(alias, 7), 0);
    EXPECT_STREQ(alias, "Main");
}

TEST(SimulatedDevice, ItsCardsHaveTheDocumentsOfTheFile) {
    Simulation device(with_card(R"("combo-boxes": [{"pid": 9001, "options": ["A"]}],
                                   "trees": [{"pid": 9002, "tree": {"label": "T"}}])"));
    EXPECT_EQ(device.errors(), "");
    EXPECT_TRUE(device->has_document(3, 9001, false));
    EXPECT_FALSE(device->has_document(3, 9001, true));
    EXPECT_TRUE(device->has_document(3, 9002, true));
    EXPECT_FALSE(device->has_document(4, 9002, true));
}

TEST(SimulatedDevice, CardsRunOnlyWhenAskedFor) {
    const std::string text = with_card(R"("combo-boxes": [
        {"pid": 9001, "options": ["A", "B"], "selected": 1}])");
    EXPECT_EQ(Simulation(text)->cards(), nullptr);
    Simulation device(text, Cards::ON);
    ASSERT_NE(device->cards(), nullptr);
    EXPECT_EQ(device->cards()->selected(3, 9001), 1);
    EXPECT_EQ(Simulation(with_device(R"("products": [])"), Cards::ON)->cards(), nullptr);
}

std::string moving(const std::string& moves) {
    return R"({"device": {"parameters": [
        {"pid": 5, "type": "integer", "min": 0, "max": 9, "value": 7, "moves": )" +
           moves + "}]}}";
}

TEST(SimulatedDevice, ANumberMovesByItselfWhenItIsToldTo) {
    Simulation simulation(moving(R"({"from": 1, "to": 9, "seconds": 16})"));
    EXPECT_EQ(simulation.errors(), "");
    EXPECT_EQ(simulation->memory().integer(5, 0), 7) << "it stands still until it is advanced";
    simulation->movement().advance(std::chrono::seconds(3));
    EXPECT_EQ(simulation->memory().integer(5, 0), 8);
}

TEST(SimulatedDevice, AMovementKeepsTheLimits) {
    for (const char* const bad :
         {R"({"from": -1, "to": 9, "seconds": 16})", R"({"from": 1, "to": 10, "seconds": 16})",
          R"({"from": 1, "to": 9, "seconds": 0})", R"({"from": 1, "to": 9})",
          R"({"from": 1, "to": 9, "seconds": 1, "by": 3})", "5"}) {
        Simulation simulation(moving(bad));
        EXPECT_NE(simulation.errors(), "") << bad;
        simulation->movement().advance(std::chrono::seconds(3));
        EXPECT_EQ(simulation->memory().integer(5, 0), 7) << bad;
    }
}

// In a process of its own, which has no descriptor left. A sanitizer, which needs some to look at an object of a new type,
// has seen such a device and such a failure by then.
[[noreturn]] void start_without_descriptors() {
    const std::string text = with_card(R"("combo-boxes": [{"pid": 9000, "options": ["a"]}])");
    { const Simulation with_cards(text, Cards::ON); }
    EXPECT_THROW(Card_service(-1), std::runtime_error);
    const int next = dup(STDERR_FILENO);
    rlimit none_left{};
    none_left.rlim_cur = static_cast<rlim_t>(next);
    none_left.rlim_max = none_left.rlim_cur;
    close(next);
    setrlimit(RLIMIT_NOFILE, &none_left);
    Simulation simulation(text, Cards::ON);
    std::cerr << simulation->cards_failure() << '\n';
    _exit(simulation->cards() == nullptr && simulation->has_document(3, 9000, false) ? 0 : 1);
}

TEST(Simulated_deviceDeathTest, WithoutItsCardServiceTheDeviceIsUsable) {
    EXPECT_EXIT(start_without_descriptors(), testing::ExitedWithCode(0),
                "^the cards cannot be started: the card service ");
}

constexpr const char* SOURCES = R"({"device": {"parameters": [
    {"pid": 1, "type": "integer", "min": 3, "max": 9, "source": {}},
    {"pid": 2, "type": "integer", "min": 3, "max": 9, "value": 5, "source": {}},
    {"pid": 3, "type": "text", "length": 4, "source": {}},
    {"pid": 4, "type": "integer", "min": 0, "max": 9, "value": 8}]}})";

TEST(SimulatedDevice, AParameterOfARealDeviceNeedsNoStartValue) {
    Simulation device(SOURCES);
    EXPECT_EQ(device.errors(), "");
    EXPECT_EQ(device->memory().integer(1, 0), 3);
    EXPECT_EQ(device->memory().integer(2, 0), 5);
    EXPECT_EQ(device->memory().text(3, 0), "");
}

TEST(SimulatedDevice, AParameterThatLivesElsewhereIsLeftOut) {
    Simulation device(SOURCES, Cards::OFF, Sources::LEFT_OUT);
    EXPECT_EQ(device.errors(), "");
    EXPECT_EQ(device->memory().integer(2, 0), std::nullopt);
    EXPECT_EQ(device->memory().integer(4, 0), 8);
}

}  // namespace
}  // namespace frontpanel
