// Part 2.4: night profile application (ISP_SetParamNight) over the night tables of Part 2.2.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "profile_test_support.h"

namespace {

// Part 2.4, Interfaces: the calls in order, at u8Sharpness 128 (colour matrix before sharpen, demosaic
// before anti-false-colour, no VPSS call).
const Calls kNightCalls128 = {
    "HI_MPI_ISP_GetExposureAttr",   "HI_MPI_ISP_SetExposureAttr",       "HI_MPI_ISP_GetGammaAttr",
    "HI_MPI_ISP_SetGammaAttr",      "HI_MPI_ISP_GetSaturationAttr",     "HI_MPI_ISP_SetSaturationAttr",
    "HI_MPI_ISP_GetCCMAttr",        "HI_MPI_ISP_SetCCMAttr",            "HI_MPI_ISP_GetSharpenAttr",
    "HI_MPI_ISP_SetSharpenAttr",    "HI_MPI_ISP_GetDemosaicAttr",       "HI_MPI_ISP_SetDemosaicAttr",
    "HI_MPI_ISP_GetAntiFalseColorAttr", "HI_MPI_ISP_SetAntiFalseColorAttr", "HI_MPI_ISP_GetDPDynamicAttr",
    "HI_MPI_ISP_SetDPDynamicAttr",
};
// ... and at any other sharpness: no sharpen calls.
const Calls kNightCallsOther = {
    "HI_MPI_ISP_GetExposureAttr",       "HI_MPI_ISP_SetExposureAttr",       "HI_MPI_ISP_GetGammaAttr",
    "HI_MPI_ISP_SetGammaAttr",          "HI_MPI_ISP_GetSaturationAttr",     "HI_MPI_ISP_SetSaturationAttr",
    "HI_MPI_ISP_GetCCMAttr",            "HI_MPI_ISP_SetCCMAttr",            "HI_MPI_ISP_GetDemosaicAttr",
    "HI_MPI_ISP_SetDemosaicAttr",       "HI_MPI_ISP_GetAntiFalseColorAttr", "HI_MPI_ISP_SetAntiFalseColorAttr",
    "HI_MPI_ISP_GetDPDynamicAttr",      "HI_MPI_ISP_SetDPDynamicAttr",
};

// gNightAEWeightTable as Part 2.2 describes it: 1 everywhere but these runs (columns inclusive).
void night_weights(HI_U8 (&w)[15][17])
{
    for (auto &row : w)
        for (HI_U8 &x : row)
            x = 1;
    const struct {
        int row, first, last, weight;
    } runs[] = {
        {4, 5, 11, 2},  {5, 5, 11, 2},  {6, 4, 12, 2},  {7, 4, 12, 3},  {8, 4, 12, 3},
        {9, 3, 13, 3},  {10, 3, 13, 4}, {11, 3, 13, 4}, {12, 2, 14, 4}, {13, 2, 14, 5},
        {14, 2, 14, 5},
    };
    for (const auto &r : runs)
        for (int c = r.first; c <= r.last; ++c)
            w[r.row][c] = HI_U8(r.weight);
}

// ---- the expected records: the power-on record with exactly the members Part 2.4 names changed --------

ISP_EXPOSURE_ATTR_S expected_exposure(
    ISP_EXPOSURE_ATTR_S r = power_on_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR))
{
    r = with_gain_ceilings(r);
    night_weights(r.stAuto.au8Weight);
    return r;
}

ISP_GAMMA_ATTR_S expected_gamma(
    ISP_GAMMA_ATTR_S r = power_on_record<ISP_GAMMA_ATTR_S>(SIM_REC_GAMMA_ATTR))
{
    return with_gamma(r, kNightTables);
}

ISP_SATURATION_ATTR_S expected_saturation(
    ISP_SATURATION_ATTR_S r = power_on_record<ISP_SATURATION_ATTR_S>(SIM_REC_SATURATION_ATTR))
{
    r.enOpType = OP_TYPE_MANUAL;
    r.stManual.u8Saturation = 0;
    return r;
}

// The raw night matrix, typed from Part 2.2 (diagonal 1, not 0x0100).
const HI_U16 kNightCcm[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};

