/* Simulated MPP: the power-on value of every record (summarised in sim_mpp.h). */
#include <string.h>

#include "sim_mpp.h"

/* Centre-weighted metering: 1 on the outer ring of the 15 x 17 grid, rising by 1 per ring to 8. */
static HI_U8 ring_weight(int row, int col)
{
    int d = row;
    if (14 - row < d) d = 14 - row;
    if (col < d) d = col;
    if (16 - col < d) d = 16 - col;
    return (HI_U8)(1 + d);
}

static void power_on_exposure_attr(ISP_EXPOSURE_ATTR_S *r)
{
    r->bByPass = HI_FALSE;
    r->enOpType = OP_TYPE_AUTO;
    r->u8AERunInterval = 1;
    r->bHistStatAdjust = HI_TRUE;
    r->bAERouteExValid = HI_FALSE;
    r->stManual.enExpTimeOpType = OP_TYPE_AUTO;
    r->stManual.enAGainOpType = OP_TYPE_AUTO;
    r->stManual.enDGainOpType = OP_TYPE_AUTO;
    r->stManual.enISPDGainOpType = OP_TYPE_AUTO;
    r->stManual.u32ExpTime = 8000;
    r->stManual.u32AGain = 2048;
    r->stManual.u32DGain = 1024;
    r->stManual.u32ISPDGain = 1024;
    r->stAuto.stExpTimeRange.u32Max = 33000;
    r->stAuto.stExpTimeRange.u32Min = 16;
    r->stAuto.stAGainRange.u32Max = 16384;
    r->stAuto.stAGainRange.u32Min = 1024;
    r->stAuto.stDGainRange.u32Max = 4096;
    r->stAuto.stDGainRange.u32Min = 1024;
    r->stAuto.stISPDGainRange.u32Max = 2048;
    r->stAuto.stISPDGainRange.u32Min = 1024;
    r->stAuto.stSysGainRange.u32Max = 131072;
    r->stAuto.stSysGainRange.u32Min = 1024;
    r->stAuto.u32GainThreshold = 65536;
    r->stAuto.u8Speed = 64;
    r->stAuto.u16BlackSpeedBias = 144;
    r->stAuto.u8Tolerance = 2;
    r->stAuto.u8Compensation = 56;
    r->stAuto.u16EVBias = 1024;
    r->stAuto.enAEStrategyMode = AE_EXP_HIGHLIGHT_PRIOR;
    r->stAuto.u16HistRatioSlope = 128;
    r->stAuto.u8MaxHistOffset = 16;
    r->stAuto.enAEMode = AE_MODE_SLOW_SHUTTER;
    r->stAuto.stAntiflicker.bEnable = HI_FALSE;
    r->stAuto.stAntiflicker.u8Frequency = 50;
    r->stAuto.stAntiflicker.enMode = ISP_ANTIFLICKER_NORMAL_MODE;
    r->stAuto.stSubflicker.bEnable = HI_FALSE;
    r->stAuto.stSubflicker.u8LumaDiff = 22;
    r->stAuto.stAEDelayAttr.u16BlackDelayFrame = 8;
    r->stAuto.stAEDelayAttr.u16WhiteDelayFrame = 2;
    r->stAuto.bManualExpValue = HI_FALSE;
    r->stAuto.u32ExpValue = 1200;
    r->stAuto.enFSWDRMode = ISP_FSWDR_NORMAL_MODE;
    r->stAuto.bWDRQuick = HI_FALSE;
    for (int row = 0; row < 15; row++)
        for (int col = 0; col < 17; col++) r->stAuto.au8Weight[row][col] = ring_weight(row, col);
}

