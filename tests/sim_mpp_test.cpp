// Simulated MPP (design: "The simulator is a product"): state, calls, error codes, faults, log, threads.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "sim_mpp.h"

namespace {

// Every test leaves the simulator as it found it at load, so tests also pass when run in one process.
class SimMpp : public ::testing::Test {
protected:
    void TearDown() override { sim_mpp_reset(); }
};

using Call = std::function<HI_S32(HI_S32, void *)>;

template <typename P> Call wrap(HI_S32 (*fn)(HI_S32, P))
{
    return [fn](HI_S32 dev, void *record) { return fn(dev, static_cast<P>(record)); };
}

// One entry per HI_MPI_ call: its record, its name, whether it writes, and the call itself.
struct MppCall {
    sim_mpp_record_id rec;
    const char *name;
    bool is_set;
    Call call;
};

#define SET_CALL(rec, fn) MppCall{rec, #fn, true, wrap(fn)}
#define GET_CALL(rec, fn) MppCall{rec, #fn, false, wrap(fn)}

const std::vector<MppCall> &all_calls()
{
    static const std::vector<MppCall> calls = {
        SET_CALL(SIM_REC_EXPOSURE_ATTR, HI_MPI_ISP_SetExposureAttr),
        GET_CALL(SIM_REC_EXPOSURE_ATTR, HI_MPI_ISP_GetExposureAttr),
        GET_CALL(SIM_REC_EXP_INFO, HI_MPI_ISP_QueryExposureInfo),
        SET_CALL(SIM_REC_IRIS_ATTR, HI_MPI_ISP_SetIrisAttr),
        GET_CALL(SIM_REC_IRIS_ATTR, HI_MPI_ISP_GetIrisAttr),
        SET_CALL(SIM_REC_DCIRIS_ATTR, HI_MPI_ISP_SetDcirisAttr),
        GET_CALL(SIM_REC_DCIRIS_ATTR, HI_MPI_ISP_GetDcirisAttr),
        SET_CALL(SIM_REC_WB_ATTR, HI_MPI_ISP_SetWBAttr),
        GET_CALL(SIM_REC_WB_ATTR, HI_MPI_ISP_GetWBAttr),
        SET_CALL(SIM_REC_AWB_ATTR_EX, HI_MPI_ISP_SetAWBAttrEx),
        GET_CALL(SIM_REC_AWB_ATTR_EX, HI_MPI_ISP_GetAWBAttrEx),
        GET_CALL(SIM_REC_WB_INFO, HI_MPI_ISP_QueryWBInfo),
        SET_CALL(SIM_REC_CCM_ATTR, HI_MPI_ISP_SetCCMAttr),
        GET_CALL(SIM_REC_CCM_ATTR, HI_MPI_ISP_GetCCMAttr),
        SET_CALL(SIM_REC_SATURATION_ATTR, HI_MPI_ISP_SetSaturationAttr),
        GET_CALL(SIM_REC_SATURATION_ATTR, HI_MPI_ISP_GetSaturationAttr),
        SET_CALL(SIM_REC_PUB_ATTR, HI_MPI_ISP_SetPubAttr),
        GET_CALL(SIM_REC_PUB_ATTR, HI_MPI_ISP_GetPubAttr),
        SET_CALL(SIM_REC_DRC_ATTR, HI_MPI_ISP_SetDRCAttr),
        GET_CALL(SIM_REC_DRC_ATTR, HI_MPI_ISP_GetDRCAttr),
        SET_CALL(SIM_REC_DP_DYNAMIC_ATTR, HI_MPI_ISP_SetDPDynamicAttr),
        GET_CALL(SIM_REC_DP_DYNAMIC_ATTR, HI_MPI_ISP_GetDPDynamicAttr),
        SET_CALL(SIM_REC_GAMMA_ATTR, HI_MPI_ISP_SetGammaAttr),
        GET_CALL(SIM_REC_GAMMA_ATTR, HI_MPI_ISP_GetGammaAttr),
        SET_CALL(SIM_REC_SHARPEN_ATTR, HI_MPI_ISP_SetSharpenAttr),
        GET_CALL(SIM_REC_SHARPEN_ATTR, HI_MPI_ISP_GetSharpenAttr),
        SET_CALL(SIM_REC_ANTI_FALSECOLOR, HI_MPI_ISP_SetAntiFalseColorAttr),
        GET_CALL(SIM_REC_ANTI_FALSECOLOR, HI_MPI_ISP_GetAntiFalseColorAttr),
        SET_CALL(SIM_REC_DEMOSAIC_ATTR, HI_MPI_ISP_SetDemosaicAttr),
        GET_CALL(SIM_REC_DEMOSAIC_ATTR, HI_MPI_ISP_GetDemosaicAttr),
        SET_CALL(SIM_REC_BLACK_LEVEL, HI_MPI_ISP_SetBlackLevelAttr),
        GET_CALL(SIM_REC_BLACK_LEVEL, HI_MPI_ISP_GetBlackLevelAttr),
        SET_CALL(SIM_REC_DEFOG_ATTR, HI_MPI_ISP_SetDeFogAttr),
        GET_CALL(SIM_REC_DEFOG_ATTR, HI_MPI_ISP_GetDeFogAttr),
        SET_CALL(SIM_REC_VI_CSC_ATTR, HI_MPI_VI_SetCSCAttr),
        GET_CALL(SIM_REC_VI_CSC_ATTR, HI_MPI_VI_GetCSCAttr),
        SET_CALL(SIM_REC_VI_DCI_PARAM, HI_MPI_VI_SetDCIParam),
        GET_CALL(SIM_REC_VI_DCI_PARAM, HI_MPI_VI_GetDCIParam),
        SET_CALL(SIM_REC_VPSS_GRP_ATTR, HI_MPI_VPSS_SetGrpAttr),
        GET_CALL(SIM_REC_VPSS_GRP_ATTR, HI_MPI_VPSS_GetGrpAttr),
        SET_CALL(SIM_REC_VPSS_NRS_PARAM, HI_MPI_VPSS_SetGrpNRSParam),
        GET_CALL(SIM_REC_VPSS_NRS_PARAM, HI_MPI_VPSS_GetGrpNRSParam),
    };
    return calls;
}

using Bytes = std::vector<unsigned char>;

Bytes current(sim_mpp_record_id id)
{
    Bytes b(sim_mpp_record_size(id));
    sim_mpp_read(id, b.data());
    return b;
}

Bytes power_on(sim_mpp_record_id id)
{
    Bytes b(sim_mpp_record_size(id), 0xEE);
    sim_mpp_power_on_record(id, b.data());
    return b;
}

// A record-sized byte pattern unlike any power-on value; the NRS version word stays valid.
Bytes pattern(sim_mpp_record_id id, unsigned seed)
{
    Bytes b(sim_mpp_record_size(id));
    for (size_t i = 0; i < b.size(); i++) b[i] = static_cast<unsigned char>(i * 7 + seed * 31 + 1);
    if (id == SIM_REC_VPSS_NRS_PARAM) reinterpret_cast<VPSS_GRP_NRS_PARAM_S *>(b.data())->enNRVer = VPSS_NR_V2;
    return b;
}

// An empty buffer for a Get, with the NRS selector set as the caller must set it.
Bytes get_buffer(sim_mpp_record_id id, unsigned char fill = 0)
{
    Bytes b(sim_mpp_record_size(id), fill);
    if (id == SIM_REC_VPSS_NRS_PARAM) reinterpret_cast<VPSS_GRP_NRS_PARAM_S *>(b.data())->enNRVer = VPSS_NR_V2;
    return b;
}

struct UnitCodes {
    HI_S32 bad_dev, null_ptr;
};

UnitCodes codes_for(sim_mpp_record_id id)
{
    switch (id) {
    case SIM_REC_VI_DCI_PARAM:
    case SIM_REC_VI_CSC_ATTR: return {HI_ERR_VI_INVALID_DEVID, HI_ERR_VI_INVALID_NULL_PTR};
    case SIM_REC_VPSS_GRP_ATTR:
    case SIM_REC_VPSS_NRS_PARAM: return {HI_ERR_VPSS_INVALID_DEVID, HI_ERR_VPSS_NULL_PTR};
    default: return {HI_ERR_ISP_ILLEGAL_PARAM, HI_ERR_ISP_NULL_PTR};
    }
}

template <typename T, size_t N> void expect_filled(const char *what, const T (&array)[N])
{
    static_assert(N == 16, "automatic arrays have 16 entries");
    for (size_t i = 0; i < N; i++) EXPECT_NE(array[i], 0) << what << "[" << i << "]";
    EXPECT_NE(array[11], array[12]) << what << ": entries 11 and 12 should differ";
}

const HI_S32 kFault = HI_ERR_ISP_NOT_INIT;

} // namespace

