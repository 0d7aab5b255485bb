// Test support for Parts 2.3 and 2.4 (see profile_test_support.h).
#include "profile_test_support.h"

const ProfileTables kDayTables = {
    g_gamma_table_day,     gColorSharpenUd,       gColorSharpenD,     gColorTextureThr,     gColorSharpenEdge,
    gColorEdgeThr,         gColorOverShoot,       gColorUnderShoot,   gColorshootSupStr,    gColorDetailCtrl,
    gColorEdgeSmoothThr,   gColorEdgeSmoothSlope, gColorAntiAliasThr, gColorAntiAliasSlope, gColorNrCoarseStr,
    gColorDetailEnhanceStr, gColorNoiseSuppressStr, gColorSharpenLumaStr, gColorStrength,   gColorBlendRatio,
};

const ProfileTables kNightTables = {
    g_gamma_table_night,   gNightSharpenUd,       gNightSharpenD,     gNightTextureThr,     gNightSharpenEdge,
    gNightEdgeThr,         gNightOverShoot,       gNightUnderShoot,   gNightshootSupStr,    gNightDetailCtrl,
    gNightEdgeSmoothThr,   gNightEdgeSmoothSlope, gNightAntiAliasThr, gNightAntiAliasSlope, gNightNrCoarseStr,
    gNightDetailEnhanceStr, gNightNoiseSuppressStr, gNightSharpenLumaStr, gNightStrength,   gNightBlendRatio,
};

ISP_EXPOSURE_ATTR_S with_gain_ceilings(ISP_EXPOSURE_ATTR_S r)
{
    r.stAuto.stAGainRange.u32Max = 0x3E00;
    r.stAuto.stDGainRange.u32Max = 0x400;
    r.stAuto.stISPDGainRange.u32Max = 0x1000;
    r.stAuto.stSysGainRange.u32Max = 0x40000;
    r.stAuto.u32GainThreshold = 0x4000;
    return r;
}

ISP_GAMMA_ATTR_S with_gamma(ISP_GAMMA_ATTR_S r, const ProfileTables &t)
{
    r.bEnable = HI_TRUE;
    r.enCurveType = ISP_GAMMA_CURVE_USER_DEFINE; // 2
    for (int n = 0; n < 257; ++n)
        r.u16Table[n] = HI_U16(t.gamma[n]);
    return r;
}

ISP_SHARPEN_ATTR_S with_sharpen(ISP_SHARPEN_ATTR_S r, const ProfileTables &t)
{
    r.bEnable = HI_TRUE;
    r.enOpType = OP_TYPE_AUTO;
    put12(r.stAuto.au16SharpenUd, t.sharpen_ud);
    put12(r.stAuto.au8SharpenD, t.sharpen_d);
    put12(r.stAuto.au8TextureThr, t.texture_thr);
    put12(r.stAuto.au8SharpenEdge, t.sharpen_edge);
    put12(r.stAuto.au8EdgeThr, t.edge_thr);
    put12(r.stAuto.au8OverShoot, t.over_shoot);
    put12(r.stAuto.au8UnderShoot, t.under_shoot);
    put12(r.stAuto.au8shootSupStr, t.shoot_sup_str);
    put12(r.stAuto.au8DetailCtrl, t.detail_ctrl);
    return r;
}

ISP_DEMOSAIC_ATTR_S with_demosaic(ISP_DEMOSAIC_ATTR_S r, const ProfileTables &t)
{
    put12(r.stAuto.au16EdgeSmoothThr, t.edge_smooth_thr);
    put12(r.stAuto.au16EdgeSmoothSlope, t.edge_smooth_slope);
    put12(r.stAuto.au16AntiAliasThr, t.anti_alias_thr);
    put12(r.stAuto.au16AntiAliasSlope, t.anti_alias_slope);
    put12(r.stAuto.au16NrCoarseStr, t.nr_coarse_str);
    put12(r.stAuto.au8DetailEnhanceStr, t.detail_enhance_str);
    put12(r.stAuto.au16NoiseSuppressStr, t.noise_suppress_str);
    put12(r.stAuto.au16SharpenLumaStr, t.sharpen_luma_str);
    return r;
}

ISP_DP_DYNAMIC_ATTR_S with_dp_dynamic(ISP_DP_DYNAMIC_ATTR_S r, const ProfileTables &t)
{
    r.bEnable = HI_TRUE;
    r.enOpType = OP_TYPE_AUTO;
    put12(r.stAuto.au16Strength, t.dp_strength);
    put12(r.stAuto.au16BlendRatio, t.dp_blend_ratio);
    return r;
}

Outcome run_day_profile()
{
    return captured(ISP_SetParamDay);
}

Outcome run_night_profile()
{
    return captured(ISP_SetParamNight);
}

Bytes record_bytes(sim_mpp_record_id id)
{
    Bytes bytes(sim_mpp_record_size(id));
    sim_mpp_read(id, bytes.data());
    return bytes;
}

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
    std::vector<Bytes> state;
    for (int id = 0; id < SIM_REC_COUNT; ++id)
        state.push_back(record_bytes(sim_mpp_record_id(id)));
    return state;
}

