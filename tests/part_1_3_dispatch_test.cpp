// Part 1.3: refresh dispatch (QV_ISP_SetVarParam): system gain and level, then the profile's refresh.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "call_test_support.h"
#include "core_access.h"


namespace {

const std::string kDayDone = "--------------paramday-refresh-done--------------\n";
const std::string kNightDone = "--------------paramnight-refresh-done--------------\n";

Outcome dispatch()
{
    return captured(QV_ISP_SetVarParam);
}

// What a refresh's black-level step prints at G <= 54 with the table value v (Parts 3.2, 3.3).
std::string low_gain_black_lines(int32_t G, int v)
{
    std::string out = "SYSTEM " + std::to_string(G) + " !!!\n";
    for (int i = 0; i < 4; ++i)
        out += "BlackLevelTable " + std::to_string(v) + " = " + std::to_string(v) + " !!!\n";
    return out;
}

NRS_PARAM_V2_S nrs_written()
{
    return written_by<VPSS_GRP_NRS_PARAM_S>("HI_MPI_VPSS_SetGrpNRSParam").stNRSParam_V2;
}

class Dispatch : public SimTest {
protected:
    void SetUp() override
    {
        SimTest::SetUp();
        test_set_profile_mode(0);
    }
    void TearDown() override { test_set_profile_mode(0); }

    // The exposure the AE reports; the exposure time plays no part here.
    static void gains(HI_U32 again, HI_U32 dgain, HI_U32 ispdgain)
    {
        sim_mpp_set_exposure(10000, again, dgain, ispdgain);
    }
};

} // namespace

// ---- edge cases of Part 1.3 ----------------------------------------------------------------------------
// G is visible as the refresh's "SYSTEM G !!!" line, L through the interpolated record: the day table
// g_3dnr_SBS1_day (Part 3.4) is 40, 40, 60, 80, 60, ... so SBS1 tells the levels apart.

TEST_F(Dispatch, Gains1024x1024x1024GiveSystemGain1AndLevel0)
{
    gains(1024, 1024, 1024);
    Outcome run = dispatch();
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(run.out, low_gain_black_lines(1, 64) + kDayDone);
    EXPECT_EQ(platform_calls().front(), "HI_MPI_ISP_QueryExposureInfo");
    EXPECT_EQ(sim_mpp_log_at(0)->dev, 0);
    EXPECT_EQ(nrs_written().SBS1, 40); // T[0]
}

TEST_F(Dispatch, Gains2048x1536x1024GiveSystemGain3AndLevel1)
{
    gains(2048, 1536, 1024);
    Outcome run = dispatch();
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(run.out, low_gain_black_lines(3, 64) + kDayDone);
    // L = 1: 40 + floor(20 * (3 - 2) / 2) = 50 (L = 0 would give 40 + 0 * 2 = 40)
    EXPECT_EQ(nrs_written().SBS1, 50);
}

TEST_F(Dispatch, Gains1536x1024x1024TruncateToSystemGain1AndLevel0)
{
    gains(1536, 1024, 1024);
    Outcome run = dispatch();
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(run.out, low_gain_black_lines(1, 64) + kDayDone);
    EXPECT_EQ(nrs_written().SBS1, 40);
}

// At an exact power of two both neighbouring levels give the same value (Part 3.1, "At the ends of a
// level"), so level 3 shows only as T[3] and as the refresh accepting the pair.
TEST_F(Dispatch, Gains4096x2048x1024GiveSystemGain8AndLevel3)
{
    gains(4096, 2048, 1024);
    Outcome run = dispatch();
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(run.out, low_gain_black_lines(8, 64) + kDayDone);
    EXPECT_EQ(nrs_written().SBS1, 80); // T[3]
    EXPECT_EQ(nrs_written().SDS1, 175);
}

TEST_F(Dispatch, ProfileMode1CallsOnlyTheNightRefresh)
{
    test_set_profile_mode(1);
    gains(1024, 1024, 1024);
    Outcome run = dispatch();
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(run.out, low_gain_black_lines(1, 63) + kNightDone);
    EXPECT_EQ(run.out.find("paramday"), std::string::npos);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_QueryWBInfo"), 0u); // the day refresh's own step
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_VPSS_SetGrpNRSParam"), 1u);
    EXPECT_EQ(nrs_written().SBS1, 70); // g_3dnr_SBS1_night[0]
}

