// Parts 4.2, 4.3, 4.4, 4.5, 4.7: every platform call of every setter and query, failed in turn.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "call_test_support.h"

extern "C" {
#include "attributes/attributes.h"
#include "isptune.h"
#include "isptune_mpp.h"
}

namespace {

// The function under test, with the arguments of its run.
enum class Fn {
    ExposureAuto,   // QV_ISP_SetExposureAttr mode 0: the baseline of Part 1.4 runs
    ExposureManual, // mode 1, gain 10, shutter 6
    Flicker,        // mode 1
    Blc,            // enable 1, level 1
    ExposureInfo,
    WbAuto,
    WbManual, // 128/128/128
    Wdr,      // level 3
    SlOnPlain,    // enable 1, level 200, DRC strength 90, plain scene
    SlOffPlain,   // enable 0, plain scene
    SlOnNotPlain, // enable 1, backlight on
    DnrMode0,
    DnrMode1,
    DnrMode2,
    DnrMode3, // 2D 11, 3D 22
    Set3D,    // 500
    Set2D,    // 7
    Defog,    // mode 1, strength 200
};

struct FaultRow {
    Fn fn;
    const char *call;    // the failing platform call
    unsigned nth;        // which call of it fails (counted from 1)
    std::string before;  // printed on standard output before the failure
    std::string message; // the failure's message, typed from the spec
    std::string after;   // printed after the failure (a later writer of the noise-reduction setter)
    int32_t result;
    Calls calls; // every platform call made, the failed one included
    bool mark;   // ispParamReflashMark raised
};

const char *fn_name(Fn fn)
{
    switch (fn) {
    case Fn::ExposureAuto: return "SetExposureAttr_Auto";
    case Fn::ExposureManual: return "SetExposureAttr_Manual";
    case Fn::Flicker: return "SetFlickerAttr";
    case Fn::Blc: return "SetBLCAttr";
    case Fn::ExposureInfo: return "GetExposureInfo";
    case Fn::WbAuto: return "SetWBAttr_Auto";
    case Fn::WbManual: return "SetWBAttr_Manual";
    case Fn::Wdr: return "SetWDRAttr";
    case Fn::SlOnPlain: return "SetSLInhibitionAttr_OnPlain";
    case Fn::SlOffPlain: return "SetSLInhibitionAttr_OffPlain";
    case Fn::SlOnNotPlain: return "SetSLInhibitionAttr_OnNotPlain";
    case Fn::DnrMode0: return "SetDNRAttr_Mode0";
    case Fn::DnrMode1: return "SetDNRAttr_Mode1";
    case Fn::DnrMode2: return "SetDNRAttr_Mode2";
    case Fn::DnrMode3: return "SetDNRAttr_Mode3";
    case Fn::Set3D: return "Set3DNRAttr";
    case Fn::Set2D: return "Set2DNRAttr";
    case Fn::Defog: return "SetDefogAttr";
    }
    return "?";
}

int32_t call_function(Fn fn)
{
    switch (fn) {
    case Fn::ExposureAuto: {
        IspExposureCfg c = {0, 0, 0};
        return QV_ISP_SetExposureAttr(&c);
    }
    case Fn::ExposureManual: {
        IspExposureCfg c = {1, 10, 6};
        return QV_ISP_SetExposureAttr(&c);
    }
    case Fn::Flicker: {
        IspFlickerCfg c = {1};
        return QV_ISP_SetFlickerAttr(&c);
    }
    case Fn::Blc: {
        IspBlcCfg c = {1, 1};
        return QV_ISP_SetBLCAttr(&c);
    }
    case Fn::ExposureInfo: {
        IspExposureInfo info;
        return QV_ISP_GetExposureInfo(&info);
    }
    case Fn::WbAuto: {
        IspWbCfg c = {0, 1, 2, 3, 0};
        return QV_ISP_SetWBAttr(&c);
    }
    case Fn::WbManual: {
        IspWbCfg c = {1, 128, 128, 128, 0};
        return QV_ISP_SetWBAttr(&c);
    }
    case Fn::Wdr: {
        IspWdrCfg c = {0, 3};
        return QV_ISP_SetWDRAttr(&c);
    }
    case Fn::SlOnPlain:
    case Fn::SlOnNotPlain: {
        IspSlInhibitionCfg c = {1, 200, 90};
        return QV_ISP_SetSLInhibitionAttr(&c);
    }
    case Fn::SlOffPlain: {
        IspSlInhibitionCfg c = {0, 200, 90};
        return QV_ISP_SetSLInhibitionAttr(&c);
    }
    case Fn::DnrMode0:
    case Fn::DnrMode1:
    case Fn::DnrMode2:
    case Fn::DnrMode3: {
        IspDnrCfg c = {uint8_t(int(fn) - int(Fn::DnrMode0)), 11, 22};
        return QV_ISP_SetDNRAttr(&c);
    }
    case Fn::Set3D: return QV_ISP_Set3DNRAttr(500);
    case Fn::Set2D: return QV_ISP_Set2DNRAttr(7);
    case Fn::Defog: {
        IspDefogCfg c = {1, 0, 200};
        return QV_ISP_SetDefogAttr(&c);
    }
    }
    return 99;
}

const std::string kGetExp = "HI_MPI_ISP_GetExposureAttr", kSetExp = "HI_MPI_ISP_SetExposureAttr";
const std::string kGetDrc = "HI_MPI_ISP_GetDRCAttr", kSetDrc = "HI_MPI_ISP_SetDRCAttr";
const std::string kGetNrs = "HI_MPI_VPSS_GetGrpNRSParam", kSetNrs = "HI_MPI_VPSS_SetGrpNRSParam";

// The exposure record every run starts from (SetUp), so that the printed values are fixed.
#define SEEDED_STRATEGY_LINE "enAEStrategyMode: 1 u16HistRatioSlope: 91  u8MaxHistOffset: 22\n"
#define SL_GET_LINES                                                                                         \
    "GetExposureAttr    enAEStrategyMode: 1 u16HistRatioSlope: 91  u8MaxHistOffset: 22  u8Compensation: 3c\n" \
    "GetDRCAttr         stDRCAttr.u8LocalMixingBrigtht  = 45  stDRCAttr.stManual.u8Strength = 96\n"
#define DASHES "--------11111111111111111111111111112222222222-----------"

const std::string kNrs3dGet = "HI_MPI_VPSS_GetGrpNRSParam QV_ISP_Set3DNRAttr 2505 failed 0xa0078012 !!!\n";
const std::string kNrs2dGet = "HI_MPI_VPSS_GetGrpNRSParam QV_ISP_Set2DNRAttr 2474 failed 0xa0078012 !!!\n";
const std::string kNrsSet = "HI_MPI_VPSS_SetGrpNRSParam failed 0xa0078012\n";

std::vector<FaultRow> all_rows()
{
    std::vector<FaultRow> rows;
    // Part 4.2, mode 0: the setter's own result stays 0 whatever the baseline's (Part 1.4 messages).
    static const Calls baseline = {kGetExp, // static: the rows keep pointers to its names
                            kSetExp,
                            "HI_MPI_ISP_GetWBAttr",
                            "HI_MPI_ISP_SetWBAttr",
                            "HI_MPI_ISP_GetAWBAttrEx",
                            "HI_MPI_ISP_SetAWBAttrEx",
                            kGetDrc,
                            kSetDrc,
                            "HI_MPI_VI_GetDCIParam",
                            "HI_MPI_VI_SetDCIParam",
                            "HI_MPI_ISP_GetBlackLevelAttr",
                            "HI_MPI_ISP_SetBlackLevelAttr"};
    const char *baseline_messages[] = {
        "QV_ISP_SetParam 389 failed 0xa01c8040 !!!\n",
        "QV_ISP_SetParam 409 failed 0xa01c8040 !!!\n",
        "HI_MPI_ISP_GetWBAttr QV_ISP_SetParam 419 failed 0xa01c8040 !!!\n",
        "HI_MPI_ISP_SetWBAttr QV_ISP_SetParam 429 failed 0xa01c8040 !!!\n",
        "HI_MPI_ISP_GetAWBAttrEx QV_ISP_SetParam 439 failed 0xa01c8040 !!!\n",
        " HI_MPI_ISP_SetAWBAttrEx QV_ISP_SetParam 450 failed 0xa01c8040 !!!\n",
        "QV_ISP_SetParam 461 failed 0xa01c8040 !!!\n",
        "QV_ISP_SetParam 468 failed 0xa01c8040 !!!\n",
        "HI_MPI_VI_GetDCIParam QV_ISP_SetParam 478 failed 0xa0108012 !!!\n",
        "HI_MPI_VI_SetDCIParam QV_ISP_SetParam 485 failed 0xa0108012 !!!\n",
        "HI_MPI_ISP_GetBlackLevelAttr QV_ISP_SetParam 494 failed 0xa01c8040 !!!\n",
        "HI_MPI_ISP_SetBlackLevelAttr QV_ISP_SetParam 507 failed 0xa01c8040 !!!\n",
    };
    for (size_t i = 0; i < baseline.size(); ++i)
        rows.push_back({Fn::ExposureAuto, baseline[i].c_str(), 1, i >= 5 ? DASHES : "", baseline_messages[i], "",
                        0, Calls(baseline.begin(), baseline.begin() + long(i) + 1), false});

    const std::string exp_get = "HI_MPI_ISP_GetExposureAttr failed with 0xa01c8040\n";
    const std::string exp_set = "HI_MPI_ISP_SetExposureAttr failed with 0xa01c8040\n";
    rows.push_back({Fn::ExposureManual, "HI_MPI_ISP_GetExposureAttr", 1, "", exp_get, "", -1, {kGetExp}, false});
    rows.push_back({Fn::ExposureManual, "HI_MPI_ISP_SetExposureAttr", 1, "stExposureAttr.enOpType 0 \n", exp_set,
                    "", -1, {kGetExp, kSetExp}, false});
    rows.push_back({Fn::Flicker, "HI_MPI_ISP_GetExposureAttr", 1, "", exp_get, "", -1, {kGetExp}, false});
    rows.push_back({Fn::Flicker, "HI_MPI_ISP_SetExposureAttr", 1, "", exp_set, "", -1, {kGetExp, kSetExp}, false});
    rows.push_back({Fn::Blc, "HI_MPI_ISP_GetExposureAttr", 1, "", exp_get, "", -1, {kGetExp}, false});
    rows.push_back({Fn::Blc, "HI_MPI_ISP_SetExposureAttr", 1, SEEDED_STRATEGY_LINE, exp_set, "", -1,
                    {kGetExp, kSetExp}, false});
    rows.push_back({Fn::ExposureInfo, "HI_MPI_ISP_QueryExposureInfo", 1, "",
                    "HI_MPI_ISP_QueryExposureInfo failed with 0xa01c8040\n", "", -1,
                    {"HI_MPI_ISP_QueryExposureInfo"}, false});

    // Part 4.3.
    for (Fn fn : {Fn::WbAuto, Fn::WbManual}) {
        rows.push_back({fn, "HI_MPI_ISP_GetWBAttr", 1, "", "HI_MPI_ISP_GetWBAttr failed with 0xa01c8040\n", "", -1,
                        {"HI_MPI_ISP_GetWBAttr"}, false});
        rows.push_back({fn, "HI_MPI_ISP_SetWBAttr", 1, "", "HI_MPI_ISP_SetWBAttr failed with 0xa01c8040\n", "", -1,
                        {"HI_MPI_ISP_GetWBAttr", "HI_MPI_ISP_SetWBAttr"}, false});
    }

    // Part 4.4.
    const std::string drc_get = "HI_MPI_ISP_GetDRCAttr failed with 0xa01c8040\n";
    const std::string drc_set = "HI_MPI_ISP_SetDRCAttr failed with 0xa01c8040\n";
    rows.push_back({Fn::Wdr, "HI_MPI_ISP_GetDRCAttr", 1, "", drc_get, "", -1, {kGetDrc}, false});
    rows.push_back({Fn::Wdr, "HI_MPI_ISP_SetDRCAttr", 1, "", drc_set, "", -1, {kGetDrc, kSetDrc}, false});
    for (Fn fn : {Fn::SlOnPlain, Fn::SlOffPlain, Fn::SlOnNotPlain}) {
        rows.push_back({fn, "HI_MPI_ISP_GetDRCAttr", 1, "", drc_get, "", -1, {kGetDrc}, false});
        rows.push_back({fn, "HI_MPI_ISP_GetExposureAttr", 1, "", exp_get, "", -1, {kGetDrc, kGetExp}, false});
    }
    rows.push_back({Fn::SlOnPlain, "HI_MPI_ISP_SetDRCAttr", 1, SL_GET_LINES, drc_set, "", -1,
                    {kGetDrc, kGetExp, kSetDrc}, false});
    rows.push_back({Fn::SlOnPlain, "HI_MPI_ISP_SetExposureAttr", 1,
                    SL_GET_LINES " SetDRC   bEnable: 1    enOpType: 1    u8Strength: 5f\n"
                                 "SetExposureAttr   enAEStrategyMode: 0 u16HistRatioSlope: c8  u8MaxHistOffset: c8  "
                                 "u8Compensation: 30\n",
                    exp_set, "", -1, {kGetDrc, kGetExp, kSetDrc, kSetExp}, false});
    rows.push_back({Fn::SlOffPlain, "HI_MPI_ISP_SetDRCAttr", 1, SL_GET_LINES, drc_set, "", -1,
                    {kGetDrc, kGetExp, kSetDrc}, false});
    rows.push_back({Fn::SlOffPlain, "HI_MPI_ISP_SetExposureAttr", 1,
                    SL_GET_LINES " SetDRC   bEnable: 1    enOpType: 0    u8Strength: 60\n"
                                 "SetExposureAttr   enAEStrategyMode: 0 u16HistRatioSlope: 0  u8MaxHistOffset: 0  "
                                 "u8Compensation: 32\n",
                    exp_set, "", -1, {kGetDrc, kGetExp, kSetDrc, kSetExp}, false});
    rows.push_back({Fn::SlOnNotPlain, "HI_MPI_ISP_SetExposureAttr", 1,
                    SL_GET_LINES " SetDRC   bEnable: 1    enOpType: 0    u8Strength: 60\n"
                                 "SetExposureAttr   enAEStrategyMode: 1 u16HistRatioSlope: 91  u8MaxHistOffset: 22  "
                                 "u8Compensation: 3c\n",
                    exp_set, "", -1, {kGetDrc, kGetExp, kSetExp}, false});

    // Part 4.5: the 3D writer's failure is printed but the 2D result decides (modes 0 and 3), and the mark
    // is raised whatever the result.
    for (Fn fn : {Fn::DnrMode0, Fn::DnrMode3}) {
        rows.push_back({fn, "HI_MPI_VPSS_GetGrpNRSParam", 1, "", kNrs3dGet, "", 0, {kGetNrs, kGetNrs, kSetNrs}, true});
        rows.push_back(
            {fn, "HI_MPI_VPSS_SetGrpNRSParam", 1, "", kNrsSet, "", 0, {kGetNrs, kSetNrs, kGetNrs, kSetNrs}, true});
        rows.push_back({fn, "HI_MPI_VPSS_GetGrpNRSParam", 2, "", kNrs2dGet, "", -1, {kGetNrs, kSetNrs, kGetNrs}, true});
        rows.push_back(
            {fn, "HI_MPI_VPSS_SetGrpNRSParam", 2, "", kNrsSet, "", -1, {kGetNrs, kSetNrs, kGetNrs, kSetNrs}, true});
    }
    rows.push_back({Fn::DnrMode1, "HI_MPI_VPSS_GetGrpNRSParam", 1, "", kNrs2dGet, "", -1, {kGetNrs}, true});
    rows.push_back({Fn::DnrMode1, "HI_MPI_VPSS_SetGrpNRSParam", 1, "", kNrsSet, "", -1, {kGetNrs, kSetNrs}, true});
    rows.push_back({Fn::DnrMode2, "HI_MPI_VPSS_GetGrpNRSParam", 1, "", kNrs3dGet, "", -1, {kGetNrs}, true});
    rows.push_back({Fn::DnrMode2, "HI_MPI_VPSS_SetGrpNRSParam", 1, "", kNrsSet, "", -1, {kGetNrs, kSetNrs}, true});
    rows.push_back({Fn::Set3D, "HI_MPI_VPSS_GetGrpNRSParam", 1, "", kNrs3dGet, "", -1, {kGetNrs}, false});
    rows.push_back({Fn::Set3D, "HI_MPI_VPSS_SetGrpNRSParam", 1, "", kNrsSet, "", -1, {kGetNrs, kSetNrs}, false});
    rows.push_back({Fn::Set2D, "HI_MPI_VPSS_GetGrpNRSParam", 1, "", kNrs2dGet, "", -1, {kGetNrs}, false});
    rows.push_back({Fn::Set2D, "HI_MPI_VPSS_SetGrpNRSParam", 1, "", kNrsSet, "", -1, {kGetNrs, kSetNrs}, false});

    // Part 4.7.
    rows.push_back({Fn::Defog, "HI_MPI_ISP_GetDeFogAttr", 1, "", "HI_MPI_ISP_GetDeFogAttr failed with 0xa01c8040\n",
                    "", -1, {"HI_MPI_ISP_GetDeFogAttr"}, false});
    rows.push_back({Fn::Defog, "HI_MPI_ISP_SetDeFogAttr", 1, "", "HI_MPI_ISP_SetDeFogAttr failed with 0xa01c8040\n",
                    "", -1, {"HI_MPI_ISP_GetDeFogAttr", "HI_MPI_ISP_SetDeFogAttr"}, false});
    return rows;
}

void PrintTo(const FaultRow &row, std::ostream *os)
{
    *os << fn_name(row.fn) << ", " << row.call << " #" << row.nth;
}

std::string row_name(const ::testing::TestParamInfo<FaultRow> &pi)
{
    return std::string(fn_name(pi.param.fn)) + "_" + pi.param.call + "_" + std::to_string(pi.param.nth);
}

bool is_inhibition(Fn fn)
{
    return fn == Fn::SlOnPlain || fn == Fn::SlOffPlain || fn == Fn::SlOnNotPlain;
}

class AttributeFaultSweep : public ::testing::TestWithParam<FaultRow> {
protected:
    void SetUp() override
    {
        sim_mpp_reset();
        sim_host_reset();
        vclock_reset();
        ispParamReflashMark = 0;
        if (GetParam().fn == Fn::SlOnNotPlain)
            sim_host_set_field(SYSINFO_u8BlcEnable, 1);
        ISP_EXPOSURE_ATTR_S exp = power_on_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR);
        exp.stAuto.enAEStrategyMode = ISP_AE_STRATEGY_E(1);
        exp.stAuto.u16HistRatioSlope = 0x91;
        exp.stAuto.u8MaxHistOffset = 0x22;
        exp.stAuto.u8Compensation = 0x3c;
        sim_mpp_write(SIM_REC_EXPOSURE_ATTR, &exp);
    }
};

} // namespace

