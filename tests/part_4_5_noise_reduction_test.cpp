// Part 4.5: noise reduction (QV_ISP_SetDNRAttr and the internal QV_ISP_Set3DNRAttr / QV_ISP_Set2DNRAttr).
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "call_test_support.h"
#include "core_access.h"

extern "C" {
#include "attributes/attributes.h"
#include "isptune.h"
#include "refresh/refresh.h"
}

namespace {

const Calls kOneWriter = {"HI_MPI_VPSS_GetGrpNRSParam", "HI_MPI_VPSS_SetGrpNRSParam"};
const Calls kTwoWriters = {"HI_MPI_VPSS_GetGrpNRSParam", "HI_MPI_VPSS_SetGrpNRSParam",
                           "HI_MPI_VPSS_GetGrpNRSParam", "HI_MPI_VPSS_SetGrpNRSParam"};

class NoiseReduction : public SimClockTest {
protected:
    void SetUp() override
    {
        SimClockTest::SetUp();
        ispParamReflashMark = 0;
    }
};

Outcome set_dnr(uint8_t mode, uint8_t s2d, uint8_t s3d)
{
    IspDnrCfg cfg = {mode, s2d, s3d};
    return captured([&] { return QV_ISP_SetDNRAttr(&cfg); });
}

VPSS_GRP_NRS_PARAM_S power_on_nrs() { return power_on_record<VPSS_GRP_NRS_PARAM_S>(SIM_REC_VPSS_NRS_PARAM); }
VPSS_GRP_NRS_PARAM_S platform_nrs() { return platform_record<VPSS_GRP_NRS_PARAM_S>(SIM_REC_VPSS_NRS_PARAM); }

VPSS_GRP_NRS_PARAM_S with_2d(VPSS_GRP_NRS_PARAM_S r, uint8_t v)
{
    r.stNRSParam_V2.SBS3 = v;
    r.stNRSParam_V2.SDS3 = v;
    return r;
}

VPSS_GRP_NRS_PARAM_S with_3d(VPSS_GRP_NRS_PARAM_S r, uint16_t v)
{
    r.stNRSParam_V2.MATH1 = v;
    r.stNRSParam_V2.MATH2 = v;
    return r;
}

// The byte offsets the writers touch, pinned against Part 4.5's table.
TEST(NoiseReductionRecord, WritersTouchTheBytesOfThePartsTable)
{
    EXPECT_EQ(sizeof(VPSS_GRP_NRS_PARAM_S), 64u);
    EXPECT_EQ(offsetof(VPSS_GRP_NRS_PARAM_S, enNRVer), 0u);
    EXPECT_EQ(offsetof(VPSS_GRP_NRS_PARAM_S, stNRSParam_V2.SBS3), 8u);
    EXPECT_EQ(offsetof(VPSS_GRP_NRS_PARAM_S, stNRSParam_V2.SDS3), 12u);
    EXPECT_EQ(offsetof(VPSS_GRP_NRS_PARAM_S, stNRSParam_V2.MATH1), 20u);
    EXPECT_EQ(offsetof(VPSS_GRP_NRS_PARAM_S, stNRSParam_V2.MATH2), 22u);
}

} // namespace

// ---- the mode table --------------------------------------------------------------------------------------

TEST_F(NoiseReduction, ModeTableCallsRecordBytesAndHostStrengths)
{
    struct Row {
        uint8_t mode;
        Calls calls;
        bool writes_2d, writes_3d;
        bool host_100;
    };
    const Row rows[] = {
        {0, kTwoWriters, true, true, true},  {1, kOneWriter, true, false, false}, {2, kOneWriter, false, true, false},
        {3, kTwoWriters, true, true, false}, {4, {}, false, false, false},        {9, {}, false, false, false},
        {255, {}, false, false, false},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE("mode " + std::to_string(row.mode));
        sim_mpp_reset();
        sim_host_reset();
        ASSERT_EQ(sim_host_set_field(SYSINFO_u8Dnr2dStrength, 7), 0);
        ASSERT_EQ(sim_host_set_field(SYSINFO_u8Dnr3dStrength, 8), 0);
        ispParamReflashMark = 0;

        Outcome o = set_dnr(row.mode, 201, 202);
        EXPECT_EQ(o.result, 0);
        EXPECT_EQ(o.out, "");
        EXPECT_EQ(platform_calls(), row.calls);
        EXPECT_EQ(ispParamReflashMark, 1);

        uint8_t v2d = row.mode == 0 ? 100 : 201;
        uint16_t v3d = row.mode == 0 ? 100 : 202;
        VPSS_GRP_NRS_PARAM_S expected = power_on_nrs();
        if (row.writes_3d)
            expected = with_3d(expected, v3d);
        if (row.writes_2d)
            expected = with_2d(expected, v2d);
        VPSS_GRP_NRS_PARAM_S now = platform_nrs();
        EXPECT_TRUE(same_bytes(&now, &expected, sizeof now));

        EXPECT_EQ(sim_host_get_field(SYSINFO_u8Dnr2dStrength), row.host_100 ? 100 : 7);
        EXPECT_EQ(sim_host_get_field(SYSINFO_u8Dnr3dStrength), row.host_100 ? 100 : 8);
    }
}

