/* Simulated MPP (design: "The simulator is a product"): ISP device 0, VI device 0, VPSS group 0. */
#ifndef ISPTUNE_SIM_MPP_H
#define ISPTUNE_SIM_MPP_H

/*
 * libisptune-sim.so defines every HI_MPI_* call of platform-layouts.md (d) with the prototypes of
 * platform/mpp.h, over one record of each attribute below, so that a process linking (or loading) the
 * library and the simulator behaves as on the camera. This header is the simulator's own control
 * interface, for tests and for isptune-sim.
 *
 * Calls. Get and Query copy the stored record out, Set copies the caller's record in, whole. Each call
 * holds one mutex from entry to exit, so calls are atomic against each other (read-modify-write races
 * between two callers remain, as on the real platform). Checks, in this order:
 *   1. device / group number other than 0: HI_ERR_ISP_ILLEGAL_PARAM (ISP; the vendor's ISP_CHECK_DEV
 *      answer), HI_ERR_VI_INVALID_DEVID (VI), HI_ERR_VPSS_INVALID_DEVID (VPSS);
 *   2. null record pointer: HI_ERR_ISP_NULL_PTR, HI_ERR_VI_INVALID_NULL_PTR, HI_ERR_VPSS_NULL_PTR;
 *   3. an injected fault armed for this call (sim_mpp_fail);
 *   4. VPSS NRS calls only: the caller's enNRVer must be VPSS_NR_V2, for Get as well as Set, else
 *      HI_ERR_VPSS_ILLEGAL_PARAM. Get then fills all 64 bytes with the stored record (enNRVer stays 2).
 * A failing call touches neither the state nor the caller's record.
 *
 * The simulator is in its power-on state when loaded; sim_mpp_reset() returns to it at any time.
 * Nothing here is called by libisptune.so.
 *
 * Power-on state (deterministic; sim_mpp_power_on_record gives each record). Every 16-entry automatic
 * array is filled in all 16 entries with distinct non-zero values (base + step * i, a different base per
 * array), so a writer of entries 0..11 visibly keeps 12..15.
 *   ISP_EXPOSURE_ATTR_S    auto AE, run interval 1; manual 8000 us / AGain 2048 / DGain 1024 / ISPDGain
 *                          1024 (op types auto); ExpTime 33000..16 us, AGain 16384..1024, DGain 4096..1024,
 *                          ISPDGain 2048..1024, SysGain 131072..1024, GainThreshold 65536, speed 64,
 *                          tolerance 2, compensation 56, EVBias 1024, highlight-prior, slow shutter,
 *                          anti-flicker off (50 Hz, normal), sub-flicker off (luma diff 22), delays 8/2,
 *                          weights 1 (edge) .. 8 (centre)
 *   ISP_EXP_INFO_S         ExpTime 10000 us, long 10000, gains 1024/1024/1024, Exposure 160000, not max,
 *                          HistError -3, 1024-bin histogram peaked at bin 224, AveLum 56, 16875 lines per
 *                          500 ms, 30 fps, ISO 100, 16-node AE route and route-ex
 *   ISP_PUB_ATTR_S         window 0,0 1920x1080, 30.0 fps, BAYER_GBRG
 *   ISP_WB_ATTR_S          auto AWB (interval 4); manual gains 420/256/257/460; ref 5000 K, 10000..2000 K,
 *                          strengths 128/128, speed 256, shift limit on (96), CbCr arrays filled
 *   ISP_AWB_ATTR_EX_S      tolerance 8, zone radius 10, curve limits 128/288, in/out detection on
 *   ISP_WB_INFO_S          gains 420/256/256/460, saturation 128, 5100 K, CCM, indoor
 *   ISP_DRC_ATTR_S         on, auto, manual strength 96, auto strength 128 (max 192, min 32), user tone map
 *                          off, 200-entry tone map and 33-entry colour LUT rising
 *   ISP_BLACK_LEVEL_S      240/241/242/243
 *   ISP_GAMMA_ATTR_S       on, ISP_GAMMA_CURVE_DEFAULT, table rising strictly from 0 to 4095
 *   ISP_SATURATION_ATTR_S  auto, manual 128, au8Sat 140 - 4i
 *   ISP_COLORMATRIX_ATTR_S auto, ISO and temperature activation on, 6500/5000/2800 K matrices
 *   ISP_ANTI_FALSECOLOR_S  on, auto, manual 10/8/3, auto arrays filled
 *   ISP_DEMOSAIC_ATTR_S    on, auto, all nine auto arrays filled
 *   ISP_DP_DYNAMIC_ATTR_S  on, twinkle suppression off, auto, strength and blend arrays filled
 *   ISP_SHARPEN_ATTR_S     on, luma weights 96+i, auto, all nine auto arrays filled
 *   ISP_DEFOG_ATTR_S       off, auto, manual 80, auto 144
 *   ISP_IRIS_ATTR_S        off, auto, DC iris, keep, hold 700, F1.4
 *   ISP_DCIRIS_ATTR_S      Kp 7000, Ki 200, Kd 3000, PWM duty 600..950, open 800
 *   VI_DCI_PARAM_S         off, black/contrast/light gains 28/30/26, manual blend off (12), stretch on
 *   VI_CSC_ATTR_S          VI_CSC_TYPE_709, luma 48, contrast 52, hue 50, saturation 54, TV mode off
 *   VPSS_GRP_ATTR_S        1920x1080, YUV semi-planar 420, NR on, DIE off (NODIE), sharpen on, rest off
 *   VPSS_GRP_NRS_PARAM_S   VPSS_NR_V2; IES0 12, SBS 20..23, SDS 30..33, STH 40..43, MDP 2, LNTH 18,
 *                          Pro3 3, MATH 160/176, MDDZ 10/11, TFS 5/6, SFC 7, TFC 8, TPC 9, TRC 14;
 *                          bytes 32..63 zero
 */

