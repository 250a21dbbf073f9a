#include <frontpanel_display/key_table.h>

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

namespace frontpanel {
namespace {

std::string manual() {
    std::ostringstream text;
    text << std::ifstream(std::string(FRONTPANEL_SOURCE_DIR) + "/docs/panel.md").rdbuf();
    return text.str();
}

TEST(KeyTable, HasARowForEveryKeyButTheShortcuts) {
    for (int kind = Key::UP; kind <= Key::FAVOURITES; ++kind) {
        const Key_row* const row = row_of(static_cast<Key::Kind>(kind));
        if (kind == Key::SHORTCUT) {
            EXPECT_EQ(row, nullptr);
        } else {
            ASSERT_NE(row, nullptr) << kind;
            EXPECT_EQ(row->kind, kind);
        }
    }
}

TEST(KeyTable, WordsKeyboardKeysAndCodesNameOneKeyEach) {
    std::set<std::string> words;
    std::set<std::string> keyboard;
    std::set<int> codes;
    std::set<int> detents;
    for (const Key_row& row : KEY_TABLE) {
        EXPECT_TRUE(words.insert(row.word).second) << row.word;
        EXPECT_TRUE(keyboard.insert(row.keyboard).second) << row.keyboard;
        if (row.detents != 0) {
            EXPECT_TRUE(detents.insert(row.detents).second) << row.word;
            EXPECT_EQ(row.code, 0) << row.word;
        } else {
            EXPECT_TRUE(codes.insert(row.code).second) << row.word;
        }
    }
    EXPECT_EQ(codes.count(0), 0U);
}

TEST(KeyTable, IsFoundByWordAndByCode) {
    for (const Key_row& row : KEY_TABLE) {
        EXPECT_EQ(key_of_word(row.word), row.kind);
        if (row.detents == 0) {
            EXPECT_EQ(key_of_code(row.code), row.kind) << row.word;
        }
    }
    for (const char* const bad : {"", "Up", "up ", "shortcut", "1"}) {
        EXPECT_EQ(key_of_word(bad), std::nullopt) << bad;
    }
    for (const int code : {0, 1, 10, 12, 23, 255}) {
        EXPECT_EQ(key_of_code(static_cast<uint8_t>(code)), std::nullopt) << code;
    }
}

// An editor knows nothing of what a key means elsewhere: one step of meaning must reach it.
TEST(KeyTable, AMeaningHasNoOtherMeaning) {
    for (const Key_row& row : KEY_TABLE) {
        EXPECT_EQ(row_of(row.in_list)->in_list, row.in_list) << row.word;
        EXPECT_EQ(row_of(row.at_cursor)->at_cursor, row.at_cursor) << row.word;
        EXPECT_EQ(row_of(row.in_text)->in_text, row.in_text) << row.word;
    }
}

TEST(KeyTable, ListsItsWords) {
    EXPECT_EQ(
        key_words(),
        "up, down, left, right, select, back, coarser, finer, insert, delete, erase, diagnostics, "
        "favourites");
}

TEST(KeyTable, EveryWordIsInTheManual) {
    const std::string text = manual();
    ASSERT_NE(text, "");
    for (const Key_row& row : KEY_TABLE) {
        EXPECT_NE(text.find("`" + std::string(row.word) + "`"), std::string::npos) << row.word;
    }
}

}  // namespace
}  // namespace frontpanel
