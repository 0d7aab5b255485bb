// Part 3.2: day refresh (with the day refresh tables of Part 3.4 and the interpolation of Part 3.1).
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "refresh_test_support.h"

namespace {

// Step order of Part 3.2, Interfaces (every block runs).
const Calls kFullPath = {
    "HI_MPI_VPSS_GetGrpNRSParam", "HI_MPI_VPSS_SetGrpNRSParam", "HI_MPI_ISP_GetDRCAttr",
    "HI_MPI_ISP_SetDRCAttr",      "HI_MPI_ISP_GetDeFogAttr",    "HI_MPI_ISP_SetDeFogAttr",
    "HI_MPI_ISP_GetBlackLevelAttr", "HI_MPI_ISP_SetBlackLevelAttr", "HI_MPI_ISP_GetGammaAttr",
    "HI_MPI_ISP_SetGammaAttr",    "HI_MPI_ISP_QueryWBInfo",     "HI_MPI_ISP_GetWBAttr",
    "HI_MPI_ISP_SetWBAttr",       "HI_MPI_ISP_GetExposureAttr", "HI_MPI_ISP_SetExposureAttr",
};

Outcome day_refresh(int32_t G, int32_t L)
{
    return run_refresh(g_day_refresh, G, L);
}

Outcome day_refresh(int32_t G)
{
    return run_refresh(g_day_refresh, G);
}

void load_other_day_curve(int32_t G)
{
    load_other_curve(g_day_refresh, G);
}

// Distinct values in the fields the white-balance and backlight steps write, so that their writes show.
void seed_wb_and_exposure()
{
    ISP_WB_ATTR_S wb = power_on_record<ISP_WB_ATTR_S>(SIM_REC_WB_ATTR);
    wb.stAuto.u8RGStrength = 10;
    wb.stAuto.u8BGStrength = 20;
    sim_mpp_write(SIM_REC_WB_ATTR, &wb);
    seed_exposure();
}

ISP_WB_ATTR_S expected_wb()
{
    ISP_WB_ATTR_S r = power_on_record<ISP_WB_ATTR_S>(SIM_REC_WB_ATTR);
    r.stAuto.u8RGStrength = 128;
    r.stAuto.u8BGStrength = 128;
    return r;
}

class DayRefresh : public SimTest {};

} // namespace

// ---- the full refresh at G = 1, 12, 24, 48, 57, 62, expectations worked out by hand -----------------

