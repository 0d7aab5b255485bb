// Part 1.4: baseline settings at start (QV_ISP_SetParam).
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "call_test_support.h"


namespace {

// Part 1.4, Interfaces: the calls in order, every block running.
const Calls kFullPath = {
    "HI_MPI_ISP_GetExposureAttr",   "HI_MPI_ISP_SetExposureAttr",  "HI_MPI_ISP_GetWBAttr",
    "HI_MPI_ISP_SetWBAttr",         "HI_MPI_ISP_GetAWBAttrEx",     "HI_MPI_ISP_SetAWBAttrEx",
    "HI_MPI_ISP_GetDRCAttr",        "HI_MPI_ISP_SetDRCAttr",       "HI_MPI_VI_GetDCIParam",
    "HI_MPI_VI_SetDCIParam",        "HI_MPI_ISP_GetBlackLevelAttr", "HI_MPI_ISP_SetBlackLevelAttr",
};

// Step 4's line, with no line end.
const std::string kDashes = "--------11111111111111111111111111112222222222-----------";

Outcome baseline()
{
    return captured(QV_ISP_SetParam);
}

// Values the baseline changes are set apart from them first, so that every write shows.
void seed_records()
{
    ISP_WB_ATTR_S wb = power_on_record<ISP_WB_ATTR_S>(SIM_REC_WB_ATTR);
    wb.stAuto.u16HighColorTemp = 9000;
    wb.stAuto.u16LowColorTemp = 2000;
    sim_mpp_write(SIM_REC_WB_ATTR, &wb);
    VI_DCI_PARAM_S dci = power_on_record<VI_DCI_PARAM_S>(SIM_REC_VI_DCI_PARAM);
    dci.bEnable = HI_TRUE;
    sim_mpp_write(SIM_REC_VI_DCI_PARAM, &dci);
}

// The thirteen exposure fields of Part 1.4, on the power-on record.
ISP_EXPOSURE_ATTR_S expected_exposure()
{
    ISP_EXPOSURE_ATTR_S r = power_on_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR);
    r.enOpType = ISP_OP_TYPE_E(0);
    r.stAuto.stAGainRange.u32Max = 15872;
    r.stAuto.stDGainRange.u32Max = 1024;
    r.stAuto.stISPDGainRange.u32Max = 4096;
    r.stAuto.u32GainThreshold = 16384;
    r.stAuto.u8Tolerance = 5;
    r.stAuto.u8Compensation = 50;
    r.stAuto.enAEMode = ISP_AE_MODE_E(1);
    r.stAuto.stAntiflicker.bEnable = HI_BOOL(1);
    r.stAuto.stAntiflicker.u8Frequency = 50;
    r.stAuto.stAntiflicker.enMode = ISP_ANTIFLICKER_MODE_E(0);
    r.stAuto.stSubflicker.bEnable = HI_BOOL(1);
    r.stAuto.stSubflicker.u8LumaDiff = 30;
    return r;
}

ISP_WB_ATTR_S expected_wb()
{
    ISP_WB_ATTR_S r = power_on_record<ISP_WB_ATTR_S>(SIM_REC_WB_ATTR);
    r.stAuto.u16HighColorTemp = 10000;
    r.stAuto.u16LowColorTemp = 2300;
    return r;
}

ISP_AWB_ATTR_EX_S expected_awb_ex()
{
    ISP_AWB_ATTR_EX_S r = power_on_record<ISP_AWB_ATTR_EX_S>(SIM_REC_AWB_ATTR_EX);
    r.u8Tolerance = 2;
    return r;
}

ISP_DRC_ATTR_S expected_drc()
{
    ISP_DRC_ATTR_S r = power_on_record<ISP_DRC_ATTR_S>(SIM_REC_DRC_ATTR);
    r.bEnable = HI_BOOL(0);
    return r;
}

VI_DCI_PARAM_S expected_dci()
{
    VI_DCI_PARAM_S r = power_on_record<VI_DCI_PARAM_S>(SIM_REC_VI_DCI_PARAM);
    r.bEnable = HI_BOOL(0);
    return r;
}

ISP_BLACK_LEVEL_S expected_black()
{
    ISP_BLACK_LEVEL_S r = power_on_record<ISP_BLACK_LEVEL_S>(SIM_REC_BLACK_LEVEL);
    for (HI_U16 &level : r.au16BlackLevel)
        level = 63;
    return r;
}

// Whether the current platform record `id` equals `want` byte for byte.
template <typename T> testing::AssertionResult holds(sim_mpp_record_id id, const T &want)
{
    T now = platform_record<T>(id);
    return same_bytes(&now, &want, sizeof(T)) << " (" << sim_mpp_record_name(id) << ")";
}

template <typename T> testing::AssertionResult at_power_on(sim_mpp_record_id id)
{
    return holds(id, power_on_record<T>(id));
}

class Baseline : public SimTest {};

} // namespace

TEST_F(Baseline, FullPathWritesExactlyTheNamedFields)
{
    seed_records();
    Outcome run = baseline();
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(run.out, kDashes);
    EXPECT_EQ(platform_calls(), kFullPath);
    for (size_t i = 0; i < sim_mpp_log_count(); ++i)
        EXPECT_EQ(sim_mpp_log_at(i)->dev, 0) << i;
    EXPECT_TRUE(holds(SIM_REC_EXPOSURE_ATTR, expected_exposure()));
    EXPECT_TRUE(holds(SIM_REC_WB_ATTR, expected_wb()));
    EXPECT_TRUE(holds(SIM_REC_AWB_ATTR_EX, expected_awb_ex()));
    EXPECT_TRUE(holds(SIM_REC_DRC_ATTR, expected_drc()));
    EXPECT_TRUE(holds(SIM_REC_VI_DCI_PARAM, expected_dci()));
    EXPECT_TRUE(holds(SIM_REC_BLACK_LEVEL, expected_black()));
    EXPECT_TRUE(host_log_texts().empty());
}

