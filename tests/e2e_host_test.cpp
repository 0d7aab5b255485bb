// End to end: a host that knows only include/isptune.h runs the camera through a dlopen'ed libisptune.so,
// as the camera's application does: CreateIspDev and the operation table (QV_ISP_Start in slot 0,
// QV_ISP_Stop in slot 1, get_config, the thirteen set operations), the profile entry points
// ISP_SetParamDay / ISP_SetParamNight and the overlay query QV_ISP_GetDebugInfo, all found with dlsym.
//
// This executable provides the platform (libisptune-sim.so) and the host services, and exports its virtual
// clock, so the loaded library binds to them. It also links the library's objects (every test executable
// does); a dlopen'ed copy has its own state, so only the loaded copy is used here, and the first test checks
// that the table really holds the loaded copy's operations and not the executable's namesakes.
#include <dlfcn.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <functional>
#include <thread>
#include <utility>
#include <string>
#include <vector>

#include "isptune_test.h"

extern "C" {
#include "isptune.h"
}

// The executable links the library's objects and loads the library, so every exported data object
// (gISPStatus, s32WdrParamMark, the tables ...) exists twice by construction of this test; AddressSanitizer
// would stop at that "one definition rule" duplicate. Read only by AddressSanitizer builds.
extern "C" const char *__asan_default_options();
extern "C" const char *__asan_default_options()
{
    return "detect_odr_violation=0";
}

namespace {

const char *const kSlotNames[ISP_OPERATION_COUNT] = {
    "QV_ISP_Start", "QV_ISP_Stop", "set_exposure",   "set_awb",        "set_wdr",          "set_blc",
    "set_flcker",   "set_dnr",     "set_iris",       "set_defog",      "set_sharpness",    "set_brightness",
    "set_Contrast", "set_Saturation", "set_SLInhibition", "get_config",
};
enum Slot {
    START = 0, STOP = 1, SET_EXPOSURE = 2, SET_IRIS = 8, SET_SHARPNESS = 10, SET_BRIGHTNESS = 11,
    SET_CONTRAST = 12, SET_SATURATION = 13, GET_CONFIG = 15,
};

constexpr const char *kDayDone = "--------------paramday-refresh-done--------------";
constexpr const char *kNightDone = "--------------paramnight-refresh-done--------------";
constexpr size_t kLine = 1024;

// Positions of every occurrence of `what` in `text`.
std::vector<size_t> occurrences(const std::string &text, const std::string &what)
{
    std::vector<size_t> at;
    for (size_t p = text.find(what); p != std::string::npos; p = text.find(what, p + 1))
        at.push_back(p);
    return at;
}

// The host's settings: distinctive values in every group the set operations apply.
void host_settings()
{
    const std::pair<SysInfoField, uint8_t> fields[] = {
        {SYSINFO_u8Brightness, 200}, {SYSINFO_u8Contrast, 60},     {SYSINFO_u8Saturation, 255},
        {SYSINFO_u8Sharpness, 64},   {SYSINFO_u8WbMode, 1},        {SYSINFO_u8WbRed, 128},
        {SYSINFO_u8WbGreen, 128},    {SYSINFO_u8WbBlue, 128},      {SYSINFO_u8FlickerMode, 1},
        {SYSINFO_u8DnrMode, 3},      {SYSINFO_u8Dnr2dStrength, 30}, {SYSINFO_u8Dnr3dStrength, 40},
        {SYSINFO_u8DefogMode, 1},    {SYSINFO_u8DefogStrength, 150}, {SYSINFO_u8WdrLevel, 0},
    };
    for (const auto &f : fields)
        sim_host_set_field(f.first, f.second);
}

// Standard output captured for a whole scenario. gtest reports failures on standard output too, so when the
// test has failed the captured text (the library's lines and gtest's reports) goes to standard error.
class ScenarioOutput {
public:
    ScenarioOutput() { testing::internal::CaptureStdout(); }
    ~ScenarioOutput()
    {
        if (!taken_)
            text_ = testing::internal::GetCapturedStdout();
        if (::testing::Test::HasFailure())
            std::fprintf(stderr, "---- captured output ----\n%s---- end of captured output ----\n", text_.c_str());
    }
    const std::string &take()
    {
        if (!taken_)
            text_ = testing::internal::GetCapturedStdout();
        taken_ = true;
        return text_;
    }

private:
    bool taken_ = false;
    std::string text_;
};

// A second host thread, joined when the scope ends.
class HostThread {
public:
    explicit HostThread(std::function<void()> body) : thread_(std::move(body)) {}
    ~HostThread()
    {
        if (::testing::Test::HasFatalFailure())
            vclock_free_run(); // a failed assertion left the scope early: the thread may wait in the clock
        if (thread_.joinable())
            thread_.join();
    }

private:
    std::thread thread_;
};

class HostTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        sim_mpp_reset();
        sim_host_reset();
        sim_host_run_commands(0); // the frame-rate marker command is recorded, not run
        vclock_reset();
        handle_ = dlopen(ISPTUNE_SO_PATH, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(handle_, nullptr) << dlerror();
        create_ = reinterpret_cast<void (*)(IspOperation *)>(dlsym(handle_, "CreateIspDev"));
        day_ = reinterpret_cast<int32_t (*)(void)>(dlsym(handle_, "ISP_SetParamDay"));
        night_ = reinterpret_cast<int32_t (*)(void)>(dlsym(handle_, "ISP_SetParamNight"));
        debug_info_ = reinterpret_cast<int32_t (*)(char *, int32_t)>(dlsym(handle_, "QV_ISP_GetDebugInfo"));
        ASSERT_NE(create_, nullptr);
        ASSERT_NE(day_, nullptr);
        ASSERT_NE(night_, nullptr);
        ASSERT_NE(debug_info_, nullptr);
        std::memset(table_, 0, sizeof table_);
        create_(table_);
        for (size_t slot = 0; slot < ISP_OPERATION_COUNT; ++slot)
            ASSERT_NE(table_[slot], nullptr) << "slot " << slot;
    }

