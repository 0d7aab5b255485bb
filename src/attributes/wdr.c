/* Part 4.4: WDR and strong-light inhibition: the two setters that share the DRC of ISP device 0. */
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "attributes/attributes.h"
#include "core/core.h"
#include "isptune_mpp.h" /* the exported objects' declarations, so definition and declaration agree */

/* Exported, zero at load. stSLDRCAttr and bSLDRCSaved are touched only by the strong-light setter, on the
 * host's calling thread (Part 4.4, Concurrency); the other two the library never touches. */
ISP_DRC_ATTR_S stSLDRCAttr;
ISP_EXPOSURE_ATTR_S stSLExposureAttr;
int32_t s32WdrParamMark;
int32_t bSLDRCSaved;

/* WDR level table (Part 4.4): level 1 automatic strength, levels 2 to 5 manual strength. */
enum { WDR_AUTO_STRENGTH = 70 };
static const HI_U8 kWdrManualStrength[6] = {0, 0, 54, 100, 128, 150}; /* entries 2 to 5 */

static int32_t drc_get_failed(HI_S32 code)
{
    printf("HI_MPI_ISP_GetDRCAttr failed with %#x\n", (unsigned)code);
    return -1;
}

static int32_t drc_set_failed(HI_S32 code)
{
    printf("HI_MPI_ISP_SetDRCAttr failed with %#x\n", (unsigned)code);
    return -1;
}

static void apply_wdr_level(ISP_DRC_ATTR_S *drc, uint8_t level)
{
    if (level == 0) {
        drc->bEnable = HI_FALSE;
    } else if (level == 1) {
        drc->bEnable = HI_TRUE;
        drc->enOpType = OP_TYPE_AUTO;
        drc->stAuto.u8Strength = WDR_AUTO_STRENGTH;
    } else if (level <= 5) {
        drc->bEnable = HI_TRUE;
        drc->enOpType = OP_TYPE_MANUAL;
        drc->stManual.u8Strength = kWdrManualStrength[level];
    } /* any other level: unchanged */
}

int32_t QV_ISP_SetWDRAttr(const IspWdrCfg *cfg)
{
    if (cfg == NULL)
        return isp_attr_null_argument("QV_ISP_SetWDRAttr");

    const SysInfo *info = GetSysInfo(); /* step 1; step 3 needs the record */
    if (info == NULL) {
        QV_SYSLOG(0, ISP_MODULE_CODE, "GetSysInfo failed\n");
        return -1;
    }

    ISP_DRC_ATTR_S drc;
    HI_S32 ret = HI_MPI_ISP_GetDRCAttr(0, &drc); /* step 2 */
    if (ret != HI_SUCCESS)
        return drc_get_failed(ret);

    if (sysinfo_get(info, SYSINFO_u8SlInhibitionEnable) == 0) /* step 3: inhibition owns the DRC when on */
        apply_wdr_level(&drc, cfg->u8Level);

    ret = HI_MPI_ISP_SetDRCAttr(0, &drc); /* step 4: in every case */
    if (ret != HI_SUCCESS)
        return drc_set_failed(ret);
    return 0;
}

/* Step 7: backlight off, automatic exposure, WDR mode 0 and level 0, read afresh each time. */
static int plain_scene(const SysInfo *info)
{
    return sysinfo_get(info, SYSINFO_u8BlcEnable) == 0 && sysinfo_get(info, SYSINFO_u8ExposureMode) == 0 &&
           sysinfo_get(info, SYSINFO_u8WdrMode) == 0 && sysinfo_get(info, SYSINFO_u8WdrLevel) == 0;
}

