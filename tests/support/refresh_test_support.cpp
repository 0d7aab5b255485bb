// Test support for Parts 3.2 to 3.4 (see refresh_test_support.h).
#include "refresh_test_support.h"

#include <climits>
#include <cmath>

RefreshKind g_day_refresh = {"ISP_SetParamDayRefresh", ISP_SetParamDayRefresh, &g_3dnr_tables_day,
                             gColorDRCStrength, gColorDefog, 55, g_gamma_table_day, g_gamma_table_day_highgain,
                             ISP_SetParamDay, 0};
RefreshKind g_night_refresh = {"ISP_SetParamNightRefresh", ISP_SetParamNightRefresh, &g_3dnr_tables_night,
                               gNightDRCStrength, gNightDefog, 33, g_gamma_table_night,
                               g_gamma_table_night_highgain, ISP_SetParamNight, 0};

const Calls kGammaCalls = {"HI_MPI_ISP_GetGammaAttr", "HI_MPI_ISP_SetGammaAttr"};
const Calls kDrcCalls = {"HI_MPI_ISP_GetDRCAttr", "HI_MPI_ISP_SetDRCAttr"};
const Calls kExposureCalls = {"HI_MPI_ISP_GetExposureAttr", "HI_MPI_ISP_SetExposureAttr"};

const StrategyRow kStrategyRows[5] = {
    {0, 1, 32, 64}, {1, 1, 144, 128}, {2, 1, 256, 255}, {3, 0, 1000, 7}, {200, 0, 1000, 7},
};

int32_t level_of(int32_t G)
{
    return int32_t(std::trunc(std::log10(double(G)) / 0.3010299956639812));
}

Outcome run_refresh(RefreshKind &kind, int32_t G, int32_t L)
{
    ++kind.refreshes;
    return captured([&] { return kind.refresh(G, L); });
}

Outcome run_refresh(RefreshKind &kind, int32_t G)
{
    return run_refresh(kind, G, level_of(G));
}

void load_other_curve(RefreshKind &kind, int32_t G)
{
    run_refresh(kind, G >= kind.high_gain_from ? 24 : 57);
    reset_simulators();
}

Outcome refresh_with(RefreshKind &kind, int32_t G, std::initializer_list<HostField> fields)
{
    load_other_curve(kind, G);
    for (const HostField &f : fields)
        sim_host_set_field(size_t(f.field), f.value);
    return run_refresh(kind, G);
}

std::string black_level_lines(int32_t G, int table_value)
{
    std::string out = "SYSTEM " + std::to_string(G) + " !!!\n";
    const std::string v = std::to_string(table_value);
    for (int i = 0; i < 4 && table_value != 0; ++i)
        out += (table_value == 73 ? "BlackLevelTable_60 " : "BlackLevelTable ") + v + " = " + v + " !!!\n";
    return out;
}

void PrintTo(const RefreshCase &c, std::ostream *os)
{
    *os << "G=" << c.G << " L=" << c.L;
}

std::string refresh_case_name(const ::testing::TestParamInfo<std::tuple<RefreshCase, bool>> &pi)
{
    return "G" + std::to_string(std::get<0>(pi.param).G) + (std::get<1>(pi.param) ? "_BlcOn" : "_BlcOff");
}

VPSS_GRP_NRS_PARAM_S expected_nrs(const Nr &v, int mode)
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

ISP_EXPOSURE_ATTR_S expected_exposure(int mode, int slope, int offset)
{
    ISP_EXPOSURE_ATTR_S r = power_on_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR);
    r.stAuto.enAEStrategyMode = ISP_AE_STRATEGY_E(mode);
    r.stAuto.u16HistRatioSlope = HI_U16(slope);
    r.stAuto.u8MaxHistOffset = HI_U8(offset);
    return r;
}

void seed_exposure()
{
    ISP_EXPOSURE_ATTR_S exp = power_on_record<ISP_EXPOSURE_ATTR_S>(SIM_REC_EXPOSURE_ATTR);
    exp.stAuto.enAEStrategyMode = AE_EXP_HIGHLIGHT_PRIOR;
    exp.stAuto.u16HistRatioSlope = 1000;
    exp.stAuto.u8MaxHistOffset = 7;
    sim_mpp_write(SIM_REC_EXPOSURE_ATTR, &exp);
}

ISP_DEFOG_ATTR_S seed_manual_defog(uint8_t strength)
{
    ISP_DEFOG_ATTR_S user = power_on_record<ISP_DEFOG_ATTR_S>(SIM_REC_DEFOG_ATTR);
    user.bEnable = HI_TRUE;
    user.enOpType = OP_TYPE_MANUAL;
    user.stManual.u8strength = strength;
    sim_mpp_write(SIM_REC_DEFOG_ATTR, &user);
    return user;
}

void expect_clean_run(const Outcome &run, const Calls &calls, const std::string &out)
{
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(platform_calls(), calls);
    for (size_t i = 0; i < sim_mpp_log_count(); ++i) {
        EXPECT_EQ(sim_mpp_log_at(i)->dev, 0) << i;
        EXPECT_EQ(sim_mpp_log_at(i)->result, HI_SUCCESS) << i;
    }
    EXPECT_EQ(run.out, out);
    EXPECT_TRUE(host_log_texts().empty());
}

