/* Overview, "Shared types and helpers": ProfileMode, the profile in force (0 colour, 1 night). */
#include "core/core.h"

_Atomic int32_t ProfileMode = 0;
