// Parts 4.6, 4.8, 4.9, 4.10 and 1.1: every platform call of the iris, sharpness, picture and overlay
// functions failed in turn, called directly and through their operations: the message, the result, and
// no later call.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "isptune_test.h"

extern "C" {
#include "isptune.h"
}

namespace {

using Calls = std::vector<std::string>;

enum class Fn { IrisMode0, IrisMode1, Sharpness, Bright, Contrast, Saturation, DebugInfo };

struct Path {
    Fn fn;
    const char *name;
    Calls calls;               // the full path, in call order
    IspOperation operation;    // the table operation that reaches it (nullptr: none)
};

const std::vector<Path> &paths()
{
    static const std::vector<Path> p = {
        {Fn::IrisMode0, "IrisMode0",
         {"HI_MPI_ISP_GetExposureAttr", "HI_MPI_ISP_SetExposureAttr", "HI_MPI_ISP_GetIrisAttr",
          "HI_MPI_ISP_SetIrisAttr", "HI_MPI_ISP_SetDcirisAttr"},
         set_iris},
        {Fn::IrisMode1, "IrisMode1",
         {"HI_MPI_ISP_GetExposureAttr", "HI_MPI_ISP_SetExposureAttr", "HI_MPI_ISP_GetIrisAttr",
          "HI_MPI_ISP_SetIrisAttr"},
         nullptr},
        {Fn::Sharpness, "Sharpness", {"HI_MPI_ISP_GetSharpenAttr", "HI_MPI_ISP_SetSharpenAttr"}, set_sharpness},
        {Fn::Bright, "Bright", {"HI_MPI_VI_GetCSCAttr", "HI_MPI_VI_SetCSCAttr"}, set_brightness},
        {Fn::Contrast, "Contrast", {"HI_MPI_VI_GetCSCAttr", "HI_MPI_VI_SetCSCAttr"}, set_Contrast},
        {Fn::Saturation, "Saturation", {"HI_MPI_VI_GetCSCAttr", "HI_MPI_VI_SetCSCAttr"}, set_Saturation},
        {Fn::DebugInfo, "DebugInfo",
         {"HI_MPI_ISP_GetPubAttr", "HI_MPI_ISP_QueryExposureInfo", "HI_MPI_ISP_QueryWBInfo"}, nullptr},
    };
    return p;
}

struct Expected {
    std::string out;      // standard output
    std::string host_log; // the one QV_SYSERROR entry, or ""
    int32_t result;       // of the direct call
};

// The message and result of failing `call` on the path of `fn`, typed from the spec.
Expected expected(Fn fn, const std::string &call)
{
    char hex[32];
    std::snprintf(hex, sizeof hex, "%#x", unsigned(failure_code_for(call)));
    const std::string dec = std::to_string(int(failure_code_for(call)));
    switch (fn) {
    case Fn::IrisMode0:
    case Fn::IrisMode1:
        return {call + " failed with " + hex + "\n", "", -1};
    case Fn::Sharpness:
        return {call + " faile with " + hex + "!\n", "", -1};
    case Fn::Bright:
    case Fn::Saturation:
        return {call + " error " + dec + "\n", "", -1};
    case Fn::Contrast:
        return {(call == "HI_MPI_VI_SetCSCAttr" ? std::string("stViAttr.u32ContrVal = 50 \n") : std::string()) +
                    call + " error " + dec + "\n",
                "", -1};
    case Fn::DebugInfo:
        if (call == "HI_MPI_ISP_GetPubAttr")
            return {"", "HI_MPI_ISP_GetPubAttr failue!!!\n", failure_code_for(call)};
        if (call == "HI_MPI_ISP_QueryExposureInfo")
            return {call + " failed with " + hex + "\n", "", -1};
        return {"HI_MPI_ISP_QueryWBInfo failed\n", "", -1};
    }
    return {"", "", 0};
}

int32_t call_direct(Fn fn, std::vector<char> &lines)
{
    IspIrisCfg mode0{0, 0}, mode1{1, 0};
    switch (fn) {
    case Fn::IrisMode0: return QV_ISP_SetIRAttr(&mode0);
    case Fn::IrisMode1: return QV_ISP_SetIRAttr(&mode1);
    case Fn::Sharpness: return QV_ISP_SetSharpnessAttr(100.0f);
    case Fn::Bright: return QV_ISP_SetBrightAttr(128);
    case Fn::Contrast: return QV_ISP_SetContrastAttr(128);
    case Fn::Saturation: return QV_ISP_SetSaturationAttr(128);
    case Fn::DebugInfo: return QV_ISP_GetDebugInfo(lines.data(), 0);
    }
    return 0;
}

struct Outcome {
    int32_t result;
    std::string out;
    Calls calls;
    std::vector<std::string> host_log;
    bool buffer_untouched;
};

Outcome run(const std::function<int32_t(std::vector<char> &)> &call, const std::string &failing)
{
    sim_mpp_reset();
    sim_host_reset();
    // The host's values for the operations: sharpness 100, picture values 128.
    sim_host_set_field(SYSINFO_u8Sharpness, 100);
    {
        StdoutCapture capture;
        get_config();
    }
    sim_mpp_reset();
    sim_host_reset();
    EXPECT_EQ(sim_mpp_fail(failing.c_str(), 1, 1, failure_code_for(failing)), 0);
    std::vector<char> lines(1024, '#');
    Outcome o;
    StdoutCapture capture;
    o.result = call(lines);
    o.out = capture.take();
    o.calls = platform_calls();
    o.host_log = host_log_texts();
    o.buffer_untouched = std::string(lines.begin(), lines.end()) == std::string(1024, '#');
    return o;
}

} // namespace

