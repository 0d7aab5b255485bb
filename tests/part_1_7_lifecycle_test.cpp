// Part 1.7: Service lifecycle: QV_ISP_Start and QV_ISP_Stop, gISPStatus and the supervision thread.
#include <dirent.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "service_test_support.h"

namespace {

constexpr const char *kStartLine = "-----------QV_ISP_Start----------\n";
constexpr const char *kStartLog = "ISP_Start thread start-------\n";
constexpr const char *kStopLog = "ISP_Stop thread stop-------\n";

// How long, in real time, a test waits for something another thread is about to do. It costs nothing
// when the thing happens (the waits end at once); it is generous so that a loaded CI machine, a sanitizer
// or qemu never turns a slow scheduler into a failure.
constexpr std::chrono::seconds kPatience{10};

// Threads of this process (entries of /proc/self/task).
size_t thread_count()
{
    size_t count = 0;
    DIR *dir = opendir("/proc/self/task");
    if (dir == nullptr)
        return 0;
    while (const dirent *entry = readdir(dir))
        if (entry->d_name[0] != '.')
            ++count;
    closedir(dir);
    return count;
}

// The thread count once it has settled at `expected`, or what it still is after kPatience.
// A joined thread can stay listed in /proc/self/task for a moment: pthread_join returns when the kernel
// clears the thread's id, slightly before the kernel removes the thread from the process.
size_t thread_count_settling_at(size_t expected)
{
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    size_t count = thread_count();
    while (count != expected && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::yield();
        count = thread_count();
    }
    return count;
}

// Index of the first QV_SYSINFO entry with `text` from entry `from` on, or -1.
long sysinfo_entry(const char *text, size_t from = 0)
{
    for (size_t i = from; i < sim_host_log_count(); ++i) {
        const sim_host_log entry = sim_host_log_at(i);
        if (entry.service == SIM_HOST_QV_SYSINFO && std::string(entry.text) == text) {
            EXPECT_EQ(entry.module, 14);
            return long(i);
        }
    }
    return -1;
}

// Runs `call` on a helper thread; true when it returned within kPatience of real time (a call that waits
// for the virtual clock, which the test holds, never does). When it did not,
// the service is stopped behind its back and the clock set free, so that the call can end and be joined.
bool returns_without_waiting(const std::function<void()> &call)
{
    std::atomic<bool> done{false};
    std::thread helper([&] {
        call();
        done = true;
    });
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    while (!done && std::chrono::steady_clock::now() < deadline)
        std::this_thread::yield();
    const bool in_time = done;
    if (!in_time) {
        set_status(0);
        vclock_free_run();
    }
    helper.join();
    return in_time;
}

// Runs QV_ISP_Stop on a thread of its own, so the test can watch it block.
class StopOnAThread {
public:
    StopOnAThread()
        : thread_([this] {
              result_ = QV_ISP_Stop();
              done_ = true;
          })
    {
    }
    ~StopOnAThread()
    {
        vclock_free_run(); // never leave the supervision thread held in the clock while Stop joins it
        if (thread_.joinable())
            thread_.join();
    }
    bool done() const { return done_; }
    int32_t join()
    {
        thread_.join();
        thread_ = std::thread();
        return result_;
    }

private:
    std::atomic<bool> done_{false};
    int32_t result_ = -2;
    std::thread thread_;
};

class Part_1_7_Lifecycle : public ServiceTest {
protected:
    // Waits (without sleeping) until gISPStatus reads `value`; false after kPatience.
    static bool status_becomes(int32_t value)
    {
        const auto deadline = std::chrono::steady_clock::now() + kPatience;
        while (status() != value) {
            if (std::chrono::steady_clock::now() > deadline)
                return false;
            std::this_thread::yield();
        }
        return true;
    }
};

TEST_F(Part_1_7_Lifecycle, StopWithoutStartReturnsZeroAtOnceAndLogsNothing)
{
    StdoutCapture out;
    EXPECT_EQ(QV_ISP_Stop(), 0);
    EXPECT_EQ(out.take(), "");
    EXPECT_EQ(sim_host_log_count(), 0u);
    EXPECT_EQ(status(), 0);
    EXPECT_EQ(vclock_call_count(), 0u);
}

TEST_F(Part_1_7_Lifecycle, SecondStopWithoutStartDoesTheSame)
{
    EXPECT_EQ(QV_ISP_Stop(), 0);
    EXPECT_EQ(QV_ISP_Stop(), 0);
    EXPECT_EQ(sim_host_log_count(), 0u);
}

TEST_F(Part_1_7_Lifecycle, SecondStopAfterAStopReturnsZeroAndLogsNothing)
{
    start_held();
    step();
    vclock_free_run();
    EXPECT_EQ(QV_ISP_Stop(), 0);
    EXPECT_EQ(status(), 0);
    EXPECT_GE(sysinfo_entry(kStopLog), 0);
    const size_t logged = sim_host_log_count();

    StdoutCapture out;
    EXPECT_EQ(QV_ISP_Stop(), 0);
    EXPECT_EQ(out.take(), "");
    EXPECT_EQ(sim_host_log_count(), logged);
}

TEST_F(Part_1_7_Lifecycle, SuccessfulStartReturnsZeroAndLeavesStatusOne)
{
    StdoutCapture out;
    start_held();
    EXPECT_EQ(out.take(), kStartLine);
    EXPECT_EQ(status(), 1);
    ASSERT_GE(sim_host_log_count(), 1u);
    const sim_host_log entry = sim_host_log_at(0);
    EXPECT_EQ(entry.service, SIM_HOST_QV_SYSINFO);
    EXPECT_EQ(entry.module, 14);
    EXPECT_STREQ(entry.text, kStartLog);
    const vclock_call startup = vclock_call_at(0);
    EXPECT_EQ(startup.kind, VCLOCK_SLEEP) << "the supervision thread is in its start-up wait";
    EXPECT_EQ(startup.duration_us, 10000000u);
    step(3);
    EXPECT_EQ(status(), 1) << "still running after some passes";
}

TEST_F(Part_1_7_Lifecycle, StopLogsAndClearsTheStatusAndJoinsTheThread)
{
    start_held();
    step(2);
    vclock_free_run();
    EXPECT_EQ(QV_ISP_Stop(), 0);
    EXPECT_EQ(status(), 0);
    EXPECT_EQ(sysinfo_entry(kStopLog), long(sim_host_log_count()) - 1) << "the last entry";
    // Joined: the thread makes no call any more.
    const unsigned made = queries();
    const size_t clock_calls = vclock_call_count();
    sim_mpp_set_exposure(10000, 8192, 1024, 1024);
    EXPECT_EQ(queries(), made);
    EXPECT_EQ(vclock_call_count(), clock_calls);
}

TEST_F(Part_1_7_Lifecycle, StopRightAfterStartBlocksUntilTheStartUpIsOver)
{
    start_held();
    StopOnAThread stop;
    ASSERT_TRUE(status_becomes(0)) << "the stop cleared the flag";
    // The thread is held in sleep(10): the stop is waiting for it.
    EXPECT_FALSE(stop.done());
    EXPECT_EQ(sim_mpp_log_count(), 0u) << "no baseline yet";

    vclock_allow(1); // the start-up wait ends
    EXPECT_EQ(stop.join(), 0);
    EXPECT_TRUE(stop.done());
    EXPECT_GT(sim_mpp_log_count(), 0u) << "the baseline settings ran";
    // The stop returned only once the whole baseline was over: its last write is the last platform call.
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetBlackLevelAttr"), 1u);
    EXPECT_EQ(platform_calls().back(), "HI_MPI_ISP_SetBlackLevelAttr");
    EXPECT_EQ(queries(), 0u) << "the thread ended without sampling";
    EXPECT_EQ(vclock_call_count(), 1u) << "nor pausing";
    EXPECT_EQ(reflash_mark(), 1) << "start-up step 4 ran";
    EXPECT_GE(sysinfo_entry(kStopLog), 0);
}

TEST_F(Part_1_7_Lifecycle, StopTakesEffectBeforeTheNextPass)
{
    start_held();
    step(3);
    const unsigned made = queries();
    StopOnAThread stop;
    ASSERT_TRUE(status_becomes(0));
    EXPECT_FALSE(stop.done()) << "the thread is held in its pause";
    vclock_allow(1);
    EXPECT_EQ(stop.join(), 0);
    EXPECT_EQ(queries(), made) << "no further pass";
}

TEST_F(Part_1_7_Lifecycle, StartStopStartAgainTheSecondThreadStillRefreshesFirst)
{
    start_held();
    step(3); // first pass refreshes, the next two are quiet
    vclock_free_run();
    ASSERT_EQ(QV_ISP_Stop(), 0);
    ASSERT_EQ(reflash_mark(), 0);

    // Same gain, IR-cut and watched mode as the last pass of the first thread.
    start_held();
    EXPECT_EQ(status(), 1);
    const unsigned before = queries();
    step();
    EXPECT_EQ(queries(), before + 2) << "the second thread's first pass refreshed";
    EXPECT_EQ(reflash_mark(), 0);
    step();
    EXPECT_EQ(queries(), before + 3);
    vclock_free_run();
    EXPECT_EQ(QV_ISP_Stop(), 0);
    EXPECT_EQ(status(), 0);
}

TEST_F(Part_1_7_Lifecycle, SecondStartWhileRunningMakesNoSecondThread)
{
    start_held();
    const size_t threads = thread_count();
    ASSERT_GT(threads, 0u);
    int32_t second = -2;
    ASSERT_TRUE(returns_without_waiting([&second] { second = QV_ISP_Start(); }))
        << "a second start must not wait for the running thread";
    EXPECT_EQ(second, 0);
    EXPECT_EQ(thread_count_settling_at(threads), threads) << "no thread was created";
    EXPECT_EQ(status(), 1);

    step(5);
    // Every clock call so far came from one thread, and only one start-up wait was made.
    const unsigned thread = vclock_call_at(0).thread;
    size_t sleeps = 0;
    for (size_t i = 0; i < vclock_call_count(); ++i) {
        EXPECT_EQ(vclock_call_at(i).thread, thread) << "call " << i + 1;
        sleeps += vclock_call_at(i).kind == VCLOCK_SLEEP;
    }
    EXPECT_EQ(sleeps, 1u);
    vclock_free_run();
    EXPECT_EQ(QV_ISP_Stop(), 0);
    EXPECT_EQ(thread_count_settling_at(threads - 1), threads - 1);
}

TEST_F(Part_1_7_Lifecycle, StopAfterStatusClearedDirectlyThenStartAgainWorks)
{
    start_held();
    set_status(0); // the thread is stopped behind QV_ISP_Stop's back, during its sleep(10)
    vclock_allow(1);
    granted_ += 1;

    // Not running: a stop returns at once, logs nothing and waits for nothing.
    const size_t logged = sim_host_log_count();
    EXPECT_EQ(QV_ISP_Stop(), 0);
    EXPECT_EQ(sim_host_log_count(), logged);

    ASSERT_EQ(QV_ISP_Start(), 0);
    EXPECT_EQ(status(), 1);
    ASSERT_EQ(reached(granted_ + 1), 0) << "the new thread reached its start-up wait";
    EXPECT_EQ(vclock_call_at(granted_).kind, VCLOCK_SLEEP);
    EXPECT_EQ(queries(), 0u) << "the first thread never sampled";
    step();
    EXPECT_EQ(queries(), 2u) << "the new thread's first pass refreshed";
    vclock_free_run();
    EXPECT_EQ(QV_ISP_Stop(), 0);
    EXPECT_EQ(status(), 0);
    EXPECT_GE(sysinfo_entry(kStopLog), 0);
}

TEST_F(Part_1_7_Lifecycle, ManyStartsAndStopsInARow)
{
    for (int round = 0; round < 20; ++round) {
        ASSERT_EQ(QV_ISP_Start(), 0) << round;
        EXPECT_EQ(status(), 1);
        ASSERT_EQ(QV_ISP_Stop(), 0) << round;
        EXPECT_EQ(status(), 0);
    }
    // One thread and one start-up per start: the baseline (Part 1.4) is the only caller of
    // HI_MPI_ISP_GetAWBAttrEx. (The clock keeps only its first 8192 calls, and a thread that reaches its
    // loop before the stop can fill them with passes, so the platform's counter is the reliable witness.)
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_GetAWBAttrEx"), 20u) << "one thread, one start-up per start";
}

// docs/decisions.md (Parts 1.2 and 1.7): without a SysInfo record the thread ends after its start-up
// while gISPStatus stays 1; a later start sees the ended thread, joins it and creates a new one.
TEST_F(Part_1_7_Lifecycle, AStartAfterTheThreadEndedForLackOfARecordCreatesANewThread)
{
    StdoutCapture out;
    sim_host_sysinfo_null(1);
    start_held();    // held in its sleep(10), call 1
    vclock_allow(1); // start-up: baseline (fails: no record), mark, then the thread ends: no clock call
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    while (sim_host_log_find("the supervision loop does not run") < 0 && std::chrono::steady_clock::now() < deadline)
        std::this_thread::yield();
    ASSERT_GE(sim_host_log_find("QV_ISP_Proc: no SysInfo record, the supervision loop does not run\n"), 0);
    EXPECT_EQ(status(), 1) << "the service still counts as started";

    sim_host_sysinfo_null(0); // the host has its record now
    ASSERT_EQ(QV_ISP_Start(), 0);
    ASSERT_EQ(vclock_wait_blocked(2), 0) << "a new thread is in its start-up sleep(10)";
    EXPECT_EQ(vclock_call_at(1).kind, VCLOCK_SLEEP);
    EXPECT_NE(vclock_call_at(1).thread, vclock_call_at(0).thread);
}

} // namespace
