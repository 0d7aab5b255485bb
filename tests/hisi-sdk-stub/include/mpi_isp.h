/* Stand-in for the vendor SDK's mpi_isp.h (see hi_common.h of this folder). */
#include "hi_common.h"
