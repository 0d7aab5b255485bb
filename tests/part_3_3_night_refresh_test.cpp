// Part 3.3: night refresh (with the night tables of Part 2.2, Part 3.4's black levels and high-gain curve).
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "refresh_test_support.h"

namespace {

// Step order of Part 3.3, Interfaces (every block runs): gamma right after DRC, no white balance.
const Calls kFullPath = {
    "HI_MPI_VPSS_GetGrpNRSParam",   "HI_MPI_VPSS_SetGrpNRSParam",   "HI_MPI_ISP_GetDRCAttr",
    "HI_MPI_ISP_SetDRCAttr",        "HI_MPI_ISP_GetGammaAttr",      "HI_MPI_ISP_SetGammaAttr",
    "HI_MPI_ISP_GetDeFogAttr",      "HI_MPI_ISP_SetDeFogAttr",      "HI_MPI_ISP_GetBlackLevelAttr",
    "HI_MPI_ISP_SetBlackLevelAttr", "HI_MPI_ISP_GetExposureAttr",   "HI_MPI_ISP_SetExposureAttr",
};

Outcome night_refresh(int32_t G, int32_t L)
{
    return run_refresh(g_night_refresh, G, L);
}

Outcome night_refresh(int32_t G)
{
    return run_refresh(g_night_refresh, G);
}

void load_other_night_curve(int32_t G)
{
    load_other_curve(g_night_refresh, G);
}

class NightRefresh : public SimTest {};

} // namespace

// ---- the full refresh at G = 1, 12, 24, 48, 57, 62, expectations worked out by hand -----------------

