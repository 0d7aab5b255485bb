/* Simulated host: the SysInfo record and the host services of Part 1.6, with controls for tests and tools. */
#include "sim_host.h"

#include <pthread.h>
#include <stdarg.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* The printf checks of the log services apply to the host's definitions only; host.h stays as it is. */
void QV_SYSLOG(int level, int module, const char *message, ...) __attribute__((format(printf, 3, 4)));
void QV_SYSERROR(int module, const char *format, ...) __attribute__((format(printf, 2, 3)));
void QV_SYSINFO(int module, const char *message, ...) __attribute__((format(printf, 2, 3)));
void LogTrace(const char *format, ...) __attribute__((format(printf, 1, 2)));

/* ---- the record ----------------------------------------------------------------------------------- */

/* The host's record: opaque bytes with the Part 1.6 fields at their positions (host.h leaves it incomplete). */
struct SysInfo {
    _Alignas(16) unsigned char bytes[SIM_HOST_SYSINFO_SIZE];
};

#define SIM_HOST_DEFAULTS                                                                                    \
    {                                                                                                        \
        [SYSINFO_u8Brightness] = 128, [SYSINFO_u8Contrast] = 128, [SYSINFO_u8Saturation] = 128,             \
        [SYSINFO_u8Sharpness] = 128, [SYSINFO_u8FlickerMode] = 1,                                            \
    }

/* A camera's power-on settings (see sim_host_reset); every byte not named is 0. */
static const unsigned char g_defaults[SIM_HOST_SYSINFO_SIZE] = SIM_HOST_DEFAULTS;
static SysInfo g_sysinfo = { .bytes = SIM_HOST_DEFAULTS };

static atomic_int g_sysinfo_null;

/* Relaxed atomic byte access: the library's threads read the record while the host writes it. */
static uint8_t byte_get(size_t pos)
{
    return atomic_load_explicit((_Atomic uint8_t *)&g_sysinfo.bytes[pos], memory_order_relaxed);
}

static void byte_set(size_t pos, uint8_t value)
{
    atomic_store_explicit((_Atomic uint8_t *)&g_sysinfo.bytes[pos], value, memory_order_relaxed);
}

/* ---- everything else the host keeps, guarded by g_lock ------------------------------------------- */

static pthread_mutex_t g_lock = PTHREAD_MUTEX_INITIALIZER;

static struct sim_host_log g_log[SIM_HOST_LOG_MAX];
static size_t g_log_count;
static int g_log_echo;

static int32_t g_ircut_value;
static size_t g_ircut_calls;
static int32_t g_ircut_last_arg;

static double g_pmc_value;
static size_t g_pmc_calls;
static int g_pmc_last_channel;

static char g_commands[SIM_HOST_COMMAND_MAX][SIM_HOST_COMMAND_TEXT];
static size_t g_command_count;
static int g_run_commands = 1;

static const char *const g_service_names[] = {
    [SIM_HOST_NONE] = "-",
    [SIM_HOST_QV_SYSLOG] = "QV_SYSLOG",
    [SIM_HOST_QV_SYSERROR] = "QV_SYSERROR",
    [SIM_HOST_QV_SYSINFO] = "QV_SYSINFO",
    [SIM_HOST_LOGTRACE] = "LogTrace",
};

void sim_host_reset(void)
{
    for (size_t pos = 0; pos < SIM_HOST_SYSINFO_SIZE; pos++) {
        byte_set(pos, g_defaults[pos]);
    }
    atomic_store(&g_sysinfo_null, 0);

    pthread_mutex_lock(&g_lock);
    g_log_count = 0;
    g_log_echo = 0;
    g_ircut_value = 0;
    g_ircut_calls = 0;
    g_ircut_last_arg = 0;
    g_pmc_value = 0.0;
    g_pmc_calls = 0;
    g_pmc_last_channel = 0;
    g_command_count = 0;
    g_run_commands = 1;
    pthread_mutex_unlock(&g_lock);
}

unsigned char *sim_host_sysinfo(void)
{
    return g_sysinfo.bytes;
}