TEST_F(NoiseReduction, ModeThreeWrites3DThen2DEachOnTheRecordReadAfresh)
{
    ASSERT_EQ(set_dnr(3, 33, 44).result, 0);
    ASSERT_EQ(platform_calls(), kTwoWriters);
    VPSS_GRP_NRS_PARAM_S first = logged_record<VPSS_GRP_NRS_PARAM_S>(1);
    VPSS_GRP_NRS_PARAM_S second = logged_record<VPSS_GRP_NRS_PARAM_S>(3);
    VPSS_GRP_NRS_PARAM_S e1 = with_3d(power_on_nrs(), 44), e2 = with_2d(e1, 33);
    EXPECT_TRUE(same_bytes(&first, &e1, sizeof first));
    EXPECT_TRUE(same_bytes(&second, &e2, sizeof second));
    EXPECT_EQ(first.enNRVer, VPSS_NR_V2);
    EXPECT_EQ(second.enNRVer, VPSS_NR_V2);
}

// ---- Edge cases worth testing ----------------------------------------------------------------------------

TEST_F(NoiseReduction, ModeZeroHostStrengthsBecome100AndRecordHolds100UntilTheRefresh)
{
    ASSERT_EQ(sim_host_set_field(SYSINFO_u8Dnr2dStrength, 3), 0);
    ASSERT_EQ(sim_host_set_field(SYSINFO_u8Dnr3dStrength, 4), 0);
    Outcome o = set_dnr(0, 9, 9);
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(sim_host_get_field(SYSINFO_u8Dnr2dStrength), 100);
    EXPECT_EQ(sim_host_get_field(SYSINFO_u8Dnr3dStrength), 100);
    VPSS_GRP_NRS_PARAM_S now = platform_nrs();
    EXPECT_EQ(now.stNRSParam_V2.SBS3, 100);
    EXPECT_EQ(now.stNRSParam_V2.SDS3, 100);
    EXPECT_EQ(now.stNRSParam_V2.MATH1, 100);
    EXPECT_EQ(now.stNRSParam_V2.MATH2, 100);
    EXPECT_EQ(ispParamReflashMark, 1);
}

// "Until the refresh": the pass that the raised mark triggers (Part 1.3, day profile, power-on gains so
// G = 1 and L = 0) replaces the four 100s with the day tables' level-0 entries (Part 3.4), host mode 0.
TEST_F(NoiseReduction, ModeZeroStrengthsHold100UntilTheRefreshTheMarkTriggersReplacesThem)
{
    test_set_profile_mode(0);
    ASSERT_EQ(sim_host_set_field(SYSINFO_u8DnrMode, 0), 0);
    ASSERT_EQ(set_dnr(0, 9, 9).result, 0);
    ASSERT_EQ(ispParamReflashMark, 1);
    VPSS_GRP_NRS_PARAM_S held = platform_nrs();
    EXPECT_EQ(held.stNRSParam_V2.SBS3, 100);
    EXPECT_EQ(held.stNRSParam_V2.SDS3, 100);
    EXPECT_EQ(held.stNRSParam_V2.MATH1, 100);
    EXPECT_EQ(held.stNRSParam_V2.MATH2, 100);

    ASSERT_EQ(captured([] { return QV_ISP_SetVarParam(); }).result, 0);
    VPSS_GRP_NRS_PARAM_S refreshed = platform_nrs();
    EXPECT_EQ(refreshed.stNRSParam_V2.SBS3, g_3dnr_SBS3_day[0]);
    EXPECT_EQ(refreshed.stNRSParam_V2.SDS3, g_3dnr_SDS3_day[0]);
    EXPECT_EQ(refreshed.stNRSParam_V2.MATH1, g_3dnr_MATH1_day[0]);
    EXPECT_EQ(refreshed.stNRSParam_V2.MATH2, g_3dnr_MATH2_day[0]);
    EXPECT_NE(refreshed.stNRSParam_V2.SBS3, 100); // the tables' values differ from 100, so the change shows
    EXPECT_NE(refreshed.stNRSParam_V2.MATH1, 100);
}

