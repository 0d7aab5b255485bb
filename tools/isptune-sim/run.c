/* isptune-sim run: plays the camera's host through a scenario in virtual time, at defined points. */
#include <errno.h>
#include <fcntl.h>
#include <math.h>
#include <pthread.h>
#include <sched.h>
#include <stdarg.h>
#include <stdatomic.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include "ae.h"
#include "isptune_sim.h"
#include "sim_host.h"
#include "sim_mpp.h"
#include "vclock.h"

/*
 * Threads and determinism. The library's supervision thread sleeps 33,333 us after every pass; the
 * virtual clock calls our hook (on_clock) at the end of each of those sleeps. There, on the supervision
 * thread and between two passes, the world advances to the new virtual time, the AE computes the next
 * frame's exposure, and the library's state is observed. Whenever the host has something to do (the
 * day/night switch, a scripted action, the overlay, the end of the run) the hook hands the job to the
 * host's own thread (main) and waits until it is done: the host calls the library from its own thread,
 * as a camera application does, but always at the same point of virtual time, with the supervision
 * thread parked. So the same scenario gives the same trace, byte for byte, on every run.
 */

enum { WATCHDOG_SECONDS = 30, MAX_SWITCH_LINES = 40, OVERLAY_LINE = 1024 };

typedef struct run_state run_state;
typedef void (*host_job)(run_state *rs);

struct run_state {
    const scenario *sc;
    const run_options *opt;
    isplib lib;
    probe_tables *pt;
    trace tr;
    run_stats st;
    char dir[1024];
    FILE *minutes;
    int libout_fd;           /* read side of library.log, for the failure scan */
    char partial[1024];      /* an unfinished line of library.log */
    size_t partial_len;

    /* handing jobs to the host thread */
    pthread_mutex_t lock;
    pthread_cond_t cond;
    host_job job;
    int job_pending;
    int ended;
    atomic_int finished;
    atomic_ulong heartbeat;

    /* world, host and camera state; touched only by whichever thread holds the turn */
    world_sample w;
    host_model host;
    sim_ae_state ae;
    int filter_out, lamp, profile;
    double t, clock, end_t;
    int booted;
    int next_action;
    double next_minute;
    long minute_index;
    unsigned last_queries;
    float fps;
    size_t host_log_seen;
    double gain;
    int G, L;
    int switch_lines;
    int tty;
    double next_progress;
};

/* Set on the host's thread: its own clock calls (the strong-light setter's usleep) are not passes. */
static _Thread_local int t_host_thread;

/* ---- library output: failures in library.log and in the host's log ------------------------------------- */

static void add_failure(run_state *rs, const char *text)
{
    run_stats *st = &rs->st;
    if (st->nfailures < sizeof st->failures / sizeof st->failures[0]) {
        failure *f = &st->failures[st->nfailures];
        f->clock = rs->clock;
        snprintf(f->text, sizeof f->text, "%s", text);
        size_t n = strlen(f->text);
        while (n > 0 && (f->text[n - 1] == '\n' || f->text[n - 1] == '\r')) f->text[--n] = '\0';
    }
    st->nfailures++;
}

/* The library's failure reports on standard output name a failing call (Conventions). */
static int is_failure_line(const char *line)
{
    return strstr(line, "failed") != NULL || strstr(line, "failue") != NULL || strstr(line, " error ") != NULL ||
           strstr(line, "Failure") != NULL;
}

/* Read what the library printed since the last scan; returns the number of failure lines. */
static int scan_library_output(run_state *rs)
{
    fflush(stdout);
    int found = 0;
    char buf[4096];
    ssize_t n;
    while ((n = read(rs->libout_fd, buf, sizeof buf)) > 0) {
        for (ssize_t i = 0; i < n; i++) {
            if (buf[i] != '\n' && rs->partial_len < sizeof rs->partial - 1) {
                rs->partial[rs->partial_len++] = buf[i];
                continue;
            }
            if (buf[i] != '\n') continue; /* an over-long line: the rest is dropped */
            rs->partial[rs->partial_len] = '\0';
            if (is_failure_line(rs->partial)) {
                add_failure(rs, rs->partial);
                found++;
            }
            rs->partial_len = 0;
        }
    }
    return found;
}

