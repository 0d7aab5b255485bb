// Part 2.1: the colour profile tables. Checked by shape, by the properties the Part states and by spot
// values from the spec; the tables are never typed out again here.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <type_traits>
#include <vector>

extern "C" {
#include "isptune.h"
#include "profiles/profiles.h"
#include "refresh/refresh.h"
#include "sim_mpp.h"
}

namespace {

// Element types are part of the interface (Part 2.1): u8 tables 12 bytes, u16 tables 24 bytes.
template <typename T, typename A> constexpr bool element_is = std::is_same_v<std::remove_extent_t<A>, const T>;
static_assert(element_is<uint8_t, decltype(gColorSatAttr)>);
static_assert(element_is<uint8_t, decltype(gColorAnFCStrength)>);
static_assert(element_is<uint8_t, decltype(gColorAnFCThreshold)>);
static_assert(element_is<uint8_t, decltype(gColorAnFCOffset)>); // u8 although its field is 16-bit
static_assert(element_is<uint16_t, decltype(gColorEdgeSmoothThr)>);
static_assert(element_is<uint16_t, decltype(gColorEdgeSmoothSlope)>);
static_assert(element_is<uint16_t, decltype(gColorAntiAliasThr)>);
static_assert(element_is<uint16_t, decltype(gColorAntiAliasSlope)>);
static_assert(element_is<uint16_t, decltype(gColorNrCoarseStr)>);
static_assert(element_is<uint8_t, decltype(gColorDetailEnhanceStr)>);
static_assert(element_is<uint16_t, decltype(gColorNoiseSuppressStr)>);
static_assert(element_is<uint16_t, decltype(gColorSharpenLumaStr)>);
static_assert(element_is<uint16_t, decltype(gColorSharpenUd)>);
static_assert(element_is<uint8_t, decltype(gColorSharpenD)>);
static_assert(element_is<uint8_t, decltype(gColorTextureThr)>);
static_assert(element_is<uint8_t, decltype(gColorSharpenEdge)>);
static_assert(element_is<uint8_t, decltype(gColorEdgeThr)>);
static_assert(element_is<uint8_t, decltype(gColorOverShoot)>);
static_assert(element_is<uint8_t, decltype(gColorUnderShoot)>);
static_assert(element_is<uint8_t, decltype(gColorshootSupStr)>);
static_assert(element_is<uint8_t, decltype(gColorDetailCtrl)>);
static_assert(element_is<uint16_t, decltype(gColorStrength)>);
static_assert(element_is<uint16_t, decltype(gColorBlendRatio)>);
static_assert(element_is<uint8_t, decltype(gColorDefog)>);
static_assert(element_is<uint8_t, decltype(gColorDRCStrength)>);
static_assert(element_is<uint16_t, decltype(gColorHighCCM)> && std::size(gColorHighCCM) == 9);
static_assert(element_is<uint16_t, decltype(gColorMidCCM)> && std::size(gColorMidCCM) == 9);
static_assert(element_is<uint16_t, decltype(gColorLowCCM)> && std::size(gColorLowCCM) == 9);
static_assert(element_is<uint32_t, decltype(gColorAEWeightTable)> && std::size(gColorAEWeightTable) == 255);
static_assert(element_is<uint32_t, decltype(g_gamma_table_day)> && std::size(g_gamma_table_day) == 257);
static_assert(std::is_same_v<decltype(gColorCCMHighColorTemp), const uint16_t>);
static_assert(std::is_same_v<decltype(gColorAWBHighColorTemp), const uint16_t>);
static_assert(std::is_same_v<decltype(gColorCompensation), const uint32_t>);
static_assert(std::is_same_v<decltype(gColorISPDGainRangeMax), const uint32_t>);

// A per-level table and the 16-entry automatic array of the platform record it feeds.
struct Feed {
    const char *name;
    const void *table;
    size_t count, elem;               // entries and element size of the table
    sim_mpp_record_id record;         // the record holding the field, -1 for a refresh-only table
    size_t field_offset, field_elem;  // where the field's array starts, its element size
    size_t field_count;
};

#define TABLE_ONLY(t) Feed{#t, t, std::size(t), sizeof(t[0]), SIM_REC_COUNT, 0, 0, 0}
#define FEEDS(t, id, Rec, field)                                                                              \
    Feed{#t, t, std::size(t), sizeof(t[0]), id, offsetof(Rec, field), sizeof(((Rec *)nullptr)->field[0]),    \
         std::size(((Rec *)nullptr)->field)}

// Every per-level table of the Part, in its order, with the member it feeds.
const std::vector<Feed> &colour_feeds()
{
    static const std::vector<Feed> feeds = {
        FEEDS(gColorSatAttr, SIM_REC_SATURATION_ATTR, ISP_SATURATION_ATTR_S, stAuto.au8Sat),
        FEEDS(gColorAnFCStrength, SIM_REC_ANTI_FALSECOLOR, ISP_ANTI_FALSECOLOR_S, stAuto.au8Strength),
        FEEDS(gColorAnFCThreshold, SIM_REC_ANTI_FALSECOLOR, ISP_ANTI_FALSECOLOR_S, stAuto.au8Threshold),
        FEEDS(gColorAnFCOffset, SIM_REC_ANTI_FALSECOLOR, ISP_ANTI_FALSECOLOR_S, stAuto.au16Offset),
        FEEDS(gColorEdgeSmoothThr, SIM_REC_DEMOSAIC_ATTR, ISP_DEMOSAIC_ATTR_S, stAuto.au16EdgeSmoothThr),
        FEEDS(gColorEdgeSmoothSlope, SIM_REC_DEMOSAIC_ATTR, ISP_DEMOSAIC_ATTR_S, stAuto.au16EdgeSmoothSlope),
        FEEDS(gColorAntiAliasThr, SIM_REC_DEMOSAIC_ATTR, ISP_DEMOSAIC_ATTR_S, stAuto.au16AntiAliasThr),
        FEEDS(gColorAntiAliasSlope, SIM_REC_DEMOSAIC_ATTR, ISP_DEMOSAIC_ATTR_S, stAuto.au16AntiAliasSlope),
        FEEDS(gColorNrCoarseStr, SIM_REC_DEMOSAIC_ATTR, ISP_DEMOSAIC_ATTR_S, stAuto.au16NrCoarseStr),
        FEEDS(gColorDetailEnhanceStr, SIM_REC_DEMOSAIC_ATTR, ISP_DEMOSAIC_ATTR_S, stAuto.au8DetailEnhanceStr),
        FEEDS(gColorNoiseSuppressStr, SIM_REC_DEMOSAIC_ATTR, ISP_DEMOSAIC_ATTR_S, stAuto.au16NoiseSuppressStr),
        FEEDS(gColorSharpenLumaStr, SIM_REC_DEMOSAIC_ATTR, ISP_DEMOSAIC_ATTR_S, stAuto.au16SharpenLumaStr),
        FEEDS(gColorSharpenUd, SIM_REC_SHARPEN_ATTR, ISP_SHARPEN_ATTR_S, stAuto.au16SharpenUd),
        FEEDS(gColorSharpenD, SIM_REC_SHARPEN_ATTR, ISP_SHARPEN_ATTR_S, stAuto.au8SharpenD),
        FEEDS(gColorTextureThr, SIM_REC_SHARPEN_ATTR, ISP_SHARPEN_ATTR_S, stAuto.au8TextureThr),
        FEEDS(gColorSharpenEdge, SIM_REC_SHARPEN_ATTR, ISP_SHARPEN_ATTR_S, stAuto.au8SharpenEdge),
        FEEDS(gColorEdgeThr, SIM_REC_SHARPEN_ATTR, ISP_SHARPEN_ATTR_S, stAuto.au8EdgeThr),
        FEEDS(gColorOverShoot, SIM_REC_SHARPEN_ATTR, ISP_SHARPEN_ATTR_S, stAuto.au8OverShoot),
        FEEDS(gColorUnderShoot, SIM_REC_SHARPEN_ATTR, ISP_SHARPEN_ATTR_S, stAuto.au8UnderShoot),
        FEEDS(gColorshootSupStr, SIM_REC_SHARPEN_ATTR, ISP_SHARPEN_ATTR_S, stAuto.au8shootSupStr),
        FEEDS(gColorDetailCtrl, SIM_REC_SHARPEN_ATTR, ISP_SHARPEN_ATTR_S, stAuto.au8DetailCtrl),
        FEEDS(gColorStrength, SIM_REC_DP_DYNAMIC_ATTR, ISP_DP_DYNAMIC_ATTR_S, stAuto.au16Strength),
        FEEDS(gColorBlendRatio, SIM_REC_DP_DYNAMIC_ATTR, ISP_DP_DYNAMIC_ATTR_S, stAuto.au16BlendRatio),
        TABLE_ONLY(gColorDefog),
        TABLE_ONLY(gColorDRCStrength),
    };
    return feeds;
}

uint32_t load(const void *base, size_t elem, size_t i)
{
    const unsigned char *p = static_cast<const unsigned char *>(base) + i * elem;
    if (elem == 1)
        return *p;
    if (elem == 2) {
        uint16_t v;
        std::memcpy(&v, p, 2);
        return v;
    }
    uint32_t v;
    std::memcpy(&v, p, 4);
    return v;
}

void store(void *base, size_t elem, size_t i, uint32_t v) // truncates to the field's width
{
    unsigned char *p = static_cast<unsigned char *>(base) + i * elem;
    if (elem == 1) {
        *p = uint8_t(v);
    } else {
        uint16_t w = uint16_t(v);
        std::memcpy(p, &w, 2);
    }
}

// What a profile does with a table: read the record (power-on values in all 16 entries), copy the table
// into the field entry by entry, widening or truncating. Returns the record before and after.
struct Copied {
    std::vector<unsigned char> before, after;
};
Copied copy_into_record(const Feed &f)
{
    Copied c;
    c.before.resize(sim_mpp_record_size(f.record));
    sim_mpp_power_on_record(f.record, c.before.data());
    c.after = c.before;
    for (size_t i = 0; i < f.count; ++i)
        store(c.after.data() + f.field_offset, f.field_elem, i, load(f.table, f.elem, i));
    return c;
}

int decode_sign_magnitude(uint16_t word)
{
    int magnitude = word & 0x7FFF;
    return (word & 0x8000) ? -magnitude : magnitude;
}

} // namespace

