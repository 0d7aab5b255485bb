// Part 3.2: day refresh (with the day refresh tables of Part 3.4 and the interpolation of Part 3.1).
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <tuple>
#include <vector>

#include "isptune_test.h"

extern "C" {
#include "isptune.h"
#include "profiles/profiles.h"
#include "refresh/refresh.h"
}

namespace {

using Calls = std::vector<std::string>;

// Step order of Part 3.2, Interfaces (every block runs).
const Calls kFullPath = {
    "HI_MPI_VPSS_GetGrpNRSParam", "HI_MPI_VPSS_SetGrpNRSParam", "HI_MPI_ISP_GetDRCAttr",
    "HI_MPI_ISP_SetDRCAttr",      "HI_MPI_ISP_GetDeFogAttr",    "HI_MPI_ISP_SetDeFogAttr",
    "HI_MPI_ISP_GetBlackLevelAttr", "HI_MPI_ISP_SetBlackLevelAttr", "HI_MPI_ISP_GetGammaAttr",
    "HI_MPI_ISP_SetGammaAttr",    "HI_MPI_ISP_QueryWBInfo",     "HI_MPI_ISP_GetWBAttr",
    "HI_MPI_ISP_SetWBAttr",       "HI_MPI_ISP_GetExposureAttr", "HI_MPI_ISP_SetExposureAttr",
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

// Day refreshes run so far in this process (s32DayGammaMark is -1 only before the first).
int g_day_refreshes = 0;

Outcome day_refresh(int32_t G, int32_t L)
{
    ++g_day_refreshes;
    StdoutCapture capture;
    int32_t result = ISP_SetParamDayRefresh(G, L);
    return {result, capture.take()};
}

Outcome day_refresh(int32_t G)
{
    return day_refresh(G, level_of(G));
}

// CTest runs every test in a fresh process, where s32DayGammaMark is -1. So that a test that needs the
// gamma step also holds when the whole file runs in one process, this refreshes once in the other band
// and returns the platform and the host to power-on.
void load_other_day_curve(int32_t G)
{
    day_refresh(G >= 55 ? 24 : 57);
    sim_mpp_reset();
    sim_host_reset();
}

// What the black-level step prints (Part 3.2 step 6), typed from the spec.
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

// Distinct values in the fields the white-balance and backlight steps write, so that their writes show.
void seed_wb_and_exposure()
{
    ISP_WB_ATTR_S wb = power_on_record<ISP_WB_ATTR_S>(SIM_REC_WB_ATTR);
    wb.stAuto.u8RGStrength = 10;
    wb.stAuto.u8BGStrength = 20;
    sim_mpp_write(SIM_REC_WB_ATTR, &wb);
    ISP_EXPOSURE_ATTR_S exp = power_on_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR);
    exp.stAuto.enAEStrategyMode = AE_EXP_HIGHLIGHT_PRIOR;
    exp.stAuto.u16HistRatioSlope = 1000;
    exp.stAuto.u8MaxHistOffset = 7;
    sim_mpp_write(SIM_REC_EXPOSURE_ATTR, &exp);
}

ISP_WB_ATTR_S expected_wb()
{
    ISP_WB_ATTR_S r = power_on_record<ISP_WB_ATTR_S>(SIM_REC_WB_ATTR);
    r.stAuto.u8RGStrength = 128;
    r.stAuto.u8BGStrength = 128;
    return r;
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

class DayRefresh : public ::testing::Test {
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

struct DayCase {
    int32_t G, L;
    Nr nr;
    int drc, defog;
    int black;      // 64, 73, or 0 for "as read"
    bool high_gain; // g_gamma_table_day_highgain, else g_gamma_table_day
};

// Formula (Part 3.1): T[L] + floor((T[L+1] - T[L]) * (G - 2^L) / 2^L); tables of Parts 3.4 and 2.1.
const DayCase kDayCases[] = {
    // G = 1, L = 0: every field takes entry 0 (Part 3.4, edge cases). DRC gColorDRCStrength[0] = 15,
    // defog gColorDefog[0] = 130.
    {1, 0, {190, 40, 120, 50, 190, 120, 40, 50, 110, 110, 110, 110, 2, 1, 122, 122, 32, 32, 8, 8, 16, 10, 10, 16},
     15, 130, 64, false},
    // G = 12, L = 3: (12 - 8) / 8 = 1/2 of the step from L3 to L4.
    //   SBS0, SDS0 210 -> 210: 210;  SBS1, SDS2: 80 + floor(-20 * 4 / 8) = 70;  SBS2, SDS1 175 -> 175: 175
    //   SBS3, SDS3 60 -> 60: 60;  STH 116 + floor(4 * 4 / 8) = 118;  MDP 2;  Pro3 1;  MATH 126 -> 126: 126
    //   MDDZ 32;  TFS 9;  SFC 16;  TFC, TPC 10;  TRC 16
    //   DRC: 12 + floor(-12 * 4 / 8) = 6;  defog: 140 + floor(20 * 4 / 8) = 150
    {12, 3, {210, 70, 175, 60, 210, 175, 70, 60, 118, 118, 118, 118, 2, 1, 126, 126, 32, 32, 9, 9, 16, 10, 10, 16},
     6, 150, 64, false},
    // G = 24, L = 4: (24 - 16) / 16 = 8/16.
    //   SBS0, SDS0: 210 + floor(15 * 8 / 16) = 210 + 7 = 217
    //   SBS1, SDS2: 60 + floor(15 * 8 / 16) = 67 (Part 3.4 edge case)
    //   SBS2, SDS1: 175 + floor(1 * 8 / 16) = 175;  SBS3, SDS3: 60 + floor(10 * 8 / 16) = 65
    //   STH0..3: 120 + floor(5 * 8 / 16) = 122;  MDP 2;  Pro3 1;  MATH: 126 + floor(2 * 8 / 16) = 127
    //   MDDZ: 32 + 0 = 32;  TFS: 9 + 0 = 9;  SFC: 16 + floor(174 * 8 / 16) = 16 + 87 = 103
    //   TFC, TPC: 10 + 0 = 10;  TRC: 16 + floor(4 * 8 / 16) = 18
    //   DRC: 0 + floor(0) = 0;  defog: 160 + floor(0) = 160
    {24, 4, {217, 67, 175, 65, 217, 175, 67, 65, 122, 122, 122, 122, 2, 1, 127, 127, 32, 32, 9, 9, 103, 10, 10, 18},
     0, 160, 64, false},
    // G = 48, L = 5: (48 - 32) / 32 = 16/32.
    //   SBS0, SDS0: 225 + floor(6 * 16 / 32) = 228;  SBS1, SDS2: 75 + floor(145 * 16 / 32) = 75 + 72 = 147
    //   SBS2, SDS1: 176 + floor(4 * 16 / 32) = 178;  SBS3, SDS3: 70 + floor(15 * 16 / 32) = 70 + 7 = 77
    //   STH: 125 + floor(10 * 16 / 32) = 130;  MATH: 128 + 0 = 128;  MDDZ: 32 + floor(32 * 16 / 32) = 48
    //   TFS 9;  SFC: 190 + floor(65 * 16 / 32) = 190 + 32 = 222 (Part 3.4 edge case)
    //   TFC, TPC: 10 + floor(22 * 16 / 32) = 21;  TRC: 20 + floor(235 * 16 / 32) = 20 + 117 = 137
    //   DRC 0;  defog: 160 + floor(-10 * 16 / 32) = 155
    {48, 5, {228, 147, 178, 77, 228, 178, 147, 77, 130, 130, 130, 130, 2, 1, 128, 128, 48, 48, 9, 9, 222, 21, 21, 137},
     0, 155, 64, false},
    // G = 57, L = 5: (57 - 32) / 32 = 25/32.
    //   SBS0: 225 + floor(150 / 32) = 229;  SBS1: 75 + floor(3625 / 32) = 75 + 113 = 188
    //   SBS2: 176 + floor(100 / 32) = 179;  SBS3: 70 + floor(375 / 32) = 81;  STH: 125 + floor(250 / 32) = 132
    //   MATH 128;  MDDZ: 32 + floor(800 / 32) = 57;  TFS 9;  SFC: 190 + floor(1625 / 32) = 240
    //   TFC, TPC: 10 + floor(550 / 32) = 27;  TRC: 20 + floor(5875 / 32) = 20 + 183 = 203
    //   DRC 0;  defog: 160 + floor(-250 / 32) = 160 - 8 = 152;  black level as read; high-gain curve
    {57, 5, {229, 188, 179, 81, 229, 179, 188, 81, 132, 132, 132, 132, 2, 1, 128, 128, 57, 57, 9, 9, 240, 27, 27, 203},
     0, 152, 0, true},
    // G = 62, L = 5: 30/32 (Part 3.1: T[5] + floor((T[6] - T[5]) * 30 / 32)).
    //   SBS0: 225 + floor(180 / 32) = 230;  SBS1: 75 + floor(4350 / 32) = 75 + 135 = 210
    //   SBS2: 176 + floor(120 / 32) = 179;  SBS3: 70 + floor(450 / 32) = 84;  STH: 125 + floor(300 / 32) = 134
    //   MATH 128;  MDDZ: 32 + 30 = 62;  TFS 9;  SFC: 190 + floor(1950 / 32) = 250
    //   TFC, TPC: 10 + floor(660 / 32) = 30;  TRC: 20 + floor(7050 / 32) = 240
    //   DRC 0;  defog: 160 + floor(-300 / 32) = 160 - 10 = 150;  black level 73; high-gain curve
    {62, 5, {230, 210, 179, 84, 230, 179, 210, 84, 134, 134, 134, 134, 2, 1, 128, 128, 62, 62, 9, 9, 250, 30, 30, 240},
     0, 150, 73, true},
};

void PrintTo(const DayCase &c, std::ostream *os)
{
    *os << "G=" << c.G << " L=" << c.L;
}

class DayRefreshSequence : public ::testing::TestWithParam<std::tuple<DayCase, bool>> {
protected:
    void SetUp() override
    {
        sim_mpp_reset();
        sim_host_reset();
    }
};

} // namespace

TEST_P(DayRefreshSequence, CallsAndRecordsMatchTheHandComputedValues)
{
    const DayCase &c = std::get<0>(GetParam());
    const bool blc = std::get<1>(GetParam());
    ASSERT_EQ(level_of(c.G), c.L);
    load_other_day_curve(c.G);
    seed_wb_and_exposure();
    sim_host_set_field(SYSINFO_u8BlcEnable, blc ? 1 : 0);
    sim_host_set_field(SYSINFO_u8BlcLevel, 1);

    Outcome run = day_refresh(c.G, c.L);

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
    EXPECT_WRITTEN(ISP_DEFOG_ATTR_S, "HI_MPI_ISP_SetDeFogAttr", expected_defog(c.defog));
    EXPECT_WRITTEN(ISP_BLACK_LEVEL_S, "HI_MPI_ISP_SetBlackLevelAttr", expected_black(c.black));
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr",
                   expected_gamma(c.high_gain ? g_gamma_table_day_highgain : g_gamma_table_day));
    EXPECT_WRITTEN(ISP_WB_ATTR_S, "HI_MPI_ISP_SetWBAttr", expected_wb());
    if (blc) { // strategy row 1: mode 1, slope 144, offset 128
        EXPECT_WRITTEN(ISP_EXPOSURE_ATTR_S, "HI_MPI_ISP_SetExposureAttr", expected_exposure(1, 144, 128));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Gains, DayRefreshSequence, ::testing::Combine(::testing::ValuesIn(kDayCases), ::testing::Bool()),
    [](const ::testing::TestParamInfo<std::tuple<DayCase, bool>> &pi) {
        return "G" + std::to_string(std::get<0>(pi.param).G) + (std::get<1>(pi.param) ? "_BlcOn" : "_BlcOff");
    });

// ---- backlight-compensation strategy table (step 9), rows 0 to 3 -------------------------------------

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

class DayRefreshStrategy : public ::testing::TestWithParam<StrategyRow> {
protected:
    void SetUp() override
    {
        sim_mpp_reset();
        sim_host_reset();
    }
};

} // namespace

TEST_P(DayRefreshStrategy, BlcLevelSelectsItsRow)
{
    const StrategyRow &row = GetParam();
    seed_wb_and_exposure();
    sim_host_set_field(SYSINFO_u8BlcEnable, 1);
    sim_host_set_field(SYSINFO_u8BlcLevel, uint8_t(row.level));
    ASSERT_EQ(day_refresh(24).result, 0);
    EXPECT_EQ(platform_calls(sim_mpp_log_count() - 2),
              (Calls{"HI_MPI_ISP_GetExposureAttr", "HI_MPI_ISP_SetExposureAttr"}));
    EXPECT_WRITTEN(ISP_EXPOSURE_ATTR_S, "HI_MPI_ISP_SetExposureAttr",
                   expected_exposure(row.mode, row.slope, row.offset));
}

INSTANTIATE_TEST_SUITE_P(Rows, DayRefreshStrategy, ::testing::ValuesIn(kStrategyRows),
                         [](const ::testing::TestParamInfo<StrategyRow> &pi) {
                             return "BlcLevel" + std::to_string(pi.param.level);
                         });

// ---- edge cases of Part 3.2 ---------------------------------------------------------------------------

TEST_F(DayRefresh, Gain54LoadsDayBlackLevelAndDayCurve)
{
    load_other_day_curve(54);
    Outcome run = day_refresh(54);
    ASSERT_EQ(run.result, 0);
    EXPECT_EQ(run.out, "SYSTEM 54 !!!\n"
                       "BlackLevelTable 64 = 64 !!!\n"
                       "BlackLevelTable 64 = 64 !!!\n"
                       "BlackLevelTable 64 = 64 !!!\n"
                       "BlackLevelTable 64 = 64 !!!\n");
    EXPECT_WRITTEN(ISP_BLACK_LEVEL_S, "HI_MPI_ISP_SetBlackLevelAttr", expected_black(64));
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr", expected_gamma(g_gamma_table_day));
}

TEST_F(DayRefresh, Gain55KeepsBlackLevelAsReadAndLoadsHighGainCurve)
{
    load_other_day_curve(55);
    Outcome run = day_refresh(55);
    ASSERT_EQ(run.result, 0);
    EXPECT_EQ(run.out, "SYSTEM 55 !!!\n");
    EXPECT_WRITTEN(ISP_BLACK_LEVEL_S, "HI_MPI_ISP_SetBlackLevelAttr", expected_black(0));
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr", expected_gamma(g_gamma_table_day_highgain));
}

TEST_F(DayRefresh, Gain60KeepsBlackLevelAsRead)
{
    Outcome run = day_refresh(60);
    ASSERT_EQ(run.result, 0);
    EXPECT_EQ(run.out, "SYSTEM 60 !!!\n");
    EXPECT_WRITTEN(ISP_BLACK_LEVEL_S, "HI_MPI_ISP_SetBlackLevelAttr", expected_black(0));
}

TEST_F(DayRefresh, Gain61LoadsBlackLevel73)
{
    Outcome run = day_refresh(61);
    ASSERT_EQ(run.result, 0);
    EXPECT_EQ(run.out, "SYSTEM 61 !!!\n"
                       "BlackLevelTable_60 73 = 73 !!!\n"
                       "BlackLevelTable_60 73 = 73 !!!\n"
                       "BlackLevelTable_60 73 = 73 !!!\n"
                       "BlackLevelTable_60 73 = 73 !!!\n");
    EXPECT_WRITTEN(ISP_BLACK_LEVEL_S, "HI_MPI_ISP_SetBlackLevelAttr", expected_black(73));
}

// "55 <= G <= 60: this band keeps whichever table was written last"; at G = 57 the high-gain curve is in
// force while the black level is whatever was written last.
TEST_F(DayRefresh, Gain55To60KeepsWhicheverBlackLevelWasWrittenLast)
{
    ASSERT_EQ(day_refresh(54).result, 0);
    ASSERT_EQ(day_refresh(57).result, 0);
    EXPECT_WRITTEN(ISP_BLACK_LEVEL_S, "HI_MPI_ISP_SetBlackLevelAttr", expected_black(64));
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr", expected_gamma(g_gamma_table_day_highgain));
    ASSERT_EQ(day_refresh(61).result, 0);
    ASSERT_EQ(day_refresh(58).result, 0);
    EXPECT_WRITTEN(ISP_BLACK_LEVEL_S, "HI_MPI_ISP_SetBlackLevelAttr", expected_black(73));
}

// Needs the load-time mark (-1), so a process of its own (as CTest runs every test).
TEST_F(DayRefresh, FirstRefreshAlwaysLoadsACurve)
{
    if (g_day_refreshes != 0)
        GTEST_SKIP() << "needs a fresh process: run it alone or through CTest";
    ASSERT_EQ(day_refresh(57).result, 0);
    EXPECT_EQ(platform_calls(), without(kFullPath, kExposureCalls));
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr", expected_gamma(g_gamma_table_day_highgain));
}

TEST_F(DayRefresh, TwoRefreshesInTheSameGammaBandMakeNoSecondGammaCall)
{
    load_other_day_curve(10);
    ASSERT_EQ(day_refresh(10).result, 0);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), 1u);
    size_t first = sim_mpp_log_count();
    ASSERT_EQ(day_refresh(54).result, 0);
    // u8BlcEnable is 0: no exposure calls either
    EXPECT_EQ(platform_calls(first), without(without(kFullPath, kGammaCalls), kExposureCalls));
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_GetGammaAttr"), 1u);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), 1u);
}

