#include <frontpanel_data/data_model.h>
#include <gtest/gtest.h>

#include "support/capture.h"
#include "support/indexes.h"
#include "support/line_gates.h"

namespace {

using support::capture;
using support::index_of;

class Plain_model : public Data_model {
public:
    using Data_model::Data_model;
    int Get(void*, unsigned int) override { return OK; }
    int Set(const void*, unsigned int) override { return OK; }
    bool Is_active() const override { return true; }
    int Inc_value(int, int) override { return OK; }
    int Refresh() override {
        ++refresh_count;
        return OK;
    }
    bool is_initialised() const { return m_init; }
    const Index_t* index() const { return m_index; }

    int refresh_count = 0;
};

struct Conversion {
    Index_t index;
    unsigned int varidx;
};

TEST(IndexConvert, PacksAtMostTwoLevels) {
    const Conversion conversions[] = {
        {index_of({}), 0},
        {index_of({0}), 0},
        {index_of({3}), 3},
        {index_of({0xFFFF}), 0xFFFF},
        {index_of({3, 1}), 0x103},
        {index_of({0, 0xFFFF}), 0xFFFF00},
        {index_of({0xFF, 0xFF}), 0xFFFF},
    };
    for (const Conversion& conversion : conversions) {
        unsigned int varidx = 12345;
        EXPECT_EQ(Data_model::Index_convert(&conversion.index, varidx), Data_model::OK);
        EXPECT_EQ(varidx, conversion.varidx);
    }
}

// The device expects it: levels are or-ed, neither masked nor added.
TEST(IndexConvert, AFirstLevelAbove255OverlapsTheSecond) {
    unsigned int varidx = 0;
    const Index_t overlapping = index_of({0x1FF, 1});
    EXPECT_EQ(Data_model::Index_convert(&overlapping, varidx), Data_model::OK);
    EXPECT_EQ(varidx, 0x1FFu);
}

TEST(IndexConvert, UnusedLevelsDoNotCount) {
    Index_t index = index_of({});
    index.m_index[0] = 7;
    index.m_index[1] = 7;
    unsigned int varidx = 12345;
    EXPECT_EQ(Data_model::Index_convert(&index, varidx), Data_model::OK);
    EXPECT_EQ(varidx, 0u);
    index.m_index_num = 1;
    EXPECT_EQ(Data_model::Index_convert(&index, varidx), Data_model::OK);
    EXPECT_EQ(varidx, 7u);
}

TEST(IndexConvert, RefusesMoreThanTwoLevelsAndLeavesTheResultAlone) {
    for (const uint32_t levels : {3u, 8u, 9u, 0xFFFFFFFFu}) {
        Index_t index = index_of({0, 0, 0});
        index.m_index_num = levels;
        unsigned int varidx = 12345;
        EXPECT_EQ(Data_model::Index_convert(&index, varidx), Data_model::INVALID);
        EXPECT_EQ(varidx, 12345u);
    }
}

TEST(IndexConvert, RefusesNullAndLeavesTheResultAlone) {
    unsigned int varidx = 12345;
    EXPECT_EQ(Data_model::Index_convert(nullptr, varidx), Data_model::INVALID);
    EXPECT_EQ(varidx, 12345u);
}

TEST(DataModel, KnowsItsParameter) {
    const Index_t index = index_of({3, 1});
    const Plain_model model(120, &index);
    EXPECT_EQ(model.Get_pid(), 120u);
    EXPECT_EQ(model.Get_varidx(), 0x103u);
    EXPECT_EQ(model.index(), &index);
    EXPECT_FALSE(model.is_initialised());
}

TEST(DataModel, ComputesTheVariableIndexOnce) {
    Index_t index = index_of({3});
    const Plain_model model(120, &index);
    index.m_index[0] = 4;
    EXPECT_EQ(model.Get_varidx(), 3u);
}

TEST(DataModel, ReportsAnIndexThatItCannotConvertAndGoesOn) {
    const Index_t index = index_of({1, 2, 3});
    const auto printed = capture(0x1, [&] {
        const Plain_model model(120, &index);
        EXPECT_EQ(model.Get_varidx(), 0u);
        EXPECT_EQ(model.Get_pid(), 120u);
    });
    EXPECT_EQ(printed.out, "pid[120], index[3], m_varidx[0]\n");
    EXPECT_EQ(printed.err, "");
}

TEST(DataModel, TheReportIsAGeneralLineOfALeaf) {
    const Index_t index = index_of({1, 2, 3});
    support::expect_line_gate("pid[120], index[3], m_varidx[0]\n", 0x1, support::Gate::LEAF,
                              [&] { const Plain_model model(120, &index); });
}

TEST(DataModelDeathTest, NullIndexIsAProgrammingError) {
    EXPECT_DEATH(Plain_model(120, nullptr), "Assertion `index' failed");
}

TEST(DataModel, InitRefreshesWithoutInterfaceOnce) {
    const Index_t index = index_of({});
    Plain_model model(120, &index);
    model.Init();
    EXPECT_TRUE(model.is_initialised());
    EXPECT_EQ(model.refresh_count, 1);
    model.Init();
    EXPECT_TRUE(model.is_initialised());
    EXPECT_EQ(model.refresh_count, 1);
}

TEST(DataModel, BaseCommitAndRefreshDoNothing) {
    const Index_t index = index_of({});
    Plain_model model(120, &index);
    EXPECT_EQ(model.Commit(), Data_model::OK);
    EXPECT_EQ(model.Data_model::Refresh(), Data_model::OK);
    EXPECT_FALSE(model.is_initialised());
}

TEST(DataModel, ReturnCodesHaveTheValuesThatClientsWereBuiltWith) {
    EXPECT_EQ(Data_model::OK, 0);
    EXPECT_EQ(Data_model::ERROR, 1);
    EXPECT_EQ(Data_model::INVALID, 2);
    EXPECT_EQ(Data_model::OUT_OF_RANGE, 3);
}

}  // namespace
