/* isptune-sim tables and explain: the library's tables, read back through its own refreshes. */
#include <dlfcn.h>
#include <errno.h>
#include <math.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include "isptune_sim.h"
#include "sim_host.h"
#include "sim_mpp.h"

const char *const k_nr_field_names[NR_FIELDS] = {
    "SBS0", "SBS1", "SBS2", "SBS3", "SDS0", "SDS1", "SDS2", "SDS3", "STH0", "STH1", "STH2", "STH3",
    "MDP",  "Pro3", "MATH1", "MATH2", "MDDZ1", "MDDZ2", "TFS1", "TFS2", "SFC", "TFC", "TPC", "TRC",
};

const char *const k_curve_names[CURVE_COUNT] = {
    "g_gamma_table_day", "g_gamma_table_day_highgain", "g_gamma_table_night", "g_gamma_table_night_highgain",
};

enum { NR_MATH1 = 14, NR_MATH2 = 15, NR_SBS3 = 3, NR_SDS3 = 7 };

void table_name(int profile, int field, char *buf, size_t len)
{
    snprintf(buf, len, "g_3dnr_%s_%s", k_nr_field_names[field], profile ? "night" : "day");
}

int gain_level(int G)
{
    /* Part 1.3 step 3, to the letter: the decimal logarithm over log10(2), truncated. */
    return G >= 1 ? (int)(log10((double)G) / 0.3010299956639812) : 0;
}

int interp_expected(const uint8_t table[LEVELS], int G, int L)
{
    /* Part 3.1: T[L] + floor((T[L+1] - T[L]) * (G - 2^L) / 2^L), rounding towards minus infinity. */
    int lo = 1 << L;
    int num = ((int)table[L + 1] - (int)table[L]) * (G - lo);
    int q = num >= 0 ? num / lo : -((-num + lo - 1) / lo);
    return table[L] + q;
}

void read_sched_values(const probe_tables *pt, sched_values *v)
{
    memset(v, 0, sizeof *v);
    VPSS_GRP_NRS_PARAM_S nrs;
    sim_mpp_read(SIM_REC_VPSS_NRS_PARAM, &nrs);
    const NRS_PARAM_V2_S *p = &nrs.stNRSParam_V2;
    const uint8_t nr[NR_FIELDS] = {
        p->SBS0, p->SBS1, p->SBS2, p->SBS3, p->SDS0, p->SDS1, p->SDS2, p->SDS3,
        p->STH0, p->STH1, p->STH2, p->STH3, p->MDP, p->Pro3, (uint8_t)p->MATH1, (uint8_t)p->MATH2,
        p->MDDZ1, p->MDDZ2, p->TFS1, p->TFS2, p->SFC, p->TFC, p->TPC, p->TRC,
    };
    memcpy(v->nr, nr, sizeof nr);
    v->math[0] = p->MATH1;
    v->math[1] = p->MATH2;

    ISP_DRC_ATTR_S drc;
    sim_mpp_read(SIM_REC_DRC_ATTR, &drc);
    v->drc_enable = drc.bEnable != HI_FALSE;
    v->drc_manual = drc.enOpType == OP_TYPE_MANUAL;
    v->drc_strength = drc.stManual.u8Strength;

    ISP_DEFOG_ATTR_S defog;
    sim_mpp_read(SIM_REC_DEFOG_ATTR, &defog);
    v->defog_enable = defog.bEnable != HI_FALSE;
    v->defog_manual = defog.enOpType == OP_TYPE_MANUAL;
    v->defog_strength = defog.stManual.u8strength;

    ISP_BLACK_LEVEL_S black;
    sim_mpp_read(SIM_REC_BLACK_LEVEL, &black);
    memcpy(v->black, black.au16BlackLevel, sizeof v->black);

    ISP_GAMMA_ATTR_S gamma;
    sim_mpp_read(SIM_REC_GAMMA_ATTR, &gamma);
    v->curve = CURVE_OTHER;
    for (int c = 0; pt != NULL && c < CURVE_COUNT; c++)
        if (memcmp(gamma.u16Table, pt->curves[c], sizeof gamma.u16Table) == 0) {
            v->curve = c;
            break;
        }

    ISP_WB_ATTR_S wb;
    sim_mpp_read(SIM_REC_WB_ATTR, &wb);
    v->wb_rg = wb.stAuto.u8RGStrength;
    v->wb_bg = wb.stAuto.u8BGStrength;

    ISP_EXPOSURE_ATTR_S exp;
    sim_mpp_read(SIM_REC_EXPOSURE_ATTR, &exp);
    v->ae_strategy = (uint8_t)exp.stAuto.enAEStrategyMode;
    v->hist_slope = exp.stAuto.u16HistRatioSlope;
    v->hist_offset = exp.stAuto.u8MaxHistOffset;
}