TEST_F(NoiseReduction, ModeOneWith2DStrength255SbsSds255MathAsRead)
{
    EXPECT_EQ(set_dnr(1, 255, 0).result, 0);
    EXPECT_EQ(platform_calls(), kOneWriter);
    VPSS_GRP_NRS_PARAM_S now = platform_nrs(), expected = with_2d(power_on_nrs(), 255);
    EXPECT_TRUE(same_bytes(&now, &expected, sizeof now));
    EXPECT_EQ(now.stNRSParam_V2.MATH1, 160); // power-on, as read
    EXPECT_EQ(now.stNRSParam_V2.MATH2, 176);
}

TEST_F(NoiseReduction, ModeTwoWith3DStrengthZeroMathZero)
{
    EXPECT_EQ(set_dnr(2, 255, 0).result, 0);
    EXPECT_EQ(platform_calls(), kOneWriter);
    VPSS_GRP_NRS_PARAM_S now = platform_nrs(), expected = with_3d(power_on_nrs(), 0);
    EXPECT_TRUE(same_bytes(&now, &expected, sizeof now));
}

TEST_F(NoiseReduction, ModeThree3DReadFails2DSucceedsResultZeroMathUnchanged)
{
    ASSERT_EQ(sim_mpp_fail("HI_MPI_VPSS_GetGrpNRSParam", 1, 1, HI_ERR_VPSS_NOTREADY), 0);
    Outcome o = set_dnr(3, 50, 60);
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(o.out, "HI_MPI_VPSS_GetGrpNRSParam QV_ISP_Set3DNRAttr 2505 failed 0xa0078010 !!!\n");
    EXPECT_EQ(platform_calls(), Calls({"HI_MPI_VPSS_GetGrpNRSParam", "HI_MPI_VPSS_GetGrpNRSParam",
                                       "HI_MPI_VPSS_SetGrpNRSParam"}));
    VPSS_GRP_NRS_PARAM_S now = platform_nrs(), expected = with_2d(power_on_nrs(), 50);
    EXPECT_TRUE(same_bytes(&now, &expected, sizeof now));
    EXPECT_EQ(ispParamReflashMark, 1);
}

TEST_F(NoiseReduction, ModeNineNoPlatformCallMarkRaisedResultZero)
{
    Outcome o = set_dnr(9, 1, 2);
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(o.out, "");
    EXPECT_TRUE(platform_calls().empty());
    EXPECT_EQ(ispParamReflashMark, 1);
}

TEST_F(NoiseReduction, A3DValueAbove65535IsStoredModulo65536And2DAbove255Modulo256)
{
    EXPECT_EQ(QV_ISP_Set3DNRAttr(65536 + 300), 0);
    EXPECT_EQ(platform_nrs().stNRSParam_V2.MATH1, 300);
    EXPECT_EQ(platform_nrs().stNRSParam_V2.MATH2, 300);
    EXPECT_EQ(QV_ISP_Set2DNRAttr(256 + 7), 0);
    EXPECT_EQ(platform_nrs().stNRSParam_V2.SBS3, 7);
    EXPECT_EQ(platform_nrs().stNRSParam_V2.SDS3, 7);
    // Negative values from the host wrap the same way (two's complement truncation).
    EXPECT_EQ(QV_ISP_Set3DNRAttr(-1), 0);
    EXPECT_EQ(platform_nrs().stNRSParam_V2.MATH1, 65535);
    EXPECT_EQ(QV_ISP_Set2DNRAttr(-2), 0);
    EXPECT_EQ(platform_nrs().stNRSParam_V2.SBS3, 254);
    // Nothing else of the record changes.
    VPSS_GRP_NRS_PARAM_S now = platform_nrs(), expected = with_2d(with_3d(power_on_nrs(), 65535), 254);
    EXPECT_TRUE(same_bytes(&now, &expected, sizeof now));
}

// ---- the strength writers --------------------------------------------------------------------------------

TEST_F(NoiseReduction, WritersSelectVersion2AndKeepEveryOtherByteAsRead)
{
    VPSS_GRP_NRS_PARAM_S seeded = power_on_nrs();
    unsigned char *b = reinterpret_cast<unsigned char *>(&seeded);
    for (size_t i = 32; i < 64; ++i)
        b[i] = uint8_t(i); // the bytes after the version-2 block, too
    sim_mpp_write(SIM_REC_VPSS_NRS_PARAM, &seeded);
    ASSERT_EQ(QV_ISP_Set3DNRAttr(1000), 0);
    ASSERT_EQ(QV_ISP_Set2DNRAttr(11), 0);
    VPSS_GRP_NRS_PARAM_S written = logged_record<VPSS_GRP_NRS_PARAM_S>(3);
    VPSS_GRP_NRS_PARAM_S expected = with_2d(with_3d(seeded, 1000), 11);
    EXPECT_TRUE(same_bytes(&written, &expected, sizeof written));
    EXPECT_EQ(platform_calls(), kTwoWriters);
}

