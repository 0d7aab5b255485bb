/* Part 3.4: the day refresh tables (internal). The two high-gain gamma curves are in gamma_highgain.c. */
#include <stdint.h>

#include "refresh/refresh.h"

/*
 * The day profile's noise-reduction tables, entry i at system gain 2^i. SDS1 carries the values of SBS2
 * and SDS2 those of SBS1, as in the night tables (Part 2.2); SBS1 and SDS2 fall from 80 to 60 between
 * levels 3 and 4, and the interpolation follows the fall.
 */
/*                                       0    1    2    3    4    5    6    7    8    9   10   11 */
const uint8_t g_3dnr_SBS0_day[12]  = { 190, 190, 200, 210, 210, 225, 231, 231, 231, 231, 231, 231 };
const uint8_t g_3dnr_SBS1_day[12]  = {  40,  40,  60,  80,  60,  75, 220, 220, 220, 220, 220, 220 };
const uint8_t g_3dnr_SBS2_day[12]  = { 120, 120, 150, 175, 175, 176, 180, 180, 180, 180, 180, 180 };
const uint8_t g_3dnr_SBS3_day[12]  = {  50,  50,  50,  60,  60,  70,  85,  85,  85,  85,  85,  85 };
const uint8_t g_3dnr_SDS0_day[12]  = { 190, 190, 200, 210, 210, 225, 231, 231, 231, 231, 231, 231 };
const uint8_t g_3dnr_SDS1_day[12]  = { 120, 120, 150, 175, 175, 176, 180, 180, 180, 180, 180, 180 };
const uint8_t g_3dnr_SDS2_day[12]  = {  40,  40,  60,  80,  60,  75, 220, 220, 220, 220, 220, 220 };
const uint8_t g_3dnr_SDS3_day[12]  = {  50,  50,  50,  60,  60,  70,  85,  85,  85,  85,  85,  85 };
const uint8_t g_3dnr_STH0_day[12]  = { 110, 110, 114, 116, 120, 125, 135, 135, 135, 135, 135, 135 };
const uint8_t g_3dnr_STH1_day[12]  = { 110, 110, 114, 116, 120, 125, 135, 135, 135, 135, 135, 135 };
const uint8_t g_3dnr_STH2_day[12]  = { 110, 110, 114, 116, 120, 125, 135, 135, 135, 135, 135, 135 };
const uint8_t g_3dnr_STH3_day[12]  = { 110, 110, 114, 116, 120, 125, 135, 135, 135, 135, 135, 135 };
const uint8_t g_3dnr_MDP_day[12]   = {   2,   2,   2,   2,   2,   2,   2,   2,   2,   2,   2,   2 };
const uint8_t g_3dnr_Pro3_day[12]  = {   1,   1,   1,   1,   1,   1,   1,   1,   1,   1,   1,   1 };
/* MATH1 and MATH2 are 16-bit fields of the record; they take the interpolated 8-bit value unchanged. */
const uint8_t g_3dnr_MATH1_day[12] = { 122, 122, 122, 126, 126, 128, 128, 126, 126, 126, 126, 126 };
const uint8_t g_3dnr_MATH2_day[12] = { 122, 122, 122, 126, 126, 128, 128, 126, 126, 126, 126, 126 };
const uint8_t g_3dnr_MDDZ1_day[12] = {  32,  32,  32,  32,  32,  32,  64,  64,  64,  64,  64,  64 };
const uint8_t g_3dnr_MDDZ2_day[12] = {  32,  32,  32,  32,  32,  32,  64,  64,  64,  64,  64,  64 };
const uint8_t g_3dnr_TFS1_day[12]  = {   8,   8,   8,   9,   9,   9,   9,   9,   9,   9,   9,   9 };
const uint8_t g_3dnr_TFS2_day[12]  = {   8,   8,   8,   9,   9,   9,   9,   9,   9,   9,   9,   9 };
const uint8_t g_3dnr_SFC_day[12]   = {  16,  16,  16,  16,  16, 190, 255, 255, 255, 255, 255, 255 };
const uint8_t g_3dnr_TFC_day[12]   = {  10,  10,  10,  10,  10,  10,  32,  32,  32,  32,  16,  16 };
const uint8_t g_3dnr_TPC_day[12]   = {  10,  10,  10,  10,  10,  10,  32,  32,  32,  32,  16,  16 };
const uint8_t g_3dnr_TRC_day[12]   = {  16,  16,  16,  16,  16,  20, 255, 255, 255, 255, 255, 255 };

/* The day noise-reduction tables as one record, in the record's field order (Part 3.1). */
const IspNrTables g_3dnr_tables_day = {
    .SBS0 = g_3dnr_SBS0_day,     .SBS1 = g_3dnr_SBS1_day,
    .SBS2 = g_3dnr_SBS2_day,     .SBS3 = g_3dnr_SBS3_day,
    .SDS0 = g_3dnr_SDS0_day,     .SDS1 = g_3dnr_SDS1_day,
    .SDS2 = g_3dnr_SDS2_day,     .SDS3 = g_3dnr_SDS3_day,
    .STH0 = g_3dnr_STH0_day,     .STH1 = g_3dnr_STH1_day,
    .STH2 = g_3dnr_STH2_day,     .STH3 = g_3dnr_STH3_day,
    .MDP = g_3dnr_MDP_day,       .Pro3 = g_3dnr_Pro3_day,
    .MATH1 = g_3dnr_MATH1_day,   .MATH2 = g_3dnr_MATH2_day,
    .MDDZ1 = g_3dnr_MDDZ1_day,   .MDDZ2 = g_3dnr_MDDZ2_day,
    .TFS1 = g_3dnr_TFS1_day,     .TFS2 = g_3dnr_TFS2_day,
    .SFC = g_3dnr_SFC_day,       .TFC = g_3dnr_TFC_day,
    .TPC = g_3dnr_TPC_day,       .TRC = g_3dnr_TRC_day,
};

/* Black levels, one per Bayer channel (Part 3.4). */
const uint16_t g_black_level_table[4] = { 63, 63, 63, 63 };     /* night refresh at G <= 54; baseline */
const uint16_t g_black_level_table_day[4] = { 64, 64, 64, 64 }; /* day refresh at G <= 54 */
const uint16_t g_black_level_table_60[4] = { 73, 73, 73, 73 };  /* both refreshes at G > 60 */
