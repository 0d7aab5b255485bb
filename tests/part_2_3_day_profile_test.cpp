// Part 2.3: day profile application (ISP_SetParamDay) over the colour tables of Part 2.1.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "profile_test_support.h"

namespace {

// Part 2.3, Interfaces: the calls in order, at u8Sharpness 128.
const Calls kDayCalls128 = {
    "HI_MPI_ISP_GetExposureAttr",       "HI_MPI_ISP_SetExposureAttr",       "HI_MPI_ISP_GetGammaAttr",
    "HI_MPI_ISP_SetGammaAttr",          "HI_MPI_ISP_GetSaturationAttr",     "HI_MPI_ISP_SetSaturationAttr",
    "HI_MPI_ISP_GetSharpenAttr",        "HI_MPI_ISP_SetSharpenAttr",        "HI_MPI_VPSS_GetGrpAttr",
    "HI_MPI_VPSS_SetGrpAttr",           "HI_MPI_ISP_GetCCMAttr",            "HI_MPI_ISP_SetCCMAttr",
    "HI_MPI_ISP_GetAntiFalseColorAttr", "HI_MPI_ISP_SetAntiFalseColorAttr", "HI_MPI_ISP_GetDemosaicAttr",
    "HI_MPI_ISP_SetDemosaicAttr",       "HI_MPI_ISP_GetDPDynamicAttr",      "HI_MPI_ISP_SetDPDynamicAttr",
};
// ... and at any other sharpness: no sharpen and no VPSS calls.
const Calls kDayCallsOther = {
    "HI_MPI_ISP_GetExposureAttr",       "HI_MPI_ISP_SetExposureAttr",       "HI_MPI_ISP_GetGammaAttr",
    "HI_MPI_ISP_SetGammaAttr",          "HI_MPI_ISP_GetSaturationAttr",     "HI_MPI_ISP_SetSaturationAttr",
    "HI_MPI_ISP_GetCCMAttr",            "HI_MPI_ISP_SetCCMAttr",            "HI_MPI_ISP_GetAntiFalseColorAttr",
    "HI_MPI_ISP_SetAntiFalseColorAttr", "HI_MPI_ISP_GetDemosaicAttr",       "HI_MPI_ISP_SetDemosaicAttr",
    "HI_MPI_ISP_GetDPDynamicAttr",      "HI_MPI_ISP_SetDPDynamicAttr",
};

// ---- the expected records: the power-on record with exactly the members Part 2.3 names changed --------

ISP_EXPOSURE_ATTR_S expected_exposure(
    ISP_EXPOSURE_ATTR_S r = power_on_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR))
{
    r = with_gain_ceilings(r);
    for (auto &row : r.stAuto.au8Weight)
        for (HI_U8 &w : row)
            w = 1; // gColorAEWeightTable: every zone counts equally (Part 2.1)
    return r;
}

ISP_GAMMA_ATTR_S expected_gamma(
    ISP_GAMMA_ATTR_S r = power_on_record<ISP_GAMMA_ATTR_S>(SIM_REC_GAMMA_ATTR))
{
    return with_gamma(r, kDayTables);
}

ISP_SATURATION_ATTR_S expected_saturation(
    ISP_SATURATION_ATTR_S r = power_on_record<ISP_SATURATION_ATTR_S>(SIM_REC_SATURATION_ATTR))
{
    r.enOpType = OP_TYPE_AUTO;
    put12(r.stAuto.au8Sat, gColorSatAttr);
    return r;
}

ISP_SHARPEN_ATTR_S expected_sharpen(
    ISP_SHARPEN_ATTR_S r = power_on_record<ISP_SHARPEN_ATTR_S>(SIM_REC_SHARPEN_ATTR))
{
    return with_sharpen(r, kDayTables);
}

VPSS_GRP_ATTR_S expected_vpss_group(
    VPSS_GRP_ATTR_S r = power_on_record<VPSS_GRP_ATTR_S>(SIM_REC_VPSS_GRP_ATTR))
{
    r.bSharpenEn = HI_FALSE;
    return r;
}

