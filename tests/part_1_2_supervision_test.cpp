// Part 1.2: Supervision loop: one pass driven directly, and the thread QV_ISP_Proc on the stepping clock.
#include <dlfcn.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "service_test_support.h"

namespace {

// ---- a host hook: this test is the host (design, "Seams" 2), so it may wrap the simulated GetSysInfo ----

std::atomic<unsigned> g_sysinfo_calls{0};
// What the next GetSysInfo call does before answering: nothing, raise ispParamReflashMark, or raise it
// and then report that the host has no record (which makes the dispatch fail after the raise).
enum class Hook { none, raise_flag, raise_flag_then_no_record };
std::atomic<Hook> g_next_sysinfo{Hook::none};

} // namespace

// Counts calls and, when armed, acts from inside the refresh that is running (the dispatch fetches the
// record in its step 4), then hands over to the simulated host's GetSysInfo.
extern "C" SysInfo *GetSysInfo(void)
{
    using Fn = SysInfo *(*)(void);
    static const Fn simulated = reinterpret_cast<Fn>(dlsym(RTLD_NEXT, "GetSysInfo"));
    g_sysinfo_calls.fetch_add(1);
    const Hook hook = g_next_sysinfo.exchange(Hook::none);
    if (hook != Hook::none)
        __atomic_store_n(&ispParamReflashMark, 1, __ATOMIC_SEQ_CST);
    return hook == Hook::raise_flag_then_no_record ? nullptr : simulated();
}

namespace {

constexpr const char *kQuery = "HI_MPI_ISP_QueryExposureInfo";
constexpr const char *kRefreshFailure = "func(QV_ISP_Proc ::238),QV_ISP_SetVarParam Failure\n";

void create_marker()
{
    FILE *file = std::fopen(kMarker, "w");
    ASSERT_NE(file, nullptr);
    std::fclose(file);
}

// The three gains (1024 = 1.0) the AE reports from now on.
void set_gains(HI_U32 again, HI_U32 dgain, HI_U32 ispdgain)
{
    sim_mpp_set_exposure(10000, again, dgain, ispdgain);
}

// Calls of QV_ISP_FramerateAdjust so far: it reads the public attribute once per call, nothing else does.
unsigned adjustments()
{
    return sim_mpp_call_count("HI_MPI_ISP_GetPubAttr");
}

// Makes the refresh of the next pass fail: the pass's own exposure query succeeds, the dispatch's fails
// (Part 1.3 step 1 returns -1).
void fail_next_refresh()
{
    ASSERT_EQ(sim_mpp_fail(kQuery, queries() + 2, 1, HI_ERR_ISP_NOT_INIT), 0);
}

// The host's log entries made through `service`, in order.
std::vector<sim_host_log> log_entries_of(sim_host_service service)
{
    std::vector<sim_host_log> entries;
    for (size_t i = 0; i < sim_host_log_count(); ++i)
        if (sim_host_log_at(i).service == service)
            entries.push_back(sim_host_log_at(i));
    return entries;
}

// Index of the first logged call of `function`, or the log size when there is none.
size_t first_call_of(const char *function)
{
    const std::vector<std::string> calls = platform_calls();
    size_t i = 0;
    while (i < calls.size() && calls[i] != function)
        ++i;
    return i;
}

void reset_world()
{
    sim_mpp_reset();
    sim_host_reset();
    vclock_reset();
    test_set_profile_mode(0);
    set_reflash_mark(0);
    std::remove(kMarker);
    g_next_sysinfo = Hook::none;
    g_sysinfo_calls = 0;
}

// ---- one pass, called directly --------------------------------------------------------------------------

class Part_1_2_Pass : public ::testing::Test {
protected:
    void SetUp() override
    {
        reset_world();
        std::memset(&exp_, 0, sizeof exp_);
    }
    void TearDown() override
    {
        vclock_free_run();
        std::remove(kMarker);
    }

    const SysInfo *info() const { return reinterpret_cast<const SysInfo *>(sim_host_sysinfo()); }

