/* isptune-sim plots: gnuplot scripts for the run (timeline, scheduled values) and for the tables. */
#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include "isptune_sim.h"

int run_gnuplot(const char *dir, const char *script)
{
    fflush(NULL);
    pid_t pid = fork();
    if (pid < 0) return -1;
    if (pid == 0) {
        if (chdir(dir) != 0) _exit(126);
        int err = open("gnuplot.log", O_WRONLY | O_CREAT | O_TRUNC, 0644);
        int null = open("/dev/null", O_WRONLY);
        if (err >= 0) dup2(err, STDERR_FILENO);
        if (null >= 0) dup2(null, STDOUT_FILENO);
        execlp("gnuplot", "gnuplot", script, (char *)NULL);
        _exit(127);
    }
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFEXITED(status) && WEXITSTATUS(status) == 127) {
        fprintf(g_out, "plots skipped: gnuplot is not installed (tools/install-deps.sh installs gnuplot-nox)\n");
        return -1;
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        fprintf(g_out, "plots: gnuplot failed, see %s/gnuplot.log\n", dir);
        return -1;
    }
    return 0;
}

static FILE *open_script(const char *dir, const char *name)
{
    char path[1200];
    snprintf(path, sizeof path, "%s/%s", dir, name);
    FILE *f = fopen(path, "w");
    if (f == NULL) fprintf(g_out, "plots: %s: %s\n", path, strerror(errno));
    return f;
}

#define PREAMBLE                                                                                              \
    "# made by isptune-sim; run again with: gnuplot %s\n"                                                      \
    "set terminal pngcairo size 1400,1000 font 'sans,10'\n"                                                    \
    "set datafile separator ','\n"                                                                             \
    "set key outside right top box opaque\n"                                                                   \
    "set grid\n"

int plot_run(const char *dir, const scenario *sc)
{
    FILE *f = open_script(dir, "plots.gp");
    if (f == NULL) return -1;
    double x0 = sc->start / 3600.0, x1 = (sc->start + sc->duration) / 3600.0;
    fprintf(f, PREAMBLE, "plots.gp");
    fprintf(f, "set xrange [%g:%g]\nset xtics 2\nset lmargin 12\nset rmargin 28\n", x0, x1);

    fprintf(f, "set output 'timeline.png'\n"
               "set multiplot layout 4,1 title 'isptune-sim: %s, timeline (hours since midnight)'\n", sc->name);
    fprintf(f, "set logscale y\nset ylabel 'lux'\nset format x ''\n"
               "plot 'minutes.csv' using 1:2 with lines lw 2 title 'ambient', "
               "'' using 1:3 with lines title 'at the sensor (scene)', '' using 1:4 with lines dt 2 title "
               "'light sensor'\n"
               "unset logscale y\n"
               "set ylabel 'gain'\nset y2label 'level'\nset y2range [0:6]\nset y2tics 1\nset ytics nomirror\n"
               "plot 'minutes.csv' using 1:5 with lines title 'gain, each minute', "
               "'trace.csv' using 'clock_h':'G' with steps lw 2 title 'G at each change', "
               "'' using 'clock_h':'L' axes x1y2 with steps dt 2 title 'level L'\n"
               "unset y2tics\nunset y2label\nset ytics mirror\n"
               "set ylabel 'fps'\nset yrange [10:32]\n"
               "plot 'trace.csv' using 'clock_h':'fps' with steps lw 2 title 'frame rate'\n"
               "set yrange [-0.2:1.2]\nset ytics ('day' 0, 'night' 1)\nset ylabel 'profile'\n"
               "set format x '%%g'\nset xlabel 'hours'\n"
               "plot 'trace.csv' using 'clock_h':(strcol('profile') eq 'night' ? 1 : 0) with steps lw 2 "
               "title 'profile', '' using 'clock_h':(column('lamp') * 0.9) with steps dt 2 title 'IR lamp'\n"
               "unset multiplot\nset autoscale y\nset ytics auto\nunset xlabel\n");

    fprintf(f, "set output 'scheduled.png'\n"
               "set multiplot layout 4,1 title 'isptune-sim: %s, gain-scheduled values written by the library'\n",
            sc->name);
    fprintf(f, "set format x ''\nset ylabel '3DNR spatial'\n"
               "plot for [c in 'SBS0 SBS1 SBS2 SBS3 SDS0 SDS1 SDS2 SDS3'] 'trace.csv' using 'clock_h':c "
               "with steps title c\n"
               "set ylabel '3DNR temporal'\n"
               "plot for [c in 'STH0 MATH1 MATH2 MDDZ1 TFS1 SFC TFC TPC TRC'] 'trace.csv' using 'clock_h':c "
               "with steps title c\n"
               "set ylabel 'strength'\n"
               "plot 'trace.csv' using 'clock_h':'drc_strength' with steps lw 2 title 'DRC', "
               "'' using 'clock_h':'defog_strength' with steps lw 2 title 'defog'\n"
               "set format x '%%g'\nset xlabel 'hours'\nset ylabel 'black level'\n"
               "set y2label 'gamma curve'\nset y2range [-1.5:3.5]\n"
               "set y2tics ('other' -1, 'day' 0, 'day high' 1, 'night' 2, 'night high' 3)\n"
               "set ytics nomirror\n"
               "plot 'trace.csv' using 'clock_h':'black0' with steps lw 2 title 'black level', "
               "'' using 'clock_h':(strcol('gamma') eq 'g_gamma_table_day' ? 0 : "
               "strcol('gamma') eq 'g_gamma_table_day_highgain' ? 1 : strcol('gamma') eq 'g_gamma_table_night' ? 2 "
               ": strcol('gamma') eq 'g_gamma_table_night_highgain' ? 3 : -1) axes x1y2 with steps title 'gamma'\n"
               "unset multiplot\n");
    fclose(f);
    return run_gnuplot(dir, "plots.gp");
}

