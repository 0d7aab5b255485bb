// Part 3.3: night refresh (with the night tables of Part 2.2, Part 3.4's black levels and high-gain curve).
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <tuple>
#include <vector>

#include "isptune_test.h"

extern "C" {
#include "isptune.h"
#include "refresh/refresh.h"
}

namespace {

using Calls = std::vector<std::string>;

// Step order of Part 3.3, Interfaces (every block runs): gamma right after DRC, no white balance.
const Calls kFullPath = {
    "HI_MPI_VPSS_GetGrpNRSParam",   "HI_MPI_VPSS_SetGrpNRSParam",   "HI_MPI_ISP_GetDRCAttr",
    "HI_MPI_ISP_SetDRCAttr",        "HI_MPI_ISP_GetGammaAttr",      "HI_MPI_ISP_SetGammaAttr",
    "HI_MPI_ISP_GetDeFogAttr",      "HI_MPI_ISP_SetDeFogAttr",      "HI_MPI_ISP_GetBlackLevelAttr",
    "HI_MPI_ISP_SetBlackLevelAttr", "HI_MPI_ISP_GetExposureAttr",   "HI_MPI_ISP_SetExposureAttr",
};

// `calls` without the calls named in `dropped`.
Calls without(const Calls &calls, const Calls &dropped)
{
    Calls kept;
    for (const std::string &c : calls)
        if (std::find(dropped.begin(), dropped.end(), c) == dropped.end())
            kept.push_back(c);
    return kept;
}

const Calls kGammaCalls = {"HI_MPI_ISP_GetGammaAttr", "HI_MPI_ISP_SetGammaAttr"};
const Calls kDrcCalls = {"HI_MPI_ISP_GetDRCAttr", "HI_MPI_ISP_SetDRCAttr"};
const Calls kExposureCalls = {"HI_MPI_ISP_GetExposureAttr", "HI_MPI_ISP_SetExposureAttr"};

// Gain level of Part 1.3 step 3, typed from the spec.
int32_t level_of(int32_t G)
{
    return int32_t(std::trunc(std::log10(double(G)) / 0.3010299956639812));
}

struct Outcome {
    int32_t result;
    std::string out;
};

// Night refreshes run so far in this process (s32NightGammaMark is -1 only before the first).
int g_night_refreshes = 0;

Outcome night_refresh(int32_t G, int32_t L)
{
    ++g_night_refreshes;
    StdoutCapture capture;
    int32_t result = ISP_SetParamNightRefresh(G, L);
    return {result, capture.take()};
}

Outcome night_refresh(int32_t G)
{
    return night_refresh(G, level_of(G));
}

// CTest runs every test in a fresh process, where s32NightGammaMark is -1. So that a test that needs the
// gamma step also holds when the whole file runs in one process, this refreshes once in the other band
// and returns the platform and the host to power-on.
void load_other_night_curve(int32_t G)
{
    night_refresh(G >= 33 ? 24 : 57);
    sim_mpp_reset();
    sim_host_reset();
}

// What the black-level step prints (Part 3.3 step 7), typed from the spec.
std::string black_level_lines(int32_t G, int table_value)
{
    std::string out = "SYSTEM " + std::to_string(G) + " !!!\n";
    const std::string v = std::to_string(table_value);
    for (int i = 0; i < 4 && table_value != 0; ++i)
        out += (table_value == 73 ? "BlackLevelTable_60 " : "BlackLevelTable ") + v + " = " + v + " !!!\n";
    return out;
}

// The 24 interpolated fields of the noise-reduction record, in record order.
struct Nr {
    int SBS0, SBS1, SBS2, SBS3, SDS0, SDS1, SDS2, SDS3, STH0, STH1, STH2, STH3, MDP, Pro3, MATH1, MATH2,
        MDDZ1, MDDZ2, TFS1, TFS2, SFC, TFC, TPC, TRC;
};

// The power-on record after a refresh under noise-reduction mode `mode` with the values `v`.
VPSS_GRP_NRS_PARAM_S expected_nrs(const Nr &v, int mode = 0)
{
    VPSS_GRP_NRS_PARAM_S r = power_on_record<VPSS_GRP_NRS_PARAM_S>(SIM_REC_VPSS_NRS_PARAM);
    NRS_PARAM_V2_S &p = r.stNRSParam_V2;
    r.enNRVer = VPSS_NR_V2;
    p.IES0 = 0;
    p.SBS0 = v.SBS0, p.SBS1 = v.SBS1, p.SBS2 = v.SBS2;
    p.SDS0 = v.SDS0, p.SDS1 = v.SDS1, p.SDS2 = v.SDS2;
    p.STH0 = v.STH0, p.STH1 = v.STH1, p.STH2 = v.STH2, p.STH3 = v.STH3;
    p.MDP = v.MDP, p.Pro3 = v.Pro3;
    p.MDDZ1 = v.MDDZ1, p.MDDZ2 = v.MDDZ2, p.TFS1 = v.TFS1, p.TFS2 = v.TFS2;
    p.SFC = v.SFC, p.TFC = v.TFC, p.TPC = v.TPC, p.TRC = v.TRC;
    if (mode == 0 || mode == 2)
        p.SBS3 = v.SBS3, p.SDS3 = v.SDS3;
    if (mode == 0 || mode == 1)
        p.MATH1 = v.MATH1, p.MATH2 = v.MATH2;
    return r;
}

ISP_DRC_ATTR_S expected_drc(int strength)
{
    ISP_DRC_ATTR_S r = power_on_record<ISP_DRC_ATTR_S>(SIM_REC_DRC_ATTR);
    r.bEnable = HI_TRUE;
    r.enOpType = OP_TYPE_MANUAL; // 1
    r.stManual.u8Strength = HI_U8(strength);
    return r;
}

ISP_DEFOG_ATTR_S expected_defog(int strength)
{
    ISP_DEFOG_ATTR_S r = power_on_record<ISP_DEFOG_ATTR_S>(SIM_REC_DEFOG_ATTR);
    r.bEnable = HI_TRUE;
    r.enOpType = OP_TYPE_MANUAL; // 1
    r.stManual.u8strength = HI_U8(strength);
    return r;
}

// 0: the levels as read (power-on).
ISP_BLACK_LEVEL_S expected_black(int level)
{
    ISP_BLACK_LEVEL_S r = power_on_record<ISP_BLACK_LEVEL_S>(SIM_REC_BLACK_LEVEL);
    for (int i = 0; i < 4 && level != 0; ++i)
        r.au16BlackLevel[i] = HI_U16(level);
    return r;
}

ISP_GAMMA_ATTR_S expected_gamma(const uint32_t curve[257])
{
    ISP_GAMMA_ATTR_S r = power_on_record<ISP_GAMMA_ATTR_S>(SIM_REC_GAMMA_ATTR);
    r.bEnable = HI_TRUE;
    r.enCurveType = ISP_GAMMA_CURVE_USER_DEFINE; // 2
    for (int i = 0; i < 257; ++i)
        r.u16Table[i] = HI_U16(curve[i]);
    return r;
}

// Distinct values in the fields the backlight step writes, so that its write shows.
void seed_exposure()
{
    ISP_EXPOSURE_ATTR_S exp = power_on_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR);
    exp.stAuto.enAEStrategyMode = AE_EXP_HIGHLIGHT_PRIOR;
    exp.stAuto.u16HistRatioSlope = 1000;
    exp.stAuto.u8MaxHistOffset = 7;
    sim_mpp_write(SIM_REC_EXPOSURE_ATTR, &exp);
}