static void power_on_exp_info(ISP_EXP_INFO_S *r)
{
    r->u32ExpTime = 10000;
    r->u32LongExpTime = 10000;
    r->u32AGain = 1024;
    r->u32DGain = 1024;
    r->u32ISPDGain = 1024;
    r->u32Exposure = 160000;
    r->bExposureIsMAX = HI_FALSE;
    r->s16HistError = -3;
    /* A histogram peaked at bin 224 (average luminance 56 of 255, in 10-bit bins). */
    for (int i = 0; i < 1024; i++) {
        int d = i < 224 ? 224 - i : i - 224;
        r->u32AE_Hist1024Value[i] = (HI_U32)(2048 / (1 + d / 16));
    }
    static const HI_U16 hist5[5] = {4000, 21000, 6000, 1200, 400};
    memcpy(r->u16AE_Hist5Value, hist5, sizeof hist5);
    r->u8AveLum = 56;
    r->u32LinesPer500ms = 16875; /* 1125 lines a frame at 30 frames a second */
    r->u32PirisFNO = 1;
    r->u32Fps = 30;
    r->u32ISO = 100;
    r->u32RefExpRatio = 64;
    r->u32FirstStableTime = 1200;
    r->stAERoute.u32TotalNum = 16;
    r->stAERouteEx.u32TotalNum = 16;
    for (HI_U32 i = 0; i < 16; i++) {
        r->stAERoute.astRouteNode[i].u32IntTime = 30 + 2000 * i;
        r->stAERoute.astRouteNode[i].u32SysGain = 1024u << (i / 2);
        r->stAERoute.astRouteNode[i].enIrisFNO = ISP_IRIS_F_NO_1_4;
        r->stAERoute.astRouteNode[i].u32IrisFNOLin = 1024;
        r->stAERouteEx.astRouteExNode[i].u32IntTime = 30 + 2000 * i;
        r->stAERouteEx.astRouteExNode[i].u32Again = 1024 + 1024 * i;
        r->stAERouteEx.astRouteExNode[i].u32Dgain = 1024 + 64 * i;
        r->stAERouteEx.astRouteExNode[i].u32IspDgain = 1024 + 32 * i;
        r->stAERouteEx.astRouteExNode[i].enIrisFNO = ISP_IRIS_F_NO_1_4;
        r->stAERouteEx.astRouteExNode[i].u32IrisFNOLin = 1024;
    }
}

static void power_on_pub_attr(ISP_PUB_ATTR_S *r)
{
    r->stWndRect.s32X = 0;
    r->stWndRect.s32Y = 0;
    r->stWndRect.u32Width = 1920;
    r->stWndRect.u32Height = 1080;
    r->f32FrameRate = 30.0f;
    r->enBayer = BAYER_GBRG;
}

