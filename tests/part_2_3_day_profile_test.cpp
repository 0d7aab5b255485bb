// Part 2.3: day profile application (ISP_SetParamDay) over the colour tables of Part 2.1.
#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "isptune_test.h"

extern "C" {
#include "isptune.h"
#include "profiles/profiles.h"
#include "refresh/refresh.h"
}

// src/core/core.h declares it `extern _Atomic int32_t ProfileMode;`, which C++17 cannot include; GCC lays
// out std::atomic<int32_t> exactly as _Atomic int32_t (a lock-free 4-byte word).
extern "C" std::atomic<int32_t> ProfileMode;
static_assert(sizeof(std::atomic<int32_t>) == 4 && std::atomic<int32_t>::is_always_lock_free,
              "std::atomic<int32_t> must match _Atomic int32_t");

namespace {

using Calls = std::vector<std::string>;
using Bytes = std::vector<unsigned char>;

// Part 2.3, Interfaces: the calls in order, at u8Sharpness 128.
const Calls kDayCalls128 = {
    "HI_MPI_ISP_GetExposureAttr",       "HI_MPI_ISP_SetExposureAttr",       "HI_MPI_ISP_GetGammaAttr",
    "HI_MPI_ISP_SetGammaAttr",          "HI_MPI_ISP_GetSaturationAttr",     "HI_MPI_ISP_SetSaturationAttr",
    "HI_MPI_ISP_GetSharpenAttr",        "HI_MPI_ISP_SetSharpenAttr",        "HI_MPI_VPSS_GetGrpAttr",
    "HI_MPI_VPSS_SetGrpAttr",           "HI_MPI_ISP_GetCCMAttr",            "HI_MPI_ISP_SetCCMAttr",
    "HI_MPI_ISP_GetAntiFalseColorAttr", "HI_MPI_ISP_SetAntiFalseColorAttr", "HI_MPI_ISP_GetDemosaicAttr",
    "HI_MPI_ISP_SetDemosaicAttr",       "HI_MPI_ISP_GetDPDynamicAttr",      "HI_MPI_ISP_SetDPDynamicAttr",
};
// ... and at any other sharpness: no sharpen and no VPSS calls.
const Calls kDayCallsOther = {
    "HI_MPI_ISP_GetExposureAttr",       "HI_MPI_ISP_SetExposureAttr",       "HI_MPI_ISP_GetGammaAttr",
    "HI_MPI_ISP_SetGammaAttr",          "HI_MPI_ISP_GetSaturationAttr",     "HI_MPI_ISP_SetSaturationAttr",
    "HI_MPI_ISP_GetCCMAttr",            "HI_MPI_ISP_SetCCMAttr",            "HI_MPI_ISP_GetAntiFalseColorAttr",
    "HI_MPI_ISP_SetAntiFalseColorAttr", "HI_MPI_ISP_GetDemosaicAttr",       "HI_MPI_ISP_SetDemosaicAttr",
    "HI_MPI_ISP_GetDPDynamicAttr",      "HI_MPI_ISP_SetDPDynamicAttr",
};

int32_t mode()
{
    return ProfileMode.load();
}

int32_t mark()
{
    return __atomic_load_n(&ispParamReflashMark, __ATOMIC_SEQ_CST);
}

struct Outcome {
    int32_t result;
    std::string out;
};

Outcome day()
{
    StdoutCapture capture;
    int32_t result = ISP_SetParamDay();
    return {result, capture.take()};
}

// Entries 0..11 of a 16-entry automatic array from a 12-entry table (widened or truncated to the field).
template <typename F, size_t N, typename T> void put12(F (&field)[N], const T *table)
{
    static_assert(N == 16, "the platform's automatic arrays have 16 entries");
    for (size_t i = 0; i < 12; ++i)
        field[i] = F(table[i]);
}

// ---- the expected records: the power-on record with exactly the members Part 2.3 names changed --------

ISP_EXPOSURE_ATTR_S expected_exposure(
    ISP_EXPOSURE_ATTR_S r = power_on_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR))
{
    r.stAuto.stAGainRange.u32Max = 0x3E00;
    r.stAuto.stDGainRange.u32Max = 0x400;
    r.stAuto.stISPDGainRange.u32Max = 0x1000;
    r.stAuto.stSysGainRange.u32Max = 0x40000;
    r.stAuto.u32GainThreshold = 0x4000;
    for (auto &row : r.stAuto.au8Weight)
        for (HI_U8 &w : row)
            w = 1; // gColorAEWeightTable: every zone counts equally (Part 2.1)
    return r;
}

