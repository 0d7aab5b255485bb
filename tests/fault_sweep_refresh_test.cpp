// Parts 3.2, 3.3, 1.3, 1.4: every platform call of the refreshes, the dispatch and the baseline, failed.
#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <string>
#include <vector>

#include "call_test_support.h"
#include "core_access.h"

namespace {

// The function under test. The dispatch runs at ProfileMode 0 (day) or 1 (night).
enum class Fn { DayRefresh, NightRefresh, SetVarParamDay, SetVarParamNight, SetParam };

struct FaultRow {
    Fn fn;
    const char *call; // the failing platform call
    unsigned nth;     // which call of it fails (counted from 1)
    const char *before;  // what the function prints on standard output before the failure
    const char *message; // the failure's message, typed from the spec
    bool host_log;       // the message goes to QV_SYSERROR (module 14), not to standard output
};

// Every run is at G = 24, L = 4 with all blocks on (u8BlcEnable 1, u8BlcLevel 1); the codes are those of
// failure_code_for (isptune_test.h).

// Printed by the black-level step at G = 24 before any later failure (Parts 3.2 step 6, 3.3 step 7).
#define DAY_BLACK_24                                                                                         \
    "SYSTEM 24 !!!\n"                                                                                        \
    "BlackLevelTable 64 = 64 !!!\nBlackLevelTable 64 = 64 !!!\n"                                             \
    "BlackLevelTable 64 = 64 !!!\nBlackLevelTable 64 = 64 !!!\n"
#define NIGHT_BLACK_24                                                                                       \
    "SYSTEM 24 !!!\n"                                                                                        \
    "BlackLevelTable 63 = 63 !!!\nBlackLevelTable 63 = 63 !!!\n"                                             \
    "BlackLevelTable 63 = 63 !!!\nBlackLevelTable 63 = 63 !!!\n"
// Part 1.4 step 4, with no line end.
#define DASHES "--------11111111111111111111111111112222222222-----------"

// Part 3.2: the day refresh's full path, in call order.
const FaultRow kDayRows[] = {
    {Fn::DayRefresh, "HI_MPI_VPSS_GetGrpNRSParam", 1, "",
     "HI_MPI_VPSS_GetGrpNRSParam ISP_SetParamDayRefresh 795 failed 0xa0078012 !!!\n", false},
    {Fn::DayRefresh, "HI_MPI_VPSS_SetGrpNRSParam", 1, "",
     "HI_MPI_VPSS_SetGrpNRSParam ISP_SetParamDayRefresh 836 failed 0xa0078012 !!!\n", false},
    {Fn::DayRefresh, "HI_MPI_ISP_GetDRCAttr", 1, "", "HI_MPI_ISP_GetDRCAttr failed\n", false},
    {Fn::DayRefresh, "HI_MPI_ISP_SetDRCAttr", 1, "", "HI_MPI_ISP_SetDRCAttr failed\n", false},
    {Fn::DayRefresh, "HI_MPI_ISP_GetDeFogAttr", 1, "", "HI_MPI_ISP_GetDeFogAttr failed with 0xa01c8040\n", false},
    {Fn::DayRefresh, "HI_MPI_ISP_SetDeFogAttr", 1, "", "HI_MPI_ISP_SetDeFogAttr failed with 0xa01c8040\n", false},
    {Fn::DayRefresh, "HI_MPI_ISP_GetBlackLevelAttr", 1, "",
     "HI_MPI_ISP_GetBlackLevelAttr ISP_SetParamDayRefresh 892 failed 0xa01c8040 !!!\n", false},
    {Fn::DayRefresh, "HI_MPI_ISP_SetBlackLevelAttr", 1, DAY_BLACK_24,
     "HI_MPI_ISP_SetBlackLevelAttr ISP_SetParamDayRefresh 920 failed 0xa01c8040 !!!\n", false},
    {Fn::DayRefresh, "HI_MPI_ISP_GetGammaAttr", 1, DAY_BLACK_24, "HI_MPI_ISP_GetGammaAttr failed!!!\n", true},
    {Fn::DayRefresh, "HI_MPI_ISP_SetGammaAttr", 1, DAY_BLACK_24, "HI_MPI_ISP_SetGammaAttr failed!!!\n", true},
    {Fn::DayRefresh, "HI_MPI_ISP_QueryWBInfo", 1, DAY_BLACK_24, "HI_MPI_ISP_QueryWBInfo failed\n", false},
    {Fn::DayRefresh, "HI_MPI_ISP_GetWBAttr", 1, DAY_BLACK_24, "HI_MPI_ISP_getWBAttr failed with 0xa01c8040\n",
     false},
    {Fn::DayRefresh, "HI_MPI_ISP_SetWBAttr", 1, DAY_BLACK_24, "HI_MPI_ISP_setWBAttr failed with 0xa01c8040\n",
     false},
    {Fn::DayRefresh, "HI_MPI_ISP_GetExposureAttr", 1, DAY_BLACK_24,
     "HI_MPI_ISP_GetExposureAttr failed with 0xa01c8040\n", false},
    {Fn::DayRefresh, "HI_MPI_ISP_SetExposureAttr", 1, DAY_BLACK_24,
     "HI_MPI_ISP_SetExposureAttr failed with 0xa01c8040\n", false},
};

// Part 3.3: the night refresh's full path, in call order (gamma before defog, no white balance).
const FaultRow kNightRows[] = {
    {Fn::NightRefresh, "HI_MPI_VPSS_GetGrpNRSParam", 1, "",
     "HI_MPI_VPSS_GetGrpNRSParam ISP_SetParamNightRefresh 1390 failed 0xa0078012 !!!\n", false},
    {Fn::NightRefresh, "HI_MPI_VPSS_SetGrpNRSParam", 1, "",
     "HI_MPI_VPSS_SetGrpNRSParam ISP_SetParamNightRefresh 1430 failed 0xa0078012 !!!\n", false},
    {Fn::NightRefresh, "HI_MPI_ISP_GetDRCAttr", 1, "", "HI_MPI_ISP_GetDRCAttr failed\n", false},
    {Fn::NightRefresh, "HI_MPI_ISP_SetDRCAttr", 1, "", "HI_MPI_ISP_SetDRCAttr failed\n", false},
    {Fn::NightRefresh, "HI_MPI_ISP_GetGammaAttr", 1, "", "HI_MPI_ISP_GetGammaAttr failed!!!\n", true},
    {Fn::NightRefresh, "HI_MPI_ISP_SetGammaAttr", 1, "", "HI_MPI_ISP_SetGammaAttr failed!!!\n", true},
    {Fn::NightRefresh, "HI_MPI_ISP_GetDeFogAttr", 1, "", "HI_MPI_ISP_GetDeFogAttr failed with 0xa01c8040\n",
     false},
    {Fn::NightRefresh, "HI_MPI_ISP_SetDeFogAttr", 1, "", "HI_MPI_ISP_SetDeFogAttr failed with 0xa01c8040\n",
     false},
    {Fn::NightRefresh, "HI_MPI_ISP_GetBlackLevelAttr", 1, "",
     "HI_MPI_ISP_GetBlackLevelAttr ISP_SetParamNightRefresh 1540 failed 0xa01c8040 !!!\n", false},
    {Fn::NightRefresh, "HI_MPI_ISP_SetBlackLevelAttr", 1, NIGHT_BLACK_24,
     "HI_MPI_ISP_SetBlackLevelAttr ISP_SetParamNightRefresh 1568 failed 0xa01c8040 !!!\n", false},
    {Fn::NightRefresh, "HI_MPI_ISP_GetExposureAttr", 1, NIGHT_BLACK_24,
     "HI_MPI_ISP_GetExposureAttr failed with 0xa01c8040\n", false},
    {Fn::NightRefresh, "HI_MPI_ISP_SetExposureAttr", 1, NIGHT_BLACK_24,
     "HI_MPI_ISP_SetExposureAttr failed with 0xa01c8040\n", false},
};

// Part 1.4: the baseline's full path (automatic exposure, WDR level 0), in call order.
const FaultRow kSetParamRows[] = {
    {Fn::SetParam, "HI_MPI_ISP_GetExposureAttr", 1, "", "QV_ISP_SetParam 389 failed 0xa01c8040 !!!\n", false},
    {Fn::SetParam, "HI_MPI_ISP_SetExposureAttr", 1, "", "QV_ISP_SetParam 409 failed 0xa01c8040 !!!\n", false},
    {Fn::SetParam, "HI_MPI_ISP_GetWBAttr", 1, "",
     "HI_MPI_ISP_GetWBAttr QV_ISP_SetParam 419 failed 0xa01c8040 !!!\n", false},
    {Fn::SetParam, "HI_MPI_ISP_SetWBAttr", 1, "",
     "HI_MPI_ISP_SetWBAttr QV_ISP_SetParam 429 failed 0xa01c8040 !!!\n", false},
    {Fn::SetParam, "HI_MPI_ISP_GetAWBAttrEx", 1, "",
     "HI_MPI_ISP_GetAWBAttrEx QV_ISP_SetParam 439 failed 0xa01c8040 !!!\n", false},
    {Fn::SetParam, "HI_MPI_ISP_SetAWBAttrEx", 1, DASHES,
     " HI_MPI_ISP_SetAWBAttrEx QV_ISP_SetParam 450 failed 0xa01c8040 !!!\n", false},
    {Fn::SetParam, "HI_MPI_ISP_GetDRCAttr", 1, DASHES, "QV_ISP_SetParam 461 failed 0xa01c8040 !!!\n", false},
    {Fn::SetParam, "HI_MPI_ISP_SetDRCAttr", 1, DASHES, "QV_ISP_SetParam 468 failed 0xa01c8040 !!!\n", false},
    {Fn::SetParam, "HI_MPI_VI_GetDCIParam", 1, DASHES,
     "HI_MPI_VI_GetDCIParam QV_ISP_SetParam 478 failed 0xa0108012 !!!\n", false},
    {Fn::SetParam, "HI_MPI_VI_SetDCIParam", 1, DASHES,
     "HI_MPI_VI_SetDCIParam QV_ISP_SetParam 485 failed 0xa0108012 !!!\n", false},
    {Fn::SetParam, "HI_MPI_ISP_GetBlackLevelAttr", 1, DASHES,
     "HI_MPI_ISP_GetBlackLevelAttr QV_ISP_SetParam 494 failed 0xa01c8040 !!!\n", false},
    {Fn::SetParam, "HI_MPI_ISP_SetBlackLevelAttr", 1, DASHES,
     "HI_MPI_ISP_SetBlackLevelAttr QV_ISP_SetParam 507 failed 0xa01c8040 !!!\n", false},
};

bool is_dispatch(Fn fn)
{
    return fn == Fn::SetVarParamDay || fn == Fn::SetVarParamNight;
}

bool is_night(Fn fn)
{
    return fn == Fn::NightRefresh || fn == Fn::SetVarParamNight;
}

// Part 1.3: the dispatch's own query, then the path of the refresh it runs (the refresh's rows).
std::vector<FaultRow> dispatch_rows(Fn fn)
{
    std::vector<FaultRow> rows = {{fn, "HI_MPI_ISP_QueryExposureInfo", 1, "", "HI_MPI_ISP_QueryExposureInfo failed\n",
                                   false}};
    for (FaultRow row : is_night(fn) ? std::vector<FaultRow>(std::begin(kNightRows), std::end(kNightRows))
                                     : std::vector<FaultRow>(std::begin(kDayRows), std::end(kDayRows))) {
        row.fn = fn;
        rows.push_back(row);
    }
    return rows;
}

const char *fn_name(Fn fn)
{
    switch (fn) {
    case Fn::DayRefresh: return "ISP_SetParamDayRefresh";
    case Fn::NightRefresh: return "ISP_SetParamNightRefresh";
    case Fn::SetVarParamDay: return "QV_ISP_SetVarParam_Day";
    case Fn::SetVarParamNight: return "QV_ISP_SetVarParam_Night";
    case Fn::SetParam: return "QV_ISP_SetParam";
    }
    return "?";
}

void PrintTo(const FaultRow &row, std::ostream *os)
{
    *os << fn_name(row.fn) << ", " << row.call << " #" << row.nth;
}

std::string row_name(const ::testing::TestParamInfo<FaultRow> &pi)
{
    return std::string(fn_name(pi.param.fn)) + "_" + pi.param.call + "_" + std::to_string(pi.param.nth);
}

// Refreshes once in the other gamma band, so that the run under test has a gamma step whatever ran before
// in this process (CTest gives every row a fresh process, where the marks are -1 anyway).
void load_other_curve(Fn fn)
{
    StdoutCapture quiet;
    if (fn == Fn::SetParam)
        return;
    if (is_night(fn))
        ISP_SetParamNightRefresh(57, 5);
    else
        ISP_SetParamDayRefresh(57, 5);
}

int32_t call_function(Fn fn)
{
    switch (fn) {
    case Fn::DayRefresh: return ISP_SetParamDayRefresh(24, 4);
    case Fn::NightRefresh: return ISP_SetParamNightRefresh(24, 4);
    case Fn::SetVarParamDay:
    case Fn::SetVarParamNight: return QV_ISP_SetVarParam();
    case Fn::SetParam: return QV_ISP_SetParam();
    }
    return 99;
}

// The set-up of every run: the other gamma curve loaded, all blocks on, the dispatch's G = 24, L = 4, and
// the profile of `fn`.
void prepare(Fn fn)
{
    load_other_curve(fn);
    reset_simulators();
    sim_host_set_field(SYSINFO_u8BlcEnable, 1);
    sim_host_set_field(SYSINFO_u8BlcLevel, 1);
    sim_mpp_set_exposure(10000, 24 * 1024, 1024, 1024); // the dispatch's G = 24, L = 4
    test_set_profile_mode(is_night(fn) ? 1 : 0);
}

class FaultSweep : public ::testing::TestWithParam<FaultRow> {
protected:
    void SetUp() override { prepare(GetParam().fn); }
    void TearDown() override { test_set_profile_mode(0); }
};

} // namespace

