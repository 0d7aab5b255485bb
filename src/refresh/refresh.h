/* Subsystem 3, gain-scheduled tuning: what the other subsystems may call (Parts 3.1 to 3.4). */
#ifndef ISPTUNE_REFRESH_H
#define ISPTUNE_REFRESH_H

#include <stdint.h>

#include "platform/mpp.h"

/* A per-level table has one entry per gain level L0..L11 (Part 3.1). */
enum { ISP_LEVEL_COUNT = 12, ISP_LEVEL_MAX = ISP_LEVEL_COUNT - 2 /* the interpolation reads L and L+1 */ };

/*
 * The 24 per-level tables of one profile's noise-reduction record (Part 3.1), one per field, in the
 * record's field order. Each profile has one constant instance: g_3dnr_tables_day (Part 3.4) and
 * g_3dnr_tables_night (Part 2.2).
 */
typedef struct IspNrTables {
    const uint8_t *SBS0, *SBS1, *SBS2, *SBS3;
    const uint8_t *SDS0, *SDS1, *SDS2, *SDS3;
    const uint8_t *STH0, *STH1, *STH2, *STH3;
    const uint8_t *MDP, *Pro3;
    const uint8_t *MATH1, *MATH2;
    const uint8_t *MDDZ1, *MDDZ2;
    const uint8_t *TFS1, *TFS2;
    const uint8_t *SFC, *TFC, *TPC, *TRC;
} IspNrTables;

extern const IspNrTables g_3dnr_tables_day;   /* Part 3.4 */
extern const IspNrTables g_3dnr_tables_night; /* Part 2.2 */

/* Part 3.1: the value of a 12-entry per-level table at system gain G and gain level L. */
uint32_t ISP_GainLevelInterp(const uint8_t table[ISP_LEVEL_COUNT], int32_t G, int32_t L);

/*
 * Whether the refreshes can interpolate at gain level L: 0 <= L <= 10, so that entries L and L+1 exist
 * (docs/decisions.md). Prints a message naming `func` and returns -1 when they cannot; 0 otherwise.
 */
int ISP_CheckGainLevel(const char *func, int32_t L);

/* The caller of the noise-reduction record update, for its messages (Parts 3.2 and 3.3, step 3). */
typedef struct IspNrCaller {
    const char *func; /* "ISP_SetParamDayRefresh" or "ISP_SetParamNightRefresh" */
    int get_line;     /* line number printed when HI_MPI_VPSS_GetGrpNRSParam fails */
    int set_line;     /* line number printed when HI_MPI_VPSS_SetGrpNRSParam fails */
} IspNrCaller;

/*
 * Part 3.1, "Noise-reduction record update": read the VPSS group 0 record, interpolate its fields from
 * `tables` at (G, L) under noise-reduction mode `dnr_mode`, write it back. 0 on success; -1 after the
 * caller's message when the get or the set fails (nothing is written after a failed get).
 */
int ISP_UpdateNrRecord(const IspNrTables *tables, int32_t dnr_mode, int32_t G, int32_t L,
                       const IspNrCaller *caller);

/* ---- Part 3.4: the day refresh tables (internal, not exported) ---------------------------------- */
/* The day profile's noise-reduction per-level tables, one per field of the record (Part 3.1); the day
 * refresh reads them through g_3dnr_tables_day. */
extern const uint8_t g_3dnr_SBS0_day[ISP_LEVEL_COUNT];
extern const uint8_t g_3dnr_SBS1_day[ISP_LEVEL_COUNT];
extern const uint8_t g_3dnr_SBS2_day[ISP_LEVEL_COUNT];
extern const uint8_t g_3dnr_SBS3_day[ISP_LEVEL_COUNT];
extern const uint8_t g_3dnr_SDS0_day[ISP_LEVEL_COUNT];
extern const uint8_t g_3dnr_SDS1_day[ISP_LEVEL_COUNT];
extern const uint8_t g_3dnr_SDS2_day[ISP_LEVEL_COUNT];
extern const uint8_t g_3dnr_SDS3_day[ISP_LEVEL_COUNT];
extern const uint8_t g_3dnr_STH0_day[ISP_LEVEL_COUNT];
extern const uint8_t g_3dnr_STH1_day[ISP_LEVEL_COUNT];
extern const uint8_t g_3dnr_STH2_day[ISP_LEVEL_COUNT];
extern const uint8_t g_3dnr_STH3_day[ISP_LEVEL_COUNT];
extern const uint8_t g_3dnr_MDP_day[ISP_LEVEL_COUNT];
extern const uint8_t g_3dnr_Pro3_day[ISP_LEVEL_COUNT];
extern const uint8_t g_3dnr_MATH1_day[ISP_LEVEL_COUNT];
extern const uint8_t g_3dnr_MATH2_day[ISP_LEVEL_COUNT];
extern const uint8_t g_3dnr_MDDZ1_day[ISP_LEVEL_COUNT];
extern const uint8_t g_3dnr_MDDZ2_day[ISP_LEVEL_COUNT];
extern const uint8_t g_3dnr_TFS1_day[ISP_LEVEL_COUNT];
extern const uint8_t g_3dnr_TFS2_day[ISP_LEVEL_COUNT];
extern const uint8_t g_3dnr_SFC_day[ISP_LEVEL_COUNT];
extern const uint8_t g_3dnr_TFC_day[ISP_LEVEL_COUNT];
extern const uint8_t g_3dnr_TPC_day[ISP_LEVEL_COUNT];
extern const uint8_t g_3dnr_TRC_day[ISP_LEVEL_COUNT];

/* Black levels, one per Bayer channel, copied whole into ISP_BLACK_LEVEL_S au16BlackLevel. */
extern const uint16_t g_black_level_table[4];     /* 63: night refresh at G <= 54, baseline (Part 1.4) */
extern const uint16_t g_black_level_table_day[4]; /* 64: day refresh at G <= 54 */
extern const uint16_t g_black_level_table_60[4];  /* 73: both refreshes at G > 60 */

/* High-gain gamma curves, ISP_GAMMA_ATTR_S u16Table[257] (generated: src/refresh/gamma_highgain.c). */
extern const uint32_t g_gamma_table_day_highgain[257];   /* day refresh at G >= 55 */
extern const uint32_t g_gamma_table_night_highgain[257]; /* night refresh at G >= 33 */

#endif /* ISPTUNE_REFRESH_H */