// ---- Edge cases worth testing (Part 2.1) --------------------------------------------------------------

TEST(ColourTables, EveryPerLevelTableYields12Values)
{
    ASSERT_EQ(colour_feeds().size(), 25u); // the Part's 25 per-level tables
    size_t u8_tables = 0, u16_tables = 0;
    for (const Feed &f : colour_feeds()) {
        EXPECT_EQ(f.count, size_t(ISP_LEVEL_COUNT)) << f.name;
        EXPECT_EQ(f.count * f.elem, f.elem == 1 ? 12u : 24u) << f.name;
        (f.elem == 1 ? u8_tables : u16_tables)++;
    }
    // "gColorSharpenUd and the nine demosaic and defect-pixel u16 tables are 24 bytes long, every u8 table
    // 12 bytes."
    EXPECT_EQ(u16_tables, 10u);
    EXPECT_EQ(u8_tables, 15u);
}

TEST(ColourTables, CopiedInto16EntryArrayLeavesEntries12To15AsThePlatformReturnedThem)
{
    for (const Feed &f : colour_feeds()) {
        if (f.record == SIM_REC_COUNT)
            continue;
        ASSERT_EQ(f.field_count, 16u) << f.name;
        Copied c = copy_into_record(f);
        const unsigned char *before = c.before.data() + f.field_offset, *after = c.after.data() + f.field_offset;
        for (size_t i = 0; i < 12; ++i)
            EXPECT_EQ(load(after, f.field_elem, i), load(f.table, f.elem, i)) << f.name << " entry " << i;
        for (size_t i = 12; i < 16; ++i)
            EXPECT_EQ(load(after, f.field_elem, i), load(before, f.field_elem, i)) << f.name << " entry " << i;
        // Nothing outside the field changes.
        EXPECT_EQ(std::memcmp(c.before.data(), c.after.data(), f.field_offset), 0) << f.name;
        size_t end = f.field_offset + f.field_count * f.field_elem;
        EXPECT_EQ(std::memcmp(c.before.data() + end, c.after.data() + end, c.before.size() - end), 0) << f.name;
    }
}

