/* Parts 3.2 and 3.3: the read-modify-write steps shared by the day and the night refresh. */
#include <stdio.h>

#include "refresh/refresh.h"
#include "refresh/refresh_steps.h"

const SysInfo *refresh_begin(const RefreshCaller *caller, int32_t L)
{
    if (ISP_CheckGainLevel(caller->nr.func, L) != 0)
        return NULL;
    const SysInfo *info = GetSysInfo();
    if (info == NULL)
        puts("GetSysInfo failed is NULL");
    return info;
}

int refresh_noise_reduction(const RefreshCaller *caller, const IspNrTables *tables, const SysInfo *info,
                            int32_t G, int32_t L)
{
    const int32_t dnr_mode = sysinfo_get(info, SYSINFO_u8DnrMode);
    return ISP_UpdateNrRecord(tables, dnr_mode, G, L, &caller->nr);
}

int refresh_drc(const SysInfo *info, const uint8_t strength_table[], int32_t G, int32_t L)
{
    if (sysinfo_get(info, SYSINFO_u8WdrLevel) != 0 || sysinfo_get(info, SYSINFO_u8SlInhibitionEnable) != 0)
        return 0; /* WDR or strong-light inhibition owns the compression */
    ISP_DRC_ATTR_S drc;
    if (HI_MPI_ISP_GetDRCAttr(0, &drc) != HI_SUCCESS) {
        puts("HI_MPI_ISP_GetDRCAttr failed");
        return -1;
    }
    drc.bEnable = HI_TRUE;
    drc.enOpType = OP_TYPE_MANUAL;
    drc.stManual.u8Strength = (HI_U8)ISP_GainLevelInterp(strength_table, G, L);
    if (HI_MPI_ISP_SetDRCAttr(0, &drc) != HI_SUCCESS) {
        puts("HI_MPI_ISP_SetDRCAttr failed");
        return -1;
    }
    return 0;
}

int refresh_defog(const SysInfo *info, const uint8_t strength_table[], int32_t G, int32_t L)
{
    ISP_DEFOG_ATTR_S defog;
    HI_S32 ret = HI_MPI_ISP_GetDeFogAttr(0, &defog);
    if (ret != HI_SUCCESS) {
        printf("HI_MPI_ISP_GetDeFogAttr failed with %#x\n", (unsigned)ret);
        return -1;
    }
    if (sysinfo_get(info, SYSINFO_u8DefogMode) != 1) { /* 1: the user's manual strength stands */
        defog.bEnable = HI_TRUE;
        defog.enOpType = OP_TYPE_MANUAL;
        defog.stManual.u8strength = (HI_U8)ISP_GainLevelInterp(strength_table, G, L);
    }
    ret = HI_MPI_ISP_SetDeFogAttr(0, &defog);
    if (ret != HI_SUCCESS) {
        printf("HI_MPI_ISP_SetDeFogAttr failed with %#x\n", (unsigned)ret);
        return -1;
    }
    return 0;
}

/* Copies a four-channel table into the attribute, printing each value the way the refreshes do. */
static void load_black_level(ISP_BLACK_LEVEL_S *black, const uint16_t table[4], const char *label)
{
    for (int i = 0; i < 4; ++i) {
        black->au16BlackLevel[i] = table[i];
        printf("%s %d = %d !!!\n", label, table[i], table[i]);
    }
}

int refresh_black_level(const RefreshCaller *caller, const uint16_t low_table[4], int32_t G)
{
    ISP_BLACK_LEVEL_S black;
    HI_S32 ret = HI_MPI_ISP_GetBlackLevelAttr(0, &black);
    if (ret != HI_SUCCESS) {
        printf("HI_MPI_ISP_GetBlackLevelAttr %s %d failed %#x !!!\n", caller->nr.func, caller->black_get_line,
               (unsigned)ret);
        return -1;
    }
    printf("SYSTEM %d !!!\n", (int)G);
    if (G > 60)
        load_black_level(&black, g_black_level_table_60, "BlackLevelTable_60");
    else if (G <= 54)
        load_black_level(&black, low_table, "BlackLevelTable");
    /* 55..60: the levels stay as read, so the band keeps whichever table was written last. */
    ret = HI_MPI_ISP_SetBlackLevelAttr(0, &black);
    if (ret != HI_SUCCESS) {
        printf("HI_MPI_ISP_SetBlackLevelAttr %s %d failed %#x !!!\n", caller->nr.func, caller->black_set_line,
               (unsigned)ret);
        return -1;
    }
    return 0;
}

int refresh_gamma(_Atomic int32_t *mark, int32_t wanted, const uint32_t curve[257])
{
    if (atomic_load_explicit(mark, memory_order_relaxed) == wanted)
        return 0;
    ISP_GAMMA_ATTR_S gamma;
    if (HI_MPI_ISP_GetGammaAttr(0, &gamma) != HI_SUCCESS) {
        QV_SYSERROR(ISP_MODULE_CODE, "HI_MPI_ISP_GetGammaAttr failed!!!\n");
        return -1;
    }
    gamma.bEnable = HI_TRUE;
    gamma.enCurveType = ISP_GAMMA_CURVE_USER_DEFINE;
    for (int i = 0; i < 257; ++i)
        gamma.u16Table[i] = (HI_U16)curve[i];
    atomic_store_explicit(mark, wanted, memory_order_relaxed);
    if (HI_MPI_ISP_SetGammaAttr(0, &gamma) != HI_SUCCESS) {
        QV_SYSERROR(ISP_MODULE_CODE, "HI_MPI_ISP_SetGammaAttr failed!!!\n");
        return -1;
    }
    return 0;
}

/* The backlight-compensation strategy table of Parts 3.2 and 3.3, by u8BlcLevel 0, 1, 2. */
static const struct {
    HI_U16 u16HistRatioSlope;
    HI_U8 u8MaxHistOffset;
} kBacklightStrategy[3] = {
    {32, 64},
    {144, 128},
    {256, 255},
};

int refresh_backlight_strategy(const SysInfo *info)
{
    if (sysinfo_get(info, SYSINFO_u8BlcEnable) == 0 || sysinfo_get(info, SYSINFO_u8SlInhibitionEnable) != 0)
        return 0;
    ISP_EXPOSURE_ATTR_S exposure;
    HI_S32 ret = HI_MPI_ISP_GetExposureAttr(0, &exposure);
    if (ret != HI_SUCCESS) {
        printf("HI_MPI_ISP_GetExposureAttr failed with %#x\n", (unsigned)ret);
        return -1;
    }
    uint8_t level = sysinfo_get(info, SYSINFO_u8BlcLevel);
    if (level < 3) { /* 3 and above: written back unchanged */
        exposure.stAuto.enAEStrategyMode = AE_EXP_LOWLIGHT_PRIOR;
        exposure.stAuto.u16HistRatioSlope = kBacklightStrategy[level].u16HistRatioSlope;
        exposure.stAuto.u8MaxHistOffset = kBacklightStrategy[level].u8MaxHistOffset;
    }
    ret = HI_MPI_ISP_SetExposureAttr(0, &exposure);
    if (ret != HI_SUCCESS) {
        printf("HI_MPI_ISP_SetExposureAttr failed with %#x\n", (unsigned)ret);
        return -1;
    }
    return 0;
}
