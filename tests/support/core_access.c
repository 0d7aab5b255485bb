/* C++ access to the library's C11 atomics, for the tests (core_access.h). */
#include "core/core.h"

int32_t test_profile_mode(void);
void test_set_profile_mode(int32_t mode);

int32_t test_profile_mode(void)
{
    return atomic_load(&ProfileMode);
}

void test_set_profile_mode(int32_t mode)
{
    atomic_store(&ProfileMode, mode);
}