// The seeded exposure record with the strategy row (mode, slope, offset) applied.
ISP_EXPOSURE_ATTR_S expected_exposure(int mode, int slope, int offset)
{
    ISP_EXPOSURE_ATTR_S r = power_on_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR);
    r.stAuto.enAEStrategyMode = ISP_AE_STRATEGY_E(mode);
    r.stAuto.u16HistRatioSlope = HI_U16(slope);
    r.stAuto.u8MaxHistOffset = HI_U8(offset);
    return r;
}

// The record written by the last call of `set_call`.
template <typename T> T written_by(const char *set_call)
{
    long i = last_call_of(set_call);
    EXPECT_GE(i, 0) << "no " << set_call;
    return i < 0 ? T{} : logged_record<T>(size_t(i));
}

// Whether the last `set_call` wrote exactly `want`, byte for byte.
template <typename T> testing::AssertionResult wrote(const char *set_call, const T &want)
{
    T got = written_by<T>(set_call);
    return same_bytes(&got, &want, sizeof(T)) << " (" << set_call << ")";
}

#define EXPECT_WRITTEN(T, set_call, expected) EXPECT_TRUE(wrote<T>(set_call, expected))

class NightRefresh : public ::testing::Test {
protected:
    void SetUp() override
    {
        sim_mpp_reset();
        sim_host_reset();
    }
};

} // namespace

// ---- the full refresh at G = 1, 12, 24, 48, 57, 62, expectations worked out by hand -----------------