namespace {

// Formula (Part 3.1): T[L] + floor((T[L+1] - T[L]) * (G - 2^L) / 2^L); tables of Parts 3.4 and 2.1.
// Black level 64, 73, or 0 for "as read"; high gain: g_gamma_table_day_highgain, else g_gamma_table_day.
const RefreshCase kDayCases[] = {
    // G = 1, L = 0: every field takes entry 0 (Part 3.4, edge cases). DRC gColorDRCStrength[0] = 15,
    // defog gColorDefog[0] = 130.
    {1, 0, {190, 40, 120, 50, 190, 120, 40, 50, 110, 110, 110, 110, 2, 1, 122, 122, 32, 32, 8, 8, 16, 10, 10, 16},
     15, 130, 64, false},
    // G = 12, L = 3: (12 - 8) / 8 = 1/2 of the step from L3 to L4.
    //   SBS0, SDS0 210 -> 210: 210;  SBS1, SDS2: 80 + floor(-20 * 4 / 8) = 70;  SBS2, SDS1 175 -> 175: 175
    //   SBS3, SDS3 60 -> 60: 60;  STH 116 + floor(4 * 4 / 8) = 118;  MDP 2;  Pro3 1;  MATH 126 -> 126: 126
    //   MDDZ 32;  TFS 9;  SFC 16;  TFC, TPC 10;  TRC 16
    //   DRC: 12 + floor(-12 * 4 / 8) = 6;  defog: 140 + floor(20 * 4 / 8) = 150
    {12, 3, {210, 70, 175, 60, 210, 175, 70, 60, 118, 118, 118, 118, 2, 1, 126, 126, 32, 32, 9, 9, 16, 10, 10, 16},
     6, 150, 64, false},
    // G = 24, L = 4: (24 - 16) / 16 = 8/16.
    //   SBS0, SDS0: 210 + floor(15 * 8 / 16) = 210 + 7 = 217
    //   SBS1, SDS2: 60 + floor(15 * 8 / 16) = 67 (Part 3.4 edge case)
    //   SBS2, SDS1: 175 + floor(1 * 8 / 16) = 175;  SBS3, SDS3: 60 + floor(10 * 8 / 16) = 65
    //   STH0..3: 120 + floor(5 * 8 / 16) = 122;  MDP 2;  Pro3 1;  MATH: 126 + floor(2 * 8 / 16) = 127
    //   MDDZ: 32 + 0 = 32;  TFS: 9 + 0 = 9;  SFC: 16 + floor(174 * 8 / 16) = 16 + 87 = 103
    //   TFC, TPC: 10 + 0 = 10;  TRC: 16 + floor(4 * 8 / 16) = 18
    //   DRC: 0 + floor(0) = 0;  defog: 160 + floor(0) = 160
    {24, 4, {217, 67, 175, 65, 217, 175, 67, 65, 122, 122, 122, 122, 2, 1, 127, 127, 32, 32, 9, 9, 103, 10, 10, 18},
     0, 160, 64, false},
    // G = 48, L = 5: (48 - 32) / 32 = 16/32.
    //   SBS0, SDS0: 225 + floor(6 * 16 / 32) = 228;  SBS1, SDS2: 75 + floor(145 * 16 / 32) = 75 + 72 = 147
    //   SBS2, SDS1: 176 + floor(4 * 16 / 32) = 178;  SBS3, SDS3: 70 + floor(15 * 16 / 32) = 70 + 7 = 77
    //   STH: 125 + floor(10 * 16 / 32) = 130;  MATH: 128 + 0 = 128;  MDDZ: 32 + floor(32 * 16 / 32) = 48
    //   TFS 9;  SFC: 190 + floor(65 * 16 / 32) = 190 + 32 = 222 (Part 3.4 edge case)
    //   TFC, TPC: 10 + floor(22 * 16 / 32) = 21;  TRC: 20 + floor(235 * 16 / 32) = 20 + 117 = 137
    //   DRC 0;  defog: 160 + floor(-10 * 16 / 32) = 155
    {48, 5, {228, 147, 178, 77, 228, 178, 147, 77, 130, 130, 130, 130, 2, 1, 128, 128, 48, 48, 9, 9, 222, 21, 21, 137},
     0, 155, 64, false},
    // G = 57, L = 5: (57 - 32) / 32 = 25/32.
    //   SBS0: 225 + floor(150 / 32) = 229;  SBS1: 75 + floor(3625 / 32) = 75 + 113 = 188
    //   SBS2: 176 + floor(100 / 32) = 179;  SBS3: 70 + floor(375 / 32) = 81;  STH: 125 + floor(250 / 32) = 132
    //   MATH 128;  MDDZ: 32 + floor(800 / 32) = 57;  TFS 9;  SFC: 190 + floor(1625 / 32) = 240
    //   TFC, TPC: 10 + floor(550 / 32) = 27;  TRC: 20 + floor(5875 / 32) = 20 + 183 = 203
    //   DRC 0;  defog: 160 + floor(-250 / 32) = 160 - 8 = 152;  black level as read; high-gain curve
    {57, 5, {229, 188, 179, 81, 229, 179, 188, 81, 132, 132, 132, 132, 2, 1, 128, 128, 57, 57, 9, 9, 240, 27, 27, 203},
     0, 152, 0, true},
    // G = 62, L = 5: 30/32 (Part 3.1: T[5] + floor((T[6] - T[5]) * 30 / 32)).
    //   SBS0: 225 + floor(180 / 32) = 230;  SBS1: 75 + floor(4350 / 32) = 75 + 135 = 210
    //   SBS2: 176 + floor(120 / 32) = 179;  SBS3: 70 + floor(450 / 32) = 84;  STH: 125 + floor(300 / 32) = 134
    //   MATH 128;  MDDZ: 32 + 30 = 62;  TFS 9;  SFC: 190 + floor(1950 / 32) = 250
    //   TFC, TPC: 10 + floor(660 / 32) = 30;  TRC: 20 + floor(7050 / 32) = 240
    //   DRC 0;  defog: 160 + floor(-300 / 32) = 160 - 10 = 150;  black level 73; high-gain curve
    {62, 5, {230, 210, 179, 84, 230, 179, 210, 84, 134, 134, 134, 134, 2, 1, 128, 128, 62, 62, 9, 9, 250, 30, 30, 240},
     0, 150, 73, true},
};

class DayRefreshSequence : public SimTestWithParam<std::tuple<RefreshCase, bool>> {};

} // namespace

