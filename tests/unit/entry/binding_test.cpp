#include <frontpanel_data/binding.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "support/capture.h"
#include "support/fake_binding.h"
#include "support/leaf.h"

namespace {

using support::capture;
using support::Leaf;

TEST(SuggestionKinds, HaveTheValuesThatEnginesWereBuiltWith) {
    EXPECT_EQ(SUGGESTION_VISIBILITY, 1);
    EXPECT_EQ(SUGGESTION_RANGE, 2);
    EXPECT_EQ(SUGGESTION_KEYS, 4);
    EXPECT_EQ(SUGGESTION_SET, 8);
    EXPECT_EQ(SUGGESTION_WARNING, 16);
    EXPECT_EQ(SUGGESTION_ACCESS, 32);
    EXPECT_EQ(VIS_FALSE, -1);
    EXPECT_EQ(VIS_TRUE, 1);
    EXPECT_EQ(EVALUATION_UPDATE, 1);
    EXPECT_EQ(EVALUATION_OVERRIDE, 4);
    EXPECT_EQ(Binding::EXECUTE_FLAG, 1);
}

TEST(CachedValue, StartsEmpty) {
    EntryModelCache cache;
    EXPECT_TRUE(cache.binding_dependant_entries.empty());
    EXPECT_EQ(cache.entry_type, Data_entry::INVALID_ENTRY_TYPE);
    EXPECT_EQ(cache.model_type, INVALID_TYPE);
    EXPECT_EQ(cache.monitored_entry, nullptr);
    EXPECT_STREQ(cache.value_string, "");
    EXPECT_EQ(cache.value_int, 0);
}

TEST(CachedValue, KnowsItsEntry) {
    Leaf leaf("Volume:dB");
    EntryModelCache cache(Data_entry::RANGE_LEAF, &leaf, INTEGER);
    EXPECT_EQ(cache.entry_type, Data_entry::RANGE_LEAF);
    EXPECT_EQ(cache.model_type, INTEGER);
    EXPECT_EQ(cache.Get_entry(), &leaf);
    EXPECT_EQ(cache.monitored_entry, &leaf);
    EXPECT_EQ(cache.Get_entry_name(), "Volume");
}

TEST(CachedValue, WithoutAnEntryHasNoName) {
    EntryModelCache cache;
    EXPECT_EQ(cache.Get_entry(), nullptr);
    EXPECT_EQ(cache.Get_entry_name(), "");
}

TEST(CachedValue, IsCopiedWhole) {
    Leaf leaf("Volume");
    EntryModelCache cache(Data_entry::STRING_LEAF, &leaf, STRING);
    cache.binding_dependant_entries = {&leaf};
    std::strcpy(cache.value_string, "HELLO");
    cache.value_int = 7;
    EntryModelCache assigned;
    assigned = cache;
    EntryModelCache copy(cache);
    cache.binding_dependant_entries.clear();
    cache.value_string[0] = 'X';
    for (EntryModelCache* other : {&copy, &assigned}) {
        EXPECT_EQ(other->binding_dependant_entries, std::vector<Data_entry*>{&leaf});
        EXPECT_EQ(other->entry_type, Data_entry::STRING_LEAF);
        EXPECT_EQ(other->model_type, STRING);
        EXPECT_EQ(other->monitored_entry, &leaf);
        EXPECT_STREQ(other->getString(), "HELLO");
        EXPECT_EQ(other->value_int, 7);
    }
}

TEST(CachedValue, ANumberIsReadAsItIs) {
    EntryModelCache cache(Data_entry::RANGE_LEAF, nullptr, INTEGER);
    cache.value_int = -42;
    const auto printed = capture(0xFFFFFFFF, [&] { EXPECT_EQ(cache.getInt(), -42); });
    EXPECT_EQ(printed.out, "");
}

TEST(CachedValue, ATextIsReadAsItIs) {
    EntryModelCache cache(Data_entry::STRING_LEAF, nullptr, STRING);
    std::strcpy(cache.value_string, "HELLO");
    EXPECT_STREQ(cache.getString(), "HELLO");
}

TEST(CachedValue, WhatIsNoNumberIsReportedWhateverTheMask) {
    for (const RETURN_TYPE type : {STRING, INVALID_TYPE}) {
        EntryModelCache cache(Data_entry::STRING_LEAF, nullptr, type);
        cache.value_int = 7;
        for (const uint32_t mask : {0x0u, 0x4000u}) {
            const auto printed = capture(mask, [&] { EXPECT_EQ(cache.getInt(), -1); });
            EXPECT_NE(printed.out.find("[NOT INTEGER RETURN]"), std::string::npos);
        }
    }
}

TEST(CachedValue, EntryTypesMapToTypesOfValues) {
    for (int type = -1; type <= 8; ++type) {
        const auto entry_type = static_cast<Data_entry::Entry_type>(type);
        support::Leaf_options options;
        options.type = entry_type;
        Leaf leaf("Leaf", nullptr, options);
        EXPECT_EQ(EntryModelCache::Type_to_return_type(entry_type), leaf.bindingReturnType())
            << type;
    }
    EXPECT_EQ(EntryModelCache::Type_to_return_type(Data_entry::RANGE_LEAF), INTEGER);
    EXPECT_EQ(EntryModelCache::Type_to_return_type(Data_entry::ENUM_LEAF), INTEGER);
    EXPECT_EQ(EntryModelCache::Type_to_return_type(Data_entry::SLOT_ENUM), INTEGER);
    EXPECT_EQ(EntryModelCache::Type_to_return_type(Data_entry::IP_LEAF), STRING);
}

}  // namespace