TEST_F(SimMpp, LoadTimeStateIsPowerOnWithoutReset)
{
    // No sim_mpp_reset() before this test: the first use finds the power-on state.
    for (int id = 0; id < SIM_REC_COUNT; id++) {
        auto rec = static_cast<sim_mpp_record_id>(id);
        EXPECT_EQ(current(rec), power_on(rec)) << sim_mpp_record_name(rec);
    }
    EXPECT_EQ(sim_mpp_log_count(), 0u);
    EXPECT_EQ(sim_mpp_log_dropped(), 0u);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_GetDRCAttr"), 0u);
}

TEST_F(SimMpp, RecordNamesAndSizes)
{
    struct {
        sim_mpp_record_id id;
        const char *name;
        size_t size;
    } const expected[] = {
        {SIM_REC_EXPOSURE_ATTR, "ISP_EXPOSURE_ATTR_S", 412},
        {SIM_REC_EXP_INFO, "ISP_EXP_INFO_S", 4812},
        {SIM_REC_PUB_ATTR, "ISP_PUB_ATTR_S", 24},
        {SIM_REC_WB_ATTR, "ISP_WB_ATTR_S", 264},
        {SIM_REC_AWB_ATTR_EX, "ISP_AWB_ATTR_EX_S", 128},
        {SIM_REC_WB_INFO, "ISP_WB_INFO_S", 44},
        {SIM_REC_DRC_ATTR, "ISP_DRC_ATTR_S", 496},
        {SIM_REC_BLACK_LEVEL, "ISP_BLACK_LEVEL_S", 8},
        {SIM_REC_GAMMA_ATTR, "ISP_GAMMA_ATTR_S", 524},
        {SIM_REC_SATURATION_ATTR, "ISP_SATURATION_ATTR_S", 24},
        {SIM_REC_CCM_ATTR, "ISP_COLORMATRIX_ATTR_S", 96},
        {SIM_REC_ANTI_FALSECOLOR, "ISP_ANTI_FALSECOLOR_S", 76},
        {SIM_REC_DEMOSAIC_ATTR, "ISP_DEMOSAIC_ATTR_S", 300},
        {SIM_REC_DP_DYNAMIC_ATTR, "ISP_DP_DYNAMIC_ATTR_S", 96},
        {SIM_REC_SHARPEN_ATTR, "ISP_SHARPEN_ATTR_S", 212},
        {SIM_REC_DEFOG_ATTR, "ISP_DEFOG_ATTR_S", 12},
        {SIM_REC_IRIS_ATTR, "ISP_IRIS_ATTR_S", 24},
        {SIM_REC_DCIRIS_ATTR, "ISP_DCIRIS_ATTR_S", 24},
        {SIM_REC_VI_DCI_PARAM, "VI_DCI_PARAM_S", 28},
        {SIM_REC_VI_CSC_ATTR, "VI_CSC_ATTR_S", 84},
        {SIM_REC_VPSS_GRP_ATTR, "VPSS_GRP_ATTR_S", 36},
        {SIM_REC_VPSS_NRS_PARAM, "VPSS_GRP_NRS_PARAM_S", 64},
    };
    ASSERT_EQ(std::size(expected), static_cast<size_t>(SIM_REC_COUNT));
    for (const auto &e : expected) {
        EXPECT_STREQ(sim_mpp_record_name(e.id), e.name);
        EXPECT_EQ(sim_mpp_record_size(e.id), e.size) << e.name;
    }
    EXPECT_EQ(sim_mpp_record_name(SIM_REC_COUNT), nullptr);
    EXPECT_EQ(sim_mpp_record_size(SIM_REC_COUNT), 0u);
    EXPECT_EQ(all_calls().size(), 42u);
}