/* ---- probing, in a child process ------------------------------------------------------------------------ */

typedef int32_t (*refresh_fn)(int32_t, int32_t);

static void read_gamma(uint16_t out[GAMMA_NODES])
{
    ISP_GAMMA_ATTR_S gamma;
    sim_mpp_read(SIM_REC_GAMMA_ATTR, &gamma);
    memcpy(out, gamma.u16Table, sizeof gamma.u16Table);
}

static void read_black(uint16_t out[4])
{
    ISP_BLACK_LEVEL_S black;
    sim_mpp_read(SIM_REC_BLACK_LEVEL, &black);
    memcpy(out, black.au16BlackLevel, sizeof black.au16BlackLevel);
}

static void probe_profile(const isplib *lib, int profile, probe_tables *pt)
{
    refresh_fn refresh = profile ? lib->ISP_SetParamNightRefresh : lib->ISP_SetParamDayRefresh;
    /* Entry i of a per-level table is what the refresh writes at G = 2^i: exactly T[i] (Part 3.1, "at the
     * ends of a level"). G = 2^i is reached from level i - 1, so entry 11 needs no level beyond 10. */
    for (int i = 0; i < LEVELS; i++) {
        refresh(1 << i, i > 0 ? i - 1 : 0);
        sched_values v;
        read_sched_values(NULL, &v);
        for (int f = 0; f < NR_FIELDS; f++) pt->nr[profile][f][i] = v.nr[f];
        pt->drc[profile][i] = v.drc_strength;
        pt->defog[profile][i] = v.defog_strength;
    }
    /* The curves and black levels of the bands (Parts 3.2, 3.3, 3.4). */
    int high = profile ? 33 : 55;
    refresh(1, 0);
    read_gamma(pt->curves[profile ? CURVE_NIGHT : CURVE_DAY]);
    read_black(pt->black_low[profile]);
    refresh(high, gain_level(high));
    read_gamma(pt->curves[profile ? CURVE_NIGHT_HIGHGAIN : CURVE_DAY_HIGHGAIN]);
    refresh(61, gain_level(61));
    read_black(pt->black_60);
}

static void probe_in_child(const isplib *lib, probe_tables *pt)
{
    sim_mpp_reset();
    sim_mpp_log_enable(0);
    sim_host_reset();
    sim_host_run_commands(0);
    probe_profile(lib, PROFILE_DAY, pt);
    probe_profile(lib, PROFILE_NIGHT, pt);
    /* What each refresh writes at every gain, going up from G = 1 on a fresh platform. */
    for (int p = 0; p < 2; p++) {
        refresh_fn refresh = p ? lib->ISP_SetParamNightRefresh : lib->ISP_SetParamDayRefresh;
        sim_mpp_reset();
        sim_mpp_log_enable(0);
        for (int G = 1; G <= MAX_G; G++) {
            refresh(G, gain_level(G));
            read_sched_values(pt, &pt->at[p][G]);
        }
    }
}