static void power_on_wb_attr(ISP_WB_ATTR_S *r)
{
    r->bByPass = HI_FALSE;
    r->u8AWBRunInterval = 4;
    r->enOpType = OP_TYPE_AUTO;
    r->stManual.u16Rgain = 420;
    r->stManual.u16Grgain = 256;
    r->stManual.u16Gbgain = 257;
    r->stManual.u16Bgain = 460;
    r->stAuto.bEnable = HI_TRUE;
    r->stAuto.u16RefColorTemp = 5000;
    r->stAuto.au16StaticWB[0] = 432;
    r->stAuto.au16StaticWB[1] = 256;
    r->stAuto.au16StaticWB[2] = 256;
    r->stAuto.au16StaticWB[3] = 488;
    static const HI_S32 curve[6] = {23, 56, -123, 186349, 128, -135872};
    memcpy(r->stAuto.as32CurvePara, curve, sizeof curve);
    r->stAuto.enAlgType = AWB_ALG_LOWCOST;
    r->stAuto.u8RGStrength = 128;
    r->stAuto.u8BGStrength = 128;
    r->stAuto.u16Speed = 256;
    r->stAuto.u16ZoneSel = 32;
    r->stAuto.u16HighColorTemp = 10000;
    r->stAuto.u16LowColorTemp = 2000;
    r->stAuto.stCTLimit.bEnable = HI_TRUE;
    r->stAuto.stCTLimit.enOpType = OP_TYPE_AUTO;
    r->stAuto.stCTLimit.u16HighRgLimit = 400;
    r->stAuto.stCTLimit.u16HighBgLimit = 220;
    r->stAuto.stCTLimit.u16LowRgLimit = 220;
    r->stAuto.stCTLimit.u16LowBgLimit = 420;
    r->stAuto.bShiftLimitEn = HI_TRUE;
    r->stAuto.u8ShiftLimit = 96;
    r->stAuto.bGainNormEn = HI_TRUE;
    r->stAuto.stCbCrTrack.bEnable = HI_TRUE;
    for (int i = 0; i < 16; i++) {
        r->stAuto.stCbCrTrack.au16CrMax[i] = (HI_U16)(400 + i);
        r->stAuto.stCbCrTrack.au16CrMin[i] = (HI_U16)(200 + i);
        r->stAuto.stCbCrTrack.au16CbMax[i] = (HI_U16)(420 + i);
        r->stAuto.stCbCrTrack.au16CbMin[i] = (HI_U16)(220 + i);
    }
    r->stAuto.stLumaHist.bEnable = HI_TRUE;
    r->stAuto.stLumaHist.enOpType = OP_TYPE_AUTO;
    static const HI_U8 thresh[6] = {8, 16, 32, 64, 128, 255};
    static const HI_U16 weight[6] = {16, 256, 256, 256, 256, 256};
    memcpy(r->stAuto.stLumaHist.au8HistThresh, thresh, sizeof thresh);
    memcpy(r->stAuto.stLumaHist.au16HistWt, weight, sizeof weight);
}

static void power_on_awb_attr_ex(ISP_AWB_ATTR_EX_S *r)
{
    r->u8Tolerance = 8;
    r->u8ZoneRadius = 10;
    r->u16CurveLLimit = 128;
    r->u16CurveRLimit = 288;
    r->bExtraLightEn = HI_FALSE;
    for (int k = 0; k < 4; k++) {
        r->stLightInfo[k].u16WhiteRgain = (HI_U16)(300 + 16 * k);
        r->stLightInfo[k].u16WhiteBgain = (HI_U16)(320 + 16 * k);
        r->stLightInfo[k].u16ExpQuant = (HI_U16)(100 + k);
        r->stLightInfo[k].u8LightStatus = 0;
        r->stLightInfo[k].u8Radius = (HI_U8)(10 + k);
    }
    r->stInOrOut.bEnable = HI_TRUE;
    r->stInOrOut.enOpType = OP_TYPE_AUTO;
    r->stInOrOut.enOutdoorStatus = AWB_INDOOR_MODE;
    r->stInOrOut.u32OutThresh = 14;
    r->stInOrOut.u16LowStart = 5000;
    r->stInOrOut.u16LowStop = 4500;
    r->stInOrOut.u16HighStart = 6500;
    r->stInOrOut.u16HighStop = 8000;
    r->stInOrOut.bGreenEnhanceEn = HI_TRUE;
    r->stInOrOut.u8OutShiftLimit = 32;
    r->bMultiLightSourceEn = HI_FALSE;
    r->enMultiLSType = AWB_MULTI_LS_SAT;
    r->u16MultiLSScaler = 256;
    static const HI_U16 bins[8] = {2000, 2500, 3000, 3500, 4000, 5000, 6000, 7500};
    static const HI_U16 weights[8] = {64, 128, 256, 512, 512, 256, 128, 64};
    memcpy(r->au16MultiCTBin, bins, sizeof bins);
    memcpy(r->au16MultiCTWt, weights, sizeof weights);
    r->bFineTunEn = HI_TRUE;
    r->u8FineTunStrength = 3;
}