TEST_F(DayRefresh, CrossingThe54To55BoundaryLoadsTheOtherCurve)
{
    load_other_day_curve(54);
    ASSERT_EQ(day_refresh(54).result, 0);
    ASSERT_EQ(day_refresh(55).result, 0);
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr", expected_gamma(g_gamma_table_day_highgain));
    ASSERT_EQ(day_refresh(54).result, 0);
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr", expected_gamma(g_gamma_table_day));
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), 3u);
}

// ISP_SetParamDay (Part 2.3) loads g_gamma_table_day into the platform's gamma attribute without touching
// s32DayGammaMark; it is not written yet, so the test puts that curve in place itself.
TEST_F(DayRefresh, ComparesOnlyWithItsOwnMarkAfterTheProfileLoadedTheDayCurve)
{
    load_other_day_curve(57);
    ASSERT_EQ(day_refresh(57).result, 0); // mark 1
    ISP_GAMMA_ATTR_S profile_curve = expected_gamma(g_gamma_table_day);
    sim_mpp_write(SIM_REC_GAMMA_ATTR, &profile_curve);

    size_t before = sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr");
    ASSERT_EQ(day_refresh(62).result, 0);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_GetGammaAttr"), before);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), before);
    ISP_GAMMA_ATTR_S now = platform_record<ISP_GAMMA_ATTR_S>(SIM_REC_GAMMA_ATTR);
    EXPECT_TRUE(same_bytes(&now, &profile_curve, sizeof now)); // the profile curve stays

    ASSERT_EQ(day_refresh(54).result, 0); // back to 54 or below ...
    ASSERT_EQ(day_refresh(55).result, 0); // ... and up again: the high-gain curve returns
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), before + 2);
    now = platform_record<ISP_GAMMA_ATTR_S>(SIM_REC_GAMMA_ATTR);
    ISP_GAMMA_ATTR_S high = expected_gamma(g_gamma_table_day_highgain);
    EXPECT_TRUE(same_bytes(&now, &high, sizeof now));
}