TEST(ColourTables, NoTableValueNeedsMoreBitsThanItsField)
{
    for (const Feed &f : colour_feeds()) {
        uint32_t limit = f.record == SIM_REC_COUNT ? 0xFF : (f.field_elem == 1 ? 0xFF : 0xFFFF);
        for (size_t i = 0; i < f.count; ++i)
            EXPECT_LE(load(f.table, f.elem, i), limit) << f.name << " entry " << i;
    }
}

TEST(ColourTables, AnFCOffsetCopiedIntoSixteenBitOffsetArrayGivesZeroInEntries0To11)
{
    const Feed *offset = nullptr;
    for (const Feed &f : colour_feeds())
        if (std::strcmp(f.name, "gColorAnFCOffset") == 0)
            offset = &f;
    ASSERT_NE(offset, nullptr);
    EXPECT_EQ(offset->elem, 1u);       // u8 table ...
    EXPECT_EQ(offset->field_elem, 2u); // ... widened into the 16-bit au16Offset
    Copied c = copy_into_record(*offset);
    ISP_ANTI_FALSECOLOR_S before, after;
    std::memcpy(&before, c.before.data(), sizeof before);
    std::memcpy(&after, c.after.data(), sizeof after);
    for (int i = 0; i < 12; ++i)
        EXPECT_EQ(after.stAuto.au16Offset[i], 0) << "entry " << i;
    for (int i = 12; i < 16; ++i)
        EXPECT_EQ(after.stAuto.au16Offset[i], before.stAuto.au16Offset[i]) << "entry " << i;
}

