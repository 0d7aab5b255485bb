/* Part 2.1: the colour (day) profile tables. The gamma curve g_gamma_table_day is in gamma_curves.c. */
#include <stdint.h>

#include "isptune.h"

/*
 * Per-level tables, in the order of the Part's table: entry i (L0 ... L11) is the setting at system gain
 * 2^i. The element widths are part of the exported interface (12 bytes per u8 table, 24 per u16 table).
 */
/*                                             L0   L1   L2   L3   L4   L5   L6   L7   L8   L9  L10  L11 */
const uint8_t  gColorSatAttr[12]          = { 111, 108, 106, 100,  90,  85,  58,  58,  58,  58,  58,  58 };
const uint8_t  gColorAnFCStrength[12]     = {   7,   7,   7,   7,   7,   7,   7,   7,   7,   7,   7,   7 };
const uint8_t  gColorAnFCThreshold[12]    = {  16,  16,  16,  16,  18,  18,  18,  18,  18,  18,  18,  18 };
/* u8 although it feeds the 16-bit au16Offset: the readers widen it (Part 2.1). */
const uint8_t  gColorAnFCOffset[12]       = {   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0 };
const uint16_t gColorEdgeSmoothThr[12]    = {   8,  16,  16,  16,  16,  16,  32,  32,  32,  32,  32,  32 };
const uint16_t gColorEdgeSmoothSlope[12]  = {  16,  16,  16,  16,  16,  32,  32,  32,  32,  32,  32,  32 };
const uint16_t gColorAntiAliasThr[12]     = {  54,  54,  80,  80,  80,  80,  80,  80,  80,  80,  80,  80 };
const uint16_t gColorAntiAliasSlope[12]   = { 256, 256, 256, 256, 256, 256, 256, 256, 256, 256, 256, 256 };
const uint16_t gColorNrCoarseStr[12]      = { 128, 128, 128, 128, 128, 128, 128, 128, 128, 128, 128, 128 };
const uint8_t  gColorDetailEnhanceStr[12] = {   4,   4,   4,   4,   4,   4,   0,   0,   0,   0,   0,   0 };
const uint16_t gColorNoiseSuppressStr[12] = {   4,   8,   8,  10,  10,  14,  14,  16,  18,  20,  22,  24 };
const uint16_t gColorSharpenLumaStr[12]   = { 256, 256, 256, 256, 256, 256, 256, 256, 256, 256, 256, 256 };
const uint16_t gColorSharpenUd[12]        = {  30,  30,  30,  26,  25,  21,  19,  17,  15,   6,   6,   6 };
const uint8_t  gColorSharpenD[12]         = {  75,  75,  70,  60,  60,  60,  60,  60,  55,  55,  50,  50 };
const uint8_t  gColorTextureThr[12]       = {   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0 };
const uint8_t  gColorSharpenEdge[12]      = {  75,  75,  75,  75,  75,  70,  65,  65,  65,  65,  65,  65 };
const uint8_t  gColorEdgeThr[12]          = {   0,  15,  20,  45,  46,  50,  52,  52,  52,  52,  52,  52 };
const uint8_t  gColorOverShoot[12]        = { 125, 125, 122, 118, 105,  92,  92,  95,  90,  90,  80,  80 };
const uint8_t  gColorUnderShoot[12]       = { 150, 150, 140, 130, 125, 113, 110,  95,  90,  90,  80,  80 };
const uint8_t  gColorshootSupStr[12]      = {  60,  60,  60,  60,  60,  40,  40,  40,  40,  40,  40,  40 };
const uint8_t  gColorDetailCtrl[12]       = { 120, 120, 118, 118, 118, 118, 110, 101, 100,  80,  80,  80 };
const uint16_t gColorStrength[12]         = { 240, 240, 240, 240, 240, 255, 255, 255, 255, 255, 255, 255 };
const uint16_t gColorBlendRatio[12]       = {   0,   0,   0,   0,   0,   0,  58,  58,  58,  58,  58,  58 };
/* Interpolated by the day refresh (Part 3.2), not applied by the day profile. */
const uint8_t  gColorDefog[12]            = { 130, 130, 130, 140, 160, 160, 150, 150, 150, 150, 150, 150 };
const uint8_t  gColorDRCStrength[12]      = {  15,  15,  15,  12,   0,   0,   0,   0,   0,   0,   0,   0 };

/*
 * Colour correction matrices, stored words in entry order, one row of the 3 x 3 matrix per line (red,
 * green, blue output). Sign-magnitude: bit 15 is the sign, bits 0-14 the magnitude in 1/256; the signed
 * values are in the comments, and every row sums to +256.
 */
const uint16_t gColorHighCCM[9] = {
    0x0270, 0x814F, 0x8021, /*  624 -335  -33 */
    0x8047, 0x01D2, 0x808B, /*  -71  466 -139 */
    0x801A, 0x80D8, 0x01F2, /*  -26 -216  498 */
};
const uint16_t gColorMidCCM[9] = {
    0x01C3, 0x80A7, 0x801C, /*  451 -167  -28 */
    0x807F, 0x01AD, 0x802E, /* -127  429  -46 */
    0x8048, 0x80E7, 0x022F, /*  -72 -231  559 */
};
const uint16_t gColorLowCCM[9] = {
    0x022B, 0x80D1, 0x805A, /*  555 -209  -90 */
    0x8053, 0x01B2, 0x805F, /*  -83  434  -95 */
    0x8065, 0x81FE, 0x0363, /* -101 -510  867 */
};

/* Scalars, exported for the host; equal to the constants Part 2.3 writes. */
const uint16_t gColorCCMHighColorTemp = 4950;  /* kelvin, of gColorHighCCM */
const uint16_t gColorCCMMidColorTemp = 3650;   /* kelvin, of gColorMidCCM */
const uint16_t gColorCCMLowColorTemp = 2700;   /* kelvin, of gColorLowCCM */
const uint16_t gColorAWBLowColorTemp = 2300;   /* kelvin, white-balance range low end */
const uint16_t gColorAWBHighColorTemp = 10000; /* kelvin, white-balance range high end */
const uint32_t gColorCompensation = 50;        /* exposure compensation target */
const uint32_t gColorAGainRangeMax = 15872;    /* 15.5x, 1024 = 1x */
const uint32_t gColorDGainRangeMax = 1024;     /* 1x */
const uint32_t gColorISPDGainRangeMax = 4096;  /* 4x */

/* Auto-exposure zone weights, 15 rows of 17 zones, row 0 at the top: every zone counts equally. */
const uint32_t gColorAEWeightTable[15 * 17] = {
    1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, /* row  0 */
    1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, /* row  1 */
    1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, /* row  2 */
    1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, /* row  3 */
    1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, /* row  4 */
    1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, /* row  5 */
    1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, /* row  6 */
    1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, /* row  7 */
    1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, /* row  8 */
    1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, /* row  9 */
    1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, /* row 10 */
    1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, /* row 11 */
    1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, /* row 12 */
    1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, /* row 13 */
    1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, /* row 14 */
};