// State and lifecycle: the mark is set before the set call, so a failed set is not retried in the band.
TEST_F(DayRefresh, FailedGammaSetIsNotRetriedUntilTheBandChanges)
{
    load_other_day_curve(24);
    sim_mpp_fail("HI_MPI_ISP_SetGammaAttr", 1, 1, HI_ERR_ISP_NOT_INIT);
    EXPECT_EQ(day_refresh(24).result, -1);
    EXPECT_EQ(host_log_texts(), std::vector<std::string>{"HI_MPI_ISP_SetGammaAttr failed!!!\n"});
    EXPECT_EQ(day_refresh(30).result, 0);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), 1u);
    EXPECT_EQ(day_refresh(55).result, 0);
    EXPECT_EQ(day_refresh(30).result, 0);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), 3u);
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr", expected_gamma(g_gamma_table_day));
}

TEST_F(DayRefresh, WdrLevelNonZeroMakesNoDrcCall)
{
    load_other_day_curve(24);
    sim_host_set_field(SYSINFO_u8WdrLevel, 3);
    sim_host_set_field(SYSINFO_u8BlcEnable, 1);
    ASSERT_EQ(day_refresh(24).result, 0);
    EXPECT_EQ(platform_calls(), without(kFullPath, kDrcCalls));
}