TEST_P(DayRefreshSequence, CallsAndRecordsMatchTheHandComputedValues)
{
    const RefreshCase &c = std::get<0>(GetParam());
    const bool blc = std::get<1>(GetParam());
    ASSERT_EQ(level_of(c.G), c.L);
    load_other_day_curve(c.G);
    seed_wb_and_exposure();
    sim_host_set_field(SYSINFO_u8BlcEnable, blc ? 1 : 0);
    sim_host_set_field(SYSINFO_u8BlcLevel, 1);

    Outcome run = day_refresh(c.G, c.L);

    expect_clean_run(run, blc ? kFullPath : without(kFullPath, kExposureCalls),
                     black_level_lines(c.G, c.black));
    expect_case_records(g_day_refresh, c);
    EXPECT_WRITTEN(ISP_WB_ATTR_S, "HI_MPI_ISP_SetWBAttr", expected_wb());
    if (blc) { // strategy row 1: mode 1, slope 144, offset 128
        EXPECT_WRITTEN(ISP_EXPOSURE_ATTR_S, "HI_MPI_ISP_SetExposureAttr", expected_exposure(1, 144, 128));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Gains, DayRefreshSequence, ::testing::Combine(::testing::ValuesIn(kDayCases), ::testing::Bool()),
    refresh_case_name);

// ---- backlight-compensation strategy table (step 9), rows 0 to 3 -------------------------------------

namespace {

class DayRefreshStrategy : public SimTestWithParam<StrategyRow> {};

} // namespace

TEST_P(DayRefreshStrategy, BlcLevelSelectsItsRow)
{
    const StrategyRow &row = GetParam();
    seed_wb_and_exposure();
    sim_host_set_field(SYSINFO_u8BlcEnable, 1);
    sim_host_set_field(SYSINFO_u8BlcLevel, uint8_t(row.level));
    ASSERT_EQ(day_refresh(24).result, 0);
    EXPECT_EQ(platform_calls(sim_mpp_log_count() - 2),
              (Calls{"HI_MPI_ISP_GetExposureAttr", "HI_MPI_ISP_SetExposureAttr"}));
    EXPECT_WRITTEN(ISP_EXPOSURE_ATTR_S, "HI_MPI_ISP_SetExposureAttr",
                   expected_exposure(row.mode, row.slope, row.offset));
}

INSTANTIATE_TEST_SUITE_P(Rows, DayRefreshStrategy, ::testing::ValuesIn(kStrategyRows), strategy_row_name);

// ---- edge cases of Part 3.2 ---------------------------------------------------------------------------

TEST_F(DayRefresh, Gain54LoadsDayBlackLevelAndDayCurve)
{
    load_other_day_curve(54);
    Outcome run = day_refresh(54);
    ASSERT_EQ(run.result, 0);
    EXPECT_EQ(run.out, "SYSTEM 54 !!!\n"
                       "BlackLevelTable 64 = 64 !!!\n"
                       "BlackLevelTable 64 = 64 !!!\n"
                       "BlackLevelTable 64 = 64 !!!\n"
                       "BlackLevelTable 64 = 64 !!!\n");
    EXPECT_WRITTEN(ISP_BLACK_LEVEL_S, "HI_MPI_ISP_SetBlackLevelAttr", expected_black(64));
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr", expected_gamma(g_gamma_table_day));
}

TEST_F(DayRefresh, Gain55KeepsBlackLevelAsReadAndLoadsHighGainCurve)
{
    load_other_day_curve(55);
    Outcome run = day_refresh(55);
    ASSERT_EQ(run.result, 0);
    EXPECT_EQ(run.out, "SYSTEM 55 !!!\n");
    EXPECT_WRITTEN(ISP_BLACK_LEVEL_S, "HI_MPI_ISP_SetBlackLevelAttr", expected_black(0));
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr", expected_gamma(g_gamma_table_day_highgain));
}

TEST_F(DayRefresh, Gain60KeepsBlackLevelAsRead)
{
    Outcome run = day_refresh(60);
    ASSERT_EQ(run.result, 0);
    EXPECT_EQ(run.out, "SYSTEM 60 !!!\n");
    EXPECT_WRITTEN(ISP_BLACK_LEVEL_S, "HI_MPI_ISP_SetBlackLevelAttr", expected_black(0));
}

TEST_F(DayRefresh, Gain61LoadsBlackLevel73)
{
    Outcome run = day_refresh(61);
    ASSERT_EQ(run.result, 0);
    EXPECT_EQ(run.out, "SYSTEM 61 !!!\n"
                       "BlackLevelTable_60 73 = 73 !!!\n"
                       "BlackLevelTable_60 73 = 73 !!!\n"
                       "BlackLevelTable_60 73 = 73 !!!\n"
                       "BlackLevelTable_60 73 = 73 !!!\n");
    EXPECT_WRITTEN(ISP_BLACK_LEVEL_S, "HI_MPI_ISP_SetBlackLevelAttr", expected_black(73));
}

// The four gains of the edge case in one run, with a black level seeded before each "as read" gain so that
// a write of either table would show; G = 60 stays in the high-gain band, so it makes no gamma call.
TEST_F(DayRefresh, BlackLevelAndCurveAtGains54And55And60And61)
{
    load_other_day_curve(54);
    Outcome run = day_refresh(54);
    ASSERT_EQ(run.result, 0);
    EXPECT_EQ(run.out, black_level_lines(54, 64));
    EXPECT_WRITTEN(ISP_BLACK_LEVEL_S, "HI_MPI_ISP_SetBlackLevelAttr", expected_black(64));
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr", expected_gamma(g_gamma_table_day));

    for (int32_t G : {55, 60}) {
        ISP_BLACK_LEVEL_S seeded = power_on_record<ISP_BLACK_LEVEL_S>(SIM_REC_BLACK_LEVEL);
        for (int c = 0; c < 4; ++c)
            seeded.au16BlackLevel[c] = HI_U16(G * 2 + c);
        sim_mpp_write(SIM_REC_BLACK_LEVEL, &seeded);
        const size_t gamma_sets = sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr");
        run = day_refresh(G);
        ASSERT_EQ(run.result, 0) << G;
        EXPECT_EQ(run.out, black_level_lines(G, 0)) << G;
        EXPECT_WRITTEN(ISP_BLACK_LEVEL_S, "HI_MPI_ISP_SetBlackLevelAttr", seeded) << G;
        EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), gamma_sets + (G == 55 ? 1u : 0u)) << G;
        EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr", expected_gamma(g_gamma_table_day_highgain));
    }

    run = day_refresh(61);
    ASSERT_EQ(run.result, 0);
    EXPECT_EQ(run.out, black_level_lines(61, 73));
    EXPECT_WRITTEN(ISP_BLACK_LEVEL_S, "HI_MPI_ISP_SetBlackLevelAttr", expected_black(73));
}

