/* Simulated MPP auto-exposure (design: "Exposure"): scene lux -> exposure time and three gains. */
#include "ae.h"

#include <math.h>

#include "sim_mpp.h"

enum { REFERENCE_TIME_US = 40000, REFERENCE_LUM = 50, GAIN_ONE = 1024 };

static double clampd(double v, double lo, double hi)
{
    return v < lo ? lo : v > hi ? hi : v;
}

/* A gain range in platform units (1024 = 1.0) as factors; a maximum below the minimum counts as the
 * minimum, as the vendor's AE would refuse the range. */
static void range_factors(const ISP_AE_RANGE_S *r, double *lo, double *hi)
{
    *lo = r->u32Min > 0 ? r->u32Min / (double)GAIN_ONE : 1.0;
    *hi = r->u32Max / (double)GAIN_ONE;
    if (*hi < *lo) *hi = *lo;
}

static uint32_t to_units(double factor)
{
    return (uint32_t)lround(factor * GAIN_ONE);
}

/* The longest exposure time the attributes allow at this frame rate (fixed frame rate: one frame). */
static double longest_time(const ISP_EXPOSURE_ATTR_S *attr, float frame_rate)
{
    double t_max = attr->stAuto.stExpTimeRange.u32Max;
    if (frame_rate > 0.0f) {
        double frame_us = 1e6 / frame_rate;
        if (frame_us < t_max) t_max = frame_us;
    }
    return t_max < 1.0 ? 1.0 : t_max;
}

/* Auto exposure time for `exposure`: whole flicker periods when anti-flicker is on (Part 1.4 programs
 * it), otherwise as long as needed within the range. */
static double auto_time(const ISP_EXPOSURE_ATTR_S *attr, double t_min, double t_max, double exposure)
{
    const ISP_ANTIFLICKER_S *af = &attr->stAuto.stAntiflicker;
    if (af->bEnable && af->u8Frequency > 0) {
        double period = 1e6 / (2.0 * af->u8Frequency);
        if (period <= t_max) {
            if (exposure >= period) return floor(fmin(exposure, t_max) / period) * period;
            /* Brighter than one period: normal mode holds one period (overexposed), auto mode lets go. */
            return af->enMode == ISP_ANTIFLICKER_NORMAL_MODE ? period : fmax(exposure, t_min);
        }
    }
    return clampd(exposure, t_min, t_max);
}

void sim_ae_split(const ISP_EXPOSURE_ATTR_S *attr, float frame_rate, double exposure, uint32_t *exp_time,
                  uint32_t *again, uint32_t *dgain, uint32_t *ispdgain)
{
    const ISP_ME_ATTR_S *man = &attr->stManual;
    const int manual = attr->enOpType == OP_TYPE_MANUAL;
    double t_min = attr->stAuto.stExpTimeRange.u32Min > 0 ? attr->stAuto.stExpTimeRange.u32Min : 1.0;
    double t_max = longest_time(attr, frame_rate);
    if (t_min > t_max) t_min = t_max;

    double t = manual && man->enExpTimeOpType == OP_TYPE_MANUAL ? (double)man->u32ExpTime
                                                                 : auto_time(attr, t_min, t_max, exposure);
    if (t < 1.0) t = 1.0;

    /* Gains in order: analogue first, then sensor digital, then ISP digital, each within its range. */
    double a_lo, a_hi, d_lo, d_hi, i_lo, i_hi, s_lo, s_hi;
    range_factors(&attr->stAuto.stAGainRange, &a_lo, &a_hi);
    range_factors(&attr->stAuto.stDGainRange, &d_lo, &d_hi);
    range_factors(&attr->stAuto.stISPDGainRange, &i_lo, &i_hi);
    range_factors(&attr->stAuto.stSysGainRange, &s_lo, &s_hi);
    double want = clampd(exposure / t, s_lo, s_hi);

    double a = manual && man->enAGainOpType == OP_TYPE_MANUAL ? man->u32AGain / (double)GAIN_ONE
                                                               : clampd(want, a_lo, a_hi);
    double d = manual && man->enDGainOpType == OP_TYPE_MANUAL ? man->u32DGain / (double)GAIN_ONE
                                                               : clampd(want / a, d_lo, d_hi);
    double i = manual && man->enISPDGainOpType == OP_TYPE_MANUAL ? man->u32ISPDGain / (double)GAIN_ONE
                                                                  : clampd(want / (a * d), i_lo, i_hi);
    *exp_time = (uint32_t)lround(t);
    *again = to_units(a);
    *dgain = to_units(d);
    *ispdgain = to_units(i);
}

void sim_ae_init(sim_ae_state *ae, const sim_ae_config *config)
{
    ae->config.unity_lux = config != NULL && config->unity_lux > 0.0 ? config->unity_lux : 20.0;
    ae->exposure = 10000.0;
    ae->exp_time = 0;
    ae->again = ae->dgain = ae->ispdgain = 0;
    ae->ave_lum = 0;
    ae->started = 0;
    ae->follow_writes = 0;
    ae->attributes_stale = 1;
    ae->last_lux = -1.0;
    ae->steady = 0;
}

