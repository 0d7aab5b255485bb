// Part 4.2: exposure controls (QV_ISP_SetExposureAttr, SetFlickerAttr, SetBLCAttr, GetExposureInfo).
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "call_test_support.h"

extern "C" {
#include "attributes/attributes.h"
#include "isptune.h"
}

namespace {

const Calls kReadWrite = {"HI_MPI_ISP_GetExposureAttr", "HI_MPI_ISP_SetExposureAttr"};

// Part 1.4's calls when every block of the baseline runs.
const Calls kBaseline = {
    "HI_MPI_ISP_GetExposureAttr",   "HI_MPI_ISP_SetExposureAttr",  "HI_MPI_ISP_GetWBAttr",
    "HI_MPI_ISP_SetWBAttr",         "HI_MPI_ISP_GetAWBAttrEx",     "HI_MPI_ISP_SetAWBAttrEx",
    "HI_MPI_ISP_GetDRCAttr",        "HI_MPI_ISP_SetDRCAttr",       "HI_MPI_VI_GetDCIParam",
    "HI_MPI_VI_SetDCIParam",        "HI_MPI_ISP_GetBlackLevelAttr", "HI_MPI_ISP_SetBlackLevelAttr",
};

class Exposure : public SimClockTest {};

Outcome set_exposure(uint32_t mode, uint32_t gain, uint32_t shutter)
{
    IspExposureCfg cfg = {mode, gain, shutter};
    return captured([&] { return QV_ISP_SetExposureAttr(&cfg); });
}

Outcome set_flicker(uint8_t mode)
{
    IspFlickerCfg cfg = {mode};
    return captured([&] { return QV_ISP_SetFlickerAttr(&cfg); });
}

Outcome set_blc(uint8_t enable, uint8_t level)
{
    IspBlcCfg cfg = {enable, level};
    return captured([&] { return QV_ISP_SetBLCAttr(&cfg); });
}

ISP_EXPOSURE_ATTR_S power_on_exposure() { return power_on_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR); }

// The record written by the setter's one write (log entry 1), which must also be the platform's record.
ISP_EXPOSURE_ATTR_S written_exposure()
{
    EXPECT_EQ(platform_calls(), kReadWrite);
    return written_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR);
}

// Part 4.2 step 5: the manual fields of mode 1.
void expect_manual(ISP_EXPOSURE_ATTR_S &r, uint32_t gain)
{
    r.enOpType = ISP_OP_TYPE_E(1);
    r.stManual.enExpTimeOpType = ISP_OP_TYPE_E(1);
    r.stManual.enAGainOpType = ISP_OP_TYPE_E(1);
    r.stManual.enDGainOpType = ISP_OP_TYPE_E(1);
    r.stManual.enISPDGainOpType = ISP_OP_TYPE_E(1);
    r.stManual.u32AGain = (gain + 64) * 16;
    r.stManual.u32DGain = (gain + 64) * 16;
    r.stManual.u32ISPDGain = (gain + 64) * 16;
}

// The spec's shutter table, typed from Part 4.2 independently of the library.
const uint32_t kShutterTimes[17] = {40000, 33333, 13333, 10000, 8333, 6666, 4000, 3333, 2352,
                                    1666,  1000,  800,   571,   400,  333,  166,  100};

} // namespace

// ---- gShutterTimeTable -----------------------------------------------------------------------------------

TEST(ShutterTable, SeventeenRowsOfKeyAndTimeInOrder)
{
    ASSERT_EQ(sizeof gShutterTimeTable, 17u * 2u * 4u);
    for (uint32_t row = 0; row < 17; ++row) {
        EXPECT_EQ(gShutterTimeTable[row][0], row) << "row " << row;
        EXPECT_EQ(gShutterTimeTable[row][1], kShutterTimes[row]) << "row " << row;
    }
}

TEST(ShutterTable, TimesAreTheFractionsOfASecondTruncated)
{
    const uint32_t denominators[17] = {25, 30, 75, 100, 120, 150, 250, 300, 425,
                                       600, 1000, 1250, 1750, 2500, 3000, 6000, 10000};
    for (int row = 0; row < 17; ++row)
        EXPECT_EQ(gShutterTimeTable[row][1], 1000000u / denominators[row]) << "1/" << denominators[row];
    EXPECT_EQ(gShutterTimeTable[5][1], 6666u);
    EXPECT_EQ(gShutterTimeTable[8][1], 2352u);
}

