// ABI of the tables (Parts 2.1, 2.2, 3.4): every exported table is in libisptune.so's dynamic symbol table
// as a defined, read-only data object of its exact size; none of the internal tables is exported.
#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <set>
#include <string>

#include "elf_symbols.h"

namespace {

// Every exported table with its size in bytes, from the Parts' element types and lengths: per-level
// tables 12 (u8) or 24 (u16), colour matrices 18, colour temperatures 2, 32-bit scalars 4, weight tables
// 1020, gamma curve 1028.
const std::map<std::string, uint64_t> kExportedTables = {
    // Part 2.1: per-level tables
    {"gColorSatAttr", 12}, {"gColorAnFCStrength", 12}, {"gColorAnFCThreshold", 12}, {"gColorAnFCOffset", 12},
    {"gColorEdgeSmoothThr", 24}, {"gColorEdgeSmoothSlope", 24}, {"gColorAntiAliasThr", 24},
    {"gColorAntiAliasSlope", 24}, {"gColorNrCoarseStr", 24}, {"gColorDetailEnhanceStr", 12},
    {"gColorNoiseSuppressStr", 24}, {"gColorSharpenLumaStr", 24}, {"gColorSharpenUd", 24},
    {"gColorSharpenD", 12}, {"gColorTextureThr", 12}, {"gColorSharpenEdge", 12}, {"gColorEdgeThr", 12},
    {"gColorOverShoot", 12}, {"gColorUnderShoot", 12}, {"gColorshootSupStr", 12}, {"gColorDetailCtrl", 12},
    {"gColorStrength", 24}, {"gColorBlendRatio", 24}, {"gColorDefog", 12}, {"gColorDRCStrength", 12},
    // Part 2.1: matrices, scalars, weights
    {"gColorHighCCM", 18}, {"gColorMidCCM", 18}, {"gColorLowCCM", 18},
    {"gColorCCMHighColorTemp", 2}, {"gColorCCMMidColorTemp", 2}, {"gColorCCMLowColorTemp", 2},
    {"gColorAWBLowColorTemp", 2}, {"gColorAWBHighColorTemp", 2},
    {"gColorCompensation", 4}, {"gColorAGainRangeMax", 4}, {"gColorDGainRangeMax", 4},
    {"gColorISPDGainRangeMax", 4}, {"gColorAEWeightTable", 1020},
    // Part 2.2: per-level tables applied by the night profile
    {"gNightEdgeSmoothThr", 24}, {"gNightEdgeSmoothSlope", 24}, {"gNightAntiAliasThr", 24},
    {"gNightAntiAliasSlope", 24}, {"gNightNrCoarseStr", 24}, {"gNightDetailEnhanceStr", 12},
    {"gNightNoiseSuppressStr", 24}, {"gNightSharpenLumaStr", 24}, {"gNightSharpenUd", 24},
    {"gNightSharpenD", 12}, {"gNightTextureThr", 12}, {"gNightSharpenEdge", 12}, {"gNightEdgeThr", 12},
    {"gNightOverShoot", 12}, {"gNightUnderShoot", 12}, {"gNightshootSupStr", 12}, {"gNightDetailCtrl", 12},
    {"gNightStrength", 24}, {"gNightBlendRatio", 24},
    // Part 2.2: per-level tables of the night refresh
    {"gNightDefog", 12}, {"gNightDRCStrength", 12},
    {"g_3dnr_SBS0_night", 12}, {"g_3dnr_SBS1_night", 12}, {"g_3dnr_SBS2_night", 12}, {"g_3dnr_SBS3_night", 12},
    {"g_3dnr_SDS0_night", 12}, {"g_3dnr_SDS1_night", 12}, {"g_3dnr_SDS2_night", 12}, {"g_3dnr_SDS3_night", 12},
    {"g_3dnr_STH0_night", 12}, {"g_3dnr_STH1_night", 12}, {"g_3dnr_STH2_night", 12}, {"g_3dnr_STH3_night", 12},
    {"g_3dnr_MDP_night", 12}, {"g_3dnr_Pro3_night", 12}, {"g_3dnr_MDDZ1_night", 12}, {"g_3dnr_MDDZ2_night", 12},
    {"g_3dnr_MATH1_night", 12}, {"g_3dnr_MATH2_night", 12}, {"g_3dnr_TFS1_night", 12}, {"g_3dnr_TFS2_night", 12},
    {"g_3dnr_SFC_night", 12}, {"g_3dnr_TFC_night", 12}, {"g_3dnr_TPC_night", 12}, {"g_3dnr_TRC_night", 12},
    // Part 2.2: VPSS sharpen tables kept for the host
    {"gNightVPSSSharpenUd", 24}, {"gNightVPSSSharpenD", 12}, {"gNightVPSSTextureThr", 12},
    {"gNightVPSSSharpenEdge", 12}, {"gNightVPSSEdgeThd", 12}, {"gNightVPSSOverShoot", 12},
    {"gNightVPSSUnderShoot", 12}, {"gNightVPSSShootSupStr", 12}, {"gNightVPSSDetailCtrl", 12},
    // Part 2.2: scalars, weights, gamma curve
    {"gNightCompensation", 4}, {"gNightAGainRangeMax", 4}, {"gNightDGainRangeMax", 4},
    {"gNightISPDGainRangeMax", 4}, {"gNightAEWeightTable", 1020}, {"g_gamma_table_night", 1028},
};

// The tables the Parts keep internal.
const std::set<std::string> kInternalTables = {
    "g_gamma_table_day", "g_ccm_table_night", // Parts 2.1, 2.2
    "g_3dnr_SBS0_day", "g_3dnr_SBS1_day", "g_3dnr_SBS2_day", "g_3dnr_SBS3_day", "g_3dnr_SDS0_day",
    "g_3dnr_SDS1_day", "g_3dnr_SDS2_day", "g_3dnr_SDS3_day", "g_3dnr_STH0_day", "g_3dnr_STH1_day",
    "g_3dnr_STH2_day", "g_3dnr_STH3_day", "g_3dnr_MDP_day", "g_3dnr_Pro3_day", "g_3dnr_MATH1_day",
    "g_3dnr_MATH2_day", "g_3dnr_MDDZ1_day", "g_3dnr_MDDZ2_day", "g_3dnr_TFS1_day", "g_3dnr_TFS2_day",
    "g_3dnr_SFC_day", "g_3dnr_TFC_day", "g_3dnr_TPC_day", "g_3dnr_TRC_day", // Part 3.4
    "g_black_level_table", "g_black_level_table_day", "g_black_level_table_60",
    "g_gamma_table_day_highgain", "g_gamma_table_night_highgain",
    "g_3dnr_tables_day", "g_3dnr_tables_night", // the records grouping the 3DNR tables
};

bool is_table_name(const std::string &name)
{
    return name.rfind("gColor", 0) == 0 || name.rfind("gNight", 0) == 0 || name.rfind("g_3dnr_", 0) == 0 ||
           name.rfind("g_gamma_table", 0) == 0 || name.rfind("g_ccm_table", 0) == 0 ||
           name.rfind("g_black_level", 0) == 0;
}

std::map<std::string, ElfSymbol> exported()
{
    std::map<std::string, ElfSymbol> out;
    for (const ElfSymbol &s : read_dynamic_symbols(ISPTUNE_SO_PATH))
        if (s.defined && s.global)
            out[s.name] = s;
    return out;
}

} // namespace