int probe_library(const isplib *lib, probe_tables *pt, char *err, size_t errlen)
{
    int fds[2];
    if (pipe(fds) != 0) {
        snprintf(err, errlen, "pipe: %s", strerror(errno));
        return -1;
    }
    fflush(NULL);
    pid_t pid = fork();
    if (pid < 0) {
        snprintf(err, errlen, "fork: %s", strerror(errno));
        close(fds[0]);
        close(fds[1]);
        return -1;
    }
    if (pid == 0) {
        /* The child's library and platform are copies: the marks and records it changes stay here. */
        close(fds[0]);
        redirect_library_stdout("/dev/null");
        probe_tables *mine = calloc(1, sizeof *mine);
        int rc = 1;
        if (mine != NULL) {
            probe_in_child(lib, mine);
            const char *p = (const char *)mine;
            size_t left = sizeof *mine;
            while (left > 0) {
                ssize_t n = write(fds[1], p, left);
                if (n <= 0 && errno != EINTR) break;
                if (n > 0) p += n, left -= (size_t)n;
            }
            rc = left == 0 ? 0 : 1;
        }
        _exit(rc);
    }
    close(fds[1]);
    char *p = (char *)pt;
    size_t left = sizeof *pt;
    while (left > 0) {
        ssize_t n = read(fds[0], p, left);
        if (n == 0) break;
        if (n < 0) {
            if (errno == EINTR) continue;
            break;
        }
        p += n;
        left -= (size_t)n;
    }
    close(fds[0]);
    int status = 0;
    waitpid(pid, &status, 0);
    if (left != 0 || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        snprintf(err, errlen, "reading the tables through the library's refreshes failed (%s)",
                 WIFSIGNALED(status) ? strsignal(WTERMSIG(status)) : "incomplete answer");
        return -1;
    }
    return 0;
}

/* ---- explain ------------------------------------------------------------------------------------------- */

static const char *profile_name(int profile)
{
    return profile ? "night" : "day";
}

/* One interpolated field: its table points, the weight and the value; returns 1 when the library's value
 * differs from the rule's. */
static int explain_field(const char *field, const char *table, const uint8_t t[LEVELS], int G, int L, int written)
{
    int lo = 1 << L;
    int computed = interp_expected(t, G, L);
    double weight = (double)(G - lo) / lo;
    fprintf(g_out, "  %-6s %-22s %5d %5d  %6.4f  %5d + (%4d) x %6.4f = %8.3f -> %4d  %7d%s\n", field, table, t[L],
            t[L + 1], weight, t[L], t[L + 1] - t[L], weight, t[L] + (t[L + 1] - t[L]) * weight, computed, written,
            computed == written ? "" : "   <- differs");
    return computed != written;
}