TEST_P(FaultSweep, FailingCallPrintsItsMessageAndEndsTheFunction)
{
    const FaultRow &row = GetParam();
    const HI_S32 code = failure_code_for(row.call);
    ASSERT_EQ(sim_mpp_fail(row.call, row.nth, 1, code), 0);

    StdoutCapture capture;
    const int32_t result = call_function(row.fn);
    const std::string out = capture.take();

    // The dispatch ignores the refresh's result and prints its done line (Part 1.3 step 5, 6, 7).
    const bool query_failed = std::string(row.call) == "HI_MPI_ISP_QueryExposureInfo";
    const bool dispatched = is_dispatch(row.fn) && !query_failed;
    std::string want_out = std::string(row.before) + (row.host_log ? "" : row.message);
    if (dispatched)
        want_out += is_night(row.fn) ? "--------------paramnight-refresh-done--------------\n"
                                     : "--------------paramday-refresh-done--------------\n";
    EXPECT_EQ(result, dispatched ? 0 : -1);
    EXPECT_EQ(out, want_out);
    if (row.host_log) {
        ASSERT_NO_FATAL_FAILURE(expect_only_syserror_entry(row.message));
    } else {
        EXPECT_EQ(host_log_texts(), std::vector<std::string>{});
    }

    // No platform call after the failed one.
    ASSERT_GT(sim_mpp_log_count(), 0u);
    const sim_mpp_call *last = sim_mpp_log_at(sim_mpp_log_count() - 1);
    EXPECT_STREQ(last->function, row.call);
    EXPECT_EQ(last->result, code);
    EXPECT_EQ(sim_mpp_call_count(row.call), row.nth);
}

