/*
 * isptune.h: the public interface of libisptune.so, the image-tuning control library for HiSilicon
 * Hi3516CV300 IP cameras. Every name here is one of the spec's "External interfaces"; the comment on each
 * names the Part that specifies it. The library exports these names and nothing else.
 *
 * The host that loads the library must also provide the platform (the vendor's HI_MPI_* calls) and the
 * host services of Part 1.6 (GetSysInfo, QV_SYSLOG, ...); see src/platform/host.h.
 */
#ifndef ISPTUNE_H
#define ISPTUNE_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Marks every exported name; the library is built with -fvisibility=hidden. */
#define ISPTUNE_API __attribute__((visibility("default")))

/* ---- Parts 1.2, 1.3, 1.4, 1.5, 1.7: the ISP service ----------------------------------------------- */

/* Part 1.7: start the supervision thread; 0 when it was created, -1 otherwise. */
ISPTUNE_API int32_t QV_ISP_Start(void);
/* Part 1.7: stop the service and wait for the thread; always 0. */
ISPTUNE_API int32_t QV_ISP_Stop(void);
/* Part 1.7: 1 while the service runs. Written only by QV_ISP_Start / QV_ISP_Stop. */
extern ISPTUNE_API int32_t gISPStatus;
/* Part 1.2: the body of the supervision thread (argument unused). */
ISPTUNE_API void *QV_ISP_Proc(void *arg);
/* Part 1.2: 1 asks the supervision thread to refresh on its next pass. */
extern ISPTUNE_API int32_t ispParamReflashMark;
/* Part 1.3: sample the exposure and run the refresh of the profile in force; 0, or -1. */
ISPTUNE_API int32_t QV_ISP_SetVarParam(void);
/* Part 1.4: apply the baseline settings; 0, or -1 at the first failure. */
ISPTUNE_API int32_t QV_ISP_SetParam(void);
/* Part 1.5: low-light frame-rate adjustment for gain `f32Gain`; 0, -1 or the platform's code. */
ISPTUNE_API int32_t QV_ISP_FramerateAdjust(float f32Gain);

/* ---- Parts 3.2, 3.3: gain-scheduled refreshes ------------------------------------------------------ */

/* Part 3.2: re-apply the colour profile's gain-dependent settings at system gain G, level L; 0 or -1. */
ISPTUNE_API int32_t ISP_SetParamDayRefresh(int32_t G, int32_t L);
/* Part 3.3: re-apply the night profile's gain-dependent settings at system gain G, level L; 0 or -1. */
ISPTUNE_API int32_t ISP_SetParamNightRefresh(int32_t G, int32_t L);

/* ---- Part 1.1: the operation table ---------------------------------------------------------------- */

/* One operation: no arguments, a signed 32-bit result. */
typedef int32_t (*IspOperation)(void);
/* The host's sixteen-entry table, filled by CreateIspDev in the fixed slot order of Part 1.1. */
enum { ISP_OPERATION_COUNT = 16 };
typedef IspOperation IspDev[ISP_OPERATION_COUNT];

/* Part 1.1: store the sixteen operations into the host's table (slot order: QV_ISP_Start, QV_ISP_Stop,
 * set_exposure, set_awb, set_wdr, set_blc, set_flcker, set_dnr, set_iris, set_defog, set_sharpness,
 * set_brightness, set_Contrast, set_Saturation, set_SLInhibition, get_config). */
ISPTUNE_API void CreateIspDev(IspOperation *table);
/* Part 1.1: the operations; each returns 0 whatever its setter returned (QV_ISP_Start apart). */
ISPTUNE_API int32_t set_exposure(void);
ISPTUNE_API int32_t set_awb(void);
ISPTUNE_API int32_t set_wdr(void);
ISPTUNE_API int32_t set_blc(void);
ISPTUNE_API int32_t set_flcker(void);
ISPTUNE_API int32_t set_dnr(void);
ISPTUNE_API int32_t set_iris(void);
ISPTUNE_API int32_t set_defog(void);
ISPTUNE_API int32_t set_sharpness(void);
ISPTUNE_API int32_t set_brightness(void);
ISPTUNE_API int32_t set_Contrast(void);
ISPTUNE_API int32_t set_Saturation(void);
ISPTUNE_API int32_t set_SLInhibition(void);
ISPTUNE_API int32_t get_config(void);

