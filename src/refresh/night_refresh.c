/* Part 3.3: night refresh: the night profile's gain-dependent settings at system gain G, level L. */
#include <stdatomic.h>
#include <stdio.h>

#include "isptune.h"
#include "refresh/refresh.h"
#include "refresh/refresh_steps.h"

/* Which night curve the refresh last loaded: -1 none yet, 0 g_gamma_table_night, 1 the high-gain one.
 * Atomic: the refresh may also run on a host thread that calls QV_ISP_SetVarParam (Part 1.3). */
static _Atomic int32_t s32NightGammaMark = -1;

static const RefreshCaller kNight = {
    .nr = {"ISP_SetParamNightRefresh", 1390, 1430},
    .black_get_line = 1540,
    .black_set_line = 1568,
};

/* Step 5: the night switches curves between 32 and 33 and leaves the curve alone below a gain of 1. */
static int refresh_night_gamma(int32_t G)
{
    if (G < 1)
        return 0;
    if (G >= 33)
        return refresh_gamma(&s32NightGammaMark, 1, g_gamma_table_night_highgain);
    return refresh_gamma(&s32NightGammaMark, 0, g_gamma_table_night);
}

int32_t ISP_SetParamNightRefresh(int32_t G, int32_t L)
{
    const SysInfo *info = refresh_begin(&kNight, L); /* step 1 */
    if (info == NULL)
        return -1;

    if (refresh_noise_reduction(&kNight, &g_3dnr_tables_night, info, G, L) != 0 || /* steps 2, 3 */
        refresh_drc(info, gNightDRCStrength, G, L) != 0 ||                                 /* step 4 */
        refresh_night_gamma(G) != 0 ||                                                     /* step 5 */
        refresh_defog(info, gNightDefog, G, L) != 0 ||                                     /* step 6 */
        refresh_black_level(&kNight, g_black_level_table, G) != 0 ||                       /* step 7 */
        refresh_backlight_strategy(info) != 0)                                             /* step 8 */
        return -1;
    return 0;
}