int cmd_explain(const isplib *lib, int G, int profile)
{
    probe_tables *pt = calloc(1, sizeof *pt);
    char err[512];
    if (pt == NULL || probe_library(lib, pt, err, sizeof err) != 0) {
        fprintf(stderr, "isptune-sim: %s\n", pt ? err : "out of memory");
        free(pt);
        return EXIT_RUNTIME;
    }
    int L = gain_level(G);
    int lo = 1 << L;
    const sched_values *w = &pt->at[profile][G];
    fprintf(g_out, "isptune-sim explain: %s profile (%s) at system gain G = %d\n", profile_name(profile),
            profile ? "ISP_SetParamNightRefresh, Part 3.3" : "ISP_SetParamDayRefresh, Part 3.2", G);
    fprintf(g_out, "  level L = trunc(log10(%d) / log10(2)) = %d: G lies between the table points L%d (gain %d) and "
            "L%d (gain %d)\n", G, L, L, lo, L + 1, 2 * lo);
    fprintf(g_out, "  weight w = (G - %d) / %d = %.4f; value = T[L] + (T[L+1] - T[L]) x w, rounded down "
            "(Part 3.1)\n\n", lo, lo, (double)(G - lo) / lo);
    fprintf(g_out, "  %-6s %-22s %5s %5s  %6s  %-38s %7s\n", "field", "table", "T[L]", "T[L+1]", "w", "rule",
            "written");
    int differ = 0;
    char name[64];
    for (int f = 0; f < NR_FIELDS; f++) {
        table_name(profile, f, name, sizeof name);
        int written = f == NR_MATH1 ? w->math[0] : f == NR_MATH2 ? w->math[1] : w->nr[f];
        differ += explain_field(k_nr_field_names[f], name, pt->nr[profile][f], G, L, written);
    }
    differ += explain_field("DRC", profile ? "gNightDRCStrength" : "gColorDRCStrength", pt->drc[profile], G, L,
                            w->drc_strength);
    differ += explain_field("defog", profile ? "gNightDefog" : "gColorDefog", pt->defog[profile], G, L,
                            w->defog_strength);

    const char *low = profile ? "g_black_level_table" : "g_black_level_table_day";
    const uint16_t *bl = pt->black_low[profile];
    fprintf(g_out, "\n  black level  %s\n", G > 60   ? "G > 60: g_black_level_table_60"
                                           : G >= 55 ? "55 <= G <= 60: kept as read (the last table written)"
                                                     : profile ? "G <= 54: g_black_level_table"
                                                               : "G <= 54: g_black_level_table_day");
    fprintf(g_out, "               %s = %u %u %u %u, g_black_level_table_60 = %u %u %u %u; written %u %u %u %u\n",
            low, bl[0], bl[1], bl[2], bl[3], pt->black_60[0], pt->black_60[1], pt->black_60[2], pt->black_60[3],
            w->black[0], w->black[1], w->black[2], w->black[3]);
    int want_curve = profile ? (G >= 33 ? CURVE_NIGHT_HIGHGAIN : CURVE_NIGHT) : (G >= 55 ? CURVE_DAY_HIGHGAIN : CURVE_DAY);
    fprintf(g_out, "  gamma        %s; written %s%s\n",
            profile ? "G <= 32: g_gamma_table_night, G >= 33: g_gamma_table_night_highgain"
                    : "G <= 54: g_gamma_table_day, G >= 55: g_gamma_table_day_highgain",
            w->curve >= 0 ? k_curve_names[w->curve] : "another curve",
            w->curve == want_curve ? "" : "   <- differs (the refresh loads a curve only when its band changes)");
    if (!profile)
        fprintf(g_out, "  white balance  R/G and B/G strengths %u, %u (constant 128, not gain-scheduled)\n", w->wb_rg,
                w->wb_bg);
    fprintf(g_out, "  backlight      the exposure strategy follows u8BlcLevel, not the gain (written only while "
            "u8BlcEnable is on)\n");
    fprintf(g_out, "\n  (host settings of a camera at power-on: u8DnrMode 0, so all 24 noise-reduction fields are "
            "scheduled;\n   u8WdrLevel 0 and strong-light inhibition off, so DRC is; u8DefogMode 0, so defog is)\n");
    if (differ) fprintf(g_out, "\n%d value(s) differ from the rule of Part 3.1\n", differ);
    free(pt);
    return differ ? EXIT_CHECKS : EXIT_OK;
}

/* ---- tables -------------------------------------------------------------------------------------------- */

typedef struct {
    const char *name;
    int size;  /* element bytes: 1, 2 or 4 */
    int count;
} table_desc;