/* ---- Parts 2.3, 2.4: scene profiles --------------------------------------------------------------- */

/* Part 2.3: apply the colour (day) profile; 0, or -1 at the first failure. */
ISPTUNE_API int32_t ISP_SetParamDay(void);
/* Part 2.4: apply the black-and-white night profile; 0, or -1 at the first failure. */
ISPTUNE_API int32_t ISP_SetParamNight(void);

/* ---- Part 4.1: the configuration record (100 bytes, layout fixed to the byte) ---------------------- */

typedef struct IspExposureCfg { /* 12 bytes */
    uint32_t u32Mode;       /* 0 automatic, 1 manual */
    uint32_t u32ManualGain; /* manual gain step */
    uint32_t u32Shutter;    /* key into gShutterTimeTable (Part 4.2) */
} IspExposureCfg;

typedef struct IspWbCfg { /* 8 bytes */
    uint32_t u32Mode; /* 0 automatic, 1 manual */
    uint8_t u8Red, u8Green, u8Blue;
    uint8_t u8Reserved;
} IspWbCfg;

typedef struct IspBlcCfg { uint8_t u8Enable, u8Level; } IspBlcCfg;             /* 2 bytes */
typedef struct IspWdrCfg { uint8_t u8Mode, u8Level; } IspWdrCfg;               /* 2 bytes */
typedef struct IspFlickerCfg { uint8_t u8Mode; } IspFlickerCfg;                /* 1 byte */
typedef struct IspIrisCfg { uint8_t u8Mode, u8Reserved; } IspIrisCfg;          /* 2 bytes */
typedef struct IspDefogCfg { uint8_t u8Mode, u8Reserved, u8Strength; } IspDefogCfg;          /* 3 bytes */
typedef struct IspDnrCfg { uint8_t u8Mode, u8Strength2d, u8Strength3d; } IspDnrCfg;          /* 3 bytes */
typedef struct IspSlInhibitionCfg { uint8_t u8Enable, u8Level, u8DrcStrength; } IspSlInhibitionCfg; /* 3 */

typedef struct IspConfig {
    uint8_t au8Reserved0[8];           /*  0 */
    IspExposureCfg stExposure;         /*  8 */
    IspWbCfg stWb;                     /* 20 */
    uint8_t au8Reserved1[36];          /* 28 */
    IspBlcCfg stBlc;                   /* 64 */
    IspWdrCfg stWdr;                   /* 66 */
    IspFlickerCfg stFlicker;           /* 68 */
    IspIrisCfg stIris;                 /* 69 */
    IspDefogCfg stDefog;               /* 71 */
    IspDnrCfg stDnr;                   /* 74 */
    uint8_t au8Reserved2[3];           /* 77 */
    float f32Sharpness;                /* 80 */
    uint32_t u32Brightness;            /* 84 */
    uint32_t u32Contrast;              /* 88 */
    uint32_t u32Saturation;            /* 92 */
    IspSlInhibitionCfg stSlInhibition; /* 96 */
    uint8_t u8Reserved3;               /* 99 */
} IspConfig;

#ifndef __cplusplus
_Static_assert(sizeof(IspConfig) == 100, "IspConfig is 100 bytes (Part 4.1)");
#else
static_assert(sizeof(IspConfig) == 100, "IspConfig is 100 bytes (Part 4.1)");
#endif

/* Part 4.1: clear *config and fill it from the host's SysInfo record; returns config. */
ISPTUNE_API IspConfig *QV_ISP_GetConfig(IspConfig *config);

/* ---- Parts 4.2 to 4.10: the attribute setters and queries ----------------------------------------- */

