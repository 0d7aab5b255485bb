/* Subsystem 1, the ISP service core: what the other subsystems may call (Parts 1.2 to 1.7). */
#ifndef ISPTUNE_CORE_H
#define ISPTUNE_CORE_H

#ifndef __cplusplus
#include <stdatomic.h>
#endif
#include <stdbool.h>
#include <stdint.h>

#include "isptune.h"
#include "platform/host.h"
#include "platform/mpp.h"

#ifdef __cplusplus
extern "C" {
#endif

#ifndef __cplusplus /* C11 atomics; C++ code (the tests) reaches them through tests/support/core_access.h */

/*
 * The shared 32-bit flags. gISPStatus and ispParamReflashMark are exported as plain int32_t words (the
 * host may link them); inside the library every access is atomic, so the host's threads and the
 * supervision thread never race (design: "Shared flags").
 */
static inline int32_t isp_flag_load(const int32_t *flag)
{
    return atomic_load((const _Atomic int32_t *)flag);
}

static inline void isp_flag_store(int32_t *flag, int32_t value)
{
    atomic_store((_Atomic int32_t *)flag, value);
}

static inline int32_t isp_flag_exchange(int32_t *flag, int32_t value)
{
    return atomic_exchange((_Atomic int32_t *)flag, value);
}

/* 0 colour (day) profile, 1 night profile; 0 at load. Written only by ISP_SetParamDay/Night (Parts 2.3,
 * 2.4); read by the dispatch (1.3), the frame-rate adjustment (1.5) and the sharpness setter (4.8). */
extern _Atomic int32_t ProfileMode;

#endif /* !__cplusplus */

/* The marker file that mirrors a frame rate lowered to 15 (Parts 1.5 and 1.2). */
#define ISP_FRAMERATE_MARKER "/tmp/FramerateAdjust"

/* Part 1.2: one pass of the supervision loop over the exposure record `exp` (kept between passes).
 * `info` is the SysInfo record the thread fetched at start-up. Returns true when the loop should pause
 * 33,333 us before the next pass, false when a failed refresh is to be retried at once. */
bool isp_supervision_pass(const SysInfo *info, ISP_EXP_INFO_S *exp);

/* Part 1.7: the supervision thread says it is about to end (called by QV_ISP_Proc as it returns), so that
 * QV_ISP_Start can tell a running service from one whose thread has ended on its own. */
void isp_service_thread_ends(void);

/*
 * Part 1.1: a copy of the cached configuration (the last get_config snapshot, zero before the first), read
 * the way a set operation reads it. For diagnostics (tests, isptune-sim); not exported.
 */
void isp_cached_config(IspConfig *out);

#ifdef __cplusplus
}
#endif

#endif /* ISPTUNE_CORE_H */