/* Colour matrices (8.8 fixed point, bit 15 the sign), each row summing to 256. */
static const HI_U16 k_ccm_high[9] = {0x01C0, 0x8090, 0x8030, 0x8050, 0x01A0, 0x8050, 0x8008, 0x8098, 0x01A0};
static const HI_U16 k_ccm_mid[9] = {0x01D0, 0x80A0, 0x8030, 0x8060, 0x01B0, 0x8050, 0x8010, 0x80B8, 0x01C8};
static const HI_U16 k_ccm_low[9] = {0x0200, 0x80E0, 0x8020, 0x8078, 0x01C0, 0x8048, 0x8038, 0x8140, 0x0278};

static void power_on_wb_info(ISP_WB_INFO_S *r)
{
    r->u16Rgain = 420;
    r->u16Grgain = 256;
    r->u16Gbgain = 256;
    r->u16Bgain = 460;
    r->u16Saturation = 128;
    r->u16ColorTemp = 5100;
    memcpy(r->au16CCM, k_ccm_mid, sizeof k_ccm_mid);
    r->u16LS0CT = 5000;
    r->u16LS1CT = 3000;
    r->u16LS0Area = 200;
    r->u16LS1Area = 56;
    r->u8MultiDegree = 2;
    r->enInOutStatus = AWB_INDOOR_MODE;
}

static void power_on_drc_attr(ISP_DRC_ATTR_S *r)
{
    r->bEnable = HI_TRUE;
    r->bUserTmEnable = HI_FALSE;
    r->bUserTmUpdate = HI_FALSE;
    r->u8SpatialVar = 10;
    r->u8RangeVar = 5;
    r->u8Asymmetry = 2;
    r->u8SecondPole = 180;
    r->u8Stretch = 54;
    r->u8Compress = 180;
    r->u8PDStrength = 35;
    r->u8LocalMixingBrigtht = 45;
    r->u8LocalMixingDark = 64;
    for (int i = 0; i < 33; i++) r->u16ColorCorrectionLut[i] = (HI_U16)(1024 + 8 * i);
    for (int i = 0; i < 200; i++) r->au16ToneMappingValue[i] = (HI_U16)(100 + 320 * i);
    r->enOpType = OP_TYPE_AUTO;
    r->stManual.u8Strength = 96;
    r->stAuto.u8Strength = 128;
    r->stAuto.u8StrengthMax = 192;
    r->stAuto.u8StrengthMin = 32;
}

static void power_on_black_level(ISP_BLACK_LEVEL_S *r)
{
    for (int i = 0; i < 4; i++) r->au16BlackLevel[i] = (HI_U16)(240 + i);
}

static void power_on_gamma_attr(ISP_GAMMA_ATTR_S *r)
{
    r->bEnable = HI_TRUE;
    r->enCurveType = ISP_GAMMA_CURVE_DEFAULT;
    /* y = 4095 * x (3 - x) / 2 at x = i / 256: concave, strictly rising (7 or more a node), 0 to 4095. */
    for (HI_U32 i = 0; i <= 256; i++) r->u16Table[i] = (HI_U16)(i * (768 - i) * 4095 / (256 * 512));
}

static void power_on_saturation_attr(ISP_SATURATION_ATTR_S *r)
{
    r->enOpType = OP_TYPE_AUTO;
    r->stManual.u8Saturation = 128;
    for (int i = 0; i < 16; i++) r->stAuto.au8Sat[i] = (HI_U8)(140 - 4 * i);
}

static void power_on_ccm_attr(ISP_COLORMATRIX_ATTR_S *r)
{
    r->enOpType = OP_TYPE_AUTO;
    r->stManual.bSatEn = HI_TRUE;
    memcpy(r->stManual.au16CCM, k_ccm_mid, sizeof k_ccm_mid);
    r->stAuto.bISOActEn = HI_TRUE;
    r->stAuto.bTempActEn = HI_TRUE;
    r->stAuto.u16HighColorTemp = 6500;
    memcpy(r->stAuto.au16HighCCM, k_ccm_high, sizeof k_ccm_high);
    r->stAuto.u16MidColorTemp = 5000;
    memcpy(r->stAuto.au16MidCCM, k_ccm_mid, sizeof k_ccm_mid);
    r->stAuto.u16LowColorTemp = 2800;
    memcpy(r->stAuto.au16LowCCM, k_ccm_low, sizeof k_ccm_low);
}