ISP_GAMMA_ATTR_S expected_gamma(
    ISP_GAMMA_ATTR_S r = power_on_record<ISP_GAMMA_ATTR_S>(SIM_REC_GAMMA_ATTR))
{
    r.bEnable = HI_TRUE;
    r.enCurveType = ISP_GAMMA_CURVE_USER_DEFINE; // 2
    for (int n = 0; n < 257; ++n)
        r.u16Table[n] = HI_U16(g_gamma_table_day[n]);
    return r;
}

ISP_SATURATION_ATTR_S expected_saturation(
    ISP_SATURATION_ATTR_S r = power_on_record<ISP_SATURATION_ATTR_S>(SIM_REC_SATURATION_ATTR))
{
    r.enOpType = OP_TYPE_AUTO;
    put12(r.stAuto.au8Sat, gColorSatAttr);
    return r;
}

ISP_SHARPEN_ATTR_S expected_sharpen(
    ISP_SHARPEN_ATTR_S r = power_on_record<ISP_SHARPEN_ATTR_S>(SIM_REC_SHARPEN_ATTR))
{
    r.bEnable = HI_TRUE;
    r.enOpType = OP_TYPE_AUTO;
    put12(r.stAuto.au16SharpenUd, gColorSharpenUd);
    put12(r.stAuto.au8SharpenD, gColorSharpenD);
    put12(r.stAuto.au8TextureThr, gColorTextureThr);
    put12(r.stAuto.au8SharpenEdge, gColorSharpenEdge);
    put12(r.stAuto.au8EdgeThr, gColorEdgeThr);
    put12(r.stAuto.au8OverShoot, gColorOverShoot);
    put12(r.stAuto.au8UnderShoot, gColorUnderShoot);
    put12(r.stAuto.au8shootSupStr, gColorshootSupStr);
    put12(r.stAuto.au8DetailCtrl, gColorDetailCtrl);
    return r;
}

VPSS_GRP_ATTR_S expected_vpss_group(
    VPSS_GRP_ATTR_S r = power_on_record<VPSS_GRP_ATTR_S>(SIM_REC_VPSS_GRP_ATTR))
{
    r.bSharpenEn = HI_FALSE;
    return r;
}

ISP_COLORMATRIX_ATTR_S expected_colour_matrix(
    ISP_COLORMATRIX_ATTR_S r = power_on_record<ISP_COLORMATRIX_ATTR_S>(SIM_REC_CCM_ATTR))
{
    r.enOpType = OP_TYPE_AUTO;
    r.stAuto.u16HighColorTemp = 4950;
    r.stAuto.u16MidColorTemp = 3650;
    r.stAuto.u16LowColorTemp = 2700;
    std::memcpy(r.stAuto.au16HighCCM, gColorHighCCM, sizeof r.stAuto.au16HighCCM);
    std::memcpy(r.stAuto.au16MidCCM, gColorMidCCM, sizeof r.stAuto.au16MidCCM);
    std::memcpy(r.stAuto.au16LowCCM, gColorLowCCM, sizeof r.stAuto.au16LowCCM);
    return r;
}

