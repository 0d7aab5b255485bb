/* Parts 2.3 and 2.4: the read-modify-write steps shared by the day and the night profile. */
#include <stdio.h>

#include "profiles/profile_steps.h"

/* The per-level tables fill the front of the platform's automatic arrays (Part 2.1, conventions). */
_Static_assert(PROFILE_LEVELS <= ISP_AUTO_STENGTH_NUM, "a per-level table must fit an automatic array");

int profile_check(HI_S32 ret, const char *call, const ProfileCaller *caller, int line)
{
    if (ret == HI_SUCCESS)
        return 0;
    if (call != NULL)
        printf("%s %s %d failed %#x !!!\n", call, caller->func, line, (unsigned)ret);
    else
        printf("%s %d failed %#x !!!\n", caller->func, line, (unsigned)ret);
    return -1;
}

bool profile_neutral_sharpness(const SysInfo *info)
{
    return sysinfo_get(info, SYSINFO_u8Sharpness) == 128;
}

/*
 * The two long copies of a profile, written so that the compiler can vectorise them at -O2 (a whole
 * profile application stays within the design's 3,000 instructions): a trip count that is a multiple of
 * the vector length with the odd entry apart, and restrict, since a byte store may otherwise alias the
 * table.
 */
/* Low 8 bits of 17 consecutive weight-table entries into one row of AE zone weights. */
static void copy_weight_row(HI_U8 *restrict row, const uint32_t *restrict weights)
{
    _Static_assert(AE_ZONE_COLUMN == 17, "16 + 1 columns");
    for (int c = 0; c < 16; ++c)
        row[c] = (HI_U8)weights[c];
    row[16] = (HI_U8)weights[16];
}

/* Low 16 bits of the 257 curve nodes. */
static void copy_gamma_curve(HI_U16 *restrict table, const uint32_t *restrict curve)
{
    _Static_assert(GAMMA_NODE_NUM == 257, "256 + 1 nodes");
    for (int n = 0; n < 256; ++n)
        table[n] = (HI_U16)curve[n];
    table[256] = (HI_U16)curve[256];
}

int profile_exposure(const ProfileCaller *caller, const uint32_t weights[AE_ZONE_ROW * AE_ZONE_COLUMN])
{
    ISP_EXPOSURE_ATTR_S exp;
    if (profile_check(HI_MPI_ISP_GetExposureAttr(0, &exp), NULL, caller, caller->exposure.get) != 0)
        return -1;
    exp.stAuto.stAGainRange.u32Max = 0x3E00;    /* 15.5x, 1024 = 1x */
    exp.stAuto.stDGainRange.u32Max = 0x400;     /* 1x */
    exp.stAuto.stISPDGainRange.u32Max = 0x1000; /* 4x */
    exp.stAuto.stSysGainRange.u32Max = 0x40000; /* 256x */
    exp.stAuto.u32GainThreshold = 0x4000;       /* 16x */
    for (int r = 0; r < AE_ZONE_ROW; ++r) /* entry r x 17 + c is row r, column c */
        copy_weight_row(exp.stAuto.au8Weight[r], &weights[r * AE_ZONE_COLUMN]);
    return profile_check(HI_MPI_ISP_SetExposureAttr(0, &exp), NULL, caller, caller->exposure.set);
}

int profile_gamma(const ProfileCaller *caller, const uint32_t curve[GAMMA_NODE_NUM])
{
    ISP_GAMMA_ATTR_S gamma;
    if (profile_check(HI_MPI_ISP_GetGammaAttr(0, &gamma), NULL, caller, caller->gamma.get) != 0)
        return -1;
    gamma.bEnable = HI_TRUE;
    gamma.enCurveType = ISP_GAMMA_CURVE_USER_DEFINE;
    copy_gamma_curve(gamma.u16Table, curve);
    return profile_check(HI_MPI_ISP_SetGammaAttr(0, &gamma), NULL, caller, caller->gamma.set);
}

int profile_sharpen(const ProfileCaller *caller, const ProfileSharpenTables *tables)
{
    ISP_SHARPEN_ATTR_S shp;
    if (profile_check(HI_MPI_ISP_GetSharpenAttr(0, &shp), NULL, caller, caller->sharpen.get) != 0)
        return -1;
    shp.bEnable = HI_TRUE;
    shp.enOpType = OP_TYPE_AUTO;
    profile_copy_u16(shp.stAuto.au16SharpenUd, tables->SharpenUd);
    profile_copy_u8(shp.stAuto.au8SharpenD, tables->SharpenD);
    profile_copy_u8(shp.stAuto.au8TextureThr, tables->TextureThr);
    profile_copy_u8(shp.stAuto.au8SharpenEdge, tables->SharpenEdge);
    profile_copy_u8(shp.stAuto.au8EdgeThr, tables->EdgeThr);
    profile_copy_u8(shp.stAuto.au8OverShoot, tables->OverShoot);
    profile_copy_u8(shp.stAuto.au8UnderShoot, tables->UnderShoot);
    profile_copy_u8(shp.stAuto.au8shootSupStr, tables->shootSupStr);
    profile_copy_u8(shp.stAuto.au8DetailCtrl, tables->DetailCtrl);
    return profile_check(HI_MPI_ISP_SetSharpenAttr(0, &shp), NULL, caller, caller->sharpen.set);
}

int profile_demosaic(const ProfileCaller *caller, const ProfileDemosaicTables *tables)
{
    ISP_DEMOSAIC_ATTR_S dm;
    if (profile_check(HI_MPI_ISP_GetDemosaicAttr(0, &dm), "HI_MPI_ISP_GetDemosaicAttr", caller,
                      caller->demosaic.get) != 0)
        return -1;
    profile_copy_u16(dm.stAuto.au16EdgeSmoothThr, tables->EdgeSmoothThr);
    profile_copy_u16(dm.stAuto.au16EdgeSmoothSlope, tables->EdgeSmoothSlope);
    profile_copy_u16(dm.stAuto.au16AntiAliasThr, tables->AntiAliasThr);
    profile_copy_u16(dm.stAuto.au16AntiAliasSlope, tables->AntiAliasSlope);
    profile_copy_u16(dm.stAuto.au16NrCoarseStr, tables->NrCoarseStr);
    profile_copy_u8(dm.stAuto.au8DetailEnhanceStr, tables->DetailEnhanceStr);
    profile_copy_u16(dm.stAuto.au16NoiseSuppressStr, tables->NoiseSuppressStr);
    profile_copy_u16(dm.stAuto.au16SharpenLumaStr, tables->SharpenLumaStr);
    return profile_check(HI_MPI_ISP_SetDemosaicAttr(0, &dm), "HI_MPI_ISP_SetDemosaicAttr", caller,
                         caller->demosaic.set);
}

int profile_dp_dynamic(const ProfileCaller *caller, const ProfileDpTables *tables)
{
    ISP_DP_DYNAMIC_ATTR_S dp;
    if (profile_check(HI_MPI_ISP_GetDPDynamicAttr(0, &dp), "HI_MPI_ISP_GetDPDynamicAttr", caller,
                      caller->dp_dynamic.get) != 0)
        return -1;
    dp.bEnable = HI_TRUE;
    dp.enOpType = OP_TYPE_AUTO;
    profile_copy_u16(dp.stAuto.au16Strength, tables->Strength);
    profile_copy_u16(dp.stAuto.au16BlendRatio, tables->BlendRatio);
    return profile_check(HI_MPI_ISP_SetDPDynamicAttr(0, &dp), "HI_MPI_ISP_SetDPDynamicAttr", caller,
                         caller->dp_dynamic.set);
}