static void power_on_anti_falsecolor(ISP_ANTI_FALSECOLOR_S *r)
{
    r->bEnable = HI_TRUE;
    r->enOpType = OP_TYPE_AUTO;
    r->stManual.u8Strength = 10;
    r->stManual.u8Threshold = 8;
    r->stManual.u16Offset = 3;
    for (int i = 0; i < 16; i++) {
        r->stAuto.au8Strength[i] = (HI_U8)(12 + i);
        r->stAuto.au8Threshold[i] = (HI_U8)(20 + i);
        r->stAuto.au16Offset[i] = (HI_U16)(300 + i);
    }
}

static void power_on_demosaic_attr(ISP_DEMOSAIC_ATTR_S *r)
{
    r->bEnable = HI_TRUE;
    r->enOpType = OP_TYPE_AUTO;
    r->stManual.u16EdgeSmoothThr = 190;
    r->stManual.u16EdgeSmoothSlope = 210;
    r->stManual.u16AntiAliasThr = 230;
    r->stManual.u16AntiAliasSlope = 250;
    r->stManual.u16NrCoarseStr = 270;
    r->stManual.u8DetailEnhanceStr = 90;
    r->stManual.u16NoiseSuppressStr = 290;
    r->stManual.u16SharpenLumaStr = 310;
    r->stManual.u16ColorNoiseCtrlThr = 330;
    for (int i = 0; i < 16; i++) {
        r->stAuto.au16EdgeSmoothThr[i] = (HI_U16)(200 + i);
        r->stAuto.au16EdgeSmoothSlope[i] = (HI_U16)(220 + i);
        r->stAuto.au16AntiAliasThr[i] = (HI_U16)(240 + i);
        r->stAuto.au16AntiAliasSlope[i] = (HI_U16)(260 + i);
        r->stAuto.au16NrCoarseStr[i] = (HI_U16)(280 + i);
        r->stAuto.au8DetailEnhanceStr[i] = (HI_U8)(100 + i);
        r->stAuto.au16NoiseSuppressStr[i] = (HI_U16)(300 + i);
        r->stAuto.au16SharpenLumaStr[i] = (HI_U16)(320 + i);
        r->stAuto.au16ColorNoiseCtrlThr[i] = (HI_U16)(340 + i);
    }
}

static void power_on_dp_dynamic_attr(ISP_DP_DYNAMIC_ATTR_S *r)
{
    r->bEnable = HI_TRUE;
    r->bSupTwinkleEn = HI_FALSE;
    r->s8SoftThr = 8;
    r->u8SoftSlope = 4;
    r->enOpType = OP_TYPE_AUTO;
    r->stManual.u16Strength = 20;
    r->stManual.u16Thresh = 140;
    r->stManual.u16LineThresh = 84;
    r->stManual.u16HpThresh = 44;
    r->stManual.u16BlendRatio = 36;
    r->stAuto.u16Thresh = 144;
    r->stAuto.u16LineThresh = 88;
    r->stAuto.u16HpThresh = 48;
    for (int i = 0; i < 16; i++) {
        r->stAuto.au16Strength[i] = (HI_U16)(16 + 8 * i);
        r->stAuto.au16BlendRatio[i] = (HI_U16)(40 + i);
    }
}