ISP_ANTI_FALSECOLOR_S expected_anti_false_colour(
    ISP_ANTI_FALSECOLOR_S r = power_on_record<ISP_ANTI_FALSECOLOR_S>(SIM_REC_ANTI_FALSECOLOR))
{
    r.bEnable = HI_TRUE;
    r.enOpType = OP_TYPE_AUTO;
    put12(r.stAuto.au8Strength, gColorAnFCStrength);
    put12(r.stAuto.au8Threshold, gColorAnFCThreshold);
    put12(r.stAuto.au16Offset, gColorAnFCOffset);
    return r;
}

ISP_DEMOSAIC_ATTR_S expected_demosaic(
    ISP_DEMOSAIC_ATTR_S r = power_on_record<ISP_DEMOSAIC_ATTR_S>(SIM_REC_DEMOSAIC_ATTR))
{
    put12(r.stAuto.au16EdgeSmoothThr, gColorEdgeSmoothThr);
    put12(r.stAuto.au16EdgeSmoothSlope, gColorEdgeSmoothSlope);
    put12(r.stAuto.au16AntiAliasThr, gColorAntiAliasThr);
    put12(r.stAuto.au16AntiAliasSlope, gColorAntiAliasSlope);
    put12(r.stAuto.au16NrCoarseStr, gColorNrCoarseStr);
    put12(r.stAuto.au8DetailEnhanceStr, gColorDetailEnhanceStr);
    put12(r.stAuto.au16NoiseSuppressStr, gColorNoiseSuppressStr);
    put12(r.stAuto.au16SharpenLumaStr, gColorSharpenLumaStr);
    return r;
}

ISP_DP_DYNAMIC_ATTR_S expected_dp_dynamic(
    ISP_DP_DYNAMIC_ATTR_S r = power_on_record<ISP_DP_DYNAMIC_ATTR_S>(SIM_REC_DP_DYNAMIC_ATTR))
{
    r.bEnable = HI_TRUE;
    r.enOpType = OP_TYPE_AUTO;
    put12(r.stAuto.au16Strength, gColorStrength);
    put12(r.stAuto.au16BlendRatio, gColorBlendRatio);
    return r;
}

// ---- whole-platform comparisons --------------------------------------------------------------------------

// Every record of the simulated platform, by sim_mpp_record_id.
std::vector<Bytes> power_on_state()
{
    std::vector<Bytes> state(SIM_REC_COUNT);
    for (int id = 0; id < SIM_REC_COUNT; ++id) {
        state[size_t(id)].resize(sim_mpp_record_size(sim_mpp_record_id(id)));
        sim_mpp_power_on_record(sim_mpp_record_id(id), state[size_t(id)].data());
    }
    return state;
}

std::vector<Bytes> platform_state()
{
    std::vector<Bytes> state(SIM_REC_COUNT);
    for (int id = 0; id < SIM_REC_COUNT; ++id) {
        state[size_t(id)].resize(sim_mpp_record_size(sim_mpp_record_id(id)));
        sim_mpp_read(sim_mpp_record_id(id), state[size_t(id)].data());
    }
    return state;
}

template <typename T> void put(std::vector<Bytes> &state, sim_mpp_record_id id, const T &record)
{
    ASSERT_EQ(state[size_t(id)].size(), sizeof(T)) << sim_mpp_record_name(id);
    std::memcpy(state[size_t(id)].data(), &record, sizeof(T));
}

template <typename T> T get(const std::vector<Bytes> &state, sim_mpp_record_id id)
{
    T record;
    EXPECT_EQ(state[size_t(id)].size(), sizeof(T)) << sim_mpp_record_name(id);
    std::memcpy(&record, state[size_t(id)].data(), sizeof(T));
    return record;
}

// Record `id` of `state`, changed as `change` changes a record.
template <typename T> void apply(std::vector<Bytes> &state, sim_mpp_record_id id, T (*change)(T))
{
    put(state, id, change(get<T>(state, id)));
}

