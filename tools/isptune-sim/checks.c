/* isptune-sim checks over a whole run: flapping, library failures, table ranges, refresh values. */
#include <stdarg.h>
#include <string.h>

#include "isptune_sim.h"

static void violation(run_stats *st, const char *fmt, ...)
{
    if (st->nviolations < sizeof st->violations / sizeof st->violations[0]) {
        va_list ap;
        va_start(ap, fmt);
        vsnprintf(st->violations[st->nviolations], sizeof st->violations[0], fmt, ap);
        va_end(ap);
    }
    st->nviolations++;
}

static void table_range(const uint8_t t[LEVELS], int *lo, int *hi)
{
    *lo = *hi = t[0];
    for (int i = 1; i < LEVELS; i++) {
        if (t[i] < *lo) *lo = t[i];
        if (t[i] > *hi) *hi = t[i];
    }
}

/* One interpolated value: inside its table's range, and equal to the rule of Part 3.1 at (G, L). */
static void check_value(run_stats *st, const trace_row *row, const char *field, const char *table,
                        const uint8_t t[LEVELS], int actual)
{
    char clock[32];
    int lo, hi;
    table_range(t, &lo, &hi);
    format_clock(row->clock, clock, sizeof clock);
    if (actual < lo || actual > hi) {
        st->range_violations++;
        violation(st, "%s %s refresh at G=%d: %s is %d, outside %s's range %d .. %d", clock,
                  row->profile ? "night" : "day", row->G, field, actual, table, lo, hi);
    }
    int expected = interp_expected(t, row->G, row->L);
    if (actual != expected) {
        st->value_violations++;
        violation(st, "%s %s refresh at G=%d (L=%d): %s is %d, %s gives %d", clock, row->profile ? "night" : "day",
                  row->G, row->L, field, actual, table, expected);
    }
}

void check_refresh_row(const probe_tables *pt, const trace_row *row, run_stats *st)
{
    const int p = row->profile ? 1 : 0;
    const sched_values *v = &row->v;
    char clock[32], name[64];
    format_clock(row->clock, clock, sizeof clock);
    if (row->L < 0 || row->L > 10 || row->G < 1) {
        st->value_violations++;
        violation(st, "%s refresh at G=%d, L=%d: outside the tables' levels", clock, row->G, row->L);
        return;
    }
    /* Part 3.1: SBS3/SDS3 only in noise-reduction modes 0 and 2, MATH1/MATH2 only in 0 and 1. */
    for (int f = 0; f < NR_FIELDS; f++) {
        if ((f == 3 || f == 7) && !(row->dnr_mode == 0 || row->dnr_mode == 2)) continue;
        if ((f == 14 || f == 15) && !(row->dnr_mode == 0 || row->dnr_mode == 1)) continue;
        table_name(p, f, name, sizeof name);
        int actual = f == 14 ? v->math[0] : f == 15 ? v->math[1] : v->nr[f];
        check_value(st, row, k_nr_field_names[f], name, pt->nr[p][f], actual);
    }
    /* DRC: only while WDR is off and strong-light inhibition is off (Parts 3.2, 3.3 step 4). */
    if (row->wdr_level == 0 && row->sl_enable == 0) {
        check_value(st, row, "DRC strength", p ? "gNightDRCStrength" : "gColorDRCStrength", pt->drc[p],
                    v->drc_strength);
        if (!v->drc_enable || !v->drc_manual) {
            st->value_violations++;
            violation(st, "%s refresh at G=%d: DRC is not enabled and manual", clock, row->G);
        }
    }
    if (row->defog_mode != 1) {
        check_value(st, row, "defog strength", p ? "gNightDefog" : "gColorDefog", pt->defog[p], v->defog_strength);
        if (!v->defog_enable || !v->defog_manual) {
            st->value_violations++;
            violation(st, "%s refresh at G=%d: defog is not enabled and manual", clock, row->G);
        }
    }
    /* Black level: the low table up to 54, the high one above 60; 55..60 keeps what was written last. */
    const uint16_t *want = row->G <= 54 ? pt->black_low[p] : row->G > 60 ? pt->black_60 : NULL;
    if (want != NULL && memcmp(want, v->black, sizeof v->black) != 0) {
        st->value_violations++;
        violation(st, "%s %s refresh at G=%d: black level %u %u %u %u, the tables give %u %u %u %u", clock,
                  p ? "night" : "day", row->G, v->black[0], v->black[1], v->black[2], v->black[3], want[0], want[1],
                  want[2], want[3]);
    }
    /* Gamma: one of the profile's two curves. Which one follows the refresh's own mark, which a profile
     * switch does not reset (Parts 3.2, 3.3 edge cases), so the band alone does not decide it. */
    int low = p ? CURVE_NIGHT : CURVE_DAY, high = p ? CURVE_NIGHT_HIGHGAIN : CURVE_DAY_HIGHGAIN;
    if (v->curve != low && v->curve != high) {
        st->value_violations++;
        violation(st, "%s %s refresh at G=%d: the gamma curve is not %s or %s", clock, p ? "night" : "day", row->G,
                  k_curve_names[low], k_curve_names[high]);
    }
}