TEST_F(SimMpp, PowerOnValues)
{
    ISP_EXPOSURE_ATTR_S ae;
    sim_mpp_read(SIM_REC_EXPOSURE_ATTR, &ae);
    EXPECT_EQ(ae.enOpType, OP_TYPE_AUTO);
    EXPECT_EQ(ae.stAuto.stAGainRange.u32Min, 1024u);
    EXPECT_EQ(ae.stAuto.stAGainRange.u32Max, 16384u);
    EXPECT_EQ(ae.stAuto.stSysGainRange.u32Min, 1024u);
    EXPECT_EQ(ae.stAuto.stSysGainRange.u32Max, 131072u);
    EXPECT_EQ(ae.stAuto.stExpTimeRange.u32Max, 33000u);
    EXPECT_EQ(ae.stAuto.enAEMode, AE_MODE_SLOW_SHUTTER);
    EXPECT_EQ(ae.stAuto.au8Weight[0][0], 1);
    EXPECT_EQ(ae.stAuto.au8Weight[7][8], 8);

    ISP_EXP_INFO_S info;
    sim_mpp_read(SIM_REC_EXP_INFO, &info);
    EXPECT_EQ(info.u32ExpTime, 10000u);
    EXPECT_EQ(info.u32AGain, 1024u);
    EXPECT_EQ(info.u32DGain, 1024u);
    EXPECT_EQ(info.u32ISPDGain, 1024u);
    EXPECT_EQ(info.u8AveLum, 56);
    EXPECT_EQ(info.s16HistError, -3);
    EXPECT_EQ(info.stAERoute.u32TotalNum, 16u);

    ISP_PUB_ATTR_S pub;
    sim_mpp_read(SIM_REC_PUB_ATTR, &pub);
    EXPECT_EQ(pub.f32FrameRate, 30.0f);
    EXPECT_EQ(pub.stWndRect.u32Width, 1920u);

    ISP_DRC_ATTR_S drc;
    sim_mpp_read(SIM_REC_DRC_ATTR, &drc);
    EXPECT_EQ(drc.stAuto.u8Strength, 128);
    EXPECT_EQ(drc.stManual.u8Strength, 96);

    ISP_BLACK_LEVEL_S bl;
    sim_mpp_read(SIM_REC_BLACK_LEVEL, &bl);
    EXPECT_EQ(bl.au16BlackLevel[0], 240);
    EXPECT_EQ(bl.au16BlackLevel[3], 243);

    ISP_GAMMA_ATTR_S gamma;
    sim_mpp_read(SIM_REC_GAMMA_ATTR, &gamma);
    EXPECT_EQ(gamma.u16Table[0], 0);
    EXPECT_EQ(gamma.u16Table[256], 4095);
    for (int i = 1; i <= 256; i++) EXPECT_GT(gamma.u16Table[i], gamma.u16Table[i - 1]) << "node " << i;

    ISP_WB_INFO_S wbi;
    sim_mpp_read(SIM_REC_WB_INFO, &wbi);
    EXPECT_EQ(wbi.u16ColorTemp, 5100);

    VI_CSC_ATTR_S csc;
    sim_mpp_read(SIM_REC_VI_CSC_ATTR, &csc);
    EXPECT_EQ(csc.u32LumaVal, 48u);
    EXPECT_EQ(csc.u32ContrVal, 52u);
    EXPECT_EQ(csc.u32HueVal, 50u);
    EXPECT_EQ(csc.u32SatuVal, 54u);

    VPSS_GRP_NRS_PARAM_S nrs;
    sim_mpp_read(SIM_REC_VPSS_NRS_PARAM, &nrs);
    EXPECT_EQ(nrs.enNRVer, VPSS_NR_V2);
    EXPECT_EQ(nrs.stNRSParam_V2.IES0, 12);
    EXPECT_EQ(nrs.stNRSParam_V2.LNTH, 18);
    EXPECT_EQ(nrs.stNRSParam_V2.MATH2, 176);

    // Deterministic: asking twice gives the same bytes, padding included.
    for (int id = 0; id < SIM_REC_COUNT; id++) {
        auto rec = static_cast<sim_mpp_record_id>(id);
        Bytes other(sim_mpp_record_size(rec), 0x11);
        sim_mpp_power_on_record(rec, other.data());
        EXPECT_EQ(power_on(rec), other) << sim_mpp_record_name(rec);
    }
}