// The platform `start` (by default the power-on one) after the day profile: the steps up to `last_step`
// applied (4 exposure, 5 gamma, 6 saturation, 7 sharpen and VPSS at `sharpness` 128, 8 colour matrix,
// 9 anti-false-colour, 10 demosaic, 11 defect pixels), every other record as in `start`.
std::vector<Bytes> expected_state(int sharpness = 128, int last_step = 11,
                                  const std::vector<Bytes> &start = power_on_state())
{
    std::vector<Bytes> s = start;
    if (last_step >= 4)
        apply(s, SIM_REC_EXPOSURE_ATTR, expected_exposure);
    if (last_step >= 5)
        apply(s, SIM_REC_GAMMA_ATTR, expected_gamma);
    if (last_step >= 6)
        apply(s, SIM_REC_SATURATION_ATTR, expected_saturation);
    if (last_step >= 7 && sharpness == 128) {
        apply(s, SIM_REC_SHARPEN_ATTR, expected_sharpen);
        apply(s, SIM_REC_VPSS_GRP_ATTR, expected_vpss_group);
    }
    if (last_step >= 8)
        apply(s, SIM_REC_CCM_ATTR, expected_colour_matrix);
    if (last_step >= 9)
        apply(s, SIM_REC_ANTI_FALSECOLOR, expected_anti_false_colour);
    if (last_step >= 10)
        apply(s, SIM_REC_DEMOSAIC_ATTR, expected_demosaic);
    if (last_step >= 11)
        apply(s, SIM_REC_DP_DYNAMIC_ATTR, expected_dp_dynamic);
    return s;
}

// Every record of the platform equals `want`, byte for byte.
void expect_state(const std::vector<Bytes> &want)
{
    const std::vector<Bytes> got = platform_state();
    for (int id = 0; id < SIM_REC_COUNT; ++id)
        EXPECT_TRUE(same_bytes(got[size_t(id)].data(), want[size_t(id)].data(), want[size_t(id)].size()))
            << sim_mpp_record_name(sim_mpp_record_id(id));
}

// Every record filled with pseudo-random bytes (a fixed LCG), written into the platform: any member the
// profile writes without naming it then shows, whatever its power-on value happens to be.
std::vector<Bytes> random_platform(uint32_t seed)
{
    std::vector<Bytes> state = power_on_state();
    for (int id = 0; id < SIM_REC_COUNT; ++id) {
        for (unsigned char &b : state[size_t(id)]) {
            seed = seed * 1664525u + 1013904223u;
            b = static_cast<unsigned char>(seed >> 24);
        }
        sim_mpp_write(sim_mpp_record_id(id), state[size_t(id)].data());
    }
    return state;
}

class DayProfile : public ::testing::Test {
protected:
    void SetUp() override
    {
        sim_mpp_reset();
        sim_host_reset();
        // The opposite of what the profile stores, so that its two stores show.
        ProfileMode.store(1);
        __atomic_store_n(&ispParamReflashMark, 0, __ATOMIC_SEQ_CST);
    }
};

// ---- Edge cases worth testing ----------------------------------------------------------------------------

TEST_F(DayProfile, GetSysInfoNullPrintsTheMessageMakesNoPlatformCallAndStillSetsModeAndMark)
{
    sim_host_sysinfo_null(1);
    const Outcome o = day();
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, "GetSysInfo failed is NULL\n");
    EXPECT_EQ(sim_mpp_log_count(), 0u);
    EXPECT_EQ(mode(), 0);
    EXPECT_EQ(mark(), 1);
    expect_state(power_on_state());
}

TEST_F(DayProfile, Sharpness128WritesTheColourSharpenTablesAutomaticAndTheVpssGroup)
{
    ASSERT_EQ(sim_host_get_field(SYSINFO_u8Sharpness), 128); // the host's default
    ASSERT_EQ(day().result, 0);
    EXPECT_EQ(platform_calls(), kDayCalls128);
    const ISP_SHARPEN_ATTR_S shp = platform_record<ISP_SHARPEN_ATTR_S>(SIM_REC_SHARPEN_ATTR);
    EXPECT_EQ(shp.enOpType, OP_TYPE_AUTO);
    EXPECT_EQ(shp.bEnable, HI_TRUE);
    const ISP_SHARPEN_ATTR_S want = expected_sharpen();
    EXPECT_TRUE(same_bytes(&shp, &want, sizeof shp));
    const VPSS_GRP_ATTR_S grp = platform_record<VPSS_GRP_ATTR_S>(SIM_REC_VPSS_GRP_ATTR);
    EXPECT_EQ(grp.bSharpenEn, HI_FALSE);
    const VPSS_GRP_ATTR_S want_grp = expected_vpss_group();
    EXPECT_TRUE(same_bytes(&grp, &want_grp, sizeof grp));
}

