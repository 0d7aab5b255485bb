// Part 4.3: white balance (QV_ISP_SetWBAttr).
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "call_test_support.h"


namespace {

const Calls kReadWrite = {"HI_MPI_ISP_GetWBAttr", "HI_MPI_ISP_SetWBAttr"};

class WhiteBalance : public SimClockTest {};

Outcome set_wb(uint32_t mode, uint8_t r, uint8_t g, uint8_t b)
{
    IspWbCfg cfg = {mode, r, g, b, 0};
    return captured([&] { return QV_ISP_SetWBAttr(&cfg); });
}

ISP_WB_ATTR_S power_on_wb() { return power_on_record<ISP_WB_ATTR_S>(SIM_REC_WB_ATTR); }

// The record of the setter's one write (log entry `index`), which must also be the platform's record.
ISP_WB_ATTR_S written_wb(size_t index = 1)
{
    return written_record<ISP_WB_ATTR_S>(SIM_REC_WB_ATTR, index);
}

// Part 4.3's mapping worked in real arithmetic: each piece as a line through its two end points, floored.
// (v * 128000) / 65536 and (15 * v) / 4 are the lower pieces' slopes 1.953125 and 3.75 per level.
unsigned expected_red(int v)
{
    return v <= 128 ? unsigned(std::floor(466.0 * v / 128.0)) : 466u + unsigned(std::floor((v - 128) * 3655.0 / 128.0));
}
unsigned expected_green(int v)
{
    return v <= 128 ? unsigned(std::floor(v * 1.953125)) : 250u + unsigned(std::floor((v - 128) * 3845.0 / 128.0));
}
unsigned expected_blue(int v)
{
    return v <= 128 ? unsigned(std::floor(v * 3.75)) : 480u + unsigned(std::floor((v - 128) * 3615.0 / 128.0));
}

} // namespace

// ---- manual mapping --------------------------------------------------------------------------------------

TEST_F(WhiteBalance, ManualMappingAllLevelsOfEachChannel)
{
    // Every level on each channel, the three channels fed different levels so a mix-up shows.
    for (int v = 0; v < 256; ++v) {
        int r = v, g = 255 - v, b = (v + 85) % 256;
        sim_mpp_reset();
        ASSERT_EQ(set_wb(1, uint8_t(r), uint8_t(g), uint8_t(b)).result, 0);
        ISP_WB_ATTR_S w = written_wb();
        ASSERT_EQ(w.stManual.u16Rgain, expected_red(r)) << "red level " << r;
        ASSERT_EQ(w.stManual.u16Grgain, expected_green(g)) << "green level " << g;
        ASSERT_EQ(w.stManual.u16Gbgain, expected_green(g)) << "green level " << g;
        ASSERT_EQ(w.stManual.u16Bgain, expected_blue(b)) << "blue level " << b;
    }
}

TEST(WhiteBalanceMapping, IndependentFormulasHitThePartsTablePoints)
{
    // The "at 0 / 64 / 128 / 255" column of Part 4.3, to check the test's own formulas.
    EXPECT_EQ(expected_red(0), 0u);
    EXPECT_EQ(expected_red(64), 233u);
    EXPECT_EQ(expected_red(128), 466u);
    EXPECT_EQ(expected_red(255), 4092u);
    EXPECT_EQ(expected_green(0), 0u);
    EXPECT_EQ(expected_green(64), 125u);
    EXPECT_EQ(expected_green(128), 250u);
    EXPECT_EQ(expected_green(255), 4064u);
    EXPECT_EQ(expected_blue(0), 0u);
    EXPECT_EQ(expected_blue(64), 240u);
    EXPECT_EQ(expected_blue(128), 480u);
    EXPECT_EQ(expected_blue(255), 4066u);
}

TEST_F(WhiteBalance, ManualWritesTheGainsAndOperationTypeOnly)
{
    ASSERT_EQ(set_wb(1, 10, 20, 30).result, 0);
    EXPECT_EQ(platform_calls(), kReadWrite);
    ISP_WB_ATTR_S expected = power_on_wb();
    expected.enOpType = ISP_OP_TYPE_E(1);
    expected.stManual.u16Rgain = HI_U16(expected_red(10));
    expected.stManual.u16Grgain = HI_U16(expected_green(20));
    expected.stManual.u16Gbgain = HI_U16(expected_green(20));
    expected.stManual.u16Bgain = HI_U16(expected_blue(30));
    ISP_WB_ATTR_S w = written_wb();
    EXPECT_TRUE(same_bytes(&w, &expected, sizeof expected));
}

// ---- Edge cases worth testing ----------------------------------------------------------------------------

TEST_F(WhiteBalance, ManualLevels128Give466And250And250And480)
{
    Outcome o = set_wb(1, 128, 128, 128);
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(o.out, "");
    ISP_WB_ATTR_S w = written_wb();
    EXPECT_EQ(w.stManual.u16Rgain, 466);
    EXPECT_EQ(w.stManual.u16Grgain, 250);
    EXPECT_EQ(w.stManual.u16Gbgain, 250);
    EXPECT_EQ(w.stManual.u16Bgain, 480);
    EXPECT_EQ(raw(w.enOpType), 1u);
}

