/* isptune-sim: what its units share (scenario, world, host model, library, trace, checks, plots, tables). */
#ifndef ISPTUNE_SIM_TOOL_H
#define ISPTUNE_SIM_TOOL_H

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#include "isptune.h"

/* Exit codes of the command. */
enum { EXIT_OK = 0, EXIT_CHECKS = 1, EXIT_USAGE = 2, EXIT_RUNTIME = 3 };

/* The tool's own output stream: the terminal or file the user sees. The library's standard output is
 * redirected away from it (to library.log), so the two never mix. */
extern FILE *g_out;

/* ---- scenario.c: the scenario file ---------------------------------------------------------------- */

enum { SC_NAME = 64, SC_TEXT = 256, SC_MAX_KEYS = 256, SC_MAX_CLOUDS = 256, SC_MAX_ACTIONS = 256,
       SC_MAX_SET = 32, SC_MAX_APPLY = 16 };

enum daynight_rule { DN_SENSOR, DN_GAIN };
enum daynight_force { FORCE_NONE = -1, FORCE_AUTO = 0, FORCE_DAY = 1, FORCE_NIGHT = 2 };

typedef struct {
    double at;  /* seconds since midnight (time of day; the scene repeats every 24 hours) */
    double lux; /* ambient illuminance at the camera */
} scene_key;

typedef struct {
    double from, to; /* seconds since midnight of the first day */
    double factor;   /* the ambient light is multiplied by this while the cloud passes */
    double ramp;     /* seconds to fade in and out */
} cloud;

typedef struct {
    int pos;       /* SysInfo byte position (Part 1.6) */
    uint8_t value;
} sysinfo_set_item;

typedef struct {
    double at; /* seconds since midnight of the first day (may exceed 24 h) */
    int line;  /* line in the scenario file, for reports */
    int nset;
    sysinfo_set_item set[SC_MAX_SET];
    int napply;
    int apply[SC_MAX_APPLY]; /* operation-table slots (Part 1.1), in order */
    int profile;             /* -1, or 0 / 1: call ISP_SetParamDay / ISP_SetParamNight once */
    int daynight;            /* enum daynight_force: hold day, hold night, back to automatic */
    int overlay;             /* read the overlay line now */
    int fail;                /* arm a platform fault (sim_mpp_fail) */
    char fail_call[SC_NAME];
    int fail_times;
    uint32_t fail_code;
    char note[SC_TEXT];
} action;

typedef struct scenario {
    char path[1024];
    char name[SC_NAME];
    char description[SC_TEXT];
    double start;    /* time of day at simulated time 0, seconds since midnight */
    double duration; /* seconds */
    int nkeys;
    scene_key keys[SC_MAX_KEYS];
    int nclouds;
    cloud clouds[SC_MAX_CLOUDS];
    /* camera */
    double unity_lux;   /* AE calibration (sim/ae.h) */
    double lamp_lux;    /* what the IR lamp adds to the scene */
    double ir_boost;    /* scene light factor with the IR-cut filter out (the sensor sees infrared) */
    double sensor_leak; /* fraction of the lamp's light that reaches the light sensor */
    /* host: day/night decision */
    enum daynight_rule rule;
    double night_threshold; /* sensor: lux below which; gain: gain above which the host goes to night */
    double day_threshold;   /* sensor: lux above which; gain: gain below which it goes back to day */
    double dwell;           /* seconds the condition must hold */
    /* checks */
    double max_toggles_per_hour;
    /* SysInfo at power-on, over the simulated host's defaults */
    int nsys;
    sysinfo_set_item sys[SC_MAX_SET];
    int nactions;
    action actions[SC_MAX_ACTIONS];
} scenario;

/* Read and check a scenario file. 0, or -1 with "FILE:LINE: reason" in err. */
int scenario_load(const char *path, scenario *sc, char *err, size_t errlen);
/* A SysInfo field's position by its Part 1.6 name ("u8WdrLevel"), or -1. */
int sysinfo_position(const char *name);
const char *sysinfo_name(int pos);
/* An operation-table slot by its name ("set_wdr"), or -1. */
int operation_slot(const char *name);
extern const char *const k_operation_names[ISP_OPERATION_COUNT];
/* "HH:MM:SS" of seconds (hours may exceed 24). */
void format_clock(double seconds, char *buf, size_t len);

