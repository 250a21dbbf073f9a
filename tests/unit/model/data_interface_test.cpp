#include <frontpanel_data/data_interface.h>
#include <frontpanel_data/data_model.h>
#include <frontpanel_data/entry.h>
#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

#include "support/fake_binding.h"
#include "support/fake_device.h"
#include "support/indexes.h"

namespace {

using support::index_of;
using support::key_of;

TEST(IndexRecord, EqualWhenTheLevelsInUseAreEqual) {
    EXPECT_TRUE(index_of({3, 1}) == index_of({3, 1}));
    EXPECT_FALSE(index_of({3, 1}) != index_of({3, 1}));
    EXPECT_TRUE(index_of({}) == index_of({}));
}

TEST(IndexRecord, DiffersByEveryLevelInUse) {
    for (int level = 0; level < 8; ++level) {
        Index_t left = index_of({1, 2, 3, 4, 5, 6, 7, 8});
        const Index_t right = left;
        ++left.m_index[level];
        EXPECT_TRUE(left != right) << "level " << level;
        EXPECT_FALSE(left == right) << "level " << level;
    }
}

TEST(IndexRecord, DiffersByTheNumberOfLevels) {
    EXPECT_TRUE(index_of({3}) != index_of({3, 0}));
    EXPECT_TRUE(index_of({}) != index_of({0}));
}

TEST(IndexRecord, UnusedLevelsDoNotCount) {
    Index_t left = index_of({3});
    Index_t right = left;
    left.m_index[1] = 9;
    right.m_index[7] = 5;
    EXPECT_TRUE(left == right);
}

TEST(IndexRecord, IsCopiedWhole) {
    Index_t source = index_of({1, 2});
    source.m_index[7] = 77;
    Index_t copy = index_of({});
    copy = source;
    EXPECT_EQ(copy.m_index_num, 2u);
    EXPECT_EQ(copy.m_index[1], 2);
    EXPECT_EQ(copy.m_index[7], 77);
}

TEST(IndexRecord, ComparingSurvivesALevelCountBeyondTheArray) {
    Index_t left = index_of({1, 2, 3, 4, 5, 6, 7, 8});
    left.m_index_num = 4000000000u;
    const Index_t right = left;
    EXPECT_TRUE(left == right);
}

// Each key orders before the next one: parameter first, then levels, then the type of value.
TEST(ParameterKeyOrder, ComparesTheFieldsInTheirOrder) {
    const std::vector<var_index_s> ascending = {
        key_of(STRING, 1, index_of({9, 9})),       key_of(INTEGER, 2, index_of({})),
        key_of(INTEGER, 2, index_of({7})),         key_of(INTEGER, 2, index_of({0, 0})),
        key_of(INTEGER, 2, index_of({0, 1})),      key_of(INTEGER, 2, index_of({1, 0})),
        key_of(STRING, 2, index_of({1, 0})),       key_of(INVALID_TYPE, 2, index_of({1, 1})),
        key_of(INTEGER, 2, index_of({1, 1})),      key_of(STRING, 2, index_of({1, 1})),
        key_of(INTEGER, 2, index_of({0, 0, 0})),   key_of(INTEGER, 0x7FFFFFFF, index_of({})),
        key_of(INTEGER, 0x80000000, index_of({})), key_of(INTEGER, 0xFFFFFFFF, index_of({})),
    };
    const cmp_var_index_t before;
    for (std::size_t i = 0; i < ascending.size(); ++i) {
        for (std::size_t j = 0; j < ascending.size(); ++j) {
            EXPECT_EQ(before(ascending[i], ascending[j]), i < j) << i << " and " << j;
        }
    }
}

TEST(ParameterKeyOrder, LevelsBeyondTheSecondAreTheSameKey) {
    std::map<var_index_s, int, cmp_var_index_t> map;
    for (int level = 2; level < 8; ++level) {
        var_index_s key = key_of(INTEGER, 120, index_of({1, 2, 3, 4, 5, 6, 7, 8}));
        key.index.m_index[level] = 99;
        map[key] = level;
    }
    EXPECT_EQ(map.size(), 1u);
}

TEST(ParameterKeyOrder, TheFirstTwoLevelsCountEvenWhenTheyAreNotInUse) {
    var_index_s left = key_of(INTEGER, 120, index_of({}));
    var_index_s right = left;
    right.index.m_index[0] = 1;
    EXPECT_TRUE(cmp_var_index_t()(left, right));
    right = left;
    right.index.m_index[1] = 1;
    EXPECT_TRUE(cmp_var_index_t()(left, right));
}

TEST(ParameterKeyOrder, TypesTellKeysApart) {
    std::map<var_index_s, int, cmp_var_index_t> map;
    map[key_of(STRING, 120, index_of({3}))] = 2;
    map[key_of(INTEGER, 120, index_of({3}))] = 1;
    ASSERT_EQ(map.size(), 2u);
    EXPECT_EQ(map.begin()->first.rt, INTEGER);
}

TEST(ParameterValue, StartsWithoutATypeAndCopiesItsText) {
    return_s value;
    EXPECT_EQ(value.rt, INVALID_TYPE);
    value.rt = STRING;
    value.i = 5;
    value.s = "text";
    const return_t copy(value);
    value.s = "other";
    EXPECT_EQ(copy.rt, STRING);
    EXPECT_EQ(copy.i, 5);
    EXPECT_EQ(copy.s, "text");
}

TEST(WriteRequest, EqualWhenTheSameBytesGoToTheSameParameter) {
    GetSetS left = support::set_request(120, 3, 42);
    GetSetS right = left;
    right.buffer[100] = 1;  // beyond the length
    EXPECT_TRUE(left == right);
}

TEST(WriteRequest, DiffersByEachField) {
    const GetSetS base = support::set_request(120, 3, 42);
    GetSetS other = base;
    other.varid = 121;
    EXPECT_FALSE(base == other);
    other = base;
    other.varidx = 4;
    EXPECT_FALSE(base == other);
    other = base;
    other.rt = STRING;
    EXPECT_FALSE(base == other);
    other = base;
    other.length = 3;
    EXPECT_FALSE(base == other);
    other = base;
    other.buffer[3] = 1;
    EXPECT_FALSE(base == other);
}

TEST(WriteRequest, ComparingStaysWithinTheBuffer) {
    GetSetS left = support::set_request(120, 3, 42);
    left.length = 4000000000u;
    const GetSetS right = left;
    EXPECT_TRUE(left == right);
}

TEST(WriteRequest, TheLastByteOfTheBufferCounts) {
    GetSetS left = support::set_request(120, 3, std::string(128, 'a'));
    GetSetS right = left;
    EXPECT_TRUE(left == right);
    right.buffer[127] = 'b';
    EXPECT_FALSE(left == right);
}

TEST(DataInterface, InitOfTheBaseDoesNothing) {
    class Plain : public Data_interface {
    public:
        int Get(unsigned int, unsigned int, void*, unsigned int) override { return 1; }
        int Set(unsigned int, unsigned int, const void*, unsigned int) override { return 1; }
        int Get_prod_list(PROD_LIST_S*, bool, bool) override { return 1; }
        int Set_product_id(prod_id_t) override { return 1; }
        int Get_prod_alias_name(char*, prod_id_t) override { return 1; }
    };
    Plain plain;
    plain.go_home = 1;
    plain.lock_and_dim = 2;
    plain.time_for_timeout = 3;
    plain.Init();
    EXPECT_EQ(plain.go_home, 1);
    EXPECT_EQ(plain.lock_and_dim, 2);
    EXPECT_EQ(plain.time_for_timeout, 3);
}

TEST(DataInterfaceStore, StartsWithoutAnInterface) {
    EXPECT_EQ(VarIdDataInfStore::m_pDataAccessInf, nullptr);
}

TEST(DiagnosticWord, StartsSilent) {
    EXPECT_EQ(debug, 0u);
}

TEST(Constants, HaveTheValuesThatClientsWereBuiltWith) {
    EXPECT_EQ(Data_entry::PID_NONE, 0xFFFFFFFFu);
    EXPECT_EQ(Data_entry::SHORTCUT_NONE, -1);
    EXPECT_EQ(Data_entry::VISIBLE_NONE, -1);
    EXPECT_EQ(Data_entry::VISIBLE_ALL, 1);
    EXPECT_EQ(Data_model::S_CURRENT_SUPPORT_DIMENTIONS, 2u);
    EXPECT_EQ(String_model::MIN_CHARACTER, 32u);
    EXPECT_EQ(String_model::MAX_CHARACTER, 127u);
    EXPECT_EQ(MAX_STRING_LENGTH, 256);
    EXPECT_EQ(BYTE_MASK, 255);
    EXPECT_EQ(INVALID_TYPE, 0);
    EXPECT_EQ(INTEGER, 1);
    EXPECT_EQ(STRING, 2);
}

TEST(DiagnosticMask, NamesTheCategoriesAndTheVerbosityOfLines) {
    const std::pair<uint32_t, uint32_t> masks[] = {
        {DIAGNOSTIC_GENERAL, 0x1},
        {DIAGNOSTIC_MODEL_READ, 0x3},
        {DIAGNOSTIC_COMMIT, 0x5},
        {DIAGNOSTIC_OPTIONS, 0x11},
        {DIAGNOSTIC_BINDING, 0x21},
        {DIAGNOSTIC_WRITE, 0x25},
        {DIAGNOSTIC_ENTRY_REFRESH, 0x35},
        {DIAGNOSTIC_CONSTRUCTION, 0x101},
        {DIAGNOSTIC_VISIBILITY, 0x401},
        {DIAGNOSTIC_BINDING_VISIBILITY, 0x421},
        {DIAGNOSTIC_REFRESH, 0x10001},
        {DIAGNOSTIC_DISPATCH, 0x10431},
        {DIAGNOSTIC_LINK_NAVIGATION, 0x80001},
        {DIAGNOSTIC_SHORTCUT, 0x200001},
        {DIAGNOSTIC_LINK_VISIBILITY, 0x400001},
        {DIAGNOSTIC_LINK_CREATION, 0x480001},
        {DIAGNOSTIC_LIVE_DATA, 0x1000001},
        {DIAGNOSTIC_QUIET, 0x4000},
        {DIAGNOSTIC_VERBOSE, 0x8000},
    };
    for (const auto& [name, value] : masks) {
        EXPECT_EQ(name, value);
    }
}

TEST(DiagnosticMask, OneCategoryIsSelectedWithoutTheGeneralBit) {
    const uint32_t shortcuts = DIAGNOSTIC_SHORTCUT & ~DIAGNOSTIC_GENERAL;
    EXPECT_EQ(shortcuts & DIAGNOSTIC_LINK_NAVIGATION, 0u);
    EXPECT_NE(shortcuts & DIAGNOSTIC_SHORTCUT, 0u);
}

// A record made where other values stood, as on a stack.
template <class Record>
class On_used_memory {
public:
    On_used_memory() {
        std::memset(m_memory, 0xA5, sizeof m_memory);
        m_record = new (m_memory) Record;
    }
    ~On_used_memory() { m_record->~Record(); }
    On_used_memory(const On_used_memory&) = delete;
    On_used_memory& operator=(const On_used_memory&) = delete;
    const Record* operator->() const { return m_record; }

private:
    alignas(Record) unsigned char m_memory[sizeof(Record)];
    Record* m_record;
};

void expect_empty(const Index_t& index) {
    EXPECT_EQ(index.m_index_num, 0u);
    for (const uint16_t level : index.m_index) {
        EXPECT_EQ(level, 0);
    }
}

TEST(Records, StartEmpty) {
    expect_empty(*On_used_memory<Index_t>().operator->());
    const On_used_memory<var_index_s> key;
    EXPECT_EQ(key->rt, INVALID_TYPE);
    EXPECT_EQ(key->var, 0u);
    expect_empty(key->index);
    const On_used_memory<GetSetS> request;
    EXPECT_EQ(request->varid, 0u);
    EXPECT_EQ(request->varidx, 0u);
    EXPECT_EQ(request->rt, INVALID_TYPE);
    EXPECT_EQ(request->length, 0u);
    for (const unsigned char byte : request->buffer) {
        EXPECT_EQ(byte, 0);
    }
}

TEST(DataInterface, AsksNothingOfThePanelBeforeTheApplicationDoes) {
    const On_used_memory<support::Fake_device> device;
    EXPECT_EQ(device->go_home, 0);
    EXPECT_EQ(device->lock_and_dim, 0);
    EXPECT_EQ(device->time_for_timeout, 0);
}

TEST(Records, AreWrittenAsListsOfTheirMembers) {
    const Index_t index = {1, {3}};
    EXPECT_TRUE(index == index_of({3}));
    const var_index_s key = {INTEGER, 120, {1, {3}}};
    EXPECT_EQ(key.var, 120u);
    EXPECT_TRUE(key.index == index);
    const GetSetS request = {120, 3, STRING, {'a'}, 1};
    EXPECT_EQ(request.buffer[0], 'a');
    EXPECT_EQ(request.length, 1u);
    static_assert(std::is_trivially_copyable_v<Index_t> &&
                  std::is_trivially_copyable_v<var_index_s> &&
                  std::is_trivially_copyable_v<GetSetS>);
    static_assert(std::is_standard_layout_v<var_index_s> && std::is_standard_layout_v<GetSetS>);
}

TEST(RecordLayout, IsWhatClientsWereBuiltWith) {
    EXPECT_EQ(sizeof(Index_t), 20u);
    EXPECT_EQ(sizeof(GetSetS), 12u + 128u + 4u);
    EXPECT_EQ(sizeof(PROD_LIST_S), 36u);
    EXPECT_EQ(sizeof(prod_id_t), 2u);
}

}  // namespace