TEST_P(AttributeFaultSweep, FailingCallPrintsItsMessageAndNothingFollows)
{
    const FaultRow &row = GetParam();
    const HI_S32 code = failure_code_for(row.call);
    ASSERT_EQ(sim_mpp_fail(row.call, row.nth, 1, code), 0);
    ISP_EXPOSURE_ATTR_S exp_before = platform_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR);

    StdoutCapture capture;
    const int32_t result = call_function(row.fn);
    const std::string out = capture.take();

    EXPECT_EQ(result, row.result);
    EXPECT_EQ(out, row.before + row.message + row.after);
    EXPECT_EQ(platform_calls(), row.calls);
    EXPECT_EQ(sim_mpp_call_count(row.call), unsigned(std::count(row.calls.begin(), row.calls.end(), row.call)));
    EXPECT_EQ(host_log_texts(), std::vector<std::string>{});
    EXPECT_EQ(ispParamReflashMark, row.mark ? 1 : 0);
    if (is_inhibition(row.fn)) {
        // A failed strong-light setter neither raises the mark nor sleeps, and a failed DRC write leaves the
        // exposure attribute untouched.
        EXPECT_EQ(vclock_call_count(), 0u);
        if (std::string(row.call) == kSetDrc) {
            ISP_EXPOSURE_ATTR_S exp_now = platform_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR);
            EXPECT_TRUE(same_bytes(&exp_now, &exp_before, sizeof exp_now));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(AttributesOne, AttributeFaultSweep, ::testing::ValuesIn(all_rows()), row_name);

// The fault sweep covers every call of every path: each row's call list is a prefix (or, for the
// noise-reduction writers that do not end the setter, the whole path) of its function's full path.
TEST(AttributeFaultSweepCoverage, EveryCallOfEveryPathHasARow)
{
    const std::vector<FaultRow> rows = all_rows();
    for (const FaultRow &row : rows) {
        unsigned seen = 0;
        bool found = false;
        for (const std::string &c : row.calls)
            if (c == row.call && ++seen == row.nth)
                found = true;
        EXPECT_TRUE(found) << fn_name(row.fn) << " " << row.call << " #" << row.nth;
    }
    // Rows per function: baseline 12, manual exposure, flicker, backlight, WB x2, WDR, defog, writers 2 each;
    // query 1; inhibition 4 + 4 + 3; noise reduction 4 + 2 + 2 + 4.
    EXPECT_EQ(rows.size(), 12u + 2 * 3 + 1 + 2 * 2 + 2 + 4 + 4 + 3 + 4 + 2 + 2 + 4 + 2 + 2 + 2);
}
