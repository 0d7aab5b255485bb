// Part 1.3 step 6: ProfileMode is read again after the day refresh, so a switch to night that the host
// makes while the day refresh runs is followed by the night refresh in the same call.
//
// The test acts as the host: its own GetSysInfo (which the dynamic linker prefers to the simulated
// host's) switches the profile when the day refresh fetches the record, as a host thread would at that
// moment.
#include <string>

#include "core_access.h"
#include "isptune.h"
#include "isptune_test.h"

extern "C" {
#include "platform/host.h"
}

namespace {
int g_calls = 0;     // GetSysInfo calls since the test began
int g_switch_at = 0; // the call at which the host switches to night (0: never)
} // namespace

extern "C" SysInfo *GetSysInfo(void)
{
    if (++g_calls == g_switch_at)
        test_set_profile_mode(1);
    return reinterpret_cast<SysInfo *>(sim_host_sysinfo());
}

namespace {

class Part_1_3_ProfileSwitch : public ::testing::Test {
protected:
    void SetUp() override
    {
        sim_mpp_reset();
        sim_host_reset();
        sim_mpp_set_exposure(10000, 24 * 1024, 1024, 1024); // G = 24, L = 4
        g_calls = 0;
    }
};

size_t count(const std::vector<std::string> &calls, const std::string &name)
{
    size_t n = 0;
    for (const std::string &c : calls)
        n += c == name;
    return n;
}

TEST_F(Part_1_3_ProfileSwitch, SwitchToNightDuringTheDayRefreshIsFollowedByTheNightRefresh)
{
    test_set_profile_mode(0);
    g_switch_at = 2; // 1: the dispatch's presence check (step 4); 2: the day refresh's step 1
    StdoutCapture out;
    EXPECT_EQ(QV_ISP_SetVarParam(), 0);
    std::string text = out.take();
    size_t day_done = text.find("--------------paramday-refresh-done--------------\n");
    size_t night_done = text.find("--------------paramnight-refresh-done--------------\n");
    ASSERT_NE(day_done, std::string::npos) << text;
    ASSERT_NE(night_done, std::string::npos) << text;
    EXPECT_LT(day_done, night_done);
    std::vector<std::string> calls = platform_calls();
    EXPECT_EQ(count(calls, "HI_MPI_VPSS_SetGrpNRSParam"), 2u) << "one noise-reduction update per refresh";
    EXPECT_EQ(count(calls, "HI_MPI_ISP_SetWBAttr"), 1u) << "the white-balance step is the day refresh's only";
    EXPECT_EQ(g_calls, 3) << "the dispatch, the day refresh and the night refresh each fetch the record";
}

TEST_F(Part_1_3_ProfileSwitch, WithoutASwitchOnlyTheDayRefreshRuns)
{
    test_set_profile_mode(0);
    g_switch_at = 0;
    StdoutCapture out;
    EXPECT_EQ(QV_ISP_SetVarParam(), 0);
    std::string text = out.take();
    EXPECT_NE(text.find("--------------paramday-refresh-done--------------\n"), std::string::npos);
    EXPECT_EQ(text.find("paramnight-refresh-done"), std::string::npos);
    EXPECT_EQ(count(platform_calls(), "HI_MPI_VPSS_SetGrpNRSParam"), 1u);
}

} // namespace
