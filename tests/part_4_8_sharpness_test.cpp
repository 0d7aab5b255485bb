// Part 4.8: sharpness (QV_ISP_SetSharpnessAttr, and through the operation set_sharpness).
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "call_test_support.h"
#include "core_access.h"

namespace {

const Calls kGetSet = {"HI_MPI_ISP_GetSharpenAttr", "HI_MPI_ISP_SetSharpenAttr"};
const Calls kGetOnly = {"HI_MPI_ISP_GetSharpenAttr"};
constexpr const char *kRangeError = "get sharpenNum error \n";

// Part 4.8 step 5, typed independently: the factor and each product in single precision, truncated.
uint32_t scaled(uint32_t entry, float value)
{
    volatile float factor = value * 0.0078125f;
    volatile float product = float(entry) * factor;
    return uint32_t(product);
}

Outcome set_sharpness_value(float value)
{
    return captured([&] { return QV_ISP_SetSharpnessAttr(value); });
}

class SharpnessTest : public SimTest {
protected:
    void SetUp() override
    {
        SimTest::SetUp();
        test_set_profile_mode(0);
        // Manual operation before the call, so that step 3 shows.
        ISP_SHARPEN_ATTR_S s = power_on_record<ISP_SHARPEN_ATTR_S>(SIM_REC_SHARPEN_ATTR);
        s.enOpType = OP_TYPE_MANUAL;
        sim_mpp_write(SIM_REC_SHARPEN_ATTR, &s);
        before_ = s;
    }

    // The record the setter should write for `value` with the tables ud/d.
    ISP_SHARPEN_ATTR_S expected(const uint16_t *ud, const uint8_t *d, float value) const
    {
        ISP_SHARPEN_ATTR_S r = before_;
        r.enOpType = OP_TYPE_AUTO;
        for (int i = 0; i < 12; ++i) {
            r.stAuto.au16SharpenUd[i] = HI_U16(scaled(ud[i], value));
            r.stAuto.au8SharpenD[i] = HI_U8(scaled(d[i], value));
        }
        return r;
    }

    void expect_written(const ISP_SHARPEN_ATTR_S &want) const
    {
        ASSERT_EQ(platform_calls(), kGetSet);
        ISP_SHARPEN_ATTR_S got = logged_record<ISP_SHARPEN_ATTR_S>(1);
        EXPECT_TRUE(same_bytes(&got, &want, sizeof want));
    }

    void expect_refused(float value) const
    {
        Outcome o = set_sharpness_value(value);
        EXPECT_EQ(o.result, -1) << value;
        EXPECT_EQ(o.out, kRangeError) << value;
        EXPECT_EQ(platform_calls(), kGetOnly) << value;
        ISP_SHARPEN_ATTR_S now = platform_record<ISP_SHARPEN_ATTR_S>(SIM_REC_SHARPEN_ATTR);
        EXPECT_TRUE(same_bytes(&now, &before_, sizeof now));
    }

    ISP_SHARPEN_ATTR_S before_{};
};

} // namespace

// ---- edge cases --------------------------------------------------------------------------------------

TEST_F(SharpnessTest, Value128InColourProfileEqualsColourTablesExactly)
{
    Outcome o = set_sharpness_value(128.0f);
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(o.out, "");
    ISP_SHARPEN_ATTR_S want = before_;
    want.enOpType = OP_TYPE_AUTO;
    for (int i = 0; i < 12; ++i) {
        want.stAuto.au16SharpenUd[i] = gColorSharpenUd[i];
        want.stAuto.au8SharpenD[i] = gColorSharpenD[i];
    }
    expect_written(want); // entries 12 to 15 and every other field keep what was read
    ISP_SHARPEN_ATTR_S now = platform_record<ISP_SHARPEN_ATTR_S>(SIM_REC_SHARPEN_ATTR);
    for (int i = 12; i < 16; ++i) {
        EXPECT_EQ(now.stAuto.au16SharpenUd[i], before_.stAuto.au16SharpenUd[i]) << i;
        EXPECT_EQ(now.stAuto.au8SharpenD[i], before_.stAuto.au8SharpenD[i]) << i;
    }
}