TEST_F(DayRefresh, SlInhibitionNonZeroMakesNoDrcCall)
{
    load_other_day_curve(24);
    sim_host_set_field(SYSINFO_u8SlInhibitionEnable, 1);
    ASSERT_EQ(day_refresh(24).result, 0);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_GetDRCAttr"), 0u);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetDRCAttr"), 0u);
}

TEST_F(DayRefresh, BlcEnable0ReturnsRightAfterTheWhiteBalance)
{
    load_other_day_curve(24);
    sim_host_set_field(SYSINFO_u8BlcEnable, 0);
    sim_host_set_field(SYSINFO_u8BlcLevel, 1);
    ASSERT_EQ(day_refresh(24).result, 0);
    EXPECT_EQ(platform_calls(), without(kFullPath, kExposureCalls));
    EXPECT_EQ(platform_calls().back(), "HI_MPI_ISP_SetWBAttr");
}

TEST_F(DayRefresh, SlInhibitionNonZeroReturnsRightAfterTheWhiteBalance)
{
    load_other_day_curve(24);
    sim_host_set_field(SYSINFO_u8BlcEnable, 1);
    sim_host_set_field(SYSINFO_u8SlInhibitionEnable, 1);
    ASSERT_EQ(day_refresh(24).result, 0);
    EXPECT_EQ(platform_calls(), without(without(kFullPath, kExposureCalls), kDrcCalls));
}

