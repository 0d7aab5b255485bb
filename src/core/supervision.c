/* Part 1.2: supervision loop: samples the exposure ~30 times a second and refreshes on change. */
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "core/core.h"

int32_t ispParamReflashMark = 0;

/* Module state of Part 1.2: it lives as long as the library, across stops and starts. Only the
 * supervision thread touches it, one thread at a time (Part 1.7 never runs two). */
static int32_t s32LastScaledGain = -1;
static int32_t s32LastIrCut = -1;
static uint8_t u8LastWatchedMode = 255;
static int32_t s32QuietPasses = 0;

enum { QUIET_PASSES_BEFORE_ADJUST = 120, PASS_PAUSE_US = 33333, STARTUP_WAIT_S = 10 };

/* Step 3: gain / 1.5 truncated toward zero; a gain beyond the int32 range (not reported by any sensor)
 * saturates instead of overflowing the conversion (docs/decisions.md). */
static int32_t scaled_gain(float gain)
{
    double scaled = (double)gain / 1.5;
    return scaled >= 2147483647.0 ? INT32_MAX : (int32_t)scaled;
}

/* Step 2: left to right in double, then rounded to single precision. */
static float pass_gain(const ISP_EXP_INFO_S *exp)
{
    return (float)((double)exp->u32AGain * 0.0009765625 * (double)exp->u32DGain * 0.0009765625 *
                   (double)exp->u32ISPDGain * 0.0009765625);
}

/* Steps 6 and 8 when a refresh is due. Kept out of line so that the quiet pass, the loop's common case,
 * carries none of the refresh's registers (design: "Performance targets"). */
static __attribute__((noinline)) bool refresh_pass(int32_t scaled, int32_t ircut, uint8_t watched)
{
    u8LastWatchedMode = watched;
    /* The request is taken before the refresh, so one raised while the refresh runs (a profile switch,
     * say) survives it and is served on the next pass (docs/decisions.md). */
    const int32_t request = isp_flag_exchange(&ispParamReflashMark, 0);
    if (QV_ISP_SetVarParam() != 0) {
        if (request != 0) /* the request stays as it was (any value the host wrote) */
            isp_flag_store(&ispParamReflashMark, request);
        QV_SYSERROR(ISP_MODULE_CODE, "func(%s ::%d),QV_ISP_SetVarParam Failure\n", "QV_ISP_Proc", 238);
        return false; /* straight back to the loop test: no pause, last values kept */
    }
    s32QuietPasses = 0;
    s32LastScaledGain = scaled; /* step 8 */
    s32LastIrCut = ircut;
    return true;
}

bool isp_supervision_pass(const SysInfo *info, ISP_EXP_INFO_S *exp)
{
    /* Step 1: on failure go on with the previous pass's values, still in *exp. */
    if (HI_MPI_ISP_QueryExposureInfo(0, exp) != HI_SUCCESS)
        puts("HI_MPI_ISP_QueryExposureInfo failed");

    const int32_t scaled = scaled_gain(pass_gain(exp)); /* steps 2, 3 */
    const int32_t ircut = QV_GET_IRCUT_VALUE(scaled); /* step 4 */

    /* Step 5. Without a record (a caller other than QV_ISP_Proc) the watched mode counts as unchanged. */
    const uint8_t watched = info != NULL ? sysinfo_get(info, SYSINFO_u8WatchedMode) : u8LastWatchedMode;
    if (scaled != s32LastScaledGain || ircut != s32LastIrCut || watched != u8LastWatchedMode ||
        isp_flag_load(&ispParamReflashMark) == 1)
        return refresh_pass(scaled, ircut, watched);

    /* Step 7. The counter stops at 120 (Part 1.2 leaves the ceiling open): the adjustment still runs once
     * per quiet period, and a long quiet period costs one comparison a pass. Step 8 has nothing to store
     * on a quiet pass: the scaled gain and the IR-cut value are the last ones. */
    if (s32QuietPasses < QUIET_PASSES_BEFORE_ADJUST && ++s32QuietPasses == QUIET_PASSES_BEFORE_ADJUST) {
        /* This pass's gain of step 2: the same record, the same arithmetic, the same bits. */
        if (QV_ISP_FramerateAdjust(pass_gain(exp)) == -1)
            QV_SYSERROR(ISP_MODULE_CODE, "QV_ISP_FramerateAdjust failed!!!\n");
    }
    return true;
}

void *QV_ISP_Proc(void *arg)
{
    (void)arg;
    /* Start-up step 1: the record's address is kept for the thread's life (Part 1.6). */
    const SysInfo *info = GetSysInfo();
    if (info == NULL)
        puts("GetSysInfo failed is NULL");
    sleep(STARTUP_WAIT_S);                   /* step 2 */
    QV_ISP_SetParam();                       /* step 3: its result is not examined */
    isp_flag_store(&ispParamReflashMark, 1); /* step 4: the first pass refreshes */
    if (access(ISP_FRAMERATE_MARKER, F_OK) == 0) { /* step 5 */
        LogTrace("%s %d FramerateAdjust is exist! \n", "QV_ISP_Proc", 200);
        remove(ISP_FRAMERATE_MARKER);
    }

    /* Without a settings record no refresh can succeed (Part 1.3 refuses), and the loop's
     * retry-without-pause rule would spin the CPU: the thread ends here (docs/decisions.md). */
    if (info == NULL) {
        QV_SYSERROR(ISP_MODULE_CODE, "QV_ISP_Proc: no SysInfo record, the supervision loop does not run\n");
        isp_service_thread_ends();
        return NULL;
    }

    /* One exposure record for the thread's life, on its stack; zeroed in case the very first query
     * fails (Part 1.2, "Left to the implementer"). */
    ISP_EXP_INFO_S exp;
    memset(&exp, 0, sizeof exp);
    while (isp_flag_load(&gISPStatus) == 1) {
        if (isp_supervision_pass(info, &exp))
            usleep(PASS_PAUSE_US); /* step 9 */
    }
    isp_service_thread_ends();
    return NULL;
}