TEST_F(SharpnessTest, Value64HalvesEveryEntryTruncated)
{
    EXPECT_EQ(set_sharpness_value(64.0f).result, 0);
    expect_written(expected(gColorSharpenUd, gColorSharpenD, 64.0f));
    ISP_SHARPEN_ATTR_S got = logged_record<ISP_SHARPEN_ATTR_S>(1);
    EXPECT_EQ(got.stAuto.au16SharpenUd[0], 15); // 30 becomes 15
    EXPECT_EQ(got.stAuto.au8SharpenD[0], 37);   // 75 becomes 37
    for (int i = 0; i < 12; ++i) {
        EXPECT_EQ(got.stAuto.au16SharpenUd[i], gColorSharpenUd[i] / 2) << i;
        EXPECT_EQ(got.stAuto.au8SharpenD[i], gColorSharpenD[i] / 2) << i;
    }
}

TEST_F(SharpnessTest, Value255Colour30Becomes59And75Becomes149)
{
    EXPECT_EQ(set_sharpness_value(255.0f).result, 0);
    expect_written(expected(gColorSharpenUd, gColorSharpenD, 255.0f));
    ISP_SHARPEN_ATTR_S got = logged_record<ISP_SHARPEN_ATTR_S>(1);
    EXPECT_EQ(got.stAuto.au16SharpenUd[0], 59);
    EXPECT_EQ(got.stAuto.au8SharpenD[0], 149);
}

TEST_F(SharpnessTest, Value0AllTwentyFourEntriesZeroOperationTypeAutomatic)
{
    EXPECT_EQ(set_sharpness_value(0.0f).result, 0);
    ISP_SHARPEN_ATTR_S got = logged_record<ISP_SHARPEN_ATTR_S>(1);
    EXPECT_EQ(got.enOpType, OP_TYPE_AUTO);
    for (int i = 0; i < 12; ++i) {
        EXPECT_EQ(got.stAuto.au16SharpenUd[i], 0) << i;
        EXPECT_EQ(got.stAuto.au8SharpenD[i], 0) << i;
    }
    expect_written(expected(gColorSharpenUd, gColorSharpenD, 0.0f));
}

TEST_F(SharpnessTest, Value255Point5OrMinus0Point5ErrorLineMinusOneNoWrite)
{
    expect_refused(255.5f);
    sim_mpp_reset();
    sim_mpp_write(SIM_REC_SHARPEN_ATTR, &before_);
    expect_refused(-0.5f);
}

// ---- beyond the edge-case list -------------------------------------------------------------------

TEST_F(SharpnessTest, NanAndInfinitiesRefusedLikeOutOfRange)
{
    const float values[] = {std::numeric_limits<float>::quiet_NaN(), -std::numeric_limits<float>::quiet_NaN(),
                            std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(),
                            std::nextafter(255.0f, 256.0f), -std::numeric_limits<float>::denorm_min()};
    for (float v : values) {
        sim_mpp_reset();
        sim_mpp_write(SIM_REC_SHARPEN_ATTR, &before_);
        expect_refused(v);
    }
}

TEST_F(SharpnessTest, RangeEndsAndNegativeZeroAccepted)
{
    for (float v : {0.0f, -0.0f, 255.0f, 1.0f, 127.0f, 129.0f, 200.0f}) {
        sim_mpp_reset();
        sim_mpp_write(SIM_REC_SHARPEN_ATTR, &before_);
        EXPECT_EQ(set_sharpness_value(v).result, 0) << v;
        expect_written(expected(gColorSharpenUd, gColorSharpenD, v));
    }
}

