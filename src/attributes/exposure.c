/* Part 4.2: exposure controls: exposure mode and shutter, anti-flicker, backlight, exposure figures. */
#include <stdio.h>

#include "attributes/attributes.h"
#include "platform/host.h"

/* (key, exposure time in us): 1/25 s ... 1/10000 s, truncated (6666, not 6667; 2352, not 2353). */
const uint32_t gShutterTimeTable[ISP_SHUTTER_ROWS][2] = {
    {0, 40000}, {1, 33333}, {2, 13333}, {3, 10000}, {4, 8333},  {5, 6666},  {6, 4000},  {7, 3333}, {8, 2352},
    {9, 1666},  {10, 1000}, {11, 800},  {12, 571},  {13, 400},  {14, 333},  {15, 166},  {16, 100},
};

static int32_t get_failed(HI_S32 code)
{
    printf("HI_MPI_ISP_GetExposureAttr failed with %#x\n", (unsigned)code);
    return -1;
}

static int32_t set_failed(HI_S32 code)
{
    printf("HI_MPI_ISP_SetExposureAttr failed with %#x\n", (unsigned)code);
    return -1;
}

int32_t QV_ISP_SetExposureAttr(const IspExposureCfg *cfg)
{
    if (cfg == NULL)
        return isp_attr_null_argument("QV_ISP_SetExposureAttr");
    if (cfg->u32Mode == 0) { /* step 1: automatic exposure is the baseline's; its result is not ours */
        (void)QV_ISP_SetParam();
        return 0;
    }
    /* (u32ManualGain + 64) * 16 is meant for the host's 0 to 255; larger steps would wrap the gain word. */
    if (cfg->u32Mode == 1 && cfg->u32ManualGain > ISP_MANUAL_GAIN_MAX) {
        printf("QV_ISP_SetExposureAttr: manual gain %u out of range 0 to %d, nothing done\n",
               (unsigned)cfg->u32ManualGain, ISP_MANUAL_GAIN_MAX);
        return -1;
    }

    ISP_EXPOSURE_ATTR_S exp;
    HI_S32 ret = HI_MPI_ISP_GetExposureAttr(0, &exp); /* step 2 */
    if (ret != HI_SUCCESS)
        return get_failed(ret);

    for (int row = 0; row < ISP_SHUTTER_ROWS; ++row) /* step 3: first matching key, else as read */
        if (gShutterTimeTable[row][0] == cfg->u32Shutter) {
            exp.stManual.u32ExpTime = gShutterTimeTable[row][1];
            break;
        }

    printf("stExposureAttr.enOpType %x \n", (unsigned)exp.enOpType); /* step 4: as read */

    if (cfg->u32Mode == 1) { /* step 5; any other mode changes nothing more */
        HI_U32 gain = (cfg->u32ManualGain + 64u) * 16u; /* 1024 to 5104 */
        exp.enOpType = OP_TYPE_MANUAL;
        exp.stManual.enExpTimeOpType = OP_TYPE_MANUAL;
        exp.stManual.enAGainOpType = OP_TYPE_MANUAL;
        exp.stManual.enDGainOpType = OP_TYPE_MANUAL;
        exp.stManual.enISPDGainOpType = OP_TYPE_MANUAL;
        exp.stManual.u32AGain = gain;
        exp.stManual.u32DGain = gain;
        exp.stManual.u32ISPDGain = gain;
    }

    ret = HI_MPI_ISP_SetExposureAttr(0, &exp); /* step 6 */
    if (ret != HI_SUCCESS)
        return set_failed(ret);
    return 0;
}