void compute_toggles(run_stats *st)
{
    size_t n = st->nswitch < sizeof st->switch_clock / sizeof st->switch_clock[0]
                   ? st->nswitch
                   : sizeof st->switch_clock / sizeof st->switch_clock[0];
    size_t best = 0;
    for (size_t i = 0, j = 0; i < n; i++) { /* the most switches in a window [t_i, t_i + 1 h) */
        if (j < i) j = i;
        while (j < n && st->switch_clock[j] < st->switch_clock[i] + 3600.0) j++;
        if (j - i > best) best = j - i;
    }
    st->max_toggles_hour = (double)best;
}

int report_checks(FILE *f, const scenario *sc, const run_stats *st)
{
    int failed = 0;
    int flap = st->max_toggles_hour > sc->max_toggles_per_hour;
    failed += flap;
    fprintf(f, "checks\n");
    fprintf(f, "  flapping          %s  %.0f day/night switches in the busiest hour (limit %.0f)\n",
            flap ? "FAIL" : "pass", st->max_toggles_hour, sc->max_toggles_per_hour);
    failed += st->nfailures > 0;
    fprintf(f, "  library failures  %s  %zu refresh, profile or service failures logged\n",
            st->nfailures ? "FAIL" : "pass", st->nfailures);
    failed += st->range_violations > 0;
    fprintf(f, "  table ranges      %s  %zu scheduled values outside their table's range\n",
            st->range_violations ? "FAIL" : "pass", st->range_violations);
    failed += st->value_violations > 0;
    fprintf(f, "  refresh values    %s  %zu values differ from what the tables give at the refresh's gain "
            "(%d refreshes checked)\n", st->value_violations ? "FAIL" : "pass", st->value_violations,
            st->refreshes[0] + st->refreshes[1]);
    if (flap) {
        fprintf(f, "\nflapping: %d switches to night and %d to day; the host's %s rule (night %s %g, day %s %g, dwell "
                "%gs)\n  does not hold against the IR lamp: widen the hysteresis or lengthen the dwell\n",
                st->switches_to_night, st->switches_to_day, sc->rule == DN_SENSOR ? "light-sensor" : "gain",
                sc->rule == DN_SENSOR ? "below" : "above", sc->night_threshold,
                sc->rule == DN_SENSOR ? "above" : "below", sc->day_threshold, sc->dwell);
    }
    if (st->nfailures) {
        fprintf(f, "\nfailures logged by the library (first %zu):\n",
                st->nfailures < 64 ? st->nfailures : (size_t)64);
        for (size_t i = 0; i < st->nfailures && i < 64; i++) {
            char clock[32];
            format_clock(st->failures[i].clock, clock, sizeof clock);
            fprintf(f, "  %s  %s\n", clock, st->failures[i].text);
        }
    }
    if (st->nviolations) {
        fprintf(f, "\nvalues (first %zu of %zu):\n", st->nviolations < 32 ? st->nviolations : (size_t)32,
                st->nviolations);
        for (size_t i = 0; i < st->nviolations && i < 32; i++) fprintf(f, "  %s\n", st->violations[i]);
    }
    return failed;
}
