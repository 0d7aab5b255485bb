// Virtual clock (sim/vclock.c): sleep/usleep in virtual time, call records, stepping mode.
#include <dlfcn.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "vclock.h"

namespace {

constexpr useconds_t kPass = 33333; // Part 1.2's pause between passes

class VclockTest : public ::testing::Test {
protected:
    void SetUp() override { vclock_reset(); }
    // A test that fails half-way must not leave a thread blocked in the clock (see vclock.h).
    void TearDown() override { vclock_free_run(); }
};

// A thread that sleeps `calls` times through the clock and counts the calls that returned.
struct Sleeper {
    std::atomic<int> returned{0};
    std::thread thread;

    explicit Sleeper(int calls)
        : thread([this, calls] {
              for (int i = 0; i < calls; i++) {
                  usleep(kPass);
                  returned.fetch_add(1);
              }
          })
    {
    }
    ~Sleeper()
    {
        vclock_free_run();
        if (thread.joinable()) thread.join();
    }
};

TEST_F(VclockTest, ExecutableDefinitionsAreTheOnesTheProcessBindsTo)
{
    // A dlopen'ed libisptune.so resolves sleep/usleep through the global scope: it must find ours, not
    // libc's or a sanitizer runtime's interceptor.
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "usleep"), reinterpret_cast<void *>(&usleep));
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "sleep"), reinterpret_cast<void *>(&sleep));
}

TEST_F(VclockTest, LongSleepsTakeNoRealTime)
{
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 10; i++) {
        EXPECT_EQ(usleep(10'000'000), 0);
    }
    EXPECT_EQ(sleep(100), 0u);
    const auto real = std::chrono::steady_clock::now() - start;

    EXPECT_EQ(vclock_now_us(), 200'000'000u);
    // 200 virtual seconds; a real clock would have run into CTest's 60 s limit long before this check.
    EXPECT_LT(real, std::chrono::seconds(10));
}

TEST_F(VclockTest, StartsAtZeroAfterReset)
{
    usleep(5);
    vclock_reset();
    EXPECT_EQ(vclock_now_us(), 0u);
    EXPECT_EQ(vclock_call_count(), 0u);
    EXPECT_EQ(vclock_call_at(0).kind, VCLOCK_NONE);
}

TEST_F(VclockTest, RecordsEveryCallInOrder)
{
    sleep(10);
    usleep(kPass);
    usleep(0);

    ASSERT_EQ(vclock_call_count(), 3u);
    const vclock_call first = vclock_call_at(0);
    EXPECT_EQ(first.kind, VCLOCK_SLEEP);
    EXPECT_EQ(first.duration_us, 10'000'000u);
    EXPECT_EQ(first.start_us, 0u);
    EXPECT_EQ(first.thread, 1u);

    const vclock_call second = vclock_call_at(1);
    EXPECT_EQ(second.kind, VCLOCK_USLEEP);
    EXPECT_EQ(second.duration_us, 33333u);
    EXPECT_EQ(second.start_us, 10'000'000u);
    EXPECT_EQ(second.thread, 1u);

    const vclock_call third = vclock_call_at(2);
    EXPECT_EQ(third.kind, VCLOCK_USLEEP);
    EXPECT_EQ(third.duration_us, 0u);
    EXPECT_EQ(third.start_us, 10'033'333u);

    EXPECT_EQ(vclock_call_at(3).kind, VCLOCK_NONE);
    EXPECT_EQ(vclock_now_us(), 10'033'333u);
}

TEST_F(VclockTest, NumbersThreadsInOrderOfFirstUseAndRestartsAfterReset)
{
    usleep(1);
    std::thread([] { usleep(2); }).join();
    usleep(3);
    EXPECT_EQ(vclock_call_at(0).thread, 1u);
    EXPECT_EQ(vclock_call_at(1).thread, 2u);
    EXPECT_EQ(vclock_call_at(2).thread, 1u);

    vclock_reset();
    std::thread([] { usleep(4); }).join();
    usleep(5);
    EXPECT_EQ(vclock_call_at(0).thread, 1u);
    EXPECT_EQ(vclock_call_at(1).thread, 2u);
}

TEST_F(VclockTest, KeepsTheFirstCallsAndCountsTheRest)
{
    for (size_t i = 0; i < VCLOCK_MAX_CALLS + 5; i++) {
        usleep(static_cast<useconds_t>(i));
    }
    EXPECT_EQ(vclock_call_count(), VCLOCK_MAX_CALLS + 5u);
    EXPECT_EQ(vclock_call_at(VCLOCK_MAX_CALLS - 1).duration_us, VCLOCK_MAX_CALLS - 1u);
    EXPECT_EQ(vclock_call_at(VCLOCK_MAX_CALLS).kind, VCLOCK_NONE);
    // Time still counts every call: 0 + 1 + ... + (MAX + 4).
    const uint64_t n = VCLOCK_MAX_CALLS + 5u;
    EXPECT_EQ(vclock_now_us(), n * (n - 1) / 2);
}

