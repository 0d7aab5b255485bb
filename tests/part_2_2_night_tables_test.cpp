// Part 2.2: the night profile tables. Checked by shape, by the properties the Part states and by spot
// values from the spec; the tables are never typed out again here.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>
#include <type_traits>
#include <vector>

extern "C" {
#include "isptune.h"
#include "profiles/profiles.h"
#include "refresh/refresh.h"
#include "sim_mpp.h"
}

namespace {

template <typename T, typename A> constexpr bool element_is = std::is_same_v<std::remove_extent_t<A>, const T>;
static_assert(element_is<uint16_t, decltype(gNightEdgeSmoothThr)>);
static_assert(element_is<uint16_t, decltype(gNightEdgeSmoothSlope)>);
static_assert(element_is<uint16_t, decltype(gNightAntiAliasThr)>);
static_assert(element_is<uint16_t, decltype(gNightAntiAliasSlope)>);
static_assert(element_is<uint16_t, decltype(gNightNrCoarseStr)>);
static_assert(element_is<uint8_t, decltype(gNightDetailEnhanceStr)>);
static_assert(element_is<uint16_t, decltype(gNightNoiseSuppressStr)>);
static_assert(element_is<uint16_t, decltype(gNightSharpenLumaStr)>);
static_assert(element_is<uint16_t, decltype(gNightSharpenUd)>);
static_assert(element_is<uint8_t, decltype(gNightSharpenD)>);
static_assert(element_is<uint8_t, decltype(gNightTextureThr)>);
static_assert(element_is<uint8_t, decltype(gNightSharpenEdge)>);
static_assert(element_is<uint8_t, decltype(gNightEdgeThr)>);
static_assert(element_is<uint8_t, decltype(gNightOverShoot)>);
static_assert(element_is<uint8_t, decltype(gNightUnderShoot)>);
static_assert(element_is<uint8_t, decltype(gNightshootSupStr)>);
static_assert(element_is<uint8_t, decltype(gNightDetailCtrl)>);
static_assert(element_is<uint16_t, decltype(gNightStrength)>);
static_assert(element_is<uint16_t, decltype(gNightBlendRatio)>);
static_assert(element_is<uint8_t, decltype(gNightDefog)>);
static_assert(element_is<uint8_t, decltype(gNightDRCStrength)>);
static_assert(element_is<uint16_t, decltype(gNightVPSSSharpenUd)>);
static_assert(element_is<uint8_t, decltype(gNightVPSSSharpenD)>);
static_assert(element_is<uint8_t, decltype(gNightVPSSDetailCtrl)>);
static_assert(element_is<uint16_t, decltype(g_ccm_table_night)> && std::size(g_ccm_table_night) == 9);
static_assert(element_is<uint32_t, decltype(gNightAEWeightTable)> && std::size(gNightAEWeightTable) == 255);
static_assert(element_is<uint32_t, decltype(g_gamma_table_night)> && std::size(g_gamma_table_night) == 257);
static_assert(std::is_same_v<decltype(gNightCompensation), const uint32_t>);
static_assert(std::is_same_v<decltype(gNightAGainRangeMax), const uint32_t>);
static_assert(std::is_same_v<decltype(gNightDGainRangeMax), const uint32_t>);
static_assert(std::is_same_v<decltype(gNightISPDGainRangeMax), const uint32_t>);

struct Feed {
    const char *name;
    const void *table;
    size_t count, elem;
    sim_mpp_record_id record; // SIM_REC_COUNT: not copied into a platform record by the library
    size_t field_offset, field_elem, field_count;
};

#define TABLE_ONLY(t) Feed{#t, t, std::size(t), sizeof(t[0]), SIM_REC_COUNT, 0, 0, 0}
#define FEEDS(t, id, Rec, field)                                                                              \
    Feed{#t, t, std::size(t), sizeof(t[0]), id, offsetof(Rec, field), sizeof(((Rec *)nullptr)->field[0]),    \
         std::size(((Rec *)nullptr)->field)}

// Every per-level table of the Part, in its order: the 19 applied by Part 2.4, the 26 of the night refresh
// and the 9 VPSS sharpen tables.
const std::vector<Feed> &night_feeds()
{
    static const std::vector<Feed> feeds = {
        FEEDS(gNightEdgeSmoothThr, SIM_REC_DEMOSAIC_ATTR, ISP_DEMOSAIC_ATTR_S, stAuto.au16EdgeSmoothThr),
        FEEDS(gNightEdgeSmoothSlope, SIM_REC_DEMOSAIC_ATTR, ISP_DEMOSAIC_ATTR_S, stAuto.au16EdgeSmoothSlope),
        FEEDS(gNightAntiAliasThr, SIM_REC_DEMOSAIC_ATTR, ISP_DEMOSAIC_ATTR_S, stAuto.au16AntiAliasThr),
        FEEDS(gNightAntiAliasSlope, SIM_REC_DEMOSAIC_ATTR, ISP_DEMOSAIC_ATTR_S, stAuto.au16AntiAliasSlope),
        FEEDS(gNightNrCoarseStr, SIM_REC_DEMOSAIC_ATTR, ISP_DEMOSAIC_ATTR_S, stAuto.au16NrCoarseStr),
        FEEDS(gNightDetailEnhanceStr, SIM_REC_DEMOSAIC_ATTR, ISP_DEMOSAIC_ATTR_S, stAuto.au8DetailEnhanceStr),
        FEEDS(gNightNoiseSuppressStr, SIM_REC_DEMOSAIC_ATTR, ISP_DEMOSAIC_ATTR_S, stAuto.au16NoiseSuppressStr),
        FEEDS(gNightSharpenLumaStr, SIM_REC_DEMOSAIC_ATTR, ISP_DEMOSAIC_ATTR_S, stAuto.au16SharpenLumaStr),
        FEEDS(gNightSharpenUd, SIM_REC_SHARPEN_ATTR, ISP_SHARPEN_ATTR_S, stAuto.au16SharpenUd),
        FEEDS(gNightSharpenD, SIM_REC_SHARPEN_ATTR, ISP_SHARPEN_ATTR_S, stAuto.au8SharpenD),
        FEEDS(gNightTextureThr, SIM_REC_SHARPEN_ATTR, ISP_SHARPEN_ATTR_S, stAuto.au8TextureThr),
        FEEDS(gNightSharpenEdge, SIM_REC_SHARPEN_ATTR, ISP_SHARPEN_ATTR_S, stAuto.au8SharpenEdge),
        FEEDS(gNightEdgeThr, SIM_REC_SHARPEN_ATTR, ISP_SHARPEN_ATTR_S, stAuto.au8EdgeThr),
        FEEDS(gNightOverShoot, SIM_REC_SHARPEN_ATTR, ISP_SHARPEN_ATTR_S, stAuto.au8OverShoot),
        FEEDS(gNightUnderShoot, SIM_REC_SHARPEN_ATTR, ISP_SHARPEN_ATTR_S, stAuto.au8UnderShoot),
        FEEDS(gNightshootSupStr, SIM_REC_SHARPEN_ATTR, ISP_SHARPEN_ATTR_S, stAuto.au8shootSupStr),
        FEEDS(gNightDetailCtrl, SIM_REC_SHARPEN_ATTR, ISP_SHARPEN_ATTR_S, stAuto.au8DetailCtrl),
        FEEDS(gNightStrength, SIM_REC_DP_DYNAMIC_ATTR, ISP_DP_DYNAMIC_ATTR_S, stAuto.au16Strength),
        FEEDS(gNightBlendRatio, SIM_REC_DP_DYNAMIC_ATTR, ISP_DP_DYNAMIC_ATTR_S, stAuto.au16BlendRatio),
        TABLE_ONLY(gNightDefog), TABLE_ONLY(gNightDRCStrength),
        TABLE_ONLY(g_3dnr_SBS0_night), TABLE_ONLY(g_3dnr_SBS1_night), TABLE_ONLY(g_3dnr_SBS2_night),
        TABLE_ONLY(g_3dnr_SBS3_night), TABLE_ONLY(g_3dnr_SDS0_night), TABLE_ONLY(g_3dnr_SDS1_night),
        TABLE_ONLY(g_3dnr_SDS2_night), TABLE_ONLY(g_3dnr_SDS3_night), TABLE_ONLY(g_3dnr_STH0_night),
        TABLE_ONLY(g_3dnr_STH1_night), TABLE_ONLY(g_3dnr_STH2_night), TABLE_ONLY(g_3dnr_STH3_night),
        TABLE_ONLY(g_3dnr_MDP_night), TABLE_ONLY(g_3dnr_Pro3_night), TABLE_ONLY(g_3dnr_MDDZ1_night),
        TABLE_ONLY(g_3dnr_MDDZ2_night), TABLE_ONLY(g_3dnr_MATH1_night), TABLE_ONLY(g_3dnr_MATH2_night),
        TABLE_ONLY(g_3dnr_TFS1_night), TABLE_ONLY(g_3dnr_TFS2_night), TABLE_ONLY(g_3dnr_SFC_night),
        TABLE_ONLY(g_3dnr_TFC_night), TABLE_ONLY(g_3dnr_TPC_night), TABLE_ONLY(g_3dnr_TRC_night),
        TABLE_ONLY(gNightVPSSSharpenUd), TABLE_ONLY(gNightVPSSSharpenD), TABLE_ONLY(gNightVPSSTextureThr),
        TABLE_ONLY(gNightVPSSSharpenEdge), TABLE_ONLY(gNightVPSSEdgeThd), TABLE_ONLY(gNightVPSSOverShoot),
        TABLE_ONLY(gNightVPSSUnderShoot), TABLE_ONLY(gNightVPSSShootSupStr), TABLE_ONLY(gNightVPSSDetailCtrl),
    };
    return feeds;
}

uint32_t load(const void *base, size_t elem, size_t i)
{
    const unsigned char *p = static_cast<const unsigned char *>(base) + i * elem;
    if (elem == 1)
        return *p;
    uint16_t v;
    std::memcpy(&v, p, 2);
    return v;
}

void store(void *base, size_t elem, size_t i, uint32_t v)
{
    unsigned char *p = static_cast<unsigned char *>(base) + i * elem;
    if (elem == 1) {
        *p = uint8_t(v);
    } else {
        uint16_t w = uint16_t(v);
        std::memcpy(p, &w, 2);
    }
}

// The 24 night noise-reduction tables in the record's field order, as g_3dnr_tables_night must hold them.
struct NrTable {
    const char *field;
    const uint8_t *table;
    const uint8_t *IspNrTables::*member;
};
#define NR(f) NrTable{#f, g_3dnr_##f##_night, &IspNrTables::f}
const NrTable kNightNr[24] = {NR(SBS0), NR(SBS1), NR(SBS2),  NR(SBS3),  NR(SDS0), NR(SDS1), NR(SDS2), NR(SDS3),
                              NR(STH0), NR(STH1), NR(STH2),  NR(STH3),  NR(MDP),  NR(Pro3), NR(MATH1), NR(MATH2),
                              NR(MDDZ1), NR(MDDZ2), NR(TFS1), NR(TFS2), NR(SFC),  NR(TFC),  NR(TPC),  NR(TRC)};

bool same_values(const uint8_t *a, const uint8_t *b) { return std::memcmp(a, b, ISP_LEVEL_COUNT) == 0; }

} // namespace

