/* Part 2.3: day profile application: ISP_SetParamDay writes the colour tables of Part 2.1. */
#include <stdio.h>

#include "core/core.h"
#include "profiles/profile_steps.h"
#include "profiles/profiles.h"

/* Part 2.3, Failure handling: the number each get / set call prints. */
static const ProfileCaller kDay = {
    .func = "ISP_SetParamDay",
    .exposure = {541, 559},
    .gamma = {568, 582},
    .saturation = {593, 605},
    .sharpen = {617, 639},
    .colour_matrix = {667, 686},
    .anti_false_colour = {695, 711},
    .demosaic = {721, 738},
    .dp_dynamic = {747, 761},
};

static const ProfileSharpenTables kDaySharpen = {
    .SharpenUd = gColorSharpenUd,
    .SharpenD = gColorSharpenD,
    .TextureThr = gColorTextureThr,
    .SharpenEdge = gColorSharpenEdge,
    .EdgeThr = gColorEdgeThr,
    .OverShoot = gColorOverShoot,
    .UnderShoot = gColorUnderShoot,
    .shootSupStr = gColorshootSupStr,
    .DetailCtrl = gColorDetailCtrl,
};

static const ProfileDemosaicTables kDayDemosaic = {
    .EdgeSmoothThr = gColorEdgeSmoothThr,
    .EdgeSmoothSlope = gColorEdgeSmoothSlope,
    .AntiAliasThr = gColorAntiAliasThr,
    .AntiAliasSlope = gColorAntiAliasSlope,
    .NrCoarseStr = gColorNrCoarseStr,
    .DetailEnhanceStr = gColorDetailEnhanceStr,
    .NoiseSuppressStr = gColorNoiseSuppressStr,
    .SharpenLumaStr = gColorSharpenLumaStr,
};

static const ProfileDpTables kDayDp = {.Strength = gColorStrength, .BlendRatio = gColorBlendRatio};

/* Step 6: automatic saturation from gColorSatAttr; the manual value stays as read. */
static int day_saturation(void)
{
    ISP_SATURATION_ATTR_S sat;
    if (profile_check(HI_MPI_ISP_GetSaturationAttr(0, &sat), "HI_MPI_ISP_GetSaturationAttr", &kDay,
                      kDay.saturation.get) != 0)
        return -1;
    profile_copy_u8(sat.stAuto.au8Sat, gColorSatAttr);
    sat.enOpType = OP_TYPE_AUTO;
    return profile_check(HI_MPI_ISP_SetSaturationAttr(0, &sat), "HI_MPI_ISP_SetSaturationAttr", &kDay,
                         kDay.saturation.set);
}

/* Step 7.2: VPSS group 0 stops sharpening. bSharpenEn is the 32-bit member after eight 32-bit members
 * (Part 2.3, Left to the implementer; docs/decisions.md). One message for either call. */
static int day_vpss_group(void)
{
    VPSS_GRP_ATTR_S grp;
    if (HI_MPI_VPSS_GetGrpAttr(0, &grp) == HI_SUCCESS) {
        grp.bSharpenEn = HI_FALSE;
        if (HI_MPI_VPSS_SetGrpAttr(0, &grp) == HI_SUCCESS)
            return 0;
    }
    puts("HI_MPI_VPSS_GetGrpAttr failed");
    return -1;
}

/* Step 8: the automatic colour matrix, three matrices at 4950 / 3650 / 2700 K (the values of
 * gColorCCM...ColorTemp, which the library does not read); the activation flags and the manual matrix
 * stay as read. */
static int day_colour_matrix(void)
{
    ISP_COLORMATRIX_ATTR_S ccm;
    if (profile_check(HI_MPI_ISP_GetCCMAttr(0, &ccm), "HI_MPI_ISP_GetCCMAttr", &kDay,
                      kDay.colour_matrix.get) != 0)
        return -1;
    ccm.enOpType = OP_TYPE_AUTO;
    ccm.stAuto.u16HighColorTemp = 4950;
    ccm.stAuto.u16MidColorTemp = 3650;
    ccm.stAuto.u16LowColorTemp = 2700;
    profile_copy_ccm(ccm.stAuto.au16HighCCM, gColorHighCCM);
    profile_copy_ccm(ccm.stAuto.au16MidCCM, gColorMidCCM);
    profile_copy_ccm(ccm.stAuto.au16LowCCM, gColorLowCCM);
    return profile_check(HI_MPI_ISP_SetCCMAttr(0, &ccm), "HI_MPI_ISP_SetCCMAttr", &kDay,
                         kDay.colour_matrix.set);
}

/* Step 9: anti-false-colour enabled, automatic, three per-level tables (the offset widened). */
static int day_anti_false_colour(void)
{
    ISP_ANTI_FALSECOLOR_S afc;
    if (profile_check(HI_MPI_ISP_GetAntiFalseColorAttr(0, &afc), "HI_MPI_ISP_GetAntiFalseColorAttr", &kDay,
                      kDay.anti_false_colour.get) != 0)
        return -1;
    afc.bEnable = HI_TRUE;
    afc.enOpType = OP_TYPE_AUTO;
    profile_copy_u8(afc.stAuto.au8Strength, gColorAnFCStrength);
    profile_copy_u8(afc.stAuto.au8Threshold, gColorAnFCThreshold);
    profile_widen_u8(afc.stAuto.au16Offset, gColorAnFCOffset);
    return profile_check(HI_MPI_ISP_SetAntiFalseColorAttr(0, &afc), "HI_MPI_ISP_SetAntiFalseColorAttr", &kDay,
                         kDay.anti_false_colour.set);
}

int32_t ISP_SetParamDay(void)
{
    atomic_store(&ProfileMode, 0);           /* step 1 */
    isp_flag_store(&ispParamReflashMark, 1); /* step 2: both stand whatever follows */
    const SysInfo *info = GetSysInfo();      /* step 3 */
    if (info == NULL) {
        puts("GetSysInfo failed is NULL");
        return -1;
    }
    if (profile_exposure(&kDay, gColorAEWeightTable) != 0 ||              /* step 4 */
        profile_gamma(&kDay, g_gamma_table_day) != 0 ||                   /* step 5 */
        day_saturation() != 0 ||                                         /* step 6 */
        (profile_neutral_sharpness(info) &&                              /* step 7 */
         (profile_sharpen(&kDay, &kDaySharpen) != 0 ||                   /* step 7.1 */
          day_vpss_group() != 0)) ||                                     /* step 7.2 */
        day_colour_matrix() != 0 ||                                      /* step 8 */
        day_anti_false_colour() != 0 ||                                  /* step 9 */
        profile_demosaic(&kDay, &kDayDemosaic) != 0 ||                   /* step 10 */
        profile_dp_dynamic(&kDay, &kDayDp) != 0)                         /* step 11 */
        return -1;
    return 0;
}