int plot_tables(const char *dir)
{
    FILE *f = open_script(dir, "tables.gp");
    if (f == NULL) return -1;
    fprintf(f, PREAMBLE, "tables.gp");
    for (int p = 0; p < 2; p++) {
        const char *name = p ? "night" : "day";
        fprintf(f, "set output 'schedule_%s.png'\nset xrange [1:62]\nset xtics 4\n"
                   "set multiplot layout 3,1 title 'isptune-sim: what the %s refresh writes at system gain G'\n",
                name, name);
        fprintf(f, "set ylabel '3DNR spatial'\n"
                   "plot for [c in 'SBS0 SBS1 SBS2 SBS3 SDS0 SDS1 SDS2 SDS3'] 'schedule_%s.csv' using 'G':c "
                   "with linespoints pt 7 ps 0.4 title c\n"
                   "set ylabel '3DNR temporal'\n"
                   "plot for [c in 'STH0 MATH1 MATH2 MDDZ1 TFS1 SFC TFC TPC TRC'] 'schedule_%s.csv' using 'G':c "
                   "with linespoints pt 7 ps 0.4 title c\n"
                   "set ylabel 'strength / level'\nset xlabel 'system gain G'\n"
                   "plot for [c in 'DRC defog black'] 'schedule_%s.csv' using 'G':c with linespoints pt 7 "
                   "ps 0.4 title c\n"
                   "unset multiplot\nunset xlabel\n", name, name, name);
    }
    fprintf(f, "set output 'gamma.png'\nset xrange [0:256]\nset xtics 32\nset xlabel 'node (input / 16)'\n"
               "set ylabel 'output (12 bits)'\nset title 'isptune-sim: the four gamma curves'\n"
               "plot for [c in 'day day_highgain night night_highgain'] 'gamma.csv' using 'node':c with lines "
               "lw 2 title c\n");
    fclose(f);
    return run_gnuplot(dir, "tables.gp");
}