ISP_COLORMATRIX_ATTR_S expected_colour_matrix(
    ISP_COLORMATRIX_ATTR_S r = power_on_record<ISP_COLORMATRIX_ATTR_S>(SIM_REC_CCM_ATTR))
{
    r.enOpType = OP_TYPE_MANUAL;
    std::memcpy(r.stManual.au16CCM, kNightCcm, sizeof r.stManual.au16CCM);
    return r;
}

ISP_SHARPEN_ATTR_S expected_sharpen(
    ISP_SHARPEN_ATTR_S r = power_on_record<ISP_SHARPEN_ATTR_S>(SIM_REC_SHARPEN_ATTR))
{
    return with_sharpen(r, kNightTables);
}

ISP_DEMOSAIC_ATTR_S expected_demosaic(
    ISP_DEMOSAIC_ATTR_S r = power_on_record<ISP_DEMOSAIC_ATTR_S>(SIM_REC_DEMOSAIC_ATTR))
{
    return with_demosaic(r, kNightTables);
}

ISP_ANTI_FALSECOLOR_S expected_anti_false_colour(
    ISP_ANTI_FALSECOLOR_S r = power_on_record<ISP_ANTI_FALSECOLOR_S>(SIM_REC_ANTI_FALSECOLOR))
{
    r.bEnable = HI_FALSE;
    return r;
}

ISP_DP_DYNAMIC_ATTR_S expected_dp_dynamic(
    ISP_DP_DYNAMIC_ATTR_S r = power_on_record<ISP_DP_DYNAMIC_ATTR_S>(SIM_REC_DP_DYNAMIC_ATTR))
{
    return with_dp_dynamic(r, kNightTables);
}

// ---- whole-platform comparisons --------------------------------------------------------------------------

// The platform `start` (by default the power-on one) after the night profile: the steps up to
// `last_step` applied (4 exposure, 5 gamma, 6 saturation, 7 colour matrix, 8 sharpen at `sharpness` 128,
// 9 demosaic, 10 anti-false-colour, 11 defect pixels), every other record as in `start`.
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
    if (last_step >= 7)
        apply(s, SIM_REC_CCM_ATTR, expected_colour_matrix);
    if (last_step >= 8 && sharpness == 128)
        apply(s, SIM_REC_SHARPEN_ATTR, expected_sharpen);
    if (last_step >= 9)
        apply(s, SIM_REC_DEMOSAIC_ATTR, expected_demosaic);
    if (last_step >= 10)
        apply(s, SIM_REC_ANTI_FALSECOLOR, expected_anti_false_colour);
    if (last_step >= 11)
        apply(s, SIM_REC_DP_DYNAMIC_ATTR, expected_dp_dynamic);
    return s;
}

class NightProfile : public ProfileTest<0> {};

// ---- Edge cases worth testing ----------------------------------------------------------------------------

TEST_F(NightProfile, GetSysInfoNullPrintsTheMessageMakesNoPlatformCallAndStillSetsModeAndMark)
{
    sim_host_sysinfo_null(1);
    expect_refused_without_record(run_night_profile(), 1);
    expect_state(power_on_state());
}

TEST_F(NightProfile, Sharpness128WritesTheNightSharpenTablesAutomaticAndMakesNoVpssCall)
{
    ASSERT_NO_FATAL_FAILURE(expect_sharpen_tables_at_128(run_night_profile, kNightCalls128, expected_sharpen()));
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_VPSS_GetGrpAttr"), 0u);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_VPSS_SetGrpAttr"), 0u);
}

TEST_F(NightProfile, AnyOtherSharpnessMakesNoSharpenCallAndNoVpssCall)
{
    for (int sharpness : {0, 127, 129, 255}) {
        SCOPED_TRACE(sharpness);
        sim_mpp_reset();
        sim_host_set_field(SYSINFO_u8Sharpness, uint8_t(sharpness));
        ASSERT_EQ(run_night_profile().result, 0);
        EXPECT_EQ(platform_calls(), kNightCallsOther);
        expect_state(expected_state(sharpness));
    }
}

TEST_F(NightProfile, AfterSuccessSaturationIsManualZero)
{
    ASSERT_EQ(run_night_profile().result, 0);
    const ISP_SATURATION_ATTR_S sat = platform_record<ISP_SATURATION_ATTR_S>(SIM_REC_SATURATION_ATTR);
    EXPECT_EQ(sat.enOpType, OP_TYPE_MANUAL);
    EXPECT_EQ(sat.stManual.u8Saturation, 0);
    const ISP_SATURATION_ATTR_S sat0 = power_on_record<ISP_SATURATION_ATTR_S>(SIM_REC_SATURATION_ATTR);
    EXPECT_TRUE(same_bytes(&sat.stAuto, &sat0.stAuto, sizeof sat.stAuto)) << "the automatic array stays";
}