ISP_COLORMATRIX_ATTR_S expected_colour_matrix(
    ISP_COLORMATRIX_ATTR_S r = power_on_record<ISP_COLORMATRIX_ATTR_S>(SIM_REC_CCM_ATTR))
{
    r.enOpType = OP_TYPE_AUTO;
    r.stAuto.u16HighColorTemp = 4950;
    r.stAuto.u16MidColorTemp = 3650;
    r.stAuto.u16LowColorTemp = 2700;
    std::memcpy(r.stAuto.au16HighCCM, gColorHighCCM, sizeof r.stAuto.au16HighCCM);
    std::memcpy(r.stAuto.au16MidCCM, gColorMidCCM, sizeof r.stAuto.au16MidCCM);
    std::memcpy(r.stAuto.au16LowCCM, gColorLowCCM, sizeof r.stAuto.au16LowCCM);
    return r;
}

ISP_ANTI_FALSECOLOR_S expected_anti_false_colour(
    ISP_ANTI_FALSECOLOR_S r = power_on_record<ISP_ANTI_FALSECOLOR_S>(SIM_REC_ANTI_FALSECOLOR))
{
    r.bEnable = HI_TRUE;
    r.enOpType = OP_TYPE_AUTO;
    put12(r.stAuto.au8Strength, gColorAnFCStrength);
    put12(r.stAuto.au8Threshold, gColorAnFCThreshold);
    put12(r.stAuto.au16Offset, gColorAnFCOffset);
    return r;
}

ISP_DEMOSAIC_ATTR_S expected_demosaic(
    ISP_DEMOSAIC_ATTR_S r = power_on_record<ISP_DEMOSAIC_ATTR_S>(SIM_REC_DEMOSAIC_ATTR))
{
    return with_demosaic(r, kDayTables);
}

ISP_DP_DYNAMIC_ATTR_S expected_dp_dynamic(
    ISP_DP_DYNAMIC_ATTR_S r = power_on_record<ISP_DP_DYNAMIC_ATTR_S>(SIM_REC_DP_DYNAMIC_ATTR))
{
    return with_dp_dynamic(r, kDayTables);
}

// ---- whole-platform comparisons --------------------------------------------------------------------------

// The platform `start` (by default the power-on one) after the day profile: the steps up to `last_step`
// applied (4 exposure, 5 gamma, 6 saturation, 7 sharpen and VPSS at `sharpness` 128, 8 colour matrix,
// 9 anti-false-colour, 10 demosaic, 11 defect pixels), every other record as in `start`.
std::vector<Bytes> expected_state(int sharpness = 128, int last_step = 11,
                                  const std::vector<Bytes> &start = power_on_state())
{
    std::vector<Bytes> s = start;
    if (last_step >= 4)
        apply(s, SIM_REC_EXPOSURE_ATTR, expected_exposure);
    if (last_step >= 5)
        apply(s, SIM_REC_GAMMA_ATTR, expected_gamma);
    if (last_step >= 6)
        apply(s, SIM_REC_SATURATION_ATTR, expected_saturation);
    if (last_step >= 7 && sharpness == 128) {
        apply(s, SIM_REC_SHARPEN_ATTR, expected_sharpen);
        apply(s, SIM_REC_VPSS_GRP_ATTR, expected_vpss_group);
    }
    if (last_step >= 8)
        apply(s, SIM_REC_CCM_ATTR, expected_colour_matrix);
    if (last_step >= 9)
        apply(s, SIM_REC_ANTI_FALSECOLOR, expected_anti_false_colour);
    if (last_step >= 10)
        apply(s, SIM_REC_DEMOSAIC_ATTR, expected_demosaic);
    if (last_step >= 11)
        apply(s, SIM_REC_DP_DYNAMIC_ATTR, expected_dp_dynamic);
    return s;
}

class DayProfile : public ProfileTest<1> {};

// ---- Edge cases worth testing ----------------------------------------------------------------------------

TEST_F(DayProfile, GetSysInfoNullPrintsTheMessageMakesNoPlatformCallAndStillSetsModeAndMark)
{
    sim_host_sysinfo_null(1);
    expect_refused_without_record(run_day_profile(), 0);
    expect_state(power_on_state());
}

TEST_F(DayProfile, Sharpness128WritesTheColourSharpenTablesAutomaticAndTheVpssGroup)
{
    ASSERT_NO_FATAL_FAILURE(expect_sharpen_tables_at_128(run_day_profile, kDayCalls128, expected_sharpen()));
    const VPSS_GRP_ATTR_S grp = platform_record<VPSS_GRP_ATTR_S>(SIM_REC_VPSS_GRP_ATTR);
    EXPECT_EQ(grp.bSharpenEn, HI_FALSE);
    const VPSS_GRP_ATTR_S want_grp = expected_vpss_group();
    EXPECT_TRUE(same_bytes(&grp, &want_grp, sizeof grp));
}

