/* isptune-sim command line: run a scenario, print the tables, explain a gain. */
#include <errno.h>
#include <stdarg.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "isptune_sim.h"

#define USAGE_TEXT \
    "usage: isptune-sim run [SCENARIO] [--lib PATH] [--out DIR] [--hours H] [--realtime] [--quiet]\n" \
    "                       [--overlay-every MINUTES] [--no-plots]\n" \
    "       isptune-sim tables [--lib PATH] [--out DIR] [--no-plots]\n" \
    "       isptune-sim explain --gain G --profile day|night [--lib PATH]\n" \
    "\n" \
    "run      plays a camera's host through SCENARIO (a YAML file, or the name of one in %s;\n" \
    "         default: default) in virtual time, with the overlay line every simulated minute;\n" \
    "         writes trace.csv, minutes.csv, summary.txt, library.log and PNG plots to DIR\n" \
    "         (default out/NAME) and exits 1 when a check fails (flapping, library failures,\n" \
    "         a value outside its table, a refresh that did not write its tables' values)\n" \
    "tables   every table of the library and every gain-scheduled value at G = 1 .. 62 (DIR: out/tables)\n" \
    "explain  for each gain-scheduled field: the level, the two table points, the weight, the value\n" \
    "\n" \
    "--lib PATH   the libisptune.so to load (default %s)\n" \
    "--hours H    simulate H hours instead of the scenario's duration\n" \
    "--realtime   run at wall-clock speed\n" \
    "--quiet      no overlay lines\n"

static int usage(FILE *f, int rc)
{
    fprintf(f, USAGE_TEXT, default_scenario_dir(), default_library_path());
    return rc;
}

static int bad(const char *fmt, ...) __attribute__((format(printf, 1, 2)));
static int bad(const char *fmt, ...)
{
    va_list ap;
    va_start(ap, fmt);
    fprintf(stderr, "isptune-sim: ");
    vfprintf(stderr, fmt, ap);
    va_end(ap);
    fprintf(stderr, "\n(isptune-sim help for the usage)\n");
    return EXIT_USAGE;
}

static int parse_number(const char *s, double lo, double hi, double *out)
{
    char *end;
    errno = 0;
    double v = strtod(s, &end);
    if (end == s || *end != '\0' || errno != 0 || !(v >= lo && v <= hi)) return -1;
    *out = v;
    return 0;
}

/* A scenario argument: a path to a file, or a name in the scenario folder. */
static void resolve_scenario(const char *arg, char *path, size_t len)
{
    struct stat st;
    if (strchr(arg, '/') != NULL || stat(arg, &st) == 0) {
        snprintf(path, len, "%s", arg);
        return;
    }
    snprintf(path, len, "%s/%s.yaml", default_scenario_dir(), arg);
}

int main(int argc, char **argv)
{
    g_out = stdout;
    if (argc < 2) return usage(stderr, EXIT_USAGE);
    const char *cmd = argv[1];
    if (!strcmp(cmd, "help") || !strcmp(cmd, "--help") || !strcmp(cmd, "-h")) return usage(stdout, EXIT_OK);
    if (strcmp(cmd, "run") && strcmp(cmd, "tables") && strcmp(cmd, "explain"))
        return bad("unknown command '%s' (run, tables, explain)", cmd);

    run_options opt = {default_library_path(), NULL, 0, 0, 1, 0.0, 1};
    const char *scenario_arg = NULL;
    double gain = -1;
    int profile = -1;
    for (int i = 2; i < argc; i++) {
        const char *a = argv[i];
        const char *next = i + 1 < argc ? argv[i + 1] : NULL;
        double v;
        if (!strcmp(a, "--lib") || !strcmp(a, "--out") || !strcmp(a, "--hours") || !strcmp(a, "--gain") ||
            !strcmp(a, "--profile") || !strcmp(a, "--overlay-every")) {
            if (next == NULL) return bad("%s needs a value", a);
            i++;
            if (!strcmp(a, "--lib")) opt.lib_path = next;
            else if (!strcmp(a, "--out")) opt.out_dir = next;
            else if (!strcmp(a, "--hours")) {
                if (parse_number(next, 1.0 / 60.0, 24.0 * 7, &v)) return bad("--hours: '%s' is not 0.017 .. 168", next);
                opt.hours = v;
            } else if (!strcmp(a, "--overlay-every")) {
                if (parse_number(next, 1, 1440, &v) || v != (int)v)
                    return bad("--overlay-every: '%s' is not a whole number of minutes 1 .. 1440", next);
                opt.overlay_every = (int)v;
            } else if (!strcmp(a, "--gain")) {
                if (parse_number(next, 1, MAX_G, &v) || v != (int)v)
                    return bad("--gain: '%s' is not a system gain 1 .. 62 (the range the profiles' gain limits allow)",
                               next);
                gain = v;
            } else {
                if (!strcmp(next, "day")) profile = 0;
                else if (!strcmp(next, "night")) profile = 1;
                else return bad("--profile: '%s' is not day or night", next);
            }
        } else if (!strcmp(a, "--realtime")) {
            opt.realtime = 1;
        } else if (!strcmp(a, "--quiet")) {
            opt.quiet = 1;
        } else if (!strcmp(a, "--no-plots")) {
            opt.plots = 0;
        } else if (a[0] == '-') {
            return bad("unknown option '%s'", a);
        } else if (!strcmp(cmd, "run") && scenario_arg == NULL) {
            scenario_arg = a;
        } else {
            return bad("unexpected argument '%s'", a);
        }
    }

    if (!strcmp(cmd, "run")) {
        char path[1100], err[1400];
        resolve_scenario(scenario_arg ? scenario_arg : "default", path, sizeof path);
        scenario *sc = calloc(1, sizeof *sc);
        if (sc == NULL) return EXIT_RUNTIME;
        if (scenario_load(path, sc, err, sizeof err) != 0) {
            fprintf(stderr, "isptune-sim: bad scenario: %s\n", err);
            free(sc);
            return EXIT_USAGE;
        }
        char dir[1200];
        if (opt.out_dir == NULL) {
            snprintf(dir, sizeof dir, "out/%s", sc->name);
            opt.out_dir = dir;
        }
        int rc = cmd_run(sc, &opt);
        free(sc);
        return rc;
    }

    isplib lib;
    char err[1200];
    if (!strcmp(cmd, "explain") && (gain < 0 || profile < 0))
        return bad("%s needs --gain G and --profile day|night", "explain");
    if (isplib_open(&lib, opt.lib_path, err, sizeof err) != 0) {
        fprintf(stderr, "isptune-sim: %s\n", err);
        return EXIT_RUNTIME;
    }
    /* The refreshes print their progress: keep it off the tables. */
    if (redirect_library_stdout("/dev/null") != 0) {
        fprintf(stderr, "isptune-sim: cannot redirect the library's output: %s\n", strerror(errno));
        return EXIT_RUNTIME;
    }
    int rc = !strcmp(cmd, "tables") ? cmd_tables(&lib, opt.out_dir ? opt.out_dir : "out/tables", opt.plots)
                                    : cmd_explain(&lib, (int)gain, profile);
    fflush(g_out);
    return rc;
}