TEST_F(SimMpp, AutomaticArraysAreFullInAll16Entries)
{
    ISP_WB_ATTR_S wb;
    sim_mpp_read(SIM_REC_WB_ATTR, &wb);
    expect_filled("au16CrMax", wb.stAuto.stCbCrTrack.au16CrMax);
    expect_filled("au16CrMin", wb.stAuto.stCbCrTrack.au16CrMin);
    expect_filled("au16CbMax", wb.stAuto.stCbCrTrack.au16CbMax);
    expect_filled("au16CbMin", wb.stAuto.stCbCrTrack.au16CbMin);

    ISP_SATURATION_ATTR_S sat;
    sim_mpp_read(SIM_REC_SATURATION_ATTR, &sat);
    expect_filled("au8Sat", sat.stAuto.au8Sat);

    ISP_ANTI_FALSECOLOR_S afc;
    sim_mpp_read(SIM_REC_ANTI_FALSECOLOR, &afc);
    expect_filled("au8Strength", afc.stAuto.au8Strength);
    expect_filled("au8Threshold", afc.stAuto.au8Threshold);
    expect_filled("au16Offset", afc.stAuto.au16Offset);

    ISP_DEMOSAIC_ATTR_S dm;
    sim_mpp_read(SIM_REC_DEMOSAIC_ATTR, &dm);
    expect_filled("au16EdgeSmoothThr", dm.stAuto.au16EdgeSmoothThr);
    expect_filled("au16EdgeSmoothSlope", dm.stAuto.au16EdgeSmoothSlope);
    expect_filled("au16AntiAliasThr", dm.stAuto.au16AntiAliasThr);
    expect_filled("au16AntiAliasSlope", dm.stAuto.au16AntiAliasSlope);
    expect_filled("au16NrCoarseStr", dm.stAuto.au16NrCoarseStr);
    expect_filled("au8DetailEnhanceStr", dm.stAuto.au8DetailEnhanceStr);
    expect_filled("au16NoiseSuppressStr", dm.stAuto.au16NoiseSuppressStr);
    expect_filled("au16SharpenLumaStr", dm.stAuto.au16SharpenLumaStr);
    expect_filled("au16ColorNoiseCtrlThr", dm.stAuto.au16ColorNoiseCtrlThr);

    ISP_DP_DYNAMIC_ATTR_S dp;
    sim_mpp_read(SIM_REC_DP_DYNAMIC_ATTR, &dp);
    expect_filled("au16Strength", dp.stAuto.au16Strength);
    expect_filled("au16BlendRatio", dp.stAuto.au16BlendRatio);

    ISP_SHARPEN_ATTR_S sh;
    sim_mpp_read(SIM_REC_SHARPEN_ATTR, &sh);
    expect_filled("au16SharpenUd", sh.stAuto.au16SharpenUd);
    expect_filled("au8SharpenD", sh.stAuto.au8SharpenD);
    expect_filled("au8TextureThr", sh.stAuto.au8TextureThr);
    expect_filled("au8SharpenEdge", sh.stAuto.au8SharpenEdge);
    expect_filled("au8EdgeThr", sh.stAuto.au8EdgeThr);
    expect_filled("au8OverShoot", sh.stAuto.au8OverShoot);
    expect_filled("au8UnderShoot", sh.stAuto.au8UnderShoot);
    expect_filled("au8shootSupStr", sh.stAuto.au8shootSupStr);
    expect_filled("au8DetailCtrl", sh.stAuto.au8DetailCtrl);

    ISP_EXP_INFO_S info;
    sim_mpp_read(SIM_REC_EXP_INFO, &info);
    for (int i = 0; i < 16; i++) {
        EXPECT_NE(info.stAERoute.astRouteNode[i].u32IntTime, 0u) << i;
        EXPECT_NE(info.stAERouteEx.astRouteExNode[i].u32Again, 0u) << i;
    }
}

TEST_F(SimMpp, SetThenGetRoundTripsEveryRecord)
{
    unsigned seed = 1;
    for (const MppCall &set : all_calls()) {
        if (!set.is_set) continue;
        Bytes written = pattern(set.rec, seed++);
        ASSERT_NE(written, power_on(set.rec)) << set.name;
        EXPECT_EQ(set.call(0, written.data()), HI_SUCCESS) << set.name;
        EXPECT_EQ(current(set.rec), written) << set.name;
        for (const MppCall &get : all_calls()) {
            if (get.is_set || get.rec != set.rec) continue;
            Bytes got = get_buffer(set.rec, 0x5A);
            EXPECT_EQ(get.call(0, got.data()), HI_SUCCESS) << get.name;
            EXPECT_EQ(got, written) << get.name;
        }
    }
}

TEST_F(SimMpp, QueriesReturnTheStoredInformation)
{
    for (sim_mpp_record_id rec : {SIM_REC_EXP_INFO, SIM_REC_WB_INFO}) {
        Bytes stored = pattern(rec, 9);
        sim_mpp_write(rec, stored.data());
        for (const MppCall &c : all_calls()) {
            if (c.rec != rec) continue;
            EXPECT_FALSE(c.is_set) << c.name;
            Bytes got(stored.size(), 0);
            EXPECT_EQ(c.call(0, got.data()), HI_SUCCESS) << c.name;
            EXPECT_EQ(got, stored) << c.name;
        }
    }
}

TEST_F(SimMpp, WrongDeviceAndNullPointerGetTheUnitsCodes)
{
    // The named examples: an ISP, a VI and a VPSS call.
    ISP_DRC_ATTR_S drc;
    EXPECT_EQ(HI_MPI_ISP_GetDRCAttr(1, &drc), static_cast<HI_S32>(0xA01C8003u));
    EXPECT_EQ(HI_MPI_ISP_GetDRCAttr(0, nullptr), static_cast<HI_S32>(0xA01C8006u));
    VI_CSC_ATTR_S csc;
    EXPECT_EQ(HI_MPI_VI_GetCSCAttr(1, &csc), static_cast<HI_S32>(0xA0108001u));
    EXPECT_EQ(HI_MPI_VI_SetCSCAttr(0, nullptr), static_cast<HI_S32>(0xA0108006u));
    VPSS_GRP_ATTR_S grp;
    EXPECT_EQ(HI_MPI_VPSS_SetGrpAttr(-1, &grp), static_cast<HI_S32>(0xA0078001u));
    EXPECT_EQ(HI_MPI_VPSS_GetGrpAttr(0, nullptr), static_cast<HI_S32>(0xA0078006u));

    // And every call: device checked before the pointer; neither the state nor the record is touched.
    sim_mpp_reset();
    for (const MppCall &c : all_calls()) {
        UnitCodes codes = codes_for(c.rec);
        Bytes record = c.is_set ? pattern(c.rec, 3) : get_buffer(c.rec, 0xA5);
        Bytes before = record;
        EXPECT_EQ(c.call(1, record.data()), codes.bad_dev) << c.name;
        EXPECT_EQ(c.call(7, nullptr), codes.bad_dev) << c.name;
        EXPECT_EQ(c.call(0, nullptr), codes.null_ptr) << c.name;
        EXPECT_EQ(record, before) << c.name;
        EXPECT_EQ(current(c.rec), power_on(c.rec)) << c.name;
        EXPECT_EQ(sim_mpp_call_count(c.name), 3u) << c.name;
    }
}