TEST_F(Exposure, EveryShutterKeySetsItsTimeInManualMode)
{
    for (uint32_t key = 0; key < 17; ++key) {
        sim_mpp_reset();
        Outcome o = set_exposure(1, 10, key);
        ASSERT_EQ(o.result, 0);
        ISP_EXPOSURE_ATTR_S expected = power_on_exposure();
        expect_manual(expected, 10);
        expected.stManual.u32ExpTime = kShutterTimes[key];
        ISP_EXPOSURE_ATTR_S written = written_exposure();
        EXPECT_TRUE(same_bytes(&written, &expected, sizeof expected)) << "key " << key;
    }
}

// ---- QV_ISP_SetExposureAttr ------------------------------------------------------------------------------

TEST_F(Exposure, ExposureModeZeroAppliesTheBaselineOnlyResultZero)
{
    Outcome o = set_exposure(0, 200, 6);
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(platform_calls(), kBaseline); // the baseline's calls, none of the setter's own
    EXPECT_EQ(o.out.find("stExposureAttr.enOpType"), std::string::npos);
    ISP_EXPOSURE_ATTR_S now = platform_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR);
    EXPECT_EQ(now.stManual.u32ExpTime, power_on_exposure().stManual.u32ExpTime); // shutter not applied
    EXPECT_EQ(now.stAuto.u8Compensation, 50);                                     // baseline applied
}

TEST_F(Exposure, ExposureModeZeroResultZeroEvenIfTheBaselineFailed)
{
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_GetWBAttr", 1, 1, HI_ERR_ISP_NOT_INIT), 0);
    Outcome o = set_exposure(0, 0, 0);
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(platform_calls(), Calls(kBaseline.begin(), kBaseline.begin() + 3));
    EXPECT_NE(o.out.find("HI_MPI_ISP_GetWBAttr QV_ISP_SetParam 419 failed 0xa01c8040 !!!\n"), std::string::npos);
}

TEST_F(Exposure, ExposureModeZeroWithoutHostRecordResultZero)
{
    sim_host_sysinfo_null(1);
    Outcome o = set_exposure(0, 0, 0);
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(o.out, "GetSysInfo failed is NULL\n");
    EXPECT_TRUE(platform_calls().empty());
}

TEST_F(Exposure, ModeOneGainZeroShutterOneAllManualGains1024Time33333)
{
    Outcome o = set_exposure(1, 0, 1);
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(o.out, "stExposureAttr.enOpType 0 \n");
    ISP_EXPOSURE_ATTR_S expected = power_on_exposure();
    expect_manual(expected, 0);
    expected.stManual.u32ExpTime = 33333;
    ISP_EXPOSURE_ATTR_S written = written_exposure();
    EXPECT_TRUE(same_bytes(&written, &expected, sizeof expected));
    EXPECT_EQ(written.stManual.u32AGain, 1024u);
    EXPECT_EQ(written.stManual.u32DGain, 1024u);
    EXPECT_EQ(written.stManual.u32ISPDGain, 1024u);
}

TEST_F(Exposure, ModeOneGain255Gives5104OnEachStage)
{
    ASSERT_EQ(set_exposure(1, 255, 0).result, 0);
    ISP_EXPOSURE_ATTR_S written = written_exposure();
    EXPECT_EQ(written.stManual.u32AGain, 5104u);
    EXPECT_EQ(written.stManual.u32DGain, 5104u);
    EXPECT_EQ(written.stManual.u32ISPDGain, 5104u);
    EXPECT_EQ(written.stManual.u32ExpTime, 40000u);
}

TEST_F(Exposure, ModeOneShutter17NoRowGainsAndTypesSetTimeAsRead)
{
    Outcome o = set_exposure(1, 100, 17);
    EXPECT_EQ(o.result, 0);
    ISP_EXPOSURE_ATTR_S expected = power_on_exposure();
    expect_manual(expected, 100);
    ISP_EXPOSURE_ATTR_S written = written_exposure();
    EXPECT_TRUE(same_bytes(&written, &expected, sizeof expected));
    EXPECT_EQ(written.stManual.u32ExpTime, 8000u); // the power-on time, as read
}

TEST_F(Exposure, ModeTwoShutter6OnlyTheTimeBecomes4000)
{
    Outcome o = set_exposure(2, 100, 6);
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(o.out, "stExposureAttr.enOpType 0 \n");
    ISP_EXPOSURE_ATTR_S expected = power_on_exposure();
    expected.stManual.u32ExpTime = 4000;
    ISP_EXPOSURE_ATTR_S written = written_exposure();
    EXPECT_TRUE(same_bytes(&written, &expected, sizeof expected));
}

