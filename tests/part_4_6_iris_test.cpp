// Part 4.6: IR and iris (QV_ISP_SetIRAttr, and through the operation set_iris).
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "call_test_support.h"


namespace {

const Calls kModeZeroCalls = {"HI_MPI_ISP_GetExposureAttr", "HI_MPI_ISP_SetExposureAttr", "HI_MPI_ISP_GetIrisAttr",
                              "HI_MPI_ISP_SetIrisAttr", "HI_MPI_ISP_SetDcirisAttr"};
const Calls kOtherModeCalls = {"HI_MPI_ISP_GetExposureAttr", "HI_MPI_ISP_SetExposureAttr",
                               "HI_MPI_ISP_GetIrisAttr", "HI_MPI_ISP_SetIrisAttr"};

class IrisTest : public SimTest {
protected:
    void SetUp() override
    {
        SimTest::SetUp();
        // The power-on iris is off: every field the setter writes then shows.
        ISP_IRIS_ATTR_S iris = power_on_record<ISP_IRIS_ATTR_S>(SIM_REC_IRIS_ATTR);
        iris.bEnable = HI_FALSE;
        iris.enOpType = OP_TYPE_MANUAL;
        iris.enIrisType = ISP_IRIS_P_TYPE;
        iris.enIrisStatus = ISP_IRIS_CLOSE;
        sim_mpp_write(SIM_REC_IRIS_ATTR, &iris);
    }

    Outcome set_ir(uint8_t mode, uint8_t reserved = 0)
    {
        IspIrisCfg cfg{mode, reserved};
        return captured([&] { return QV_ISP_SetIRAttr(&cfg); });
    }

    // The exposure record as written: the power-on one with only the minimum exposure time changed.
    static ISP_EXPOSURE_ATTR_S expected_exposure(HI_U32 min_us)
    {
        ISP_EXPOSURE_ATTR_S r = power_on_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR);
        r.stAuto.stExpTimeRange.u32Min = min_us;
        return r;
    }

    static ISP_IRIS_ATTR_S expected_iris(ISP_IRIS_STATUS_E status)
    {
        ISP_IRIS_ATTR_S r = power_on_record<ISP_IRIS_ATTR_S>(SIM_REC_IRIS_ATTR);
        r.bEnable = HI_TRUE;
        r.enOpType = OP_TYPE_AUTO;
        r.enIrisType = ISP_IRIS_DC_TYPE;
        r.enIrisStatus = status;
        return r;
    }
};

void expect_dc_iris_coefficients(const ISP_DCIRIS_ATTR_S &d)
{
    EXPECT_EQ(d.s32Kp, 7000);
    EXPECT_EQ(d.s32Ki, 100);
    EXPECT_EQ(d.s32Kd, 3000);
    EXPECT_EQ(d.u32MinPwmDuty, 250u);
    EXPECT_EQ(d.u32MaxPwmDuty, 950u);
    EXPECT_EQ(d.u32OpenPwmDuty, 800u);
}

} // namespace

// ---- the algorithm ---------------------------------------------------------------------------------

TEST_F(IrisTest, ModeZeroWritesMinimumExposureIrisAndDcIrisInOrder)
{
    Outcome o = set_ir(0);
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(o.out, "");
    EXPECT_EQ(platform_calls(), kModeZeroCalls);
    for (size_t i = 0; i < sim_mpp_log_count(); ++i)
        EXPECT_EQ(sim_mpp_log_at(i)->dev, 0) << i;

    ISP_EXPOSURE_ATTR_S want_exp = expected_exposure(4000);
    ISP_EXPOSURE_ATTR_S got_exp = logged_record<ISP_EXPOSURE_ATTR_S>(1);
    EXPECT_TRUE(same_bytes(&got_exp, &want_exp, sizeof want_exp));

    ISP_IRIS_ATTR_S want_iris = expected_iris(ISP_IRIS_KEEP);
    ISP_IRIS_ATTR_S got_iris = logged_record<ISP_IRIS_ATTR_S>(3);
    EXPECT_TRUE(same_bytes(&got_iris, &want_iris, sizeof want_iris)) << "stMIAttr must keep what was read";

    expect_dc_iris_coefficients(logged_record<ISP_DCIRIS_ATTR_S>(4));
    ISP_DCIRIS_ATTR_S now = platform_record<ISP_DCIRIS_ATTR_S>(SIM_REC_DCIRIS_ATTR);
    expect_dc_iris_coefficients(now);
}

TEST_F(IrisTest, ReservedByteIsNotRead)
{
    Outcome o = set_ir(0, 0xFF);
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(platform_calls(), kModeZeroCalls);
    EXPECT_EQ(platform_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR).stAuto.stExpTimeRange.u32Min, 4000u);
}

TEST_F(IrisTest, DoesNotRaiseTheReflashMark)
{
    ispParamReflashMark = 0;
    set_ir(0);
    set_ir(1);
    EXPECT_EQ(ispParamReflashMark, 0);
}