/* New entries of the host's log: QV_SYSERROR and QV_SYSLOG are the library's failure reports. */
static int scan_host_log(run_state *rs)
{
    size_t count = sim_host_log_count();
    int found = 0;
    for (; rs->host_log_seen < count; rs->host_log_seen++) {
        struct sim_host_log e = sim_host_log_at(rs->host_log_seen);
        if (e.service == SIM_HOST_QV_SYSERROR || e.service == SIM_HOST_QV_SYSLOG) {
            char text[SIM_HOST_LOG_TEXT + 32];
            snprintf(text, sizeof text, "%s: %s", e.service == SIM_HOST_QV_SYSERROR ? "QV_SYSERROR" : "QV_SYSLOG",
                     e.text);
            add_failure(rs, text);
            found++;
        } else if (e.service == SIM_HOST_NONE) {
            add_failure(rs, "(a host log entry beyond the simulated host's capacity)");
            found++;
        }
    }
    return found;
}

/* ---- the camera's state as the trace sees it ------------------------------------------------------------ */

static void update_gain(run_state *rs)
{
    /* The system gain and level as Part 1.3 derives them from the exposure the AE reports. */
    double g = (double)rs->ae.again * 0.0009765625 * (double)rs->ae.dgain * 0.0009765625 *
               (double)rs->ae.ispdgain * 0.0009765625;
    rs->gain = g;
    rs->G = g >= 1.0 ? (int)g : 1;
    rs->L = gain_level(rs->G);
}

static void add_row(run_state *rs, const char *event, int check)
{
    trace_row row;
    memset(&row, 0, sizeof row);
    row.t = rs->t;
    row.clock = rs->clock;
    snprintf(row.event, sizeof row.event, "%s", event);
    row.ambient = rs->w.ambient;
    row.scene = rs->w.scene;
    row.sensor = rs->w.sensor;
    row.exp_time = rs->ae.exp_time;
    row.again = rs->ae.again;
    row.dgain = rs->ae.dgain;
    row.ispdgain = rs->ae.ispdgain;
    row.gain = rs->gain;
    row.G = rs->G;
    row.L = rs->L;
    row.ave_lum = rs->ae.ave_lum;
    row.profile = rs->profile;
    row.ircut = rs->filter_out;
    row.lamp = rs->lamp;
    row.fps = rs->fps;
    row.dnr_mode = sim_host_get_field(SYSINFO_u8DnrMode);
    row.wdr_level = sim_host_get_field(SYSINFO_u8WdrLevel);
    row.sl_enable = sim_host_get_field(SYSINFO_u8SlInhibitionEnable);
    row.defog_mode = sim_host_get_field(SYSINFO_u8DefogMode);
    read_sched_values(rs->pt, &row.v);
    if (check) check_refresh_row(rs->pt, &row, &rs->st);
    if (trace_add(&rs->tr, &row) != 0) {
        fprintf(stderr, "isptune-sim: out of memory for the trace\n");
        exit(EXIT_RUNTIME);
    }
}

/* ---- output for the user ------------------------------------------------------------------------------ */

static void progress_clear(run_state *rs)
{
    if (rs->tty) fputs("\r\033[K", g_out);
}

static void progress_draw(run_state *rs)
{
    if (!rs->tty) return;
    double f = rs->end_t > 0 ? rs->t / rs->end_t : 1.0;
    if (f > 1.0) f = 1.0;
    int filled = (int)(f * 40);
    char clock[32];
    format_clock(rs->clock, clock, sizeof clock);
    fprintf(g_out, "\r[%.*s%*s] %3d%%  %s  %s ", filled, "########################################", 40 - filled, "",
            (int)(f * 100), clock, rs->profile ? "night" : "day");
    fflush(g_out);
}

static void say(run_state *rs, const char *fmt, ...) __attribute__((format(printf, 2, 3)));
static void say(run_state *rs, const char *fmt, ...)
{
    char clock[32];
    format_clock(rs->clock, clock, sizeof clock);
    progress_clear(rs);
    fprintf(g_out, "%s  ", clock);
    va_list ap;
    va_start(ap, fmt);
    vfprintf(g_out, fmt, ap);
    va_end(ap);
    fputc('\n', g_out);
    progress_draw(rs);
}

/* ---- host jobs (run on the host's thread while the supervision thread waits) ---------------------------- */