static void power_on_sharpen_attr(ISP_SHARPEN_ATTR_S *r)
{
    r->bEnable = HI_TRUE;
    for (int i = 0; i < 32; i++) r->u8LumaWgt[i] = (HI_U8)(96 + i);
    r->enOpType = OP_TYPE_AUTO;
    r->stManual.u16SharpenUd = 200;
    r->stManual.u8SharpenD = 180;
    r->stManual.u8TextureThr = 10;
    r->stManual.u8SharpenEdge = 150;
    r->stManual.u8EdgeThr = 60;
    r->stManual.u8OverShoot = 120;
    r->stManual.u8UnderShoot = 140;
    r->stManual.u8shootSupStr = 8;
    r->stManual.u8DetailCtrl = 128;
    for (int i = 0; i < 16; i++) {
        r->stAuto.au16SharpenUd[i] = (HI_U16)(400 - 12 * i);
        r->stAuto.au8SharpenD[i] = (HI_U8)(200 - 6 * i);
        r->stAuto.au8TextureThr[i] = (HI_U8)(4 + 2 * i);
        r->stAuto.au8SharpenEdge[i] = (HI_U8)(180 - 5 * i);
        r->stAuto.au8EdgeThr[i] = (HI_U8)(40 + 3 * i);
        r->stAuto.au8OverShoot[i] = (HI_U8)(150 - 4 * i);
        r->stAuto.au8UnderShoot[i] = (HI_U8)(170 - 5 * i);
        r->stAuto.au8shootSupStr[i] = (HI_U8)(8 + i);
        r->stAuto.au8DetailCtrl[i] = (HI_U8)(128 + i);
    }
}

static void power_on_defog_attr(ISP_DEFOG_ATTR_S *r)
{
    r->bEnable = HI_FALSE;
    r->enOpType = OP_TYPE_AUTO;
    r->stManual.u8strength = 80;
    r->stAuto.u8strength = 144;
}

static void power_on_iris_attr(ISP_IRIS_ATTR_S *r)
{
    r->bEnable = HI_FALSE;
    r->enOpType = OP_TYPE_AUTO;
    r->enIrisType = ISP_IRIS_DC_TYPE;
    r->enIrisStatus = ISP_IRIS_KEEP;
    r->stMIAttr.u32HoldValue = 700;
    r->stMIAttr.enIrisFNO = ISP_IRIS_F_NO_1_4;
}

static void power_on_dciris_attr(ISP_DCIRIS_ATTR_S *r)
{
    r->s32Kp = 7000;
    r->s32Ki = 200;
    r->s32Kd = 3000;
    r->u32MinPwmDuty = 600;
    r->u32MaxPwmDuty = 950;
    r->u32OpenPwmDuty = 800;
}

static void power_on_vi_dci_param(VI_DCI_PARAM_S *r)
{
    r->bEnable = HI_FALSE;
    r->u32BlackGain = 28;
    r->u32ContrastGain = 30;
    r->u32LightGain = 26;
    r->bManBlendEn = HI_FALSE;
    r->u32BlendRatio = 12;
    r->bBlackStretchEn = HI_TRUE;
}

static void power_on_vi_csc_attr(VI_CSC_ATTR_S *r)
{
    r->enViCscType = VI_CSC_TYPE_709;
    r->u32LumaVal = 48;
    r->u32ContrVal = 52;
    r->u32HueVal = 50;
    r->u32SatuVal = 54;
    r->bTVModeEn = HI_FALSE;
    /* BT.709 RGB to YCbCr, coefficients x 1000 (used only with VI_CSC_TYPE_USER). */
    static const HI_S32 idc[3] = {-16, -128, -128}, odc[3] = {16, 128, 128};
    static const HI_S32 coef[9] = {213, 715, 72, -117, -394, 511, 511, -464, -47};
    memcpy(r->stCSCMatrix.s32CSCIdc, idc, sizeof idc);
    memcpy(r->stCSCMatrix.s32CSCOdc, odc, sizeof odc);
    memcpy(r->stCSCMatrix.s32CSCCoef, coef, sizeof coef);
}

