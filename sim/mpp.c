/* Simulated MPP (design: "The simulator is a product"): the HI_MPI_* calls, their state, log and faults. */
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "sim_mpp.h"

/* ---- State: one record of each type, as the platform holds it ----------------------------------- */

enum unit { UNIT_ISP, UNIT_VI, UNIT_VPSS };

/* The vendor's answers to a bad device / group number and to a null record pointer (see sim_mpp.h). */
static const struct {
    HI_S32 bad_dev, null_ptr;
} k_unit_codes[] = {
    [UNIT_ISP] = {HI_ERR_ISP_ILLEGAL_PARAM, HI_ERR_ISP_NULL_PTR},
    [UNIT_VI] = {HI_ERR_VI_INVALID_DEVID, HI_ERR_VI_INVALID_NULL_PTR},
    [UNIT_VPSS] = {HI_ERR_VPSS_INVALID_DEVID, HI_ERR_VPSS_NULL_PTR},
};

static ISP_EXPOSURE_ATTR_S s_exposure_attr;
static ISP_EXP_INFO_S s_exp_info;
static ISP_PUB_ATTR_S s_pub_attr;
static ISP_WB_ATTR_S s_wb_attr;
static ISP_AWB_ATTR_EX_S s_awb_attr_ex;
static ISP_WB_INFO_S s_wb_info;
static ISP_DRC_ATTR_S s_drc_attr;
static ISP_BLACK_LEVEL_S s_black_level;
static ISP_GAMMA_ATTR_S s_gamma_attr;
static ISP_SATURATION_ATTR_S s_saturation_attr;
static ISP_COLORMATRIX_ATTR_S s_ccm_attr;
static ISP_ANTI_FALSECOLOR_S s_anti_falsecolor;
static ISP_DEMOSAIC_ATTR_S s_demosaic_attr;
static ISP_DP_DYNAMIC_ATTR_S s_dp_dynamic_attr;
static ISP_SHARPEN_ATTR_S s_sharpen_attr;
static ISP_DEFOG_ATTR_S s_defog_attr;
static ISP_IRIS_ATTR_S s_iris_attr;
static ISP_DCIRIS_ATTR_S s_dciris_attr;
static VI_DCI_PARAM_S s_vi_dci_param;
static VI_CSC_ATTR_S s_vi_csc_attr;
static VPSS_GRP_ATTR_S s_vpss_grp_attr;
static VPSS_GRP_NRS_PARAM_S s_vpss_nrs_param;

/* One row per record: its type name, where it lives, its size and the unit whose error codes it uses. */
static const struct record_row {
    const char *name;
    void *state;
    size_t size;
    enum unit unit;
} k_records[SIM_REC_COUNT] = {
#define REC(id, type, var, unit) [id] = {#type, &var, sizeof(type), unit}
    REC(SIM_REC_EXPOSURE_ATTR, ISP_EXPOSURE_ATTR_S, s_exposure_attr, UNIT_ISP),
    REC(SIM_REC_EXP_INFO, ISP_EXP_INFO_S, s_exp_info, UNIT_ISP),
    REC(SIM_REC_PUB_ATTR, ISP_PUB_ATTR_S, s_pub_attr, UNIT_ISP),
    REC(SIM_REC_WB_ATTR, ISP_WB_ATTR_S, s_wb_attr, UNIT_ISP),
    REC(SIM_REC_AWB_ATTR_EX, ISP_AWB_ATTR_EX_S, s_awb_attr_ex, UNIT_ISP),
    REC(SIM_REC_WB_INFO, ISP_WB_INFO_S, s_wb_info, UNIT_ISP),
    REC(SIM_REC_DRC_ATTR, ISP_DRC_ATTR_S, s_drc_attr, UNIT_ISP),
    REC(SIM_REC_BLACK_LEVEL, ISP_BLACK_LEVEL_S, s_black_level, UNIT_ISP),
    REC(SIM_REC_GAMMA_ATTR, ISP_GAMMA_ATTR_S, s_gamma_attr, UNIT_ISP),
    REC(SIM_REC_SATURATION_ATTR, ISP_SATURATION_ATTR_S, s_saturation_attr, UNIT_ISP),
    REC(SIM_REC_CCM_ATTR, ISP_COLORMATRIX_ATTR_S, s_ccm_attr, UNIT_ISP),
    REC(SIM_REC_ANTI_FALSECOLOR, ISP_ANTI_FALSECOLOR_S, s_anti_falsecolor, UNIT_ISP),
    REC(SIM_REC_DEMOSAIC_ATTR, ISP_DEMOSAIC_ATTR_S, s_demosaic_attr, UNIT_ISP),
    REC(SIM_REC_DP_DYNAMIC_ATTR, ISP_DP_DYNAMIC_ATTR_S, s_dp_dynamic_attr, UNIT_ISP),
    REC(SIM_REC_SHARPEN_ATTR, ISP_SHARPEN_ATTR_S, s_sharpen_attr, UNIT_ISP),
    REC(SIM_REC_DEFOG_ATTR, ISP_DEFOG_ATTR_S, s_defog_attr, UNIT_ISP),
    REC(SIM_REC_IRIS_ATTR, ISP_IRIS_ATTR_S, s_iris_attr, UNIT_ISP),
    REC(SIM_REC_DCIRIS_ATTR, ISP_DCIRIS_ATTR_S, s_dciris_attr, UNIT_ISP),
    REC(SIM_REC_VI_DCI_PARAM, VI_DCI_PARAM_S, s_vi_dci_param, UNIT_VI),
    REC(SIM_REC_VI_CSC_ATTR, VI_CSC_ATTR_S, s_vi_csc_attr, UNIT_VI),
    REC(SIM_REC_VPSS_GRP_ATTR, VPSS_GRP_ATTR_S, s_vpss_grp_attr, UNIT_VPSS),
    REC(SIM_REC_VPSS_NRS_PARAM, VPSS_GRP_NRS_PARAM_S, s_vpss_nrs_param, UNIT_VPSS),
#undef REC
};

