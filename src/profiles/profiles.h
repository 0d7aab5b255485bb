/* Subsystem 2, scene profiles: what the other subsystems may use beside isptune.h (Parts 2.1 to 2.4). */
#ifndef ISPTUNE_PROFILES_H
#define ISPTUNE_PROFILES_H

#include <stdint.h>

/* The exported tables of Parts 2.1 and 2.2 are declared in isptune.h; these two are internal. */

/* Part 2.1: the colour gamma curve, ISP_GAMMA_ATTR_S u16Table[257] (node n is the output for input
 * n * 16); read by the day profile (Part 2.3) and the day refresh (Part 3.2). Generated, see
 * src/profiles/gamma_curves.c. */
extern const uint32_t g_gamma_table_day[257];

/* Part 2.2: the night colour matrix for ISP_COLORMATRIX_ATTR_S stManual.au16CCM, sign-magnitude words
 * in the encoding of Part 2.1; the diagonal is raw 1, not 0x0100. */
extern const uint16_t g_ccm_table_night[9];

#endif /* ISPTUNE_PROFILES_H */