    void TearDown() override
    {
        // Never leave a thread blocked in the clock or running past the test.
        vclock_free_run();
        if (table_[STOP] != nullptr) {
            StdoutCapture capture;
            table_[STOP]();
        }
        // The handle stays open: the process ends with the test (CTest runs each in its own).
    }

    // Every set operation, in slot order; each must yield 0.
    void apply_every_setting()
    {
        for (size_t slot = SET_EXPOSURE; slot < GET_CONFIG; ++slot)
            EXPECT_EQ(table_[slot](), 0) << kSlotNames[slot];
    }

    // The platform shows the host's settings (applied through the table) with the night profile in force.
    void expect_settings_applied(bool night)
    {
        VI_CSC_ATTR_S csc = platform_record<VI_CSC_ATTR_S>(SIM_REC_VI_CSC_ATTR);
        EXPECT_EQ(csc.u32LumaVal, 200u * 100 / 255);
        EXPECT_EQ(csc.u32ContrVal, 60u * 100 / 255);
        EXPECT_EQ(csc.u32SatuVal, 100u);
        ISP_SHARPEN_ATTR_S sharpen = platform_record<ISP_SHARPEN_ATTR_S>(SIM_REC_SHARPEN_ATTR);
        const uint16_t *ud = night ? gNightSharpenUd : gColorSharpenUd;
        for (int i = 0; i < 12; ++i)
            EXPECT_EQ(sharpen.stAuto.au16SharpenUd[i], ud[i] / 2) << i; // host sharpness 64: halved
        ISP_DCIRIS_ATTR_S dc = platform_record<ISP_DCIRIS_ATTR_S>(SIM_REC_DCIRIS_ATTR);
        EXPECT_EQ(dc.s32Ki, 100); // set_iris: always mode 0
        EXPECT_EQ(platform_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR).stAuto.stExpTimeRange.u32Min,
                  4000u);
        ISP_DEFOG_ATTR_S defog = platform_record<ISP_DEFOG_ATTR_S>(SIM_REC_DEFOG_ATTR);
        EXPECT_EQ(defog.enOpType, OP_TYPE_MANUAL);
        EXPECT_EQ(defog.stManual.u8strength, 150);
        EXPECT_EQ(platform_record<ISP_WB_ATTR_S>(SIM_REC_WB_ATTR).enOpType, OP_TYPE_MANUAL);
    }

    std::string overlay(int32_t index)
    {
        std::vector<char> lines(kLine * 4, '#');
        EXPECT_EQ(debug_info_(lines.data(), index), 0);
        const char *line = lines.data() + kLine * size_t(index);
        return std::memchr(line, '\0', kLine) ? std::string(line) : std::string("<no terminator>");
    }

    void *handle_ = nullptr;
    void (*create_)(IspOperation *) = nullptr;
    int32_t (*day_)(void) = nullptr;
    int32_t (*night_)(void) = nullptr;
    int32_t (*debug_info_)(char *, int32_t) = nullptr;
    IspDev table_;
};

} // namespace