int32_t QV_ISP_SetSLInhibitionAttr(const IspSlInhibitionCfg *cfg)
{
    if (cfg == NULL)
        return isp_attr_null_argument("QV_ISP_SetSLInhibitionAttr");

    const SysInfo *info = GetSysInfo(); /* step 1; steps 7 and 10 need the record */
    if (info == NULL) {
        QV_SYSLOG(0, ISP_MODULE_CODE, "GetSysInfo failed\n");
        return -1;
    }

    ISP_DRC_ATTR_S drc;
    HI_S32 ret = HI_MPI_ISP_GetDRCAttr(0, &drc); /* step 2 */
    if (ret != HI_SUCCESS)
        return drc_get_failed(ret);

    ISP_EXPOSURE_ATTR_S exp;
    ret = HI_MPI_ISP_GetExposureAttr(0, &exp); /* step 3 */
    if (ret != HI_SUCCESS) {
        printf("HI_MPI_ISP_GetExposureAttr failed with %#x\n", (unsigned)ret);
        return -1;
    }

    printf("GetExposureAttr    enAEStrategyMode: %x u16HistRatioSlope: %x  u8MaxHistOffset: %x  " /* step 4 */
           "u8Compensation: %x\n",
           (unsigned)exp.stAuto.enAEStrategyMode, (unsigned)exp.stAuto.u16HistRatioSlope,
           (unsigned)exp.stAuto.u8MaxHistOffset, (unsigned)exp.stAuto.u8Compensation);
    printf("GetDRCAttr         stDRCAttr.u8LocalMixingBrigtht  = %d  stDRCAttr.stManual.u8Strength = %d\n",
           (int)drc.u8LocalMixingBrigtht, (int)drc.stManual.u8Strength); /* step 5 */

    /* Step 6: inhibition's own records carry mark 39, so they never replace an earlier save. */
    if (drc.u8LocalMixingBrigtht == ISP_SL_DRC_SAVE_MARK || bSLDRCSaved == 0) {
        memcpy(&stSLDRCAttr, &drc, sizeof stSLDRCAttr);
        bSLDRCSaved = 1;
    }

    if (plain_scene(info)) { /* steps 7 and 8 */
        if (cfg->u8Enable != 0) {
            /* 35 + 2 * strength / 3 (truncated), 35 to 205: (s * 683) >> 10 equals 2 * s / 3 for every s up to
             * 1023, without the division the ARM926 lacks (docs/performance.md; tests check all 256). */
            drc.stManual.u8Strength = (HI_U8)(35u + ((cfg->u8DrcStrength * 683u) >> 10));
            drc.bEnable = HI_TRUE;
            drc.enOpType = OP_TYPE_MANUAL;
            drc.u8LocalMixingBrigtht = ISP_SL_DRC_OWN_MARK;
            ret = HI_MPI_ISP_SetDRCAttr(0, &drc);
        } else {
            ret = HI_MPI_ISP_SetDRCAttr(0, &stSLDRCAttr); /* put back the saved record */
        }
        if (ret != HI_SUCCESS)
            return drc_set_failed(ret);
    }

    printf(" SetDRC   bEnable: %d    enOpType: %d    u8Strength: %x\n", (int)drc.bEnable, (int)drc.enOpType,
           (unsigned)drc.stManual.u8Strength); /* step 9: the local record */

    if (plain_scene(info)) { /* step 10: tested again on the host record */
        exp.stAuto.enAEStrategyMode = AE_EXP_HIGHLIGHT_PRIOR;
        if (cfg->u8Enable != 0) {
            exp.stAuto.u16HistRatioSlope = cfg->u8Level;
            exp.stAuto.u8MaxHistOffset = cfg->u8Level;
            exp.stAuto.u8Compensation = 48;
        } else {
            exp.stAuto.u16HistRatioSlope = 0;
            exp.stAuto.u8MaxHistOffset = 0;
            exp.stAuto.u8Compensation = 50;
        }
    }

    printf("SetExposureAttr   enAEStrategyMode: %x u16HistRatioSlope: %x  u8MaxHistOffset: %x  " /* step 11 */
           "u8Compensation: %x\n",
           (unsigned)exp.stAuto.enAEStrategyMode, (unsigned)exp.stAuto.u16HistRatioSlope,
           (unsigned)exp.stAuto.u8MaxHistOffset, (unsigned)exp.stAuto.u8Compensation);

    ret = HI_MPI_ISP_SetExposureAttr(0, &exp); /* step 12: in every case */
    if (ret != HI_SUCCESS) {
        printf("HI_MPI_ISP_SetExposureAttr failed with %#x\n", (unsigned)ret);
        return -1;
    }

    isp_flag_store(&ispParamReflashMark, 1); /* step 13 */
    usleep(50);
    return 0;
}
