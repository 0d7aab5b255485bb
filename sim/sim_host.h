/* Simulated host: the SysInfo record and the host services of Part 1.6, with controls for tests and tools. */
#ifndef ISPTUNE_SIM_HOST_H
#define ISPTUNE_SIM_HOST_H

#include <stddef.h>
#include <stdint.h>

#include "platform/host.h" /* the services this host defines, and the SysInfo field positions */

#ifdef __cplusplus
extern "C" {
#endif

/*
 * sim/host.c defines every host service of Part 1.6 (GetSysInfo, QV_SYSLOG, QV_SYSERROR, QV_SYSINFO,
 * LogTrace, QV_Command_System, QV_GET_IRCUT_VALUE, Pmc_Read) with the prototypes of src/platform/host.h.
 * The functions below control and inspect that host. All of them, and all the services, are safe to call
 * from any thread at any time; sim_host_reset is meant for the start of a test, when the library is idle.
 */

/* Size of the simulated SysInfo record; every position of Part 1.6 lies inside it. */
enum { SIM_HOST_SYSINFO_SIZE = 2048 };

/*
 * Back to the host's power-on state: the record holds the defaults below and nothing else, GetSysInfo
 * returns the record, logs, commands and counters are cleared, IR-cut value 0, Pmc_Read value 0.0,
 * commands are run, nothing is echoed. Defaults (every other byte 0): u8Brightness, u8Contrast,
 * u8Saturation, u8Sharpness 128; u8FlickerMode 1 (50 Hz mains); automatic exposure and white balance
 * (u8ExposureMode, u8WbMode 0); WDR, backlight, noise-reduction mode, defog, strong-light inhibition off.
 * The record is static, so these defaults also hold before the first reset.
 */
void sim_host_reset(void);

/*
 * The record's SIM_HOST_SYSINFO_SIZE bytes (the address GetSysInfo returns, whatever the null switch says).
 * Read or write it directly only while the library is idle; otherwise use sim_host_set_field/get_field.
 */
unsigned char *sim_host_sysinfo(void);

/*
 * One byte of the record at position pos (an enum SysInfoField or any other position), by relaxed atomic
 * access, so the host may change fields while the library's threads read them. set: 0, or -1 when pos is
 * outside the record. get: the byte, or -1 when pos is outside the record.
 */
int sim_host_set_field(size_t pos, uint8_t value);
int sim_host_get_field(size_t pos);

/* While on (nonzero), GetSysInfo returns null ("the host has none"). Off after a reset. */
void sim_host_sysinfo_null(int on);

/* ---- captured log ----------------------------------------------------------------------------------- */

/* The service that made a log entry. */
enum sim_host_service {
    SIM_HOST_NONE = 0, /* returned by sim_host_log_at for an index that was not kept */
    SIM_HOST_QV_SYSLOG,
    SIM_HOST_QV_SYSERROR,
    SIM_HOST_QV_SYSINFO,
    SIM_HOST_LOGTRACE,
};

/* Entries keep at most SIM_HOST_LOG_TEXT - 1 bytes of text; the first SIM_HOST_LOG_MAX entries are kept. */
enum { SIM_HOST_LOG_TEXT = 512, SIM_HOST_LOG_MAX = 1024 };

/* One log entry. */
struct sim_host_log {
    enum sim_host_service service;
    int level;  /* QV_SYSLOG's first argument; -1 for the other services */
    int module; /* the module code (14 for the library); -1 for LogTrace, which has none */
    char text[SIM_HOST_LOG_TEXT]; /* the formatted text (format and arguments through vsnprintf) */
};

/* Number of log calls since the last reset, kept or not. */
size_t sim_host_log_count(void);

/* Entry i (0-based, in call order); service SIM_HOST_NONE and empty text when i was not kept. */
struct sim_host_log sim_host_log_at(size_t i);

/* Index of the first kept entry whose text contains `substring`, or -1. */
long sim_host_log_find(const char *substring);

/* Number of kept entries whose text contains `substring`. */
size_t sim_host_log_matches(const char *substring);

/* While on, every log entry is also written to standard error ("[host QV_SYSERROR 14] text"). */
void sim_host_log_echo(int on);

/* ---- IR-cut state, Pmc_Read ------------------------------------------------------------------------- */

/* The value QV_GET_IRCUT_VALUE returns from now on. */
void sim_host_set_ircut(int32_t value);
/* Number of QV_GET_IRCUT_VALUE calls since the last reset, and the scaled gain the last one was given. */
size_t sim_host_ircut_calls(void);
int32_t sim_host_ircut_last_arg(void);

/* The value Pmc_Read returns from now on. */
void sim_host_set_pmc(double value);
/* Number of Pmc_Read calls since the last reset, and the channel the last one was given. */
size_t sim_host_pmc_calls(void);
int sim_host_pmc_last_channel(void);

/* ---- QV_Command_System ------------------------------------------------------------------------------ */

/* Command lines keep at most SIM_HOST_COMMAND_TEXT - 1 bytes; the first SIM_HOST_COMMAND_MAX are kept. */
enum { SIM_HOST_COMMAND_TEXT = 256, SIM_HOST_COMMAND_MAX = 64 };

/* Number of QV_Command_System calls since the last reset, kept or not. */
size_t sim_host_command_count(void);

/* Command line i (0-based); "" when i was not kept. The text stays valid until the next reset. */
const char *sim_host_command_at(size_t i);

/*
 * On (the default, and after a reset): QV_Command_System runs each command line through the shell with
 * system() and returns its status. Off: commands are only recorded, and QV_Command_System returns 0.
 */
void sim_host_run_commands(int on);

#ifdef __cplusplus
}
#endif

#endif /* ISPTUNE_SIM_HOST_H */