namespace {

struct NightCase {
    int32_t G, L;
    Nr nr;
    int drc, defog;
    int black;      // 63, 73, or 0 for "as read"
    bool high_gain; // g_gamma_table_night_highgain, else g_gamma_table_night
};

// Formula (Part 3.1): T[L] + floor((T[L+1] - T[L]) * (G - 2^L) / 2^L); night tables of Part 2.2.
const NightCase kNightCases[] = {
    // G = 1, L = 0: every field takes entry 0. DRC gNightDRCStrength[0] = 30, defog gNightDefog[0] = 80.
    {1, 0, {190, 70, 160, 50, 190, 160, 70, 50, 110, 110, 110, 110, 2, 0, 130, 130, 32, 32, 9, 9, 196, 16, 16, 196},
     30, 80, 63, false},
    // G = 12, L = 3: (12 - 8) / 8 = 4/8.
    //   SBS0, SDS0: 208 + floor(22 * 4 / 8) = 219;  SBS1, SDS2: 75 + floor(5 * 4 / 8) = 75 + 2 = 77
    //   SBS2, SDS1: 180 + floor(26 * 4 / 8) = 193;  SBS3, SDS3: 70 + floor(10 * 4 / 8) = 75
    //   STH: 120 + floor(6 * 4 / 8) = 123;  MDP 2;  Pro3 0;  MATH 136 -> 136: 136
    //   MDDZ: 64 + floor(36 * 4 / 8) = 82;  TFS 10;  SFC 255;  TFC, TPC 32;  TRC 255
    //   DRC: 30 + floor(-5 * 4 / 8) = 30 + floor(-2.5) = 27;  defog: 110 + floor(10 * 4 / 8) = 115
    {12, 3,
     {219, 77, 193, 75, 219, 193, 77, 75, 123, 123, 123, 123, 2, 0, 136, 136, 82, 82, 10, 10, 255, 32, 32, 255},
     27, 115, 63, false},
    // G = 24, L = 4: 8/16.
    //   SBS0, SDS0: 230 + floor(10 * 8 / 16) = 235;  SBS1, SDS2: 80 + 0 = 80;  SBS2, SDS1: 206 + 0 = 206
    //   SBS3, SDS3: 80 + 0 = 80;  STH: 126 + floor(4 * 8 / 16) = 128;  MATH: 136 + floor(2 * 8 / 16) = 137
    //   MDDZ: 100 + floor(20 * 8 / 16) = 110;  TFS 10;  SFC 255;  TFC, TPC 32;  TRC 255
    //   DRC: 25 -> 25: 25;  defog: 120 -> 120: 120
    {24, 4,
     {235, 80, 206, 80, 235, 206, 80, 80, 128, 128, 128, 128, 2, 0, 137, 137, 110, 110, 10, 10, 255, 32, 32, 255},
     25, 120, 63, false},
    // G = 48, L = 5: 16/32; the high-gain curve from 33 on.
    //   SBS0: 240 + floor(5 * 16 / 32) = 242;  SBS1: 80 + floor(20 * 16 / 32) = 90
    //   SBS2: 206 + floor(15 * 16 / 32) = 213;  SBS3: 80 + floor(40 * 16 / 32) = 100
    //   STH: 130 + floor(2 * 16 / 32) = 131;  MATH: 138 + floor(3 * 16 / 32) = 139
    //   MDDZ: 120 + floor(10 * 16 / 32) = 125;  TFS: 10 + floor(1 * 16 / 32) = 10;  SFC 255;  TFC 32;  TRC 255
    //   DRC 25 -> 25: 25;  defog 120 -> 120: 120
    {48, 5,
     {242, 90, 213, 100, 242, 213, 90, 100, 131, 131, 131, 131, 2, 0, 139, 139, 125, 125, 10, 10, 255, 32, 32, 255},
     25, 120, 63, true},
    // G = 57, L = 5: 25/32.
    //   SBS0: 240 + floor(125 / 32) = 243;  SBS1: 80 + floor(500 / 32) = 95;  SBS2: 206 + floor(375 / 32) = 217
    //   SBS3: 80 + floor(1000 / 32) = 111;  STH: 130 + floor(50 / 32) = 131;  MATH: 138 + floor(75 / 32) = 140
    //   MDDZ: 120 + floor(250 / 32) = 127;  TFS: 10 + floor(25 / 32) = 10
    //   DRC 25;  defog 120;  black level as read
    {57, 5,
     {243, 95, 217, 111, 243, 217, 95, 111, 131, 131, 131, 131, 2, 0, 140, 140, 127, 127, 10, 10, 255, 32, 32, 255},
     25, 120, 0, true},
    // G = 62, L = 5: 30/32.
    //   SBS0: 240 + floor(150 / 32) = 244;  SBS1: 80 + floor(600 / 32) = 98;  SBS2: 206 + floor(450 / 32) = 220
    //   SBS3: 80 + floor(1200 / 32) = 117;  STH: 130 + floor(60 / 32) = 131;  MATH: 138 + floor(90 / 32) = 140
    //   MDDZ: 120 + floor(300 / 32) = 129;  TFS: 10 + floor(30 / 32) = 10
    //   DRC 25;  defog 120;  black level 73
    {62, 5,
     {244, 98, 220, 117, 244, 220, 98, 117, 131, 131, 131, 131, 2, 0, 140, 140, 129, 129, 10, 10, 255, 32, 32, 255},
     25, 120, 73, true},
};

void PrintTo(const NightCase &c, std::ostream *os)
{
    *os << "G=" << c.G << " L=" << c.L;
}

class NightRefreshSequence : public ::testing::TestWithParam<std::tuple<NightCase, bool>> {
protected:
    void SetUp() override
    {
        sim_mpp_reset();
        sim_host_reset();
    }
};

} // namespace