TEST_F(Dispatch, ProfileModeOtherThan0Or1CallsNeitherRefreshAndReturns0)
{
    gains(2048, 1024, 1024);
    for (int32_t mode : {2, -1, 100}) {
        sim_mpp_reset();
        test_set_profile_mode(mode);
        Outcome run = dispatch();
        EXPECT_EQ(run.result, 0) << mode;
        EXPECT_EQ(run.out, "") << mode;
        EXPECT_EQ(platform_calls(), Calls{"HI_MPI_ISP_QueryExposureInfo"}) << mode;
    }
}

// ---- failure handling -----------------------------------------------------------------------------------

TEST_F(Dispatch, ExposureQueryFailurePrintsAndCallsNoRefresh)
{
    sim_mpp_fail("HI_MPI_ISP_QueryExposureInfo", 1, 1, HI_ERR_ISP_NOT_INIT);
    Outcome run = dispatch();
    EXPECT_EQ(run.result, -1);
    EXPECT_EQ(run.out, "HI_MPI_ISP_QueryExposureInfo failed\n");
    EXPECT_EQ(platform_calls(), Calls{"HI_MPI_ISP_QueryExposureInfo"});
}

TEST_F(Dispatch, NoSettingsRecordPrintsAndCallsNoRefresh)
{
    sim_host_sysinfo_null(1);
    for (int32_t mode : {0, 1}) {
        sim_mpp_reset();
        test_set_profile_mode(mode);
        Outcome run = dispatch();
        EXPECT_EQ(run.result, -1);
        EXPECT_EQ(run.out, "GetSysInfo failed is NULL\n");
        EXPECT_EQ(platform_calls(), Calls{"HI_MPI_ISP_QueryExposureInfo"});
    }
}

TEST_F(Dispatch, RefreshFailureStillReturns0)
{
    gains(1024, 1024, 1024);
    sim_mpp_fail("HI_MPI_VPSS_GetGrpNRSParam", 1, 1, HI_ERR_VPSS_BUSY);
    Outcome run = dispatch();
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(run.out, "HI_MPI_VPSS_GetGrpNRSParam ISP_SetParamDayRefresh 795 failed 0xa0078012 !!!\n" + kDayDone);
}

// ---- decisions (docs/decisions.md, Part 3.1 and the Part 1.3 clamp it refers to) ------------------------

TEST_F(Dispatch, ProductBelowOneIsClampedToSystemGain1)
{
    for (HI_U32 again : {512u, 1u, 0u}) {
        sim_mpp_reset();
        gains(again, 1024, 1024);
        Outcome run = dispatch();
        EXPECT_EQ(run.result, 0) << again;
        EXPECT_EQ(run.out, low_gain_black_lines(1, 64) + kDayDone) << again;
        EXPECT_EQ(nrs_written().SBS1, 40) << again;
    }
}

TEST_F(Dispatch, Gain2047RunsTheRefreshAtLevel10)
{
    gains(2047 * 1024, 1024, 1024);
    Outcome run = dispatch();
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(run.out.substr(0, 40), "SYSTEM 2047 !!!\nBlackLevelTable_60 73 = ");
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_VPSS_SetGrpNRSParam"), 1u);
}

TEST_F(Dispatch, LevelAbove10IsRefusedByTheRefreshAndNothingIsRefreshed)
{
    gains(2048 * 1024, 1024, 1024); // G = 2048, L = 11
    Outcome run = dispatch();
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(run.out, "ISP_SetParamDayRefresh: gain level 11 is outside 0..10, nothing refreshed\n" + kDayDone);
    EXPECT_EQ(platform_calls(), Calls{"HI_MPI_ISP_QueryExposureInfo"});

    test_set_profile_mode(1);
    run = dispatch();
    EXPECT_EQ(run.out,
              "ISP_SetParamNightRefresh: gain level 11 is outside 0..10, nothing refreshed\n" + kNightDone);
}

// "for any G from 1 to 2^31-1 it passes L from 0 to 30": a product beyond the int32 range is G = 2^31-1.
TEST_F(Dispatch, ProductBeyondTheInt32RangeGivesLevel30AndIsRefused)
{
    gains(0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu);
    Outcome run = dispatch();
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(run.out, "ISP_SetParamDayRefresh: gain level 30 is outside 0..10, nothing refreshed\n" + kDayDone);
}

// With ProfileMode 0 the day refresh runs and then step 6 reads ProfileMode again; without a hook in the
// simulator the switch to 1 during the day refresh cannot be staged cleanly, so only the settled modes
// are tested here.