#include <stddef.h>

#include "platform/mpp.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The 22 records held, in the order of the power-on summary above. */
typedef enum {
    SIM_REC_EXPOSURE_ATTR,   /* ISP_EXPOSURE_ATTR_S */
    SIM_REC_EXP_INFO,        /* ISP_EXP_INFO_S */
    SIM_REC_PUB_ATTR,        /* ISP_PUB_ATTR_S */
    SIM_REC_WB_ATTR,         /* ISP_WB_ATTR_S */
    SIM_REC_AWB_ATTR_EX,     /* ISP_AWB_ATTR_EX_S */
    SIM_REC_WB_INFO,         /* ISP_WB_INFO_S */
    SIM_REC_DRC_ATTR,        /* ISP_DRC_ATTR_S */
    SIM_REC_BLACK_LEVEL,     /* ISP_BLACK_LEVEL_S */
    SIM_REC_GAMMA_ATTR,      /* ISP_GAMMA_ATTR_S */
    SIM_REC_SATURATION_ATTR, /* ISP_SATURATION_ATTR_S */
    SIM_REC_CCM_ATTR,        /* ISP_COLORMATRIX_ATTR_S */
    SIM_REC_ANTI_FALSECOLOR, /* ISP_ANTI_FALSECOLOR_S */
    SIM_REC_DEMOSAIC_ATTR,   /* ISP_DEMOSAIC_ATTR_S */
    SIM_REC_DP_DYNAMIC_ATTR, /* ISP_DP_DYNAMIC_ATTR_S */
    SIM_REC_SHARPEN_ATTR,    /* ISP_SHARPEN_ATTR_S */
    SIM_REC_DEFOG_ATTR,      /* ISP_DEFOG_ATTR_S */
    SIM_REC_IRIS_ATTR,       /* ISP_IRIS_ATTR_S */
    SIM_REC_DCIRIS_ATTR,     /* ISP_DCIRIS_ATTR_S */
    SIM_REC_VI_DCI_PARAM,    /* VI_DCI_PARAM_S */
    SIM_REC_VI_CSC_ATTR,     /* VI_CSC_ATTR_S */
    SIM_REC_VPSS_GRP_ATTR,   /* VPSS_GRP_ATTR_S */
    SIM_REC_VPSS_NRS_PARAM,  /* VPSS_GRP_NRS_PARAM_S (the version-2 record) */
    SIM_REC_COUNT
} sim_mpp_record_id;

/* Back to the load-time state: power-on records, empty log (on, limit 100000), zero counters, no faults. */
void sim_mpp_reset(void);

/* The record's size in bytes and its platform type name ("ISP_DRC_ATTR_S"); 0 / NULL for a bad id. */
size_t sim_mpp_record_size(sim_mpp_record_id id);
const char *sim_mpp_record_name(sim_mpp_record_id id);

/* Copy of the current record / overwrite it (neither is an MPP call: not logged, not counted). */
void sim_mpp_read(sim_mpp_record_id id, void *out);
void sim_mpp_write(sim_mpp_record_id id, const void *in);

/* The record's power-on value, for comparisons. */
void sim_mpp_power_on_record(sim_mpp_record_id id, void *out);

/* The exposure information the AE reports: sets u32ExpTime, u32AGain, u32DGain, u32ISPDGain only. */
void sim_mpp_set_exposure(HI_U32 exp_time, HI_U32 again, HI_U32 dgain, HI_U32 ispdgain);
/* ... and its u8AveLum only. */
void sim_mpp_set_ave_lum(HI_U8 ave_lum);

/*
 * Make calls number nth .. nth+times-1 of `function` (the exact HI_MPI_ name; calls counted from 1
 * since reset) fail with `code`; times SIM_MPP_ALWAYS fails every call from the nth on. Several faults
 * may be armed at once (up to 32), also on the same function; the first armed that matches decides.
 * Returns 0, or -1 with a message on stderr for an unknown name, nth 0, times 0 or below -1, or a full
 * fault table.
 */
enum { SIM_MPP_ALWAYS = -1 };
int sim_mpp_fail(const char *function, unsigned nth, int times, HI_S32 code);
void sim_mpp_clear_faults(void);

/*
 * The call log: one entry per HI_MPI_ call, in call order. `record` is a copy of `size` bytes of the
 * record written (Set) or returned (Get/Query); NULL and 0 when the call failed before touching a record.
 * Identical consecutive copies of one record type share their bytes (a long run of exposure queries
 * costs one copy), so the pointers may repeat. Entries stay valid until the next reset.
 */
typedef struct {
    const char *function; /* "HI_MPI_ISP_SetDRCAttr" */
    HI_S32 dev;           /* device or group number passed */
    HI_S32 result;        /* what the call returned */
    size_t size;
    const void *record;
} sim_mpp_call;

size_t sim_mpp_log_count(void);
const sim_mpp_call *sim_mpp_log_at(size_t index); /* NULL when index >= count */
/* Switch logging on/off (off: calls are neither logged nor counted as dropped; call counts go on). */
void sim_mpp_log_enable(int on);
/* Keep at most this many entries (default 100000); later calls are counted as dropped. */
void sim_mpp_log_limit(size_t max_entries);
size_t sim_mpp_log_dropped(void);

/* Calls of `function` since reset, logged or not, failed or not (0 for an unknown name). */
unsigned sim_mpp_call_count(const char *function);

#ifdef __cplusplus
}
#endif

#endif /* ISPTUNE_SIM_MPP_H */