TEST_F(SimMpp, NrsRecordAcceptsOnlyVersion2)
{
    VPSS_GRP_NRS_PARAM_S nrs;
    std::memset(&nrs, 0xA5, sizeof nrs);
    nrs.enNRVer = VPSS_NR_V1;
    Bytes before(reinterpret_cast<unsigned char *>(&nrs), reinterpret_cast<unsigned char *>(&nrs) + sizeof nrs);
    EXPECT_EQ(HI_MPI_VPSS_GetGrpNRSParam(0, &nrs), HI_ERR_VPSS_ILLEGAL_PARAM);
    EXPECT_EQ(0, std::memcmp(&nrs, before.data(), sizeof nrs)) << "a refused Get leaves the record alone";

    // Get with the selector set fills all 64 bytes, version word included.
    std::memset(&nrs, 0xA5, sizeof nrs);
    nrs.enNRVer = VPSS_NR_V2;
    EXPECT_EQ(HI_MPI_VPSS_GetGrpNRSParam(0, &nrs), HI_SUCCESS);
    Bytes po = power_on(SIM_REC_VPSS_NRS_PARAM);
    EXPECT_EQ(0, std::memcmp(&nrs, po.data(), sizeof nrs));
    EXPECT_EQ(nrs.enNRVer, VPSS_NR_V2);

    // Set with another version is refused and stores nothing.
    nrs.stNRSParam_V2.SBS0 = 99;
    nrs.enNRVer = VPSS_NR_V3;
    EXPECT_EQ(HI_MPI_VPSS_SetGrpNRSParam(0, &nrs), HI_ERR_VPSS_ILLEGAL_PARAM);
    nrs.enNRVer = static_cast<VPSS_NR_VER_E>(0);
    EXPECT_EQ(HI_MPI_VPSS_SetGrpNRSParam(0, &nrs), HI_ERR_VPSS_ILLEGAL_PARAM);
    EXPECT_EQ(current(SIM_REC_VPSS_NRS_PARAM), po);

    nrs.enNRVer = VPSS_NR_V2;
    EXPECT_EQ(HI_MPI_VPSS_SetGrpNRSParam(0, &nrs), HI_SUCCESS);
    VPSS_GRP_NRS_PARAM_S stored;
    sim_mpp_read(SIM_REC_VPSS_NRS_PARAM, &stored);
    EXPECT_EQ(stored.stNRSParam_V2.SBS0, 99);
    EXPECT_EQ(stored.enNRVer, VPSS_NR_V2);

    // The refused calls are logged without a record.
    ASSERT_EQ(sim_mpp_log_count(), 5u);
    EXPECT_EQ(sim_mpp_log_at(0)->result, HI_ERR_VPSS_ILLEGAL_PARAM);
    EXPECT_EQ(sim_mpp_log_at(0)->record, nullptr);
    EXPECT_EQ(sim_mpp_log_at(0)->size, 0u);
}

TEST_F(SimMpp, FaultOnce)
{
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_GetDRCAttr", 1, 1, kFault), 0);
    ISP_DRC_ATTR_S drc;
    EXPECT_EQ(HI_MPI_ISP_GetDRCAttr(0, &drc), kFault);
    EXPECT_EQ(HI_MPI_ISP_GetDRCAttr(0, &drc), HI_SUCCESS);
    EXPECT_EQ(HI_MPI_ISP_GetDRCAttr(0, &drc), HI_SUCCESS);
}

TEST_F(SimMpp, FaultOnTheNthCallCountedPerFunction)
{
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_SetDRCAttr", 3, 1, kFault), 0);
    ISP_DRC_ATTR_S drc;
    ASSERT_EQ(HI_MPI_ISP_GetDRCAttr(0, &drc), HI_SUCCESS); // another function: not counted
    ASSERT_EQ(HI_MPI_ISP_GetDRCAttr(0, &drc), HI_SUCCESS);
    ASSERT_EQ(HI_MPI_ISP_GetDRCAttr(0, &drc), HI_SUCCESS);
    EXPECT_EQ(HI_MPI_ISP_SetDRCAttr(0, &drc), HI_SUCCESS);
    EXPECT_EQ(HI_MPI_ISP_SetDRCAttr(1, &drc), HI_ERR_ISP_ILLEGAL_PARAM); // counted: call 2
    EXPECT_EQ(HI_MPI_ISP_SetDRCAttr(0, &drc), kFault);
    EXPECT_EQ(HI_MPI_ISP_SetDRCAttr(0, &drc), HI_SUCCESS);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetDRCAttr"), 4u);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_GetDRCAttr"), 3u);
}

TEST_F(SimMpp, FaultKTimes)
{
    ASSERT_EQ(sim_mpp_fail("HI_MPI_VI_GetCSCAttr", 2, 3, HI_ERR_VI_BUSY), 0);
    VI_CSC_ATTR_S csc;
    std::vector<HI_S32> results;
    for (int i = 0; i < 6; i++) results.push_back(HI_MPI_VI_GetCSCAttr(0, &csc));
    EXPECT_EQ(results, (std::vector<HI_S32>{0, HI_ERR_VI_BUSY, HI_ERR_VI_BUSY, HI_ERR_VI_BUSY, 0, 0}));
}

