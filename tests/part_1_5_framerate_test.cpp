// Part 1.5: Low-light frame-rate adjustment: the decision table, the marker file, the failure table.
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "service_test_support.h"

namespace {

constexpr const char *kTouch = "touch /tmp/FramerateAdjust";
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();

void set_marker(bool present)
{
    if (present) {
        FILE *file = std::fopen(kMarker, "w");
        ASSERT_NE(file, nullptr) << "cannot create " << kMarker;
        std::fclose(file);
    } else {
        std::remove(kMarker);
    }
    ASSERT_EQ(marker_exists(), present);
}

// The current frame rate of the public attribute, as the platform holds it.
void set_rate(float rate)
{
    ISP_PUB_ATTR_S pub = platform_record<ISP_PUB_ATTR_S>(SIM_REC_PUB_ATTR);
    pub.f32FrameRate = rate;
    sim_mpp_write(SIM_REC_PUB_ATTR, &pub);
}

float rate_now()
{
    return platform_record<ISP_PUB_ATTR_S>(SIM_REC_PUB_ATTR).f32FrameRate;
}

// One row of the decision table, with concrete values.
struct Row {
    const char *name;
    int32_t profile;
    float gain;
    float rate;        // current rate before the call
    uint8_t flicker;   // u8FlickerMode: 1 selects 25, anything else 30
    bool set;          // the attribute is written
    float expect_rate; // the rate afterwards
    bool marker;       // the marker exists afterwards
};

class Part_1_5_Framerate : public ::testing::Test {
protected:
    void SetUp() override
    {
        reset_simulators_and_clock();
        test_set_profile_mode(0);
        std::remove(kMarker);
    }
    void TearDown() override
    {
        vclock_free_run();
        std::remove(kMarker);
    }

    // Runs one row from the given marker state and checks every observable of Part 1.5.
    void check_row(const Row &row, bool marker_before)
    {
        test_set_profile_mode(row.profile);
        ASSERT_EQ(sim_host_set_field(SYSINFO_u8FlickerMode, row.flicker), 0);
        set_rate(row.rate);
        set_marker(marker_before);
        const ISP_PUB_ATTR_S before = platform_record<ISP_PUB_ATTR_S>(SIM_REC_PUB_ATTR);

        EXPECT_EQ(QV_ISP_FramerateAdjust(row.gain), 0);

        std::vector<std::string> expected_calls = {"HI_MPI_ISP_GetPubAttr"};
        if (row.set)
            expected_calls.emplace_back("HI_MPI_ISP_SetPubAttr");
        EXPECT_EQ(platform_calls(), expected_calls);
        if (row.set) {
            ISP_PUB_ATTR_S written = logged_record<ISP_PUB_ATTR_S>(1);
            EXPECT_EQ(written.f32FrameRate, row.expect_rate);
            written.f32FrameRate = before.f32FrameRate; // every other byte as read
            EXPECT_TRUE(same_bytes(&written, &before, sizeof before));
        } else {
            const ISP_PUB_ATTR_S after = platform_record<ISP_PUB_ATTR_S>(SIM_REC_PUB_ATTR);
            EXPECT_TRUE(same_bytes(&after, &before, sizeof before));
        }
        EXPECT_EQ(rate_now(), row.expect_rate);

        EXPECT_EQ(marker_exists(), row.marker);
        if (row.marker) {
            ASSERT_EQ(sim_host_command_count(), 1u);
            EXPECT_STREQ(sim_host_command_at(0), kTouch);
        } else {
            EXPECT_EQ(sim_host_command_count(), 0u);
        }
        EXPECT_EQ(sim_host_log_count(), 0u) << "no log entry on success";
    }

