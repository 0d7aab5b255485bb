/* Part 4.3: white balance: automatic with a fixed calibration, or manual gains from three user levels. */
#include <stdio.h>

#include "attributes/attributes.h"

/* The automatic calibration of mode 0 (Part 4.3, Data model). */
static const HI_U16 kStaticWB[4] = {446, 256, 256, 462}; /* R, Gr, Gb, B */
static const HI_S32 kCurvePara[6] = {46, 210, 0, 157964, 128, -105486};

/* The manual gains of mode 1, 256 = 1.0: two linear pieces meeting at the midpoint level 128. */
static HI_U16 red_gain(uint32_t v)
{
    return (HI_U16)(v <= 128 ? (466u * v) >> 7 : 466u + (((v - 128u) * 3655u) >> 7));
}

static HI_U16 green_gain(uint32_t v)
{
    return (HI_U16)(v <= 128 ? (v * 128000u) >> 16 : 250u + (((v - 128u) * 3845u) >> 7));
}

static HI_U16 blue_gain(uint32_t v)
{
    return (HI_U16)(v <= 128 ? (15u * v) >> 2 : 480u + (((v - 128u) * 3615u) >> 7));
}

int32_t QV_ISP_SetWBAttr(const IspWbCfg *cfg)
{
    if (cfg == NULL)
        return isp_attr_null_argument("QV_ISP_SetWBAttr");

    ISP_WB_ATTR_S wb;
    HI_S32 ret = HI_MPI_ISP_GetWBAttr(0, &wb); /* step 1 */
    if (ret != HI_SUCCESS) {
        printf("HI_MPI_ISP_GetWBAttr failed with %#x\n", (unsigned)ret);
        return -1;
    }

    if (cfg->u32Mode == 0) { /* step 2 */
        for (int i = 0; i < 4; ++i)
            wb.stAuto.au16StaticWB[i] = kStaticWB[i];
        for (int i = 0; i < 6; ++i)
            wb.stAuto.as32CurvePara[i] = kCurvePara[i];
        wb.stAuto.u16Speed = 1024;
        wb.stAuto.u8ShiftLimit = 128;
    } else if (cfg->u32Mode == 1) {
        wb.stManual.u16Rgain = red_gain(cfg->u8Red);
        wb.stManual.u16Grgain = green_gain(cfg->u8Green);
        wb.stManual.u16Gbgain = green_gain(cfg->u8Green);
        wb.stManual.u16Bgain = blue_gain(cfg->u8Blue);
    }
    wb.enOpType = (ISP_OP_TYPE_E)cfg->u32Mode; /* step 3: the mode word itself, unchecked */

    ret = HI_MPI_ISP_SetWBAttr(0, &wb); /* step 4 */
    if (ret != HI_SUCCESS) {
        printf("HI_MPI_ISP_SetWBAttr failed with %#x\n", (unsigned)ret);
        return -1;
    }
    return 0;
}
