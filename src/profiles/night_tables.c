/* Part 2.2: the night profile tables. The gamma curve g_gamma_table_night is in gamma_curves.c. */
#include <stdint.h>

#include "isptune.h"
#include "profiles/profiles.h"
#include "refresh/refresh.h"

/* Per-level tables applied by ISP_SetParamNight (Part 2.4); entry i (L0 ... L11) is the setting at system
 * gain 2^i. */
/*                                             L0   L1   L2   L3   L4   L5   L6   L7   L8   L9  L10  L11 */
const uint16_t gNightEdgeSmoothThr[12]    = { 128, 128, 128, 128, 128, 128, 128, 128, 128, 128, 128, 128 };
const uint16_t gNightEdgeSmoothSlope[12]  = {   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0 };
const uint16_t gNightAntiAliasThr[12]     = {1022,1022,1022,1022,1022,1022,1022,1022,1022,1022,1022,1022 };
const uint16_t gNightAntiAliasSlope[12]   = {   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0 };
const uint16_t gNightNrCoarseStr[12]      = {  30,  30,  30,  50,  50,  50,  70,  70,  70,  70,  70,  70 };
const uint8_t  gNightDetailEnhanceStr[12] = {   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0 };
const uint16_t gNightNoiseSuppressStr[12] = {   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0 };
const uint16_t gNightSharpenLumaStr[12]   = { 256, 256, 256, 256, 256, 256, 256, 256, 256, 256, 256, 256 };
const uint16_t gNightSharpenUd[12]        = {  30,  30,  28,  22,  22,  12,  10,  15,  15,  10,  10,  10 };
const uint8_t  gNightSharpenD[12]         = {  70,  70,  70,  70,  70,  66,  50,  40,  40,  63,  63,  63 };
const uint8_t  gNightTextureThr[12]       = {   0,   0,   0,   0,   0,   0,   0,   0,   1,   1,   1,   1 };
const uint8_t  gNightSharpenEdge[12]      = { 140, 140, 140, 130, 130, 130,  95,  20, 110, 110, 110, 110 };
const uint8_t  gNightEdgeThr[12]          = {   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0 };
const uint8_t  gNightOverShoot[12]        = { 136, 128, 120, 115, 113, 110,  95,  90,  90,  90,  90,  80 };
const uint8_t  gNightUnderShoot[12]       = { 160, 150, 142, 140, 135, 135,  98,  90,  90,  90,  90,  80 };
const uint8_t  gNightshootSupStr[12]      = {  10,  10,  10,  10,  10,   0,   0,   0,   0,   0,   0,   0 };
const uint8_t  gNightDetailCtrl[12]       = { 115, 115, 110, 108, 105,  90,  90,  80, 110, 110, 110, 110 };
const uint16_t gNightStrength[12]         = { 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255 };
const uint16_t gNightBlendRatio[12]       = {   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0 };

/* Per-level tables interpolated by the night refresh (Part 3.3). Several 3DNR tables hold equal values
 * (SBS1 = SDS2 and SBS2 = SDS1 cross over, as in the day tables of Part 3.4); they stay separate tables,
 * one per field. */