TEST_P(NightRefreshSequence, CallsAndRecordsMatchTheHandComputedValues)
{
    const NightCase &c = std::get<0>(GetParam());
    const bool blc = std::get<1>(GetParam());
    ASSERT_EQ(level_of(c.G), c.L);
    load_other_night_curve(c.G);
    seed_exposure();
    sim_host_set_field(SYSINFO_u8BlcEnable, blc ? 1 : 0);
    sim_host_set_field(SYSINFO_u8BlcLevel, 2);

    Outcome run = night_refresh(c.G, c.L);

    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(platform_calls(), blc ? kFullPath : without(kFullPath, kExposureCalls));
    for (size_t i = 0; i < sim_mpp_log_count(); ++i) {
        EXPECT_EQ(sim_mpp_log_at(i)->dev, 0) << i;
        EXPECT_EQ(sim_mpp_log_at(i)->result, HI_SUCCESS) << i;
    }
    EXPECT_EQ(run.out, black_level_lines(c.G, c.black));
    EXPECT_TRUE(host_log_texts().empty());

    EXPECT_WRITTEN(VPSS_GRP_NRS_PARAM_S, "HI_MPI_VPSS_SetGrpNRSParam", expected_nrs(c.nr));
    EXPECT_WRITTEN(ISP_DRC_ATTR_S, "HI_MPI_ISP_SetDRCAttr", expected_drc(c.drc));
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr",
                   expected_gamma(c.high_gain ? g_gamma_table_night_highgain : g_gamma_table_night));
    EXPECT_WRITTEN(ISP_DEFOG_ATTR_S, "HI_MPI_ISP_SetDeFogAttr", expected_defog(c.defog));
    EXPECT_WRITTEN(ISP_BLACK_LEVEL_S, "HI_MPI_ISP_SetBlackLevelAttr", expected_black(c.black));
    if (blc) { // strategy row 2: mode 1, slope 256, offset 255
        EXPECT_WRITTEN(ISP_EXPOSURE_ATTR_S, "HI_MPI_ISP_SetExposureAttr", expected_exposure(1, 256, 255));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Gains, NightRefreshSequence, ::testing::Combine(::testing::ValuesIn(kNightCases), ::testing::Bool()),
    [](const ::testing::TestParamInfo<std::tuple<NightCase, bool>> &pi) {
        return "G" + std::to_string(std::get<0>(pi.param).G) + (std::get<1>(pi.param) ? "_BlcOn" : "_BlcOff");
    });

// ---- backlight-compensation strategy table (step 8), rows 0 to 3 -------------------------------------

namespace {

struct StrategyRow {
    int level;
    int mode, slope, offset; // expected; level 3 and above: the seeded 0, 1000, 7 unchanged
};

const StrategyRow kStrategyRows[] = {
    {0, 1, 32, 64}, {1, 1, 144, 128}, {2, 1, 256, 255}, {3, 0, 1000, 7}, {200, 0, 1000, 7},
};

void PrintTo(const StrategyRow &row, std::ostream *os)
{
    *os << "u8BlcLevel " << row.level;
}

class NightRefreshStrategy : public ::testing::TestWithParam<StrategyRow> {
protected:
    void SetUp() override
    {
        sim_mpp_reset();
        sim_host_reset();
    }
};

} // namespace

