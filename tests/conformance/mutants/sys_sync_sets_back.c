/* sys_sync_sets_back - breaks: a correction never sets the media clock back. */
#include "mi_sys.h"
#include "mutant.h"

/* Both calls write the same register. */
int32_t MI_SYS_SyncPts(uint64_t pts)
{
    return PLATFORM(MI_SYS_InitPtsBase)(pts);
}
