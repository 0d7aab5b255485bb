// Part 4.9: picture controls (QV_ISP_SetBrightAttr, QV_ISP_SetContrastAttr, QV_ISP_SetSaturationAttr and
// the operations set_brightness, set_Contrast, set_Saturation).
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "call_test_support.h"


namespace {

const Calls kGetSet = {"HI_MPI_VI_GetCSCAttr", "HI_MPI_VI_SetCSCAttr"};
const Calls kGetOnly = {"HI_MPI_VI_GetCSCAttr"};

// One setter of Part 4.9's table.
struct Control {
    const char *name;
    int32_t (*setter)(uint32_t);
    int32_t (*operation)(void);
    HI_U32 VI_CSC_ATTR_S::*field;
    SysInfoField host_field;
    std::string range_error;
    bool prints_value;
};

const Control kControls[] = {
    {"Brightness", QV_ISP_SetBrightAttr, set_brightness, &VI_CSC_ATTR_S::u32LumaVal, SYSINFO_u8Brightness,
     "get BrightAttr param error param\n", false},
    {"Contrast", QV_ISP_SetContrastAttr, set_Contrast, &VI_CSC_ATTR_S::u32ContrVal, SYSINFO_u8Contrast,
     "get ContrastAttr param error \n", true},
    {"Saturation", QV_ISP_SetSaturationAttr, set_Saturation, &VI_CSC_ATTR_S::u32SatuVal, SYSINFO_u8Saturation,
     "get SaturationAttr param error \n", false},
};

class PictureTest : public SimTestWithParam<Control> {
protected:
    void SetUp() override
    {
        SimTestWithParam::SetUp();
        // A distinctive starting value in all three fields, so that every write shows.
        VI_CSC_ATTR_S csc = power_on_record<VI_CSC_ATTR_S>(SIM_REC_VI_CSC_ATTR);
        csc.u32LumaVal = csc.u32ContrVal = csc.u32SatuVal = 77;
        sim_mpp_write(SIM_REC_VI_CSC_ATTR, &csc);
    }

    Outcome set(uint32_t value)
    {
        return captured([&] { return GetParam().setter(value); });
    }

    static VI_CSC_ATTR_S csc_now() { return platform_record<VI_CSC_ATTR_S>(SIM_REC_VI_CSC_ATTR); }

    // The record written: what was read with only this setter's field changed.
    static VI_CSC_ATTR_S expected(const VI_CSC_ATTR_S &before, HI_U32 value)
    {
        VI_CSC_ATTR_S r = before;
        r.*(GetParam().field) = value;
        return r;
    }

    std::string value_line(HI_U32 value) const
    {
        return GetParam().prints_value ? "stViAttr.u32ContrVal = " + std::to_string(value) + " \n" : "";
    }

    void expect_sets(uint32_t value, HI_U32 field)
    {
        VI_CSC_ATTR_S before = csc_now();
        size_t first = sim_mpp_log_count();
        Outcome o = set(value);
        EXPECT_EQ(o.result, 0) << value;
        EXPECT_EQ(o.out, value_line(field)) << value;
        ASSERT_EQ(platform_calls(first), kGetSet) << value;
        VI_CSC_ATTR_S want = expected(before, field);
        VI_CSC_ATTR_S got = logged_record<VI_CSC_ATTR_S>(first + 1);
        EXPECT_TRUE(same_bytes(&got, &want, sizeof want)) << value;
        EXPECT_EQ(sim_mpp_log_at(first)->dev, 0);
        EXPECT_EQ(sim_mpp_log_at(first + 1)->dev, 0);
    }
};

} // namespace

// ---- edge cases --------------------------------------------------------------------------------------

TEST_P(PictureTest, Value128Field50Value255Field100Value0Field0)
{
    expect_sets(128, 50);
    expect_sets(255, 100);
    expect_sets(0, 0);
}

TEST_P(PictureTest, Value256RangeErrorLineMinusOneNoWrite)
{
    VI_CSC_ATTR_S before = csc_now();
    for (uint32_t value : {256u, 1000u, 0xFFFFFFFFu}) {
        size_t first = sim_mpp_log_count();
        Outcome o = set(value);
        EXPECT_EQ(o.result, -1);
        EXPECT_EQ(o.out, GetParam().range_error);
        EXPECT_EQ(platform_calls(first), kGetOnly) << "the read comes first, then the range check";
    }
    VI_CSC_ATTR_S now = csc_now();
    EXPECT_TRUE(same_bytes(&now, &before, sizeof now));
}

TEST_P(PictureTest, SameValueTwiceSecondCallReadsAndWritesNothing)
{
    expect_sets(200, 78);
    size_t first = sim_mpp_log_count();
    Outcome o = set(200);
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(o.out, "") << "no contrast print either";
    EXPECT_EQ(platform_calls(first), kGetOnly);
}

TEST_P(PictureTest, Values1And2BothConvertTo0SoTheSecondWritesNothing)
{
    expect_sets(1, 0);
    size_t first = sim_mpp_log_count();
    Outcome o = set(2);
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(o.out, "");
    EXPECT_EQ(platform_calls(first), kGetOnly);
    expect_sets(3, 1);
}