TEST_F(DayProfile, Sharpness127MakesNeitherSharpenNorVpssCalls)
{
    sim_host_set_field(SYSINFO_u8Sharpness, 127);
    ASSERT_EQ(day().result, 0);
    EXPECT_EQ(platform_calls(), kDayCallsOther);
    expect_state(expected_state(127));
}

TEST_F(DayProfile, Sharpness129MakesNeitherSharpenNorVpssCalls)
{
    sim_host_set_field(SYSINFO_u8Sharpness, 129);
    ASSERT_EQ(day().result, 0);
    EXPECT_EQ(platform_calls(), kDayCallsOther);
    expect_state(expected_state(129));
}

TEST_F(DayProfile, ColourMatrixGetFailureLeavesEarlierStepsAppliedAndLaterAttributesUntouched)
{
    sim_mpp_fail("HI_MPI_ISP_GetCCMAttr", 1, 1, HI_ERR_ISP_NOT_INIT);
    const Outcome o = day();
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, "HI_MPI_ISP_GetCCMAttr ISP_SetParamDay 667 failed 0xa01c8040 !!!\n");
    // Exposure, gamma, saturation, sharpen and the VPSS group applied; the rest as at power-on.
    expect_state(expected_state(128, 7));
    EXPECT_EQ(platform_calls(), Calls(kDayCalls128.begin(), kDayCalls128.begin() + 11));
}

TEST_F(DayProfile, ColourMatrixGetFailureAt127LeavesExposureGammaSaturationAppliedOnly)
{
    sim_host_set_field(SYSINFO_u8Sharpness, 127);
    sim_mpp_fail("HI_MPI_ISP_GetCCMAttr", 1, 1, HI_ERR_ISP_NOT_INIT);
    EXPECT_EQ(day().result, -1);
    expect_state(expected_state(127, 7));
}

TEST_F(DayProfile, AfterSuccessAutomaticArraysHoldTheTablesInEntries0To11AndPlatformValuesIn12To15)
{
    ASSERT_EQ(day().result, 0);
    const ISP_SATURATION_ATTR_S sat = platform_record<ISP_SATURATION_ATTR_S>(SIM_REC_SATURATION_ATTR);
    const ISP_SATURATION_ATTR_S sat0 = power_on_record<ISP_SATURATION_ATTR_S>(SIM_REC_SATURATION_ATTR);
    // gColorSatAttr, typed from Part 2.1
    const int sat_table[12] = {111, 108, 106, 100, 90, 85, 58, 58, 58, 58, 58, 58};
    for (int i = 0; i < 12; ++i)
        EXPECT_EQ(sat.stAuto.au8Sat[i], sat_table[i]) << i;
    for (int i = 12; i < 16; ++i)
        EXPECT_EQ(sat.stAuto.au8Sat[i], sat0.stAuto.au8Sat[i]) << i;

    // Every array of every attribute, entry by entry: the whole records match, and the simulator's
    // power-on arrays hold distinct non-zero values in entries 12-15, so a write there would show.
    expect_state(expected_state());
    const ISP_DEMOSAIC_ATTR_S dm = platform_record<ISP_DEMOSAIC_ATTR_S>(SIM_REC_DEMOSAIC_ATTR);
    const ISP_DEMOSAIC_ATTR_S dm0 = power_on_record<ISP_DEMOSAIC_ATTR_S>(SIM_REC_DEMOSAIC_ATTR);
    for (int i = 12; i < 16; ++i) {
        EXPECT_NE(dm0.stAuto.au16EdgeSmoothThr[i], 0) << "the simulator fills entries 12-15";
        EXPECT_EQ(dm.stAuto.au16EdgeSmoothThr[i], dm0.stAuto.au16EdgeSmoothThr[i]) << i;
    }
    const ISP_ANTI_FALSECOLOR_S afc = platform_record<ISP_ANTI_FALSECOLOR_S>(SIM_REC_ANTI_FALSECOLOR);
    for (int i = 0; i < 12; ++i)
        EXPECT_EQ(afc.stAuto.au16Offset[i], 0) << "gColorAnFCOffset widened, entry " << i;
}