void expect_case_records(const RefreshKind &kind, const RefreshCase &c)
{
    EXPECT_WRITTEN(VPSS_GRP_NRS_PARAM_S, "HI_MPI_VPSS_SetGrpNRSParam", expected_nrs(c.nr));
    EXPECT_WRITTEN(ISP_DRC_ATTR_S, "HI_MPI_ISP_SetDRCAttr", expected_drc(c.drc));
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr",
                   expected_gamma(c.high_gain ? kind.high_gain_curve : kind.curve));
    EXPECT_WRITTEN(ISP_DEFOG_ATTR_S, "HI_MPI_ISP_SetDeFogAttr", expected_defog(c.defog));
    EXPECT_WRITTEN(ISP_BLACK_LEVEL_S, "HI_MPI_ISP_SetBlackLevelAttr", expected_black(c.black));
}

void expect_dnr_mode_read_at_every_entry(RefreshKind &kind, int32_t G, const Nr &values)
{
    VPSS_GRP_NRS_PARAM_S user = power_on_record<VPSS_GRP_NRS_PARAM_S>(SIM_REC_VPSS_NRS_PARAM);
    user.stNRSParam_V2.SBS3 = 201, user.stNRSParam_V2.SDS3 = 202;
    user.stNRSParam_V2.MATH1 = 1203, user.stNRSParam_V2.MATH2 = 1204;
    for (int mode : {3, 1, 2, 0}) {
        sim_mpp_write(SIM_REC_VPSS_NRS_PARAM, &user);
        sim_host_set_field(SYSINFO_u8DnrMode, uint8_t(mode));
        ASSERT_EQ(run_refresh(kind, G).result, 0);
        VPSS_GRP_NRS_PARAM_S want = expected_nrs(values, mode);
        if (mode == 1 || mode == 3)
            want.stNRSParam_V2.SBS3 = 201, want.stNRSParam_V2.SDS3 = 202;
        if (mode == 2 || mode == 3)
            want.stNRSParam_V2.MATH1 = 1203, want.stNRSParam_V2.MATH2 = 1204;
        EXPECT_WRITTEN(VPSS_GRP_NRS_PARAM_S, "HI_MPI_VPSS_SetGrpNRSParam", want) << "mode " << mode;
    }
}

void expect_no_settings_record_refused(RefreshKind &kind)
{
    sim_host_sysinfo_null(1);
    Outcome run = run_refresh(kind, 24);
    EXPECT_EQ(run.result, -1);
    EXPECT_EQ(run.out, "GetSysInfo failed is NULL\n");
    EXPECT_EQ(sim_mpp_log_count(), 0u);
}

void expect_levels_outside_0_to_10_refused(RefreshKind &kind)
{
    for (int32_t L : {11, -1, 30, INT32_MIN}) {
        Outcome run = run_refresh(kind, 24, L);
        EXPECT_EQ(run.result, -1);
        EXPECT_EQ(run.out, std::string(kind.name) + ": gain level " + std::to_string(L) +
                               " is outside 0..10, nothing refreshed\n");
    }
    EXPECT_EQ(sim_mpp_log_count(), 0u);
}

void expect_band_crossings_load_the_other_curve(RefreshKind &kind)
{
    const int32_t low = kind.high_gain_from - 1, high = kind.high_gain_from;
    load_other_curve(kind, low);
    ASSERT_EQ(run_refresh(kind, low).result, 0);
    ASSERT_EQ(run_refresh(kind, high).result, 0);
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr", expected_gamma(kind.high_gain_curve));
    ASSERT_EQ(run_refresh(kind, low).result, 0);
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr", expected_gamma(kind.curve));
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), 3u);
}

void expect_only_its_own_mark_compared(RefreshKind &kind, int32_t G1, int32_t G2)
{
    load_other_curve(kind, G1);
    ASSERT_EQ(run_refresh(kind, G1).result, 0); // mark 1
    ISP_GAMMA_ATTR_S profile_curve = expected_gamma(kind.curve);
    sim_mpp_write(SIM_REC_GAMMA_ATTR, &profile_curve);

    size_t before = sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr");
    ASSERT_EQ(run_refresh(kind, G2).result, 0);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_GetGammaAttr"), before);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), before);
    ISP_GAMMA_ATTR_S now = platform_record<ISP_GAMMA_ATTR_S>(SIM_REC_GAMMA_ATTR);
    EXPECT_TRUE(same_bytes(&now, &profile_curve, sizeof now)); // the profile curve stays

    ASSERT_EQ(run_refresh(kind, kind.high_gain_from - 1).result, 0); // down a band ...
    ASSERT_EQ(run_refresh(kind, kind.high_gain_from).result, 0);     // ... and up again: the high-gain curve
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), before + 2);
    now = platform_record<ISP_GAMMA_ATTR_S>(SIM_REC_GAMMA_ATTR);
    ISP_GAMMA_ATTR_S high = expected_gamma(kind.high_gain_curve);
    EXPECT_TRUE(same_bytes(&now, &high, sizeof now));
}