static void host_set_profile(run_state *rs, int night, const char *why)
{
    int32_t rc = night ? rs->lib.ISP_SetParamNight() : rs->lib.ISP_SetParamDay();
    rs->profile = night;
    if (rc != 0) {
        char text[128];
        snprintf(text, sizeof text, "%s returned %d", night ? "ISP_SetParamNight" : "ISP_SetParamDay", (int)rc);
        add_failure(rs, text);
    }
    scan_library_output(rs);
    add_row(rs, why, 0);
}

static void host_ircut(run_state *rs, int night)
{
    /* Night: the IR-cut filter comes out of the light path and the IR lamp goes on. */
    rs->filter_out = night;
    rs->lamp = night;
    sim_host_set_ircut(night);
}

static void job_boot(run_state *rs)
{
    host_ircut(rs, rs->host.night);
    host_set_profile(rs, rs->host.night, rs->host.night ? "boot:night" : "boot:day");
    say(rs, "host: boots in %s (%s %.3g) -> %s", rs->host.night ? "night" : "day",
        rs->sc->rule == DN_SENSOR ? "light sensor, lux" : "gain", rs->sc->rule == DN_SENSOR ? rs->w.sensor : rs->gain,
        rs->host.night ? "ISP_SetParamNight" : "ISP_SetParamDay");
}

static void job_switch(run_state *rs)
{
    run_stats *st = &rs->st;
    int night = !rs->host.night;
    rs->host.night = night;
    if (st->nswitch < sizeof st->switch_clock / sizeof st->switch_clock[0]) st->switch_clock[st->nswitch] = rs->clock;
    st->nswitch++;
    if (night) st->switches_to_night++;
    else st->switches_to_day++;
    host_ircut(rs, night);
    host_set_profile(rs, night, night ? "night" : "day");
    if (rs->switch_lines < MAX_SWITCH_LINES) {
        const char *why = rs->host.force != FORCE_AUTO ? "held by the scenario"
                          : rs->sc->rule == DN_SENSOR  ? "light sensor"
                                                       : "gain";
        if (rs->host.force != FORCE_AUTO) say(rs, "host: %s (%s) -> %s", night ? "night" : "day", why,
                                              night ? "ISP_SetParamNight" : "ISP_SetParamDay");
        else say(rs, "host: %s (%s %.3g for %gs) -> IR-cut %s, lamp %s, %s", night ? "night" : "day", why,
                 rs->sc->rule == DN_SENSOR ? rs->w.sensor : rs->gain, rs->sc->dwell, night ? "out" : "in",
                 night ? "on" : "off", night ? "ISP_SetParamNight" : "ISP_SetParamDay");
    } else if (rs->switch_lines == MAX_SWITCH_LINES) {
        say(rs, "host: ... further day/night switches are in trace.csv only");
    }
    rs->switch_lines++;
}

static void overlay_line(run_state *rs, int print)
{
    char lines[OVERLAY_LINE];
    memset(lines, 0, sizeof lines);
    int32_t rc = rs->lib.QV_ISP_GetDebugInfo(lines, 0);
    if (print && !rs->opt->quiet) {
        char clock[32];
        format_clock(rs->clock, clock, sizeof clock);
        progress_clear(rs);
        if (rc == 0) fprintf(g_out, "%.5s  %s\n", clock, lines);
        else fprintf(g_out, "%.5s  (overlay: QV_ISP_GetDebugInfo returned %d)\n", clock, (int)rc);
        progress_draw(rs);
    }
    if (rc != 0) {
        char text[96];
        snprintf(text, sizeof text, "QV_ISP_GetDebugInfo returned %d", (int)rc);
        add_failure(rs, text);
    }
}

static void job_overlay(run_state *rs)
{
    overlay_line(rs, 1);
}