/* Part 4.2: the exposure figures for the host (36 bytes; bytes 25 to 31 are not written). */
typedef struct IspExposureInfo {
    uint32_t u32ExpTime;       /*  0: microseconds */
    uint32_t u32AGain;         /*  4: 1024 = 1.0 */
    uint32_t u32DGain;         /*  8 */
    uint32_t u32ISPDGain;      /* 12 */
    uint32_t u32Exposure;      /* 16 */
    uint32_t u32ExposureIsMax; /* 20: 0 or 1 */
    uint8_t u8AveLum;          /* 24 */
    uint8_t au8NotWritten[7];  /* 25 */
    int16_t s16HistError;      /* 32 */
} IspExposureInfo;

ISPTUNE_API int32_t QV_ISP_SetExposureAttr(const IspExposureCfg *cfg); /* Part 4.2 */
ISPTUNE_API int32_t QV_ISP_SetFlickerAttr(const IspFlickerCfg *cfg);   /* Part 4.2 */
ISPTUNE_API int32_t QV_ISP_SetBLCAttr(const IspBlcCfg *cfg);           /* Part 4.2 */
ISPTUNE_API int32_t QV_ISP_GetExposureInfo(IspExposureInfo *info);     /* Part 4.2 */
ISPTUNE_API int32_t QV_ISP_SetWBAttr(const IspWbCfg *cfg);             /* Part 4.3 */
ISPTUNE_API int32_t QV_ISP_SetWDRAttr(const IspWdrCfg *cfg);           /* Part 4.4 */
ISPTUNE_API int32_t QV_ISP_SetSLInhibitionAttr(const IspSlInhibitionCfg *cfg); /* Part 4.4 */
ISPTUNE_API int32_t QV_ISP_SetDNRAttr(const IspDnrCfg *cfg);           /* Part 4.5 */
ISPTUNE_API int32_t QV_ISP_SetIRAttr(const IspIrisCfg *cfg);           /* Part 4.6 */
ISPTUNE_API int32_t QV_ISP_SetDefogAttr(const IspDefogCfg *cfg);       /* Part 4.7 */
ISPTUNE_API int32_t QV_ISP_SetSharpnessAttr(float value);              /* Part 4.8 */
ISPTUNE_API int32_t QV_ISP_SetBrightAttr(uint32_t value);              /* Part 4.9 */
ISPTUNE_API int32_t QV_ISP_SetContrastAttr(uint32_t value);            /* Part 4.9 */
ISPTUNE_API int32_t QV_ISP_SetSaturationAttr(uint32_t value);          /* Part 4.9 */
/* Part 4.10: the overlay line into lines + 1024 * index; 0, -1, or the platform's code. */
ISPTUNE_API int32_t QV_ISP_GetDebugInfo(char *lines, int32_t index);

/* Part 4.4: exported data objects. s32WdrParamMark is a plain word; stSLDRCAttr (an ISP_DRC_ATTR_S, 496
 * bytes) and stSLExposureAttr (an ISP_EXPOSURE_ATTR_S, 412 bytes) are declared with their platform types
 * in include/isptune_mpp.h, for hosts that include the MPP headers. */
extern ISPTUNE_API int32_t s32WdrParamMark;

/* ---- Part 2.1: colour profile tables (read-only, exported) ---------------------------------------- */
/* Per-level tables: entry i is the setting at system gain 2^i (L0 ... L11), feeding entries 0 to 11 of
 * the platform's 16-entry automatic arrays (member fed in the comment). */
