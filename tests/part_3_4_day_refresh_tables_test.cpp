// Part 3.4: the day refresh tables (day noise-reduction tables, black levels; the high-gain gamma curves
// are in gamma_curves_test.cpp). The refresh bullets are checked through the interpolation of Part 3.1
// and the noise-reduction record update, which is what the day refresh runs for its step 3.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <iterator>
#include <type_traits>

#include "refresh_test_support.h"

namespace {

template <typename T, typename A> constexpr bool element_is = std::is_same_v<std::remove_extent_t<A>, const T>;
static_assert(element_is<uint16_t, decltype(g_black_level_table)> && std::size(g_black_level_table) == 4);
static_assert(element_is<uint16_t, decltype(g_black_level_table_day)> && std::size(g_black_level_table_day) == 4);
static_assert(element_is<uint16_t, decltype(g_black_level_table_60)> && std::size(g_black_level_table_60) == 4);

struct NrTable {
    const char *field;
    const uint8_t *table;
    size_t count;
    const uint8_t *IspNrTables::*member;
};
#define NR(f)                                                                                                \
    NrTable { #f, g_3dnr_##f##_day, std::size(g_3dnr_##f##_day), &IspNrTables::f }
static_assert(element_is<uint8_t, decltype(g_3dnr_SBS0_day)>);
static_assert(element_is<uint8_t, decltype(g_3dnr_MATH1_day)>);
static_assert(element_is<uint8_t, decltype(g_3dnr_TRC_day)>);
const NrTable kDayNr[24] = {NR(SBS0), NR(SBS1), NR(SBS2),  NR(SBS3),  NR(SDS0), NR(SDS1), NR(SDS2), NR(SDS3),
                            NR(STH0), NR(STH1), NR(STH2),  NR(STH3),  NR(MDP),  NR(Pro3), NR(MATH1), NR(MATH2),
                            NR(MDDZ1), NR(MDDZ2), NR(TFS1), NR(TFS2), NR(SFC),  NR(TFC),  NR(TPC),  NR(TRC)};

uint32_t at(const uint8_t *table, int32_t G)
{
    int32_t L = 0;
    while ((2 << L) <= G)
        ++L;
    return ISP_GainLevelInterp(table, G, L);
}

// Runs the record update of the day refresh (Part 3.1, used by Part 3.2 step 3) against the simulator
// and returns the record it wrote.
VPSS_GRP_NRS_PARAM_S day_record_at(int32_t G, int32_t L, int32_t dnr_mode)
{
    sim_mpp_reset();
    const IspNrCaller caller = {"ISP_SetParamDayRefresh", 1, 2};
    EXPECT_EQ(ISP_UpdateNrRecord(&g_3dnr_tables_day, dnr_mode, G, L, &caller), 0);
    VPSS_GRP_NRS_PARAM_S rec;
    sim_mpp_read(SIM_REC_VPSS_NRS_PARAM, &rec);
    return rec;
}

} // namespace

// ---- Data model -------------------------------------------------------------------------------------

TEST(DayRefreshTables, EveryNoiseReductionTableYields12Values)
{
    for (const NrTable &t : kDayNr)
        EXPECT_EQ(t.count, size_t(ISP_LEVEL_COUNT)) << t.field;
}

TEST(DayRefreshTables, NoiseReductionRecordPointsAtTheTablesInFieldOrder)
{
    for (const NrTable &t : kDayNr)
        EXPECT_EQ(g_3dnr_tables_day.*t.member, t.table) << t.field;
    const uint8_t *const *slots = reinterpret_cast<const uint8_t *const *>(&g_3dnr_tables_day);
    ASSERT_EQ(sizeof g_3dnr_tables_day, 24 * sizeof(const uint8_t *));
    for (int i = 0; i < 24; ++i)
        EXPECT_EQ(slots[i], kDayNr[i].table) << kDayNr[i].field;
}

TEST(DayRefreshTables, TablesAreSeparateEvenWhereValuesAreEqual)
{
    for (const NrTable &a : kDayNr) {
        for (const NrTable &b : kDayNr) {
            if (&a != &b) {
                EXPECT_NE(a.table, b.table) << a.field << " and " << b.field;
            }
        }
    }
}

// "SDS1 carries the values of SBS2 and SDS2 those of SBS1."
TEST(DayRefreshTables, Sds1CarriesSbs2AndSds2CarriesSbs1)
{
    EXPECT_EQ(std::memcmp(g_3dnr_SDS1_day, g_3dnr_SBS2_day, 12), 0);
    EXPECT_EQ(std::memcmp(g_3dnr_SDS2_day, g_3dnr_SBS1_day, 12), 0);
    EXPECT_EQ(std::memcmp(g_3dnr_SDS0_day, g_3dnr_SBS0_day, 12), 0);
    EXPECT_EQ(std::memcmp(g_3dnr_SDS3_day, g_3dnr_SBS3_day, 12), 0);
    EXPECT_NE(std::memcmp(g_3dnr_SDS1_day, g_3dnr_SBS1_day, 12), 0);
}

// "SBS1 and SDS2 fall from 80 at level 3 to 60 at level 4 before rising: the interpolation follows."
TEST(DayRefreshTables, Sbs1AndSds2FallBetweenLevels3And4AndTheInterpolationFollows)
{
    for (const uint8_t *t : {g_3dnr_SBS1_day, g_3dnr_SDS2_day}) {
        EXPECT_EQ(t[3], 80);
        EXPECT_EQ(t[4], 60);
        EXPECT_GT(t[5], t[4]);
        EXPECT_EQ(at(t, 8), 80u);
        EXPECT_EQ(at(t, 12), 70u); // 80 - 20 * 4 / 8
        EXPECT_EQ(at(t, 15), 62u); // 80 + floor(-20 * 7 / 8) = 80 - 17.5 -> 62
        EXPECT_EQ(at(t, 16), 60u);
    }
}

TEST(DayRefreshTables, MathValuesFitTheSixteenBitFieldsUnchanged)
{
    VPSS_GRP_NRS_PARAM_S rec = day_record_at(48, 5, 0);
    EXPECT_EQ(rec.stNRSParam_V2.MATH1, at(g_3dnr_MATH1_day, 48));
    EXPECT_EQ(rec.stNRSParam_V2.MATH2, at(g_3dnr_MATH2_day, 48));
    EXPECT_EQ(rec.stNRSParam_V2.MATH1, 128); // between entries 5 and 6, both 128
}

TEST(DayRefreshTables, BlackLevelTables)
{
    for (int c = 0; c < 4; ++c) {
        EXPECT_EQ(g_black_level_table[c], 63) << "channel " << c;
        EXPECT_EQ(g_black_level_table_day[c], 64) << "channel " << c;
        EXPECT_EQ(g_black_level_table_60[c], 73) << "channel " << c;
    }
    EXPECT_EQ(sizeof g_black_level_table, 8u);
    // Copied whole into the black-level attribute.
    ISP_BLACK_LEVEL_S black;
    sim_mpp_power_on_record(SIM_REC_BLACK_LEVEL, &black);
    static_assert(sizeof black.au16BlackLevel == sizeof g_black_level_table_day);
    std::memcpy(black.au16BlackLevel, g_black_level_table_day, sizeof black.au16BlackLevel);
    for (int c = 0; c < 4; ++c)
        EXPECT_EQ(black.au16BlackLevel[c], 64);
}

// ---- Edge cases worth testing (Part 3.4) --------------------------------------------------------------

TEST(DayRefreshTables, DayRefreshAtG1WritesTheLevel0Values)
{
    EXPECT_EQ(at(g_3dnr_SBS0_day, 1), 190u);
    EXPECT_EQ(at(g_3dnr_SDS0_day, 1), 190u);
    EXPECT_EQ(at(g_3dnr_SBS1_day, 1), 40u);
    EXPECT_EQ(at(g_3dnr_SDS2_day, 1), 40u);
    EXPECT_EQ(at(g_3dnr_SBS2_day, 1), 120u);
    EXPECT_EQ(at(g_3dnr_SDS1_day, 1), 120u);
    for (const uint8_t *t : {g_3dnr_STH0_day, g_3dnr_STH1_day, g_3dnr_STH2_day, g_3dnr_STH3_day})
        EXPECT_EQ(at(t, 1), 110u);
    EXPECT_EQ(at(g_3dnr_MDP_day, 1), 2u);
    EXPECT_EQ(at(g_3dnr_Pro3_day, 1), 1u);
    EXPECT_EQ(at(g_3dnr_MDDZ1_day, 1), 32u);
    EXPECT_EQ(at(g_3dnr_MDDZ2_day, 1), 32u);
    EXPECT_EQ(at(g_3dnr_TFS1_day, 1), 8u);
    EXPECT_EQ(at(g_3dnr_TFS2_day, 1), 8u);
    EXPECT_EQ(at(g_3dnr_SFC_day, 1), 16u);
    EXPECT_EQ(at(g_3dnr_TFC_day, 1), 10u);
    EXPECT_EQ(at(g_3dnr_TPC_day, 1), 10u);
    EXPECT_EQ(at(g_3dnr_TRC_day, 1), 16u);
    // With u8DnrMode 0 also the two user-ownable pairs.
    EXPECT_EQ(at(g_3dnr_SBS3_day, 1), 50u);
    EXPECT_EQ(at(g_3dnr_SDS3_day, 1), 50u);
    EXPECT_EQ(at(g_3dnr_MATH1_day, 1), 122u);
    EXPECT_EQ(at(g_3dnr_MATH2_day, 1), 122u);
}

TEST(DayRefreshTables, DayRefreshAtG1WritesTheLevel0ValuesIntoTheRecord)
{
    VPSS_GRP_NRS_PARAM_S rec = day_record_at(1, 0, 0);
    expect_day_level0_values(rec.stNRSParam_V2);
}

TEST(DayRefreshTables, DayRefreshAtG48WritesSfc222AndTrc137)
{
    // SFC 190 + floor(65 * 16 / 32) = 222, TRC 20 + floor(235 * 16 / 32) = 137.
    EXPECT_EQ(ISP_GainLevelInterp(g_3dnr_SFC_day, 48, 5), 222u);
    EXPECT_EQ(ISP_GainLevelInterp(g_3dnr_TRC_day, 48, 5), 137u);
    VPSS_GRP_NRS_PARAM_S rec = day_record_at(48, 5, 0);
    EXPECT_EQ(rec.stNRSParam_V2.SFC, 222);
    EXPECT_EQ(rec.stNRSParam_V2.TRC, 137);
}

TEST(DayRefreshTables, DayRefreshAtG24WritesSbs1_67)
{
    // 60 + floor(15 * 8 / 16) = 67.
    EXPECT_EQ(ISP_GainLevelInterp(g_3dnr_SBS1_day, 24, 4), 67u);
    VPSS_GRP_NRS_PARAM_S rec = day_record_at(24, 4, 0);
    EXPECT_EQ(rec.stNRSParam_V2.SBS1, 67);
    EXPECT_EQ(rec.stNRSParam_V2.SDS2, 67); // SDS2 carries SBS1's values
}