/* Every exported table (Parts 2.1 and 2.2), with its element width and length. */
static const table_desc k_exported[] = {
    {"gColorSatAttr", 1, 12}, {"gColorAnFCStrength", 1, 12}, {"gColorAnFCThreshold", 1, 12},
    {"gColorAnFCOffset", 1, 12}, {"gColorEdgeSmoothThr", 2, 12}, {"gColorEdgeSmoothSlope", 2, 12},
    {"gColorAntiAliasThr", 2, 12}, {"gColorAntiAliasSlope", 2, 12}, {"gColorNrCoarseStr", 2, 12},
    {"gColorDetailEnhanceStr", 1, 12}, {"gColorNoiseSuppressStr", 2, 12}, {"gColorSharpenLumaStr", 2, 12},
    {"gColorSharpenUd", 2, 12}, {"gColorSharpenD", 1, 12}, {"gColorTextureThr", 1, 12},
    {"gColorSharpenEdge", 1, 12}, {"gColorEdgeThr", 1, 12}, {"gColorOverShoot", 1, 12},
    {"gColorUnderShoot", 1, 12}, {"gColorshootSupStr", 1, 12}, {"gColorDetailCtrl", 1, 12},
    {"gColorStrength", 2, 12}, {"gColorBlendRatio", 2, 12}, {"gColorDefog", 1, 12}, {"gColorDRCStrength", 1, 12},
    {"gColorHighCCM", 2, 9}, {"gColorMidCCM", 2, 9}, {"gColorLowCCM", 2, 9},
    {"gColorCCMHighColorTemp", 2, 1}, {"gColorCCMMidColorTemp", 2, 1}, {"gColorCCMLowColorTemp", 2, 1},
    {"gColorAWBLowColorTemp", 2, 1}, {"gColorAWBHighColorTemp", 2, 1}, {"gColorCompensation", 4, 1},
    {"gColorAGainRangeMax", 4, 1}, {"gColorDGainRangeMax", 4, 1}, {"gColorISPDGainRangeMax", 4, 1},
    {"gColorAEWeightTable", 4, 255},
    {"gNightEdgeSmoothThr", 2, 12}, {"gNightEdgeSmoothSlope", 2, 12}, {"gNightAntiAliasThr", 2, 12},
    {"gNightAntiAliasSlope", 2, 12}, {"gNightNrCoarseStr", 2, 12}, {"gNightDetailEnhanceStr", 1, 12},
    {"gNightNoiseSuppressStr", 2, 12}, {"gNightSharpenLumaStr", 2, 12}, {"gNightSharpenUd", 2, 12},
    {"gNightSharpenD", 1, 12}, {"gNightTextureThr", 1, 12}, {"gNightSharpenEdge", 1, 12},
    {"gNightEdgeThr", 1, 12}, {"gNightOverShoot", 1, 12}, {"gNightUnderShoot", 1, 12},
    {"gNightshootSupStr", 1, 12}, {"gNightDetailCtrl", 1, 12}, {"gNightStrength", 2, 12},
    {"gNightBlendRatio", 2, 12}, {"gNightDefog", 1, 12}, {"gNightDRCStrength", 1, 12},
    {"g_3dnr_SBS0_night", 1, 12}, {"g_3dnr_SBS1_night", 1, 12}, {"g_3dnr_SBS2_night", 1, 12},
    {"g_3dnr_SBS3_night", 1, 12}, {"g_3dnr_SDS0_night", 1, 12}, {"g_3dnr_SDS1_night", 1, 12},
    {"g_3dnr_SDS2_night", 1, 12}, {"g_3dnr_SDS3_night", 1, 12}, {"g_3dnr_STH0_night", 1, 12},
    {"g_3dnr_STH1_night", 1, 12}, {"g_3dnr_STH2_night", 1, 12}, {"g_3dnr_STH3_night", 1, 12},
    {"g_3dnr_MDP_night", 1, 12}, {"g_3dnr_Pro3_night", 1, 12}, {"g_3dnr_MATH1_night", 1, 12},
    {"g_3dnr_MATH2_night", 1, 12}, {"g_3dnr_MDDZ1_night", 1, 12}, {"g_3dnr_MDDZ2_night", 1, 12},
    {"g_3dnr_TFS1_night", 1, 12}, {"g_3dnr_TFS2_night", 1, 12}, {"g_3dnr_SFC_night", 1, 12},
    {"g_3dnr_TFC_night", 1, 12}, {"g_3dnr_TPC_night", 1, 12}, {"g_3dnr_TRC_night", 1, 12},
    {"gNightVPSSSharpenUd", 2, 12}, {"gNightVPSSSharpenD", 1, 12}, {"gNightVPSSTextureThr", 1, 12},
    {"gNightVPSSSharpenEdge", 1, 12}, {"gNightVPSSEdgeThd", 1, 12}, {"gNightVPSSOverShoot", 1, 12},
    {"gNightVPSSUnderShoot", 1, 12}, {"gNightVPSSShootSupStr", 1, 12}, {"gNightVPSSDetailCtrl", 1, 12},
    {"gNightCompensation", 4, 1}, {"gNightAGainRangeMax", 4, 1}, {"gNightDGainRangeMax", 4, 1},
    {"gNightISPDGainRangeMax", 4, 1}, {"gNightAEWeightTable", 4, 255}, {"g_gamma_table_night", 4, 257},
};

