/* Subsystem 4, image attribute controls: what the other subsystems (and the unit tests) may call. */
#ifndef ISPTUNE_ATTRIBUTES_H
#define ISPTUNE_ATTRIBUTES_H

#include <stdint.h>

#include "isptune.h"
#include "platform/mpp.h"

/*
 * The host handed a null pointer where a setter or query needs a record: prints
 * "<func>: argument is NULL, nothing done\n" on standard output and returns -1, before any platform or
 * host call (docs/decisions.md, subsystem 4). Shared by every setter of Parts 4.1 to 4.10.
 */
int32_t isp_attr_null_argument(const char *func);

/* ---- Part 4.2: exposure controls -------------------------------------------------------------------- */

/* gShutterTimeTable: 17 rows of (key, exposure time in microseconds). Internal, not exported. */
enum { ISP_SHUTTER_ROWS = 17 };
extern const uint32_t gShutterTimeTable[ISP_SHUTTER_ROWS][2];

/* The largest manual gain step the exposure setter accepts (the host's 0 to 255, docs/decisions.md). */
enum { ISP_MANUAL_GAIN_MAX = 255 };

/* ---- Part 4.4: WDR and strong-light inhibition ------------------------------------------------------ */

/* Nonzero once stSLDRCAttr (include/isptune_mpp.h) holds a saved DRC record. Internal, not exported. */
extern int32_t bSLDRCSaved;

/* The marks the strong-light setter reads and writes in u8LocalMixingBrigtht (Part 4.4 step 6). */
enum { ISP_SL_DRC_SAVE_MARK = 40, ISP_SL_DRC_OWN_MARK = 39 };

/* ---- Part 4.5: noise reduction (internal strength writers, not exported) ---------------------------- */

/* The 3D strength, truncated to 16 bits, into MATH1 and MATH2 of VPSS group 0's record; 0 or -1. */
int32_t QV_ISP_Set3DNRAttr(int32_t value);
/* The 2D strength, truncated to 8 bits, into SBS3 and SDS3 of VPSS group 0's record; 0 or -1. */
int32_t QV_ISP_Set2DNRAttr(int32_t value);

#endif /* ISPTUNE_ATTRIBUTES_H */