TEST_F(HostTest, TheTableHoldsTheLoadedLibrarysOwnOperations)
{
    // If this fails, the loaded library's references to its own exported functions were bound to the
    // executable's namesakes: libisptune.so must be linked with -Wl,-Bsymbolic-functions.
    for (size_t slot = 0; slot < ISP_OPERATION_COUNT; ++slot) {
        EXPECT_EQ(reinterpret_cast<void *>(table_[slot]), dlsym(handle_, kSlotNames[slot])) << kSlotNames[slot];
        Dl_info info{};
        ASSERT_NE(dladdr(reinterpret_cast<void *>(table_[slot]), &info), 0) << kSlotNames[slot];
        ASSERT_NE(info.dli_fname, nullptr);
        EXPECT_NE(std::string(info.dli_fname).find("libisptune.so"), std::string::npos)
            << kSlotNames[slot] << " resolves into " << info.dli_fname;
    }
}

TEST_F(HostTest, BeforeAnyGetConfigTheLoadedCopyAppliesZeros)
{
    host_settings();
    StdoutCapture capture;
    EXPECT_EQ(table_[SET_BRIGHTNESS](), 0);
    EXPECT_EQ(platform_record<VI_CSC_ATTR_S>(SIM_REC_VI_CSC_ATTR).u32LumaVal, 0u);
    EXPECT_EQ(table_[GET_CONFIG](), 0);
    EXPECT_EQ(table_[SET_BRIGHTNESS](), 0);
    EXPECT_EQ(platform_record<VI_CSC_ATTR_S>(SIM_REC_VI_CSC_ATTR).u32LumaVal, 78u);
}

TEST_F(HostTest, HostRunsTheCameraPassByPassOnASteppingClock)
{
    host_settings();
    ScenarioOutput capture;
    ASSERT_EQ(table_[GET_CONFIG](), 0);

    vclock_step_mode(1);
    ASSERT_EQ(table_[START](), 0);
    ASSERT_EQ(vclock_wait_blocked(1), 0); // the thread's start-up wait
    EXPECT_EQ(vclock_call_at(0).kind, VCLOCK_SLEEP);
    EXPECT_EQ(vclock_call_at(0).duration_us, 10000000u);
    EXPECT_EQ(sim_mpp_log_count(), 0u) << "nothing happens before the start-up wait is over";

    vclock_allow(1); // baseline settings, then the first pass refreshes the day profile
    ASSERT_EQ(vclock_wait_blocked(2), 0);
    EXPECT_EQ(vclock_call_at(1).kind, VCLOCK_USLEEP);
    EXPECT_EQ(vclock_call_at(1).duration_us, 33333u);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_VI_SetDCIParam"), 1u) << "the baseline settings ran";
    const unsigned nr_writes_day = sim_mpp_call_count("HI_MPI_VPSS_SetGrpNRSParam");
    EXPECT_GT(nr_writes_day, 0u) << "the day refresh ran";

    // The host switches to the night profile while the thread sleeps; the next pass refreshes for it.
    ASSERT_EQ(night_(), 0);
    EXPECT_EQ(platform_record<ISP_SATURATION_ATTR_S>(SIM_REC_SATURATION_ATTR).enOpType, OP_TYPE_MANUAL);
    vclock_allow(1);
    ASSERT_EQ(vclock_wait_blocked(3), 0);
    EXPECT_GT(sim_mpp_call_count("HI_MPI_VPSS_SetGrpNRSParam"), nr_writes_day) << "the night refresh ran";

    // Every setting, from a second host thread: the strong-light setter ends in usleep(50) (Part 4.4), which
    // reaches the clock as call 4 behind the supervision thread's call 3.
    {
        HostThread settings([this] { apply_every_setting(); });
        ASSERT_EQ(vclock_wait_blocked(4), 0);
        EXPECT_EQ(vclock_call_at(3).kind, VCLOCK_USLEEP);
        EXPECT_EQ(vclock_call_at(3).duration_us, 50u);
        EXPECT_NE(vclock_call_at(3).thread, vclock_call_at(2).thread);
        expect_settings_applied(true);
        vclock_allow(2); // one more pass (the setters raised the refresh request) and the setter's usleep
    }
    ASSERT_EQ(vclock_wait_blocked(5), 0);
    EXPECT_GT(sim_mpp_call_count("HI_MPI_VPSS_SetGrpNRSParam"), nr_writes_day + 1) << "the requested refresh ran";

    sim_mpp_set_exposure(33333, 1536, 1024, 1024);
    sim_host_set_pmc(1.5);
    const std::string line = overlay(2);
    EXPECT_EQ(line.rfind("S:33 L:10 A:1.5 D:1.0 I:1.0 L:56 C:5100 F:", 0), 0u) << line;
    EXPECT_LE(line.size(), 53u);

    // Back to the day profile.
    ASSERT_EQ(day_(), 0);
    vclock_allow(1);
    ASSERT_EQ(vclock_wait_blocked(6), 0);

    vclock_free_run();
    ASSERT_EQ(table_[STOP](), 0);
    const size_t clock_calls = vclock_call_count(), platform_calls_made = sim_mpp_log_count();
    EXPECT_EQ(table_[STOP](), 0) << "a second stop does nothing";
    EXPECT_EQ(vclock_call_count(), clock_calls) << "the thread has ended";
    EXPECT_EQ(sim_mpp_log_count(), platform_calls_made);

    const std::string out = capture.take();
    EXPECT_EQ(occurrences(out, "-----------QV_ISP_Start----------").size(), 1u);
    const std::vector<size_t> days = occurrences(out, kDayDone), nights = occurrences(out, kNightDone);
    ASSERT_EQ(nights.size(), 2u) << out; // the switch, then the setters' request
    ASSERT_GE(days.size(), 2u) << out;
    EXPECT_LT(days.front(), nights.front()) << "day first";
    EXPECT_GT(days.back(), nights.back()) << "day again after the switch back";
    EXPECT_GE(sim_host_log_find("ISP_Start thread start-------"), 0);
    EXPECT_GE(sim_host_log_find("ISP_Stop thread stop-------"), 0);
}

