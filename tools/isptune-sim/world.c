/* isptune-sim world model: the light at the camera over time, the IR lamp, the light sensor. */
#include <math.h>

#include "isptune_sim.h"

enum { DAY_SECONDS = 86400 };

/* The ambient light of the scene's points at time of day `tod`, log-linear between points; the points
 * repeat every day, so the last one leads into the first one of the next day. */
static double ambient_of_day(const scenario *sc, double tod)
{
    const scene_key *k = sc->keys;
    int n = sc->nkeys;
    if (n == 1) return k[0].lux;
    const scene_key *a = &k[n - 1], *b = &k[0];
    double a_at = k[n - 1].at - DAY_SECONDS, b_at = k[0].at;
    if (tod >= k[n - 1].at) {
        a_at = k[n - 1].at;
        b_at = k[0].at + DAY_SECONDS;
    } else {
        for (int i = 0; i < n; i++) {
            if (k[i].at > tod) {
                b = &k[i];
                b_at = k[i].at;
                if (i > 0) {
                    a = &k[i - 1];
                    a_at = k[i - 1].at;
                }
                break;
            }
        }
    }
    double f = b_at > a_at ? (tod - a_at) / (b_at - a_at) : 0.0;
    /* Light spans eight decades from night to noon: interpolate its logarithm (0 lux counts as 1e-4). */
    double la = log(fmax(a->lux, 1e-4)), lb = log(fmax(b->lux, 1e-4));
    return exp(la + f * (lb - la));
}

/* The clouds' combined dimming at `clock`, each faded in and out over its ramp. */
static double cloud_factor(const scenario *sc, double clock)
{
    double sum = 0.0;
    for (int i = 0; i < sc->nclouds; i++) {
        const cloud *c = &sc->clouds[i];
        if (clock <= c->from || clock >= c->to) continue;
        double w = 1.0;
        if (c->ramp > 0.0) w = fmin(1.0, fmin(clock - c->from, c->to - clock) / c->ramp);
        sum += w * log(c->factor);
    }
    return exp(sum);
}

void world_at(const scenario *sc, double clock, int lamp_on, int filter_out, world_sample *w)
{
    double tod = fmod(clock, DAY_SECONDS);
    w->ambient = ambient_of_day(sc, tod) * (sc->nclouds ? cloud_factor(sc, clock) : 1.0);
    double lamp = lamp_on ? sc->lamp_lux : 0.0;
    w->scene = w->ambient * (filter_out ? sc->ir_boost : 1.0) + lamp;
    w->sensor = w->ambient + lamp * sc->sensor_leak;
    /* Pmc_Read: a board that warms in the sun and a little with the lamp on. */
    w->temperature = 38.0 + 9.0 * w->ambient / (w->ambient + 3000.0) + (lamp_on ? 1.5 : 0.0);
    /* White balance: daylight at noon, warm street light at night, the lamp's near-infrared in between. */
    double ct;
    if (filter_out) ct = 4300.0;
    else if (w->ambient >= 1000.0) ct = 5600.0;
    else if (w->ambient <= 10.0) ct = 3200.0;
    else ct = 3200.0 + 2400.0 * (log10(w->ambient) - 1.0) / 2.0;
    w->colour_temp = (uint16_t)lround(ct);
}