TEST_F(DayProfile, AfterSuccessTheAeWeightGridIsAllOnes)
{
    ASSERT_EQ(day().result, 0);
    const ISP_EXPOSURE_ATTR_S exp = platform_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR);
    for (int r = 0; r < 15; ++r)
        for (int c = 0; c < 17; ++c)
            EXPECT_EQ(exp.stAuto.au8Weight[r][c], 1) << r << "," << c;
}

TEST_F(DayProfile, AfterSuccessGammaTable256Is4095)
{
    ASSERT_EQ(day().result, 0);
    const ISP_GAMMA_ATTR_S g = platform_record<ISP_GAMMA_ATTR_S>(SIM_REC_GAMMA_ATTR);
    EXPECT_EQ(g.u16Table[256], 4095);
    EXPECT_EQ(g.u16Table[0], 0);
    EXPECT_EQ(g.bEnable, HI_TRUE);
    EXPECT_EQ(g.enCurveType, ISP_GAMMA_CURVE_USER_DEFINE);
    // The nodes Part 2.1 lists.
    const int first[9] = {0, 76, 156, 244, 331, 405, 477, 551, 625};
    for (int n = 0; n < 9; ++n)
        EXPECT_EQ(g.u16Table[n], first[n]) << n;
    const int every16[17] = {0,    1167, 1755, 2188, 2498, 2729, 2922, 3110, 3245,
                             3377, 3507, 3619, 3722, 3824, 3927, 4011, 4095};
    for (int k = 0; k < 17; ++k)
        EXPECT_EQ(g.u16Table[16 * k], every16[k]) << 16 * k;
}

TEST_F(DayProfile, CallingTwiceGivesTheSamePlatformStateAsCallingOnce)
{
    ASSERT_EQ(day().result, 0);
    const std::vector<Bytes> once = platform_state();
    ASSERT_EQ(day().result, 0);
    const std::vector<Bytes> twice = platform_state();
    for (int id = 0; id < SIM_REC_COUNT; ++id)
        EXPECT_EQ(once[size_t(id)], twice[size_t(id)]) << sim_mpp_record_name(sim_mpp_record_id(id));
    Calls both = kDayCalls128;
    both.insert(both.end(), kDayCalls128.begin(), kDayCalls128.end());
    EXPECT_EQ(platform_calls(), both);
}

// ---- the rest of the Part ----------------------------------------------------------------------------------

TEST_F(DayProfile, EveryByteOfEveryRecordAt128IsThePowerOnRecordPlusTheNamedMembers)
{
    const Outcome o = day();
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(o.out, "") << "success prints nothing";
    EXPECT_EQ(sim_host_log_count(), 0u);
    expect_state(expected_state(128));
}