TEST_F(DayProfile, Sharpness127MakesNeitherSharpenNorVpssCalls)
{
    sim_host_set_field(SYSINFO_u8Sharpness, 127);
    ASSERT_EQ(run_day_profile().result, 0);
    EXPECT_EQ(platform_calls(), kDayCallsOther);
    expect_state(expected_state(127));
}

TEST_F(DayProfile, Sharpness129MakesNeitherSharpenNorVpssCalls)
{
    sim_host_set_field(SYSINFO_u8Sharpness, 129);
    ASSERT_EQ(run_day_profile().result, 0);
    EXPECT_EQ(platform_calls(), kDayCallsOther);
    expect_state(expected_state(129));
}

TEST_F(DayProfile, ColourMatrixGetFailureLeavesEarlierStepsAppliedAndLaterAttributesUntouched)
{
    sim_mpp_fail("HI_MPI_ISP_GetCCMAttr", 1, 1, HI_ERR_ISP_NOT_INIT);
    const Outcome o = run_day_profile();
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, "HI_MPI_ISP_GetCCMAttr ISP_SetParamDay 667 failed 0xa01c8040 !!!\n");
    // Exposure, gamma, saturation, sharpen and the VPSS group applied; the rest as at power-on.
    expect_state(expected_state(128, 7));
    EXPECT_EQ(platform_calls(), Calls(kDayCalls128.begin(), kDayCalls128.begin() + 11));
}

TEST_F(DayProfile, ColourMatrixGetFailureAt127LeavesExposureGammaSaturationAppliedOnly)
{
    sim_host_set_field(SYSINFO_u8Sharpness, 127);
    sim_mpp_fail("HI_MPI_ISP_GetCCMAttr", 1, 1, HI_ERR_ISP_NOT_INIT);
    EXPECT_EQ(run_day_profile().result, -1);
    expect_state(expected_state(127, 7));
}

TEST_F(DayProfile, AfterSuccessAutomaticArraysHoldTheTablesInEntries0To11AndPlatformValuesIn12To15)
{
    ASSERT_EQ(run_day_profile().result, 0);
    const ISP_SATURATION_ATTR_S sat = platform_record<ISP_SATURATION_ATTR_S>(SIM_REC_SATURATION_ATTR);
    const ISP_SATURATION_ATTR_S sat0 = power_on_record<ISP_SATURATION_ATTR_S>(SIM_REC_SATURATION_ATTR);
    // gColorSatAttr, typed from Part 2.1
    const int sat_table[12] = {111, 108, 106, 100, 90, 85, 58, 58, 58, 58, 58, 58};
    for (int i = 0; i < 12; ++i)
        EXPECT_EQ(sat.stAuto.au8Sat[i], sat_table[i]) << i;
    for (int i = 12; i < 16; ++i)
        EXPECT_EQ(sat.stAuto.au8Sat[i], sat0.stAuto.au8Sat[i]) << i;

    // Every array of every attribute, entry by entry: the whole records match, and the simulator's
    // power-on arrays hold distinct non-zero values in entries 12-15, so a write there would show.
    expect_state(expected_state());
    const ISP_DEMOSAIC_ATTR_S dm = platform_record<ISP_DEMOSAIC_ATTR_S>(SIM_REC_DEMOSAIC_ATTR);
    const ISP_DEMOSAIC_ATTR_S dm0 = power_on_record<ISP_DEMOSAIC_ATTR_S>(SIM_REC_DEMOSAIC_ATTR);
    for (int i = 12; i < 16; ++i) {
        EXPECT_NE(dm0.stAuto.au16EdgeSmoothThr[i], 0) << "the simulator fills entries 12-15";
        EXPECT_EQ(dm.stAuto.au16EdgeSmoothThr[i], dm0.stAuto.au16EdgeSmoothThr[i]) << i;
    }
    const ISP_ANTI_FALSECOLOR_S afc = platform_record<ISP_ANTI_FALSECOLOR_S>(SIM_REC_ANTI_FALSECOLOR);
    for (int i = 0; i < 12; ++i)
        EXPECT_EQ(afc.stAuto.au16Offset[i], 0) << "gColorAnFCOffset widened, entry " << i;
}

