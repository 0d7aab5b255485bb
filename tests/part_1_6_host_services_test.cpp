// Part 1.6: System information record and host services: a missing record, and u8WatchedMode watched.
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "service_test_support.h"

namespace {

class Part_1_6_HostServices : public ServiceTest {};

// ---- a GetSysInfo that returns null ----------------------------------------------------------------------

TEST_F(Part_1_6_HostServices, NullRecordMakesSetVarParamReturnMinusOneAfterItsMessage)
{
    sim_host_sysinfo_null(1);
    StdoutCapture out;
    EXPECT_EQ(QV_ISP_SetVarParam(), -1);
    EXPECT_EQ(out.take(), "GetSysInfo failed is NULL\n");
    // Part 1.3: the exposure is queried first; no refresh follows.
    EXPECT_EQ(platform_calls(), std::vector<std::string>{"HI_MPI_ISP_QueryExposureInfo"});
    EXPECT_EQ(sim_host_log_count(), 0u);
}

TEST_F(Part_1_6_HostServices, NullRecordMakesSetParamReturnMinusOneAfterItsMessage)
{
    sim_host_sysinfo_null(1);
    StdoutCapture out;
    EXPECT_EQ(QV_ISP_SetParam(), -1);
    EXPECT_EQ(out.take(), "GetSysInfo failed is NULL\n");
    EXPECT_TRUE(platform_calls().empty());
    EXPECT_EQ(sim_host_log_count(), 0u);
}

TEST_F(Part_1_6_HostServices, NullRecordMakesFramerateAdjustReturnMinusOneAfterItsMessage)
{
    sim_host_sysinfo_null(1);
    StdoutCapture out;
    EXPECT_EQ(QV_ISP_FramerateAdjust(40.0f), -1);
    EXPECT_EQ(out.take(), "");
    ASSERT_NO_FATAL_FAILURE(expect_only_syslog_entry("GetSysconfigData failed is NULL\n"));
    EXPECT_TRUE(platform_calls().empty());
    EXPECT_EQ(sim_host_command_count(), 0u);
}

TEST_F(Part_1_6_HostServices, RecordBackAgainEverythingWorks)
{
    // Every function fetches the record afresh: a record that comes back is used at once.
    sim_host_sysinfo_null(1);
    {
        StdoutCapture out;
        ASSERT_EQ(QV_ISP_SetVarParam(), -1);
        ASSERT_EQ(QV_ISP_SetParam(), -1);
    }
    ASSERT_EQ(QV_ISP_FramerateAdjust(1.0f), -1);
    sim_host_sysinfo_null(0);
    StdoutCapture out;
    EXPECT_EQ(QV_ISP_SetVarParam(), 0);
    EXPECT_EQ(QV_ISP_SetParam(), 0);
    EXPECT_EQ(QV_ISP_FramerateAdjust(1.0f), 0);
}

// ---- u8WatchedMode, noticed within one pass ------------------------------------------------------------

TEST_F(Part_1_6_HostServices, WatchedModeChangeIsNoticedByTheNextPass)
{
    const SysInfo *info = reinterpret_cast<const SysInfo *>(sim_host_sysinfo());
    ISP_EXP_INFO_S exp;
    std::memset(&exp, 0, sizeof exp);
    set_reflash_mark(1);
    isp_supervision_pass(info, &exp); // a refresh: the last values are now the current ones
    isp_supervision_pass(info, &exp);
    for (int value : {1, 2, 255, 0, 128}) {
        ASSERT_EQ(sim_host_set_field(SYSINFO_u8WatchedMode, uint8_t(value)), 0);
        const unsigned before = queries();
        isp_supervision_pass(info, &exp);
        EXPECT_EQ(queries(), before + 2) << "u8WatchedMode " << value << ": refreshed";
        isp_supervision_pass(info, &exp);
        EXPECT_EQ(queries(), before + 3) << "u8WatchedMode " << value << ": then quiet";
    }
}

TEST_F(Part_1_6_HostServices, WatchedModeChangeIsNoticedByTheRunningThreadWithinOnePass)
{
    vclock_step_mode(1);
    ASSERT_EQ(QV_ISP_Start(), 0);
    ASSERT_EQ(reached(1), 0);
    vclock_allow(3); // start-up and passes 1 to 3; held in the pause after pass 3
    ASSERT_EQ(reached(4), 0);
    const unsigned before = queries();
    ASSERT_EQ(before, 4u) << "one refresh, two quiet passes";

    // The host writes the field (any value: the library never interprets it) while the thread pauses.
    ASSERT_EQ(sim_host_set_field(SYSINFO_u8WatchedMode, 200), 0);
    vclock_allow(1);
    ASSERT_EQ(reached(5), 0);
    EXPECT_EQ(queries(), before + 2) << "the very next pass refreshed";
    vclock_allow(1);
    ASSERT_EQ(reached(6), 0);
    EXPECT_EQ(queries(), before + 3);
}

TEST_F(Part_1_6_HostServices, OtherFieldsAreNotWatched)
{
    // Only u8WatchedMode forces a refresh; the neighbouring bytes of the record do not.
    const SysInfo *info = reinterpret_cast<const SysInfo *>(sim_host_sysinfo());
    ISP_EXP_INFO_S exp;
    std::memset(&exp, 0, sizeof exp);
    set_reflash_mark(1);
    isp_supervision_pass(info, &exp);
    for (size_t pos : {size_t(SYSINFO_u8WatchedMode) - 1, size_t(SYSINFO_u8WatchedMode) + 1,
                       size_t(SYSINFO_u8FlickerMode), size_t(SYSINFO_u8Shutter)}) {
        ASSERT_EQ(sim_host_set_field(pos, 77), 0);
        const unsigned before = queries();
        isp_supervision_pass(info, &exp);
        EXPECT_EQ(queries(), before + 1) << "byte " << pos;
    }
}

} // namespace