/* ---- world.c: light over time ---------------------------------------------------------------------- */

typedef struct {
    double ambient; /* lux at the camera from the sky (and clouds) */
    double scene;   /* what the sensor's exposure sees: ambient (x IR boost without the filter) + lamp */
    double sensor;  /* what the host's light sensor reads */
    double temperature; /* Pmc_Read: the board temperature, degrees C */
    uint16_t colour_temp; /* kelvin, for the white-balance information */
} world_sample;

/* The world at `clock` (seconds since midnight of the first day) with the host's lamp and filter. */
void world_at(const scenario *sc, double clock, int lamp_on, int filter_out, world_sample *w);

/* ---- hostmodel.c: the host's day/night decision ------------------------------------------------------ */

typedef struct {
    int night;          /* 1 while the host has the night profile, IR-cut filter out and lamp on */
    int force;          /* enum daynight_force: FORCE_AUTO, FORCE_DAY or FORCE_NIGHT */
    double since;       /* clock time the pending condition started holding, or -1 */
} host_model;

void host_model_init(host_model *h, int night);
/* The decision at `clock`: 1 when the host must switch now (to !h->night), 0 otherwise. `sensor` is the
 * light sensor's reading, `gain` the exposure gain as a factor. */
int host_model_step(host_model *h, const scenario *sc, double clock, double sensor, double gain);
/* The decision at boot: night or not, without waiting for the dwell. */
int host_model_boot(const scenario *sc, double sensor, double gain);

/* ---- library.c: the library, loaded as a camera loads it ------------------------------------------- */

typedef struct {
    void *handle;
    char path[1024];
    void (*CreateIspDev)(IspOperation *table);
    int32_t (*QV_ISP_Start)(void);
    int32_t (*QV_ISP_Stop)(void);
    int32_t (*ISP_SetParamDay)(void);
    int32_t (*ISP_SetParamNight)(void);
    int32_t (*ISP_SetParamDayRefresh)(int32_t G, int32_t L);
    int32_t (*ISP_SetParamNightRefresh)(int32_t G, int32_t L);
    int32_t (*QV_ISP_GetDebugInfo)(char *lines, int32_t index);
    int32_t *gISPStatus;
    IspOperation ops[ISP_OPERATION_COUNT];
} isplib;

/* dlopen the library and look up the names the host uses. 0, or -1 with the reason in err. */
int isplib_open(isplib *lib, const char *path, char *err, size_t errlen);
/* Send the process's standard output (the library's printf/puts) to `path` ("/dev/null" to drop it);
 * g_out keeps writing where standard output went before. 0, or -1 with errno set. */
int redirect_library_stdout(const char *path);
/* The default library path (the one built beside this tool). */
const char *default_library_path(void);
const char *default_scenario_dir(void);

/* ---- tables.c: the tables, recovered through the library's own refreshes ------------------------------ */

enum { NR_FIELDS = 24, LEVELS = 12, GAMMA_NODES = 257, MAX_G = 62 };
enum { PROFILE_DAY = 0, PROFILE_NIGHT = 1 };
enum { CURVE_DAY, CURVE_DAY_HIGHGAIN, CURVE_NIGHT, CURVE_NIGHT_HIGHGAIN, CURVE_COUNT, CURVE_OTHER = -1 };

extern const char *const k_nr_field_names[NR_FIELDS];
extern const char *const k_curve_names[CURVE_COUNT];

/* The gain-scheduled values a refresh leaves in the platform, as read back from the simulated MPP. */
typedef struct {
    uint8_t nr[NR_FIELDS]; /* noise-reduction record fields, in record order (MATH1/2 low byte) */
    uint16_t math[2];      /* MATH1, MATH2 in full */
    uint8_t drc_enable, drc_manual, drc_strength;
    uint8_t defog_enable, defog_manual, defog_strength;
    uint16_t black[4];
    int curve; /* CURVE_* or CURVE_OTHER */
    uint8_t wb_rg, wb_bg;
    uint8_t ae_strategy, hist_offset;
    uint16_t hist_slope;
} sched_values;

