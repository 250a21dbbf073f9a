#include <frontpanel_base/hash_index.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace frontpanel {
namespace {

// Words with an index, with a hash that the test chooses.
struct Words {
    explicit Words(std::uint64_t (*hash)(const std::string& word)) : hash_of(hash) {}

    void add(const std::string& word) {
        words.push_back(word);
        index.add([this](std::uint32_t number) { return hash_of(words[number]); });
    }
    std::uint32_t find(const std::string& word) const {
        return index.find(hash_of(word),
                          [&](std::uint32_t number) { return words[number] == word; });
    }

    std::uint64_t (*hash_of)(const std::string& word);
    std::vector<std::string> words;
    Hash_index index;
};

std::uint64_t length(const std::string& word) {
    return word.size();
}

std::uint64_t number_in_upper_half(const std::string& word) {
    return std::stoull(word) << 32;
}

TEST(HashIndex, AnEmptyIndexFindsNothing) {
    EXPECT_EQ(Words(length).find("a"), Hash_index::NONE);
}

TEST(HashIndex, ItemsOfOneHashAreToldApart) {
    Words words(length);
    for (const char* const word : {"one", "two", "six", "four"}) {
        words.add(word);
    }
    EXPECT_EQ(words.find("one"), 0U);
    EXPECT_EQ(words.find("six"), 2U);
    EXPECT_EQ(words.find("four"), 3U);
    EXPECT_EQ(words.find("ten"), Hash_index::NONE);
    EXPECT_EQ(words.find("seven"), Hash_index::NONE);
}

TEST(HashIndex, ItemsAreFoundHoweverManyFollow) {
    Words words(number_in_upper_half);
    for (int i = 0; i < 3000; ++i) {
        words.add(std::to_string(i));
    }
    for (std::uint32_t i = 0; i < 3000; ++i) {
        ASSERT_EQ(words.find(std::to_string(i)), i);
    }
    EXPECT_EQ(words.find("3000"), Hash_index::NONE);
}

// How often one of the keys is compared with one that is looked up, on average.
std::size_t comparisons(const std::vector<std::uint64_t>& keys) {
    Hash_index index;
    for (std::size_t added = 0; added < keys.size(); ++added) {
        index.add([&](std::uint32_t number) { return keys[number]; });
    }
    std::size_t compared = 0;
    for (const std::uint64_t key : keys) {
        index.find(key, [&](std::uint32_t number) {
            ++compared;
            return keys[number] == key;
        });
    }
    return compared / keys.size();
}

// Whichever bits of the keys differ.
TEST(HashIndex, FewItemsAreComparedForOne) {
    for (const int shift : {0, 16, 32, 40}) {
        std::vector<std::uint64_t> keys;
        for (std::uint64_t i = 0; i < 10000; ++i) {
            keys.push_back(i << shift);
        }
        EXPECT_LT(comparisons(keys), 3U) << shift;
    }
}

// The product of such a key and the usual constant of a hash is the number of the key, so that no upper bit differs.
TEST(HashIndex, KeysCannotBeChosenForOnePlace) {
    std::uint64_t inverse = 1;
    for (int i = 0; i < 6; ++i) {
        inverse *= 2 - 0x9E3779B97F4A7C15U * inverse;
    }
    std::vector<std::uint64_t> keys;
    for (std::uint64_t i = 0; i < 10000; ++i) {
        keys.push_back(i * inverse);
    }
    EXPECT_LT(comparisons(keys), 3U);
}

}  // namespace
}  // namespace frontpanel
