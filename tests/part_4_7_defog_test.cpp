// Part 4.7: defog (QV_ISP_SetDefogAttr).
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "call_test_support.h"


namespace {

const Calls kReadWrite = {"HI_MPI_ISP_GetDeFogAttr", "HI_MPI_ISP_SetDeFogAttr"};

class Defog : public SimClockTest {
protected:
    void SetUp() override
    {
        SimClockTest::SetUp();
        ispParamReflashMark = 0;
    }
};

Outcome set_defog(uint8_t mode, uint8_t strength, uint8_t reserved = 0)
{
    IspDefogCfg cfg = {mode, reserved, strength};
    return captured([&] { return QV_ISP_SetDefogAttr(&cfg); });
}

ISP_DEFOG_ATTR_S power_on_defog() { return power_on_record<ISP_DEFOG_ATTR_S>(SIM_REC_DEFOG_ATTR); }

// The record of the setter's one write, which must also be the platform's record now.
ISP_DEFOG_ATTR_S written_defog()
{
    EXPECT_EQ(platform_calls(), kReadWrite);
    return written_record<ISP_DEFOG_ATTR_S>(SIM_REC_DEFOG_ATTR);
}

ISP_DEFOG_ATTR_S expected_defog(uint32_t enable, uint32_t op, uint8_t manual)
{
    ISP_DEFOG_ATTR_S r = power_on_defog();
    set_raw(r.bEnable, enable);
    set_raw(r.enOpType, op);
    r.stManual.u8strength = manual;
    return r;
}

} // namespace

TEST(DefogRecord, ManualStrengthIsThe8BitFieldAfterTheOperationType)
{
    EXPECT_EQ(offsetof(ISP_DEFOG_ATTR_S, enOpType), 4u);
    EXPECT_EQ(offsetof(ISP_DEFOG_ATTR_S, stManual.u8strength), 8u);
}

// ---- Edge cases worth testing ----------------------------------------------------------------------------

TEST_F(Defog, ModeOneStrength200EnabledManualStrength200)
{
    Outcome o = set_defog(1, 200);
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(o.out, "");
    ISP_DEFOG_ATTR_S w = written_defog(), e = expected_defog(1, 1, 200);
    EXPECT_TRUE(same_bytes(&w, &e, sizeof e));
}

TEST_F(Defog, ModeZeroStrength200DisabledManualStrengthStoredAllTheSame)
{
    ISP_DEFOG_ATTR_S seeded = power_on_defog();
    seeded.bEnable = HI_BOOL(1);
    sim_mpp_write(SIM_REC_DEFOG_ATTR, &seeded);
    EXPECT_EQ(set_defog(0, 200).result, 0);
    ISP_DEFOG_ATTR_S w = written_defog(), e = expected_defog(0, 1, 200);
    EXPECT_TRUE(same_bytes(&w, &e, sizeof e));
}

TEST_F(Defog, ModeTwoEnabledAutomaticManualStrengthAsRead)
{
    ISP_DEFOG_ATTR_S seeded = power_on_defog();
    seeded.enOpType = ISP_OP_TYPE_E(1);
    sim_mpp_write(SIM_REC_DEFOG_ATTR, &seeded);
    EXPECT_EQ(set_defog(2, 200).result, 0);
    ISP_DEFOG_ATTR_S w = written_defog(), e = expected_defog(1, 0, seeded.stManual.u8strength);
    EXPECT_TRUE(same_bytes(&w, &e, sizeof e));
    EXPECT_EQ(w.stManual.u8strength, 80); // the power-on manual strength
    EXPECT_EQ(w.stAuto.u8strength, 144);  // and the automatic one, untouched
}

TEST_F(Defog, ModeThreeEnableBecomesThreeManualStrengthSet)
{
    EXPECT_EQ(set_defog(3, 17).result, 0);
    ISP_DEFOG_ATTR_S w = written_defog(), e = expected_defog(3, 1, 17);
    EXPECT_TRUE(same_bytes(&w, &e, sizeof e));
    EXPECT_EQ(raw(w.bEnable), 3u);
}

TEST_F(Defog, ReservedByteIsNotRead)
{
    EXPECT_EQ(set_defog(1, 9, 0xEE).result, 0);
    ISP_DEFOG_ATTR_S w = written_defog(), e = expected_defog(1, 1, 9);
    EXPECT_TRUE(same_bytes(&w, &e, sizeof e));
}

TEST_F(Defog, NoReflashRequest)
{
    set_defog(1, 1);
    EXPECT_EQ(ispParamReflashMark, 0);
}

// ---- Failure handling and bad input ----------------------------------------------------------------------

TEST_F(Defog, ReadFailureWritesNothingMinusOne)
{
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_GetDeFogAttr", 1, 1, HI_ERR_ISP_NOT_INIT), 0);
    Outcome o = set_defog(1, 1);
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, "HI_MPI_ISP_GetDeFogAttr failed with 0xa01c8040\n");
    EXPECT_EQ(platform_calls(), Calls{"HI_MPI_ISP_GetDeFogAttr"});
}

TEST_F(Defog, WriteFailureLeavesThePlatformMinusOne)
{
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_SetDeFogAttr", 1, 1, HI_ERR_ISP_ILLEGAL_PARAM), 0);
    Outcome o = set_defog(3, 1);
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, "HI_MPI_ISP_SetDeFogAttr failed with 0xa01c8003\n");
    ISP_DEFOG_ATTR_S now = platform_record<ISP_DEFOG_ATTR_S>(SIM_REC_DEFOG_ATTR), before = power_on_defog();
    EXPECT_TRUE(same_bytes(&now, &before, sizeof now));
}

TEST_F(Defog, NullGroupIsRefused)
{
    expect_null_refused(captured([] { return QV_ISP_SetDefogAttr(nullptr); }),
                        "QV_ISP_SetDefogAttr: argument is NULL, nothing done\n");
}