static void job_actions(run_state *rs)
{
    const scenario *sc = rs->sc;
    while (rs->next_action < sc->nactions && sc->actions[rs->next_action].at <= rs->clock) {
        const action *a = &sc->actions[rs->next_action++];
        char what[512] = "";
        size_t len = 0;
#define WHAT(...) (len += (size_t)snprintf(what + len, len < sizeof what ? sizeof what - len : 0, __VA_ARGS__))
        for (int i = 0; i < a->nset; i++) {
            sim_host_set_field((size_t)a->set[i].pos, a->set[i].value);
            WHAT("%s%s=%u", i ? " " : "set ", sysinfo_name(a->set[i].pos), a->set[i].value);
        }
        for (int i = 0; i < a->napply; i++) {
            rs->lib.ops[a->apply[i]]();
            WHAT("%s%s", i ? ", " : (len ? "; " : ""), k_operation_names[a->apply[i]]);
        }
        if (a->fail) {
            unsigned nth = sim_mpp_call_count(a->fail_call) + 1;
            if (sim_mpp_fail(a->fail_call, nth, a->fail_times, (HI_S32)a->fail_code) == 0)
                WHAT("%sthe next %d %s call(s) fail with %#x", len ? "; " : "", a->fail_times, a->fail_call,
                     a->fail_code);
            else
                WHAT("%sunknown call %s: no fault armed", len ? "; " : "", a->fail_call);
        }
        if (a->daynight != FORCE_NONE) {
            rs->host.force = a->daynight;
            WHAT("%sday/night %s", len ? "; " : "",
                 a->daynight == FORCE_AUTO ? "automatic" : a->daynight == FORCE_DAY ? "held at day" : "held at night");
        }
        if (a->profile >= 0) WHAT("%s%s", len ? "; " : "", a->profile ? "ISP_SetParamNight" : "ISP_SetParamDay");
#undef WHAT
        say(rs, "action (line %d)%s%s: %s", a->line, a->note[0] ? ", " : "", a->note, what);
        char event[48];
        snprintf(event, sizeof event, "action:%d", a->line);
        if (a->profile >= 0) host_set_profile(rs, a->profile, event);
        else {
            scan_library_output(rs);
            add_row(rs, event, 0);
        }
        if (a->overlay) overlay_line(rs, 1);
    }
}

static void job_end(run_state *rs)
{
    scan_library_output(rs);
    add_row(rs, "end", 0);
    rs->ended = 1;
}

/* Hand a job to the host's thread and wait until it is done. */
static void handoff(run_state *rs, host_job job)
{
    sim_ae_attributes_changed(&rs->ae); /* the host's calls may program the exposure */
    pthread_mutex_lock(&rs->lock);
    rs->job = job;
    rs->job_pending = 1;
    pthread_cond_broadcast(&rs->cond);
    while (rs->job_pending) pthread_cond_wait(&rs->cond, &rs->lock);
    pthread_mutex_unlock(&rs->lock);
}

/* ---- the hook: one step of the world per supervision pass ----------------------------------------------- */

static void accumulate(run_state *rs, double dt)
{
    run_stats *st = &rs->st;
    st->simulated += dt;
    if (!rs->booted) return;
    if (rs->profile) st->night_time += dt;
    if (rs->fps == 15.0f) st->fps15_time += dt;
    if (rs->L >= 0 && rs->L < LEVELS) st->level_time[rs->L] += dt;
    if (rs->gain >= 61.9) st->ceiling_time += dt;
    if (rs->ae.ave_lum >= 100) st->overexposed_time += dt;
    if (rs->G < st->g_min) st->g_min = rs->G;
    if (rs->G > st->g_max) st->g_max = rs->G;
}

/* What the pass that just ended did: a refresh (its second exposure query, Part 1.3 step 1), a frame-rate
 * change, log entries. */
static void observe(run_state *rs)
{
    unsigned q = sim_mpp_call_count("HI_MPI_ISP_QueryExposureInfo");
    int refreshed = q - rs->last_queries >= 2;
    ISP_PUB_ATTR_S pub;
    sim_mpp_read(SIM_REC_PUB_ATTR, &pub);
    int failures = 0;
    if (sim_host_log_count() != rs->host_log_seen) failures += scan_host_log(rs);
    if (!refreshed && pub.f32FrameRate == rs->fps && !failures) return;
    sim_ae_attributes_changed(&rs->ae); /* a refresh or the frame-rate adjustment wrote attributes */
    failures += scan_library_output(rs);
    if (pub.f32FrameRate != rs->fps) {
        rs->fps = pub.f32FrameRate;
        rs->st.fps_changes++;
        add_row(rs, "fps", 0);
    }
    if (refreshed) {
        rs->st.refreshes[rs->profile]++;
        /* A refresh that reported a failure left what it left: the failure check speaks for it. */
        add_row(rs, "refresh", failures == 0);
    }
}

