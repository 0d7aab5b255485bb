/* Parts 1.1 and 4.6 to 4.10: internal declarations of the operation table's unit beside isptune.h. */
#ifndef ISPTUNE_ATTRIBUTES_TWO_H
#define ISPTUNE_ATTRIBUTES_TWO_H

#include "isptune.h"

/*
 * Part 1.1: a copy of the cached configuration (the last get_config snapshot, zero before the first),
 * read the way a set operation reads it. For diagnostics: isptune-sim's trace and the unit tests, which
 * check that no set operation changes the cache. Not exported.
 */
void isp_cached_config(IspConfig *out);

#endif /* ISPTUNE_ATTRIBUTES_TWO_H */