TEST_F(VclockTest, SteppingHoldsAThreadAtItsNthCallAndReleasesItStepByStep)
{
    vclock_step_mode(1);
    vclock_allow(2);
    Sleeper sleeper(10);

    // Calls 1 and 2 pass, call 3 is held.
    ASSERT_EQ(vclock_wait_blocked(3), 0);
    EXPECT_EQ(vclock_call_count(), 3u);
    EXPECT_EQ(sleeper.returned.load(), 2);
    EXPECT_EQ(vclock_now_us(), 2u * kPass);

    for (int step = 3; step <= 6; step++) {
        vclock_allow(1);
        ASSERT_EQ(vclock_wait_blocked(static_cast<size_t>(step) + 1), 0);
        EXPECT_EQ(vclock_call_count(), static_cast<size_t>(step) + 1);
        EXPECT_EQ(sleeper.returned.load(), step);
        EXPECT_EQ(vclock_now_us(), static_cast<uint64_t>(step) * kPass);
    }

    vclock_free_run();
    sleeper.thread.join();
    EXPECT_EQ(sleeper.returned.load(), 10);
    EXPECT_EQ(vclock_call_count(), 10u);
    EXPECT_EQ(vclock_now_us(), 10u * kPass);
}

TEST_F(VclockTest, TurningSteppingOnGrantsTheCallsAlreadyMade)
{
    usleep(1);
    usleep(1);
    vclock_step_mode(1);
    Sleeper sleeper(2);
    ASSERT_EQ(vclock_wait_blocked(3), 0);
    EXPECT_EQ(sleeper.returned.load(), 0);
    EXPECT_EQ(vclock_now_us(), 2u);
}

TEST_F(VclockTest, GrantsMadeAheadLetLaterCallsThrough)
{
    vclock_step_mode(1);
    vclock_allow(3);
    usleep(1); // the test thread itself: granted, so it does not block
    usleep(1);
    usleep(1);
    EXPECT_EQ(vclock_call_count(), 3u);
    EXPECT_EQ(vclock_now_us(), 3u);
}

TEST_F(VclockTest, FreeRunReleasesEveryBlockedThread)
{
    vclock_step_mode(1);
    Sleeper a(3);
    Sleeper b(3);
    ASSERT_EQ(vclock_wait_blocked(2), 0);
    EXPECT_EQ(a.returned.load() + b.returned.load(), 0);

    vclock_free_run();
    a.thread.join();
    b.thread.join();
    EXPECT_EQ(a.returned.load(), 3);
    EXPECT_EQ(b.returned.load(), 3);
    EXPECT_EQ(vclock_now_us(), 6u * kPass);
}

TEST_F(VclockTest, StepModeOffIsFreeRun)
{
    vclock_step_mode(1);
    Sleeper sleeper(1);
    ASSERT_EQ(vclock_wait_blocked(1), 0);
    vclock_step_mode(0);
    sleeper.thread.join();
    EXPECT_EQ(sleeper.returned.load(), 1);
}

TEST_F(VclockTest, WaitBlockedReturnsAnErrorWhenTheCallNeverComes)
{
    vclock_step_mode(1);
    EXPECT_EQ(vclock_wait_blocked_for(1, 20), -1);

    Sleeper sleeper(5); // held at its first call for good
    ASSERT_EQ(vclock_wait_blocked(1), 0);
    EXPECT_EQ(vclock_wait_blocked_for(2, 20), -1);
    EXPECT_EQ(sleeper.returned.load(), 0);
}

TEST_F(VclockTest, WaitBlockedForACallAlreadyMadeReturnsAtOnce)
{
    usleep(1);
    usleep(1);
    EXPECT_EQ(vclock_wait_blocked(1), 0);
    EXPECT_EQ(vclock_wait_blocked(2), 0);
    EXPECT_EQ(vclock_wait_blocked(0), 0);
}

TEST_F(VclockTest, ResetReleasesBlockedCallersWithoutCountingThem)
{
    vclock_step_mode(1);
    std::atomic<bool> done{false};
    std::thread thread([&] {
        usleep(kPass);
        done = true;
    });
    ASSERT_EQ(vclock_wait_blocked(1), 0);
    vclock_reset();
    thread.join();
    EXPECT_TRUE(done.load());
    EXPECT_EQ(vclock_call_count(), 0u);
    EXPECT_EQ(vclock_now_us(), 0u);
}

TEST_F(VclockTest, RealtimeFactorMustBeFiniteAndNotNegative)
{
    EXPECT_EQ(vclock_set_realtime(-1.0), -1);
    EXPECT_EQ(vclock_set_realtime(std::nan("")), -1);
    EXPECT_EQ(vclock_set_realtime(INFINITY), -1);
    EXPECT_EQ(vclock_set_realtime(0.0), 0);
    EXPECT_EQ(vclock_set_realtime(1.0), 0);
    vclock_reset(); // back to virtual time: the test must not wait for real
    usleep(10'000'000);
    EXPECT_EQ(vclock_now_us(), 10'000'000u);
}

TEST_F(VclockTest, ManyThreadsAddUpExactly)
{
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; t++) {
        threads.emplace_back([] {
            for (int i = 0; i < 250; i++) usleep(kPass);
        });
    }
    for (auto &thread : threads) thread.join();
    EXPECT_EQ(vclock_call_count(), 1000u);
    EXPECT_EQ(vclock_now_us(), 1000u * kPass);
}

} // namespace