typedef struct {
    /* per-level tables as the refresh writes them at G = 2^i (each exactly the table's entry i) */
    uint8_t nr[2][NR_FIELDS][LEVELS];
    uint8_t drc[2][LEVELS];
    uint8_t defog[2][LEVELS];
    uint16_t black_low[2][4]; /* G <= 54: day g_black_level_table_day, night g_black_level_table */
    uint16_t black_60[4];     /* G > 60: g_black_level_table_60 */
    uint16_t curves[CURVE_COUNT][GAMMA_NODES];
    /* what each refresh writes at G = 1 .. 62, going up from a fresh library */
    sched_values at[2][MAX_G + 1];
} probe_tables;

/* Run the refreshes on a fresh simulated platform (in a child process, so the caller's library keeps
 * its load-time state) and read back what they wrote. 0, or -1 with err. */
int probe_library(const isplib *lib, probe_tables *pt, char *err, size_t errlen);
/* Read the current gain-scheduled values from the simulated MPP. */
void read_sched_values(const probe_tables *pt, sched_values *v);
/* The spec's interpolation (Part 3.1) of a 12-entry table at (G, L), on the integers. */
int interp_expected(const uint8_t table[LEVELS], int G, int L);
/* Level of system gain G (Part 1.3): trunc(log10(G) / log10(2)). */
int gain_level(int G);
/* The table name feeding a scheduled field of a profile ("g_3dnr_SBS0_day"). */
void table_name(int profile, int field, char *buf, size_t len);
int cmd_tables(const isplib *lib, const char *out_dir, int plots);
int cmd_explain(const isplib *lib, int G, int profile);

/* ---- trace.c: what happened, row by row ------------------------------------------------------------ */

typedef struct {
    double t;      /* simulated seconds since start */
    double clock;  /* seconds since midnight of the first day */
    char event[48];
    double ambient, scene, sensor;
    uint32_t exp_time, again, dgain, ispdgain;
    double gain;   /* the three gains as factors, multiplied */
    int G, L;
    int ave_lum;
    int profile, ircut, lamp;
    double fps;
    int dnr_mode, wdr_level, sl_enable, defog_mode; /* the host settings the refresh depends on */
    sched_values v;
} trace_row;

typedef struct {
    trace_row *rows;
    size_t count, capacity;
} trace;

int trace_add(trace *tr, const trace_row *row);
int trace_write_csv(const trace *tr, const char *path);
void trace_free(trace *tr);

/* ---- checks.c ---------------------------------------------------------------------------------------- */

typedef struct {
    double clock;
    char text[240];
} failure;

typedef struct {
    /* figures */
    double simulated;         /* seconds */
    unsigned long passes;
    int switches_to_night, switches_to_day;
    double max_toggles_hour;  /* most day/night switches in any 60-minute window */
    double night_time, fps15_time, overexposed_time, ceiling_time;
    double level_time[LEVELS];
    int refreshes[2];
    int fps_changes;
    int g_min, g_max;
    size_t nfailures;
    failure failures[64];     /* the first 64 */
    size_t nviolations;
    char violations[32][240]; /* the first 32 */
    size_t range_violations, value_violations;
    double switch_clock[4096]; /* day/night switch times (the first 4096) */
    size_t nswitch;
} run_stats;

/* Check one refresh row against the tables: range and interpolation. Adds violations to st. */
void check_refresh_row(const probe_tables *pt, const trace_row *row, run_stats *st);
/* The flapping figure from the switch times. */
void compute_toggles(run_stats *st);
/* Write the checks report; returns the number of failed checks. */
int report_checks(FILE *f, const scenario *sc, const run_stats *st);
int write_summary(const char *path, const scenario *sc, const isplib *lib, const run_stats *st,
                  const trace *tr);

/* ---- plots.c ----------------------------------------------------------------------------------------- */

/* Write the gnuplot script into dir and run gnuplot; 0, or -1 with a message on g_out (plots are not
 * essential: a missing gnuplot is reported, not fatal). */
int plot_run(const char *dir, const scenario *sc);
int plot_tables(const char *dir);
int run_gnuplot(const char *dir, const char *script);

/* ---- run.c ------------------------------------------------------------------------------------------- */

typedef struct {
    const char *lib_path;
    const char *out_dir;
    int realtime;
    int quiet;        /* no overlay lines */
    int plots;
    double hours;     /* > 0: run this long instead of the scenario's duration */
    int overlay_every; /* minutes between overlay lines */
} run_options;

int cmd_run(const scenario *sc, const run_options *opt);

/* util */
int make_dirs(const char *path);

#endif /* ISPTUNE_SIM_TOOL_H */