TEST_P(NightRefreshStrategy, BlcLevelSelectsItsRow)
{
    const StrategyRow &row = GetParam();
    seed_exposure();
    ISP_EXPOSURE_ATTR_S seeded = platform_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR);
    sim_host_set_field(SYSINFO_u8BlcEnable, 1);
    sim_host_set_field(SYSINFO_u8BlcLevel, uint8_t(row.level));
    ASSERT_EQ(night_refresh(24).result, 0);
    EXPECT_EQ(platform_calls(sim_mpp_log_count() - 2),
              (Calls{"HI_MPI_ISP_GetExposureAttr", "HI_MPI_ISP_SetExposureAttr"}));
    if (row.level >= 3) {
        EXPECT_WRITTEN(ISP_EXPOSURE_ATTR_S, "HI_MPI_ISP_SetExposureAttr", seeded);
    } else {
        EXPECT_WRITTEN(ISP_EXPOSURE_ATTR_S, "HI_MPI_ISP_SetExposureAttr",
                       expected_exposure(row.mode, row.slope, row.offset));
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, NightRefreshStrategy, ::testing::ValuesIn(kStrategyRows),
                         [](const ::testing::TestParamInfo<StrategyRow> &pi) {
                             return "BlcLevel" + std::to_string(pi.param.level);
                         });

// ---- edge cases of Part 3.3 ---------------------------------------------------------------------------

TEST_F(NightRefresh, Gain32LoadsTheNightCurve)
{
    load_other_night_curve(32);
    ASSERT_EQ(night_refresh(32).result, 0);
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr", expected_gamma(g_gamma_table_night));
}

TEST_F(NightRefresh, Gain33LoadsTheHighGainCurve)
{
    load_other_night_curve(33);
    ASSERT_EQ(night_refresh(33).result, 0);
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr", expected_gamma(g_gamma_table_night_highgain));
}

TEST_F(NightRefresh, Gain54LoadsBlackLevel63)
{
    Outcome run = night_refresh(54);
    ASSERT_EQ(run.result, 0);
    EXPECT_EQ(run.out, "SYSTEM 54 !!!\n"
                       "BlackLevelTable 63 = 63 !!!\n"
                       "BlackLevelTable 63 = 63 !!!\n"
                       "BlackLevelTable 63 = 63 !!!\n"
                       "BlackLevelTable 63 = 63 !!!\n");
    EXPECT_WRITTEN(ISP_BLACK_LEVEL_S, "HI_MPI_ISP_SetBlackLevelAttr", expected_black(63));
}

TEST_F(NightRefresh, Gain55To60KeepsTheBlackLevelAsRead)
{
    for (int32_t G = 55; G <= 60; ++G) {
        Outcome run = night_refresh(G);
        ASSERT_EQ(run.result, 0);
        EXPECT_EQ(run.out, "SYSTEM " + std::to_string(G) + " !!!\n");
        EXPECT_WRITTEN(ISP_BLACK_LEVEL_S, "HI_MPI_ISP_SetBlackLevelAttr", expected_black(0)) << G;
    }
    ASSERT_EQ(night_refresh(54).result, 0); // the band keeps whichever table was written last
    ASSERT_EQ(night_refresh(59).result, 0);
    EXPECT_WRITTEN(ISP_BLACK_LEVEL_S, "HI_MPI_ISP_SetBlackLevelAttr", expected_black(63));
}

TEST_F(NightRefresh, Gain61LoadsBlackLevel73)
{
    Outcome run = night_refresh(61);
    ASSERT_EQ(run.result, 0);
    EXPECT_EQ(run.out, "SYSTEM 61 !!!\n"
                       "BlackLevelTable_60 73 = 73 !!!\n"
                       "BlackLevelTable_60 73 = 73 !!!\n"
                       "BlackLevelTable_60 73 = 73 !!!\n"
                       "BlackLevelTable_60 73 = 73 !!!\n");
    EXPECT_WRITTEN(ISP_BLACK_LEVEL_S, "HI_MPI_ISP_SetBlackLevelAttr", expected_black(73));
}

// Needs the load-time mark (-1), so a process of its own (as CTest runs every test).
TEST_F(NightRefresh, FirstRefreshWithGainOfAtLeast1AlwaysLoadsACurve)
{
    if (g_night_refreshes != 0)
        GTEST_SKIP() << "needs a fresh process: run it alone or through CTest";
    ASSERT_EQ(night_refresh(0, 0).result, 0); // G below 1: no gamma step, the mark stays -1
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), 0u);
    ASSERT_EQ(night_refresh(40).result, 0);
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr", expected_gamma(g_gamma_table_night_highgain));
}