TEST(AbiTables, ExpectedListCountsEveryExportedTableOfTheParts)
{
    size_t colour = 0, night = 0;
    for (const auto &[name, size] : kExportedTables)
        (name.rfind("gColor", 0) == 0 ? colour : night)++;
    EXPECT_EQ(colour, 25u + 3 + 9 + 1); // per-level, matrices, scalars, weights
    EXPECT_EQ(night, 19u + 26 + 9 + 4 + 1 + 1); // + scalars, weights, gamma curve
}

TEST(AbiTables, EveryExportedTableIsAReadOnlyObjectOfItsExactSize)
{
    const std::map<std::string, ElfSymbol> symbols = exported();
    for (const auto &[name, size] : kExportedTables) {
        auto it = symbols.find(name);
        ASSERT_NE(it, symbols.end()) << name << " is not exported";
        const ElfSymbol &s = it->second;
        EXPECT_TRUE(s.defined) << name;
        EXPECT_TRUE(s.object) << name << " is not a data object";
        EXPECT_FALSE(s.function) << name;
        EXPECT_EQ(s.size, size) << name;
        EXPECT_FALSE(s.writable) << name << " lies in a writable section";
    }
}

TEST(AbiTables, NoInternalTableIsExported)
{
    const std::map<std::string, ElfSymbol> symbols = exported();
    for (const std::string &name : kInternalTables)
        EXPECT_EQ(symbols.count(name), 0u) << name << " is internal but exported";
}

TEST(AbiTables, NoOtherTableIsExported)
{
    for (const auto &[name, s] : exported()) {
        if (is_table_name(name)) {
            EXPECT_EQ(kExportedTables.count(name), 1u) << name << " is exported but no Part exports it";
        }
    }
}