TEST_F(NightProfile, AfterSuccessTheColourMatrixIsManualWithTheRawDiagonalOneOneOne)
{
    ASSERT_EQ(run_night_profile().result, 0);
    const ISP_COLORMATRIX_ATTR_S ccm = platform_record<ISP_COLORMATRIX_ATTR_S>(SIM_REC_CCM_ATTR);
    EXPECT_EQ(ccm.enOpType, OP_TYPE_MANUAL);
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(ccm.stManual.au16CCM[i], kNightCcm[i]) << i;
    const ISP_COLORMATRIX_ATTR_S ccm0 = power_on_record<ISP_COLORMATRIX_ATTR_S>(SIM_REC_CCM_ATTR);
    EXPECT_EQ(ccm.stManual.bSatEn, ccm0.stManual.bSatEn);
    EXPECT_TRUE(same_bytes(&ccm.stAuto, &ccm0.stAuto, sizeof ccm.stAuto)) << "the automatic matrices stay";
}

TEST_F(NightProfile, AfterSuccessAntiFalseColourIsDisabledWithItsOperationTypeAndArraysUnchanged)
{
    // A manual operation type and odd arrays beforehand, so that "unchanged" is visible.
    ISP_ANTI_FALSECOLOR_S seeded = power_on_record<ISP_ANTI_FALSECOLOR_S>(SIM_REC_ANTI_FALSECOLOR);
    seeded.enOpType = OP_TYPE_MANUAL;
    for (int i = 0; i < 16; ++i)
        seeded.stAuto.au8Strength[i] = HI_U8(200 + i);
    sim_mpp_write(SIM_REC_ANTI_FALSECOLOR, &seeded);

    ASSERT_EQ(run_night_profile().result, 0);
    const ISP_ANTI_FALSECOLOR_S afc = platform_record<ISP_ANTI_FALSECOLOR_S>(SIM_REC_ANTI_FALSECOLOR);
    EXPECT_EQ(afc.bEnable, HI_FALSE);
    ISP_ANTI_FALSECOLOR_S want = seeded;
    want.bEnable = HI_FALSE;
    EXPECT_TRUE(same_bytes(&afc, &want, sizeof afc));
}

TEST_F(NightProfile, AfterSuccessDefectPixelCorrectionIsEnabledAndAutomatic)
{
    ISP_DP_DYNAMIC_ATTR_S seeded = power_on_record<ISP_DP_DYNAMIC_ATTR_S>(SIM_REC_DP_DYNAMIC_ATTR);
    seeded.bEnable = HI_FALSE;
    seeded.enOpType = OP_TYPE_MANUAL;
    sim_mpp_write(SIM_REC_DP_DYNAMIC_ATTR, &seeded);

    ASSERT_EQ(run_night_profile().result, 0);
    const ISP_DP_DYNAMIC_ATTR_S dp = platform_record<ISP_DP_DYNAMIC_ATTR_S>(SIM_REC_DP_DYNAMIC_ATTR);
    EXPECT_EQ(dp.bEnable, HI_TRUE);
    EXPECT_EQ(dp.enOpType, OP_TYPE_AUTO);
    const ISP_DP_DYNAMIC_ATTR_S want = expected_dp_dynamic();
    EXPECT_TRUE(same_bytes(&dp, &want, sizeof dp));
}

