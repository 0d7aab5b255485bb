/* Part 2.4: night profile application: ISP_SetParamNight writes the night tables of Part 2.2. */
#include <stdio.h>

#include "core/core.h"
#include "profiles/profile_steps.h"
#include "profiles/profiles.h"

/* Part 2.4, Failure handling: the number each get / set call prints. */
static const ProfileCaller kNight = {
    .func = "ISP_SetParamNight",
    .exposure = {1116, 1135},
    .gamma = {1144, 1158},
    .saturation = {1170, 1179},
    .colour_matrix = {1190, 1205},
    .sharpen = {1217, 1238},
    .demosaic = {1296, 1314},
    .anti_false_colour = {1323, 1332},
    .dp_dynamic = {1341, 1355},
};

static const ProfileSharpenTables kNightSharpen = {
    .SharpenUd = gNightSharpenUd,
    .SharpenD = gNightSharpenD,
    .TextureThr = gNightTextureThr,
    .SharpenEdge = gNightSharpenEdge,
    .EdgeThr = gNightEdgeThr,
    .OverShoot = gNightOverShoot,
    .UnderShoot = gNightUnderShoot,
    .shootSupStr = gNightshootSupStr,
    .DetailCtrl = gNightDetailCtrl,
};

static const ProfileDemosaicTables kNightDemosaic = {
    .EdgeSmoothThr = gNightEdgeSmoothThr,
    .EdgeSmoothSlope = gNightEdgeSmoothSlope,
    .AntiAliasThr = gNightAntiAliasThr,
    .AntiAliasSlope = gNightAntiAliasSlope,
    .NrCoarseStr = gNightNrCoarseStr,
    .DetailEnhanceStr = gNightDetailEnhanceStr,
    .NoiseSuppressStr = gNightNoiseSuppressStr,
    .SharpenLumaStr = gNightSharpenLumaStr,
};

static const ProfileDpTables kNightDp = {.Strength = gNightStrength, .BlendRatio = gNightBlendRatio};

/* Step 6: black and white: manual saturation 0; the automatic array stays as read. */
static int night_saturation(void)
{
    ISP_SATURATION_ATTR_S sat;
    if (profile_check(HI_MPI_ISP_GetSaturationAttr(0, &sat), "HI_MPI_ISP_GetSaturationAttr", &kNight,
                      kNight.saturation.get) != 0)
        return -1;
    sat.enOpType = OP_TYPE_MANUAL;
    sat.stManual.u8Saturation = 0;
    return profile_check(HI_MPI_ISP_SetSaturationAttr(0, &sat), "HI_MPI_ISP_SetSaturationAttr", &kNight,
                         kNight.saturation.set);
}

/* Step 7: the manual colour matrix g_ccm_table_night; the automatic matrices and bSatEn stay as read. */
static int night_colour_matrix(void)
{
    ISP_COLORMATRIX_ATTR_S ccm;
    if (profile_check(HI_MPI_ISP_GetCCMAttr(0, &ccm), "HI_MPI_ISP_GetCCMAttr", &kNight,
                      kNight.colour_matrix.get) != 0)
        return -1;
    ccm.enOpType = OP_TYPE_MANUAL;
    profile_copy_ccm(ccm.stManual.au16CCM, g_ccm_table_night);
    return profile_check(HI_MPI_ISP_SetCCMAttr(0, &ccm), "HI_MPI_ISP_SetCCMAttr", &kNight,
                         kNight.colour_matrix.set);
}

/* Step 10: anti-false-colour off; its operation type and arrays stay as read. */
static int night_anti_false_colour(void)
{
    ISP_ANTI_FALSECOLOR_S afc;
    if (profile_check(HI_MPI_ISP_GetAntiFalseColorAttr(0, &afc), "HI_MPI_ISP_GetAntiFalseColorAttr", &kNight,
                      kNight.anti_false_colour.get) != 0)
        return -1;
    afc.bEnable = HI_FALSE;
    return profile_check(HI_MPI_ISP_SetAntiFalseColorAttr(0, &afc), "HI_MPI_ISP_SetAntiFalseColorAttr",
                         &kNight, kNight.anti_false_colour.set);
}

int32_t ISP_SetParamNight(void)
{
    atomic_store(&ProfileMode, 1);           /* step 1 */
    isp_flag_store(&ispParamReflashMark, 1); /* step 2: both stand whatever follows */
    const SysInfo *info = GetSysInfo();      /* step 3 */
    if (info == NULL) {
        puts("GetSysInfo failed is NULL");
        return -1;
    }
    if (profile_exposure(&kNight, gNightAEWeightTable) != 0 ||                               /* step 4 */
        profile_gamma(&kNight, g_gamma_table_night) != 0 ||                                  /* step 5 */
        night_saturation() != 0 ||                                                          /* step 6 */
        night_colour_matrix() != 0 ||                                                       /* step 7 */
        (profile_neutral_sharpness(info) && profile_sharpen(&kNight, &kNightSharpen) != 0) || /* step 8 */
        profile_demosaic(&kNight, &kNightDemosaic) != 0 ||                                  /* step 9 */
        night_anti_false_colour() != 0 ||                                                   /* step 10 */
        profile_dp_dynamic(&kNight, &kNightDp) != 0)                                        /* step 11 */
        return -1;
    return 0; /* the night makes no VPSS call */
}