static unsigned long element(const void *base, int size, int i)
{
    const unsigned char *p = (const unsigned char *)base + (size_t)i * (size_t)size;
    if (size == 1) return p[0];
    if (size == 2) {
        uint16_t v;
        memcpy(&v, p, 2);
        return v;
    }
    uint32_t v;
    memcpy(&v, p, 4);
    return v;
}

/* One table on one or more lines: 12 values a line for per-level tables, 17 for the weight grid. */
static void print_values(FILE *f, const char *name, const char *type, int count, const void *base, int size)
{
    int per_line = count == 255 ? 17 : count == 257 ? 16 : 12;
    fprintf(f, "%-30s %s[%d]", name, type, count);
    for (int i = 0; i < count; i++) {
        if (count > per_line && i % per_line == 0) fprintf(f, "\n   ");
        fprintf(f, " %lu", element(base, size, i));
    }
    fputc('\n', f);
}

static void print_tables(FILE *f, const isplib *lib, const probe_tables *pt)
{
    fprintf(f, "# Exported tables (Parts 2.1 and 2.2), read from %s\n", lib->path);
    for (size_t i = 0; i < sizeof k_exported / sizeof k_exported[0]; i++) {
        const table_desc *d = &k_exported[i];
        const void *base = dlsym(lib->handle, d->name);
        if (base == NULL) {
            fprintf(f, "%-30s (not exported!)\n", d->name);
            continue;
        }
        print_values(f, d->name, d->size == 1 ? "u8" : d->size == 2 ? "u16" : "u32", d->count, base, d->size);
    }
    fprintf(f, "\n# Internal tables (Part 3.4 and the day gamma of Part 2.1), recovered through the refreshes:\n"
               "# entry i of a per-level table is what the refresh writes at system gain 2^i\n");
    char name[64];
    for (int f2 = 0; f2 < NR_FIELDS; f2++) {
        table_name(PROFILE_DAY, f2, name, sizeof name);
        print_values(f, name, "u8", LEVELS, pt->nr[PROFILE_DAY][f2], 1);
    }
    print_values(f, "g_black_level_table", "u16", 4, pt->black_low[PROFILE_NIGHT], 2);
    print_values(f, "g_black_level_table_day", "u16", 4, pt->black_low[PROFILE_DAY], 2);
    print_values(f, "g_black_level_table_60", "u16", 4, pt->black_60, 2);
    print_values(f, "g_gamma_table_day", "u16", GAMMA_NODES, pt->curves[CURVE_DAY], 2);
    print_values(f, "g_gamma_table_day_highgain", "u16", GAMMA_NODES, pt->curves[CURVE_DAY_HIGHGAIN], 2);
    print_values(f, "g_gamma_table_night_highgain", "u16", GAMMA_NODES, pt->curves[CURVE_NIGHT_HIGHGAIN], 2);
}

static const char *curve_short(int c)
{
    static const char *const names[CURVE_COUNT] = {"day", "day_hg", "night", "night_hg"};
    return c >= 0 && c < CURVE_COUNT ? names[c] : "other";
}