namespace {

// Formula (Part 3.1): T[L] + floor((T[L+1] - T[L]) * (G - 2^L) / 2^L); night tables of Part 2.2.
// Black level 63, 73, or 0 for "as read"; high gain: g_gamma_table_night_highgain, else g_gamma_table_night.
const RefreshCase kNightCases[] = {
    // G = 1, L = 0: every field takes entry 0. DRC gNightDRCStrength[0] = 30, defog gNightDefog[0] = 80.
    {1, 0, {190, 70, 160, 50, 190, 160, 70, 50, 110, 110, 110, 110, 2, 0, 130, 130, 32, 32, 9, 9, 196, 16, 16, 196},
     30, 80, 63, false},
    // G = 12, L = 3: (12 - 8) / 8 = 4/8.
    //   SBS0, SDS0: 208 + floor(22 * 4 / 8) = 219;  SBS1, SDS2: 75 + floor(5 * 4 / 8) = 75 + 2 = 77
    //   SBS2, SDS1: 180 + floor(26 * 4 / 8) = 193;  SBS3, SDS3: 70 + floor(10 * 4 / 8) = 75
    //   STH: 120 + floor(6 * 4 / 8) = 123;  MDP 2;  Pro3 0;  MATH 136 -> 136: 136
    //   MDDZ: 64 + floor(36 * 4 / 8) = 82;  TFS 10;  SFC 255;  TFC, TPC 32;  TRC 255
    //   DRC: 30 + floor(-5 * 4 / 8) = 30 + floor(-2.5) = 27;  defog: 110 + floor(10 * 4 / 8) = 115
    {12, 3,
     {219, 77, 193, 75, 219, 193, 77, 75, 123, 123, 123, 123, 2, 0, 136, 136, 82, 82, 10, 10, 255, 32, 32, 255},
     27, 115, 63, false},
    // G = 24, L = 4: 8/16.
    //   SBS0, SDS0: 230 + floor(10 * 8 / 16) = 235;  SBS1, SDS2: 80 + 0 = 80;  SBS2, SDS1: 206 + 0 = 206
    //   SBS3, SDS3: 80 + 0 = 80;  STH: 126 + floor(4 * 8 / 16) = 128;  MATH: 136 + floor(2 * 8 / 16) = 137
    //   MDDZ: 100 + floor(20 * 8 / 16) = 110;  TFS 10;  SFC 255;  TFC, TPC 32;  TRC 255
    //   DRC: 25 -> 25: 25;  defog: 120 -> 120: 120
    {24, 4,
     {235, 80, 206, 80, 235, 206, 80, 80, 128, 128, 128, 128, 2, 0, 137, 137, 110, 110, 10, 10, 255, 32, 32, 255},
     25, 120, 63, false},
    // G = 48, L = 5: 16/32; the high-gain curve from 33 on.
    //   SBS0: 240 + floor(5 * 16 / 32) = 242;  SBS1: 80 + floor(20 * 16 / 32) = 90
    //   SBS2: 206 + floor(15 * 16 / 32) = 213;  SBS3: 80 + floor(40 * 16 / 32) = 100
    //   STH: 130 + floor(2 * 16 / 32) = 131;  MATH: 138 + floor(3 * 16 / 32) = 139
    //   MDDZ: 120 + floor(10 * 16 / 32) = 125;  TFS: 10 + floor(1 * 16 / 32) = 10;  SFC 255;  TFC 32;  TRC 255
    //   DRC 25 -> 25: 25;  defog 120 -> 120: 120
    {48, 5,
     {242, 90, 213, 100, 242, 213, 90, 100, 131, 131, 131, 131, 2, 0, 139, 139, 125, 125, 10, 10, 255, 32, 32, 255},
     25, 120, 63, true},
    // G = 57, L = 5: 25/32.
    //   SBS0: 240 + floor(125 / 32) = 243;  SBS1: 80 + floor(500 / 32) = 95;  SBS2: 206 + floor(375 / 32) = 217
    //   SBS3: 80 + floor(1000 / 32) = 111;  STH: 130 + floor(50 / 32) = 131;  MATH: 138 + floor(75 / 32) = 140
    //   MDDZ: 120 + floor(250 / 32) = 127;  TFS: 10 + floor(25 / 32) = 10
    //   DRC 25;  defog 120;  black level as read
    {57, 5,
     {243, 95, 217, 111, 243, 217, 95, 111, 131, 131, 131, 131, 2, 0, 140, 140, 127, 127, 10, 10, 255, 32, 32, 255},
     25, 120, 0, true},
    // G = 62, L = 5: 30/32.
    //   SBS0: 240 + floor(150 / 32) = 244;  SBS1: 80 + floor(600 / 32) = 98;  SBS2: 206 + floor(450 / 32) = 220
    //   SBS3: 80 + floor(1200 / 32) = 117;  STH: 130 + floor(60 / 32) = 131;  MATH: 138 + floor(90 / 32) = 140
    //   MDDZ: 120 + floor(300 / 32) = 129;  TFS: 10 + floor(30 / 32) = 10
    //   DRC 25;  defog 120;  black level 73
    {62, 5,
     {244, 98, 220, 117, 244, 220, 98, 117, 131, 131, 131, 131, 2, 0, 140, 140, 129, 129, 10, 10, 255, 32, 32, 255},
     25, 120, 73, true},
};

class NightRefreshSequence : public SimTestWithParam<std::tuple<RefreshCase, bool>> {};

} // namespace