void sim_ae_attributes_changed(sim_ae_state *ae)
{
    ae->attributes_stale = 1;
}

/* Luminance of `exposure` (us x gain) at `lux`, for target `target`, clipped to 0..255. */
static double luminance(const sim_ae_state *ae, double exposure, double lux)
{
    return clampd(REFERENCE_LUM * exposure * lux / (REFERENCE_TIME_US * ae->config.unity_lux), 0.0, 255.0);
}

int sim_ae_frame(sim_ae_state *ae, double lux)
{
    if (!(lux >= 0.0)) lux = 0.0;
    if (!ae->follow_writes || ae->attributes_stale) {
        sim_mpp_read(SIM_REC_EXPOSURE_ATTR, &ae->attr);
        sim_mpp_read(SIM_REC_PUB_ATTR, &ae->pub);
        ae->attributes_stale = 0;
        ae->steady = 0;
    }
    /* Same light, same attributes, nothing moved last time: nothing can move now. */
    if (ae->steady && lux == ae->last_lux) return 0;
    ae->last_lux = lux;
    const ISP_EXPOSURE_ATTR_S attr = ae->attr;
    const ISP_PUB_ATTR_S pub = ae->pub;

    const double target = attr.stAuto.u8Compensation > 0 ? attr.stAuto.u8Compensation : 1;
    /* The exposure that gives the target luminance; darkness asks for the longest and highest there is. */
    const double needed = lux > 0.0 ? target * REFERENCE_TIME_US * ae->config.unity_lux / (REFERENCE_LUM * lux)
                                    : HUGE_VAL;
    double s_lo, s_hi;
    range_factors(&attr.stAuto.stSysGainRange, &s_lo, &s_hi);
    const double top = longest_time(&attr, pub.f32FrameRate) * s_hi;
    const double bottom = attr.stAuto.stExpTimeRange.u32Min > 0 ? attr.stAuto.stExpTimeRange.u32Min : 1.0;

    int moved = 0;
    const double entry = ae->exposure;
    if (!ae->started) {
        ae->started = 1;
        moved = 1;
    } else {
        /* Move only when the luminance of what is applied is out of tolerance; then a fraction of the
         * way (in the log domain, like a real AE's exponential approach). */
        double applied = ae->exp_time * (ae->again / (double)GAIN_ONE) * (ae->dgain / (double)GAIN_ONE) *
                         (ae->ispdgain / (double)GAIN_ONE);
        double lum = luminance(ae, applied, lux);
        if (fabs(lum - target) > attr.stAuto.u8Tolerance) {
            double speed = attr.stAuto.u8Speed > 0 ? attr.stAuto.u8Speed / 256.0 : 1.0 / 256.0;
            double goal = clampd(needed, bottom, top);
            if (fabs(goal - ae->exposure) <= 1e-9 * goal) ae->exposure = goal; /* arrived: no rounding drift */
            else ae->exposure = exp(log(ae->exposure) + speed * (log(goal) - log(ae->exposure)));
        }
    }
    double before = ae->exposure;
    ae->exposure = clampd(ae->exposure, bottom, top);
    moved |= ae->exposure != before || ae->exposure != entry;

    uint32_t t, a, d, i;
    sim_ae_split(&attr, pub.f32FrameRate, ae->exposure, &t, &a, &d, &i);
    double applied = t * (a / (double)GAIN_ONE) * (d / (double)GAIN_ONE) * (i / (double)GAIN_ONE);
    uint8_t lum = (uint8_t)lround(luminance(ae, applied, lux));

    if (t == ae->exp_time && a == ae->again && d == ae->dgain && i == ae->ispdgain && lum == ae->ave_lum) {
        ae->steady = !moved;
        return 0;
    }
    ae->steady = 0;
    ae->exp_time = t;
    ae->again = a;
    ae->dgain = d;
    ae->ispdgain = i;
    ae->ave_lum = lum;
    /* The whole report, as the vendor's AE keeps it: in linear mode the long exposure equals the exposure,
     * the exposure amount is time x gain, and the maximum flag is up at the longest and highest setting.
     * Written only when something changed, so a steady scene costs no copy of the 4.8 KB record. */
    ISP_EXP_INFO_S info;
    sim_mpp_read(SIM_REC_EXP_INFO, &info);
    info.u32ExpTime = t;
    info.u32LongExpTime = t;
    info.u32AGain = a;
    info.u32DGain = d;
    info.u32ISPDGain = i;
    info.u32Exposure = (uint32_t)fmin(applied, 4294967295.0);
    info.bExposureIsMAX = ae->exposure >= top ? HI_TRUE : HI_FALSE;
    info.s16HistError = (int16_t)((int)lum - (int)target);
    info.u8AveLum = lum;
    info.u32Fps = (uint32_t)lround(pub.f32FrameRate);
    sim_mpp_write(SIM_REC_EXP_INFO, &info);
    return 1;
}
