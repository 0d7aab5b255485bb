// Simulated host (sim/host.c): SysInfo defaults, null switch, log capture, IR-cut, Pmc_Read, commands.
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "sim_host.h"
#include "sysinfo_access.h"

namespace {

class SimHostTest : public ::testing::Test {
protected:
    void SetUp() override { sim_host_reset(); }
};

TEST_F(SimHostTest, RecordHoldsTypicalCameraDefaultsAndNothingElse)
{
    // Part 1.6 positions, typed here on purpose rather than taken from host.h.
    EXPECT_EQ(sim_host_get_field(1300), 128); // u8Brightness
    EXPECT_EQ(sim_host_get_field(1301), 128); // u8Contrast
    EXPECT_EQ(sim_host_get_field(1302), 128); // u8Saturation
    EXPECT_EQ(sim_host_get_field(1303), 128); // u8Sharpness
    EXPECT_EQ(sim_host_get_field(1307), 0);   // u8WbMode: automatic
    EXPECT_EQ(sim_host_get_field(1313), 1);   // u8FlickerMode: 50 Hz
    EXPECT_EQ(sim_host_get_field(1320), 0);   // u8ExposureMode: automatic

    for (size_t pos = 0; pos < SIM_HOST_SYSINFO_SIZE; pos++) {
        if (pos >= 1300 && pos <= 1303) continue;
        if (pos == 1313) continue;
        EXPECT_EQ(sim_host_get_field(pos), 0) << "position " << pos;
    }
}

TEST_F(SimHostTest, GetSysInfoReturnsTheSameRecordEveryTime)
{
    SysInfo *info = GetSysInfo();
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(static_cast<void *>(info), static_cast<void *>(sim_host_sysinfo()));
    EXPECT_EQ(GetSysInfo(), info);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(info) % 16, 0u);
}

TEST_F(SimHostTest, NullSwitchMakesGetSysInfoReturnNull)
{
    sim_host_sysinfo_null(1);
    EXPECT_EQ(GetSysInfo(), nullptr);
    EXPECT_NE(sim_host_sysinfo(), nullptr); // the record itself stays
    sim_host_sysinfo_null(0);
    EXPECT_NE(GetSysInfo(), nullptr);
    sim_host_sysinfo_null(1);
    sim_host_reset();
    EXPECT_NE(GetSysInfo(), nullptr);
}

TEST_F(SimHostTest, FieldsAreSetAndReadByPosition)
{
    EXPECT_EQ(sim_host_set_field(SYSINFO_u8WatchedMode, 7), 0);
    EXPECT_EQ(sim_host_get_field(SYSINFO_u8WatchedMode), 7);
    EXPECT_EQ(sim_host_sysinfo()[1316], 7);
    // The library's own accessor sees the same byte.
    EXPECT_EQ(test_sysinfo_get(GetSysInfo(), SYSINFO_u8WatchedMode), 7);

    EXPECT_EQ(sim_host_set_field(0, 1), 0);
    EXPECT_EQ(sim_host_set_field(SIM_HOST_SYSINFO_SIZE - 1, 2), 0);
    EXPECT_EQ(sim_host_get_field(SIM_HOST_SYSINFO_SIZE - 1), 2);
    EXPECT_EQ(sim_host_set_field(SIM_HOST_SYSINFO_SIZE, 3), -1);
    EXPECT_EQ(sim_host_get_field(SIM_HOST_SYSINFO_SIZE), -1);
}

TEST_F(SimHostTest, ResetRestoresTheDefaults)
{
    sim_host_set_field(SYSINFO_u8Brightness, 1);
    sim_host_set_field(SYSINFO_u8WdrLevel, 3);
    sim_host_set_field(2000, 9);
    sim_host_reset();
    EXPECT_EQ(sim_host_get_field(SYSINFO_u8Brightness), 128);
    EXPECT_EQ(sim_host_get_field(SYSINFO_u8WdrLevel), 0);
    EXPECT_EQ(sim_host_get_field(2000), 0);
}