/* The gain-scheduled values at every G, one line per G; also the CSV the plots read. */
static void print_schedule(FILE *f, FILE *csv, const probe_tables *pt, int profile)
{
    fprintf(f, "\n# What the %s refresh writes at system gain G (level L), going up from G = 1\n",
            profile ? "night" : "day");
    fprintf(f, "%3s %2s", "G", "L");
    if (csv) fprintf(csv, "G,L");
    for (int i = 0; i < NR_FIELDS; i++) {
        fprintf(f, " %5s", k_nr_field_names[i]);
        if (csv) fprintf(csv, ",%s", k_nr_field_names[i]);
    }
    fprintf(f, " %5s %5s %5s %8s\n", "DRC", "defog", "black", "gamma");
    if (csv) fprintf(csv, ",DRC,defog,black,gamma\n");
    for (int G = 1; G <= MAX_G; G++) {
        const sched_values *v = &pt->at[profile][G];
        fprintf(f, "%3d %2d", G, gain_level(G));
        if (csv) fprintf(csv, "%d,%d", G, gain_level(G));
        for (int i = 0; i < NR_FIELDS; i++) {
            int value = i == NR_MATH1 ? v->math[0] : i == NR_MATH2 ? v->math[1] : v->nr[i];
            fprintf(f, " %5d", value);
            if (csv) fprintf(csv, ",%d", value);
        }
        fprintf(f, " %5u %5u %5u %8s\n", v->drc_strength, v->defog_strength, v->black[0], curve_short(v->curve));
        if (csv) fprintf(csv, ",%u,%u,%u,%d\n", v->drc_strength, v->defog_strength, v->black[0], v->curve);
    }
}

static FILE *open_in(const char *dir, const char *name)
{
    char path[1200];
    snprintf(path, sizeof path, "%s/%s", dir, name);
    FILE *f = fopen(path, "w");
    if (f == NULL) fprintf(stderr, "isptune-sim: %s: %s\n", path, strerror(errno));
    return f;
}

int cmd_tables(const isplib *lib, const char *out_dir, int plots)
{
    probe_tables *pt = calloc(1, sizeof *pt);
    char err[512];
    if (pt == NULL || probe_library(lib, pt, err, sizeof err) != 0) {
        fprintf(stderr, "isptune-sim: %s\n", pt ? err : "out of memory");
        free(pt);
        return EXIT_RUNTIME;
    }
    if (make_dirs(out_dir) != 0) {
        fprintf(stderr, "isptune-sim: %s: %s\n", out_dir, strerror(errno));
        free(pt);
        return EXIT_RUNTIME;
    }
    FILE *txt = open_in(out_dir, "tables.txt");
    FILE *day = open_in(out_dir, "schedule_day.csv");
    FILE *night = open_in(out_dir, "schedule_night.csv");
    FILE *gamma = open_in(out_dir, "gamma.csv");
    if (!txt || !day || !night || !gamma) {
        if (txt) fclose(txt);
        if (day) fclose(day);
        if (night) fclose(night);
        if (gamma) fclose(gamma);
        free(pt);
        return EXIT_RUNTIME;
    }
    print_tables(g_out, lib, pt);
    print_tables(txt, lib, pt);
    print_schedule(g_out, day, pt, PROFILE_DAY);
    print_schedule(txt, NULL, pt, PROFILE_DAY);
    print_schedule(g_out, night, pt, PROFILE_NIGHT);
    print_schedule(txt, NULL, pt, PROFILE_NIGHT);
    fprintf(gamma, "node,day,day_highgain,night,night_highgain\n");
    for (int n = 0; n < GAMMA_NODES; n++)
        fprintf(gamma, "%d,%u,%u,%u,%u\n", n, pt->curves[0][n], pt->curves[1][n], pt->curves[2][n], pt->curves[3][n]);
    fclose(txt);
    fclose(day);
    fclose(night);
    fclose(gamma);
    free(pt);
    fprintf(g_out, "\nwritten: %s/tables.txt, schedule_day.csv, schedule_night.csv, gamma.csv\n", out_dir);
    if (plots && plot_tables(out_dir) == 0)
        fprintf(g_out, "plots:   %s/schedule_day.png, schedule_night.png, gamma.png\n", out_dir);
    return EXIT_OK;
}