// ---- edge cases --------------------------------------------------------------------------------------

TEST_F(IrisTest, ThroughSetIrisAlwaysModeZeroSoDcIrisWrittenOnEveryCall)
{
    // The host record cannot feed the iris group (Part 4.1): whatever it holds, mode 0 goes to the setter.
    for (int pos = 1300; pos < 1404; ++pos)
        sim_host_set_field(size_t(pos), 0xFF);
    {
        StdoutCapture capture;
        EXPECT_EQ(get_config(), 0);
    }
    for (int call = 1; call <= 3; ++call) {
        size_t first = sim_mpp_log_count();
        StdoutCapture capture;
        EXPECT_EQ(set_iris(), 0);
        EXPECT_EQ(platform_calls(first), kModeZeroCalls) << "call " << call;
        expect_dc_iris_coefficients(logged_record<ISP_DCIRIS_ATTR_S>(first + 4));
        EXPECT_EQ(logged_record<ISP_IRIS_ATTR_S>(first + 3).enIrisStatus, ISP_IRIS_KEEP);
    }
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetDcirisAttr"), 3u);
}

TEST_F(IrisTest, ModeOneDirectlyFromHostMinimumExposure40IrisOpenNoDcIrisCall)
{
    Outcome o = set_ir(1);
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(o.out, "");
    EXPECT_EQ(platform_calls(), kOtherModeCalls);
    ISP_EXPOSURE_ATTR_S want_exp = expected_exposure(40);
    ISP_EXPOSURE_ATTR_S got_exp = logged_record<ISP_EXPOSURE_ATTR_S>(1);
    EXPECT_TRUE(same_bytes(&got_exp, &want_exp, sizeof want_exp));
    ISP_IRIS_ATTR_S want_iris = expected_iris(ISP_IRIS_OPEN);
    ISP_IRIS_ATTR_S got_iris = logged_record<ISP_IRIS_ATTR_S>(3);
    EXPECT_TRUE(same_bytes(&got_iris, &want_iris, sizeof want_iris));
    ISP_DCIRIS_ATTR_S dc = platform_record<ISP_DCIRIS_ATTR_S>(SIM_REC_DCIRIS_ATTR);
    ISP_DCIRIS_ATTR_S dc_power_on = power_on_record<ISP_DCIRIS_ATTR_S>(SIM_REC_DCIRIS_ATTR);
    EXPECT_TRUE(same_bytes(&dc, &dc_power_on, sizeof dc));
}

TEST_F(IrisTest, Mode255BehavesAsModeOne)
{
    Outcome one = set_ir(1);
    ISP_EXPOSURE_ATTR_S exp_one = platform_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR);
    ISP_IRIS_ATTR_S iris_one = platform_record<ISP_IRIS_ATTR_S>(SIM_REC_IRIS_ATTR);

    SetUp();
    Outcome max = set_ir(255);
    EXPECT_EQ(max.result, one.result);
    EXPECT_EQ(max.out, one.out);
    EXPECT_EQ(platform_calls(), kOtherModeCalls);
    ISP_EXPOSURE_ATTR_S exp_max = platform_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR);
    ISP_IRIS_ATTR_S iris_max = platform_record<ISP_IRIS_ATTR_S>(SIM_REC_IRIS_ATTR);
    EXPECT_TRUE(same_bytes(&exp_max, &exp_one, sizeof exp_one));
    EXPECT_TRUE(same_bytes(&iris_max, &iris_one, sizeof iris_one));
}

TEST_F(IrisTest, IrisReadFailsInModeZeroMinimumExposureAlready4000NoDcIrisWrite)
{
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_GetIrisAttr", 1, 1, HI_ERR_ISP_NOT_INIT), 0);
    Outcome o = set_ir(0);
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, "HI_MPI_ISP_GetIrisAttr failed with 0xa01c8040\n");
    EXPECT_EQ(platform_calls(), Calls(kModeZeroCalls.begin(), kModeZeroCalls.begin() + 3));
    EXPECT_EQ(platform_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR).stAuto.stExpTimeRange.u32Min, 4000u);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetDcirisAttr"), 0u);
}

// ---- failures ----------------------------------------------------------------------------------------

TEST_F(IrisTest, ExposureReadFailsNothingWritten)
{
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_GetExposureAttr", 1, 1, 0x123), 0);
    Outcome o = set_ir(0);
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, "HI_MPI_ISP_GetExposureAttr failed with 0x123\n");
    EXPECT_EQ(platform_calls(), Calls{"HI_MPI_ISP_GetExposureAttr"});
}

TEST_F(IrisTest, NullConfigRefusedBeforeAnyPlatformCall)
{
    StdoutCapture capture;
    EXPECT_EQ(QV_ISP_SetIRAttr(nullptr), -1);
    EXPECT_EQ(capture.take(), "QV_ISP_SetIRAttr: argument is NULL, nothing done\n");
    EXPECT_EQ(sim_mpp_log_count(), 0u);
}