// ---- Edge cases worth testing (Part 2.2) --------------------------------------------------------------

TEST(NightTables, EveryPerLevelTableYields12Values)
{
    ASSERT_EQ(night_feeds().size(), 19u + 26u + 9u);
    for (const Feed &f : night_feeds()) {
        EXPECT_EQ(f.count, size_t(ISP_LEVEL_COUNT)) << f.name;
        EXPECT_EQ(f.count * f.elem, f.elem == 1 ? 12u : 24u) << f.name;
    }
}

TEST(NightTables, CopiedInto16EntryArrayLeavesEntries12To15AsThePlatformReturnedThem)
{
    for (const Feed &f : night_feeds()) {
        if (f.record == SIM_REC_COUNT)
            continue;
        ASSERT_EQ(f.field_count, 16u) << f.name;
        std::vector<unsigned char> before(sim_mpp_record_size(f.record));
        sim_mpp_power_on_record(f.record, before.data());
        std::vector<unsigned char> after = before;
        for (size_t i = 0; i < f.count; ++i)
            store(after.data() + f.field_offset, f.field_elem, i, load(f.table, f.elem, i));
        for (size_t i = 0; i < 12; ++i)
            EXPECT_EQ(load(after.data() + f.field_offset, f.field_elem, i), load(f.table, f.elem, i)) << f.name;
        for (size_t i = 12; i < 16; ++i)
            EXPECT_EQ(load(after.data() + f.field_offset, f.field_elem, i),
                      load(before.data() + f.field_offset, f.field_elem, i))
                << f.name << " entry " << i;
        EXPECT_LE(load(f.table, f.elem, 0), f.field_elem == 1 ? 0xFFu : 0xFFFFu) << f.name;
    }
}