/* ---- The 42 calls: one row each (name, record, direction) ---------------------------------------- */

enum call_id {
    CALL_ISP_SetExposureAttr, CALL_ISP_GetExposureAttr, CALL_ISP_QueryExposureInfo,
    CALL_ISP_SetIrisAttr, CALL_ISP_GetIrisAttr, CALL_ISP_SetDcirisAttr, CALL_ISP_GetDcirisAttr,
    CALL_ISP_SetWBAttr, CALL_ISP_GetWBAttr, CALL_ISP_SetAWBAttrEx, CALL_ISP_GetAWBAttrEx,
    CALL_ISP_QueryWBInfo, CALL_ISP_SetCCMAttr, CALL_ISP_GetCCMAttr,
    CALL_ISP_SetSaturationAttr, CALL_ISP_GetSaturationAttr, CALL_ISP_SetPubAttr, CALL_ISP_GetPubAttr,
    CALL_ISP_SetDRCAttr, CALL_ISP_GetDRCAttr, CALL_ISP_SetDPDynamicAttr, CALL_ISP_GetDPDynamicAttr,
    CALL_ISP_SetGammaAttr, CALL_ISP_GetGammaAttr, CALL_ISP_SetSharpenAttr, CALL_ISP_GetSharpenAttr,
    CALL_ISP_SetAntiFalseColorAttr, CALL_ISP_GetAntiFalseColorAttr,
    CALL_ISP_SetDemosaicAttr, CALL_ISP_GetDemosaicAttr, CALL_ISP_SetBlackLevelAttr, CALL_ISP_GetBlackLevelAttr,
    CALL_ISP_SetDeFogAttr, CALL_ISP_GetDeFogAttr,
    CALL_VI_SetCSCAttr, CALL_VI_GetCSCAttr, CALL_VI_SetDCIParam, CALL_VI_GetDCIParam,
    CALL_VPSS_SetGrpAttr, CALL_VPSS_GetGrpAttr, CALL_VPSS_SetGrpNRSParam, CALL_VPSS_GetGrpNRSParam,
    CALL_COUNT
};