// The four states the Part's edge case lists after one success, each from a platform where the opposite
// shows: saturation and matrix automatic at power-on, anti-false-colour manual with odd arrays, defect
// pixels disabled and manual.
TEST_F(NightProfile, AfterSuccessSaturationAndMatrixAreManualAntiFalseColourOffAndDefectPixelsAutomatic)
{
    ISP_ANTI_FALSECOLOR_S afc0 = power_on_record<ISP_ANTI_FALSECOLOR_S>(SIM_REC_ANTI_FALSECOLOR);
    afc0.enOpType = OP_TYPE_MANUAL;
    for (int i = 0; i < 16; ++i) {
        afc0.stAuto.au8Strength[i] = HI_U8(90 + i);
        afc0.stAuto.au8Threshold[i] = HI_U8(60 + i);
        afc0.stAuto.au16Offset[i] = HI_U16(700 + i);
    }
    sim_mpp_write(SIM_REC_ANTI_FALSECOLOR, &afc0);
    ISP_DP_DYNAMIC_ATTR_S dp0 = power_on_record<ISP_DP_DYNAMIC_ATTR_S>(SIM_REC_DP_DYNAMIC_ATTR);
    dp0.bEnable = HI_FALSE;
    dp0.enOpType = OP_TYPE_MANUAL;
    sim_mpp_write(SIM_REC_DP_DYNAMIC_ATTR, &dp0);
    const ISP_SATURATION_ATTR_S sat0 = power_on_record<ISP_SATURATION_ATTR_S>(SIM_REC_SATURATION_ATTR);
    const ISP_COLORMATRIX_ATTR_S ccm0 = power_on_record<ISP_COLORMATRIX_ATTR_S>(SIM_REC_CCM_ATTR);
    ASSERT_EQ(sat0.enOpType, OP_TYPE_AUTO);
    ASSERT_NE(sat0.stManual.u8Saturation, 0);
    ASSERT_EQ(ccm0.enOpType, OP_TYPE_AUTO);

    ASSERT_EQ(run_night_profile().result, 0);

    const ISP_SATURATION_ATTR_S sat = platform_record<ISP_SATURATION_ATTR_S>(SIM_REC_SATURATION_ATTR);
    EXPECT_EQ(sat.enOpType, OP_TYPE_MANUAL);
    EXPECT_EQ(sat.stManual.u8Saturation, 0);
    const ISP_COLORMATRIX_ATTR_S ccm = platform_record<ISP_COLORMATRIX_ATTR_S>(SIM_REC_CCM_ATTR);
    EXPECT_EQ(ccm.enOpType, OP_TYPE_MANUAL);
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            EXPECT_EQ(ccm.stManual.au16CCM[3 * r + c], r == c ? 1 : 0) << "row " << r << " column " << c;
    const ISP_ANTI_FALSECOLOR_S afc = platform_record<ISP_ANTI_FALSECOLOR_S>(SIM_REC_ANTI_FALSECOLOR);
    EXPECT_EQ(afc.bEnable, HI_FALSE);
    ISP_ANTI_FALSECOLOR_S want_afc = afc0;
    want_afc.bEnable = HI_FALSE;
    EXPECT_TRUE(same_bytes(&afc, &want_afc, sizeof afc)) << "operation type and arrays as they were";
    const ISP_DP_DYNAMIC_ATTR_S dp = platform_record<ISP_DP_DYNAMIC_ATTR_S>(SIM_REC_DP_DYNAMIC_ATTR);
    EXPECT_EQ(dp.bEnable, HI_TRUE);
    EXPECT_EQ(dp.enOpType, OP_TYPE_AUTO);
}

TEST_F(NightProfile, NightThenColourProfileMakesSaturationMatrixAutomaticAndAntiFalseColourEnabledAgain)
{
    // The colour profile alone, on a power-on platform: the reference (Part 2.3, its own tests).
    ASSERT_EQ(run_day_profile().result, 0);
    const std::vector<Bytes> day_alone = platform_state();

    sim_mpp_reset();
    ASSERT_EQ(run_night_profile().result, 0);
    ASSERT_EQ(run_day_profile().result, 0);
    EXPECT_EQ(profile_mode(), 0);

    const ISP_SATURATION_ATTR_S sat = platform_record<ISP_SATURATION_ATTR_S>(SIM_REC_SATURATION_ATTR);
    EXPECT_EQ(sat.enOpType, OP_TYPE_AUTO);
    EXPECT_EQ(sat.stManual.u8Saturation, 0) << "the night's manual 0 stays stored, not applied";
    const ISP_COLORMATRIX_ATTR_S ccm = platform_record<ISP_COLORMATRIX_ATTR_S>(SIM_REC_CCM_ATTR);
    EXPECT_EQ(ccm.enOpType, OP_TYPE_AUTO);
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(ccm.stManual.au16CCM[i], kNightCcm[i]) << "the night's manual matrix stays stored, " << i;
    const ISP_ANTI_FALSECOLOR_S afc = platform_record<ISP_ANTI_FALSECOLOR_S>(SIM_REC_ANTI_FALSECOLOR);
    EXPECT_EQ(afc.bEnable, HI_TRUE);
    EXPECT_EQ(afc.enOpType, OP_TYPE_AUTO);

    // Byte for byte: the colour profile alone, except the two manual values the night left behind.
    std::vector<Bytes> want = day_alone;
    ISP_SATURATION_ATTR_S want_sat = get<ISP_SATURATION_ATTR_S>(want, SIM_REC_SATURATION_ATTR);
    want_sat.stManual.u8Saturation = 0;
    put(want, SIM_REC_SATURATION_ATTR, want_sat);
    ISP_COLORMATRIX_ATTR_S want_ccm = get<ISP_COLORMATRIX_ATTR_S>(want, SIM_REC_CCM_ATTR);
    std::memcpy(want_ccm.stManual.au16CCM, kNightCcm, sizeof want_ccm.stManual.au16CCM);
    put(want, SIM_REC_CCM_ATTR, want_ccm);
    expect_state(want);
}

