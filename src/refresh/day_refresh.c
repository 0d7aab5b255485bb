/* Part 3.2: day refresh: the colour profile's gain-dependent settings at system gain G, level L. */
#include <stdatomic.h>
#include <stdio.h>

#include "isptune.h"
#include "profiles/profiles.h"
#include "refresh/refresh.h"
#include "refresh/refresh_steps.h"

/* Which day curve the refresh last loaded: -1 none yet, 0 g_gamma_table_day, 1 the high-gain curve.
 * Atomic: the supervision thread refreshes, and so does a host thread that calls the
 * exported QV_ISP_SetVarParam (Part 1.3). */
static _Atomic int32_t s32DayGammaMark = -1;

static const RefreshCaller kDay = {
    .nr = {"ISP_SetParamDayRefresh", 795, 836},
    .black_get_line = 892,
    .black_set_line = 920,
};

/* Step 8: the automatic white balance's strengths back to neutral. */
static int refresh_white_balance(void)
{
    ISP_WB_INFO_S info; /* queried as the platform demands, not used further */
    if (HI_MPI_ISP_QueryWBInfo(0, &info) != HI_SUCCESS) {
        puts("HI_MPI_ISP_QueryWBInfo failed");
        return -1;
    }
    ISP_WB_ATTR_S wb;
    HI_S32 ret = HI_MPI_ISP_GetWBAttr(0, &wb);
    if (ret != HI_SUCCESS) {
        printf("HI_MPI_ISP_getWBAttr failed with %#x\n", (unsigned)ret);
        return -1;
    }
    wb.stAuto.u8RGStrength = 128;
    wb.stAuto.u8BGStrength = 128;
    ret = HI_MPI_ISP_SetWBAttr(0, &wb);
    if (ret != HI_SUCCESS) {
        printf("HI_MPI_ISP_setWBAttr failed with %#x\n", (unsigned)ret);
        return -1;
    }
    return 0;
}

int32_t ISP_SetParamDayRefresh(int32_t G, int32_t L)
{
    const SysInfo *info = refresh_begin(&kDay, L); /* step 1 */
    if (info == NULL)
        return -1;

    const int32_t wanted_curve = G >= 55 ? 1 : 0;
    static const uint32_t *const kCurves[2] = {g_gamma_table_day, g_gamma_table_day_highgain};

    if (refresh_noise_reduction(&kDay, &g_3dnr_tables_day, info, G, L) != 0 ||           /* steps 2, 3 */
        refresh_drc(info, gColorDRCStrength, G, L) != 0 ||                              /* step 4 */
        refresh_defog(info, gColorDefog, G, L) != 0 ||                                  /* step 5 */
        refresh_black_level(&kDay, g_black_level_table_day, G) != 0 ||                  /* step 6 */
        refresh_gamma(&s32DayGammaMark, wanted_curve, kCurves[wanted_curve]) != 0 ||    /* step 7 */
        refresh_white_balance() != 0 ||                                                 /* step 8 */
        refresh_backlight_strategy(info) != 0)                                          /* step 9 */
        return -1;
    return 0;
}