TEST_F(SimMpp, FaultAlwaysAndSeveralAtOnce)
{
    ASSERT_EQ(sim_mpp_fail("HI_MPI_VPSS_GetGrpAttr", 2, SIM_MPP_ALWAYS, HI_ERR_VPSS_BUSY), 0);
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_QueryExposureInfo", 1, 1, kFault), 0);
    VPSS_GRP_ATTR_S grp;
    ISP_EXP_INFO_S info;
    EXPECT_EQ(HI_MPI_VPSS_GetGrpAttr(0, &grp), HI_SUCCESS);
    EXPECT_EQ(HI_MPI_ISP_QueryExposureInfo(0, &info), kFault);
    for (int i = 0; i < 20; i++) EXPECT_EQ(HI_MPI_VPSS_GetGrpAttr(0, &grp), HI_ERR_VPSS_BUSY);
    EXPECT_EQ(HI_MPI_ISP_QueryExposureInfo(0, &info), HI_SUCCESS);

    sim_mpp_clear_faults();
    EXPECT_EQ(HI_MPI_VPSS_GetGrpAttr(0, &grp), HI_SUCCESS);
}

TEST_F(SimMpp, TwoFaultsOnOneFunction)
{
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_GetGammaAttr", 1, 1, kFault), 0);
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_GetGammaAttr", 3, 1, HI_ERR_ISP_NOMEM), 0);
    ISP_GAMMA_ATTR_S g;
    EXPECT_EQ(HI_MPI_ISP_GetGammaAttr(0, &g), kFault);
    EXPECT_EQ(HI_MPI_ISP_GetGammaAttr(0, &g), HI_SUCCESS);
    EXPECT_EQ(HI_MPI_ISP_GetGammaAttr(0, &g), HI_ERR_ISP_NOMEM);
    EXPECT_EQ(HI_MPI_ISP_GetGammaAttr(0, &g), HI_SUCCESS);
}

TEST_F(SimMpp, FaultChecksComeAfterDeviceAndPointer)
{
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_GetWBAttr", 1, SIM_MPP_ALWAYS, kFault), 0);
    ISP_WB_ATTR_S wb;
    EXPECT_EQ(HI_MPI_ISP_GetWBAttr(2, &wb), HI_ERR_ISP_ILLEGAL_PARAM);
    EXPECT_EQ(HI_MPI_ISP_GetWBAttr(0, nullptr), HI_ERR_ISP_NULL_PTR);
    EXPECT_EQ(HI_MPI_ISP_GetWBAttr(0, &wb), kFault);
}

TEST_F(SimMpp, BadFaultRequestsAreRefused)
{
    testing::internal::CaptureStderr();
    EXPECT_EQ(sim_mpp_fail("HI_MPI_ISP_GetDrcAttr", 1, 1, kFault), -1); // wrong case
    EXPECT_EQ(sim_mpp_fail(nullptr, 1, 1, kFault), -1);
    EXPECT_EQ(sim_mpp_fail("HI_MPI_ISP_GetDRCAttr", 0, 1, kFault), -1);
    EXPECT_EQ(sim_mpp_fail("HI_MPI_ISP_GetDRCAttr", 1, 0, kFault), -1);
    EXPECT_EQ(sim_mpp_fail("HI_MPI_ISP_GetDRCAttr", 1, -2, kFault), -1);
    EXPECT_EQ(sim_mpp_fail("HI_MPI_ISP_GetDRCAttr", 1, 1, HI_SUCCESS), -1);
    std::string err = testing::internal::GetCapturedStderr();
    EXPECT_NE(err.find("no such call"), std::string::npos) << err;
    ISP_DRC_ATTR_S drc;
    EXPECT_EQ(HI_MPI_ISP_GetDRCAttr(0, &drc), HI_SUCCESS);
}

TEST_F(SimMpp, FailingCallChangesNothing)
{
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_SetSharpenAttr", 1, 1, kFault), 0);
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_GetSharpenAttr", 1, 1, kFault), 0);
    Bytes written = pattern(SIM_REC_SHARPEN_ATTR, 5);
    EXPECT_EQ(HI_MPI_ISP_SetSharpenAttr(0, reinterpret_cast<ISP_SHARPEN_ATTR_S *>(written.data())), kFault);
    EXPECT_EQ(current(SIM_REC_SHARPEN_ATTR), power_on(SIM_REC_SHARPEN_ATTR));

    Bytes got(sizeof(ISP_SHARPEN_ATTR_S), 0xC3);
    EXPECT_EQ(HI_MPI_ISP_GetSharpenAttr(0, reinterpret_cast<ISP_SHARPEN_ATTR_S *>(got.data())), kFault);
    EXPECT_EQ(got, Bytes(sizeof(ISP_SHARPEN_ATTR_S), 0xC3));

    ASSERT_EQ(sim_mpp_log_count(), 2u);
    for (size_t i = 0; i < 2; i++) {
        EXPECT_EQ(sim_mpp_log_at(i)->result, kFault);
        EXPECT_EQ(sim_mpp_log_at(i)->record, nullptr);
    }
}