TEST_F(NightProfile, DemosaicGetFailureLeavesEarlierStepsAppliedAndLaterAttributesUntouched)
{
    sim_mpp_fail("HI_MPI_ISP_GetDemosaicAttr", 1, 1, HI_ERR_ISP_NOT_INIT);
    const Outcome o = run_night_profile();
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, "HI_MPI_ISP_GetDemosaicAttr ISP_SetParamNight 1296 failed 0xa01c8040 !!!\n");
    // Exposure, gamma, saturation, colour matrix and sharpen applied; the rest as at power-on.
    expect_state(expected_state(128, 8));
    EXPECT_EQ(platform_calls(), Calls(kNightCalls128.begin(), kNightCalls128.begin() + 11));
}

TEST_F(NightProfile, DemosaicGetFailureAt127LeavesSharpenUntouchedToo)
{
    sim_host_set_field(SYSINFO_u8Sharpness, 127);
    sim_mpp_fail("HI_MPI_ISP_GetDemosaicAttr", 1, 1, HI_ERR_ISP_NOT_INIT);
    EXPECT_EQ(run_night_profile().result, -1);
    expect_state(expected_state(127, 8));
}

// ---- the rest of the Part ----------------------------------------------------------------------------------

TEST_F(NightProfile, EveryByteOfEveryRecordAt128IsThePowerOnRecordPlusTheNamedMembers)
{
    expect_silent_success(run_night_profile());
    expect_state(expected_state(128));
}

TEST_F(NightProfile, TheSetCallsWriteTheExpectedRecords)
{
    ASSERT_EQ(run_night_profile().result, 0);
    const std::vector<Bytes> want = expected_state(128);
    expect_set_calls_wrote(want, {"HI_MPI_ISP_SetExposureAttr", "HI_MPI_ISP_SetGammaAttr",
                                  "HI_MPI_ISP_SetSaturationAttr", "HI_MPI_ISP_SetCCMAttr",
                                  "HI_MPI_ISP_SetSharpenAttr", "HI_MPI_ISP_SetDemosaicAttr",
                                  "HI_MPI_ISP_SetAntiFalseColorAttr", "HI_MPI_ISP_SetDPDynamicAttr"});
}

TEST_F(NightProfile, EveryCallAddressesIspDeviceZero)
{
    ASSERT_EQ(run_night_profile().result, 0);
    expect_calls_on_device_zero(kNightCalls128.size());
}

TEST_F(NightProfile, SuccessLeavesProfileModeOneAndTheRefreshRequestRaised)
{
    EXPECT_EQ(run_night_profile().result, 0);
    EXPECT_EQ(profile_mode(), 1);
    EXPECT_EQ(reflash_mark(), 1);
}

TEST_F(NightProfile, CallingTwiceGivesTheSamePlatformStateAsCallingOnce)
{
    ASSERT_NO_FATAL_FAILURE(expect_second_run_changes_nothing(run_night_profile));
}