TEST_F(NightRefresh, TwoRefreshesInTheSameGammaBandMakeNoSecondGammaCall)
{
    load_other_night_curve(33);
    ASSERT_EQ(night_refresh(33).result, 0);
    size_t first = sim_mpp_log_count();
    ASSERT_EQ(night_refresh(62).result, 0);
    // u8BlcEnable is 0: no exposure calls either
    EXPECT_EQ(platform_calls(first), without(without(kFullPath, kGammaCalls), kExposureCalls));
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_GetGammaAttr"), 1u);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), 1u);
}

TEST_F(NightRefresh, CrossingThe32To33BoundaryLoadsTheOtherCurve)
{
    load_other_night_curve(32);
    ASSERT_EQ(night_refresh(32).result, 0);
    ASSERT_EQ(night_refresh(33).result, 0);
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr", expected_gamma(g_gamma_table_night_highgain));
    ASSERT_EQ(night_refresh(32).result, 0);
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr", expected_gamma(g_gamma_table_night));
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), 3u);
}

// ISP_SetParamNight (Part 2.4) loads g_gamma_table_night into the platform's gamma attribute without
// touching s32NightGammaMark; it is not written yet, so the test puts that curve in place itself.
TEST_F(NightRefresh, ComparesOnlyWithItsOwnMarkAfterTheProfileLoadedTheNightCurve)
{
    load_other_night_curve(40);
    ASSERT_EQ(night_refresh(40).result, 0); // mark 1
    ISP_GAMMA_ATTR_S profile_curve = expected_gamma(g_gamma_table_night);
    sim_mpp_write(SIM_REC_GAMMA_ATTR, &profile_curve);

    size_t before = sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr");
    ASSERT_EQ(night_refresh(50).result, 0);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_GetGammaAttr"), before);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), before);
    ISP_GAMMA_ATTR_S now = platform_record<ISP_GAMMA_ATTR_S>(SIM_REC_GAMMA_ATTR);
    EXPECT_TRUE(same_bytes(&now, &profile_curve, sizeof now)); // the profile curve stays

    ASSERT_EQ(night_refresh(32).result, 0); // down to 32 or below ...
    ASSERT_EQ(night_refresh(33).result, 0); // ... and up again: the high-gain curve returns
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), before + 2);
    now = platform_record<ISP_GAMMA_ATTR_S>(SIM_REC_GAMMA_ATTR);
    ISP_GAMMA_ATTR_S high = expected_gamma(g_gamma_table_night_highgain);
    EXPECT_TRUE(same_bytes(&now, &high, sizeof now));
}

// Each refresh keeps its own mark: a day refresh in between changes nothing for the night.
TEST_F(NightRefresh, DayRefreshDoesNotTouchTheNightMark)
{
    load_other_night_curve(24);
    ASSERT_EQ(night_refresh(24).result, 0); // night mark 0
    {
        StdoutCapture quiet;
        ASSERT_EQ(ISP_SetParamDayRefresh(24, 4), 0);
        ASSERT_EQ(ISP_SetParamDayRefresh(57, 5), 0);
    }
    size_t before = sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr");
    ASSERT_EQ(night_refresh(24).result, 0);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), before);
}

// State and lifecycle: the mark is set before the set call, so a failed set is not retried in the band.
TEST_F(NightRefresh, FailedGammaSetIsNotRetriedUntilTheBandChanges)
{
    load_other_night_curve(24);
    sim_mpp_fail("HI_MPI_ISP_SetGammaAttr", 1, 1, HI_ERR_ISP_NOT_INIT);
    EXPECT_EQ(night_refresh(24).result, -1);
    EXPECT_EQ(host_log_texts(), std::vector<std::string>{"HI_MPI_ISP_SetGammaAttr failed!!!\n"});
    EXPECT_EQ(night_refresh(30).result, 0);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), 1u);
    EXPECT_EQ(night_refresh(33).result, 0);
    EXPECT_EQ(night_refresh(30).result, 0);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), 3u);
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr", expected_gamma(g_gamma_table_night));
}

// Step 5: "when G is below 1 this step does nothing" (docs/decisions.md: such a G is not refused).
TEST_F(NightRefresh, GainBelow1SkipsTheGammaStep)
{
    load_other_night_curve(24);
    sim_host_set_field(SYSINFO_u8BlcEnable, 1);
    for (int32_t G : {0, -5}) {
        size_t first = sim_mpp_log_count();
        Outcome run = night_refresh(G, 0);
        EXPECT_EQ(run.result, 0) << G;
        EXPECT_EQ(platform_calls(first), without(kFullPath, kGammaCalls)) << G;
        EXPECT_EQ(run.out, black_level_lines(G, 63)) << G; // G <= 54
    }
}

