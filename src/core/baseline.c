/* Part 1.4: baseline settings at start: the library's known starting state of the ISP. */
#include <stdio.h>
#include <string.h>

#include "core/core.h"
#include "refresh/refresh.h"

/* Every failure prints "<call prefix>QV_ISP_SetParam <line> failed <code> !!!" (Part 1.4, Failure
 * handling): the prefix names the call for most of them, is empty for four, and has a leading blank for
 * HI_MPI_ISP_SetAWBAttrEx. */
static int32_t failed(const char *call_prefix, int line, HI_S32 code)
{
    printf("%sQV_ISP_SetParam %d failed %#x !!!\n", call_prefix, line, (unsigned)code);
    return -1;
}

/* Step 2: automatic exposure limits and anti-flicker defaults. */
static void set_exposure_baseline(ISP_EXPOSURE_ATTR_S *exp)
{
    exp->enOpType = OP_TYPE_AUTO;
    exp->stAuto.stAGainRange.u32Max = 15872;    /* analogue gain 15.5 */
    exp->stAuto.stDGainRange.u32Max = 1024;     /* sensor digital gain 1.0 */
    exp->stAuto.stISPDGainRange.u32Max = 4096;  /* ISP digital gain 4.0 */
    exp->stAuto.u32GainThreshold = 16384;
    exp->stAuto.u8Tolerance = 5;
    exp->stAuto.u8Compensation = 50;
    exp->stAuto.enAEMode = AE_MODE_FIX_FRAME_RATE;
    exp->stAuto.stAntiflicker.bEnable = HI_TRUE;
    exp->stAuto.stAntiflicker.u8Frequency = 50;
    exp->stAuto.stAntiflicker.enMode = ISP_ANTIFLICKER_NORMAL_MODE;
    exp->stAuto.stSubflicker.bEnable = HI_TRUE;
    exp->stAuto.stSubflicker.u8LumaDiff = 30;
}

int32_t QV_ISP_SetParam(void)
{
    HI_S32 ret;
    const SysInfo *info = GetSysInfo(); /* step 1 */
    if (info == NULL) {
        puts("GetSysInfo failed is NULL");
        return -1;
    }

    if (sysinfo_get(info, SYSINFO_u8ExposureMode) == 0) { /* step 2: automatic exposure only */
        ISP_EXPOSURE_ATTR_S exp;
        if ((ret = HI_MPI_ISP_GetExposureAttr(0, &exp)) != HI_SUCCESS)
            return failed("", 389, ret);
        set_exposure_baseline(&exp);
        if ((ret = HI_MPI_ISP_SetExposureAttr(0, &exp)) != HI_SUCCESS)
            return failed("", 409, ret);
    }

    ISP_WB_ATTR_S wb; /* step 3 */
    if ((ret = HI_MPI_ISP_GetWBAttr(0, &wb)) != HI_SUCCESS)
        return failed("HI_MPI_ISP_GetWBAttr ", 419, ret);
    wb.stAuto.u16HighColorTemp = 10000;
    wb.stAuto.u16LowColorTemp = 2300;
    if ((ret = HI_MPI_ISP_SetWBAttr(0, &wb)) != HI_SUCCESS)
        return failed("HI_MPI_ISP_SetWBAttr ", 429, ret);

    ISP_AWB_ATTR_EX_S awb_ex; /* step 4 */
    if ((ret = HI_MPI_ISP_GetAWBAttrEx(0, &awb_ex)) != HI_SUCCESS)
        return failed("HI_MPI_ISP_GetAWBAttrEx ", 439, ret);
    awb_ex.u8Tolerance = 2;
    fputs("--------11111111111111111111111111112222222222-----------", stdout); /* no line end */
    if ((ret = HI_MPI_ISP_SetAWBAttrEx(0, &awb_ex)) != HI_SUCCESS)
        return failed(" HI_MPI_ISP_SetAWBAttrEx ", 450, ret);

    if (sysinfo_get(info, SYSINFO_u8WdrLevel) == 0) { /* step 5: WDR off only */
        ISP_DRC_ATTR_S drc;
        if ((ret = HI_MPI_ISP_GetDRCAttr(0, &drc)) != HI_SUCCESS)
            return failed("", 461, ret);
        drc.bEnable = HI_FALSE;
        if ((ret = HI_MPI_ISP_SetDRCAttr(0, &drc)) != HI_SUCCESS)
            return failed("", 468, ret);
    }

    VI_DCI_PARAM_S dci; /* step 6 */
    if ((ret = HI_MPI_VI_GetDCIParam(0, &dci)) != HI_SUCCESS)
        return failed("HI_MPI_VI_GetDCIParam ", 478, ret);
    dci.bEnable = HI_FALSE;
    if ((ret = HI_MPI_VI_SetDCIParam(0, &dci)) != HI_SUCCESS)
        return failed("HI_MPI_VI_SetDCIParam ", 485, ret);

    ISP_BLACK_LEVEL_S black; /* step 7 */
    if ((ret = HI_MPI_ISP_GetBlackLevelAttr(0, &black)) != HI_SUCCESS)
        return failed("HI_MPI_ISP_GetBlackLevelAttr ", 494, ret);
    memcpy(black.au16BlackLevel, g_black_level_table, sizeof black.au16BlackLevel);
    if ((ret = HI_MPI_ISP_SetBlackLevelAttr(0, &black)) != HI_SUCCESS)
        return failed("HI_MPI_ISP_SetBlackLevelAttr ", 507, ret);
    return 0;
}