TEST_F(DayRefresh, DefogMode1WritesTheDefogAttributeBackUnchanged)
{
    ISP_DEFOG_ATTR_S user = power_on_record<ISP_DEFOG_ATTR_S>(SIM_REC_DEFOG_ATTR);
    user.bEnable = HI_TRUE;
    user.enOpType = OP_TYPE_MANUAL;
    user.stManual.u8strength = 33;
    sim_mpp_write(SIM_REC_DEFOG_ATTR, &user);
    sim_host_set_field(SYSINFO_u8DefogMode, 1);
    ASSERT_EQ(day_refresh(24).result, 0);
    EXPECT_GE(last_call_of("HI_MPI_ISP_GetDeFogAttr"), 0);
    EXPECT_WRITTEN(ISP_DEFOG_ATTR_S, "HI_MPI_ISP_SetDeFogAttr", user);
}

TEST_F(DayRefresh, DefogMode0And2InterpolateTheStrength)
{
    for (uint8_t mode : {0, 2}) {
        sim_host_set_field(SYSINFO_u8DefogMode, mode);
        ASSERT_EQ(day_refresh(48).result, 0);
        // 160 + floor(-10 * 16 / 32) = 155
        EXPECT_WRITTEN(ISP_DEFOG_ATTR_S, "HI_MPI_ISP_SetDeFogAttr", expected_defog(155)) << int(mode);
    }
}