TEST_F(NightProfile, TheAeWeightGridSumsTo545AndCeilingsEqualTheExportedScalars)
{
    ASSERT_EQ(run_night_profile().result, 0);
    const ISP_EXPOSURE_ATTR_S exp = platform_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR);
    int sum = 0;
    for (const auto &row : exp.stAuto.au8Weight)
        for (HI_U8 w : row)
            sum += w;
    EXPECT_EQ(sum, 545);
    EXPECT_EQ(exp.stAuto.au8Weight[13][2], 5);
    EXPECT_EQ(exp.stAuto.au8Weight[3][8], 1);
    EXPECT_EQ(exp.stAuto.stAGainRange.u32Max, gNightAGainRangeMax);
    EXPECT_EQ(exp.stAuto.stDGainRange.u32Max, gNightDGainRangeMax);
    EXPECT_EQ(exp.stAuto.stISPDGainRange.u32Max, gNightISPDGainRangeMax);
    EXPECT_EQ(exp.stAuto.stSysGainRange.u32Max, 262144u);
    EXPECT_EQ(exp.stAuto.u32GainThreshold, 16384u);
}

TEST_F(NightProfile, TheGammaCurveIsTheNightCurveWithTheNodesPart22Lists)
{
    ASSERT_EQ(run_night_profile().result, 0);
    const ISP_GAMMA_ATTR_S g = platform_record<ISP_GAMMA_ATTR_S>(SIM_REC_GAMMA_ATTR);
    EXPECT_EQ(g.bEnable, HI_TRUE);
    EXPECT_EQ(g.enCurveType, ISP_GAMMA_CURVE_USER_DEFINE);
    const int first[9] = {0, 69, 138, 207, 272, 332, 390, 446, 500};
    for (int n = 0; n < 9; ++n)
        EXPECT_EQ(g.u16Table[n], first[n]) << n;
    const int every16[17] = {0,    875,  1484, 1947, 2313, 2573, 2789, 2977, 3128,
                             3274, 3419, 3540, 3670, 3786, 3904, 4010, 4095};
    for (int k = 0; k < 17; ++k)
        EXPECT_EQ(g.u16Table[16 * k], every16[k]) << 16 * k;
}

TEST_F(NightProfile, EntriesTwelveToFifteenOfEveryAutomaticArrayKeepTheirPlatformValues)
{
    ASSERT_EQ(run_night_profile().result, 0);
    const ISP_SHARPEN_ATTR_S shp = platform_record<ISP_SHARPEN_ATTR_S>(SIM_REC_SHARPEN_ATTR);
    const ISP_SHARPEN_ATTR_S shp0 = power_on_record<ISP_SHARPEN_ATTR_S>(SIM_REC_SHARPEN_ATTR);
    for (int i = 12; i < 16; ++i) {
        EXPECT_NE(shp0.stAuto.au8DetailCtrl[i], 0) << "the simulator fills entries 12-15";
        EXPECT_EQ(shp.stAuto.au8DetailCtrl[i], shp0.stAuto.au8DetailCtrl[i]) << i;
        EXPECT_EQ(shp.stAuto.au16SharpenUd[i], shp0.stAuto.au16SharpenUd[i]) << i;
    }
    for (int i = 0; i < 12; ++i)
        EXPECT_EQ(shp.stAuto.au16SharpenUd[i], gNightSharpenUd[i]) << i;
    expect_state(expected_state(128)); // and every other array, byte for byte
}

TEST_F(NightProfile, FromRandomRecordsOnlyTheNamedMembersChange)
{
    expect_only_named_members_change(run_night_profile, expected_state);
}

TEST_F(NightProfile, OnlyU8SharpnessOfTheSettingsRecordIsRead)
{
    expect_only_sharpness_read(run_night_profile, expected_state, 0x5A, kNightCalls128);
}

TEST_F(NightProfile, AFailedSetLeavesThatAttributeAsItWasAndStopsThere)
{
    sim_mpp_fail("HI_MPI_ISP_SetCCMAttr", 1, 1, HI_ERR_ISP_NOT_INIT);
    const Outcome o = run_night_profile();
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, "HI_MPI_ISP_SetCCMAttr ISP_SetParamNight 1205 failed 0xa01c8040 !!!\n");
    expect_state(expected_state(128, 6));
    EXPECT_EQ(profile_mode(), 1);
    EXPECT_EQ(reflash_mark(), 1);
}

// State and lifecycle: the profile does not touch the night refresh's gamma mark (Part 3.3).
TEST_F(NightProfile, DoesNotTouchTheNightRefreshGammaMark)
{
    // The night refresh at G = 40, then at G = 50 (same band); the profile loads g_gamma_table_night between.
    expect_refresh_gamma_mark_untouched(run_night_profile, ISP_SetParamNightRefresh, 40, 50, expected_gamma());
}

} // namespace