TEST_F(Exposure, OperationTypeIsPrintedAsReadBeforeTheChange)
{
    ISP_EXPOSURE_ATTR_S seeded = power_on_exposure();
    seeded.enOpType = ISP_OP_TYPE_E(1);
    sim_mpp_write(SIM_REC_EXPOSURE_ATTR, &seeded);
    EXPECT_EQ(set_exposure(2, 0, 3).out, "stExposureAttr.enOpType 1 \n");
    set_raw(seeded.enOpType, 0x2a);
    sim_mpp_write(SIM_REC_EXPOSURE_ATTR, &seeded);
    EXPECT_EQ(set_exposure(1, 0, 3).out, "stExposureAttr.enOpType 2a \n");
}

TEST_F(Exposure, ManualGainAbove255IsRefusedWithoutPlatformCall)
{
    Outcome o = set_exposure(1, 256, 1);
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, "QV_ISP_SetExposureAttr: manual gain 256 out of range 0 to 255, nothing done\n");
    EXPECT_TRUE(platform_calls().empty());
    // Outside mode 1 the gain is not used, so it is not checked.
    EXPECT_EQ(set_exposure(2, 0xFFFFFFFFu, 1).result, 0);
}

TEST_F(Exposure, NullExposureGroupIsRefused)
{
    expect_null_refused(captured([] { return QV_ISP_SetExposureAttr(nullptr); }),
                        "QV_ISP_SetExposureAttr: argument is NULL, nothing done\n");
}

// ---- QV_ISP_SetFlickerAttr -------------------------------------------------------------------------------

namespace {
// A power-on exposure record with a recognisable anti-flicker frequency, so "untouched" shows.
ISP_EXPOSURE_ATTR_S seed_flicker()
{
    ISP_EXPOSURE_ATTR_S r = power_on_exposure();
    r.stAuto.stAntiflicker.u8Frequency = 55;
    sim_mpp_write(SIM_REC_EXPOSURE_ATTR, &r);
    return r;
}
} // namespace

TEST_F(Exposure, FlickerModeZeroIs60HzAutoMode)
{
    ISP_EXPOSURE_ATTR_S expected = seed_flicker();
    Outcome o = set_flicker(0);
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(o.out, "");
    expected.stAuto.stAntiflicker.bEnable = HI_BOOL(1);
    expected.stAuto.stAntiflicker.enMode = ISP_ANTIFLICKER_MODE_E(1);
    expected.stAuto.stAntiflicker.u8Frequency = 60;
    ISP_EXPOSURE_ATTR_S written = written_exposure();
    EXPECT_TRUE(same_bytes(&written, &expected, sizeof expected));
}

TEST_F(Exposure, FlickerModeOneIs50Hz)
{
    ISP_EXPOSURE_ATTR_S expected = seed_flicker();
    EXPECT_EQ(set_flicker(1).result, 0);
    expected.stAuto.stAntiflicker.bEnable = HI_BOOL(1);
    expected.stAuto.stAntiflicker.enMode = ISP_ANTIFLICKER_MODE_E(1);
    expected.stAuto.stAntiflicker.u8Frequency = 50;
    ISP_EXPOSURE_ATTR_S written = written_exposure();
    EXPECT_TRUE(same_bytes(&written, &expected, sizeof expected));
}

TEST_F(Exposure, FlickerModeTwoDisabledButModeFieldStillOne)
{
    ISP_EXPOSURE_ATTR_S expected = seed_flicker();
    expected.stAuto.stAntiflicker.bEnable = HI_BOOL(1);
    sim_mpp_write(SIM_REC_EXPOSURE_ATTR, &expected);
    EXPECT_EQ(set_flicker(2).result, 0);
    expected.stAuto.stAntiflicker.bEnable = HI_BOOL(0);
    expected.stAuto.stAntiflicker.enMode = ISP_ANTIFLICKER_MODE_E(1);
    ISP_EXPOSURE_ATTR_S written = written_exposure();
    EXPECT_TRUE(same_bytes(&written, &expected, sizeof expected));
    EXPECT_EQ(written.stAuto.stAntiflicker.u8Frequency, 55);
}

