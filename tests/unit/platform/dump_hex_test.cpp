#include <frontpanel_data/timer.h>
#include <gtest/gtest.h>

#include <clocale>
#include <string>
#include <vector>

#include "support/capture.h"

namespace {

std::string dump_of(const std::vector<unsigned char>& bytes) {
    return support::capture(
               0, [&] { dump_hex(bytes.data(), static_cast<unsigned int>(bytes.size())); })
        .out;
}

std::string dump_of(const std::string& text) {
    return dump_of(std::vector<unsigned char>(text.begin(), text.end()));
}

std::vector<unsigned char> every_byte() {
    std::vector<unsigned char> bytes;
    for (unsigned int byte = 0; byte < 256; ++byte) {
        bytes.push_back(static_cast<unsigned char>(byte));
    }
    return bytes;
}

// The lines of characters, without what stands before the first.
std::string characters_of(const std::string& dump) {
    std::string characters;
    std::size_t begin = 0;
    bool second = false;
    for (std::size_t end = dump.find('\n'); end != std::string::npos;
         end = dump.find('\n', begin)) {
        if (second) {
            for (std::size_t at = begin + 10; at < end; at += 3) {
                characters += dump[at];
            }
        }
        second = !second;
        begin = end + 1;
    }
    return characters;
}

TEST(DumpHex, OfNothingPrintsNothing) {
    EXPECT_EQ(dump_of(""), "");
    EXPECT_EQ(support::capture(0, [] { dump_hex(nullptr, 0); }).out, "");
}

TEST(DumpHex, SetsEachCharacterUnderItsDigits) {
    EXPECT_EQ(dump_of("A"),
              "  0000:  41 \n"
              "  0000:   A \n");
    EXPECT_EQ(dump_of("Hi ~\n"),
              "  0000:  48 69 20 7e 0a \n"
              "  0000:   H  i     ~  . \n");
}

TEST(DumpHex, BeginsANewPairOfLinesEverySixteenBytes) {
    EXPECT_EQ(dump_of("0123456789abcdef"),
              "  0000:  30 31 32 33 34 35 36 37 38 39 61 62 63 64 65 66 \n"
              "  0000:   0  1  2  3  4  5  6  7  8  9  a  b  c  d  e  f \n");
    EXPECT_EQ(dump_of("0123456789abcdefg"),
              "  0000:  30 31 32 33 34 35 36 37 38 39 61 62 63 64 65 66 \n"
              "  0000:   0  1  2  3  4  5  6  7  8  9  a  b  c  d  e  f \n"
              "  0010:  67 \n"
              "  0010:   g \n");
}

TEST(DumpHex, ShowsADotForWhatIsNotPrintable) {
    std::string expected(0x20, '.');
    for (char c = 0x20; c < 0x7F; ++c) {
        expected += c;
    }
    expected += std::string(256 - 0x7F, '.');
    EXPECT_EQ(characters_of(dump_of(every_byte())), expected);
}

TEST(DumpHex, IsTheSameInEveryLocale) {
    const std::string before = dump_of(every_byte());
    ASSERT_NE(std::setlocale(LC_ALL, "C.UTF-8"), nullptr);
    EXPECT_EQ(dump_of(every_byte()), before);
    for (const char* const name : {"de_DE.ISO-8859-1", "en_US.ISO-8859-1", "en_US.iso88591"}) {
        if (std::setlocale(LC_ALL, name) != nullptr) {
            EXPECT_EQ(dump_of(every_byte()), before) << name;
        }
    }
    std::setlocale(LC_ALL, "C");
}

TEST(DumpHex, WidensTheOffsetWhenFourDigitsAreTooFew) {
    const std::string dump = dump_of(std::string(0x10001, 'x'));
    const std::string end =
        "  10000:  78 \n"
        "  10000:   x \n";
    ASSERT_GT(dump.size(), end.size());
    EXPECT_EQ(dump.substr(dump.size() - end.size()), end);
    EXPECT_NE(dump.find("\n  fff0:  78 "), std::string::npos);
}

TEST(DumpHexDeathTest, OfANullBufferIsAMistake) {
    EXPECT_DEATH(dump_hex(nullptr, 1), "dump_hex: Assertion `buffer' failed");
}

}  // namespace