static const struct call_row {
    const char *name;
    sim_mpp_record_id rec;
    int is_set; /* 1: copies the caller's record in; 0: Get / Query, copies the stored record out */
} k_calls[CALL_COUNT] = {
#define SET(fn, rec) [CALL_##fn] = {"HI_MPI_" #fn, rec, 1}
#define GET(fn, rec) [CALL_##fn] = {"HI_MPI_" #fn, rec, 0}
    SET(ISP_SetExposureAttr, SIM_REC_EXPOSURE_ATTR),   GET(ISP_GetExposureAttr, SIM_REC_EXPOSURE_ATTR),
    GET(ISP_QueryExposureInfo, SIM_REC_EXP_INFO),
    SET(ISP_SetIrisAttr, SIM_REC_IRIS_ATTR),           GET(ISP_GetIrisAttr, SIM_REC_IRIS_ATTR),
    SET(ISP_SetDcirisAttr, SIM_REC_DCIRIS_ATTR),       GET(ISP_GetDcirisAttr, SIM_REC_DCIRIS_ATTR),
    SET(ISP_SetWBAttr, SIM_REC_WB_ATTR),               GET(ISP_GetWBAttr, SIM_REC_WB_ATTR),
    SET(ISP_SetAWBAttrEx, SIM_REC_AWB_ATTR_EX),        GET(ISP_GetAWBAttrEx, SIM_REC_AWB_ATTR_EX),
    GET(ISP_QueryWBInfo, SIM_REC_WB_INFO),
    SET(ISP_SetCCMAttr, SIM_REC_CCM_ATTR),             GET(ISP_GetCCMAttr, SIM_REC_CCM_ATTR),
    SET(ISP_SetSaturationAttr, SIM_REC_SATURATION_ATTR), GET(ISP_GetSaturationAttr, SIM_REC_SATURATION_ATTR),
    SET(ISP_SetPubAttr, SIM_REC_PUB_ATTR),             GET(ISP_GetPubAttr, SIM_REC_PUB_ATTR),
    SET(ISP_SetDRCAttr, SIM_REC_DRC_ATTR),             GET(ISP_GetDRCAttr, SIM_REC_DRC_ATTR),
    SET(ISP_SetDPDynamicAttr, SIM_REC_DP_DYNAMIC_ATTR), GET(ISP_GetDPDynamicAttr, SIM_REC_DP_DYNAMIC_ATTR),
    SET(ISP_SetGammaAttr, SIM_REC_GAMMA_ATTR),         GET(ISP_GetGammaAttr, SIM_REC_GAMMA_ATTR),
    SET(ISP_SetSharpenAttr, SIM_REC_SHARPEN_ATTR),     GET(ISP_GetSharpenAttr, SIM_REC_SHARPEN_ATTR),
    SET(ISP_SetAntiFalseColorAttr, SIM_REC_ANTI_FALSECOLOR),
    GET(ISP_GetAntiFalseColorAttr, SIM_REC_ANTI_FALSECOLOR),
    SET(ISP_SetDemosaicAttr, SIM_REC_DEMOSAIC_ATTR),   GET(ISP_GetDemosaicAttr, SIM_REC_DEMOSAIC_ATTR),
    SET(ISP_SetBlackLevelAttr, SIM_REC_BLACK_LEVEL),   GET(ISP_GetBlackLevelAttr, SIM_REC_BLACK_LEVEL),
    SET(ISP_SetDeFogAttr, SIM_REC_DEFOG_ATTR),         GET(ISP_GetDeFogAttr, SIM_REC_DEFOG_ATTR),
    SET(VI_SetCSCAttr, SIM_REC_VI_CSC_ATTR),           GET(VI_GetCSCAttr, SIM_REC_VI_CSC_ATTR),
    SET(VI_SetDCIParam, SIM_REC_VI_DCI_PARAM),         GET(VI_GetDCIParam, SIM_REC_VI_DCI_PARAM),
    SET(VPSS_SetGrpAttr, SIM_REC_VPSS_GRP_ATTR),       GET(VPSS_GetGrpAttr, SIM_REC_VPSS_GRP_ATTR),
    SET(VPSS_SetGrpNRSParam, SIM_REC_VPSS_NRS_PARAM),  GET(VPSS_GetGrpNRSParam, SIM_REC_VPSS_NRS_PARAM),
#undef SET
#undef GET
};

/* ---- Bookkeeping: counters, faults, log; everything below is guarded by g_mutex ------------------- */

enum { FAULT_MAX = 32, LOG_CHUNK = 1024, LOG_DEFAULT_LIMIT = 100000 };

static pthread_mutex_t g_mutex = PTHREAD_MUTEX_INITIALIZER;
static int g_ready; /* 0 until the first use: the state is power-on at load without a constructor */

static unsigned g_call_counts[CALL_COUNT];

static struct fault {
    enum call_id call;
    unsigned nth;
    int times; /* > 0, or SIM_MPP_ALWAYS */
    HI_S32 code;
} g_faults[FAULT_MAX];
static size_t g_fault_count;