INSTANTIATE_TEST_SUITE_P(Day, FaultSweep, ::testing::ValuesIn(kDayRows), row_name);
INSTANTIATE_TEST_SUITE_P(Night, FaultSweep, ::testing::ValuesIn(kNightRows), row_name);
INSTANTIATE_TEST_SUITE_P(DispatchDay, FaultSweep, ::testing::ValuesIn(dispatch_rows(Fn::SetVarParamDay)), row_name);
INSTANTIATE_TEST_SUITE_P(DispatchNight, FaultSweep, ::testing::ValuesIn(dispatch_rows(Fn::SetVarParamNight)),
                         row_name);
INSTANTIATE_TEST_SUITE_P(Baseline, FaultSweep, ::testing::ValuesIn(kSetParamRows), row_name);

// The sweep covers every call of each full path: the rows equal the path the function takes unfailed.
namespace {

std::vector<std::string> clean_path(Fn fn)
{
    prepare(fn);
    {
        StdoutCapture quiet;
        EXPECT_EQ(call_function(fn), 0) << fn_name(fn);
    }
    test_set_profile_mode(0);
    return platform_calls();
}

template <typename Rows> std::vector<std::string> row_calls(const Rows &rows)
{
    std::vector<std::string> calls;
    for (const FaultRow &row : rows)
        calls.emplace_back(row.call);
    return calls;
}

} // namespace

TEST(FaultSweepRows, CoverEveryCallOfEachFullPath)
{
    EXPECT_EQ(row_calls(kDayRows), clean_path(Fn::DayRefresh));
    EXPECT_EQ(row_calls(kNightRows), clean_path(Fn::NightRefresh));
    EXPECT_EQ(row_calls(dispatch_rows(Fn::SetVarParamDay)), clean_path(Fn::SetVarParamDay));
    EXPECT_EQ(row_calls(dispatch_rows(Fn::SetVarParamNight)), clean_path(Fn::SetVarParamNight));
    EXPECT_EQ(row_calls(kSetParamRows), clean_path(Fn::SetParam));
}