TEST(ColourTables, EachCcmRowDecodedFromSignMagnitudeSumsTo256)
{
    for (const uint16_t *ccm : {gColorHighCCM, gColorMidCCM, gColorLowCCM})
        for (int row = 0; row < 3; ++row)
            EXPECT_EQ(decode_sign_magnitude(ccm[3 * row]) + decode_sign_magnitude(ccm[3 * row + 1]) +
                          decode_sign_magnitude(ccm[3 * row + 2]),
                      256)
                << "row " << row;
}

TEST(ColourTables, CopiedWeightTableIs15By17Ones)
{
    ISP_EXPOSURE_ATTR_S exposure;
    sim_mpp_power_on_record(SIM_REC_EXPOSURE_ATTR, &exposure);
    for (int r = 0; r < 15; ++r)
        for (int c = 0; c < 17; ++c)
            exposure.stAuto.au8Weight[r][c] = uint8_t(gColorAEWeightTable[r * 17 + c]);
    int sum = 0;
    for (int r = 0; r < 15; ++r)
        for (int c = 0; c < 17; ++c) {
            EXPECT_EQ(exposure.stAuto.au8Weight[r][c], 1) << "row " << r << " column " << c;
            sum += exposure.stAuto.au8Weight[r][c];
        }
    EXPECT_EQ(sum, 255);
    EXPECT_EQ(sizeof gColorAEWeightTable, 1020u);
}

TEST(ColourTables, CopiedGammaCurveStartsAt0AndEndsAt4095)
{
    ISP_GAMMA_ATTR_S gamma;
    sim_mpp_power_on_record(SIM_REC_GAMMA_ATTR, &gamma);
    for (int n = 0; n < 257; ++n)
        gamma.u16Table[n] = uint16_t(g_gamma_table_day[n]);
    EXPECT_EQ(gamma.u16Table[0], 0);
    EXPECT_EQ(gamma.u16Table[256], 4095);
    EXPECT_EQ(sizeof g_gamma_table_day, 1028u);
}

// ---- Data model -------------------------------------------------------------------------------------

TEST(ColourTables, CcmSpotValuesDecodeAsThePartLists)
{
    // From the "as signed values" column: first, middle and last entry of each matrix.
    EXPECT_EQ(decode_sign_magnitude(gColorHighCCM[0]), 624);
    EXPECT_EQ(decode_sign_magnitude(gColorHighCCM[4]), 466);
    EXPECT_EQ(decode_sign_magnitude(gColorHighCCM[8]), 498);
    EXPECT_EQ(decode_sign_magnitude(gColorMidCCM[1]), -167);
    EXPECT_EQ(decode_sign_magnitude(gColorMidCCM[3]), -127);
    EXPECT_EQ(decode_sign_magnitude(gColorMidCCM[8]), 559);
    EXPECT_EQ(decode_sign_magnitude(gColorLowCCM[2]), -90);
    EXPECT_EQ(decode_sign_magnitude(gColorLowCCM[7]), -510);
    EXPECT_EQ(decode_sign_magnitude(gColorLowCCM[8]), 867);
    // The encoding: 0x0100 is +1.0 and 0x8100 -1.0.
    EXPECT_EQ(decode_sign_magnitude(0x0100), 256);
    EXPECT_EQ(decode_sign_magnitude(0x8100), -256);
}