    // One pass; `refreshed` tells whether it called QV_ISP_SetVarParam (which queries the exposure again).
    struct Pass {
        bool pause;
        bool refreshed;
    };
    Pass pass(const SysInfo *record)
    {
        const unsigned before = queries();
        const bool pause = isp_supervision_pass(record, &exp_);
        const unsigned made = queries() - before;
        EXPECT_TRUE(made == 1 || made == 2) << made << " exposure queries in one pass";
        return {pause, made == 2};
    }
    Pass pass() { return pass(info()); }

    // A successful refresh through the flag: the last values now match the conditions, the counter is 0.
    void settle()
    {
        set_reflash_mark(1);
        const Pass p = pass();
        ASSERT_TRUE(p.refreshed);
        ASSERT_TRUE(p.pause);
        ASSERT_EQ(reflash_mark(), 0);
    }

    void quiet_passes(int n)
    {
        for (int i = 0; i < n; ++i) {
            const Pass p = pass();
            ASSERT_FALSE(p.refreshed) << "quiet pass " << i + 1;
            ASSERT_TRUE(p.pause);
        }
    }

    ISP_EXP_INFO_S exp_;
};

TEST_F(Part_1_2_Pass, FirstPassAfterLoadRefreshesEvenWithoutTheFlag)
{
    // Load-time last values -1, -1, 255: the first sample always differs (here in every respect).
    ASSERT_EQ(reflash_mark(), 0);
    const Pass p = pass();
    EXPECT_TRUE(p.refreshed);
    EXPECT_TRUE(p.pause);
    EXPECT_EQ(sim_host_ircut_calls(), 1u);
    EXPECT_EQ(sim_host_ircut_last_arg(), 0); // gain 1.0
}

TEST_F(Part_1_2_Pass, GainBetween3_0And4_4CausesNoRefresh)
{
    set_gains(2048, 1536, 1024); // 3.0, scaled gain 2
    settle();
    EXPECT_EQ(sim_host_ircut_last_arg(), 2);
    set_gains(4506, 1024, 1024); // 4.40039, scaled gain 2
    EXPECT_FALSE(pass().refreshed);
    EXPECT_EQ(sim_host_ircut_last_arg(), 2);
    set_gains(3072, 1024, 1024); // back to 3.0
    EXPECT_FALSE(pass().refreshed);
    EXPECT_EQ(sim_host_log_count(), 0u);
}

TEST_F(Part_1_2_Pass, GainFrom4_4To4_6Refreshes)
{
    set_gains(4506, 1024, 1024); // 4.40039, scaled gain 2
    settle();
    set_gains(4710, 1024, 1024); // 4.59961, scaled gain 3
    const Pass p = pass();
    EXPECT_TRUE(p.refreshed);
    EXPECT_TRUE(p.pause);
    EXPECT_EQ(sim_host_ircut_last_arg(), 3);
    EXPECT_FALSE(pass().refreshed) << "the new scaled gain is now the last one";
}

TEST_F(Part_1_2_Pass, GainIsRoundedToSinglePrecisionBeforeScaling)
{
    // 3221225471 / 2^30 = 3 - 2^-30 in double; rounded to single precision it is 3.0, scaled gain 2
    // (the double itself would give 1).
    set_gains(3221225471u, 1, 1);
    settle();
    EXPECT_EQ(sim_host_ircut_last_arg(), 2);
}

TEST_F(Part_1_2_Pass, WatchedModeChangeAloneRefreshesOnTheNextPass)
{
    settle();
    ASSERT_EQ(sim_host_set_field(SYSINFO_u8WatchedMode, 7), 0);
    EXPECT_TRUE(pass().refreshed);
    EXPECT_FALSE(pass().refreshed);
    ASSERT_EQ(sim_host_set_field(SYSINFO_u8WatchedMode, 0), 0);
    EXPECT_TRUE(pass().refreshed);
}

TEST_F(Part_1_2_Pass, IrCutChangeAloneRefreshes)
{
    settle();
    sim_host_set_ircut(1);
    EXPECT_TRUE(pass().refreshed);
    EXPECT_FALSE(pass().refreshed);
    sim_host_set_ircut(0);
    EXPECT_TRUE(pass().refreshed);
}

TEST_F(Part_1_2_Pass, FlagAloneRefreshesAndIsClearedAfterSuccess)
{
    settle();
    set_reflash_mark(1);
    EXPECT_TRUE(pass().refreshed);
    EXPECT_EQ(reflash_mark(), 0);
    EXPECT_FALSE(pass().refreshed);
}

TEST_F(Part_1_2_Pass, SteadyConditionsMakeQuietPassesThatStillAskForTheIrCut)
{
    settle();
    const size_t ircut_calls = sim_host_ircut_calls();
    quiet_passes(20);
    EXPECT_EQ(sim_host_ircut_calls(), ircut_calls + 20);
    EXPECT_EQ(adjustments(), 0u);
}

TEST_F(Part_1_2_Pass, FramerateAdjustOnceOnThe120thQuietPassAndNotLater)
{
    settle();
    quiet_passes(119);
    EXPECT_EQ(adjustments(), 0u);
    quiet_passes(1);
    EXPECT_EQ(adjustments(), 1u);
    quiet_passes(500);
    EXPECT_EQ(adjustments(), 1u);
    // A successful refresh starts a new quiet period.
    settle();
    quiet_passes(119);
    EXPECT_EQ(adjustments(), 1u);
    quiet_passes(1);
    EXPECT_EQ(adjustments(), 2u);
}

TEST_F(Part_1_2_Pass, LongQuietPeriodStillMakesOneAdjustment)
{
    // docs/decisions.md: the counter is held at a ceiling; 2^31 passes are out of reach of a unit test,
    // but a long quiet period must still adjust once.
    sim_mpp_log_enable(0);
    settle();
    quiet_passes(20000);
    EXPECT_EQ(adjustments(), 1u);
}

TEST_F(Part_1_2_Pass, FramerateAdjustGetsThisPassSinglePrecisionGain)
{
    test_set_profile_mode(1);
    sim_host_run_commands(0);
    // (2^35 - 1) / 2^30 = 32 - 2^-30, which rounds to 32.0f: the night rate is lowered to 15.
    set_gains(279527, 122921, 1);
    settle();
    quiet_passes(120);
    ASSERT_EQ(adjustments(), 1u);
    EXPECT_EQ(platform_record<ISP_PUB_ATTR_S>(SIM_REC_PUB_ATTR).f32FrameRate, 15.0f);
    ASSERT_EQ(sim_host_command_count(), 1u);
    EXPECT_STREQ(sim_host_command_at(0), "touch /tmp/FramerateAdjust");
}

TEST_F(Part_1_2_Pass, FramerateAdjustJustBelowThirtyTwoRestoresTheNormalRate)
{
    test_set_profile_mode(1);
    set_gains(32767, 1024, 1024); // 31.999: the hysteresis band, a rate of 30 becomes the normal 25
    settle();
    quiet_passes(120);
    ASSERT_EQ(adjustments(), 1u);
    EXPECT_EQ(platform_record<ISP_PUB_ATTR_S>(SIM_REC_PUB_ATTR).f32FrameRate, 25.0f);
}

TEST_F(Part_1_2_Pass, FailingRefreshAfterGainChangeIsRetriedAtOnce)
{
    settle();
    set_gains(8192, 1024, 1024);
    fail_next_refresh();
    const Pass failed = pass();
    EXPECT_TRUE(failed.refreshed);
    EXPECT_FALSE(failed.pause) << "no pause after a failed refresh";
    ASSERT_NO_FATAL_FAILURE(expect_only_syserror_entry(kRefreshFailure));

    const Pass retry = pass();
    EXPECT_TRUE(retry.refreshed) << "the gain change is still pending";
    EXPECT_TRUE(retry.pause);
    EXPECT_FALSE(pass().refreshed);
    EXPECT_EQ(sim_host_log_count(), 1u);
}

TEST_F(Part_1_2_Pass, FailingRefreshesDoNotAdvanceTheQuietCounter)
{
    settle();
    quiet_passes(50);
    set_gains(8192, 1024, 1024);
    for (int i = 0; i < 3; ++i) {
        fail_next_refresh();
        const Pass p = pass();
        ASSERT_TRUE(p.refreshed);
        ASSERT_FALSE(p.pause);
    }
    set_gains(1024, 1024, 1024); // back to the last completed pass's gain: nothing is due any more
    quiet_passes(69);
    EXPECT_EQ(adjustments(), 0u) << "the three failed passes counted as quiet";
    quiet_passes(1);
    EXPECT_EQ(adjustments(), 1u) << "the counter was reset by the failed passes";
    EXPECT_EQ(sim_host_log_matches(kRefreshFailure), 3u);
}

TEST_F(Part_1_2_Pass, FailingRefreshCausedOnlyByWatchedModeIsNotRetried)
{
    settle();
    quiet_passes(50);
    ASSERT_EQ(sim_host_set_field(SYSINFO_u8WatchedMode, 3), 0);
    fail_next_refresh();
    const Pass failed = pass();
    EXPECT_TRUE(failed.refreshed);
    EXPECT_FALSE(failed.pause);
    EXPECT_EQ(sim_host_log_matches(kRefreshFailure), 1u);

    const Pass next = pass();
    EXPECT_FALSE(next.refreshed) << "not retried";
    EXPECT_TRUE(next.pause);
    // The next pass counted as quiet (51), the failed one did not: the 120th quiet pass is 69 passes on.
    quiet_passes(68);
    EXPECT_EQ(adjustments(), 0u);
    quiet_passes(1);
    EXPECT_EQ(adjustments(), 1u);
}

TEST_F(Part_1_2_Pass, FailingRefreshKeepsTheFlag)
{
    settle();
    set_reflash_mark(1);
    fail_next_refresh();
    EXPECT_FALSE(pass().pause);
    EXPECT_EQ(reflash_mark(), 1);
    EXPECT_TRUE(pass().refreshed);
    EXPECT_EQ(reflash_mark(), 0);
}

TEST_F(Part_1_2_Pass, RequestRaisedDuringARefreshSurvivesIt)
{
    // docs/decisions.md: the flag is taken before the refresh, so a request the host raises while the
    // refresh runs is served by the next pass.
    settle();
    set_gains(8192, 1024, 1024);
    g_next_sysinfo = Hook::raise_flag;
    const Pass p = pass();
    ASSERT_TRUE(p.refreshed);
    ASSERT_EQ(g_next_sysinfo.load(), Hook::none) << "the hook ran inside the refresh";
    EXPECT_EQ(reflash_mark(), 1);
    EXPECT_TRUE(pass().refreshed);
    EXPECT_EQ(reflash_mark(), 0);
    EXPECT_FALSE(pass().refreshed);
}

TEST_F(Part_1_2_Pass, RequestRaisedDuringAFailedRefreshIsKept)
{
    settle();
    set_gains(8192, 1024, 1024); // due by the gain, not by the flag
    g_next_sysinfo = Hook::raise_flag_then_no_record;
    const Pass failed = pass();
    ASSERT_TRUE(failed.refreshed);
    EXPECT_FALSE(failed.pause);
    EXPECT_EQ(reflash_mark(), 1) << "the host's request is not lost";
    EXPECT_TRUE(pass().refreshed);
    EXPECT_EQ(reflash_mark(), 0);
}

TEST_F(Part_1_2_Pass, ExposureQueryFailureGoesOnWithThePreviousSample)
{
    set_gains(4096, 1024, 1024); // 4.0, scaled gain 2
    settle();
    set_gains(16384, 1024, 1024); // 16.0 would be due, but the pass's query fails
    ASSERT_EQ(sim_mpp_fail(kQuery, queries() + 1, 1, HI_ERR_ISP_NOT_INIT), 0);
    StdoutCapture out;
    const Pass p = pass();
    EXPECT_EQ(out.take(), "HI_MPI_ISP_QueryExposureInfo failed\n");
    EXPECT_FALSE(p.refreshed) << "the previous sample is unchanged";
    EXPECT_TRUE(p.pause);
    EXPECT_EQ(exp_.u32AGain, 4096u);
    EXPECT_EQ(sim_host_ircut_last_arg(), 2);
    EXPECT_TRUE(pass().refreshed) << "the next good sample is a change";
    EXPECT_EQ(sim_host_ircut_last_arg(), 10);
}

TEST_F(Part_1_2_Pass, FramerateAdjustReturningMinusOneIsLogged)
{
    settle();
    quiet_passes(119);
    sim_host_sysinfo_null(1); // the adjustment finds no record: -1 (the pass itself uses its kept record)
    quiet_passes(1);
    const std::vector<std::string> texts = host_log_texts();
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_EQ(texts[0], "GetSysconfigData failed is NULL\n");
    EXPECT_EQ(texts[1], "QV_ISP_FramerateAdjust failed!!!\n");
    const sim_host_log entry = sim_host_log_at(1);
    EXPECT_EQ(entry.service, SIM_HOST_QV_SYSERROR);
    EXPECT_EQ(entry.module, 14);
}

TEST_F(Part_1_2_Pass, FramerateAdjustPlatformCodeIsNotLoggedByTheLoop)
{
    settle();
    quiet_passes(119);
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_GetPubAttr", 1, 1, HI_ERR_ISP_NOT_INIT), 0);
    quiet_passes(1);
    EXPECT_EQ(host_log_texts(), std::vector<std::string>{"HI_MPI_ISP_GetPubAttr failue!!!\n"});
}

TEST_F(Part_1_2_Pass, FramerateAdjustPlatformCodeMinusOneIsLoggedByTheLoop)
{
    // The loop reports exactly -1, whoever produced it.
    settle();
    quiet_passes(119);
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_GetPubAttr", 1, 1, -1), 0);
    quiet_passes(1);
    EXPECT_EQ(host_log_texts(),
              (std::vector<std::string>{"HI_MPI_ISP_GetPubAttr failue!!!\n",
                                        "QV_ISP_FramerateAdjust failed!!!\n"}));
}

TEST_F(Part_1_2_Pass, WithoutARecordTheWatchedModeCountsAsUnchanged)
{
    // docs/decisions.md: the pass function called without a record treats u8WatchedMode as unchanged and
    // never reads through null (QV_ISP_Proc itself ends instead, see the thread tests below).
    set_reflash_mark(1);
    EXPECT_TRUE(pass(nullptr).refreshed);
    ASSERT_EQ(sim_host_set_field(SYSINFO_u8WatchedMode, 9), 0);
    EXPECT_FALSE(pass(nullptr).refreshed);
    set_gains(8192, 1024, 1024);
    EXPECT_TRUE(pass(nullptr).refreshed) << "the other causes still work";
    EXPECT_FALSE(pass(nullptr).refreshed);
}

// ---- the thread, on the stepping clock ------------------------------------------------------------------

class Part_1_2_Thread : public ServiceTest {
protected:
    void SetUp() override { reset_world(); }
};

TEST_F(Part_1_2_Thread, SleepsTenSecondsOnceThen33333MicrosecondsPerPass)
{
    start_held();
    step(3);
    ASSERT_EQ(vclock_call_count(), 4u);
    const vclock_call startup = vclock_call_at(0);
    EXPECT_EQ(startup.kind, VCLOCK_SLEEP);
    EXPECT_EQ(startup.duration_us, 10000000u);
    EXPECT_EQ(startup.start_us, 0u);
    for (size_t i = 1; i < 4; ++i) {
        const vclock_call pause = vclock_call_at(i);
        EXPECT_EQ(pause.kind, VCLOCK_USLEEP) << i;
        EXPECT_EQ(pause.duration_us, 33333u) << i;
        EXPECT_EQ(pause.thread, startup.thread) << i;
        if (i < 3) { // the last one is still held, not yet let through
            EXPECT_EQ(pause.start_us, 10000000u + 33333u * (i - 1)) << i;
        }
    }
}

TEST_F(Part_1_2_Thread, StartUpFetchesTheRecordSleepsThenAppliesTheBaselineBeforeTheFirstPass)
{
    start_held();
    EXPECT_EQ(g_sysinfo_calls.load(), 1u) << "GetSysInfo before the sleep";
    EXPECT_EQ(sim_mpp_log_count(), 0u) << "nothing before the 10 s wait is over";
    EXPECT_EQ(sim_host_ircut_calls(), 0u);

    step();
    const std::vector<std::string> calls = platform_calls();
    ASSERT_FALSE(calls.empty());
    EXPECT_EQ(calls.front(), "HI_MPI_ISP_GetExposureAttr") << "the baseline (Part 1.4) comes first";
    EXPECT_LT(first_call_of("HI_MPI_ISP_SetBlackLevelAttr"), first_call_of(kQuery))
        << "the baseline's last write before the first pass's query";
    EXPECT_EQ(sim_host_ircut_calls(), 1u);
}

TEST_F(Part_1_2_Thread, FirstPassAlwaysRefreshes)
{
    start_held();
    step();
    EXPECT_EQ(queries(), 2u) << "the pass's query and the dispatch's";
    EXPECT_EQ(reflash_mark(), 0);
    step();
    EXPECT_EQ(queries(), 3u) << "the second pass is quiet";
}

TEST_F(Part_1_2_Thread, GainMovesRefreshOnlyWhenTheScaledGainChanges)
{
    set_gains(3072, 1024, 1024); // 3.0
    start_held();
    step();
    set_gains(4506, 1024, 1024); // 4.4: scaled gain 2 still
    step();
    EXPECT_EQ(queries(), 3u);
    set_gains(4710, 1024, 1024); // 4.6: scaled gain 3
    step();
    EXPECT_EQ(queries(), 5u);
}

TEST_F(Part_1_2_Thread, WatchedModeChangeIsNoticedOnTheNextPass)
{
    start_held();
    step(2);
    const unsigned before = queries();
    ASSERT_EQ(sim_host_set_field(SYSINFO_u8WatchedMode, 42), 0);
    step();
    EXPECT_EQ(queries(), before + 2);
}

TEST_F(Part_1_2_Thread, QuietPassesReadTheRecordKeptAtStartUp)
{
    start_held();
    step();
    const unsigned fetched = g_sysinfo_calls.load();
    step(10);
    EXPECT_EQ(g_sysinfo_calls.load(), fetched) << "quiet passes fetch nothing";
}

TEST_F(Part_1_2_Thread, FramerateAdjustExactlyOnceOnThe120thQuietPass)
{
    start_held();
    step();      // pass 1: refresh
    step(119);   // passes 2..120: 119 quiet passes
    EXPECT_EQ(adjustments(), 0u);
    step();      // pass 121: the 120th quiet pass
    EXPECT_EQ(adjustments(), 1u);
    step(300);
    EXPECT_EQ(adjustments(), 1u);
    set_reflash_mark(1); // a refresh starts a new quiet period
    step(121);
    EXPECT_EQ(adjustments(), 2u);
}

TEST_F(Part_1_2_Thread, FailingRefreshIsRetriedWithNoPause)
{
    start_held();
    step(); // pass 1
    set_gains(8192, 1024, 1024);
    fail_next_refresh();
    step(); // pass 2 fails, pass 3 follows at once, refreshes, pauses
    EXPECT_EQ(queries(), 6u) << "two passes of two queries after the first";
    EXPECT_EQ(sim_host_log_matches(kRefreshFailure), 1u);
    EXPECT_EQ(vclock_call_count(), 3u) << "one pause for two passes";
    EXPECT_EQ(vclock_now_us(), 10000000u + 33333u);
    step(); // pass 4: quiet
    EXPECT_EQ(queries(), 7u);
}

TEST_F(Part_1_2_Thread, MarkerPresentAtStartIsReportedAndDeletedBeforeTheFirstPass)
{
    create_marker();
    start_held();
    EXPECT_TRUE(marker_exists()) << "not before the 10 s wait";
    step();
    EXPECT_FALSE(marker_exists());
    const std::vector<sim_host_log> traces = log_entries_of(SIM_HOST_LOGTRACE);
    ASSERT_EQ(traces.size(), 1u);
    EXPECT_STREQ(traces[0].text, "QV_ISP_Proc 200 FramerateAdjust is exist! \n");
    EXPECT_EQ(traces[0].module, -1);
    EXPECT_EQ(adjustments(), 0u) << "no adjustment could have made or removed it";
}

TEST_F(Part_1_2_Thread, NoMarkerAtStartNothingReported)
{
    start_held();
    step();
    EXPECT_TRUE(log_entries_of(SIM_HOST_LOGTRACE).empty());
}

TEST_F(Part_1_2_Thread, MarkerLeftByAnAdjustmentIsDeletedByTheNextStart)
{
    test_set_profile_mode(1);
    set_gains(40960, 1024, 1024); // 40.0: the night rate goes to 15 and the marker is made
    start_held();
    step(121);
    ASSERT_EQ(adjustments(), 1u);
    EXPECT_TRUE(marker_exists());
    vclock_free_run();
    ASSERT_EQ(QV_ISP_Stop(), 0);
    EXPECT_TRUE(marker_exists()) << "a stop leaves it";

    start_held();
    step();
    EXPECT_FALSE(marker_exists());
    EXPECT_EQ(sim_host_log_matches("QV_ISP_Proc 200 FramerateAdjust is exist! \n"), 1u);
}

TEST_F(Part_1_2_Thread, StatusClearedDuringTheStartUpWaitEndsTheThreadAfterTheBaselineWithoutQuery)
{
    start_held();
    set_status(0);
    vclock_allow(1);
    granted_ += 1;
    // A new start reclaims the ended thread first (it joins it), so when it returns the old thread is over;
    // the new thread is then held in its own sleep(10).
    ASSERT_EQ(QV_ISP_Start(), 0);
    ASSERT_EQ(reached(granted_ + 1), 0);
    EXPECT_LT(first_call_of("HI_MPI_ISP_SetBlackLevelAttr"), sim_mpp_log_count()) << "the baseline ran";
    EXPECT_EQ(queries(), 0u) << "no exposure query";
    EXPECT_EQ(sim_host_ircut_calls(), 0u);
    ASSERT_EQ(vclock_call_count(), 2u);
    EXPECT_EQ(vclock_call_at(1).kind, VCLOCK_SLEEP) << "the old thread never paused between passes";
    EXPECT_NE(vclock_call_at(1).thread, vclock_call_at(0).thread);
}

// docs/decisions.md: with no record at start-up the thread finishes its start-up, reports that the loop
// does not run, and ends (a loop whose every refresh must fail would retry without pausing, for ever).
TEST_F(Part_1_2_Thread, NoRecordAtStartUpIsReportedAndTheThreadEndsAfterItsStartUp)
{
    create_marker();
    sim_host_sysinfo_null(1);
    {
        StdoutCapture out;
        start_held();
        EXPECT_EQ(out.take(), "-----------QV_ISP_Start----------\nGetSysInfo failed is NULL\n");
    }
    StdoutCapture out;
    vclock_free_run();
    ASSERT_EQ(QV_ISP_Stop(), 0) << "the stop joins the ended thread";
    EXPECT_EQ(out.take(), "GetSysInfo failed is NULL\n") << "the baseline's own report";
    EXPECT_EQ(queries(), 0u) << "no pass";
    EXPECT_EQ(vclock_call_count(), 1u) << "no pause";
    EXPECT_EQ(reflash_mark(), 1) << "start-up step 4 ran";
    EXPECT_FALSE(marker_exists()) << "start-up step 5 ran";
    const std::vector<sim_host_log> errors = log_entries_of(SIM_HOST_QV_SYSERROR);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0].module, 14);
    EXPECT_STREQ(errors[0].text, "QV_ISP_Proc: no SysInfo record, the supervision loop does not run\n");
}