TEST_P(NightRefreshSequence, CallsAndRecordsMatchTheHandComputedValues)
{
    const RefreshCase &c = std::get<0>(GetParam());
    const bool blc = std::get<1>(GetParam());
    ASSERT_EQ(level_of(c.G), c.L);
    load_other_night_curve(c.G);
    seed_exposure();
    sim_host_set_field(SYSINFO_u8BlcEnable, blc ? 1 : 0);
    sim_host_set_field(SYSINFO_u8BlcLevel, 2);

    Outcome run = night_refresh(c.G, c.L);

    expect_clean_run(run, blc ? kFullPath : without(kFullPath, kExposureCalls),
                     black_level_lines(c.G, c.black));
    expect_case_records(g_night_refresh, c);
    if (blc) { // strategy row 2: mode 1, slope 256, offset 255
        EXPECT_WRITTEN(ISP_EXPOSURE_ATTR_S, "HI_MPI_ISP_SetExposureAttr", expected_exposure(1, 256, 255));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Gains, NightRefreshSequence, ::testing::Combine(::testing::ValuesIn(kNightCases), ::testing::Bool()),
    refresh_case_name);

// ---- backlight-compensation strategy table (step 8), rows 0 to 3 -------------------------------------

namespace {

class NightRefreshStrategy : public SimTestWithParam<StrategyRow> {};

} // namespace

TEST_P(NightRefreshStrategy, BlcLevelSelectsItsRow)
{
    const StrategyRow &row = GetParam();
    seed_exposure();
    ISP_EXPOSURE_ATTR_S seeded = platform_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR);
    sim_host_set_field(SYSINFO_u8BlcEnable, 1);
    sim_host_set_field(SYSINFO_u8BlcLevel, uint8_t(row.level));
    ASSERT_EQ(night_refresh(24).result, 0);
    EXPECT_EQ(platform_calls(sim_mpp_log_count() - 2),
              (Calls{"HI_MPI_ISP_GetExposureAttr", "HI_MPI_ISP_SetExposureAttr"}));
    if (row.level >= 3) {
        EXPECT_WRITTEN(ISP_EXPOSURE_ATTR_S, "HI_MPI_ISP_SetExposureAttr", seeded);
    } else {
        EXPECT_WRITTEN(ISP_EXPOSURE_ATTR_S, "HI_MPI_ISP_SetExposureAttr",
                       expected_exposure(row.mode, row.slope, row.offset));
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, NightRefreshStrategy, ::testing::ValuesIn(kStrategyRows), strategy_row_name);

// ---- edge cases of Part 3.3 ---------------------------------------------------------------------------

TEST_F(NightRefresh, Gain32LoadsTheNightCurve)
{
    load_other_night_curve(32);
    ASSERT_EQ(night_refresh(32).result, 0);
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr", expected_gamma(g_gamma_table_night));
}

TEST_F(NightRefresh, Gain33LoadsTheHighGainCurve)
{
    load_other_night_curve(33);
    ASSERT_EQ(night_refresh(33).result, 0);
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr", expected_gamma(g_gamma_table_night_highgain));
}

TEST_F(NightRefresh, Gain54LoadsBlackLevel63)
{
    Outcome run = night_refresh(54);
    ASSERT_EQ(run.result, 0);
    EXPECT_EQ(run.out, "SYSTEM 54 !!!\n"
                       "BlackLevelTable 63 = 63 !!!\n"
                       "BlackLevelTable 63 = 63 !!!\n"
                       "BlackLevelTable 63 = 63 !!!\n"
                       "BlackLevelTable 63 = 63 !!!\n");
    EXPECT_WRITTEN(ISP_BLACK_LEVEL_S, "HI_MPI_ISP_SetBlackLevelAttr", expected_black(63));
}

TEST_F(NightRefresh, Gain55To60KeepsTheBlackLevelAsRead)
{
    for (int32_t G = 55; G <= 60; ++G) {
        Outcome run = night_refresh(G);
        ASSERT_EQ(run.result, 0);
        EXPECT_EQ(run.out, "SYSTEM " + std::to_string(G) + " !!!\n");
        EXPECT_WRITTEN(ISP_BLACK_LEVEL_S, "HI_MPI_ISP_SetBlackLevelAttr", expected_black(0)) << G;
    }
    ASSERT_EQ(night_refresh(54).result, 0); // the band keeps whichever table was written last
    ASSERT_EQ(night_refresh(59).result, 0);
    EXPECT_WRITTEN(ISP_BLACK_LEVEL_S, "HI_MPI_ISP_SetBlackLevelAttr", expected_black(63));
}

TEST_F(NightRefresh, Gain61LoadsBlackLevel73)
{
    Outcome run = night_refresh(61);
    ASSERT_EQ(run.result, 0);
    EXPECT_EQ(run.out, "SYSTEM 61 !!!\n"
                       "BlackLevelTable_60 73 = 73 !!!\n"
                       "BlackLevelTable_60 73 = 73 !!!\n"
                       "BlackLevelTable_60 73 = 73 !!!\n"
                       "BlackLevelTable_60 73 = 73 !!!\n");
    EXPECT_WRITTEN(ISP_BLACK_LEVEL_S, "HI_MPI_ISP_SetBlackLevelAttr", expected_black(73));
}

// Needs the load-time mark (-1), so a process of its own (as CTest runs every test).
TEST_F(NightRefresh, FirstRefreshWithGainOfAtLeast1AlwaysLoadsACurve)
{
    if (g_night_refresh.refreshes != 0)
        GTEST_SKIP() << "needs a fresh process: run it alone or through CTest";
    ASSERT_EQ(night_refresh(0, 0).result, 0); // G below 1: no gamma step, the mark stays -1
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), 0u);
    ASSERT_EQ(night_refresh(40).result, 0);
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr", expected_gamma(g_gamma_table_night_highgain));
}