// "Several 3DNR tables hold equal values: ... They stay separate tables, each feeding its own parameter."
TEST(NightTables, SeveralThreeDnrTablesHoldEqualValuesButStaySeparateTables)
{
    // The groups the Part names; every other pair of the 24 tables differs.
    const std::vector<std::vector<std::string>> groups = {
        {"STH0", "STH1", "STH2", "STH3"}, {"MDDZ1", "MDDZ2"}, {"MATH1", "MATH2"}, {"TFS1", "TFS2"},
        {"SBS0", "SDS0"}, {"SBS1", "SDS2"}, {"SBS2", "SDS1"}, {"SBS3", "SDS3"}, {"SFC", "TRC"},
        {"TFC", "TPC"}};
    auto group_of = [&](const std::string &field) -> int {
        for (size_t g = 0; g < groups.size(); ++g)
            for (const std::string &f : groups[g])
                if (f == field)
                    return int(g);
        return -1;
    };
    for (const NrTable &a : kNightNr)
        for (const NrTable &b : kNightNr) {
            if (&a == &b)
                continue;
            EXPECT_NE(a.table, b.table) << a.field << " and " << b.field << " must be separate tables";
            int ga = group_of(a.field), gb = group_of(b.field);
            EXPECT_EQ(same_values(a.table, b.table), ga >= 0 && ga == gb) << a.field << " vs " << b.field;
        }
}

