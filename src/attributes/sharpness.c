/* Part 4.8: sharpness: the active profile's sharpening curves scaled by the user's value. */
#include <stdio.h>

#include "core/core.h"

/* The user's scale: 0.0 to 255.0, 128.0 keeps the profile's curves. */
#define SHARPNESS_MAX 255.0f
#define SHARPNESS_NEUTRAL 128.0f
#define SHARPNESS_UNIT 0.0078125f /* 1/128, exact in single precision */

/* Entries 0 to 11 of the 16-entry automatic arrays follow the per-level tables (Parts 2.1, 2.2). */
enum { SHARPNESS_LEVELS = 12 };

int32_t QV_ISP_SetSharpnessAttr(float value)
{
    ISP_SHARPEN_ATTR_S sharpen; /* step 1 */
    HI_S32 ret = HI_MPI_ISP_GetSharpenAttr(0, &sharpen);
    if (ret != HI_SUCCESS) {
        printf("HI_MPI_ISP_GetSharpenAttr faile with %#x!\n", (unsigned)ret);
        return -1;
    }
    /* Step 2, written so that NaN fails too: a NaN factor would make every conversion below undefined. */
    if (!(value >= 0.0f && value <= SHARPNESS_MAX)) {
        puts("get sharpenNum error ");
        return -1;
    }

    /* ProfileMode is read once; a concurrent switch may leave the other profile's curves (Concurrency). */
    const int night = atomic_load(&ProfileMode) == 1;
    const uint16_t *ud = night ? gNightSharpenUd : gColorSharpenUd;
    const uint8_t *d = night ? gNightSharpenD : gColorSharpenD;

    sharpen.enOpType = OP_TYPE_AUTO; /* step 3 */
    if (value == SHARPNESS_NEUTRAL) { /* step 4 */
        for (int i = 0; i < SHARPNESS_LEVELS; ++i) {
            sharpen.stAuto.au16SharpenUd[i] = ud[i];
            sharpen.stAuto.au8SharpenD[i] = d[i];
        }
    } else { /* step 5: single precision, truncated toward zero, stored in the field's width */
        const float factor = value * SHARPNESS_UNIT;
        for (int i = 0; i < SHARPNESS_LEVELS; ++i) {
            /* Each product is rounded to float (no excess precision) and is at most 65535 * 255/128, so
             * the conversion to 32 bits is always defined; the store keeps the field's low bits. */
            const float scaled_ud = (float)ud[i] * factor, scaled_d = (float)d[i] * factor;
            sharpen.stAuto.au16SharpenUd[i] = (HI_U16)(uint32_t)scaled_ud;
            sharpen.stAuto.au8SharpenD[i] = (HI_U8)(uint32_t)scaled_d;
        }
    }

    ret = HI_MPI_ISP_SetSharpenAttr(0, &sharpen); /* step 6 */
    if (ret != HI_SUCCESS) {
        printf("HI_MPI_ISP_SetSharpenAttr faile with %#x!\n", (unsigned)ret);
        return -1;
    }
    return 0;
}