TEST_F(NightRefresh, TwoRefreshesInTheSameGammaBandMakeNoSecondGammaCall)
{
    load_other_night_curve(33);
    ASSERT_EQ(night_refresh(33).result, 0);
    size_t first = sim_mpp_log_count();
    ASSERT_EQ(night_refresh(62).result, 0);
    // u8BlcEnable is 0: no exposure calls either
    EXPECT_EQ(platform_calls(first), without(without(kFullPath, kGammaCalls), kExposureCalls));
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_GetGammaAttr"), 1u);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), 1u);
}

TEST_F(NightRefresh, CrossingThe32To33BoundaryLoadsTheOtherCurve)
{
    expect_band_crossings_load_the_other_curve(g_night_refresh);
}

// ISP_SetParamNight (Part 2.4) loads g_gamma_table_night into the platform's gamma attribute without
// touching s32NightGammaMark; here the test puts that curve in place itself (the next test runs the profile).
TEST_F(NightRefresh, ComparesOnlyWithItsOwnMarkAfterTheProfileLoadedTheNightCurve)
{
    expect_only_its_own_mark_compared(g_night_refresh, 40, 50);
}

// The same with the real ISP_SetParamNight (Part 2.4) loading g_gamma_table_night while the mark is 1: no
// refresh anywhere in 33..62 loads a curve; G = 32 reloads the night curve and the next G >= 33 the high-gain.
TEST_F(NightRefresh, AfterTheNightProfileLoadsItsCurveTheHighGainCurveReturnsOnlyAfterGainFallsTo32AndRises)
{
    expect_profile_curve_stays_until_the_gain_leaves_the_band(g_night_refresh);
}

// Each refresh keeps its own mark: a day refresh in between changes nothing for the night.
TEST_F(NightRefresh, DayRefreshDoesNotTouchTheNightMark)
{
    load_other_night_curve(24);
    ASSERT_EQ(night_refresh(24).result, 0); // night mark 0
    {
        StdoutCapture quiet;
        ASSERT_EQ(ISP_SetParamDayRefresh(24, 4), 0);
        ASSERT_EQ(ISP_SetParamDayRefresh(57, 5), 0);
    }
    size_t before = sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr");
    ASSERT_EQ(night_refresh(24).result, 0);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), before);
}

// State and lifecycle: the mark is set before the set call, so a failed set is not retried in the band.
TEST_F(NightRefresh, FailedGammaSetIsNotRetriedUntilTheBandChanges)
{
    expect_failed_gamma_set_not_retried_in_the_band(g_night_refresh);
}

// Step 5: "when G is below 1 this step does nothing" (docs/decisions.md: such a G is not refused).
TEST_F(NightRefresh, GainBelow1SkipsTheGammaStep)
{
    load_other_night_curve(24);
    sim_host_set_field(SYSINFO_u8BlcEnable, 1);
    for (int32_t G : {0, -5}) {
        size_t first = sim_mpp_log_count();
        Outcome run = night_refresh(G, 0);
        EXPECT_EQ(run.result, 0) << G;
        EXPECT_EQ(platform_calls(first), without(kFullPath, kGammaCalls)) << G;
        EXPECT_EQ(run.out, black_level_lines(G, 63)) << G; // G <= 54
    }
}