extern ISPTUNE_API const uint8_t gColorSatAttr[12];            /* ISP_SATURATION_ATTR_S au8Sat */
extern ISPTUNE_API const uint8_t gColorAnFCStrength[12];       /* ISP_ANTI_FALSECOLOR_S au8Strength */
extern ISPTUNE_API const uint8_t gColorAnFCThreshold[12];      /* ISP_ANTI_FALSECOLOR_S au8Threshold */
extern ISPTUNE_API const uint8_t gColorAnFCOffset[12];         /* ISP_ANTI_FALSECOLOR_S au16Offset (u8!) */
extern ISPTUNE_API const uint16_t gColorEdgeSmoothThr[12];     /* ISP_DEMOSAIC_ATTR_S au16EdgeSmoothThr */
extern ISPTUNE_API const uint16_t gColorEdgeSmoothSlope[12];   /* ISP_DEMOSAIC_ATTR_S au16EdgeSmoothSlope */
extern ISPTUNE_API const uint16_t gColorAntiAliasThr[12];      /* ISP_DEMOSAIC_ATTR_S au16AntiAliasThr */
extern ISPTUNE_API const uint16_t gColorAntiAliasSlope[12];    /* ISP_DEMOSAIC_ATTR_S au16AntiAliasSlope */
extern ISPTUNE_API const uint16_t gColorNrCoarseStr[12];       /* ISP_DEMOSAIC_ATTR_S au16NrCoarseStr */
extern ISPTUNE_API const uint8_t gColorDetailEnhanceStr[12];   /* ISP_DEMOSAIC_ATTR_S au8DetailEnhanceStr */
extern ISPTUNE_API const uint16_t gColorNoiseSuppressStr[12];  /* ISP_DEMOSAIC_ATTR_S au16NoiseSuppressStr */
extern ISPTUNE_API const uint16_t gColorSharpenLumaStr[12];    /* ISP_DEMOSAIC_ATTR_S au16SharpenLumaStr */
extern ISPTUNE_API const uint16_t gColorSharpenUd[12];         /* ISP_SHARPEN_ATTR_S au16SharpenUd */
extern ISPTUNE_API const uint8_t gColorSharpenD[12];           /* ISP_SHARPEN_ATTR_S au8SharpenD */
extern ISPTUNE_API const uint8_t gColorTextureThr[12];         /* ISP_SHARPEN_ATTR_S au8TextureThr */
extern ISPTUNE_API const uint8_t gColorSharpenEdge[12];        /* ISP_SHARPEN_ATTR_S au8SharpenEdge */
extern ISPTUNE_API const uint8_t gColorEdgeThr[12];            /* ISP_SHARPEN_ATTR_S au8EdgeThr */
extern ISPTUNE_API const uint8_t gColorOverShoot[12];          /* ISP_SHARPEN_ATTR_S au8OverShoot */
extern ISPTUNE_API const uint8_t gColorUnderShoot[12];         /* ISP_SHARPEN_ATTR_S au8UnderShoot */
extern ISPTUNE_API const uint8_t gColorshootSupStr[12];        /* ISP_SHARPEN_ATTR_S au8shootSupStr */
extern ISPTUNE_API const uint8_t gColorDetailCtrl[12];         /* ISP_SHARPEN_ATTR_S au8DetailCtrl */
extern ISPTUNE_API const uint16_t gColorStrength[12];          /* ISP_DP_DYNAMIC_ATTR_S au16Strength */
extern ISPTUNE_API const uint16_t gColorBlendRatio[12];        /* ISP_DP_DYNAMIC_ATTR_S au16BlendRatio */
extern ISPTUNE_API const uint8_t gColorDefog[12];              /* defog strength (day refresh, Part 3.2) */
extern ISPTUNE_API const uint8_t gColorDRCStrength[12];        /* DRC strength (day refresh, Part 3.2) */
/* Colour matrices, row-major 3 x 3, sign-magnitude words (bit 15 = minus, 0x0100 = +1.0). */
extern ISPTUNE_API const uint16_t gColorHighCCM[9];            /* au16HighCCM, at 4950 K */
extern ISPTUNE_API const uint16_t gColorMidCCM[9];             /* au16MidCCM, at 3650 K */
extern ISPTUNE_API const uint16_t gColorLowCCM[9];             /* au16LowCCM, at 2700 K */
/* Scalars, exported for the host; the library reads none of them. */
extern ISPTUNE_API const uint16_t gColorCCMHighColorTemp;      /* 4950 K, of gColorHighCCM */
extern ISPTUNE_API const uint16_t gColorCCMMidColorTemp;       /* 3650 K, of gColorMidCCM */
extern ISPTUNE_API const uint16_t gColorCCMLowColorTemp;       /* 2700 K, of gColorLowCCM */
extern ISPTUNE_API const uint16_t gColorAWBLowColorTemp;       /* 2300 K, white-balance range low end */
extern ISPTUNE_API const uint16_t gColorAWBHighColorTemp;      /* 10000 K, white-balance range high end */
extern ISPTUNE_API const uint32_t gColorCompensation;          /* 50, exposure compensation target */
extern ISPTUNE_API const uint32_t gColorAGainRangeMax;         /* 15872 = 15.5x analogue gain ceiling */
extern ISPTUNE_API const uint32_t gColorDGainRangeMax;         /* 1024 = 1x sensor digital gain ceiling */
extern ISPTUNE_API const uint32_t gColorISPDGainRangeMax;      /* 4096 = 4x ISP digital gain ceiling */
/* Auto-exposure zone weights au8Weight[15][17], row-major: entry r * 17 + c is row r, column c. */
extern ISPTUNE_API const uint32_t gColorAEWeightTable[15 * 17];