    // Checks the single log entry of a failure path.
    static void expect_one_log(sim_host_service service, int level, const char *text)
    {
        ASSERT_EQ(sim_host_log_count(), 1u);
        const sim_host_log entry = sim_host_log_at(0);
        EXPECT_EQ(entry.service, service);
        EXPECT_EQ(entry.level, level);
        EXPECT_EQ(entry.module, 14);
        EXPECT_STREQ(entry.text, text);
    }
};

// ---- the decision table, row by row ------------------------------------------------------------------

// Each table row of Part 1.5 with one or more concrete cases (row number of the spec's table first).
const Row kRows[] = {
    // 1. ProfileMode not 1, any gain, any rate: set the normal rate, marker deleted.
    {"R1_Colour_Gain100_Rate15_Flicker1", 0, 100.0f, 15.0f, 1, true, 25.0f, false},
    {"R1_Colour_Gain40_Rate30_Flicker0_SetEvenWhenEqual", 0, 40.0f, 30.0f, 0, true, 30.0f, false},
    {"R1_Colour_Gain1_Rate25_Flicker1_SetEvenWhenEqual", 0, 1.0f, 25.0f, 1, true, 25.0f, false},
    {"R1_Profile2_Gain40_Rate15_Flicker2", 2, 40.0f, 15.0f, 2, true, 30.0f, false},
    {"R1_ProfileMinus1_NaNGain_Rate12_Flicker1", -1, kNaN, 12.0f, 1, true, 25.0f, false},
    {"R1_Colour_NegativeGain_NaNRate_Flicker0", 0, -3.0f, kNaN, 0, true, 30.0f, false},
    // 2. Night, gain at least 32, rate above 15: set 15, marker created.
    {"R2_Night_Gain32_Rate30", 1, 32.0f, 30.0f, 0, true, 15.0f, true},
    {"R2_Night_Gain40_Rate25_Flicker1", 1, 40.0f, 25.0f, 1, true, 15.0f, true},
    {"R2_Night_GainInf_RateJustAbove15", 1, kInf, std::nextafter(15.0f, 16.0f), 0, true, 15.0f, true},
    // 3. Night, gain at least 32, rate exactly 15: keep, marker created (touched again).
    {"R3_Night_Gain32_Rate15", 1, 32.0f, 15.0f, 0, false, 15.0f, true},
    {"R3_Night_Gain1000_Rate15", 1, 1000.0f, 15.0f, 1, false, 15.0f, true},
    // 4. Night, gain at least 32, rate below 15: keep, marker deleted.
    {"R4_Night_Gain64_Rate12_5", 1, 64.0f, 12.5f, 0, false, 12.5f, false},
    {"R4_Night_Gain32_RateJustBelow15", 1, 32.0f, std::nextafter(15.0f, 0.0f), 1, false,
     std::nextafter(15.0f, 0.0f), false},
    // 5. Night, gain in [0, 16), rate exactly 15: set the normal rate, marker deleted.
    {"R5_Night_Gain15_9_Rate15_Flicker0", 1, 15.9f, 15.0f, 0, true, 30.0f, false},
    {"R5_Night_Gain0_Rate15_Flicker1", 1, 0.0f, 15.0f, 1, true, 25.0f, false},
    {"R5_Night_GainJustBelow16_Rate15", 1, std::nextafter(16.0f, 0.0f), 15.0f, 1, true, 25.0f, false},
    // -0.0 compares equal to 0.0 in single precision: "at least 0.0", not "below 0.0".
    {"R5_Night_GainMinusZero_Rate15", 1, -0.0f, 15.0f, 0, true, 30.0f, false},
    // 6. Night, gain in [0, 16), rate above 15: set the normal rate, marker deleted.
    {"R6_Night_Gain1_Rate30_Flicker0_SetEvenWhenEqual", 1, 1.0f, 30.0f, 0, true, 30.0f, false},
    {"R6_Night_Gain8_Rate30_Flicker1", 1, 8.0f, 30.0f, 1, true, 25.0f, false},
    {"R6_Night_Gain15_99_Rate25_Flicker0", 1, 15.99f, 25.0f, 0, true, 30.0f, false},
    // 7. Night, gain in [0, 16), rate below 15: keep, marker deleted.
    {"R7_Night_Gain8_Rate10", 1, 8.0f, 10.0f, 1, false, 10.0f, false},
    {"R7_Night_Gain0_Rate0", 1, 0.0f, 0.0f, 0, false, 0.0f, false},
    // 8. Night, gain in [16, 32), rate above 15: set the normal rate, marker deleted.
    {"R8_Night_Gain20_Rate30_Flicker0_SetEvenWhenEqual", 1, 20.0f, 30.0f, 0, true, 30.0f, false},
    {"R8_Night_Gain20_Rate30_Flicker1", 1, 20.0f, 30.0f, 1, true, 25.0f, false},
    {"R8_Night_Gain16_RateJustAbove15", 1, 16.0f, std::nextafter(15.0f, 16.0f), 0, true, 30.0f, false},
    {"R8_Night_GainJustBelow32_Rate25", 1, std::nextafter(32.0f, 0.0f), 25.0f, 0, true, 30.0f, false},
    // 9. Night, gain in [16, 32), rate exactly 15: keep, marker created (touched again).
    {"R9_Night_Gain20_Rate15", 1, 20.0f, 15.0f, 1, false, 15.0f, true},
    {"R9_Night_Gain16_Rate15", 1, 16.0f, 15.0f, 0, false, 15.0f, true},
    {"R9_Night_GainJustBelow32_Rate15", 1, std::nextafter(32.0f, 0.0f), 15.0f, 1, false, 15.0f, true},
    // 10. Night, gain in [16, 32), rate below 15: keep, marker deleted.
    {"R10_Night_Gain20_Rate14_9", 1, 20.0f, 14.9f, 0, false, 14.9f, false},
    // 11. Night, gain below 0 or not a number, rate exactly 15: keep, marker created (touched again).
    {"R11_Night_GainMinus1_Rate15", 1, -1.0f, 15.0f, 0, false, 15.0f, true},
    {"R11_Night_GainNaN_Rate15", 1, kNaN, 15.0f, 1, false, 15.0f, true},
    {"R11_Night_GainMinusInf_Rate15", 1, -kInf, 15.0f, 0, false, 15.0f, true},
    // 12. Night, gain below 0 or not a number, any other rate: keep, marker deleted.
    {"R12_Night_GainMinus5_Rate30", 1, -5.0f, 30.0f, 0, false, 30.0f, false},
    {"R12_Night_GainNaN_Rate25", 1, kNaN, 25.0f, 1, false, 25.0f, false},
    {"R12_Night_GainNaN_Rate10", 1, kNaN, 10.0f, 0, false, 10.0f, false},
    {"R12_Night_GainMinus40_Rate10", 1, -40.0f, 10.0f, 1, false, 10.0f, false},
};

class Part_1_5_DecisionTable : public Part_1_5_Framerate,
                      public ::testing::WithParamInterface<std::tuple<Row, bool>> {
};

TEST_P(Part_1_5_DecisionTable, RateActionAndMarker)
{
    check_row(std::get<0>(GetParam()), std::get<1>(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Rows, Part_1_5_DecisionTable,
                         ::testing::Combine(::testing::ValuesIn(kRows), ::testing::Bool()),
                         [](const ::testing::TestParamInfo<Part_1_5_DecisionTable::ParamType> &param) {
                             return std::string(std::get<0>(param.param).name) +
                                    (std::get<1>(param.param) ? "_MarkerBefore" : "_NoMarkerBefore");
                         });

// ---- the Part's "Edge cases worth testing", one named test each ----------------------------------------

TEST_F(Part_1_5_Framerate, ColourProfileGain100Rate15SetsNormalRateAndDeletesMarker)
{
    check_row({"", 0, 100.0f, 15.0f, 1, true, 25.0f, false}, true);
}

TEST_F(Part_1_5_Framerate, NightFlicker1Gain40Rate25Becomes15AndMarkerExists)
{
    check_row({"", 1, 40.0f, 25.0f, 1, true, 15.0f, true}, false);
}

TEST_F(Part_1_5_Framerate, NightGain20Rate15WritesNothingAndMarkerExists)
{
    check_row({"", 1, 20.0f, 15.0f, 1, false, 15.0f, true}, false);
}

TEST_F(Part_1_5_Framerate, NightGain20Rate30WritesThirtyAndDeletesMarker)
{
    check_row({"", 1, 20.0f, 30.0f, 0, true, 30.0f, false}, true);
}

TEST_F(Part_1_5_Framerate, NightGain20Rate30WithFlicker1WritesTwentyFiveAndDeletesMarker)
{
    check_row({"", 1, 20.0f, 30.0f, 1, true, 25.0f, false}, true);
}

TEST_F(Part_1_5_Framerate, NightGain15_9Rate15BecomesNormalRate)
{
    check_row({"", 1, 15.9f, 15.0f, 1, true, 25.0f, false}, true);
}

TEST_F(Part_1_5_Framerate, NightGainExactly16Rate15Stays15)
{
    check_row({"", 1, 16.0f, 15.0f, 0, false, 15.0f, true}, true);
}

TEST_F(Part_1_5_Framerate, NightGainExactly32Rate30Becomes15)
{
    check_row({"", 1, 32.0f, 30.0f, 0, true, 15.0f, true}, false);
}

TEST_F(Part_1_5_Framerate, FailedWriteLeavesExistingMarkerAndReturnsPlatformCode)
{
    set_rate(15.0f); // colour profile: the normal rate would be set and the marker deleted
    set_marker(true);
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_SetPubAttr", 1, 1, HI_ERR_ISP_NOT_INIT), 0);

    EXPECT_EQ(QV_ISP_FramerateAdjust(100.0f), HI_ERR_ISP_NOT_INIT);
    EXPECT_TRUE(marker_exists());
    EXPECT_EQ(rate_now(), 15.0f);
    expect_one_log(SIM_HOST_QV_SYSERROR, -1, "HI_MPI_ISP_SetPubAttr failue!!!\n");
}

// ---- the rate and the attribute -----------------------------------------------------------------------

TEST_F(Part_1_5_Framerate, OnlyTheFrameRateOfThePublicAttributeChanges)
{
    ISP_PUB_ATTR_S pub = platform_record<ISP_PUB_ATTR_S>(SIM_REC_PUB_ATTR);
    pub.stWndRect.s32X = 8;
    pub.stWndRect.s32Y = 16;
    pub.stWndRect.u32Width = 1280;
    pub.stWndRect.u32Height = 720;
    pub.f32FrameRate = 30.0f;
    pub.enBayer = BAYER_BGGR;
    sim_mpp_write(SIM_REC_PUB_ATTR, &pub);
    test_set_profile_mode(1);

    ASSERT_EQ(QV_ISP_FramerateAdjust(40.0f), 0);

    ISP_PUB_ATTR_S expected = pub;
    expected.f32FrameRate = 15.0f;
    const ISP_PUB_ATTR_S after = platform_record<ISP_PUB_ATTR_S>(SIM_REC_PUB_ATTR);
    EXPECT_TRUE(same_bytes(&after, &expected, sizeof expected));
    ASSERT_EQ(last_call_of("HI_MPI_ISP_SetPubAttr"), 1);
    const ISP_PUB_ATTR_S written = logged_record<ISP_PUB_ATTR_S>(1);
    EXPECT_TRUE(same_bytes(&written, &expected, sizeof expected));
    for (int i = 0; i < SIM_REC_COUNT; ++i) {
        if (i == SIM_REC_PUB_ATTR)
            continue;
        std::vector<unsigned char> now(sim_mpp_record_size(sim_mpp_record_id(i)));
        std::vector<unsigned char> power_on(now.size());
        sim_mpp_read(sim_mpp_record_id(i), now.data());
        sim_mpp_power_on_record(sim_mpp_record_id(i), power_on.data());
        EXPECT_TRUE(same_bytes(now.data(), power_on.data(), now.size()))
            << sim_mpp_record_name(sim_mpp_record_id(i));
    }
}

TEST_F(Part_1_5_Framerate, LoweringAndRestoringFollowTheHysteresisBand)
{
    test_set_profile_mode(1);
    set_rate(30.0f);
    struct Step {
        float gain;
        float rate;
        bool marker;
    };
    // Up through the band (no change), over 32 (lowered), down through the band (kept), below 16 (back).
    const Step steps[] = {{10.0f, 25.0f, false}, {20.0f, 25.0f, false}, {31.9f, 25.0f, false},
                          {32.0f, 15.0f, true},  {40.0f, 15.0f, true},  {20.0f, 15.0f, true},
                          {16.0f, 15.0f, true},  {15.9f, 25.0f, false}, {20.0f, 25.0f, false}};
    for (const Step &step : steps) {
        ASSERT_EQ(QV_ISP_FramerateAdjust(step.gain), 0) << step.gain;
        EXPECT_EQ(rate_now(), step.rate) << "gain " << step.gain;
        EXPECT_EQ(marker_exists(), step.marker) << "gain " << step.gain;
    }
}

TEST_F(Part_1_5_Framerate, ReadsTheFlickerModeAndProfileAtEachCall)
{
    test_set_profile_mode(0);
    ASSERT_EQ(sim_host_set_field(SYSINFO_u8FlickerMode, 0), 0);
    ASSERT_EQ(QV_ISP_FramerateAdjust(1.0f), 0);
    EXPECT_EQ(rate_now(), 30.0f);
    ASSERT_EQ(sim_host_set_field(SYSINFO_u8FlickerMode, 1), 0);
    ASSERT_EQ(QV_ISP_FramerateAdjust(1.0f), 0);
    EXPECT_EQ(rate_now(), 25.0f);
    ASSERT_EQ(sim_host_set_field(SYSINFO_u8FlickerMode, 255), 0);
    ASSERT_EQ(QV_ISP_FramerateAdjust(1.0f), 0);
    EXPECT_EQ(rate_now(), 30.0f);
    test_set_profile_mode(1);
    ASSERT_EQ(QV_ISP_FramerateAdjust(50.0f), 0);
    EXPECT_EQ(rate_now(), 15.0f);
}

TEST_F(Part_1_5_Framerate, MissingMarkerIsNoErrorWhenDeleting)
{
    ASSERT_FALSE(marker_exists());
    EXPECT_EQ(QV_ISP_FramerateAdjust(1.0f), 0);
    EXPECT_FALSE(marker_exists());
    EXPECT_EQ(sim_host_log_count(), 0u);
}

// ---- the failure table ----------------------------------------------------------------------------------

class Part_1_5_Failure : public Part_1_5_Framerate, public ::testing::WithParamInterface<bool> {
};

TEST_P(Part_1_5_Failure, NoRecordLogsSyslogReturnsMinusOneAndLeavesMarker)
{
    test_set_profile_mode(1);
    set_rate(30.0f);
    set_marker(GetParam());
    sim_host_sysinfo_null(1);

    EXPECT_EQ(QV_ISP_FramerateAdjust(40.0f), -1);

    expect_one_log(SIM_HOST_QV_SYSLOG, 0, "GetSysconfigData failed is NULL\n");
    EXPECT_TRUE(platform_calls().empty());
    EXPECT_EQ(sim_host_command_count(), 0u);
    EXPECT_EQ(marker_exists(), GetParam());
}

TEST_P(Part_1_5_Failure, ReadFailureLogsSyserrorReturnsPlatformCodeAndLeavesMarker)
{
    test_set_profile_mode(1);
    set_rate(15.0f); // a keep at 15 would touch the marker, a set would delete it: neither may happen
    set_marker(GetParam());
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_GetPubAttr", 1, 1, HI_ERR_ISP_NOT_INIT), 0);

    EXPECT_EQ(QV_ISP_FramerateAdjust(GetParam() ? 8.0f : 20.0f), HI_ERR_ISP_NOT_INIT);

    expect_one_log(SIM_HOST_QV_SYSERROR, -1, "HI_MPI_ISP_GetPubAttr failue!!!\n");
    EXPECT_EQ(platform_calls(), std::vector<std::string>{"HI_MPI_ISP_GetPubAttr"});
    EXPECT_EQ(sim_host_command_count(), 0u);
    EXPECT_EQ(marker_exists(), GetParam());
}

TEST_P(Part_1_5_Failure, WriteFailureLogsSyserrorReturnsPlatformCodeAndLeavesMarker)
{
    // Marker present: a set to the normal rate would delete it; absent: a set to 15 would create it.
    test_set_profile_mode(1);
    set_rate(GetParam() ? 15.0f : 30.0f);
    set_marker(GetParam());
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_SetPubAttr", 1, 1, HI_ERR_ISP_ILLEGAL_PARAM), 0);

    EXPECT_EQ(QV_ISP_FramerateAdjust(GetParam() ? 8.0f : 40.0f), HI_ERR_ISP_ILLEGAL_PARAM);

    expect_one_log(SIM_HOST_QV_SYSERROR, -1, "HI_MPI_ISP_SetPubAttr failue!!!\n");
    EXPECT_EQ(platform_calls(), (std::vector<std::string>{"HI_MPI_ISP_GetPubAttr", "HI_MPI_ISP_SetPubAttr"}));
    EXPECT_EQ(rate_now(), GetParam() ? 15.0f : 30.0f);
    EXPECT_EQ(sim_host_command_count(), 0u);
    EXPECT_EQ(marker_exists(), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Marker, Part_1_5_Failure, ::testing::Bool(),
                         [](const ::testing::TestParamInfo<bool> &param) {
                             return std::string(param.param ? "MarkerBefore" : "NoMarkerBefore");
                         });

} // namespace
