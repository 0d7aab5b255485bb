// Part 1.7: a thread creation that fails (Failure handling, and the first "Left to the implementer").
//
// The library creates its thread with default attributes; glibc's pthread_setattr_default_np lets the
// test make those defaults impossible to satisfy (a stack larger than the address space), so
// pthread_create fails as it would when the camera is out of memory.
#include <pthread.h>
#include <unistd.h>

#include <cstdint>

#include "isptune.h"
#include "isptune_test.h"

namespace {

class Part_1_7_FailedStart : public ::testing::Test {
protected:
    void SetUp() override
    {
        sim_mpp_reset();
        sim_host_reset();
        vclock_reset();
        ASSERT_EQ(pthread_getattr_default_np(&saved_), 0);
        pthread_attr_t impossible;
        ASSERT_EQ(pthread_attr_init(&impossible), 0);
        const size_t page = size_t(sysconf(_SC_PAGESIZE));
        const size_t huge = (SIZE_MAX / page - 4) * page; // more than the address space, 32- or 64-bit
        ASSERT_EQ(pthread_attr_setstacksize(&impossible, huge), 0);
        ASSERT_EQ(pthread_setattr_default_np(&impossible), 0);
        pthread_attr_destroy(&impossible);
    }
    void TearDown() override
    {
        pthread_setattr_default_np(&saved_);
        pthread_attr_destroy(&saved_);
    }
    pthread_attr_t saved_;
};

TEST_F(Part_1_7_FailedStart, FailedThreadCreationLogsAndReturnsMinusOne)
{
    StdoutCapture out;
    EXPECT_EQ(QV_ISP_Start(), -1);
    EXPECT_EQ(out.take(), "-----------QV_ISP_Start----------\n");
    ASSERT_EQ(sim_host_log_count(), 2u);
    EXPECT_EQ(sim_host_log_at(0).service, SIM_HOST_QV_SYSINFO);
    EXPECT_STREQ(sim_host_log_at(0).text, "ISP_Start thread start-------\n");
    EXPECT_EQ(sim_host_log_at(1).service, SIM_HOST_QV_SYSERROR);
    EXPECT_EQ(sim_host_log_at(1).module, 14);
    EXPECT_STREQ(sim_host_log_at(1).text, "func(QV_ISP_Start ::354),create thread QV_ISP_Proc is Failure\n");
}

TEST_F(Part_1_7_FailedStart, AfterAFailedStartTheServiceIsNotRunning)
{
    StdoutCapture out;
    ASSERT_EQ(QV_ISP_Start(), -1);
    EXPECT_EQ(gISPStatus, 0) << "docs/decisions.md: gISPStatus goes back to 0";
}

TEST_F(Part_1_7_FailedStart, StopAfterAFailedStartReturnsAtOnceWithoutJoining)
{
    StdoutCapture out;
    ASSERT_EQ(QV_ISP_Start(), -1);
    size_t logged = sim_host_log_count();
    EXPECT_EQ(QV_ISP_Stop(), 0); // a join of a thread never created would hang or crash here
    EXPECT_EQ(sim_host_log_count(), logged) << "a stop of a service that is not running logs nothing";
}

TEST_F(Part_1_7_FailedStart, AStartAfterTheFailureWorks)
{
    StdoutCapture out;
    ASSERT_EQ(QV_ISP_Start(), -1);
    pthread_setattr_default_np(&saved_); // memory is back
    ASSERT_EQ(QV_ISP_Start(), 0);
    EXPECT_EQ(gISPStatus, 1);
    vclock_free_run();
    EXPECT_EQ(QV_ISP_Stop(), 0);
    EXPECT_EQ(gISPStatus, 0);
}

} // namespace
