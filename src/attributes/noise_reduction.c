/* Part 4.5: noise reduction: the manual 2D and 3D strengths in VPSS group 0's record, then a refresh. */
#include <stdio.h>
#include <string.h>

#include "attributes/attributes.h"
#include "core/core.h"

/* The line numbers the read messages print (Part 4.5, Algorithms). */
enum { NR3D_GET_LINE = 2505, NR2D_GET_LINE = 2474 };

/* Clear the 64-byte record, select version 2, read group 0; 0, or -1 after the read message. */
static int32_t read_nrs(VPSS_GRP_NRS_PARAM_S *nrs, const char *func, int line)
{
    memset(nrs, 0, sizeof *nrs);
    nrs->enNRVer = VPSS_NR_V2;
    HI_S32 ret = HI_MPI_VPSS_GetGrpNRSParam(0, nrs);
    if (ret != HI_SUCCESS) {
        printf("HI_MPI_VPSS_GetGrpNRSParam %s %d failed %#x !!!\n", func, line, (unsigned)ret);
        return -1;
    }
    return 0;
}

static int32_t write_nrs(VPSS_GRP_NRS_PARAM_S *nrs)
{
    HI_S32 ret = HI_MPI_VPSS_SetGrpNRSParam(0, nrs);
    if (ret != HI_SUCCESS) {
        printf("HI_MPI_VPSS_SetGrpNRSParam failed %#x\n", (unsigned)ret);
        return -1;
    }
    return 0;
}

int32_t QV_ISP_Set3DNRAttr(int32_t value)
{
    VPSS_GRP_NRS_PARAM_S nrs;
    if (read_nrs(&nrs, "QV_ISP_Set3DNRAttr", NR3D_GET_LINE) != 0)
        return -1;
    nrs.stNRSParam_V2.MATH1 = (HI_U16)value; /* modulo 65536 */
    nrs.stNRSParam_V2.MATH2 = (HI_U16)value;
    return write_nrs(&nrs);
}

int32_t QV_ISP_Set2DNRAttr(int32_t value)
{
    VPSS_GRP_NRS_PARAM_S nrs;
    if (read_nrs(&nrs, "QV_ISP_Set2DNRAttr", NR2D_GET_LINE) != 0)
        return -1;
    nrs.stNRSParam_V2.SBS3 = (HI_U8)value; /* modulo 256 */
    nrs.stNRSParam_V2.SDS3 = (HI_U8)value;
    return write_nrs(&nrs);
}

int32_t QV_ISP_SetDNRAttr(const IspDnrCfg *cfg)
{
    if (cfg == NULL)
        return isp_attr_null_argument("QV_ISP_SetDNRAttr");

    SysInfo *info = GetSysInfo(); /* step 1 */
    if (info == NULL) {
        puts("GetSysInfo failed is NULL");
        return -1;
    }

    int32_t result = 0; /* step 2; modes 4 to 255 call nothing */
    switch (cfg->u8Mode) {
    case 0: /* both automatic: the default strengths, also in the host's record */
        sysinfo_set(info, SYSINFO_u8Dnr2dStrength, 100);
        sysinfo_set(info, SYSINFO_u8Dnr3dStrength, 100);
        (void)QV_ISP_Set3DNRAttr(100);
        result = QV_ISP_Set2DNRAttr(100);
        break;
    case 1: result = QV_ISP_Set2DNRAttr(cfg->u8Strength2d); break;
    case 2: result = QV_ISP_Set3DNRAttr(cfg->u8Strength3d); break;
    case 3: /* the 3D writer's failure is printed, the 2D result decides */
        (void)QV_ISP_Set3DNRAttr(cfg->u8Strength3d);
        result = QV_ISP_Set2DNRAttr(cfg->u8Strength2d);
        break;
    default: break;
    }

    isp_flag_store(&ispParamReflashMark, 1); /* step 3: the refresh fills in the automatic strengths */
    return result;
}