static void sample_minute(run_state *rs)
{
    /* The overlay's sources: the board temperature and the white balance's colour temperature. */
    sim_host_set_pmc(rs->w.temperature);
    ISP_WB_INFO_S wb;
    sim_mpp_read(SIM_REC_WB_INFO, &wb);
    wb.u16ColorTemp = rs->w.colour_temp;
    sim_mpp_write(SIM_REC_WB_INFO, &wb);
    if (rs->minutes != NULL)
        fprintf(rs->minutes, "%.5f,%.6g,%.6g,%.6g,%.4f,%d,%d,%.1f,%d,%d,%d,%d,%.3f\n", rs->next_minute / 3600.0,
                rs->w.ambient, rs->w.scene, rs->w.sensor, rs->gain, rs->G, rs->L, rs->fps, rs->profile,
                rs->filter_out, rs->lamp, rs->ae.ave_lum, rs->ae.exp_time / 1000.0);
}

static void step(run_state *rs, double t)
{
    const scenario *sc = rs->sc;
    accumulate(rs, t - rs->t);
    rs->t = t;
    rs->clock = sc->start + t;
    atomic_fetch_add(&rs->heartbeat, 1);

    if (rs->booted) observe(rs);
    world_at(sc, rs->clock, rs->lamp, rs->filter_out, &rs->w);

    if (t >= rs->end_t) { /* the end is exclusive: nothing is sampled or decided at it */
        handoff(rs, job_end);
        /* Parked until QV_ISP_Stop has cleared gISPStatus: the loop then ends without another pass. */
        while (__atomic_load_n(rs->lib.gISPStatus, __ATOMIC_SEQ_CST) == 1) sched_yield();
        atomic_store(&rs->finished, 1);
        return;
    }

    if (!rs->booted) {
        /* The start-up wait (Part 1.2): the AE has had its 10 s of frames; the host boots its profile. */
        for (int i = 0; i < 300; i++) sim_ae_frame(&rs->ae, rs->w.scene);
        update_gain(rs);
        ISP_PUB_ATTR_S pub;
        sim_mpp_read(SIM_REC_PUB_ATTR, &pub);
        rs->fps = pub.f32FrameRate;
        host_model_init(&rs->host, host_model_boot(sc, rs->w.sensor, rs->gain));
        rs->booted = 1;
        handoff(rs, job_boot);
        world_at(sc, rs->clock, rs->lamp, rs->filter_out, &rs->w);
    } else if (host_model_step(&rs->host, sc, rs->clock, rs->w.sensor, rs->gain)) {
        handoff(rs, job_switch);
        world_at(sc, rs->clock, rs->lamp, rs->filter_out, &rs->w);
    }
    if (rs->next_action < sc->nactions && sc->actions[rs->next_action].at <= rs->clock) {
        handoff(rs, job_actions);
        world_at(sc, rs->clock, rs->lamp, rs->filter_out, &rs->w);
    }
    if (rs->clock >= rs->next_minute) {
        sample_minute(rs);
        if (rs->minute_index % rs->opt->overlay_every == 0) handoff(rs, job_overlay);
        rs->minute_index++;
        rs->next_minute = sc->start + 60.0 * (double)rs->minute_index;
        if (rs->clock >= rs->next_progress) {
            progress_draw(rs);
            rs->next_progress = rs->clock + 600.0;
        }
    }

    if (sim_ae_frame(&rs->ae, rs->w.scene)) update_gain(rs);
    rs->last_queries = sim_mpp_call_count("HI_MPI_ISP_QueryExposureInfo");
}

static void on_clock(const struct vclock_call *call, size_t number, void *context)
{
    (void)number;
    run_state *rs = context;
    if (t_host_thread || atomic_load(&rs->finished)) return;
    if (call->kind == VCLOCK_USLEEP) rs->st.passes++;
    step(rs, (double)(call->start_us + call->duration_us) * 1e-6);
}

/* ---- the host's thread -------------------------------------------------------------------------------- */

static double wall_seconds(void)
{
    struct timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return (double)ts.tv_sec + ts.tv_nsec * 1e-9;
}