/*                                             L0   L1   L2   L3   L4   L5   L6   L7   L8   L9  L10  L11 */
const uint8_t  gNightDefog[12]            = {  80,  80,  80, 110, 120, 120, 120,  40, 140, 140, 140, 140 };
const uint8_t  gNightDRCStrength[12]      = {  30,  30,  30,  30,  25,  25,  25,  25,   0,   0,   0,   0 };
const uint8_t  g_3dnr_SBS0_night[12]      = { 190, 190, 200, 208, 230, 240, 245, 255, 255, 245, 245, 245 };
const uint8_t  g_3dnr_SBS1_night[12]      = {  70,  70,  75,  75,  80,  80, 100, 120,  60, 122, 122, 122 };
const uint8_t  g_3dnr_SBS2_night[12]      = { 160, 160, 170, 180, 206, 206, 221, 230, 200, 205, 205, 205 };
const uint8_t  g_3dnr_SBS3_night[12]      = {  50,  50,  60,  70,  80,  80, 120, 150,  85,  85,  85,  85 };
const uint8_t  g_3dnr_SDS0_night[12]      = { 190, 190, 200, 208, 230, 240, 245, 255, 255, 245, 245, 245 };
const uint8_t  g_3dnr_SDS1_night[12]      = { 160, 160, 170, 180, 206, 206, 221, 230, 200, 205, 205, 205 };
const uint8_t  g_3dnr_SDS2_night[12]      = {  70,  70,  75,  75,  80,  80, 100, 120,  60, 122, 122, 122 };
const uint8_t  g_3dnr_SDS3_night[12]      = {  50,  50,  60,  70,  80,  80, 120, 150,  85,  85,  85,  85 };
const uint8_t  g_3dnr_STH0_night[12]      = { 110, 110, 115, 120, 126, 130, 132, 132, 132, 132, 132, 132 };
const uint8_t  g_3dnr_STH1_night[12]      = { 110, 110, 115, 120, 126, 130, 132, 132, 132, 132, 132, 132 };
const uint8_t  g_3dnr_STH2_night[12]      = { 110, 110, 115, 120, 126, 130, 132, 132, 132, 132, 132, 132 };
const uint8_t  g_3dnr_STH3_night[12]      = { 110, 110, 115, 120, 126, 130, 132, 132, 132, 132, 132, 132 };
const uint8_t  g_3dnr_MDP_night[12]       = {   2,   2,   2,   2,   2,   2,   2,   2,   2,   2,   2,   2 };
const uint8_t  g_3dnr_Pro3_night[12]      = {   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0 };
const uint8_t  g_3dnr_MDDZ1_night[12]     = {  32,  32,  64,  64, 100, 120, 130, 132,  64,  64,  64,  64 };
const uint8_t  g_3dnr_MDDZ2_night[12]     = {  32,  32,  64,  64, 100, 120, 130, 132,  64,  64,  64,  64 };
const uint8_t  g_3dnr_MATH1_night[12]     = { 130, 130, 135, 136, 136, 138, 141, 144, 144, 139, 139, 139 };
const uint8_t  g_3dnr_MATH2_night[12]     = { 130, 130, 135, 136, 136, 138, 141, 144, 144, 139, 139, 139 };
const uint8_t  g_3dnr_TFS1_night[12]      = {   9,   9,  10,  10,  10,  10,  11,  12,  12,   9,   9,   9 };
const uint8_t  g_3dnr_TFS2_night[12]      = {   9,   9,  10,  10,  10,  10,  11,  12,  12,   9,   9,   9 };
const uint8_t  g_3dnr_SFC_night[12]       = { 196, 196, 196, 255, 255, 255, 255, 255, 255, 255, 255, 255 };
const uint8_t  g_3dnr_TFC_night[12]       = {  16,  16,  16,  32,  32,  32,  32,  32,  32,  32,  32,  32 };
const uint8_t  g_3dnr_TPC_night[12]       = {  16,  16,  16,  32,  32,  32,  32,  32,  32,  32,  32,  32 };
const uint8_t  g_3dnr_TRC_night[12]       = { 196, 196, 196, 255, 255, 255, 255, 255, 255, 255, 255, 255 };

/* The night noise-reduction tables as one record, in the record's field order (Part 3.1). */
const IspNrTables g_3dnr_tables_night = {
    .SBS0 = g_3dnr_SBS0_night,     .SBS1 = g_3dnr_SBS1_night,
    .SBS2 = g_3dnr_SBS2_night,     .SBS3 = g_3dnr_SBS3_night,
    .SDS0 = g_3dnr_SDS0_night,     .SDS1 = g_3dnr_SDS1_night,
    .SDS2 = g_3dnr_SDS2_night,     .SDS3 = g_3dnr_SDS3_night,
    .STH0 = g_3dnr_STH0_night,     .STH1 = g_3dnr_STH1_night,
    .STH2 = g_3dnr_STH2_night,     .STH3 = g_3dnr_STH3_night,
    .MDP = g_3dnr_MDP_night,       .Pro3 = g_3dnr_Pro3_night,
    .MATH1 = g_3dnr_MATH1_night,   .MATH2 = g_3dnr_MATH2_night,
    .MDDZ1 = g_3dnr_MDDZ1_night,   .MDDZ2 = g_3dnr_MDDZ2_night,
    .TFS1 = g_3dnr_TFS1_night,     .TFS2 = g_3dnr_TFS2_night,
    .SFC = g_3dnr_SFC_night,       .TFC = g_3dnr_TFC_night,
    .TPC = g_3dnr_TPC_night,       .TRC = g_3dnr_TRC_night,
};

