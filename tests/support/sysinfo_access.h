/* Part 1.6 test support: the C-only SysInfo accessors of src/platform/host.h, callable from C++ tests. */
#ifndef ISPTUNE_TESTS_SYSINFO_ACCESS_H
#define ISPTUNE_TESTS_SYSINFO_ACCESS_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* sysinfo_get / sysinfo_set (host.h) on the record at `record`, field position `field`. */
uint8_t test_sysinfo_get(const void *record, int field);
void test_sysinfo_set(void *record, int field, uint8_t value);

#ifdef __cplusplus
}
#endif

#endif /* ISPTUNE_TESTS_SYSINFO_ACCESS_H */