TEST_F(Part_1_2_Thread, NoRecordAtStartUpEndsTheThreadEvenIfTheRecordComesBack)
{
    sim_host_sysinfo_null(1);
    start_held();
    sim_host_sysinfo_null(0); // the baseline fetches the record afresh; the thread keeps its null
    vclock_free_run();
    ASSERT_EQ(QV_ISP_Stop(), 0);
    EXPECT_LT(first_call_of("HI_MPI_ISP_SetBlackLevelAttr"), sim_mpp_log_count()) << "the baseline ran";
    EXPECT_EQ(queries(), 0u);
    EXPECT_EQ(sim_host_log_matches("the supervision loop does not run"), 1u);
}

TEST_F(Part_1_2_Thread, FirstQueryFailingLeavesAZeroedRecord)
{
    set_gains(8192, 1024, 1024); // 8.0, scaled gain 5, if the query had worked
    ASSERT_EQ(sim_mpp_fail(kQuery, 1, 1, HI_ERR_ISP_NOT_INIT), 0);
    start_held();
    StdoutCapture out;
    step();
    EXPECT_NE(out.take().find("HI_MPI_ISP_QueryExposureInfo failed\n"), std::string::npos);
    EXPECT_EQ(sim_host_ircut_last_arg(), 0) << "gain 0 from the zeroed record";
    EXPECT_EQ(queries(), 2u) << "the refresh still ran (the flag)";
    step();
    EXPECT_EQ(sim_host_ircut_last_arg(), 5);
    EXPECT_EQ(queries(), 4u) << "the real sample is a change";
}

} // namespace