TEST_F(NightRefresh, WdrLevelNonZeroMakesNoDrcCall)
{
    ASSERT_EQ(refresh_with(g_night_refresh, 24, {{SYSINFO_u8WdrLevel, 2}, {SYSINFO_u8BlcEnable, 1}}).result, 0);
    EXPECT_EQ(platform_calls(), without(kFullPath, kDrcCalls));
}

TEST_F(NightRefresh, SlInhibitionNonZeroMakesNoDrcCall)
{
    ASSERT_EQ(refresh_with(g_night_refresh, 24, {{SYSINFO_u8SlInhibitionEnable, 1}}).result, 0);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_GetDRCAttr"), 0u);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetDRCAttr"), 0u);
}

TEST_F(NightRefresh, BlcEnable0ReturnsRightAfterTheBlackLevel)
{
    ASSERT_EQ(refresh_with(g_night_refresh, 24, {{SYSINFO_u8BlcEnable, 0}, {SYSINFO_u8BlcLevel, 1}}).result, 0);
    EXPECT_EQ(platform_calls(), without(kFullPath, kExposureCalls));
    EXPECT_EQ(platform_calls().back(), "HI_MPI_ISP_SetBlackLevelAttr");
}

TEST_F(NightRefresh, SlInhibitionNonZeroReturnsRightAfterTheBlackLevel)
{
    ASSERT_EQ(
        refresh_with(g_night_refresh, 24, {{SYSINFO_u8BlcEnable, 1}, {SYSINFO_u8SlInhibitionEnable, 1}}).result, 0);
    EXPECT_EQ(platform_calls(), without(without(kFullPath, kExposureCalls), kDrcCalls));
}

TEST_F(NightRefresh, DefogMode1WritesTheDefogAttributeBackUnchanged)
{
    const ISP_DEFOG_ATTR_S user = seed_manual_defog(33);
    sim_host_set_field(SYSINFO_u8DefogMode, 1);
    ASSERT_EQ(night_refresh(12).result, 0);
    EXPECT_GE(last_call_of("HI_MPI_ISP_GetDeFogAttr"), 0);
    EXPECT_WRITTEN(ISP_DEFOG_ATTR_S, "HI_MPI_ISP_SetDeFogAttr", user);
}

TEST_F(NightRefresh, NoWhiteBalanceCall)
{
    sim_host_set_field(SYSINFO_u8BlcEnable, 1);
    ASSERT_EQ(night_refresh(24).result, 0);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_QueryWBInfo"), 0u);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_GetWBAttr"), 0u);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetWBAttr"), 0u);
}

// ---- step 2: the noise-reduction mode, read at every entry ----------------------------------------

TEST_F(NightRefresh, DnrModeIsReadAtEveryEntry)
{
    ASSERT_EQ(kNightCases[3].G, 48);
    expect_dnr_mode_read_at_every_entry(g_night_refresh, 48, kNightCases[3].nr);
}

// ---- refusals: no settings record, a gain level outside 0..10 (docs/decisions.md) ----------------------

TEST_F(NightRefresh, NoSettingsRecordPrintsAndReturnsMinusOneWithNoPlatformCall)
{
    expect_no_settings_record_refused(g_night_refresh);
}

TEST_F(NightRefresh, LevelOutside0To10IsRefusedWithNoPlatformCall)
{
    expect_levels_outside_0_to_10_refused(g_night_refresh);
    EXPECT_EQ(night_refresh(2047, 10).result, 0); // L = 10 is the highest the tables allow
}

// ---- every G from 1 to 62 against an independent integer computation over the library's tables ------

TEST_F(NightRefresh, EveryGainFrom1To62MatchesTheIntegerFormula)
{
    expect_every_gain_from_1_to_62_matches_the_integer_formula(g_night_refresh);
}
