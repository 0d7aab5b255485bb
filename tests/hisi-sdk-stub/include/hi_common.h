/* Stand-in for the vendor SDK's hi_common.h, for the test hisi_build_with_stub_sdk only: it proves that
 * ISPTUNE_PLATFORM=hisi takes the platform declarations from HISI_SDK_DIR/include. The stub gives the
 * declarations of src/platform/hi3516cv300_mpp.h, which reproduce the vendor's names and layouts. */
#ifndef ISPTUNE_STUB_HI_COMMON_H
#define ISPTUNE_STUB_HI_COMMON_H
#define ISPTUNE_STUB_SDK_USED 1
#include "platform/hi3516cv300_mpp.h"
#endif