static void power_on_vpss_grp_attr(VPSS_GRP_ATTR_S *r)
{
    r->u32MaxW = 1920;
    r->u32MaxH = 1080;
    r->enPixFmt = PIXEL_FORMAT_YUV_SEMIPLANAR_420;
    r->bIeEn = HI_FALSE;
    r->bDciEn = HI_FALSE;
    r->bNrEn = HI_TRUE;
    r->bHistEn = HI_FALSE;
    r->enDieMode = VPSS_DIE_MODE_NODIE;
    r->bSharpenEn = HI_TRUE;
}

static void power_on_vpss_nrs_param(VPSS_GRP_NRS_PARAM_S *r)
{
    r->enNRVer = VPSS_NR_V2;
    NRS_PARAM_V2_S *p = &r->stNRSParam_V2;
    p->IES0 = 12;
    p->SBS0 = 20;
    p->SBS1 = 21;
    p->SBS2 = 22;
    p->SBS3 = 23;
    p->SDS0 = 30;
    p->SDS1 = 31;
    p->SDS2 = 32;
    p->SDS3 = 33;
    p->STH0 = 40;
    p->STH1 = 41;
    p->STH2 = 42;
    p->STH3 = 43;
    p->MDP = 2;
    p->LNTH = 18;
    p->Pro3 = 3;
    p->MATH1 = 160;
    p->MATH2 = 176;
    p->MDDZ1 = 10;
    p->MDDZ2 = 11;
    p->TFS1 = 5;
    p->TFS2 = 6;
    p->SFC = 7;
    p->TFC = 8;
    p->TPC = 9;
    p->TRC = 14;
}

void sim_mpp_power_on_record(sim_mpp_record_id id, void *out)
{
    size_t size = sim_mpp_record_size(id);
    if (out == NULL || size == 0) return;
    memset(out, 0, size); /* padding and unlisted fields are zero */
    switch (id) {
    case SIM_REC_EXPOSURE_ATTR: power_on_exposure_attr(out); break;
    case SIM_REC_EXP_INFO: power_on_exp_info(out); break;
    case SIM_REC_PUB_ATTR: power_on_pub_attr(out); break;
    case SIM_REC_WB_ATTR: power_on_wb_attr(out); break;
    case SIM_REC_AWB_ATTR_EX: power_on_awb_attr_ex(out); break;
    case SIM_REC_WB_INFO: power_on_wb_info(out); break;
    case SIM_REC_DRC_ATTR: power_on_drc_attr(out); break;
    case SIM_REC_BLACK_LEVEL: power_on_black_level(out); break;
    case SIM_REC_GAMMA_ATTR: power_on_gamma_attr(out); break;
    case SIM_REC_SATURATION_ATTR: power_on_saturation_attr(out); break;
    case SIM_REC_CCM_ATTR: power_on_ccm_attr(out); break;
    case SIM_REC_ANTI_FALSECOLOR: power_on_anti_falsecolor(out); break;
    case SIM_REC_DEMOSAIC_ATTR: power_on_demosaic_attr(out); break;
    case SIM_REC_DP_DYNAMIC_ATTR: power_on_dp_dynamic_attr(out); break;
    case SIM_REC_SHARPEN_ATTR: power_on_sharpen_attr(out); break;
    case SIM_REC_DEFOG_ATTR: power_on_defog_attr(out); break;
    case SIM_REC_IRIS_ATTR: power_on_iris_attr(out); break;
    case SIM_REC_DCIRIS_ATTR: power_on_dciris_attr(out); break;
    case SIM_REC_VI_DCI_PARAM: power_on_vi_dci_param(out); break;
    case SIM_REC_VI_CSC_ATTR: power_on_vi_csc_attr(out); break;
    case SIM_REC_VPSS_GRP_ATTR: power_on_vpss_grp_attr(out); break;
    case SIM_REC_VPSS_NRS_PARAM: power_on_vpss_nrs_param(out); break;
    case SIM_REC_COUNT: break;
    }
}
