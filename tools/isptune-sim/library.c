/* isptune-sim library loading: dlopen libisptune.so as a camera's host does, and keep its stdout apart. */
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "isptune_sim.h"

FILE *g_out;

#ifndef ISPTUNE_SIM_DEFAULT_LIB
#define ISPTUNE_SIM_DEFAULT_LIB "libisptune.so"
#endif
#ifndef ISPTUNE_SIM_SCENARIO_DIR
#define ISPTUNE_SIM_SCENARIO_DIR "scenarios"
#endif

const char *default_library_path(void)
{
    return ISPTUNE_SIM_DEFAULT_LIB;
}

const char *default_scenario_dir(void)
{
    return ISPTUNE_SIM_SCENARIO_DIR;
}

/* dlsym into a function pointer without the object-to-function cast warning of -Wpedantic. */
#define LOOKUP(lib, name, missing)                                                                          \
    do {                                                                                                    \
        void *sym_ = dlsym((lib)->handle, #name);                                                           \
        if (sym_ == NULL) missing = #name;                                                                  \
        else memcpy(&(lib)->name, &sym_, sizeof sym_);                                                      \
    } while (0)

int isplib_open(isplib *lib, const char *path, char *err, size_t errlen)
{
    memset(lib, 0, sizeof *lib);
    snprintf(lib->path, sizeof lib->path, "%s", path);
    /* RTLD_NOW: every platform and host symbol must bind now, to this process's simulated MPP and host,
     * exactly as on the camera where the vendor's libraries and the application provide them. */
    lib->handle = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (lib->handle == NULL) {
        snprintf(err, errlen, "cannot load the library: %s", dlerror());
        return -1;
    }
    const char *missing = NULL;
    LOOKUP(lib, CreateIspDev, missing);
    LOOKUP(lib, QV_ISP_Start, missing);
    LOOKUP(lib, QV_ISP_Stop, missing);
    LOOKUP(lib, ISP_SetParamDay, missing);
    LOOKUP(lib, ISP_SetParamNight, missing);
    LOOKUP(lib, ISP_SetParamDayRefresh, missing);
    LOOKUP(lib, ISP_SetParamNightRefresh, missing);
    LOOKUP(lib, QV_ISP_GetDebugInfo, missing);
    lib->gISPStatus = dlsym(lib->handle, "gISPStatus");
    if (lib->gISPStatus == NULL) missing = "gISPStatus";
    if (missing != NULL) {
        snprintf(err, errlen, "%s does not export %s (is it libisptune.so?)", path, missing);
        dlclose(lib->handle);
        lib->handle = NULL;
        return -1;
    }
    lib->CreateIspDev(lib->ops);
    for (int i = 0; i < ISP_OPERATION_COUNT; i++) {
        if (lib->ops[i] == NULL) {
            snprintf(err, errlen, "CreateIspDev left slot %d (%s) empty", i, k_operation_names[i]);
            return -1;
        }
    }
    return 0;
}

int redirect_library_stdout(const char *path)
{
    fflush(stdout);
    if (g_out == NULL || fileno(g_out) == STDOUT_FILENO) {
        /* Keep the user's standard output for the tool itself, on a descriptor of its own. */
        int keep = dup(STDOUT_FILENO);
        if (keep < 0) return -1;
        FILE *f = fdopen(keep, "w");
        if (f == NULL) return -1;
        if (isatty(keep)) setvbuf(f, NULL, _IOLBF, 0);
        g_out = f;
    }
    int fd = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) return -1;
    int rc = dup2(fd, STDOUT_FILENO);
    close(fd);
    return rc < 0 ? -1 : 0;
}

int make_dirs(const char *path)
{
    char buf[1024];
    if (snprintf(buf, sizeof buf, "%s", path) >= (int)sizeof buf) {
        errno = ENAMETOOLONG;
        return -1;
    }
    for (char *p = buf + 1; *p; p++) {
        if (*p != '/') continue;
        *p = '\0';
        if (mkdir(buf, 0755) != 0 && errno != EEXIST) return -1;
        *p = '/';
    }
    if (mkdir(buf, 0755) != 0 && errno != EEXIST) return -1;
    return 0;
}
