/* Parts 2.3 and 2.4: the read-modify-write steps the day and the night profile share (internal). */
#ifndef ISPTUNE_PROFILE_STEPS_H
#define ISPTUNE_PROFILE_STEPS_H

#include <stdbool.h>
#include <stdint.h>
#include <string.h>

#include "platform/host.h"
#include "platform/mpp.h"

/* A per-level table fills entries 0 to 11 of a 16-entry automatic array; 12 to 15 keep the platform's. */
enum { PROFILE_LEVELS = 12 };

/* The copies below rely on the platform's element types being the tables' (sizes pinned in mpp.h). */
_Static_assert(sizeof(HI_U8) == sizeof(uint8_t) && sizeof(HI_U16) == sizeof(uint16_t),
               "platform element types match the tables'");

/* The fixed numbers one call pair prints in its failure messages (Failure handling of Parts 2.3, 2.4). */
typedef struct ProfileLines {
    int get, set;
} ProfileLines;

/* The profile that runs a step: the function name its messages print, and its numbers per attribute. */
typedef struct ProfileCaller {
    const char *func; /* "ISP_SetParamDay" or "ISP_SetParamNight" */
    ProfileLines exposure, gamma, saturation, colour_matrix, sharpen, anti_false_colour, demosaic,
        dp_dynamic;
} ProfileCaller;

/*
 * 0 when `ret` is HI_SUCCESS; otherwise prints the failure and returns -1. `call` is the platform call's
 * name for the messages that open with it ("HI_MPI_ISP_GetCCMAttr %s %d failed %#x !!!\n"), or NULL for
 * the bare "%s %d failed %#x !!!\n" of the exposure, gamma and sharpen calls.
 */
int profile_check(HI_S32 ret, const char *call, const ProfileCaller *caller, int line);

/* Whether the sharpen step runs: u8Sharpness is 128 exactly; any other value leaves the sharpen attribute
 * to the sharpness control (Part 4.8). */
bool profile_neutral_sharpness(const SysInfo *info);

/* Entries 0 to 11 of an automatic array from a per-level table of the field's own width (one small
 * memcpy each: the profiles copy some thirty tables per call). */
static inline void profile_copy_u8(HI_U8 field[], const uint8_t table[PROFILE_LEVELS])
{
    memcpy(field, table, PROFILE_LEVELS * sizeof field[0]);
}

static inline void profile_copy_u16(HI_U16 field[], const uint16_t table[PROFILE_LEVELS])
{
    memcpy(field, table, PROFILE_LEVELS * sizeof field[0]);
}

/* ... and from an 8-bit table into a 16-bit field, widened entry by entry. */
static inline void profile_widen_u8(HI_U16 field[], const uint8_t table[PROFILE_LEVELS])
{
    for (int i = 0; i < PROFILE_LEVELS; ++i)
        field[i] = table[i];
}

/* A 3 x 3 colour matrix, word for word. */
static inline void profile_copy_ccm(HI_U16 field[CCM_MATRIX_SIZE], const uint16_t matrix[CCM_MATRIX_SIZE])
{
    memcpy(field, matrix, CCM_MATRIX_SIZE * sizeof field[0]);
}

/* The sharpen tables of one profile, in the member order of ISP_SHARPEN_AUTO_ATTR_S. */
typedef struct ProfileSharpenTables {
    const uint16_t *SharpenUd;
    const uint8_t *SharpenD, *TextureThr, *SharpenEdge, *EdgeThr, *OverShoot, *UnderShoot, *shootSupStr,
        *DetailCtrl;
} ProfileSharpenTables;

/* The demosaic tables of one profile, in the member order of ISP_DEMOSAIC_AUTO_ATTR_S. */
typedef struct ProfileDemosaicTables {
    const uint16_t *EdgeSmoothThr, *EdgeSmoothSlope, *AntiAliasThr, *AntiAliasSlope, *NrCoarseStr;
    const uint8_t *DetailEnhanceStr;
    const uint16_t *NoiseSuppressStr, *SharpenLumaStr;
} ProfileDemosaicTables;

/* The dynamic defect-pixel tables of one profile. */
typedef struct ProfileDpTables {
    const uint16_t *Strength, *BlendRatio;
} ProfileDpTables;

/*
 * The steps whose change has the same shape in both profiles, each get / change / set on ISP device 0.
 * Each returns 0, or -1 after its message (the profile then ends).
 */
/* Gain ceilings and threshold (the same constants in both profiles) and the 15 x 17 AE zone weights. */
int profile_exposure(const ProfileCaller *caller, const uint32_t weights[AE_ZONE_ROW * AE_ZONE_COLUMN]);
/* The user-defined gamma curve, enabled. */
int profile_gamma(const ProfileCaller *caller, const uint32_t curve[GAMMA_NODE_NUM]);
/* Sharpen enabled, automatic, its nine automatic arrays from `tables`. */
int profile_sharpen(const ProfileCaller *caller, const ProfileSharpenTables *tables);
/* The eight demosaic automatic arrays from `tables`; bEnable, enOpType and the manual members as read. */
int profile_demosaic(const ProfileCaller *caller, const ProfileDemosaicTables *tables);
/* Dynamic defect-pixel correction enabled, automatic, its two automatic arrays from `tables`. */
int profile_dp_dynamic(const ProfileCaller *caller, const ProfileDpTables *tables);

#endif /* ISPTUNE_PROFILE_STEPS_H */
