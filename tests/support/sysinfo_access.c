/* Part 1.6 test support: the C-only SysInfo accessors of src/platform/host.h, callable from C++ tests. */
#include "sysinfo_access.h"

#include "platform/host.h"

uint8_t test_sysinfo_get(const void *record, int field)
{
    return sysinfo_get((const SysInfo *)record, (enum SysInfoField)field);
}

void test_sysinfo_set(void *record, int field, uint8_t value)
{
    sysinfo_set((SysInfo *)record, (enum SysInfoField)field, value);
}