/* A log entry and whether it owns its record copy (identical consecutive copies are shared). */
typedef struct {
    sim_mpp_call pub;
    int owns_record;
} log_entry;

/* Entries live in fixed chunks so that a pointer handed out stays valid while the log grows. */
static log_entry **g_chunks;
static size_t g_chunk_slots;
static size_t g_log_count, g_log_limit, g_log_dropped;
static int g_log_on;
static const void *g_last_copy[SIM_REC_COUNT];

static void free_log_locked(void)
{
    for (size_t i = 0; i < g_log_count; i++) {
        log_entry *e = &g_chunks[i / LOG_CHUNK][i % LOG_CHUNK];
        if (e->owns_record) free((void *)e->pub.record);
    }
    for (size_t c = 0; c < g_chunk_slots; c++) free(g_chunks[c]);
    free(g_chunks);
    g_chunks = NULL;
    g_chunk_slots = 0;
    g_log_count = 0;
    memset(g_last_copy, 0, sizeof g_last_copy);
}

static void power_on_locked(void)
{
    for (int id = 0; id < SIM_REC_COUNT; id++)
        sim_mpp_power_on_record((sim_mpp_record_id)id, k_records[id].state);
    free_log_locked();
    g_log_limit = LOG_DEFAULT_LIMIT;
    g_log_dropped = 0;
    g_log_on = 1;
    memset(g_call_counts, 0, sizeof g_call_counts);
    g_fault_count = 0;
    g_ready = 1;
}

static void lock(void)
{
    pthread_mutex_lock(&g_mutex);
    if (!g_ready) power_on_locked();
}

static void unlock(void)
{
    pthread_mutex_unlock(&g_mutex);
}

/* The slot for entry number g_log_count, growing the chunk table as needed; NULL when out of memory. */
static log_entry *next_entry_locked(void)
{
    size_t chunk = g_log_count / LOG_CHUNK;
    if (chunk >= g_chunk_slots) {
        size_t slots = g_chunk_slots ? 2 * g_chunk_slots : 16;
        log_entry **grown = realloc(g_chunks, slots * sizeof *grown);
        if (grown == NULL) return NULL;
        memset(grown + g_chunk_slots, 0, (slots - g_chunk_slots) * sizeof *grown);
        g_chunks = grown;
        g_chunk_slots = slots;
    }
    if (g_chunks[chunk] == NULL && (g_chunks[chunk] = malloc(LOG_CHUNK * sizeof(log_entry))) == NULL)
        return NULL;
    return &g_chunks[chunk][g_log_count % LOG_CHUNK];
}

/* Record one call; `record` is the state just written or returned, NULL when no record was touched. */
static void log_call_locked(const struct call_row *call, HI_S32 dev, HI_S32 result, const void *record)
{
    if (!g_log_on) return;
    if (g_log_count >= g_log_limit) {
        g_log_dropped++;
        return;
    }
    size_t size = record ? k_records[call->rec].size : 0;
    const void *copy = NULL;
    int owns = 0;
    if (record) {
        const void *last = g_last_copy[call->rec];
        if (last != NULL && memcmp(last, record, size) == 0) {
            copy = last;
        } else {
            void *fresh = malloc(size);
            if (fresh == NULL) {
                g_log_dropped++;
                return;
            }
            memcpy(fresh, record, size);
            copy = fresh;
            owns = 1;
        }
    }
    log_entry *e = next_entry_locked();
    if (e == NULL) {
        if (owns) free((void *)copy);
        g_log_dropped++;
        return;
    }
    if (owns) g_last_copy[call->rec] = copy;
    e->pub = (sim_mpp_call){call->name, dev, result, size, copy};
    e->owns_record = owns;
    g_log_count++;
}

/* The code of the first armed fault that covers call number n of `call`, or HI_SUCCESS. */
static HI_S32 fault_code_locked(enum call_id call, unsigned n)
{
    for (size_t i = 0; i < g_fault_count; i++) {
        const struct fault *f = &g_faults[i];
        if (f->call != call || n < f->nth) continue;
        if (f->times == SIM_MPP_ALWAYS || n - f->nth < (unsigned)f->times) return f->code;
    }
    return HI_SUCCESS;
}

/*
 * Every HI_MPI_ call: count it, check device, pointer, injected fault and (NRS) version, in that order,
 * then copy the whole record in (`in`, Set) or out (`out`, Get / Query), and log it; one lock throughout.
 */