/* VPSS sharpen per-level tables, exported for the host; the library reads none of them. */
/*                                             L0   L1   L2   L3   L4   L5   L6   L7   L8   L9  L10  L11 */
const uint16_t gNightVPSSSharpenUd[12]    = {  10,  10,  10,  10,  10,   8,   2,   2,   2,   2,   2,   2 };
const uint8_t  gNightVPSSSharpenD[12]     = {  68,  68,  68,  40,  35,  30,  30,  30,  30,  30,  30,  30 };
const uint8_t  gNightVPSSTextureThr[12]   = {   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0 };
const uint8_t  gNightVPSSSharpenEdge[12]  = {  28,  28,  16,  15,  15,  10,  10,  10,  10,  10,  10,  10 };
const uint8_t  gNightVPSSEdgeThd[12]      = {  15,  15,  20,  20,  20,  20,  10,  10,  10,  10,  10,  10 };
const uint8_t  gNightVPSSOverShoot[12]    = { 120, 120, 120, 115, 110, 110, 100, 100, 100, 100, 100, 100 };
const uint8_t  gNightVPSSUnderShoot[12]   = { 120, 120, 120, 120, 117, 115, 100, 100, 100, 100, 100, 100 };
const uint8_t  gNightVPSSShootSupStr[12]  = {   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0 };
const uint8_t  gNightVPSSDetailCtrl[12]   = { 116, 116, 116,  85,  85,  69,  65,  65,  65,  65,  65,  65 };

/* Scalars, exported for the host; equal to the constants Part 2.4 writes and to the colour profile's. */
const uint32_t gNightCompensation = 50;       /* exposure compensation target */
const uint32_t gNightAGainRangeMax = 15872;   /* 15.5x, 1024 = 1x */
const uint32_t gNightDGainRangeMax = 1024;    /* 1x */
const uint32_t gNightISPDGainRangeMax = 4096; /* 4x */

/* The night colour matrix (internal), row-major: raw 1 on the diagonal, not 0x0100, as Part 2.2 lists it. */
const uint16_t g_ccm_table_night[9] = {
    1, 0, 0,
    0, 1, 0,
    0, 0, 1,
};

/* Auto-exposure zone weights, 15 rows of 17 zones, row 0 at the top: the lower middle of the picture
 * counts up to five times more than the rest. Written out row by row from the Part's runs table (the
 * comment on each row names its run); the weights sum to 545. */
const uint32_t gNightAEWeightTable[15 * 17] = {
 /* col 0  1  2  3  4  5  6  7  8  9 10 11 12 13 14 15 16 */
        1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, /* row  0 */
        1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, /* row  1 */
        1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, /* row  2 */
        1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, /* row  3 */
        1, 1, 1, 1, 1, 2, 2, 2, 2, 2, 2, 2, 1, 1, 1, 1, 1, /* row  4: columns 5-11 */
        1, 1, 1, 1, 1, 2, 2, 2, 2, 2, 2, 2, 1, 1, 1, 1, 1, /* row  5: columns 5-11 */
        1, 1, 1, 1, 2, 2, 2, 2, 2, 2, 2, 2, 2, 1, 1, 1, 1, /* row  6: columns 4-12 */
        1, 1, 1, 1, 3, 3, 3, 3, 3, 3, 3, 3, 3, 1, 1, 1, 1, /* row  7: columns 4-12 */
        1, 1, 1, 1, 3, 3, 3, 3, 3, 3, 3, 3, 3, 1, 1, 1, 1, /* row  8: columns 4-12 */
        1, 1, 1, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 1, 1, 1, /* row  9: columns 3-13 */
        1, 1, 1, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 1, 1, 1, /* row 10: columns 3-13 */
        1, 1, 1, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 1, 1, 1, /* row 11: columns 3-13 */
        1, 1, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 1, 1, /* row 12: columns 2-14 */
        1, 1, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 1, 1, /* row 13: columns 2-14 */
        1, 1, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 1, 1, /* row 14: columns 2-14 */
};