TEST_F(DayProfile, TheSetCallsWriteTheExpectedRecords)
{
    ASSERT_EQ(day().result, 0);
    const std::vector<Bytes> want = expected_state(128);
    const struct {
        const char *set;
        sim_mpp_record_id id;
    } sets[] = {
        {"HI_MPI_ISP_SetExposureAttr", SIM_REC_EXPOSURE_ATTR},
        {"HI_MPI_ISP_SetGammaAttr", SIM_REC_GAMMA_ATTR},
        {"HI_MPI_ISP_SetSaturationAttr", SIM_REC_SATURATION_ATTR},
        {"HI_MPI_ISP_SetSharpenAttr", SIM_REC_SHARPEN_ATTR},
        {"HI_MPI_VPSS_SetGrpAttr", SIM_REC_VPSS_GRP_ATTR},
        {"HI_MPI_ISP_SetCCMAttr", SIM_REC_CCM_ATTR},
        {"HI_MPI_ISP_SetAntiFalseColorAttr", SIM_REC_ANTI_FALSECOLOR},
        {"HI_MPI_ISP_SetDemosaicAttr", SIM_REC_DEMOSAIC_ATTR},
        {"HI_MPI_ISP_SetDPDynamicAttr", SIM_REC_DP_DYNAMIC_ATTR},
    };
    for (const auto &s : sets) {
        const long i = last_call_of(s.set);
        ASSERT_GE(i, 0) << s.set;
        const sim_mpp_call *call = sim_mpp_log_at(size_t(i));
        ASSERT_EQ(call->size, want[s.id].size()) << s.set;
        EXPECT_TRUE(same_bytes(call->record, want[s.id].data(), call->size)) << s.set;
    }
}

TEST_F(DayProfile, EveryCallAddressesIspDeviceZeroOrVpssGroupZero)
{
    ASSERT_EQ(day().result, 0);
    ASSERT_EQ(sim_mpp_log_count(), kDayCalls128.size());
    for (size_t i = 0; i < sim_mpp_log_count(); ++i) {
        EXPECT_EQ(sim_mpp_log_at(i)->dev, 0) << sim_mpp_log_at(i)->function;
        EXPECT_EQ(sim_mpp_log_at(i)->result, HI_SUCCESS) << sim_mpp_log_at(i)->function;
    }
}

TEST_F(DayProfile, SuccessLeavesProfileModeZeroAndTheRefreshRequestRaised)
{
    EXPECT_EQ(day().result, 0);
    EXPECT_EQ(mode(), 0);
    EXPECT_EQ(mark(), 1);
}

TEST_F(DayProfile, ExposureCeilingsEqualTheExportedScalarsAndTheRestStaysAsRead)
{
    ASSERT_EQ(day().result, 0);
    const ISP_EXPOSURE_ATTR_S exp = platform_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR);
    const ISP_EXPOSURE_ATTR_S exp0 = power_on_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR);
    EXPECT_EQ(exp.stAuto.stAGainRange.u32Max, gColorAGainRangeMax);
    EXPECT_EQ(exp.stAuto.stDGainRange.u32Max, gColorDGainRangeMax);
    EXPECT_EQ(exp.stAuto.stISPDGainRange.u32Max, gColorISPDGainRangeMax);
    EXPECT_EQ(exp.stAuto.stSysGainRange.u32Max, 262144u);
    EXPECT_EQ(exp.stAuto.u32GainThreshold, 16384u);
    EXPECT_EQ(exp.stAuto.stAGainRange.u32Min, exp0.stAuto.stAGainRange.u32Min);
    EXPECT_EQ(exp.enOpType, exp0.enOpType);
    EXPECT_EQ(exp.stAuto.u8Compensation, exp0.stAuto.u8Compensation);
}

TEST_F(DayProfile, ColourMatrixTemperaturesEqualTheExportedScalars)
{
    ASSERT_EQ(day().result, 0);
    const ISP_COLORMATRIX_ATTR_S ccm = platform_record<ISP_COLORMATRIX_ATTR_S>(SIM_REC_CCM_ATTR);
    EXPECT_EQ(ccm.stAuto.u16HighColorTemp, gColorCCMHighColorTemp);
    EXPECT_EQ(ccm.stAuto.u16MidColorTemp, gColorCCMMidColorTemp);
    EXPECT_EQ(ccm.stAuto.u16LowColorTemp, gColorCCMLowColorTemp);
    EXPECT_EQ(ccm.stAuto.au16HighCCM[0], 0x0270); // spot values typed from Part 2.1
    EXPECT_EQ(ccm.stAuto.au16MidCCM[4], 0x01AD);
    EXPECT_EQ(ccm.stAuto.au16LowCCM[7], 0x81FE);
}