static HI_S32 mpp_call(enum call_id id, HI_S32 dev, const void *in, void *out)
{
    const struct call_row *call = &k_calls[id];
    const struct record_row *rec = &k_records[call->rec];
    const void *user = call->is_set ? in : (const void *)out;
    HI_S32 result;

    lock();
    unsigned n = ++g_call_counts[id];
    if (dev != 0) {
        result = k_unit_codes[rec->unit].bad_dev;
    } else if (user == NULL) {
        result = k_unit_codes[rec->unit].null_ptr;
    } else if ((result = fault_code_locked(id, n)) != HI_SUCCESS) {
        /* injected: nothing touched */
    } else if (call->rec == SIM_REC_VPSS_NRS_PARAM &&
               ((const VPSS_GRP_NRS_PARAM_S *)user)->enNRVer != VPSS_NR_V2) {
        result = HI_ERR_VPSS_ILLEGAL_PARAM; /* only the "S" interface, version 2, exists on this chip */
    } else if (call->is_set) {
        memcpy(rec->state, in, rec->size);
    } else {
        memcpy(out, rec->state, rec->size);
    }
    log_call_locked(call, dev, result, result == HI_SUCCESS ? rec->state : NULL);
    unlock();
    return result;
}

/* ---- The platform calls (prototypes from platform/mpp.h) ----------------------------------------- */

HI_S32 HI_MPI_ISP_SetExposureAttr(ISP_DEV IspDev, const ISP_EXPOSURE_ATTR_S *pstExpAttr)
{
    return mpp_call(CALL_ISP_SetExposureAttr, IspDev, pstExpAttr, NULL);
}

HI_S32 HI_MPI_ISP_GetExposureAttr(ISP_DEV IspDev, ISP_EXPOSURE_ATTR_S *pstExpAttr)
{
    return mpp_call(CALL_ISP_GetExposureAttr, IspDev, NULL, pstExpAttr);
}

HI_S32 HI_MPI_ISP_QueryExposureInfo(ISP_DEV IspDev, ISP_EXP_INFO_S *pstExpInfo)
{
    return mpp_call(CALL_ISP_QueryExposureInfo, IspDev, NULL, pstExpInfo);
}

HI_S32 HI_MPI_ISP_SetIrisAttr(ISP_DEV IspDev, const ISP_IRIS_ATTR_S *pstIrisAttr)
{
    return mpp_call(CALL_ISP_SetIrisAttr, IspDev, pstIrisAttr, NULL);
}

HI_S32 HI_MPI_ISP_GetIrisAttr(ISP_DEV IspDev, ISP_IRIS_ATTR_S *pstIrisAttr)
{
    return mpp_call(CALL_ISP_GetIrisAttr, IspDev, NULL, pstIrisAttr);
}

HI_S32 HI_MPI_ISP_SetDcirisAttr(ISP_DEV IspDev, const ISP_DCIRIS_ATTR_S *pstDcirisAttr)
{
    return mpp_call(CALL_ISP_SetDcirisAttr, IspDev, pstDcirisAttr, NULL);
}

HI_S32 HI_MPI_ISP_GetDcirisAttr(ISP_DEV IspDev, ISP_DCIRIS_ATTR_S *pstDcirisAttr)
{
    return mpp_call(CALL_ISP_GetDcirisAttr, IspDev, NULL, pstDcirisAttr);
}

HI_S32 HI_MPI_ISP_SetWBAttr(ISP_DEV IspDev, const ISP_WB_ATTR_S *pstWBAttr)
{
    return mpp_call(CALL_ISP_SetWBAttr, IspDev, pstWBAttr, NULL);
}

HI_S32 HI_MPI_ISP_GetWBAttr(ISP_DEV IspDev, ISP_WB_ATTR_S *pstWBAttr)
{
    return mpp_call(CALL_ISP_GetWBAttr, IspDev, NULL, pstWBAttr);
}

HI_S32 HI_MPI_ISP_SetAWBAttrEx(ISP_DEV IspDev, ISP_AWB_ATTR_EX_S *pstAWBAttrEx)
{
    return mpp_call(CALL_ISP_SetAWBAttrEx, IspDev, pstAWBAttrEx, NULL);
}

HI_S32 HI_MPI_ISP_GetAWBAttrEx(ISP_DEV IspDev, ISP_AWB_ATTR_EX_S *pstAWBAttrEx)
{
    return mpp_call(CALL_ISP_GetAWBAttrEx, IspDev, NULL, pstAWBAttrEx);
}