int32_t QV_ISP_SetFlickerAttr(const IspFlickerCfg *cfg)
{
    if (cfg == NULL)
        return isp_attr_null_argument("QV_ISP_SetFlickerAttr");

    ISP_EXPOSURE_ATTR_S exp;
    HI_S32 ret = HI_MPI_ISP_GetExposureAttr(0, &exp); /* step 1 */
    if (ret != HI_SUCCESS)
        return get_failed(ret);

    exp.stAuto.stAntiflicker.bEnable = HI_TRUE; /* step 2 */
    exp.stAuto.stAntiflicker.enMode = ISP_ANTIFLICKER_AUTO_MODE;
    switch (cfg->u8Mode) { /* step 3 */
    case 0: exp.stAuto.stAntiflicker.u8Frequency = 60; break;
    case 1: exp.stAuto.stAntiflicker.u8Frequency = 50; break;
    case 2: exp.stAuto.stAntiflicker.bEnable = HI_FALSE; break; /* off; mode field stays automatic */
    default: break;                                             /* on, frequency as read */
    }

    ret = HI_MPI_ISP_SetExposureAttr(0, &exp); /* step 4 */
    if (ret != HI_SUCCESS)
        return set_failed(ret);
    return 0;
}

int32_t QV_ISP_SetBLCAttr(const IspBlcCfg *cfg)
{
    if (cfg == NULL)
        return isp_attr_null_argument("QV_ISP_SetBLCAttr");

    const SysInfo *info = GetSysInfo(); /* step 1 */
    if (info == NULL) {                 /* step 4 needs the record: give up before the platform */
        QV_SYSLOG(0, ISP_MODULE_CODE, "GetSysInfo failed\n");
        return -1;
    }

    ISP_EXPOSURE_ATTR_S exp;
    HI_S32 ret = HI_MPI_ISP_GetExposureAttr(0, &exp); /* step 2 */
    if (ret != HI_SUCCESS)
        return get_failed(ret);

    printf("enAEStrategyMode: %x u16HistRatioSlope: %x  u8MaxHistOffset: %x\n", /* step 3: as read */
           (unsigned)exp.stAuto.enAEStrategyMode, (unsigned)exp.stAuto.u16HistRatioSlope,
           (unsigned)exp.stAuto.u8MaxHistOffset);

    if (sysinfo_get(info, SYSINFO_u8SlInhibitionEnable) != 0) {
        /* step 4: strong-light inhibition (Part 4.4) owns the strategy fields */
    } else if (cfg->u8Enable == 1) { /* step 5: levels 0 to 2, any other level unchanged */
        static const HI_U16 slope[3] = {32, 144, 256};
        if (cfg->u8Level < 3) {
            exp.stAuto.enAEStrategyMode = AE_EXP_LOWLIGHT_PRIOR;
            exp.stAuto.u16HistRatioSlope = slope[cfg->u8Level];
            exp.stAuto.u8MaxHistOffset = 64;
        }
    } else { /* step 6: backlight off */
        exp.stAuto.enAEStrategyMode = AE_EXP_HIGHLIGHT_PRIOR;
        exp.stAuto.u16HistRatioSlope = 128;
        exp.stAuto.u8MaxHistOffset = 16;
    }

    ret = HI_MPI_ISP_SetExposureAttr(0, &exp); /* step 7: in every case */
    if (ret != HI_SUCCESS)
        return set_failed(ret);
    return 0;
}

int32_t QV_ISP_GetExposureInfo(IspExposureInfo *info)
{
    if (info == NULL)
        return isp_attr_null_argument("QV_ISP_GetExposureInfo");

    ISP_EXP_INFO_S exp;
    HI_S32 ret = HI_MPI_ISP_QueryExposureInfo(0, &exp); /* step 1 */
    if (ret != HI_SUCCESS) {
        printf("HI_MPI_ISP_QueryExposureInfo failed with %#x\n", (unsigned)ret);
        return -1;
    }

    /* Step 2: the eight values; bytes 25 to 31 of the host's record are not written. */
    info->u32ExpTime = exp.u32ExpTime;
    info->u32AGain = exp.u32AGain;
    info->u32DGain = exp.u32DGain;
    info->u32ISPDGain = exp.u32ISPDGain;
    info->u32Exposure = exp.u32Exposure;
    info->u32ExposureIsMax = exp.bExposureIsMAX;
    info->u8AveLum = exp.u8AveLum;
    info->s16HistError = exp.s16HistError;
    return 0;
}