TEST_F(SimMpp, LogRecordsCallsInOrderWithRecordCopies)
{
    ISP_DRC_ATTR_S drc;
    ASSERT_EQ(HI_MPI_ISP_GetDRCAttr(0, &drc), HI_SUCCESS);
    drc.stAuto.u8Strength = 77;
    ASSERT_EQ(HI_MPI_ISP_SetDRCAttr(0, &drc), HI_SUCCESS);
    drc.stAuto.u8Strength = 78; // the caller's later changes do not reach the log
    VI_DCI_PARAM_S dci;
    EXPECT_EQ(HI_MPI_VI_GetDCIParam(3, &dci), HI_ERR_VI_INVALID_DEVID);
    EXPECT_EQ(HI_MPI_ISP_SetDRCAttr(0, nullptr), HI_ERR_ISP_NULL_PTR);
    ISP_EXP_INFO_S info;
    sim_mpp_set_exposure(20000, 2048, 1024, 1024);
    ASSERT_EQ(HI_MPI_ISP_QueryExposureInfo(0, &info), HI_SUCCESS);

    ASSERT_EQ(sim_mpp_log_count(), 5u);
    EXPECT_EQ(sim_mpp_log_at(5), nullptr);
    const sim_mpp_call *e0 = sim_mpp_log_at(0), *e1 = sim_mpp_log_at(1), *e2 = sim_mpp_log_at(2),
                       *e3 = sim_mpp_log_at(3), *e4 = sim_mpp_log_at(4);
    EXPECT_STREQ(e0->function, "HI_MPI_ISP_GetDRCAttr");
    EXPECT_STREQ(e1->function, "HI_MPI_ISP_SetDRCAttr");
    EXPECT_STREQ(e2->function, "HI_MPI_VI_GetDCIParam");
    EXPECT_STREQ(e3->function, "HI_MPI_ISP_SetDRCAttr");
    EXPECT_STREQ(e4->function, "HI_MPI_ISP_QueryExposureInfo");

    EXPECT_EQ(e0->dev, 0);
    EXPECT_EQ(e0->result, HI_SUCCESS);
    ASSERT_EQ(e0->size, sizeof(ISP_DRC_ATTR_S));
    Bytes po = power_on(SIM_REC_DRC_ATTR);
    EXPECT_EQ(0, std::memcmp(e0->record, po.data(), e0->size)) << "Get logs what it returned";

    ASSERT_EQ(e1->size, sizeof(ISP_DRC_ATTR_S));
    EXPECT_EQ(static_cast<const ISP_DRC_ATTR_S *>(e1->record)->stAuto.u8Strength, 77) << "Set logs what it wrote";

    EXPECT_EQ(e2->dev, 3);
    EXPECT_EQ(e2->result, HI_ERR_VI_INVALID_DEVID);
    EXPECT_EQ(e2->record, nullptr);
    EXPECT_EQ(e2->size, 0u);
    EXPECT_EQ(e3->result, HI_ERR_ISP_NULL_PTR);
    EXPECT_EQ(e3->record, nullptr);

    ASSERT_EQ(e4->size, sizeof(ISP_EXP_INFO_S));
    EXPECT_EQ(static_cast<const ISP_EXP_INFO_S *>(e4->record)->u32ExpTime, 20000u);

    // Entries handed out stay valid while the log grows past a chunk.
    for (int i = 0; i < 3000; i++) ASSERT_EQ(HI_MPI_ISP_GetDRCAttr(0, &drc), HI_SUCCESS);
    EXPECT_EQ(sim_mpp_log_at(1), e1);
    EXPECT_EQ(static_cast<const ISP_DRC_ATTR_S *>(e1->record)->stAuto.u8Strength, 77);
    EXPECT_EQ(sim_mpp_log_count(), 3005u);
}

TEST_F(SimMpp, IdenticalConsecutiveCopiesShareTheirBytes)
{
    ISP_EXP_INFO_S info;
    for (int i = 0; i < 3; i++) ASSERT_EQ(HI_MPI_ISP_QueryExposureInfo(0, &info), HI_SUCCESS);
    sim_mpp_set_ave_lum(90);
    ASSERT_EQ(HI_MPI_ISP_QueryExposureInfo(0, &info), HI_SUCCESS);
    ASSERT_EQ(sim_mpp_log_count(), 4u);
    EXPECT_EQ(sim_mpp_log_at(0)->record, sim_mpp_log_at(2)->record);
    EXPECT_NE(sim_mpp_log_at(2)->record, sim_mpp_log_at(3)->record);
    EXPECT_EQ(static_cast<const ISP_EXP_INFO_S *>(sim_mpp_log_at(2)->record)->u8AveLum, 56);
    EXPECT_EQ(static_cast<const ISP_EXP_INFO_S *>(sim_mpp_log_at(3)->record)->u8AveLum, 90);
}

TEST_F(SimMpp, LogLimitKeepsTheFirstEntriesAndCountsTheRest)
{
    sim_mpp_log_limit(3);
    ISP_DEFOG_ATTR_S defog;
    for (int i = 0; i < 5; i++) ASSERT_EQ(HI_MPI_ISP_GetDeFogAttr(0, &defog), HI_SUCCESS);
    ISP_IRIS_ATTR_S iris;
    ASSERT_EQ(HI_MPI_ISP_GetIrisAttr(0, &iris), HI_SUCCESS);
    EXPECT_EQ(sim_mpp_log_count(), 3u);
    EXPECT_EQ(sim_mpp_log_dropped(), 3u);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_GetDeFogAttr"), 5u);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_GetIrisAttr"), 1u);
    for (size_t i = 0; i < 3; i++) EXPECT_STREQ(sim_mpp_log_at(i)->function, "HI_MPI_ISP_GetDeFogAttr");
}

TEST_F(SimMpp, LogCanBeSwitchedOffWhileCountersCount)
{
    ISP_DEFOG_ATTR_S defog;
    ASSERT_EQ(HI_MPI_ISP_GetDeFogAttr(0, &defog), HI_SUCCESS);
    sim_mpp_log_enable(0);
    for (int i = 0; i < 4; i++) ASSERT_EQ(HI_MPI_ISP_SetDeFogAttr(0, &defog), HI_SUCCESS);
    sim_mpp_log_enable(1);
    ASSERT_EQ(HI_MPI_ISP_GetDeFogAttr(0, &defog), HI_SUCCESS);
    EXPECT_EQ(sim_mpp_log_count(), 2u);
    EXPECT_EQ(sim_mpp_log_dropped(), 0u);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetDeFogAttr"), 4u);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_GetDeFogAttr"), 2u);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_NoSuchCall"), 0u);
}

