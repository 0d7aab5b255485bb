/* Stand-in for the vendor SDK's mpi_vi.h (see hi_common.h of this folder). */
#include "hi_common.h"