/* Serve jobs until the end of the run; a supervision thread that stops sleeping ends the program. */
static int host_loop(run_state *rs)
{
    unsigned long last_beat = atomic_load(&rs->heartbeat);
    double last_change = wall_seconds();
    pthread_mutex_lock(&rs->lock);
    while (!rs->ended) {
        if (rs->job_pending) {
            host_job job = rs->job;
            pthread_mutex_unlock(&rs->lock);
            job(rs);
            pthread_mutex_lock(&rs->lock);
            rs->job_pending = 0;
            pthread_cond_broadcast(&rs->cond);
            continue;
        }
        struct timespec until;
        clock_gettime(CLOCK_REALTIME, &until);
        until.tv_sec += 1;
        pthread_cond_timedwait(&rs->cond, &rs->lock, &until);
        unsigned long beat = atomic_load(&rs->heartbeat);
        if (beat != last_beat) {
            last_beat = beat;
            last_change = wall_seconds();
        } else if (wall_seconds() - last_change > WATCHDOG_SECONDS && !rs->job_pending) {
            pthread_mutex_unlock(&rs->lock);
            return -1;
        }
    }
    pthread_mutex_unlock(&rs->lock);
    return 0;
}

/* ---- the command ------------------------------------------------------------------------------------------ */

static int open_outputs(run_state *rs)
{
    char path[1200];
    if (make_dirs(rs->dir) != 0) {
        fprintf(stderr, "isptune-sim: %s: %s\n", rs->dir, strerror(errno));
        return -1;
    }
    snprintf(path, sizeof path, "%s/minutes.csv", rs->dir);
    rs->minutes = fopen(path, "w");
    if (rs->minutes == NULL) {
        fprintf(stderr, "isptune-sim: %s: %s\n", path, strerror(errno));
        return -1;
    }
    fputs("hours,ambient_lux,scene_lux,sensor_lux,gain,G,L,fps,profile,ircut,lamp,ave_lum,exp_ms\n", rs->minutes);
    snprintf(path, sizeof path, "%s/library.log", rs->dir);
    if (redirect_library_stdout(path) != 0) {
        fprintf(stderr, "isptune-sim: %s: %s\n", path, strerror(errno));
        return -1;
    }
    rs->libout_fd = open(path, O_RDONLY | O_CLOEXEC);
    if (rs->libout_fd < 0) {
        fprintf(stderr, "isptune-sim: %s: %s\n", path, strerror(errno));
        return -1;
    }
    return 0;
}

/* The host's start: the platform and the host at power-on, the user's settings, then the service. */
static int boot_host(run_state *rs)
{
    vclock_reset();
    sim_mpp_reset();
    sim_mpp_log_enable(0);   /* 2.6 million exposure queries a day: count them, do not keep them */
    sim_host_reset();
    sim_host_run_commands(0); /* "touch /tmp/FramerateAdjust" is recorded, not run */
    for (int i = 0; i < rs->sc->nsys; i++) sim_host_set_field((size_t)rs->sc->sys[i].pos, rs->sc->sys[i].value);
    sim_ae_config cfg = {rs->sc->unity_lux};
    sim_ae_init(&rs->ae, &cfg);
    rs->ae.follow_writes = 1; /* every attribute write is seen: by observe() or by a host job */
    vclock_set_hook(on_clock, rs);
    if (rs->opt->realtime) vclock_set_realtime(1.0);

    /* As a camera application: the operation table, a snapshot of the settings, every setting applied. */
    rs->lib.CreateIspDev(rs->lib.ops);
    rs->lib.ops[15]();                                      /* get_config */
    for (int slot = 2; slot <= 14; slot++) rs->lib.ops[slot](); /* set_exposure ... set_SLInhibition */
    if (rs->lib.QV_ISP_Start() != 0) {
        fprintf(stderr, "isptune-sim: QV_ISP_Start failed\n");
        return -1;
    }
    return 0;
}