/* ---- Part 2.2: night profile tables (read-only, exported) ----------------------------------------- */
/* Per-level tables applied by ISP_SetParamNight (Part 2.4); member fed in the comment. */
extern ISPTUNE_API const uint16_t gNightEdgeSmoothThr[12];     /* ISP_DEMOSAIC_ATTR_S au16EdgeSmoothThr */
extern ISPTUNE_API const uint16_t gNightEdgeSmoothSlope[12];   /* ISP_DEMOSAIC_ATTR_S au16EdgeSmoothSlope */
extern ISPTUNE_API const uint16_t gNightAntiAliasThr[12];      /* ISP_DEMOSAIC_ATTR_S au16AntiAliasThr */
extern ISPTUNE_API const uint16_t gNightAntiAliasSlope[12];    /* ISP_DEMOSAIC_ATTR_S au16AntiAliasSlope */
extern ISPTUNE_API const uint16_t gNightNrCoarseStr[12];       /* ISP_DEMOSAIC_ATTR_S au16NrCoarseStr */
extern ISPTUNE_API const uint8_t gNightDetailEnhanceStr[12];   /* ISP_DEMOSAIC_ATTR_S au8DetailEnhanceStr */
extern ISPTUNE_API const uint16_t gNightNoiseSuppressStr[12];  /* ISP_DEMOSAIC_ATTR_S au16NoiseSuppressStr */
extern ISPTUNE_API const uint16_t gNightSharpenLumaStr[12];    /* ISP_DEMOSAIC_ATTR_S au16SharpenLumaStr */
extern ISPTUNE_API const uint16_t gNightSharpenUd[12];         /* ISP_SHARPEN_ATTR_S au16SharpenUd */
extern ISPTUNE_API const uint8_t gNightSharpenD[12];           /* ISP_SHARPEN_ATTR_S au8SharpenD */
extern ISPTUNE_API const uint8_t gNightTextureThr[12];         /* ISP_SHARPEN_ATTR_S au8TextureThr */
extern ISPTUNE_API const uint8_t gNightSharpenEdge[12];        /* ISP_SHARPEN_ATTR_S au8SharpenEdge */
extern ISPTUNE_API const uint8_t gNightEdgeThr[12];            /* ISP_SHARPEN_ATTR_S au8EdgeThr */
extern ISPTUNE_API const uint8_t gNightOverShoot[12];          /* ISP_SHARPEN_ATTR_S au8OverShoot */
extern ISPTUNE_API const uint8_t gNightUnderShoot[12];         /* ISP_SHARPEN_ATTR_S au8UnderShoot */
extern ISPTUNE_API const uint8_t gNightshootSupStr[12];        /* ISP_SHARPEN_ATTR_S au8shootSupStr */
extern ISPTUNE_API const uint8_t gNightDetailCtrl[12];         /* ISP_SHARPEN_ATTR_S au8DetailCtrl */
extern ISPTUNE_API const uint16_t gNightStrength[12];          /* ISP_DP_DYNAMIC_ATTR_S au16Strength */
extern ISPTUNE_API const uint16_t gNightBlendRatio[12];        /* ISP_DP_DYNAMIC_ATTR_S au16BlendRatio */
/* Per-level tables interpolated by the night refresh (Part 3.3); each g_3dnr_ table feeds the field of
 * its name in the VPSS noise-reduction record (Part 3.1). */