TEST_F(Exposure, FlickerModeThreeEnabledFrequencyAsRead)
{
    ISP_EXPOSURE_ATTR_S expected = seed_flicker();
    EXPECT_EQ(set_flicker(3).result, 0);
    expected.stAuto.stAntiflicker.bEnable = HI_BOOL(1);
    expected.stAuto.stAntiflicker.enMode = ISP_ANTIFLICKER_MODE_E(1);
    ISP_EXPOSURE_ATTR_S written = written_exposure();
    EXPECT_TRUE(same_bytes(&written, &expected, sizeof expected));
    EXPECT_EQ(written.stAuto.stAntiflicker.u8Frequency, 55);
}

TEST_F(Exposure, NullFlickerGroupIsRefused)
{
    expect_null_refused(captured([] { return QV_ISP_SetFlickerAttr(nullptr); }),
                        "QV_ISP_SetFlickerAttr: argument is NULL, nothing done\n");
}

// ---- QV_ISP_SetBLCAttr -----------------------------------------------------------------------------------

namespace {
// Strategy fields set apart from every value the setter writes.
ISP_EXPOSURE_ATTR_S seed_strategy()
{
    ISP_EXPOSURE_ATTR_S r = power_on_exposure();
    r.enOpType = ISP_OP_TYPE_E(0);
    r.stAuto.enAEStrategyMode = ISP_AE_STRATEGY_E(1);
    r.stAuto.u16HistRatioSlope = 0x1ab;
    r.stAuto.u8MaxHistOffset = 0x2c;
    sim_mpp_write(SIM_REC_EXPOSURE_ATTR, &r);
    return r;
}

void expect_strategy(uint8_t enable, uint8_t level, uint32_t strategy, uint16_t slope, uint8_t offset)
{
    sim_mpp_reset();
    ISP_EXPOSURE_ATTR_S expected = seed_strategy();
    Outcome o = set_blc(enable, level);
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(o.out, "enAEStrategyMode: 1 u16HistRatioSlope: 1ab  u8MaxHistOffset: 2c\n");
    expected.stAuto.enAEStrategyMode = ISP_AE_STRATEGY_E(strategy);
    expected.stAuto.u16HistRatioSlope = slope;
    expected.stAuto.u8MaxHistOffset = offset;
    ISP_EXPOSURE_ATTR_S written = written_exposure();
    EXPECT_TRUE(same_bytes(&written, &expected, sizeof expected))
        << "enable " << int(enable) << " level " << int(level);
}
} // namespace

TEST_F(Exposure, BacklightOnLevelsZeroOneTwo)
{
    expect_strategy(1, 0, 1, 32, 64);
    expect_strategy(1, 1, 1, 144, 64);
    expect_strategy(1, 2, 1, 256, 64);
}

TEST_F(Exposure, BacklightOffIsHighlightPriority128And16)
{
    expect_strategy(0, 0, 0, 128, 16);
    expect_strategy(0, 2, 0, 128, 16);
}

TEST_F(Exposure, BacklightEnableTwoWithLevelOneIsTreatedAsOff)
{
    expect_strategy(2, 1, 0, 128, 16);
    expect_strategy(255, 1, 0, 128, 16);
}

TEST_F(Exposure, BacklightEnableOneLevelFiveWrittenBackUnchangedResultZero)
{
    ISP_EXPOSURE_ATTR_S expected = seed_strategy();
    Outcome o = set_blc(1, 5);
    EXPECT_EQ(o.result, 0);
    ISP_EXPOSURE_ATTR_S written = written_exposure();
    EXPECT_TRUE(same_bytes(&written, &expected, sizeof expected));
}

TEST_F(Exposure, StrongLightInhibitionOnBacklightSetterWritesBackUnchanged)
{
    ASSERT_EQ(sim_host_set_field(SYSINFO_u8SlInhibitionEnable, 1), 0);
    for (uint8_t enable : {0, 1}) {
        sim_mpp_reset();
        ISP_EXPOSURE_ATTR_S expected = seed_strategy();
        Outcome o = set_blc(enable, 1);
        EXPECT_EQ(o.result, 0);
        EXPECT_EQ(o.out, "enAEStrategyMode: 1 u16HistRatioSlope: 1ab  u8MaxHistOffset: 2c\n");
        ISP_EXPOSURE_ATTR_S written = written_exposure();
        EXPECT_TRUE(same_bytes(&written, &expected, sizeof expected));
    }
}