TEST_F(SimHostTest, CapturesEveryLogServiceWithLevelModuleAndFormattedText)
{
    QV_SYSINFO(14, "ISP_Start thread start-------\n");
    QV_SYSERROR(14, "func(%s ::%d),QV_ISP_SetVarParam Failure\n", "QV_ISP_Proc", 238);
    QV_SYSLOG(0, 14, "GetSysInfo failed\n");
    LogTrace("%s %d FramerateAdjust is exist! \n", "QV_ISP_Proc", 200);
    QV_SYSINFO(14, "value %d\n", 5); // the message is a format too

    ASSERT_EQ(sim_host_log_count(), 5u);

    sim_host_log e = sim_host_log_at(0);
    EXPECT_EQ(e.service, SIM_HOST_QV_SYSINFO);
    EXPECT_EQ(e.level, -1);
    EXPECT_EQ(e.module, 14);
    EXPECT_STREQ(e.text, "ISP_Start thread start-------\n");

    e = sim_host_log_at(1);
    EXPECT_EQ(e.service, SIM_HOST_QV_SYSERROR);
    EXPECT_EQ(e.module, 14);
    EXPECT_STREQ(e.text, "func(QV_ISP_Proc ::238),QV_ISP_SetVarParam Failure\n");

    e = sim_host_log_at(2);
    EXPECT_EQ(e.service, SIM_HOST_QV_SYSLOG);
    EXPECT_EQ(e.level, 0);
    EXPECT_EQ(e.module, 14);
    EXPECT_STREQ(e.text, "GetSysInfo failed\n");

    e = sim_host_log_at(3);
    EXPECT_EQ(e.service, SIM_HOST_LOGTRACE);
    EXPECT_EQ(e.level, -1);
    EXPECT_EQ(e.module, -1);
    EXPECT_STREQ(e.text, "QV_ISP_Proc 200 FramerateAdjust is exist! \n");

    EXPECT_STREQ(sim_host_log_at(4).text, "value 5\n");

    e = sim_host_log_at(5);
    EXPECT_EQ(e.service, SIM_HOST_NONE);
    EXPECT_STREQ(e.text, "");
}

TEST_F(SimHostTest, FindsEntriesByText)
{
    QV_SYSINFO(14, "ISP_Start thread start-------\n");
    QV_SYSINFO(14, "ISP_Stop thread stop-------\n");
    QV_SYSERROR(14, "ISP_Stop again\n");
    EXPECT_EQ(sim_host_log_find("ISP_Stop"), 1);
    EXPECT_EQ(sim_host_log_find("start"), 0);
    EXPECT_EQ(sim_host_log_find("nowhere"), -1);
    EXPECT_EQ(sim_host_log_matches("ISP_Stop"), 2u);
    EXPECT_EQ(sim_host_log_matches("nowhere"), 0u);
}

TEST_F(SimHostTest, KeepsTheFirstEntriesAndCountsTheRest)
{
    for (int i = 0; i < SIM_HOST_LOG_MAX + 10; i++) {
        QV_SYSERROR(14, "entry %d\n", i);
    }
    EXPECT_EQ(sim_host_log_count(), SIM_HOST_LOG_MAX + 10u);
    EXPECT_EQ(sim_host_log_at(SIM_HOST_LOG_MAX - 1).text,
              "entry " + std::to_string(SIM_HOST_LOG_MAX - 1) + "\n");
    EXPECT_EQ(sim_host_log_at(SIM_HOST_LOG_MAX).service, SIM_HOST_NONE);
}

TEST_F(SimHostTest, TruncatesLongTexts)
{
    const std::string long_text(2 * SIM_HOST_LOG_TEXT, 'x');
    QV_SYSERROR(14, "%s", long_text.c_str());
    EXPECT_EQ(std::string(sim_host_log_at(0).text), long_text.substr(0, SIM_HOST_LOG_TEXT - 1));
}

TEST_F(SimHostTest, EchoesEntriesToStandardErrorOnlyWhenAsked)
{
    testing::internal::CaptureStderr();
    QV_SYSERROR(14, "quiet\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");

    sim_host_log_echo(1);
    testing::internal::CaptureStderr();
    QV_SYSERROR(14, "QV_ISP_FramerateAdjust failed!!!\n");
    QV_SYSLOG(0, 14, "no newline");
    LogTrace("%s %d trace \n", "QV_ISP_Proc", 200);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "[host QV_SYSERROR 14] QV_ISP_FramerateAdjust failed!!!\n"
              "[host QV_SYSLOG 0 14] no newline\n"
              "[host LogTrace] QV_ISP_Proc 200 trace \n");
    EXPECT_EQ(sim_host_log_count(), 4u); // echoing does not replace capturing
}

TEST_F(SimHostTest, IrCutValueIsSettableAndRecordsItsArgument)
{
    EXPECT_EQ(sim_host_ircut_calls(), 0u);
    EXPECT_EQ(QV_GET_IRCUT_VALUE(3), 0);
    sim_host_set_ircut(1);
    EXPECT_EQ(QV_GET_IRCUT_VALUE(41), 1);
    EXPECT_EQ(QV_GET_IRCUT_VALUE(-2), 1);
    EXPECT_EQ(sim_host_ircut_calls(), 3u);
    EXPECT_EQ(sim_host_ircut_last_arg(), -2);
}

TEST_F(SimHostTest, PmcReadIsSettableAndRecordsItsChannel)
{
    EXPECT_EQ(Pmc_Read(0), 0.0);
    sim_host_set_pmc(36.75);
    EXPECT_EQ(Pmc_Read(0), 36.75);
    EXPECT_EQ(sim_host_pmc_calls(), 2u);
    EXPECT_EQ(sim_host_pmc_last_channel(), 0);
    Pmc_Read(3);
    EXPECT_EQ(sim_host_pmc_last_channel(), 3);
}

