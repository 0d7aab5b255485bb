/* Part 1.3: refresh dispatch: system gain and gain level from the exposure, then the profile's refresh. */
#include <math.h>
#include <stdio.h>

#include "core/core.h"

/* Step 2: the product of the three gains as factors, left to right in double, truncated toward zero.
 * A product below 1.0 (never reported by the platform) is clamped to 1 and one beyond the int32 range to
 * INT32_MAX, so the conversion is always defined (docs/decisions.md). */
static int32_t system_gain(const ISP_EXP_INFO_S *exp)
{
    double product = (double)exp->u32AGain * 0.0009765625 * (double)exp->u32DGain * 0.0009765625 *
                     (double)exp->u32ISPDGain * 0.0009765625;
    if (product < 1.0)
        return 1;
    if (product >= 2147483648.0)
        return INT32_MAX;
    return (int32_t)product;
}

int32_t QV_ISP_SetVarParam(void)
{
    ISP_EXP_INFO_S exp;
    if (HI_MPI_ISP_QueryExposureInfo(0, &exp) != HI_SUCCESS) { /* step 1 */
        puts("HI_MPI_ISP_QueryExposureInfo failed");
        return -1;
    }
    const int32_t G = system_gain(&exp);                                  /* step 2 */
    const int32_t L = (int32_t)(log10((double)G) / 0.3010299956639812); /* step 3 */
    if (GetSysInfo() == NULL) {                                           /* step 4 */
        puts("GetSysInfo failed is NULL");
        return -1;
    }
    if (atomic_load(&ProfileMode) == 0) { /* step 5 */
        ISP_SetParamDayRefresh(G, L);
        puts("--------------paramday-refresh-done--------------");
    }
    if (atomic_load(&ProfileMode) == 1) { /* step 6: read again, a switch to night may have come */
        ISP_SetParamNightRefresh(G, L);
        puts("--------------paramnight-refresh-done--------------");
    }
    return 0;
}
