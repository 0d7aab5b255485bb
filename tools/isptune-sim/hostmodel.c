/* isptune-sim host model: the camera application's day/night decision (light sensor or gain rule). */
#include "isptune_sim.h"

void host_model_init(host_model *h, int night)
{
    h->night = night;
    h->force = FORCE_AUTO;
    h->since = -1.0;
}

/* Is the condition for leaving the current mode met? Night is entered below the night threshold of the
 * sensor (above it for the gain) and left above the day threshold (below it for the gain): the gap between
 * the two is the hysteresis. */
static int leaving(const host_model *h, const scenario *sc, double sensor, double gain)
{
    if (!h->night) return sc->rule == DN_SENSOR ? sensor < sc->night_threshold : gain > sc->night_threshold;
    return sc->rule == DN_SENSOR ? sensor > sc->day_threshold : gain < sc->day_threshold;
}

int host_model_step(host_model *h, const scenario *sc, double clock, double sensor, double gain)
{
    if (h->force == FORCE_DAY || h->force == FORCE_NIGHT) {
        h->since = -1.0;
        return h->night != (h->force == FORCE_NIGHT);
    }
    if (!leaving(h, sc, sensor, gain)) {
        h->since = -1.0;
        return 0;
    }
    if (h->since < 0.0) h->since = clock;
    if (clock - h->since >= sc->dwell) { /* held for the whole dwell time: switch */
        h->since = -1.0;
        return 1;
    }
    return 0;
}

int host_model_boot(const scenario *sc, double sensor, double gain)
{
    return sc->rule == DN_SENSOR ? sensor < sc->night_threshold : gain > sc->night_threshold;
}
