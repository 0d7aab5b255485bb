/* isptune-sim trace: one row per change (refresh, profile switch, frame rate, host action), as CSV. */
#include <stdlib.h>
#include <string.h>

#include "isptune_sim.h"

int trace_add(trace *tr, const trace_row *row)
{
    if (tr->count == tr->capacity) {
        size_t cap = tr->capacity ? 2 * tr->capacity : 1024;
        trace_row *grown = realloc(tr->rows, cap * sizeof *grown);
        if (grown == NULL) return -1;
        tr->rows = grown;
        tr->capacity = cap;
    }
    tr->rows[tr->count++] = *row;
    return 0;
}

void trace_free(trace *tr)
{
    free(tr->rows);
    memset(tr, 0, sizeof *tr);
}

static const char *curve_label(int c)
{
    return c >= 0 && c < CURVE_COUNT ? k_curve_names[c] : "other";
}

int trace_write_csv(const trace *tr, const char *path)
{
    FILE *f = fopen(path, "w");
    if (f == NULL) return -1;
    fputs("t_s,clock,clock_h,event,ambient_lux,scene_lux,sensor_lux,exp_us,again,dgain,ispdgain,gain,G,L,ave_lum,"
          "profile,ircut,lamp,fps,dnr_mode,wdr_level,sl_enable,defog_mode", f);
    for (int i = 0; i < NR_FIELDS; i++) fprintf(f, ",%s", k_nr_field_names[i]);
    fputs(",drc_enable,drc_manual,drc_strength,defog_enable,defog_manual,defog_strength,black0,black1,black2,"
          "black3,gamma,wb_rg,wb_bg,ae_strategy,hist_slope,hist_offset\n", f);
    for (size_t r = 0; r < tr->count; r++) {
        const trace_row *w = &tr->rows[r];
        const sched_values *v = &w->v;
        char clock[32];
        format_clock(w->clock, clock, sizeof clock);
        fprintf(f, "%.3f,%s,%.5f,%s,%.6g,%.6g,%.6g,%u,%u,%u,%u,%.4f,%d,%d,%d,%s,%d,%d,%.1f,%d,%d,%d,%d", w->t, clock, w->clock / 3600.0,
                w->event, w->ambient, w->scene, w->sensor, w->exp_time, w->again, w->dgain, w->ispdgain, w->gain,
                w->G, w->L, w->ave_lum, w->profile ? "night" : "day", w->ircut, w->lamp, w->fps, w->dnr_mode,
                w->wdr_level, w->sl_enable, w->defog_mode);
        for (int i = 0; i < NR_FIELDS; i++)
            fprintf(f, ",%u", i == 14 ? v->math[0] : i == 15 ? v->math[1] : v->nr[i]);
        fprintf(f, ",%u,%u,%u,%u,%u,%u,%u,%u,%u,%u,%s,%u,%u,%u,%u,%u\n", v->drc_enable, v->drc_manual,
                v->drc_strength, v->defog_enable, v->defog_manual, v->defog_strength, v->black[0], v->black[1],
                v->black[2], v->black[3], curve_label(v->curve), v->wb_rg, v->wb_bg, v->ae_strategy, v->hist_slope,
                v->hist_offset);
    }
    return fclose(f) == 0 ? 0 : -1;
}

static void hms(double seconds, char *buf, size_t len)
{
    format_clock(seconds, buf, len);
}

int write_summary(const char *path, const scenario *sc, const isplib *lib, const run_stats *st, const trace *tr)
{
    FILE *f = fopen(path, "w");
    if (f == NULL) return -1;
    char a[32], b[32];
    (void)lib; /* the library's path is machine-specific: kept out of the summary, which is compared */
    fprintf(f, "isptune-sim summary\n");
    fprintf(f, "scenario            %s%s%s\n", sc->name, sc->description[0] ? ": " : "", sc->description);
    hms(st->simulated, a, sizeof a);
    hms(sc->start, b, sizeof b);
    fprintf(f, "simulated           %s from %s, %lu supervision passes\n", a, b, st->passes);
    fprintf(f, "day/night switches  %d (to night %d, to day %d); most in any hour %.0f\n",
            st->switches_to_night + st->switches_to_day, st->switches_to_night, st->switches_to_day,
            st->max_toggles_hour);
    hms(st->night_time, a, sizeof a);
    fprintf(f, "time in night       %s (%.1f %%)\n", a, 100.0 * st->night_time / (st->simulated > 0 ? st->simulated : 1));
    fprintf(f, "refreshes           %d (day %d, night %d)\n", st->refreshes[0] + st->refreshes[1], st->refreshes[0],
            st->refreshes[1]);
    hms(st->fps15_time, a, sizeof a);
    fprintf(f, "frame-rate changes  %d; time at 15 fps %s (%.1f %%)\n", st->fps_changes, a,
            100.0 * st->fps15_time / (st->simulated > 0 ? st->simulated : 1));
    fprintf(f, "system gain         %d .. %d; time per level:", st->g_min, st->g_max);
    for (int l = 0; l < 6; l++) {
        hms(st->level_time[l], a, sizeof a);
        fprintf(f, " L%d %s", l, a);
    }
    fputc('\n', f);
    hms(st->ceiling_time, a, sizeof a);
    hms(st->overexposed_time, b, sizeof b);
    fprintf(f, "exposure            at its ceiling (too dark) %s; overexposed (luminance >= 100) %s\n", a, b);
    fprintf(f, "failures logged     %zu\n", st->nfailures);
    fprintf(f, "trace rows          %zu\n\n", tr->count);
    int failed = report_checks(f, sc, st);
    fprintf(f, "\nresult              %s\n", failed ? "FAIL" : "pass");
    return fclose(f) == 0 ? 0 : -1;
}