// A file name of this process's own, so parallel test processes do not meet.
std::string scratch_file()
{
    return "/tmp/isptune_sim_host_test_" + std::to_string(getpid());
}

TEST_F(SimHostTest, CommandsAreRecordedAndRunThroughTheShell)
{
    const std::string file = scratch_file();
    std::remove(file.c_str());
    const std::string command = "touch " + file;

    EXPECT_EQ(QV_Command_System(command.c_str()), 0);
    EXPECT_EQ(access(file.c_str(), F_OK), 0);
    std::remove(file.c_str());

    const int status = QV_Command_System("exit 3");
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 3);

    EXPECT_EQ(sim_host_command_count(), 2u);
    EXPECT_EQ(std::string(sim_host_command_at(0)), command);
    EXPECT_STREQ(sim_host_command_at(1), "exit 3");
    EXPECT_STREQ(sim_host_command_at(2), "");
}

TEST_F(SimHostTest, CommandsCanBeRecordedWithoutRunning)
{
    const std::string file = scratch_file();
    std::remove(file.c_str());
    const std::string command = "touch " + file;

    sim_host_run_commands(0);
    EXPECT_EQ(QV_Command_System(command.c_str()), 0);
    EXPECT_NE(access(file.c_str(), F_OK), 0);
    EXPECT_EQ(sim_host_command_count(), 1u);
    EXPECT_EQ(std::string(sim_host_command_at(0)), command);
}

TEST_F(SimHostTest, ResetClearsLogsCountersAndSwitches)
{
    QV_SYSERROR(14, "x\n");
    sim_host_set_ircut(5);
    QV_GET_IRCUT_VALUE(9);
    sim_host_set_pmc(2.5);
    Pmc_Read(1);
    sim_host_run_commands(0);
    QV_Command_System("true");
    sim_host_log_echo(1);

    sim_host_reset();

    EXPECT_EQ(sim_host_log_count(), 0u);
    EXPECT_EQ(sim_host_log_at(0).service, SIM_HOST_NONE);
    EXPECT_EQ(sim_host_ircut_calls(), 0u);
    EXPECT_EQ(sim_host_ircut_last_arg(), 0);
    EXPECT_EQ(QV_GET_IRCUT_VALUE(0), 0);
    EXPECT_EQ(sim_host_pmc_calls(), 0u);
    EXPECT_EQ(Pmc_Read(0), 0.0);
    EXPECT_EQ(sim_host_command_count(), 0u);

    testing::internal::CaptureStderr(); // echo is off again
    QV_SYSERROR(14, "y\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");

    const std::string file = scratch_file();
    std::remove(file.c_str());
    QV_Command_System(("touch " + file).c_str()); // commands run again
    EXPECT_EQ(access(file.c_str(), F_OK), 0);
    std::remove(file.c_str());
}

// Host threads write fields and log while "library" threads read fields and call the services: the counts
// add up, no entry is torn, and ThreadSanitizer (tsan preset) stays silent.
TEST_F(SimHostTest, ServicesAndFieldsAreSafeFromManyThreads)
{
    constexpr int kThreads = 4;
    constexpr int kRounds = 200;
    std::atomic<bool> stop{false};

    std::thread reader([&] {
        while (!stop.load()) {
            SysInfo *info = GetSysInfo();
            if (info != nullptr) {
                (void)test_sysinfo_get(info, SYSINFO_u8WatchedMode);
            }
            (void)sim_host_log_count();
            (void)sim_host_log_at(0);
            (void)sim_host_log_find("thread");
        }
    });

    std::vector<std::thread> writers;
    for (int t = 0; t < kThreads; t++) {
        writers.emplace_back([t] {
            for (int i = 0; i < kRounds; i++) {
                sim_host_set_field(SYSINFO_u8WatchedMode, static_cast<uint8_t>(i));
                QV_SYSERROR(14, "thread %d round %d\n", t, i);
                QV_GET_IRCUT_VALUE(i);
                Pmc_Read(0);
                sim_host_set_ircut(t);
                sim_host_sysinfo_null(i % 2);
            }
        });
    }
    for (auto &writer : writers) writer.join();
    stop = true;
    reader.join();

    EXPECT_EQ(sim_host_log_count(), static_cast<size_t>(kThreads * kRounds));
    EXPECT_EQ(sim_host_ircut_calls(), static_cast<size_t>(kThreads * kRounds));
    EXPECT_EQ(sim_host_pmc_calls(), static_cast<size_t>(kThreads * kRounds));
    for (int t = 0; t < kThreads; t++) {
        EXPECT_EQ(sim_host_log_matches(("thread " + std::to_string(t) + " round").c_str()),
                  static_cast<size_t>(kRounds));
    }
    for (size_t i = 0; i < sim_host_log_count(); i++) {
        int t = -1, round = -1;
        ASSERT_EQ(std::sscanf(sim_host_log_at(i).text, "thread %d round %d\n", &t, &round), 2);
    }
}

} // namespace
