/* Platform seam: our own declarations of the Hi3516CV300 MPP (SDK V1.0.2.x), from platform-layouts.md. */
#ifndef ISPTUNE_PLATFORM_HI3516CV300_MPP_H
#define ISPTUNE_PLATFORM_HI3516CV300_MPP_H

/*
 * Names, types and member order are the vendor's (hi_type.h, hi_errno.h, hi_common.h, hi_comm_isp.h,
 * hi_comm_vi.h, hi_comm_vpss.h, mpi_*.h) so that the same sources compile against the SDK headers. The
 * layouts are those of the intermediate release the tuning tables were made for (platform-layouts.md
 * section (b)); src/platform/mpp.h pins every size and offset. Padding is left implicit, as in the vendor
 * headers: do not add reserved members.
 */

#ifdef __cplusplus
extern "C" {
#endif

/* ---- hi_type.h: base types (ARM EABI: int and enums are 4 bytes, natural alignment) ---- */

typedef unsigned char HI_U8;
typedef unsigned short HI_U16;
typedef unsigned int HI_U32;
typedef signed char HI_S8;
typedef short HI_S16;
typedef int HI_S32;
typedef unsigned long long HI_U64;
typedef long long HI_S64;
typedef char HI_CHAR;
typedef float HI_FLOAT;
typedef double HI_DOUBLE;
#define HI_VOID void

typedef enum {
    HI_FALSE = 0,
    HI_TRUE = 1,
} HI_BOOL;

#define HI_NULL 0L
#define HI_SUCCESS 0
#define HI_FAILURE (-1)

/* ---- hi_common.h / hi_comm_*.h: handles (device 0 / group 0 on this single-sensor chip) ---- */

typedef HI_S32 ISP_DEV;
typedef HI_S32 VI_DEV;
typedef HI_S32 VI_CHN;
typedef HI_S32 VPSS_GRP;
typedef HI_S32 VPSS_CHN;

/* Array bounds under their vendor names (hi_comm_isp.h). */
#define ISP_AUTO_STENGTH_NUM 16
#define GAMMA_NODE_NUM 257
#define AE_ZONE_ROW 15
#define AE_ZONE_COLUMN 17
#define CCM_MATRIX_SIZE 9
#define DRC_TM_NODE_NUM 200
#define ISP_AE_ROUTE_MAX_NODES 16
#define ISP_AE_ROUTE_EX_MAX_NODES 16

/* ---- Error codes (section (e)) ----
 * 0x80000000 | 0x20000000 | module << 16 | level ERROR (4) << 13 | errid, with HI_ID_VPSS 7, HI_ID_VIU 16,
 * HI_ID_ISP 28. Written as the resulting words so each reads against the table; the cast makes them
 * HI_S32 constants (negative), as the vendor's HI_DEF_ERR does. */
#define ISPTUNE_MPP_ERR(word) ((HI_S32)(word))

#define HI_ERR_ISP_ILLEGAL_PARAM ISPTUNE_MPP_ERR(0xA01C8003u)
#define HI_ERR_ISP_NULL_PTR ISPTUNE_MPP_ERR(0xA01C8006u)
#define HI_ERR_ISP_NOT_SUPPORT ISPTUNE_MPP_ERR(0xA01C8008u)
#define HI_ERR_ISP_NOT_INIT ISPTUNE_MPP_ERR(0xA01C8040u)
#define HI_ERR_ISP_MEM_NOT_INIT ISPTUNE_MPP_ERR(0xA01C8041u)
#define HI_ERR_ISP_ATTR_NOT_CFG ISPTUNE_MPP_ERR(0xA01C8042u)
#define HI_ERR_ISP_SNS_UNREGISTER ISPTUNE_MPP_ERR(0xA01C8043u)
#define HI_ERR_ISP_INVALID_ADDR ISPTUNE_MPP_ERR(0xA01C8044u)
#define HI_ERR_ISP_NOMEM ISPTUNE_MPP_ERR(0xA01C8045u)

#define HI_ERR_VPSS_INVALID_DEVID ISPTUNE_MPP_ERR(0xA0078001u)
#define HI_ERR_VPSS_INVALID_CHNID ISPTUNE_MPP_ERR(0xA0078002u)
#define HI_ERR_VPSS_ILLEGAL_PARAM ISPTUNE_MPP_ERR(0xA0078003u)
#define HI_ERR_VPSS_EXIST ISPTUNE_MPP_ERR(0xA0078004u)
#define HI_ERR_VPSS_UNEXIST ISPTUNE_MPP_ERR(0xA0078005u)
#define HI_ERR_VPSS_NULL_PTR ISPTUNE_MPP_ERR(0xA0078006u)
#define HI_ERR_VPSS_NOT_SUPPORT ISPTUNE_MPP_ERR(0xA0078008u)
#define HI_ERR_VPSS_NOT_PERM ISPTUNE_MPP_ERR(0xA0078009u)
#define HI_ERR_VPSS_NOMEM ISPTUNE_MPP_ERR(0xA007800Cu)
#define HI_ERR_VPSS_NOBUF ISPTUNE_MPP_ERR(0xA007800Du)
#define HI_ERR_VPSS_BUF_EMPTY ISPTUNE_MPP_ERR(0xA007800Eu)
#define HI_ERR_VPSS_NOTREADY ISPTUNE_MPP_ERR(0xA0078010u)
#define HI_ERR_VPSS_BUSY ISPTUNE_MPP_ERR(0xA0078012u)

/* The vendor has no HI_ERR_VI_ILLEGAL_PARAM: the illegal-parameter code is HI_ERR_VI_INVALID_PARA. */
#define HI_ERR_VI_INVALID_DEVID ISPTUNE_MPP_ERR(0xA0108001u)
#define HI_ERR_VI_INVALID_CHNID ISPTUNE_MPP_ERR(0xA0108002u)
#define HI_ERR_VI_INVALID_PARA ISPTUNE_MPP_ERR(0xA0108003u)
#define HI_ERR_VI_INVALID_NULL_PTR ISPTUNE_MPP_ERR(0xA0108006u)
#define HI_ERR_VI_FAILED_NOTCONFIG ISPTUNE_MPP_ERR(0xA0108007u)
#define HI_ERR_VI_NOT_SUPPORT ISPTUNE_MPP_ERR(0xA0108008u)
#define HI_ERR_VI_NOT_PERM ISPTUNE_MPP_ERR(0xA0108009u)
#define HI_ERR_VI_SYS_NOTREADY ISPTUNE_MPP_ERR(0xA0108010u)
#define HI_ERR_VI_BUSY ISPTUNE_MPP_ERR(0xA0108012u)
#define HI_ERR_VI_FAILED_NOTENABLE ISPTUNE_MPP_ERR(0xA0108040u)

/* ---- Enumerations (section (c)) ---- */

typedef enum {
    OP_TYPE_AUTO = 0,
    OP_TYPE_MANUAL = 1,
    OP_TYPE_BUTT
} ISP_OP_TYPE_E;

typedef enum {
    ISP_GAMMA_CURVE_DEFAULT = 0,
    ISP_GAMMA_CURVE_SRGB = 1,
    ISP_GAMMA_CURVE_USER_DEFINE = 2,
    ISP_GAMMA_CURVE_BUTT
} ISP_GAMMA_CURVE_TYPE_E;

typedef enum {
    AE_MODE_SLOW_SHUTTER = 0,
    AE_MODE_FIX_FRAME_RATE = 1,
    AE_MODE_BUTT
} ISP_AE_MODE_E;

typedef enum {
    ISP_ANTIFLICKER_NORMAL_MODE = 0,
    ISP_ANTIFLICKER_AUTO_MODE = 1,
    ISP_ANTIFLICKER_MODE_BUTT
} ISP_ANTIFLICKER_MODE_E;

typedef enum {
    AE_EXP_HIGHLIGHT_PRIOR = 0,
    AE_EXP_LOWLIGHT_PRIOR = 1,
    AE_STRATEGY_MODE_BUTT
} ISP_AE_STRATEGY_E;

typedef enum {
    ISP_IRIS_DC_TYPE = 0,
    ISP_IRIS_P_TYPE = 1,
    ISP_IRIS_TYPE_BUTT
} ISP_IRIS_TYPE_E;

typedef enum {
    ISP_IRIS_KEEP = 0,
    ISP_IRIS_OPEN = 1,
    ISP_IRIS_CLOSE = 2,
    ISP_IRIS_BUTT
} ISP_IRIS_STATUS_E;

typedef enum {
    ISP_IRIS_F_NO_32_0 = 0,
    ISP_IRIS_F_NO_22_0 = 1,
    ISP_IRIS_F_NO_16_0 = 2,
    ISP_IRIS_F_NO_11_0 = 3,
    ISP_IRIS_F_NO_8_0 = 4,
    ISP_IRIS_F_NO_5_6 = 5,
    ISP_IRIS_F_NO_4_0 = 6,
    ISP_IRIS_F_NO_2_8 = 7,
    ISP_IRIS_F_NO_2_0 = 8,
    ISP_IRIS_F_NO_1_4 = 9,
    ISP_IRIS_F_NO_1_0 = 10,
    ISP_IRIS_F_NO_BUTT
} ISP_IRIS_F_NO_E;

typedef enum {
    ISP_FSWDR_NORMAL_MODE = 0,
    ISP_FSWDR_LONG_FRAME_MODE = 1,
    ISP_FSWDR_AUTO_LONG_FRAME_MODE = 2,
    ISP_FSWDR_MODE_BUTT
} ISP_FSWDR_MODE_E;

typedef enum {
    AWB_ALG_LOWCOST = 0,
    AWB_ALG_ADVANCE = 1,
    AWB_ALG_BUTT
} ISP_AWB_ALG_TYPE_E;

typedef enum {
    AWB_MULTI_LS_SAT = 0,
    AWB_MULTI_LS_CCM = 1,
    AWB_MULTI_LS_BUTT
} ISP_AWB_MULTI_LS_TYPE_E;

typedef enum {
    AWB_INDOOR_MODE = 0,
    AWB_OUTDOOR_MODE = 1,
    AWB_INDOOR_OUTDOOR_BUTT
} ISP_AWB_INDOOR_OUTDOOR_STATUS_E;

typedef enum {
    BAYER_RGGB = 0,
    BAYER_GRBG = 1,
    BAYER_GBRG = 2,
    BAYER_BGGR = 3,
    BAYER_BUTT
} ISP_BAYER_FORMAT_E;

/* Only the formats a VPSS group of this chip takes; the vendor's values. */
typedef enum {
    PIXEL_FORMAT_YUV_SEMIPLANAR_422 = 22,
    PIXEL_FORMAT_YUV_SEMIPLANAR_420 = 23,
    PIXEL_FORMAT_YUV_400 = 29,
} PIXEL_FORMAT_E;

typedef enum {
    VPSS_DIE_MODE_AUTO = 0,
    VPSS_DIE_MODE_NODIE = 1,
    VPSS_DIE_MODE_DIE = 2,
    VPSS_DIE_MODE_BUTT
} VPSS_DIE_MODE_E;

/* Selector of the noise-reduction union; V2 is this chip's "S" interface. */
typedef enum {
    VPSS_NR_V1 = 1,
    VPSS_NR_V2 = 2,
    VPSS_NR_V3 = 3,
    VPSS_NR_V4 = 4,
    VPSS_NR_BUTT
} VPSS_NR_VER_E;

typedef enum {
    VPSS_NR_INTF_S = 0,
    VPSS_NR_INTF_X = 1,
    VPSS_NR_INTF_B = 2,
} VPSS_NR_INTF_E;

typedef enum {
    VI_CSC_TYPE_601 = 0,
    VI_CSC_TYPE_709 = 1,
    VI_CSC_TYPE_USER = 2,
} VI_CSC_TYPE_E;

/* ---- hi_comm_video.h ---- */

typedef struct hiRECT_S {
    HI_S32 s32X;
    HI_S32 s32Y;
    HI_U32 u32Width;
    HI_U32 u32Height;
} RECT_S;

/* ---- hi_comm_isp.h: exposure (mpi_ae.h) ---- */

typedef struct hiISP_AE_RANGE_S {
    HI_U32 u32Max;
    HI_U32 u32Min;
} ISP_AE_RANGE_S;

typedef struct hiISP_ANTIFLICKER_S {
    HI_BOOL bEnable;
    HI_U8 u8Frequency;
    ISP_ANTIFLICKER_MODE_E enMode;
} ISP_ANTIFLICKER_S;

typedef struct hiISP_SUBFLICKER_S {
    HI_BOOL bEnable;
    HI_U8 u8LumaDiff;
} ISP_SUBFLICKER_S;

typedef struct hiISP_AE_DELAY_S {
    HI_U16 u16BlackDelayFrame;
    HI_U16 u16WhiteDelayFrame;
} ISP_AE_DELAY_S;

typedef struct hiISP_ME_ATTR_S {
    ISP_OP_TYPE_E enExpTimeOpType;
    ISP_OP_TYPE_E enAGainOpType;
    ISP_OP_TYPE_E enDGainOpType;
    ISP_OP_TYPE_E enISPDGainOpType;
    HI_U32 u32ExpTime;
    HI_U32 u32AGain;
    HI_U32 u32DGain;
    HI_U32 u32ISPDGain;
} ISP_ME_ATTR_S;

typedef struct hiISP_AE_ATTR_S {
    ISP_AE_RANGE_S stExpTimeRange;
    ISP_AE_RANGE_S stAGainRange;
    ISP_AE_RANGE_S stDGainRange;
    ISP_AE_RANGE_S stISPDGainRange;
    ISP_AE_RANGE_S stSysGainRange;
    HI_U32 u32GainThreshold;
    HI_U8 u8Speed;
    HI_U16 u16BlackSpeedBias;
    HI_U8 u8Tolerance;
    HI_U8 u8Compensation;
    HI_U16 u16EVBias;
    ISP_AE_STRATEGY_E enAEStrategyMode;
    HI_U16 u16HistRatioSlope;
    HI_U8 u8MaxHistOffset;
    ISP_AE_MODE_E enAEMode;
    ISP_ANTIFLICKER_S stAntiflicker;
    ISP_SUBFLICKER_S stSubflicker;
    ISP_AE_DELAY_S stAEDelayAttr;
    HI_BOOL bManualExpValue;
    HI_U32 u32ExpValue;
    ISP_FSWDR_MODE_E enFSWDRMode;
    HI_BOOL bWDRQuick;
    HI_U8 au8Weight[AE_ZONE_ROW][AE_ZONE_COLUMN];
} ISP_AE_ATTR_S;

typedef struct hiISP_EXPOSURE_ATTR_S {
    HI_BOOL bByPass;
    ISP_OP_TYPE_E enOpType;
    HI_U8 u8AERunInterval;
    HI_BOOL bHistStatAdjust;
    HI_BOOL bAERouteExValid;
    ISP_ME_ATTR_S stManual;
    ISP_AE_ATTR_S stAuto;
} ISP_EXPOSURE_ATTR_S;

typedef struct hiISP_AE_ROUTE_NODE_S {
    HI_U32 u32IntTime;
    HI_U32 u32SysGain;
    ISP_IRIS_F_NO_E enIrisFNO;
    HI_U32 u32IrisFNOLin;
} ISP_AE_ROUTE_NODE_S;

typedef struct hiISP_AE_ROUTE_S {
    HI_U32 u32TotalNum;
    ISP_AE_ROUTE_NODE_S astRouteNode[ISP_AE_ROUTE_MAX_NODES];
} ISP_AE_ROUTE_S;

typedef struct hiISP_AE_ROUTE_EX_NODE_S {
    HI_U32 u32IntTime;
    HI_U32 u32Again;
    HI_U32 u32Dgain;
    HI_U32 u32IspDgain;
    ISP_IRIS_F_NO_E enIrisFNO;
    HI_U32 u32IrisFNOLin;
} ISP_AE_ROUTE_EX_NODE_S;

typedef struct hiISP_AE_ROUTE_EX_S {
    HI_U32 u32TotalNum;
    ISP_AE_ROUTE_EX_NODE_S astRouteExNode[ISP_AE_ROUTE_EX_MAX_NODES];
} ISP_AE_ROUTE_EX_S;

typedef struct hiISP_EXP_INFO_S {
    HI_U32 u32ExpTime;
    HI_U32 u32LongExpTime;
    HI_U32 u32AGain;
    HI_U32 u32DGain;
    HI_U32 u32ISPDGain;
    HI_U32 u32Exposure;
    HI_BOOL bExposureIsMAX;
    HI_S16 s16HistError;
    HI_U32 u32AE_Hist1024Value[1024];
    HI_U16 u16AE_Hist5Value[5];
    HI_U8 u8AveLum;
    HI_U32 u32LinesPer500ms;
    HI_U32 u32PirisFNO;
    HI_U32 u32Fps;
    HI_U32 u32ISO;
    HI_U32 u32RefExpRatio;
    HI_U32 u32FirstStableTime;
    ISP_AE_ROUTE_S stAERoute;
    ISP_AE_ROUTE_EX_S stAERouteEx;
} ISP_EXP_INFO_S;

/* ---- iris (mpi_ae.h) ---- */

typedef struct hiISP_MI_ATTR_S {
    HI_U32 u32HoldValue;
    ISP_IRIS_F_NO_E enIrisFNO;
} ISP_MI_ATTR_S;

typedef struct hiISP_IRIS_ATTR_S {
    HI_BOOL bEnable;
    ISP_OP_TYPE_E enOpType;
    ISP_IRIS_TYPE_E enIrisType;
    ISP_IRIS_STATUS_E enIrisStatus;
    ISP_MI_ATTR_S stMIAttr;
} ISP_IRIS_ATTR_S;

typedef struct hiISP_DCIRIS_ATTR_S {
    HI_S32 s32Kp;
    HI_S32 s32Ki;
    HI_S32 s32Kd;
    HI_U32 u32MinPwmDuty;
    HI_U32 u32MaxPwmDuty;
    HI_U32 u32OpenPwmDuty;
} ISP_DCIRIS_ATTR_S;

/* ---- public attribute, DRC (mpi_isp.h) ---- */

typedef struct hiISP_PUB_ATTR_S {
    RECT_S stWndRect;
    HI_FLOAT f32FrameRate;
    ISP_BAYER_FORMAT_E enBayer;
} ISP_PUB_ATTR_S;

typedef struct hiISP_DRC_MANUAL_ATTR_S {
    HI_U8 u8Strength;
} ISP_DRC_MANUAL_ATTR_S;

typedef struct hiISP_DRC_AUTO_ATTR_S {
    HI_U8 u8Strength;
    HI_U8 u8StrengthMax;
    HI_U8 u8StrengthMin;
} ISP_DRC_AUTO_ATTR_S;

/* u8LocalMixingBrigtht: the vendor's spelling. */
typedef struct hiISP_DRC_ATTR_S {
    HI_BOOL bEnable;
    HI_BOOL bUserTmEnable;
    HI_BOOL bUserTmUpdate;
    HI_U8 u8SpatialVar;
    HI_U8 u8RangeVar;
    HI_U8 u8Asymmetry;
    HI_U8 u8SecondPole;
    HI_U8 u8Stretch;
    HI_U8 u8Compress;
    HI_U8 u8PDStrength;
    HI_U8 u8LocalMixingBrigtht;
    HI_U8 u8LocalMixingDark;
    HI_U16 u16ColorCorrectionLut[33];
    HI_U16 au16ToneMappingValue[DRC_TM_NODE_NUM];
    ISP_OP_TYPE_E enOpType;
    ISP_DRC_MANUAL_ATTR_S stManual;
    ISP_DRC_AUTO_ATTR_S stAuto;
} ISP_DRC_ATTR_S;

/* ---- white balance (mpi_awb.h) ---- */

typedef struct hiISP_MWB_ATTR_S {
    HI_U16 u16Rgain;
    HI_U16 u16Grgain;
    HI_U16 u16Gbgain;
    HI_U16 u16Bgain;
} ISP_MWB_ATTR_S;

typedef struct hiISP_AWB_CT_LIMIT_ATTR_S {
    HI_BOOL bEnable;
    ISP_OP_TYPE_E enOpType;
    HI_U16 u16HighRgLimit;
    HI_U16 u16HighBgLimit;
    HI_U16 u16LowRgLimit;
    HI_U16 u16LowBgLimit;
} ISP_AWB_CT_LIMIT_ATTR_S;

typedef struct hiISP_AWB_CBCR_TRACK_ATTR_S {
    HI_BOOL bEnable;
    HI_U16 au16CrMax[ISP_AUTO_STENGTH_NUM];
    HI_U16 au16CrMin[ISP_AUTO_STENGTH_NUM];
    HI_U16 au16CbMax[ISP_AUTO_STENGTH_NUM];
    HI_U16 au16CbMin[ISP_AUTO_STENGTH_NUM];
} ISP_AWB_CBCR_TRACK_ATTR_S;

typedef struct hiISP_AWB_LUM_HISTGRAM_ATTR_S {
    HI_BOOL bEnable;
    ISP_OP_TYPE_E enOpType;
    HI_U8 au8HistThresh[6];
    HI_U16 au16HistWt[6];
} ISP_AWB_LUM_HISTGRAM_ATTR_S;

typedef struct hiISP_AWB_ATTR_S {
    HI_BOOL bEnable;
    HI_U16 u16RefColorTemp;
    HI_U16 au16StaticWB[4];
    HI_S32 as32CurvePara[6];
    ISP_AWB_ALG_TYPE_E enAlgType;
    HI_U8 u8RGStrength;
    HI_U8 u8BGStrength;
    HI_U16 u16Speed;
    HI_U16 u16ZoneSel;
    HI_U16 u16HighColorTemp;
    HI_U16 u16LowColorTemp;
    ISP_AWB_CT_LIMIT_ATTR_S stCTLimit;
    HI_BOOL bShiftLimitEn;
    HI_U8 u8ShiftLimit;
    HI_BOOL bGainNormEn;
    ISP_AWB_CBCR_TRACK_ATTR_S stCbCrTrack;
    ISP_AWB_LUM_HISTGRAM_ATTR_S stLumaHist;
} ISP_AWB_ATTR_S;

typedef struct hiISP_WB_ATTR_S {
    HI_BOOL bByPass;
    HI_U8 u8AWBRunInterval;
    ISP_OP_TYPE_E enOpType;
    ISP_MWB_ATTR_S stManual;
    ISP_AWB_ATTR_S stAuto;
} ISP_WB_ATTR_S;

typedef struct hiISP_AWB_EXTRA_LIGHTSOURCE_INFO_S {
    HI_U16 u16WhiteRgain;
    HI_U16 u16WhiteBgain;
    HI_U16 u16ExpQuant;
    HI_U8 u8LightStatus;
    HI_U8 u8Radius;
} ISP_AWB_EXTRA_LIGHTSOURCE_INFO_S;

typedef struct hiISP_AWB_IN_OUT_ATTR_S {
    HI_BOOL bEnable;
    ISP_OP_TYPE_E enOpType;
    ISP_AWB_INDOOR_OUTDOOR_STATUS_E enOutdoorStatus;
    HI_U32 u32OutThresh;
    HI_U16 u16LowStart;
    HI_U16 u16LowStop;
    HI_U16 u16HighStart;
    HI_U16 u16HighStop;
    HI_BOOL bGreenEnhanceEn;
    HI_U8 u8OutShiftLimit;
} ISP_AWB_IN_OUT_ATTR_S;

typedef struct hiISP_AWB_ATTR_EX_S {
    HI_U8 u8Tolerance;
    HI_U8 u8ZoneRadius;
    HI_U16 u16CurveLLimit;
    HI_U16 u16CurveRLimit;
    HI_BOOL bExtraLightEn;
    ISP_AWB_EXTRA_LIGHTSOURCE_INFO_S stLightInfo[4];
    ISP_AWB_IN_OUT_ATTR_S stInOrOut;
    HI_BOOL bMultiLightSourceEn;
    ISP_AWB_MULTI_LS_TYPE_E enMultiLSType;
    HI_U16 u16MultiLSScaler;
    HI_U16 au16MultiCTBin[8];
    HI_U16 au16MultiCTWt[8];
    HI_BOOL bFineTunEn;
    HI_U8 u8FineTunStrength;
} ISP_AWB_ATTR_EX_S;

typedef struct hiISP_WB_INFO_S {
    HI_U16 u16Rgain;
    HI_U16 u16Grgain;
    HI_U16 u16Gbgain;
    HI_U16 u16Bgain;
    HI_U16 u16Saturation;
    HI_U16 u16ColorTemp;
    HI_U16 au16CCM[CCM_MATRIX_SIZE];
    HI_U16 u16LS0CT;
    HI_U16 u16LS1CT;
    HI_U16 u16LS0Area;
    HI_U16 u16LS1Area;
    HI_U8 u8MultiDegree;
    ISP_AWB_INDOOR_OUTDOOR_STATUS_E enInOutStatus;
} ISP_WB_INFO_S;

/* ---- saturation, colour matrix (mpi_awb.h) ---- */

typedef struct hiISP_SATURATION_MANUAL_S {
    HI_U8 u8Saturation;
} ISP_SATURATION_MANUAL_S;

typedef struct hiISP_SATURATION_AUTO_S {
    HI_U8 au8Sat[ISP_AUTO_STENGTH_NUM];
} ISP_SATURATION_AUTO_S;

typedef struct hiISP_SATURATION_ATTR_S {
    ISP_OP_TYPE_E enOpType;
    ISP_SATURATION_MANUAL_S stManual;
    ISP_SATURATION_AUTO_S stAuto;
} ISP_SATURATION_ATTR_S;

typedef struct hiISP_COLORMATRIX_MANUAL_S {
    HI_BOOL bSatEn;
    HI_U16 au16CCM[CCM_MATRIX_SIZE];
} ISP_COLORMATRIX_MANUAL_S;

typedef struct hiISP_COLORMATRIX_AUTO_S {
    HI_BOOL bISOActEn;
    HI_BOOL bTempActEn;
    HI_U16 u16HighColorTemp;
    HI_U16 au16HighCCM[CCM_MATRIX_SIZE];
    HI_U16 u16MidColorTemp;
    HI_U16 au16MidCCM[CCM_MATRIX_SIZE];
    HI_U16 u16LowColorTemp;
    HI_U16 au16LowCCM[CCM_MATRIX_SIZE];
} ISP_COLORMATRIX_AUTO_S;

typedef struct hiISP_COLORMATRIX_ATTR_S {
    ISP_OP_TYPE_E enOpType;
    ISP_COLORMATRIX_MANUAL_S stManual;
    ISP_COLORMATRIX_AUTO_S stAuto;
} ISP_COLORMATRIX_ATTR_S;

/* ---- black level, gamma, anti-false-colour, demosaic, defect pixels (mpi_isp.h) ---- */

typedef struct hiISP_BLACK_LEVEL_S {
    HI_U16 au16BlackLevel[4];
} ISP_BLACK_LEVEL_S;

typedef struct hiISP_GAMMA_ATTR_S {
    HI_BOOL bEnable;
    ISP_GAMMA_CURVE_TYPE_E enCurveType;
    HI_U16 u16Table[GAMMA_NODE_NUM];
} ISP_GAMMA_ATTR_S;

typedef struct hiISP_ANTI_FALSECOLOR_MANUAL_S {
    HI_U8 u8Strength;
    HI_U8 u8Threshold;
    HI_U16 u16Offset;
} ISP_ANTI_FALSECOLOR_MANUAL_S;

typedef struct hiISP_ANTI_FALSECOLOR_AUTO_ATTR_S {
    HI_U8 au8Strength[ISP_AUTO_STENGTH_NUM];
    HI_U8 au8Threshold[ISP_AUTO_STENGTH_NUM];
    HI_U16 au16Offset[ISP_AUTO_STENGTH_NUM];
} ISP_ANTI_FALSECOLOR_AUTO_ATTR_S;

typedef struct hiISP_ANTI_FALSECOLOR_S {
    HI_BOOL bEnable;
    ISP_OP_TYPE_E enOpType;
    ISP_ANTI_FALSECOLOR_MANUAL_S stManual;
    ISP_ANTI_FALSECOLOR_AUTO_ATTR_S stAuto;
} ISP_ANTI_FALSECOLOR_S;

typedef struct hiISP_DEMOSAIC_MANUAL_ATTR_S {
    HI_U16 u16EdgeSmoothThr;
    HI_U16 u16EdgeSmoothSlope;
    HI_U16 u16AntiAliasThr;
    HI_U16 u16AntiAliasSlope;
    HI_U16 u16NrCoarseStr;
    HI_U8 u8DetailEnhanceStr;
    HI_U16 u16NoiseSuppressStr;
    HI_U16 u16SharpenLumaStr;
    HI_U16 u16ColorNoiseCtrlThr;
} ISP_DEMOSAIC_MANUAL_ATTR_S;

typedef struct hiISP_DEMOSAIC_AUTO_ATTR_S {
    HI_U16 au16EdgeSmoothThr[ISP_AUTO_STENGTH_NUM];
    HI_U16 au16EdgeSmoothSlope[ISP_AUTO_STENGTH_NUM];
    HI_U16 au16AntiAliasThr[ISP_AUTO_STENGTH_NUM];
    HI_U16 au16AntiAliasSlope[ISP_AUTO_STENGTH_NUM];
    HI_U16 au16NrCoarseStr[ISP_AUTO_STENGTH_NUM];
    HI_U8 au8DetailEnhanceStr[ISP_AUTO_STENGTH_NUM];
    HI_U16 au16NoiseSuppressStr[ISP_AUTO_STENGTH_NUM];
    HI_U16 au16SharpenLumaStr[ISP_AUTO_STENGTH_NUM];
    HI_U16 au16ColorNoiseCtrlThr[ISP_AUTO_STENGTH_NUM];
} ISP_DEMOSAIC_AUTO_ATTR_S;

typedef struct hiISP_DEMOSAIC_ATTR_S {
    HI_BOOL bEnable;
    ISP_OP_TYPE_E enOpType;
    ISP_DEMOSAIC_MANUAL_ATTR_S stManual;
    ISP_DEMOSAIC_AUTO_ATTR_S stAuto;
} ISP_DEMOSAIC_ATTR_S;

typedef struct hiISP_DP_DYNAMIC_MANUAL_ATTR_S {
    HI_U16 u16Strength;
    HI_U16 u16Thresh;
    HI_U16 u16LineThresh;
    HI_U16 u16HpThresh;
    HI_U16 u16BlendRatio;
} ISP_DP_DYNAMIC_MANUAL_ATTR_S;

typedef struct hiISP_DP_DYNAMIC_AUTO_ATTR_S {
    HI_U16 au16Strength[ISP_AUTO_STENGTH_NUM];
    HI_U16 u16Thresh;
    HI_U16 u16LineThresh;
    HI_U16 u16HpThresh;
    HI_U16 au16BlendRatio[ISP_AUTO_STENGTH_NUM];
} ISP_DP_DYNAMIC_AUTO_ATTR_S;

typedef struct hiISP_DP_DYNAMIC_ATTR_S {
    HI_BOOL bEnable;
    HI_BOOL bSupTwinkleEn;
    HI_S8 s8SoftThr;
    HI_U8 u8SoftSlope;
    ISP_OP_TYPE_E enOpType;
    ISP_DP_DYNAMIC_MANUAL_ATTR_S stManual;
    ISP_DP_DYNAMIC_AUTO_ATTR_S stAuto;
} ISP_DP_DYNAMIC_ATTR_S;

/* ---- sharpen, defog (mpi_isp.h) ---- */

typedef struct hiISP_SHARPEN_MANUAL_ATTR_S {
    HI_U16 u16SharpenUd;
    HI_U8 u8SharpenD;
    HI_U8 u8TextureThr;
    HI_U8 u8SharpenEdge;
    HI_U8 u8EdgeThr;
    HI_U8 u8OverShoot;
    HI_U8 u8UnderShoot;
    HI_U8 u8shootSupStr;
    HI_U8 u8DetailCtrl;
} ISP_SHARPEN_MANUAL_ATTR_S;

typedef struct hiISP_SHARPEN_AUTO_ATTR_S {
    HI_U16 au16SharpenUd[ISP_AUTO_STENGTH_NUM];
    HI_U8 au8SharpenD[ISP_AUTO_STENGTH_NUM];
    HI_U8 au8TextureThr[ISP_AUTO_STENGTH_NUM];
    HI_U8 au8SharpenEdge[ISP_AUTO_STENGTH_NUM];
    HI_U8 au8EdgeThr[ISP_AUTO_STENGTH_NUM];
    HI_U8 au8OverShoot[ISP_AUTO_STENGTH_NUM];
    HI_U8 au8UnderShoot[ISP_AUTO_STENGTH_NUM];
    HI_U8 au8shootSupStr[ISP_AUTO_STENGTH_NUM];
    HI_U8 au8DetailCtrl[ISP_AUTO_STENGTH_NUM];
} ISP_SHARPEN_AUTO_ATTR_S;

typedef struct hiISP_SHARPEN_ATTR_S {
    HI_BOOL bEnable;
    HI_U8 u8LumaWgt[32];
    ISP_OP_TYPE_E enOpType;
    ISP_SHARPEN_MANUAL_ATTR_S stManual;
    ISP_SHARPEN_AUTO_ATTR_S stAuto;
} ISP_SHARPEN_ATTR_S;

typedef struct hiISP_DEFOG_MANUAL_ATTR_S {
    HI_U8 u8strength;
} ISP_DEFOG_MANUAL_ATTR_S;

typedef struct hiISP_DEFOG_AUTO_ATTR_S {
    HI_U8 u8strength;
} ISP_DEFOG_AUTO_ATTR_S;

typedef struct hiISP_DEFOG_ATTR_S {
    HI_BOOL bEnable;
    ISP_OP_TYPE_E enOpType;
    ISP_DEFOG_MANUAL_ATTR_S stManual;
    ISP_DEFOG_AUTO_ATTR_S stAuto;
} ISP_DEFOG_ATTR_S;

/* ---- hi_comm_vi.h ---- */

typedef struct hiVI_DCI_PARAM_S {
    HI_BOOL bEnable;
    HI_U32 u32BlackGain;
    HI_U32 u32ContrastGain;
    HI_U32 u32LightGain;
    HI_BOOL bManBlendEn;
    HI_U32 u32BlendRatio;
    HI_BOOL bBlackStretchEn;
} VI_DCI_PARAM_S;

typedef struct hiVI_CSC_MATRIX_S {
    HI_S32 s32CSCIdc[3];
    HI_S32 s32CSCOdc[3];
    HI_S32 s32CSCCoef[9];
} VI_CSC_MATRIX_S;

typedef struct hiVI_CSC_ATTR_S {
    VI_CSC_TYPE_E enViCscType;
    HI_U32 u32LumaVal;
    HI_U32 u32ContrVal;
    HI_U32 u32HueVal;
    HI_U32 u32SatuVal;
    HI_BOOL bTVModeEn;
    VI_CSC_MATRIX_S stCSCMatrix;
} VI_CSC_ATTR_S;

/* ---- hi_comm_vpss.h ---- */

typedef struct hiVPSS_GRP_ATTR_S {
    HI_U32 u32MaxW;
    HI_U32 u32MaxH;
    PIXEL_FORMAT_E enPixFmt;
    HI_BOOL bIeEn;
    HI_BOOL bDciEn;
    HI_BOOL bNrEn;
    HI_BOOL bHistEn;
    VPSS_DIE_MODE_E enDieMode;
    HI_BOOL bSharpenEn;
} VPSS_GRP_ATTR_S;

typedef struct hiVPSS_NR_PARAM_V1_S {
    HI_S32 s32YPKStr;
    HI_S32 s32YSFStr;
    HI_S32 s32YTFStr;
    HI_S32 s32TFStrMax;
    HI_S32 s32TFStrMov;
    HI_S32 s32YSmthStr;
    HI_S32 s32YSmthRat;
    HI_S32 s32YSFStrDlt;
    HI_S32 s32YSFStrDl;
    HI_S32 s32YTFStrDlt;
    HI_S32 s32YTFStrDl;
    HI_S32 s32YSFBriRat;
    HI_S32 s32CSFStr;
    HI_S32 s32CTFstr;
    HI_S32 s32YTFMdWin;
} VPSS_NR_PARAM_V1_S;

/* The "S" interface block the library edits (record bytes 4..31, Part 3.1). */
typedef struct hiNRS_PARAM_V2_S {
    HI_U8 IES0;
    HI_U8 SBS0;
    HI_U8 SBS1;
    HI_U8 SBS2;
    HI_U8 SBS3;
    HI_U8 SDS0;
    HI_U8 SDS1;
    HI_U8 SDS2;
    HI_U8 SDS3;
    HI_U8 STH0;
    HI_U8 STH1;
    HI_U8 STH2;
    HI_U8 STH3;
    HI_U8 MDP;
    HI_U8 LNTH;
    HI_U8 Pro3;
    HI_U16 MATH1;
    HI_U16 MATH2;
    HI_U8 MDDZ1;
    HI_U8 MDDZ2;
    HI_U8 TFS1;
    HI_U8 TFS2;
    HI_U8 SFC;
    HI_U8 TFC;
    HI_U8 TPC;
    HI_U8 TRC;
} NRS_PARAM_V2_S;

/* enNRVer selects the union member; it is an input of both Get and Set. */
typedef struct hiVPSS_GRP_NRS_PARAM_S {
    VPSS_NR_VER_E enNRVer;
    union {
        VPSS_NR_PARAM_V1_S stNRSParam_V1;
        NRS_PARAM_V2_S stNRSParam_V2;
    };
} VPSS_GRP_NRS_PARAM_S;

/* ---- Prototypes (section (d)): provided by the vendor libraries on the camera, by the simulator on a PC ---- */

/* mpi_ae.h (lib_hiae) */
HI_S32 HI_MPI_ISP_SetExposureAttr(ISP_DEV IspDev, const ISP_EXPOSURE_ATTR_S *pstExpAttr);
HI_S32 HI_MPI_ISP_GetExposureAttr(ISP_DEV IspDev, ISP_EXPOSURE_ATTR_S *pstExpAttr);
HI_S32 HI_MPI_ISP_QueryExposureInfo(ISP_DEV IspDev, ISP_EXP_INFO_S *pstExpInfo);
HI_S32 HI_MPI_ISP_SetIrisAttr(ISP_DEV IspDev, const ISP_IRIS_ATTR_S *pstIrisAttr);
HI_S32 HI_MPI_ISP_GetIrisAttr(ISP_DEV IspDev, ISP_IRIS_ATTR_S *pstIrisAttr);
HI_S32 HI_MPI_ISP_SetDcirisAttr(ISP_DEV IspDev, const ISP_DCIRIS_ATTR_S *pstDcirisAttr);
HI_S32 HI_MPI_ISP_GetDcirisAttr(ISP_DEV IspDev, ISP_DCIRIS_ATTR_S *pstDcirisAttr);

/* mpi_awb.h (lib_hiawb) */
HI_S32 HI_MPI_ISP_SetWBAttr(ISP_DEV IspDev, const ISP_WB_ATTR_S *pstWBAttr);
HI_S32 HI_MPI_ISP_GetWBAttr(ISP_DEV IspDev, ISP_WB_ATTR_S *pstWBAttr);
HI_S32 HI_MPI_ISP_SetAWBAttrEx(ISP_DEV IspDev, ISP_AWB_ATTR_EX_S *pstAWBAttrEx);
HI_S32 HI_MPI_ISP_GetAWBAttrEx(ISP_DEV IspDev, ISP_AWB_ATTR_EX_S *pstAWBAttrEx);
HI_S32 HI_MPI_ISP_QueryWBInfo(ISP_DEV IspDev, ISP_WB_INFO_S *pstWBInfo);
HI_S32 HI_MPI_ISP_SetCCMAttr(ISP_DEV IspDev, const ISP_COLORMATRIX_ATTR_S *pstCCMAttr);
HI_S32 HI_MPI_ISP_GetCCMAttr(ISP_DEV IspDev, ISP_COLORMATRIX_ATTR_S *pstCCMAttr);
HI_S32 HI_MPI_ISP_SetSaturationAttr(ISP_DEV IspDev, const ISP_SATURATION_ATTR_S *pstSatAttr);
HI_S32 HI_MPI_ISP_GetSaturationAttr(ISP_DEV IspDev, ISP_SATURATION_ATTR_S *pstSatAttr);

/* mpi_isp.h (libisp) */
HI_S32 HI_MPI_ISP_SetPubAttr(ISP_DEV IspDev, const ISP_PUB_ATTR_S *pstPubAttr);
HI_S32 HI_MPI_ISP_GetPubAttr(ISP_DEV IspDev, ISP_PUB_ATTR_S *pstPubAttr);
HI_S32 HI_MPI_ISP_SetDRCAttr(ISP_DEV IspDev, const ISP_DRC_ATTR_S *pstDRC);
HI_S32 HI_MPI_ISP_GetDRCAttr(ISP_DEV IspDev, ISP_DRC_ATTR_S *pstDRC);
HI_S32 HI_MPI_ISP_SetDPDynamicAttr(ISP_DEV IspDev, const ISP_DP_DYNAMIC_ATTR_S *pstDPDynamicAttr);
HI_S32 HI_MPI_ISP_GetDPDynamicAttr(ISP_DEV IspDev, ISP_DP_DYNAMIC_ATTR_S *pstDPDynamicAttr);
HI_S32 HI_MPI_ISP_SetGammaAttr(ISP_DEV IspDev, const ISP_GAMMA_ATTR_S *pstGammaAttr);
HI_S32 HI_MPI_ISP_GetGammaAttr(ISP_DEV IspDev, ISP_GAMMA_ATTR_S *pstGammaAttr);
HI_S32 HI_MPI_ISP_SetSharpenAttr(ISP_DEV IspDev, const ISP_SHARPEN_ATTR_S *pstShpAttr);
HI_S32 HI_MPI_ISP_GetSharpenAttr(ISP_DEV IspDev, ISP_SHARPEN_ATTR_S *pstShpAttr);
HI_S32 HI_MPI_ISP_SetAntiFalseColorAttr(ISP_DEV IspDev, const ISP_ANTI_FALSECOLOR_S *pstAntiFC);
HI_S32 HI_MPI_ISP_GetAntiFalseColorAttr(ISP_DEV IspDev, ISP_ANTI_FALSECOLOR_S *pstAntiFC);
HI_S32 HI_MPI_ISP_SetDemosaicAttr(ISP_DEV IspDev, const ISP_DEMOSAIC_ATTR_S *pstDemosaicAttr);
HI_S32 HI_MPI_ISP_GetDemosaicAttr(ISP_DEV IspDev, ISP_DEMOSAIC_ATTR_S *pstDemosaicAttr);
HI_S32 HI_MPI_ISP_SetBlackLevelAttr(ISP_DEV IspDev, const ISP_BLACK_LEVEL_S *pstBlackLevel);
HI_S32 HI_MPI_ISP_GetBlackLevelAttr(ISP_DEV IspDev, ISP_BLACK_LEVEL_S *pstBlackLevel);
HI_S32 HI_MPI_ISP_SetDeFogAttr(ISP_DEV IspDev, const ISP_DEFOG_ATTR_S *pstDefogAttr);
HI_S32 HI_MPI_ISP_GetDeFogAttr(ISP_DEV IspDev, ISP_DEFOG_ATTR_S *pstDefogAttr);

/* mpi_vi.h (libmpi) */
HI_S32 HI_MPI_VI_SetCSCAttr(VI_DEV ViDev, const VI_CSC_ATTR_S *pstCSCAttr);
HI_S32 HI_MPI_VI_GetCSCAttr(VI_DEV ViDev, VI_CSC_ATTR_S *pstCSCAttr);
HI_S32 HI_MPI_VI_SetDCIParam(VI_DEV ViDev, const VI_DCI_PARAM_S *pstDciParam);
HI_S32 HI_MPI_VI_GetDCIParam(VI_DEV ViDev, VI_DCI_PARAM_S *pstDciParam);

/* mpi_vpss.h (libmpi): set calls take non-const records, as the vendor declares them. */
HI_S32 HI_MPI_VPSS_SetGrpAttr(VPSS_GRP VpssGrp, VPSS_GRP_ATTR_S *pstGrpAttr);
HI_S32 HI_MPI_VPSS_GetGrpAttr(VPSS_GRP VpssGrp, VPSS_GRP_ATTR_S *pstGrpAttr);
HI_S32 HI_MPI_VPSS_SetGrpNRSParam(VPSS_GRP VpssGrp, VPSS_GRP_NRS_PARAM_S *pstNRSParam);
HI_S32 HI_MPI_VPSS_GetGrpNRSParam(VPSS_GRP VpssGrp, VPSS_GRP_NRS_PARAM_S *pstNRSParam);

#ifdef __cplusplus
}
#endif

#endif /* ISPTUNE_PLATFORM_HI3516CV300_MPP_H */