extern ISPTUNE_API const uint8_t gNightDefog[12];              /* defog strength */
extern ISPTUNE_API const uint8_t gNightDRCStrength[12];        /* DRC strength */
extern ISPTUNE_API const uint8_t g_3dnr_SBS0_night[12];
extern ISPTUNE_API const uint8_t g_3dnr_SBS1_night[12];
extern ISPTUNE_API const uint8_t g_3dnr_SBS2_night[12];
extern ISPTUNE_API const uint8_t g_3dnr_SBS3_night[12];
extern ISPTUNE_API const uint8_t g_3dnr_SDS0_night[12];
extern ISPTUNE_API const uint8_t g_3dnr_SDS1_night[12];
extern ISPTUNE_API const uint8_t g_3dnr_SDS2_night[12];
extern ISPTUNE_API const uint8_t g_3dnr_SDS3_night[12];
extern ISPTUNE_API const uint8_t g_3dnr_STH0_night[12];
extern ISPTUNE_API const uint8_t g_3dnr_STH1_night[12];
extern ISPTUNE_API const uint8_t g_3dnr_STH2_night[12];
extern ISPTUNE_API const uint8_t g_3dnr_STH3_night[12];
extern ISPTUNE_API const uint8_t g_3dnr_MDP_night[12];
extern ISPTUNE_API const uint8_t g_3dnr_Pro3_night[12];
extern ISPTUNE_API const uint8_t g_3dnr_MDDZ1_night[12];
extern ISPTUNE_API const uint8_t g_3dnr_MDDZ2_night[12];
extern ISPTUNE_API const uint8_t g_3dnr_MATH1_night[12];
extern ISPTUNE_API const uint8_t g_3dnr_MATH2_night[12];
extern ISPTUNE_API const uint8_t g_3dnr_TFS1_night[12];
extern ISPTUNE_API const uint8_t g_3dnr_TFS2_night[12];
extern ISPTUNE_API const uint8_t g_3dnr_SFC_night[12];
extern ISPTUNE_API const uint8_t g_3dnr_TFC_night[12];
extern ISPTUNE_API const uint8_t g_3dnr_TPC_night[12];
extern ISPTUNE_API const uint8_t g_3dnr_TRC_night[12];
/* VPSS sharpen per-level tables, exported for the host; the library reads none of them. */
extern ISPTUNE_API const uint16_t gNightVPSSSharpenUd[12];
extern ISPTUNE_API const uint8_t gNightVPSSSharpenD[12];
extern ISPTUNE_API const uint8_t gNightVPSSTextureThr[12];
extern ISPTUNE_API const uint8_t gNightVPSSSharpenEdge[12];
extern ISPTUNE_API const uint8_t gNightVPSSEdgeThd[12];
extern ISPTUNE_API const uint8_t gNightVPSSOverShoot[12];
extern ISPTUNE_API const uint8_t gNightVPSSUnderShoot[12];
extern ISPTUNE_API const uint8_t gNightVPSSShootSupStr[12];
extern ISPTUNE_API const uint8_t gNightVPSSDetailCtrl[12];
/* Scalars, exported for the host; the library reads none of them. */
extern ISPTUNE_API const uint32_t gNightCompensation;          /* 50, exposure compensation target */
extern ISPTUNE_API const uint32_t gNightAGainRangeMax;         /* 15872 = 15.5x analogue gain ceiling */
extern ISPTUNE_API const uint32_t gNightDGainRangeMax;         /* 1024 = 1x sensor digital gain ceiling */
extern ISPTUNE_API const uint32_t gNightISPDGainRangeMax;      /* 4096 = 4x ISP digital gain ceiling */
/* Auto-exposure zone weights au8Weight[15][17], row-major: entry r * 17 + c is row r, column c. */
extern ISPTUNE_API const uint32_t gNightAEWeightTable[15 * 17];
/* The night gamma curve, ISP_GAMMA_ATTR_S u16Table[257]: node n is the output for input n * 16. */
extern ISPTUNE_API const uint32_t g_gamma_table_night[257];

#ifdef __cplusplus
}
#endif

#endif /* ISPTUNE_H */
