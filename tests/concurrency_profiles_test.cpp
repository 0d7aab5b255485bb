// Parts 2.3, 2.4 with the service running (Parts 1.2, 1.3): profile switches seen by the supervision thread.
// The free-running test is meant to be run under ThreadSanitizer too (the tsan preset): it must stay silent.
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "profile_test_support.h"
#include "service_test_support.h"

namespace {

constexpr const char *kDayDone = "--------------paramday-refresh-done--------------\n";
constexpr const char *kNightDone = "--------------paramnight-refresh-done--------------\n";

bool contains(const std::string &text, const char *part)
{
    return text.find(part) != std::string::npos;
}

// The attributes the profiles write (Overview, "Who writes which platform attribute").
const sim_mpp_record_id kProfileRecords[] = {
    SIM_REC_EXPOSURE_ATTR, SIM_REC_GAMMA_ATTR,       SIM_REC_SATURATION_ATTR, SIM_REC_CCM_ATTR,
    SIM_REC_SHARPEN_ATTR,  SIM_REC_VPSS_GRP_ATTR,    SIM_REC_ANTI_FALSECOLOR, SIM_REC_DEMOSAIC_ATTR,
    SIM_REC_DP_DYNAMIC_ATTR,
};

// The profile attributes as the platform holds them now, in kProfileRecords order.
std::vector<Bytes> profile_attributes()
{
    std::vector<Bytes> state;
    for (sim_mpp_record_id id : kProfileRecords)
        state.push_back(record_bytes(id));
    return state;
}

// The profile attributes after the baseline (Part 1.4) and then `profiles` (day 'D', night 'N') applied one
// after another on a power-on platform, with nothing running: the state Parts 2.3 and 2.4 describe (their
// own tests check it byte for byte against the spec).
std::vector<Bytes> serial_reference(const char *profiles)
{
    sim_mpp_reset();
    StdoutCapture quiet; // the baseline prints its dashes
    EXPECT_EQ(QV_ISP_SetParam(), 0);
    for (const char *p = profiles; *p != '\0'; ++p)
        EXPECT_EQ(*p == 'D' ? ISP_SetParamDay() : ISP_SetParamNight(), 0) << p - profiles;
    return profile_attributes();
}

class ProfilesWithService : public ServiceTest {
protected:
    void SetUp() override
    {
        ServiceTest::SetUp();
        sim_host_run_commands(0); // no fork() from a threaded (sanitized) process; commands are recorded
        test_set_profile_mode(0);
        set_reflash_mark(0);
    }
    int wait_for_call(size_t call) override { return vclock_wait_blocked(call); }

