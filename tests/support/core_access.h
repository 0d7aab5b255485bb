// C++ access to the library's C11 atomics (src/core/core.h cannot be included from C++17).
#pragma once

#include <stdint.h>

extern "C" {
int32_t test_profile_mode(void);              // ProfileMode
void test_set_profile_mode(int32_t mode);     // as ISP_SetParamDay/Night would, without their other steps
}