HI_S32 HI_MPI_ISP_QueryWBInfo(ISP_DEV IspDev, ISP_WB_INFO_S *pstWBInfo)
{
    return mpp_call(CALL_ISP_QueryWBInfo, IspDev, NULL, pstWBInfo);
}

HI_S32 HI_MPI_ISP_SetCCMAttr(ISP_DEV IspDev, const ISP_COLORMATRIX_ATTR_S *pstCCMAttr)
{
    return mpp_call(CALL_ISP_SetCCMAttr, IspDev, pstCCMAttr, NULL);
}

HI_S32 HI_MPI_ISP_GetCCMAttr(ISP_DEV IspDev, ISP_COLORMATRIX_ATTR_S *pstCCMAttr)
{
    return mpp_call(CALL_ISP_GetCCMAttr, IspDev, NULL, pstCCMAttr);
}

HI_S32 HI_MPI_ISP_SetSaturationAttr(ISP_DEV IspDev, const ISP_SATURATION_ATTR_S *pstSatAttr)
{
    return mpp_call(CALL_ISP_SetSaturationAttr, IspDev, pstSatAttr, NULL);
}

HI_S32 HI_MPI_ISP_GetSaturationAttr(ISP_DEV IspDev, ISP_SATURATION_ATTR_S *pstSatAttr)
{
    return mpp_call(CALL_ISP_GetSaturationAttr, IspDev, NULL, pstSatAttr);
}

HI_S32 HI_MPI_ISP_SetPubAttr(ISP_DEV IspDev, const ISP_PUB_ATTR_S *pstPubAttr)
{
    return mpp_call(CALL_ISP_SetPubAttr, IspDev, pstPubAttr, NULL);
}

HI_S32 HI_MPI_ISP_GetPubAttr(ISP_DEV IspDev, ISP_PUB_ATTR_S *pstPubAttr)
{
    return mpp_call(CALL_ISP_GetPubAttr, IspDev, NULL, pstPubAttr);
}

HI_S32 HI_MPI_ISP_SetDRCAttr(ISP_DEV IspDev, const ISP_DRC_ATTR_S *pstDRC)
{
    return mpp_call(CALL_ISP_SetDRCAttr, IspDev, pstDRC, NULL);
}

HI_S32 HI_MPI_ISP_GetDRCAttr(ISP_DEV IspDev, ISP_DRC_ATTR_S *pstDRC)
{
    return mpp_call(CALL_ISP_GetDRCAttr, IspDev, NULL, pstDRC);
}

HI_S32 HI_MPI_ISP_SetDPDynamicAttr(ISP_DEV IspDev, const ISP_DP_DYNAMIC_ATTR_S *pstDPDynamicAttr)
{
    return mpp_call(CALL_ISP_SetDPDynamicAttr, IspDev, pstDPDynamicAttr, NULL);
}

HI_S32 HI_MPI_ISP_GetDPDynamicAttr(ISP_DEV IspDev, ISP_DP_DYNAMIC_ATTR_S *pstDPDynamicAttr)
{
    return mpp_call(CALL_ISP_GetDPDynamicAttr, IspDev, NULL, pstDPDynamicAttr);
}

HI_S32 HI_MPI_ISP_SetGammaAttr(ISP_DEV IspDev, const ISP_GAMMA_ATTR_S *pstGammaAttr)
{
    return mpp_call(CALL_ISP_SetGammaAttr, IspDev, pstGammaAttr, NULL);
}

HI_S32 HI_MPI_ISP_GetGammaAttr(ISP_DEV IspDev, ISP_GAMMA_ATTR_S *pstGammaAttr)
{
    return mpp_call(CALL_ISP_GetGammaAttr, IspDev, NULL, pstGammaAttr);
}

HI_S32 HI_MPI_ISP_SetSharpenAttr(ISP_DEV IspDev, const ISP_SHARPEN_ATTR_S *pstShpAttr)
{
    return mpp_call(CALL_ISP_SetSharpenAttr, IspDev, pstShpAttr, NULL);
}

HI_S32 HI_MPI_ISP_GetSharpenAttr(ISP_DEV IspDev, ISP_SHARPEN_ATTR_S *pstShpAttr)
{
    return mpp_call(CALL_ISP_GetSharpenAttr, IspDev, NULL, pstShpAttr);
}