TEST(NightTables, CopiedWeightGridSumsTo545Over255Zones)
{
    ISP_EXPOSURE_ATTR_S exposure;
    sim_mpp_power_on_record(SIM_REC_EXPOSURE_ATTR, &exposure);
    for (int r = 0; r < 15; ++r)
        for (int c = 0; c < 17; ++c)
            exposure.stAuto.au8Weight[r][c] = uint8_t(gNightAEWeightTable[r * 17 + c]);
    int sum = 0, zones = 0;
    for (int r = 0; r < 15; ++r)
        for (int c = 0; c < 17; ++c, ++zones)
            sum += exposure.stAuto.au8Weight[r][c];
    EXPECT_EQ(zones, 255);
    EXPECT_EQ(sum, 545);
    EXPECT_EQ(sizeof gNightAEWeightTable, 1020u);
}

TEST(NightTables, CopiedNightColourMatrixIsIdentityInRawUnits)
{
    ISP_COLORMATRIX_ATTR_S ccm;
    sim_mpp_power_on_record(SIM_REC_CCM_ATTR, &ccm);
    for (int i = 0; i < 9; ++i)
        ccm.stManual.au16CCM[i] = g_ccm_table_night[i];
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            EXPECT_EQ(ccm.stManual.au16CCM[3 * r + c], r == c ? 1 : 0) << "row " << r << " column " << c;
    EXPECT_NE(g_ccm_table_night[0], 0x0100); // raw 1, not +1.0 in 1/256 units
    EXPECT_EQ(sizeof g_ccm_table_night, 18u);
}

// ---- Data model -------------------------------------------------------------------------------------

// The weight grid, zone by zone, against the Part's runs table (rows, inclusive columns, weight).
TEST(NightTables, WeightGridFollowsTheRunsTable)
{
    struct Run {
        int first_row, last_row, first_col, last_col, weight;
    };
    const Run runs[] = {{4, 5, 5, 11, 2}, {6, 6, 4, 12, 2}, {7, 8, 4, 12, 3}, {9, 9, 3, 13, 3},
                        {10, 11, 3, 13, 4}, {12, 12, 2, 14, 4}, {13, 14, 2, 14, 5}};
    for (int r = 0; r < 15; ++r)
        for (int c = 0; c < 17; ++c) {
            uint32_t want = 1;
            for (const Run &run : runs)
                if (r >= run.first_row && r <= run.last_row && c >= run.first_col && c <= run.last_col)
                    want = uint32_t(run.weight);
            EXPECT_EQ(gNightAEWeightTable[r * 17 + c], want) << "row " << r << " column " << c;
        }
}

TEST(NightTables, NoiseReductionRecordPointsAtTheTablesInFieldOrder)
{
    for (const NrTable &t : kNightNr)
        EXPECT_EQ(g_3dnr_tables_night.*t.member, t.table) << t.field;
    // The record's pointers are laid out in the noise-reduction record's field order (Part 3.1).
    const uint8_t *const *slots = reinterpret_cast<const uint8_t *const *>(&g_3dnr_tables_night);
    ASSERT_EQ(sizeof g_3dnr_tables_night, 24 * sizeof(const uint8_t *));
    for (int i = 0; i < 24; ++i)
        EXPECT_EQ(slots[i], kNightNr[i].table) << kNightNr[i].field;
}