// ---- edge cases of Part 1.4 ----------------------------------------------------------------------------

TEST_F(Baseline, ExposureMode1LeavesTheExposureAttributeAloneAndRunsTheLaterBlocks)
{
    seed_records();
    sim_host_set_field(SYSINFO_u8ExposureMode, 1);
    Outcome run = baseline();
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(platform_calls(), Calls(kFullPath.begin() + 2, kFullPath.end()));
    EXPECT_TRUE(at_power_on<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR));
    EXPECT_TRUE(holds(SIM_REC_WB_ATTR, expected_wb()));
    EXPECT_TRUE(holds(SIM_REC_BLACK_LEVEL, expected_black()));
}

TEST_F(Baseline, WdrLevel3LeavesCompressionAloneAndStillSwitchesDciOff)
{
    seed_records();
    sim_host_set_field(SYSINFO_u8WdrLevel, 3);
    Outcome run = baseline();
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_GetDRCAttr"), 0u);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetDRCAttr"), 0u);
    EXPECT_TRUE(at_power_on<ISP_DRC_ATTR_S>(SIM_REC_DRC_ATTR));
    EXPECT_TRUE(holds(SIM_REC_VI_DCI_PARAM, expected_dci()));
    EXPECT_EQ(platform_calls(), (Calls{"HI_MPI_ISP_GetExposureAttr", "HI_MPI_ISP_SetExposureAttr",
                                       "HI_MPI_ISP_GetWBAttr", "HI_MPI_ISP_SetWBAttr", "HI_MPI_ISP_GetAWBAttrEx",
                                       "HI_MPI_ISP_SetAWBAttrEx", "HI_MPI_VI_GetDCIParam", "HI_MPI_VI_SetDCIParam",
                                       "HI_MPI_ISP_GetBlackLevelAttr", "HI_MPI_ISP_SetBlackLevelAttr"}));
}

TEST_F(Baseline, AfterSuccessTheBlackLevelOfAllFourChannelsReads63)
{
    ASSERT_EQ(baseline().result, 0);
    ISP_BLACK_LEVEL_S black = platform_record<ISP_BLACK_LEVEL_S>(SIM_REC_BLACK_LEVEL);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(black.au16BlackLevel[i], 63) << i;
}

TEST_F(Baseline, FailingSetAWBAttrExHappensAfterTheDashedLine)
{
    sim_mpp_fail("HI_MPI_ISP_SetAWBAttrEx", 1, 1, HI_ERR_ISP_NOT_INIT);
    Outcome run = baseline();
    EXPECT_EQ(run.result, -1);
    EXPECT_EQ(run.out, kDashes + " HI_MPI_ISP_SetAWBAttrEx QV_ISP_SetParam 450 failed 0xa01c8040 !!!\n");
    EXPECT_EQ(platform_calls().back(), "HI_MPI_ISP_SetAWBAttrEx");
}

TEST_F(Baseline, FailingGetWBAttrLeavesExposureAppliedAndTouchesNothingLater)
{
    seed_records();
    sim_mpp_fail("HI_MPI_ISP_GetWBAttr", 1, 1, HI_ERR_ISP_NOT_INIT);
    Outcome run = baseline();
    EXPECT_EQ(run.result, -1);
    EXPECT_EQ(run.out, "HI_MPI_ISP_GetWBAttr QV_ISP_SetParam 419 failed 0xa01c8040 !!!\n");
    EXPECT_EQ(platform_calls(), Calls(kFullPath.begin(), kFullPath.begin() + 3));
    EXPECT_TRUE(holds(SIM_REC_EXPOSURE_ATTR, expected_exposure()));
    EXPECT_TRUE(at_power_on<ISP_DRC_ATTR_S>(SIM_REC_DRC_ATTR));
    EXPECT_TRUE(at_power_on<ISP_BLACK_LEVEL_S>(SIM_REC_BLACK_LEVEL));
    EXPECT_EQ(platform_record<VI_DCI_PARAM_S>(SIM_REC_VI_DCI_PARAM).bEnable, HI_TRUE); // as seeded
}

// Part 1.6 edge case, for this function.
TEST_F(Baseline, NoSettingsRecordPrintsAndReturnsMinusOneWithNoPlatformCall)
{
    sim_host_sysinfo_null(1);
    Outcome run = baseline();
    EXPECT_EQ(run.result, -1);
    EXPECT_EQ(run.out, "GetSysInfo failed is NULL\n");
    EXPECT_EQ(sim_mpp_log_count(), 0u);
}

// Step 7 copies g_black_level_table, the night refresh's low-gain table (Part 3.4), whatever was there.
TEST_F(Baseline, BlackLevelIsTheSameTableAsTheNightRefreshAtLowGain)
{
    ASSERT_EQ(baseline().result, 0);
    ISP_BLACK_LEVEL_S after_baseline = platform_record<ISP_BLACK_LEVEL_S>(SIM_REC_BLACK_LEVEL);
    {
        StdoutCapture quiet;
        ASSERT_EQ(ISP_SetParamNightRefresh(24, 4), 0);
    }
    EXPECT_TRUE(holds(SIM_REC_BLACK_LEVEL, after_baseline));
}
