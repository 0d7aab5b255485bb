/* Stand-in for the vendor SDK's mpi_vpss.h (see hi_common.h of this folder). */
#include "hi_common.h"