TEST(NightTables, ScalarsEqualTheColourProfiles)
{
    EXPECT_EQ(gNightCompensation, gColorCompensation);
    EXPECT_EQ(gNightAGainRangeMax, gColorAGainRangeMax);
    EXPECT_EQ(gNightDGainRangeMax, gColorDGainRangeMax);
    EXPECT_EQ(gNightISPDGainRangeMax, gColorISPDGainRangeMax);
    EXPECT_EQ(gNightAGainRangeMax, uint32_t(15.5 * 1024));
    EXPECT_EQ(gNightDGainRangeMax, 1024u);
    EXPECT_EQ(gNightISPDGainRangeMax, 4096u);
    EXPECT_EQ(gNightCompensation, 50u);
}

TEST(NightTables, PerLevelSpotValues)
{
    for (int i = 0; i < 12; ++i) {
        EXPECT_EQ(gNightAntiAliasThr[i], 1022); // the one value above 255: needs the u16 element
        EXPECT_EQ(gNightEdgeSmoothThr[i], 128);
        EXPECT_EQ(gNightStrength[i], 255);
        EXPECT_EQ(gNightBlendRatio[i], 0);
        EXPECT_EQ(g_3dnr_MDP_night[i], 2);
        EXPECT_EQ(g_3dnr_Pro3_night[i], 0);
    }
    EXPECT_EQ(gNightTextureThr[7], 0);
    EXPECT_EQ(gNightTextureThr[8], 1);
    EXPECT_EQ(gNightSharpenEdge[7], 20);
    EXPECT_EQ(gNightDefog[7], 40);
    EXPECT_EQ(gNightDefog[8], 140);
    EXPECT_EQ(gNightDRCStrength[0], 30);
    EXPECT_EQ(gNightDRCStrength[8], 0);
    EXPECT_EQ(g_3dnr_SBS0_night[7], 255);
    EXPECT_EQ(g_3dnr_SBS1_night[8], 60);
    EXPECT_EQ(g_3dnr_SFC_night[2], 196);
    EXPECT_EQ(g_3dnr_SFC_night[3], 255);
    EXPECT_EQ(gNightVPSSSharpenUd[5], 8);
    EXPECT_EQ(gNightVPSSDetailCtrl[5], 69);
}

// The night refresh (Part 3.3) interpolates the 3DNR, defog and DRC tables: at G = 1 every field takes
// entry 0, and at G = 62 (L = 5) T[5] + floor((T[6] - T[5]) * 30 / 32) (Part 3.1).
TEST(NightTables, NightRefreshTablesInterpolateAsPart31Says)
{
    EXPECT_EQ(ISP_GainLevelInterp(g_3dnr_SBS0_night, 1, 0), 190u);
    EXPECT_EQ(ISP_GainLevelInterp(g_3dnr_SFC_night, 1, 0), 196u);
    EXPECT_EQ(ISP_GainLevelInterp(gNightDefog, 1, 0), 80u);
    // SBS1 at G = 62: 80 + floor(20 * 30 / 32) = 98; DRC stays 25; SBS3 80 + floor(40 * 30 / 32) = 117.
    EXPECT_EQ(ISP_GainLevelInterp(g_3dnr_SBS1_night, 62, 5), 98u);
    EXPECT_EQ(ISP_GainLevelInterp(gNightDRCStrength, 62, 5), 25u);
    EXPECT_EQ(ISP_GainLevelInterp(g_3dnr_SBS3_night, 62, 5), 117u);
}

TEST(NightTables, CopiedGammaCurveStartsAt0AndEndsAt4095)
{
    ISP_GAMMA_ATTR_S gamma;
    sim_mpp_power_on_record(SIM_REC_GAMMA_ATTR, &gamma);
    for (int n = 0; n < 257; ++n)
        gamma.u16Table[n] = uint16_t(g_gamma_table_night[n]);
    EXPECT_EQ(gamma.u16Table[0], 0);
    EXPECT_EQ(gamma.u16Table[256], 4095);
    EXPECT_EQ(sizeof g_gamma_table_night, 1028u);
}