int cmd_run(const scenario *sc, const run_options *opt)
{
    t_host_thread = 1;
    run_state *rs = calloc(1, sizeof *rs);
    if (rs == NULL) return EXIT_RUNTIME;
    rs->sc = sc;
    rs->opt = opt;
    rs->libout_fd = -1;
    rs->end_t = opt->hours > 0 ? opt->hours * 3600.0 : sc->duration;
    rs->next_minute = sc->start;
    rs->next_progress = sc->start;
    rs->st.g_min = 1 << 30;
    pthread_mutex_init(&rs->lock, NULL);
    pthread_cond_init(&rs->cond, NULL);
    snprintf(rs->dir, sizeof rs->dir, "%s", opt->out_dir);

    int rc = EXIT_RUNTIME;
    char err[1200];
    if (isplib_open(&rs->lib, opt->lib_path, err, sizeof err) != 0) {
        fprintf(stderr, "isptune-sim: %s\n", err);
        goto done;
    }
    rs->pt = calloc(1, sizeof *rs->pt);
    if (rs->pt == NULL || probe_library(&rs->lib, rs->pt, err, sizeof err) != 0) {
        fprintf(stderr, "isptune-sim: %s\n", rs->pt ? err : "out of memory");
        goto done;
    }
    if (open_outputs(rs) != 0) goto done;
    rs->tty = isatty(fileno(g_out));

    char clock0[32], clock1[32];
    format_clock(sc->start, clock0, sizeof clock0);
    format_clock(sc->start + rs->end_t, clock1, sizeof clock1);
    fprintf(g_out, "isptune-sim: scenario %s (%s), %s to %s%s\n", sc->name, sc->path, clock0, clock1,
            opt->realtime ? " in real time" : "");
    fprintf(g_out, "library %s; library output in %s/library.log\n", rs->lib.path, rs->dir);
    fflush(g_out);

    double wall0 = wall_seconds();
    if (boot_host(rs) != 0) goto done;
    if (host_loop(rs) != 0) {
        char clock[32];
        format_clock(rs->clock, clock, sizeof clock);
        progress_clear(rs);
        fprintf(g_out, "isptune-sim: the library's supervision thread has not slept for %d s of wall time "
                       "(simulated %s): a refresh failing without pause (Part 1.2, step 6.3) or an ended thread\n",
                WATCHDOG_SECONDS, clock);
        fflush(g_out);
        _exit(EXIT_RUNTIME); /* the thread cannot be joined: leave without waiting for it */
    }
    rs->lib.QV_ISP_Stop();
    double wall = wall_seconds() - wall0;
    vclock_set_hook(NULL, NULL);
    scan_library_output(rs);
    scan_host_log(rs);
    progress_clear(rs);

    compute_toggles(&rs->st);
    if (rs->st.g_min > rs->st.g_max) rs->st.g_min = rs->st.g_max = 0;
    fclose(rs->minutes);
    rs->minutes = NULL;
    char path[1200];
    snprintf(path, sizeof path, "%s/trace.csv", rs->dir);
    if (trace_write_csv(&rs->tr, path) != 0) fprintf(stderr, "isptune-sim: %s: %s\n", path, strerror(errno));
    snprintf(path, sizeof path, "%s/summary.txt", rs->dir);
    if (write_summary(path, sc, &rs->lib, &rs->st, &rs->tr) != 0)
        fprintf(stderr, "isptune-sim: %s: %s\n", path, strerror(errno));

    /* The summary on the terminal, as written. */
    FILE *s = fopen(path, "r");
    if (s != NULL) {
        char line[512];
        fputc('\n', g_out);
        while (fgets(line, sizeof line, s)) fputs(line, g_out);
        fclose(s);
    }
    fprintf(g_out, "\nwall time %.2f s for %.2f simulated hours: %.0f x real time\n", wall, rs->st.simulated / 3600.0,
            wall > 0 ? rs->st.simulated / wall : 0.0);
    if (opt->plots && plot_run(rs->dir, sc) == 0)
        fprintf(g_out, "plots:  %s/timeline.png, %s/scheduled.png\n", rs->dir, rs->dir);
    fprintf(g_out, "trace:  %s/trace.csv (%zu rows), %s/minutes.csv, %s/summary.txt\n", rs->dir, rs->tr.count,
            rs->dir, rs->dir);
    FILE *sink = fopen("/dev/null", "w");
    int failed = sink ? report_checks(sink, sc, &rs->st) : 0;
    if (sink) fclose(sink);
    rc = failed ? EXIT_CHECKS : EXIT_OK;
done:
    fflush(g_out);
    if (rs->libout_fd >= 0) close(rs->libout_fd);
    if (rs->minutes) fclose(rs->minutes);
    trace_free(&rs->tr);
    free(rs->pt);
    free(rs);
    return rc;
}