// "55 <= G <= 60: this band keeps whichever table was written last"; at G = 57 the high-gain curve is in
// force while the black level is whatever was written last.
TEST_F(DayRefresh, Gain55To60KeepsWhicheverBlackLevelWasWrittenLast)
{
    ASSERT_EQ(day_refresh(54).result, 0);
    ASSERT_EQ(day_refresh(57).result, 0);
    EXPECT_WRITTEN(ISP_BLACK_LEVEL_S, "HI_MPI_ISP_SetBlackLevelAttr", expected_black(64));
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr", expected_gamma(g_gamma_table_day_highgain));
    ASSERT_EQ(day_refresh(61).result, 0);
    ASSERT_EQ(day_refresh(58).result, 0);
    EXPECT_WRITTEN(ISP_BLACK_LEVEL_S, "HI_MPI_ISP_SetBlackLevelAttr", expected_black(73));
}

// Needs the load-time mark (-1), so a process of its own (as CTest runs every test).
TEST_F(DayRefresh, FirstRefreshAlwaysLoadsACurve)
{
    if (g_day_refresh.refreshes != 0)
        GTEST_SKIP() << "needs a fresh process: run it alone or through CTest";
    ASSERT_EQ(day_refresh(57).result, 0);
    EXPECT_EQ(platform_calls(), without(kFullPath, kExposureCalls));
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr", expected_gamma(g_gamma_table_day_highgain));
}

TEST_F(DayRefresh, TwoRefreshesInTheSameGammaBandMakeNoSecondGammaCall)
{
    load_other_day_curve(10);
    ASSERT_EQ(day_refresh(10).result, 0);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), 1u);
    size_t first = sim_mpp_log_count();
    ASSERT_EQ(day_refresh(54).result, 0);
    // u8BlcEnable is 0: no exposure calls either
    EXPECT_EQ(platform_calls(first), without(without(kFullPath, kGammaCalls), kExposureCalls));
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_GetGammaAttr"), 1u);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), 1u);
}

