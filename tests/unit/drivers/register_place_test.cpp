#include "register_place.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <string>

#include "support/made_of_json.h"

namespace frontpanel {
namespace {

std::string shown(const Scaled_number& number) {
    const auto* const text = std::get_if<std::string>(&number);
    return text != nullptr ? *text : std::to_string(std::get<std::int32_t>(number));
}

Modbus_settings over_tcp() {
    Modbus_settings settings;
    settings.host = "127.0.0.1";
    return settings;
}

support::Made_of_json<Register_place> read_source(const std::string& text,
                                                  const Modbus_settings& settings = over_tcp()) {
    return {text, [&](const Json_value& value) { return register_place_of(value, settings); }};
}

Register_place place_of(const std::string& text) {
    const auto source = read_source(text);
    EXPECT_EQ(source.error, "");
    return source.result;
}

constexpr const char* LARGEST = "2147483647";

TEST(RegisterPlace, NumbersAreReadAsTheirTypeSays) {
    const struct {
        const char* source;
        Words words;
        const char* number;
    } cases[] = {
        {R"({"holding": 1})", {65535}, "65535"},
        {R"({"input": 1, "type": "uint16"})", {32768}, "32768"},
        {R"({"holding": 1, "type": "int16"})", {65535}, "-1"},
        {R"({"holding": 1, "type": "int16"})", {32768}, "-32768"},
        {R"({"holding": 1, "type": "int16"})", {32767}, "32767"},
        {R"({"holding": 1, "type": "uint32"})", {0x1234, 0x5678}, "305419896"},
        {R"({"holding": 1, "type": "uint32", "words": "low-first"})",
         {0x5678, 0x1234},
         "305419896"},
        {R"({"holding": 1, "type": "uint32"})", {0x7FFF, 0xFFFF}, LARGEST},
        {R"({"holding": 1, "type": "int32"})", {0xFFFF, 0xFFFF}, "-1"},
        {R"({"holding": 1, "type": "int32"})", {0x8000, 0}, "-2147483648"},
        {R"({"holding": 1, "type": "int32", "words": "low-first"})", {0xFFFE, 0xFFFF}, "-2"},
        {R"({"holding": 1, "bit": 3})", {0x0008}, "1"},
        {R"({"holding": 1, "bit": 3})", {0xFFF7}, "0"},
        {R"({"holding": 1, "bit": 15})", {0x8000}, "1"},
        {R"({"holding": 1, "bit": 4, "width": 8})", {0xABCD}, "188"},
        {R"({"holding": 1, "width": 4})", {0xABCD}, "13"},
        {R"({"holding": 1, "type": "int16", "bit": 4, "width": 4})", {0x00F0}, "-1"},
        {R"({"holding": 1, "type": "uint32", "bit": 12, "width": 8})", {0x000A, 0xB000}, "171"},
        {R"({"holding": 1, "type": "uint32", "bit": 12, "width": 8, "words": "low-first"})",
         {0xB000, 0x000A},
         "171"},
        {R"({"coil": 1})", {1}, "1"},
        {R"({"discrete": 1})", {0}, "0"},
        {R"({"holding": 1, "type": "int16", "scale": "1/10"})", {0xFFF1}, "-2"},
        {R"({"holding": 1, "scale": "100"})", {7}, "700"},
        {R"({"holding": 1, "type": "uint32", "scale": "1/2"})", {0xFFFF, 0xFFFE}, LARGEST},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.source);
        EXPECT_EQ(shown(number_in(place_of(c.source), c.words.data())), c.number);
    }
}

TEST(RegisterPlace, ANumberBeyond32BitsHasAReasonInsteadOfAValue) {
    const Words words{0xFFFF, 0xFFFF};
    EXPECT_EQ(shown(number_in(place_of(R"({"holding": 1, "type": "uint32"})"), words.data())),
              "the number does not fit 32 bits: 4294967295");
    EXPECT_EQ(shown(number_in(place_of(R"({"holding": 1, "scale": "100000"})"), words.data())),
              "the number does not fit 32 bits: 65535");
}

TEST(RegisterPlace, WhatIsWrittenIsReadAgain) {
    const char* const sources[] = {
        R"({"holding": 1, "type": "int16"})",
        R"({"holding": 1, "type": "int32"})",
        R"({"holding": 1, "type": "int32", "words": "low-first"})",
        R"({"holding": 1, "type": "int16", "bit": 5, "width": 6})",
        R"({"holding": 1, "type": "int32", "bit": 11, "width": 10})",
        R"({"holding": 1, "type": "int32", "bit": 11, "width": 10, "words": "low-first"})",
    };
    for (const char* const source : sources) {
        SCOPED_TRACE(source);
        const Register_place place = place_of(source);
        for (const std::int64_t number : {place.lowest(), std::int64_t{-1}, std::int64_t{0},
                                          std::int64_t{1}, place.highest()}) {
            Words words{0xA5A5, 0x5A5A};
            EXPECT_EQ(put_number(place, static_cast<std::int32_t>(number), words), "");
            EXPECT_EQ(shown(number_in(place, words.data())), std::to_string(number));
        }
    }
}

TEST(RegisterPlace, AFieldLeavesTheOtherBits) {
    Words words{0xABCD};
    EXPECT_EQ(put_number(place_of(R"({"holding": 1, "bit": 4, "width": 8})"), 0, words), "");
    EXPECT_EQ(words, Words{0xA00D});
    Words two{0xAAAA, 0xBBBB};
    EXPECT_EQ(put_number(place_of(R"({"holding": 1, "type": "uint32", "bit": 12, "width": 8})"),
                         255, two),
              "");
    EXPECT_EQ(two, (Words{0xAAAF, 0xFBBB}));
}

TEST(RegisterPlace, ANumberThatDoesNotFitIsNotWritten) {
    Words words{7};
    EXPECT_EQ(put_number(place_of(R"({"holding": 1})"), 65536, words),
              "65536 is beyond 0..65535 of the holding register");
    EXPECT_EQ(
        put_number(place_of(R"({"holding": 1, "type": "int16", "scale": "1/10"})"), 3277, words),
        "32770 is beyond -32768..32767 of the holding register");
    EXPECT_EQ(put_number(place_of(R"({"holding": 1, "bit": 2, "width": 2})"), 4, words),
              "4 is beyond 0..3 of the holding register");
    EXPECT_EQ(put_number(place_of(R"({"coil": 1})"), 2, words), "2 is beyond 0..1 of the coil");
    EXPECT_EQ(words, Words{7});
}

TEST(RegisterPlace, SourcesTakeUnitAndOrderOfWordsFromTheirDriver) {
    Modbus_settings settings;
    settings.unit = 9;
    settings.is_low_word_first = true;
    const auto plain = read_source(R"({"holding": 1, "type": "uint32"})", settings);
    EXPECT_EQ(plain.result.range.unit, 9);
    EXPECT_TRUE(plain.result.is_low_word_first);
    const auto own = read_source(
        R"({"holding": 1, "type": "uint32", "unit": 4, "words": "high-first"})", settings);
    EXPECT_EQ(own.result.range.unit, 4);
    EXPECT_FALSE(own.result.is_low_word_first);
}

TEST(RegisterPlace, MistakesAreReported) {
    const struct {
        const char* source;
        const char* error;
    } cases[] = {
        {"{}", R"(expected a member "holding", "input", "coil" or "discrete")"},
        {R"({"holding": 1, "coil": 2})", R"("coil" does not go with "holding")"},
        {R"({"coil": 1, "type": "int16"})", R"("type" does not go with a coil)"},
        {R"({"discrete": 1, "scale": "10"})", R"("scale" does not go with a discrete input)"},
        {R"({"holding": 65536})", "expected a whole number from 0 to 65535, found 65536"},
        {R"({"holding": 65535, "type": "int32"})",
         "expected a whole number from 0 to 65534, found 65535"},
        {R"({"holding": -1})", "expected a whole number from 0 to 65535, found -1"},
        {R"({"holding": 1, "type": "int8"})",
         R"(expected one of "uint16", "int16", "uint32", "int32", found "int8")"},
        {R"({"holding": 1, "bit": 16})", "expected a whole number from 0 to 15, found 16"},
        {R"({"holding": 1, "bit": 12, "width": 5})",
         "expected a whole number from 1 to 4, found 5"},
        {R"({"holding": 1, "unit": 248})", "expected a unit from 0 to 247, or 255, found 248"},
        {R"({"holding": 1, "scale": "0"})",
         R"(expected a scale such as "1/1000" or "100", found "0")"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.source);
        EXPECT_EQ(read_source(c.source).error, c.error);
    }
}

}  // namespace
}  // namespace frontpanel