    // Stepping: one more pass (the first grant runs the start-up and the first pass); what it printed.
    std::string pass()
    {
        StdoutCapture capture;
        granted_ += 1;
        vclock_allow(1);
        EXPECT_EQ(wait_for_call(granted_ + 1), 0) << "the thread did not come back to the clock";
        return capture.take();
    }
};

// Done when: day -> night -> day with the service running; each switch's next pass runs the refresh of the
// new profile, and the platform ends in the state the Parts describe.
TEST_F(ProfilesWithService, DayNightDaySwitchRunsTheNewProfilesRefreshOnTheNextPass)
{
    start_held();
    const std::string first = pass(); // start-up, baseline, first pass: always a refresh (Part 1.2)
    EXPECT_TRUE(contains(first, kDayDone)) << first;
    EXPECT_EQ(reflash_mark(), 0);

    for (const char profile : {'D', 'N', 'D'}) {
        SCOPED_TRACE(profile);
        {
            StdoutCapture quiet;
            ASSERT_EQ(profile == 'D' ? ISP_SetParamDay() : ISP_SetParamNight(), 0);
            EXPECT_EQ(quiet.take(), "") << "a successful profile prints nothing";
        }
        EXPECT_EQ(profile_mode(), profile == 'D' ? 0 : 1);
        EXPECT_EQ(reflash_mark(), 1) << "the request waits for the thread";

        const unsigned wb_queries = sim_mpp_call_count("HI_MPI_ISP_QueryWBInfo"); // the day refresh's only
        const std::string out = pass();
        if (profile == 'D') {
            EXPECT_TRUE(contains(out, kDayDone)) << out;
            EXPECT_FALSE(contains(out, kNightDone)) << out;
            EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_QueryWBInfo"), wb_queries + 1);
        } else {
            EXPECT_TRUE(contains(out, kNightDone)) << out;
            EXPECT_FALSE(contains(out, kDayDone)) << out;
            EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_QueryWBInfo"), wb_queries);
        }
        EXPECT_EQ(reflash_mark(), 0) << "cleared by the successful refresh";

        const std::string quiet_pass = pass(); // nothing changed: no refresh
        EXPECT_FALSE(contains(quiet_pass, kDayDone)) << quiet_pass;
        EXPECT_FALSE(contains(quiet_pass, kNightDone)) << quiet_pass;
    }

    vclock_free_run();
    EXPECT_EQ(QV_ISP_Stop(), 0);
    EXPECT_EQ(sim_host_log_matches("Failure"), 0u);
    EXPECT_EQ(profile_mode(), 0);

    // The colour profile in force: automatic saturation and matrix, anti-false-colour on, VPSS sharpening
    // off, the day curve; the night's manual values stay stored.
    const ISP_SATURATION_ATTR_S sat = platform_record<ISP_SATURATION_ATTR_S>(SIM_REC_SATURATION_ATTR);
    EXPECT_EQ(sat.enOpType, OP_TYPE_AUTO);
    EXPECT_EQ(sat.stManual.u8Saturation, 0);
    const ISP_COLORMATRIX_ATTR_S ccm = platform_record<ISP_COLORMATRIX_ATTR_S>(SIM_REC_CCM_ATTR);
    EXPECT_EQ(ccm.enOpType, OP_TYPE_AUTO);
    EXPECT_EQ(ccm.stManual.au16CCM[0], 1);
    EXPECT_EQ(platform_record<ISP_ANTI_FALSECOLOR_S>(SIM_REC_ANTI_FALSECOLOR).bEnable, HI_TRUE);
    EXPECT_EQ(platform_record<VPSS_GRP_ATTR_S>(SIM_REC_VPSS_GRP_ATTR).bSharpenEn, HI_FALSE);
    const ISP_GAMMA_ATTR_S gamma = platform_record<ISP_GAMMA_ATTR_S>(SIM_REC_GAMMA_ATTR);
    EXPECT_EQ(gamma.u16Table[8], 625) << "the day curve (Part 2.1 node 8)";

    // Byte for byte, every profile attribute as the same calls made one after another leave it (the
    // refreshes at gain 1 write none of them but the gamma curve, which they load identically).
    const std::vector<Bytes> running = profile_attributes();
    const std::vector<Bytes> reference = serial_reference("DND");
    for (size_t i = 0; i < running.size(); ++i)
        EXPECT_TRUE(same_bytes(running[i].data(), reference[i].data(), reference[i].size()))
            << sim_mpp_record_name(kProfileRecords[i]);
}

// ThreadSanitizer: the host switches profiles back and forth while the service runs free and the AE moves
// the gain; every call succeeds, and after a last switch the thread refreshes for the profile in force.
TEST_F(ProfilesWithService, HostSwitchesProfilesBackAndForthWhileTheServiceRuns)
{
    constexpr int kSwitches = 200;   // each way
    constexpr int kAeSteps = 2000;
    sim_mpp_log_enable(0); // only call counts are needed; the log would hold every record
    StdoutCapture out;     // thousands of refresh lines

    ASSERT_EQ(QV_ISP_Start(), 0); // the free-running clock: no real waiting anywhere
    ASSERT_EQ(vclock_wait_blocked(2), 0) << "the thread is past its start-up";

    std::atomic<bool> go{false};
    std::atomic<int> failures{0};
    const size_t base = vclock_call_count();
    std::thread switcher([&] {
        while (!go.load())
            std::this_thread::yield();
        for (int i = 0; i < 2 * kSwitches; ++i) {
            // Paced: every tenth switch waits until the thread has made one more pass, so the two really
            // overlap however the threads are scheduled.
            if (i % 10 == 0 && vclock_wait_blocked(base + size_t(i / 10) + 1) != 0)
                ++failures;
            if ((i % 2 == 0 ? ISP_SetParamNight() : ISP_SetParamDay()) != 0)
                ++failures;
        }
    });
    std::thread host([&] {
        while (!go.load())
            std::this_thread::yield();
        static const HI_U32 kGains[][3] = {
            {1024, 1024, 1024}, {4710, 1024, 1024}, {16384, 1024, 1024}, {15872, 1024, 4096}};
        for (int i = 0; i < kAeSteps; ++i) {
            const HI_U32 *g = kGains[i % 4];
            sim_mpp_set_exposure(10000 + HI_U32(i), g[0], g[1], g[2]);
            sim_host_set_field(SYSINFO_u8Sharpness, i % 3 == 0 ? 127 : 128);
        }
    });
    go = true;
    switcher.join();
    host.join();
    EXPECT_EQ(failures.load(), 0);
    EXPECT_EQ(profile_mode(), 0) << "the last switch was to the colour profile";

    // A last switch, at unity gain and neutral sharpness, then two more passes: the second one starts after
    // the switch returned, so it has seen (and cleared) the request.
    sim_mpp_set_exposure(10000, 1024, 1024, 1024);
    sim_host_set_field(SYSINFO_u8Sharpness, 128);
    ASSERT_EQ(ISP_SetParamNight(), 0);
    ASSERT_EQ(ISP_SetParamDay(), 0);
    ASSERT_EQ(vclock_wait_blocked(vclock_call_count() + 2), 0);
    EXPECT_EQ(reflash_mark(), 0) << "the thread ran the refresh the switch asked for";

    EXPECT_EQ(QV_ISP_Stop(), 0);
    const std::string printed = out.take();
    EXPECT_TRUE(contains(printed, kDayDone)) << "at least the refresh after the last switch";
    EXPECT_FALSE(contains(printed, "failed")) << "no call failed";
    EXPECT_EQ(sim_host_log_matches("Failure"), 0u);
    EXPECT_EQ(sim_host_log_matches("failed"), 0u);
    EXPECT_GE(sim_mpp_call_count("HI_MPI_ISP_SetDPDynamicAttr"), unsigned(2 * kSwitches + 2));

    // The profile attributes are the colour profile's (after a night), except the gamma curve, which a
    // night refresh racing with the last switch may legitimately have written last (Overview: "the later
    // write wins").
    const std::vector<Bytes> running = profile_attributes();
    const std::vector<Bytes> reference = serial_reference("ND");
    for (size_t i = 0; i < running.size(); ++i) {
        if (kProfileRecords[i] == SIM_REC_GAMMA_ATTR)
            continue;
        EXPECT_TRUE(same_bytes(running[i].data(), reference[i].data(), reference[i].size()))
            << sim_mpp_record_name(kProfileRecords[i]);
    }
}

} // namespace