// ---- the conversion and the failures -----------------------------------------------------------------

TEST_P(PictureTest, EveryValueConvertsTruncated)
{
    for (uint32_t value = 0; value <= 255; ++value) {
        HI_U32 want = value * 100 / 255;
        // Start away from the target so the write always happens.
        VI_CSC_ATTR_S csc = csc_now();
        csc.*(GetParam().field) = want + 1;
        sim_mpp_write(SIM_REC_VI_CSC_ATTR, &csc);
        ASSERT_NO_FATAL_FAILURE(expect_sets(value, want));
        ASSERT_EQ(csc_now().*(GetParam().field), want) << value;
    }
}

TEST_P(PictureTest, OnlyItsOwnFieldChanges)
{
    VI_CSC_ATTR_S before = csc_now();
    EXPECT_EQ(set(255).result, 0);
    VI_CSC_ATTR_S want = expected(before, 100);
    VI_CSC_ATTR_S now = csc_now();
    EXPECT_TRUE(same_bytes(&now, &want, sizeof now));
}

TEST_P(PictureTest, ReadFailsDecimalCodeMinusOneNoWrite)
{
    ASSERT_EQ(sim_mpp_fail("HI_MPI_VI_GetCSCAttr", 1, 1, HI_ERR_VI_BUSY), 0);
    Outcome o = set(128);
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, "HI_MPI_VI_GetCSCAttr error " + std::to_string(int(HI_ERR_VI_BUSY)) + "\n");
    EXPECT_EQ(platform_calls(), kGetOnly);
}

TEST_P(PictureTest, ReadFailsBeforeTheRangeCheck)
{
    ASSERT_EQ(sim_mpp_fail("HI_MPI_VI_GetCSCAttr", 1, 1, -5), 0);
    Outcome o = set(300);
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, "HI_MPI_VI_GetCSCAttr error -5\n");
}

TEST_P(PictureTest, WriteFailsDecimalCodeMinusOneFieldUnchanged)
{
    VI_CSC_ATTR_S before = csc_now();
    ASSERT_EQ(sim_mpp_fail("HI_MPI_VI_SetCSCAttr", 1, 1, HI_ERR_VI_BUSY), 0);
    Outcome o = set(128);
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, value_line(50) + "HI_MPI_VI_SetCSCAttr error " + std::to_string(int(HI_ERR_VI_BUSY)) + "\n");
    EXPECT_EQ(platform_calls(), kGetSet);
    VI_CSC_ATTR_S now = csc_now();
    EXPECT_TRUE(same_bytes(&now, &before, sizeof now));
}

TEST_P(PictureTest, ThroughItsOperationTheHostByteIsApplied)
{
    sim_host_set_field(GetParam().host_field, 128);
    {
        StdoutCapture capture;
        ASSERT_EQ(get_config(), 0);
    }
    size_t first = sim_mpp_log_count();
    StdoutCapture capture;
    EXPECT_EQ(GetParam().operation(), 0);
    EXPECT_EQ(capture.take(), value_line(50));
    EXPECT_EQ(platform_calls(first), kGetSet);
    EXPECT_EQ(csc_now().*(GetParam().field), 50u);
}

TEST_P(PictureTest, ThroughItsOperationAFailureStillYieldsZero)
{
    ASSERT_EQ(sim_mpp_fail("HI_MPI_VI_GetCSCAttr", 1, SIM_MPP_ALWAYS, HI_ERR_VI_BUSY), 0);
    StdoutCapture capture;
    EXPECT_EQ(GetParam().operation(), 0);
}

TEST_P(PictureTest, DoesNotRaiseTheReflashMark)
{
    ispParamReflashMark = 0;
    set(10);
    EXPECT_EQ(ispParamReflashMark, 0);
}

INSTANTIATE_TEST_SUITE_P(EverySetter, PictureTest, ::testing::ValuesIn(kControls),
                         [](const testing::TestParamInfo<Control> &control) { return std::string(control.param.name); });

// Two setters do not disturb each other's field.
TEST(PictureControls, ThreeSettersEachKeepTheOthersFields)
{
    sim_mpp_reset();
    StdoutCapture capture;
    EXPECT_EQ(QV_ISP_SetBrightAttr(255), 0);
    EXPECT_EQ(QV_ISP_SetContrastAttr(128), 0);
    EXPECT_EQ(QV_ISP_SetSaturationAttr(0), 0);
    VI_CSC_ATTR_S now = platform_record<VI_CSC_ATTR_S>(SIM_REC_VI_CSC_ATTR);
    EXPECT_EQ(now.u32LumaVal, 100u);
    EXPECT_EQ(now.u32ContrVal, 50u);
    EXPECT_EQ(now.u32SatuVal, 0u);
    VI_CSC_ATTR_S power_on = power_on_record<VI_CSC_ATTR_S>(SIM_REC_VI_CSC_ATTR);
    EXPECT_EQ(now.u32HueVal, power_on.u32HueVal);
    EXPECT_EQ(now.enViCscType, power_on.enViCscType);
    EXPECT_EQ(capture.take(), "stViAttr.u32ContrVal = 50 \n");
}