TEST(FaultSweepAttributesTwo, EveryPlatformCallFailedDirectly)
{
    for (const Path &path : paths()) {
        for (size_t k = 0; k < path.calls.size(); ++k) {
            const std::string &call = path.calls[k];
            SCOPED_TRACE(std::string(path.name) + ": " + call);
            Outcome o = run([&](std::vector<char> &lines) { return call_direct(path.fn, lines); }, call);
            Expected want = expected(path.fn, call);
            EXPECT_EQ(o.result, want.result);
            EXPECT_EQ(o.out, want.out);
            EXPECT_EQ(o.calls, Calls(path.calls.begin(), path.calls.begin() + long(k) + 1)) << "no later call";
            if (want.host_log.empty()) {
                EXPECT_TRUE(o.host_log.empty());
            } else {
                EXPECT_EQ(o.host_log, std::vector<std::string>{want.host_log});
                EXPECT_EQ(sim_host_log_at(0).service, SIM_HOST_QV_SYSERROR);
                EXPECT_EQ(sim_host_log_at(0).module, 14);
            }
            if (path.fn == Fn::DebugInfo) {
                EXPECT_TRUE(o.buffer_untouched) << "nothing written to the host's buffer";
                EXPECT_EQ(sim_host_pmc_calls(), 0u);
            }
        }
    }
}

TEST(FaultSweepAttributesTwo, EveryPlatformCallFailedThroughItsOperationYieldsZero)
{
    for (const Path &path : paths()) {
        if (path.operation == nullptr)
            continue;
        for (size_t k = 0; k < path.calls.size(); ++k) {
            const std::string &call = path.calls[k];
            SCOPED_TRACE(std::string(path.name) + " through its operation: " + call);
            Outcome o = run([&](std::vector<char> &) { return path.operation(); }, call);
            Expected want = expected(path.fn, call);
            EXPECT_EQ(o.result, 0);
            EXPECT_EQ(o.out, want.out);
            EXPECT_EQ(o.calls, Calls(path.calls.begin(), path.calls.begin() + long(k) + 1));
        }
    }
}

TEST(FaultSweepAttributesTwo, EveryPathRunsWholeWithoutFaults)
{
    for (const Path &path : paths()) {
        SCOPED_TRACE(path.name);
        Outcome o = run([&](std::vector<char> &lines) { return call_direct(path.fn, lines); }, "HI_MPI_ISP_SetPubAttr");
        EXPECT_EQ(o.result, 0);
        EXPECT_EQ(o.calls, path.calls);
        if (path.operation != nullptr) {
            Outcome via = run([&](std::vector<char> &) { return path.operation(); }, "HI_MPI_ISP_SetPubAttr");
            EXPECT_EQ(via.result, 0);
            EXPECT_EQ(via.calls, path.calls);
        }
    }
}

TEST(FaultSweepAttributesTwo, AFaultOnALaterCallOfTheSameFunctionHitsTheSecondRunOnly)
{
    // The nth-call form of the simulator's faults: the first run passes, the second fails at its read.
    sim_mpp_reset();
    ASSERT_EQ(sim_mpp_fail("HI_MPI_VI_GetCSCAttr", 2, 1, HI_ERR_VI_BUSY), 0);
    StdoutCapture capture;
    EXPECT_EQ(QV_ISP_SetBrightAttr(255), 0);
    EXPECT_EQ(QV_ISP_SetBrightAttr(0), -1);
    EXPECT_EQ(QV_ISP_SetBrightAttr(0), 0);
    EXPECT_EQ(capture.take(), "HI_MPI_VI_GetCSCAttr error " + std::to_string(int(HI_ERR_VI_BUSY)) + "\n");
}