TEST_F(NightRefresh, WdrLevelNonZeroMakesNoDrcCall)
{
    load_other_night_curve(24);
    sim_host_set_field(SYSINFO_u8WdrLevel, 2);
    sim_host_set_field(SYSINFO_u8BlcEnable, 1);
    ASSERT_EQ(night_refresh(24).result, 0);
    EXPECT_EQ(platform_calls(), without(kFullPath, kDrcCalls));
}

TEST_F(NightRefresh, SlInhibitionNonZeroMakesNoDrcCall)
{
    load_other_night_curve(24);
    sim_host_set_field(SYSINFO_u8SlInhibitionEnable, 1);
    ASSERT_EQ(night_refresh(24).result, 0);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_GetDRCAttr"), 0u);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetDRCAttr"), 0u);
}

TEST_F(NightRefresh, BlcEnable0ReturnsRightAfterTheBlackLevel)
{
    load_other_night_curve(24);
    sim_host_set_field(SYSINFO_u8BlcEnable, 0);
    sim_host_set_field(SYSINFO_u8BlcLevel, 1);
    ASSERT_EQ(night_refresh(24).result, 0);
    EXPECT_EQ(platform_calls(), without(kFullPath, kExposureCalls));
    EXPECT_EQ(platform_calls().back(), "HI_MPI_ISP_SetBlackLevelAttr");
}

TEST_F(NightRefresh, SlInhibitionNonZeroReturnsRightAfterTheBlackLevel)
{
    load_other_night_curve(24);
    sim_host_set_field(SYSINFO_u8BlcEnable, 1);
    sim_host_set_field(SYSINFO_u8SlInhibitionEnable, 1);
    ASSERT_EQ(night_refresh(24).result, 0);
    EXPECT_EQ(platform_calls(), without(without(kFullPath, kExposureCalls), kDrcCalls));
}

TEST_F(NightRefresh, DefogMode1WritesTheDefogAttributeBackUnchanged)
{
    ISP_DEFOG_ATTR_S user = power_on_record<ISP_DEFOG_ATTR_S>(SIM_REC_DEFOG_ATTR);
    user.bEnable = HI_TRUE;
    user.enOpType = OP_TYPE_MANUAL;
    user.stManual.u8strength = 33;
    sim_mpp_write(SIM_REC_DEFOG_ATTR, &user);
    sim_host_set_field(SYSINFO_u8DefogMode, 1);
    ASSERT_EQ(night_refresh(12).result, 0);
    EXPECT_GE(last_call_of("HI_MPI_ISP_GetDeFogAttr"), 0);
    EXPECT_WRITTEN(ISP_DEFOG_ATTR_S, "HI_MPI_ISP_SetDeFogAttr", user);
}

TEST_F(NightRefresh, NoWhiteBalanceCall)
{
    sim_host_set_field(SYSINFO_u8BlcEnable, 1);
    ASSERT_EQ(night_refresh(24).result, 0);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_QueryWBInfo"), 0u);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_GetWBAttr"), 0u);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetWBAttr"), 0u);
}

// ---- step 2: the noise-reduction mode, read at every entry ----------------------------------------

TEST_F(NightRefresh, DnrModeIsReadAtEveryEntry)
{
    VPSS_GRP_NRS_PARAM_S user = power_on_record<VPSS_GRP_NRS_PARAM_S>(SIM_REC_VPSS_NRS_PARAM);
    user.stNRSParam_V2.SBS3 = 201, user.stNRSParam_V2.SDS3 = 202;
    user.stNRSParam_V2.MATH1 = 1203, user.stNRSParam_V2.MATH2 = 1204;
    const Nr g48 = kNightCases[3].nr;
    ASSERT_EQ(kNightCases[3].G, 48);
    for (int mode : {3, 1, 2, 0}) {
        sim_mpp_write(SIM_REC_VPSS_NRS_PARAM, &user);
        sim_host_set_field(SYSINFO_u8DnrMode, uint8_t(mode));
        ASSERT_EQ(night_refresh(48).result, 0);
        VPSS_GRP_NRS_PARAM_S want = expected_nrs(g48, mode);
        if (mode == 1 || mode == 3)
            want.stNRSParam_V2.SBS3 = 201, want.stNRSParam_V2.SDS3 = 202;
        if (mode == 2 || mode == 3)
            want.stNRSParam_V2.MATH1 = 1203, want.stNRSParam_V2.MATH2 = 1204;
        EXPECT_WRITTEN(VPSS_GRP_NRS_PARAM_S, "HI_MPI_VPSS_SetGrpNRSParam", want) << "mode " << mode;
    }
}