void expect_state(const std::vector<Bytes> &want)
{
    const std::vector<Bytes> got = platform_state();
    for (int id = 0; id < SIM_REC_COUNT; ++id)
        EXPECT_TRUE(same_bytes(got[size_t(id)].data(), want[size_t(id)].data(), want[size_t(id)].size()))
            << sim_mpp_record_name(sim_mpp_record_id(id));
}

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

sim_mpp_record_id record_of(const std::string &set_call)
{
    const struct {
        const char *call;
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
    for (const auto &s : sets)
        if (set_call == s.call)
            return s.id;
    ADD_FAILURE() << "no record for " << set_call;
    return SIM_REC_COUNT;
}

void expect_refused_without_record(const Outcome &o, int32_t wanted_mode)
{
    EXPECT_EQ(o.result, -1);
    EXPECT_EQ(o.out, "GetSysInfo failed is NULL\n");
    EXPECT_EQ(sim_mpp_log_count(), 0u);
    EXPECT_EQ(profile_mode(), wanted_mode);
    EXPECT_EQ(reflash_mark(), 1);
}

void expect_silent_success(const Outcome &o)
{
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(o.out, "") << "success prints nothing";
    EXPECT_EQ(sim_host_log_count(), 0u);
}

void expect_set_calls_wrote(const std::vector<Bytes> &want, const std::vector<const char *> &set_calls)
{
    for (const char *set : set_calls) {
        const sim_mpp_record_id id = record_of(set);
        const long i = last_call_of(set);
        ASSERT_GE(i, 0) << set;
        const sim_mpp_call *call = sim_mpp_log_at(size_t(i));
        ASSERT_EQ(call->size, want[id].size()) << set;
        EXPECT_TRUE(same_bytes(call->record, want[id].data(), call->size)) << set;
    }
}

void expect_calls_on_device_zero(size_t count)
{
    ASSERT_EQ(sim_mpp_log_count(), count);
    for (size_t i = 0; i < sim_mpp_log_count(); ++i) {
        EXPECT_EQ(sim_mpp_log_at(i)->dev, 0) << sim_mpp_log_at(i)->function;
        EXPECT_EQ(sim_mpp_log_at(i)->result, HI_SUCCESS) << sim_mpp_log_at(i)->function;
    }
}

void expect_sharpen_tables_at_128(Outcome (*profile)(), const Calls &calls, const ISP_SHARPEN_ATTR_S &want)
{
    ASSERT_EQ(sim_host_get_field(SYSINFO_u8Sharpness), 128); // the host's default
    ASSERT_EQ(profile().result, 0);
    EXPECT_EQ(platform_calls(), calls);
    const ISP_SHARPEN_ATTR_S shp = platform_record<ISP_SHARPEN_ATTR_S>(SIM_REC_SHARPEN_ATTR);
    EXPECT_EQ(shp.enOpType, OP_TYPE_AUTO);
    EXPECT_EQ(shp.bEnable, HI_TRUE);
    EXPECT_TRUE(same_bytes(&shp, &want, sizeof shp));
}

void expect_second_run_changes_nothing(Outcome (*profile)())
{
    ASSERT_EQ(profile().result, 0);
    const std::vector<Bytes> once = platform_state();
    ASSERT_EQ(profile().result, 0);
    const std::vector<Bytes> twice = platform_state();
    for (int id = 0; id < SIM_REC_COUNT; ++id)
        EXPECT_EQ(once[size_t(id)], twice[size_t(id)]) << sim_mpp_record_name(sim_mpp_record_id(id));
}

void expect_only_named_members_change(Outcome (*profile)(), ExpectedState expected)
{
    for (int sharpness : {128, 127}) {
        SCOPED_TRACE(sharpness);
        sim_host_set_field(SYSINFO_u8Sharpness, uint8_t(sharpness));
        const std::vector<Bytes> start = random_platform(uint32_t(sharpness));
        ASSERT_EQ(profile().result, 0);
        expect_state(expected(sharpness, 11, start));
    }
}

void expect_only_sharpness_read(Outcome (*profile)(), ExpectedState expected, unsigned char fill,
                                const Calls &calls)
{
    std::memset(sim_host_sysinfo(), fill, SIM_HOST_SYSINFO_SIZE);
    sim_host_set_field(SYSINFO_u8Sharpness, 128);
    ASSERT_EQ(profile().result, 0);
    EXPECT_EQ(platform_calls(), calls);
    expect_state(expected(128, 11, power_on_state()));
}

void expect_refresh_gamma_mark_untouched(Outcome (*profile)(), int32_t (*refresh)(int32_t, int32_t), int32_t G1,
                                         int32_t G2, const ISP_GAMMA_ATTR_S &profile_curve)
{
    {
        StdoutCapture quiet;          // the refresh prints its black levels
        ASSERT_EQ(refresh(G1, 5), 0); // high-gain curve, mark 1
    }
    ASSERT_EQ(profile().result, 0); // loads the profile's curve
    const unsigned gamma_sets = sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr");
    {
        StdoutCapture quiet;
        ASSERT_EQ(refresh(G2, 5), 0); // same band: the mark still says high-gain
    }
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), gamma_sets);
    const ISP_GAMMA_ATTR_S g = platform_record<ISP_GAMMA_ATTR_S>(SIM_REC_GAMMA_ATTR);
    EXPECT_TRUE(same_bytes(&g, &profile_curve, sizeof g)) << "the profile's curve stays";
}