TEST_F(DayRefresh, CrossingThe54To55BoundaryLoadsTheOtherCurve)
{
    expect_band_crossings_load_the_other_curve(g_day_refresh);
}

// ISP_SetParamDay (Part 2.3) loads g_gamma_table_day into the platform's gamma attribute without touching
// s32DayGammaMark; here the test puts that curve in place itself (the next test runs the profile).
TEST_F(DayRefresh, ComparesOnlyWithItsOwnMarkAfterTheProfileLoadedTheDayCurve)
{
    expect_only_its_own_mark_compared(g_day_refresh, 57, 62);
}

// The same with the real ISP_SetParamDay (Part 2.3) loading g_gamma_table_day while the mark is 1: no
// refresh anywhere in 55..62 loads a curve; G = 54 reloads the day curve and the next G >= 55 the high-gain.
TEST_F(DayRefresh, AfterTheDayProfileLoadsItsCurveTheHighGainCurveReturnsOnlyAfterGainFallsTo54AndRises)
{
    expect_profile_curve_stays_until_the_gain_leaves_the_band(g_day_refresh);
}

// State and lifecycle: the mark is set before the set call, so a failed set is not retried in the band.
TEST_F(DayRefresh, FailedGammaSetIsNotRetriedUntilTheBandChanges)
{
    expect_failed_gamma_set_not_retried_in_the_band(g_day_refresh);
}

TEST_F(DayRefresh, WdrLevelNonZeroMakesNoDrcCall)
{
    ASSERT_EQ(refresh_with(g_day_refresh, 24, {{SYSINFO_u8WdrLevel, 3}, {SYSINFO_u8BlcEnable, 1}}).result, 0);
    EXPECT_EQ(platform_calls(), without(kFullPath, kDrcCalls));
}

TEST_F(DayRefresh, SlInhibitionNonZeroMakesNoDrcCall)
{
    ASSERT_EQ(refresh_with(g_day_refresh, 24, {{SYSINFO_u8SlInhibitionEnable, 1}}).result, 0);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_GetDRCAttr"), 0u);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetDRCAttr"), 0u);
}

TEST_F(DayRefresh, BlcEnable0ReturnsRightAfterTheWhiteBalance)
{
    ASSERT_EQ(refresh_with(g_day_refresh, 24, {{SYSINFO_u8BlcEnable, 0}, {SYSINFO_u8BlcLevel, 1}}).result, 0);
    EXPECT_EQ(platform_calls(), without(kFullPath, kExposureCalls));
    EXPECT_EQ(platform_calls().back(), "HI_MPI_ISP_SetWBAttr");
}

TEST_F(DayRefresh, SlInhibitionNonZeroReturnsRightAfterTheWhiteBalance)
{
    ASSERT_EQ(
        refresh_with(g_day_refresh, 24, {{SYSINFO_u8BlcEnable, 1}, {SYSINFO_u8SlInhibitionEnable, 1}}).result, 0);
    EXPECT_EQ(platform_calls(), without(without(kFullPath, kExposureCalls), kDrcCalls));
}

TEST_F(DayRefresh, DefogMode1WritesTheDefogAttributeBackUnchanged)
{
    const ISP_DEFOG_ATTR_S user = seed_manual_defog(33);
    sim_host_set_field(SYSINFO_u8DefogMode, 1);
    ASSERT_EQ(day_refresh(24).result, 0);
    EXPECT_GE(last_call_of("HI_MPI_ISP_GetDeFogAttr"), 0);
    EXPECT_WRITTEN(ISP_DEFOG_ATTR_S, "HI_MPI_ISP_SetDeFogAttr", user);
}

TEST_F(DayRefresh, DefogMode0And2InterpolateTheStrength)
{
    for (uint8_t mode : {0, 2}) {
        sim_host_set_field(SYSINFO_u8DefogMode, mode);
        ASSERT_EQ(day_refresh(48).result, 0);
        // 160 + floor(-10 * 16 / 32) = 155
        EXPECT_WRITTEN(ISP_DEFOG_ATTR_S, "HI_MPI_ISP_SetDeFogAttr", expected_defog(155)) << int(mode);
    }
}

