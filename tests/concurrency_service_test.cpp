// Concurrency (Parts 1.2 to 1.7): the service running while host threads change conditions and call in.
// Meant to be run under ThreadSanitizer too (the tsan preset): it must stay silent.
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "service_test_support.h"

namespace {

constexpr int kIterations = 2000; // per host thread
constexpr size_t kPassesAfterwards = 50;

// Gains (AGain, DGain, ISPDGain) the host's AE reports in turn: from unity through the hysteresis band to
// beyond 32, so refreshes, quiet periods and frame-rate changes all happen.
const HI_U32 kGains[][3] = {{1024, 1024, 1024}, {3072, 1024, 1024}, {4710, 1024, 1024},
                            {16384, 1024, 1024}, {15872, 1024, 2048}, {15872, 1024, 4096}};

class ConcurrencyService : public ServiceTest {
protected:
    void SetUp() override
    {
        ServiceTest::SetUp();
        sim_mpp_log_enable(0);    // only the call counts are needed; the log would hold every record
        sim_host_run_commands(0); // no fork() from a threaded (sanitized) process; commands are recorded
    }

    // Runs each body on its own thread for kIterations rounds, all at once, and joins them. When `paced`,
    // every host thread waits at each hundredth round until the supervision thread has made one more
    // pass, so the two really overlap however the threads are scheduled.
    static void run_host_threads(const std::vector<std::function<void(int)>> &bodies, bool paced)
    {
        std::atomic<bool> go{false};
        const size_t base = vclock_call_count();
        std::vector<std::thread> threads;
        for (const auto &body : bodies)
            threads.emplace_back([&go, &body, base, paced] {
                while (!go.load())
                    std::this_thread::yield();
                for (int i = 0; i < kIterations; ++i) {
                    if (paced && i % 100 == 0) {
                        EXPECT_EQ(reached(base + size_t(i / 100) + 1), 0);
                    }
                    body(i);
                }
            });
        go = true;
        for (std::thread &thread : threads)
            thread.join();
    }

    // The host threads of this suite: the AE, the settings UI, and a caller of the exported functions
    // (QV_ISP_FramerateAdjust, and also QV_ISP_SetVarParam when `host_refreshes`).
    static std::vector<std::function<void(int)>> host_bodies(bool host_refreshes)
    {
        return {
            [](int i) {
                const HI_U32 *g = kGains[i % (sizeof kGains / sizeof kGains[0])];
                sim_mpp_set_exposure(10000 + HI_U32(i), g[0], g[1], g[2]);
            },
            [](int i) {
                sim_host_set_ircut(i / 7 % 2);
                sim_host_set_field(SYSINFO_u8WatchedMode, uint8_t(i / 11 % 3));
                sim_host_set_field(SYSINFO_u8FlickerMode, uint8_t(i / 13 % 3));
                test_set_profile_mode(i / 17 % 2);
                if (i % 19 == 0)
                    set_reflash_mark(1); // as a profile switch does
            },
            [host_refreshes](int i) {
                if (host_refreshes && i % 2 == 0) {
                    EXPECT_EQ(QV_ISP_SetVarParam(), 0);
                } else {
                    EXPECT_GE(QV_ISP_FramerateAdjust(float(i % 50)), 0);
                }
            },
        };
    }

    // The service runs (free-running clock) while the host threads do their rounds; then it is stopped.
    static void run_while_the_service_runs(bool host_refreshes)
    {
        StdoutCapture out; // thousands of refresh lines
        ASSERT_EQ(QV_ISP_Start(), 0);
        ASSERT_EQ(reached(2), 0) << "the thread is past its start-up";

        const size_t calls_before = vclock_call_count();
        run_host_threads(host_bodies(host_refreshes), true);
        // The thread went on sampling meanwhile, and still does.
        const size_t calls_after = vclock_call_count();
        EXPECT_GE(calls_after, calls_before + kIterations / 100);
        ASSERT_EQ(reached(calls_after + kPassesAfterwards), 0);

        EXPECT_EQ(QV_ISP_Stop(), 0);
        EXPECT_EQ(status(), 0);
        out.take();

        // Nothing failed: the record was always there and the platform never refused a call.
        EXPECT_EQ(sim_host_log_matches("Failure"), 0u);
        EXPECT_EQ(sim_host_log_matches("failed"), 0u);
        EXPECT_EQ(sim_host_log_matches("failue"), 0u);
        EXPECT_GT(sim_mpp_call_count("HI_MPI_ISP_QueryExposureInfo"), unsigned(kIterations / 100));
        EXPECT_GT(sim_host_ircut_calls(), 0u);
        // The rate is always one of the three the library writes.
        const float rate = platform_record<ISP_PUB_ATTR_S>(SIM_REC_PUB_ATTR).f32FrameRate;
        EXPECT_TRUE(rate == 15.0f || rate == 25.0f || rate == 30.0f) << rate;
    }
};

TEST_F(ConcurrencyService, HostThreadsChangeConditionsWhileTheServiceRuns)
{
    run_while_the_service_runs(false);
}

// Part 1.3: QV_ISP_SetVarParam runs on the supervision thread, "or on the host's thread when the host calls
// it directly": here both at once, so the refreshes of Parts 3.2 and 3.3 run on two threads.
TEST_F(ConcurrencyService, HostCallsSetVarParamWhileTheServiceRuns)
{
    run_while_the_service_runs(true);
}

TEST_F(ConcurrencyService, StartsAndStopsWhileHostThreadsChangeConditions)
{
    StdoutCapture out;
    std::vector<std::function<void(int)>> bodies = host_bodies(false);
    // One more host thread owns the service: it starts and stops it again and again (Part 1.7 takes no
    // lock, so one host thread at a time drives the lifecycle).
    bodies.emplace_back([](int i) {
        if (i % 100 == 0) {
            EXPECT_EQ(QV_ISP_Start(), 0);
        } else if (i % 100 == 50) {
            EXPECT_EQ(QV_ISP_Stop(), 0);
        }
    });
    run_host_threads(bodies, false);
    EXPECT_EQ(QV_ISP_Stop(), 0);
    EXPECT_EQ(status(), 0);
    out.take();

    // Every start made one thread, and every thread applied the baseline once (Part 1.4 is the only
    // reader of the VI dynamic contrast), stop or no stop.
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_VI_GetDCIParam"), unsigned(kIterations / 100));
    EXPECT_EQ(sim_host_log_matches("Failure"), 0u);
}

} // namespace