TEST(ColourTables, CcmDiagonalsArePositiveAndOffDiagonalsNegative)
{
    for (const uint16_t *ccm : {gColorHighCCM, gColorMidCCM, gColorLowCCM})
        for (int i = 0; i < 9; ++i)
            EXPECT_EQ((ccm[i] & 0x8000) == 0, i % 4 == 0) << "entry " << i;
}

TEST(ColourTables, ScalarsMatchTheirMeaning)
{
    // Colour temperatures of the three matrices and the white-balance range.
    EXPECT_EQ(gColorCCMHighColorTemp, 4950);
    EXPECT_EQ(gColorCCMMidColorTemp, 3650);
    EXPECT_EQ(gColorCCMLowColorTemp, 2700);
    EXPECT_EQ(gColorAWBLowColorTemp, 2300);
    EXPECT_EQ(gColorAWBHighColorTemp, 10000);
    EXPECT_LT(gColorAWBLowColorTemp, gColorCCMLowColorTemp);
    EXPECT_GT(gColorAWBHighColorTemp, gColorCCMHighColorTemp);
    // Gain ceilings in 10-bit fixed point: 15.5x, 1x, 4x.
    EXPECT_EQ(gColorAGainRangeMax, uint32_t(15.5 * 1024));
    EXPECT_EQ(gColorDGainRangeMax, 1u * 1024);
    EXPECT_EQ(gColorISPDGainRangeMax, 4u * 1024);
    EXPECT_EQ(gColorCompensation, 50u);
}

TEST(ColourTables, PerLevelSpotValues)
{
    // A few entries read off the Part's table, at both ends and where the tables step.
    EXPECT_EQ(gColorSatAttr[0], 111);
    EXPECT_EQ(gColorSatAttr[6], 58);
    EXPECT_EQ(gColorSatAttr[11], 58);
    EXPECT_EQ(gColorAnFCThreshold[3], 16);
    EXPECT_EQ(gColorAnFCThreshold[4], 18);
    EXPECT_EQ(gColorNoiseSuppressStr[0], 4);
    EXPECT_EQ(gColorNoiseSuppressStr[11], 24);
    EXPECT_EQ(gColorSharpenUd[0], 30);
    EXPECT_EQ(gColorSharpenUd[9], 6);
    EXPECT_EQ(gColorSharpenD[0], 75);
    EXPECT_EQ(gColorSharpenD[11], 50);
    EXPECT_EQ(gColorEdgeThr[4], 46);
    EXPECT_EQ(gColorOverShoot[7], 95);
    EXPECT_EQ(gColorDetailCtrl[7], 101);
    EXPECT_EQ(gColorStrength[4], 240);
    EXPECT_EQ(gColorStrength[5], 255);
    EXPECT_EQ(gColorBlendRatio[6], 58);
    EXPECT_EQ(gColorDefog[4], 160);
    EXPECT_EQ(gColorDRCStrength[3], 12);
    // Constant tables: every entry equal.
    for (int i = 0; i < 12; ++i) {
        EXPECT_EQ(gColorAnFCStrength[i], 7);
        EXPECT_EQ(gColorAntiAliasSlope[i], 256);
        EXPECT_EQ(gColorNrCoarseStr[i], 128);
        EXPECT_EQ(gColorSharpenLumaStr[i], 256);
        EXPECT_EQ(gColorTextureThr[i], 0);
    }
}

// The day refresh (Part 3.2) interpolates the two refresh-only tables; at a table point it gets the entry.
TEST(ColourTables, DayRefreshTablesInterpolateToTheirEntriesAtPowersOfTwo)
{
    for (int L = 0; L <= 5; ++L) {
        EXPECT_EQ(ISP_GainLevelInterp(gColorDefog, 1 << L, L), gColorDefog[L]);
        EXPECT_EQ(ISP_GainLevelInterp(gColorDRCStrength, 1 << L, L), gColorDRCStrength[L]);
    }
    // G = 12 at L = 3: DRC 12 + floor(-12 * 4 / 8) = 6; defog 140 + 20 * 4 / 8 = 150.
    EXPECT_EQ(ISP_GainLevelInterp(gColorDRCStrength, 12, 3), 6u);
    EXPECT_EQ(ISP_GainLevelInterp(gColorDefog, 12, 3), 150u);
}