TEST_F(DayRefresh, BlcLevel3WritesTheExposureAttributeBackUnchanged)
{
    seed_wb_and_exposure();
    ISP_EXPOSURE_ATTR_S seeded = platform_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR);
    sim_host_set_field(SYSINFO_u8BlcEnable, 1);
    sim_host_set_field(SYSINFO_u8BlcLevel, 3);
    ASSERT_EQ(day_refresh(24).result, 0);
    EXPECT_EQ(platform_calls(sim_mpp_log_count() - 2),
              (Calls{"HI_MPI_ISP_GetExposureAttr", "HI_MPI_ISP_SetExposureAttr"}));
    EXPECT_WRITTEN(ISP_EXPOSURE_ATTR_S, "HI_MPI_ISP_SetExposureAttr", seeded);
}

TEST_F(DayRefresh, DefogGetFailureReturnsBeforeBlackLevelGammaWhiteBalanceAndExposure)
{
    load_other_day_curve(24);
    sim_host_set_field(SYSINFO_u8BlcEnable, 1);
    sim_mpp_fail("HI_MPI_ISP_GetDeFogAttr", 1, 1, HI_ERR_ISP_NOT_INIT);
    Outcome run = day_refresh(24);
    EXPECT_EQ(run.result, -1);
    EXPECT_EQ(run.out, "HI_MPI_ISP_GetDeFogAttr failed with 0xa01c8040\n");
    EXPECT_EQ(platform_calls(), (Calls{"HI_MPI_VPSS_GetGrpNRSParam", "HI_MPI_VPSS_SetGrpNRSParam",
                                       "HI_MPI_ISP_GetDRCAttr", "HI_MPI_ISP_SetDRCAttr",
                                       "HI_MPI_ISP_GetDeFogAttr"}));
}

// ---- Part 3.4 edge cases, through the day refresh ----------------------------------------------------

TEST_F(DayRefresh, Gain1WritesEntryZeroOfEveryDayTable)
{
    ASSERT_EQ(day_refresh(1, 0).result, 0);
    NRS_PARAM_V2_S p = written_by<VPSS_GRP_NRS_PARAM_S>("HI_MPI_VPSS_SetGrpNRSParam").stNRSParam_V2;
    expect_day_level0_values(p);
}

TEST_F(DayRefresh, Gain48WritesSfc222AndTrc137)
{
    ASSERT_EQ(day_refresh(48, 5).result, 0);
    NRS_PARAM_V2_S p = written_by<VPSS_GRP_NRS_PARAM_S>("HI_MPI_VPSS_SetGrpNRSParam").stNRSParam_V2;
    EXPECT_EQ(p.SFC, 222); // 190 + floor(65 * 16 / 32)
    EXPECT_EQ(p.TRC, 137); // 20 + floor(235 * 16 / 32)
}

TEST_F(DayRefresh, Gain24WritesSbs1Of67)
{
    ASSERT_EQ(day_refresh(24, 4).result, 0);
    EXPECT_EQ(written_by<VPSS_GRP_NRS_PARAM_S>("HI_MPI_VPSS_SetGrpNRSParam").stNRSParam_V2.SBS1,
              67); // 60 + floor(15 * 8 / 16)
}

// ---- step 2: the noise-reduction mode, read at every entry ----------------------------------------

TEST_F(DayRefresh, DnrModeIsReadAtEveryEntry)
{
    ASSERT_EQ(kDayCases[2].G, 24);
    expect_dnr_mode_read_at_every_entry(g_day_refresh, 24, kDayCases[2].nr);
}

// ---- refusals: no settings record, a gain level outside 0..10 (docs/decisions.md) ----------------------

TEST_F(DayRefresh, NoSettingsRecordPrintsAndReturnsMinusOneWithNoPlatformCall)
{
    expect_no_settings_record_refused(g_day_refresh);
}

TEST_F(DayRefresh, LevelOutside0To10IsRefusedWithNoPlatformCall)
{
    expect_levels_outside_0_to_10_refused(g_day_refresh);
    Outcome edge = day_refresh(1024, 10); // L = 10 is the highest the tables allow
    EXPECT_EQ(edge.result, 0);
}

// ---- every G from 1 to 62 against an independent integer computation over the library's tables ------

TEST_F(DayRefresh, EveryGainFrom1To62MatchesTheIntegerFormula)
{
    expect_every_gain_from_1_to_62_matches_the_integer_formula(g_day_refresh);
}