TEST_F(HostTest, HostRunsTheCameraWithTheServiceRunningFreely)
{
    // The clock lets every call through at once: the supervision thread runs pass after pass while the host
    // thread switches profiles, applies the settings and reads the overlay, as on the camera.
    host_settings();
    sim_mpp_log_limit(2000); // the free-running thread makes many calls; counts go on regardless
    ScenarioOutput capture;
    ASSERT_EQ(table_[GET_CONFIG](), 0);
    ASSERT_EQ(table_[START](), 0);
    ASSERT_EQ(vclock_wait_blocked(5), 0);

    ASSERT_EQ(night_(), 0);
    size_t now = vclock_call_count();
    ASSERT_EQ(vclock_wait_blocked(now + 5), 0);
    apply_every_setting();
    const std::string night_line = overlay(0);
    EXPECT_EQ(night_line.rfind("S:10 L:10 A:1.0 D:1.0 I:1.0 L:56 C:5100 F:", 0), 0u) << night_line;

    ASSERT_EQ(day_(), 0);
    now = vclock_call_count();
    ASSERT_EQ(vclock_wait_blocked(now + 5), 0);
    apply_every_setting();
    expect_settings_applied(false);
    EXPECT_EQ(overlay(3).rfind("S:10 ", 0), 0u);

    ASSERT_EQ(table_[STOP](), 0);
    const size_t clock_calls = vclock_call_count();
    EXPECT_EQ(vclock_call_count(), clock_calls);
    const std::string out = capture.take();
    const std::vector<size_t> days = occurrences(out, kDayDone), nights = occurrences(out, kNightDone);
    ASSERT_FALSE(nights.empty()) << "the night refresh ran";
    ASSERT_GE(days.size(), 2u);
    EXPECT_LT(days.front(), nights.front());
    EXPECT_LT(nights.front(), days.back()) << "day again after the switch back";
}

TEST_F(HostTest, OperationsYieldZeroEvenWhenThePlatformRefusesEverything)
{
    host_settings();
    const char *calls[] = {"HI_MPI_ISP_GetExposureAttr", "HI_MPI_ISP_GetWBAttr", "HI_MPI_ISP_GetDRCAttr",
                           "HI_MPI_ISP_GetDeFogAttr", "HI_MPI_ISP_GetSharpenAttr", "HI_MPI_VI_GetCSCAttr",
                           "HI_MPI_VPSS_GetGrpNRSParam", "HI_MPI_ISP_GetIrisAttr"};
    for (const char *call : calls)
        ASSERT_EQ(sim_mpp_fail(call, 1, SIM_MPP_ALWAYS, HI_ERR_ISP_NOT_INIT), 0);
    StdoutCapture capture;
    ASSERT_EQ(table_[GET_CONFIG](), 0);
    apply_every_setting();
    EXPECT_NE(capture.take(), "") << "each setter printed its failure";
}
