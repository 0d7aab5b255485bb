/* Simulated MPP auto-exposure: scene brightness -> exposure time and the three gains (design: "Exposure"). */
#ifndef ISPTUNE_SIM_AE_H
#define ISPTUNE_SIM_AE_H

#include <stdint.h>

#include "platform/mpp.h"

#ifdef __cplusplus
extern "C" {
#endif

/*
 * A small model of the vendor's AE, run once per frame by isptune-sim. It reads the exposure attribute
 * and the public attribute of ISP device 0 from the simulated MPP (sim_mpp_read), so whatever the library
 * programmed there takes effect: automatic or manual operation (per stage), the exposure-time range, the
 * analogue / sensor digital / ISP digital gain ceilings and the system gain ceiling, the compensation
 * (target luminance), the tolerance and speed, anti-flicker (normal mode: exposure times are whole flicker
 * periods, never shorter than one, so a scene too bright for one period is overexposed; auto mode: shorter
 * times are allowed below one period) and the frame rate (with AE_MODE_FIX_FRAME_RATE no exposure is
 * longer than one frame). The result goes back into the exposure information (sim_mpp_read / sim_mpp_write
 * of the whole record): exposure time (and the long exposure, equal in linear mode), the three gains, the
 * exposure amount, the maximum flag, the histogram error, the average luminance and the frame rate.
 *
 * Brightness is a scene illuminance in lux; `unity_lux` calibrates the sensor: the illuminance at which a
 * 40 ms exposure at gain 1 reaches the target luminance (so the exposure needed is 40000 us x gain x
 * unity_lux / lux, scaled by the compensation). Nothing here is random: the same scene gives the same
 * exposure, frame after frame, run after run.
 */

typedef struct sim_ae_config {
    double unity_lux; /* lux at which 40 ms at gain 1 gives the target luminance; 20 when 0 */
} sim_ae_config;

typedef struct sim_ae_state {
    sim_ae_config config;
    /* 0 (the default): every frame reads the exposure and public attributes afresh. 1: the frame reuses
     * the attributes it read last until sim_ae_attributes_changed() is called, for a caller that sees
     * every write to them (isptune-sim); a steady scene then costs no platform access at all. */
    int follow_writes;
    int attributes_stale;
    ISP_EXPOSURE_ATTR_S attr;
    ISP_PUB_ATTR_S pub;
    double last_lux;
    int steady;         /* the last frame neither moved nor wrote */
    double exposure;    /* the AE's current exposure, microseconds x gain (gain 1.0 = 1) */
    uint32_t exp_time;  /* last values written to the exposure information */
    uint32_t again, dgain, ispdgain;
    uint8_t ave_lum;
    int started;        /* 0 until the first frame */
} sim_ae_state;

/* Start state: the exposure of the power-on exposure information (10 ms at gain 1). */
void sim_ae_init(sim_ae_state *ae, const sim_ae_config *config);

/*
 * One frame at scene illuminance `lux` (>= 0). Reads the attributes, moves the exposure towards the target
 * (a step of u8Speed / 256 of the way per frame, nothing while the luminance is within u8Tolerance of the
 * target), splits it into time and gains within the ranges, and writes the exposure information when it
 * changed. Returns 1 when it wrote, 0 when the exposure stayed as it was.
 */
int sim_ae_frame(sim_ae_state *ae, double lux);

/* With follow_writes: the attributes may have changed; the next frame reads them again. */
void sim_ae_attributes_changed(sim_ae_state *ae);

/* The split alone, for tests: the exposure `exposure` (us x gain) under the given attributes and frame
 * rate, as time and gains (1024 = 1.0). */
void sim_ae_split(const ISP_EXPOSURE_ATTR_S *attr, float frame_rate, double exposure,
                  uint32_t *exp_time, uint32_t *again, uint32_t *dgain, uint32_t *ispdgain);

#ifdef __cplusplus
}
#endif

#endif /* ISPTUNE_SIM_AE_H */