int sim_host_set_field(size_t pos, uint8_t value)
{
    if (pos >= SIM_HOST_SYSINFO_SIZE) {
        return -1;
    }
    byte_set(pos, value);
    return 0;
}

int sim_host_get_field(size_t pos)
{
    return pos < SIM_HOST_SYSINFO_SIZE ? byte_get(pos) : -1;
}

void sim_host_sysinfo_null(int on)
{
    atomic_store(&g_sysinfo_null, on != 0);
}

SysInfo *GetSysInfo(void)
{
    return atomic_load(&g_sysinfo_null) ? NULL : &g_sysinfo;
}

/* ---- log services ------------------------------------------------------------------------------- */

__attribute__((format(printf, 4, 0))) static void log_entry(enum sim_host_service service, int level,
                                                            int module, const char *format, va_list args)
{
    /* Format before taking the lock: the text is the caller's alone until it is stored. */
    char text[SIM_HOST_LOG_TEXT];
    if (format != NULL) {
        vsnprintf(text, sizeof text, format, args);
    } else {
        snprintf(text, sizeof text, "(null)");
    }

    pthread_mutex_lock(&g_lock);
    if (g_log_count < SIM_HOST_LOG_MAX) {
        struct sim_host_log *entry = &g_log[g_log_count];
        entry->service = service;
        entry->level = level;
        entry->module = module;
        memcpy(entry->text, text, sizeof text);
    }
    g_log_count++;
    if (g_log_echo) { /* under the lock, so the echo keeps the entries' order */
        const size_t length = strlen(text);
        const char *newline = (length > 0 && text[length - 1] == '\n') ? "" : "\n";
        if (service == SIM_HOST_QV_SYSLOG) {
            fprintf(stderr, "[host %s %d %d] %s%s", g_service_names[service], level, module, text, newline);
        } else if (service == SIM_HOST_LOGTRACE) {
            fprintf(stderr, "[host %s] %s%s", g_service_names[service], text, newline);
        } else {
            fprintf(stderr, "[host %s %d] %s%s", g_service_names[service], module, text, newline);
        }
    }
    pthread_mutex_unlock(&g_lock);
}

void QV_SYSLOG(int level, int module, const char *message, ...)
{
    va_list args;
    va_start(args, message);
    log_entry(SIM_HOST_QV_SYSLOG, level, module, message, args);
    va_end(args);
}

void QV_SYSERROR(int module, const char *format, ...)
{
    va_list args;
    va_start(args, format);
    log_entry(SIM_HOST_QV_SYSERROR, -1, module, format, args);
    va_end(args);
}

void QV_SYSINFO(int module, const char *message, ...)
{
    va_list args;
    va_start(args, message);
    log_entry(SIM_HOST_QV_SYSINFO, -1, module, message, args);
    va_end(args);
}

void LogTrace(const char *format, ...)
{
    va_list args;
    va_start(args, format);
    log_entry(SIM_HOST_LOGTRACE, -1, -1, format, args);
    va_end(args);
}

size_t sim_host_log_count(void)
{
    pthread_mutex_lock(&g_lock);
    const size_t count = g_log_count;
    pthread_mutex_unlock(&g_lock);
    return count;
}

struct sim_host_log sim_host_log_at(size_t i)
{
    struct sim_host_log entry = { .service = SIM_HOST_NONE, .level = -1, .module = -1 };
    pthread_mutex_lock(&g_lock);
    if (i < g_log_count && i < SIM_HOST_LOG_MAX) {
        entry = g_log[i];
    }
    pthread_mutex_unlock(&g_lock);
    return entry;
}

static size_t kept_entries(void)
{
    return g_log_count < SIM_HOST_LOG_MAX ? g_log_count : SIM_HOST_LOG_MAX;
}

long sim_host_log_find(const char *substring)
{
    long found = -1;
    pthread_mutex_lock(&g_lock);
    for (size_t i = 0; i < kept_entries(); i++) {
        if (strstr(g_log[i].text, substring) != NULL) {
            found = (long)i;
            break;
        }
    }
    pthread_mutex_unlock(&g_lock);
    return found;
}