TEST_F(SimMpp, ResetRestoresTheLoadTimeState)
{
    Bytes written = pattern(SIM_REC_GAMMA_ATTR, 4);
    ASSERT_EQ(HI_MPI_ISP_SetGammaAttr(0, reinterpret_cast<ISP_GAMMA_ATTR_S *>(written.data())), HI_SUCCESS);
    sim_mpp_set_exposure(1, 2, 3, 4);
    ASSERT_EQ(sim_mpp_fail("HI_MPI_ISP_GetGammaAttr", 1, SIM_MPP_ALWAYS, kFault), 0);
    sim_mpp_log_limit(1);
    sim_mpp_log_enable(0);

    sim_mpp_reset();

    for (int id = 0; id < SIM_REC_COUNT; id++) {
        auto rec = static_cast<sim_mpp_record_id>(id);
        EXPECT_EQ(current(rec), power_on(rec)) << sim_mpp_record_name(rec);
    }
    EXPECT_EQ(sim_mpp_log_count(), 0u);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), 0u);
    ISP_GAMMA_ATTR_S g;
    EXPECT_EQ(HI_MPI_ISP_GetGammaAttr(0, &g), HI_SUCCESS) << "faults cleared";
    EXPECT_EQ(HI_MPI_ISP_GetGammaAttr(0, &g), HI_SUCCESS);
    EXPECT_EQ(sim_mpp_log_count(), 2u) << "log on again, limit back to the default";
    EXPECT_EQ(sim_mpp_log_dropped(), 0u);
}

TEST_F(SimMpp, ExposureSettersChangeOnlyTheirFields)
{
    sim_mpp_set_exposure(30000, 8192, 2048, 1536);
    sim_mpp_set_ave_lum(120);
    ISP_EXP_INFO_S info;
    ASSERT_EQ(HI_MPI_ISP_QueryExposureInfo(0, &info), HI_SUCCESS);
    EXPECT_EQ(info.u32ExpTime, 30000u);
    EXPECT_EQ(info.u32AGain, 8192u);
    EXPECT_EQ(info.u32DGain, 2048u);
    EXPECT_EQ(info.u32ISPDGain, 1536u);
    EXPECT_EQ(info.u8AveLum, 120);

    ISP_EXP_INFO_S expected;
    sim_mpp_power_on_record(SIM_REC_EXP_INFO, &expected);
    expected.u32ExpTime = 30000;
    expected.u32AGain = 8192;
    expected.u32DGain = 2048;
    expected.u32ISPDGain = 1536;
    expected.u8AveLum = 120;
    EXPECT_EQ(0, std::memcmp(&info, &expected, sizeof info));
    EXPECT_EQ(sim_mpp_log_count(), 1u) << "the setters are not MPP calls";
}

TEST_F(SimMpp, WriteAndReadBypassTheLog)
{
    Bytes b = pattern(SIM_REC_VI_DCI_PARAM, 2);
    sim_mpp_write(SIM_REC_VI_DCI_PARAM, b.data());
    EXPECT_EQ(current(SIM_REC_VI_DCI_PARAM), b);
    EXPECT_EQ(sim_mpp_log_count(), 0u);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_VI_GetDCIParam"), 0u);
}

TEST_F(SimMpp, ConcurrentCallsAreAtomic)
{
    // Two writers store uniform records (every byte 0x11, or every byte 0x22); every Get must see one of
    // them whole (or the power-on record before the first write), never a mixture.
    constexpr int kRounds = 2000;
    const Bytes po = power_on(SIM_REC_DRC_ATTR);
    auto worker = [&](unsigned char fill, int *torn) {
        ISP_DRC_ATTR_S mine, seen;
        std::memset(&mine, fill, sizeof mine);
        for (int i = 0; i < kRounds; i++) {
            HI_MPI_ISP_SetDRCAttr(0, &mine);
            HI_MPI_ISP_GetDRCAttr(0, &seen);
            const unsigned char *p = reinterpret_cast<const unsigned char *>(&seen);
            bool uniform = true;
            for (size_t k = 1; k < sizeof seen; k++) uniform = uniform && p[k] == p[0];
            if (!uniform && std::memcmp(p, po.data(), sizeof seen) != 0) ++*torn;
            ISP_EXP_INFO_S info;
            HI_MPI_ISP_QueryExposureInfo(0, &info);
            sim_mpp_set_exposure(10000 + static_cast<HI_U32>(i), 1024, 1024, 1024);
            if (sim_mpp_log_count() > 0) (void)sim_mpp_log_at(0)->function;
        }
    };
    int torn_a = 0, torn_b = 0;
    std::thread a(worker, 0x11, &torn_a);
    std::thread b(worker, 0x22, &torn_b);
    a.join();
    b.join();
    EXPECT_EQ(torn_a, 0);
    EXPECT_EQ(torn_b, 0);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetDRCAttr"), 2u * kRounds);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_GetDRCAttr"), 2u * kRounds);
    EXPECT_EQ(sim_mpp_log_count(), 6u * kRounds);
    for (size_t i = 0; i < sim_mpp_log_count(); i++) {
        const sim_mpp_call *e = sim_mpp_log_at(i);
        ASSERT_EQ(e->result, HI_SUCCESS);
        if (std::strcmp(e->function, "HI_MPI_ISP_SetDRCAttr") == 0) {
            const unsigned char *p = static_cast<const unsigned char *>(e->record);
            ASSERT_TRUE(p[0] == 0x11 || p[0] == 0x22);
            ASSERT_EQ(p[e->size - 1], p[0]);
        }
    }
}