HI_S32 HI_MPI_ISP_SetAntiFalseColorAttr(ISP_DEV IspDev, const ISP_ANTI_FALSECOLOR_S *pstAntiFC)
{
    return mpp_call(CALL_ISP_SetAntiFalseColorAttr, IspDev, pstAntiFC, NULL);
}

HI_S32 HI_MPI_ISP_GetAntiFalseColorAttr(ISP_DEV IspDev, ISP_ANTI_FALSECOLOR_S *pstAntiFC)
{
    return mpp_call(CALL_ISP_GetAntiFalseColorAttr, IspDev, NULL, pstAntiFC);
}

HI_S32 HI_MPI_ISP_SetDemosaicAttr(ISP_DEV IspDev, const ISP_DEMOSAIC_ATTR_S *pstDemosaicAttr)
{
    return mpp_call(CALL_ISP_SetDemosaicAttr, IspDev, pstDemosaicAttr, NULL);
}

HI_S32 HI_MPI_ISP_GetDemosaicAttr(ISP_DEV IspDev, ISP_DEMOSAIC_ATTR_S *pstDemosaicAttr)
{
    return mpp_call(CALL_ISP_GetDemosaicAttr, IspDev, NULL, pstDemosaicAttr);
}

HI_S32 HI_MPI_ISP_SetBlackLevelAttr(ISP_DEV IspDev, const ISP_BLACK_LEVEL_S *pstBlackLevel)
{
    return mpp_call(CALL_ISP_SetBlackLevelAttr, IspDev, pstBlackLevel, NULL);
}

HI_S32 HI_MPI_ISP_GetBlackLevelAttr(ISP_DEV IspDev, ISP_BLACK_LEVEL_S *pstBlackLevel)
{
    return mpp_call(CALL_ISP_GetBlackLevelAttr, IspDev, NULL, pstBlackLevel);
}

HI_S32 HI_MPI_ISP_SetDeFogAttr(ISP_DEV IspDev, const ISP_DEFOG_ATTR_S *pstDefogAttr)
{
    return mpp_call(CALL_ISP_SetDeFogAttr, IspDev, pstDefogAttr, NULL);
}

HI_S32 HI_MPI_ISP_GetDeFogAttr(ISP_DEV IspDev, ISP_DEFOG_ATTR_S *pstDefogAttr)
{
    return mpp_call(CALL_ISP_GetDeFogAttr, IspDev, NULL, pstDefogAttr);
}

HI_S32 HI_MPI_VI_SetCSCAttr(VI_DEV ViDev, const VI_CSC_ATTR_S *pstCSCAttr)
{
    return mpp_call(CALL_VI_SetCSCAttr, ViDev, pstCSCAttr, NULL);
}

HI_S32 HI_MPI_VI_GetCSCAttr(VI_DEV ViDev, VI_CSC_ATTR_S *pstCSCAttr)
{
    return mpp_call(CALL_VI_GetCSCAttr, ViDev, NULL, pstCSCAttr);
}

HI_S32 HI_MPI_VI_SetDCIParam(VI_DEV ViDev, const VI_DCI_PARAM_S *pstDciParam)
{
    return mpp_call(CALL_VI_SetDCIParam, ViDev, pstDciParam, NULL);
}

HI_S32 HI_MPI_VI_GetDCIParam(VI_DEV ViDev, VI_DCI_PARAM_S *pstDciParam)
{
    return mpp_call(CALL_VI_GetDCIParam, ViDev, NULL, pstDciParam);
}

HI_S32 HI_MPI_VPSS_SetGrpAttr(VPSS_GRP VpssGrp, VPSS_GRP_ATTR_S *pstGrpAttr)
{
    return mpp_call(CALL_VPSS_SetGrpAttr, VpssGrp, pstGrpAttr, NULL);
}

HI_S32 HI_MPI_VPSS_GetGrpAttr(VPSS_GRP VpssGrp, VPSS_GRP_ATTR_S *pstGrpAttr)
{
    return mpp_call(CALL_VPSS_GetGrpAttr, VpssGrp, NULL, pstGrpAttr);
}

HI_S32 HI_MPI_VPSS_SetGrpNRSParam(VPSS_GRP VpssGrp, VPSS_GRP_NRS_PARAM_S *pstNRSParam)
{
    return mpp_call(CALL_VPSS_SetGrpNRSParam, VpssGrp, pstNRSParam, NULL);
}