size_t sim_host_log_matches(const char *substring)
{
    size_t matches = 0;
    pthread_mutex_lock(&g_lock);
    for (size_t i = 0; i < kept_entries(); i++) {
        matches += strstr(g_log[i].text, substring) != NULL;
    }
    pthread_mutex_unlock(&g_lock);
    return matches;
}

void sim_host_log_echo(int on)
{
    pthread_mutex_lock(&g_lock);
    g_log_echo = on != 0;
    pthread_mutex_unlock(&g_lock);
}

/* ---- IR-cut state, Pmc_Read ----------------------------------------------------------------------- */

int32_t QV_GET_IRCUT_VALUE(int32_t scaled_gain)
{
    pthread_mutex_lock(&g_lock);
    g_ircut_calls++;
    g_ircut_last_arg = scaled_gain;
    const int32_t value = g_ircut_value;
    pthread_mutex_unlock(&g_lock);
    return value;
}

void sim_host_set_ircut(int32_t value)
{
    pthread_mutex_lock(&g_lock);
    g_ircut_value = value;
    pthread_mutex_unlock(&g_lock);
}

size_t sim_host_ircut_calls(void)
{
    pthread_mutex_lock(&g_lock);
    const size_t calls = g_ircut_calls;
    pthread_mutex_unlock(&g_lock);
    return calls;
}

int32_t sim_host_ircut_last_arg(void)
{
    pthread_mutex_lock(&g_lock);
    const int32_t arg = g_ircut_last_arg;
    pthread_mutex_unlock(&g_lock);
    return arg;
}

double Pmc_Read(int channel)
{
    pthread_mutex_lock(&g_lock);
    g_pmc_calls++;
    g_pmc_last_channel = channel;
    const double value = g_pmc_value;
    pthread_mutex_unlock(&g_lock);
    return value;
}

void sim_host_set_pmc(double value)
{
    pthread_mutex_lock(&g_lock);
    g_pmc_value = value;
    pthread_mutex_unlock(&g_lock);
}

size_t sim_host_pmc_calls(void)
{
    pthread_mutex_lock(&g_lock);
    const size_t calls = g_pmc_calls;
    pthread_mutex_unlock(&g_lock);
    return calls;
}

int sim_host_pmc_last_channel(void)
{
    pthread_mutex_lock(&g_lock);
    const int channel = g_pmc_last_channel;
    pthread_mutex_unlock(&g_lock);
    return channel;
}

/* ---- QV_Command_System ---------------------------------------------------------------------------- */

int QV_Command_System(const char *command)
{
    pthread_mutex_lock(&g_lock);
    if (g_command_count < SIM_HOST_COMMAND_MAX) {
        snprintf(g_commands[g_command_count], SIM_HOST_COMMAND_TEXT, "%s", command != NULL ? command : "");
    }
    g_command_count++;
    const int run = g_run_commands && command != NULL;
    if (g_log_echo) {
        fprintf(stderr, "[host QV_Command_System] %s%s\n", command != NULL ? command : "(null)",
                run ? "" : " (not run)");
    }
    pthread_mutex_unlock(&g_lock);

    /* Outside the lock: the command may take a while, and the host must stay callable meanwhile. */
    return run ? system(command) : 0;
}

size_t sim_host_command_count(void)
{
    pthread_mutex_lock(&g_lock);
    const size_t count = g_command_count;
    pthread_mutex_unlock(&g_lock);
    return count;
}

const char *sim_host_command_at(size_t i)
{
    pthread_mutex_lock(&g_lock);
    const char *command = (i < g_command_count && i < SIM_HOST_COMMAND_MAX) ? g_commands[i] : "";
    pthread_mutex_unlock(&g_lock);
    return command;
}

void sim_host_run_commands(int on)
{
    pthread_mutex_lock(&g_lock);
    g_run_commands = on != 0;
    pthread_mutex_unlock(&g_lock);
}
