/*
 * isptune_mpp.h: Part 4.4's exported data objects with their platform types, for hosts that have the
 * HiSilicon MPP declarations. Include the MPP headers that declare ISP_DRC_ATTR_S and ISP_EXPOSURE_ATTR_S
 * (hi_comm_isp.h) before this one. s32WdrParamMark, a plain word, is declared in isptune.h.
 */
#ifndef ISPTUNE_MPP_H
#define ISPTUNE_MPP_H

#include "isptune.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Part 4.4: the DRC record (496 bytes) saved by strong-light inhibition and restored when it goes off.
 * Written by QV_ISP_SetSLInhibitionAttr on the host's calling thread. */
extern ISPTUNE_API ISP_DRC_ATTR_S stSLDRCAttr;

/* Part 4.4: one exposure record (412 bytes), zero-initialised; the library never reads or writes it. */
extern ISPTUNE_API ISP_EXPOSURE_ATTR_S stSLExposureAttr;

#ifdef __cplusplus
}
#endif

#endif /* ISPTUNE_MPP_H */
