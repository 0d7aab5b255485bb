/* Part 4.1: the configuration record, filled from the host's SysInfo record. */
#include <stdio.h>
#include <string.h>

#include "attributes/attributes.h"
#include "platform/host.h"

int32_t isp_attr_null_argument(const char *func)
{
    printf("%s: argument is NULL, nothing done\n", func);
    return -1;
}

IspConfig *QV_ISP_GetConfig(IspConfig *config)
{
    if (config == NULL) { /* nothing to fill and nothing to return but the null itself */
        isp_attr_null_argument("QV_ISP_GetConfig");
        return NULL;
    }
    memset(config, 0, sizeof *config); /* step 1: reserved bytes and the iris group stay 0 */

    const SysInfo *info = GetSysInfo(); /* step 2 */
    if (info == NULL) {                 /* step 3: the cleared record is the answer */
        QV_SYSLOG(0, ISP_MODULE_CODE, "GetSysInfo failed\n");
        return config;
    }

    /* Step 4: each host byte read once, in the record's order. */
    config->stExposure.u32Mode = sysinfo_get(info, SYSINFO_u8ExposureMode);
    config->stExposure.u32ManualGain = sysinfo_get(info, SYSINFO_u8ManualGain);
    config->stExposure.u32Shutter = sysinfo_get(info, SYSINFO_u8Shutter);

    config->stWb.u32Mode = sysinfo_get(info, SYSINFO_u8WbMode) != 0; /* the one normalised field */
    config->stWb.u8Red = sysinfo_get(info, SYSINFO_u8WbRed);
    config->stWb.u8Green = sysinfo_get(info, SYSINFO_u8WbGreen);
    config->stWb.u8Blue = sysinfo_get(info, SYSINFO_u8WbBlue);

    config->stBlc.u8Enable = sysinfo_get(info, SYSINFO_u8BlcEnable);
    config->stBlc.u8Level = sysinfo_get(info, SYSINFO_u8BlcLevel);

    config->stWdr.u8Mode = sysinfo_get(info, SYSINFO_u8WdrMode);
    config->stWdr.u8Level = sysinfo_get(info, SYSINFO_u8WdrLevel);

    config->stFlicker.u8Mode = sysinfo_get(info, SYSINFO_u8FlickerMode);

    config->stDefog.u8Mode = sysinfo_get(info, SYSINFO_u8DefogMode);
    config->stDefog.u8Reserved = sysinfo_get(info, SYSINFO_u8DefogReserved);
    config->stDefog.u8Strength = sysinfo_get(info, SYSINFO_u8DefogStrength);

    config->stDnr.u8Mode = sysinfo_get(info, SYSINFO_u8DnrMode);
    config->stDnr.u8Strength2d = sysinfo_get(info, SYSINFO_u8Dnr2dStrength);
    config->stDnr.u8Strength3d = sysinfo_get(info, SYSINFO_u8Dnr3dStrength);

    config->f32Sharpness = (float)sysinfo_get(info, SYSINFO_u8Sharpness); /* exact: 0.0 to 255.0 */
    config->u32Brightness = sysinfo_get(info, SYSINFO_u8Brightness);
    config->u32Contrast = sysinfo_get(info, SYSINFO_u8Contrast);
    config->u32Saturation = sysinfo_get(info, SYSINFO_u8Saturation);

    config->stSlInhibition.u8Enable = sysinfo_get(info, SYSINFO_u8SlInhibitionEnable);
    config->stSlInhibition.u8Level = sysinfo_get(info, SYSINFO_u8SlInhibitionLevel);
    config->stSlInhibition.u8DrcStrength = sysinfo_get(info, SYSINFO_u8SlDrcStrength);
    return config; /* step 5 */
}