TEST_F(NoiseReduction, WritersNeitherRaiseTheMarkNorTouchTheHost)
{
    ASSERT_EQ(QV_ISP_Set3DNRAttr(5), 0);
    ASSERT_EQ(QV_ISP_Set2DNRAttr(5), 0);
    EXPECT_EQ(ispParamReflashMark, 0);
    EXPECT_EQ(sim_host_get_field(SYSINFO_u8Dnr2dStrength), 0);
}

TEST_F(NoiseReduction, WriterReadFailureWritesNothing)
{
    ASSERT_EQ(sim_mpp_fail("HI_MPI_VPSS_GetGrpNRSParam", 1, 2, HI_ERR_VPSS_BUSY), 0);
    StdoutCapture capture;
    EXPECT_EQ(QV_ISP_Set3DNRAttr(5), -1);
    EXPECT_EQ(QV_ISP_Set2DNRAttr(5), -1);
    EXPECT_EQ(capture.take(), "HI_MPI_VPSS_GetGrpNRSParam QV_ISP_Set3DNRAttr 2505 failed 0xa0078012 !!!\n"
                              "HI_MPI_VPSS_GetGrpNRSParam QV_ISP_Set2DNRAttr 2474 failed 0xa0078012 !!!\n");
    EXPECT_EQ(platform_calls(), Calls({"HI_MPI_VPSS_GetGrpNRSParam", "HI_MPI_VPSS_GetGrpNRSParam"}));
}

TEST_F(NoiseReduction, WriterWriteFailureMinusOne)
{
    ASSERT_EQ(sim_mpp_fail("HI_MPI_VPSS_SetGrpNRSParam", 1, 1, HI_ERR_VPSS_BUSY), 0);
    StdoutCapture capture;
    EXPECT_EQ(QV_ISP_Set2DNRAttr(5), -1);
    EXPECT_EQ(capture.take(), "HI_MPI_VPSS_SetGrpNRSParam failed 0xa0078012\n");
    VPSS_GRP_NRS_PARAM_S now = platform_nrs(), before = power_on_nrs();
    EXPECT_TRUE(same_bytes(&now, &before, sizeof now));
}

// ---- which writer's result counts ------------------------------------------------------------------------

TEST_F(NoiseReduction, ModeZero3DFailureIsPrintedButThe2DResultDecides)
{
    ASSERT_EQ(sim_mpp_fail("HI_MPI_VPSS_SetGrpNRSParam", 1, 1, HI_ERR_VPSS_BUSY), 0);
    Outcome o = set_dnr(0, 0, 0);
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(o.out, "HI_MPI_VPSS_SetGrpNRSParam failed 0xa0078012\n");
    EXPECT_EQ(platform_calls(), kTwoWriters);
    EXPECT_EQ(ispParamReflashMark, 1);
}

TEST_F(NoiseReduction, ModeZeroAndThree2DFailureIsTheResult)
{
    for (uint8_t mode : {0, 3}) {
        sim_mpp_reset();
        ispParamReflashMark = 0;
        ASSERT_EQ(sim_mpp_fail("HI_MPI_VPSS_GetGrpNRSParam", 2, 1, HI_ERR_VPSS_BUSY), 0);
        Outcome o = set_dnr(mode, 1, 2);
        EXPECT_EQ(o.result, -1) << "mode " << int(mode);
        EXPECT_EQ(o.out, "HI_MPI_VPSS_GetGrpNRSParam QV_ISP_Set2DNRAttr 2474 failed 0xa0078012 !!!\n");
        EXPECT_EQ(ispParamReflashMark, 1); // whatever the result
    }
}

TEST_F(NoiseReduction, ModesOneAndTwoReturnTheirWritersResult)
{
    ASSERT_EQ(sim_mpp_fail("HI_MPI_VPSS_SetGrpNRSParam", 1, 2, HI_ERR_VPSS_BUSY), 0);
    EXPECT_EQ(set_dnr(1, 1, 2).result, -1);
    EXPECT_EQ(set_dnr(2, 1, 2).result, -1);
    EXPECT_EQ(ispParamReflashMark, 1);
}

// ---- Failure handling and bad input ----------------------------------------------------------------------

TEST_F(NoiseReduction, NoHostRecordMessageMinusOneNoPlatformCallNoReflash)
{
    sim_host_sysinfo_null(1);
    Outcome o = set_dnr(0, 1, 2);
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, "GetSysInfo failed is NULL\n");
    EXPECT_TRUE(platform_calls().empty());
    EXPECT_EQ(ispParamReflashMark, 0);
    EXPECT_EQ(sim_host_log_count(), 0u);
}

TEST_F(NoiseReduction, NullGroupIsRefused)
{
    expect_null_refused(captured([] { return QV_ISP_SetDNRAttr(nullptr); }),
                        "QV_ISP_SetDNRAttr: argument is NULL, nothing done\n");
    EXPECT_EQ(ispParamReflashMark, 0);
}
