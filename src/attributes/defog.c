/* Part 4.7: defog: off, manual strength, or the platform's automatic strength. */
#include <stdio.h>

#include "attributes/attributes.h"

int32_t QV_ISP_SetDefogAttr(const IspDefogCfg *cfg)
{
    if (cfg == NULL)
        return isp_attr_null_argument("QV_ISP_SetDefogAttr");

    ISP_DEFOG_ATTR_S defog;
    HI_S32 ret = HI_MPI_ISP_GetDeFogAttr(0, &defog); /* step 1 */
    if (ret != HI_SUCCESS) {
        printf("HI_MPI_ISP_GetDeFogAttr failed with %#x\n", (unsigned)ret);
        return -1;
    }

    if (cfg->u8Mode == 2) { /* step 2: automatic, manual strength as read */
        defog.bEnable = HI_TRUE;
        defog.enOpType = OP_TYPE_AUTO;
    } else { /* the mode byte is the enable, unchecked (3 is stored as 3); the platform judges it */
        defog.bEnable = (HI_BOOL)cfg->u8Mode;
        defog.enOpType = OP_TYPE_MANUAL;
        defog.stManual.u8strength = cfg->u8Strength;
    }

    ret = HI_MPI_ISP_SetDeFogAttr(0, &defog); /* step 3 */
    if (ret != HI_SUCCESS) {
        printf("HI_MPI_ISP_SetDeFogAttr failed with %#x\n", (unsigned)ret);
        return -1;
    }
    return 0;
}
