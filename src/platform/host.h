/* Part 1.6: the host seam: the host services the library calls and the SysInfo byte positions. */
#ifndef ISPTUNE_PLATFORM_HOST_H
#define ISPTUNE_PLATFORM_HOST_H

#ifndef __cplusplus
#include <stdatomic.h>
#endif
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/*
 * SysInfo is owned and laid out by the host; the library knows only the byte positions below and reads
 * (or, for two bytes, writes) single bytes at them (Part 1.6, "Left to the implementer": read through one
 * accessor). The type stays incomplete so that no code can copy or size the record.
 */
typedef struct SysInfo SysInfo;

/* Byte positions of the fields the library uses, counted from the start of the record (Part 1.6). */
enum SysInfoField {
    SYSINFO_u8Brightness = 1300,
    SYSINFO_u8Contrast = 1301,
    SYSINFO_u8Saturation = 1302,
    SYSINFO_u8Sharpness = 1303,
    SYSINFO_u8ManualGain = 1305,
    SYSINFO_u8WbMode = 1307,
    SYSINFO_u8WbRed = 1308,
    SYSINFO_u8WbGreen = 1309,
    SYSINFO_u8WbBlue = 1310,
    SYSINFO_u8BlcEnable = 1311,
    SYSINFO_u8BlcLevel = 1312,
    SYSINFO_u8FlickerMode = 1313,
    SYSINFO_u8WatchedMode = 1316,
    SYSINFO_u8Shutter = 1319,
    SYSINFO_u8ExposureMode = 1320,
    SYSINFO_u8WdrMode = 1322,
    SYSINFO_u8WdrLevel = 1323,
    SYSINFO_u8DnrMode = 1324,
    SYSINFO_u8Dnr2dStrength = 1325,
    SYSINFO_u8Dnr3dStrength = 1326,
    SYSINFO_u8DefogMode = 1327,
    SYSINFO_u8DefogReserved = 1328,
    SYSINFO_u8DefogStrength = 1329,
    SYSINFO_u8SlInhibitionEnable = 1331,
    SYSINFO_u8SlInhibitionLevel = 1332,
    SYSINFO_u8SlDrcStrength = 1403,
};

/* The library's module code in every QV_SYSLOG, QV_SYSERROR and QV_SYSINFO call (Part 1.6). */
enum { ISP_MODULE_CODE = 14 };

#ifndef __cplusplus
/*
 * One field of the record. The host may write any field at any time from its own threads; a relaxed
 * atomic byte access is a plain byte load or store on every target (ldrb/strb on the ARM926) and tells
 * the compiler and ThreadSanitizer that the race is intended ("single-byte reads are the unit").
 */
static inline uint8_t sysinfo_get(const SysInfo *info, enum SysInfoField field)
{
    return atomic_load_explicit((const _Atomic uint8_t *)((const unsigned char *)info + field),
                                memory_order_relaxed);
}

static inline void sysinfo_set(SysInfo *info, enum SysInfoField field, uint8_t value)
{
    atomic_store_explicit((_Atomic uint8_t *)((unsigned char *)info + field), value, memory_order_relaxed);
}
#endif /* !__cplusplus: C++ code (tests) uses the positions only */

/*
 * The host services (Part 1.6), declared with the arguments the library passes. Their results are never
 * examined apart from GetSysInfo, QV_GET_IRCUT_VALUE and Pmc_Read, so the log services are declared void
 * (ABI-safe whatever the host returns). The texts are passed as they stand.
 */
SysInfo *GetSysInfo(void);
void QV_SYSLOG(int level, int module, const char *message, ...);
void QV_SYSERROR(int module, const char *format, ...);
void QV_SYSINFO(int module, const char *message, ...);
void LogTrace(const char *format, ...);
int QV_Command_System(const char *command);
int32_t QV_GET_IRCUT_VALUE(int32_t scaled_gain);
double Pmc_Read(int channel);

#ifdef __cplusplus
}
#endif

#endif /* ISPTUNE_PLATFORM_HOST_H */