TEST_F(DayRefresh, BlcLevel3WritesTheExposureAttributeBackUnchanged)
{
    seed_wb_and_exposure();
    ISP_EXPOSURE_ATTR_S seeded = platform_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR);
    sim_host_set_field(SYSINFO_u8BlcEnable, 1);
    sim_host_set_field(SYSINFO_u8BlcLevel, 3);
    ASSERT_EQ(day_refresh(24).result, 0);
    EXPECT_EQ(platform_calls(sim_mpp_log_count() - 2),
              (Calls{"HI_MPI_ISP_GetExposureAttr", "HI_MPI_ISP_SetExposureAttr"}));
    EXPECT_WRITTEN(ISP_EXPOSURE_ATTR_S, "HI_MPI_ISP_SetExposureAttr", seeded);
}

TEST_F(DayRefresh, DefogGetFailureReturnsBeforeBlackLevelGammaWhiteBalanceAndExposure)
{
    load_other_day_curve(24);
    sim_host_set_field(SYSINFO_u8BlcEnable, 1);
    sim_mpp_fail("HI_MPI_ISP_GetDeFogAttr", 1, 1, HI_ERR_ISP_NOT_INIT);
    Outcome run = day_refresh(24);
    EXPECT_EQ(run.result, -1);
    EXPECT_EQ(run.out, "HI_MPI_ISP_GetDeFogAttr failed with 0xa01c8040\n");
    EXPECT_EQ(platform_calls(), (Calls{"HI_MPI_VPSS_GetGrpNRSParam", "HI_MPI_VPSS_SetGrpNRSParam",
                                       "HI_MPI_ISP_GetDRCAttr", "HI_MPI_ISP_SetDRCAttr",
                                       "HI_MPI_ISP_GetDeFogAttr"}));
}