TEST_F(WhiteBalance, ManualLevelsZeroGiveAllGainsZeroWrittenAsSuch)
{
    EXPECT_EQ(set_wb(1, 0, 0, 0).result, 0);
    EXPECT_EQ(platform_calls(), kReadWrite);
    ISP_WB_ATTR_S w = written_wb();
    EXPECT_EQ(w.stManual.u16Rgain, 0);
    EXPECT_EQ(w.stManual.u16Grgain, 0);
    EXPECT_EQ(w.stManual.u16Gbgain, 0);
    EXPECT_EQ(w.stManual.u16Bgain, 0);
}

TEST_F(WhiteBalance, ManualLevels255Give4092And4064And4064And4066)
{
    EXPECT_EQ(set_wb(1, 255, 255, 255).result, 0);
    ISP_WB_ATTR_S w = written_wb();
    EXPECT_EQ(w.stManual.u16Rgain, 4092);
    EXPECT_EQ(w.stManual.u16Grgain, 4064);
    EXPECT_EQ(w.stManual.u16Gbgain, 4064);
    EXPECT_EQ(w.stManual.u16Bgain, 4066);
}

TEST_F(WhiteBalance, ManualLevels129Give494And280And280And508)
{
    EXPECT_EQ(set_wb(1, 129, 129, 129).result, 0);
    ISP_WB_ATTR_S w = written_wb();
    EXPECT_EQ(w.stManual.u16Rgain, 494);
    EXPECT_EQ(w.stManual.u16Grgain, 280);
    EXPECT_EQ(w.stManual.u16Gbgain, 280);
    EXPECT_EQ(w.stManual.u16Bgain, 508);
}

TEST_F(WhiteBalance, AutomaticKeepsManualGainsOnlyCalibrationAndOperationTypeChange)
{
    ISP_WB_ATTR_S seeded = power_on_wb();
    seeded.enOpType = ISP_OP_TYPE_E(1);
    sim_mpp_write(SIM_REC_WB_ATTR, &seeded);
    Outcome o = set_wb(0, 200, 200, 200);
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(o.out, "");
    EXPECT_EQ(platform_calls(), kReadWrite);
    ISP_WB_ATTR_S expected = seeded;
    expected.enOpType = ISP_OP_TYPE_E(0);
    const HI_U16 static_wb[4] = {446, 256, 256, 462};
    const HI_S32 curve[6] = {46, 210, 0, 157964, 128, -105486};
    for (int i = 0; i < 4; ++i)
        expected.stAuto.au16StaticWB[i] = static_wb[i];
    for (int i = 0; i < 6; ++i)
        expected.stAuto.as32CurvePara[i] = curve[i];
    expected.stAuto.u16Speed = 1024;
    expected.stAuto.u8ShiftLimit = 128;
    ISP_WB_ATTR_S w = written_wb();
    EXPECT_TRUE(same_bytes(&w, &expected, sizeof expected));
    EXPECT_EQ(w.stManual.u16Rgain, 420); // the power-on manual gains, kept
    EXPECT_EQ(w.stManual.u16Gbgain, 257);
}

TEST_F(WhiteBalance, OtherModeChangesOnlyTheOperationType)
{
    EXPECT_EQ(set_wb(5, 1, 2, 3).result, 0);
    ISP_WB_ATTR_S expected = power_on_wb();
    set_raw(expected.enOpType, 5); // the mode word stored unchecked
    ISP_WB_ATTR_S w = written_wb();
    EXPECT_TRUE(same_bytes(&w, &expected, sizeof expected));
}

TEST_F(WhiteBalance, NoReflashRequest)
{
    ispParamReflashMark = 0;
    set_wb(1, 1, 2, 3);
    set_wb(0, 1, 2, 3);
    EXPECT_EQ(ispParamReflashMark, 0);
}

// ---- Failure handling and bad input ----------------------------------------------------------------------

TEST_F(WhiteBalance, ReadFailureMinusOneWithoutWrite)
{
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_GetWBAttr", 1, 1, HI_ERR_ISP_NOT_INIT), 0);
    Outcome o = set_wb(1, 128, 128, 128);
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, "HI_MPI_ISP_GetWBAttr failed with 0xa01c8040\n");
    EXPECT_EQ(platform_calls(), Calls{"HI_MPI_ISP_GetWBAttr"});
    ISP_WB_ATTR_S now = platform_record<ISP_WB_ATTR_S>(SIM_REC_WB_ATTR), before = power_on_wb();
    EXPECT_TRUE(same_bytes(&now, &before, sizeof now));
}

TEST_F(WhiteBalance, WriteFailureMinusOnePlatformAsItWas)
{
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_SetWBAttr", 1, 1, HI_ERR_ISP_ILLEGAL_PARAM), 0);
    Outcome o = set_wb(0, 0, 0, 0);
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, "HI_MPI_ISP_SetWBAttr failed with 0xa01c8003\n");
    ISP_WB_ATTR_S now = platform_record<ISP_WB_ATTR_S>(SIM_REC_WB_ATTR), before = power_on_wb();
    EXPECT_TRUE(same_bytes(&now, &before, sizeof now));
}

TEST_F(WhiteBalance, NullGroupIsRefused)
{
    expect_null_refused(captured([] { return QV_ISP_SetWBAttr(nullptr); }),
                        "QV_ISP_SetWBAttr: argument is NULL, nothing done\n");
}
