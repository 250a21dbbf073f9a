#include "file/device_description.h"

#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

constexpr const char* ITEM = R"({"type": "range", "name": "Level", "pid": 5})";

// A menu file whose device has one parameter and these further members.
std::string with_device(const std::string& members, const std::string& item = ITEM) {
    return R"({"device": {"parameters": [
        {"pid": 5, "type": "integer", "min": 0, "max": 9, "value": 7}], )" +
           members + R"(}, "menu": {"name": "Main", "items": [)" + item + "]}}";
}

std::string with_product(const std::string& members) {
    return with_device(R"("products": [{"slot": 2, )" + members + "}]");
}

TEST(DeviceDescription, AnErrorNamesPlaceAndExpectation) {
    const std::string product = R"("id": 7, "name": "DEC", "family": "Decoder")";
    const Error_case CASES[] = {
        {with_device(R"("slots": [])"), "menu.json: /device/slots@: unknown member \"slots\""},
        {with_product(product + R"(, "options": {"audio": -1})"),
         "menu.json: /device/products/0/options/audio: expected a whole number from 0 to "
         "2147483647, found -1"},
    };
    for (const Error_case& expected : CASES) {
        EXPECT_EQ(error_of(expected.text), placed(expected.text, expected.error))
            << expected.text.substr(0, 300);
    }
}

TEST(DeviceDescription, WhatShowsAParameterWithAWrongStartValueIsNotWrong) {
    const std::string text = R"({"device": {"parameters": [
        {"pid": 5, "type": "integer", "min": 0, "max": 9, "value": 10}]},
        "menu": {"name": "Main", "items": [{"type": "text", "name": "Level", "pid": 5}]}})";
    EXPECT_EQ(error_of(text),
              placed(text,
                     "menu.json: /device/parameters/0/value: expected a whole number from 0 "
                     "to 9, found 10"));
}

TEST(DeviceDescription, AProductsOptionsDecideWhichItemsAreShown) {
    const std::string items = R"(
        {"type": "range", "name": "Audio", "pid": 5, "options": ["audio"]},
        {"type": "range", "name": "Wide", "pid": 5, "options": ["wide"]})";
    const std::string product = R"("products": [
        {"slot": 2, "id": 7, "name": "DEC", "family": "Decoder", "options": {"audio": 1}},
        {"slot": 3, "id": 7, "name": "DEC", "family": "Decoder", "options": {"audio": 0, "wide": 0}}])";
    Menu_panel panel(with_device(product, items));
    EXPECT_EQ(panel.lines(), (Lines{">Audio             7", "                    "}));
}

}  // namespace
}  // namespace frontpanel
