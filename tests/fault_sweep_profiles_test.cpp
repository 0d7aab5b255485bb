// Parts 2.3, 2.4: every platform call of ISP_SetParamDay and ISP_SetParamNight, failed in turn.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "profile_test_support.h"

namespace {

enum class Profile { Day, Night };

struct FaultRow {
    Profile profile;
    const char *call;    // the failing platform call
    const char *message; // what the profile prints, typed from the Part's Failure handling table
};

// Every run is at u8Sharpness 128, so every call is made. The codes are HI_ERR_ISP_NOT_INIT 0xa01c8040
// and HI_ERR_VPSS_BUSY 0xa0078012 (the VPSS message prints no code).
const FaultRow kRows[] = {
    // Part 2.3, in call order
    {Profile::Day, "HI_MPI_ISP_GetExposureAttr", "ISP_SetParamDay 541 failed 0xa01c8040 !!!\n"},
    {Profile::Day, "HI_MPI_ISP_SetExposureAttr", "ISP_SetParamDay 559 failed 0xa01c8040 !!!\n"},
    {Profile::Day, "HI_MPI_ISP_GetGammaAttr", "ISP_SetParamDay 568 failed 0xa01c8040 !!!\n"},
    {Profile::Day, "HI_MPI_ISP_SetGammaAttr", "ISP_SetParamDay 582 failed 0xa01c8040 !!!\n"},
    {Profile::Day, "HI_MPI_ISP_GetSaturationAttr",
     "HI_MPI_ISP_GetSaturationAttr ISP_SetParamDay 593 failed 0xa01c8040 !!!\n"},
    {Profile::Day, "HI_MPI_ISP_SetSaturationAttr",
     "HI_MPI_ISP_SetSaturationAttr ISP_SetParamDay 605 failed 0xa01c8040 !!!\n"},
    {Profile::Day, "HI_MPI_ISP_GetSharpenAttr", "ISP_SetParamDay 617 failed 0xa01c8040 !!!\n"},
    {Profile::Day, "HI_MPI_ISP_SetSharpenAttr", "ISP_SetParamDay 639 failed 0xa01c8040 !!!\n"},
    {Profile::Day, "HI_MPI_VPSS_GetGrpAttr", "HI_MPI_VPSS_GetGrpAttr failed\n"},
    {Profile::Day, "HI_MPI_VPSS_SetGrpAttr", "HI_MPI_VPSS_GetGrpAttr failed\n"}, // one text for both
    {Profile::Day, "HI_MPI_ISP_GetCCMAttr", "HI_MPI_ISP_GetCCMAttr ISP_SetParamDay 667 failed 0xa01c8040 !!!\n"},
    {Profile::Day, "HI_MPI_ISP_SetCCMAttr", "HI_MPI_ISP_SetCCMAttr ISP_SetParamDay 686 failed 0xa01c8040 !!!\n"},
    {Profile::Day, "HI_MPI_ISP_GetAntiFalseColorAttr",
     "HI_MPI_ISP_GetAntiFalseColorAttr ISP_SetParamDay 695 failed 0xa01c8040 !!!\n"},
    {Profile::Day, "HI_MPI_ISP_SetAntiFalseColorAttr",
     "HI_MPI_ISP_SetAntiFalseColorAttr ISP_SetParamDay 711 failed 0xa01c8040 !!!\n"},
    {Profile::Day, "HI_MPI_ISP_GetDemosaicAttr",
     "HI_MPI_ISP_GetDemosaicAttr ISP_SetParamDay 721 failed 0xa01c8040 !!!\n"},
    {Profile::Day, "HI_MPI_ISP_SetDemosaicAttr",
     "HI_MPI_ISP_SetDemosaicAttr ISP_SetParamDay 738 failed 0xa01c8040 !!!\n"},
    {Profile::Day, "HI_MPI_ISP_GetDPDynamicAttr",
     "HI_MPI_ISP_GetDPDynamicAttr ISP_SetParamDay 747 failed 0xa01c8040 !!!\n"},
    {Profile::Day, "HI_MPI_ISP_SetDPDynamicAttr",
     "HI_MPI_ISP_SetDPDynamicAttr ISP_SetParamDay 761 failed 0xa01c8040 !!!\n"},
    // Part 2.4, in call order
    {Profile::Night, "HI_MPI_ISP_GetExposureAttr", "ISP_SetParamNight 1116 failed 0xa01c8040 !!!\n"},
    {Profile::Night, "HI_MPI_ISP_SetExposureAttr", "ISP_SetParamNight 1135 failed 0xa01c8040 !!!\n"},
    {Profile::Night, "HI_MPI_ISP_GetGammaAttr", "ISP_SetParamNight 1144 failed 0xa01c8040 !!!\n"},
    {Profile::Night, "HI_MPI_ISP_SetGammaAttr", "ISP_SetParamNight 1158 failed 0xa01c8040 !!!\n"},
    {Profile::Night, "HI_MPI_ISP_GetSaturationAttr",
     "HI_MPI_ISP_GetSaturationAttr ISP_SetParamNight 1170 failed 0xa01c8040 !!!\n"},
    {Profile::Night, "HI_MPI_ISP_SetSaturationAttr",
     "HI_MPI_ISP_SetSaturationAttr ISP_SetParamNight 1179 failed 0xa01c8040 !!!\n"},
    {Profile::Night, "HI_MPI_ISP_GetCCMAttr",
     "HI_MPI_ISP_GetCCMAttr ISP_SetParamNight 1190 failed 0xa01c8040 !!!\n"},
    {Profile::Night, "HI_MPI_ISP_SetCCMAttr",
     "HI_MPI_ISP_SetCCMAttr ISP_SetParamNight 1205 failed 0xa01c8040 !!!\n"},
    {Profile::Night, "HI_MPI_ISP_GetSharpenAttr", "ISP_SetParamNight 1217 failed 0xa01c8040 !!!\n"},
    {Profile::Night, "HI_MPI_ISP_SetSharpenAttr", "ISP_SetParamNight 1238 failed 0xa01c8040 !!!\n"},
    {Profile::Night, "HI_MPI_ISP_GetDemosaicAttr",
     "HI_MPI_ISP_GetDemosaicAttr ISP_SetParamNight 1296 failed 0xa01c8040 !!!\n"},
    {Profile::Night, "HI_MPI_ISP_SetDemosaicAttr",
     "HI_MPI_ISP_SetDemosaicAttr ISP_SetParamNight 1314 failed 0xa01c8040 !!!\n"},
    {Profile::Night, "HI_MPI_ISP_GetAntiFalseColorAttr",
     "HI_MPI_ISP_GetAntiFalseColorAttr ISP_SetParamNight 1323 failed 0xa01c8040 !!!\n"},
    {Profile::Night, "HI_MPI_ISP_SetAntiFalseColorAttr",
     "HI_MPI_ISP_SetAntiFalseColorAttr ISP_SetParamNight 1332 failed 0xa01c8040 !!!\n"},
    {Profile::Night, "HI_MPI_ISP_GetDPDynamicAttr",
     "HI_MPI_ISP_GetDPDynamicAttr ISP_SetParamNight 1341 failed 0xa01c8040 !!!\n"},
    {Profile::Night, "HI_MPI_ISP_SetDPDynamicAttr",
     "HI_MPI_ISP_SetDPDynamicAttr ISP_SetParamNight 1355 failed 0xa01c8040 !!!\n"},
};

int32_t run(Profile p)
{
    return p == Profile::Day ? ISP_SetParamDay() : ISP_SetParamNight();
}

// The profile's full call sequence: the rows of its profile, in order.
std::vector<std::string> full_path(Profile p)
{
    std::vector<std::string> calls;
    for (const FaultRow &row : kRows)
        if (row.profile == p)
            calls.emplace_back(row.call);
    return calls;
}

class ProfileFaultSweep : public SimTestWithParam<FaultRow> {
protected:
    void SetUp() override
    {
        SimTestWithParam::SetUp();
        ASSERT_EQ(sim_host_get_field(SYSINFO_u8Sharpness), 128);
    }
};

TEST_P(ProfileFaultSweep, PrintsTheMessageReturnsMinusOneAndMakesNoLaterCall)
{
    const FaultRow &row = GetParam();
    const int32_t wanted_mode = row.profile == Profile::Day ? 0 : 1;
    test_set_profile_mode(1 - wanted_mode);
    set_reflash_mark(0);
    ASSERT_EQ(sim_mpp_fail(row.call, 1, SIM_MPP_ALWAYS, failure_code_for(row.call)), 0);

    // The platform before the run, to show that nothing after the failure wrote anything.
    const std::vector<Bytes> before = platform_state();

    StdoutCapture capture;
    const int32_t result = run(row.profile);
    const std::string out = capture.take();

    EXPECT_EQ(result, -1);
    EXPECT_EQ(out, row.message);
    EXPECT_EQ(sim_host_log_count(), 0u) << "the profiles report on standard output only";
    EXPECT_EQ(profile_mode(), wanted_mode) << "stored first, not undone";
    EXPECT_EQ(reflash_mark(), 1) << "stored first, not undone";

    // The calls up to and including the failing one, and nothing later.
    const std::vector<std::string> path = full_path(row.profile);
    size_t failing = 0;
    while (failing < path.size() && path[failing] != row.call)
        ++failing;
    ASSERT_LT(failing, path.size());
    EXPECT_EQ(platform_calls(), std::vector<std::string>(path.begin(), path.begin() + long(failing) + 1));
    ASSERT_EQ(sim_mpp_log_count(), failing + 1);
    EXPECT_EQ(sim_mpp_log_at(failing)->result, failure_code_for(row.call));

    // Exactly the records of the sets before the failure changed: a failed get writes nothing, a failed
    // set leaves its record as it was, and no later step ran.
    std::vector<bool> written(SIM_REC_COUNT + 1, false); // + 1: room for an unknown call
    for (size_t i = 0; i < failing; ++i)
        if (path[i].find("_Set") != std::string::npos)
            written[size_t(record_of(path[i]))] = true;
    for (int id = 0; id < SIM_REC_COUNT; ++id)
        EXPECT_EQ(record_bytes(sim_mpp_record_id(id)) != before[size_t(id)], written[size_t(id)])
            << sim_mpp_record_name(sim_mpp_record_id(id));
}

std::string row_name(const testing::TestParamInfo<FaultRow> &info)
{
    std::string call = info.param.call;
    for (const char *prefix : {"HI_MPI_ISP_", "HI_MPI_"})
        if (call.rfind(prefix, 0) == 0) {
            call = call.substr(std::string(prefix).size());
            break;
        }
    return std::string(info.param.profile == Profile::Day ? "Day_" : "Night_") + call;
}

INSTANTIATE_TEST_SUITE_P(EveryCall, ProfileFaultSweep, ::testing::ValuesIn(kRows), row_name);

// The failure on a later call than the first: the same step fails on the second run only.
TEST(ProfileFaultSweepAgain, ASecondRunThatFailsStopsAtTheSameStepAndTheFirstRunStandsForTheRest)
{
    reset_simulators();
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_SetDemosaicAttr", 2, 1, HI_ERR_ISP_NOT_INIT), 0);
    {
        StdoutCapture quiet;
        ASSERT_EQ(ISP_SetParamNight(), 0);
    }
    StdoutCapture capture;
    EXPECT_EQ(ISP_SetParamNight(), -1);
    EXPECT_EQ(capture.take(), "HI_MPI_ISP_SetDemosaicAttr ISP_SetParamNight 1314 failed 0xa01c8040 !!!\n");
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_GetAntiFalseColorAttr"), 1u) << "nothing after the failure";
}

// GetSysInfo, the host's call, is the one failure before any platform call.
TEST(ProfileFaultSweepHost, NoSettingsRecordFailsBothProfilesBeforeAnyPlatformCall)
{
    for (Profile p : {Profile::Day, Profile::Night}) {
        reset_simulators();
        sim_host_sysinfo_null(1);
        expect_refused_without_record(captured([p] { return run(p); }), p == Profile::Day ? 0 : 1);
    }
}

} // namespace