TEST_F(Exposure, BacklightWithoutHostRecordLogsAndReturnsMinusOneWithoutPlatformCall)
{
    sim_host_sysinfo_null(1);
    expect_refused_without_host_record(set_blc(1, 1));
}

TEST_F(Exposure, NullBacklightGroupIsRefused)
{
    expect_null_refused(captured([] { return QV_ISP_SetBLCAttr(nullptr); }),
                        "QV_ISP_SetBLCAttr: argument is NULL, nothing done\n");
    EXPECT_EQ(sim_host_log_count(), 0u);
}

// ---- QV_ISP_GetExposureInfo ------------------------------------------------------------------------------

TEST_F(Exposure, ExposureInfoCopiesTheEightValuesAndLeavesBytes25To31)
{
    ISP_EXP_INFO_S seeded = power_on_record<ISP_EXP_INFO_S>(SIM_REC_EXP_INFO);
    seeded.u32ExpTime = 12345;
    seeded.u32LongExpTime = 999; // not copied
    seeded.u32AGain = 2048;
    seeded.u32DGain = 1100;
    seeded.u32ISPDGain = 3000;
    seeded.u32Exposure = 0xDEADBEEF;
    seeded.bExposureIsMAX = HI_BOOL(1);
    seeded.u8AveLum = 201;
    seeded.s16HistError = -1234;
    sim_mpp_write(SIM_REC_EXP_INFO, &seeded);

    IspExposureInfo info;
    std::memset(&info, 0xEE, sizeof info);
    Outcome o = captured([&] { return QV_ISP_GetExposureInfo(&info); });
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(o.out, "");
    EXPECT_EQ(platform_calls(), Calls{"HI_MPI_ISP_QueryExposureInfo"});
    EXPECT_EQ(info.u32ExpTime, 12345u);
    EXPECT_EQ(info.u32AGain, 2048u);
    EXPECT_EQ(info.u32DGain, 1100u);
    EXPECT_EQ(info.u32ISPDGain, 3000u);
    EXPECT_EQ(info.u32Exposure, 0xDEADBEEFu);
    EXPECT_EQ(info.u32ExposureIsMax, 1u);
    EXPECT_EQ(info.u8AveLum, 201);
    EXPECT_EQ(info.s16HistError, -1234);
    const unsigned char *b = reinterpret_cast<const unsigned char *>(&info);
    for (size_t i = 25; i < 32; ++i)
        EXPECT_EQ(b[i], 0xEE) << "byte " << i;
}

TEST_F(Exposure, ExposureInfoLayoutIsTheParts)
{
    EXPECT_EQ(offsetof(IspExposureInfo, u32ExpTime), 0u);
    EXPECT_EQ(offsetof(IspExposureInfo, u32AGain), 4u);
    EXPECT_EQ(offsetof(IspExposureInfo, u32DGain), 8u);
    EXPECT_EQ(offsetof(IspExposureInfo, u32ISPDGain), 12u);
    EXPECT_EQ(offsetof(IspExposureInfo, u32Exposure), 16u);
    EXPECT_EQ(offsetof(IspExposureInfo, u32ExposureIsMax), 20u);
    EXPECT_EQ(offsetof(IspExposureInfo, u8AveLum), 24u);
    EXPECT_EQ(offsetof(IspExposureInfo, s16HistError), 32u);
}

TEST_F(Exposure, ExposureInfoQueryFailureMinusOneAndHostRecordUnchanged)
{
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_QueryExposureInfo", 1, 1, HI_ERR_ISP_NOT_INIT), 0);
    IspExposureInfo info, before;
    std::memset(&info, 0x77, sizeof info);
    before = info;
    Outcome o = captured([&] { return QV_ISP_GetExposureInfo(&info); });
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, "HI_MPI_ISP_QueryExposureInfo failed with 0xa01c8040\n");
    EXPECT_TRUE(same_bytes(&info, &before, sizeof info));
}

TEST_F(Exposure, NullExposureInfoRecordIsRefused)
{
    expect_null_refused(captured([] { return QV_ISP_GetExposureInfo(nullptr); }),
                        "QV_ISP_GetExposureInfo: argument is NULL, nothing done\n");
}

// ---- no reflash request ----------------------------------------------------------------------------------

TEST_F(Exposure, NoSetterRaisesTheReflashMark)
{
    ispParamReflashMark = 0;
    set_exposure(1, 0, 0);
    set_flicker(0);
    set_blc(1, 1);
    EXPECT_EQ(ispParamReflashMark, 0);
}
