/* Parts 3.2 and 3.3: the steps the day and night refreshes share (internal to subsystem 3). */
#ifndef ISPTUNE_REFRESH_STEPS_H
#define ISPTUNE_REFRESH_STEPS_H

#include <stdatomic.h>
#include <stdint.h>

#include "platform/host.h"
#include "platform/mpp.h"
#include "refresh/refresh.h"

/* Which refresh runs a step, for its messages: the function name and the fixed line numbers. */
typedef struct RefreshCaller {
    IspNrCaller nr;                     /* the function name and the lines of step 3 */
    int black_get_line, black_set_line; /* the black-level step */
} RefreshCaller;

/* Step 1 (after the level check of docs/decisions.md): the host's record, or NULL after the message. */
const SysInfo *refresh_begin(const RefreshCaller *caller, int32_t L);

/* Steps 2 and 3: the noise-reduction record at (G, L) under the host's u8DnrMode (the spec's
 * s32DayDnrMode / s32NightDnrMode, a copy nothing else reads, so a local). */
int refresh_noise_reduction(const RefreshCaller *caller, const IspNrTables *tables, const SysInfo *info,
                            int32_t G, int32_t L);

/* Each step returns 0, or -1 after printing its message (the refresh then ends). */

/* DRC manual strength, only when u8WdrLevel and u8SlInhibitionEnable are both 0 (step 4). */
int refresh_drc(const SysInfo *info, const uint8_t strength_table[], int32_t G, int32_t L);

/* Defog manual strength unless u8DefogMode is 1, in which case the attribute goes back as read. */
int refresh_defog(const SysInfo *info, const uint8_t strength_table[], int32_t G, int32_t L);

/* Black level by band: G <= 54 `low_table`, 55..60 as read, G > 60 g_black_level_table_60. */
int refresh_black_level(const RefreshCaller *caller, const uint16_t low_table[4], int32_t G);

/* Loads `curve` as the user-defined gamma curve unless *mark already equals `wanted`; the mark is set
 * before the set call, so a failed set is not retried until the band changes (Parts 3.2, 3.3). */
int refresh_gamma(_Atomic int32_t *mark, int32_t wanted, const uint32_t curve[257]);

/* Backlight-compensation exposure strategy by u8BlcLevel, only when u8BlcEnable is non-zero and
 * u8SlInhibitionEnable is 0; otherwise nothing. */
int refresh_backlight_strategy(const SysInfo *info);

#endif /* ISPTUNE_REFRESH_STEPS_H */