TEST_F(DayProfile, AfterSuccessTheAeWeightGridIsAllOnes)
{
    ASSERT_EQ(run_day_profile().result, 0);
    const ISP_EXPOSURE_ATTR_S exp = platform_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR);
    for (int r = 0; r < 15; ++r)
        for (int c = 0; c < 17; ++c)
            EXPECT_EQ(exp.stAuto.au8Weight[r][c], 1) << r << "," << c;
}

TEST_F(DayProfile, AfterSuccessGammaTable256Is4095)
{
    ASSERT_EQ(run_day_profile().result, 0);
    const ISP_GAMMA_ATTR_S g = platform_record<ISP_GAMMA_ATTR_S>(SIM_REC_GAMMA_ATTR);
    EXPECT_EQ(g.u16Table[256], 4095);
    EXPECT_EQ(g.u16Table[0], 0);
    EXPECT_EQ(g.bEnable, HI_TRUE);
    EXPECT_EQ(g.enCurveType, ISP_GAMMA_CURVE_USER_DEFINE);
    // The nodes Part 2.1 lists.
    const int first[9] = {0, 76, 156, 244, 331, 405, 477, 551, 625};
    for (int n = 0; n < 9; ++n)
        EXPECT_EQ(g.u16Table[n], first[n]) << n;
    const int every16[17] = {0,    1167, 1755, 2188, 2498, 2729, 2922, 3110, 3245,
                             3377, 3507, 3619, 3722, 3824, 3927, 4011, 4095};
    for (int k = 0; k < 17; ++k)
        EXPECT_EQ(g.u16Table[16 * k], every16[k]) << 16 * k;
}

TEST_F(DayProfile, CallingTwiceGivesTheSamePlatformStateAsCallingOnce)
{
    ASSERT_NO_FATAL_FAILURE(expect_second_run_changes_nothing(run_day_profile));
    Calls both = kDayCalls128;
    both.insert(both.end(), kDayCalls128.begin(), kDayCalls128.end());
    EXPECT_EQ(platform_calls(), both);
}

// ---- the rest of the Part ----------------------------------------------------------------------------------

TEST_F(DayProfile, EveryByteOfEveryRecordAt128IsThePowerOnRecordPlusTheNamedMembers)
{
    expect_silent_success(run_day_profile());
    expect_state(expected_state(128));
}

TEST_F(DayProfile, TheSetCallsWriteTheExpectedRecords)
{
    ASSERT_EQ(run_day_profile().result, 0);
    const std::vector<Bytes> want = expected_state(128);
    expect_set_calls_wrote(want, {"HI_MPI_ISP_SetExposureAttr", "HI_MPI_ISP_SetGammaAttr",
                                  "HI_MPI_ISP_SetSaturationAttr", "HI_MPI_ISP_SetSharpenAttr",
                                  "HI_MPI_VPSS_SetGrpAttr", "HI_MPI_ISP_SetCCMAttr",
                                  "HI_MPI_ISP_SetAntiFalseColorAttr", "HI_MPI_ISP_SetDemosaicAttr",
                                  "HI_MPI_ISP_SetDPDynamicAttr"});
}

TEST_F(DayProfile, EveryCallAddressesIspDeviceZeroOrVpssGroupZero)
{
    ASSERT_EQ(run_day_profile().result, 0);
    expect_calls_on_device_zero(kDayCalls128.size());
}

TEST_F(DayProfile, SuccessLeavesProfileModeZeroAndTheRefreshRequestRaised)
{
    EXPECT_EQ(run_day_profile().result, 0);
    EXPECT_EQ(profile_mode(), 0);
    EXPECT_EQ(reflash_mark(), 1);
}