// ---- refusals: no settings record, a gain level outside 0..10 (docs/decisions.md) ----------------------

TEST_F(NightRefresh, NoSettingsRecordPrintsAndReturnsMinusOneWithNoPlatformCall)
{
    sim_host_sysinfo_null(1);
    Outcome run = night_refresh(24);
    EXPECT_EQ(run.result, -1);
    EXPECT_EQ(run.out, "GetSysInfo failed is NULL\n");
    EXPECT_EQ(sim_mpp_log_count(), 0u);
}

TEST_F(NightRefresh, LevelOutside0To10IsRefusedWithNoPlatformCall)
{
    for (int32_t L : {11, -1, 30, INT32_MIN}) {
        Outcome run = night_refresh(24, L);
        EXPECT_EQ(run.result, -1);
        EXPECT_EQ(run.out, "ISP_SetParamNightRefresh: gain level " + std::to_string(L) +
                               " is outside 0..10, nothing refreshed\n");
    }
    EXPECT_EQ(sim_mpp_log_count(), 0u);
    EXPECT_EQ(night_refresh(2047, 10).result, 0); // L = 10 is the highest the tables allow
}

// ---- every G from 1 to 62 against an independent integer computation over the library's tables ------

namespace {

// T[L] + floor((T[L+1] - T[L]) * (G - 2^L) / 2^L), floor by quotient and remainder.
int interp_reference(const uint8_t *T, int G, int L)
{
    const int lo = 1 << L, num = (int(T[L + 1]) - int(T[L])) * (G - lo);
    int q = num / lo;
    if (num % lo != 0 && num < 0)
        --q;
    return int(T[L]) + q;
}

struct NrField {
    const char *name;
    const uint8_t *IspNrTables::*table;
    int (*read)(const NRS_PARAM_V2_S &);
};

#define NR_FIELD(f) {#f, &IspNrTables::f, [](const NRS_PARAM_V2_S &p) { return int(p.f); }}
const NrField kNrFields[] = {
    NR_FIELD(SBS0), NR_FIELD(SBS1), NR_FIELD(SBS2),  NR_FIELD(SBS3),  NR_FIELD(SDS0), NR_FIELD(SDS1),
    NR_FIELD(SDS2), NR_FIELD(SDS3), NR_FIELD(STH0),  NR_FIELD(STH1),  NR_FIELD(STH2), NR_FIELD(STH3),
    NR_FIELD(MDP),  NR_FIELD(Pro3), NR_FIELD(MATH1), NR_FIELD(MATH2), NR_FIELD(MDDZ1), NR_FIELD(MDDZ2),
    NR_FIELD(TFS1), NR_FIELD(TFS2), NR_FIELD(SFC),   NR_FIELD(TFC),   NR_FIELD(TPC),  NR_FIELD(TRC),
};
#undef NR_FIELD

} // namespace

TEST_F(NightRefresh, EveryGainFrom1To62MatchesTheIntegerFormula)
{
    load_other_night_curve(1);
    sim_host_set_field(SYSINFO_u8BlcEnable, 1);
    StdoutCapture capture;
    for (int G = 1; G <= 62; ++G) {
        const int L = level_of(G);
        ++g_night_refreshes;
        ASSERT_EQ(ISP_SetParamNightRefresh(G, L), 0) << G;
        const NRS_PARAM_V2_S p = written_by<VPSS_GRP_NRS_PARAM_S>("HI_MPI_VPSS_SetGrpNRSParam").stNRSParam_V2;
        for (const NrField &f : kNrFields)
            EXPECT_EQ(f.read(p), interp_reference(g_3dnr_tables_night.*f.table, G, L)) << f.name << " G=" << G;
        EXPECT_EQ(p.IES0, 0);
        EXPECT_EQ(written_by<ISP_DRC_ATTR_S>("HI_MPI_ISP_SetDRCAttr").stManual.u8Strength,
                  interp_reference(gNightDRCStrength, G, L))
            << G;
        EXPECT_EQ(written_by<ISP_DEFOG_ATTR_S>("HI_MPI_ISP_SetDeFogAttr").stManual.u8strength,
                  interp_reference(gNightDefog, G, L))
            << G;
        EXPECT_EQ(platform_record<ISP_GAMMA_ATTR_S>(SIM_REC_GAMMA_ATTR).u16Table[1],
                  G >= 33 ? g_gamma_table_night_highgain[1] : g_gamma_table_night[1])
            << G;
    }
}