HI_S32 HI_MPI_VPSS_GetGrpNRSParam(VPSS_GRP VpssGrp, VPSS_GRP_NRS_PARAM_S *pstNRSParam)
{
    return mpp_call(CALL_VPSS_GetGrpNRSParam, VpssGrp, NULL, pstNRSParam);
}

/* ---- Control interface (sim_mpp.h) --------------------------------------------------------------- */

void sim_mpp_reset(void)
{
    lock();
    power_on_locked();
    unlock();
}

size_t sim_mpp_record_size(sim_mpp_record_id id)
{
    return (unsigned)id < SIM_REC_COUNT ? k_records[id].size : 0;
}

const char *sim_mpp_record_name(sim_mpp_record_id id)
{
    return (unsigned)id < SIM_REC_COUNT ? k_records[id].name : NULL;
}

void sim_mpp_read(sim_mpp_record_id id, void *out)
{
    if ((unsigned)id >= SIM_REC_COUNT || out == NULL) return;
    lock();
    memcpy(out, k_records[id].state, k_records[id].size);
    unlock();
}

void sim_mpp_write(sim_mpp_record_id id, const void *in)
{
    if ((unsigned)id >= SIM_REC_COUNT || in == NULL) return;
    lock();
    memcpy(k_records[id].state, in, k_records[id].size);
    unlock();
}

void sim_mpp_set_exposure(HI_U32 exp_time, HI_U32 again, HI_U32 dgain, HI_U32 ispdgain)
{
    lock();
    s_exp_info.u32ExpTime = exp_time;
    s_exp_info.u32AGain = again;
    s_exp_info.u32DGain = dgain;
    s_exp_info.u32ISPDGain = ispdgain;
    unlock();
}

void sim_mpp_set_ave_lum(HI_U8 ave_lum)
{
    lock();
    s_exp_info.u8AveLum = ave_lum;
    unlock();
}

/* The call with this exact name, or CALL_COUNT. */
static enum call_id find_call(const char *function)
{
    for (int i = 0; function != NULL && i < CALL_COUNT; i++)
        if (strcmp(k_calls[i].name, function) == 0) return (enum call_id)i;
    return CALL_COUNT;
}

int sim_mpp_fail(const char *function, unsigned nth, int times, HI_S32 code)
{
    enum call_id call = find_call(function);
    const char *problem = call == CALL_COUNT            ? "no such call"
                          : nth == 0                    ? "nth counts from 1"
                          : times == 0 || times < -1    ? "times must be > 0 or SIM_MPP_ALWAYS"
                          : code == HI_SUCCESS          ? "a fault needs a non-zero code"
                                                        : NULL;
    if (problem != NULL) {
        fprintf(stderr, "sim_mpp_fail(%s, %u, %d, %#x): %s\n", function ? function : "(null)", nth, times,
                (unsigned)code, problem);
        return -1;
    }
    lock();
    int full = g_fault_count == FAULT_MAX;
    if (!full) g_faults[g_fault_count++] = (struct fault){call, nth, times, code};
    unlock();
    if (full) {
        fprintf(stderr, "sim_mpp_fail(%s): more than %d faults armed\n", function, FAULT_MAX);
        return -1;
    }
    return 0;
}

void sim_mpp_clear_faults(void)
{
    lock();
    g_fault_count = 0;
    unlock();
}

size_t sim_mpp_log_count(void)
{
    lock();
    size_t n = g_log_count;
    unlock();
    return n;
}

const sim_mpp_call *sim_mpp_log_at(size_t index)
{
    lock();
    const sim_mpp_call *e = index < g_log_count ? &g_chunks[index / LOG_CHUNK][index % LOG_CHUNK].pub : NULL;
    unlock();
    return e;
}

void sim_mpp_log_enable(int on)
{
    lock();
    g_log_on = on != 0;
    unlock();
}

void sim_mpp_log_limit(size_t max_entries)
{
    lock();
    g_log_limit = max_entries;
    unlock();
}

size_t sim_mpp_log_dropped(void)
{
    lock();
    size_t n = g_log_dropped;
    unlock();
    return n;
}

unsigned sim_mpp_call_count(const char *function)
{
    enum call_id call = find_call(function);
    if (call == CALL_COUNT) return 0;
    lock();
    unsigned n = g_call_counts[call];
    unlock();
    return n;
}