// Left to the implementer: the cleared member is bSharpenEn, the 32-bit member after eight 32-bit members.
TEST_F(DayProfile, TheVpssMemberClearedIsTheOneAfterEight32BitMembers)
{
    static_assert(offsetof(VPSS_GRP_ATTR_S, bSharpenEn) == 8 * 4 && sizeof(HI_BOOL) == 4);
    ASSERT_EQ(day().result, 0);
    const VPSS_GRP_ATTR_S grp = platform_record<VPSS_GRP_ATTR_S>(SIM_REC_VPSS_GRP_ATTR);
    const VPSS_GRP_ATTR_S grp0 = power_on_record<VPSS_GRP_ATTR_S>(SIM_REC_VPSS_GRP_ATTR);
    ASSERT_EQ(grp0.bSharpenEn, HI_TRUE) << "the simulator powers on with sharpening on";
    EXPECT_EQ(grp.bSharpenEn, HI_FALSE);
    EXPECT_TRUE(same_bytes(&grp, &grp0, offsetof(VPSS_GRP_ATTR_S, bSharpenEn)));
}

// Only u8Sharpness is read: every other byte of the record may hold anything.
TEST_F(DayProfile, FromRandomRecordsOnlyTheNamedMembersChange)
{
    for (int sharpness : {128, 127}) {
        SCOPED_TRACE(sharpness);
        sim_host_set_field(SYSINFO_u8Sharpness, uint8_t(sharpness));
        const std::vector<Bytes> start = random_platform(uint32_t(sharpness));
        ASSERT_EQ(day().result, 0);
        expect_state(expected_state(sharpness, 11, start));
    }
}

TEST_F(DayProfile, OnlyU8SharpnessOfTheSettingsRecordIsRead)
{
    std::memset(sim_host_sysinfo(), 0xA5, SIM_HOST_SYSINFO_SIZE);
    sim_host_set_field(SYSINFO_u8Sharpness, 128);
    ASSERT_EQ(day().result, 0);
    EXPECT_EQ(platform_calls(), kDayCalls128);
    expect_state(expected_state(128));
}

TEST_F(DayProfile, AFailedSetLeavesThatAttributeAsItWasAndStopsThere)
{
    sim_mpp_fail("HI_MPI_ISP_SetSaturationAttr", 1, 1, HI_ERR_ISP_NOT_INIT);
    const Outcome o = day();
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, "HI_MPI_ISP_SetSaturationAttr ISP_SetParamDay 605 failed 0xa01c8040 !!!\n");
    expect_state(expected_state(128, 5));
    EXPECT_EQ(mode(), 0);
    EXPECT_EQ(mark(), 1);
}

// State and lifecycle: the profile does not touch the day refresh's gamma mark (Part 3.2).
TEST_F(DayProfile, DoesNotTouchTheDayRefreshGammaMark)
{
    {
        StdoutCapture quiet; // the refresh prints its black levels
        ASSERT_EQ(ISP_SetParamDayRefresh(57, 5), 0); // high-gain curve, mark 1
    }
    ASSERT_EQ(day().result, 0); // loads g_gamma_table_day
    const unsigned gamma_sets = sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr");
    {
        StdoutCapture quiet;
        ASSERT_EQ(ISP_SetParamDayRefresh(60, 5), 0); // same band: the mark still says high-gain
    }
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), gamma_sets);
    const ISP_GAMMA_ATTR_S g = platform_record<ISP_GAMMA_ATTR_S>(SIM_REC_GAMMA_ATTR);
    const ISP_GAMMA_ATTR_S want = expected_gamma();
    EXPECT_TRUE(same_bytes(&g, &want, sizeof g)) << "the profile's curve stays";
}

} // namespace