// ---- Part 3.4 edge cases, through the day refresh ----------------------------------------------------

TEST_F(DayRefresh, Gain1WritesEntryZeroOfEveryDayTable)
{
    ASSERT_EQ(day_refresh(1, 0).result, 0);
    NRS_PARAM_V2_S p = written_by<VPSS_GRP_NRS_PARAM_S>("HI_MPI_VPSS_SetGrpNRSParam").stNRSParam_V2;
    EXPECT_EQ(p.SBS0, 190);
    EXPECT_EQ(p.SDS0, 190);
    EXPECT_EQ(p.SBS1, 40);
    EXPECT_EQ(p.SDS2, 40);
    EXPECT_EQ(p.SBS2, 120);
    EXPECT_EQ(p.SDS1, 120);
    EXPECT_EQ(p.STH0, 110);
    EXPECT_EQ(p.STH1, 110);
    EXPECT_EQ(p.STH2, 110);
    EXPECT_EQ(p.STH3, 110);
    EXPECT_EQ(p.MDP, 2);
    EXPECT_EQ(p.Pro3, 1);
    EXPECT_EQ(p.MDDZ1, 32);
    EXPECT_EQ(p.MDDZ2, 32);
    EXPECT_EQ(p.TFS1, 8);
    EXPECT_EQ(p.TFS2, 8);
    EXPECT_EQ(p.SFC, 16);
    EXPECT_EQ(p.TFC, 10);
    EXPECT_EQ(p.TPC, 10);
    EXPECT_EQ(p.TRC, 16);
    EXPECT_EQ(p.SBS3, 50); // u8DnrMode 0
    EXPECT_EQ(p.SDS3, 50);
    EXPECT_EQ(p.MATH1, 122);
    EXPECT_EQ(p.MATH2, 122);
}

TEST_F(DayRefresh, Gain48WritesSfc222AndTrc137)
{
    ASSERT_EQ(day_refresh(48, 5).result, 0);
    NRS_PARAM_V2_S p = written_by<VPSS_GRP_NRS_PARAM_S>("HI_MPI_VPSS_SetGrpNRSParam").stNRSParam_V2;
    EXPECT_EQ(p.SFC, 222); // 190 + floor(65 * 16 / 32)
    EXPECT_EQ(p.TRC, 137); // 20 + floor(235 * 16 / 32)
}

TEST_F(DayRefresh, Gain24WritesSbs1Of67)
{
    ASSERT_EQ(day_refresh(24, 4).result, 0);
    EXPECT_EQ(written_by<VPSS_GRP_NRS_PARAM_S>("HI_MPI_VPSS_SetGrpNRSParam").stNRSParam_V2.SBS1,
              67); // 60 + floor(15 * 8 / 16)
}

// ---- step 2: the noise-reduction mode, read at every entry ----------------------------------------