void expect_profile_curve_stays_until_the_gain_leaves_the_band(RefreshKind &kind)
{
    const int32_t in_band = kind.high_gain_from + 7;
    load_other_curve(kind, in_band);
    ASSERT_EQ(run_refresh(kind, in_band).result, 0); // mark 1
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr", expected_gamma(kind.high_gain_curve));
    ASSERT_EQ(captured(kind.profile).result, 0);
    const ISP_GAMMA_ATTR_S profile_curve = expected_gamma(kind.curve);
    ISP_GAMMA_ATTR_S now = platform_record<ISP_GAMMA_ATTR_S>(SIM_REC_GAMMA_ATTR);
    ASSERT_TRUE(same_bytes(&now, &profile_curve, sizeof now)) << "the profile loaded its curve";

    const size_t gets = sim_mpp_call_count("HI_MPI_ISP_GetGammaAttr");
    const size_t sets = sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr");
    for (int32_t G : {kind.high_gain_from, in_band, 60, 62}) {
        ASSERT_EQ(run_refresh(kind, G).result, 0) << G;
        EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_GetGammaAttr"), gets) << G;
        EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), sets) << G;
    }
    now = platform_record<ISP_GAMMA_ATTR_S>(SIM_REC_GAMMA_ATTR);
    EXPECT_TRUE(same_bytes(&now, &profile_curve, sizeof now)) << "the profile's curve stays";

    ASSERT_EQ(run_refresh(kind, kind.high_gain_from - 1).result, 0); // below the band: its curve, mark 0
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), sets + 1);
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr", profile_curve);
    ASSERT_EQ(run_refresh(kind, kind.high_gain_from).result, 0); // up again: the high-gain curve returns
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), sets + 2);
    now = platform_record<ISP_GAMMA_ATTR_S>(SIM_REC_GAMMA_ATTR);
    const ISP_GAMMA_ATTR_S high = expected_gamma(kind.high_gain_curve);
    EXPECT_TRUE(same_bytes(&now, &high, sizeof now));
}

void expect_failed_gamma_set_not_retried_in_the_band(RefreshKind &kind)
{
    load_other_curve(kind, 24);
    sim_mpp_fail("HI_MPI_ISP_SetGammaAttr", 1, 1, HI_ERR_ISP_NOT_INIT);
    EXPECT_EQ(run_refresh(kind, 24).result, -1);
    EXPECT_EQ(host_log_texts(), std::vector<std::string>{"HI_MPI_ISP_SetGammaAttr failed!!!\n"});
    EXPECT_EQ(run_refresh(kind, 30).result, 0);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), 1u);
    EXPECT_EQ(run_refresh(kind, kind.high_gain_from).result, 0);
    EXPECT_EQ(run_refresh(kind, 30).result, 0);
    EXPECT_EQ(sim_mpp_call_count("HI_MPI_ISP_SetGammaAttr"), 3u);
    EXPECT_WRITTEN(ISP_GAMMA_ATTR_S, "HI_MPI_ISP_SetGammaAttr", expected_gamma(kind.curve));
}

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

void expect_every_gain_from_1_to_62_matches_the_integer_formula(RefreshKind &kind)
{
    load_other_curve(kind, 1);
    sim_host_set_field(SYSINFO_u8BlcEnable, 1);
    StdoutCapture capture;
    for (int G = 1; G <= 62; ++G) {
        const int L = level_of(G);
        ++kind.refreshes;
        ASSERT_EQ(kind.refresh(G, L), 0) << G;
        const NRS_PARAM_V2_S p = written_by<VPSS_GRP_NRS_PARAM_S>("HI_MPI_VPSS_SetGrpNRSParam").stNRSParam_V2;
        for (const NrField &f : kNrFields)
            EXPECT_EQ(f.read(p), interp_reference(kind.nr_tables->*f.table, G, L)) << f.name << " G=" << G;
        EXPECT_EQ(p.IES0, 0);
        EXPECT_EQ(written_by<ISP_DRC_ATTR_S>("HI_MPI_ISP_SetDRCAttr").stManual.u8Strength,
                  interp_reference(kind.drc_table, G, L))
            << G;
        EXPECT_EQ(written_by<ISP_DEFOG_ATTR_S>("HI_MPI_ISP_SetDeFogAttr").stManual.u8strength,
                  interp_reference(kind.defog_table, G, L))
            << G;
        EXPECT_EQ(platform_record<ISP_GAMMA_ATTR_S>(SIM_REC_GAMMA_ATTR).u16Table[1],
                  G >= kind.high_gain_from ? kind.high_gain_curve[1] : kind.curve[1])
            << G;
    }
}

void expect_day_level0_values(const NRS_PARAM_V2_S &p)
{
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

void PrintTo(const StrategyRow &row, std::ostream *os)
{
    *os << "u8BlcLevel " << row.level;
}

std::string strategy_row_name(const ::testing::TestParamInfo<StrategyRow> &pi)
{
    return "BlcLevel" + std::to_string(pi.param.level);
}
