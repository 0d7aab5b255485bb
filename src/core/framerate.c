/* Part 1.5: low-light frame-rate adjustment, mirrored by the marker file. */
#include <stdio.h>

#include "core/core.h"

/* One row of the decision table of Part 1.5: write `rate`, or keep the current one. */
typedef struct RateAction {
    bool set;
    float rate;
} RateAction;

/* The decision table, row by row, in single precision. A negative or NaN gain fails every comparison
 * and lands on the last rows (keep); so does a NaN current rate in night mode. */
static RateAction decide(int32_t profile, float gain, float current, float normal)
{
    const RateAction keep = {false, current}, set_normal = {true, normal}, set_lowered = {true, 15.0f};
    if (profile != 1)
        return set_normal;
    if (gain >= 32.0f)
        return current > 15.0f ? set_lowered : keep;
    if (gain >= 16.0f) /* the hysteresis band: a lowered rate stays, anything above 15 goes normal */
        return current > 15.0f ? set_normal : keep;
    if (gain >= 0.0f)
        return current >= 15.0f ? set_normal : keep;
    return keep;
}

int32_t QV_ISP_FramerateAdjust(float f32Gain)
{
    const SysInfo *info = GetSysInfo(); /* step 1 */
    if (info == NULL) {
        QV_SYSLOG(0, ISP_MODULE_CODE, "GetSysconfigData failed is NULL\n");
        return -1;
    }
    ISP_PUB_ATTR_S pub; /* step 2 */
    HI_S32 ret = HI_MPI_ISP_GetPubAttr(0, &pub);
    if (ret != HI_SUCCESS) {
        QV_SYSERROR(ISP_MODULE_CODE, "HI_MPI_ISP_GetPubAttr failue!!!\n");
        return ret;
    }
    const float current = pub.f32FrameRate; /* step 3 */
    const float normal = sysinfo_get(info, SYSINFO_u8FlickerMode) == 1 ? 25.0f : 30.0f;

    /* Step 4: a set is made whenever the table says so, even when the value is already there. */
    const RateAction action = decide(atomic_load(&ProfileMode), f32Gain, current, normal);
    if (action.set) {
        pub.f32FrameRate = action.rate;
        ret = HI_MPI_ISP_SetPubAttr(0, &pub);
        if (ret != HI_SUCCESS) {
            QV_SYSERROR(ISP_MODULE_CODE, "HI_MPI_ISP_SetPubAttr failue!!!\n");
            return ret;
        }
    }

    /* Step 5: the marker exists exactly when the rate is left at 15. */
    if (action.rate == 15.0f)
        QV_Command_System("touch " ISP_FRAMERATE_MARKER);
    else
        remove(ISP_FRAMERATE_MARKER);
    return 0;
}