TEST_F(DayRefresh, DnrModeIsReadAtEveryEntry)
{
    VPSS_GRP_NRS_PARAM_S user = power_on_record<VPSS_GRP_NRS_PARAM_S>(SIM_REC_VPSS_NRS_PARAM);
    user.stNRSParam_V2.SBS3 = 201, user.stNRSParam_V2.SDS3 = 202;
    user.stNRSParam_V2.MATH1 = 1203, user.stNRSParam_V2.MATH2 = 1204;
    const Nr g24 = kDayCases[2].nr;
    ASSERT_EQ(kDayCases[2].G, 24);
    for (int mode : {3, 1, 2, 0}) {
        sim_mpp_write(SIM_REC_VPSS_NRS_PARAM, &user);
        sim_host_set_field(SYSINFO_u8DnrMode, uint8_t(mode));
        ASSERT_EQ(day_refresh(24).result, 0);
        VPSS_GRP_NRS_PARAM_S want = expected_nrs(g24, mode);
        if (mode == 1 || mode == 3)
            want.stNRSParam_V2.SBS3 = 201, want.stNRSParam_V2.SDS3 = 202;
        if (mode == 2 || mode == 3)
            want.stNRSParam_V2.MATH1 = 1203, want.stNRSParam_V2.MATH2 = 1204;
        EXPECT_WRITTEN(VPSS_GRP_NRS_PARAM_S, "HI_MPI_VPSS_SetGrpNRSParam", want) << "mode " << mode;
    }
}

// ---- refusals: no settings record, a gain level outside 0..10 (docs/decisions.md) ----------------------

TEST_F(DayRefresh, NoSettingsRecordPrintsAndReturnsMinusOneWithNoPlatformCall)
{
    sim_host_sysinfo_null(1);
    Outcome run = day_refresh(24);
    EXPECT_EQ(run.result, -1);
    EXPECT_EQ(run.out, "GetSysInfo failed is NULL\n");
    EXPECT_EQ(sim_mpp_log_count(), 0u);
}

TEST_F(DayRefresh, LevelOutside0To10IsRefusedWithNoPlatformCall)
{
    for (int32_t L : {11, -1, 30, INT32_MIN}) {
        Outcome run = day_refresh(24, L);
        EXPECT_EQ(run.result, -1);
        EXPECT_EQ(run.out, "ISP_SetParamDayRefresh: gain level " + std::to_string(L) +
                               " is outside 0..10, nothing refreshed\n");
    }
    EXPECT_EQ(sim_mpp_log_count(), 0u);
    Outcome edge = day_refresh(1024, 10); // L = 10 is the highest the tables allow
    EXPECT_EQ(edge.result, 0);
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

TEST_F(DayRefresh, EveryGainFrom1To62MatchesTheIntegerFormula)
{
    load_other_day_curve(1);
    sim_host_set_field(SYSINFO_u8BlcEnable, 1);
    StdoutCapture capture;
    for (int G = 1; G <= 62; ++G) {
        const int L = level_of(G);
        ++g_day_refreshes;
        ASSERT_EQ(ISP_SetParamDayRefresh(G, L), 0) << G;
        const NRS_PARAM_V2_S p = written_by<VPSS_GRP_NRS_PARAM_S>("HI_MPI_VPSS_SetGrpNRSParam").stNRSParam_V2;
        for (const NrField &f : kNrFields)
            EXPECT_EQ(f.read(p), interp_reference(g_3dnr_tables_day.*f.table, G, L)) << f.name << " G=" << G;
        EXPECT_EQ(p.IES0, 0);
        EXPECT_EQ(written_by<ISP_DRC_ATTR_S>("HI_MPI_ISP_SetDRCAttr").stManual.u8Strength,
                  interp_reference(gColorDRCStrength, G, L))
            << G;
        EXPECT_EQ(written_by<ISP_DEFOG_ATTR_S>("HI_MPI_ISP_SetDeFogAttr").stManual.u8strength,
                  interp_reference(gColorDefog, G, L))
            << G;
        EXPECT_EQ(platform_record<ISP_GAMMA_ATTR_S>(SIM_REC_GAMMA_ATTR).u16Table[1],
                  G >= 55 ? g_gamma_table_day_highgain[1] : g_gamma_table_day[1])
            << G;
    }
}