TEST_F(DayProfile, ExposureCeilingsEqualTheExportedScalarsAndTheRestStaysAsRead)
{
    ASSERT_EQ(run_day_profile().result, 0);
    const ISP_EXPOSURE_ATTR_S exp = platform_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR);
    const ISP_EXPOSURE_ATTR_S exp0 = power_on_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR);
    EXPECT_EQ(exp.stAuto.stAGainRange.u32Max, gColorAGainRangeMax);
    EXPECT_EQ(exp.stAuto.stDGainRange.u32Max, gColorDGainRangeMax);
    EXPECT_EQ(exp.stAuto.stISPDGainRange.u32Max, gColorISPDGainRangeMax);
    EXPECT_EQ(exp.stAuto.stSysGainRange.u32Max, 262144u);
    EXPECT_EQ(exp.stAuto.u32GainThreshold, 16384u);
    EXPECT_EQ(exp.stAuto.stAGainRange.u32Min, exp0.stAuto.stAGainRange.u32Min);
    EXPECT_EQ(exp.enOpType, exp0.enOpType);
    EXPECT_EQ(exp.stAuto.u8Compensation, exp0.stAuto.u8Compensation);
}

TEST_F(DayProfile, ColourMatrixTemperaturesEqualTheExportedScalars)
{
    ASSERT_EQ(run_day_profile().result, 0);
    const ISP_COLORMATRIX_ATTR_S ccm = platform_record<ISP_COLORMATRIX_ATTR_S>(SIM_REC_CCM_ATTR);
    EXPECT_EQ(ccm.stAuto.u16HighColorTemp, gColorCCMHighColorTemp);
    EXPECT_EQ(ccm.stAuto.u16MidColorTemp, gColorCCMMidColorTemp);
    EXPECT_EQ(ccm.stAuto.u16LowColorTemp, gColorCCMLowColorTemp);
    EXPECT_EQ(ccm.stAuto.au16HighCCM[0], 0x0270); // spot values typed from Part 2.1
    EXPECT_EQ(ccm.stAuto.au16MidCCM[4], 0x01AD);
    EXPECT_EQ(ccm.stAuto.au16LowCCM[7], 0x81FE);
}

// Left to the implementer: the cleared member is bSharpenEn, the 32-bit member after eight 32-bit members.
TEST_F(DayProfile, TheVpssMemberClearedIsTheOneAfterEight32BitMembers)
{
    static_assert(offsetof(VPSS_GRP_ATTR_S, bSharpenEn) == 8 * 4 && sizeof(HI_BOOL) == 4);
    ASSERT_EQ(run_day_profile().result, 0);
    const VPSS_GRP_ATTR_S grp = platform_record<VPSS_GRP_ATTR_S>(SIM_REC_VPSS_GRP_ATTR);
    const VPSS_GRP_ATTR_S grp0 = power_on_record<VPSS_GRP_ATTR_S>(SIM_REC_VPSS_GRP_ATTR);
    ASSERT_EQ(grp0.bSharpenEn, HI_TRUE) << "the simulator powers on with sharpening on";
    EXPECT_EQ(grp.bSharpenEn, HI_FALSE);
    EXPECT_TRUE(same_bytes(&grp, &grp0, offsetof(VPSS_GRP_ATTR_S, bSharpenEn)));
}

// Only u8Sharpness is read: every other byte of the record may hold anything.
TEST_F(DayProfile, FromRandomRecordsOnlyTheNamedMembersChange)
{
    expect_only_named_members_change(run_day_profile, expected_state);
}

TEST_F(DayProfile, OnlyU8SharpnessOfTheSettingsRecordIsRead)
{
    expect_only_sharpness_read(run_day_profile, expected_state, 0xA5, kDayCalls128);
}

TEST_F(DayProfile, AFailedSetLeavesThatAttributeAsItWasAndStopsThere)
{
    sim_mpp_fail("HI_MPI_ISP_SetSaturationAttr", 1, 1, HI_ERR_ISP_NOT_INIT);
    const Outcome o = run_day_profile();
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, "HI_MPI_ISP_SetSaturationAttr ISP_SetParamDay 605 failed 0xa01c8040 !!!\n");
    expect_state(expected_state(128, 5));
    EXPECT_EQ(profile_mode(), 0);
    EXPECT_EQ(reflash_mark(), 1);
}

// State and lifecycle: the profile does not touch the day refresh's gamma mark (Part 3.2).
TEST_F(DayProfile, DoesNotTouchTheDayRefreshGammaMark)
{
    // The day refresh at G = 57, then at G = 60 (same band); the profile loads g_gamma_table_day in between.
    expect_refresh_gamma_mark_untouched(run_day_profile, ISP_SetParamDayRefresh, 57, 60, expected_gamma());
}

} // namespace
