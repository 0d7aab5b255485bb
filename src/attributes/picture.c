/* Part 4.9: picture controls: brightness, contrast and saturation on the VI colour-space conversion. */
#include <stddef.h>
#include <stdio.h>

#include "isptune.h"
#include "platform/mpp.h"

/* What distinguishes the three setters: the field they own and their messages (Part 4.9's table). */
typedef struct PictureControl {
    size_t field_offset;      /* of a HI_U32 field inside VI_CSC_ATTR_S */
    const char *range_error;  /* printed as a line of its own */
    int prints_value;         /* the contrast setter reports the new value before the write */
} PictureControl;

static const PictureControl kBrightness = {
    offsetof(VI_CSC_ATTR_S, u32LumaVal), "get BrightAttr param error param", 0};
static const PictureControl kContrast = {
    offsetof(VI_CSC_ATTR_S, u32ContrVal), "get ContrastAttr param error ", 1};
static const PictureControl kSaturation = {
    offsetof(VI_CSC_ATTR_S, u32SatuVal), "get SaturationAttr param error ", 0};

/* The user's 0..255 scale and the platform's 0..100 control range. */
enum { PICTURE_USER_MAX = 255, PICTURE_CSC_MAX = 100 };

/* x / 255, truncated, for 0 <= x < 65535, without a division: the ARM926 has no divide instruction, and
 * a division by a constant costs the camera build a libgcc routine (docs/performance.md). Equal to x / 255
 * for every x the setter can make (tests/part_4_9_picture_test.cpp checks every value). */
static uint32_t div255(uint32_t x)
{
    return (x + 1 + (x >> 8)) >> 8;
}

static int32_t set_picture_control(const PictureControl *control, uint32_t value)
{
    VI_CSC_ATTR_S csc; /* step 1 */
    HI_S32 ret = HI_MPI_VI_GetCSCAttr(0, &csc);
    if (ret != HI_SUCCESS) {
        printf("HI_MPI_VI_GetCSCAttr error %d\n", (int)ret);
        return -1;
    }
    if (value > PICTURE_USER_MAX) { /* step 2 */
        puts(control->range_error);
        return -1;
    }
    const HI_U32 converted = div255(value * PICTURE_CSC_MAX); /* step 3: value * 100 / 255, truncated */
    HI_U32 *field = (HI_U32 *)(void *)((unsigned char *)&csc + control->field_offset);
    if (*field == converted) /* step 4: an unchanged value is not written */
        return 0;
    *field = converted; /* step 5 */
    if (control->prints_value)
        printf("stViAttr.u32ContrVal = %d \n", (int)converted);
    ret = HI_MPI_VI_SetCSCAttr(0, &csc); /* step 6 */
    if (ret != HI_SUCCESS) {
        printf("HI_MPI_VI_SetCSCAttr error %d\n", (int)ret);
        return -1;
    }
    return 0;
}

int32_t QV_ISP_SetBrightAttr(uint32_t value)
{
    return set_picture_control(&kBrightness, value);
}

int32_t QV_ISP_SetContrastAttr(uint32_t value)
{
    return set_picture_control(&kContrast, value);
}

int32_t QV_ISP_SetSaturationAttr(uint32_t value)
{
    return set_picture_control(&kSaturation, value);
}
