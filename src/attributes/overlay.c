/* Part 4.10: debug overlay text: one line of exposure, gain, luminance, colour and frame-rate figures. */
#include <stddef.h>
#include <stdio.h>
#include <string.h>

#include "attributes/attributes.h"
#include "platform/host.h"

enum {
    OVERLAY_LINE_BYTES = 1024,     /* one OSD line of the host's buffer */
    OVERLAY_BUFFER_BYTES = 256,    /* the line is built here; snprintf truncates whatever the inputs */
    OVERLAY_MAX_CHARS = 53,        /* what the overlay shows, terminator excluded */
    OVERLAY_COLOUR_STANDIN = 9999, /* item 7 in the measured-only first rebuild (step 7.2) */
};

#define OVERLAY_GAIN_UNIT 0.0009765625 /* 1/1024: the platform's gains are 1024 = 1.0 */

/* The sampled figures, converted as Part 4.10's table says; every pass formats the same sample. */
typedef struct OverlaySample {
    int exp_time_ms, long_exp_time_ms; /* items 1, 2 */
    double again, dgain, ispdgain;     /* items 3, 4, 5 */
    int ave_lum, colour_temp;          /* items 6, 7 */
    double frame_rate, pmc;            /* items 8, 9 */
} OverlaySample;

/* The nine items, with `colour_temp` as item 7 (the measured value, or the stand-in of step 7.2). */
static size_t format_full(char *line, const OverlaySample *s, int colour_temp)
{
    memset(line, 0, OVERLAY_BUFFER_BYTES);
    snprintf(line, OVERLAY_BUFFER_BYTES, "%s%d%s%d%s%.1f%s%.1f%s%.1f%s%d%s%d%s%.1f%s%.2f", "S:",
             s->exp_time_ms, " L:", s->long_exp_time_ms, " A:", s->again, " D:", s->dgain, " I:", s->ispdgain,
             " L:", s->ave_lum, " C:", colour_temp, " F:", s->frame_rate, " T:", s->pmc);
    return strlen(line);
}

/* Items 1 to 6, 8 and 9: the line without the colour temperature (step 7.3). */
static size_t format_short(char *line, const OverlaySample *s)
{
    memset(line, 0, OVERLAY_BUFFER_BYTES);
    snprintf(line, OVERLAY_BUFFER_BYTES, "%s%d%s%d%s%.1f%s%.1f%s%.1f%s%d%s%.1f%s%.2f", "S:", s->exp_time_ms,
             " L:", s->long_exp_time_ms, " A:", s->again, " D:", s->dgain, " I:", s->ispdgain, " L:",
             s->ave_lum, " F:", s->frame_rate, " T:", s->pmc);
    return strlen(line);
}

int32_t QV_ISP_GetDebugInfo(char *lines, int32_t index)
{
    /* Host input: refused before any platform call, nothing written. */
    if (lines == NULL)
        return isp_attr_null_argument("QV_ISP_GetDebugInfo");
    if (index < 0) {
        printf("QV_ISP_GetDebugInfo: index %d is negative, nothing done\n", (int)index);
        return -1;
    }

    ISP_PUB_ATTR_S pub; /* step 1 */
    HI_S32 ret = HI_MPI_ISP_GetPubAttr(0, &pub);
    if (ret != HI_SUCCESS) {
        QV_SYSERROR(ISP_MODULE_CODE, "HI_MPI_ISP_GetPubAttr failue!!!\n");
        return ret;
    }
    ISP_EXP_INFO_S exp; /* step 2 */
    ret = HI_MPI_ISP_QueryExposureInfo(0, &exp);
    if (ret != HI_SUCCESS) {
        printf("HI_MPI_ISP_QueryExposureInfo failed with %#x\n", (unsigned)ret);
        return -1;
    }
    ISP_WB_INFO_S wb; /* step 3 */
    memset(&wb, 0, sizeof wb);
    ret = HI_MPI_ISP_QueryWBInfo(0, &wb);
    if (ret != HI_SUCCESS) {
        puts("HI_MPI_ISP_QueryWBInfo failed");
        return -1;
    }

    const double pmc = Pmc_Read(0); /* step 4: the one reading, for every pass */
    const OverlaySample sample = {
        .exp_time_ms = (int)(exp.u32ExpTime / 1000), /* unsigned division, at most 4294967 */
        .long_exp_time_ms = (int)(exp.u32LongExpTime / 1000),
        .again = exp.u32AGain * OVERLAY_GAIN_UNIT,
        .dgain = exp.u32DGain * OVERLAY_GAIN_UNIT,
        .ispdgain = exp.u32ISPDGain * OVERLAY_GAIN_UNIT,
        .ave_lum = exp.u8AveLum,
        .colour_temp = wb.u16ColorTemp,
        .frame_rate = pub.f32FrameRate,
        .pmc = pmc,
    };

    char line[OVERLAY_BUFFER_BYTES]; /* step 5 */
    size_t length = format_full(line, &sample, sample.colour_temp);
    printf("strlen(aStr) = %d\n", (int)length);
    if (length > OVERLAY_MAX_CHARS) { /* step 7 */
        puts("nStrNum > 53 byte, OSD is not OK");
        length = format_full(line, &sample, OVERLAY_COLOUR_STANDIN); /* measured and reported only */
        printf("[Change One]strlen(aStr) = %d\n", (int)length);
        length = format_short(line, &sample); /* the result, whatever its length */
        printf("[Change Two]strlen(aStr) = %d\n", (int)length);
    }
    printf("stWbInfo.u16ColorTemp = %d\n", sample.colour_temp); /* step 8 */

    /* Step 9: at most 256 bytes, terminator included, into a 1024-byte line. */
    memcpy(lines + (size_t)index * OVERLAY_LINE_BYTES, line, length + 1);
    return 0;
}
