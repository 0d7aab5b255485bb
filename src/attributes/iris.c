/* Part 4.6: IR and iris: the lens iris of ISP device 0 and the shortest automatic exposure time. */
#include <stdio.h>

#include "attributes/attributes.h"

/* Part 4.6 names the platform's iris enumerators by their values; pinned against the header in use. */
_Static_assert(ISP_IRIS_DC_TYPE == 0, "ISP_IRIS_DC_TYPE is 0 (Part 4.6)");
_Static_assert(ISP_IRIS_KEEP == 0, "ISP_IRIS_KEEP is 0 (Part 4.6)");
_Static_assert(ISP_IRIS_OPEN == 1, "ISP_IRIS_OPEN is 1 (Part 4.6)");

/* The values of Part 4.6's table, per mode: 0 is the DC auto iris, any other mode opens the iris. */
enum {
    IRIS_DC_MIN_EXP_TIME_US = 4000,  /* 1/250 s */
    IRIS_OPEN_MIN_EXP_TIME_US = 40,
};

/* The DC-iris coefficients written in mode 0 (written whole, without a read). */
static const ISP_DCIRIS_ATTR_S kDcIris = {
    .s32Kp = 7000,
    .s32Ki = 100,
    .s32Kd = 3000,
    .u32MinPwmDuty = 250,
    .u32MaxPwmDuty = 950,
    .u32OpenPwmDuty = 800,
};

int32_t QV_ISP_SetIRAttr(const IspIrisCfg *cfg)
{
    if (cfg == NULL) /* host input: refused before any platform call */
        return isp_attr_null_argument("QV_ISP_SetIRAttr");
    const int dc_iris = cfg->u8Mode == 0;

    ISP_EXPOSURE_ATTR_S exposure; /* steps 1, 2 */
    HI_S32 ret = HI_MPI_ISP_GetExposureAttr(0, &exposure);
    if (ret != HI_SUCCESS) {
        printf("HI_MPI_ISP_GetExposureAttr failed with %#x\n", (unsigned)ret);
        return -1;
    }
    exposure.stAuto.stExpTimeRange.u32Min = dc_iris ? IRIS_DC_MIN_EXP_TIME_US : IRIS_OPEN_MIN_EXP_TIME_US;
    ret = HI_MPI_ISP_SetExposureAttr(0, &exposure);
    if (ret != HI_SUCCESS) {
        printf("HI_MPI_ISP_SetExposureAttr failed with %#x\n", (unsigned)ret);
        return -1;
    }

    ISP_IRIS_ATTR_S iris; /* steps 3, 4; a later failure keeps the new minimum exposure time */
    ret = HI_MPI_ISP_GetIrisAttr(0, &iris);
    if (ret != HI_SUCCESS) {
        printf("HI_MPI_ISP_GetIrisAttr failed with %#x\n", (unsigned)ret);
        return -1;
    }
    iris.bEnable = HI_TRUE;
    iris.enOpType = OP_TYPE_AUTO;
    iris.enIrisType = ISP_IRIS_DC_TYPE;
    iris.enIrisStatus = dc_iris ? ISP_IRIS_KEEP : ISP_IRIS_OPEN;
    ret = HI_MPI_ISP_SetIrisAttr(0, &iris);
    if (ret != HI_SUCCESS) {
        printf("HI_MPI_ISP_SetIrisAttr failed with %#x\n", (unsigned)ret);
        return -1;
    }

    if (dc_iris) { /* step 5 */
        ISP_DCIRIS_ATTR_S dciris = kDcIris;
        ret = HI_MPI_ISP_SetDcirisAttr(0, &dciris);
        if (ret != HI_SUCCESS) {
            printf("HI_MPI_ISP_SetDcirisAttr failed with %#x\n", (unsigned)ret);
            return -1;
        }
    }
    return 0;
}