TEST_F(SharpnessTest, NightProfileUsesNightTables)
{
    test_set_profile_mode(1);
    EXPECT_EQ(set_sharpness_value(128.0f).result, 0);
    ISP_SHARPEN_ATTR_S got = logged_record<ISP_SHARPEN_ATTR_S>(1);
    for (int i = 0; i < 12; ++i) {
        EXPECT_EQ(got.stAuto.au16SharpenUd[i], gNightSharpenUd[i]) << i;
        EXPECT_EQ(got.stAuto.au8SharpenD[i], gNightSharpenD[i]) << i;
    }
    sim_mpp_reset();
    sim_mpp_write(SIM_REC_SHARPEN_ATTR, &before_);
    EXPECT_EQ(set_sharpness_value(200.0f).result, 0);
    expect_written(expected(gNightSharpenUd, gNightSharpenD, 200.0f));
}

TEST_F(SharpnessTest, EveryUserByteMatchesSinglePrecisionArithmeticInBothProfiles)
{
    sim_mpp_log_enable(0);
    for (int32_t mode : {0, 1}) {
        test_set_profile_mode(mode);
        const uint16_t *ud = mode ? gNightSharpenUd : gColorSharpenUd;
        const uint8_t *d = mode ? gNightSharpenD : gColorSharpenD;
        for (int v = 0; v <= 255; ++v) {
            sim_mpp_write(SIM_REC_SHARPEN_ATTR, &before_);
            ASSERT_EQ(QV_ISP_SetSharpnessAttr(float(v)), 0);
            ISP_SHARPEN_ATTR_S got = platform_record<ISP_SHARPEN_ATTR_S>(SIM_REC_SHARPEN_ATTR);
            ISP_SHARPEN_ATTR_S want = expected(ud, d, float(v));
            ASSERT_TRUE(same_bytes(&got, &want, sizeof want)) << "profile " << mode << " value " << v;
        }
    }
}

TEST_F(SharpnessTest, DoesNotRaiseTheReflashMark)
{
    ispParamReflashMark = 0;
    set_sharpness_value(100.0f);
    EXPECT_EQ(ispParamReflashMark, 0);
}

TEST_F(SharpnessTest, ThroughSetSharpnessTakesTheHostByteAsFloat)
{
    sim_host_set_field(SYSINFO_u8Sharpness, 64);
    StdoutCapture capture;
    EXPECT_EQ(get_config(), 0);
    EXPECT_EQ(set_sharpness(), 0);
    expect_written(expected(gColorSharpenUd, gColorSharpenD, 64.0f));
}

// ---- failures ----------------------------------------------------------------------------------------

TEST_F(SharpnessTest, ReadFailsMessageMinusOneNoWrite)
{
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_GetSharpenAttr", 1, 1, HI_ERR_ISP_NOT_INIT), 0);
    Outcome o = set_sharpness_value(100.0f);
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, "HI_MPI_ISP_GetSharpenAttr faile with 0xa01c8040!\n");
    EXPECT_EQ(platform_calls(), kGetOnly);
}

TEST_F(SharpnessTest, ReadFailureReportedBeforeRangeCheck)
{
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_GetSharpenAttr", 1, 1, 0x55), 0);
    Outcome o = set_sharpness_value(300.0f);
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, "HI_MPI_ISP_GetSharpenAttr faile with 0x55!\n");
}

TEST_F(SharpnessTest, WriteFailsMessageMinusOneRecordUnchanged)
{
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_SetSharpenAttr", 1, 1, HI_ERR_ISP_ILLEGAL_PARAM), 0);
    Outcome o = set_sharpness_value(100.0f);
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, "HI_MPI_ISP_SetSharpenAttr faile with 0xa01c8003!\n");
    ISP_SHARPEN_ATTR_S now = platform_record<ISP_SHARPEN_ATTR_S>(SIM_REC_SHARPEN_ATTR);
    EXPECT_TRUE(same_bytes(&now, &before_, sizeof now));
}
